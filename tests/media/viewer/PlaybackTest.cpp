// Playback through the vv_* interface: messages, pictures, positioning, sound.
#include "ViewerSession.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <thread>

using namespace vvtest;

namespace {

// Every presented frame reported, none dropped: the order can be checked exactly.
InitParam everyFrame()
{
    InitParam param;
    param.set(InitParam::kPlayInfoInterval, "0").set(InitParam::kFrameDropFlag, "0");
    return param;
}

std::vector<int64_t> reportedFrames(const std::vector<Message>& messages, size_t from = 0)
{
    std::vector<int64_t> frames;
    for (size_t i = from; i < messages.size(); ++i) {
        if (messages[i].id == VM_FRAME_INFO)
            frames.push_back(messages[i].info.take_frame_no);
    }
    return frames;
}

std::vector<int> states(const std::vector<Message>& messages)
{
    std::vector<int> ids;
    for (const Message& m : messages) {
        if (m.id != VM_FRAME_INFO && m.id != kEndOfJob)
            ids.push_back(m.id);
    }
    return ids;
}

// The frames from first to last.
std::vector<int64_t> range(int64_t first, int64_t last)
{
    std::vector<int64_t> frames(size_t(last - first + 1));
    std::iota(frames.begin(), frames.end(), first);
    return frames;
}

using ViewerPlayback = TwoClipTake;

} // namespace

TEST_F(ViewerPlayback, PlaysEveryFrameOnceInOrderAndPausesOnTheLastFrame)
{
    ViewerSession viewer(everyFrame());
    ASSERT_EQ(viewer.initResult(), VV_OK);
    vv_av_info_t info{};
    ASSERT_EQ(viewer.setTake(paths(), &info), VV_OK);
    EXPECT_EQ(info.total_frames, 60);
    EXPECT_EQ(info.clip_count, 2);
    EXPECT_EQ(info.width, 320);
    EXPECT_EQ(info.frame_rate_num, 30000);
    EXPECT_EQ(info.audio_channels, 2);

    ASSERT_TRUE(viewer.runUntil(vv_play));
    const std::vector<Message> messages = viewer.messages();
    // The end of the take pauses on its last frame.
    EXPECT_EQ(states(messages), (std::vector<int>{VM_PLAYED, VM_PAUSING}));
    EXPECT_EQ(reportedFrames(messages), range(0, 59));
    for (const Message& m : messages) {
        if (m.id != VM_FRAME_INFO)
            continue;
        EXPECT_EQ(m.info.clip_no, m.info.take_frame_no < 30 ? 0 : 1);
        EXPECT_EQ(m.info.clip_frame_no, m.info.take_frame_no % 30);
        EXPECT_EQ(m.info.clip_frames, 30);
        EXPECT_EQ(m.info.num_frames, 60);
    }

    // The pictures are the frames the messages name, at the take's rate.
    const std::vector<Picture> pictures = viewer.pictures();
    ASSERT_EQ(pictures.size(), 60u);
    for (const Picture& p : pictures) {
        EXPECT_EQ(p.counter, counterOf(take(), p.frame)) << "frame " << p.frame;
        EXPECT_EQ(p.clip, p.frame < 30 ? 0 : 1);
        EXPECT_EQ(p.clipFrame, p.frame % 30);
    }
    const double shown = std::chrono::duration<double>(pictures.back().at - pictures.front().at).count();
    EXPECT_NEAR(shown, 59 * 1001 / 30000.0, 0.1);

    // Playing again from the end starts at the take's start offset.
    viewer.clear();
    vv_take_info_t offset{0, 50, 0};
    ASSERT_EQ(vv_set_take_info(&offset), VV_OK);
    ASSERT_TRUE(viewer.runUntil(vv_play));
    EXPECT_EQ(reportedFrames(viewer.messages()), range(50, 59));
}

TEST_F(ViewerPlayback, ShowingAFrameDuringPlaybackResumesFromIt)
{
    ViewerSession viewer(everyFrame());
    ASSERT_EQ(viewer.setTake(paths()), VV_OK);
    ASSERT_EQ(vv_play(), VV_OK);
    ASSERT_TRUE(viewer.waitFor([](const std::vector<Message>& m) { return reportedFrames(m).size() >= 5; }));

    const size_t before = viewer.messages().size();
    ASSERT_TRUE(viewer.runUntil([] { return vv_show_frame(40, 0); }));
    const std::vector<Message> messages = viewer.messages();
    EXPECT_EQ(states(messages), (std::vector<int>{VM_PLAYED, VM_PAUSING}));

    // Frames already on their way may still come; from 40 on every frame follows.
    std::vector<int64_t> after = reportedFrames(messages, before);
    const auto jump = std::find(after.begin(), after.end(), 40);
    ASSERT_NE(jump, after.end());
    for (auto it = after.begin(); it != jump; ++it)
        EXPECT_LT(*it, 20) << "a frame before the jump came late";
    EXPECT_EQ(std::vector<int64_t>(jump, after.end()), range(40, 59));
}

TEST_F(ViewerPlayback, StepsMoveByExactlyOneFrameAcrossGopsAndClipsAtEveryResolution)
{
    ViewerSession viewer(everyFrame().set(InitParam::kLowResolution, "1"));
    ASSERT_EQ(viewer.setTake(paths()), VV_OK);

    // Each request ends with one picture and one report of the frame.
    const auto step = [&](const std::function<int()>& request, int64_t frame) {
        viewer.clear();
        ASSERT_TRUE(viewer.job(request)) << "towards frame " << frame;
        const std::vector<Picture> pictures = viewer.pictures();
        ASSERT_EQ(pictures.size(), 1u) << "towards frame " << frame;
        EXPECT_EQ(pictures[0].frame, frame);
        EXPECT_EQ(pictures[0].counter, counterOf(take(), frame));
        EXPECT_EQ(pictures[0].width, 160);
        EXPECT_EQ(pictures[0].height, 90);
        EXPECT_EQ(reportedFrames(viewer.messages()), std::vector<int64_t>{frame});
    };

    step([] { return vv_show_frame(13, 0); }, 13); // stopped -> paused
    step(vv_minus_one_frame, 12);
    for (const int64_t frame : {13, 14, 15, 16}) // 15: the next GOP's first picture
        step(vv_plus_one_frame, frame);
    for (const int64_t frame : {15, 14})
        step(vv_minus_one_frame, frame);
    step([] { return vv_show_frame(28, 0); }, 28);
    for (const int64_t frame : {29, 30, 31}) // 30: the second clip's first frame
        step(vv_plus_one_frame, frame);
    for (const int64_t frame : {30, 29})
        step(vv_minus_one_frame, frame);
    // At the ends nothing moves and nothing is reported again.
    using Call = int (*)();
    for (const auto& [to, end, beyond] :
         {std::tuple<Call, int64_t, Call>{vv_last_frame, 59, vv_plus_one_frame},
          {vv_first_frame, 0, vv_minus_one_frame}}) {
        step(to, end);
        viewer.clear();
        ASSERT_TRUE(viewer.job(beyond));
        EXPECT_TRUE(reportedFrames(viewer.messages()).empty()) << end;
    }

    // The start offset is the first frame; frames before it show it.
    vv_take_info_t offset{0, 20, 0};
    ASSERT_EQ(vv_set_take_info(&offset), VV_OK);
    step(vv_first_frame, 20);
    viewer.clear();
    ASSERT_TRUE(viewer.job([] { return vv_show_frame(3, 0); }));
    EXPECT_EQ(viewer.pictures().back().frame, 20);

    // A change of resolution is shown at once with the same picture.
    InitParam quarter;
    quarter.set(InitParam::kLowResolution, "2");
    viewer.clear();
    ASSERT_EQ(vv_change_init_param(1, 0, quarter.get()), VV_OK);
    ASSERT_TRUE(viewer.waitForPictures([](const std::vector<Picture>& p) { return !p.empty(); }));
    EXPECT_EQ(viewer.pictures().back().width, 80);
    EXPECT_EQ(viewer.pictures().back().frame, 20);
    EXPECT_EQ(vv_change_init_param(0, 0, quarter.get()), VV_ERR_PARAM);
}

TEST_F(ViewerPlayback, PauseFastForwardRewindAndStop)
{
    ViewerSession viewer(everyFrame());
    ASSERT_EQ(viewer.setTake(paths()), VV_OK);

    // Pause lands on the picture shown, reported once.
    ASSERT_EQ(vv_play(), VV_OK);
    ASSERT_TRUE(viewer.waitFor([](const std::vector<Message>& m) { return reportedFrames(m).size() >= 8; }));
    ASSERT_TRUE(viewer.job(vv_pause));
    std::vector<Message> messages = viewer.messages();
    EXPECT_EQ(states(messages), (std::vector<int>{VM_PLAYED, VM_PAUSING}));
    const int64_t paused = reportedFrames(messages).back();
    EXPECT_EQ(viewer.pictures().back().frame, paused);
    EXPECT_EQ(viewer.pictures().back().counter, counterOf(take(), paused));

    // Fast forward shows intra pictures (third in their GOP: 2, 17 in each
    // clip) forwards and pauses on the take's last frame; rewind goes back by
    // them from the last frame and pauses on the first.
    const struct
    {
        int (*start)();
        int (*request)();
        int state;
        int64_t end;
    } winds[] = {{vv_first_frame, vv_ff, VM_FASTFORWARDED, 59}, {vv_last_frame, vv_rew, VM_REWINDED, 0}};
    for (const auto& wind : winds) {
        ASSERT_TRUE(viewer.job(wind.start));
        viewer.clear();
        ASSERT_TRUE(viewer.runUntil(wind.request));
        messages = viewer.messages();
        EXPECT_EQ(states(messages), (std::vector<int>{wind.state, VM_PAUSING}));
        EXPECT_EQ(reportedFrames(messages).back(), wind.end);
        const std::vector<Picture> pictures = viewer.pictures();
        ASSERT_GE(pictures.size(), 3u);
        EXPECT_EQ(pictures.back().frame, wind.end);
        for (size_t i = 0; i < pictures.size(); ++i) {
            EXPECT_EQ(pictures[i].counter, counterOf(take(), pictures[i].frame));
            if (i + 1 < pictures.size()) {
                EXPECT_EQ((pictures[i].frame % 30) % 15, 2) << pictures[i].frame;
            }
            if (i > 0) {
                EXPECT_EQ(pictures[i].frame > pictures[i - 1].frame, wind.end == 59) << pictures[i].frame;
            }
        }
    }

    // Stop: reported once; later stops and pauses say nothing.
    viewer.clear();
    ASSERT_TRUE(viewer.job(vv_stop));
    ASSERT_TRUE(viewer.job(vv_stop));
    EXPECT_EQ(vv_pause(), VV_OK);
    EXPECT_EQ(vv_make_thumbnail(), VV_ERR_STATE);
    ASSERT_TRUE(viewer.job([] { return vv_show_frame(4, 0); }));
    EXPECT_EQ(states(viewer.messages()), (std::vector<int>{VM_STOPPED, VM_PAUSING}));

    // Ended while playing, the last message is VM_EXITED.
    ASSERT_EQ(vv_play(), VV_OK);
    ASSERT_TRUE(viewer.waitFor([](const std::vector<Message>& m) { return !states(m).empty(); }));
    ASSERT_EQ(vv_exit(), VV_OK);
    EXPECT_EQ(viewer.messages().back().id, VM_EXITED);
}

TEST_F(ViewerPlayback, SoundIsTheClockAndAPauseEmptiesTheDevice)
{
    ViewerSession viewer(everyFrame(), true);
    ASSERT_EQ(viewer.setTake(paths()), VV_OK);
    ASSERT_TRUE(viewer.runUntil(vv_play));
    const std::vector<Picture> pictures = viewer.pictures();
    ASSERT_EQ(pictures.size(), 60u);
    // Each picture goes out when the device has played the sound up to it.
    for (const Picture& p : pictures) {
        ASSERT_GE(p.heard, 0) << "frame " << p.frame;
        const double pictureTime = p.frame * 1001 / 30000.0;
        EXPECT_NEAR(double(p.heard) / 48000, pictureTime, 0.06) << "frame " << p.frame;
    }
    // The whole take's sound: 60 frames of 1601.6 samples, give or take what the stop cut.
    cwtest::SimulatedAudioDevice& device = viewer.audio();
    std::vector<int16_t> sound = device.samples();
    EXPECT_NEAR(double(sound.size() / 2), 60 * 48000.0 * 1001 / 30000, 2000);

    // Channel 1 carries a 1 kHz tone, channel 2 one of 2 kHz.
    const auto crossings = [](const std::vector<int16_t>& s, int channel, size_t count) {
        int n = 0;
        for (size_t i = 1; i < count; ++i)
            n += (s[2 * (i - 1) + size_t(channel)] < 0) != (s[2 * i + size_t(channel)] < 0);
        return n;
    };
    ASSERT_GT(sound.size(), size_t(2 * 48000));
    EXPECT_NEAR(crossings(sound, 0, 48000), 2000, 40);
    EXPECT_NEAR(crossings(sound, 1, 48000), 4000, 40);

    // A pause empties the device and no more sound follows.
    ASSERT_EQ(vv_play(), VV_OK);
    ASSERT_TRUE(viewer.waitFor([](const std::vector<Message>& m) { return reportedFrames(m).size() >= 70; }));
    const int flushes = device.flushes();
    ASSERT_TRUE(viewer.job(vv_pause));
    for (int i = 0; i < 100 && device.flushes() == flushes; ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    EXPECT_GT(device.flushes(), flushes);
    EXPECT_EQ(device.held(), 0);
    const size_t given = device.samples().size();
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    EXPECT_EQ(device.samples().size(), given);
}
