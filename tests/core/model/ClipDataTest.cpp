#include "core/model/DOClipData.h"

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

// A clip with every field away from its starting value.
DOClipData fullClip()
{
    DOClipData clip;
    clip.setExistFlag(true);
    clip.setValidFlag(true);
    clip.setUmid("U1");
    clip.setXMLUri("./CLPR/C0001/C0001M01.XML");
    clip.setSMIUri("./CLPR/C0001/C0001.SMI");
    clip.setBIMUri("./CLPR/C0001/C0001R01.BIM");
    clip.setPPNUri("./CLPR/C0001/C0001I01.PPN");
    clip.setMP4Uri("./CLPR/C0001/C0001.MP4");
    clip.setFolderName("C0001");
    clip.setRealFlag(true);
    clip.setCurrentDuration(1800);
    clip.setVideoCodec("MPEG2HD35_1920_1080_MP@HL");
    clip.setAudioCodec("LPCM16");
    clip.setFormatFps("59.94i");
    clip.setNumOfChannel("2");
    clip.setARatio("16:9");
    clip.setSize(123456789);
    clip.setClipStatus(3);
    clip.setMPStatus("none");
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

    EXPECT_EQ(copy.getExistFlag(), true);
    EXPECT_EQ(copy.getValidFlag(), true);
    EXPECT_EQ(copy.getUmid(), "U1");
    EXPECT_EQ(copy.getXMLUri(), clip.getXMLUri());
    EXPECT_EQ(copy.getSMIUri(), clip.getSMIUri());
    EXPECT_EQ(copy.getBIMUri(), clip.getBIMUri());
    EXPECT_EQ(copy.getPPNUri(), clip.getPPNUri());
    EXPECT_EQ(copy.getMP4Uri(), clip.getMP4Uri());
    EXPECT_EQ(copy.getFolderName(), "C0001");
    EXPECT_EQ(copy.getRealFlag(), true);
    EXPECT_EQ(copy.getCurrentDuration(), 1800);
    EXPECT_EQ(copy.getVideoCodec(), clip.getVideoCodec());
    EXPECT_EQ(copy.getAudioCodec(), "LPCM16");
    EXPECT_EQ(copy.getFormatFps(), "59.94i");
    EXPECT_EQ(copy.getNumOfChannel(), "2");
    EXPECT_EQ(copy.getARatio(), "16:9");
    EXPECT_EQ(copy.getSize(), 123456789);
    EXPECT_EQ(copy.getClipStatus(), 3);
    EXPECT_EQ(copy.getMPStatus(), "none");
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
