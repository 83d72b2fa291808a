#include "FfmpegProbe.h"

#include "media/viewer/FFmpegUtil.h"

FfmpegProbe FfmpegProbe::run(const QString& path)
{
    FfmpegProbe probe;
    AVFormatContext* opened = nullptr;
    if (avformat_open_input(&opened, path.toUtf8().constData(), nullptr, nullptr) < 0)
        return probe;
    const vv::FormatPtr fmt(opened);
    if (avformat_find_stream_info(fmt.get(), nullptr) < 0)
        return probe;
    const int videoIndex = av_find_best_stream(fmt.get(), AVMEDIA_TYPE_VIDEO, -1, -1, nullptr, 0);
    if (videoIndex < 0)
        return probe;
    probe.opened = true;
    const AVStream* vs = fmt->streams[videoIndex];
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
        probe.audio.push_back({QString::fromLatin1(avcodec_get_name(p->codec_id)), p->sample_rate,
                               p->ch_layout.nb_channels, 0,
                               std::vector<long long>(size_t(p->ch_layout.nb_channels))});
    }
    std::vector<std::vector<int>> lastSign;
    for (const Audio& a : probe.audio)
        lastSign.emplace_back(size_t(a.channels), 0);

    const AVCodec* codec = avcodec_find_decoder(vs->codecpar->codec_id);
    const vv::CodecPtr ctx(avcodec_alloc_context3(codec));
    avcodec_parameters_to_context(ctx.get(), vs->codecpar);
    avcodec_open2(ctx.get(), codec, nullptr);
    const vv::PacketPtr packet = vv::makePacket();
    const vv::FramePtr frame = vv::makeFrame();
    auto receive = [&]() {
        while (avcodec_receive_frame(ctx.get(), frame.get()) == 0) {
            ++probe.decodedFrames;
            probe.interlacedFrames += frame->interlaced_frame ? 1 : 0;
            probe.counters.push_back(
                cardgen::FrameCounter::read(frame->data[0], frame->linesize[0], frame->width, frame->height));
            av_frame_unref(frame.get());
        }
    };
    while (av_read_frame(fmt.get(), packet.get()) >= 0) {
        if (packet->stream_index == videoIndex) {
            avcodec_send_packet(ctx.get(), packet.get());
            receive();
        } else if (const int a = audioIndex[size_t(packet->stream_index)]; a >= 0) {
            // 16-bit big-endian PCM: count samples and the sign changes per channel.
            Audio& audio = probe.audio[size_t(a)];
            const int step = 2 * audio.channels;
            audio.samples += packet->size / step;
            for (int at = 0; at + step <= packet->size; at += step) {
                for (size_t c = 0; c < size_t(audio.channels); ++c) {
                    const auto v = int16_t(packet->data[at + 2 * c] << 8 | packet->data[at + 2 * c + 1]);
                    const int sign = v > 0 ? 1 : v < 0 ? -1 : 0;
                    int& last = lastSign[size_t(a)][c];
                    audio.zeroCrossings[c] += sign != 0 && last != 0 && sign != last ? 1 : 0;
                    last = sign != 0 ? sign : last;
                }
            }
        }
        av_packet_unref(packet.get());
    }
    avcodec_send_packet(ctx.get(), nullptr);
    receive();
    return probe;
}
