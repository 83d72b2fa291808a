// Offload of generated cards: the engine's copies and manifests, and
// clipwright-cli offload and verify with real faults, a cancel and a history.
#include "CliTestSupport.h"

#include "core/formats/metadata/BLDomXmlParse.h"
#include "core/operations/offload/BLOffloadThread.h"
#include "core/services/BLCommon.h"

#include <QFile>
#include <QThread>

#include <csignal>

using namespace clitest;
using OffloadTest = CliTest;

namespace {

// The bytes this thread has read through system calls so far.
qint64 bytesReadByThisThread()
{
    QFile io(QStringLiteral("/proc/thread-self/io"));
    if (!io.open(QIODevice::ReadOnly))
        return -1;
    for (const QByteArray& line : io.readAll().split('\n'))
        if (line.startsWith("rchar:"))
            return line.mid(6).trimmed().toLongLong();
    return -1;
}

QMap<QString, QByteArray> withoutHistory(QMap<QString, QByteArray> entries)
{
    entries.removeIf([](auto e) { return e.key().startsWith(BLMhlHistory::kFolderName + '/'); });
    return entries;
}

QString manifestOf(const QString& folder, int generation)
{
    const QStringList found =
        QDir(folder + "/ascmhl").entryList({QStringLiteral("%1_*.mhl").arg(generation, 4, 10, QChar('0'))});
    return found.size() == 1 ? folder + "/ascmhl/" + found[0] : QString();
}

} // namespace

TEST_F(OffloadTest, EngineCopiesACardReadOnceToTwoVerifiedDestinations)
{
    cwtest::CardFolder card(cwtest::CardFolder::fast(2, {2}));
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    ASSERT_TRUE(QDir().mkpath(card.workFolder() + "/BPAV/EMPTY"));
    // Several chunks and a partial one: the copy is read back while it is written.
    QByteArray big(BLOffloadThread::kChunkSize * 6 + 4099, '\0');
    for (qsizetype i = 0; i < big.size(); ++i)
        big[i] = char(i * 7 + i / 4096);
    ASSERT_TRUE(cwtest::writeFile(card.workFolder() + "/BPAV/BIG.BIN", big));
    const QMap<QString, QByteArray> source = files(card.workFolder());
    qint64 cardSize = 0;
    for (auto it = source.cbegin(); it != source.cend(); ++it)
        cardSize += QFileInfo(card.workFolder() + '/' + it.key()).size();
    const QStringList destinations{home().path("media/A"), home().path("media/B")};
    BLOffloadThread offload(card.workFolder(), destinations);
    const qint64 before = bytesReadByThisThread();
    ASSERT_TRUE(offload.run());
    EXPECT_LT(bytesReadByThisThread() - before, cardSize * 11 / 10);
    for (const QString& copy : destinations) {
        EXPECT_EQ(withoutHistory(files(copy)), source) << copy.toStdString();
        BLMhlHistory history(copy);
        ASSERT_TRUE(history.load());
        ASSERT_EQ(history.files().size(), source.size());
        for (const BLMhlHistory::Entry& e : history.files()) {
            quint64 hash = 0;
            ASSERT_TRUE(BLCommon::hashFile(card.workFolder() + '/' + e.path, &hash, nullptr, nullptr));
            EXPECT_EQ(e.hash, hash) << e.path.toStdString();
            EXPECT_EQ(e.action, "original");
        }
    }
}

TEST_F(OffloadTest, TheHistoryOfACopyContinuesAndVerifyReportsAndSealsChanges)
{
    cwtest::CardFolder card(cwtest::CardFolder::fast(1));
    ASSERT_TRUE(card.ok());
    const QString copy = home().path("media/CARD");
    ASSERT_TRUE(QDir().mkpath(home().path("media/second")));
    ASSERT_EQ(cli({"offload", "--name", "CARD", card.workFolder(), home().path("media")}).status, 0);
    EXPECT_EQ(cli({"verify", copy}).status, 0);

    // An offload of the copy continues its history: every file verified.
    CliRun run = cli({"offload", copy, home().path("media/second")});
    ASSERT_EQ(run.status, 0) << run.err.constData();
    BLMhlHistory history(home().path("media/second/CARD"));
    ASSERT_TRUE(history.load());
    EXPECT_EQ(history.lastGeneration(), 2);
    for (const BLMhlHistory::Entry& e : history.files())
        EXPECT_EQ(e.action, "verified") << e.path.toStdString();

    // An added file is sealed into a new generation, chained by its C4 id.
    ASSERT_TRUE(cwtest::writeFile(copy + "/NOTE.TXT", "x"));
    run = cli({"verify", "--seal", copy});
    EXPECT_EQ(run.status, 0) << run.err.constData();
    EXPECT_TRUE(run.err.contains("new NOTE.TXT"));
    ASSERT_FALSE(manifestOf(copy, 2).isEmpty());
    BLDomXmlParse chain;
    ASSERT_TRUE(chain.loadXml(copy + "/ascmhl/ascmhl_chain.xml"));
    EXPECT_EQ(chain.selectNodeArray("/ascmhldirectory/hashlist/c4"), 2);
    EXPECT_EQ(chain.getElementValue(1), BLMhlHistory::c4Id(cwtest::readFile(manifestOf(copy, 2))));

    // A flipped byte and a missing file are reported, and the altered copy is
    // not offloaded; the added file is known now.
    QByteArray profile = cwtest::readFile(copy + "/BPAV/MEDIAPRO.XML");
    profile[0] = char(profile[0] ^ 1);
    ASSERT_TRUE(cwtest::writeFile(copy + "/BPAV/MEDIAPRO.XML", profile));
    ASSERT_TRUE(QFile::remove(copy + "/BPAV/CUEUP.XML"));
    run = cli({"verify", "--json", copy});
    EXPECT_EQ(run.status, 1);
    EXPECT_TRUE(run.err.contains("altered BPAV/MEDIAPRO.XML"));
    EXPECT_TRUE(run.err.contains("missing BPAV/CUEUP.XML"));
    EXPECT_FALSE(run.err.contains("new "));
    run = cli({"offload", "--name", "AGAIN", copy, home().path("media/second")});
    EXPECT_EQ(run.status, 1);
    EXPECT_TRUE(run.err.contains("altered BPAV/MEDIAPRO.XML")) << run.err.constData();
    EXPECT_FALSE(QFileInfo::exists(home().path("media/second/AGAIN")));
}

TEST_F(OffloadTest, AFailingDestinationIsRemovedWhileTheOtherVerifies)
{
    cwtest::CardFolder card(cwtest::CardFolder::fast(1));
    ASSERT_TRUE(card.ok());
    // A destination so deep that the card's longest path is one byte over the
    // longest the system allows (4095 bytes and the NUL), while its folders fit.
    qsizetype longest = 0;
    for (const QString& path : files(card.workFolder()).keys())
        longest = qMax(longest, path.size());
    const qsizetype depth = 4096 - qsizetype(qstrlen("/CARD/")) - longest;
    QString deep = home().path("media/deep");
    while (deep.size() < depth) {
        const qsizetype left = depth - deep.size(); // the next "/" included
        deep += "/" + QString(left <= 201 ? left - 1 : qMin<qsizetype>(200, left - 3), 'd');
    }
    ASSERT_EQ(deep.size(), depth);
    ASSERT_TRUE(QDir().mkpath(deep));
    const CliRun run =
        cli({"offload", "--json", "--name", "CARD", card.workFolder(), home().path("media"), deep});
    EXPECT_EQ(run.status, 1);
    EXPECT_TRUE(run.err.contains(deep.toUtf8() + "/CARD failed at BPAV/")) << run.err.constData();
    EXPECT_FALSE(QFileInfo::exists(deep + "/CARD"));
    EXPECT_EQ(withoutHistory(files(home().path("media/CARD"))), files(card.workFolder()));
    EXPECT_EQ(cli({"verify", home().path("media/CARD")}).status, 0);
}

TEST_F(OffloadTest, ACancelDuringTheSecondFileKeepsNoCopy)
{
    cwtest::CardFolder card(cwtest::CardFolder::fast(1));
    ASSERT_TRUE(card.ok());
    QFile big(card.workFolder() + "/A1.BIN");
    ASSERT_TRUE(big.open(QIODevice::WriteOnly) && big.resize(qint64(256) << 20));
    big.close();
    ASSERT_TRUE(cwtest::writeFile(card.workFolder() + "/A0.BIN", "0"));
    const QMap<QString, QByteArray> source = files(card.workFolder());
    QProcess p;
    p.start(kCli,
            {"offload", "--name", "CARD", card.workFolder(), home().path("media"), home().path("home2")});
    ASSERT_TRUE(QDir().mkpath(home().path("home2")));
    for (int i = 0; i < 2000 && !QFileInfo::exists(home().path("media/CARD/A1.BIN")); ++i)
        QThread::msleep(5);
    ::kill(pid_t(p.processId()), SIGINT);
    const CliRun run = finish(p);
    EXPECT_EQ(run.status, 1) << run.err.constData();
    EXPECT_TRUE(run.err.contains("cancelled"));
    EXPECT_FALSE(QFileInfo::exists(home().path("media/CARD")));
    EXPECT_FALSE(QFileInfo::exists(home().path("home2/CARD")));
    EXPECT_EQ(files(card.workFolder()), source);
}
