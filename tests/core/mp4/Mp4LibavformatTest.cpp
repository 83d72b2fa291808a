// Cross-check of the builder and the reader against FFmpeg: a file of real
// MPEG-2 pictures passes the checker, and libavformat finds the same
// pictures at the same places and decodes them.
#include "Mp4TestSupport.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

#include <memory>

using cwtest::Mp4Builder;
using cwtest::Mp4Track;

namespace {

struct Encoded
{
    QList<QByteArray> pictures; // in stored (decoding) order
    QByteArray types;           // 'I', 'P' or 'B' per picture
};

// Encodes frames of a moving gradient as interlaced 29.97 MPEG-2 with two B pictures per anchor.
Encoded encodeMpeg2(int width, int height, int frames)
{
    Encoded out;
    const AVCodec* codec = avcodec_find_encoder(AV_CODEC_ID_MPEG2VIDEO);
    if (!codec)
        return out;
    std::unique_ptr<AVCodecContext, void (*)(AVCodecContext*)> ctx(
        avcodec_alloc_context3(codec), [](AVCodecContext* c) { avcodec_free_context(&c); });
    ctx->width = width;
    ctx->height = height;
    ctx->pix_fmt = AV_PIX_FMT_YUV420P;
    ctx->time_base = {1001, 30000};
    ctx->framerate = {30000, 1001};
    ctx->gop_size = 6;
    ctx->max_b_frames = 2;
    ctx->bit_rate = 25000000;
    ctx->sample_aspect_ratio = {4, 3}; // 1440 x 1080 shown as 16:9
    ctx->flags |= AV_CODEC_FLAG_INTERLACED_DCT | AV_CODEC_FLAG_INTERLACED_ME;
    if (avcodec_open2(ctx.get(), codec, nullptr) < 0)
        return out;
    AVFrame* frame = av_frame_alloc();
    AVPacket* packet = av_packet_alloc();
    frame->format = ctx->pix_fmt;
    frame->width = width;
    frame->height = height;
    av_frame_get_buffer(frame, 0);
    auto drain = [&] {
        while (avcodec_receive_packet(ctx.get(), packet) == 0) {
            const QByteArray data(reinterpret_cast<const char*>(packet->data), packet->size);
            out.pictures.append(data);
            // picture_coding_type: 3 bits after the 10-bit temporal reference.
            const qsizetype at = data.indexOf(QByteArray("\x00\x00\x01\x00", 4));
            const int type = at < 0 ? 0 : (quint8(data[at + 5]) >> 3) & 7;
            out.types += type == 1 ? 'I' : type == 2 ? 'P' : 'B';
            av_packet_unref(packet);
        }
    };
    for (int i = 0; i < frames; ++i) {
        av_frame_make_writable(frame);
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                frame->data[0][y * frame->linesize[0] + x] = quint8(x + y + 8 * i);
        for (int p = 1; p < 3; ++p)
            for (int y = 0; y < height / 2; ++y)
                memset(frame->data[p] + y * frame->linesize[p], 128 + p * 10, width / 2);
        frame->pts = i;
        avcodec_send_frame(ctx.get(), frame);
        drain();
    }
    avcodec_send_frame(ctx.get(), nullptr);
    drain();
    av_packet_free(&packet);
    av_frame_free(&frame);
    return out;
}

} // namespace

TEST_F(Mp4Test, RealMpeg2FilePassesAndLibavformatAgrees)
{
    const Encoded encoded = encodeMpeg2(1440, 1080, 12);
    ASSERT_EQ(encoded.pictures.size(), 12) << "mpeg2video encoder of libavcodec";
    ASSERT_EQ(encoded.types.at(0), 'I');
    ASSERT_TRUE(encoded.types.contains('B'));

    // Two chunks of six stored pictures, one audio chunk of PCM per video chunk.
    Mp4Builder b;
    Mp4Track video;
    video.width = 1440;
    video.height = 1080;
    video.maxBitrate = 25000000;
    for (int c = 0; c < 2; ++c) {
        QByteArray deps;
        for (char t : encoded.types.mid(c * 6, 6))
            deps += t == 'I' ? cwtest::kDepI : t == 'P' ? cwtest::kDepP : cwtest::kDepB;
        video.addVideoChunk(encoded.pictures.mid(c * 6, 6), deps);
    }
    b.tracks << video;
    b.tracks << Mp4Builder::audioTrack("twos", 2, {9610, 9610});
    const QByteArray file = write(b.boxes());

    CCreatePPT ppt;
    ASSERT_EQ(ppt.blCheckMP4(file.constData()), 1) << ppt.getErrorText();
    EXPECT_EQ(ppt.ulGetNumOfFrame(), 12u);
    EXPECT_EQ(ppt.getWidth(), 4);
    EXPECT_EQ(ppt.getHeight(), 7);
    EXPECT_EQ(ppt.getAspect(), 4);
    EXPECT_EQ(ppt.getFPS(), 9) << "interlaced 29.97";
    QString text;
    ppt.getVideoFormatXMLParam(text);
    EXPECT_EQ(text, "MPEG2HD25CBR_1440_1080_MP@H-14");

    AVFormatContext* format = nullptr;
    ASSERT_EQ(avformat_open_input(&format, file.constData(), nullptr, nullptr), 0);
    std::unique_ptr<AVFormatContext*, void (*)(AVFormatContext**)> closer(&format, avformat_close_input);
    ASSERT_GE(avformat_find_stream_info(format, nullptr), 0);
    ASSERT_EQ(format->nb_streams, 2u);
    const AVCodecParameters* v = format->streams[0]->codecpar;
    EXPECT_EQ(v->codec_id, AV_CODEC_ID_MPEG2VIDEO);
    EXPECT_EQ(v->width, 1440);
    EXPECT_EQ(v->height, 1080);
    const AVCodecParameters* a = format->streams[1]->codecpar;
    EXPECT_EQ(a->codec_id, AV_CODEC_ID_PCM_S16BE);
    EXPECT_EQ(a->ch_layout.nb_channels, 2);
    EXPECT_EQ(a->sample_rate, 48000);

    const AVCodec* decoder = avcodec_find_decoder(AV_CODEC_ID_MPEG2VIDEO);
    std::unique_ptr<AVCodecContext, void (*)(AVCodecContext*)> dec(
        avcodec_alloc_context3(decoder), [](AVCodecContext* c) { avcodec_free_context(&c); });
    ASSERT_GE(avcodec_parameters_to_context(dec.get(), v), 0);
    ASSERT_EQ(avcodec_open2(dec.get(), decoder, nullptr), 0);
    AVPacket* packet = av_packet_alloc();
    AVFrame* picture = av_frame_alloc();
    int videoPackets = 0;
    int decoded = 0;
    quint64 offset = b.chunkOffset(0, 0);
    while (av_read_frame(format, packet) >= 0) {
        if (packet->stream_index == 0) {
            ASSERT_LT(videoPackets, 12);
            EXPECT_EQ(packet->size, encoded.pictures[videoPackets].size()) << videoPackets;
            if (videoPackets == 6)
                offset = b.chunkOffset(0, 1);
            EXPECT_EQ(quint64(packet->pos), offset) << videoPackets;
            offset += quint64(packet->size);
            ++videoPackets;
            EXPECT_EQ(avcodec_send_packet(dec.get(), packet), 0);
            while (avcodec_receive_frame(dec.get(), picture) == 0) {
                EXPECT_EQ(picture->width, 1440);
                EXPECT_EQ(picture->height, 1080);
                ++decoded;
            }
        }
        av_packet_unref(packet);
    }
    avcodec_send_packet(dec.get(), nullptr);
    while (avcodec_receive_frame(dec.get(), picture) == 0)
        ++decoded;
    av_frame_free(&picture);
    av_packet_free(&packet);
    EXPECT_EQ(videoPackets, 12);
    EXPECT_EQ(decoded, 12);
}
