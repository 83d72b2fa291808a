#pragma once

#include <string>

// Versions of the FFmpeg libraries the media layer was built against and runs with.
std::string clipwrightMediaVersions();
