// clipwright-cli delete on a generated card: what it refuses (leaving the
// card as it was) and what a scan lists after it deleted. The tool's stdin is
// a pipe here, not a terminal.
#include "CliTestSupport.h"
#include "support/CardFolder.h"
#include "support/QtPrinters.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <gtest/gtest.h>

using clitest::cli;
using DeleteCommandTest = clitest::CliTest;

TEST_F(DeleteCommandTest, DeletesTheNamedTakesOnlyWhenToldSo)
{
    cwtest::CardFolder card(cwtest::CardFolder::fast(4, {2}));
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    const QString folder = card.workFolder();

    // Refusals first: had one deleted anything, the last scan would show it.
    const struct
    {
        QStringList args;
        int status;
        const char* said;
    } cases[] = {
        {{folder, "ABC0001"}, 2, "pass --yes"},
        {{"--yes", folder}, 2, "usage:"},
        {{"--yes", folder, "ABC0001", "XYZ0009"}, 1, "no take XYZ0009"},
        {{"--yes", folder, "ABC0002", "ABC0005U01", "ABC0002"}, 0, ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.args.join(' ').toStdString());
        const clitest::CliRun run = cli(QStringList{"delete"} + c.args);
        EXPECT_EQ(run.status, c.status);
        EXPECT_TRUE(run.err.contains(c.said)) << run.err.constData();
        EXPECT_EQ(run.out, c.status ? "" : "2 of 2 takes deleted from " + folder.toUtf8() + "\n");
    }
    const clitest::CliRun scan = cli({"scan", "--json", folder});
    QStringList left;
    for (const QJsonValue& take : QJsonDocument::fromJson(scan.out)["takes"].toArray())
        left << take["takeId"].toString();
    EXPECT_EQ(left, QStringList({"ABC0001", "ABC0003", "ABC0004"}));
}
