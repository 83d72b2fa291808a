// The cardgen command line.
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

struct CliRun
{
    int exitCode = -1;
    QString out;
    QString err;
};

CliRun cardgen(const QStringList& arguments)
{
    QProcess process;
    process.start(QStringLiteral(CLIPWRIGHT_BINARY_DIR "/tools/cardgen/cardgen"), arguments);
    CliRun run;
    if (!process.waitForFinished(60000))
        return run;
    run.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    run.out = QString::fromUtf8(process.readAllStandardOutput());
    run.err = QString::fromUtf8(process.readAllStandardError());
    return run;
}

TEST(CardgenCli, WritesTheCardAndItsManifest)
{
    QTemporaryDir dir;
    const QString out = dir.filePath("card");
    const QString manifestPath = dir.filePath("m.json");
    const CliRun run = cardgen(
        QStringList{out} +
        QString(
            "--clips 2 --multi 2 --size tiny --rate 25p --frames 6 --fast --damage unlisted@1 --prefix XYZ "
            "--layout PRIVATE/ORX/BPAV --audio-tracks 0 --embed-xml --date 2024-05-01T10:00:00+02:00 "
            "--start-tc 10:00:00:00 --media-name DAY1 --manifest")
            .split(' ') +
        QStringList{manifestPath});
    ASSERT_EQ(run.exitCode, 0) << run.err.toStdString();
    EXPECT_TRUE(run.out.contains("3 takes, 4 clips")) << run.out.toStdString();

    QFile file(manifestPath);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QJsonObject manifest = QJsonDocument::fromJson(file.readAll()).object();
    EXPECT_EQ(manifest["cards"][0]["mediaName"].toString(), "DAY1");
    const QJsonArray takes = manifest["takes"].toArray();
    ASSERT_EQ(takes.size(), 3);
    EXPECT_EQ(takes[0]["takeId"].toString(), "XYZ0001");
    EXPECT_EQ(takes[0]["damage"].toString(), "unlisted");
    EXPECT_FALSE(takes[0]["listed"].toBool());
    EXPECT_EQ(takes[2]["kind"].toString(), "multi");
    EXPECT_EQ(takes[2]["clipNames"].toArray(), (QJsonArray{"XYZ0003", "XYZ0004"}));
    EXPECT_EQ(takes[1]["frameRate"].toString(), "25p");
    EXPECT_EQ(takes[1]["audioChannels"].toInt(), 0);
    EXPECT_EQ(takes[1]["clips"][0]["startTimecode"].toString(), "10:00:00:06");
    EXPECT_TRUE(QFile::exists(out + "/PRIVATE/ORX/BPAV/CLPR/XYZ0002/XYZ0002.MP4"));
    EXPECT_FALSE(QFile::exists(out + "/cardgen-manifest.json"));

    QFile nrt(out + "/PRIVATE/ORX/BPAV/CLPR/XYZ0001/XYZ0001M01.XML");
    ASSERT_TRUE(nrt.open(QIODevice::ReadOnly));
    EXPECT_TRUE(nrt.readAll().contains("<CreationDate value=\"2024-05-01T10:00:00+02:00\"/>"));
}

} // namespace
