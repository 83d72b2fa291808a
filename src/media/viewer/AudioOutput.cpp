#include "media/viewer/AudioOutput.h"

namespace vv {

namespace {

constexpr int kRate = AudioClip::kRate;
constexpr int kChannels = 2;
constexpr int kBlock = 1024;         // sample frames per write
constexpr int kLead = kRate / 8;     // sound kept queued in the device
constexpr double kTolerance = 0.015; // clock error accepted before it is pulled onto the sound
constexpr auto kPoll = std::chrono::milliseconds(5);

} // namespace

AudioOutput::AudioOutput(const vv_audio_sink_t& sink, Clock& clock) : m_sink(sink), m_clock(clock)
{
    if (m_sink.write)
        m_thread = std::thread([this] { run(); });
}

AudioOutput::~AudioOutput()
{
    {
        std::lock_guard lock(m_mutex);
        m_quit = true;
        ++m_request;
    }
    m_wake.notify_all();
    if (m_thread.joinable())
        m_thread.join();
}

void AudioOutput::setTake(std::shared_ptr<TakeAudio> take)
{
    std::lock_guard lock(m_mutex);
    m_take = std::move(take);
    m_active = false;
    ++m_request;
    m_wake.notify_all();
}

bool AudioOutput::start(int64_t frame, double position, uint64_t clockGeneration)
{
    std::lock_guard lock(m_mutex);
    if (!m_sink.write || !m_take)
        return false;
    m_active = true;
    m_frame = frame;
    m_position = position;
    m_clockGeneration = clockGeneration;
    ++m_request;
    m_wake.notify_all();
    return true;
}

void AudioOutput::stop()
{
    std::lock_guard lock(m_mutex);
    if (!m_active)
        return;
    m_active = false;
    ++m_request;
    m_wake.notify_all();
}

void AudioOutput::run()
{
    std::unique_lock lock(m_mutex);
    bool queued = false; // the sink may hold sound
    for (;;) {
        m_wake.wait(lock, [&] { return m_quit || (m_active && m_take) || queued; });
        if (m_quit)
            break;
        if (!m_active || !m_take) {
            lock.unlock();
            if (m_sink.flush)
                m_sink.flush(m_sink.context);
            queued = false;
            lock.lock();
            continue;
        }
        const std::shared_ptr<TakeAudio> take = m_take;
        const int64_t frame = m_frame;
        const double position = m_position;
        const uint64_t generation = m_clockGeneration;
        const uint64_t request = m_request;
        lock.unlock();
        if (m_sink.flush)
            m_sink.flush(m_sink.context);
        queued = true;
        play(*take, frame, position, generation, request);
        lock.lock();
    }
}

// Feeds the sink until the request changes.
void AudioOutput::play(TakeAudio& take, int64_t frame, double position, uint64_t clockGeneration,
                       uint64_t request)
{
    std::vector<int16_t> block(size_t(kBlock) * kChannels);
    const bool positioned = take.seek(frame) == VV_OK;
    int64_t written = 0;
    bool ended = !positioned;
    for (;;) {
        {
            std::unique_lock lock(m_mutex);
            if (m_request != request)
                return;
        }
        const int32_t held = m_sink.write(m_sink.context, nullptr, 0, kRate, kChannels);
        const int64_t heard = std::max<int64_t>(0, written - std::max(0, held));
        // Once the sound has ended and been heard, the clock runs on alone.
        if (!ended || held > 0)
            m_clock.sync(clockGeneration, position + double(heard) / kRate, kTolerance);
        if (!ended && held < kLead) {
            const int got = take.read(block.data(), kBlock, m_choice);
            if (got > 0) {
                m_sink.write(m_sink.context, block.data(), got, kRate, kChannels);
                written += got;
                continue;
            }
            ended = true;
        }
        std::unique_lock lock(m_mutex);
        m_wake.wait_for(lock, kPoll, [&] { return m_request != request; });
    }
}

} // namespace vv
