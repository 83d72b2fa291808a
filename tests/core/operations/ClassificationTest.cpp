#include "OperationsTestSupport.h"

#include "core/card/BLClipCtrl.h"
#include "core/card/BLDiskCtrl.h"
#include "core/services/BLCommon.h"
#include "support/CardFolder.h"
#include "support/QtPrinters.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>

#include <gtest/gtest.h>

namespace {

const cardgen::ManifestTake& takeOf(const cwtest::CardFolder& card, const QString& takeId)
{
    for (const cardgen::ManifestTake& take : card.manifest().takes)
        if (take.takeId == takeId)
            return take;
    throw std::runtime_error("no take " + takeId.toStdString());
}

qint64 sizeOfFiles(const std::vector<cardgen::ManifestFile>& files)
{
    qint64 size = 0;
    for (const cardgen::ManifestFile& file : files)
        size += file.size;
    return size;
}

} // namespace

using ClassificationTest = cwtest::HomeTest;
using Kind = cardgen::Damage::Kind;

TEST_F(ClassificationTest, ClipEntriesAreClassifiedByTheFilesTheyHold)
{
    cardgen::Options options = cwtest::CardFolder::fast(5);
    options.damages = {cwtest::damage(Kind::Missing, 1, {"BIM"}),
                       cwtest::damage(Kind::Missing, 2, {"MP4", "PPN"}), cwtest::damage(Kind::Loose, 3),
                       cwtest::damage(Kind::NoFtyp, 4)};
    cwtest::CardFolder card(options);
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    const QString work = card.workFolder();
    const QString clpr = card.bpav() + "/CLPR/";
    BLClipCtrl ctrl;

    // Complete; the BIM extension matches in any case.
    ASSERT_TRUE(QFile::rename(clpr + "ABC0005/ABC0005R01.BIM", clpr + "ABC0005/ABC0005R01.BiM"));
    const DOClipData complete = ctrl.checkCLPRFiles(work, "ABC0005");
    EXPECT_EQ(complete.getClipStatus(), 0);
    EXPECT_EQ(complete.getBIMUri(), "./CLPR/ABC0005/ABC0005R01.BiM");
    EXPECT_EQ(complete.getSize(), sizeOfFiles(takeOf(card, "ABC0005").clips.front().files));

    // An MP4 whose first box is not ftyp still has all five files: the essence
    // is judged by the caller's MP4 check, not by the folder's contents.
    EXPECT_EQ(ctrl.checkCLPRFiles(work, "ABC0004").getClipStatus(), 0);

    // MP4 and metadata without the real-time metadata: the take-info
    // reference names the folder.
    const DOClipData noBim = ctrl.checkCLPRFiles(work, "ABC0001");
    EXPECT_EQ(noBim.getClipStatus(), 3);
    EXPECT_EQ(noBim.getSMIUri(), "./CLPR/ABC0001");
    EXPECT_EQ(noBim.getSize(), BLDiskCtrl::sharedCtrl()->getFolderSize(clpr + "ABC0001"));

    // No essence: unusable, without essence, its other files still named.
    const DOClipData noMp4 = ctrl.checkCLPRFiles(work, "ABC0002");
    EXPECT_EQ(noMp4.getClipStatus(), 5);
    EXPECT_EQ(noMp4.getXMLUri(), "./CLPR/ABC0002/ABC0002M01.XML");

    // A loose MP4 file directly in CLPR: a fresh UMID each time it is seen.
    const DOClipData loose = ctrl.checkCLPRFiles(work, "ABC0003.MP4");
    EXPECT_EQ(loose.getClipStatus(), 4);
    EXPECT_TRUE(QRegularExpression("^[0-9A-F]{64}$").match(loose.getUmid()).hasMatch())
        << loose.getUmid().toStdString();
    EXPECT_NE(ctrl.checkCLPRFiles(work, "ABC0003.MP4").getUmid(), loose.getUmid());
    EXPECT_EQ(loose.getSize(), QFileInfo(clpr + "ABC0003.MP4").size());

    // Anything else is unusable: an empty folder, a folder named like an MP4
    // file, metadata only found among hidden files.
    ASSERT_TRUE(QDir().mkpath(clpr + "EMPTY"));
    ASSERT_TRUE(QDir().mkpath(clpr + "FOLDER.MP4"));
    optest::writeFile(clpr + "HIDDEN/HIDDEN.MP4", "x");
    optest::writeFile(clpr + "HIDDEN/.HIDDENM01.XML", "x");
    for (const char* name : {"EMPTY", "FOLDER.MP4", "HIDDEN", "NOTTHERE"})
        EXPECT_EQ(ctrl.checkCLPRFiles(work, name).getClipStatus(), 5) << name;
}

TEST_F(ClassificationTest, TakeFoldersGetTheirClipsAndSpanningTakesAreMarked)
{
    cardgen::Options options = cwtest::CardFolder::fast(1);
    options.layout = "PRIVATE/ORX/BPAV";
    options.multiClipTakes = {2};
    options.spanningClips = 2;
    cwtest::CardFolder card(options);
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    const QString work = card.workFolder();
    BLClipCtrl ctrl;
    QList<DOClipData> clips = optest::scanClips(work);
    ASSERT_EQ(clips.size(), 4); // ABC0001 to ABC0004; ABC0005 lies on the second card

    // A multi-clip take: its take info gives the UMIDs and the entries.
    const cardgen::ManifestTake& expected = takeOf(card, "ABC0002U01");
    DOTakeData multi = ctrl.checkTAKRFiles(work, "ABC0002U01");
    EXPECT_EQ(multi.getTakeStatus(), 1);
    EXPECT_EQ(multi.getUmid(), expected.umid);
    EXPECT_EQ(multi.getClipUmid(), QStringList({expected.clips[0].umid, expected.clips[1].umid}));
    ASSERT_EQ(multi.getTakeInfo().size(), 2);
    EXPECT_EQ(multi.getTakeInfo(1).getBegin(), "smpte-30-drop=00:00:00:06");
    EXPECT_EQ(multi.getSize(), sizeOfFiles(expected.files));

    ctrl.searchClip(multi, clips);
    ASSERT_EQ(multi.getClipData().size(), 2);
    EXPECT_EQ(multi.getClipData(1).getFolderName(), "ABC0003");
    EXPECT_FALSE(multi.getMediaSpanning());
    QStringList claimed;
    for (const DOClipData& clip : clips)
        if (clip.getExistFlag())
            claimed << clip.getFolderName();
    EXPECT_EQ(claimed, QStringList({"ABC0002", "ABC0003"}));

    // Filled from metadata: the take's own file gives the duration, time code
    // rate and key frame; each clip its own values.
    ASSERT_TRUE(ctrl.getNonRealData(multi, work));
    EXPECT_EQ(multi.getCurrentDuration(), 12);
    EXPECT_EQ(multi.getClipData(0).getCurrentDuration(), 6);
    EXPECT_EQ(multi.getUmid(), expected.umid); // a take with clips keeps its own UMID

    // The first part of a spanning take: its second clip is on another card.
    DOTakeData span = ctrl.checkTAKRFiles(work, "ABC0004U01");
    ctrl.searchClip(span, clips);
    EXPECT_EQ(span.getClipData().size(), 1);
    EXPECT_EQ(span.getTakeStatus(), 2);
    EXPECT_TRUE(span.getMediaSpanning());

    // A clip that is not real counts as missing; an unusable clip makes the
    // take unusable with no duration.
    QList<DOClipData> changed = clips;
    BLClipCtrl::isClipData(expected.clips[0].umid, changed)->setRealFlag(false);
    DOTakeData notReal = ctrl.checkTAKRFiles(work, "ABC0002U01");
    ctrl.searchClip(notReal, changed);
    EXPECT_EQ(notReal.getTakeStatus(), 2);
    BLClipCtrl::isClipData(expected.clips[1].umid, changed)->setClipStatus(5);
    DOTakeData unusable = ctrl.checkTAKRFiles(work, "ABC0002U01");
    unusable.setCurrentDuration(99);
    ctrl.searchClip(unusable, changed);
    EXPECT_EQ(unusable.getTakeStatus(), 5);
    EXPECT_EQ(unusable.getCurrentDuration(), 0);
    EXPECT_FALSE(unusable.getMediaSpanning());

    // Take folders without their files, or with a take info that cannot be read.
    const QString takr = card.bpav() + "/TAKR/";
    ASSERT_TRUE(QDir().mkpath(takr + "ONLYSMI"));
    ASSERT_TRUE(QFile::copy(takr + "ABC0002U01/ABC0002U01.SMI", takr + "ONLYSMI/ONLYSMI.SMI"));
    EXPECT_EQ(ctrl.checkTAKRFiles(work, "ONLYSMI").getTakeStatus(), 5);
    optest::writeFile(takr + "BROKEN/BROKEN.SMI", "not a take info");
    ASSERT_TRUE(QFile::copy(takr + "ABC0002U01/ABC0002U01M01.XML", takr + "BROKEN/BROKENM01.XML"));
    EXPECT_EQ(ctrl.checkTAKRFiles(work, "BROKEN").getTakeStatus(), 5);
    DOTakeData empty = ctrl.checkTAKRFiles(work, "NOTTHERE");
    EXPECT_EQ(empty.getTakeStatus(), 5);
    ctrl.searchClip(empty, clips);
    EXPECT_EQ(empty.getTakeStatus(), 5);
}

TEST_F(ClassificationTest, SingleClipTakesAreFilledFromTheirMetadata)
{
    cardgen::Options options = cwtest::CardFolder::fast(2);
    options.damages = {cwtest::damage(Kind::NotOk, 2)};
    cwtest::CardFolder card(options);
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    const QString work = card.workFolder();
    BLClipCtrl ctrl;

    const auto singleTake = [&](const QString& name) {
        const DOClipData clip = ctrl.checkCLPRFiles(work, name);
        DOTakeData take;
        take.setSingleClipFlag(true);
        take.setXMLUri(clip.getXMLUri());
        take.setMP4Uri(clip.getMP4Uri());
        take.setTakeStatus(clip.getClipStatus());
        take.setMediaSpanning(true);
        return take;
    };

    DOTakeData take = singleTake("ABC0001");
    ASSERT_TRUE(ctrl.getNonRealData(take, work));
    EXPECT_EQ(take.getUmid(), takeOf(card, "ABC0001").umid);
    EXPECT_EQ(take.getCurrentDuration(), 6);
    EXPECT_EQ(take.getTakeStatus(), 0);
    EXPECT_EQ(take.getVideoCodec(), takeOf(card, "ABC0001").videoFormat);
    EXPECT_EQ(take.getFormatFps(), "29.97p");
    EXPECT_FALSE(take.getMediaSpanning());

    // A material whose status text is not "OK" makes a complete take status 1.
    DOTakeData notOk = singleTake("ABC0002");
    ASSERT_TRUE(ctrl.getNonRealData(notOk, work));
    EXPECT_EQ(notOk.getTakeStatus(), 1);

    // Without readable metadata nothing can be filled.
    DOTakeData none;
    EXPECT_FALSE(ctrl.getNonRealData(none, work));
    DOTakeData gone = singleTake("ABC0001");
    ASSERT_TRUE(QFile::remove(card.bpav() + "/CLPR/ABC0001/ABC0001M01.XML"));
    EXPECT_FALSE(ctrl.getNonRealData(gone, work));
}

TEST_F(ClassificationTest, TheKeyFrameStaysWithinTheTakeOnThisMedium)
{
    cardgen::Options options = cwtest::CardFolder::fast(0);
    options.multiClipTakes = {2};
    cwtest::CardFolder card(options);
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    const QString work = card.workFolder();
    const QString xml = card.bpav() + "/TAKR/ABC0001U01/ABC0001U01M01.XML";
    BLClipCtrl ctrl;
    const QList<DOClipData> clips = optest::scanClips(work);

    QString duration = "12";
    QString keyFrame = "0";
    const auto keyFrameWith = [&](const QString& newDuration, const QString& newKeyFrame) {
        optest::replaceInFile(xml, "<Duration value=\"" + duration + "\"/>",
                              "<Duration value=\"" + newDuration + "\"/>");
        optest::replaceInFile(xml, "<KeyFrame frameCount=\"" + keyFrame + "\"/>",
                              "<KeyFrame frameCount=\"" + newKeyFrame + "\"/>");
        duration = newDuration;
        keyFrame = newKeyFrame;
        DOTakeData take = ctrl.checkTAKRFiles(work, "ABC0001U01");
        QList<DOClipData> list = clips;
        ctrl.searchClip(take, list);
        EXPECT_TRUE(ctrl.getNonRealData(take, work));
        return take.getKeyFrame();
    };
    EXPECT_EQ(keyFrameWith("12", "7"), 7);  // the whole take is here
    EXPECT_EQ(keyFrameWith("20", "10"), 2); // 8 frames lie on other media: moved back
    EXPECT_EQ(keyFrameWith("20", "8"), 0);  // not beyond those 8 frames
    EXPECT_EQ(keyFrameWith("20", "25"), 0); // beyond the take
}
