#include "OperationsTestSupport.h"

#include "core/card/BLClipCtrl.h"
#include "core/card/DOClipCtrl.h"
#include "core/services/BLCommon.h"

// A card of single clips ABC0001 to ABC0004 and a take ABC0005U01 of ABC0005
// and ABC0006. A roll-back after a cancel is shown by the copy, move,
// division and combine tests; these are the cases they cannot reach.
class DeleteTest : public cwtest::HomeTest
{
protected:
    void SetUp() override
    {
        HomeTest::SetUp();
        m_card = std::make_unique<cwtest::CardFolder>(cwtest::CardFolder::fast(4, {2}));
        ASSERT_TRUE(m_card->ok()) << m_card->error().toStdString();
        m_work = m_card->workFolder();
        m_bpav = m_card->bpav();
        m_takes = optest::loadTakes(m_work);
        ASSERT_EQ(m_takes.size(), 5);
    }

    cwtest::MessageRecorder m_messages;
    std::unique_ptr<cwtest::CardFolder> m_card;
    QString m_work;
    QString m_bpav;
    QList<DOTakeData> m_takes;
    BLClipCtrl m_ctrl;
};

TEST_F(DeleteTest, ADeletionStopsAtTheFirstFolderThatCannotBeRemoved)
{
    ASSERT_TRUE(QDir(m_bpav + "/CLPR/ABC0005").removeRecursively());
    DOClipCtrl clipCtrl;
    clipCtrl.setTargetTake(m_takes.at(4));
    EXPECT_FALSE(m_ctrl.doDeleteTake(clipCtrl, m_work));
    EXPECT_TRUE(QFileInfo(m_bpav + "/CLPR/ABC0006").isDir());
    EXPECT_TRUE(QFileInfo(m_bpav + "/TAKR/ABC0005U01").isDir());
    QFile profile(m_bpav + "/MEDIAPRO.XML");
    ASSERT_TRUE(profile.open(QIODevice::ReadOnly));
    EXPECT_TRUE(profile.readAll().contains(m_takes.at(4).getUmid().toUtf8()));
}

// A take brought into a destination as NEW0001 goes back under that name; a
// folder of the destination named like the take's source form stays.
TEST_F(DeleteTest, WithChangedNamesTheDestinationFormsAreRolledBack)
{
    cardgen::Options options = cwtest::CardFolder::fast(1);
    options.prefix = "XYZ";
    options.recorded = QDateTime(QDate(2020, 1, 1), QTime(10, 0)); // UMIDs of their own
    const cwtest::CardFolder destination(options);
    ASSERT_TRUE(destination.ok()) << destination.error().toStdString();
    const QMap<QString, QByteArray> source = optest::snapshot(m_work);
    ASSERT_TRUE(BLCommon::copyFile(m_bpav + "/CLPR/ABC0001", destination.bpav() + "/CLPR/NEW0001"));
    ASSERT_TRUE(BLCommon::copyFile(m_bpav + "/CLPR/ABC0004", destination.bpav() + "/CLPR/ABC0001"));

    DOTakeData renamed = m_takes.at(0);
    renamed.setXMLUri("./CLPR/NEW0001/ABC0001M01.XML");
    renamed.setSMIUri("./CLPR/NEW0001/ABC0001.SMI");
    renamed.setMP4Uri("./CLPR/NEW0001/ABC0001.MP4");
    DOClipCtrl clipCtrl;
    clipCtrl.setSourceWorkFolder(m_work);
    clipCtrl.setDestinationWorkFolder(destination.workFolder());
    clipCtrl.setFromTakes({m_takes.at(0)});
    clipCtrl.setToTakes(optest::loadTakes(destination.workFolder()));
    clipCtrl.setNewTakes({renamed});
    clipCtrl.setChangeFlag(true);
    m_ctrl.processCancel(clipCtrl, 1);
    EXPECT_FALSE(QFileInfo::exists(destination.bpav() + "/CLPR/NEW0001"));
    EXPECT_TRUE(QFileInfo(destination.bpav() + "/CLPR/ABC0001/ABC0004.MP4").isFile());
    EXPECT_EQ(optest::snapshot(m_work), source);
}
