// Moving takes between work folders on generated cards: no room needed on one
// volume, and what a cancel or a failure in the middle of a take leaves
// (every take back at the source, as it was).
#include "OperationsTestSupport.h"
#include "core/card/BLClipCtrl.h"
#include "core/card/BLHouseKeepingCtrl.h"
#include "core/operations/BLClipMoveCtrl.h"
#include "core/services/BLCommon.h"
#include "support/FakeVolumeProvider.h"

#include <QDateTime>

namespace {

QStringList idsOf(const QList<DOTakeData>& takes)
{
    QStringList ids;
    for (const DOTakeData& take : takes)
        ids << take.getShownTakeID();
    ids.sort();
    return ids;
}

class ClipMoveTest : public optest::OperationTest
{
protected:
    void SetUp() override
    {
        OperationTest::SetUp();
        // Singles ABC0001 to ABC0004 and ABC0005U01 of ABC0005 to ABC0007.
        card = std::make_unique<cwtest::CardFolder>(cwtest::CardFolder::fast(4, {3}));
        ASSERT_TRUE(card->ok()) << card->error().toStdString();
        takes = BLHouseKeepingCtrl().doHouseKeeping(card->workFolder());
        ASSERT_EQ(idsOf(takes), QStringList({"ABC0001", "ABC0002", "ABC0003", "ABC0004", "ABC0005U01"}));
    }
    const DOTakeData& take(const QString& id) const
    {
        return *std::find_if(takes.begin(), takes.end(),
                             [&](const DOTakeData& t) { return t.getShownTakeID() == id; });
    }
    // The record of a move of the card's takes with these IDs, in this order.
    DOClipCtrl record(const QStringList& ids, const QString& destination) const
    {
        DOClipCtrl clipCtrl;
        clipCtrl.setSourceWorkFolder(card->workFolder());
        clipCtrl.setDestinationWorkFolder(destination);
        QList<DOTakeData> chosen;
        for (const QString& id : ids)
            chosen << take(id).copyTake();
        clipCtrl.setFromTakes(chosen);
        clipCtrl.setBeforeTakes(takes);
        return clipCtrl;
    }
    // A card of one take OTH0001, scanned.
    static cwtest::CardFolder otherCard()
    {
        cardgen::Options options = cwtest::CardFolder::fast(1);
        options.prefix = "OTH";
        options.recorded = QDateTime::currentDateTimeUtc().addDays(-1); // other UMIDs
        cwtest::CardFolder other(options);
        BLHouseKeepingCtrl().doHouseKeeping(other.workFolder());
        return other;
    }
    // Runs the worker of a record whose checks passed, as the dialog does.
    std::shared_ptr<optest::Paced<BLClipMoveThread>> run(DOClipCtrl clipCtrl,
                                                         std::function<void(BLClipMoveThread&, double)> step)
    {
        BLClipCtrl checks;
        clipCtrl.setToTakes(BLHouseKeepingCtrl().doHouseKeeping(clipCtrl.destinationWorkFolder()));
        EXPECT_TRUE(checks.checkRepeatClip(clipCtrl));
        if (!BLCommon::isFolder(clipCtrl.destinationWorkFolder())) {
            EXPECT_TRUE(QDir().mkpath(clipCtrl.destinationWorkFolder()));
            clipCtrl.setNewFolderFlag(true);
        }
        auto worker = std::make_shared<optest::Paced<BLClipMoveThread>>(std::move(step), clipCtrl);
        BLProgressCtrl::sharedCtrl()->showProgress(worker, true);
        return worker;
    }

    std::unique_ptr<cwtest::CardFolder> card;
    QList<DOTakeData> takes;
};

} // namespace

// A disk without free space (a copy would be refused): a move within it goes,
// and afterwards each folder lists exactly what it holds.
TEST_F(ClipMoveTest, OnOneVolumeAMoveNeedsNoSpaceAndBothIndexesListWhatIsThere)
{
    cwtest::FakeVolumeProvider volumes({"/", "ext4", "System", 500'000'000'000, 0});
    const cwtest::CardFolder other = otherCard();
    ASSERT_TRUE(other.ok());
    const DOClipCtrl move = record({"ABC0002", "ABC0005U01"}, other.workFolder());
    optest::AnsweringTransferView view({QFileInfo(other.workFolder()).fileName()});
    BLClipMoveCtrl ctrl(&view, move, nullptr, nullptr);
    ASSERT_TRUE(ctrl.showModal());
    cwtest::settle();
    EXPECT_TRUE(messages.keys().isEmpty()) << messages.keys().join(", ").toStdString();
    EXPECT_EQ(updates, QStringList({card->workFolder(), other.workFolder()}));
    // Neither folder has anything left to repair.
    BLHouseKeepingCtrl source, destination;
    EXPECT_EQ(idsOf(source.doHouseKeeping(card->workFolder())),
              QStringList({"ABC0001", "ABC0003", "ABC0004"}));
    EXPECT_EQ(idsOf(destination.doHouseKeeping(other.workFolder())),
              QStringList({"ABC0002", "ABC0005U01", "OTH0001"}));
    EXPECT_TRUE(source.getRepairs().isEmpty() && destination.getRepairs().isEmpty());
}

// A move killed while writing its first journal leaves its temporary file
// and staging folder; the next load of the source removes both, and only them.
TEST_F(ClipMoveTest, TheNextLoadRemovesWhatAMoveKilledBeforeItsJournalLeft)
{
    const QString bpav = card->bpav();
    const QStringList before = QDir(bpav).entryList(QDir::AllEntries | QDir::NoDotAndDotDot);
    QFile temporary(bpav + "/..clipwright-move.json.Ab12Cd");
    ASSERT_TRUE(temporary.open(QIODevice::WriteOnly) && temporary.write("{\"pha") > 0);
    temporary.close();
    ASSERT_TRUE(QDir().mkpath(bpav + "/.clipwright-staging/CLPR"));
    EXPECT_EQ(idsOf(BLHouseKeepingCtrl().doHouseKeeping(card->workFolder())).size(), 5);
    EXPECT_EQ(QDir(bpav).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot), before);
}

// A cancel after the first clip folder of the third take: the first three
// takes go back, the partly moved one included, and the folder the move made
// goes too. A folder appearing in the way of the third take: the same, and
// the message names it.
TEST_F(ClipMoveTest, ACancelOrAFailureDuringTheThirdTakeMovesTheFirstThreeBack)
{
    const QMap<QString, QByteArray> before = optest::snapshot(card->workFolder());
    const QStringList order{"ABC0001", "ABC0002", "ABC0005U01", "ABC0003", "ABC0004"};

    const QString fresh = home().path("media/Fresh");
    double cancelledAt = 0;
    const auto cancelled = run(record(order, fresh), [&](BLClipMoveThread& worker, double done) {
        if (done >= 15 && cancelledAt == 0) { // two takes and one clip folder of five files
            cancelledAt = done;
            worker.setCancel();
        }
    });
    EXPECT_EQ(cancelledAt, 15);
    EXPECT_TRUE(cancelled->isRestored());
    EXPECT_EQ(optest::snapshot(card->workFolder()), before);
    EXPECT_FALSE(QFileInfo::exists(fresh));
    EXPECT_TRUE(messages.keys().isEmpty()) << messages.keys().join(", ").toStdString();

    const cwtest::CardFolder other = otherCard();
    ASSERT_TRUE(other.ok());
    const QMap<QString, QByteArray> otherBefore = optest::snapshot(other.workFolder());
    const QString blocker = other.bpav() + "/CLPR/ABC0005";
    const auto failed = run(record(order, other.workFolder()), [&](BLClipMoveThread&, double done) {
        if (done >= 10 && !QFileInfo::exists(blocker))
            QDir().mkpath(blocker);
    });
    EXPECT_FALSE(failed->isSucceeded());
    EXPECT_TRUE(failed->isRestored());
    EXPECT_EQ(optest::snapshot(card->workFolder()), before);
    ASSERT_TRUE(QDir().rmdir(blocker));
    EXPECT_EQ(optest::snapshot(other.workFolder()), otherBefore);
    ASSERT_EQ(messages.keys(), QStringList{"MSG_644_3300"});
    EXPECT_TRUE(messages.alerts()[0].message.contains(card->bpav() +
                                                      "/CLPR/ABC0005 could not be moved (File exists)"))
        << messages.alerts()[0].message.toStdString();
}
