#include "OperationsTestSupport.h"

#include "core/operations/BLClipboardCtrl.h"
#include "core/card/DOClipCtrl.h"
#include "support/CardFolder.h"
#include "support/QtPrinters.h"

#include <QFile>
#include <QFileInfo>

#include <gtest/gtest.h>

class ClipboardTest : public cwtest::HomeTest
{
};

TEST_F(ClipboardTest, CutAndCopyKeepCopiesOfTheTakesAndTheirFolder)
{
    cardgen::Options options = cwtest::CardFolder::fast(2);
    cwtest::CardFolder card(options);
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    QList<DOTakeData> takes = optest::loadTakes(card.workFolder());
    takes[0].setTcFps("30");

    BLClipboardCtrl* clipboard = BLClipboardCtrl::sharedCtrl();
    EXPECT_EQ(clipboard->getMode(), BLClipboardCtrl::kModeEmpty);
    clipboard->setClipData(takes, card.workFolder(), BLClipboardCtrl::kModeCopy);
    EXPECT_EQ(clipboard->getMode(), BLClipboardCtrl::kModeCopy);
    EXPECT_EQ(clipboard->getPath(), card.workFolder());
    ASSERT_EQ(clipboard->getTakeDatas().size(), 2);
    EXPECT_EQ(clipboard->getTakeDatas().at(1).getUmid(), takes.at(1).getUmid());
    EXPECT_EQ(clipboard->getTakeDatas().at(0).getTcFps(), ""); // copyTake leaves the time code rate out
    takes[1].setUmid("changed");
    EXPECT_NE(clipboard->getTakeDatas().at(1).getUmid(), "changed");

    clipboard->setClipData(takes.mid(0, 1), card.workFolder(), BLClipboardCtrl::kModeCut);
    EXPECT_EQ(clipboard->getMode(), BLClipboardCtrl::kModeCut);
    EXPECT_EQ(clipboard->getTakeDatas().size(), 1);

    // Nothing to keep empties the clipboard.
    for (auto [list, path, mode] :
         {std::tuple{takes, QString(), BLClipboardCtrl::kModeCopy},
          std::tuple{QList<DOTakeData>(), card.workFolder(), BLClipboardCtrl::kModeCut},
          std::tuple{takes, card.workFolder(), BLClipboardCtrl::kModeEmpty}}) {
        clipboard->setClipData(takes, card.workFolder(), BLClipboardCtrl::kModeCopy);
        clipboard->setClipData(list, path, mode);
        EXPECT_EQ(clipboard->getMode(), BLClipboardCtrl::kModeEmpty);
        EXPECT_TRUE(clipboard->getTakeDatas().isEmpty());
        EXPECT_EQ(clipboard->getPath(), "");
    }

    BLClipboardCtrl::releaseCtrl();
    EXPECT_EQ(BLClipboardCtrl::sharedCtrl()->getMode(), BLClipboardCtrl::kModeEmpty);
}

TEST_F(ClipboardTest, PasteIsOfferedOnlyForTakesThatCanStillBeCopiedElsewhere)
{
    cardgen::Options options = cwtest::CardFolder::fast(2);
    QString error;
    options.damages.push_back(*cardgen::Damage::parse("loose@2", &error));
    cwtest::CardFolder card(options);
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    const QList<DOTakeData> takes = optest::loadTakes(card.workFolder());
    ASSERT_EQ(takes.at(1).getTakeStatus(), 4);
    const QString elsewhere = card.workFolder() + "/../elsewhere";
    BLClipboardCtrl* clipboard = BLClipboardCtrl::sharedCtrl();

    EXPECT_FALSE(clipboard->checkPaste(elsewhere)); // empty

    clipboard->setClipData({takes.at(0)}, card.workFolder(), BLClipboardCtrl::kModeCopy);
    EXPECT_TRUE(clipboard->checkPaste(elsewhere));
    EXPECT_FALSE(clipboard->checkPaste(""));
    EXPECT_FALSE(clipboard->checkPaste(card.workFolder()));
    EXPECT_FALSE(clipboard->checkPaste(card.workFolder().toUpper()));
    EXPECT_FALSE(clipboard->checkPaste(card.workFolder() + "/"));

    // A loose MP4 file cannot be pasted, nor an unusable take.
    clipboard->setClipData({takes.at(0), takes.at(1)}, card.workFolder(), BLClipboardCtrl::kModeCut);
    EXPECT_FALSE(clipboard->checkPaste(elsewhere));
    DOTakeData unusable = takes.at(0);
    unusable.setTakeStatus(5);
    clipboard->setClipData({unusable}, card.workFolder(), BLClipboardCtrl::kModeCopy);
    EXPECT_FALSE(clipboard->checkPaste(elsewhere));

    // Nor takes whose files have gone since.
    clipboard->setClipData({takes.at(0)}, card.workFolder(), BLClipboardCtrl::kModeCut);
    ASSERT_TRUE(QFile::remove(card.bpav() + "/CLPR/ABC0001/ABC0001R01.BIM"));
    EXPECT_FALSE(clipboard->checkPaste(elsewhere));
}

TEST(ClipCtrlRecordTest, ListsAreEditedInPlaceAndRecordsOrderByTheirFirstTake)
{
    DOClipCtrl record;
    const auto take = [](const QString& umid, const QString& date) {
        DOTakeData t;
        t.setUmid(umid);
        t.setCreationDate(date);
        return t;
    };
    record.setToTake(take("B", ""));
    record.setToTake(take("A", ""), 0);
    record.setToTake(take("X", ""), 5); // outside the list: nothing
    record.setToTake(take("C", ""), 2);
    record.delToTake(1);
    record.delToTake(7);
    QStringList umids;
    for (const DOTakeData& t : record.getToTakes())
        umids << t.getUmid();
    EXPECT_EQ(umids, QStringList({"A", "C"}));
    record.addDelUmid("U1");
    record.addDelUmid("U2");
    record.delDelUmid(0);
    EXPECT_EQ(record.getDelUmid(), QStringList({"U2"}));

    record.setCopyFromPath("/media/CARD");
    record.setCopyFromFolderName("Shoot");
    record.setCopyToFolder("/home/u/");
    record.setCopyToFolderName("Dest");
    EXPECT_EQ(record.sourceWorkFolder(), "/media/CARD/Shoot");
    EXPECT_EQ(record.destinationWorkFolder(), "/home/u/Dest");

    // Ordered by the clip creation date of the first chosen take, ignoring case.
    DOClipCtrl early;
    early.setFromTakes({take("E", "2009-03-05t10:00:00Z"), take("F", "2010-01-01T00:00:00Z")});
    DOClipCtrl late;
    late.setFromTakes({take("L", "2009-03-05T11:00:00Z")});
    EXPECT_EQ(early.getCreationDate(), "2009-03-05t10:00:00Z");
    EXPECT_LT(early.compareByTakeCreationDate(late), 0);
    EXPECT_GT(late.compareByTakeCreationDate(early), 0);
    DOClipCtrl same;
    same.setFromTakes({take("S", "2009-03-05T10:00:00z")});
    EXPECT_EQ(early.compareByTakeCreationDate(same), 0);
}
