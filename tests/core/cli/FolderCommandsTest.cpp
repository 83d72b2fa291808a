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

namespace {

using namespace clitest;

QStringList scannedUmids(const QString& workFolder)
{
    QStringList umids;
    for (const QJsonValue& take :
         QJsonDocument::fromJson(cli({"scan", "--json", workFolder}).out)["takes"].toArray())
        umids << take["umid"].toString();
    umids.sort();
    return umids;
}

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
};

TEST_F(FolderCommandsTest, DivideAndCombineBack)
{
    cardgen::Options options = cwtest::CardFolder::fast(3, {3});
    options.outputFolder = home().path("media/SHOOT");
    options.manifestPath = home().path("manifest.json");
    QString error;
    ASSERT_TRUE(cardgen::CardGenerator::generate(options, &error)) << error.toStdString();
    const QString shoot = options.outputFolder;
    QDirIterator mp4(shoot + "/BPAV/CLPR", {"*.MP4"}, QDir::Files, QDirIterator::Subdirectories);
    while (mp4.hasNext())
        ASSERT_TRUE(QFile(mp4.next()).resize(qint64(2500) << 20));
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
