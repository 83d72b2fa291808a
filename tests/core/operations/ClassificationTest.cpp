#include "OperationsTestSupport.h"

#include "core/card/BLClipCtrl.h"

#include <QRegularExpression>

// Statuses, UMIDs, sizes and durations of every generated kind of card are
// checked against the generator's manifest by the housekeeping and scan
// tests; these are the cases no generated card shows.
using ClassificationTest = cwtest::HomeTest;
using Kind = cardgen::Damage::Kind;

TEST_F(ClassificationTest, ClipEntriesAreClassifiedByTheFilesTheyHold)
{
    cardgen::Options options = cwtest::CardFolder::fast(4);
    options.damages = {cwtest::damage(Kind::Missing, 1, {"BIM"}),
                       cwtest::damage(Kind::Missing, 2, {"MP4", "PPN"}), cwtest::damage(Kind::Loose, 3)};
    cwtest::CardFolder card(options);
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    const QString work = card.workFolder();
    const QString clpr = card.bpav() + "/CLPR/";
    BLClipCtrl ctrl;

    // The BIM extension matches in any case.
    ASSERT_TRUE(QFile::rename(clpr + "ABC0004/ABC0004R01.BIM", clpr + "ABC0004/ABC0004R01.BiM"));
    const DOClipData complete = ctrl.checkCLPRFiles(work, "ABC0004");
    EXPECT_EQ(complete.getClipStatus(), 0);
    EXPECT_EQ(complete.getBIMUri(), "./CLPR/ABC0004/ABC0004R01.BiM");
    // Without the real-time metadata the take-info reference names the folder.
    EXPECT_EQ(ctrl.checkCLPRFiles(work, "ABC0001").getSMIUri(), "./CLPR/ABC0001");
    // Without essence its other files are still named.
    EXPECT_EQ(ctrl.checkCLPRFiles(work, "ABC0002").getXMLUri(), "./CLPR/ABC0002/ABC0002M01.XML");

    // A loose MP4 file gets a fresh UMID each time it is seen.
    const DOClipData loose = ctrl.checkCLPRFiles(work, "ABC0003.MP4");
    EXPECT_TRUE(QRegularExpression("^[0-9A-F]{64}$").match(loose.getUmid()).hasMatch())
        << loose.getUmid().toStdString();
    EXPECT_NE(ctrl.checkCLPRFiles(work, "ABC0003.MP4").getUmid(), loose.getUmid());

    // Anything else is unusable: an empty folder, a folder named like an MP4
    // file, metadata only found among hidden files.
    ASSERT_TRUE(QDir().mkpath(clpr + "EMPTY"));
    ASSERT_TRUE(QDir().mkpath(clpr + "FOLDER.MP4"));
    optest::writeFile(clpr + "HIDDEN/HIDDEN.MP4", "x");
    optest::writeFile(clpr + "HIDDEN/.HIDDENM01.XML", "x");
    for (const char* name : {"EMPTY", "FOLDER.MP4", "HIDDEN", "NOTTHERE"})
        EXPECT_EQ(ctrl.checkCLPRFiles(work, name).getClipStatus(), 5) << name;
}

TEST_F(ClassificationTest, ATakeIsAsUsableAsItsClipsAndItsOwnFiles)
{
    cardgen::Options options = cwtest::CardFolder::fast(1);
    options.multiClipTakes = {2};
    cwtest::CardFolder card(options);
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    const QString work = card.workFolder();
    const cardgen::ManifestTake& expected = card.manifest().takes.back();
    ASSERT_EQ(expected.takeId, "ABC0002U01");
    BLClipCtrl ctrl;
    const QList<DOClipData> clips = optest::scanClips(work);

    DOTakeData multi = ctrl.checkTAKRFiles(work, "ABC0002U01");
    EXPECT_EQ(multi.getTakeInfo(1).getBegin(), "smpte-30-drop=00:00:00:06");

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

    // Take folders without their files, or with a take info that cannot be read.
    const QString takr = card.bpav() + "/TAKR/";
    ASSERT_TRUE(QDir().mkpath(takr + "ONLYSMI"));
    ASSERT_TRUE(QFile::copy(takr + "ABC0002U01/ABC0002U01.SMI", takr + "ONLYSMI/ONLYSMI.SMI"));
    optest::writeFile(takr + "BROKEN/BROKEN.SMI", "not a take info");
    ASSERT_TRUE(QFile::copy(takr + "ABC0002U01/ABC0002U01M01.XML", takr + "BROKEN/BROKENM01.XML"));
    for (const char* name : {"ONLYSMI", "BROKEN", "NOTTHERE"}) {
        DOTakeData take = ctrl.checkTAKRFiles(work, name);
        QList<DOClipData> list = clips;
        ctrl.searchClip(take, list);
        EXPECT_EQ(take.getTakeStatus(), 5) << name;
    }
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
