// FFmpeg, an independent reader, opens and decodes cardgen's MP4 files.
#include "FfmpegProbe.h"
#include "support/CardFolder.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

struct EssenceCase
{
    const char* size;
    const char* rate;
    int gop;
    int frames;
    int audioTracks;
    int channelsPerTrack;
    bool interlaced;
    bool co64 = false; // 64-bit chunk offsets instead of 32-bit ones
};

void checkEssence(const EssenceCase& c)
{
    cardgen::Options options;
    options.clips = 1;
    options.size = QString::fromLatin1(c.size);
    options.frameRate = QString::fromLatin1(c.rate);
    options.gop = c.gop;
    options.frames = c.frames;
    options.audioTracks = c.audioTracks;
    options.audioChannelsPerTrack = c.channelsPerTrack;
    if (c.co64)
        options.damages = {cwtest::damage(cardgen::Damage::Kind::Co64, 1)};
    const cwtest::CardFolder card(options);
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    const cardgen::ManifestTake& take = card.manifest().takes.front();
    const cardgen::ManifestClip& clip = take.clips.front();
    ASSERT_EQ(clip.files.front().kind, "MP4");

    const FfmpegProbe probe = FfmpegProbe::run(card.path(clip.files.front().path));
    ASSERT_TRUE(probe.opened);
    EXPECT_EQ(probe.videoCodec, "mpeg2video");
    EXPECT_EQ(probe.width, take.width);
    EXPECT_EQ(probe.height, take.height);
    EXPECT_EQ(probe.frameRateNum * take.frameRateDen, take.frameRateNum * probe.frameRateDen);
    EXPECT_EQ(probe.streamFrames, take.frames);
    ASSERT_EQ(probe.decodedFrames, take.frames);
    EXPECT_EQ(probe.interlacedFrames, c.interlaced ? take.frames : 0);

    // Presentation order: the i-th picture out of the decoder shows frame i,
    // including the B pictures shown before each GOP's intra picture.
    for (int i = 0; i < probe.decodedFrames; ++i)
        EXPECT_EQ(probe.counters[size_t(i)], (cardgen::FrameCounterValue{clip.counterClip, i}))
            << "frame " << i;

    // One PCM track per option, 48 kHz 16-bit, a tone of n kHz on channel n.
    ASSERT_EQ(int(probe.audio.size()), c.audioTracks);
    const double seconds = double(take.frames) * take.frameRateDen / take.frameRateNum;
    int channel = 0;
    for (const FfmpegProbe::Audio& audio : probe.audio) {
        EXPECT_EQ(audio.codec, "pcm_s16be");
        EXPECT_EQ(audio.sampleRate, 48000);
        ASSERT_EQ(audio.channels, c.channelsPerTrack);
        EXPECT_EQ(audio.samples, std::llround(seconds * 48000));
        for (long long crossings : audio.zeroCrossings) {
            ++channel;
            EXPECT_NEAR(double(crossings), 2000.0 * channel * seconds, 2.0) << "channel " << channel;
        }
    }
}

TEST(CardgenDecode, FfmpegAgreesWithTheManifestAndReadsEveryCounter)
{
    const EssenceCase cases[] = {
        {"1920x1080", "59.94i", 15, 30, 1, 2, true}, {"1440x1080", "50i", 12, 24, 2, 1, true},
        {"1280x720", "59.94p", 15, 21, 0, 2, false}, {"tiny", "23.98p", 9, 12, 4, 2, false},
        {"tiny", "25p", 0, 3, 1, 1, false},          {"tiny", "29.97p", 15, 30, 1, 2, false, true}};
    for (const EssenceCase& c : cases) {
        SCOPED_TRACE(std::string(c.size) + " " + c.rate);
        checkEssence(c);
    }
}

} // namespace
