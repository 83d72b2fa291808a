#include "ui/preview/SCOpenGLView.h"

#include "core/app/preview/BLPreviewCtrl.h"
#include "ui/preview/SCPreviewView.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

#include <algorithm>

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

bool SCOpenGLView::event(QEvent* event)
{
    // The preview's keys win over the window's shortcuts while the picture
    // has the keyboard (Space would otherwise play the grid's take).
    if (event->type() == QEvent::ShortcutOverride) {
        const auto* key = static_cast<QKeyEvent*>(event);
        static constexpr int kPreviewKeys[] = {Qt::Key_Space, Qt::Key_F,    Qt::Key_R,    Qt::Key_Up,
                                               Qt::Key_Down,  Qt::Key_Left, Qt::Key_Right};
        if (!(key->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) &&
            std::ranges::find(kPreviewKeys, key->key()) != std::end(kPreviewKeys)) {
            event->accept();
            return true;
        }
    }
    return QWidget::event(event);
}

void SCOpenGLView::keyPressEvent(QKeyEvent* event)
{
    if (m_preview.forwardKey(event))
        event->accept();
    else
        QWidget::keyPressEvent(event);
}
