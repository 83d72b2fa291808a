// blCheckMP4 and StartConvert on a one-hour 1080i clip (107,895 pictures in
// 7,193 chunks of 15, a stereo PCM chunk beside each). The clip is written as
// a sparse file; the argument divides every sample size, so the two runs
// differ only in the size of mdat (about 3.8 GB and 38 MB).
#include "core/formats/mp4/CCreatePPT.h"
#include "support/Mp4Builder.h"

#include <QFile>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

using cwtest::Mp4Builder;
using cwtest::Mp4Track;

namespace {

constexpr int kChunks = 7193;
constexpr int kPicturesPerChunk = 15;

QTemporaryDir& folder()
{
    static QTemporaryDir dir;
    return dir;
}

QByteArray oneHourClip(int sizeDivisor)
{
    const QString path = folder().filePath(QString("hour-%1.MP4").arg(sizeDivisor));
    if (QFile::exists(path))
        return QFile::encodeName(path);
    Mp4Builder b;
    Mp4Track video;
    const QByteArray start = cwtest::mpeg2SequenceStart(1920, 1080, 3, 4, false);
    for (int c = 0; c < kChunks; ++c) {
        QList<quint32> sizes;
        QByteArray deps;
        for (int k = 0; k < kPicturesPerChunk; ++k) {
            const char type = k == 0 ? 'I' : k % 3 == 0 ? 'P' : 'B';
            sizes << quint32((type == 'I' ? 80000 : type == 'P' ? 40000 : 20000) / sizeDivisor + k);
            deps += type == 'I' ? cwtest::kDepI : type == 'P' ? cwtest::kDepP : cwtest::kDepB;
        }
        video.addVideoChunk(sizes, deps, c == 0 ? start + QByteArray(2048, '\x55') : QByteArray());
    }
    b.tracks << video;
    b.tracks << Mp4Builder::audioTrack("twos", 2, QList<quint32>(kChunks, 24024 / quint32(sizeDivisor)));
    if (!Mp4Builder::write(path, b.boxes()))
        return {};
    return QFile::encodeName(path);
}

void BM_CheckMP4(benchmark::State& state)
{
    const QByteArray path = oneHourClip(int(state.range(0)));
    for (auto _ : state) {
        CCreatePPT ppt;
        if (!ppt.blCheckMP4(path.constData())) {
            state.SkipWithError(ppt.getErrorText() ? ppt.getErrorText() : "check failed");
            break;
        }
        benchmark::DoNotOptimize(ppt.ulGetNumOfFrame());
        ppt.CloseCheckMP4();
    }
    state.counters["mdat_MB"] = double(QFile(QFile::decodeName(path)).size()) / 1e6;
}

void BM_StartConvert(benchmark::State& state)
{
    const QByteArray path = oneHourClip(int(state.range(0)));
    const QString ppn = folder().filePath("hour.PPN");
    QFile(ppn).open(QIODevice::WriteOnly);
    for (auto _ : state) {
        CCreatePPT ppt;
        if (!ppt.StartConvert(path.constData(), QFile::encodeName(ppn).constData())) {
            state.SkipWithError(ppt.getErrorText() ? ppt.getErrorText() : "conversion failed");
            break;
        }
    }
    state.counters["ppn_MB"] = double(QFile(ppn).size()) / 1e6;
}

} // namespace

BENCHMARK(BM_CheckMP4)->Arg(1)->Arg(100)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_StartConvert)->Arg(1)->Arg(100)->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
