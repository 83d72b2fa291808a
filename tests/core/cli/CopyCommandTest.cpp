// clipwright-cli copy on generated cards: what it copies and reports, and what
// a cancel by signal and a real write failure leave (nothing of the copy).
// What arrives, byte for byte, is checked by the copy controller's tests.
#include "CliTestSupport.h"

#include "core/card/BLHouseKeepingCtrl.h"
#include "core/services/BLLocalizedStrings.h"

#include <QElapsedTimer>
#include <QThread>

#include <csignal>

using namespace clitest;
using CopyCommandTest = CliTest;

TEST_F(CopyCommandTest, CopiesACardAndReportsWhatItCopied)
{
    cwtest::CardFolder card(cwtest::CardFolder::fast(3, {2}));
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    const CliRun run = cli({"copy", "--json", card.workFolder(), home().path("media/Copy")});
    ASSERT_EQ(run.status, 0) << run.err.constData();
    const QJsonObject result = QJsonDocument::fromJson(run.out).object();
    EXPECT_EQ(result["takes"].toArray().size(), 4);
    EXPECT_TRUE(result["verified"].toBool());
    const QJsonArray copied = result["files"].toArray();
    ASSERT_EQ(copied.size(), 3 * 5 + 2 * 5 + 2);
    EXPECT_EQ(copied[0]["xxh64"].toString().size(), 16);
    // One take by its ID, without verification, into a folder that holds takes.
    const QString other = home().path("media/Other");
    ASSERT_EQ(cli({"copy", "--no-verify", card.workFolder(), other, "ABC0002"}).status, 0);
    ASSERT_EQ(cli({"copy", card.workFolder(), other, "ABC0001"}).status, 0);
    EXPECT_EQ(BLHouseKeepingCtrl().doHouseKeeping(other).size(), 2);
    // Wrong usage, and a take that is not there.
    for (const QStringList& args : {QStringList{}, {card.workFolder()}, {"--fast", card.workFolder(), other}})
        EXPECT_EQ(cli(QStringList{"copy"} + args).status, 2) << args.join(' ').toStdString();
    const CliRun unknown = cli({"copy", card.workFolder(), other, "XYZ0009"});
    EXPECT_EQ(unknown.status, 1);
    EXPECT_TRUE(unknown.err.contains("no take XYZ0009")) << unknown.err.constData();
}

// No file may grow past 64 KiB in the copying process: write fails with EFBIG
// in the middle of the first real-time metadata file. A new folder goes; a
// card that held takes stays as it was.
TEST_F(CopyCommandTest, ASignalCancelsAndLeavesNothingOfTheCopy)
{
    cardgen::Options options = cwtest::CardFolder::fast(12);
    options.size = "1920x1080";
    options.frames = 90;
    options.quantizer = 2;
    cwtest::CardFolder card(options);
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    const QMap<QString, QByteArray> source = files(card.workFolder());
    const QString destination = home().path("media/Copy");

    // The process is stopped as soon as its first file arrives, so the signal
    // surely comes while it copies.
    QProcess p;
    p.start(kCli, {"copy", card.workFolder(), destination});
    ASSERT_TRUE(p.waitForStarted());
    const QString first = destination + "/BPAV/CLPR/ABC0001/ABC0001M01.XML";
    QElapsedTimer timer;
    timer.start();
    while (!QFileInfo::exists(first) && timer.elapsed() < 30000 && p.state() == QProcess::Running)
        QThread::usleep(200);
    const pid_t pid = pid_t(p.processId());
    ASSERT_EQ(::kill(pid, SIGSTOP), 0);
    ::kill(pid, SIGINT);
    ::kill(pid, SIGCONT);
    const CliRun run = finish(p);
    EXPECT_EQ(run.status, 1);
    EXPECT_TRUE(run.err.contains("cancelled")) << run.err.constData();
    EXPECT_FALSE(QFileInfo::exists(destination));
    EXPECT_EQ(files(card.workFolder()), source);
}

TEST_F(CopyCommandTest, AWriteFailureRollsBackWithItsMessage)
{
    cwtest::CardFolder card(cwtest::CardFolder::fast(3));
    cardgen::Options options = cwtest::CardFolder::fast(2);
    options.prefix = "OTH";
    options.recorded = QDateTime::currentDateTimeUtc().addDays(-1); // other UMIDs
    cwtest::CardFolder other(options);
    ASSERT_TRUE(card.ok() && other.ok());
    ASSERT_EQ(cli({"scan", other.workFolder()}).status, 0);
    const QMap<QString, QByteArray> source = files(card.workFolder());
    const QMap<QString, QByteArray> held = files(other.workFolder());
    const QString fresh = home().path("media/Copy");
    for (const QString& destination : {fresh, other.workFolder()}) {
        SCOPED_TRACE(destination.toStdString());
        const CliRun run = cliWithFileSizeLimit({"copy", card.workFolder(), destination}, 65536);
        EXPECT_EQ(run.status, 1);
        EXPECT_TRUE(run.err.contains(BLLocalizedString("MSG_631_3166").toUtf8())) << run.err.constData();
    }
    EXPECT_FALSE(QFileInfo::exists(fresh));
    EXPECT_EQ(files(other.workFolder()), held);
    EXPECT_EQ(files(card.workFolder()), source);
}
