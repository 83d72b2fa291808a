// Damaged cards: each damage option makes exactly the damage the manifest names.
#include "FfmpegProbe.h"
#include "support/CardFolder.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

#include <functional>

namespace {

using cardgen::Damage;
using cardgen::ManifestTake;

QByteArray readFile(const QString& path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

QStringList entries(const QString& folder)
{
    QStringList names = QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    names.sort();
    return names;
}

Damage damage(const char* text)
{
    QString error;
    const std::optional<Damage> d = Damage::parse(QString::fromLatin1(text), &error);
    EXPECT_TRUE(d.has_value()) << error.toStdString();
    return d.value_or(Damage{});
}

TEST(CardgenDamage, EachDamageIsExactlyWhatTheManifestSays)
{
    cardgen::Options o = cwtest::CardFolder::quick();
    o.clips = 9;
    o.fast = true;
    o.damages = {damage("missing=BIM@1"), damage("missing=SMI+BIM+PPN@2"),
                 damage("unlisted@3"),    damage("loose@4"),
                 damage("noftyp@5"),      damage("co64@6"),
                 damage("hidden@7"),      damage("notok@8")};
    const cwtest::CardFolder card(o);
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    const std::vector<ManifestTake>& takes = card.manifest().takes;
    ASSERT_EQ(takes.size(), 9u);
    const QString clpr = card.bpav() + "/CLPR";
    const QByteArray profile = readFile(card.bpav() + "/MEDIAPRO.XML");
    auto isListed = [&](const ManifestTake& t) {
        return profile.contains("umid=\"" + t.umid.toLatin1() + "\"");
    };

    const std::vector<std::pair<QString, int>> expected = {{"missing", 5}, {"missing", 3}, {"unlisted", 0},
                                                           {"loose", 4},   {"noftyp", 5},  {"co64", 5},
                                                           {"hidden", -1}, {"notok", 1},   {"clean", 0}};
    for (size_t i = 0; i < takes.size(); ++i) {
        EXPECT_EQ(takes[i].damage, expected[i].first) << "take " << i + 1;
        EXPECT_EQ(takes[i].expectedStatus, expected[i].second) << "take " << i + 1;
        EXPECT_EQ(takes[i].listed, isListed(takes[i])) << "take " << i + 1;
    }

    // 1: everything but the real-time metadata.
    EXPECT_EQ(takes[0].missingFiles, QStringList{"BIM"});
    EXPECT_EQ(entries(clpr + "/ABC0001"),
              (QStringList{"ABC0001.MP4", "ABC0001.SMI", "ABC0001I01.PPN", "ABC0001M01.XML"}));
    // 2: only the essence and its metadata.
    EXPECT_EQ(entries(clpr + "/ABC0002"), (QStringList{"ABC0002.MP4", "ABC0002M01.XML"}));
    EXPECT_TRUE(isListed(takes[1]));
    // 3: a complete folder the media profile does not list.
    EXPECT_EQ(entries(clpr + "/ABC0003").size(), 5);
    EXPECT_FALSE(isListed(takes[2]));
    // 4: a bare MP4 file in CLPR, no folder.
    EXPECT_EQ(takes[3].kind, "loose");
    EXPECT_EQ(takes[3].takeId, "ABC0004");
    EXPECT_TRUE(QFileInfo(clpr + "/ABC0004.MP4").isFile());
    EXPECT_FALSE(QFile::exists(clpr + "/ABC0004"));
    EXPECT_EQ(readFile(clpr + "/ABC0004.MP4").mid(4, 4), "ftyp");
    // 5: the MP4 starts with a free box; ftyp follows it.
    const QByteArray noFtyp = readFile(clpr + "/ABC0005/ABC0005.MP4");
    EXPECT_EQ(noFtyp.mid(4, 4), "free");
    EXPECT_EQ(noFtyp.mid(12, 4), "ftyp");
    // 6: 64-bit chunk offsets in every track, no stco; the file is still sound.
    const QByteArray co64 = readFile(clpr + "/ABC0006/ABC0006.MP4");
    EXPECT_EQ(co64.count("co64"), co64.count("trak"));
    EXPECT_EQ(co64.count("trak"), 2);
    EXPECT_EQ(co64.count("stco"), 0);
    EXPECT_EQ(FfmpegProbe::run(clpr + "/ABC0006/ABC0006.MP4", 0).decodedFrames, 6);
    // 7: a complete clip in a folder whose name starts with ".".
    EXPECT_EQ(takes[6].takeId, ".ABC0007");
    EXPECT_EQ(entries(clpr + "/.ABC0007").size(), 5);
    EXPECT_FALSE(QFile::exists(clpr + "/ABC0007"));
    // 8: the target material's status is not OK.
    EXPECT_TRUE(readFile(clpr + "/ABC0008/ABC0008M01.XML").contains("status=\"NG\""));
    // 9: untouched.
    EXPECT_EQ(entries(clpr + "/ABC0009").size(), 5);
    EXPECT_EQ(readFile(clpr + "/ABC0009/ABC0009.MP4").mid(4, 4), "ftyp");

    // Nothing else lies in CLPR.
    EXPECT_EQ(entries(clpr), (QStringList{".ABC0007", "ABC0001", "ABC0002", "ABC0003", "ABC0004.MP4",
                                          "ABC0005", "ABC0006", "ABC0008", "ABC0009"}));
}

TEST(CardgenDamage, BadRequestsAreRefusedAndLeaveNothingBehind)
{
    for (const char* text : {"missing", "missing=FOO", "missing=MP4", "bogus", "unlisted=BIM", "co64@0"}) {
        QString error;
        EXPECT_FALSE(Damage::parse(QString::fromLatin1(text), &error).has_value()) << text;
        EXPECT_FALSE(error.isEmpty()) << text;
    }
    EXPECT_EQ(damage("MISSING=bim+Ppn@2").files, (QStringList{"BIM", "PPN"}));

    const struct
    {
        const char* why;
        std::function<void(cardgen::Options&)> change;
    } cases[] = {
        {"damage of a take that does not exist", [](auto& o) { o.damages = {damage("loose@2")}; }},
        {"two damages on one take",
         [](auto& o) {
             o.damages = {damage("loose@1"), damage("hidden@1")};
         }},
        {"frame count not a multiple of 3", [](auto& o) { o.frames = 7; }},
        {"GOP length", [](auto& o) { o.gop = 14; }},
        {"frame size", [](auto& o) { o.size = "1024x768"; }},
        {"frame rate", [](auto& o) { o.frameRate = "30p"; }},
        {"start time code", [](auto& o) { o.startTimecode = "00:01:00;00"; }}, // no such drop-frame code
    };
    for (const auto& c : cases) {
        cardgen::Options o = cwtest::CardFolder::quick();
        c.change(o);
        const cwtest::CardFolder card(o);
        EXPECT_FALSE(card.ok()) << c.why;
        EXPECT_FALSE(card.error().isEmpty()) << c.why;
        EXPECT_FALSE(QFile::exists(card.workFolder())) << c.why << ": the card folder was left behind";
    }
}

} // namespace
