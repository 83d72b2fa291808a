#include "core/card/BLHouseKeepingCtrl.h"
#include "core/operations/BLClipPropertyCtrl.h"
#include "core/operations/search/BLClipSearchCtrl.h"
#include "support/CardFolder.h"
#include "support/MessageRecorder.h"
#include "support/TestEnvironment.h"
#include "ui/operations/ClipPropertyDialog.h"
#include "ui/operations/ClipSearchDialog.h"

#include <QApplication>
#include <QLineEdit>
#include <QPushButton>
#include <QTableView>
#include <QTimer>

#include <gtest/gtest.h>

using ClipDialogsTest = cwtest::HomeTest;

TEST_F(ClipDialogsTest, SearchListsTheHitAndADoubleClickChoosesItThePropertyDialogWritesTheTitle)
{
    cwtest::CardFolder card(cwtest::CardFolder::fast(3));
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    cwtest::MessageRecorder messages;
    const cardgen::ManifestTake& second = card.manifest().takes[1];

    ClipSearchDialog search;
    BLClipSearchCtrl ctrl(&search, {});
    ctrl.setPath(card.workFolder());
    QTimer::singleShot(0, &search, [&] {
        search.titleField()->setText(second.takeId); // cardgen titles a take after its ID
        search.searchButton()->click();
        EXPECT_FALSE(search.closeButton()->isEnabled());
        EXPECT_TRUE(search.cancelButton()->isEnabled());
        ASSERT_TRUE(cwtest::waitFor([&] { return !ctrl.isSearching(); }));
        ASSERT_EQ(search.tableView()->model()->rowCount(), 1);
        search.tableView()->selectRow(0);
        emit search.tableView()->doubleClicked(search.tableView()->model()->index(0, 1));
    });
    QString umid, path;
    ASSERT_TRUE(ctrl.showModal(&umid, &path));
    EXPECT_EQ(umid, second.umid);
    EXPECT_EQ(path, card.workFolder());

    const QList<DOTakeData> takes = BLHouseKeepingCtrl().doHouseKeeping(card.workFolder());
    ClipPropertyDialog properties;
    BLClipPropertyCtrl property(&properties, takes.at(0), 0, card.workFolder(), nullptr);
    QTimer::singleShot(0, &properties, [&] {
        EXPECT_EQ(properties.windowTitle(), takes.at(0).getTakeID());
        properties.lineEdit(IClipPropertyView::UsAscii)->setText(QStringLiteral(" Harbour "));
        properties.accept();
    });
    EXPECT_TRUE(property.showModal());
    EXPECT_TRUE(messages.keys().isEmpty());
    EXPECT_EQ(BLHouseKeepingCtrl().doHouseKeeping(card.workFolder()).at(0).getUsAscii(), "Harbour");
}
