#pragma once

#include "cardgen/FrameCounter.h"
#include "media/viewer/vv.h"
#include "support/CardFolder.h"

#include <QString>

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace vvtest {

// The settings texts of an initialisation block, kept alive with the block.
class InitParam
{
public:
    InitParam();
    // Sets field 1..31 of the block.
    InitParam& set(int field, const std::string& text);
    const vv_init_param_t* get();

    static constexpr int kLogLevel = 7;
    static constexpr int kLogFileSize = 8;
    static constexpr int kLogFilePath = 9;
    static constexpr int kPlayInfoInterval = 23;
    static constexpr int kFrameDropFlag = 24;
    static constexpr int kLowResolution = 25;

private:
    std::vector<std::string> m_texts;
    std::vector<const char*> m_pointers;
    vv_init_param_t m_param{};
};

// One message of the library, with the frame information copied out; the
// end-of-job calls are recorded among them with the id kEndOfJob.
constexpr int kEndOfJob = -1;

struct Message
{
    int id = 0;
    int clip = -1;
    int64_t clipFrame = -1;
    int64_t frame = -1;
    int64_t clipFrames = -1;
    int64_t numFrames = -1;
};

// One picture the frame sink received: its record, and the counter drawn
// into it read back from its pixels.
struct Picture
{
    int64_t frame = -1;
    int clip = -1;
    int64_t clipFrame = -1;
    int width = 0;
    int height = 0;
    int fullScreen = 0;
    std::optional<cardgen::FrameCounterValue> counter;
    std::chrono::steady_clock::time_point at;
    int64_t heard = -1; // sample frames the device had played by then (sessions with sound)
};

// A sound device simulated on the system clock: from its first write on it
// plays 48000 sample frames a second of what it holds (pausing when it runs
// dry), and remembers every sample it was given.
struct AudioDevice
{
    bool started = false;
    std::chrono::steady_clock::time_point lastUpdate;
    int64_t received = 0; // sample frames since the last flush
    int64_t consumed = 0; // of those, heard
    std::vector<int16_t> samples;
    int flushes = 0;
    void update(std::chrono::steady_clock::time_point now);
};

// A started library (vv_init ... vv_exit) whose messages, pictures, sound and
// end-of-job calls are recorded for the test to wait on.
class ViewerSession : public IVVDemuxCallBacker
{
public:
    explicit ViewerSession(InitParam param = InitParam(), bool withAudio = false);
    ~ViewerSession() override;

    int initResult() const { return m_initResult; }
    void EndOfJob() override;

    // vv_set_av_info for the files, with the AV information block.
    int setTake(const std::vector<QString>& paths, vv_av_info_t* info = nullptr);

    // Waits until the predicate over the recorded messages holds.
    bool waitFor(const std::function<bool(const std::vector<Message>&)>& done,
                 std::chrono::milliseconds timeout = std::chrono::seconds(20));
    bool waitForPictures(const std::function<bool(const std::vector<Picture>&)>& done,
                         std::chrono::milliseconds timeout = std::chrono::seconds(20));
    // Waits for a message of this id among those recorded since the last clear().
    bool waitForMessage(int id, std::chrono::milliseconds timeout = std::chrono::seconds(20));
    // Runs a request and waits for a state that ends a job and for the
    // end-of-job call after it: by default the end of the take (paused on its
    // last frame).
    bool runUntil(const std::function<int()>& request, int state = VM_PAUSING);
    // Runs a request and waits for the end-of-job call it leads to.
    bool job(const std::function<int()>& request);

    std::vector<Message> messages();
    std::vector<Picture> pictures();
    size_t messageCount();
    void clear();
    // Locks the simulated device for reading.
    template <typename F> void withAudio(F f)
    {
        std::lock_guard lock(m_mutex);
        f(m_audio);
    }
    // Typical pictures arrive with their bitmap; the test frees them.
    std::vector<vv_typical_picture_t> typicalPictures();

private:
    static void onMessage(vv_viewer_message_t* message, void* context);
    static void onFrame(void* context, const vv_frame_t* frame);
    static int32_t onAudioWrite(void* context, const int16_t* samples, int32_t frames, int32_t rate,
                                int32_t channels);
    static void onAudioFlush(void* context);

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::vector<Message> m_messages;
    std::vector<Picture> m_pictures;
    std::vector<vv_typical_picture_t> m_typical;
    AudioDevice m_audio;
    bool m_withAudio = false;
    int m_initResult = VV_ERR_STATE;
    InitParam m_param;
};

// The MP4 files of a generated take, absolute.
std::vector<QString> mp4Paths(const cwtest::CardFolder& card, const cardgen::ManifestTake& take);
// A card of tiny 29.97p clips (GOP 15) with one take of clipsPerTake clips of
// the given length.
cardgen::Options tinyTake(int clipsPerTake, int frames);
// The take of a card made by tinyTake.
const cardgen::ManifestTake& onlyTake(const cwtest::CardFolder& card);
// The counter that take frame n of a take shows.
cardgen::FrameCounterValue counterOf(const cardgen::ManifestTake& take, int64_t frame);
// Reads the counter out of a bitmap of the library.
std::optional<cardgen::FrameCounterValue> readCounter(const vv_bitmap_t& bitmap);

} // namespace vvtest
