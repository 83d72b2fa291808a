#pragma once

#include "media/viewer/Clock.h"
#include "media/viewer/TakeAudio.h"
#include "media/viewer/vv.h"

#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace vv {

// The audio thread: reads the take's sound from a given frame on, keeps the
// host's audio sink filled a little ahead, and pulls the playback clock onto
// the position heard. Without a sink it does nothing and the clock runs alone.
class AudioOutput
{
public:
    AudioOutput(const vv_audio_sink_t& sink, Clock& clock);
    ~AudioOutput();

    void setTake(std::shared_ptr<TakeAudio> take);
    // Plays from a take frame, which the clock of the generation given shows
    // at position; false when there is no sound to play.
    bool start(int64_t frame, double position, uint64_t clockGeneration);
    // Stops and empties the sink.
    void stop();
    void setChoice(int choice) { m_choice = choice; }
    bool isOwnThread() const { return std::this_thread::get_id() == m_thread.get_id(); }

private:
    void run();
    void play(TakeAudio& take, int64_t frame, double position, uint64_t clockGeneration, uint64_t request);

    vv_audio_sink_t m_sink;
    Clock& m_clock;
    std::atomic<int> m_choice{VV_AUDIO_BOTH};

    std::mutex m_mutex;
    std::condition_variable m_wake;
    std::shared_ptr<TakeAudio> m_take;
    bool m_active = false;
    bool m_quit = false;
    uint64_t m_request = 0; // changes with every start and stop
    int64_t m_frame = 0;
    double m_position = 0;
    uint64_t m_clockGeneration = 0;
    std::thread m_thread;
};

} // namespace vv
