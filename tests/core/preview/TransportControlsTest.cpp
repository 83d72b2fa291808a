#include "RecordingPreviewView.h"
#include "core/app/preview/BLAudioChannelCtrl.h"
#include "core/app/preview/BLPreviewButtonCtrl.h"
#include "core/app/preview/BLPreviewCtrl.h"
#include "core/app/preview/BLTimeCodeCtrl.h"
#include "core/app/preview/BLTimeSliderCtrl.h"
#include "core/services/BLCommon.h"
#include "core/services/SCNotificationNames.h"
#include "support/MessageRecorder.h"
#include "support/QtPrinters.h"

#include <QFile>

#include <gtest/gtest.h>

using namespace pvtest;

namespace {

// Sign changes of one channel of interleaved stereo samples.
int crossings(const std::vector<int16_t>& samples, int channel)
{
    int n = 0;
    for (size_t i = 1; i < samples.size() / 2; ++i) {
        if ((samples[2 * (i - 1) + size_t(channel)] < 0) != (samples[2 * i + size_t(channel)] < 0))
            ++n;
    }
    return n;
}

bool channelsEqual(const std::vector<int16_t>& samples)
{
    for (size_t i = 0; i + 1 < samples.size(); i += 2) {
        if (samples[i] != samples[i + 1])
            return false;
    }
    return true;
}

} // namespace

class TransportControlsTest : public PreviewTest
{
protected:
    void start()
    {
        ctrl = std::make_unique<BLPreviewCtrl>(view);
        ASSERT_TRUE(ctrl->initializeCtrl());
    }
    BLTimeSliderCtrl& slider() { return ctrl->getTimeSliderCtrl(); }
    // Plays the take and pauses it.
    void pauseIn(const cwtest::CardFolder& card, const DOTakeData& take)
    {
        play(card, take);
        ASSERT_TRUE(waitForState(VM_PLAYED));
        ASSERT_TRUE(ctrl->getPreviewButtonCtrl().onPause());
        ASSERT_TRUE(waitForState(VM_PAUSING));
    }

    RecordingPreviewView view;
};

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
    EXPECT_FALSE(ctrl->getPreviewButtonCtrl().onPlay());
    EXPECT_TRUE(logged("0000:[BLPreviewButtonCtrl onPlay] slipFrameInfoNow"));
    slider().sliderDidMove(501); // 999 * 501 / 1000 = frame 500
    slider().timeSliderDragEnd(before);
    EXPECT_TRUE(logged("0000:[BLTimeSliderCtrl timeSliderDragEnd] call vv_show_frame(500, 1)"));
    EXPECT_TRUE(slider().checkSlipFrameInfo(300));
    EXPECT_TRUE(slider().checkSlipFrameInfo(489));
    EXPECT_TRUE(slider().getSkipFrameInfo());
    EXPECT_FALSE(slider().checkSlipFrameInfo(492));
    EXPECT_FALSE(slider().getSkipFrameInfo());
    EXPECT_TRUE(
        logged("0000:[BLTimeSliderCtrl checkSlipFrameInfo] end skip frame_no = 492, skip_frame_no = 500, "
               "margin = 10"));
    EXPECT_FALSE(slider().checkSlipFrameInfo(300));

    // Stopped: disabled, at 0, the take forgotten.
    ctrl->setViewerState(VM_STOPPED);
    EXPECT_FALSE(view.sliderEnabled);
    EXPECT_EQ(view.sliderValue, 0);
    slider().setFrameNo(999);
    EXPECT_EQ(view.sliderValue, 0);
}

TEST_F(TransportControlsTest, DraggingShowsTheFrameUnderTheSliderAndResumesAsBefore)
{
    const cwtest::CardFolder card(tinyCard(1, 120));
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    const cardgen::ManifestTake& manifestTake = card.manifest().takes.front();
    start();

    // During playback: paused while the hand is on the slider, then playing on
    // from where it was let go.
    play(card, takeOf(card, manifestTake));
    ASSERT_TRUE(waitUntil([&] { return slider().getFrameNo() >= 3; }));
    const int before = slider().timeSliderDragStart();
    ASSERT_EQ(before, VM_PLAYED);
    ASSERT_TRUE(waitForState(VM_PAUSING));
    slider().sliderDidMove(505);   // 119 * 505 / 1000 = frame 60
    ASSERT_TRUE(waitForFrame(60)); // shown by the drag thread; the report ends the skipping
    EXPECT_EQ(view.lastPicture().counter, counterOf(manifestTake, 60));
    EXPECT_FALSE(slider().getSkipFrameInfo());
    EXPECT_EQ(ctrl->getViewerState(), VM_PAUSING);
    slider().timeSliderDragEnd(before);
    ASSERT_TRUE(waitForState(VM_PLAYED));
    ASSERT_TRUE(waitUntil([&] { return slider().getFrameNo() > 62; }));
    for (const Picture& picture : view.pictures())
        EXPECT_TRUE(picture.counter.has_value());
    EXPECT_GE(view.lastPicture().frame, 60);

    // While paused: the frame is shown and the viewer stays paused.
    ASSERT_TRUE(ctrl->getPreviewButtonCtrl().onPause());
    ASSERT_TRUE(waitForState(VM_PAUSING));
    const int paused = slider().timeSliderDragStart();
    EXPECT_EQ(paused, VM_PAUSING);
    EXPECT_FALSE(slider().getSkipFrameInfo());
    slider().sliderDidMove(253); // frame 30
    slider().timeSliderDragEnd(paused);
    ASSERT_TRUE(waitForFrame(30));
    EXPECT_EQ(view.lastPicture().counter, counterOf(manifestTake, 30));
    settle(200);
    EXPECT_EQ(ctrl->getViewerState(), VM_PAUSING);
    EXPECT_EQ(view.sliderValue, 30 * 1000 / 119);
}

TEST_F(TransportControlsTest, ButtonsShowTheStateAndIgnoreWhatWouldChangeNothing)
{
    const cwtest::CardFolder card(tinyCard(1, 90));
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    start();
    BLPreviewButtonCtrl& buttons = ctrl->getPreviewButtonCtrl();
    EXPECT_FALSE(buttons.onPlay());
    EXPECT_TRUE(logged("0000:[BLPreviewButtonCtrl onPlay] now VM_STOPPED"));
    EXPECT_FALSE(buttons.onLastFrame());

    play(card, takeOf(card, card.manifest().takes.front()));
    ASSERT_TRUE(waitForState(VM_PLAYED));
    EXPECT_EQ(view.images[BLPreviewButtonCtrl::kPlay],
              qMakePair(QString("macbtn_play_a"), QString("macbtn_play_a_p")));
    // Play while playing does nothing.
    EXPECT_FALSE(buttons.onPlay());
    EXPECT_FALSE(logged("0000:[BLPreviewButtonCtrl onPlay] call vv_play"));

    ASSERT_TRUE(waitUntil([&] { return slider().getFrameNo() >= 45; })); // rewinding then takes a while
    ASSERT_TRUE(buttons.onRW());
    EXPECT_TRUE(logged("0000:[BLPreviewButtonCtrl onRW] call vv_rew"));
    ASSERT_TRUE(waitUntil([&] { return view.images[BLPreviewButtonCtrl::kRW].first == "macbtn_rw_a"; }));
    ASSERT_TRUE(waitForState(VM_PAUSING)); // at the first frame
    EXPECT_EQ(view.images[BLPreviewButtonCtrl::kRW].first, "macbtn_rw_n");
    EXPECT_EQ(view.images[BLPreviewButtonCtrl::kPause],
              qMakePair(QString("macbtn_stop_a"), QString("macbtn_stop_a_p")));
    EXPECT_FALSE(buttons.onPause());

    ASSERT_TRUE(buttons.onFF());
    ASSERT_TRUE(waitUntil([&] { return view.images[BLPreviewButtonCtrl::kFF].first == "macbtn_ff_a"; }));
    EXPECT_EQ(view.images[BLPreviewButtonCtrl::kPause].first, "macbtn_stop_n");
    ASSERT_TRUE(waitForState(VM_PAUSING)); // paused at the end of the take
    EXPECT_EQ(view.images[BLPreviewButtonCtrl::kFF].first, "macbtn_ff_n");
}

TEST_F(TransportControlsTest, TheTimeCodeOfADropFrameTakeComesFromItsBimFiles)
{
    cardgen::Options options = tinyCard(0, 9, {2});
    options.startTimecode = "00:00:59:25";
    const cwtest::CardFolder card(options);
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    const cardgen::ManifestTake& manifestTake = card.manifest().takes.front();
    const DOTakeData take = takeOf(card, manifestTake);
    int bimCount = 0;
    EXPECT_EQ(BLPreviewCtrl::getBIMFilePaths(card.workFolder(), take, &bimCount).size(), 2);
    EXPECT_EQ(bimCount, 2);
    start();
    pauseIn(card, take);

    BLPreviewButtonCtrl& buttons = ctrl->getPreviewButtonCtrl();
    ASSERT_TRUE(buttons.onTopFrame());
    ASSERT_TRUE(waitForFrame(0));
    EXPECT_EQ(view.timeCode, "00:00.59:25");
    // Frames 00 and 01 of minute 1 do not exist in drop-frame time code.
    for (qint64 frame = 1; frame <= 5; ++frame) {
        ASSERT_TRUE(waitUntil([&] { return ctrl->isEndOfViewerJob(); }));
        ASSERT_TRUE(buttons.onPlusFrame());
        ASSERT_TRUE(waitForFrame(frame));
    }
    EXPECT_EQ(view.timeCode, "00:01.00:02");
    EXPECT_EQ(view.lastPicture().counter, counterOf(manifestTake, 5));
    // The second clip's reader: its time code goes on from the first clip's.
    ASSERT_TRUE(buttons.onLastFrame());
    ASSERT_TRUE(waitForFrame(17));
    EXPECT_EQ(view.timeCode, "00:01.00:14");
    EXPECT_EQ(view.lastPicture().counter, counterOf(manifestTake, 17));

    // Without real-time metadata the frame's place in the take is shown.
    DOTakeData withoutBim = take;
    QList<DOClipData> clips = withoutBim.getClipData();
    clips[1].setBIMUri(QString(""));
    withoutBim.setArrClipData(clips);
    EXPECT_TRUE(BLPreviewCtrl::getBIMFilePaths(card.workFolder(), withoutBim, &bimCount).isEmpty());
    EXPECT_EQ(bimCount, 0);
    pauseIn(card, withoutBim);
    ASSERT_TRUE(buttons.onLastFrame());
    ASSERT_TRUE(waitForFrame(17));
    EXPECT_EQ(view.timeCode,
              BLCommon::convertOfDurationByFrameCount(17, "29.97p", take.getLtcChanges(), false));
    EXPECT_EQ(view.timeCode, "00:00.00:17");
}

TEST_F(TransportControlsTest, ANonDropFrameTakeShowsColons)
{
    cardgen::Options options = tinyCard(1, 9);
    options.startTimecode = "01:02:59:28";
    options.nonDropFrame = true;
    const cwtest::CardFolder card(options);
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    start();
    pauseIn(card, takeOf(card, card.manifest().takes.front()));
    ASSERT_TRUE(ctrl->getPreviewButtonCtrl().onLastFrame());
    ASSERT_TRUE(waitForFrame(8));
    EXPECT_EQ(view.timeCode, "01:03:00:06");
    ctrl->setViewerState(VM_STOPPED);
    EXPECT_EQ(view.timeCode, "00:00:00:00");
}

TEST_F(TransportControlsTest, TheAudioChannelChoiceReachesTheLibrary)
{
    SimulatedAudioDevice device;
    view.audio = &device;
    const cwtest::CardFolder card(tinyCard(1, 30));
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    const DOTakeData take = takeOf(card, card.manifest().takes.front());
    start();
    BLAudioChannelCtrl& audio = ctrl->getAudioChannelCtrl();
    EXPECT_EQ(view.stereoTitle, "Stereo");
    EXPECT_EQ(view.boxes[1], qMakePair(true, false));
    EXPECT_EQ(view.boxes[2], qMakePair(true, false));

    // Channel 1 carries a 1 kHz tone, channel 2 one of 2 kHz.
    const auto playWhole = [&] {
        device.clear();
        play(card, take);
        EXPECT_TRUE(waitForState(VM_PLAYED));
        EXPECT_TRUE(waitForState(VM_PAUSING)); // at the end of the take
        return device.samples();
    };
    std::vector<int16_t> sound = playWhole();
    ASSERT_GT(sound.size(), 2u * 40000);
    EXPECT_NEAR(crossings(sound, 0) * 48000.0 / (sound.size() / 2), 2000, 60);
    EXPECT_NEAR(crossings(sound, 1) * 48000.0 / (sound.size() / 2), 4000, 120);

    audio.onAudio();
    EXPECT_EQ(view.stereoTitle, "Mono");
    EXPECT_EQ(view.boxes[1], qMakePair(true, true));
    EXPECT_EQ(view.boxes[2], qMakePair(false, true));
    sound = playWhole();
    ASSERT_GT(sound.size(), 2u * 40000);
    EXPECT_TRUE(channelsEqual(sound));
    EXPECT_NEAR(crossings(sound, 0) * 48000.0 / (sound.size() / 2), 2000, 60);

    audio.onChnnel(2);
    EXPECT_EQ(view.boxes[1], qMakePair(false, true));
    EXPECT_EQ(view.boxes[2], qMakePair(true, true));
    const qsizetype lines = logMessages(home()).size();
    audio.onChnnel(2); // clicking the chosen box only gives it its tick back
    EXPECT_EQ(view.boxes[2], qMakePair(true, true));
    EXPECT_EQ(logMessages(home()).size(), lines);
    sound = playWhole();
    ASSERT_GT(sound.size(), 2u * 40000);
    EXPECT_TRUE(channelsEqual(sound));
    EXPECT_NEAR(crossings(sound, 1) * 48000.0 / (sound.size() / 2), 4000, 120);

    audio.onAudio();
    EXPECT_TRUE(logged("0000:[BLAudioChannelCtrl changeAudioChannelStatus] call vv_audio_ch(VV_AUDIO_BOTH)"));
    EXPECT_EQ(view.stereoTitle, "Stereo");
    EXPECT_EQ(view.boxes[1], qMakePair(true, false));
    audio.onChnnel(1); // the boxes do nothing in stereo
    EXPECT_TRUE(audio.isStereo());
    EXPECT_EQ(audio.getChannel(), 2);
}
