#include "ui/app/RightClickActivationFilter.h"

#include <QGuiApplication>
#include <QMouseEvent>
#include <QWidget>
#include <QWindow>

namespace {
bool isRightButton(const QEvent* event)
{
    return static_cast<const QMouseEvent*>(event)->button() == Qt::RightButton;
}

void activate(QObject* target)
{
    if (auto* window = qobject_cast<QWindow*>(target)) {
        window->raise();
        window->requestActivate();
    } else if (auto* widget = qobject_cast<QWidget*>(target)) {
        widget->window()->raise();
        widget->window()->activateWindow();
    }
}
} // namespace

bool RightClickActivationFilter::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
        // The window system hands a press to the window first, so swallowing
        // it there also keeps Qt from making a context-menu event of it.
        if (isRightButton(event) && QGuiApplication::focusWindow() == nullptr) {
            activate(watched);
            m_swallowRelease = true;
            return true;
        }
        break;
    case QEvent::MouseButtonRelease:
        if (m_swallowRelease && isRightButton(event)) {
            m_swallowRelease = false;
            return true;
        }
        break;
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}
