// Housekeeping on generated cards: its cancel points, and its messages on a
// medium it cannot write.
#include "core/card/BLHouseKeepingCtrl.h"
#include "core/formats/metadata/BLMediaProfileAcss.h"
#include "core/services/BLCommon.h"
#include "core/services/BLLogCtrl.h"
#include "support/AsOrdinaryUser.h"
#include "support/CardFolder.h"
#include "support/MessageRecorder.h"
#include "support/QtPrinters.h"
#include "support/TestEnvironment.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace {

using Kind = cardgen::Damage::Kind;
using cwtest::damage;

QStringList materialUris(const QString& workFolder)
{
    BLMediaProfileAcss mediaPro;
    QStringList uris;
    if (!mediaPro.loadForFolderPath(BLCommon::getPathOfBPAV(workFolder)))
        return uris;
    for (const DOMaterial& material : mediaPro.getMaterialData(QString(), 0))
        uris << material.getUri();
    return uris;
}

class HouseKeepingTest : public cwtest::HomeTest
{
protected:
    void SetUp() override
    {
        HomeTest::SetUp();
        cwtest::writeSettings(home().configHome(), {{"LOG_FLAG", "ALL"}});
    }

    static QStringList cancelLines()
    {
        return cwtest::logMessages().filter("[BLHouseKeepingCtrl doHouseKeeping] Cancel Step");
    }
};

} // namespace

TEST_F(HouseKeepingTest, ACancelAtEachPointReturnsEarlyAndLogsItsStep)
{
    cardgen::Options options = cwtest::CardFolder::fast(3, {2});
    options.damages = {damage(Kind::Unlisted, 3)};
    cwtest::CardFolder card(options);
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    const auto& planned = card.manifest().takes;
    const QString unlisted = "./CLPR/ABC0003/ABC0003.SMI";
    const qsizetype kTakesBuilt[] = {0, 0, 0, 1, 1, 4, 4};

    for (int step = 1; step <= 7; ++step) {
        SCOPED_TRACE(step);
        QTemporaryDir dir;
        const QString work = dir.filePath("card");
        ASSERT_TRUE(BLCommon::copyFile(card.workFolder(), work));
        const QString bpav = work + "/BPAV";
        ASSERT_TRUE(QFile::remove(bpav + "/CUEUP.XML"));
        // Steps 4 to 6 lie on the way of a folder without media profile.
        const bool fresh = step >= 4 && step <= 6;
        if (fresh) {
            ASSERT_TRUE(QFile::remove(bpav + "/MEDIAPRO.XML"));
        }
        QFile::remove(home().stateHome() + "/Clipwright/Clipwright.log");

        BLHouseKeepingCtrl houseKeeping;
        houseKeeping.setCancelPointHookForTesting([&, step](int reached) {
            if (reached == step)
                houseKeeping.setCancel();
        });
        const QList<DOTakeData> takes = houseKeeping.doHouseKeeping(work);
        EXPECT_EQ(cancelLines(), QStringList{"0700:[BLHouseKeepingCtrl doHouseKeeping] Cancel Step " +
                                             QString::number(step)});
        EXPECT_EQ(QFileInfo::exists(bpav + "/CUEUP.XML"), step >= 2);

        // From step 4 the take folders are read, before any clip has become a
        // take; from step 6 the takes are built. No profile or repair is written.
        EXPECT_EQ(takes.size(), kTakesBuilt[step - 1]);
        if (takes.size() == 1) {
            EXPECT_EQ(takes[0].getTakeID(), planned.back().takeId);
            EXPECT_TRUE(takes[0].getClipData().isEmpty());
        }
        if (fresh) {
            EXPECT_TRUE(materialUris(work).isEmpty());
        }
        EXPECT_FALSE(materialUris(work).contains(unlisted));
    }

    // Without a cancel, the same card is repaired.
    EXPECT_EQ(BLHouseKeepingCtrl().doHouseKeeping(card.workFolder()).size(), 4);
    EXPECT_TRUE(materialUris(card.workFolder()).contains(unlisted));
}

TEST_F(HouseKeepingTest, MessagesForAnUnwritableMediumAndAFailedDurationCheckFromAWorker)
{
    cardgen::Options options = cwtest::CardFolder::fast(2);
    options.damages = {damage(Kind::Unlisted, 2)};
    cwtest::CardFolder card(options);
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    const QString work = card.workFolder();
    const QString bpav = card.bpav();
    // A duration of almost two hours at 29.97 frames per second fails the check.
    const QString metadata = bpav + "/CLPR/ABC0001/ABC0001M01.XML";
    ASSERT_TRUE(cwtest::writeFile(metadata, cwtest::readFile(metadata).replace(
                                                "<Duration value=\"6\"/>", "<Duration value=\"200000\"/>")));
    const QByteArray profile = cwtest::readFile(bpav + "/MEDIAPRO.XML");
    QFile::setPermissions(QFileInfo(work).path(), QFile::Permissions(0x7777)); // reachable for "nobody"
    QFile::setPermissions(bpav + "/MEDIAPRO.XML", QFile::Permissions(0x4444));
    BLLogCtrl::sharedCtrl(); // made by this thread, not by the worker
    QFile::setPermissions(bpav, QFile::Permissions(0x5555));

    // The pass runs on a worker as a pane runs it; its alerts are shown by
    // the main thread while the worker waits.
    cwtest::MessageRecorder messages;
    QList<DOTakeData> takes;
    std::atomic<bool> done{false};
    std::thread worker([&] {
        cwtest::AsOrdinaryUser nobody;
        takes = BLHouseKeepingCtrl().doHouseKeeping(work);
        done = true;
    });
    EXPECT_TRUE(cwtest::waitFor([&done] { return done.load(); }, 60000));
    worker.join();
    QFile::setPermissions(bpav, QFile::Permissions(0x7777));

    EXPECT_EQ(messages.keys(), QStringList({"MSG_732_3176", "MSG_111_3225"}));
    EXPECT_EQ(takes.size(), 2) << "the takes are still shown";
    EXPECT_EQ(cwtest::readFile(bpav + "/MEDIAPRO.XML"), profile);
}
