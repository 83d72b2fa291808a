#include "core/operations/BLDeleteFolderCtrl.h"
#include "core/operations/BLFolderNameCtrl.h"
#include "core/services/BLLocalizedStrings.h"
#include "support/MessageRecorder.h"
#include "support/TestEnvironment.h"
#include "support/UserInput.h"
#include "ui/operations/DeleteFolderDialog.h"
#include "ui/operations/FolderNameDialog.h"

#include <QDialogButtonBox>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include <gtest/gtest.h>

using namespace cwtest;

class FolderDialogsTest : public HomeTest
{
protected:
    void SetUp() override
    {
        HomeTest::SetUp();
        root = home().path("media");
        ASSERT_TRUE(QDir().mkpath(root));
    }
    QPushButton* button(QDialogButtonBox::StandardButton which) { return dialogButton(&dialog, which); }
    QStringList entries() const { return QDir(root).entryList(QDir::AllEntries | QDir::NoDotAndDotDot); }

    QString root;
    FolderNameDialog dialog;
    MessageRecorder messages;
};

// Cancel does nothing; a refused name keeps the dialog open; Return
// makes the folder. Rename starts with the folder's name selected.
TEST_F(FolderDialogsTest, TypingANameAndPressingOkMakesTheFolder)
{
    BLFolderNameCtrl ctrl(&dialog);
    whenShown(&dialog, [&] {
        type(dialog.nameField(), "Shoot");
        button(QDialogButtonBox::Cancel)->click();
    });
    EXPECT_FALSE(ctrl.showNewFolder(root));
    EXPECT_TRUE(entries().isEmpty());

    whenShown(&dialog, [&] {
        EXPECT_EQ(dialog.locationField()->text(), "media");
        EXPECT_EQ(dialog.focusWidget(), dialog.nameField());
        type(dialog.nameField(), "bpav");
        button(QDialogButtonBox::Ok)->click(); // refused: the dialog stays
        EXPECT_TRUE(dialog.isVisible());
        dialog.nameField()->clear();
        type(dialog.nameField(), "Shoot 1");
        key(dialog.nameField(), Qt::Key_Return);
    });
    EXPECT_TRUE(ctrl.showNewFolder(root));
    EXPECT_FALSE(dialog.isVisible());
    EXPECT_EQ(messages.keys(), QStringList({"MSG_651_3132"}));
    EXPECT_EQ(entries(), QStringList({"Shoot 1"}));

    whenShown(&dialog, [&] {
        EXPECT_EQ(dialog.nameField()->selectedText(), "Shoot 1");
        type(dialog.nameField(), "Interview");
        button(QDialogButtonBox::Ok)->click();
    });
    EXPECT_TRUE(ctrl.showRename(root + "/Shoot 1", root));
    EXPECT_EQ(entries(), QStringList({"Interview"}));
}

// The default answer is No; only Yes deletes.
TEST_F(FolderDialogsTest, DeleteConfirmationNeedsTheYesButton)
{
    ASSERT_TRUE(QDir().mkpath(root + "/Old"));
    DeleteFolderDialog confirm;
    BLDeleteFolderCtrl ctrl(&confirm);
    whenShown(&confirm, [&] {
        EXPECT_EQ(confirm.folderField()->text(), "Old");
        key(&confirm, Qt::Key_Return);
    });
    EXPECT_FALSE(ctrl.deleteProcessOfFolder(root + "/Old"));
    EXPECT_EQ(entries(), QStringList({"Old"}));

    whenShown(&confirm, [&] { confirm.yesButton()->click(); });
    EXPECT_TRUE(ctrl.deleteProcessOfFolder(root + "/Old"));
    EXPECT_TRUE(entries().isEmpty());
    EXPECT_TRUE(messages.alerts().isEmpty());
}
