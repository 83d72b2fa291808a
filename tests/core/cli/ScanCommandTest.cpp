// clipwright-cli scan on generated cards: what it prints (text and JSON)
// against what the generator's manifest says the card holds.
#include "CliTestSupport.h"

#include "core/formats/metadata/BLMediaProfileAcss.h"
#include "core/services/BLCommon.h"
#include "support/CardFolder.h"
#include "support/TestEnvironment.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace clitest;
using cwtest::damage;
using ScanCommandTest = CliTest;

TEST_F(ScanCommandTest, PrintsTheTakesTheManifestDescribes)
{
    using Kind = cardgen::Damage::Kind;
    cardgen::Options options = cwtest::CardFolder::fast(5, {3});
    options.spanningClips = 2;
    options.damages = {damage(Kind::Missing, 1, {"BIM"}), damage(Kind::Loose, 2), damage(Kind::Unlisted, 3),
                       damage(Kind::Hidden, 4)};
    cwtest::CardFolder card(options);
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    const QString work = card.workFolder();

    const CliRun json = cli({"scan", "--json", work});
    ASSERT_EQ(json.status, 0) << json.err.constData();
    const QJsonObject result = QJsonDocument::fromJson(json.out).object();
    EXPECT_EQ(result["workFolder"].toString(), work);
    const QJsonArray takes = result["takes"].toArray();
    auto find = [&](const QString& id) {
        for (const QJsonValue& v : takes) {
            if (v["takeId"].toString() == id)
                return v.toObject();
        }
        return QJsonObject();
    };

    int expected = 0;
    for (const cardgen::ManifestTake& planned : card.manifest().takes) {
        if (planned.card != 0 || planned.expectedStatus < 0)
            continue;
        ++expected;
        SCOPED_TRACE(planned.takeId.toStdString());
        const QJsonObject take = find(planned.takeId);
        ASSERT_FALSE(take.isEmpty());
        EXPECT_EQ(take["status"].toInt(), planned.expectedStatus);
        EXPECT_EQ(take["kind"].toString(), planned.kind);
        EXPECT_EQ(take["clipCount"].toInt(), int(planned.clips.size()));
        EXPECT_EQ(take["mediaSpanning"].toBool(), planned.spanPart > 0);
        if (planned.expectedStatus != 4) { // a loose file gets a new UMID at each scan
            EXPECT_EQ(take["umid"].toString(), planned.umid);
        }
        if (planned.expectedStatus < 4) {
            EXPECT_EQ(take["size"].toInteger(), planned.size);
            EXPECT_EQ(take["frames"].toInteger(), planned.frames);
            EXPECT_EQ(take["videoCodec"].toString(), planned.videoFormat);
        }
    }
    EXPECT_EQ(takes.size(), expected);

    // The scan repaired the folder as a pane would: the unlisted clip is listed now.
    BLMediaProfileAcss mediaPro;
    ASSERT_TRUE(mediaPro.loadForFolderPath(card.bpav()));
    EXPECT_EQ(mediaPro.getMaterialData("ABC0003", 1).size(), 1);

    // The text form: a heading, then per take a line with its values and one with its UMID.
    const CliRun text = cli({"scan", work});
    ASSERT_EQ(text.status, 0) << text.err.constData();
    const QStringList lines = QString::fromUtf8(text.out).split('\n', Qt::SkipEmptyParts);
    ASSERT_EQ(lines.size(), 1 + 2 * expected) << text.out.constData();
    EXPECT_EQ(lines[0], work + ": " + QString::number(expected) + " takes");
    const auto whole = std::find_if(takes.begin(), takes.end(),
                                    [](const QJsonValue& v) { return v["status"].toInt(-1) == 0; });
    ASSERT_NE(whole, takes.end());
    const QJsonObject first = whole->toObject();
    const qsizetype at = lines.indexOf(QRegularExpression("^" + first["takeId"].toString() + " .*"));
    ASSERT_GT(at, 0) << text.out.constData();
    EXPECT_TRUE(lines[at].contains(QString("status %1 ").arg(first["status"].toInt())));
    EXPECT_TRUE(lines[at].endsWith(QString(" %1 bytes").arg(first["size"].toInteger())))
        << lines[at].toStdString();
    EXPECT_EQ(lines[at + 1].trimmed(), "UMID " + first["umid"].toString());
}

TEST_F(ScanCommandTest, RepairsAreReportedAndAnIndexNothingCouldReplaceFails)
{
    cwtest::CardFolder card(cwtest::CardFolder::fast(2));
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    const QString index = card.bpav() + "/MEDIAPRO.XML";
    ASSERT_TRUE(QFile::resize(index, QFileInfo(index).size() / 2));

    const CliRun json = cli({"scan", "--json", card.workFolder()});
    ASSERT_EQ(json.status, 0) << json.err.constData();
    const QJsonObject result = QJsonDocument::fromJson(json.out).object();
    EXPECT_EQ(result["takes"].toArray().size(), 2);
    const QJsonArray repairs = result["repairs"].toArray();
    ASSERT_EQ(repairs.size(), 1);
    EXPECT_EQ(repairs[0]["file"].toString(), "MEDIAPRO.XML");
    EXPECT_EQ(repairs[0]["action"].toString(), "rebuilt");
    EXPECT_TRUE(QFileInfo::exists(repairs[0]["copy"].toString()));
    EXPECT_TRUE(json.err.contains("MEDIAPRO.XML rebuilt: ")) << json.err.constData();

    // A damaged index on a card with no clip left: nothing to rebuild it from.
    for (const char* folder : {"CLPR", "TAKR"})
        ASSERT_TRUE(QDir(card.bpav() + "/" + folder).removeRecursively());
    ASSERT_TRUE(QFile::resize(index, 10));
    const CliRun empty = cli({"scan", card.workFolder()});
    EXPECT_EQ(empty.status, 1);
    EXPECT_TRUE(empty.err.contains("could not be read or made, and no take was found"))
        << empty.err.constData();
}

TEST_F(ScanCommandTest, AFolderThatIsNotUsableFails)
{
    QTemporaryDir dir;
    CliRun r = cli({"scan", dir.path()});
    EXPECT_EQ(r.status, 1);
    EXPECT_TRUE(r.err.contains("no BPAV folder")) << r.err.constData();
    EXPECT_TRUE(r.out.isEmpty());

    // A BPAV folder whose media profile cannot be made (a file stands in its way).
    ASSERT_TRUE(QDir().mkpath(dir.filePath("BPAV/MEDIAPRO.XML")));
    r = cli({"scan", "--json", dir.path()});
    EXPECT_EQ(r.status, 1);
    EXPECT_TRUE(r.err.contains("media profile could not be read or made")) << r.err.constData();

    EXPECT_EQ(cli({"scan"}).status, 2);
    EXPECT_EQ(cli({"scan", "a", "b"}).status, 2);
}
