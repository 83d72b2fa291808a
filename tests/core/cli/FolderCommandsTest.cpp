// clipwright-cli divide, combine and media-name on a generated card whose MP4
// files are made large (sparse) so that it needs more than one 4 GB disk.
#include "CliTestSupport.h"

#include <QDirIterator>
#include <QFile>

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

TEST_F(FolderCommandsTest, DivideCombineBackAndNameTheMedia)
{
    const QString shoot = makeShoot();
    const QStringList umids = scannedUmids(shoot);
    const QMap<QString, qint64> clips = clipFiles(shoot);
    EXPECT_EQ(cli({"divide", shoot}).status, 2);
    EXPECT_EQ(cli({"divide", shoot, "--capacity", "3.5"}).status, 1); // below 4 GB
    const CliRun divided = cli({"divide", "--json", shoot, "--capacity", "4"});
    ASSERT_EQ(divided.status, 0) << divided.err.constData();
    const QJsonArray folders = QJsonDocument::fromJson(divided.out)["folders"].toArray();
    EXPECT_EQ(folders.size(), 6); // one 2.5 GB clip each
    QStringList paths;
    for (const QJsonValue& folder : folders)
        paths << folder["path"].toString();
    EXPECT_TRUE(scannedUmids(shoot).isEmpty());
    const CliRun combined = cli(QStringList{"combine", "--delete-sources", "--json", shoot} + paths);
    ASSERT_EQ(combined.status, 0) << combined.err.constData();
    EXPECT_EQ(QJsonDocument::fromJson(combined.out)["deleted"].toArray().size(), 6);
    EXPECT_EQ(scannedUmids(shoot), umids);
    EXPECT_EQ(clipFiles(shoot), clips);
    EXPECT_EQ(QDir(home().path("media")).entryList(QDir::Dirs | QDir::NoDotAndDotDot),
              QStringList({"SHOOT"}));
    // At most 62 bytes in UTF-8: 63 ASCII or 21 three-byte characters are refused.
    EXPECT_EQ(cli({"media-name", shoot, QString(63, 'x')}).status, 1);
    EXPECT_EQ(cli({"media-name", shoot, QString(21, QChar(0x3042))}).status, 1);
    const QString name62 = QString(20, QChar(0x3042)) + "ab";
    EXPECT_EQ(cli({"media-name", shoot, name62}).status, 0);
    EXPECT_EQ(cli({"media-name", shoot}).out, name62.toUtf8() + "\n");
    EXPECT_EQ(cli({"media-name"}).status, 2);
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
        return cwtest::readFile(shoot + "/BPAV/MEDIAPRO.XML") + cwtest::readFile(shoot + "/BPAV/CUEUP.XML");
    };
    const QByteArray before = indexes();
    const CliRun run = cliWithFileSizeLimit({"divide", shoot, "--capacity", "4"}, 1000);
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(QDir(home().path("media")).entryList(QDir::Dirs | QDir::NoDotAndDotDot),
              QStringList({"SHOOT"}));
    EXPECT_EQ(clipFiles(shoot), clips);
    EXPECT_EQ(indexes(), before);
    EXPECT_EQ(scannedUmids(shoot).size(), 4); // no empty take folder left
}
