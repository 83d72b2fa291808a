#include "OperationsTestSupport.h"

#include "core/card/BLClipCtrl.h"
#include "core/card/DOClipCtrl.h"
#include "core/services/BLCommon.h"
#include "support/AsOrdinaryUser.h"
#include "support/FakeVolumeProvider.h"

#include <QTemporaryDir>

namespace {

QStringList umidsOf(const QList<DOTakeData>& takes)
{
    QStringList umids;
    for (const DOTakeData& take : takes)
        umids << take.getUmid();
    return umids;
}

} // namespace

// A source card with two single-clip takes (ABC0001, ABC0002) and a take of
// two clips (ABC0003U01: ABC0003, ABC0004), and destinations beside it.
class ChecksTest : public cwtest::HomeTest
{
protected:
    void SetUp() override
    {
        HomeTest::SetUp();
        cardgen::Options options = cwtest::CardFolder::fast(2);
        options.multiClipTakes = {2};
        m_source = std::make_unique<cwtest::CardFolder>(options);
        ASSERT_TRUE(m_source->ok()) << m_source->error().toStdString();
        m_takes = optest::loadTakes(m_source->workFolder());
        ASSERT_EQ(m_takes.at(2).getTakeID(), "ABC0003U01");
        m_parent = m_dir.path();
    }

    // A copy of the chosen takes (all by default) into <parent>/<name>,
    // knowing the destination's takes.
    DOClipCtrl record(const QString& name, const QList<DOTakeData>& from = {}) const
    {
        DOClipCtrl clipCtrl;
        clipCtrl.setSourceWorkFolder(m_source->workFolder());
        clipCtrl.setCopyToFolder(m_parent);
        clipCtrl.setCopyToFolderName(name);
        clipCtrl.setFromTakes(from.isEmpty() ? m_takes : from);
        clipCtrl.setToTakes(optest::loadTakes(clipCtrl.destinationWorkFolder()));
        return clipCtrl;
    }

    QString sourceBpav() const { return m_source->bpav(); }
    QString destination(const QString& relative) const { return m_parent + "/Dest/" + relative; }
    // Copies a folder of the source BPAV folder into the destination's.
    void copyToDestination(const QString& from, const QString& to) const
    {
        ASSERT_TRUE(QDir().mkpath(QFileInfo(destination("BPAV/" + to)).path()));
        ASSERT_TRUE(BLCommon::copyFile(sourceBpav() + "/" + from, destination("BPAV/" + to)));
    }

    cwtest::MessageRecorder m_messages;
    QTemporaryDir m_dir;
    QString m_parent;
    std::unique_ptr<cwtest::CardFolder> m_source;
    QList<DOTakeData> m_takes;
    BLClipCtrl m_ctrl;
};

TEST_F(ChecksTest, ANameOrUmidAlreadyInTheDestinationRefusesTheWholeOperation)
{
    ASSERT_TRUE(QDir().mkpath(destination("BPAV/CLPR")));
    DOClipCtrl clean = record("Dest");
    EXPECT_TRUE(m_ctrl.checkRepeatClip(clean));
    EXPECT_EQ(umidsOf(clean.getNewTakes()), umidsOf(m_takes));
    const auto refused = [&](const char* what) {
        DOClipCtrl clipCtrl = record("Dest");
        const QMap<QString, QByteArray> before = optest::snapshot(m_parent + "/Dest");
        EXPECT_FALSE(m_ctrl.checkRepeatClip(clipCtrl)) << what;
        // Nothing is renamed or touched: the new takes are the chosen ones.
        EXPECT_EQ(umidsOf(clipCtrl.getNewTakes()), umidsOf(m_takes)) << what;
        EXPECT_EQ(optest::snapshot(m_parent + "/Dest"), before) << what;
        ASSERT_TRUE(QDir(m_parent + "/Dest/BPAV").removeRecursively());
        ASSERT_TRUE(QDir().mkpath(destination("BPAV/CLPR")));
    };
    // A clip folder of a multi-clip take under the same name, in other case.
    ASSERT_TRUE(QDir().mkpath(destination("BPAV/CLPR/abc0004")));
    refused("clip folder name");
    // The take folder.
    ASSERT_TRUE(QDir().mkpath(destination("BPAV/TAKR/ABC0003U01")));
    refused("take folder name");
    // A clip under another name that has the UMID of a chosen clip.
    copyToDestination("CLPR/ABC0003", "CLPR/XYZ0001");
    refused("clip UMID");
    // A take under another name that has the UMID of the chosen take.
    copyToDestination("TAKR/ABC0003U01", "TAKR/XYZ0001U01");
    refused("take UMID");
}

TEST_F(ChecksTest, TheDestinationPathMustBeNamedUsableAndOtherThanTheSource)
{
    ASSERT_TRUE(QDir().mkpath(m_parent + "/Dest"));
    const auto refusal = [&](const DOClipCtrl& clipCtrl, int type) {
        m_messages.clear();
        EXPECT_FALSE(m_ctrl.checkCopyPath(clipCtrl, type));
        return m_messages.keys().join(',');
    };
    // No name, unless the operation made the folder.
    DOClipCtrl unnamed = record("");
    EXPECT_EQ(refusal(unnamed, BLClipCtrl::kTypeCopy), "MSG_642_3168");
    EXPECT_EQ(refusal(unnamed, BLClipCtrl::kTypeMove), "MSG_644_3197");
    // A forbidden character anywhere in the path.
    ASSERT_TRUE(QDir().mkpath(m_parent + "/A:B"));
    EXPECT_EQ(refusal(record("A:B"), BLClipCtrl::kTypeMove), "MSG_648_3160");
    // A drive of a kind that cannot be used.
    cwtest::FakeVolumeProvider volumes;
    volumes.addVolume({m_parent + "/Dest", "ntfs", "NTFS", 100'000'000'000, 50'000'000'000});
    EXPECT_EQ(refusal(record("Dest"), BLClipCtrl::kTypeCopy), "MSG_642_3111");
    EXPECT_EQ(refusal(record("Dest"), BLClipCtrl::kTypeMove), "MSG_644_3186");
    // The source folder itself, named in other case (a combine is refused
    // without a message).
    m_parent = QFileInfo(m_source->workFolder()).path();
    ASSERT_TRUE(QDir().mkpath(m_parent + "/CARD"));
    EXPECT_EQ(refusal(record("CARD"), BLClipCtrl::kTypeCopy), "MSG_642_3158");
    EXPECT_EQ(refusal(record("CARD"), BLClipCtrl::kTypeMove), "MSG_644_3187");
    EXPECT_EQ(refusal(record("CARD"), BLClipCtrl::kTypeCombine), "");
}

// A clip of the multi-clip take that cannot be changed stops the check at its take.
TEST_F(ChecksTest, TheSourceMustBeChangeableAndItsTakesDeletable)
{
    optest::openTree(m_source->workFolder());
    DOClipCtrl clipCtrl = record("Dest");
    const QString clip = sourceBpav() + "/CLPR/ABC0004";
    QFile::setPermissions(clip, QFile::Permissions(0x5555));
    {
        cwtest::AsOrdinaryUser user;
        for (int type : {BLClipCtrl::kTypeMove, BLClipCtrl::kTypeCombine, BLClipCtrl::kTypeDelete})
            EXPECT_FALSE(m_ctrl.checkWritableMoveOrigin(clipCtrl, type));
        EXPECT_FALSE(m_ctrl.checkDeletePath(clipCtrl));
    }
    QFile::setPermissions(clip, QFile::Permissions(0x7777));
    EXPECT_EQ(m_messages.keys(),
              QStringList({"MSG_6510_3207", "MSG_6510_3205", "MSG_6510_3203", "MSG_6510_3203"}));
    EXPECT_EQ(clipCtrl.getTargetTake().getUmid(), m_takes.at(2).getUmid());
}
