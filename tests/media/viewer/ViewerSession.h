#pragma once

#include "cardgen/FrameCounter.h"
#include "media/viewer/vv.h"
#include "support/CardFolder.h"
#include "support/SimulatedAudioDevice.h"
#include "support/TestEnvironment.h"

#include <QString>

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstring>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace vvtest {

// The settings texts of an initialisation block (the settings store's values
// for a new settings file), kept alive with the block.
class InitParam
{
public:
    InitParam()
        : m_texts{"",       "",   "",   "",        "",        "",       "0", "1024", "",  "500000", "5",
                  "1",      "20", "10", "5",       "5",       "5",      "1", "1",    "1", "1",      "1",
                  "100000", "1",  "0",  "1000000", "2500000", "400000", "1", "0",    "10"}
    {
    }
    // Sets field 1..31 of the block.
    InitParam& set(int field, const std::string& text)
    {
        m_texts.at(size_t(field - 1)) = text;
        return *this;
    }
    const vv_init_param_t* get()
    {
        static_assert(sizeof(vv_init_param_t) == kFields * sizeof(const char*));
        const char* pointers[kFields];
        for (size_t i = 0; i < kFields; ++i)
            pointers[i] = m_texts[i].c_str();
        std::memcpy(&m_param, pointers, sizeof m_param);
        return &m_param;
    }

    static constexpr int kPlayInfoInterval = 23;
    static constexpr int kFrameDropFlag = 24;
    static constexpr int kLowResolution = 25;

private:
    static constexpr size_t kFields = 31;
    std::vector<std::string> m_texts;
    vv_init_param_t m_param{};
};

// UTF-8 copies of paths with the array of pointers the library takes.
struct Utf8Paths
{
    explicit Utf8Paths(const std::vector<QString>& paths)
    {
        for (const QString& path : paths)
            utf8.push_back(path.toUtf8());
        for (const QByteArray& path : utf8)
            pointers.push_back(path.constData());
    }
    const char** data() { return pointers.empty() ? nullptr : pointers.data(); }
    int32_t size() const { return int32_t(pointers.size()); }
    std::vector<QByteArray> utf8;
    std::vector<const char*> pointers;
};

// A message of the library; end-of-job calls are recorded with id kEndOfJob.
constexpr int kEndOfJob = -1;

struct Message
{
    int id = 0;
    vv_frame_info_t info{}; // of VM_FRAME_INFO
};

// A picture the frame sink received, with the counter read from its pixels.
struct Picture
{
    int64_t frame = -1;
    int clip = -1;
    int64_t clipFrame = -1;
    int width = 0;
    int height = 0;
    std::optional<cardgen::FrameCounterValue> counter;
    std::chrono::steady_clock::time_point at;
    int64_t heard = -1; // sample frames the device had played by then (sessions with sound)
};

// A started library (vv_init ... vv_exit) recording its messages, pictures
// and end-of-job calls for the test to wait on.
class ViewerSession : public IVVDemuxCallBacker
{
public:
    explicit ViewerSession(InitParam param = InitParam(), bool withAudio = false)
        : m_withAudio(withAudio), m_param(std::move(param))
    {
        vv_display_t display{};
        display.frame_sink = &ViewerSession::onFrame;
        display.frame_context = this;
        if (withAudio)
            display.audio_sink = m_audio.sink();
        display.reserved[0] = display.reserved[1] = display.reserved[2] = 1;
        vv_set_demux_callbacker(this);
        m_initResult = vv_init(m_param.get(), &display, 0);
        if (m_initResult == VV_OK)
            vv_set_callback_func_g(&ViewerSession::onMessage, this);
    }
    ~ViewerSession() override
    {
        vv_exit();
        vv_set_demux_callbacker(nullptr);
    }

    int initResult() const { return m_initResult; }
    void EndOfJob() override
    {
        record([](ViewerSession& self) { self.m_messages.push_back({kEndOfJob}); });
    }

    int setTake(const std::vector<QString>& paths, vv_av_info_t* info = nullptr)
    {
        Utf8Paths utf8(paths);
        vv_av_info_t local{};
        return vv_set_av_info(utf8.data(), utf8.size(), info ? info : &local);
    }

    bool waitFor(const std::function<bool(const std::vector<Message>&)>& done)
    {
        std::unique_lock lock(m_mutex);
        return m_changed.wait_for(lock, std::chrono::seconds(20), [&] { return done(m_messages); });
    }
    bool waitForPictures(const std::function<bool(const std::vector<Picture>&)>& done)
    {
        std::unique_lock lock(m_mutex);
        return m_changed.wait_for(lock, std::chrono::seconds(20), [&] { return done(m_pictures); });
    }
    // Runs a request and waits for the state given (by default the pause at
    // the take's end) followed by an end-of-job call; with state 0, for the
    // next end-of-job call only.
    bool runUntil(const std::function<int()>& request, int state = VM_PAUSING)
    {
        const size_t from = messages().size();
        if (request() != VV_OK)
            return false;
        return waitFor([&](const std::vector<Message>& messages) {
            bool stopped = state == 0;
            for (size_t i = from; i < messages.size(); ++i) {
                stopped = stopped || messages[i].id == state;
                if (stopped && messages[i].id == kEndOfJob)
                    return true;
            }
            return false;
        });
    }
    bool job(const std::function<int()>& request) { return runUntil(request, 0); }

    std::vector<Message> messages()
    {
        std::lock_guard lock(m_mutex);
        return m_messages;
    }
    std::vector<Picture> pictures()
    {
        std::lock_guard lock(m_mutex);
        return m_pictures;
    }
    void clear()
    {
        std::lock_guard lock(m_mutex);
        m_messages.clear();
        m_pictures.clear();
    }
    cwtest::SimulatedAudioDevice& audio() { return m_audio; }

private:
    template <typename F> void record(F f)
    {
        std::lock_guard lock(m_mutex);
        f(*this);
        m_changed.notify_all();
    }
    static void onMessage(vv_viewer_message_t* message, void* context)
    {
        Message m{message->message_id};
        if (m.id == VM_FRAME_INFO)
            m.info = *static_cast<const vv_frame_info_t*>(message->param);
        static_cast<ViewerSession*>(context)->record(
            [&](ViewerSession& self) { self.m_messages.push_back(m); });
    }
    static void onFrame(void* context, const vv_frame_t* frame)
    {
        auto* self = static_cast<ViewerSession*>(context);
        const Picture p{
            frame->frame_no,
            frame->clip_no,
            frame->clip_frame_no,
            frame->width,
            frame->height,
            cardgen::FrameCounter::readPacked(frame->pixels, frame->stride, frame->width, frame->height, 4),
            std::chrono::steady_clock::now(),
            self->m_withAudio ? self->m_audio.heard() : -1};
        self->record([&](ViewerSession& s) { s.m_pictures.push_back(p); });
    }

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::vector<Message> m_messages;
    std::vector<Picture> m_pictures;
    cwtest::SimulatedAudioDevice m_audio;
    bool m_withAudio = false;
    int m_initResult = VV_ERR_STATE;
    InitParam m_param;
};

// The MP4 files of a generated take, absolute.
inline std::vector<QString> mp4Paths(const cwtest::CardFolder& card, const cardgen::ManifestTake& take)
{
    std::vector<QString> paths;
    for (const cardgen::ManifestClip& clip : take.clips)
        for (const cardgen::ManifestFile& file : clip.files)
            if (file.kind == QLatin1String("MP4"))
                paths.push_back(card.path(file.path, take.card));
    return paths;
}

// A card of tiny 29.97p clips (GOP 15) with one take of clipsPerTake clips.
inline cardgen::Options tinyTake(int clipsPerTake, int frames)
{
    cardgen::Options options = cwtest::CardFolder::quick();
    options.frames = frames;
    options.gop = 15;
    options.clips = clipsPerTake == 1 ? 1 : 0;
    if (clipsPerTake > 1)
        options.multiClipTakes = {clipsPerTake};
    return options;
}

inline const cardgen::ManifestTake& onlyTake(const cwtest::CardFolder& card)
{
    return card.manifest().takes.front();
}

// The counter that take frame n of a take shows.
inline cardgen::FrameCounterValue counterOf(const cardgen::ManifestTake& take, int64_t frame)
{
    for (const cardgen::ManifestClip& clip : take.clips) {
        if (frame < clip.frames)
            return {clip.counterClip, int(frame)};
        frame -= clip.frames;
    }
    return {};
}

// A take of two clips of 30 frames, GOPs of 15 (intra pictures at 2 and
// 17), made once for the run; the tests only read it.
class TwoClipTake : public ::testing::Test
{
protected:
    static const cwtest::CardFolder& card()
    {
        static const cwtest::CardFolder folder(tinyTake(2, 30));
        return folder;
    }
    void SetUp() override { ASSERT_TRUE(card().ok()) << card().error().toStdString(); }
    static const cardgen::ManifestTake& take() { return onlyTake(card()); }
    static std::vector<QString> paths() { return mp4Paths(card(), take()); }
};

// A thumbnail of the library (vv_get_thumbnail), freed with it.
struct Thumbnail
{
    int rc = VV_ERR_STATE;
    vv_bitmap_t bitmap{};

    Thumbnail(const std::vector<QString>& paths, int64_t frame, int icon = VV_ICON_NONE)
    {
        Utf8Paths utf8(paths);
        rc = vv_get_thumbnail(utf8.data(), utf8.size(), frame, icon, &bitmap);
    }
    Thumbnail(const Thumbnail&) = delete;
    Thumbnail& operator=(const Thumbnail&) = delete;
    ~Thumbnail() { vv_bitmap_free(&bitmap); }
    std::optional<cardgen::FrameCounterValue> counter() const
    {
        return cardgen::FrameCounter::readPacked(bitmap.pixels, bitmap.stride, bitmap.width, bitmap.height,
                                                 bitmap.bits_per_pixel / 8);
    }
};

} // namespace vvtest
