#include "OperationsTestSupport.h"

#include "core/card/BLClipCtrl.h"
#include "core/card/BLHouseKeepingCtrl.h"
#include "core/card/DOClipCtrl.h"

// A card whose index files and folders point outside its BPAV folder: a
// folder "outside" beside the card holds files that would be read, or lost,
// if a reference were followed there.
class ContainmentTest : public cwtest::HomeTest
{
protected:
    void SetUp() override
    {
        HomeTest::SetUp();
        cardgen::Options options = cwtest::CardFolder::fast(2);
        options.multiClipTakes = {2};
        m_card = std::make_unique<cwtest::CardFolder>(options);
        ASSERT_TRUE(m_card->ok()) << m_card->error().toStdString();
        m_work = m_card->workFolder();
        m_bpav = m_card->bpav();
        m_outside = QDir::cleanPath(m_work + "/../outside");

        // Valid card files outside: reading them would succeed.
        const QString clip = m_bpav + "/CLPR/ABC0002/";
        ASSERT_TRUE(cwtest::writeFile(m_outside + "/file", "sentinel"));
        ASSERT_TRUE(QDir().mkpath(m_outside + "/EVIL"));
        ASSERT_TRUE(QDir().mkpath(m_outside + "/EVILT"));
        for (const char* name :
             {"ABC0002.MP4", "ABC0002.SMI", "ABC0002M01.XML", "ABC0002R01.BIM", "ABC0002I01.PPN"})
            ASSERT_TRUE(
                QFile::copy(clip + name, m_outside + "/EVIL/" + QString(name).replace("ABC0002", "EVIL")));
        ASSERT_TRUE(QFile::copy(clip + "ABC0002M01.XML", m_outside + "/M01.XML"));
        const QString take = m_bpav + "/TAKR/ABC0003U01/";
        ASSERT_TRUE(QFile::copy(take + "ABC0003U01.SMI", m_outside + "/EVILT/EVILT.SMI"));
        ASSERT_TRUE(QFile::copy(take + "ABC0003U01M01.XML", m_outside + "/EVILT/EVILTM01.XML"));

        // Links from the card to the outside.
        ASSERT_TRUE(QFile::link(m_outside + "/EVIL", m_bpav + "/CLPR/EVIL"));
        ASSERT_TRUE(QFile::link(m_outside + "/EVILT", m_bpav + "/TAKR/EVILT"));
        ASSERT_TRUE(QFile::link(m_outside + "/file", m_bpav + "/CLPR/LOOSE.MP4"));
        ASSERT_TRUE(QFile::remove(m_bpav + "/CLPR/ABC0001/ABC0001.MP4"));
        ASSERT_TRUE(QFile::link(m_outside + "/file", m_bpav + "/CLPR/ABC0001/ABC0001.MP4"));

        // The index files name the outside too.
        optest::replaceInFile(m_bpav + "/MEDIAPRO.XML", "./CLPR/ABC0002/ABC0002M01.XML",
                              "./../../outside/file");
        optest::replaceInFile(m_bpav + "/MEDIAPRO.XML", "./CLPR/ABC0002/ABC0002.MP4", m_outside + "/file");
        optest::replaceInFile(take + "ABC0003U01.SMI", "ABC0003U01M01.XML", "./../../outside/file");

        m_outsideBefore = optest::snapshot(m_outside);
    }

    void TearDown() override
    {
        EXPECT_EQ(optest::snapshot(m_outside), m_outsideBefore);
        HomeTest::TearDown();
    }

    std::unique_ptr<cwtest::CardFolder> m_card;
    QString m_work;
    QString m_bpav;
    QString m_outside;
    QMap<QString, QByteArray> m_outsideBefore;
};

TEST_F(ContainmentTest, NothingOutsideTheCardIsReadOrDeleted)
{
    BLClipCtrl ctrl;
    // A clip folder, a loose MP4 file, an essence file or a take folder that
    // links out makes an unusable entry; metadata is never read through a
    // reference that leaves the card.
    for (const char* name : {"EVIL", "LOOSE.MP4", "ABC0001"})
        EXPECT_EQ(ctrl.checkCLPRFiles(m_work, name).getClipStatus(), 5) << name;
    EXPECT_EQ(ctrl.checkTAKRFiles(m_work, "EVILT").getTakeStatus(), 5);
    for (const QString& reference :
         {QString("./../../outside/M01.XML"), m_outside + "/M01.XML", QString("./CLPR/EVIL/EVILM01.XML")}) {
        DOTakeData take;
        take.setXMLUri(reference);
        EXPECT_FALSE(ctrl.getNonRealData(take, m_work)) << reference.toStdString();
    }

    const QList<DOTakeData> takes = optest::loadTakes(m_work);
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
    DOTakeData absolute = take(m_outside + "/EVIL/EVILM01.XML", m_outside + "/EVIL/EVIL.SMI", "");
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

    const QFileInfo work(m_work);
    DOClipCtrl clipCtrl;
    clipCtrl.setSourceWorkFolder(m_work);
    for (const DOTakeData& hostile : {throughLink, upwards, absolute, loose, multi}) {
        clipCtrl.setTargetTake(hostile);
        EXPECT_FALSE(ctrl.isDeletable(clipCtrl));
        EXPECT_FALSE(ctrl.doDeleteTake(clipCtrl, m_work));
        for (const QString& path : ctrl.getOperatePaths(hostile, true, m_bpav, hostile.getTakeStatus()))
            EXPECT_TRUE(path.startsWith(m_bpav + "/")) << path.toStdString();
    }
    EXPECT_TRUE(QFileInfo(m_bpav + "/CLPR/EVIL").isSymLink());
    EXPECT_TRUE(QFileInfo(m_bpav + "/CLPR/ABC0003").isDir()); // the multi-clip take stopped at its first clip

    // A roll-back over the same takes into this card.
    clipCtrl.setDestinationWorkFolder(m_work);
    clipCtrl.setFromTakes({throughLink, upwards, absolute, loose, multi});
    ctrl.processCancel(clipCtrl, 5);

    // A destination "made" by the operation that is a link to the outside:
    // only the link goes.
    ASSERT_TRUE(QFile::link(m_outside, work.path() + "/made"));
    clipCtrl.setCopyToFolderName("made");
    clipCtrl.setNewFolderFlag(true);
    ctrl.processCancel(clipCtrl, 5);
    EXPECT_FALSE(QFileInfo(work.path() + "/made").isSymLink());

    // The takes as housekeeping reads them from index files naming the
    // outside: rolled back and deleted, what the card held of its own goes
    // and its links are not followed.
    const QList<DOTakeData> read = BLHouseKeepingCtrl().doHouseKeeping(m_work);
    ASSERT_GE(read.size(), 3);
    clipCtrl = DOClipCtrl();
    clipCtrl.setSourceWorkFolder(m_work);
    clipCtrl.setDestinationWorkFolder(m_work);
    clipCtrl.setFromTakes(read);
    clipCtrl.setToTakes(read);
    ctrl.processCancel(clipCtrl, int(read.size()));
    for (const DOTakeData& t : read) {
        clipCtrl.setTargetTake(t);
        ctrl.doDeleteTake(clipCtrl, m_work);
    }
    EXPECT_FALSE(QFileInfo::exists(m_bpav + "/CLPR/ABC0003"));
    EXPECT_FALSE(QFileInfo::exists(m_bpav + "/TAKR/ABC0003U01"));
    EXPECT_TRUE(QFileInfo(m_bpav + "/CLPR/EVIL").isSymLink());
}
