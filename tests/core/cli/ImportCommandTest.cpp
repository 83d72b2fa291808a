// clipwright-cli import: what a real write failure leaves (the folder as it
// was, a moved file back) and its report. The clips an import makes are
// checked by the import controller's tests.
#include "CliTestSupport.h"

#include "core/card/BLHouseKeepingCtrl.h"
#include "core/services/BLLocalizedStrings.h"

using namespace clitest;
using ImportCommandTest = CliTest;

TEST_F(ImportCommandTest, AWriteFailureLeavesTheFolderAsItWasAndARunWithoutItReportsTheClip)
{
    cardgen::Options options = cwtest::CardFolder::fast(2);
    options.damages = {cwtest::damage(cardgen::Damage::Kind::Loose, 2)};
    cwtest::CardFolder card(options);
    cwtest::CardFolder other(cwtest::CardFolder::fast(1));
    ASSERT_TRUE(card.ok() && other.ok());
    BLHouseKeepingCtrl().doHouseKeeping(card.workFolder());
    const QMap<QString, QByteArray> before = files(card.workFolder());
    const QString loose = card.bpav() + "/CLPR/ABC0002.MP4";
    const QString copied = other.bpav() + "/CLPR/ABC0001/ABC0001.MP4";
    ASSERT_TRUE(QFileInfo::exists(loose));
    // No file may grow past half the copied MP4 in the importing process:
    // the loose file moves, its metadata is written, then the copy fails.
    const qint64 limit = QFileInfo(copied).size() / 2;
    ASSERT_GT(limit, QFileInfo(card.bpav() + "/MEDIAPRO.XML").size() + 4096);
    const CliRun run = cliWithFileSizeLimit({"import", card.workFolder(), loose, copied}, limit);
    EXPECT_EQ(run.status, 1);
    EXPECT_TRUE(run.err.contains(BLLocalizedString("MSG_631_3166").toUtf8())) << run.err.constData();
    EXPECT_EQ(files(card.workFolder()), before);
    // Without the limit the import reports the clip it made.
    const CliRun imported = cli({"import", "--json", card.workFolder(), copied});
    ASSERT_EQ(imported.status, 0) << imported.err.constData();
    const QJsonObject result = QJsonDocument::fromJson(imported.out).object();
    EXPECT_TRUE(result["verified"].toBool());
    EXPECT_EQ(result["clips"].toArray().size(), 1);
    EXPECT_EQ(cli({"import", card.workFolder()}).status, 2);
}
