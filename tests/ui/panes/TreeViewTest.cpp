#include "core/card/BLTreeViewCtrl.h"
#include "support/FakeTreePane.h"
#include "support/MessageRecorder.h"
#include "support/TestEnvironment.h"
#include "ui/panes/SCTreeView.h"

#include <QAction>
#include <QApplication>
#include <QContextMenuEvent>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenu>
#include <QMouseEvent>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

#include <memory>

namespace {

void mouse(QWidget* target, QEvent::Type type, const QPoint& at, Qt::MouseButton button)
{
    const QPointF local(at);
    QMouseEvent event(type, local, local, target->mapToGlobal(local), button,
                      type == QEvent::MouseButtonRelease ? Qt::NoButton : button, Qt::NoModifier);
    QApplication::sendEvent(target, &event);
}

class TreeViewTest : public cwtest::HomeTest
{
protected:
    void SetUp() override
    {
        HomeTest::SetUp();
        ASSERT_TRUE(m_dir.isValid());
        m_work = m_dir.filePath("work");
        ASSERT_TRUE(QDir().mkpath(m_work + "/a"));
        ASSERT_TRUE(QDir().mkpath(m_work + "/b"));
        m_pane.workFolder = m_work;
        m_pane.attach(m_tree);
        m_tree.updateData(false);
        m_view = std::make_unique<SCTreeView>(&m_tree);
        m_view->resize(240, 300);
        m_view->show();
    }

    void TearDown() override
    {
        m_view.reset();
        HomeTest::TearDown();
    }

    QPoint centerOfRow(int row) const { return m_view->visualRect(m_tree.index(row)).center(); }

    QTemporaryDir m_dir;
    QString m_work;
    cwtest::FakeTreePane m_pane;
    BLTreeViewCtrl m_tree{m_pane, &m_pane};
    std::unique_ptr<SCTreeView> m_view;
};

TEST_F(TreeViewTest, ClicksSelectAndDoubleClicksDescend)
{
    EXPECT_EQ(m_view->model(), &m_tree);
    EXPECT_EQ(m_view->selectionModel(), m_tree.selectionModel());
    EXPECT_EQ(m_view->currentIndex().row(), 0);

    // The folders below the work folder are drawn indented.
    ASSERT_TRUE(QDir().mkpath(m_work + "/work"));
    m_tree.updateData(false);
    ASSERT_EQ(m_tree.data(m_tree.index(3)).toString(), "work");
    EXPECT_GT(m_view->sizeHintForIndex(m_tree.index(3)).width(),
              m_view->sizeHintForIndex(m_tree.index(0)).width());

    QWidget* viewport = m_view->viewport();
    mouse(viewport, QEvent::MouseButtonPress, centerOfRow(2), Qt::LeftButton);
    mouse(viewport, QEvent::MouseButtonRelease, centerOfRow(2), Qt::LeftButton);
    EXPECT_EQ(m_pane.selectFolder, m_work + "/b");

    mouse(viewport, QEvent::MouseButtonDblClick, centerOfRow(2), Qt::LeftButton);
    mouse(viewport, QEvent::MouseButtonRelease, centerOfRow(2), Qt::LeftButton);
    EXPECT_EQ(m_pane.workFolder, m_work + "/b");
    EXPECT_EQ(m_view->model()->rowCount(), 1);
    EXPECT_TRUE(m_tree.selectionModel()->isRowSelected(0));
}

TEST_F(TreeViewTest, TheContextMenuCarriesTheCommandsWithTheirTags)
{
    m_tree.selectTreeIndex(1); // "a": no new folder there
    const std::unique_ptr<QMenu> menu(m_view->makeContextMenu());

    QList<int> tags;
    QStringList disabled;
    int separators = 0;
    for (QAction* action : menu->actions()) {
        if (action->isSeparator()) {
            ++separators;
            continue;
        }
        tags << action->data().toInt();
        if (!action->isEnabled())
            disabled << action->text();
    }
    EXPECT_EQ(tags, (QList<int>{MENU_ITEM_ID_NEW_FOLDER, MENU_ITEM_ID_CHANGE_FOLDER_NAME, MENU_ITEM_ID_DELETE,
                                MENU_ITEM_ID_OPEN_IN_FINDER, MENU_ITEM_ID_CLIP_SEARCH, MENU_ITEM_ID_ALL_COPY,
                                MENU_ITEM_ID_FOLDER_DIVISION, MENU_ITEM_ID_FOLDER_COMBINE,
                                MENU_ITEM_ID_MEDIA_NAME_CHANGE, MENU_ITEM_ID_VERIFY_FOLDER,
                                MENU_ITEM_ID_CHANGE_WORK_FOLDER, MENU_ITEM_ID_MOVE_UP_FOLDER,
                                MENU_ITEM_ID_OFFLOAD}));
    EXPECT_EQ(separators, 3);
    EXPECT_EQ(disabled, (QStringList{"New Folder...", "Copy All Clips to the Other Pane...",
                                     "Divide Folder...", "Change Media Name...", "Verify Folder..."}));

    for (QAction* action : menu->actions())
        if (action->data().toInt() == MENU_ITEM_ID_CHANGE_FOLDER_NAME)
            action->trigger();
    EXPECT_EQ(m_pane.commands, QList<int>{MENU_ITEM_ID_CHANGE_FOLDER_NAME});

    // "Open in File Manager" hands the folder to the desktop's opener; when
    // the opener finds no program for folders, a message says so.
    QTemporaryDir bin;
    const QByteArray path = qgetenv("PATH");
    qputenv("PATH", bin.path().toUtf8());
    auto openWith = [&](const QByteArray& script) {
        QFile opener(bin.filePath("xdg-open"));
        opener.open(QIODevice::WriteOnly | QIODevice::Truncate);
        opener.write("#!/bin/sh\necho \"$1\" > \"" + bin.filePath("opened").toUtf8() + "\"\n" + script);
        opener.close();
        opener.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        for (QAction* action : menu->actions())
            if (action->data().toInt() == MENU_ITEM_ID_OPEN_IN_FINDER)
                action->trigger();
        QElapsedTimer timer;
        timer.start();
        while (!QFile::exists(bin.filePath("opened")) && timer.elapsed() < 5000)
            QApplication::processEvents(QEventLoop::AllEvents, 10);
        QTest::qWait(200); // the opener's answer
        QFile opened(bin.filePath("opened"));
        opened.open(QIODevice::ReadOnly);
        const QByteArray argument = opened.readAll().trimmed();
        opened.remove();
        return argument;
    };
    cwtest::MessageRecorder messages;
    EXPECT_EQ(openWith("exit 0\n"), (m_work + "/a").toUtf8());
    EXPECT_TRUE(messages.keys().isEmpty());
    EXPECT_EQ(openWith("exit 3\n"), (m_work + "/a").toUtf8());
    EXPECT_EQ(messages.keys(), QStringList{"MSG_632_3302"});
    qputenv("PATH", path);
}

TEST_F(TreeViewTest, TheDeleteKeyDeletesTheSelectedFolderWhenAllowed)
{
    m_tree.selectTreeIndex(2);
    QKeyEvent press(QEvent::KeyPress, Qt::Key_Delete, Qt::NoModifier);
    QApplication::sendEvent(m_view.get(), &press);
    EXPECT_EQ(m_pane.commands, QList<int>{MENU_ITEM_ID_DELETE});

    m_tree.selectTreeIndex(-1); // nothing to delete
    QApplication::sendEvent(m_view.get(), &press);
    EXPECT_EQ(m_pane.commands.size(), 1);

    // Other keys still move the selection.
    m_tree.selectTreeIndex(1);
    QKeyEvent down(QEvent::KeyPress, Qt::Key_Down, Qt::NoModifier);
    QApplication::sendEvent(m_view.get(), &down);
    EXPECT_EQ(m_pane.selectFolder, m_work + "/b");
}

TEST_F(TreeViewTest, ARightClickFocusesTheListAndSelectsTheRowBeforeTheMenu)
{
    QWidget window;
    auto* field = new QLineEdit(&window);
    auto* view = new SCTreeView(&m_tree, &window);
    view->setGeometry(0, 40, 240, 200);
    window.resize(240, 240);
    window.show();
    field->setFocus();
    ASSERT_EQ(window.focusWidget(), field);

    QWidget* viewport = view->viewport();
    const QPoint at = view->visualRect(m_tree.index(1)).center();
    mouse(viewport, QEvent::MouseButtonPress, at, Qt::RightButton);
    mouse(viewport, QEvent::MouseButtonRelease, at, Qt::RightButton);
    EXPECT_EQ(m_pane.selectFolder, m_work + "/a");

    bool menuShown = false;
    QTimer::singleShot(0, [&] {
        if (QWidget* popup = QApplication::activePopupWidget()) {
            menuShown = qobject_cast<QMenu*>(popup) != nullptr;
            popup->close();
        }
    });
    QContextMenuEvent event(QContextMenuEvent::Mouse, at, viewport->mapToGlobal(at));
    QApplication::sendEvent(viewport, &event);
    EXPECT_TRUE(menuShown);
    EXPECT_EQ(window.focusWidget(), view);
}

} // namespace
