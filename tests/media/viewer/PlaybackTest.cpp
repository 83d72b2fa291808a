// Playback through the vv_* interface: messages, pictures, positioning, sound.
#include "ViewerSession.h"

#include <gtest/gtest.h>

#include <algorithm>
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
            frames.push_back(messages[i].frame);
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

bool hasState(const std::vector<Message>& messages, int id, size_t from = 0)
{
    for (size_t i = from; i < messages.size(); ++i) {
        if (messages[i].id == id)
            return true;
    }
    return false;
}

} // namespace

TEST(ViewerPlayback, PlaysEveryFrameOnceInOrderAndPausesOnTheLastFrame)
{
    const cwtest::CardFolder card(tinyTake(2, 30));
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    const cardgen::ManifestTake& take = onlyTake(card);
    ViewerSession viewer(everyFrame());
    ASSERT_EQ(viewer.initResult(), VV_OK);

    vv_av_info_t info{};
    ASSERT_EQ(viewer.setTake(mp4Paths(card, take), &info), VV_OK);
    EXPECT_EQ(info.total_frames, 60);
    EXPECT_EQ(info.clip_count, 2);
    EXPECT_EQ(info.width, 320);
    EXPECT_EQ(info.height, 180);
    EXPECT_EQ(info.frame_rate_num, 30000);
    EXPECT_EQ(info.frame_rate_den, 1001);
    EXPECT_EQ(info.interlaced, 0);
    EXPECT_EQ(info.audio_channels, 2);
    EXPECT_EQ(info.aspect_num * 9, info.aspect_den * 16);

    const auto started = std::chrono::steady_clock::now();
    ASSERT_TRUE(viewer.runUntil(vv_play));
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - started).count();
    const std::vector<Message> messages = viewer.messages();

    // The end of the take pauses on its last frame.
    EXPECT_EQ(states(messages), (std::vector<int>{VM_PLAYED, VM_PAUSING}));
    ASSERT_EQ(messages.front().id, VM_PLAYED);
    ASSERT_EQ(messages[messages.size() - 2].id, VM_PAUSING);
    ASSERT_EQ(messages.back().id, kEndOfJob);
    std::vector<int64_t> expected(60);
    for (int64_t i = 0; i < 60; ++i)
        expected[size_t(i)] = i;
    EXPECT_EQ(reportedFrames(messages), expected);
    for (const Message& m : messages) {
        if (m.id != VM_FRAME_INFO)
            continue;
        EXPECT_EQ(m.clip, m.frame < 30 ? 0 : 1);
        EXPECT_EQ(m.clipFrame, m.frame % 30);
        EXPECT_EQ(m.clipFrames, 30);
        EXPECT_EQ(m.numFrames, 60);
    }

    // The pictures are the frames the messages name, at the take's rate.
    const std::vector<Picture> pictures = viewer.pictures();
    ASSERT_EQ(pictures.size(), 60u);
    for (const Picture& p : pictures) {
        EXPECT_EQ(p.counter, counterOf(take, p.frame)) << "frame " << p.frame;
        EXPECT_EQ(p.clip, p.frame < 30 ? 0 : 1);
        EXPECT_EQ(p.clipFrame, p.frame % 30);
    }
    const double shown = std::chrono::duration<double>(pictures.back().at - pictures.front().at).count();
    EXPECT_NEAR(shown, 59 * 1001 / 30000.0, 0.1);
    EXPECT_GT(seconds, 1.9);

    // Playing again from the end starts at the take's start offset.
    viewer.clear();
    vv_take_info_t offset{0, 50, 0};
    ASSERT_EQ(vv_set_take_info(&offset), VV_OK);
    ASSERT_TRUE(viewer.runUntil(vv_play));
    EXPECT_EQ(reportedFrames(viewer.messages()),
              (std::vector<int64_t>{50, 51, 52, 53, 54, 55, 56, 57, 58, 59}));
}

TEST(ViewerPlayback, ShowingAFrameDuringPlaybackResumesFromIt)
{
    const cwtest::CardFolder card(tinyTake(2, 60));
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    ViewerSession viewer(everyFrame());
    ASSERT_EQ(viewer.setTake(mp4Paths(card, onlyTake(card))), VV_OK);
    ASSERT_EQ(vv_play(), VV_OK);
    ASSERT_TRUE(viewer.waitFor([](const std::vector<Message>& m) { return reportedFrames(m).size() >= 5; }));

    const size_t before = viewer.messageCount();
    ASSERT_TRUE(viewer.runUntil([] { return vv_show_frame(80, 0); }));
    const std::vector<Message> messages = viewer.messages();
    EXPECT_EQ(states(messages), (std::vector<int>{VM_PLAYED, VM_PAUSING}));

    // Frames already on their way may still come; from 80 on every frame follows.
    std::vector<int64_t> after = reportedFrames(messages, before);
    const auto jump = std::find(after.begin(), after.end(), 80);
    ASSERT_NE(jump, after.end());
    for (auto it = after.begin(); it != jump; ++it)
        EXPECT_LT(*it, 20) << "a frame before the jump came late";
    std::vector<int64_t> expected;
    for (int64_t i = 80; i < 120; ++i)
        expected.push_back(i);
    EXPECT_EQ(std::vector<int64_t>(jump, after.end()), expected);

    // With play 1 a paused viewer plays on from the frame.
    viewer.clear();
    ASSERT_TRUE(viewer.job([] { return vv_show_frame(100, 0); }));
    EXPECT_TRUE(states(viewer.messages()).empty()) << "paused at the end, it stays paused";
    EXPECT_EQ(reportedFrames(viewer.messages()), (std::vector<int64_t>{100}));
    ASSERT_TRUE(viewer.runUntil([] { return vv_show_frame(110, 1); }));
    EXPECT_EQ(reportedFrames(viewer.messages()),
              (std::vector<int64_t>{100, 110, 111, 112, 113, 114, 115, 116, 117, 118, 119}));
}

TEST(ViewerPlayback, StepsMoveByExactlyOneFrameAcrossGopsAndClips)
{
    const cwtest::CardFolder card(tinyTake(2, 30));
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    const cardgen::ManifestTake& take = onlyTake(card);
    ViewerSession viewer(everyFrame().set(InitParam::kLowResolution, "1"));
    ASSERT_EQ(viewer.setTake(mp4Paths(card, take)), VV_OK);

    // Each request ends with one picture and one report of the frame.
    const auto step = [&](const std::function<int()>& request, int64_t frame) {
        viewer.clear();
        ASSERT_TRUE(viewer.job(request)) << "towards frame " << frame;
        const std::vector<Picture> pictures = viewer.pictures();
        ASSERT_EQ(pictures.size(), 1u) << "towards frame " << frame;
        EXPECT_EQ(pictures[0].frame, frame);
        EXPECT_EQ(pictures[0].counter, counterOf(take, frame));
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
    step(vv_last_frame, 59);
    step(vv_first_frame, 0);

    // At the ends nothing moves and nothing is reported again.
    viewer.clear();
    ASSERT_TRUE(viewer.job(vv_minus_one_frame));
    EXPECT_TRUE(reportedFrames(viewer.messages()).empty());
    step(vv_last_frame, 59);
    viewer.clear();
    ASSERT_TRUE(viewer.job(vv_plus_one_frame));
    EXPECT_TRUE(reportedFrames(viewer.messages()).empty());

    // The start offset is the first frame.
    vv_take_info_t offset{0, 20, 0};
    ASSERT_EQ(vv_set_take_info(&offset), VV_OK);
    step(vv_first_frame, 20);
    viewer.clear();
    ASSERT_TRUE(viewer.job([] { return vv_show_frame(3, 0); }));
    EXPECT_EQ(viewer.pictures().back().frame, 20);
    EXPECT_TRUE(reportedFrames(viewer.messages()).empty());
}

TEST(ViewerPlayback, LowResolutionScalesThePictures)
{
    const cwtest::CardFolder card(tinyTake(1, 30));
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    const cardgen::ManifestTake& take = onlyTake(card);
    ViewerSession viewer(everyFrame().set(InitParam::kLowResolution, "1"));
    ASSERT_EQ(viewer.setTake(mp4Paths(card, take)), VV_OK);

    ASSERT_TRUE(viewer.job([] { return vv_show_frame(7, 0); }));
    ASSERT_EQ(viewer.pictures().size(), 1u);
    EXPECT_EQ(viewer.pictures()[0].width, 160);
    EXPECT_EQ(viewer.pictures()[0].height, 90);
    EXPECT_EQ(viewer.pictures()[0].counter, counterOf(take, 7));

    // A change is shown at once with the same picture.
    InitParam quarter;
    quarter.set(InitParam::kLowResolution, "2");
    ASSERT_EQ(vv_change_init_param(1, 0, quarter.get()), VV_OK);
    ASSERT_TRUE(viewer.waitForPictures([](const std::vector<Picture>& p) { return p.size() == 2; }));
    EXPECT_EQ(viewer.pictures().back().width, 80);
    EXPECT_EQ(viewer.pictures().back().height, 45);
    EXPECT_EQ(viewer.pictures().back().frame, 7);
    EXPECT_EQ(viewer.pictures().size(), 2u);

    // Playback at a quarter, then back to full size.
    viewer.clear();
    ASSERT_TRUE(viewer.runUntil([] { return vv_show_frame(20, 1); }));
    std::vector<Picture> pictures = viewer.pictures();
    ASSERT_EQ(pictures.size(), 10u);
    for (const Picture& p : pictures) {
        EXPECT_EQ(p.width, 80);
        EXPECT_EQ(p.height, 45);
    }
    // The last frame, shown still at the end, is drawn again at full size.
    InitParam full;
    full.set(InitParam::kLowResolution, "0");
    viewer.clear();
    ASSERT_EQ(vv_change_init_param(1, 0, full.get()), VV_OK);
    ASSERT_TRUE(viewer.waitForPictures([](const std::vector<Picture>& p) { return !p.empty(); }));
    EXPECT_EQ(viewer.pictures().back().width, 320);
    EXPECT_EQ(viewer.pictures().back().frame, pictures.back().frame);
    viewer.clear();
    ASSERT_TRUE(viewer.job([] { return vv_show_frame(3, 0); }));
    ASSERT_EQ(viewer.pictures().size(), 1u);
    EXPECT_EQ(viewer.pictures()[0].width, 320);
    EXPECT_EQ(viewer.pictures()[0].counter, counterOf(take, 3));

    EXPECT_EQ(vv_change_init_param(0, 0, full.get()), VV_ERR_PARAM);
    EXPECT_EQ(vv_change_init_param(1, 0, nullptr), VV_ERR_PARAM);
}

TEST(ViewerPlayback, PauseFastForwardRewindAndStop)
{
    const cwtest::CardFolder card(tinyTake(2, 45));
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    const cardgen::ManifestTake& take = onlyTake(card);
    ViewerSession viewer(everyFrame());
    ASSERT_EQ(viewer.setTake(mp4Paths(card, take)), VV_OK);

    // Pause lands on the picture shown, reported once; play goes on after it.
    ASSERT_EQ(vv_play(), VV_OK);
    ASSERT_TRUE(viewer.waitFor([](const std::vector<Message>& m) { return reportedFrames(m).size() >= 8; }));
    ASSERT_TRUE(viewer.job(vv_pause));
    std::vector<Message> messages = viewer.messages();
    EXPECT_EQ(states(messages), (std::vector<int>{VM_PLAYED, VM_PAUSING}));
    const int64_t paused = reportedFrames(messages).back();
    EXPECT_EQ(viewer.pictures().back().frame, paused);
    EXPECT_EQ(viewer.pictures().back().counter, counterOf(take, paused));
    viewer.clear();
    ASSERT_EQ(vv_play(), VV_OK);
    ASSERT_TRUE(viewer.waitFor([](const std::vector<Message>& m) { return reportedFrames(m).size() >= 3; }));
    ASSERT_TRUE(viewer.job(vv_pause));
    const std::vector<int64_t> resumed = reportedFrames(viewer.messages());
    EXPECT_EQ(resumed[0], paused + 1);
    EXPECT_EQ(resumed[1], paused + 2);

    // Fast forward shows key frames forwards and pauses on the take's last frame.
    viewer.clear();
    ASSERT_TRUE(viewer.job([] { return vv_show_frame(3, 0); }));
    viewer.clear();
    ASSERT_TRUE(viewer.runUntil(vv_ff));
    messages = viewer.messages();
    EXPECT_EQ(states(messages), (std::vector<int>{VM_FASTFORWARDED, VM_PAUSING}));
    std::vector<Picture> pictures = viewer.pictures();
    ASSERT_GE(pictures.size(), 3u);
    EXPECT_EQ(pictures.back().frame, 89);
    EXPECT_EQ(pictures.back().counter, counterOf(take, 89));
    pictures.pop_back();
    for (size_t i = 0; i < pictures.size(); ++i) {
        // Intra pictures are shown third in their GOP: 2, 17, 32 in each clip.
        EXPECT_EQ((pictures[i].frame % 45) % 15, 2) << pictures[i].frame;
        EXPECT_EQ(pictures[i].counter, counterOf(take, pictures[i].frame));
        if (i > 0) {
            EXPECT_GT(pictures[i].frame, pictures[i - 1].frame);
        }
    }

    // Rewind from the last frame goes back by key frames and pauses on the first.
    ASSERT_TRUE(viewer.job(vv_last_frame));
    viewer.clear();
    ASSERT_TRUE(viewer.runUntil(vv_rew, VM_PAUSING));
    messages = viewer.messages();
    EXPECT_EQ(states(messages), (std::vector<int>{VM_REWINDED, VM_PAUSING}));
    pictures = viewer.pictures();
    ASSERT_GE(pictures.size(), 3u);
    for (size_t i = 0; i + 1 < pictures.size(); ++i) {
        EXPECT_EQ((pictures[i].frame % 45) % 15, 2) << pictures[i].frame;
        if (i > 0) {
            EXPECT_LT(pictures[i].frame, pictures[i - 1].frame);
        }
    }
    EXPECT_EQ(pictures.back().frame, 0);
    EXPECT_EQ(pictures.back().counter, counterOf(take, 0));
    EXPECT_EQ(reportedFrames(messages).back(), 0);

    // Full screen only marks the pictures; the one shown is delivered again.
    viewer.clear();
    ASSERT_EQ(vv_show_full_screen(), VV_OK);
    ASSERT_TRUE(viewer.job([] { return vv_show_frame(9, 0); }));
    EXPECT_EQ(viewer.pictures().back().fullScreen, 1);
    EXPECT_EQ(viewer.pictures().front().frame, 0); // the redraw of the picture shown
    ASSERT_EQ(vv_show(), VV_OK);

    // A typical picture is the frame shown, at thumbnail size.
    ASSERT_EQ(vv_make_thumbnail(), VV_OK);
    ASSERT_TRUE(viewer.waitForMessage(VM_TYPICAL_PICTURE));
    const std::vector<vv_typical_picture_t> typical = viewer.typicalPictures();
    ASSERT_EQ(typical.size(), 1u);
    EXPECT_EQ(typical[0].frame_no, 9);
    EXPECT_EQ(typical[0].bitmap.width, 160);
    EXPECT_EQ(readCounter(typical[0].bitmap), counterOf(take, 9));

    // Stop: reported once; later stops and pauses say nothing.
    viewer.clear();
    ASSERT_TRUE(viewer.job(vv_stop));
    ASSERT_TRUE(viewer.job(vv_stop));
    EXPECT_EQ(vv_pause(), VV_OK);
    EXPECT_EQ(vv_make_thumbnail(), VV_ERR_STATE);
    ASSERT_TRUE(viewer.job([] { return vv_show_frame(4, 0); }));
    EXPECT_EQ(states(viewer.messages()), (std::vector<int>{VM_STOPPED, VM_PAUSING}));
}

TEST(ViewerPlayback, SoundIsTheClockAndFollowsTheChannelChoice)
{
    const cwtest::CardFolder card(tinyTake(2, 30));
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    ViewerSession viewer(everyFrame(), true);
    ASSERT_EQ(viewer.setTake(mp4Paths(card, onlyTake(card))), VV_OK);

    ASSERT_TRUE(viewer.runUntil(vv_play));
    const std::vector<Picture> pictures = viewer.pictures();
    ASSERT_EQ(pictures.size(), 60u);
    // Each picture goes out when the device has played the sound up to it.
    for (const Picture& p : pictures) {
        ASSERT_GE(p.heard, 0) << "frame " << p.frame;
        const double pictureTime = p.frame * 1001 / 30000.0;
        EXPECT_NEAR(double(p.heard) / 48000, pictureTime, 0.06) << "frame " << p.frame;
    }
    int64_t samples = 0;
    std::vector<int16_t> sound;
    viewer.withAudio([&](const AudioDevice& device) {
        samples = int64_t(device.samples.size() / 2);
        sound = device.samples;
    });
    // The whole take's sound: 60 frames of 1601.6 samples, give or take what the stop cut.
    EXPECT_NEAR(double(samples), 60 * 48000.0 * 1001 / 30000, 2000);

    // Channel 1 carries a 1 kHz tone, channel 2 one of 2 kHz.
    const auto crossings = [](const std::vector<int16_t>& s, int channel, size_t from, size_t count) {
        int n = 0;
        for (size_t i = from + 1; i < from + count; ++i) {
            if ((s[2 * (i - 1) + size_t(channel)] < 0) != (s[2 * i + size_t(channel)] < 0))
                ++n;
        }
        return n;
    };
    ASSERT_GT(sound.size(), size_t(2 * 48000));
    EXPECT_NEAR(crossings(sound, 0, 0, 48000), 2000, 40);
    EXPECT_NEAR(crossings(sound, 1, 0, 48000), 4000, 40);

    // A pause empties the device and no more sound follows.
    ASSERT_EQ(vv_play(), VV_OK);
    ASSERT_TRUE(viewer.waitFor([](const std::vector<Message>& m) { return reportedFrames(m).size() >= 70; }));
    int flushes = 0;
    viewer.withAudio([&](const AudioDevice& device) { flushes = device.flushes; });
    ASSERT_TRUE(viewer.job(vv_pause));
    size_t given = 0;
    for (int i = 0; i < 100; ++i) {
        bool flushed = false;
        viewer.withAudio([&](const AudioDevice& device) {
            flushed = device.flushes > flushes;
            given = device.samples.size();
        });
        if (flushed)
            break;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    viewer.withAudio([&](const AudioDevice& device) {
        EXPECT_GT(device.flushes, flushes);
        EXPECT_EQ(device.received, 0);
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    viewer.withAudio([&](const AudioDevice& device) { EXPECT_EQ(device.samples.size(), given); });

    // Left or right alone goes to both speakers (the last 20 frames suffice).
    for (const int choice : {VV_AUDIO_L, VV_AUDIO_R}) {
        ASSERT_EQ(vv_audio_ch(choice), VV_OK);
        viewer.withAudio([](AudioDevice& device) { device.samples.clear(); });
        ASSERT_TRUE(viewer.runUntil([] { return vv_show_frame(40, 1); }));
        viewer.withAudio([&](const AudioDevice& device) { sound = device.samples; });
        ASSERT_GT(sound.size(), size_t(2 * 24000));
        const int expected = choice == VV_AUDIO_L ? 1000 : 2000;
        EXPECT_NEAR(crossings(sound, 0, 0, 24000), expected, 20) << "choice " << choice;
        EXPECT_NEAR(crossings(sound, 1, 0, 24000), expected, 20) << "choice " << choice;
    }
    EXPECT_EQ(vv_audio_ch(3), VV_ERR_PARAM);
}

TEST(ViewerPlayback, PositionsAreReportedAtTheInterval)
{
    const cwtest::CardFolder card(tinyTake(1, 45));
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    ViewerSession viewer; // 100 ms between reports, late pictures dropped
    ASSERT_EQ(viewer.setTake(mp4Paths(card, onlyTake(card))), VV_OK);
    ASSERT_TRUE(viewer.runUntil(vv_play));
    const std::vector<int64_t> frames = reportedFrames(viewer.messages());
    ASSERT_GE(frames.size(), 3u);
    EXPECT_EQ(frames.front(), 0);
    EXPECT_EQ(frames.back(), 44); // the last frame always
    for (size_t i = 1; i + 1 < frames.size(); ++i)
        EXPECT_GE(frames[i] - frames[i - 1], 3) << "reports closer than 100 ms";
    EXPECT_GE(frames.size(), 10u);
    EXPECT_LE(frames.size(), 16u);
}
