#include "media/viewer/AudioClip.h"

#include "media/viewer/vv.h"

#include <algorithm>

namespace vv {

namespace {

// A time stamp gap larger than this is taken for damage, not for missing sound.
constexpr int64_t kLargestGap = 10 * AudioClip::kRate;

} // namespace

int AudioClip::open(const std::string& path, int64_t length, std::unique_ptr<AudioClip>& out)
{
    out.reset();
    std::unique_ptr<AudioClip> clip(new AudioClip);
    clip->m_length = std::max<int64_t>(0, length);
    if (const int rc = openInput(path.c_str(), clip->m_format); rc != VV_OK)
        return rc;
    AVFormatContext* format = clip->m_format.get();
    int needed = 2;
    for (unsigned i = 0; i < format->nb_streams; ++i) {
        AVStream* stream = format->streams[i];
        stream->discard = AVDISCARD_ALL;
        const AVCodecParameters* par = stream->codecpar;
        if (par->codec_type != AVMEDIA_TYPE_AUDIO || par->ch_layout.nb_channels <= 0 || par->sample_rate <= 0)
            continue;
        clip->m_channels += par->ch_layout.nb_channels;
        if (needed == 0 || par->ch_layout.nb_channels > AV_NUM_DATA_POINTERS)
            continue;
        const AVCodec* codec = avcodec_find_decoder(par->codec_id);
        if (!codec)
            continue;
        auto track = std::make_unique<Track>();
        track->stream = stream;
        track->decoder.reset(avcodec_alloc_context3(codec));
        if (!track->decoder || avcodec_parameters_to_context(track->decoder.get(), par) < 0)
            return VV_ERR_MEMORY;
        track->decoder->pkt_timebase = stream->time_base;
        if (avcodec_open2(track->decoder.get(), codec, nullptr) < 0)
            continue;
        SwrContext* swr = nullptr;
        if (swr_alloc_set_opts2(&swr, &stream->codecpar->ch_layout, AV_SAMPLE_FMT_S16P, kRate,
                                &stream->codecpar->ch_layout, track->decoder->sample_fmt, par->sample_rate, 0,
                                nullptr) < 0 ||
            swr_init(swr) < 0) {
            swr_free(&swr);
            continue;
        }
        track->resampler.reset(swr);
        track->used = std::min(needed, par->ch_layout.nb_channels);
        needed -= track->used;
        stream->discard = AVDISCARD_DEFAULT;
        clip->m_tracks.push_back(std::move(track));
    }
    if (!clip->m_tracks.empty())
        out = std::move(clip);
    return VV_OK;
}

int AudioClip::seek(int64_t sample)
{
    sample = std::clamp<int64_t>(sample, 0, m_length);
    Track& first = *m_tracks.front();
    const int64_t ts =
        rescale(sample, first.stream->time_base.den, int64_t(kRate) * first.stream->time_base.num);
    if (av_seek_frame(m_format.get(), first.stream->index, ts, AVSEEK_FLAG_BACKWARD) < 0)
        return VV_ERR_DECODE;
    for (auto& track : m_tracks) {
        avcodec_flush_buffers(track->decoder.get());
        track->fifo[0].clear();
        track->fifo[1].clear();
        track->position = sample;
        track->ended = false;
    }
    m_position = sample;
    return VV_OK;
}

// Puts a decoded block into the track's fifo where its time stamp says:
// samples before the fifo's end are dropped, a gap is filled with silence.
void AudioClip::append(Track& track, const AVFrame* frame)
{
    const int capacity = swr_get_out_samples(track.resampler.get(), frame->nb_samples);
    if (capacity <= 0)
        return;
    const int channels = frame->ch_layout.nb_channels;
    m_convertBuffer.resize(size_t(capacity) * size_t(channels));
    uint8_t* planes[AV_NUM_DATA_POINTERS] = {};
    for (int c = 0; c < channels && c < AV_NUM_DATA_POINTERS; ++c)
        planes[c] = reinterpret_cast<uint8_t*>(m_convertBuffer.data() + size_t(c) * size_t(capacity));
    const int converted = swr_convert(track.resampler.get(), planes, capacity,
                                      const_cast<const uint8_t**>(frame->extended_data), frame->nb_samples);
    if (converted <= 0)
        return;
    const int64_t end = track.position + int64_t(track.fifo[0].size());
    int skip = 0;
    if (frame->pts != AV_NOPTS_VALUE) {
        const int64_t start =
            rescale(frame->pts, int64_t(kRate) * track.stream->time_base.num, track.stream->time_base.den);
        if (start < end)
            skip = int(std::min<int64_t>(converted, end - start));
        else if (start > end && start - end < kLargestGap)
            for (int c = 0; c < track.used; ++c)
                track.fifo[c].insert(track.fifo[c].end(), size_t(start - end), 0);
    }
    for (int c = 0; c < track.used; ++c) {
        const int16_t* samples = m_convertBuffer.data() + size_t(c) * size_t(capacity);
        track.fifo[c].insert(track.fifo[c].end(), samples + skip, samples + converted);
    }
}

// Reads one packet and decodes it into its track; at the end of the file every
// track is drained and ended.
int AudioClip::pump()
{
    PacketPtr packet = makePacket();
    FramePtr frame = makeFrame();
    if (!packet || !frame)
        return VV_ERR_MEMORY;
    const bool more = av_read_frame(m_format.get(), packet.get()) >= 0;
    for (auto& track : m_tracks) {
        if (track->ended)
            continue;
        if (more && packet->stream_index != track->stream->index)
            continue;
        avcodec_send_packet(track->decoder.get(), more ? packet.get() : nullptr);
        while (avcodec_receive_frame(track->decoder.get(), frame.get()) == 0) {
            append(*track, frame.get());
            av_frame_unref(frame.get());
        }
        if (!more)
            track->ended = true;
    }
    return VV_OK;
}

int16_t AudioClip::take(int channel)
{
    // Channel 0 is the first track's first; channel 1 its second, or the next
    // track's first, or channel 0 again.
    Track& first = *m_tracks.front();
    if (channel == 0 || first.used == 2)
        return first.fifo[channel].empty() ? 0 : first.fifo[channel][0];
    if (m_tracks.size() > 1)
        return m_tracks[1]->fifo[0].empty() ? 0 : m_tracks[1]->fifo[0][0];
    return first.fifo[0].empty() ? 0 : first.fifo[0][0];
}

int AudioClip::read(int16_t* first, int16_t* second, int count)
{
    count = int(std::min<int64_t>(count, m_length - m_position));
    if (count <= 0)
        return 0;
    for (;;) {
        bool short_ = false;
        for (const auto& track : m_tracks)
            short_ = short_ || (!track->ended && track->fifo[0].size() < size_t(count));
        if (!short_)
            break;
        if (const int rc = pump(); rc != VV_OK)
            return rc;
    }
    for (int i = 0; i < count; ++i) {
        first[i] = take(0);
        second[i] = take(1);
        for (auto& track : m_tracks) {
            for (int c = 0; c < track->used; ++c) {
                if (!track->fifo[c].empty())
                    track->fifo[c].pop_front();
            }
        }
    }
    for (auto& track : m_tracks)
        track->position += count;
    m_position += count;
    return count;
}

} // namespace vv
