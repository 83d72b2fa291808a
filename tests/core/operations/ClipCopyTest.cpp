// Copying takes between work folders on generated cards: what arrives and
// what the checks of OK refuse. What a failure or a cancel leaves (nothing of
// the copy; both take one way back) is checked by the copy command's test.
#include "OperationsTestSupport.h"
#include "core/card/BLHouseKeepingCtrl.h"
#include "core/formats/metadata/BLMediaProfileAcss.h"
#include "core/operations/BLClipCopyCtrl.h"
#include "core/services/BLCommon.h"

namespace {

// Every entry under a folder with its size, time stamp and contents.
QMap<QString, QByteArray> footprint(const QString& root)
{
    QMap<QString, QByteArray> entries = optest::snapshot(root);
    for (auto it = entries.begin(); it != entries.end(); ++it) {
        const QFileInfo info(root + "/" + it.key());
        it.value() += " " + QByteArray::number(info.size()) + " " +
                      QByteArray::number(info.lastModified().toMSecsSinceEpoch());
    }
    return entries;
}

// Takes as "UMID status", sorted.
QStringList described(const QList<DOTakeData>& takes)
{
    QStringList lines;
    for (const DOTakeData& take : takes)
        lines << take.getUmid() + " " + QString::number(take.getTakeStatus());
    lines.sort();
    return lines;
}

QList<DOTakeData> copyable(const QList<DOTakeData>& takes)
{
    QList<DOTakeData> chosen;
    for (const DOTakeData& take : takes)
        if (take.getTakeStatus() < 4)
            chosen << take.copyTake();
    return chosen;
}

} // namespace

class ClipCopyTest : public optest::OperationTest
{
protected:
    // The record of a copy of the source's takes (all, or those given) to a
    // folder proposed by name beside the source's parent's "media" folder.
    DOClipCtrl record(const QString& source, const QList<DOTakeData>& takes, const QString& destination)
    {
        DOClipCtrl clipCtrl;
        clipCtrl.setSourceWorkFolder(source);
        clipCtrl.setDestinationWorkFolder(destination);
        clipCtrl.setFromTakes(takes);
        return clipCtrl;
    }
    bool copy(const DOClipCtrl& clipCtrl, const QStringList& names)
    {
        optest::AnsweringTransferView view(names);
        BLClipCopyCtrl ctrl(&view, clipCtrl, nullptr, nullptr);
        const bool copied = ctrl.showModal(BLClipCopyCtrl::kModeSelection);
        cwtest::settle();
        return copied;
    }
};

TEST_F(ClipCopyTest, ACardCopiedIntoANewFolderArrivesWholeAndTheSourceIsUntouched)
{
    cardgen::Options options = cwtest::CardFolder::fast(3, {2});
    options.spanningClips = 2;
    cwtest::CardFolder card(options);
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    const QList<DOTakeData> takes = BLHouseKeepingCtrl().doHouseKeeping(card.workFolder());
    const QMap<QString, QByteArray> before = footprint(card.workFolder());
    const QString destination = home().path("media/Copy");
    ASSERT_TRUE(copy(record(card.workFolder(), copyable(takes), destination), {"Copy"}));
    EXPECT_TRUE(messages.keys().isEmpty()) << messages.keys().join(", ").toStdString();
    EXPECT_EQ(footprint(card.workFolder()), before);
    EXPECT_EQ(updates, QStringList{destination});
    // The same takes with the same statuses, every file as it was read.
    EXPECT_EQ(described(BLHouseKeepingCtrl().doHouseKeeping(destination)), described(copyable(takes)));
    const QMap<QString, QByteArray> source = optest::snapshot(card.bpav());
    const QMap<QString, QByteArray> copied = optest::snapshot(destination + "/BPAV");
    for (auto it = source.cbegin(); it != source.cend(); ++it) {
        if (it.key().startsWith("CLPR/") || it.key().startsWith("TAKR/")) {
            EXPECT_EQ(copied.value(it.key()), it.value()) << it.key().toStdString();
        }
    }
}

TEST_F(ClipCopyTest, OkRefusesABpavNameAndAClipAlreadyThere)
{
    cwtest::CardFolder card(cwtest::CardFolder::fast(2));
    ASSERT_TRUE(card.ok());
    const QList<DOTakeData> takes = copyable(BLHouseKeepingCtrl().doHouseKeeping(card.workFolder()));
    const QString destination = home().path("media/Copy");
    // "bpav" keeps the dialog open; the next name is taken.
    ASSERT_TRUE(copy(record(card.workFolder(), takes, destination), {"bpav", "Copy"}));
    EXPECT_EQ(messages.keys(), QStringList{"MSG_651_3132"});
    // The same takes again: their UMIDs are there already.
    messages.clear();
    const QMap<QString, QByteArray> copied = footprint(destination);
    EXPECT_FALSE(copy(record(card.workFolder(), takes, destination), {"Copy"}));
    EXPECT_EQ(messages.keys(), QStringList{"MSG_642_3114"});
    EXPECT_EQ(footprint(destination), copied);
}

// Either half of a take recorded across two cards, copied next to the other,
// makes one whole take: its clips in order, one time code over both, one take
// folder and one take material for the whole take.
TEST_F(ClipCopyTest, AHalfCopiedNextToTheOtherMakesOneTake)
{
    for (const int from : {1, 0}) {
        SCOPED_TRACE(from);
        cardgen::Options options = cwtest::CardFolder::fast(0);
        options.spanningClips = 2;
        cwtest::CardFolder card(options);
        ASSERT_TRUE(card.ok()) << card.error().toStdString();
        ASSERT_EQ(card.manifest().takes.size(), 2u);
        const cardgen::ManifestTake& first = card.manifest().takes[0];
        const cardgen::ManifestTake& second = card.manifest().takes[1];
        const int frames = first.frames + second.frames;
        const QList<DOTakeData> half = copyable(BLHouseKeepingCtrl().doHouseKeeping(card.workFolder(from)));
        ASSERT_EQ(half.size(), 1);
        const QString to = card.workFolder(1 - from);

        ASSERT_TRUE(copy(record(card.workFolder(from), half, to), {QFileInfo(to).fileName()}));
        const QList<DOTakeData> takes = BLHouseKeepingCtrl().doHouseKeeping(to);
        ASSERT_EQ(takes.size(), 1);
        const DOTakeData& take = takes[0];
        EXPECT_EQ(take.getUmid(), first.umid);
        EXPECT_EQ(take.getClipUmid(), QStringList({first.clips[0].umid, second.clips[0].umid}));
        EXPECT_LT(take.getTakeStatus(), 2);
        EXPECT_FALSE(take.getMediaSpanning());
        EXPECT_EQ(take.getCurrentDuration(), frames);
        ASSERT_FALSE(take.getLtcChanges().isEmpty());
        EXPECT_EQ(take.getLtcChanges().first().getValue(),
                  take.getClipData().first().getLtcChanges().first().getValue());
        EXPECT_EQ(take.getLtcChanges().last().getFrameCount(), QString::number(frames - 1));
        EXPECT_EQ(take.getLtcChanges().last().getValue(),
                  take.getClipData().last().getLtcChanges().last().getValue());

        BLMediaProfileAcss profile;
        ASSERT_TRUE(profile.loadForFolderPath(BLCommon::getPathOfBPAV(to)));
        QStringList takeMaterials;
        for (const DOMaterial& material : profile.getMaterialData(QString(), 0))
            if (!BLCommon::isClipReference(material.getUri()))
                takeMaterials << material.getUmid() + " " + material.getDur();
        EXPECT_EQ(takeMaterials, QStringList{first.umid + " " + QString::number(frames)});
        EXPECT_EQ(QDir(BLCommon::getPathOfBPAV(to) + "/TAKR").entryList(QDir::Dirs | QDir::NoDotAndDotDot),
                  QStringList{first.takeId});
    }
}
