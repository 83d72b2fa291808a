#pragma once

#include <QEventLoop>
#include <QTimer>
#include <QWidget>

class SCPreviewView;

// The full-screen display: a borderless window over the whole main screen
// showing the same frames as the preview. Escape or a double click leaves it;
// the other preview keys keep working. The mouse pointer hides until the
// mouse moves, and again 3 seconds after it stopped.
class SCFullScreenWindow : public QWidget
{
    Q_OBJECT
public:
    static constexpr int kCursorHideMs = 3000;

    explicit SCFullScreenWindow(SCPreviewView& preview);

    // Covers the main screen; false when there is none.
    bool enter();
    // Runs until the user leaves full screen.
    void runLoop();
    void leave();

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    SCPreviewView& m_preview;
    QEventLoop m_loop;
    QTimer m_cursorTimer;
    bool m_doubleClicked = false;
};
