#include "core/card/DOTakeData.h"

#include "core/services/BLCommon.h"
#include "support/TestEnvironment.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <limits>

namespace {

DOClipData clip(const QString& umid, qint64 duration, qint64 size)
{
    DOClipData c;
    c.setUmid(umid);
    c.setCurrentDuration(duration);
    c.setSize(size);
    return c;
}

DOComponent component(const QString& uri, const QString& umid)
{
    DOComponent c;
    c.setUri(uri);
    c.setUmid(umid);
    c.setType("PD-EDL");
    return c;
}

QStringList uris(const QList<DOComponent>& components)
{
    QStringList out;
    for (const DOComponent& c : components)
        out.append(c.getUri());
    return out;
}

} // namespace

TEST(TakeDataTest, DurationAndSizeOfSingleAndMultiClipTakes)
{
    DOTakeData single;
    single.setSingleClipFlag(true);
    single.setCurrentDuration(1800);
    single.setSize(5000);
    EXPECT_EQ(single.getTakeDuration(), 1800);
    EXPECT_EQ(single.getTakeSize(), 5000);

    DOTakeData multi;
    multi.setCurrentDuration(999999); // ignored once the take has clips
    multi.setSize(2048);              // the TAKR folder itself
    multi.setClipData(clip("C1", 1800, 4294967296LL));
    multi.setClipData(clip("C2", 600, 1000));
    multi.setClipData(clip("C3", 0, 24));
    EXPECT_EQ(multi.getTakeDuration(), 2400);
    EXPECT_EQ(multi.getTakeSize(), 2048 + 4294967296LL + 1000 + 24);

    // Sums stop at the largest value; an unusable take lasts nothing.
    constexpr qint64 kMax = std::numeric_limits<qint64>::max();
    multi.setClipData(clip("C4", kMax - 100, kMax - 100));
    EXPECT_EQ(multi.getTakeDuration(), kMax);
    EXPECT_EQ(multi.getTakeSize(), kMax);
    for (const int status : {5, 6}) {
        multi.setTakeStatus(status);
        single.setTakeStatus(status);
        EXPECT_EQ(multi.getTakeDuration(), 0);
        EXPECT_EQ(single.getTakeDuration(), 0);
    }

    // Frame counts from metadata: the largest a card can hold, and no more.
    for (const auto& [text, frames] : std::initializer_list<std::pair<QString, qint64>>{
             {"5184000", 5184000}, {"5184001", -1}, {"99999999999999999999", -1}, {"-1", -1}})
        EXPECT_EQ(BLCommon::toFrameCount(text), frames) << text.toStdString();
}

TEST(TakeDataTest, AllFilesExistChecksTheTakeThenEveryClip)
{
    QTemporaryDir work;
    const QString bpav = work.path() + "/PRIVATE/ORX/BPAV"; // the card layout
    for (const char* file :
         {"TAKR/T01/T01M01.XML", "TAKR/T01/T01.SMI", "CLPR/C1/C1M01.XML", "CLPR/C1/C1.SMI",
          "CLPR/C1/C1R01.BIM", "CLPR/C1/C1I01.PPN", "CLPR/C1/C1.MP4", "CLPR/C2/C2M01.XML", "CLPR/C2/C2.MP4"})
        ASSERT_TRUE(cwtest::writeFile(bpav + "/" + file, "x"));

    DOTakeData take;
    take.setXMLUri("./TAKR/T01/T01M01.XML");
    take.setSMIUri("./TAKR/T01/T01.SMI"); // no BIM, PPN or MP4 of its own: not checked
    DOClipData c1;
    c1.setXMLUri("./CLPR/C1/C1M01.XML");
    c1.setSMIUri("./CLPR/C1/C1.SMI");
    c1.setBIMUri("./CLPR/C1/C1R01.BIM");
    c1.setPPNUri("./CLPR/C1/C1I01.PPN");
    c1.setMP4Uri("./CLPR/C1/C1.MP4");
    take.setClipData(c1);
    // A clip of status 3 has only metadata and essence.
    DOClipData c2;
    c2.setClipStatus(3);
    c2.setXMLUri("./CLPR/C2/C2M01.XML");
    c2.setMP4Uri("./CLPR/C2/C2.MP4");
    take.setClipData(c2);
    EXPECT_TRUE(take.isAllFileExist(work.path()));
    ASSERT_TRUE(QFile::remove(bpav + "/CLPR/C1/C1I01.PPN"));
    EXPECT_FALSE(take.isAllFileExist(work.path()));

    // A single clip of status 3 names its folder as take info: the take skips
    // its SMI, BIM and PPN references, which a clip record checks as files.
    DOTakeData single;
    single.setXMLUri("./CLPR/C2/C2M01.XML");
    single.setMP4Uri("./CLPR/C2/C2.MP4");
    single.setSMIUri("./CLPR/C2");
    single.setBIMUri("./CLPR/C2/C2R01.BIM");
    single.setTakeStatus(3);
    EXPECT_TRUE(single.isAllFileExist(work.path()));
    single.setTakeStatus(0);
    EXPECT_FALSE(single.isAllFileExist(work.path()));
    c2.setSMIUri("./CLPR/C2");
    EXPECT_FALSE(c2.isAllFileExist(work.path()));
}

TEST(TakeDataTest, RebuildTakeComponentJoinsBothClipRunsBetweenTheOtherMediaEntries)
{
    DOTakeData take;
    take.setUmid("TAKE");
    take.setTakeComponents({
        component("file:///media/prev/P.SMI", "P1"), // before the own clips: dropped
        component("./CLPR/C003/C003.SMI", "C3"),
        component("./CLPR/C001/C001.SMI", "C1"),     // also in the given list, which comes first
        component("./TAKR/TAKE/TAKE.SMI", "take"),   // the take's own UMID: dropped
        component("file:///media/next/N.SMI", "N1"), // ends the own clips: kept last
        component("./CLPR/C009/C009.SMI", "C9"),     // after that entry: dropped
    });
    const QList<DOComponent> given{
        component("file:///media/older/O.SMI", "O1"), // before the given clips: kept first
        component("./TAKR/TAKE/X.SMI", "TAKE"),       // the take's own UMID: dropped
        component("./CLPR/C002/C002.SMI", "C2"),
        component("./CLPR/c001/C001.smi", "c1"),  // same UMID as the own C1, ignoring case
        component("./CLPR/G/G.SMI", "g"),         // the given UMID, ignoring case: dropped
        component("file:///media/x/X.SMI", "X1"), // ends the given clips: dropped
        component("./CLPR/C004/C004.SMI", "C4"),  // after that entry: dropped
    };
    take.rebuildTakeComponent("G", given);
    EXPECT_EQ(uris(take.getTakeComponents()),
              QStringList({"file:///media/older/O.SMI", "./CLPR/c001/C001.smi", "./CLPR/C002/C002.SMI",
                           "./CLPR/C003/C003.SMI", "file:///media/next/N.SMI"}));

    // The own trailing entry is left out when its UMID is already taken.
    DOTakeData repeat;
    repeat.setTakeComponents({component("./CLPR/B/B.SMI", "B"), component("file:///media/n/N.SMI", "O1")});
    repeat.rebuildTakeComponent("G",
                                {component("file:///media/o/O.SMI", "O1"), component("./CLPR/A/A.SMI", "A")});
    EXPECT_EQ(uris(repeat.getTakeComponents()),
              QStringList({"file:///media/o/O.SMI", "./CLPR/A/A.SMI", "./CLPR/B/B.SMI"}));

    // Lists without clip entries: every given entry is "before the clips"; the
    // take's own entries without a clip run contribute nothing.
    DOTakeData noClips;
    noClips.setTakeComponents({component("file:///media/n/N.SMI", "N")});
    noClips.rebuildTakeComponent(
        "G", {component("file:///media/a/A.SMI", "A"), component("file:///media/b/B.SMI", "B")});
    EXPECT_EQ(uris(noClips.getTakeComponents()),
              QStringList({"file:///media/a/A.SMI", "file:///media/b/B.SMI"}));
}

TEST(TakeDataTest, RemoveTakeComponentDropsOtherMediaEntriesOfTheGivenTakesAndTheTakeItself)
{
    DOTakeData take;
    take.setUmid("TAKE");
    take.setTakeComponents({
        component("file:///media/a/A.SMI", "A"),       // a given take: removed
        component("./CLPR/A/A.SMI", "A"),              // on this medium: always kept
        component("file:///media/self/S.SMI", "take"), // the take's own UMID: removed
        component("file:///media/b/B.SMI", "b-clip"),  // a clip of a given take (clip data): removed
        component("file:///media/c/C.SMI", "C-UMID"),  // a clip of a given take (UMID list): removed
        component("file:///media/z/Z.SMI", "Z"),       // unrelated: kept
        component("./TAKR/T/T.SMI", "A"),              // not on this medium, given take: removed
    });

    DOTakeData a;
    a.setUmid("a");
    DOTakeData withClips;
    withClips.setUmid("Q");
    withClips.setClipData(clip("B-CLIP", 1, 1));
    withClips.setClipUmid("c-umid");
    take.removeTakeComponent({a, withClips});
    EXPECT_EQ(uris(take.getTakeComponents()), QStringList({"./CLPR/A/A.SMI", "file:///media/z/Z.SMI"}));
}
