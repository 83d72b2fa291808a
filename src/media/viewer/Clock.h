#pragma once

#include <chrono>
#include <cstdint>
#include <mutex>

namespace vv {

// The playback clock: a position in the take (seconds) that runs with the
// system clock at a given speed while started. With sound, the audio thread
// pulls it onto the position heard (audio is the master).
class Clock
{
public:
    using Time = std::chrono::steady_clock::time_point;

    // Starts at position; answers the generation that sync() must name.
    uint64_t start(double position, double speed);
    void stop();
    double now() const;
    // Moves the clock to position when it is further off than tolerance and
    // still running the generation named.
    void sync(uint64_t generation, double position, double tolerance);
    // When now() reaches position (far in the future when it never will).
    Time when(double position) const;

private:
    double nowLocked(Time at) const;

    mutable std::mutex m_mutex;
    double m_base = 0;
    Time m_baseTime{};
    double m_speed = 1;
    bool m_running = false;
    uint64_t m_generation = 0;
};

} // namespace vv
