// clipwright-cli export on a generated card: refusals write nothing, and the
// takes exported are listed with their files.
#include "CliTestSupport.h"
#include "support/CardFolder.h"
#include "support/QtPrinters.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <gtest/gtest.h>

using clitest::cli;
using ExportCommandTest = clitest::CliTest;

TEST_F(ExportCommandTest, ExportsTheTakesNamedOrAll)
{
    cardgen::Options options = cwtest::CardFolder::fast(2, {2});
    options.size = "1440x1080"; // 25 Mbit/s: not HQ, so every take can be exported
    cwtest::CardFolder card(options);
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    const QString folder = card.workFolder();
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
        const clitest::CliRun run = cli(QStringList{"export", "--json"} + c.args);
        EXPECT_EQ(run.status, c.status);
        EXPECT_TRUE(run.err.contains(c.said)) << run.err.constData();
        EXPECT_EQ(QDir(dest).entryList(QDir::Files), c.files);
        if (c.status != 0)
            continue;
        const QJsonArray takes = QJsonDocument::fromJson(run.out)["takes"].toArray();
        ASSERT_EQ(takes.size(), c.files.size());
        for (int i = 0; i < takes.size(); ++i) {
            EXPECT_EQ(takes[i]["file"].toString(), dest + "/" + c.files[i]);
            EXPECT_EQ(takes[i]["size"].toInteger(), QFileInfo(dest + "/" + c.files[i]).size());
            EXPECT_GT(takes[i]["size"].toInteger(), 0);
        }
        QDir(dest).removeRecursively();
        QDir().mkpath(dest);
    }
}
