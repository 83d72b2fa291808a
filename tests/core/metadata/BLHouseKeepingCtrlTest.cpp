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

    QStringList logLines() { return cwmeta::logLines(home().stateHome()); }

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

    // Takes: every single clip (not the hidden one), the loose file, both multi-clip takes.
    QStringList ids;
    for (const DOTakeData& take : takes)
        ids << take.getTakeID();
    for (const QString& id : QStringList{"ABC0001", "ABC0002", "ABC0005", planned[5].takeId, broken.takeId})
        EXPECT_TRUE(ids.contains(id)) << id.toStdString() << " in " << ids.join(",").toStdString();
    EXPECT_EQ(takeWithUmid(takes, planned[3].umid), nullptr) << "the hidden clip";
    // The clip folder without essence is shown as unusable.
    EXPECT_EQ(ids.size(), 7);
    EXPECT_EQ(ids.last(), "ABC0001") << "sorted by creation date";
    for (qsizetype i = 1; i < takes.size(); ++i)
        EXPECT_LE(takes[i - 1].compareByCreationDate(takes[i]), 0) << i;

    // Each kind of take as "status duration clips spanning": complete, with an
    // essence the MP4 reader rejects, loose, whole multi-clip, missing a clip.
    auto summary = [](const DOTakeData* take) {
        return take ? QString("%1 %2 %3 %4")
                          .arg(take->getTakeStatus())
                          .arg(take->getTakeDuration())
                          .arg(take->getClipData().size())
                          .arg(take->getMediaSpanning())
                          .toStdString()
                    : std::string("missing");
    };
    const std::pair<const DOTakeData*, std::string> kinds[] = {
        {takeWithId(takes, "ABC0005"), "0 6 0 0"},     {takeWithUmid(takes, planned[2].umid), "5 0 0 0"},
        {takeWithId(takes, "ABC0002"), "4 0 0 0"},     {takeWithId(takes, planned[5].takeId), "1 12 2 0"},
        {takeWithId(takes, broken.takeId), "2 6 1 1"},
    };
    for (const auto& [take, expected] : kinds)
        EXPECT_EQ(summary(take), expected);
    const DOTakeData* complete = takeWithId(takes, "ABC0005");
    EXPECT_EQ(complete->getUmid(), planned[4].umid);
    EXPECT_GT(complete->getTakeSize(), 0);
    EXPECT_EQ(complete->getMPStatus(), "none");
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
    EXPECT_TRUE(QFileInfo::exists(bpav + "/CLPR/.ABC0004"));

    // Read again, the repaired folder gives the same takes, the folder
    // without essence still among them.
    BLHouseKeepingCtrl again;
    const QList<DOTakeData> second = again.doHouseKeeping(work);
    EXPECT_EQ(second.size(), 7);
    for (const DOTakeData& take : takes) {
        if (take.getUmid().isEmpty())
            continue;
        const DOTakeData* same = take.getTakeStatus() == 4 ? takeWithId(second, take.getTakeID())
                                                           : takeWithUmid(second, take.getUmid());
        ASSERT_NE(same, nullptr) << take.getTakeID().toStdString();
        EXPECT_EQ(same->getTakeID(), take.getTakeID());
        EXPECT_EQ(same->getTakeStatus() <= 1, take.getTakeStatus() <= 1) << take.getTakeID().toStdString();
        EXPECT_EQ(same->getTakeDuration(), take.getTakeDuration()) << take.getTakeID().toStdString();
    }
    EXPECT_EQ(again.getCLPRMateCount(), 6);
    EXPECT_EQ(again.getTAKRMateCount(), 2);

    const QStringList lines = logLines();
    EXPECT_EQ(lines.count("0700:[BLHouseKeepingCtrl doHouseKeeping] Start"), 2);
    EXPECT_EQ(lines.count("0700:[BLHouseKeepingCtrl doHouseKeeping] End"), 2);
}

TEST_F(HouseKeepingTest, ACancelAtEachPointReturnsEarlyAndLogsItsStep)
{
    cardgen::Options options = cwtest::CardFolder::fast(3, {2});
    options.damages = {damage(Kind::Unlisted, 3)};
    cwtest::CardFolder card(options);
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    const auto& planned = card.manifest().takes;
    const QString unlisted = "./CLPR/ABC0003/ABC0003.SMI";

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

        switch (step) {
        case 1:
        case 2:
        case 3:
            EXPECT_TRUE(takes.isEmpty());
            break;
        case 4:
        case 5:
            // The take folders were read; no clip has become a take yet.
            ASSERT_EQ(takes.size(), 1);
            EXPECT_EQ(takes[0].getTakeID(), planned.back().takeId);
            EXPECT_TRUE(takes[0].getClipData().isEmpty());
            EXPECT_TRUE(materialUris(work).isEmpty());
            break;
        case 6:
            EXPECT_EQ(takes.size(), 4) << "the takes were built";
            EXPECT_TRUE(materialUris(work).isEmpty()) << "but the new profile is not written";
            break;
        case 7:
            EXPECT_EQ(takes.size(), 4);
            EXPECT_FALSE(materialUris(work).contains(unlisted)) << "the repair is not written";
            break;
        }
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
    for (const DOMaterial& clip : {outsideClip("./../../outside/file", 'B'), outsideClip(absolute, 'C')}) {
        ASSERT_EQ(mediaPro.setMaterialData({clip}), 0);
        ASSERT_EQ(mediaPro.setComponentData(clip.getComponent(), clip.getUri()), 0);
        ASSERT_EQ(mediaPro.setRelevantInfoDaata(clip.getRelevantInfo(), clip.getUri()), 0);
    }
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
