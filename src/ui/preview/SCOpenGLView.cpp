#include "ui/preview/SCOpenGLView.h"

#include "core/preview/BLPreviewCtrl.h"
#include "ui/preview/SCPreviewView.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

SCOpenGLView::SCOpenGLView(SCPreviewView& preview, QWidget* parent) : QWidget(parent), m_preview(preview)
{
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setMinimumSize(64, 36);
}

void SCOpenGLView::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    m_preview.paintPicture(painter, rect());
}

void SCOpenGLView::mousePressEvent(QMouseEvent* event)
{
    setFocus(Qt::MouseFocusReason);
    QWidget::mousePressEvent(event);
}

void SCOpenGLView::mouseDoubleClickEvent(QMouseEvent* event)
{
    m_doubleClicked = event->button() == Qt::LeftButton;
    event->accept();
}

void SCOpenGLView::mouseReleaseEvent(QMouseEvent* event)
{
    if (!m_doubleClicked) {
        QWidget::mouseReleaseEvent(event);
        return;
    }
    m_doubleClicked = false;
    event->accept();
    // Full screen runs its own loop: started once this event is done.
    QMetaObject::invokeMethod(
        this,
        [this] {
            if (BLPreviewCtrl* ctrl = m_preview.previewCtrl())
                ctrl->showFullscreen();
        },
        Qt::QueuedConnection);
}

void SCOpenGLView::keyPressEvent(QKeyEvent* event)
{
    if (m_preview.forwardKey(event))
        event->accept();
    else
        QWidget::keyPressEvent(event);
}
