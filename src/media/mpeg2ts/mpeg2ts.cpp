#include "media/mpeg2ts/mpeg2ts.h"

#include "media/mpeg2ts/TakeConverter.h"

#include <atomic>
#include <cstring>
#include <mutex>

namespace {

struct Library
{
    vv::Log log;
    std::mutex mutex; // guards callback and initialised
    IMpeg2TSCallback* callback = nullptr;
    bool initialised = false;
    std::atomic<bool> cancel{false};
    std::atomic<int> lastError{MPEG2TS_ERR_NONE};
};

Library& library()
{
    static Library instance;
    return instance;
}

// UTF-32 wide text to UTF-8; empty for a null text or an invalid character.
std::string utf8(const wchar_t* text)
{
    std::string out;
    for (; text && *text; ++text) {
        const auto c = uint32_t(*text);
        if (c < 0x80) {
            out += char(c);
        } else if (c < 0x800) {
            out += char(0xC0 | c >> 6);
            out += char(0x80 | (c & 0x3F));
        } else if (c < 0x10000 && (c < 0xD800 || c > 0xDFFF)) {
            out += char(0xE0 | c >> 12);
            out += char(0x80 | (c >> 6 & 0x3F));
            out += char(0x80 | (c & 0x3F));
        } else if (c >= 0x10000 && c < 0x110000) {
            out += char(0xF0 | c >> 18);
            out += char(0x80 | (c >> 12 & 0x3F));
            out += char(0x80 | (c >> 6 & 0x3F));
            out += char(0x80 | (c & 0x3F));
        } else {
            return std::string();
        }
    }
    return out;
}

} // namespace

int MPEG2TSInit(const mpeg2ts_init_param_t* param)
{
    Library& lib = library();
    if (!param)
        return MPEG2TS_ERR_INTERNAL;
    std::lock_guard lock(lib.mutex);
    const std::string path(param->log_file_path, strnlen(param->log_file_path, sizeof param->log_file_path));
    lib.log.open(param->log_level, path, param->log_file_size > 0 ? param->log_file_size : 1024000);
    lib.callback = param->callback;
    lib.initialised = true;
    lib.cancel = false;
    lib.log.write(vv::Log::kEvent, "[MPEG2TSInit] level " + std::to_string(param->log_level));
    return MPEG2TS_ERR_NONE;
}

unsigned int ConvertMPEG2TS(const wchar_t* const* inputs, int count, const wchar_t* output,
                            const mpeg2ts_convert_params_t* params)
{
    Library& lib = library();
    IMpeg2TSCallback* callback = nullptr;
    {
        std::lock_guard lock(lib.mutex);
        if (!lib.initialised || !inputs || count <= 0 || !output || !params) {
            lib.lastError = MPEG2TS_ERR_INTERNAL;
            return MPEG2TS_RESULT_FAILED;
        }
        callback = lib.callback;
    }
    std::vector<std::string> paths;
    for (int i = 0; i < count; ++i)
        paths.push_back(utf8(inputs[i]));
    const int rc =
        mpeg2ts::TakeConverter(lib.log, lib.cancel, callback).convert(paths, utf8(output), *params);
    lib.cancel = false; // a cancel counts for the conversion running or about to run
    lib.lastError = rc == mpeg2ts::kCancelled ? MPEG2TS_ERR_NONE : rc;
    if (rc == MPEG2TS_ERR_NONE)
        return MPEG2TS_RESULT_DONE;
    return rc == mpeg2ts::kCancelled ? MPEG2TS_RESULT_CANCELLED : MPEG2TS_RESULT_FAILED;
}

void MPEG2TSCancel()
{
    library().cancel = true;
}

int MPEG2TSGetLastError()
{
    return library().lastError;
}
