#include "OperationsTestSupport.h"

#include "core/card/DOClipCtrl.h"
#include "core/operations/BLClipboardCtrl.h"

using ClipboardTest = cwtest::HomeTest;

TEST_F(ClipboardTest, KeepsCopiesOfTheTakesAndOffersPasteOnlyForTakesThatCanStillBeCopied)
{
    cardgen::Options options = cwtest::CardFolder::fast(2);
    options.damages = {cwtest::damage(cardgen::Damage::Kind::Loose, 2)};
    cwtest::CardFolder card(options);
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    QList<DOTakeData> takes = optest::loadTakes(card.workFolder());
    ASSERT_EQ(takes.at(1).getTakeStatus(), 4);
    const QString elsewhere = card.workFolder() + "/../elsewhere";
    BLClipboardCtrl* clipboard = BLClipboardCtrl::sharedCtrl();
    EXPECT_FALSE(clipboard->checkPaste(elsewhere)); // empty

    // The takes are copies: a later change to the list does not reach them.
    clipboard->setClipData(takes, card.workFolder(), BLClipboardCtrl::kModeCopy);
    const QString umid = takes[0].getUmid();
    takes[0].setUmid("changed");
    EXPECT_EQ(clipboard->getTakeDatas().at(0).getUmid(), umid);
    const QList<DOTakeData> one = optest::loadTakes(card.workFolder()).mid(0, 1);
    clipboard->setClipData(one, card.workFolder(), BLClipboardCtrl::kModeCopy);
    EXPECT_TRUE(clipboard->checkPaste(elsewhere));
    // Not into the folder they came from, however it is spelled.
    for (const QString& folder :
         {QString(), card.workFolder(), card.workFolder().toUpper(), card.workFolder() + "/"})
        EXPECT_FALSE(clipboard->checkPaste(folder)) << folder.toStdString();

    // Nothing to keep empties the clipboard.
    for (auto [list, path, mode] :
         {std::tuple{one, QString(), BLClipboardCtrl::kModeCopy},
          std::tuple{QList<DOTakeData>(), card.workFolder(), BLClipboardCtrl::kModeCut},
          std::tuple{one, card.workFolder(), BLClipboardCtrl::kModeEmpty}}) {
        clipboard->setClipData(one, card.workFolder(), BLClipboardCtrl::kModeCopy);
        clipboard->setClipData(list, path, mode);
        EXPECT_EQ(clipboard->getMode(), BLClipboardCtrl::kModeEmpty);
        EXPECT_TRUE(clipboard->getTakeDatas().isEmpty());
        EXPECT_FALSE(clipboard->checkPaste(elsewhere));
    }

    // A loose MP4 file cannot be pasted, nor an unusable take, nor a take
    // whose files have gone since.
    DOTakeData unusable = one[0];
    unusable.setTakeStatus(5);
    for (const QList<DOTakeData>& kept : {QList<DOTakeData>{one[0], takes[1]}, QList<DOTakeData>{unusable}}) {
        clipboard->setClipData(kept, card.workFolder(), BLClipboardCtrl::kModeCut);
        EXPECT_FALSE(clipboard->checkPaste(elsewhere));
    }
    clipboard->setClipData(one, card.workFolder(), BLClipboardCtrl::kModeCut);
    ASSERT_TRUE(QFile::remove(card.bpav() + "/CLPR/ABC0001/ABC0001R01.BIM"));
    EXPECT_FALSE(clipboard->checkPaste(elsewhere));
    BLClipboardCtrl::releaseCtrl();
}

// Operation records run in the order of the clip creation date of their
// first take, compared without regard to case.
TEST(ClipCtrlRecordTest, RecordsOrderByTheirFirstTakesCreationDate)
{
    const auto record = [](const QStringList& dates) {
        QList<DOTakeData> takes;
        for (const QString& date : dates) {
            takes << DOTakeData();
            takes.back().setCreationDate(date);
        }
        DOClipCtrl r;
        r.setFromTakes(takes);
        return r;
    };
    const DOClipCtrl early = record({"2009-03-05t10:00:00Z", "2010-01-01T00:00:00Z"});
    const DOClipCtrl late = record({"2009-03-05T11:00:00Z"});
    EXPECT_LT(early.compareByTakeCreationDate(late), 0);
    EXPECT_GT(late.compareByTakeCreationDate(early), 0);
    EXPECT_EQ(early.compareByTakeCreationDate(record({"2009-03-05T10:00:00z"})), 0);
}
