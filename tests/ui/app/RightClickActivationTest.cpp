#include "support/UserInput.h"
#include "ui/app/RightClickActivationFilter.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QWidget>
#include <QWindow>

#include <gtest/gtest.h>

namespace {

class ClickTarget : public QWidget
{
public:
    int presses = 0;
    int contextMenus = 0;

protected:
    void mousePressEvent(QMouseEvent*) override { ++presses; }
    void contextMenuEvent(QContextMenuEvent*) override { ++contextMenus; }
};

// A right click as the window system delivers it: to the window first.
void rightClick(QWidget& target)
{
    const QPointF local(10, 10);
    const QPointF global = target.mapToGlobal(local);
    QMouseEvent press(QEvent::MouseButtonPress, local, local, global, Qt::RightButton, Qt::RightButton,
                      Qt::NoModifier);
    QApplication::sendEvent(target.windowHandle(), &press);
    QMouseEvent release(QEvent::MouseButtonRelease, local, local, global, Qt::RightButton, Qt::NoButton,
                        Qt::NoModifier);
    QApplication::sendEvent(target.windowHandle(), &release);
}

} // namespace

TEST(RightClickActivationTest, ARightClickOnAnInactiveProgramOnlyActivatesIt)
{
    RightClickActivationFilter filter;
    qApp->installEventFilter(&filter);
    ClickTarget target;
    target.resize(200, 150);
    target.show();

    // Another window takes the focus and goes away: none of ours has it now.
    {
        QWidget other;
        other.show();
        other.activateWindow();
        ASSERT_TRUE(cwtest::waitFor([&] { return other.isActiveWindow(); }));
        other.hide();
    }
    ASSERT_TRUE(cwtest::waitFor([] { return QGuiApplication::focusWindow() == nullptr; }));

    rightClick(target);
    EXPECT_TRUE(cwtest::waitFor([&] { return target.isActiveWindow(); }));
    EXPECT_EQ(target.presses, 0);
    EXPECT_EQ(target.contextMenus, 0);

    // Once active, a right click reaches the window and opens its context menu.
    rightClick(target);
    EXPECT_EQ(target.presses, 1);
    EXPECT_EQ(target.contextMenus, 1);
    qApp->removeEventFilter(&filter);
}
