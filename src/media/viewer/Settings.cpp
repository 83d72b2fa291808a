#include "media/viewer/Settings.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>

namespace vv {

namespace {

// The decimal number of a text, or fallback for a null or malformed text.
int64_t number(const char* text, int64_t fallback)
{
    if (!text || !*text)
        return fallback;
    errno = 0;
    char* end = nullptr;
    const long long value = std::strtoll(text, &end, 10);
    if (errno != 0 || end == text || *end != '\0')
        return fallback;
    return value;
}

} // namespace

Settings Settings::from(const vv_init_param_t& param)
{
    Settings s;
    s.logLevel = int(std::clamp<int64_t>(number(param.log_level, 0), 0, 3));
    s.logFileSizeKiB = std::max<int64_t>(1, number(param.log_file_size, 1024));
    s.logFilePath = param.log_file_path ? param.log_file_path : "";
    s.decodeQueue = int(std::clamp<int64_t>(number(param.max_queue_size_of_video_decode_frame, 10), 2, 60));
    s.change(param);
    return s;
}

void Settings::change(const vv_init_param_t& param)
{
    playInfoIntervalUs = std::max<int64_t>(0, number(param.video_play_info_interval, playInfoIntervalUs));
    frameDrop = number(param.video_frame_drop_flag, frameDrop ? 1 : 0) != 0;
    lowResolution = int(std::clamp<int64_t>(number(param.low_resolution, lowResolution), 0, 2));
}

} // namespace vv
