#pragma once

#include "media/viewer/vv.h"

#include <chrono>
#include <cstdint>
#include <mutex>
#include <vector>

namespace cwtest {

// A sound device simulated on the system clock for the viewer library's audio
// sink: from its first write on it plays 48000 sample frames a second of what
// it holds (pausing when it runs dry), and keeps every sample it was given.
class SimulatedAudioDevice
{
public:
    vv_audio_sink_t sink() { return vv_audio_sink_t{&write, &flush, this}; }

    std::vector<int16_t> samples()
    {
        std::lock_guard lock(m_mutex);
        return m_samples;
    }
    void clear()
    {
        std::lock_guard lock(m_mutex);
        m_samples.clear();
    }
    // Sample frames played since the last flush, as of now.
    int64_t heard()
    {
        std::lock_guard lock(m_mutex);
        update();
        return m_consumed;
    }
    int64_t held()
    {
        std::lock_guard lock(m_mutex);
        return m_received;
    }
    int flushes()
    {
        std::lock_guard lock(m_mutex);
        return m_flushes;
    }

private:
    static int32_t write(void* context, const int16_t* samples, int32_t frames, int32_t rate,
                         int32_t channels)
    {
        auto* self = static_cast<SimulatedAudioDevice*>(context);
        std::lock_guard lock(self->m_mutex);
        self->update();
        if (frames > 0 && rate == 48000 && channels == 2) {
            self->m_started = true;
            self->m_samples.insert(self->m_samples.end(), samples, samples + size_t(frames) * 2);
            self->m_received += frames;
        }
        return int32_t(self->m_received - self->m_consumed);
    }
    static void flush(void* context)
    {
        auto* self = static_cast<SimulatedAudioDevice*>(context);
        std::lock_guard lock(self->m_mutex);
        self->m_started = false;
        self->m_received = self->m_consumed = 0;
        ++self->m_flushes;
    }
    void update()
    {
        const auto now = std::chrono::steady_clock::now();
        if (m_started)
            m_consumed =
                std::min(m_received,
                         m_consumed + int64_t(std::chrono::duration<double>(now - m_last).count() * 48000));
        m_last = now;
    }

    std::mutex m_mutex;
    bool m_started = false;
    std::chrono::steady_clock::time_point m_last;
    int64_t m_received = 0;
    int64_t m_consumed = 0;
    int m_flushes = 0;
    std::vector<int16_t> m_samples;
};

} // namespace cwtest
