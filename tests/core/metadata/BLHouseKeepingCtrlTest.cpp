// Housekeeping on generated cards: the takes a pane gets, the index files it
// repairs, its cancel points and messages, and that nothing outside the
// card's BPAV folder is ever touched.
#include "core/card/BLHouseKeepingCtrl.h"
#include "core/card/BLMediaProCtrl.h"
#include "core/formats/metadata/BLMediaProfileAcss.h"
#include "core/services/BLCommon.h"
#include "core/services/BLLogCtrl.h"
#include "support/AsOrdinaryUser.h"
#include "support/CardFolder.h"
#include "support/MessageRecorder.h"
#include "support/QtPrinters.h"
#include "support/TestEnvironment.h"

#include "MetadataTestSupport.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QRegularExpression>
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

const DOTakeData* takeWithId(const QList<DOTakeData>& takes, const QString& id)
{
    for (const DOTakeData& take : takes) {
        if (take.getTakeID() == id)
            return &take;
    }
    return nullptr;
}

// Unusable takes have no take ID; they are found by UMID.
const DOTakeData* takeWithUmid(const QList<DOTakeData>& takes, const QString& umid)
{
    for (const DOTakeData& take : takes) {
        if (take.getUmid() == umid)
            return &take;
    }
    return nullptr;
}

// Replaces the first match of a pattern in a file.
bool editFile(const QString& path, const QString& pattern, const QString& to)
{
    QString text = QString::fromUtf8(cwmeta::readBytes(path));
    const QRegularExpressionMatch match = QRegularExpression(pattern).match(text);
    return match.hasMatch() &&
           cwmeta::writeBytes(path, text.replace(match.capturedStart(), match.capturedLength(), to).toUtf8());
}

bool writeFile(const QString& path, const QByteArray& data)
{
    return QDir().mkpath(QFileInfo(path).path()) && cwmeta::writeBytes(path, data);
}

class HouseKeepingTest : public cwtest::HomeTest
{
protected:
    void SetUp() override
    {
        HomeTest::SetUp();
        cwtest::writeSettings(home().configHome(), {{"LOG_FLAG", "ALL"}});
    }

    static QStringList logLines() { return cwtest::logMessages(); }

    QStringList cancelLines() { return logLines().filter("[BLHouseKeepingCtrl doHouseKeeping] Cancel Step"); }
};

} // namespace

TEST_F(HouseKeepingTest, AFolderWithoutMediaProfileGetsOneListingEveryClipAndTake)
{
    cardgen::Options options = cwtest::CardFolder::fast(5, {2, 2});
    options.damages = {damage(Kind::Loose, 2), damage(Kind::NoFtyp, 3), damage(Kind::Hidden, 4)};
    cwtest::CardFolder card(options);
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    const auto& planned = card.manifest().takes;
    const QString work = card.workFolder();
    const QString bpav = card.bpav();
    ASSERT_TRUE(QFile::remove(bpav + "/MEDIAPRO.XML"));
    ASSERT_TRUE(QFile::remove(bpav + "/CUEUP.XML"));
    // The first clip was recorded last; the second multi-clip take lost a clip.
    const QString first = bpav + "/CLPR/ABC0001/ABC0001M01.XML";
    ASSERT_TRUE(editFile(first, "<CreationDate value=\"[^\"]*\"",
                         "<CreationDate value=\"2099-01-01T00:00:00+00:00\""));
    const auto& broken = planned[6];
    ASSERT_EQ(broken.kind, "multi");
    ASSERT_TRUE(QDir(card.path(broken.clips[1].folder)).removeRecursively());
    ASSERT_TRUE(writeFile(bpav + "/CLPR/ABC0099/ABC0099M01.XML", "no essence")); // a folder without MP4

    cwtest::MessageRecorder messages;
    BLHouseKeepingCtrl houseKeeping;
    const QList<DOTakeData> takes = houseKeeping.doHouseKeeping(work);
    EXPECT_TRUE(messages.keys().isEmpty()) << messages.keys().join(", ").toStdString();
    EXPECT_TRUE(QFileInfo::exists(bpav + "/CUEUP.XML"));

    // Every kind of take is checked against the generator by the housekeeping
    // safety tests; here the order, a multi-clip take missing a clip (status
    // "duration clips spanning") and the clip folder without essence.
    QStringList ids;
    for (const DOTakeData& take : takes)
        ids << take.getTakeID();
    EXPECT_EQ(ids.size(), 7) << ids.join(",").toStdString();
    EXPECT_EQ(ids.last(), "ABC0001") << "sorted by creation date";
    for (qsizetype i = 1; i < takes.size(); ++i)
        EXPECT_LE(takes[i - 1].compareByCreationDate(takes[i]), 0) << i;
    const DOTakeData* incomplete = takeWithId(takes, broken.takeId);
    ASSERT_NE(incomplete, nullptr);
    EXPECT_EQ(QString("%1 %2 %3 %4")
                  .arg(incomplete->getTakeStatus())
                  .arg(incomplete->getTakeDuration())
                  .arg(incomplete->getClipData().size())
                  .arg(incomplete->getMediaSpanning()),
              "2 6 1 1");
    EXPECT_EQ(takeWithId(takes, planned[5].takeId)->getTakeInfo().size(), 2)
        << "take-info entries are not doubled";

    // The new media profile lists every clip with essence and both takes;
    // the clip folder without essence stays on disk.
    const QStringList uris = materialUris(work);
    for (const QString& name : QStringList{"ABC0001", "ABC0003", "ABC0005", "ABC0006", "ABC0007", "ABC0008"})
        EXPECT_TRUE(uris.contains("./CLPR/" + name + "/" + name + ".SMI")) << name.toStdString();
    EXPECT_TRUE(uris.contains("./TAKR/" + planned[5].takeId + "/" + planned[5].takeId + ".SMI"));
    EXPECT_TRUE(uris.contains("./TAKR/" + broken.takeId + "/" + broken.takeId + ".SMI"));
    EXPECT_EQ(uris.size(), 8) << uris.join(", ").toStdString();
    EXPECT_TRUE(QFileInfo::exists(bpav + "/CLPR/ABC0099/ABC0099M01.XML"));
    EXPECT_EQ(BLHouseKeepingCtrl().doHouseKeeping(work).size(), 7) << "and is shown again on the next pass";
}

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
        EXPECT_EQ(logLines().last(), "0700:[BLHouseKeepingCtrl doHouseKeeping] End");
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
    QFile::remove(home().stateHome() + "/Clipwright/Clipwright.log");
    EXPECT_EQ(BLHouseKeepingCtrl().doHouseKeeping(card.workFolder()).size(), 4);
    EXPECT_TRUE(cancelLines().isEmpty());
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
    ASSERT_TRUE(editFile(bpav + "/CLPR/ABC0001/ABC0001M01.XML", "<Duration value=\"6\"/>",
                         "<Duration value=\"200000\"/>"));
    const QByteArray profile = cwmeta::readBytes(bpav + "/MEDIAPRO.XML");
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
    while (!done)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    worker.join();
    QFile::setPermissions(bpav, QFile::Permissions(0x7777));

    EXPECT_EQ(messages.keys(), QStringList({"MSG_732_3176", "MSG_111_3225"}));
    EXPECT_EQ(takes.size(), 2) << "the takes are still shown";
    EXPECT_EQ(cwmeta::readBytes(bpav + "/MEDIAPRO.XML"), profile);

    // No BPAV folder: nothing, and a log line.
    QTemporaryDir dir;
    EXPECT_TRUE(BLHouseKeepingCtrl().doHouseKeeping(dir.path()).isEmpty());
    EXPECT_TRUE(logLines().contains("0700:[BLHouseKeepingCtrl doHouseKeeping]    BPAV Folder is Nothing : " +
                                    dir.path()));
}

TEST_F(HouseKeepingTest, NothingOutsideTheBpavFolderIsTouched)
{
    cardgen::Options options = cwtest::CardFolder::fast(2, {2});
    cwtest::CardFolder card(options);
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    QTemporaryDir outer;
    // The card lies two levels below a folder that holds "outside".
    const QString work = outer.filePath("a/card");
    ASSERT_TRUE(QDir().mkpath(outer.filePath("a")));
    ASSERT_TRUE(BLCommon::copyFile(card.workFolder(), work));
    const QString bpav = work + "/BPAV";
    const QString outside = outer.filePath("a/outside");
    const QString absolute = outer.filePath("absolute");
    // Folders without essence, the kind a rewrite deletes inside the card.
    ASSERT_TRUE(writeFile(outside + "/file/fileM01.XML", "sentinel 1"));
    ASSERT_TRUE(writeFile(outside + "/linked/linkedM01.XML", "sentinel 2"));
    ASSERT_TRUE(writeFile(absolute + "/fileM01.XML", "sentinel 3"));
    ASSERT_TRUE(QFile::link(outside + "/linked", bpav + "/CLPR/LINKED"));

    // The media profile names files outside the card, relatively and absolutely.
    auto outsideClip = [](const QString& folder, QChar umid) {
        DOMaterial clip;
        clip.setUri(folder + "/file.SMI");
        clip.setType("PD-EDL");
        clip.setUmid(QString(64, umid));
        DOComponent essence;
        essence.setUri(folder + "/file.MP4");
        essence.setType("MP4");
        clip.setComponent({essence});
        DORelevantInfo xml;
        xml.setUri(folder + "/fileM01.XML");
        xml.setType("XML");
        clip.setRelevantInfo({xml});
        return clip;
    };
    BLMediaProfileAcss mediaPro;
    ASSERT_TRUE(mediaPro.loadForFolderPath(bpav));
    const QList<DOMaterial> listed = mediaPro.getMaterialData(QString(), 0);
    ASSERT_EQ(mediaPro.replaceMaterialData(
                  listed + QList{outsideClip("./../../outside/file", 'B'), outsideClip(absolute, 'C')}),
              0);
    ASSERT_TRUE(mediaPro.save("0123"));

    auto sentinelsIntact = [&] {
        EXPECT_EQ(cwmeta::readBytes(outside + "/file/fileM01.XML"), "sentinel 1");
        EXPECT_EQ(cwmeta::readBytes(outside + "/linked/linkedM01.XML"), "sentinel 2");
        EXPECT_EQ(cwmeta::readBytes(absolute + "/fileM01.XML"), "sentinel 3");
        EXPECT_EQ(QDir(outside).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden),
                  QStringList({"file", "linked"}));
        EXPECT_EQ(QDir(outside + "/file").entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden),
                  QStringList{"fileM01.XML"});
    };

    // Reading and rewriting a listed folder, then one without media profile;
    // the records read outside are unusable clips, never files.
    cwtest::MessageRecorder messages;
    QList<DOTakeData> takes = BLHouseKeepingCtrl().doHouseKeeping(work);
    sentinelsIntact();
    for (const QChar umid : {'B', 'C'}) {
        ASSERT_NE(takeWithUmid(takes, QString(64, umid)), nullptr);
        EXPECT_EQ(takeWithUmid(takes, QString(64, umid))->getTakeStatus(), 5);
    }
    ASSERT_TRUE(BLMediaProCtrl().createMediaPro(takes, work));
    sentinelsIntact();
    ASSERT_TRUE(QFile::remove(bpav + "/MEDIAPRO.XML"));
    takes = BLHouseKeepingCtrl().doHouseKeeping(work);
    sentinelsIntact();
    EXPECT_TRUE(QFileInfo(bpav + "/CLPR/LINKED").isSymLink()) << "the link itself stays";
    EXPECT_FALSE(materialUris(work).isEmpty());

    // The same records given straight to the rewrite as clips without essence.
    DOClipData escaping;
    escaping.setSMIUri("./../../outside/file/file.SMI");
    escaping.setMateUpFlg(false);
    DOClipData throughLink;
    throughLink.setXMLUri("./CLPR/LINKED/linkedM01.XML");
    throughLink.setMateUpFlg(false);
    DOClipData absoluteFolder;
    absoluteFolder.setXMLUri(absolute + "/fileM01.XML");
    absoluteFolder.setMateUpFlg(false);
    ASSERT_TRUE(BLMediaProCtrl().createMediaPro({}, work, {escaping, throughLink, absoluteFolder}));
    sentinelsIntact();
}
