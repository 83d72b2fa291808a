#include "ui/preview/SCTimeSlider.h"

#include "core/app/preview/BLTimeSliderCtrl.h"

#include <QMouseEvent>
#include <QSignalBlocker>
#include <QStyle>
#include <QStyleOptionSlider>

SCTimeSlider::SCTimeSlider(QWidget* parent) : QSlider(Qt::Horizontal, parent)
{
    setRange(0, kMaximum);
    setMinimumWidth(120);
    setFocusPolicy(Qt::NoFocus);
    setEnabled(false);
}

void SCTimeSlider::setSliderValue(qint64 value)
{
    const QSignalBlocker blocker(this);
    setValue(int(value));
}

void SCTimeSlider::mousePressEvent(QMouseEvent* event)
{
    if (!m_ctrl || event->button() != Qt::LeftButton) {
        QSlider::mousePressEvent(event);
        return;
    }
    m_stateBefore = m_ctrl->timeSliderDragStart();
    m_dragging = true;
    setSliderDown(true);
    moveTo(event->position().toPoint());
    event->accept();
}

void SCTimeSlider::mouseMoveEvent(QMouseEvent* event)
{
    if (!m_dragging) {
        QSlider::mouseMoveEvent(event);
        return;
    }
    moveTo(event->position().toPoint());
    event->accept();
}

void SCTimeSlider::mouseReleaseEvent(QMouseEvent* event)
{
    if (!m_dragging) {
        QSlider::mouseReleaseEvent(event);
        return;
    }
    moveTo(event->position().toPoint());
    m_dragging = false;
    setSliderDown(false);
    m_ctrl->timeSliderDragEnd(m_stateBefore);
    event->accept();
}

void SCTimeSlider::moveTo(const QPoint& position)
{
    QStyleOptionSlider option;
    initStyleOption(&option);
    const QRect groove = style()->subControlRect(QStyle::CC_Slider, &option, QStyle::SC_SliderGroove, this);
    const QRect handle = style()->subControlRect(QStyle::CC_Slider, &option, QStyle::SC_SliderHandle, this);
    const int span = groove.width() - handle.width();
    const int value = QStyle::sliderValueFromPosition(minimum(), maximum(),
                                                      position.x() - groove.x() - handle.width() / 2, span);
    setSliderValue(value);
    m_ctrl->sliderDidMove(value);
}
