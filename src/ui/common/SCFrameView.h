#pragma once

#include <QWidget>

// A decorated frame: eight images drawn around the edges ("waku_left",
// "waku_up_middle", ..., "waku_bottom_right" from the resources) on a light
// grey background, holding one content widget inside the border.
class SCFrameView : public QWidget
{
public:
    static constexpr int kBorder = 6;
    // Red = green = blue = 243/255.
    static QColor backgroundColor();

    explicit SCFrameView(QWidget* parent = nullptr);

    // The container inside the border into which a view is inserted.
    QWidget* contentView() const { return m_contentView; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QWidget* m_contentView;
};
