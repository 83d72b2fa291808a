// clipwright-cli divide, combine and media-name on a generated card whose MP4
// files are made large (sparse) so that it needs more than one 4 GB disk.
#include "CliTestSupport.h"

#include "support/CardFolder.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <gtest/gtest.h>

#include <csignal>
#include <sys/resource.h>

namespace {

using namespace clitest;

// The clip files under a folder with their sizes.
QMap<QString, qint64> clipFiles(const QString& workFolder)
{
    QMap<QString, qint64> sizes;
    QDirIterator it(workFolder + "/BPAV/CLPR", QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        it.next();
        sizes.insert(it.fileName(), it.fileInfo().size());
    }
    return sizes;
}

} // namespace

class FolderCommandsTest : public CliTest
{
protected:
    // Three single clips and a take of three in media/SHOOT, each clip 2.5 GB.
    QString makeShoot()
    {
        cardgen::Options options = cwtest::CardFolder::fast(3, {3});
        options.outputFolder = home().path("media/SHOOT");
        options.manifestPath = home().path("manifest.json");
        QString error;
        EXPECT_TRUE(cardgen::CardGenerator::generate(options, &error)) << error.toStdString();
        QDirIterator mp4(options.outputFolder + "/BPAV/CLPR", {"*.MP4"}, QDir::Files,
                         QDirIterator::Subdirectories);
        while (mp4.hasNext())
            EXPECT_TRUE(QFile(mp4.next()).resize(qint64(2500) << 20));
        return options.outputFolder;
    }
};

TEST_F(FolderCommandsTest, DivideAndCombineBack)
{
    const QString shoot = makeShoot();
    const QStringList umids = scannedUmids(shoot);
    const QMap<QString, qint64> clips = clipFiles(shoot);

    EXPECT_EQ(cli({"divide", shoot}).status, 2);
    const CliRun refused = cli({"divide", shoot, "--capacity", "3.5"});
    EXPECT_EQ(refused.status, 1);
    EXPECT_FALSE(refused.err.isEmpty());

    const CliRun divided = cli({"divide", "--json", shoot, "--capacity", "4"});
    ASSERT_EQ(divided.status, 0) << divided.err.constData();
    const QJsonArray folders = QJsonDocument::fromJson(divided.out)["folders"].toArray();
    EXPECT_EQ(folders.size(), 6); // one 2.5 GB clip each
    QStringList paths;
    QList<int> parts;
    for (const QJsonValue& folder : folders) {
        paths << folder["path"].toString();
        for (const QJsonValue& take : folder["takes"].toArray())
            if (take["parts"].toInt() == 3)
                parts << take["part"].toInt();
    }
    std::sort(parts.begin(), parts.end());
    EXPECT_EQ(parts, QList<int>({1, 2, 3}));
    EXPECT_TRUE(scannedUmids(shoot).isEmpty());

    const CliRun combined = cli(QStringList{"combine", "--delete-sources", "--json", shoot} + paths);
    ASSERT_EQ(combined.status, 0) << combined.err.constData();
    EXPECT_EQ(QJsonDocument::fromJson(combined.out)["deleted"].toArray().size(), 6);
    EXPECT_EQ(scannedUmids(shoot), umids);
    EXPECT_EQ(clipFiles(shoot), clips);
    EXPECT_EQ(QDir(home().path("media")).entryList(QDir::Dirs | QDir::NoDotAndDotDot),
              QStringList({"SHOOT"}));
}

// No file may grow past 1000 bytes in the dividing process: the single
// clips move, then the copy of the split take's take info fails with EFBIG,
// and everything goes back.
TEST_F(FolderCommandsTest, AFailingWriteDuringADivisionPutsEverythingBack)
{
    const QString shoot = makeShoot();
    ASSERT_EQ(cli({"scan", shoot}).status, 0);
    const QMap<QString, qint64> clips = clipFiles(shoot);
    const auto indexes = [&] {
        QMap<QString, QByteArray> contents;
        for (const char* name : {"MEDIAPRO.XML", "CUEUP.XML"}) {
            QFile file(shoot + "/BPAV/" + name);
            contents.insert(name, file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray());
        }
        return contents;
    };
    const QMap<QString, QByteArray> before = indexes();
    QProcess p;
    p.setChildProcessModifier([] {
        ::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{1000, 1000};
        ::setrlimit(RLIMIT_FSIZE, &limit);
    });
    p.start(kCli, {"divide", shoot, "--capacity", "4"});
    const CliRun run = finish(p);
    EXPECT_EQ(run.status, 1);
    EXPECT_FALSE(run.err.isEmpty());
    EXPECT_EQ(QDir(home().path("media")).entryList(QDir::Dirs | QDir::NoDotAndDotDot),
              QStringList({"SHOOT"}));
    EXPECT_EQ(clipFiles(shoot), clips);
    EXPECT_EQ(indexes(), before);
    EXPECT_EQ(scannedUmids(shoot).size(), 4);
}

TEST_F(FolderCommandsTest, MediaNameIsPrintedAndChanged)
{
    cardgen::Options options = cwtest::CardFolder::fast(1);
    options.outputFolder = home().path("media/CARD");
    options.mediaName = "Day 1";
    QString error;
    ASSERT_TRUE(cardgen::CardGenerator::generate(options, &error)) << error.toStdString();
    EXPECT_EQ(cli({"media-name", options.outputFolder}).out, "Day 1\n");
    EXPECT_EQ(cli({"media-name", options.outputFolder, QString(63, 'x')}).status, 1);
    EXPECT_EQ(cli({"media-name", options.outputFolder, "Day 2"}).status, 0);
    EXPECT_EQ(cli({"media-name", options.outputFolder}).out, "Day 2\n");
    EXPECT_EQ(cli({"media-name"}).status, 2);
}
