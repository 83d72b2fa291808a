// Viewer library: thumbnail throughput on 1920 x 1080 takes, and the decoding
// cost of 1080i59.94 playback against the frame time, on the machine it runs on.
//
//   viewer_bench --benchmark_counters_tabular=true
//
// The thumbnail takes come from cardgen (plain counter pictures). Playback is
// measured on a busy picture (moving texture and noise) coded by libavcodec at
// 35 Mbit/s, 4:2:0, interlaced, GOP 15 with two B pictures, written by
// libavformat: close to what the camera records.
#include "cardgen/CardGenerator.h"
#include "media/viewer/FrameConverter.h"
#include "media/viewer/TakeVideo.h"
#include "media/viewer/vv.h"

#include <QTemporaryDir>

#include <benchmark/benchmark.h>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/opt.h>
}

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <mutex>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr int kTakes = 100;
constexpr int kBusyFrames = 300; // ten seconds of 1080i59.94

// 100 single-clip takes of 30 frames, 1920 x 1080 at 59.94i.
const std::vector<std::string>& thumbnailTakes()
{
    static QTemporaryDir dir;
    static std::vector<std::string> paths;
    if (!paths.empty())
        return paths;
    cardgen::Options options;
    options.outputFolder = dir.filePath(QStringLiteral("card"));
    options.clips = kTakes;
    options.frames = 30;
    options.fast = true; // one coding, written into every clip's own file
    QString error;
    const std::optional<cardgen::Manifest> manifest = cardgen::CardGenerator::generate(options, &error);
    if (!manifest) {
        std::fprintf(stderr, "cardgen: %s\n", qPrintable(error));
        std::abort();
    }
    for (const cardgen::ManifestTake& take : manifest->takes)
        paths.push_back(
            (options.outputFolder + QLatin1Char('/') + take.clips.front().files.front().path).toStdString());
    return paths;
}

// The busy clip, coded once per run.
const std::string& busyClip()
{
    static QTemporaryDir dir;
    static std::string path;
    if (!path.empty())
        return path;
    path = dir.filePath(QStringLiteral("BUSY.MP4")).toStdString();
    AVFormatContext* out = nullptr;
    avformat_alloc_output_context2(&out, nullptr, "mp4", path.c_str());
    const AVCodec* codec = avcodec_find_encoder(AV_CODEC_ID_MPEG2VIDEO);
    AVCodecContext* enc = avcodec_alloc_context3(codec);
    enc->width = 1920;
    enc->height = 1080;
    enc->pix_fmt = AV_PIX_FMT_YUV420P;
    enc->time_base = AVRational{1001, 30000};
    enc->framerate = AVRational{30000, 1001};
    enc->gop_size = 15;
    enc->max_b_frames = 2;
    enc->bit_rate = 35000000;
    enc->rc_max_rate = 35000000;
    enc->rc_buffer_size = 9781248;
    enc->flags |= AV_CODEC_FLAG_INTERLACED_DCT | AV_CODEC_FLAG_GLOBAL_HEADER;
    enc->field_order = AV_FIELD_TT;
    enc->thread_count = 0;
    av_opt_set_int(enc->priv_data, "sc_threshold", 1000000000, 0);
    if (avcodec_open2(enc, codec, nullptr) < 0)
        std::abort();
    AVStream* stream = avformat_new_stream(out, nullptr);
    avcodec_parameters_from_context(stream->codecpar, enc);
    stream->time_base = enc->time_base;
    avio_open(&out->pb, path.c_str(), AVIO_FLAG_WRITE);
    if (avformat_write_header(out, nullptr) < 0)
        std::abort();
    AVFrame* frame = av_frame_alloc();
    frame->format = AV_PIX_FMT_YUV420P;
    frame->width = 1920;
    frame->height = 1080;
    av_frame_get_buffer(frame, 0);
    AVPacket* packet = av_packet_alloc();
    std::mt19937 random(1);
    auto drain = [&] {
        while (avcodec_receive_packet(enc, packet) == 0) {
            av_packet_rescale_ts(packet, enc->time_base, stream->time_base);
            packet->stream_index = stream->index;
            av_interleaved_write_frame(out, packet);
        }
    };
    for (int i = 0; i < kBusyFrames; ++i) {
        av_frame_make_writable(frame);
        for (int y = 0; y < 1080; ++y) {
            uint8_t* row = frame->data[0] + size_t(y) * size_t(frame->linesize[0]);
            for (int x = 0; x < 1920; ++x)
                row[x] = uint8_t(((x + 4 * i) ^ (y + 2 * i)) + (random() & 31));
        }
        for (int plane = 1; plane <= 2; ++plane) {
            for (int y = 0; y < 540; ++y) {
                uint8_t* row = frame->data[plane] + size_t(y) * size_t(frame->linesize[plane]);
                for (int x = 0; x < 960; ++x)
                    row[x] = uint8_t(128 + ((x + y + i * plane) & 63) - 32);
            }
        }
        frame->pts = i;
        frame->interlaced_frame = 1;
        frame->top_field_first = 1;
        avcodec_send_frame(enc, frame);
        drain();
    }
    avcodec_send_frame(enc, nullptr);
    drain();
    av_write_trailer(out);
    avio_closep(&out->pb);
    avformat_free_context(out);
    av_packet_free(&packet);
    av_frame_free(&frame);
    avcodec_free_context(&enc);
    return path;
}

// One thumbnail per take, round the 100 takes: the first frame (a take's
// usual key frame) or a frame inside the second GOP (seek plus decoding on).
void BM_Thumbnail1080(benchmark::State& state)
{
    const std::vector<std::string>& takes = thumbnailTakes();
    const int64_t frame = state.range(0);
    size_t next = 0;
    for (auto _ : state) {
        const char* path = takes[next++ % takes.size()].c_str();
        vv_bitmap_t bitmap{};
        if (vv_get_thumbnail(&path, 1, frame, VV_ICON_OK, &bitmap) != VV_OK)
            state.SkipWithError("vv_get_thumbnail failed");
        vv_bitmap_free(&bitmap);
    }
    state.counters["thumbnails/s"] =
        benchmark::Counter(double(state.iterations()), benchmark::Counter::kIsRate);
}
BENCHMARK(BM_Thumbnail1080)->Arg(0)->Arg(22)->Unit(benchmark::kMillisecond)->UseRealTime();

// What playback does for every picture: decode in presentation order and
// convert to 32-bit pixels, at full, half and quarter size.
void BM_DecodeBusy1080i(benchmark::State& state)
{
    const std::string& path = busyClip();
    const int reduce = int(state.range(0));
    std::unique_ptr<vv::TakeVideo> take;
    if (vv::TakeVideo::open({path}, vv::VideoClip::Use::Playback, take) != VV_OK) {
        state.SkipWithError("cannot open the busy clip");
        return;
    }
    vv::FrameConverter converter(SWS_FAST_BILINEAR);
    AVFrame* picture = av_frame_alloc();
    std::vector<uint8_t> pixels;
    int64_t frames = 0;
    const auto started = std::chrono::steady_clock::now();
    const std::clock_t cpuStarted = std::clock();
    for (auto _ : state) {
        take->seek(0);
        int64_t n = 0;
        while (take->decode(picture, n) == VV_OK) {
            const int w = picture->width >> reduce, h = picture->height >> reduce;
            pixels.resize(size_t(w) * size_t(h) * 4);
            converter.convert(picture, w, h, AV_PIX_FMT_BGRA, pixels.data(), w * 4);
            av_frame_unref(picture);
            ++frames;
        }
    }
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - started).count();
    // Processor time of every thread (the decoder's own included): what the
    // frame costs whatever else runs on the machine.
    const double cpuSeconds = double(std::clock() - cpuStarted) / CLOCKS_PER_SEC;
    av_frame_free(&picture);
    const double frameTime = 1001.0 / 30000;
    const double perFrame = frames ? seconds / double(frames) : 0;
    const double cpuPerFrame = frames ? cpuSeconds / double(frames) : 0;
    state.counters["frames"] = double(frames);
    state.counters["ms per frame"] = perFrame * 1000;
    state.counters["of frame time"] = perFrame / frameTime;
    state.counters["cpu ms per frame"] = cpuPerFrame * 1000;
    state.counters["cpu of frame time"] = cpuPerFrame / frameTime;
}
BENCHMARK(BM_DecodeBusy1080i)
    ->Arg(0)
    ->Arg(1)
    ->Arg(2)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->Iterations(1);

// Real-time playback of the busy clip through vv_play with frame dropping on:
// every frame must still be shown, on time.
struct PlaybackRecord
{
    std::mutex mutex;
    std::condition_variable done;
    bool stopped = false;
    std::vector<int64_t> frames;
    std::vector<double> lateness; // seconds after its due time
    std::chrono::steady_clock::time_point first;
};

void BM_Playback1080i(benchmark::State& state)
{
    const std::string& path = busyClip();
    PlaybackRecord record;
    vv_display_t display{};
    display.frame_context = &record;
    display.frame_sink = [](void* context, const vv_frame_t* frame) {
        auto* r = static_cast<PlaybackRecord*>(context);
        const auto now = std::chrono::steady_clock::now();
        std::lock_guard lock(r->mutex);
        if (r->frames.empty())
            r->first = now;
        r->frames.push_back(frame->frame_no);
        r->lateness.push_back(std::chrono::duration<double>(now - r->first).count() -
                              double(frame->frame_no) * 1001 / 30000);
    };
    const char* texts[31] = {};
    texts[22] = "0"; // every frame reported
    texts[23] = "1"; // late frames dropped
    vv_init_param_t param;
    std::memcpy(&param, texts, sizeof param);
    if (vv_init(&param, &display, 0) != VV_OK) {
        state.SkipWithError("vv_init failed");
        return;
    }
    vv_set_callback_func_g(
        [](vv_viewer_message_t* message, void* context) {
            auto* r = static_cast<PlaybackRecord*>(context);
            if (message->message_id == VM_STOPPED) {
                std::lock_guard lock(r->mutex);
                r->stopped = true;
                r->done.notify_all();
            }
        },
        &record);
    const char* paths[] = {path.c_str()};
    vv_av_info_t info{};
    vv_set_av_info(paths, 1, &info);
    for (auto _ : state) {
        vv_play();
        std::unique_lock lock(record.mutex);
        record.done.wait(lock, [&] { return record.stopped; });
    }
    vv_exit();
    double worst = 0;
    for (double late : record.lateness)
        worst = std::max(worst, late);
    state.counters["frames"] = double(info.total_frames);
    state.counters["shown"] = double(record.frames.size());
    state.counters["dropped"] = double(info.total_frames) - double(record.frames.size());
    state.counters["worst late ms"] = worst * 1000;
}
BENCHMARK(BM_Playback1080i)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(1);

} // namespace

BENCHMARK_MAIN();
