#pragma once

#include "media/viewer/FrameConverter.h"
#include "media/viewer/vv.h"

#include <string>
#include <vector>

namespace vv {

// Thumbnails: one decoded frame of a take, scaled to thumbnail size, with the
// take's status mark.
class Thumbnailer
{
public:
    static constexpr int kWidth = 160;

    // vv_get_thumbnail.
    static int make(const std::vector<std::string>& paths, int64_t frame, int icon, vv_bitmap_t& out);
    // A 24-bit thumbnail of a decoded picture, as high as its display aspect asks.
    static int fromFrame(const AVFrame* frame, FrameConverter& converter, vv_bitmap_t& out);
};

} // namespace vv
