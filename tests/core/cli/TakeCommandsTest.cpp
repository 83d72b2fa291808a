// clipwright-cli search, info, export and delete on a generated card of two
// single clips and a take of two clips: what each prints, writes or deletes,
// what it refuses and its exit codes.
#include "CliTestSupport.h"

using namespace clitest;

class TakeCommandsTest : public CliTest
{
protected:
    void SetUp() override
    {
        CliTest::SetUp();
        cardgen::Options options = cwtest::CardFolder::fast(2, {2});
        options.size = "1440x1080"; // 25 Mbit/s: not HQ, so every take can be exported
        card = std::make_unique<cwtest::CardFolder>(options);
        ASSERT_TRUE(card->ok()) << card->error().toStdString();
        folder = card->workFolder();
    }
    std::unique_ptr<cwtest::CardFolder> card;
    QString folder;
};

// What a search finds is checked by the search controller's tests.
TEST_F(TakeCommandsTest, SearchListsTheHitsAndInfoShowsATakesProperties)
{
    const QString root = QFileInfo(folder).path();
    const cardgen::ManifestTake& multi = card->manifest().takes.back();
    const cardgen::ManifestTake& single = card->manifest().takes[1]; // titled after its name
    CliRun run = cli({"search", root, "--title", single.takeId});
    ASSERT_EQ(run.status, 0) << run.err.constData();
    EXPECT_EQ(run.out, (QStringList{folder, single.takeId, single.umid}.join('\t') + "\n").toUtf8());
    EXPECT_EQ(cli({"search", root, "--interval", "7"}).status, 2);
    run = cli({"info", "--json", folder, multi.takeId});
    ASSERT_EQ(run.status, 0) << run.err.constData();
    const QJsonObject info = QJsonDocument::fromJson(run.out).object();
    EXPECT_EQ(info["takeId"].toString(), multi.takeId);
    EXPECT_EQ(info["umid"].toString(), multi.umid);
    EXPECT_EQ(cli({"info", folder, "NOPE0001"}).status, 1);
}

// Refusals write nothing; the takes exported are listed with their files.
TEST_F(TakeCommandsTest, ExportsTheTakesNamedOrAll)
{
    const QString dest = home().path("media/out");
    ASSERT_TRUE(QDir().mkpath(dest));
    const struct
    {
        QStringList args;
        int status;
        const char* said;
        QStringList files;
    } cases[] = {
        {{folder}, 2, "usage:", {}},
        {{folder, dest, "XYZ0009"}, 1, "no take XYZ0009", {}},
        {{folder, home().path("media/missing")}, 1, "cannot be written", {}},
        {{folder, dest, "ABC0002"}, 0, "", {"ABC0002.M2T"}},
        {{folder, dest}, 0, "", {"ABC0001.M2T", "ABC0002.M2T", "ABC0003U01.M2T"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.args.join(' ').toStdString());
        const CliRun run = cli(QStringList{"export", "--json"} + c.args);
        EXPECT_EQ(run.status, c.status);
        EXPECT_TRUE(run.err.contains(c.said)) << run.err.constData();
        EXPECT_EQ(QDir(dest).entryList(QDir::Files), c.files);
        if (c.status != 0)
            continue;
        const QJsonArray takes = QJsonDocument::fromJson(run.out)["takes"].toArray();
        ASSERT_EQ(takes.size(), c.files.size());
        for (int i = 0; i < takes.size(); ++i) {
            EXPECT_EQ(takes[i]["file"].toString(), dest + "/" + c.files[i]);
            EXPECT_GT(QFileInfo(dest + "/" + c.files[i]).size(), 0);
        }
        QDir(dest).removeRecursively();
        QDir().mkpath(dest);
    }
}

// Refusals first: had one deleted anything, the last scan would show it. The
// tool's stdin is a pipe here, not a terminal.
TEST_F(TakeCommandsTest, DeletesTheNamedTakesOnlyWhenToldSo)
{
    const struct
    {
        QStringList args;
        int status;
        const char* said;
    } cases[] = {
        {{folder, "ABC0001"}, 2, "pass --yes"},
        {{"--yes", folder}, 2, "usage:"},
        {{"--yes", folder, "ABC0001", "XYZ0009"}, 1, "no take XYZ0009"},
        {{"--yes", folder, "ABC0002", "ABC0003U01", "ABC0002"}, 0, ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.args.join(' ').toStdString());
        const CliRun run = cli(QStringList{"delete"} + c.args);
        EXPECT_EQ(run.status, c.status);
        EXPECT_TRUE(run.err.contains(c.said)) << run.err.constData();
        EXPECT_EQ(run.out, c.status ? "" : "2 of 2 takes deleted from " + folder.toUtf8() + "\n");
    }
    EXPECT_EQ(scannedUmids(folder), QStringList{card->manifest().takes[0].umid});
}
