#include "core/operations/BLDeleteFolderCtrl.h"
#include "core/operations/BLFolderNameCtrl.h"
#include "core/services/BLLocalizedStrings.h"
#include "support/MessageRecorder.h"
#include "support/TestEnvironment.h"
#include "ui/operations/DeleteFolderDialog.h"
#include "ui/operations/FolderNameDialog.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QDir>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTimer>

#include <gtest/gtest.h>

#include <functional>

namespace {

// Types the text into the focused field key by key, as a user would.
void type(QWidget* field, const QString& text)
{
    for (const QChar c : text) {
        QKeyEvent press(QEvent::KeyPress, 0, Qt::NoModifier, QString(c));
        QApplication::sendEvent(field, &press);
    }
}

void pressKey(QWidget* widget, int key)
{
    QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier);
    QApplication::sendEvent(widget, &press);
}

// Runs the script once the modal dialog is up.
void whenShown(QWidget* dialog, const std::function<void()>& script)
{
    QTimer::singleShot(0, dialog, [dialog, script] {
        ASSERT_TRUE(dialog->isVisible());
        script();
    });
}

} // namespace

class FolderDialogsTest : public cwtest::HomeTest
{
protected:
    void SetUp() override
    {
        HomeTest::SetUp();
        root = home().path("media");
        ASSERT_TRUE(QDir().mkpath(root));
    }
    QPushButton* button(QDialogButtonBox::StandardButton which)
    {
        return dialog.findChild<QDialogButtonBox*>()->button(which);
    }
    QStringList entries() const { return QDir(root).entryList(QDir::AllEntries | QDir::NoDotAndDotDot); }

    QString root;
    FolderNameDialog dialog;
    cwtest::MessageRecorder messages;
};

TEST_F(FolderDialogsTest, TypingANameAndPressingOkMakesTheFolder)
{
    BLFolderNameCtrl ctrl(&dialog);
    whenShown(&dialog, [&] {
        EXPECT_EQ(dialog.windowTitle(), BLLocalizedString("LOCALIZED_FOLDER_CREATE_TITLE"));
        EXPECT_EQ(button(QDialogButtonBox::Ok)->text(), BLLocalizedString("BTN_STYLE_OK"));
        EXPECT_EQ(button(QDialogButtonBox::Cancel)->text(), BLLocalizedString("BTN_STYLE_CANCEL"));
        EXPECT_EQ(dialog.locationField()->text(), "media");
        EXPECT_EQ(dialog.focusWidget(), dialog.nameField());
        type(dialog.nameField(), "bpav");
        button(QDialogButtonBox::Ok)->click(); // refused: the dialog stays
        EXPECT_TRUE(dialog.isVisible());
        dialog.nameField()->clear();
        type(dialog.nameField(), "Shoot 1");
        pressKey(dialog.nameField(), Qt::Key_Return);
    });
    EXPECT_TRUE(ctrl.showNewFolder(root));
    EXPECT_FALSE(dialog.isVisible());
    EXPECT_EQ(messages.keys(), QStringList({"MSG_651_3132"}));
    EXPECT_EQ(entries(), QStringList({"Shoot 1"}));

    // Rename: the field starts with the folder's name.
    whenShown(&dialog, [&] {
        EXPECT_EQ(dialog.windowTitle(), BLLocalizedString("LOCALIZED_FOLDER_CHANGE_TITLE"));
        EXPECT_EQ(dialog.nameField()->text(), "Shoot 1");
        EXPECT_EQ(dialog.nameField()->selectedText(), "Shoot 1");
        type(dialog.nameField(), "Interview");
        button(QDialogButtonBox::Ok)->click();
    });
    EXPECT_TRUE(ctrl.showRename(root + "/Shoot 1", root));
    EXPECT_EQ(entries(), QStringList({"Interview"}));
}

TEST_F(FolderDialogsTest, CancelAndEscapeDoNothing)
{
    BLFolderNameCtrl ctrl(&dialog);
    whenShown(&dialog, [&] {
        type(dialog.nameField(), "Shoot");
        button(QDialogButtonBox::Cancel)->click();
    });
    EXPECT_FALSE(ctrl.showNewFolder(root));
    whenShown(&dialog, [&] {
        type(dialog.nameField(), "Shoot");
        pressKey(&dialog, Qt::Key_Escape);
    });
    EXPECT_FALSE(ctrl.showNewFolder(root));
    EXPECT_FALSE(dialog.isVisible());
    EXPECT_TRUE(entries().isEmpty());
    EXPECT_TRUE(messages.alerts().isEmpty());
}

TEST_F(FolderDialogsTest, DeleteConfirmationNeedsTheYesButton)
{
    ASSERT_TRUE(QDir().mkpath(root + "/Old"));
    DeleteFolderDialog confirm;
    BLDeleteFolderCtrl ctrl(&confirm);

    whenShown(&confirm, [&] {
        EXPECT_EQ(confirm.windowTitle(), BLLocalizedString("LOCALIZED_FOLDER_DELETE_TITLE"));
        EXPECT_EQ(confirm.messageField()->text(), BLLocalizedString("MSG_655_3164"));
        EXPECT_EQ(confirm.folderField()->text(), "Old");
        EXPECT_EQ(confirm.yesButton()->text(), BLLocalizedString("BTN_STYLE_YES"));
        EXPECT_EQ(confirm.noButton()->text(), BLLocalizedString("BTN_STYLE_NO"));
        pressKey(&confirm, Qt::Key_Return); // the default answer is No
    });
    EXPECT_FALSE(ctrl.deleteProcessOfFolder(root + "/Old"));
    EXPECT_EQ(entries(), QStringList({"Old"}));

    whenShown(&confirm, [&] { confirm.yesButton()->click(); });
    EXPECT_TRUE(ctrl.deleteProcessOfFolder(root + "/Old"));
    EXPECT_TRUE(entries().isEmpty());
    EXPECT_TRUE(messages.alerts().isEmpty());
}
