#include "core/services/BLCommon.h"
#include "core/services/BLPlistCtrl.h"
#include "core/services/BLProgressThread.h"
#include "support/AsOrdinaryUser.h"
#include "support/TestEnvironment.h"

#include <QDir>
#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <xxhash.h>

namespace {

constexpr qint64 kMiB = 1048576;

QByteArray pattern(qint64 size)
{
    QByteArray data(size, Qt::Uninitialized);
    auto* words = reinterpret_cast<quint32*>(data.data());
    QRandomGenerator(7).fillRange(words, size / 4);
    return data;
}

// A worker as the copy, move and delete workers use it: records the progress
// shown at each pause and can ask to cancel at a chosen pause.
class RecordingWorker : public BLProgressThread
{
public:
    void waitThread() override
    {
        shown << progressValue();
        maxima << progressMax();
        if (++waits == cancelAtWait)
            setCancel();
    }
    QList<double> shown;
    QList<double> maxima;
    int waits = 0;
    int cancelAtWait = 0;
};

} // namespace

class CopyWithProgressTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        m_data = pattern(25 * kMiB);
        ASSERT_TRUE(cwtest::writeFile(src(), m_data));
    }
    QString src() const { return m_dir.filePath("C0001.MP4"); }
    QString dst() const { return m_dir.filePath("out/C0001.MP4"); }

    QTemporaryDir m_dir;
    QByteArray m_data;
};

TEST_F(CopyWithProgressTest, ChunksOfTenMiBAreReportedInWholeMiB)
{
    QDir().mkpath(m_dir.filePath("out"));
    RecordingWorker worker;
    qint64 done = 0;
    EXPECT_EQ(BLCommon::copyFileWithProgress(src(), dst(), &worker, &done, 25), 0);
    EXPECT_EQ(worker.shown, QList<double>({10, 20, 25}));
    EXPECT_EQ(worker.maxima, QList<double>({25, 25, 25}));
    EXPECT_EQ(cwtest::readFile(dst()), m_data);

    // The counter continues from what was done before and is clamped to the total.
    RecordingWorker second;
    qint64 counter = 5;
    EXPECT_EQ(BLCommon::copyFileWithProgress(src(), m_dir.filePath("out/second.MP4"), &second, &counter, 20),
              0);
    EXPECT_EQ(second.shown, QList<double>({15, 20, 20}));
    EXPECT_EQ(counter, 30);

    ASSERT_TRUE(cwtest::writeFile(m_dir.filePath("empty.BIM"), ""));
    EXPECT_EQ(BLCommon::copyFileWithProgress(m_dir.filePath("empty.BIM"), m_dir.filePath("out/empty.BIM"),
                                             nullptr, nullptr, 0),
              0);
    EXPECT_TRUE(QFileInfo::exists(m_dir.filePath("out/empty.BIM")));
}

TEST_F(CopyWithProgressTest, ASourceTheKernelCannotCopyGoesThroughABuffer)
{
    // A pipe delivers its data in small pieces; chunks are still 10 MiB.
    QDir().mkpath(m_dir.filePath("out"));
    const QString fifo = m_dir.filePath("stream");
    ASSERT_EQ(mkfifo(QFile::encodeName(fifo).constData(), 0600), 0);
    std::thread writer([&] {
        QFile pipe(fifo);
        ASSERT_TRUE(pipe.open(QIODevice::WriteOnly));
        for (qint64 at = 0; at < m_data.size(); at += 100000)
            pipe.write(m_data.constData() + at, qMin<qint64>(100000, m_data.size() - at));
    });
    RecordingWorker worker;
    EXPECT_EQ(BLCommon::copyFileWithProgress(fifo, dst(), &worker, nullptr, 25), 0);
    writer.join();
    EXPECT_EQ(worker.shown, QList<double>({10, 20, 25}));
    EXPECT_EQ(cwtest::readFile(dst()), m_data);
}

TEST_F(CopyWithProgressTest, CancelIsTestedBetweenChunksAndDuringTheReadBack)
{
    QDir().mkpath(m_dir.filePath("out"));
    RecordingWorker worker;
    worker.cancelAtWait = 2; // requested while the second chunk is under way
    qint64 done = 0;
    EXPECT_EQ(BLCommon::copyFileWithProgress(src(), dst(), &worker, &done, 25), 3);
    EXPECT_EQ(done, 20);
    // The partial copy stays for the caller to remove; what counted is intact.
    EXPECT_EQ(cwtest::readFile(dst()).left(20 * kMiB), m_data.left(20 * kMiB));

    // During the last chunk: too late for an unverified copy, which is whole,
    // but a verified copy still stops its read-back.
    for (const bool verify : {false, true}) {
        RecordingWorker late;
        late.cancelAtWait = 3;
        const QString copy = m_dir.filePath(verify ? "out/verified.MP4" : "out/late.MP4");
        EXPECT_EQ(BLCommon::copyFileWithProgress(src(), copy, &late, nullptr, 25, verify), verify ? 3 : 0);
        EXPECT_EQ(cwtest::readFile(copy), m_data);
    }
    bool cancelled = false;
    EXPECT_FALSE(BLCommon::verifyCopiedFile(m_dir.filePath("out/late.MP4"),
                                            XXH64(m_data.constData(), size_t(m_data.size()), 0), &worker,
                                            &cancelled));
    EXPECT_TRUE(cancelled);

    // A file of exactly two chunks has no chunk after its second.
    ASSERT_TRUE(cwtest::writeFile(m_dir.filePath("two.MP4"), m_data.left(20 * kMiB)));
    RecordingWorker exact;
    exact.cancelAtWait = 2;
    EXPECT_EQ(BLCommon::copyFileWithProgress(m_dir.filePath("two.MP4"), m_dir.filePath("out/two.MP4"), &exact,
                                             nullptr, 20, false),
              0);
}

TEST_F(CopyWithProgressTest, AVerifiedCopyHashesTheSourceAndReadsTheCopyBack)
{
    cwtest::ScopedHome home;
    cwtest::writeSettings(home.configHome(), {{"LOG_FLAG", "ALL"}});
    QDir().mkpath(m_dir.filePath("out"));
    quint64 hash = 0;
    EXPECT_EQ(BLCommon::copyFileWithProgress(src(), dst(), nullptr, nullptr, 25, true, &hash), 0);
    const quint64 expected = XXH64(m_data.constData(), size_t(m_data.size()), 0);
    EXPECT_EQ(hash, expected);

    // The short form follows the setting, on unless switched off; the log
    // line is the only sign of the read-back.
    const QString other = m_dir.filePath("out/other.MP4");
    EXPECT_EQ(BLCommon::copyFileWithProgress(src(), other, nullptr, nullptr, 25), 0);
    BLPlistCtrl::sharedCtrl()->setVerifyCopy(false);
    const QString plain = m_dir.filePath("out/plain.MP4");
    EXPECT_EQ(BLCommon::copyFileWithProgress(src(), plain, nullptr, nullptr, 25), 0);
    const QStringList log = cwtest::logMessages();
    const QString hex = QString::asprintf("%016llx", qulonglong(expected));
    EXPECT_TRUE(log.contains(
        QStringLiteral("0601:[BLCommon copyFileWithProgress] %1 xxh64:%2 verified").arg(other, hex)));
    EXPECT_TRUE(log.contains(QStringLiteral("0601:[BLCommon copyFileWithProgress] %1 copied").arg(plain)));

    // The read-back refuses a file one byte off, or one it cannot read.
    QByteArray changed = m_data;
    changed[15 * kMiB + 3] = char(changed[15 * kMiB + 3] ^ 0x01);
    ASSERT_TRUE(cwtest::writeFile(m_dir.filePath("changed.MP4"), changed));
    const std::pair<QString, bool> cases[] = {
        {dst(), true}, {m_dir.filePath("changed.MP4"), false}, {m_dir.filePath("missing"), false}};
    for (const auto& [path, verified] : cases) {
        bool cancelled = true;
        EXPECT_EQ(BLCommon::verifyCopiedFile(path, expected, nullptr, &cancelled), verified)
            << path.toStdString();
        EXPECT_FALSE(cancelled);
    }
}

TEST_F(CopyWithProgressTest, ReadAndWriteErrorsAnswerTwoAndLeaveTheSource)
{
    // In a child whose writes end at 15 MiB, as on a full volume.
    QDir().mkpath(m_dir.filePath("out"));
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        std::signal(SIGXFSZ, SIG_IGN); // a failed write (EFBIG), not a killed process
        const rlimit limit{15 * kMiB, 15 * kMiB};
        setrlimit(RLIMIT_FSIZE, &limit);
        _exit(BLCommon::copyFileWithProgress(src(), dst(), nullptr, nullptr, 25, true));
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status)) << status;
    EXPECT_EQ(WEXITSTATUS(status), 2);
    EXPECT_EQ(QFileInfo(dst()).size(), 15 * kMiB); // the partial file stays for the caller
    EXPECT_EQ(cwtest::readFile(src()), m_data);

    // Unreadable sources (the kernel refuses to read address 0 of this
    // process's memory), unwritable destinations, and an existing destination,
    // which is never replaced.
    ASSERT_TRUE(cwtest::writeFile(m_dir.filePath("out/keep.MP4"), "precious"));
    const QString refused[][2] = {{"/proc/self/mem", "out/mem"},
                                  {m_dir.filePath("missing"), "out/x"},
                                  {src(), "no/such/folder/x"},
                                  {src(), "out/keep.MP4"}};
    for (const auto& c : refused)
        EXPECT_EQ(BLCommon::copyFileWithProgress(c[0], m_dir.filePath(c[1]), nullptr, nullptr, 1), 2)
            << c[1].toStdString();
    EXPECT_EQ(cwtest::readFile(m_dir.filePath("out/keep.MP4")), "precious");
}

class FileOpsTest : public cwtest::HomeTest
{
protected:
    QString path(const QString& relative) const { return m_dir.filePath(relative); }
    QTemporaryDir m_dir;
};

TEST_F(FileOpsTest, MovesAcrossFileSystemsCopyAndRemove)
{
    struct stat here
    {
    };
    struct stat shm
    {
    };
    if (stat(QFile::encodeName(m_dir.path()).constData(), &here) != 0 || stat("/dev/shm", &shm) != 0 ||
        here.st_dev == shm.st_dev || access("/dev/shm", W_OK) != 0)
        GTEST_SKIP() << "needs a writable /dev/shm on another file system";
    QTemporaryDir other("/dev/shm/clipwright-test-XXXXXX");
    ASSERT_TRUE(other.isValid());
    ASSERT_TRUE(cwtest::writeFile(path("card/C0001/C0001.MP4"), pattern(kMiB)));
    ASSERT_TRUE(cwtest::writeFile(path("card/C0001/.hidden"), "h"));
    EXPECT_TRUE(BLCommon::moveFolder(path("card/C0001"), other.filePath("C0001")));
    EXPECT_FALSE(QFileInfo::exists(path("card/C0001")));
    EXPECT_EQ(cwtest::readFile(other.filePath("C0001/C0001.MP4")), pattern(kMiB));
    EXPECT_EQ(cwtest::readFile(other.filePath("C0001/.hidden")), "h");
    // Back onto an existing folder: refused, the source stays.
    QDir().mkpath(path("card/C0001"));
    EXPECT_FALSE(BLCommon::moveFolder(other.filePath("C0001"), path("card/C0001")));
    EXPECT_TRUE(QFileInfo::exists(other.filePath("C0001/C0001.MP4")));
}

TEST_F(FileOpsTest, CopyCreateAndRemove)
{
    ASSERT_TRUE(cwtest::writeFile(path("src/C0001/C0001.MP4"), "essence"));
    ASSERT_TRUE(cwtest::writeFile(path("src/C0001/.hidden"), "h"));
    ASSERT_TRUE(cwtest::writeFile(path("src/C0001/sub/C0001.BIM"), "bim"));
    ASSERT_TRUE(QFile::link("C0001.MP4", path("src/C0001/link.MP4")));

    ASSERT_TRUE(BLCommon::copyFile(path("src/C0001"), path("dst")));
    EXPECT_EQ(cwtest::readFile(path("dst/.hidden")), "h");
    EXPECT_EQ(cwtest::readFile(path("dst/sub/C0001.BIM")), "bim");
    EXPECT_EQ(QFileInfo(path("dst/link.MP4")).symLinkTarget(), path("dst/C0001.MP4")); // still relative
    EXPECT_FALSE(BLCommon::copyFile(path("src/C0001"), path("dst")));                  // exists

    // A folder copy that fails part-way (an unreadable file) leaves nothing behind.
    for (const QString& folder : {m_dir.path(), path("src"), path("src/C0001"), path("src/C0001/sub")})
        chmod(QFile::encodeName(folder).constData(), 0777);
    chmod(QFile::encodeName(path("src/C0001/sub/C0001.BIM")).constData(), 0);
    {
        cwtest::AsOrdinaryUser user;
        EXPECT_FALSE(BLCommon::copyFile(path("src/C0001"), path("half")));
    }
    EXPECT_FALSE(QFileInfo::exists(path("half")));
    chmod(QFile::encodeName(path("src/C0001/sub/C0001.BIM")).constData(), 0644);

    ASSERT_TRUE(cwtest::writeFile(path("new/full"), "data"));
    EXPECT_FALSE(BLCommon::createNewFile(path("new/full"))); // an existing file is kept
    EXPECT_EQ(cwtest::readFile(path("new/full")), "data");

    EXPECT_TRUE(BLCommon::removeFile(path("dst/link.MP4")));
    EXPECT_TRUE(QFileInfo::exists(path("dst/C0001.MP4"))); // the link went, not its target
    EXPECT_TRUE(BLCommon::removeFile(path("dst")));
    EXPECT_FALSE(QFileInfo::exists(path("dst")));
    EXPECT_FALSE(BLCommon::removeFile(path("dst")));
}

TEST_F(FileOpsTest, MoveAndRemoveWithProgressCountAndStopOnCancel)
{
    ASSERT_TRUE(cwtest::writeFile(path("a/C0001.MP4"), "1"));
    ASSERT_TRUE(cwtest::writeFile(path("a/C0002.MP4"), "2"));
    ASSERT_TRUE(cwtest::writeFile(path("b/C0003.MP4"), "3"));
    RecordingWorker worker;
    int count = 0;
    EXPECT_EQ(BLCommon::moveFileWithProgress(path("a/C0001.MP4"), path("b/C0001.MP4"), &worker, &count, 2),
              0);
    EXPECT_EQ(count, 1);
    worker.setCancel();
    EXPECT_EQ(BLCommon::moveFileWithProgress(path("a/C0002.MP4"), path("b/C0002.MP4"), &worker, &count, 2),
              3);
    EXPECT_TRUE(QFileInfo::exists(path("b/C0002.MP4"))); // moved before the cancel was seen
    // A missing source, and an existing destination, which is never replaced.
    EXPECT_EQ(BLCommon::moveFileWithProgress(path("a/C0002.MP4"), path("b/x"), &worker, &count, 2), 2);
    EXPECT_EQ(BLCommon::moveFileWithProgress(path("b/C0001.MP4"), path("b/C0003.MP4"), &worker, &count, 2),
              2);
    EXPECT_EQ(cwtest::readFile(path("b/C0003.MP4")), "3");
    EXPECT_EQ(count, 2);

    // Removal goes from the last path to the first: files before their folder.
    cwtest::ScopedHome home;
    cwtest::writeSettings(home.configHome(), {{"LOG_FLAG", "ALL"}});
    ASSERT_TRUE(cwtest::writeFile(path("t/TAKR/T1/T1.SMI"), "s"));
    ASSERT_TRUE(cwtest::writeFile(path("t/TAKR/T1/T1M01.XML"), "x"));
    const QStringList paths = {path("t/TAKR/T1"), path("t/TAKR/T1/T1.SMI"), path("t/TAKR/T1/T1M01.XML")};
    RecordingWorker remover;
    int removed = 0;
    EXPECT_TRUE(BLCommon::removeFileWithProgress(paths, &remover, &removed, 3));
    EXPECT_EQ(remover.shown, QList<double>({1, 2, 3}));
    EXPECT_FALSE(QFileInfo::exists(path("t/TAKR/T1")));
    const QStringList log = cwtest::logMessages();
    const QString line = "0601:[BLCommon removeFileWithProgress] path : %1";
    ASSERT_GE(log.indexOf(line.arg(paths[2])), 0);
    EXPECT_LT(log.indexOf(line.arg(paths[2])), log.indexOf(line.arg(paths[1])));
    EXPECT_LT(log.indexOf(line.arg(paths[1])), log.indexOf(line.arg(paths[0])));

    // Cancel stops after the current path; a failed removal stops at once.
    for (const char* name : {"u/1", "u/2", "u/3"})
        ASSERT_TRUE(cwtest::writeFile(path(name), "u"));
    RecordingWorker cancelling;
    cancelling.setCancel();
    const std::pair<QStringList, RecordingWorker*> stops[] = {
        {{path("u/1"), path("u/2"), path("u/3")}, &cancelling},
        {{path("u/1"), path("u/gone"), path("u/2")}, nullptr}};
    for (const auto& [list, thread] : stops) {
        int from = 0;
        EXPECT_FALSE(BLCommon::removeFileWithProgress(list, thread, &from, 3));
        EXPECT_EQ(from, 1);
        EXPECT_TRUE(QFileInfo::exists(path("u/1")));
    }
}
