// The command-line tool on crafted files: exit status, output, and the .PPN
// written whole or not at all.
#include "Mp4TestSupport.h"
#include "support/TestEnvironment.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>

namespace {

struct CliRun
{
    int status = -1;
    QByteArray out, err;
};

CliRun cli(const QStringList& args)
{
    CliRun r;
    QProcess p;
    p.start(CLIPWRIGHT_BINARY_DIR "/tools/cli/clipwright-cli", args);
    if (!p.waitForFinished(30000))
        return r;
    r.status = p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1;
    r.out = p.readAllStandardOutput();
    r.err = p.readAllStandardError();
    return r;
}

} // namespace

class CliTest : public Mp4Test
{
protected:
    void SetUp() override
    {
        if (!QFileInfo::exists(CLIPWRIGHT_BINARY_DIR "/tools/cli/clipwright-cli"))
            GTEST_SKIP() << "clipwright-cli is not built";
    }
};

TEST_F(CliTest, Mp4InfoPrintsTheVerdictOfEachFile)
{
    cwtest::Mp4Builder b = cameraFile();
    b.xmlBody = QByteArray("<?xml version=\"1.0\"?><a/>") + '\0';
    write(b.boxes(), "good.MP4");
    write(QByteArray("not an MP4"), "bad.MP4");

    CliRun r = cli({"mp4info", path("good.MP4")});
    EXPECT_EQ(r.status, 0) << r.err.constData();
    for (const char* line : {"good.MP4: OK", "1920 X 1080 16:9", "embedded XML: 25 bytes"})
        EXPECT_TRUE(r.out.contains(line)) << line << "\n" << r.out.constData();

    r = cli({"mp4info", "--json", path("good.MP4"), path("bad.MP4")});
    EXPECT_EQ(r.status, 1) << "one file failed";
    const QJsonArray all = QJsonDocument::fromJson(r.out).array();
    ASSERT_EQ(all.size(), 2) << r.out.constData();
    EXPECT_EQ(all[0]["frames"].toInt(), 12);
    EXPECT_EQ(all[0]["audioFormats"].toArray().first().toString(), "LPCM16");
    EXPECT_FALSE(all[1]["ok"].toBool());
    EXPECT_EQ(all[1]["error"].toString(), "MP4 File Read Header Error");

    // Wrong usage of either command exits 2.
    for (const QStringList& args : {QStringList{"mp4info"}, QStringList{"ppn", path("good.MP4")}})
        EXPECT_EQ(cli(args).status, 2) << args.join(' ').toStdString();
}

TEST_F(CliTest, PpnIsWrittenWholeOrNotAtAll)
{
    write(cameraFile().boxes(), "good.MP4");
    QList<cwtest::Mp4Box> boxes = cameraFile().boxes();
    boxes[2].find("trak:0/mdia/minf/stbl/sdtp")->body.chop(1);
    write(boxes, "broken.MP4");
    write(QByteArray("an older table that must survive a failure"), "clip.PPN");

    CliRun r = cli({"ppn", path("broken.MP4"), path("clip.PPN")});
    EXPECT_EQ(r.status, 1);
    EXPECT_TRUE(r.err.contains("MP4 File Moov Read Error")) << r.err.constData();
    EXPECT_EQ(cwtest::readFile(path("clip.PPN")), "an older table that must survive a failure");

    r = cli({"ppn", path("good.MP4"), path("clip.PPN")});
    EXPECT_EQ(r.status, 0) << r.err.constData();
    EXPECT_TRUE(r.out.contains("12 entries")) << r.out.constData();
    EXPECT_EQ(QFileInfo(path("clip.PPN")).size(), 32 + 12 * 16)
        << "the longer old file is replaced, not overwritten";
    EXPECT_EQ(QDir(m_dir.path()).entryList(QDir::Files | QDir::Hidden).size(), 3) << "no temporary file left";
}
