#include "ui/preview/SCFullScreenWindow.h"

#include "ui/preview/SCPreviewView.h"

#include <QCloseEvent>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScreen>

SCFullScreenWindow::SCFullScreenWindow(SCPreviewView& preview)
    : QWidget(nullptr, Qt::Window | Qt::FramelessWindowHint), m_preview(preview)
{
    setAttribute(Qt::WA_OpaquePaintEvent);
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    m_cursorTimer.setSingleShot(true);
    m_cursorTimer.setInterval(kCursorHideMs);
    connect(&m_cursorTimer, &QTimer::timeout, this, [this] { setCursor(Qt::BlankCursor); });
}

bool SCFullScreenWindow::enter()
{
    QScreen* screen = QGuiApplication::primaryScreen();
    if (!screen)
        return false;
    setGeometry(screen->geometry());
    setCursor(Qt::BlankCursor);
    m_doubleClicked = false;
    showFullScreen();
    raise();
    activateWindow();
    setFocus(Qt::ActiveWindowFocusReason);
    return true;
}

void SCFullScreenWindow::runLoop()
{
    if (isVisible())
        m_loop.exec();
}

void SCFullScreenWindow::leave()
{
    m_cursorTimer.stop();
    unsetCursor();
    hide();
    m_loop.quit();
}

void SCFullScreenWindow::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    m_preview.paintPicture(painter, rect());
}

void SCFullScreenWindow::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape)
        m_loop.quit();
    else if (!m_preview.forwardKey(event))
        QWidget::keyPressEvent(event);
}

void SCFullScreenWindow::mouseDoubleClickEvent(QMouseEvent* event)
{
    m_doubleClicked = event->button() == Qt::LeftButton;
}

void SCFullScreenWindow::mouseReleaseEvent(QMouseEvent* event)
{
    if (m_doubleClicked)
        m_loop.quit();
    m_doubleClicked = false;
    QWidget::mouseReleaseEvent(event);
}

void SCFullScreenWindow::mouseMoveEvent(QMouseEvent* event)
{
    unsetCursor();
    m_cursorTimer.start();
    QWidget::mouseMoveEvent(event);
}

void SCFullScreenWindow::closeEvent(QCloseEvent* event)
{
    // Closed by the window system: leave as by Escape.
    m_loop.quit();
    event->ignore();
}
