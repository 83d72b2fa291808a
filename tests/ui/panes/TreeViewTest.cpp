#include "core/card/BLTreeViewCtrl.h"
#include "support/FakeTreePane.h"
#include "support/MessageRecorder.h"
#include "support/TestEnvironment.h"
#include "support/UserInput.h"
#include "ui/panes/SCTreeView.h"

#include <QAction>
#include <QDir>
#include <QFile>
#include <QMenu>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <memory>

namespace {

using namespace cwtest;

class TreeViewTest : public HomeTest
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
    FakeTreePane m_pane;
    BLTreeViewCtrl m_tree{m_pane, &m_pane};
    std::unique_ptr<SCTreeView> m_view;
};

TEST_F(TreeViewTest, ClicksSelectAndDoubleClicksDescend)
{
    click(m_view->viewport(), centerOfRow(2));
    EXPECT_EQ(m_pane.selectFolder, m_work + "/b");
    mouse(m_view->viewport(), QEvent::MouseButtonDblClick, centerOfRow(2));
    mouse(m_view->viewport(), QEvent::MouseButtonRelease, centerOfRow(2));
    EXPECT_EQ(m_pane.workFolder, m_work + "/b");
    EXPECT_EQ(m_view->model()->rowCount(), 1);
    EXPECT_TRUE(m_tree.selectionModel()->isRowSelected(0));
}

TEST_F(TreeViewTest, TheContextMenuCarriesTheCommandsWithTheirTags)
{
    m_tree.selectTreeIndex(1); // "a": no new folder there
    const std::unique_ptr<QMenu> menu(m_view->makeContextMenu());

    // Each command carries its tag and is enabled as the list answers.
    const auto trigger = [&](int tag) {
        for (QAction* action : menu->actions())
            if (action->data().toInt() == tag)
                action->trigger();
    };
    for (QAction* action : menu->actions()) {
        bool enable = false;
        EXPECT_TRUE(action->isSeparator() ||
                    (m_tree.isSupportMenuItem(action->data().toInt(), &enable, nullptr) &&
                     action->isEnabled() == enable))
            << action->text().toStdString();
    }
    trigger(MENU_ITEM_ID_CHANGE_FOLDER_NAME);
    EXPECT_EQ(m_pane.commands, QList<int>{MENU_ITEM_ID_CHANGE_FOLDER_NAME});

    // "Open in File Manager" hands the folder to the desktop's opener; when
    // the opener finds no program for folders, a message says so.
    QTemporaryDir bin;
    const QByteArray path = qgetenv("PATH");
    qputenv("PATH", bin.path().toUtf8());
    auto openWith = [&](const QByteArray& script) {
        const QString opener = bin.filePath("xdg-open"), opened = bin.filePath("opened");
        writeFile(opener, "#!/bin/sh\necho \"$1\" > \"" + opened.toUtf8() + "\"\n" + script);
        QFile::setPermissions(opener, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        trigger(MENU_ITEM_ID_OPEN_IN_FINDER);
        waitFor([&] { return QFile::exists(opened); }, 5000);
        settle(200); // the opener's answer
        const QByteArray argument = readFile(opened).trimmed();
        QFile::remove(opened);
        return argument;
    };
    cwtest::MessageRecorder messages;
    EXPECT_EQ(openWith("exit 0\n"), (m_work + "/a").toUtf8());
    EXPECT_TRUE(messages.keys().isEmpty());
    EXPECT_EQ(openWith("exit 3\n"), (m_work + "/a").toUtf8());
    EXPECT_EQ(messages.keys(), QStringList{"MSG_632_3302"});
    qputenv("PATH", path);
}

} // namespace
