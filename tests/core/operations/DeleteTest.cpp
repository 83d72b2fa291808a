#include "OperationsTestSupport.h"

#include "core/card/BLClipCtrl.h"
#include "core/card/DOClipCtrl.h"
#include "core/services/BLCommon.h"
#include "support/CardFolder.h"
#include "support/FakeVolumeProvider.h"
#include "support/MessageRecorder.h"
#include "support/QtPrinters.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

namespace {

// A snapshot without the media profile, which a roll-back rewrites.
QMap<QString, QByteArray> footage(const QString& root)
{
    QMap<QString, QByteArray> entries = optest::snapshot(root);
    entries.remove("BPAV/MEDIAPRO.XML");
    return entries;
}

QString readText(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

} // namespace

// A card of single clips (ABC0001; ABC0002 without its real-time metadata;
// ABC0003 a loose MP4 file; ABC0004) and a take ABC0005U01 of ABC0005 and
// ABC0006.
class DeleteTest : public cwtest::HomeTest
{
protected:
    void SetUp() override
    {
        HomeTest::SetUp();
        cardgen::Options options = cwtest::CardFolder::fast(4, {2});
        options.damages = {cwtest::damage(cardgen::Damage::Kind::Missing, 2, {"BIM"}),
                           cwtest::damage(cardgen::Damage::Kind::Loose, 3)};
        m_card = std::make_unique<cwtest::CardFolder>(options);
        ASSERT_TRUE(m_card->ok()) << m_card->error().toStdString();
        m_work = m_card->workFolder();
        m_bpav = m_card->bpav();
        m_takes = optest::loadTakes(m_work);
        ASSERT_EQ(m_takes.size(), 5);
        ASSERT_EQ(m_takes.at(1).getTakeStatus(), 3);
        ASSERT_EQ(m_takes.at(2).getTakeStatus(), 4);
    }

    cwtest::FakeVolumeProvider m_volumes;
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
        m_destinationBefore = footage(m_destination->workFolder());
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

    EXPECT_EQ(footage(m_destination->workFolder()), m_destinationBefore);
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
