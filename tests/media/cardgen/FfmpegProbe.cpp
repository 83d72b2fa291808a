#include "FfmpegProbe.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libswscale/swscale.h>
}

#include <cmath>
#include <cstdlib>

namespace {

// Scales a decoded picture to gray at 1/divisor of its size and reads the counter.
std::optional<cardgen::FrameCounterValue> readScaled(const AVFrame* frame, int divisor)
{
    const int w = frame->width / divisor;
    const int h = frame->height / divisor;
    SwsContext* sws = sws_getContext(frame->width, frame->height, AVPixelFormat(frame->format), w, h,
                                     AV_PIX_FMT_GRAY8, SWS_BILINEAR, nullptr, nullptr, nullptr);
    std::vector<uint8_t> gray(size_t(w) * h);
    uint8_t* dst[4] = {gray.data(), nullptr, nullptr, nullptr};
    int dstStride[4] = {w, 0, 0, 0};
    sws_scale(sws, frame->data, frame->linesize, 0, frame->height, dst, dstStride);
    sws_freeContext(sws);
    return cardgen::FrameCounter::read(gray.data(), w, w, h);
}

double meanLumaError(const AVFrame* frame, int counterClip, int index)
{
    std::vector<uint8_t> expected(size_t(frame->width) * frame->height);
    cardgen::FrameCounter::draw(expected.data(), frame->width, frame->width, frame->height, counterClip,
                                index);
    long long sum = 0;
    for (int y = 0; y < frame->height; ++y) {
        const uint8_t* row = frame->data[0] + size_t(y) * frame->linesize[0];
        for (int x = 0; x < frame->width; ++x)
            sum += std::abs(int(row[x]) - int(expected[size_t(y) * frame->width + x]));
    }
    return double(sum) / (double(frame->width) * frame->height);
}

} // namespace

FfmpegProbe FfmpegProbe::run(const QString& path, int counterClip)
{
    FfmpegProbe probe;
    AVFormatContext* fmt = nullptr;
    if (avformat_open_input(&fmt, path.toUtf8().constData(), nullptr, nullptr) < 0)
        return probe;
    if (avformat_find_stream_info(fmt, nullptr) < 0) {
        avformat_close_input(&fmt);
        return probe;
    }
    const int videoIndex = av_find_best_stream(fmt, AVMEDIA_TYPE_VIDEO, -1, -1, nullptr, 0);
    if (videoIndex < 0) {
        avformat_close_input(&fmt);
        return probe;
    }
    probe.opened = true;
    AVStream* vs = fmt->streams[videoIndex];
    probe.videoCodec = QString::fromLatin1(avcodec_get_name(vs->codecpar->codec_id));
    probe.width = vs->codecpar->width;
    probe.height = vs->codecpar->height;
    probe.frameRateNum = vs->avg_frame_rate.num;
    probe.frameRateDen = vs->avg_frame_rate.den;
    probe.streamFrames = vs->nb_frames;

    std::vector<int> audioIndex(fmt->nb_streams, -1);
    for (unsigned i = 0; i < fmt->nb_streams; ++i) {
        const AVCodecParameters* p = fmt->streams[i]->codecpar;
        if (p->codec_type != AVMEDIA_TYPE_AUDIO)
            continue;
        audioIndex[i] = int(probe.audio.size());
        Audio a;
        a.codec = QString::fromLatin1(avcodec_get_name(p->codec_id));
        a.sampleRate = p->sample_rate;
        a.channels = p->ch_layout.nb_channels;
        a.zeroCrossings.assign(size_t(a.channels), 0);
        probe.audio.push_back(a);
    }
    std::vector<std::vector<int>> lastSign(probe.audio.size());
    for (size_t i = 0; i < probe.audio.size(); ++i)
        lastSign[i].assign(size_t(probe.audio[i].channels), 0);

    const AVCodec* codec = avcodec_find_decoder(vs->codecpar->codec_id);
    AVCodecContext* ctx = avcodec_alloc_context3(codec);
    avcodec_parameters_to_context(ctx, vs->codecpar);
    avcodec_open2(ctx, codec, nullptr);
    AVPacket* packet = av_packet_alloc();
    AVFrame* frame = av_frame_alloc();
    auto receive = [&]() {
        while (avcodec_receive_frame(ctx, frame) == 0) {
            const int index = probe.decodedFrames++;
            if (frame->interlaced_frame)
                ++probe.interlacedFrames;
            probe.counters.push_back({readScaled(frame, 1), readScaled(frame, 2), readScaled(frame, 4)});
            probe.lumaError.push_back(meanLumaError(frame, counterClip, index));
            av_frame_unref(frame);
        }
    };
    while (av_read_frame(fmt, packet) >= 0) {
        if (packet->stream_index == videoIndex) {
            avcodec_send_packet(ctx, packet);
            receive();
        } else if (audioIndex[size_t(packet->stream_index)] >= 0) {
            // 16-bit big-endian PCM: count samples and the sign changes per channel.
            const size_t a = size_t(audioIndex[size_t(packet->stream_index)]);
            Audio& audio = probe.audio[a];
            const int step = 2 * audio.channels;
            audio.samples += packet->size / step;
            for (int at = 0; at + step <= packet->size; at += step) {
                for (int c = 0; c < audio.channels; ++c) {
                    const auto v = int16_t(packet->data[at + 2 * c] << 8 | packet->data[at + 2 * c + 1]);
                    const int sign = v > 0 ? 1 : v < 0 ? -1 : 0;
                    if (sign != 0 && lastSign[a][size_t(c)] != 0 && sign != lastSign[a][size_t(c)])
                        ++audio.zeroCrossings[size_t(c)];
                    if (sign != 0)
                        lastSign[a][size_t(c)] = sign;
                }
            }
        }
        av_packet_unref(packet);
    }
    avcodec_send_packet(ctx, nullptr);
    receive();
    av_frame_free(&frame);
    av_packet_free(&packet);
    avcodec_free_context(&ctx);
    avformat_close_input(&fmt);
    return probe;
}
