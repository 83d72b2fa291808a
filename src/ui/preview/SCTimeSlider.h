#pragma once

#include "core/app/preview/ITimeSliderView.h"

#include <QSlider>

class BLTimeSliderCtrl;

// The time slider. A press starts a drag at once (also on the groove, where
// the handle jumps to the mouse); the controller follows the hand and is told
// when the slider is let go.
class SCTimeSlider : public QSlider, public ITimeSliderView
{
    Q_OBJECT
public:
    static constexpr int kMaximum = 10000;

    explicit SCTimeSlider(QWidget* parent = nullptr);

    void setTimeSliderCtrl(BLTimeSliderCtrl* ctrl) { m_ctrl = ctrl; }

    qint64 maxValue() const override { return maximum(); }
    void setSliderValue(qint64 value) override;
    void setSliderEnabled(bool enabled) override { setEnabled(enabled); }

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    void moveTo(const QPoint& position);

    BLTimeSliderCtrl* m_ctrl = nullptr;
    bool m_dragging = false;
    int m_stateBefore = 0;
};
