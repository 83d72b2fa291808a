#include "media/viewer/VideoClip.h"

#include "media/viewer/vv.h"

#include <algorithm>
#include <limits>
#include <map>

namespace vv {

namespace {

// Packets read to find the first frame's time stamp: a GOP is far shorter.
constexpr size_t kProbePackets = 300;
// Narrowest picture a still is decoded at (twice the thumbnail width).
constexpr int kStillWidth = 320;
// Index entries that decide the frame duration.
constexpr int kRateSamples = 64;

int64_t floorDiv(int64_t a, int64_t b)
{
    return a / b - ((a % b != 0) && ((a < 0) != (b < 0)) ? 1 : 0);
}

} // namespace

int VideoClip::open(const std::string& path, Use use, std::unique_ptr<VideoClip>& out)
{
    std::unique_ptr<VideoClip> clip(new VideoClip);
    clip->m_path = path;
    clip->m_use = use;
    if (const int rc = openInput(path.c_str(), clip->m_format); rc != VV_OK)
        return rc;
    AVFormatContext* format = clip->m_format.get();
    const int index = av_find_best_stream(format, AVMEDIA_TYPE_VIDEO, -1, -1, nullptr, 0);
    if (index < 0)
        return VV_ERR_FORMAT;
    for (unsigned i = 0; i < format->nb_streams; ++i)
        format->streams[i]->discard = int(i) == index ? AVDISCARD_DEFAULT : AVDISCARD_ALL;
    AVStream* stream = format->streams[index];
    clip->m_stream = stream;
    if (!avcodec_find_decoder(stream->codecpar->codec_id) || stream->codecpar->width <= 0 ||
        stream->codecpar->height <= 0)
        return VV_ERR_FORMAT;

    // Frames: the samples whose data lies inside the file (a cut file keeps
    // its index but loses the samples at its end). The frame duration is the
    // usual step between decoding times (the last sample's duration may be
    // missing from the track's).
    const int64_t fileSize = format->pb ? avio_size(format->pb) : -1;
    const int entries = avformat_index_get_entries_count(stream);
    int64_t frames = 0;
    std::map<int64_t, int> steps;
    for (int i = 0; i < entries; ++i) {
        const AVIndexEntry* e = avformat_index_get_entry(stream, i);
        if (i > 0 && i <= kRateSamples)
            ++steps[e->timestamp - avformat_index_get_entry(stream, i - 1)->timestamp];
        if (fileSize >= 0 && e->pos + e->size > fileSize)
            continue;
        ++frames;
        if (e->flags & AVINDEX_KEYFRAME)
            clip->m_keys.push_back({e->timestamp, 0});
    }
    if (frames == 0 || clip->m_keys.empty())
        return VV_ERR_FORMAT;
    clip->m_frameCount = frames;

    const auto usual = std::max_element(steps.begin(), steps.end(),
                                        [](const auto& a, const auto& b) { return a.second < b.second; });
    AVRational rate = stream->avg_frame_rate;
    if (usual != steps.end() && usual->first > 0) {
        clip->m_frameDuration = usual->first;
    } else if (rate.num > 0 && rate.den > 0) {
        clip->m_frameDuration = std::max<int64_t>(1, av_rescale_q(1, av_inv_q(rate), stream->time_base));
    } else {
        return VV_ERR_FORMAT;
    }
    av_reduce(&rate.num, &rate.den, stream->time_base.den,
              int64_t(stream->time_base.num) * clip->m_frameDuration, std::numeric_limits<int>::max());
    clip->m_rate = rate;
    out = std::move(clip);
    return VV_OK;
}

int VideoClip::width() const
{
    return m_stream->codecpar->width;
}

int VideoClip::height() const
{
    return m_stream->codecpar->height;
}

int64_t VideoClip::frameOf(int64_t pts) const
{
    return floorDiv(pts - m_origin + m_frameDuration / 2, m_frameDuration);
}

// Reads the first GOP from the start of the file: the smallest presentation
// time stamp is frame 0, and the first key frame gives the composition offset
// that places the other key frames. The packets read are kept for decoding.
int VideoClip::probe()
{
    if (m_probed)
        return VV_OK;
    int64_t origin = std::numeric_limits<int64_t>::max();
    bool keySeen = false;
    while (m_pending.size() < kProbePackets) {
        PacketPtr packet;
        if (readFromFile(packet) != VV_OK)
            break;
        const bool key = packet->flags & AV_PKT_FLAG_KEY;
        if (key && keySeen) {
            m_pending.push_back(std::move(packet));
            break;
        }
        const int64_t pts = packet->pts != AV_NOPTS_VALUE ? packet->pts : packet->dts;
        if (key && !keySeen && packet->pts != AV_NOPTS_VALUE && packet->dts != AV_NOPTS_VALUE)
            m_keyOffset = packet->pts - packet->dts;
        keySeen = keySeen || key;
        if (pts != AV_NOPTS_VALUE)
            origin = std::min(origin, pts);
        m_pending.push_back(std::move(packet));
    }
    if (origin == std::numeric_limits<int64_t>::max())
        return VV_ERR_FORMAT;
    m_origin = origin;
    for (Key& key : m_keys)
        key.frame = frameOf(key.dts + m_keyOffset);
    m_probed = true;
    m_target = 0;
    return VV_OK;
}

int VideoClip::openDecoder()
{
    if (m_decoder)
        return VV_OK;
    const AVCodec* codec = avcodec_find_decoder(m_stream->codecpar->codec_id);
    CodecPtr decoder(avcodec_alloc_context3(codec));
    if (!decoder)
        return VV_ERR_MEMORY;
    if (avcodec_parameters_to_context(decoder.get(), m_stream->codecpar) < 0)
        return VV_ERR_FORMAT;
    decoder->pkt_timebase = m_stream->time_base;
    decoder->thread_count = 0;
    decoder->thread_type = m_use == Use::Playback ? FF_THREAD_FRAME : FF_THREAD_SLICE;
    // A still picture for a thumbnail needs far fewer pixels: decoders that
    // can (MPEG-2 can) work at a half, quarter or eighth of the size.
    if (m_use == Use::Still) {
        while (decoder->lowres < codec->max_lowres && (width() >> (decoder->lowres + 1)) >= kStillWidth)
            ++decoder->lowres;
    }
    if (avcodec_open2(decoder.get(), codec, nullptr) < 0)
        return VV_ERR_FORMAT;
    m_decoder = std::move(decoder);
    m_inputEnded = false;
    return VV_OK;
}

int VideoClip::readPacket(PacketPtr& out)
{
    if (!m_pending.empty()) {
        out = std::move(m_pending.front());
        m_pending.pop_front();
        return VV_OK;
    }
    return readFromFile(out);
}

int VideoClip::readFromFile(PacketPtr& out)
{
    PacketPtr packet = makePacket();
    if (!packet)
        return VV_ERR_MEMORY;
    for (;;) {
        if (av_read_frame(m_format.get(), packet.get()) < 0)
            return kEnd;
        if (packet->stream_index == m_stream->index)
            break;
        av_packet_unref(packet.get());
    }
    out = std::move(packet);
    return VV_OK;
}

size_t VideoClip::keyAtOrBefore(int64_t frame) const
{
    size_t k = 0;
    for (size_t i = 0; i < m_keys.size(); ++i) {
        if (m_keys[i].frame <= frame)
            k = i;
    }
    return k;
}

int VideoClip::seek(int64_t frame)
{
    if (const int rc = probe(); rc != VV_OK)
        return rc;
    frame = std::clamp<int64_t>(frame, 0, m_frameCount - 1);
    // Ahead within the GOP being decoded or the next one: decoding on is as
    // cheap as a jump.
    const int64_t next = std::max(m_target, m_lastOut + 1);
    if (!m_inputEnded && frame >= next && keyAtOrBefore(frame) <= keyAtOrBefore(next) + 1) {
        m_target = frame;
        return VV_OK;
    }
    size_t k = keyAtOrBefore(frame);
    for (;;) {
        m_pending.clear();
        if (m_decoder)
            avcodec_flush_buffers(m_decoder.get());
        m_inputEnded = false;
        m_lastOut = -1;
        if (av_seek_frame(m_format.get(), m_stream->index, m_keys[k].dts, AVSEEK_FLAG_BACKWARD) < 0)
            return VV_ERR_DECODE;
        PacketPtr packet;
        if (readFromFile(packet) != VV_OK)
            return VV_ERR_DECODE;
        if ((packet->flags & AV_PKT_FLAG_KEY) && packet->pts != AV_NOPTS_VALUE)
            m_keys[k].frame = frameOf(packet->pts);
        // The key frame is shown after the target: begin one GOP earlier.
        if (m_keys[k].frame > frame && k > 0) {
            --k;
            continue;
        }
        m_pending.push_back(std::move(packet));
        break;
    }
    m_target = frame;
    return VV_OK;
}

int VideoClip::decode(AVFrame* out, int64_t& frame)
{
    if (int rc = probe(); rc != VV_OK)
        return rc;
    if (int rc = openDecoder(); rc != VV_OK)
        return rc;
    AVCodecContext* decoder = m_decoder.get();
    for (;;) {
        const int received = avcodec_receive_frame(decoder, out);
        if (received == 0) {
            const int64_t ts =
                out->best_effort_timestamp != AV_NOPTS_VALUE ? out->best_effort_timestamp : out->pts;
            const int64_t n = ts != AV_NOPTS_VALUE ? frameOf(ts) : m_lastOut + 1;
            m_lastOut = n;
            if (n < m_target || n >= m_frameCount) {
                av_frame_unref(out);
                continue;
            }
            m_target = n + 1;
            frame = n;
            return VV_OK;
        }
        if (received == AVERROR_EOF)
            return kEnd;
        if (received != AVERROR(EAGAIN))
            return VV_ERR_DECODE;
        PacketPtr packet;
        const int read = readPacket(packet);
        if (read == VV_ERR_MEMORY)
            return read;
        if (read != VV_OK) {
            // End of input: the decoder gives out the pictures it still holds.
            m_inputEnded = true;
            avcodec_send_packet(decoder, nullptr);
            continue;
        }
        // A damaged picture is skipped; the decoder conceals what follows.
        avcodec_send_packet(decoder, packet.get());
    }
}

void VideoClip::release()
{
    m_decoder.reset();
    m_pending.clear();
    m_inputEnded = true; // the next use seeks
    m_lastOut = -1;
}

int64_t VideoClip::keyFrameAfter(int64_t frame)
{
    if (probe() != VV_OK)
        return -1;
    int64_t best = -1;
    for (const Key& key : m_keys) {
        if (key.frame > frame && key.frame < m_frameCount && (best < 0 || key.frame < best))
            best = key.frame;
    }
    return best;
}

int64_t VideoClip::keyFrameBefore(int64_t frame)
{
    if (probe() != VV_OK)
        return -1;
    int64_t best = -1;
    for (const Key& key : m_keys) {
        if (key.frame < frame && key.frame >= 0 && key.frame > best)
            best = key.frame;
    }
    return best;
}

} // namespace vv
