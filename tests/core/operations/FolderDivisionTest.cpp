// Dividing a generated card into folders of a small capacity: a take split
// over three folders, what stays behind, and a cancel or a vanished folder in
// the middle (everything back).
#include "OperationsTestSupport.h"
#include "core/card/BLHouseKeepingCtrl.h"
#include "core/card/BLMediaProCtrl.h"
#include "core/operations/BLFolderDivisionCtrl.h"
#include "core/operations/BLFolderDivisionThread.h"
#include "support/FakeVolumeProvider.h"

namespace {

class FolderDivisionTest : public optest::OperationTest
{
protected:
    void SetUp() override
    {
        OperationTest::SetUp();
        // Singles ABC0002 to ABC0005 (ABC0001 a loose MP4 file) and the take
        // ABC0006U01 of ABC0006 to ABC0008.
        cardgen::Options options = cwtest::CardFolder::fast(5, {3});
        options.damages.push_back(cwtest::damage(cardgen::Damage::Kind::Loose, 1));
        card = std::make_unique<cwtest::CardFolder>(options);
        ASSERT_TRUE(card->ok()) << card->error().toStdString();
        takes = BLHouseKeepingCtrl().doHouseKeeping(card->workFolder());
        ASSERT_EQ(takes.size(), 6);
        for (const DOTakeData& take : takes)
            largest = std::max({largest, take.getClipData().isEmpty() ? take.getTakeSize() : 0});
        const DOTakeData spanning = multi();
        for (const DOClipData& clip : spanning.getClipData())
            largest = std::max(largest, clip.getSize());
    }
    DOTakeData multi() const
    {
        return *std::find_if(takes.begin(), takes.end(),
                             [](const DOTakeData& t) { return !t.getClipData().isEmpty(); });
    }
    // The plan for disks holding one clip each, run by a worker with a hook.
    std::shared_ptr<optest::Paced<BLFolderDivisionThread>>
    run(BLFolderDivisionCtrl& ctrl, std::function<void(BLFolderDivisionThread&, double)> step)
    {
        QList<DOClipCtrl> records;
        EXPECT_TRUE(ctrl.planDivision(double(largest) * 1.2, records));
        ctrl.CreateMetaData(records);
        auto worker =
            std::make_shared<optest::Paced<BLFolderDivisionThread>>(std::move(step), records, takes);
        BLProgressCtrl::sharedCtrl()->showProgress(worker, true);
        return worker;
    }
    QStringList newFolders() const
    {
        return QDir(QFileInfo(card->workFolder()).path()).entryList({"card_*"}, QDir::Dirs);
    }

    std::unique_ptr<cwtest::CardFolder> card;
    QList<DOTakeData> takes;
    qint64 largest = 0;
};

} // namespace

// One clip per folder: seven new folders, the take in three numbered parts
// linked to their neighbours, the loose MP4 file left behind, and every
// folder's index listing what it holds.
TEST_F(FolderDivisionTest, CapacityTextsAndFolderNames)
{
    for (const auto& [text, bytes] :
         {std::pair<const char*, double>{"3.5", 0}, {"4", 4 * 1073741824.0}, {"4a", 0}}) {
        double parsed = 0;
        EXPECT_EQ(BLFolderDivisionCtrl::chkSize(text, &parsed), bytes > 0) << text;
        EXPECT_EQ(parsed, bytes) << text;
    }
    const QString shoot = home().path("media/SHOOT");
    ASSERT_TRUE(QDir().mkpath(shoot));
    EXPECT_EQ(BLFolderDivisionCtrl::createDivFolderName(2, shoot), QStringList({shoot + "_1", shoot + "_2"}));
    ASSERT_TRUE(QDir().mkpath(shoot + "_2"));
    EXPECT_EQ(BLFolderDivisionCtrl::createDivFolderName(2, shoot),
              QStringList({shoot + "_1_1", shoot + "_1_2"}));
    const QString volume = home().path("media/CARD");
    ASSERT_TRUE(QDir().mkpath(volume));
    cwtest::FakeVolumeProvider volumes;
    volumes.addVolume({volume, "vfat", "CARD", 8'000'000'000, 4'000'000'000});
    EXPECT_EQ(BLFolderDivisionCtrl::createDivFolderName(2, volume),
              QStringList({volume + "/_1", volume + "/_2"}));
}

TEST_F(FolderDivisionTest, ATakeSplitOverThreeFoldersBecomesThreeLinkedParts)
{
    BLFolderDivisionCtrl ctrl(nullptr, takes, card->workFolder(), nullptr);
    QList<DOClipCtrl> records;
    ASSERT_TRUE(ctrl.planDivision(double(largest) * 1.2, records));
    ASSERT_TRUE(ctrl.runDivision(records));
    EXPECT_TRUE(messages.keys().isEmpty()) << messages.keys().join(", ").toStdString();

    QMap<int, DOTakeData> parts; // by number
    QMap<int, QString> folders;
    for (const DOClipCtrl& record : ctrl.records())
        for (const DOTakeData& take : record.getToTakes())
            if (take.getTotalTakeCount() == 3) {
                parts.insert(take.getTakeNumber(), take);
                folders.insert(take.getTakeNumber(), record.destinationWorkFolder());
            }
    ASSERT_EQ(parts.keys(), QList<int>({1, 2, 3}));
    EXPECT_EQ(parts[1].getUmid(), multi().getUmid());
    for (int n = 1; n <= 3; ++n) {
        EXPECT_EQ(parts[n].getClipUmid(), QStringList{multi().getClipUmid(n - 1)});
        const auto links = [&](int other) {
            return BLMediaProCtrl().checkComponent(parts[n].getTakeComponents(), parts[other].getUmid());
        };
        EXPECT_EQ(links(n - 1), n > 1) << n;
        EXPECT_EQ(links(n + 1), n < 3) << n;
    }
    // A part's take info names the part that continues it.
    EXPECT_TRUE(cwtest::readFile(BLCommon::getPathOfBPAV(folders[1]) + "/" +
                                 BLCommon::removalDot(parts[1].getSMIUri()))
                    .contains(parts[2].getUmid().toLatin1()));

    // The divided folder keeps its loose MP4 file only; nothing needs repair.
    const QList<DOTakeData> left = BLHouseKeepingCtrl().doHouseKeeping(card->workFolder());
    ASSERT_EQ(left.size(), 1);
    EXPECT_EQ(left.front().getTakeStatus(), 4);
    EXPECT_EQ(newFolders().size(), 7);
    for (const QString& folder : newFolders()) {
        BLHouseKeepingCtrl divided;
        EXPECT_EQ(divided.doHouseKeeping(QFileInfo(card->workFolder()).path() + "/" + folder).size(), 1);
        EXPECT_TRUE(divided.getRepairs().isEmpty()) << folder.toStdString();
    }
}

// A cancel in the third folder, and a clip folder vanishing before its turn:
// every take back in the divided folder as it was, no new folder left.
TEST_F(FolderDivisionTest, ACancelOrAVanishedFolderPutsEverythingBack)
{
    const QMap<QString, QByteArray> before = optest::snapshot(card->workFolder());
    for (const bool cancel : {true, false}) {
        SCOPED_TRACE(cancel ? "cancel" : "vanished folder");
        BLFolderDivisionCtrl ctrl(nullptr, takes, card->workFolder(), nullptr);
        bool acted = false;
        QString vanished;
        const auto worker = run(ctrl, [&](BLFolderDivisionThread& thread, double done) {
            if (acted || done < 10)
                return;
            acted = true;
            if (cancel) {
                thread.setCancel();
                return;
            }
            // The clip folder of the last folder's first take, not moved yet.
            const DOTakeData last = thread.records().back().getFromTakes().front();
            vanished =
                QFileInfo(last.getClipData().isEmpty() ? last.getXMLUri() : last.getClipData(0).getXMLUri())
                    .path();
            ASSERT_TRUE(QDir(card->bpav() + "/" + vanished).exists());
            ASSERT_TRUE(QDir(card->bpav() + "/" + vanished).removeRecursively());
        });
        EXPECT_TRUE(acted);
        EXPECT_TRUE(worker->isRestored());
        EXPECT_FALSE(worker->isSucceeded());
        EXPECT_TRUE(newFolders().isEmpty()) << newFolders().join(", ").toStdString();
        QMap<QString, QByteArray> expected = before;
        if (!cancel)
            expected.removeIf([&](auto it) { return it.key().contains(BLCommon::removalDot(vanished)); });
        EXPECT_EQ(optest::snapshot(card->workFolder()), expected);
        EXPECT_EQ(messages.keys(), cancel ? QStringList() : QStringList({"MSG_653_3177"}));
    }
}
