// Re-joining multi-clip takes after their files were copied into a folder, as
// the copy does it: updateTakeInfo, rebuildTakeData, then the media profile.
#include "core/services/BLCommon.h"
#include "core/card/BLHouseKeepingCtrl.h"
#include "core/formats/metadata/BLMediaProfileAcss.h"
#include "core/card/BLMediaProCtrl.h"
#include "core/card/BLCardPath.h"
#include "core/card/BLClipCtrl.h"
#include "core/card/DOClipCtrl.h"
#include "support/CardFolder.h"
#include "support/MessageRecorder.h"
#include "support/QtPrinters.h"
#include "support/TestEnvironment.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

QList<DOTakeData> multiClipTakes(const QList<DOTakeData>& takes)
{
    QList<DOTakeData> multi;
    for (const DOTakeData& take : takes)
        if (!take.getClipData().isEmpty())
            multi << take;
    return multi;
}

QStringList clipUmids(const DOTakeData& take)
{
    QStringList umids;
    for (const DOClipData& clip : take.getClipData())
        umids << clip.getUmid();
    return umids;
}

// Copies the folders of the takes (each clip's, then the take's own) from one
// work folder to another, as the copy worker does before re-joining.
void copyTakeFolders(const QList<DOTakeData>& takes, const QString& from, const QString& to)
{
    const QString fromBpav = BLCommon::getPathOfBPAV(from);
    const QString toBpav = BLCommon::getPathOfBPAV(to);
    for (const DOTakeData& take : takes) {
        QStringList references{take.getXMLUri()};
        for (const DOClipData& clip : take.getClipData())
            references << clip.getXMLUri();
        for (const QString& reference : references) {
            const QString folder = BLCardPath::resolveRecordFolder(fromBpav, reference);
            ASSERT_TRUE(BLCommon::copyFile(folder, toBpav + "/" + QDir(fromBpav).relativeFilePath(folder)));
        }
    }
}

// Runs the re-joining and the media-profile rewrite for takes copied from one
// work folder into another whose takes are given.
void rejoin(const QList<DOTakeData>& fromTakes, const QString& from, const QList<DOTakeData>& toTakes,
            const QString& to)
{
    copyTakeFolders(fromTakes, from, to);
    DOClipCtrl clipCtrl;
    clipCtrl.setSourceWorkFolder(from);
    clipCtrl.setDestinationWorkFolder(to);
    clipCtrl.setFromTakes(fromTakes);
    clipCtrl.setToTakes(toTakes);
    BLClipCtrl ctrl;
    ASSERT_TRUE(ctrl.updateTakeInfo(clipCtrl));
    ctrl.rebuildTakeData(clipCtrl);
    ASSERT_TRUE(BLMediaProCtrl().createCopyMediaPro(to, clipCtrl.getToTakes(), from, QString()));
}

// A take as housekeeping shows it: UMID, status, spanning, duration, clips.
QString describe(const DOTakeData& take)
{
    return QString("%1 %2 %3 %4 %5")
        .arg(take.getUmid())
        .arg(take.getTakeStatus())
        .arg(take.getMediaSpanning())
        .arg(take.getCurrentDuration())
        .arg(clipUmids(take).join(","));
}

QStringList described(const QList<DOTakeData>& takes)
{
    QStringList lines;
    for (const DOTakeData& take : takes)
        lines << describe(take);
    lines.sort();
    return lines;
}

} // namespace

class RejoinTest : public cwtest::HomeTest
{
protected:
    cwtest::MessageRecorder m_messages;
};

// A take recorded over two cards: ABC0002U01 (clip ABC0002) on the first,
// ABC0002U02 (clip ABC0003) on the second; the first card also holds the
// single clip ABC0001. Either half copied onto the card of the other makes
// one whole take there.
TEST_F(RejoinTest, AHalfCopiedToTheOtherHalfMakesOneWholeTake)
{
    for (const int source : {1, 0}) {
        SCOPED_TRACE(source);
        cardgen::Options options = cwtest::CardFolder::fast(1);
        options.spanningClips = 2;
        cwtest::CardFolder card(options);
        ASSERT_TRUE(card.ok()) << card.error().toStdString();
        const cardgen::ManifestTake& first = card.manifest().takes.at(1);
        const cardgen::ManifestTake& second = card.manifest().takes.at(2);
        const int frames = first.frames + second.frames;
        const QString from = card.workFolder(source);
        const QString to = card.workFolder(1 - source);

        const QList<DOTakeData> fromTakes = multiClipTakes(BLHouseKeepingCtrl().doHouseKeeping(from));
        ASSERT_EQ(fromTakes.size(), 1);
        rejoin(fromTakes, from, BLHouseKeepingCtrl().doHouseKeeping(to), to);

        const QList<DOTakeData> takes = BLHouseKeepingCtrl().doHouseKeeping(to);
        EXPECT_EQ(takes.size(), source == 1 ? 2 : 1);
        const QList<DOTakeData> joined = multiClipTakes(takes);
        ASSERT_EQ(joined.size(), 1);
        const DOTakeData& take = joined.first();
        EXPECT_EQ(take.getUmid(), first.umid);
        EXPECT_EQ(clipUmids(take), QStringList({first.clips.at(0).umid, second.clips.at(0).umid}));
        EXPECT_LT(take.getTakeStatus(), 2);
        EXPECT_FALSE(take.getMediaSpanning());
        EXPECT_EQ(take.getCurrentDuration(), frames);
        // The time code of the whole take runs from its first clip's start to
        // its last clip's end.
        ASSERT_FALSE(take.getLtcChanges().isEmpty());
        EXPECT_EQ(take.getLtcChanges().first().getValue(),
                  take.getClipData().first().getLtcChanges().first().getValue());
        EXPECT_EQ(take.getLtcChanges().last().getStatus(), "end");
        EXPECT_EQ(take.getLtcChanges().last().getFrameCount(), QString::number(frames - 1));
        EXPECT_EQ(take.getLtcChanges().last().getValue(),
                  take.getClipData().last().getLtcChanges().last().getValue());

        // One take material, for the whole take; the other half's folder is gone.
        BLMediaProfileAcss profile;
        ASSERT_TRUE(profile.loadForFolderPath(BLCommon::getPathOfBPAV(to)));
        QList<DOMaterial> takeMaterials;
        for (const DOMaterial& material : profile.getMaterialData(QString(), 0))
            if (!BLCommon::isClipReference(material.getUri()))
                takeMaterials << material;
        ASSERT_EQ(takeMaterials.size(), 1);
        EXPECT_EQ(takeMaterials.first().getUmid(), first.umid);
        EXPECT_EQ(takeMaterials.first().getDur(), QString::number(frames));
        QStringList components;
        for (const DOComponent& component : takeMaterials.first().getComponent())
            components << component.getUmid();
        EXPECT_EQ(components, clipUmids(take));
        EXPECT_EQ(QDir(BLCommon::getPathOfBPAV(to) + "/TAKR").entryList(QDir::Dirs | QDir::NoDotAndDotDot),
                  QStringList({first.takeId}));
    }
}

// A single clip, a whole two-clip take and the first half of a take spanning
// two cards, copied into an empty folder, arrive as they were: the half still
// spans, its take info naming a clip that is not there.
TEST_F(RejoinTest, TakesCopiedIntoAnEmptyFolderArriveUnchanged)
{
    cardgen::Options options = cwtest::CardFolder::fast(1, {2});
    options.spanningClips = 2;
    cwtest::CardFolder card(options);
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    const QString from = card.workFolder();
    QTemporaryDir dir;
    const QString to = dir.filePath("copy");
    ASSERT_TRUE(QDir().mkpath(to) && BLCommon::createFixedFolders(to));

    const QList<DOTakeData> fromTakes = BLHouseKeepingCtrl().doHouseKeeping(from);
    ASSERT_EQ(fromTakes.size(), 3);
    rejoin(fromTakes, from, {}, to);

    const QList<DOTakeData> takes = BLHouseKeepingCtrl().doHouseKeeping(to);
    EXPECT_EQ(described(takes), described(fromTakes));
    const QString half = card.manifest().takes.at(2).umid;
    const auto spanning = std::find_if(takes.begin(), takes.end(),
                                       [&half](const DOTakeData& take) { return take.getUmid() == half; });
    ASSERT_NE(spanning, takes.end());
    EXPECT_EQ(spanning->getTakeStatus(), 2);
    EXPECT_TRUE(spanning->getMediaSpanning());
}
