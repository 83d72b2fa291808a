// clipwright-cli move: what a write failure across file systems leaves, and
// what a process killed at any moment of a move leaves once both folders have
// been scanned again. What each folder lists after a move is checked by the
// move controller's tests.
#include "CliTestSupport.h"

#include <QRegularExpression>
#include <QSet>
#include <QStandardPaths>
#include <QStorageInfo>
#include <QTemporaryDir>

namespace {

using namespace clitest;

// Files of a card's clip and take folders (not its index files, which a move rewrites).
QMap<QString, QByteArray> footage(const QString& workFolder)
{
    QMap<QString, QByteArray> entries;
    for (const char* folder : {"CLPR", "TAKR"}) {
        const QMap<QString, QByteArray> found = files(workFolder + "/BPAV/" + folder);
        for (auto it = found.cbegin(); it != found.cend(); ++it)
            entries.insert(QString::fromLatin1(folder) + "/" + it.key(), it.value());
    }
    return entries;
}

// A folder on another file system than the home, with room, or "".
QString otherFileSystem(const QString& home)
{
    const QStorageInfo shm(QStringLiteral("/dev/shm"));
    return shm.rootPath() == "/dev/shm" && shm.device() != QStorageInfo(home).device() &&
                   shm.bytesAvailable() >= 200'000'000
               ? shm.rootPath()
               : QString();
}

using MoveCommandTest = CliTest;

} // namespace

TEST_F(MoveCommandTest, AWriteFailureAcrossFileSystemsMovesEverythingBack)
{
    const QString other = otherFileSystem(home().path("media"));
    if (other.isEmpty())
        GTEST_SKIP() << "no second file system with room";
    cardgen::Options options = cwtest::CardFolder::fast(4);
    options.size = "1920x1080";
    options.frames = 60;
    cwtest::CardFolder card(options);
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    const QMap<QString, QByteArray> before = files(card.workFolder());
    const QTemporaryDir target(other + "/clipwright-move-XXXXXX");
    const QString destination = target.path() + "/Moved";
    // No file may grow past 256 KiB in the moving process: the copy of the
    // first essence file fails with EFBIG.
    const CliRun run = cliWithFileSizeLimit({"move", card.workFolder(), destination}, 262144);
    EXPECT_EQ(run.status, 1);
    EXPECT_TRUE(run.err.contains("ABC0001.MP4 could not be moved (File too large)")) << run.err.constData();
    EXPECT_FALSE(QFileInfo::exists(destination));
    EXPECT_EQ(files(card.workFolder()), before);
}

// The crash test: the move is killed with SIGKILL at spread moments - on
// entering the n-th call of a file-changing system call, as strace makes it
// happen - and each time a scan of both folders (in turn destination first
// and source first) must list every take once and find every file whole.
TEST_F(MoveCommandTest, AMoveKilledAtAnyMomentLosesNothing)
{
    if (QStandardPaths::findExecutable("strace").isEmpty())
        GTEST_SKIP() << "strace is not installed";
    cardgen::Options options = cwtest::CardFolder::fast(12, {3});
    options.size = "tiny";
    cwtest::CardFolder card(options);
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    const QMap<QString, QByteArray> original = footage(card.workFolder());
    const QStringList umids = scannedUmids(card.workFolder());
    ASSERT_EQ(umids.size(), 13);

    QList<std::pair<const char*, QString>> places{{"one file system", home().path("media")}};
    const QString other = otherFileSystem(home().path("media"));
    const QTemporaryDir otherDir(other.isEmpty() ? QDir::tempPath() : other + "/clipwright-crash-XXXXXX");
    if (!other.isEmpty())
        places.append({"two file systems", otherDir.path()});

    const QString syscalls = QStringLiteral("rename,renameat2,mkdir,rmdir,unlink,unlinkat,fsync,write");
    // LeakSanitizer cannot run under ptrace: a sanitizer build runs the traced
    // command without it.
    QProcessEnvironment noLeakCheck = QProcessEnvironment::systemEnvironment();
    noLeakCheck.insert("ASAN_OPTIONS", noLeakCheck.value("ASAN_OPTIONS") + ":detect_leaks=0");
    int round = 0;
    for (const auto& [place, parent] : places) {
        SCOPED_TRACE(place);
        const QString source = home().path(QString("cards/%1").arg(round));
        const QString destination = parent + QString("/Moved%1").arg(round);
        const auto reset = [&] {
            QDir(source).removeRecursively();
            QDir(destination).removeRecursively();
            return QProcess::execute("cp", {"-a", card.workFolder(), source}) == 0;
        };
        const auto strace = [&](const QStringList& options) {
            QProcess p;
            p.setProcessEnvironment(noLeakCheck);
            p.start("strace",
                    QStringList{"-f", "-qq"} + options + QStringList{kCli, "move", source, destination});
            return finish(p).status;
        };
        ++round;
        ASSERT_TRUE(QDir().mkpath(home().path("cards")));

        // A whole run, traced: the file-changing calls in order, each with
        // its count in its thread, which is what strace counts to.
        ASSERT_TRUE(reset());
        const QString trace = home().path("trace.txt");
        ASSERT_EQ(strace({"-o", trace, "-e", "trace=" + syscalls}), 0);
        QList<QPair<QString, int>> calls; // name, count in its thread
        QMap<QString, int> counts;
        static const QRegularExpression line(R"(^(\d+)\s+(\w+)\()");
        for (const QByteArray& text : cwtest::readFile(trace).split('\n')) {
            const QRegularExpressionMatch m = line.match(QString::fromUtf8(text));
            if (m.hasMatch())
                calls.append({m.captured(2), ++counts[m.captured(1) + " " + m.captured(2)]});
        }
        ASSERT_GT(calls.size(), 40);

        // Twelve moments spread over the run; each lands where a thread first
        // makes its n-th call of that name.
        QList<int> landed;
        for (int k = 0; k < 12; ++k) {
            const int at = int(qint64(calls.size() - 1) * (2 * k + 1) / 24);
            const auto first = std::find(calls.begin(), calls.end(), calls[at]);
            const int index = int(first - calls.begin());
            if (!landed.contains(index))
                landed.append(index);
        }
        ASSERT_GE(landed.size(), 10);

        QSet<qsizetype> arrived; // how many takes the destination ended with
        for (int k = 0; k < landed.size(); ++k) {
            const QPair<QString, int>& call = calls[landed[k]];
            SCOPED_TRACE(QString("killed at %1 #%2").arg(call.first).arg(call.second).toStdString());
            ASSERT_TRUE(reset());
            const QString inject =
                QString("--inject=%1:signal=KILL:when=%2").arg(call.first).arg(call.second);
            EXPECT_EQ(strace({"-o", "/dev/null", inject}), -1) << "the move was not killed";

            // Either folder may be opened first.
            const bool destinationFirst = k % 2 == 0;
            QStringList listed = scannedUmids(destinationFirst ? destination : source);
            const QStringList other = scannedUmids(destinationFirst ? source : destination);
            arrived.insert(destinationFirst ? listed.size() : other.size());
            listed += other;
            listed.sort();
            EXPECT_EQ(listed, umids);
            const QMap<QString, QByteArray> inSource = footage(source);
            const QMap<QString, QByteArray> inDestination = footage(destination);
            for (auto it = original.cbegin(); it != original.cend(); ++it)
                EXPECT_TRUE(inSource.value(it.key()) == it.value() ||
                            inDestination.value(it.key()) == it.value())
                    << it.key().toStdString();
            // Nothing of the move is left behind, and the scans repaired all.
            for (const QString& bpav : {source + "/BPAV", destination + "/BPAV"})
                EXPECT_EQ(QDir(bpav)
                              .entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot)
                              .filter(QRegularExpression("^\\.")),
                          QStringList());
            EXPECT_EQ(
                QJsonDocument::fromJson(cli({"scan", "--json", source}).out)["repairs"].toArray().size(), 0);
        }
        // The moments fell before, during and after the takes' moving.
        EXPECT_TRUE(arrived.contains(0) && arrived.contains(13) && arrived.size() >= 3) << arrived.size();
    }
}
