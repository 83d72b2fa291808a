#include "media/viewer/FrameConverter.h"

#include <limits>

namespace vv {

bool FrameConverter::convert(const AVFrame* source, int width, int height, AVPixelFormat format,
                             uint8_t* pixels, int stride)
{
    if (!source || source->width <= 0 || source->height <= 0 || width <= 0 || height <= 0)
        return false;
    const int flags = width == source->width && height == source->height ? SWS_POINT : m_scaling;
    SwsContext* sws =
        sws_getCachedContext(m_sws.release(), source->width, source->height, AVPixelFormat(source->format),
                             width, height, format, flags, nullptr, nullptr, nullptr);
    m_sws.reset(sws);
    if (!sws)
        return false;
    uint8_t* planes[4] = {pixels, nullptr, nullptr, nullptr};
    const int strides[4] = {stride, 0, 0, 0};
    return sws_scale(sws, source->data, source->linesize, 0, source->height, planes, strides) == height;
}

AVRational FrameConverter::displayAspect(const AVFrame* frame)
{
    AVRational sar = frame->sample_aspect_ratio;
    if (sar.num <= 0 || sar.den <= 0)
        sar = AVRational{1, 1};
    AVRational dar{0, 1};
    av_reduce(&dar.num, &dar.den, int64_t(frame->width) * sar.num, int64_t(frame->height) * sar.den,
              std::numeric_limits<int>::max());
    return dar;
}

} // namespace vv
