// clipwright-cli scan: its text and JSON forms, the repairs it reports and
// its failures. What a scan finds on every kind of generated card is checked
// against the generator's manifest by the housekeeping tests.
#include "CliTestSupport.h"

#include <QTemporaryDir>

using namespace clitest;
using ScanCommandTest = CliTest;

TEST_F(ScanCommandTest, PrintsEachTakeAndReportsRepairs)
{
    cwtest::CardFolder card(cwtest::CardFolder::fast(1, {2}));
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    const QString work = card.workFolder();
    const QString index = card.bpav() + "/MEDIAPRO.XML";
    ASSERT_TRUE(QFile::resize(index, QFileInfo(index).size() / 2));

    const CliRun json = cli({"scan", "--json", work});
    ASSERT_EQ(json.status, 0) << json.err.constData();
    EXPECT_TRUE(json.err.contains("MEDIAPRO.XML rebuilt: ")) << json.err.constData();
    const QJsonObject result = QJsonDocument::fromJson(json.out).object();
    const QJsonArray repairs = result["repairs"].toArray();
    ASSERT_EQ(repairs.size(), 1);
    EXPECT_EQ(repairs[0]["action"].toString(), "rebuilt");
    EXPECT_TRUE(QFileInfo::exists(repairs[0]["copy"].toString()));
    const QJsonArray takes = result["takes"].toArray();
    ASSERT_EQ(takes.size(), 2);
    const cardgen::ManifestTake& planned = card.manifest().takes.back();
    const QJsonObject take = takes[1].toObject();
    EXPECT_EQ(take["takeId"].toString(), planned.takeId);
    EXPECT_EQ(take["umid"].toString(), planned.umid);
    EXPECT_EQ(take["kind"].toString(), planned.kind);
    EXPECT_EQ(take["size"].toInteger(), planned.size);
    EXPECT_EQ(take["frames"].toInteger(), planned.frames);
    EXPECT_EQ(take["videoCodec"].toString(), planned.videoFormat);

    // The text form: a heading, then per take a line with its values and one with its UMID.
    const CliRun text = cli({"scan", work});
    ASSERT_EQ(text.status, 0) << text.err.constData();
    const QStringList lines = QString::fromUtf8(text.out).split('\n', Qt::SkipEmptyParts);
    ASSERT_EQ(lines.size(), 5) << text.out.constData();
    EXPECT_EQ(lines[0], work + ": 2 takes");
    EXPECT_TRUE(lines[3].startsWith(planned.takeId + " ")) << lines[3].toStdString();
    EXPECT_TRUE(lines[3].contains(QString("status %1 ").arg(planned.expectedStatus)))
        << lines[3].toStdString();
    EXPECT_EQ(lines[4].trimmed(), "UMID " + planned.umid);
}

TEST_F(ScanCommandTest, AFolderThatIsNotUsableFails)
{
    QTemporaryDir dir;
    CliRun r = cli({"scan", dir.path()});
    EXPECT_EQ(r.status, 1);
    EXPECT_TRUE(r.err.contains("no BPAV folder")) << r.err.constData();
    // A BPAV folder whose media profile cannot be made (a folder stands in its way).
    ASSERT_TRUE(QDir().mkpath(dir.filePath("BPAV/MEDIAPRO.XML")));
    r = cli({"scan", "--json", dir.path()});
    EXPECT_EQ(r.status, 1);
    EXPECT_TRUE(r.err.contains("media profile could not be read or made")) << r.err.constData();
    // A damaged index on a card with no clip left: nothing to rebuild it from.
    cwtest::CardFolder card(cwtest::CardFolder::fast(1));
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    for (const char* folder : {"CLPR", "TAKR"})
        ASSERT_TRUE(QDir(card.bpav() + "/" + folder).removeRecursively());
    ASSERT_TRUE(QFile::resize(card.bpav() + "/MEDIAPRO.XML", 10));
    r = cli({"scan", card.workFolder()});
    EXPECT_EQ(r.status, 1);
    EXPECT_TRUE(r.err.contains("could not be read or made, and no take was found")) << r.err.constData();
    EXPECT_EQ(cli({"scan"}).status, 2);
    EXPECT_EQ(cli({"scan", "a", "b"}).status, 2);
}
