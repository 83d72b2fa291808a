#pragma once

#include <QWidget>

class SCPreviewView;

// The picture of the preview: the frames the viewer delivers, painted with
// their display aspect ratio on black (all black while stopped). A click
// gives it the keyboard, whose preview keys go to the preview controller; a
// double click shows the picture full screen.
class SCOpenGLView : public QWidget
{
    Q_OBJECT
public:
    explicit SCOpenGLView(SCPreviewView& preview, QWidget* parent = nullptr);

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    SCPreviewView& m_preview;
    bool m_doubleClicked = false;
};
