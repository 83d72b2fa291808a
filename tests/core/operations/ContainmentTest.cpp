#include "OperationsTestSupport.h"

#include "core/card/BLClipCtrl.h"
#include "core/card/BLHouseKeepingCtrl.h"
#include "core/card/DOClipCtrl.h"

using ContainmentTest = cwtest::HomeTest;

// A card whose index files and folders point outside its BPAV folder: a
// folder "outside" beside the card holds files that would be read, or lost,
// if a reference were followed there.
TEST_F(ContainmentTest, NothingOutsideTheCardIsReadOrDeleted)
{
    cardgen::Options options = cwtest::CardFolder::fast(2);
    options.multiClipTakes = {2};
    const cwtest::CardFolder card(options);
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    const QString work = card.workFolder();
    const QString bpav = card.bpav();
    const QString outside = QDir::cleanPath(work + "/../outside");

    // Valid card files outside: reading them would succeed.
    const QString clip = bpav + "/CLPR/ABC0002/";
    ASSERT_TRUE(cwtest::writeFile(outside + "/file", "sentinel"));
    ASSERT_TRUE(QDir().mkpath(outside + "/EVIL"));
    ASSERT_TRUE(QDir().mkpath(outside + "/EVILT"));
    for (const char* name :
         {"ABC0002.MP4", "ABC0002.SMI", "ABC0002M01.XML", "ABC0002R01.BIM", "ABC0002I01.PPN"})
        ASSERT_TRUE(QFile::copy(clip + name, outside + "/EVIL/" + QString(name).replace("ABC0002", "EVIL")));
    ASSERT_TRUE(QFile::copy(clip + "ABC0002M01.XML", outside + "/M01.XML"));
    const QString takeFolder = bpav + "/TAKR/ABC0003U01/";
    ASSERT_TRUE(QFile::copy(takeFolder + "ABC0003U01.SMI", outside + "/EVILT/EVILT.SMI"));
    ASSERT_TRUE(QFile::copy(takeFolder + "ABC0003U01M01.XML", outside + "/EVILT/EVILTM01.XML"));

    // Links from the card to the outside.
    ASSERT_TRUE(QFile::link(outside + "/EVIL", bpav + "/CLPR/EVIL"));
    ASSERT_TRUE(QFile::link(outside + "/EVILT", bpav + "/TAKR/EVILT"));
    ASSERT_TRUE(QFile::link(outside + "/file", bpav + "/CLPR/LOOSE.MP4"));
    ASSERT_TRUE(QFile::remove(bpav + "/CLPR/ABC0001/ABC0001.MP4"));
    ASSERT_TRUE(QFile::link(outside + "/file", bpav + "/CLPR/ABC0001/ABC0001.MP4"));

    // The index files name the outside too.
    optest::replaceInFile(bpav + "/MEDIAPRO.XML", "./CLPR/ABC0002/ABC0002M01.XML", "./../../outside/file");
    optest::replaceInFile(bpav + "/MEDIAPRO.XML", "./CLPR/ABC0002/ABC0002.MP4", outside + "/file");
    optest::replaceInFile(takeFolder + "ABC0003U01.SMI", "ABC0003U01M01.XML", "./../../outside/file");

    const QMap<QString, QByteArray> outsideBefore = optest::snapshot(outside);

    BLClipCtrl ctrl;
    // A clip folder, a loose MP4 file, an essence file or a take folder that
    // links out makes an unusable entry; metadata is never read through a
    // reference that leaves the card.
    for (const char* name : {"EVIL", "LOOSE.MP4", "ABC0001"})
        EXPECT_EQ(ctrl.checkCLPRFiles(work, name).getClipStatus(), 5) << name;
    EXPECT_EQ(ctrl.checkTAKRFiles(work, "EVILT").getTakeStatus(), 5);
    for (const QString& reference :
         {QString("./../../outside/M01.XML"), outside + "/M01.XML", QString("./CLPR/EVIL/EVILM01.XML")}) {
        DOTakeData take;
        take.setXMLUri(reference);
        EXPECT_FALSE(ctrl.getNonRealData(take, work)) << reference.toStdString();
    }

    const QList<DOTakeData> takes = optest::loadTakes(work);
    const auto take = [](const QString& xml, const QString& smi, const QString& mp4) {
        DOTakeData t;
        t.setSingleClipFlag(true);
        t.setXMLUri(xml);
        t.setSMIUri(smi);
        t.setMP4Uri(mp4);
        return t;
    };
    DOTakeData throughLink = take("./CLPR/EVIL/EVILM01.XML", "./CLPR/EVIL/EVIL.SMI", "./CLPR/EVIL/EVIL.MP4");
    DOTakeData upwards = take("./../../outside/file", "./../../outside/EVIL/EVIL.SMI", "");
    DOTakeData absolute = take(outside + "/EVIL/EVILM01.XML", outside + "/EVIL/EVIL.SMI", "");
    DOTakeData loose = take("", "", "./CLPR/LOOSE.MP4");
    loose.setTakeStatus(4);
    DOTakeData multi = takes.last();
    ASSERT_EQ(multi.getClipData().size(), 2);
    DOClipData escaping = multi.getClipData(0);
    escaping.setXMLUri("./../../outside/EVIL/EVILM01.XML");
    escaping.setSMIUri(QString());
    escaping.setMP4Uri(QString());
    multi.setSingleClipFlag(false);
    multi.setArrClipData({escaping, multi.getClipData(1)});

    DOClipCtrl clipCtrl;
    clipCtrl.setSourceWorkFolder(work);
    for (const DOTakeData& hostile : {throughLink, upwards, absolute, loose, multi}) {
        clipCtrl.setTargetTake(hostile);
        EXPECT_FALSE(ctrl.isDeletable(clipCtrl));
        EXPECT_FALSE(ctrl.doDeleteTake(clipCtrl, work));
        for (const QString& path : ctrl.getOperatePaths(hostile, true, bpav, hostile.getTakeStatus()))
            EXPECT_TRUE(path.startsWith(bpav + "/")) << path.toStdString();
    }
    EXPECT_TRUE(QFileInfo(bpav + "/CLPR/EVIL").isSymLink());
    EXPECT_TRUE(QFileInfo(bpav + "/CLPR/ABC0003").isDir()); // the multi-clip take stopped at its first clip

    // A roll-back over the same takes into this card.
    clipCtrl.setDestinationWorkFolder(work);
    clipCtrl.setFromTakes({throughLink, upwards, absolute, loose, multi});
    ctrl.processCancel(clipCtrl, 5);

    // A destination "made" by the operation that is a link to the outside:
    // only the link goes.
    ASSERT_TRUE(QFile::link(outside, QFileInfo(work).path() + "/made"));
    clipCtrl.setCopyToFolderName("made");
    clipCtrl.setNewFolderFlag(true);
    ctrl.processCancel(clipCtrl, 5);
    EXPECT_FALSE(QFileInfo(QFileInfo(work).path() + "/made").isSymLink());

    // The takes as housekeeping reads them from index files naming the
    // outside: rolled back and deleted, what the card held of its own goes
    // and its links are not followed.
    const QList<DOTakeData> read = BLHouseKeepingCtrl().doHouseKeeping(work);
    ASSERT_GE(read.size(), 3);
    clipCtrl = DOClipCtrl();
    clipCtrl.setSourceWorkFolder(work);
    clipCtrl.setDestinationWorkFolder(work);
    clipCtrl.setFromTakes(read);
    clipCtrl.setToTakes(read);
    ctrl.processCancel(clipCtrl, int(read.size()));
    for (const DOTakeData& t : read) {
        clipCtrl.setTargetTake(t);
        ctrl.doDeleteTake(clipCtrl, work);
    }
    EXPECT_FALSE(QFileInfo::exists(bpav + "/CLPR/ABC0003"));
    EXPECT_FALSE(QFileInfo::exists(bpav + "/TAKR/ABC0003U01"));
    EXPECT_TRUE(QFileInfo(bpav + "/CLPR/EVIL").isSymLink());
    EXPECT_EQ(optest::snapshot(outside), outsideBefore);
}
