// Export of a one-minute 1920x1080 59.94i take (two stereo PCM tracks) to an
// MPEG-2 transport stream through the conversion library, against the ffmpeg
// command line doing the same conversion of the same file in the same run:
//
//   ffmpeg -i CLIP.MP4 -map 0 -c:v copy -c:a mp2 -b:a 384k -f mpegts OUT.M2T
//
// Counters: export_s and ffmpeg_s (seconds a run, means), ratio = ffmpeg_s /
// export_s (1 or more: the export is at least as fast). Without ffmpeg on the
// PATH only the export is timed.
#include "cardgen/CardGenerator.h"
#include "media/mpeg2ts/mpeg2ts.h"

#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdlib>
#include <string>

namespace {

constexpr int kFrames = 1800; // 60.06 s at 29.97 frames a second

const QString& clip(QTemporaryDir& dir)
{
    static QString path;
    if (!path.isEmpty())
        return path;
    cardgen::Options options;
    options.outputFolder = dir.filePath(QStringLiteral("card"));
    options.clips = 1;
    options.frames = kFrames;
    options.audioTracks = 2;
    options.audioChannelsPerTrack = 2;
    QString error;
    const auto manifest = cardgen::CardGenerator::generate(options, &error);
    if (!manifest) {
        std::fprintf(stderr, "cardgen: %s\n", qPrintable(error));
        std::exit(1);
    }
    for (const auto& file : manifest->takes.front().clips.front().files)
        if (file.kind == QLatin1String("MP4"))
            path = options.outputFolder + QLatin1Char('/') + file.path;
    return path;
}

double seconds(const std::chrono::steady_clock::time_point& start)
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

void BM_ExportOneMinute1080i(benchmark::State& state)
{
    static QTemporaryDir dir;
    const QString input = clip(dir);
    const QString output = dir.filePath(QStringLiteral("EXPORT.M2T"));
    const QString reference = dir.filePath(QStringLiteral("FFMPEG.M2T"));
    const QString ffmpeg = QStandardPaths::findExecutable(QStringLiteral("ffmpeg"));
    mpeg2ts_init_param_t init{};
    MPEG2TSInit(&init);
    const std::wstring in = input.toStdWString(), out = output.toStdWString();
    const wchar_t* inputs[] = {in.c_str()};
    const mpeg2ts_convert_params_t params{};
    const std::string command = "\"" + ffmpeg.toStdString() + "\" -nostdin -loglevel error -y -i \"" +
                                input.toStdString() + "\" -map 0 -c:v copy -c:a mp2 -b:a 384k -f mpegts \"" +
                                reference.toStdString() + "\"";

    double exportTotal = 0, ffmpegTotal = 0;
    for (auto _ : state) {
        auto start = std::chrono::steady_clock::now();
        if (ConvertMPEG2TS(inputs, 1, out.c_str(), &params) != MPEG2TS_RESULT_DONE) {
            state.SkipWithError("the export failed");
            return;
        }
        const double exported = seconds(start);
        exportTotal += exported;
        state.SetIterationTime(exported);
        if (!ffmpeg.isEmpty()) {
            start = std::chrono::steady_clock::now();
            if (std::system(command.c_str()) != 0) {
                state.SkipWithError("ffmpeg failed");
                return;
            }
            ffmpegTotal += seconds(start);
        }
    }
    const double runs = double(state.iterations());
    state.counters["export_s"] = exportTotal / runs;
    state.counters["export_MiB"] = double(QFile(output).size()) / (1 << 20);
    if (!ffmpeg.isEmpty()) {
        state.counters["ffmpeg_s"] = ffmpegTotal / runs;
        state.counters["ffmpeg_MiB"] = double(QFile(reference).size()) / (1 << 20);
        state.counters["ratio"] = ffmpegTotal / exportTotal;
    } else {
        state.SetLabel("ffmpeg not found: no comparison");
    }
}
BENCHMARK(BM_ExportOneMinute1080i)->Iterations(3)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
