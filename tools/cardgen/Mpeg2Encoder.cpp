#include "cardgen/Mpeg2Encoder.h"

#include "cardgen/FrameCounter.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavutil/frame.h>
#include <libavutil/opt.h>
}

#include <cstring>
#include <memory>

namespace cardgen {

namespace {

struct CodecContextDeleter
{
    void operator()(AVCodecContext* c) const { avcodec_free_context(&c); }
};
struct FrameDeleter
{
    void operator()(AVFrame* f) const { av_frame_free(&f); }
};
struct PacketDeleter
{
    void operator()(AVPacket* p) const { av_packet_free(&p); }
};

constexpr uint8_t kPictureStart = 0x00;
constexpr uint8_t kGopStart = 0xB8;

// Offset of the first byte after the start code 00 00 01 <code>, or -1.
int findStartCode(const QByteArray& data, uint8_t code)
{
    const auto* p = reinterpret_cast<const uint8_t*>(data.constData());
    for (int i = 0; i + 3 < data.size(); ++i) {
        if (p[i] == 0 && p[i + 1] == 0 && p[i + 2] == 1 && p[i + 3] == code)
            return i + 4;
    }
    return -1;
}

char pictureType(const QByteArray& data)
{
    const int at = findStartCode(data, kPictureStart);
    if (at < 0 || at + 1 >= data.size())
        return '?';
    switch ((uint8_t(data[at + 1]) >> 3) & 7) {
    case 1:
        return 'I';
    case 2:
        return 'P';
    case 3:
        return 'B';
    default:
        return '?';
    }
}

// Sets the picture's temporal reference: its place in presentation order
// counted from the first picture shown of its GOP.
void setTemporalReference(QByteArray& data, int tr)
{
    const int at = findStartCode(data, kPictureStart);
    data[at] = char(tr >> 2);
    data[at + 1] = char((uint8_t(data[at + 1]) & 0x3F) | ((tr & 3) << 6));
}

void setClosedGop(QByteArray& data)
{
    const int at = findStartCode(data, kGopStart);
    if (at >= 0 && at + 3 < data.size())
        data[at + 3] = char(uint8_t(data[at + 3]) | 0x40);
}

QString avError(int code)
{
    char text[AV_ERROR_MAX_STRING_SIZE] = {};
    av_strerror(code, text, sizeof text);
    return QString::fromUtf8(text);
}

// The frame that goes to the encoder at position e: a plain mid-grey picture
// first, then the clip's frames. The grey picture is the forward reference of
// the first GOP's leading B pictures; it is coded exactly (flat blocks are pure
// DC) and equals the grey picture a decoder puts in place of a missing
// reference, and it is dropped after coding, so the first GOP decodes on its
// own.
void paintFrame(AVFrame* frame, const VideoParams& params, int e)
{
    const int chromaHeight = (params.height + 1) / 2;
    for (int plane = 1; plane <= 2; ++plane) {
        for (int y = 0; y < chromaHeight; ++y)
            std::memset(frame->data[plane] + size_t(y) * frame->linesize[plane], 128,
                        size_t((params.width + 1) / 2));
    }
    if (e == 0) {
        for (int y = 0; y < params.height; ++y)
            std::memset(frame->data[0] + size_t(y) * frame->linesize[0], 128, size_t(params.width));
    } else {
        FrameCounter::draw(frame->data[0], frame->linesize[0], params.width, params.height,
                           params.counterClip, e - 1);
    }
}

} // namespace

std::optional<CodedVideo> Mpeg2Encoder::encode(const VideoParams& params, QString* error)
{
    auto fail = [&](const QString& message) -> std::optional<CodedVideo> {
        if (error)
            *error = message;
        return std::nullopt;
    };
    const AVCodec* codec = avcodec_find_encoder(AV_CODEC_ID_MPEG2VIDEO);
    if (!codec)
        return fail(QStringLiteral("libavcodec has no MPEG-2 video encoder"));
    std::unique_ptr<AVCodecContext, CodecContextDeleter> ctx(avcodec_alloc_context3(codec));
    ctx->width = params.width;
    ctx->height = params.height;
    ctx->pix_fmt = AV_PIX_FMT_YUV420P;
    ctx->time_base = AVRational{params.rate.den, params.rate.num};
    ctx->framerate = AVRational{params.rate.num, params.rate.den};
    // 1440 x 1080 is shown at 16:9 with wide pixels.
    ctx->sample_aspect_ratio = params.width == 1440 ? AVRational{4, 3} : AVRational{1, 1};
    ctx->max_b_frames = 2;
    ctx->gop_size = 600; // the intra pictures are placed by hand below
    ctx->flags |= AV_CODEC_FLAG_QSCALE;
    ctx->global_quality = FF_QP2LAMBDA * params.quantizer;
    ctx->thread_count = 2;
    ctx->thread_type = FF_THREAD_SLICE;
    if (params.rate.interlaced) {
        ctx->flags |= AV_CODEC_FLAG_INTERLACED_DCT;
        ctx->field_order = AV_FIELD_TT;
    }
    av_opt_set_int(ctx->priv_data, "b_strategy", 0, 0);
    av_opt_set_int(ctx->priv_data, "sc_threshold", 1000000000, 0);
    int rc = avcodec_open2(ctx.get(), codec, nullptr);
    if (rc < 0)
        return fail(QStringLiteral("cannot open the MPEG-2 encoder: %1").arg(avError(rc)));

    std::unique_ptr<AVFrame, FrameDeleter> frame(av_frame_alloc());
    frame->format = AV_PIX_FMT_YUV420P;
    frame->width = params.width;
    frame->height = params.height;
    if ((rc = av_frame_get_buffer(frame.get(), 0)) < 0)
        return fail(QStringLiteral("cannot allocate a picture: %1").arg(avError(rc)));
    std::unique_ptr<AVPacket, PacketDeleter> packet(av_packet_alloc());

    std::vector<CodedPicture> coded;
    auto drain = [&]() -> int {
        for (;;) {
            const int r = avcodec_receive_packet(ctx.get(), packet.get());
            if (r == AVERROR(EAGAIN) || r == AVERROR_EOF)
                return 0;
            if (r < 0)
                return r;
            CodedPicture picture;
            picture.data = QByteArray(reinterpret_cast<const char*>(packet->data), packet->size);
            picture.type = pictureType(picture.data);
            coded.push_back(std::move(picture));
            av_packet_unref(packet.get());
        }
    };

    // Encoder position e = presentation index + 1; intra pictures at the grey
    // picture and at every GOP's third presentation position.
    for (int e = 0; e <= params.frames; ++e) {
        if ((rc = av_frame_make_writable(frame.get())) < 0)
            return fail(QStringLiteral("cannot write a picture: %1").arg(avError(rc)));
        paintFrame(frame.get(), params, e);
        frame->pts = e;
        const bool intra = e == 0 || (e >= 3 && (e - 3) % params.gop == 0);
        frame->pict_type = intra ? AV_PICTURE_TYPE_I : AV_PICTURE_TYPE_NONE;
        frame->quality = ctx->global_quality;
        frame->interlaced_frame = params.rate.interlaced ? 1 : 0;
        frame->top_field_first = params.rate.interlaced ? 1 : 0;
        if ((rc = avcodec_send_frame(ctx.get(), frame.get())) < 0 || (rc = drain()) < 0)
            return fail(QStringLiteral("MPEG-2 encoding failed: %1").arg(avError(rc)));
    }
    if ((rc = avcodec_send_frame(ctx.get(), nullptr)) < 0 || (rc = drain()) < 0)
        return fail(QStringLiteral("MPEG-2 encoding failed: %1").arg(avError(rc)));

    // Drop the grey picture and check that the rest has the camera's layout.
    if (coded.size() != size_t(params.frames) + 1 || coded.front().type != 'I')
        return fail(QStringLiteral("the encoder did not produce one picture per frame"));
    CodedVideo video;
    video.params = params;
    video.pictures.assign(std::make_move_iterator(coded.begin() + 1), std::make_move_iterator(coded.end()));
    for (int first = 0; first < params.frames; first += params.gop) {
        const int n = std::min(params.gop, params.frames - first);
        video.chunkFrames.push_back(n);
        for (int p = 0; p < n; ++p) {
            CodedPicture& picture = video.pictures[size_t(first + p)];
            const char expected = p == 0 ? 'I' : (p % 3 == 0 ? 'P' : 'B');
            if (picture.type != expected)
                return fail(QStringLiteral("unexpected picture type %1 at frame %2")
                                .arg(QChar(picture.type))
                                .arg(first + p));
            picture.display = CodedVideo::displayIndex(first, p);
            setTemporalReference(picture.data, picture.display - first);
        }
    }
    setClosedGop(video.pictures.front().data);
    return video;
}

bool Mpeg2Encoder::setGopTimeCode(QByteArray& picture, const TimeCode& tc)
{
    const int at = findStartCode(picture, kGopStart);
    if (at < 0 || at + 3 >= picture.size())
        return false;
    // drop_frame_flag, hours (5), minutes (6), marker, seconds (6), pictures (6),
    // then closed_gop and broken_link, which are kept.
    const uint32_t flags = uint8_t(picture[at + 3]) & 0x7F;
    const uint32_t bits = uint32_t(tc.dropFrame) << 31 | uint32_t(tc.hours) << 26 |
                          uint32_t(tc.minutes) << 20 | 1u << 19 | uint32_t(tc.seconds) << 13 |
                          uint32_t(tc.frames) << 7 | flags;
    for (int i = 0; i < 4; ++i)
        picture[at + i] = char(bits >> (24 - 8 * i));
    return true;
}

} // namespace cardgen
