#include "media/viewer/Clock.h"

#include <cmath>

namespace vv {

namespace {

std::chrono::steady_clock::duration seconds(double s)
{
    return std::chrono::duration_cast<std::chrono::steady_clock::duration>(std::chrono::duration<double>(s));
}

} // namespace

uint64_t Clock::start(double position, double speed)
{
    std::lock_guard lock(m_mutex);
    m_base = position;
    m_baseTime = std::chrono::steady_clock::now();
    m_speed = speed;
    m_running = true;
    return ++m_generation;
}

void Clock::stop()
{
    std::lock_guard lock(m_mutex);
    m_base = nowLocked(std::chrono::steady_clock::now());
    m_running = false;
    ++m_generation;
}

double Clock::nowLocked(Time at) const
{
    if (!m_running)
        return m_base;
    return m_base + std::chrono::duration<double>(at - m_baseTime).count() * m_speed;
}

double Clock::now() const
{
    std::lock_guard lock(m_mutex);
    return nowLocked(std::chrono::steady_clock::now());
}

void Clock::sync(uint64_t generation, double position, double tolerance)
{
    std::lock_guard lock(m_mutex);
    const Time at = std::chrono::steady_clock::now();
    if (!m_running || generation != m_generation || std::fabs(nowLocked(at) - position) <= tolerance)
        return;
    m_base = position;
    m_baseTime = at;
}

Clock::Time Clock::when(double position) const
{
    std::lock_guard lock(m_mutex);
    const Time at = std::chrono::steady_clock::now();
    const double wait = (position - nowLocked(at)) / m_speed;
    if (!m_running || wait > 3600)
        return at + std::chrono::hours(1);
    return at + seconds(std::max(0.0, wait));
}

} // namespace vv
