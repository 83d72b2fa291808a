// MP4 files not laid out as the camera does (written by libavformat: an edit
// list, a first GOP without leading pictures, the last sample's duration
// missing from the track's) are positioned frame-accurately too.
#include "ViewerSession.h"

#include <QTemporaryDir>

#include <cstring>

#include <gtest/gtest.h>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

using namespace vvtest;

namespace {

constexpr int kCounterClip = 7;

// Codes counter pictures with libavcodec's MPEG-2 encoder (open GOPs of 12
// with two B pictures) into an MP4 file written by libavformat.
bool writeForeignMp4(const std::string& path, int frames)
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
                                    kCounterClip, i);
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

} // namespace

TEST(ForeignMp4, EveryFrameIsFoundAndStepsAreExact)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("FOREIGN.MP4"));
    ASSERT_TRUE(writeForeignMp4(path.toStdString(), 45));
    const QByteArray utf8 = path.toUtf8();
    const char* paths[] = {utf8.constData(), utf8.constData()};

    // Backwards, so that every thumbnail needs a seek of its own.
    for (int64_t frame = 89; frame >= 0; --frame) {
        vv_bitmap_t bitmap{};
        ASSERT_EQ(vv_get_thumbnail(paths, 2, frame, VV_ICON_NONE, &bitmap), VV_OK) << "frame " << frame;
        EXPECT_EQ(readCounter(bitmap), (cardgen::FrameCounterValue{kCounterClip, int(frame % 45)}))
            << "frame " << frame;
        vv_bitmap_free(&bitmap);
    }

    ViewerSession viewer(InitParam().set(InitParam::kPlayInfoInterval, "0"));
    vv_av_info_t info{};
    ASSERT_EQ(vv_set_av_info(paths, 2, &info), VV_OK);
    EXPECT_EQ(info.total_frames, 90);
    EXPECT_EQ(info.frame_rate_num, 30000);
    EXPECT_EQ(info.frame_rate_den, 1001);
    ASSERT_TRUE(viewer.job([] { return vv_show_frame(42, 0); }));
    for (int64_t frame = 43; frame <= 48; ++frame) {
        ASSERT_TRUE(viewer.job(vv_plus_one_frame));
        EXPECT_EQ(viewer.pictures().back().frame, frame);
        EXPECT_EQ(viewer.pictures().back().counter,
                  (cardgen::FrameCounterValue{kCounterClip, int(frame % 45)}));
    }
    for (int64_t frame = 47; frame >= 34; --frame) {
        ASSERT_TRUE(viewer.job(vv_minus_one_frame));
        EXPECT_EQ(viewer.pictures().back().frame, frame);
        EXPECT_EQ(viewer.pictures().back().counter,
                  (cardgen::FrameCounterValue{kCounterClip, int(frame % 45)}));
    }
}
