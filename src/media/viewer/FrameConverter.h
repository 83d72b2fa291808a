#pragma once

#include "media/viewer/FFmpegUtil.h"

#include <cstdint>

namespace vv {

// Scales decoded pictures into packed RGB pixels (libswscale), keeping its
// scaler between pictures of the same geometry.
class FrameConverter
{
public:
    // How pictures are reduced: SWS_AREA for thumbnails (many pixels into
    // one), SWS_FAST_BILINEAR where speed counts (playback at half or quarter).
    explicit FrameConverter(int scaling) : m_scaling(scaling) {}

    // format: AV_PIX_FMT_BGRA (bytes B, G, R, A) or AV_PIX_FMT_BGR24.
    bool convert(const AVFrame* source, int width, int height, AVPixelFormat format, uint8_t* pixels,
                 int stride);

    // The display aspect ratio of a decoded picture (square pixels when the
    // stream does not say).
    static AVRational displayAspect(const AVFrame* frame);

private:
    int m_scaling;
    SwsPtr m_sws;
};

} // namespace vv
