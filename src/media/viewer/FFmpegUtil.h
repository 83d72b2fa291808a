#pragma once

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libswresample/swresample.h>
#include <libswscale/swscale.h>
}

#include <memory>

namespace vv {

// Owning pointers for the FFmpeg objects the library keeps.
struct FormatCloser
{
    void operator()(AVFormatContext* f) const { avformat_close_input(&f); }
};
struct CodecFreer
{
    void operator()(AVCodecContext* c) const { avcodec_free_context(&c); }
};
struct FrameFreer
{
    void operator()(AVFrame* f) const { av_frame_free(&f); }
};
struct PacketFreer
{
    void operator()(AVPacket* p) const { av_packet_free(&p); }
};
struct SwsFreer
{
    void operator()(SwsContext* s) const { sws_freeContext(s); }
};
struct SwrFreer
{
    void operator()(SwrContext* s) const { swr_free(&s); }
};

using FormatPtr = std::unique_ptr<AVFormatContext, FormatCloser>;
using CodecPtr = std::unique_ptr<AVCodecContext, CodecFreer>;
using FramePtr = std::unique_ptr<AVFrame, FrameFreer>;
using PacketPtr = std::unique_ptr<AVPacket, PacketFreer>;
using SwsPtr = std::unique_ptr<SwsContext, SwsFreer>;
using SwrPtr = std::unique_ptr<SwrContext, SwrFreer>;

inline FramePtr makeFrame()
{
    return FramePtr(av_frame_alloc());
}
inline PacketPtr makePacket()
{
    return PacketPtr(av_packet_alloc());
}

// Returned by the readers' decode and read calls at the end of their input
// (beside VV_OK and the negative VV_ERR_ codes).
constexpr int kEnd = 1;

// Rounds a * b / c to the nearest integer (c > 0), on 64-bit integers.
inline int64_t rescale(int64_t a, int64_t b, int64_t c)
{
    return av_rescale_rnd(a, b, c, AV_ROUND_NEAR_INF);
}

// Opens an MP4 file for reading; VV_OK, VV_ERR_FILE (missing, unreadable) or
// VV_ERR_FORMAT (not an MP4 file libavformat can read).
int openInput(const char* path, FormatPtr& out);

} // namespace vv
