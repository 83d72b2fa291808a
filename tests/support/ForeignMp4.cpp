#include "support/ForeignMp4.h"

#include "cardgen/FrameCounter.h"

#include <cstring>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

namespace cwtest {

bool writeForeignMp4(const std::string& path, int frames, int counterClip)
{
    AVFormatContext* out = nullptr;
    if (avformat_alloc_output_context2(&out, nullptr, "mp4", path.c_str()) < 0)
        return false;
    const AVCodec* codec = avcodec_find_encoder(AV_CODEC_ID_MPEG2VIDEO);
    AVCodecContext* enc = avcodec_alloc_context3(codec);
    enc->width = 320;
    enc->height = 180;
    enc->pix_fmt = AV_PIX_FMT_YUV420P;
    enc->time_base = AVRational{1001, 30000};
    enc->framerate = AVRational{30000, 1001};
    enc->gop_size = 12;
    enc->max_b_frames = 2;
    enc->flags |= AV_CODEC_FLAG_QSCALE | AV_CODEC_FLAG_GLOBAL_HEADER;
    enc->global_quality = FF_QP2LAMBDA * 3;
    bool ok = avcodec_open2(enc, codec, nullptr) >= 0;
    AVStream* stream = avformat_new_stream(out, nullptr);
    ok = ok && avcodec_parameters_from_context(stream->codecpar, enc) >= 0;
    stream->time_base = enc->time_base;
    ok = ok && avio_open(&out->pb, path.c_str(), AVIO_FLAG_WRITE) >= 0 &&
         avformat_write_header(out, nullptr) >= 0;
    AVFrame* frame = av_frame_alloc();
    frame->format = AV_PIX_FMT_YUV420P;
    frame->width = enc->width;
    frame->height = enc->height;
    ok = ok && av_frame_get_buffer(frame, 0) >= 0;
    AVPacket* packet = av_packet_alloc();
    const auto drain = [&] {
        while (avcodec_receive_packet(enc, packet) == 0) {
            av_packet_rescale_ts(packet, enc->time_base, stream->time_base);
            packet->stream_index = stream->index;
            ok = av_interleaved_write_frame(out, packet) >= 0 && ok;
        }
    };
    for (int i = 0; ok && i < frames; ++i) {
        ok = av_frame_make_writable(frame) >= 0;
        cardgen::FrameCounter::draw(frame->data[0], frame->linesize[0], frame->width, frame->height,
                                    counterClip, i);
        for (int plane = 1; plane <= 2; ++plane)
            std::memset(frame->data[plane], 128, size_t(frame->linesize[plane]) * size_t(frame->height / 2));
        frame->pts = i;
        frame->quality = enc->global_quality;
        ok = ok && avcodec_send_frame(enc, frame) >= 0;
        drain();
    }
    avcodec_send_frame(enc, nullptr);
    drain();
    ok = ok && av_write_trailer(out) >= 0;
    avio_closep(&out->pb);
    avformat_free_context(out);
    av_packet_free(&packet);
    av_frame_free(&frame);
    avcodec_free_context(&enc);
    return ok;
}

} // namespace cwtest
