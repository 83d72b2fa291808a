#include "RecordingPreviewView.h"
#include "core/app/preview/BLAudioChannelCtrl.h"
#include "support/QtPrinters.h"

#include <gtest/gtest.h>

using namespace pvtest;

namespace {

// The tone of each channel of interleaved stereo samples (sign changes a
// second), and whether the two channels are the same.
struct Tones
{
    double left = 0, right = 0;
    bool same = true;
};

Tones tones(const std::vector<int16_t>& samples)
{
    Tones t;
    const size_t frames = samples.size() / 2;
    for (size_t i = 1; i < frames; ++i) {
        t.left += (samples[2 * i - 2] < 0) != (samples[2 * i] < 0);
        t.right += (samples[2 * i - 1] < 0) != (samples[2 * i + 1] < 0);
        t.same = t.same && samples[2 * i] == samples[2 * i + 1];
    }
    t.left *= 48000.0 / double(frames);
    t.right *= 48000.0 / double(frames);
    return t;
}

} // namespace

using TransportControlsTest = PreviewCtrlTest;

TEST_F(TransportControlsTest, TheSliderMapsFramesToItsEndsAndSkipsReportsUntilOneNearTheDraggedFrame)
{
    ctrl = std::make_unique<BLPreviewCtrl>(view); // the library is not needed here
    vv_av_info_t avInfo{};
    avInfo.total_frames = 1000;
    slider().setAVInfo(avInfo, DOTakeData());
    for (const auto& [frame, value] : {std::pair<qint64, qint64>{999, 1000}, {0, 0}, {500, 500}, {1, 1}}) {
        slider().setFrameNo(frame);
        EXPECT_EQ(view.sliderValue, value) << frame;
    }
    // Dragging keeps the slider where the hand is.
    slider().setSliderIsDraging(true);
    slider().setFrameNo(700);
    EXPECT_EQ(slider().getFrameNo(), 700);
    EXPECT_EQ(view.sliderValue, 1);
    slider().setSliderIsDraging(false);
    // One frame only, or none: the slider stays at its start.
    avInfo.total_frames = 1;
    slider().setAVInfo(avInfo, DOTakeData());
    slider().setFrameNo(0);
    EXPECT_EQ(view.sliderValue, 0);

    // A drag during playback to frame 500 of 1000.
    avInfo.total_frames = 1000;
    slider().setAVInfo(avInfo, DOTakeData());
    ctrl->setViewerState(VM_PLAYED);
    const int before = slider().timeSliderDragStart();
    EXPECT_EQ(before, VM_PLAYED);
    EXPECT_TRUE(slider().getSkipFrameInfo());
    EXPECT_TRUE(slider().checkSlipFrameInfo(120)); // no target yet: every report is dropped
    EXPECT_FALSE(buttons().onPlay());
    slider().sliderDidMove(501); // 999 * 501 / 1000 = frame 500, with a margin of 10
    slider().timeSliderDragEnd(before);
    EXPECT_TRUE(slider().checkSlipFrameInfo(489));
    EXPECT_FALSE(slider().checkSlipFrameInfo(492));
    EXPECT_FALSE(slider().getSkipFrameInfo());
    EXPECT_FALSE(slider().checkSlipFrameInfo(300));

    // Stopped: disabled, at 0, the take forgotten.
    ctrl->setViewerState(VM_STOPPED);
    EXPECT_FALSE(view.sliderEnabled);
    EXPECT_EQ(view.sliderValue, 0);
    slider().setFrameNo(999);
    EXPECT_EQ(view.sliderValue, 0);
}

TEST_F(TransportControlsTest, TheTimeCodeOfADropFrameTakeComesFromItsBimFiles)
{
    cardgen::Options options = tinyCard(0, 9, {2});
    options.startTimecode = "00:00:59:25";
    const cwtest::CardFolder card(options);
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    const cardgen::ManifestTake& manifestTake = card.manifest().takes.front();
    const DOTakeData take = takeOf(card, manifestTake);
    start();
    pauseIn(card, take);

    ASSERT_TRUE(buttons().onTopFrame());
    ASSERT_TRUE(waitForFrame(0));
    EXPECT_EQ(view.timeCode, "00:00.59:25");
    // Frames 00 and 01 of minute 1 do not exist in drop-frame time code.
    for (qint64 frame = 1; frame <= 5; ++frame) {
        ASSERT_TRUE(waitFor([&] { return ctrl->isEndOfViewerJob(); }));
        ASSERT_TRUE(buttons().onPlusFrame());
        ASSERT_TRUE(waitForFrame(frame));
    }
    EXPECT_EQ(view.timeCode, "00:01.00:02");
    // The second clip's reader: its time code goes on from the first clip's.
    ASSERT_TRUE(buttons().onLastFrame());
    ASSERT_TRUE(waitForFrame(17));
    EXPECT_EQ(view.timeCode, "00:01.00:14");
    EXPECT_EQ(view.lastPicture().counter, counterOf(manifestTake, 17));

    // Without real-time metadata the frame's place in the take is shown.
    DOTakeData withoutBim = take;
    QList<DOClipData> clips = withoutBim.getClipData();
    clips[1].setBIMUri(QString(""));
    withoutBim.setArrClipData(clips);
    pauseIn(card, withoutBim);
    ASSERT_TRUE(buttons().onLastFrame());
    ASSERT_TRUE(waitForFrame(17));
    EXPECT_EQ(view.timeCode, "00:00.00:17");
}

// The buttons and boxes of the choice are left to the widget test.
TEST_F(TransportControlsTest, TheAudioChannelChoiceReachesTheSound)
{
    SimulatedAudioDevice device;
    view.audio = &device;
    const cwtest::CardFolder card(tinyCard(1, 30));
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    const DOTakeData take = takeOf(card, card.manifest().takes.front());
    start();
    BLAudioChannelCtrl& audio = ctrl->getAudioChannelCtrl();
    const auto playWhole = [&] {
        device.clear();
        play(card, take);
        EXPECT_TRUE(waitForState(VM_PLAYED));
        EXPECT_TRUE(waitForState(VM_PAUSING)); // at the end of the take
        const std::vector<int16_t> sound = device.samples();
        EXPECT_GT(sound.size(), 2u * 40000);
        return tones(sound);
    };
    // Channel 1 carries a 1 kHz tone, channel 2 one of 2 kHz.
    Tones heard = playWhole();
    EXPECT_FALSE(heard.same);
    EXPECT_NEAR(heard.left, 2000, 60);
    EXPECT_NEAR(heard.right, 4000, 120);
    audio.onAudio();
    heard = playWhole();
    EXPECT_TRUE(heard.same);
    EXPECT_NEAR(heard.left, 2000, 60);
    audio.onChnnel(2);
    heard = playWhole();
    EXPECT_TRUE(heard.same);
    EXPECT_NEAR(heard.left, 4000, 120);

    audio.onAudio();
    audio.onChnnel(1); // the boxes do nothing in stereo
    EXPECT_TRUE(audio.isStereo());
    EXPECT_EQ(audio.getChannel(), 2);
}
