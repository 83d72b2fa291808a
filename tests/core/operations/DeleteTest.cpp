#include "OperationsTestSupport.h"

#include "core/services/BLCommon.h"
#include "core/card/BLClipCtrl.h"
#include "core/card/DOClipCtrl.h"
#include "support/CardFolder.h"
#include "support/FakeVolumeProvider.h"
#include "support/MessageRecorder.h"
#include "support/QtPrinters.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

// The entries of a snapshot outside the given folders (relative paths), and
// without the media profile, which a deletion rewrites.
QMap<QString, QByteArray> without(QMap<QString, QByteArray> entries, const QStringList& folders)
{
    for (auto it = entries.begin(); it != entries.end();) {
        bool drop = it.key().endsWith("MEDIAPRO.XML");
        for (const QString& folder : folders)
            drop = drop || it.key() == folder || it.key().startsWith(folder + "/");
        it = drop ? entries.erase(it) : std::next(it);
    }
    return entries;
}

QString readText(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

} // namespace

// A card of single clips (ABC0001; ABC0002 without its real-time metadata, so
// status 3; ABC0003 a loose MP4 file; ABC0004) and a take ABC0005U01 of
// ABC0005 and ABC0006.
class DeleteTest : public cwtest::HomeTest
{
protected:
    void SetUp() override
    {
        HomeTest::SetUp();
        optest::enableDebugLog(home());
        cardgen::Options options = cwtest::CardFolder::fast(4);
        options.multiClipTakes = {2};
        QString error;
        options.damages.push_back(*cardgen::Damage::parse("missing=BIM@2", &error));
        options.damages.push_back(*cardgen::Damage::parse("loose@3", &error));
        m_card = std::make_unique<cwtest::CardFolder>(options);
        ASSERT_TRUE(m_card->ok()) << m_card->error().toStdString();
        m_work = m_card->workFolder();
        m_bpav = m_card->bpav();
        m_takes = optest::loadTakes(m_work);
        QStringList ids;
        for (const DOTakeData& take : m_takes)
            ids << take.getTakeID();
        ASSERT_EQ(ids, QStringList({"ABC0001", "ABC0002", "ABC0003", "ABC0004", "ABC0005U01"}));
        ASSERT_EQ(m_takes.at(1).getTakeStatus(), 3);
        ASSERT_EQ(m_takes.at(2).getTakeStatus(), 4);
    }

    QString clpr(const QString& relative) const { return m_bpav + "/CLPR/" + relative; }

    cwtest::FakeVolumeProvider m_volumes;
    cwtest::MessageRecorder m_messages;
    std::unique_ptr<cwtest::CardFolder> m_card;
    QString m_work;
    QString m_bpav;
    QList<DOTakeData> m_takes;
    BLClipCtrl m_ctrl;
};

TEST_F(DeleteTest, TheFilesOfRecordsAreListedInTheirOrder)
{
    const QStringList complete{clpr("ABC0001"),
                               clpr("ABC0001/ABC0001M01.XML"),
                               clpr("ABC0001/ABC0001.SMI"),
                               clpr("ABC0001/ABC0001R01.BIM"),
                               clpr("ABC0001/ABC0001I01.PPN"),
                               clpr("ABC0001/ABC0001.MP4")};
    EXPECT_EQ(m_ctrl.getOperatePaths(m_takes.at(0), true, m_bpav, 0), complete);
    EXPECT_EQ(m_ctrl.getOperatePaths(m_takes.at(0), false, m_bpav, 0), complete.mid(1));
    // Status 3: the take-info reference names the folder and is no file.
    EXPECT_EQ(m_ctrl.getOperatePaths(m_takes.at(1), true, m_bpav, 3),
              QStringList({clpr("ABC0002"), clpr("ABC0002/ABC0002M01.XML"), clpr("ABC0002/ABC0002I01.PPN"),
                           clpr("ABC0002/ABC0002.MP4")}));
    // A missing file is left out.
    ASSERT_TRUE(QFile::remove(clpr("ABC0004/ABC0004I01.PPN")));
    EXPECT_EQ(m_ctrl.getOperatePaths(m_takes.at(3), false, m_bpav, 0).size(), 4);
    EXPECT_EQ(m_ctrl.getPathCount(m_takes.at(3), m_work), 4);
    EXPECT_EQ(m_ctrl.getPathCount(m_takes.at(4).getClipData(0), m_work), 5);

    // Per take: its clips' lists, then its own; a loose file once.
    QList<QStringList> paths;
    int count = 0;
    m_ctrl.setOperatePaths(paths, m_takes, count, true, m_work);
    ASSERT_EQ(paths.size(), 5);
    EXPECT_EQ(paths.at(0), complete);
    EXPECT_EQ(paths.at(2), QStringList({clpr("ABC0003.MP4")}));
    const QString take = m_bpav + "/TAKR/ABC0005U01";
    EXPECT_EQ(paths.at(4).mid(0, 2), QStringList({clpr("ABC0005"), clpr("ABC0005/ABC0005M01.XML")}));
    EXPECT_EQ(paths.at(4).at(6), clpr("ABC0006"));
    EXPECT_EQ(paths.at(4).mid(12),
              QStringList({take, take + "/ABC0005U01M01.XML", take + "/ABC0005U01.SMI"}));
    EXPECT_EQ(count, 6 + 4 + 1 + 5 + 15);
    EXPECT_EQ(m_ctrl.getPathCount(m_takes, m_work, true), count);
    EXPECT_EQ(m_ctrl.getPathCount(m_takes, m_work, false), count - 1 - 1 - 1 - 3); // no folders
}

TEST_F(DeleteTest, DeletingATakeRemovesExactlyItsFoldersInOrder)
{
    const QMap<QString, QByteArray> before = optest::snapshot(m_work);
    DOClipCtrl clipCtrl;
    clipCtrl.setToTakes(m_takes);
    clipCtrl.setTargetTake(m_takes.at(4));
    ASSERT_TRUE(m_ctrl.doDeleteTake(clipCtrl, m_work));

    const QStringList gone{"BPAV/CLPR/ABC0005", "BPAV/CLPR/ABC0006", "BPAV/TAKR/ABC0005U01"};
    EXPECT_EQ(without(optest::snapshot(m_work), {}), without(before, gone));
    for (const QString& folder : gone)
        EXPECT_FALSE(QFileInfo::exists(m_work + "/" + folder));
    const QStringList lines = optest::logLinesOf(home(), 640);
    const QStringList expected{
        "[BLClipCtrl doFileDelete] Start", "[BLClipCtrl doFileDelete]    path:" + clpr("ABC0005"),
        "[BLClipCtrl doFileDelete]    path:" + clpr("ABC0006"),
        "[BLClipCtrl doFileDelete]    path:" + m_bpav + "/TAKR/ABC0005U01", "[BLClipCtrl doFileDelete] End"};
    EXPECT_EQ(lines.mid(lines.size() - 5), expected);

    // The take and its clips left the media profile; the others stay.
    const QString mediaPro = readText(m_bpav + "/MEDIAPRO.XML");
    EXPECT_FALSE(mediaPro.contains(m_takes.at(4).getUmid()));
    EXPECT_FALSE(mediaPro.contains(m_takes.at(4).getClipUmid(1)));
    EXPECT_TRUE(mediaPro.contains(m_takes.at(0).getUmid()));
    EXPECT_TRUE(mediaPro.contains(m_takes.at(3).getUmid()));

    // A single-clip take: its folder; a loose MP4 file: the file, and the
    // media profile stays as it is.
    clipCtrl.setTargetTake(m_takes.at(0));
    ASSERT_TRUE(m_ctrl.doDeleteTake(clipCtrl, m_work));
    const QString profileBefore = readText(m_bpav + "/MEDIAPRO.XML");
    clipCtrl.setTargetTake(m_takes.at(2));
    ASSERT_TRUE(m_ctrl.doDeleteTake(clipCtrl, m_work));
    EXPECT_EQ(readText(m_bpav + "/MEDIAPRO.XML"), profileBefore);
    EXPECT_EQ(without(optest::snapshot(m_work), {}),
              without(before, gone + QStringList({"BPAV/CLPR/ABC0001", "BPAV/CLPR/ABC0003.MP4"})));
}

TEST_F(DeleteTest, ADeletionStopsAtTheFirstFolderThatCannotBeRemoved)
{
    ASSERT_TRUE(QDir(clpr("ABC0005")).removeRecursively());
    DOClipCtrl clipCtrl;
    clipCtrl.setTargetTake(m_takes.at(4));
    EXPECT_FALSE(m_ctrl.doDeleteTake(clipCtrl, m_work));
    EXPECT_TRUE(QFileInfo(clpr("ABC0006")).isDir());
    EXPECT_TRUE(QFileInfo(m_bpav + "/TAKR/ABC0005U01").isDir());
    EXPECT_TRUE(readText(m_bpav + "/MEDIAPRO.XML").contains(m_takes.at(4).getUmid()));
}

// A destination that held one take of its own (XYZ0001) before an operation
// brought takes of the card into it.
class RollBackTest : public DeleteTest
{
protected:
    void SetUp() override
    {
        DeleteTest::SetUp();
        cardgen::Options options = cwtest::CardFolder::fast(1);
        options.prefix = "XYZ";
        options.recorded = QDateTime(QDate(2020, 1, 1), QTime(10, 0)); // UMIDs of their own
        m_destination = std::make_unique<cwtest::CardFolder>(options);
        ASSERT_TRUE(m_destination->ok()) << m_destination->error().toStdString();
        m_destinationBefore = optest::snapshot(m_destination->workFolder());
        m_sourceBefore = optest::snapshot(m_work);
    }

    void TearDown() override
    {
        EXPECT_EQ(optest::snapshot(m_work), m_sourceBefore); // the source is never changed
        DeleteTest::TearDown();
    }

    void bring(const QString& from, const QString& to) const
    {
        ASSERT_TRUE(BLCommon::copyFile(m_bpav + "/" + from, m_destination->bpav() + "/" + to));
    }

    DOClipCtrl record(const QList<DOTakeData>& from) const
    {
        DOClipCtrl clipCtrl;
        clipCtrl.setSourceWorkFolder(m_work);
        clipCtrl.setDestinationWorkFolder(m_destination->workFolder());
        clipCtrl.setFromTakes(from);
        clipCtrl.setToTakes(optest::loadTakes(m_destination->workFolder()));
        return clipCtrl;
    }

    std::unique_ptr<cwtest::CardFolder> m_destination;
    QMap<QString, QByteArray> m_destinationBefore;
    QMap<QString, QByteArray> m_sourceBefore;
};

TEST_F(RollBackTest, RollingBackRemovesExactlyTheTakesHandled)
{
    // Two takes were handled, the second in progress (its first clip was
    // copied); the third was not begun.
    bring("CLPR/ABC0001", "CLPR/ABC0001");
    bring("CLPR/ABC0005", "CLPR/ABC0005");
    DOClipCtrl clipCtrl = record({m_takes.at(0), m_takes.at(4), m_takes.at(3)});
    m_ctrl.processCancel(clipCtrl, 2);

    EXPECT_EQ(without(optest::snapshot(m_destination->workFolder()), {}), without(m_destinationBefore, {}));
    EXPECT_TRUE(readText(m_destination->bpav() + "/MEDIAPRO.XML")
                    .contains(m_destination->manifest().takes.front().umid));
}

TEST_F(RollBackTest, WithChangedNamesTheDestinationFormsAreRolledBack)
{
    // The take went in as NEW0001; a folder named like its source form stays.
    bring("CLPR/ABC0001", "CLPR/NEW0001");
    bring("CLPR/ABC0004", "CLPR/ABC0001");
    DOTakeData renamed = m_takes.at(0);
    renamed.setXMLUri("./CLPR/NEW0001/ABC0001M01.XML");
    renamed.setSMIUri("./CLPR/NEW0001/ABC0001.SMI");
    renamed.setMP4Uri("./CLPR/NEW0001/ABC0001.MP4");
    DOClipCtrl clipCtrl = record({m_takes.at(0)});
    clipCtrl.setNewTakes({renamed});
    clipCtrl.setChangeFlag(true);
    m_ctrl.processCancel(clipCtrl, 1);
    EXPECT_FALSE(QFileInfo::exists(m_destination->bpav() + "/CLPR/NEW0001"));
    EXPECT_TRUE(QFileInfo(m_destination->bpav() + "/CLPR/ABC0001/ABC0004.MP4").isFile());
}

TEST_F(RollBackTest, AFolderTheOperationMadeIsRemovedWhole)
{
    const QString parent = QFileInfo(m_destination->workFolder()).path();
    DOClipCtrl clipCtrl = record({m_takes.at(0)});
    ASSERT_EQ(m_ctrl.checkCopyToFolderName("Made", clipCtrl, BLClipCtrl::kNameTypeCopy),
              BLClipCtrl::kNameReady);
    ASSERT_TRUE(clipCtrl.getNewFolderFlag());
    ASSERT_TRUE(BLCommon::createFixedFolders(parent + "/Made"));
    ASSERT_TRUE(BLCommon::copyFile(m_bpav + "/CLPR/ABC0001", parent + "/Made/BPAV/CLPR/ABC0001"));

    m_ctrl.processCancel(clipCtrl, 1);
    EXPECT_FALSE(QFileInfo::exists(parent + "/Made"));
    EXPECT_EQ(optest::snapshot(m_destination->workFolder()), m_destinationBefore);
}
