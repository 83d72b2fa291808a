#include "ViewerSession.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

namespace vvtest {

namespace {

constexpr int kFields = 31;

} // namespace

InitParam::InitParam() : m_texts(kFields)
{
    // The settings store's values for a new settings file.
    const char* defaults[kFields] = {"",  "",        "",        "",       "",   "",   "0",      "1024",
                                     "",  "500000",  "5",       "1",      "20", "10", "5",      "5",
                                     "5", "1",       "1",       "1",      "1",  "1",  "100000", "1",
                                     "0", "1000000", "2500000", "400000", "1",  "0",  "10"};
    for (int i = 0; i < kFields; ++i)
        m_texts[size_t(i)] = defaults[i];
}

InitParam& InitParam::set(int field, const std::string& text)
{
    m_texts.at(size_t(field - 1)) = text;
    return *this;
}

const vv_init_param_t* InitParam::get()
{
    m_pointers.clear();
    for (const std::string& text : m_texts)
        m_pointers.push_back(text.c_str());
    static_assert(sizeof(vv_init_param_t) == kFields * sizeof(const char*));
    std::memcpy(&m_param, m_pointers.data(), sizeof m_param);
    return &m_param;
}

void AudioDevice::update(std::chrono::steady_clock::time_point now)
{
    if (started) {
        const auto played = int64_t(std::chrono::duration<double>(now - lastUpdate).count() * 48000);
        consumed = std::min(received, consumed + played);
    }
    lastUpdate = now;
}

ViewerSession::ViewerSession(InitParam param, bool withAudio)
    : m_withAudio(withAudio), m_param(std::move(param))
{
    vv_display_t display{};
    display.frame_sink = &ViewerSession::onFrame;
    display.frame_context = this;
    if (withAudio)
        display.audio_sink =
            vv_audio_sink_t{&ViewerSession::onAudioWrite, &ViewerSession::onAudioFlush, this};
    display.reserved[0] = display.reserved[1] = display.reserved[2] = 1;
    vv_set_demux_callbacker(this);
    m_initResult = vv_init(m_param.get(), &display, 0);
    if (m_initResult == VV_OK)
        vv_set_callback_func_g(&ViewerSession::onMessage, this);
}

ViewerSession::~ViewerSession()
{
    vv_exit();
    vv_set_demux_callbacker(nullptr);
    for (vv_typical_picture_t& typical : m_typical)
        vv_bitmap_free(&typical.bitmap);
}

void ViewerSession::EndOfJob()
{
    std::lock_guard lock(m_mutex);
    Message m;
    m.id = kEndOfJob;
    m_messages.push_back(m);
    m_changed.notify_all();
}

int ViewerSession::setTake(const std::vector<QString>& paths, vv_av_info_t* info)
{
    std::vector<QByteArray> utf8;
    std::vector<const char*> pointers;
    for (const QString& path : paths)
        utf8.push_back(path.toUtf8());
    for (const QByteArray& path : utf8)
        pointers.push_back(path.constData());
    vv_av_info_t local{};
    return vv_set_av_info(pointers.data(), int32_t(pointers.size()), info ? info : &local);
}

void ViewerSession::onMessage(vv_viewer_message_t* message, void* context)
{
    auto* self = static_cast<ViewerSession*>(context);
    Message m;
    m.id = message->message_id;
    if (m.id == VM_FRAME_INFO) {
        const auto* info = static_cast<const vv_frame_info_t*>(message->param);
        m.clip = info->clip_no;
        m.clipFrame = info->clip_frame_no;
        m.frame = info->take_frame_no;
        m.clipFrames = info->clip_frames;
        m.numFrames = info->num_frames;
    }
    std::lock_guard lock(self->m_mutex);
    if (m.id == VM_TYPICAL_PICTURE) {
        const auto* typical = static_cast<const vv_typical_picture_t*>(message->param);
        self->m_typical.push_back(*typical);
        m.frame = typical->frame_no;
    }
    self->m_messages.push_back(m);
    self->m_changed.notify_all();
}

void ViewerSession::onFrame(void* context, const vv_frame_t* frame)
{
    auto* self = static_cast<ViewerSession*>(context);
    Picture p;
    p.frame = frame->frame_no;
    p.clip = frame->clip_no;
    p.clipFrame = frame->clip_frame_no;
    p.width = frame->width;
    p.height = frame->height;
    p.fullScreen = frame->full_screen;
    p.counter =
        cardgen::FrameCounter::readPacked(frame->pixels, frame->stride, frame->width, frame->height, 4);
    p.at = std::chrono::steady_clock::now();
    std::lock_guard lock(self->m_mutex);
    if (self->m_withAudio) {
        self->m_audio.update(p.at);
        p.heard = self->m_audio.consumed;
    }
    self->m_pictures.push_back(p);
    self->m_changed.notify_all();
}

int32_t ViewerSession::onAudioWrite(void* context, const int16_t* samples, int32_t frames, int32_t rate,
                                    int32_t channels)
{
    auto* self = static_cast<ViewerSession*>(context);
    EXPECT_EQ(rate, 48000);
    EXPECT_EQ(channels, 2);
    std::lock_guard lock(self->m_mutex);
    AudioDevice& device = self->m_audio;
    device.update(std::chrono::steady_clock::now());
    if (frames > 0) {
        device.started = true;
        device.samples.insert(device.samples.end(), samples, samples + size_t(frames) * 2);
        device.received += frames;
    }
    return int32_t(device.received - device.consumed);
}

void ViewerSession::onAudioFlush(void* context)
{
    auto* self = static_cast<ViewerSession*>(context);
    std::lock_guard lock(self->m_mutex);
    self->m_audio.started = false;
    self->m_audio.received = 0;
    self->m_audio.consumed = 0;
    ++self->m_audio.flushes;
}

bool ViewerSession::waitFor(const std::function<bool(const std::vector<Message>&)>& done,
                            std::chrono::milliseconds timeout)
{
    std::unique_lock lock(m_mutex);
    return m_changed.wait_for(lock, timeout, [&] { return done(m_messages); });
}

bool ViewerSession::waitForPictures(const std::function<bool(const std::vector<Picture>&)>& done,
                                    std::chrono::milliseconds timeout)
{
    std::unique_lock lock(m_mutex);
    return m_changed.wait_for(lock, timeout, [&] { return done(m_pictures); });
}

bool ViewerSession::waitForMessage(int id, std::chrono::milliseconds timeout)
{
    return waitFor(
        [&](const std::vector<Message>& messages) {
            return std::any_of(messages.begin(), messages.end(),
                               [&](const Message& m) { return m.id == id; });
        },
        timeout);
}

bool ViewerSession::runUntil(const std::function<int()>& request, int state)
{
    const size_t from = messageCount();
    if (request() != VV_OK)
        return false;
    return waitFor([&](const std::vector<Message>& messages) {
        bool stopped = false;
        for (size_t i = from; i < messages.size(); ++i) {
            stopped = stopped || messages[i].id == state;
            if (stopped && messages[i].id == kEndOfJob)
                return true;
        }
        return false;
    });
}

bool ViewerSession::job(const std::function<int()>& request)
{
    const size_t from = messageCount();
    if (request() != VV_OK)
        return false;
    return waitFor([&](const std::vector<Message>& messages) {
        for (size_t i = from; i < messages.size(); ++i) {
            if (messages[i].id == kEndOfJob)
                return true;
        }
        return false;
    });
}

std::vector<Message> ViewerSession::messages()
{
    std::lock_guard lock(m_mutex);
    return m_messages;
}

std::vector<Picture> ViewerSession::pictures()
{
    std::lock_guard lock(m_mutex);
    return m_pictures;
}

size_t ViewerSession::messageCount()
{
    std::lock_guard lock(m_mutex);
    return m_messages.size();
}

void ViewerSession::clear()
{
    std::lock_guard lock(m_mutex);
    m_messages.clear();
    m_pictures.clear();
}

std::vector<vv_typical_picture_t> ViewerSession::typicalPictures()
{
    std::lock_guard lock(m_mutex);
    return m_typical;
}

std::vector<QString> mp4Paths(const cwtest::CardFolder& card, const cardgen::ManifestTake& take)
{
    std::vector<QString> paths;
    for (const cardgen::ManifestClip& clip : take.clips) {
        for (const cardgen::ManifestFile& file : clip.files) {
            if (file.kind == QLatin1String("MP4"))
                paths.push_back(card.path(file.path, take.card));
        }
    }
    return paths;
}

cardgen::Options tinyTake(int clipsPerTake, int frames)
{
    cardgen::Options options = cwtest::CardFolder::quick();
    options.frames = frames;
    options.gop = 15;
    options.clips = clipsPerTake == 1 ? 1 : 0;
    if (clipsPerTake > 1)
        options.multiClipTakes = {clipsPerTake};
    return options;
}

const cardgen::ManifestTake& onlyTake(const cwtest::CardFolder& card)
{
    return card.manifest().takes.front();
}

cardgen::FrameCounterValue counterOf(const cardgen::ManifestTake& take, int64_t frame)
{
    for (const cardgen::ManifestClip& clip : take.clips) {
        if (frame < clip.frames)
            return {clip.counterClip, int(frame)};
        frame -= clip.frames;
    }
    return {};
}

std::optional<cardgen::FrameCounterValue> readCounter(const vv_bitmap_t& bitmap)
{
    return cardgen::FrameCounter::readPacked(bitmap.pixels, bitmap.stride, bitmap.width, bitmap.height,
                                             bitmap.bits_per_pixel / 8);
}

} // namespace vvtest
