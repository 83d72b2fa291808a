#include "media/mpeg2ts/TakeConverter.h"

#include "media/viewer/vv.h"

extern "C" {
#include <libavutil/bswap.h>
#include <libavutil/crc.h>
}

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstring>

#include <fcntl.h>
#include <unistd.h>

namespace mpeg2ts {

namespace {

constexpr int kRate = 48000;        // sound of the stream
constexpr int kTimeBase = 90000;    // of the video time stamps
constexpr int kStereoRate = 384000; // Layer II, each pair of channels
constexpr int kMonoRate = 192000;   // the highest Layer II allows for one channel

const char* avError(int code)
{
    static thread_local char text[AV_ERROR_MAX_STRING_SIZE];
    return av_make_error_string(text, sizeof text, code);
}

// Where a start code 00 00 01 <code> begins in data, or -1.
ptrdiff_t findStartCode(const uint8_t* data, size_t size, uint8_t code, size_t from = 0)
{
    for (size_t i = from; i + 3 < size; ++i) {
        if (data[i] == 0 && data[i + 1] == 0 && data[i + 2] == 1 && data[i + 3] == code)
            return ptrdiff_t(i);
    }
    return -1;
}

} // namespace

uint32_t gopTimeCode(int64_t frames, int fps, bool dropFrame)
{
    const int unit = fps == 50 || fps == 60 ? fps / 2 : std::max(fps, 1);
    const bool drop = dropFrame && unit == 30;
    const int64_t perDay = int64_t(24) * (drop ? 107892 : 3600 * unit);
    int64_t count = (frames / (fps / unit)) % perDay;
    if (count < 0)
        count += perDay;
    if (drop) { // frames 0 and 1 of every minute but each tenth are skipped
        const int64_t tens = count / 17982, rest = count % 17982;
        count += 18 * tens + (rest >= 2 ? 2 * ((rest - 2) / 1798) : 0);
    }
    const uint32_t pictures = uint32_t(count % unit);
    const uint32_t seconds = uint32_t(count / unit % 60);
    const uint32_t minutes = uint32_t(count / (unit * 60) % 60);
    const uint32_t hours = uint32_t(count / (int64_t(unit) * 3600) % 24);
    return uint32_t(drop) << 31 | hours << 26 | minutes << 20 | 1u << 19 | seconds << 13 | pictures << 7;
}

std::vector<uint8_t> infoPacket(const mpeg2ts_convert_params_t& params)
{
    std::vector<uint8_t> section = {
        MPEG2TS_INFO_TABLE_ID, 0, 0, 0x00, 0x01, 0xC1, 0x00, 0x00, 'C', 'W', 'M', 'D'};
    const uint8_t* raw = reinterpret_cast<const uint8_t*>(&params);
    for (int i = 0; i < 14; ++i) // date, time, 0, user bits, drop flag
        section.push_back(raw[i]);
    for (int shift = 24; shift >= 0; shift -= 8)
        section.push_back(uint8_t(params.start_frames >> shift));
    const size_t length = section.size() - 3 + 4; // after the length field, CRC included
    section[1] = uint8_t(0xB0 | (length >> 8));   // syntax 1, private 0, reserved 11
    section[2] = uint8_t(length);
    const uint32_t crc =
        av_bswap32(av_crc(av_crc_get_table(AV_CRC_32_IEEE), UINT32_MAX, section.data(), section.size()));
    for (int shift = 24; shift >= 0; shift -= 8)
        section.push_back(uint8_t(crc >> shift));

    std::vector<uint8_t> packet(188, 0xFF);
    packet[0] = 0x47;
    packet[1] = uint8_t(0x40 | (MPEG2TS_INFO_PID >> 8)); // payload unit start
    packet[2] = uint8_t(MPEG2TS_INFO_PID & 0xFF);
    packet[3] = 0x10; // payload only, continuity 0
    packet[4] = 0;    // pointer field
    std::copy(section.begin(), section.end(), packet.begin() + 5);
    return packet;
}

// One MP4 file of the take.
struct TakeConverter::Clip
{
    std::string path;
    vv::FormatPtr format;
    AVStream* video = nullptr;
    int64_t frames = 0;
    int64_t frameDuration = 1;       // in the video stream's time base
    int64_t origin = AV_NOPTS_VALUE; // time stamp of the clip's first frame
    struct Track
    {
        AVStream* stream = nullptr;
        vv::CodecPtr decoder;
        vv::SwrPtr resampler;
        int firstChannel = 0;
    };
    std::vector<Track> tracks;
};

// One Layer II stream: two channels of the take (or the last one alone).
struct TakeConverter::Pair
{
    int first = 0;
    int channels = 2;
    vv::CodecPtr encoder;
    AVStream* stream = nullptr;
    int64_t samples = 0; // encoded so far
};

TakeConverter::TakeConverter(vv::Log& log, const std::atomic<bool>& cancel, IMpeg2TSCallback* callback)
    : m_log(log), m_cancel(cancel), m_callback(callback)
{
}

TakeConverter::~TakeConverter() = default;

void TakeConverter::OutputCloser::operator()(AVFormatContext* f) const
{
    if (f->pb) {
        av_freep(&f->pb->buffer);
        avio_context_free(&f->pb);
    }
    avformat_free_context(f);
}

int TakeConverter::openClips(const std::vector<std::string>& inputs)
{
    for (const std::string& path : inputs) {
        Clip clip;
        clip.path = path;
        if (vv::openInput(path.c_str(), clip.format) != VV_OK) {
            log(vv::Log::kError, "cannot read " + path);
            return MPEG2TS_ERR_READ;
        }
        AVFormatContext* format = clip.format.get();
        int channel = 0;
        for (unsigned i = 0; i < format->nb_streams; ++i) {
            AVStream* stream = format->streams[i];
            const AVCodecParameters* par = stream->codecpar;
            if (par->codec_type == AVMEDIA_TYPE_VIDEO && !clip.video) {
                clip.video = stream;
            } else if (par->codec_type == AVMEDIA_TYPE_AUDIO && par->ch_layout.nb_channels > 0) {
                Clip::Track track;
                track.stream = stream;
                track.firstChannel = channel;
                channel += par->ch_layout.nb_channels;
                const AVCodec* codec = avcodec_find_decoder(par->codec_id);
                track.decoder.reset(codec ? avcodec_alloc_context3(codec) : nullptr);
                SwrContext* swr = nullptr;
                if (!track.decoder || avcodec_parameters_to_context(track.decoder.get(), par) < 0 ||
                    avcodec_open2(track.decoder.get(), codec, nullptr) < 0 ||
                    swr_alloc_set_opts2(&swr, &stream->codecpar->ch_layout, AV_SAMPLE_FMT_S16P, kRate,
                                        &stream->codecpar->ch_layout, track.decoder->sample_fmt,
                                        par->sample_rate, 0, nullptr) < 0 ||
                    swr_init(swr) < 0) {
                    swr_free(&swr);
                    log(vv::Log::kError, "sound that cannot be decoded in " + path);
                    return MPEG2TS_ERR_AUDIO;
                }
                track.resampler.reset(swr);
                clip.tracks.push_back(std::move(track));
            } else {
                stream->discard = AVDISCARD_ALL;
            }
        }
        if (!clip.video || clip.video->codecpar->codec_id != AV_CODEC_ID_MPEG2VIDEO) {
            log(vv::Log::kError, "no MPEG-2 video in " + path);
            return MPEG2TS_ERR_VIDEO;
        }
        const AVRational rate =
            clip.video->avg_frame_rate.num > 0 ? clip.video->avg_frame_rate : clip.video->r_frame_rate;
        clip.frames =
            clip.video->nb_frames > 0 ? clip.video->nb_frames : avformat_index_get_entries_count(clip.video);
        if (rate.num <= 0 || rate.den <= 0 || clip.frames <= 0) {
            log(vv::Log::kError, "no frame rate or frames in " + path);
            return MPEG2TS_ERR_VIDEO;
        }
        clip.frameDuration = std::max<int64_t>(1, av_rescale_q(1, av_inv_q(rate), clip.video->time_base));
        if (!m_clips.empty()) {
            const AVCodecParameters* a = m_clips.front().video->codecpar;
            const AVCodecParameters* b = clip.video->codecpar;
            if (a->width != b->width || a->height != b->height ||
                av_cmp_q(m_clips.front().video->avg_frame_rate, clip.video->avg_frame_rate) != 0) {
                log(vv::Log::kError, "picture format differs from the first clip's in " + path);
                return MPEG2TS_ERR_VIDEO;
            }
            if (channel != m_channelCount) {
                log(vv::Log::kError, "channel count differs from the first clip's in " + path);
                return MPEG2TS_ERR_AUDIO;
            }
        } else {
            m_channelCount = channel;
            m_fps = int(std::lround(av_q2d(rate)));
        }
        m_framesTotal += clip.frames;
        m_clips.push_back(std::move(clip));
    }
    return MPEG2TS_ERR_NONE;
}

int TakeConverter::openOutput(const std::string& path)
{
    m_fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (m_fd < 0) {
        log(vv::Log::kError, "cannot create " + path + ": " + std::strerror(errno));
        return MPEG2TS_ERR_CREATE;
    }
    AVFormatContext* output = nullptr;
    if (avformat_alloc_output_context2(&output, nullptr, "mpegts", nullptr) < 0)
        return MPEG2TS_ERR_INTERNAL;
    m_output.reset(output);
    constexpr int kBuffer = 188 * 1024;
    auto* buffer = static_cast<unsigned char*>(av_malloc(kBuffer));
    const auto write = [](void* opaque, uint8_t* data, int size) -> int {
        auto* self = static_cast<TakeConverter*>(opaque);
        for (int done = 0; done < size;) {
            const ssize_t n = ::write(self->m_fd, data + done, size_t(size - done));
            if (n < 0 && errno == EINTR)
                continue;
            if (n <= 0) {
                self->m_writeErrno = n < 0 ? errno : ENOSPC;
                return AVERROR(self->m_writeErrno);
            }
            done += int(n);
        }
        return size;
    };
    output->pb = buffer ? avio_alloc_context(buffer, kBuffer, 1, this, nullptr, write, nullptr) : nullptr;
    if (!output->pb) {
        av_free(buffer);
        return MPEG2TS_ERR_INTERNAL;
    }
    output->flags |= AVFMT_FLAG_CUSTOM_IO;

    const Clip& first = m_clips.front();
    m_videoOut = avformat_new_stream(output, nullptr);
    if (!m_videoOut || avcodec_parameters_copy(m_videoOut->codecpar, first.video->codecpar) < 0)
        return MPEG2TS_ERR_INTERNAL;
    m_videoOut->codecpar->codec_tag = 0;
    m_videoOut->time_base = {1, kTimeBase};
    m_videoOut->avg_frame_rate = first.video->avg_frame_rate;

    const AVCodec* mp2 = avcodec_find_encoder(AV_CODEC_ID_MP2);
    if (m_channelCount > 0 && !mp2) {
        log(vv::Log::kError, "no Layer II encoder");
        return MPEG2TS_ERR_AUDIO;
    }
    m_channels.resize(size_t(m_channelCount));
    for (int c = 0; c < m_channelCount; c += 2) {
        Pair pair;
        pair.first = c;
        pair.channels = std::min(2, m_channelCount - c);
        pair.encoder.reset(avcodec_alloc_context3(mp2));
        if (!pair.encoder)
            return MPEG2TS_ERR_INTERNAL;
        AVCodecContext* enc = pair.encoder.get();
        enc->sample_fmt = AV_SAMPLE_FMT_S16;
        enc->sample_rate = kRate;
        av_channel_layout_default(&enc->ch_layout, pair.channels);
        enc->bit_rate = pair.channels == 2 ? kStereoRate : kMonoRate;
        enc->time_base = {1, kRate};
        if (output->oformat->flags & AVFMT_GLOBALHEADER)
            enc->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
        if (const int rc = avcodec_open2(enc, mp2, nullptr); rc < 0) {
            log(vv::Log::kError, std::string("cannot open the Layer II encoder: ") + avError(rc));
            return MPEG2TS_ERR_AUDIO;
        }
        pair.stream = avformat_new_stream(output, nullptr);
        if (!pair.stream || avcodec_parameters_from_context(pair.stream->codecpar, enc) < 0)
            return MPEG2TS_ERR_INTERNAL;
        pair.stream->time_base = enc->time_base;
        m_pairs.push_back(std::move(pair));
    }
    if (const int rc = avformat_write_header(output, nullptr); rc < 0) {
        log(vv::Log::kError, std::string("cannot start the stream: ") + avError(rc));
        return m_writeErrno ? MPEG2TS_ERR_WRITE : MPEG2TS_ERR_INTERNAL;
    }
    return MPEG2TS_ERR_NONE;
}

int TakeConverter::writeInfo(const mpeg2ts_convert_params_t& params)
{
    const std::vector<uint8_t> packet = infoPacket(params);
    avio_write(m_output->pb, packet.data(), int(packet.size()));
    return m_output->pb->error ? MPEG2TS_ERR_WRITE : MPEG2TS_ERR_NONE;
}

// Copies one picture: its GOP header (if any) gets the take's time code, its
// time stamps are moved onto the take's time line.
int TakeConverter::writeVideo(Clip& clip, AVPacket* packet)
{
    if (packet->pts == AV_NOPTS_VALUE)
        packet->pts = packet->dts;
    const ptrdiff_t gop = findStartCode(packet->data, size_t(packet->size), 0xB8);
    const ptrdiff_t picture =
        findStartCode(packet->data, size_t(packet->size), 0x00, gop < 0 ? 0 : size_t(gop));
    int temporalReference = 0;
    if (picture >= 0 && size_t(picture) + 5 < size_t(packet->size))
        temporalReference = packet->data[picture + 4] << 2 | packet->data[picture + 5] >> 6;
    if (clip.origin == AV_NOPTS_VALUE) // pictures shown before the clip's first one in storage
        clip.origin = packet->pts - int64_t(temporalReference) * clip.frameDuration;
    const auto frameOf = [&](int64_t ts) {
        const int64_t d = ts - clip.origin + clip.frameDuration / 2;
        return (d >= 0 ? d : d - clip.frameDuration + 1) / clip.frameDuration;
    };

    if (gop >= 0 && size_t(gop) + 8 <= size_t(packet->size)) {
        if (const int rc = av_packet_make_writable(packet); rc < 0)
            return MPEG2TS_ERR_INTERNAL;
        uint8_t* header = packet->data + gop + 4;
        const int64_t frame = m_startFrames + m_framesDone + frameOf(packet->pts) - temporalReference;
        const uint32_t old = uint32_t(header[0]) << 24 | header[1] << 16 | header[2] << 8 | header[3];
        const uint32_t bits = gopTimeCode(frame, m_fps, m_dropFrame) | (old & 0x7F);
        for (int i = 0; i < 4; ++i)
            header[i] = uint8_t(bits >> (24 - 8 * i));
    }

    const AVRational out = m_videoOut->time_base;
    const int64_t offset = av_rescale_q(m_framesDone * clip.frameDuration, clip.video->time_base, out);
    const int64_t pts = offset + av_rescale_q(packet->pts - clip.origin, clip.video->time_base, out);
    int64_t dts = packet->dts == AV_NOPTS_VALUE
                      ? pts
                      : offset + av_rescale_q(packet->dts - clip.origin, clip.video->time_base, out);
    if (dts <= m_lastDts)
        dts = m_lastDts + 1;
    m_lastDts = dts;
    packet->pts = std::max(pts, dts);
    packet->dts = dts;
    packet->duration = av_rescale_q(clip.frameDuration, clip.video->time_base, out);
    packet->stream_index = m_videoOut->index;
    packet->pos = -1;
    if (const int rc = av_interleaved_write_frame(m_output.get(), packet); rc < 0) {
        log(vv::Log::kError, std::string("cannot write a picture: ") + avError(rc));
        return m_writeErrno ? MPEG2TS_ERR_WRITE : MPEG2TS_ERR_INTERNAL;
    }
    ++m_packetsWritten;
    return MPEG2TS_ERR_NONE;
}

int TakeConverter::decodeAudio(Clip& clip, int track, const AVPacket* packet)
{
    Clip::Track& t = clip.tracks[size_t(track)];
    if (avcodec_send_packet(t.decoder.get(), packet) < 0) {
        log(vv::Log::kError, "damaged sound in " + clip.path);
        return MPEG2TS_ERR_READ;
    }
    vv::FramePtr frame = vv::makeFrame();
    std::vector<int16_t> buffer;
    while (avcodec_receive_frame(t.decoder.get(), frame.get()) == 0) {
        const int channels = frame->ch_layout.nb_channels;
        const int capacity = swr_get_out_samples(t.resampler.get(), frame->nb_samples);
        if (capacity > 0 && channels <= AV_NUM_DATA_POINTERS) {
            buffer.resize(size_t(capacity) * size_t(channels));
            uint8_t* planes[AV_NUM_DATA_POINTERS] = {};
            for (int c = 0; c < channels; ++c)
                planes[c] = reinterpret_cast<uint8_t*>(buffer.data() + size_t(c) * size_t(capacity));
            const int n = swr_convert(t.resampler.get(), planes, capacity,
                                      const_cast<const uint8_t**>(frame->extended_data), frame->nb_samples);
            for (int c = 0; n > 0 && c < channels; ++c) {
                const int16_t* s = buffer.data() + size_t(c) * size_t(capacity);
                auto& samples = m_channels[size_t(t.firstChannel + c)].samples;
                samples.insert(samples.end(), s, s + n);
            }
        }
        av_frame_unref(frame.get());
    }
    return MPEG2TS_ERR_NONE;
}

void TakeConverter::alignAudio()
{
    if (m_pairs.empty())
        return;
    const Clip& clip = m_clips.front();
    const int64_t target =
        av_rescale_q(m_framesDone * clip.frameDuration, clip.video->time_base, AVRational{1, kRate});
    const int64_t encoded = m_pairs.front().samples;
    for (Channel& channel : m_channels) {
        const int64_t want = std::max<int64_t>(0, target - encoded);
        channel.samples.resize(channel.head + size_t(want), 0);
    }
}

int TakeConverter::encodeAudio(bool end)
{
    vv::FramePtr frame = vv::makeFrame();
    for (Pair& pair : m_pairs) {
        AVCodecContext* enc = pair.encoder.get();
        const int size = enc->frame_size;
        for (;;) {
            size_t available = m_channels[size_t(pair.first)].size();
            for (int c = 1; c < pair.channels; ++c) // the channels may come from different tracks
                available = std::min(available, m_channels[size_t(pair.first + c)].size());
            if (available == 0 || (available < size_t(size) && !end))
                break;
            av_frame_unref(frame.get());
            frame->nb_samples = size;
            frame->format = enc->sample_fmt;
            frame->sample_rate = kRate;
            if (av_channel_layout_copy(&frame->ch_layout, &enc->ch_layout) < 0 ||
                av_frame_get_buffer(frame.get(), 0) < 0)
                return MPEG2TS_ERR_INTERNAL;
            const size_t n = std::min(available, size_t(size));
            auto* out = reinterpret_cast<int16_t*>(frame->data[0]);
            std::fill(out, out + size_t(size) * size_t(pair.channels), int16_t(0));
            for (int c = 0; c < pair.channels; ++c) {
                Channel& channel = m_channels[size_t(pair.first + c)];
                for (size_t i = 0; i < n; ++i)
                    out[i * size_t(pair.channels) + size_t(c)] = channel.samples[channel.head + i];
                channel.head += n;
                if (channel.head > (size_t(1) << 20)) { // keep the buffer from growing
                    channel.samples.erase(channel.samples.begin(),
                                          channel.samples.begin() + ptrdiff_t(channel.head));
                    channel.head = 0;
                }
            }
            frame->pts = pair.samples;
            pair.samples += int64_t(n);
            if (const int rc = writeEncoded(pair, frame.get()); rc != MPEG2TS_ERR_NONE)
                return rc;
        }
        if (end)
            if (const int rc = writeEncoded(pair, nullptr); rc != MPEG2TS_ERR_NONE)
                return rc;
    }
    return MPEG2TS_ERR_NONE;
}

int TakeConverter::writeEncoded(Pair& pair, const AVFrame* frame)
{
    if (avcodec_send_frame(pair.encoder.get(), frame) < 0)
        return MPEG2TS_ERR_AUDIO;
    vv::PacketPtr packet = vv::makePacket();
    while (avcodec_receive_packet(pair.encoder.get(), packet.get()) == 0) {
        packet->stream_index = pair.stream->index;
        av_packet_rescale_ts(packet.get(), pair.encoder->time_base, pair.stream->time_base);
        if (const int rc = av_interleaved_write_frame(m_output.get(), packet.get()); rc < 0) {
            log(vv::Log::kError, std::string("cannot write sound: ") + avError(rc));
            return m_writeErrno ? MPEG2TS_ERR_WRITE : MPEG2TS_ERR_INTERNAL;
        }
    }
    return MPEG2TS_ERR_NONE;
}

void TakeConverter::reportProgress()
{
    const int percent =
        m_framesTotal > 0 ? int(std::min<int64_t>(99, m_packetsWritten * 100 / m_framesTotal)) : 0;
    if (percent != m_lastPercent && m_callback)
        m_callback->OnProgress(percent);
    m_lastPercent = percent;
}

int TakeConverter::copyClip(Clip& clip)
{
    log(vv::Log::kEvent, "clip " + clip.path);
    AVFormatContext* format = clip.format.get();
    vv::PacketPtr packet = vv::makePacket();
    int64_t pictures = 0;
    for (;;) {
        if (m_cancel)
            return kCancelled;
        const int rc = av_read_frame(format, packet.get());
        if (rc == AVERROR_EOF)
            break;
        if (rc < 0) {
            log(vv::Log::kError, "cannot read " + clip.path + ": " + avError(rc));
            return MPEG2TS_ERR_READ;
        }
        int result = MPEG2TS_ERR_NONE;
        if (packet->stream_index == clip.video->index) {
            if (++pictures <= clip.frames)
                result = writeVideo(clip, packet.get());
            reportProgress();
        } else {
            for (size_t t = 0; t < clip.tracks.size(); ++t)
                if (clip.tracks[t].stream->index == packet->stream_index)
                    result = decodeAudio(clip, int(t), packet.get());
            if (result == MPEG2TS_ERR_NONE)
                result = encodeAudio(false);
        }
        av_packet_unref(packet.get());
        if (result != MPEG2TS_ERR_NONE)
            return result;
    }
    if (pictures < clip.frames) {
        log(vv::Log::kError, "pictures missing in " + clip.path);
        return MPEG2TS_ERR_READ;
    }
    for (size_t t = 0; t < clip.tracks.size(); ++t)
        if (const int rc = decodeAudio(clip, int(t), nullptr); rc != MPEG2TS_ERR_NONE)
            return rc;
    m_framesDone += clip.frames;
    alignAudio();
    return encodeAudio(false);
}

int TakeConverter::convert(const std::vector<std::string>& inputs, const std::string& output,
                           const mpeg2ts_convert_params_t& params)
{
    log(vv::Log::kEvent, "start " + output);
    m_dropFrame = params.drop_frame != 0;
    m_startFrames = params.start_frames;
    const std::string partial = output + ".part";
    int rc = inputs.empty() || output.empty() ? MPEG2TS_ERR_INTERNAL : openClips(inputs);
    bool created = false;
    if (rc == MPEG2TS_ERR_NONE) {
        rc = openOutput(partial);
        created = m_fd >= 0;
    }
    if (rc == MPEG2TS_ERR_NONE)
        rc = writeInfo(params);
    for (size_t i = 0; rc == MPEG2TS_ERR_NONE && i < m_clips.size(); ++i)
        rc = copyClip(m_clips[i]);
    if (rc == MPEG2TS_ERR_NONE)
        rc = encodeAudio(true);
    if (rc == MPEG2TS_ERR_NONE)
        rc = finish();
    if (rc == MPEG2TS_ERR_NONE && ::rename(partial.c_str(), output.c_str()) != 0) {
        log(vv::Log::kError, "cannot rename to " + output + ": " + std::strerror(errno));
        rc = MPEG2TS_ERR_CREATE;
    }
    m_output.reset();
    if (m_fd >= 0)
        ::close(m_fd);
    m_fd = -1;
    if (rc != MPEG2TS_ERR_NONE && created)
        ::unlink(partial.c_str());
    if (rc == MPEG2TS_ERR_NONE && m_callback)
        m_callback->OnProgress(100);
    log(rc == MPEG2TS_ERR_NONE ? vv::Log::kEvent : vv::Log::kError,
        rc == kCancelled ? "cancelled" : "end, error " + std::to_string(rc));
    return rc;
}

int TakeConverter::finish()
{
    if (const int rc = av_write_trailer(m_output.get()); rc < 0 || m_output->pb->error) {
        log(vv::Log::kError, "cannot end the stream");
        return m_writeErrno ? MPEG2TS_ERR_WRITE : MPEG2TS_ERR_INTERNAL;
    }
    avio_flush(m_output->pb);
    if (m_writeErrno || ::fsync(m_fd) != 0) {
        log(vv::Log::kError,
            std::string("cannot write the stream: ") + std::strerror(m_writeErrno ? m_writeErrno : errno));
        return MPEG2TS_ERR_WRITE;
    }
    return MPEG2TS_ERR_NONE;
}

} // namespace mpeg2ts
