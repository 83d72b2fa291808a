#include "media/viewer/FFmpegUtil.h"

#include "media/viewer/vv.h"

#include <sys/stat.h>
#include <unistd.h>

namespace vv {

int openInput(const char* path, FormatPtr& out)
{
    struct stat st = {};
    if (stat(path, &st) != 0 || !S_ISREG(st.st_mode) || access(path, R_OK) != 0)
        return VV_ERR_FILE;
    // The files are MP4: no probing, so that a damaged file is never taken for another format.
    const AVInputFormat* mp4 = av_find_input_format("mov");
    AVFormatContext* f = nullptr;
    if (avformat_open_input(&f, path, mp4, nullptr) < 0)
        return VV_ERR_FORMAT;
    out.reset(f);
    return VV_OK;
}

} // namespace vv
