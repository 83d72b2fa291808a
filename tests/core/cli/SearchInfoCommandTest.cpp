// clipwright-cli search and info on generated cards: the hits below a folder
// with their folder, take ID and UMID, and a take's properties.
#include "CliTestSupport.h"
#include "support/CardFolder.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <gtest/gtest.h>

using clitest::cli;
using SearchInfoCommandTest = clitest::CliTest;

TEST_F(SearchInfoCommandTest, SearchListsTheHitsBelowTheFolderAndInfoShowsATakesProperties)
{
    cwtest::CardFolder card(cwtest::CardFolder::fast(2, {2}));
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    const QString root = QFileInfo(card.workFolder()).path();
    const cardgen::ManifestTake& multi = card.manifest().takes.back();

    // cardgen titles each clip after its name.
    const cardgen::ManifestTake& single = card.manifest().takes[1];
    clitest::CliRun run = cli({"search", root, "--title", single.takeId});
    ASSERT_EQ(run.status, 0) << run.err.constData();
    EXPECT_EQ(run.out,
              (QStringList{card.workFolder(), single.takeId, single.umid}.join('\t') + "\n").toUtf8());

    run = cli({"search", "--json", root, "--comment", "no such comment", "--interval", "1"});
    EXPECT_EQ(run.status, 0);
    EXPECT_TRUE(QJsonDocument::fromJson(run.out)["results"].toArray().isEmpty());
    EXPECT_TRUE(run.err.contains("No clips match")) << run.err.constData();

    EXPECT_EQ(cli({"search", root, "--interval", "7"}).status, 2);
    EXPECT_EQ(cli({"search", QDir(root).filePath("gone")}).status, 1);

    run = cli({"info", "--json", card.workFolder(), multi.takeId});
    ASSERT_EQ(run.status, 0) << run.err.constData();
    const QJsonObject info = QJsonDocument::fromJson(run.out).object();
    EXPECT_EQ(info["takeId"].toString(), multi.takeId);
    EXPECT_EQ(info["umid"].toString(), multi.umid);
    EXPECT_FALSE(info["duration"].toString().isEmpty());
    EXPECT_EQ(cli({"info", card.workFolder(), "NOPE0001"}).status, 1);
}
