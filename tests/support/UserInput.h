#pragma once

// What the widget tests do as a user would: mouse and key events sent to a
// widget, scripts run once a modal dialog is up.

#include "support/TestEnvironment.h"

#include <QApplication>
#include <QDialog>
#include <QDialogButtonBox>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPushButton>
#include <QTimer>
#include <QWidget>

#include <gtest/gtest.h>

#include <functional>

namespace cwtest {

inline void mouse(QWidget* target, QEvent::Type type, const QPoint& at,
                  Qt::KeyboardModifiers modifiers = Qt::NoModifier, Qt::MouseButton button = Qt::LeftButton)
{
    const QPointF local(at);
    QMouseEvent event(type, local, local, target->mapToGlobal(local), button,
                      type == QEvent::MouseButtonRelease ? Qt::NoButton : button, modifiers);
    QApplication::sendEvent(target, &event);
}

inline void click(QWidget* target, const QPoint& at, Qt::KeyboardModifiers modifiers = Qt::NoModifier,
                  Qt::MouseButton button = Qt::LeftButton)
{
    mouse(target, QEvent::MouseButtonPress, at, modifiers, button);
    mouse(target, QEvent::MouseButtonRelease, at, modifiers, button);
}

inline void doubleClick(QWidget* target, const QPoint& at)
{
    click(target, at);
    mouse(target, QEvent::MouseButtonDblClick, at);
    mouse(target, QEvent::MouseButtonRelease, at);
}

inline void key(QWidget* target, int code, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    QKeyEvent press(QEvent::KeyPress, code, modifiers);
    QApplication::sendEvent(target, &press);
    QKeyEvent release(QEvent::KeyRelease, code, modifiers);
    QApplication::sendEvent(target, &release);
}

// Types the text into the field key by key.
inline void type(QWidget* field, const QString& text)
{
    for (const QChar c : text) {
        QKeyEvent press(QEvent::KeyPress, 0, Qt::NoModifier, QString(c));
        QApplication::sendEvent(field, &press);
    }
}

// Runs the script once the modal dialog about to be shown is up.
inline void whenShown(QWidget* dialog, const std::function<void()>& script)
{
    QTimer::singleShot(0, dialog, [dialog, script] {
        ASSERT_TRUE(dialog->isVisible());
        script();
    });
}

inline QPushButton* dialogButton(QWidget* dialog, QDialogButtonBox::StandardButton which)
{
    return dialog->findChild<QDialogButtonBox*>()->button(which);
}

} // namespace cwtest
