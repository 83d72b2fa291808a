#include "core/card/DOTakeData.h"
#include "core/formats/metadata/DOLtcChange.h"
#include "core/services/BLCommon.h"

#include <gtest/gtest.h>

namespace {

// LTC change entries with the given values.
QList<DOLtcChange> ltc(const QStringList& values)
{
    QList<DOLtcChange> changes;
    for (const QString& value : values) {
        DOLtcChange change;
        change.setValue(value);
        changes << change;
    }
    return changes;
}

QString display(qint64 frames, const QString& fps, const QStringList& values = {})
{
    return BLCommon::convertOfDurationByFrameCount(frames, fps, ltc(values), false);
}

} // namespace

TEST(TimecodeTest, DurationDisplayAtEveryRate)
{
    const struct
    {
        qint64 frames;
        const char* fps;
        const char* shown;
    } cases[] = {
        {1799, "29.97p", "00:00.59:29"},
        {1800, "29.97p", "00:01.00:02"},  // frames 0 and 1 skipped
        {17982, "29.97p", "00:10.00:00"}, // every tenth minute keeps them
        {19782, "29.97p", "00:11.00:02"},
        {107892, "29.97p", "01:00.00:00"},
        {25 * 107892, "29.97p", "01:00.00:00"}, // drop-frame hours wrap once past 24
        {2 * 107892, "59.94i", "02:00.00:00"},
        {3601, "59.94P", "00:01.00:02"}, // progressive high rates halve
        {100, "50p", "00:00:02:00"},
        {2160000, "25p", "24:00:00:00"}, // no wrap
        {86400, "23.98p", "01:00:00:00"},
        {30, "unknown", "00:00:01:05"}, // unknown names count at 25
    };
    for (const auto& c : cases)
        EXPECT_EQ(display(c.frames, c.fps), c.shown) << c.frames << " " << c.fps;
}

TEST(TimecodeTest, TheFirstLtcValueDecidesDropFrame)
{
    EXPECT_EQ(display(1800, "29.97p", {"10000000"}), "00:01:00:00");
    EXPECT_EQ(display(1800, "29.97p", {"40000000"}), "00:01.00:02");
    EXPECT_EQ(display(1800, "29.97p", {""}), "00:01.00:02");
    EXPECT_EQ(display(1800, "29.97p", {"30000000", "40000000"}), "00:01:00:00");

    int rate = -1;
    EXPECT_FALSE(BLCommon::isDropFrameByLtcChanges(ltc({}), "25p", &rate));
    EXPECT_EQ(rate, 25); // the rate comes back even when the answer is no
    EXPECT_TRUE(BLCommon::isDropFrameByLtcChanges(ltc({"C0000000"}), "59.94p", &rate));
    EXPECT_EQ(rate, 30);
    EXPECT_FALSE(BLCommon::isDropFrameByLtcChanges(ltc({"40000000"}), "23.98P", &rate));
    EXPECT_EQ(rate, 24);
}

TEST(TimecodeTest, LtcValuesParseOrAreRejected)
{
    BLCommon::Timecode tc;
    ASSERT_TRUE(BLCommon::LTCCValueToTimecode(&tc, "44030201", 0, 30));
    EXPECT_EQ(tc, (BLCommon::Timecode{0x44, 0x03, 0x02, 0x01}));
    QString text;
    ASSERT_TRUE(BLCommon::GetTimecode(&text, ltc({"44030201"}), 0, 30));
    EXPECT_EQ(text, "01:02:03:04\n");
    EXPECT_FALSE(BLCommon::GetTimecode(&text, ltc({}), 0, 30));

    for (const QString bad : {"4403020", "440302011", "4403020G", "", "44 30201"}) {
        tc = {1, 2, 3, 4};
        EXPECT_FALSE(BLCommon::LTCCValueToTimecode(&tc, bad, 0, 30)) << bad.toStdString();
        EXPECT_EQ(tc, (BLCommon::Timecode{0, 0, 0, 0}));
        int drop = -1;
        EXPECT_EQ(BLCommon::GetStartFrames(ltc({bad}), 0, 30, &drop), 0);
        EXPECT_EQ(drop, 0);
    }
}

TEST(TimecodeTest, OffsetSubtractionSkipsDroppedFramesAndKeepsTheFlags)
{
    // 00:01:00:02 less one frame: frames 0 and 1 of that minute do not exist.
    QString text;
    ASSERT_TRUE(BLCommon::GetTimecode(&text, ltc({"42000100"}), 1, 30));
    EXPECT_EQ(text, "00:00:59:29\n");
    BLCommon::Timecode tc;
    BLCommon::LTCCValueToTimecode(&tc, "C0000000", 1, 30);
    EXPECT_EQ(tc, (BLCommon::Timecode{0xE9, 0x59, 0x59, 0x23})); // bits 6 and 7 kept
}

TEST(TimecodeTest, OffsetsAreFramesAtEveryRate)
{
    // A start time code of 01:00:00:00 less offsets of 0, 1 and 1799 frames.
    // The expected frame counts are counted here: a non-drop hour holds
    // 3600 seconds of time code frames; a drop-frame hour loses frames 0 and 1
    // of 54 of its 60 minutes. At 50p and 59.94p a time code frame is two frames.
    struct Rate
    {
        const char* name;
        int fps;
        const char* value; // 01:00:00:00, with the drop-frame flag where it is drop frame
        qint64 hour;
    };
    const Rate rates[] = {
        {"23.98p", 24, "00000001", 3600 * 24},
        {"25p", 25, "00000001", 3600 * 25},
        {"29.97p", 30, "40000001", 3600 * 30 - 54 * 2},
        {"29.97p", 30, "00000001", 3600 * 30},
        {"50i", 25, "00000001", 3600 * 25},
        {"50p", 50, "00000001", 3600 * 25 * 2},
        {"59.94i", 30, "40000001", 3600 * 30 - 54 * 2},
        {"59.94p", 60, "40000001", (3600 * 30 - 54 * 2) * 2},
    };
    for (const Rate& rate : rates) {
        const bool drop = QString(rate.value).startsWith('4');
        for (const quint32 offset : {0u, 1u, 1799u}) {
            SCOPED_TRACE(std::string(rate.name) + (drop ? " drop" : "") + " offset " +
                         std::to_string(offset));
            int flag = -1;
            const qint64 start = rate.hour - offset;
            EXPECT_EQ(BLCommon::GetStartFrames(ltc({rate.value}), offset, rate.fps, &flag), start);
            EXPECT_EQ(flag, drop ? 1 : 0);
            // The time code text agrees with the duration display of the same count.
            QString text;
            ASSERT_TRUE(BLCommon::GetTimecode(&text, ltc({rate.value}), offset, rate.fps));
            QString shown = display(start, rate.name, {rate.value});
            EXPECT_EQ(text, shown.replace('.', ':') + '\n');
        }
    }
    // Below 00:00:00:00 the time code goes back to the day before.
    int flag = 0;
    EXPECT_EQ(BLCommon::GetStartFrames(ltc({"00000000"}), 1, 60, &flag), 24 * 3600 * 60 - 1);
    QString text;
    BLCommon::GetTimecode(&text, ltc({"00000000"}), 3, 50);
    EXPECT_EQ(text, "23:59:59:23\n");
}

TEST(TimecodeTest, DropFrameStartFramesRoundTripEveryFrameOfAnHour)
{
    // The LTC-table text of each frame count reads back as that count.
    for (qint64 n = 0; n < 107892; ++n) {
        const QString value = BLCommon::convertOfDurationByFrameCount(n, "29.97p", {}, true);
        int drop = 0;
        ASSERT_EQ(BLCommon::GetStartFrames(ltc({value}), 0, 30, &drop), n) << value.toStdString();
        ASSERT_EQ(drop, 1);
    }
}

TEST(TimecodeTest, TakesFormatTheirDurationAndStartTimeCode)
{
    DOTakeData take;
    take.setFormatFps("29.97p");
    EXPECT_EQ(BLCommon::convertOfDurationByTakeData(take), "--:--:--:--");
    DOClipData first, second;
    first.setCurrentDuration(1000);
    first.setOffset(2); // the take's offset is its first clip's
    second.setCurrentDuration(800);
    take.setClipData(first);
    take.setClipData(second);
    EXPECT_EQ(BLCommon::convertOfDurationByTakeData(take), "00:01.00:02"); // 1800 frames

    QString text;
    EXPECT_FALSE(BLCommon::GetTimecode(&text, take));
    int drop = -1;
    EXPECT_EQ(BLCommon::GetStartFrames(take, &drop), 0);
    take.setArrLtcChanges(ltc({"40000001", "45000001"}));
    ASSERT_TRUE(BLCommon::GetTimecode(&text, take));
    EXPECT_EQ(text, "00:59:59:28\n");
    EXPECT_EQ(BLCommon::GetStartFrames(take, &drop), 107890);
    EXPECT_EQ(drop, 1);

    DOTakeData hd720;
    hd720.setVideoCodec("MPEG2HD18.3CBR_1280_720_MP@HL");
    EXPECT_FALSE(BLCommon::Is720SP({take}));
    EXPECT_TRUE(BLCommon::Is720SP({take, hd720}));
}

TEST(TimecodeTest, TheDurationCheckLooksAtEveryClipAndAllowsBigFiles)
{
    DOTakeData single;
    single.setFormatFps("25p");
    single.setCurrentDuration(29 * 60 * 25);
    DOTakeData multi;
    multi.setFormatFps("25p");
    DOClipData shortClip, longClip;
    shortClip.setCurrentDuration(10 * 25);
    longClip.setCurrentDuration(31 * 60 * 25);
    multi.setClipData(shortClip);
    multi.setClipData(longClip);
    multi.setCurrentDuration(10); // ignored: the take has clips

    EXPECT_TRUE(BLCommon::checkTakeDuration({single}));
    EXPECT_FALSE(BLCommon::checkTakeDuration({single, multi}));
    multi.setSize(qint64(1) << 32); // a take of 4 GiB passes whatever its length
    EXPECT_TRUE(BLCommon::checkTakeDuration({single, multi}));
    single.setCurrentDuration(30 * 60 * 25);
    EXPECT_FALSE(BLCommon::checkTakeDuration({single, multi}));
    single.setCurrentDuration(3600 * 25); // 01:00:00:00 has minutes 00
    EXPECT_TRUE(BLCommon::checkTakeDuration({single}));
    single.setCurrentDuration(10 * 3600 * 25);
    EXPECT_FALSE(BLCommon::checkTakeDuration({single}));
}
