// cardgen's real-time metadata files through CReadRtMeta: one time code per
// frame, counted here independently from the manifest's start time code.
#include "CrossCheckSupport.h"

#include "core/formats/metadata/CReadRtMeta.h"

#include <QRegularExpression>

#include <memory>

using crosscheck::clipFile;
using crosscheck::local;

namespace {

struct Tc
{
    int hours = 0, minutes = 0, seconds = 0, frames = 0;
    bool drop = false;
};

// "HH:MM:SS:FF", or with ";" before the frames for drop-frame time code.
Tc parse(const QString& text)
{
    const QRegularExpressionMatch m = QRegularExpression(R"(^(\d\d):(\d\d):(\d\d)([:;])(\d\d)$)").match(text);
    EXPECT_TRUE(m.hasMatch()) << text.toStdString();
    return {m.captured(1).toInt(), m.captured(2).toInt(), m.captured(3).toInt(), m.captured(5).toInt(),
            m.captured(4) == ";"};
}

QString display(const Tc& tc)
{
    return QString::asprintf("%02d:%02d:%02d%c%02d", tc.hours, tc.minutes, tc.seconds, tc.drop ? ';' : ':',
                             tc.frames);
}

// The next time code; drop-frame time code leaves out frames 0 and 1 of every
// minute but each tenth.
void advance(Tc& tc, int base)
{
    if (++tc.frames < base)
        return;
    tc.frames = 0;
    if (++tc.seconds == 60) {
        tc.seconds = 0;
        if (++tc.minutes == 60) {
            tc.minutes = 0;
            tc.hours = (tc.hours + 1) % 24;
        }
        if (tc.drop && tc.minutes % 10 != 0)
            tc.frames = 2;
    }
}

// The four stored bytes: frames (bit 6 the drop-frame flag), seconds, minutes,
// hours, each two BCD digits under their flag bits.
Tc decode(const FTCSTRUCT& t)
{
    auto bcd = [](quint8 byte, int tensBits) {
        return (byte >> 4 & ((1 << tensBits) - 1)) * 10 + (byte & 0x0F);
    };
    return {bcd(t.hours, 2), bcd(t.minutes, 3), bcd(t.seconds, 3), bcd(t.frames, 2), (t.frames & 0x40) != 0};
}

} // namespace

TEST(BimCross, ReaderGivesEveryFrameItsTimeCode)
{
    struct Case
    {
        const char* rate;
        const char* start;
        bool nonDrop;
        int frames;
        int base;        // time-code frames per second
        int perTimecode; // frames per time-code frame
        int clips = 1;   // several: one take of that many clips, read by one reader each
    };
    const Case cases[] = {
        {"59.94i", "00:00:59:20", false, 30, 30, 1}, // over a dropped minute boundary
        {"59.94i", "00:09:59:25", true, 12, 30, 1},  // non-drop: nothing is left out
        {"29.97p", "00:19:59:28", false, 6, 30, 1},  // a tenth minute drops nothing
        {"59.94p", "00:00:59:28", false, 12, 30, 2},   {"23.98p", "01:00:00:00", false, 30, 24, 1},
        {"25p", "23:59:59:20", false, 12, 25, 1},      // past midnight
        {"59.94i", "00:00:59:25", false, 9, 30, 1, 3}, // the clips of a take continue the time code
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.rate) + " from " + c.start);
        cardgen::Options o = crosscheck::oneClipCard("tiny", c.rate, c.frames);
        o.startTimecode = c.start;
        o.nonDropFrame = c.nonDrop;
        if (c.clips > 1) {
            o.clips = 0;
            o.multiClipTakes = {c.clips};
        }
        const cwtest::CardFolder card(o);
        ASSERT_TRUE(card.ok()) << card.error().toStdString();
        const cardgen::ManifestTake& take = card.manifest().takes.front();
        ASSERT_EQ(int(take.clips.size()), c.clips);
        Tc expected = parse(take.clips.front().startTimecode);
        EXPECT_EQ(expected.drop, !c.nonDrop && c.base == 30);

        // One reader per clip, each started at the clip's place in the take.
        std::vector<std::unique_ptr<CReadRtMeta>> readers;
        unsigned long start = 0;
        int frameOfTake = 0;
        for (const cardgen::ManifestClip& clip : take.clips) {
            CReadRtMeta& reader = *readers.emplace_back(std::make_unique<CReadRtMeta>());
            ASSERT_TRUE(reader.blReadBIM(local(clipFile(card, clip, "BIM")).constData(), start))
                << reader.getLastError();
            EXPECT_EQ(reader.getStartPosition(), start);
            EXPECT_EQ(reader.getUnitCount(), quint64(clip.frames) + 1);
            start += reader.getUnitCount();
            FTCSTRUCT tc;
            for (int frame = 0; frame < clip.frames; ++frame, ++frameOfTake) {
                if (frameOfTake > 0 && frameOfTake % c.perTimecode == 0)
                    advance(expected, c.base);
                ASSERT_TRUE(reader.GetTimeCode(frame, &tc)) << frame;
                EXPECT_EQ(display(decode(tc)), display(expected))
                    << clip.name.toStdString() << " frame " << frame;
            }
            EXPECT_EQ(display(decode(tc)), clip.lastTimecode);
            EXPECT_FALSE(reader.GetTimeCode(clip.frames, &tc));
        }
    }
}
