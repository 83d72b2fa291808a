// Looking at a card never costs a file: housekeeping on cards with real
// damage, on a write-protected mount and on every kind of card the generator
// makes, checked against the generator's manifest and the bytes on disk.
#include "OperationsTestSupport.h"
#include "core/card/BLClipCtrl.h"
#include "core/card/BLHouseKeepingCtrl.h"
#include "core/card/DOClipCtrl.h"

#include <QProcess>
#include <QTemporaryDir>

namespace {

using Kind = cardgen::Damage::Kind;
using cwtest::damage;

// A take as "UMID status frames"; a loose file, whose UMID is new at each
// pass, by its name.
QString describe(const QString& umid, int status, qint64 frames, const QString& looseName)
{
    return status == 4 ? "loose " + looseName : QString("%1 %2 %3").arg(umid).arg(status).arg(frames);
}

QStringList described(const QList<DOTakeData>& takes)
{
    QStringList lines;
    for (const DOTakeData& take : takes)
        lines << describe(take.getUmid(), take.getTakeStatus(), take.getTakeDuration(), take.getTakeID());
    lines.sort();
    return lines;
}

// What the generator says a pass over its first card shows.
QStringList expected(const cardgen::Manifest& manifest)
{
    QStringList lines;
    for (const cardgen::ManifestTake& take : manifest.takes) {
        if (take.card == 0 && take.expectedStatus >= 0)
            lines << describe(take.umid, take.expectedStatus, take.expectedStatus >= 5 ? 0 : take.frames,
                              take.takeId);
    }
    lines.sort();
    return lines;
}

// The card without its two index files, which a repair rewrites.
QMap<QString, QByteArray> footage(const QString& work)
{
    QMap<QString, QByteArray> entries = optest::snapshot(work);
    entries.remove("BPAV/MEDIAPRO.XML");
    entries.remove("BPAV/CUEUP.XML");
    return entries;
}

const DOTakeData* withUmid(const QList<DOTakeData>& takes, const QString& umid)
{
    for (const DOTakeData& take : takes) {
        if (take.getUmid() == umid)
            return &take;
    }
    return nullptr;
}

bool run(const QString& program, const QStringList& args)
{
    QProcess process;
    process.start(program, args);
    return process.waitForFinished(10000) && process.exitStatus() == QProcess::NormalExit &&
           process.exitCode() == 0;
}

} // namespace

class HouseKeepingSafetyTest : public cwtest::HomeTest
{
protected:
    cwtest::MessageRecorder messages;
};

TEST_F(HouseKeepingSafetyTest, AClipWithoutItsMp4KeepsEveryFileAndCanBeDeletedOnPurpose)
{
    cardgen::Options options = cwtest::CardFolder::fast(3);
    options.damages = {damage(Kind::Unlisted, 3)}; // the first pass rewrites the profile
    cwtest::CardFolder card(options);
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    const QString work = card.workFolder();
    const QString lost = card.manifest().takes[1].umid;
    ASSERT_TRUE(QFile::remove(card.bpav() + "/CLPR/ABC0002/ABC0002.MP4"));
    const QMap<QString, QByteArray> before = footage(work);
    QList<DOTakeData> takes;
    for (int pass = 1; pass <= 2; ++pass) {
        SCOPED_TRACE(pass);
        takes = BLHouseKeepingCtrl().doHouseKeeping(work);
        EXPECT_EQ(footage(work), before);
        const DOTakeData* unusable = withUmid(takes, lost);
        ASSERT_NE(unusable, nullptr);
        EXPECT_EQ(unusable->getTakeStatus(), 5);
        EXPECT_EQ(unusable->getTakeDuration(), 0);
        EXPECT_EQ(takes.size(), 3);
    }
    EXPECT_TRUE(messages.keys().isEmpty());
    // Deleting the take, as the pane's Delete does, removes its folder alone.
    DOClipCtrl clipCtrl;
    clipCtrl.setToTakes(takes);
    clipCtrl.setTargetTake(*withUmid(takes, lost));
    ASSERT_TRUE(BLClipCtrl().doDeleteTake(clipCtrl, work));
    QMap<QString, QByteArray> left = before;
    for (const QString& path : before.keys())
        if (path.startsWith("BPAV/CLPR/ABC0002"))
            left.remove(path);
    EXPECT_EQ(footage(work), left);
    EXPECT_EQ(withUmid(BLHouseKeepingCtrl().doHouseKeeping(work), lost), nullptr);
}

// A profile padded with NUL bytes (a truncated one: the scan command's test).
TEST_F(HouseKeepingSafetyTest, ADamagedMediaProfileIsKeptAsideAndRebuilt)
{
    cwtest::CardFolder card(cwtest::CardFolder::fast(3, {2}));
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    const QString work = card.workFolder();
    const QString path = card.bpav() + "/MEDIAPRO.XML";
    const QByteArray damaged = cwtest::readFile(path) + QByteArray(4096, '\0');
    ASSERT_TRUE(cwtest::writeFile(path, damaged));
    const QMap<QString, QByteArray> before = footage(work);
    const QString kept = home().stateHome() + "/Clipwright/damaged";
    // Every take is listed (a take folder read without the profile shows
    // status 1 until the profile lists it: compared by UMID here).
    QStringList umids, planned;
    for (const DOTakeData& take : BLHouseKeepingCtrl().doHouseKeeping(work))
        umids << take.getUmid();
    for (const cardgen::ManifestTake& take : card.manifest().takes)
        planned << take.umid;
    umids.sort();
    planned.sort();
    EXPECT_EQ(umids, planned);
    EXPECT_EQ(messages.keys(), QStringList{"MSG_732_3300"});
    const QStringList copies = QDir(kept).entryList(QDir::Files);
    ASSERT_EQ(copies.size(), 1);
    EXPECT_EQ(cwtest::readFile(kept + "/" + copies[0]), damaged);
    EXPECT_TRUE(messages.alerts()[0].message.contains(kept + "/" + copies[0]));
    EXPECT_EQ(footage(work), before);
    // Repaired once, the card reads as planned (a second pass: the every-card test).
    EXPECT_EQ(described(BLHouseKeepingCtrl().doHouseKeeping(work)), expected(card.manifest()));
}

TEST_F(HouseKeepingSafetyTest, AWriteProtectedCardWithoutCueUpShowsEveryTakeAndWritesNothing)
{
    cwtest::CardFolder card(cwtest::CardFolder::fast(2, {2}));
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    ASSERT_TRUE(QFile::remove(card.bpav() + "/CUEUP.XML"));
    QTemporaryDir mount;
    if (!run("mount", {"--bind", card.workFolder(), mount.path()}))
        GTEST_SKIP() << "a bind mount cannot be made here (it needs root)";
    const bool readOnly = run("mount", {"-o", "remount,ro,bind", mount.path()});
    if (readOnly) {
        const QMap<QString, QByteArray> before = optest::snapshot(mount.path());
        BLHouseKeepingCtrl houseKeeping;
        EXPECT_EQ(described(houseKeeping.doHouseKeeping(mount.path())), expected(card.manifest()));
        EXPECT_EQ(optest::snapshot(mount.path()), before);
        EXPECT_EQ(messages.keys(), QStringList{"MSG_732_3176"});
        ASSERT_FALSE(houseKeeping.getRepairs().isEmpty());
        EXPECT_EQ(houseKeeping.getRepairs()[0].action, "not-written");
    }
    ASSERT_TRUE(run("umount", {mount.path()}));
    if (!readOnly)
        GTEST_SKIP() << "the bind mount cannot be made read-only here";
}

// Every kind of card the generator makes loads with the takes it planned; a
// card that needs no repair stays byte for byte as it was, and every card
// reads the same on a second pass.
TEST_F(HouseKeepingSafetyTest, EveryGeneratedCardLoadsWithItsTakes)
{
    auto with = [](std::function<void(cardgen::Options&)> change) {
        cardgen::Options options = cwtest::CardFolder::fast(3, {2});
        change(options);
        return options;
    };
    const std::pair<const char*, cardgen::Options> cards[] = {
        {"plain", with([](cardgen::Options&) {})},
        {"prefix CLPR", with([](cardgen::Options& o) { o.prefix = "CLPR"; })},
        {"camera layout", with([](cardgen::Options& o) { o.layout = "PRIVATE/ORX/BPAV"; })},
        {"spanning", with([](cardgen::Options& o) { o.spanningClips = 2; })},
        {"59.94p non-drop", with([](cardgen::Options& o) {
             o.frameRate = "59.94p";
             o.nonDropFrame = true;
         })},
        {"23.98p, four tracks, embedded metadata", with([](cardgen::Options& o) {
             o.frameRate = "23.98p";
             o.audioTracks = 4;
             o.embedXml = true;
         })},
        {"no audio, 64-bit offsets", with([](cardgen::Options& o) {
             o.audioTracks = 0;
             o.damages = {damage(Kind::Co64, 1)};
         })},
        {"damaged clips", with([](cardgen::Options& o) {
             o.clips = 6;
             o.damages = {damage(Kind::Missing, 1, {"BIM"}), damage(Kind::Loose, 2), damage(Kind::NoFtyp, 3),
                          damage(Kind::Hidden, 4), damage(Kind::NotOk, 5)};
         })},
        {"unlisted clip", with([](cardgen::Options& o) { o.damages = {damage(Kind::Unlisted, 2)}; })},
    };
    for (const auto& [name, options] : cards) {
        SCOPED_TRACE(name);
        cwtest::CardFolder card(options);
        ASSERT_TRUE(card.ok()) << card.error().toStdString();
        const QString work = card.workFolder();
        const QMap<QString, QByteArray> before = optest::snapshot(work);
        EXPECT_EQ(described(BLHouseKeepingCtrl().doHouseKeeping(work)), expected(card.manifest()));
        const bool needsRepair = options.damages.size() == 1 && options.damages[0].kind == Kind::Unlisted;
        if (!needsRepair) {
            EXPECT_EQ(optest::snapshot(work), before);
        }
        const QMap<QString, QByteArray> after = optest::snapshot(work);
        EXPECT_EQ(described(BLHouseKeepingCtrl().doHouseKeeping(work)), expected(card.manifest()));
        EXPECT_EQ(optest::snapshot(work), after);
    }
    EXPECT_TRUE(messages.keys().isEmpty()) << messages.keys().join(", ").toStdString();
}
