#include "media/viewer/Player.h"

#include "media/viewer/Bitmap.h"
#include "media/viewer/Thumbnailer.h"

#include <algorithm>
#include <string>

namespace vv {

namespace {

constexpr double kScanSpeed = 8; // fast forward and rewind
constexpr double kEarly = 0.002; // a picture may go out this much before its time

const char* stateName(int state)
{
    switch (state) {
    case VM_PLAYED:
        return "VM_PLAYED";
    case VM_FASTFORWARDED:
        return "VM_FASTFORWARDED";
    case VM_REWINDED:
        return "VM_REWINDED";
    case VM_PAUSING:
        return "VM_PAUSING";
    case VM_STOPPED:
        return "VM_STOPPED";
    default:
        return "?";
    }
}

} // namespace

Player::Player(const Settings& settings, const vv_display_t& display, Log& log,
               IVVDemuxCallBacker* callbacker)
    : m_callbacker(callbacker), m_playInfoIntervalUs(settings.playInfoIntervalUs),
      m_frameDrop(settings.frameDrop), m_lowResolution(settings.lowResolution), m_settings(settings),
      m_decodeQueue(settings.decodeQueue), m_display(display), m_log(log),
      m_audio(display.audio_sink, m_clock)
{
    m_thread = std::thread([this] { run(); });
}

Player::~Player()
{
    {
        std::lock_guard lock(m_mutex);
        m_quit = true;
    }
    m_wake.notify_all();
    m_thread.join();
}

void Player::setMessageFunc(vv_message_func_t func, void* context)
{
    std::lock_guard lock(m_messageMutex);
    m_messageFunc = func;
    m_messageContext = context;
}

void Player::post(Command command)
{
    {
        std::lock_guard lock(m_mutex);
        m_commands.push_back(std::move(command));
    }
    m_wake.notify_all();
}

void Player::post(Request request, int64_t frame, int flag)
{
    post(Command{request, frame, flag, nullptr, nullptr});
}

void Player::setTake(std::unique_ptr<TakeVideo> video, std::unique_ptr<TakeAudio> audio)
{
    m_hasTake = true;
    post(Command{Request::SetTake, 0, 0, std::move(video), std::move(audio)});
}

void Player::changeSettings(const vv_init_param_t& param)
{
    {
        std::lock_guard lock(m_mutex);
        m_settings.change(param);
        m_playInfoIntervalUs = m_settings.playInfoIntervalUs;
        m_frameDrop = m_settings.frameDrop;
        m_lowResolution = m_settings.lowResolution;
    }
    post(Request::Redraw);
}

void Player::setFullScreen(bool on)
{
    m_fullScreen = on;
    post(Request::Redraw);
}

bool Player::isOwnThread() const
{
    return std::this_thread::get_id() == m_thread.get_id() || m_audio.isOwnThread();
}

bool Player::moving() const
{
    return m_state == VM_PLAYED || m_state == VM_FASTFORWARDED || m_state == VM_REWINDED;
}

void Player::run()
{
    for (;;) {
        std::optional<Command> command;
        {
            std::unique_lock lock(m_mutex);
            if (!moving())
                m_wake.wait(lock, [&] { return m_quit || !m_commands.empty(); });
            if (m_quit)
                break;
            // Of a run of frame requests (a dragged slider) only the last counts.
            while (!m_commands.empty()) {
                command = std::move(m_commands.front());
                m_commands.pop_front();
                if (command->request != Request::ShowFrame || command->flag != 0 || m_commands.empty() ||
                    m_commands.front().request != Request::ShowFrame)
                    break;
            }
        }
        if (command) {
            handle(*command);
            continue;
        }
        if (const std::optional<Clock::Time> wake = step()) {
            std::unique_lock lock(m_mutex);
            m_wake.wait_until(lock, *wake, [&] { return m_quit || !m_commands.empty(); });
        }
    }
    stopMoving();
    m_audio.setTake(nullptr);
    m_picture.reset();
    send(VM_EXITED, nullptr);
}

void Player::handle(Command& command)
{
    if (command.request == Request::SetTake) {
        stopMoving();
        setState(VM_STOPPED);
        m_video = std::move(command.video);
        m_audio.setTake(std::move(command.audio));
        const AVRational rate = m_video->frameRate();
        m_frameSeconds = double(rate.den) / rate.num;
        m_startOffset = 0;
        m_current = -1;
        m_lastReported = -1;
        m_picture.reset();
        return;
    }
    if (command.request == Request::Redraw) {
        if (m_picture && m_state != VM_STOPPED)
            deliver(m_picture.get(), m_current);
        return;
    }
    if (command.request == Request::MakeThumbnail) {
        makeTypicalPicture();
        return;
    }
    if (!m_video)
        return;
    const bool shown = m_state != VM_STOPPED && m_current >= 0;
    switch (command.request) {
    case Request::StartOffset:
        m_startOffset = std::clamp<int64_t>(command.frame, 0, lastFrame());
        break;
    case Request::Play:
        if (m_state == VM_PLAYED)
            break;
        if (!shown)
            startPlaying(m_startOffset);
        else if (m_state == VM_PAUSING) // from the end, again from the start
            startPlaying(m_current >= lastFrame() ? m_startOffset : m_current + 1);
        else
            startPlaying(m_current);
        break;
    case Request::Pause:
        if (!moving())
            break;
        stopMoving();
        setState(VM_PAUSING);
        if (m_current >= 0 && m_current != m_lastReported)
            reportFrame(m_current);
        endOfJob();
        break;
    case Request::Stop:
        stopMoving();
        setState(VM_STOPPED);
        m_current = -1;
        m_lastReported = -1;
        m_picture.reset();
        endOfJob();
        break;
    case Request::FastForward:
    case Request::Rewind: {
        const int state = command.request == Request::FastForward ? VM_FASTFORWARDED : VM_REWINDED;
        if (m_state != state)
            startScanning(shown ? m_current : m_startOffset, state);
        break;
    }
    case Request::FirstFrame:
        positionAt(m_startOffset);
        break;
    case Request::LastFrame:
        positionAt(lastFrame());
        break;
    case Request::PlusOne:
        positionAt(shown ? std::min(m_current + 1, lastFrame()) : m_startOffset);
        break;
    case Request::MinusOne:
        positionAt(shown ? std::max(m_current - 1, m_startOffset) : m_startOffset);
        break;
    case Request::ShowFrame: {
        const int64_t frame = std::clamp<int64_t>(command.frame, m_startOffset, lastFrame());
        if (command.flag == 1 || m_state == VM_PLAYED)
            startPlaying(frame);
        else if (m_state == VM_FASTFORWARDED || m_state == VM_REWINDED)
            startScanning(frame, m_state);
        else
            positionAt(frame);
        break;
    }
    default:
        break;
    }
}

std::optional<Clock::Time> Player::step()
{
    return m_state == VM_PLAYED ? stepPlaying() : stepScanning();
}

void Player::stopMoving()
{
    m_queue.clear();
    m_clock.stop();
    m_audio.stop();
    m_videoEnded = false;
}

bool Player::decodeOne()
{
    Decoded decoded{makeFrame(), 0};
    const int rc = decoded.picture ? m_video->decode(decoded.picture.get(), decoded.frame) : VV_ERR_MEMORY;
    if (rc != VV_OK) {
        if (rc != kEnd)
            m_log.write(Log::kError, "decoding failed: " + std::to_string(rc));
        m_videoEnded = true;
        return false;
    }
    m_queue.push_back(std::move(decoded));
    return true;
}

bool Player::decodeAt(int64_t frame, Decoded& out)
{
    out.picture = makeFrame();
    if (!out.picture)
        return false;
    int rc = m_video->seek(frame);
    if (rc == VV_OK)
        rc = m_video->decode(out.picture.get(), out.frame);
    if (rc != VV_OK)
        m_log.write(Log::kError,
                    "frame " + std::to_string(frame) + " could not be decoded: " + std::to_string(rc));
    return rc == VV_OK;
}

// Playing begins once the first picture is decoded, so that it is on time.
void Player::startPlaying(int64_t frame)
{
    stopMoving();
    setState(VM_PLAYED);
    if (m_video->seek(frame) != VV_OK || !decodeOne()) {
        endOfTake();
        return;
    }
    const double position = timeOf(m_queue.front().frame);
    m_audio.start(m_queue.front().frame, position, m_clock.start(position, 1));
    m_justStarted = true;
}

void Player::startScanning(int64_t frame, int state)
{
    stopMoving();
    setState(state);
    m_current = frame;
    m_clock.start(timeOf(frame), state == VM_FASTFORWARDED ? kScanSpeed : -kScanSpeed);
}

void Player::positionAt(int64_t frame)
{
    stopMoving();
    setState(VM_PAUSING);
    Decoded decoded;
    if (decodeAt(frame, decoded))
        present(decoded, true);
    endOfJob();
}

// At the end of the take the last frame stays shown, paused, as players do;
// only a take of which nothing could be shown stops.
void Player::endOfTake()
{
    if (m_picture && m_current >= 0) {
        if (m_current != lastFrame()) {
            positionAt(lastFrame());
            return;
        }
        stopMoving();
        setState(VM_PAUSING);
        if (m_current != m_lastReported)
            reportFrame(m_current);
        endOfJob();
        return;
    }
    stopMoving();
    setState(VM_STOPPED);
    m_current = -1;
    m_lastReported = -1;
    m_picture.reset();
    endOfJob();
}

std::optional<Clock::Time> Player::stepPlaying()
{
    if (m_queue.empty()) {
        if (!m_videoEnded) {
            decodeOne();
            return std::nullopt;
        }
        // Every picture is out: the take ends when the last one's time is over.
        const double end = timeOf(m_current + 1);
        if (m_clock.now() >= end) {
            endOfTake();
            return std::nullopt;
        }
        return m_clock.when(end);
    }
    Decoded& next = m_queue.front();
    const double due = timeOf(next.frame);
    const double now = m_clock.now();
    if (now + kEarly >= due) {
        const bool late = now - due > m_frameSeconds;
        if (late && m_frameDrop && !m_justStarted && next.frame != lastFrame()) {
            m_log.write(Log::kDetail, "frame " + std::to_string(next.frame) + " dropped");
            m_queue.pop_front();
            return std::nullopt;
        }
        Decoded decoded = std::move(next);
        m_queue.pop_front();
        const auto interval = std::chrono::microseconds(m_playInfoIntervalUs.load());
        const bool report =
            decoded.frame == lastFrame() || std::chrono::steady_clock::now() - m_lastReportTime >= interval;
        present(decoded, report);
        m_justStarted = false;
        return std::nullopt;
    }
    if (!m_videoEnded && m_queue.size() < size_t(m_decodeQueue)) {
        decodeOne();
        return std::nullopt;
    }
    return m_clock.when(due - kEarly);
}

// Fast forward and rewind show key frames (which decode on their own) when
// the clock, running at kScanSpeed, reaches them; key frames whose time has
// already passed are skipped.
std::optional<Clock::Time> Player::stepScanning()
{
    const bool forward = m_state == VM_FASTFORWARDED;
    const double now = m_clock.now();
    int64_t key = forward ? m_video->keyFrameAfter(m_current) : m_video->keyFrameBefore(m_current);
    if (key < 0 || (!forward && key < m_startOffset)) {
        if (forward)
            endOfTake();
        else
            positionAt(m_startOffset);
        return std::nullopt;
    }
    if (forward ? timeOf(key) > now : timeOf(key) < now)
        return m_clock.when(timeOf(key));
    for (;;) {
        const int64_t further = forward ? m_video->keyFrameAfter(key) : m_video->keyFrameBefore(key);
        if (further < 0 || (forward ? timeOf(further) > now : timeOf(further) < now) ||
            (!forward && further < m_startOffset))
            break;
        key = further;
    }
    Decoded decoded;
    if (!decodeAt(key, decoded)) {
        m_current = key; // skip what cannot be decoded
        return std::nullopt;
    }
    const auto interval = std::chrono::microseconds(m_playInfoIntervalUs.load());
    present(decoded, std::chrono::steady_clock::now() - m_lastReportTime >= interval);
    return std::nullopt;
}

void Player::present(Decoded& decoded, bool report)
{
    deliver(decoded.picture.get(), decoded.frame);
    m_picture = std::move(decoded.picture);
    m_current = decoded.frame;
    if (report && m_current != m_lastReported)
        reportFrame(m_current);
}

void Player::deliver(const AVFrame* picture, int64_t frame)
{
    if (!m_display.frame_sink)
        return;
    const int reduce = m_lowResolution;
    const int width = std::max(1, picture->width >> reduce);
    const int height = std::max(1, picture->height >> reduce);
    const int stride = width * 4;
    m_pixels.resize(size_t(stride) * size_t(height));
    if (!m_converter.convert(picture, width, height, AV_PIX_FMT_BGRA, m_pixels.data(), stride)) {
        m_log.write(Log::kError, "frame " + std::to_string(frame) + " could not be converted");
        return;
    }
    const int clip = m_video->clipOf(frame);
    const AVRational aspect = FrameConverter::displayAspect(picture);
    const vv_frame_t record{m_pixels.data(),
                            width,
                            height,
                            stride,
                            frame,
                            clip,
                            frame - m_video->clipStart(clip),
                            aspect.num,
                            aspect.den,
                            m_fullScreen ? 1 : 0};
    const vv_draw_lock_t& lock = m_display.draw_lock;
    if (lock.lock)
        lock.lock(lock.context);
    m_display.frame_sink(m_display.frame_context, &record);
    if (lock.unlock)
        lock.unlock(lock.context);
}

void Player::reportFrame(int64_t frame)
{
    const int clip = m_video->clipOf(frame);
    const vv_frame_info_t info{clip, frame - m_video->clipStart(clip), frame,
                               m_video->clip(clip).frameCount(), m_video->frameCount()};
    m_lastReported = frame;
    m_lastReportTime = std::chrono::steady_clock::now();
    send(VM_FRAME_INFO, &info);
}

void Player::makeTypicalPicture()
{
    vv_typical_picture_t typical{-1, 0, vv_bitmap_t{}};
    if (m_picture && m_current >= 0 && m_state != VM_STOPPED &&
        Thumbnailer::fromFrame(m_picture.get(), m_thumbnailConverter, typical.bitmap) == VV_OK) {
        typical.frame_no = m_current;
        typical.clip_no = m_video->clipOf(m_current);
    }
    send(VM_TYPICAL_PICTURE, &typical);
}

void Player::setState(int state)
{
    if (state == m_state)
        return;
    m_state = state;
    m_publicState = state;
    m_log.write(Log::kEvent, std::string("state ") + stateName(state));
    send(state, nullptr);
}

void Player::send(int id, const void* param)
{
    vv_message_func_t func = nullptr;
    void* context = nullptr;
    {
        std::lock_guard lock(m_messageMutex);
        func = m_messageFunc;
        context = m_messageContext;
    }
    if (!func)
        return;
    vv_viewer_message_t message{id, param};
    func(&message, context);
}

void Player::endOfJob()
{
    if (IVVDemuxCallBacker* callbacker = m_callbacker)
        callbacker->EndOfJob();
}

} // namespace vv
