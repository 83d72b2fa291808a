#pragma once

#include <atomic>
#include <cstdint>
#include <cstdio>
#include <mutex>
#include <string>

namespace vv {

// The library's own log file: one line per event with the date and time,
// kept under a size limit by renaming a full file to "<path>.old".
class Log
{
public:
    static constexpr int kError = 1;
    static constexpr int kEvent = 2;
    static constexpr int kDetail = 3;

    ~Log();
    // Level 0, or an empty path, turns the log off.
    void open(int level, const std::string& path, int64_t limitBytes);
    void close();
    bool enabled(int level) const { return level <= m_level; }
    void write(int level, const std::string& text);

private:
    std::mutex m_mutex;
    FILE* m_file = nullptr;
    std::string m_path;
    int64_t m_limit = 0;
    std::atomic<int> m_level{0};
};

} // namespace vv
