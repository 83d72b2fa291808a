#pragma once

#include "media/viewer/vv.h"

#include <cstdint>
#include <string>

namespace vv {

// The numbers of the initialisation block that this library uses.
struct Settings
{
    int logLevel = 0;
    int64_t logFileSizeKiB = 1024;
    std::string logFilePath;
    int64_t playInfoIntervalUs = 100000;
    bool frameDrop = true;
    int lowResolution = 0;
    int decodeQueue = 10;

    static Settings from(const vv_init_param_t& param);
    // Takes the fields that may change while running; null texts keep theirs.
    void change(const vv_init_param_t& param);
};

} // namespace vv
