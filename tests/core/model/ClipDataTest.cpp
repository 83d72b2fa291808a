#include "core/card/DOClipData.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {
DOLtcChange ltc(const QString& frame, const QString& value)
{
    DOLtcChange change;
    change.setFrameCount(frame);
    change.setValue(value);
    change.setStatus("increment");
    return change;
}

// A clip with the fields copyClip treats specially away from their starting values.
DOClipData fullClip()
{
    DOClipData clip;
    clip.setUmid("U1");
    clip.setMP4Uri("./CLPR/C0001/C0001.MP4");
    clip.setRealFlag(true);
    clip.setSize(123456789);
    clip.setClipStatus(3);
    clip.setMateUpFlg(false);
    clip.setCreationDate("2009-03-05T14:07:59+09:00");
    clip.setLtcChange(ltc("0", "40000000"));
    clip.setLtcChange(ltc("1799", "59590000"));
    clip.setOffset(15);
    return clip;
}
} // namespace

TEST(ClipDataTest, StartingValuesAndLtcChangeList)
{
    const DOClipData clip;
    EXPECT_TRUE(clip.getMateUpFlg());
    EXPECT_FALSE(clip.getRealFlag());
    EXPECT_EQ(clip.getClipStatus(), 0);
    EXPECT_EQ(clip.getSize(), 0);
    EXPECT_TRUE(clip.getUmid().isEmpty());
    EXPECT_TRUE(clip.getLtcChanges().isEmpty());

    const DOClipData full = fullClip();
    ASSERT_EQ(full.getLtcChanges().size(), 2);
    EXPECT_EQ(full.getLtcChange(1).getValue(), "59590000");
    EXPECT_TRUE(full.getLtcChange(2).getValue().isEmpty()); // past the end: an empty entry
    EXPECT_TRUE(full.getLtcChange(-1).getValue().isEmpty());
}

TEST(ClipDataTest, CopyClipDropsCreationDateLtcChangesAndMateUpFlag)
{
    const DOClipData clip = fullClip();
    const DOClipData copy = clip.copyClip();

    EXPECT_TRUE(copy.getCreationDate().isEmpty());
    EXPECT_TRUE(copy.getLtcChanges().isEmpty());
    EXPECT_TRUE(copy.getMateUpFlg());

    EXPECT_EQ(copy.getUmid(), "U1");
    EXPECT_EQ(copy.getMP4Uri(), clip.getMP4Uri());
    EXPECT_TRUE(copy.getRealFlag());
    EXPECT_EQ(copy.getSize(), 123456789);
    EXPECT_EQ(copy.getClipStatus(), 3);
    EXPECT_EQ(copy.getOffset(), 15u);

    // The original is untouched.
    EXPECT_EQ(clip.getLtcChanges().size(), 2);
    EXPECT_FALSE(clip.getMateUpFlg());
}

TEST(ClipDataTest, ClipsSortByCreationDateIgnoringCase)
{
    QList<DOClipData> clips;
    for (const char* date :
         {"2009-03-05t14:07:59+09:00", "2009-03-05T09:00:00+09:00", "2008-12-31T23:59:59+09:00"}) {
        DOClipData clip;
        clip.setCreationDate(date);
        clips.append(clip);
    }
    std::sort(clips.begin(), clips.end(),
              [](const DOClipData& a, const DOClipData& b) { return a.compareByClipCreationDate(b) < 0; });
    EXPECT_EQ(clips[0].getCreationDate(), "2008-12-31T23:59:59+09:00");
    EXPECT_EQ(clips[1].getCreationDate(), "2009-03-05T09:00:00+09:00");
    EXPECT_EQ(clips[2].getCreationDate(), "2009-03-05t14:07:59+09:00");

    DOClipData upper;
    upper.setCreationDate("2009-03-05T14:07:59Z");
    DOClipData lower;
    lower.setCreationDate("2009-03-05t14:07:59z");
    EXPECT_EQ(upper.compareByClipCreationDate(lower), 0);
}
