#include "media/viewer/Log.h"

#include <chrono>
#include <ctime>

namespace vv {

Log::~Log()
{
    close();
}

void Log::open(int level, const std::string& path, int64_t limitBytes)
{
    std::lock_guard lock(m_mutex);
    if (m_file)
        std::fclose(m_file);
    m_file = nullptr;
    m_level = 0;
    if (level <= 0 || path.empty())
        return;
    m_file = std::fopen(path.c_str(), "a");
    if (!m_file)
        return;
    m_path = path;
    m_limit = limitBytes;
    m_level = level;
}

void Log::close()
{
    open(0, std::string(), 0);
}

void Log::write(int level, const std::string& text)
{
    if (!enabled(level))
        return;
    std::lock_guard lock(m_mutex);
    if (!m_file)
        return;
    const auto now = std::chrono::system_clock::now();
    const std::time_t seconds = std::chrono::system_clock::to_time_t(now);
    const int millis =
        int(std::chrono::duration_cast<std::chrono::milliseconds>(now.time_since_epoch()).count() % 1000);
    std::tm local{};
    localtime_r(&seconds, &local);
    char stamp[32];
    std::strftime(stamp, sizeof stamp, "%Y-%m-%d %H:%M:%S", &local);
    std::fprintf(m_file, "%s.%03d %s\n", stamp, millis, text.c_str());
    std::fflush(m_file);
    if (std::ftell(m_file) > m_limit) {
        std::fclose(m_file);
        std::rename(m_path.c_str(), (m_path + ".old").c_str());
        m_file = std::fopen(m_path.c_str(), "a");
    }
}

} // namespace vv
