// The Combine Folders dialog driven as a user would.
#include "core/card/BLHouseKeepingCtrl.h"
#include "core/operations/BLFolderCombineCtrl.h"
#include "core/services/BLHeadlessProgressView.h"
#include "core/services/BLProgressCtrl.h"
#include "support/CardFolder.h"
#include "support/MessageRecorder.h"
#include "support/TestEnvironment.h"
#include "support/UserInput.h"
#include "ui/operations/FolderCombineDialog.h"

#include <QCheckBox>
#include <QFileInfo>
#include <QPushButton>
#include <QTableWidget>

#include <gtest/gtest.h>

using namespace cwtest;

// Start is enabled once a folder is ticked; the ticked folder's takes move
// and, with the switch on, the emptied folder goes.
TEST(FolderOperationDialogsTest, CombineDialogCombinesTheTickedFolder)
{
    ScopedHome home;
    MessageRecorder messages;
    BLHeadlessProgressView progress;
    BLProgressCtrl::sharedCtrl()->setView(&progress);
    const QString parent = home.path("media");
    for (const char* name : {"DEST", "SRC"}) {
        cardgen::Options options = CardFolder::fast(1);
        options.outputFolder = parent + "/" + name;
        options.manifestPath = home.path(QString(name) + ".json");
        options.prefix = name;
        options.recorded = QDateTime::currentDateTimeUtc().addDays(name[0] == 'D' ? -1 : 0);
        QString error;
        ASSERT_TRUE(cardgen::CardGenerator::generate(options, &error)) << error.toStdString();
    }
    DOClipCtrl record;
    record.setCopyToFolder(parent);
    record.setCopyToFolderName("DEST");
    record.setToTakes(BLHouseKeepingCtrl().doHouseKeeping(parent + "/DEST"));
    FolderCombineDialog dialog;
    BLFolderCombineCtrl ctrl(&dialog, record);
    whenShown(&dialog, [&] {
        ASSERT_EQ(dialog.table()->rowCount(), 1);
        EXPECT_EQ(dialog.table()->item(0, 0)->text(), "SRC");
        EXPECT_FALSE(dialog.okButton()->isEnabled());
        dialog.table()->item(0, 0)->setCheckState(Qt::Checked);
        EXPECT_TRUE(dialog.okButton()->isEnabled());
        dialog.deleteBox()->setChecked(true);
        dialog.okButton()->click();
    });
    EXPECT_TRUE(ctrl.showModal());
    EXPECT_TRUE(messages.keys().isEmpty()) << messages.keys().join(", ").toStdString();
    EXPECT_FALSE(QFileInfo::exists(parent + "/SRC"));
    EXPECT_EQ(BLHouseKeepingCtrl().doHouseKeeping(parent + "/DEST").size(), 2);
    BLProgressCtrl::sharedCtrl()->setView(nullptr);
}
