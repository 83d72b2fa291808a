// Throughput of BLCommon::copyFileWithProgress on one large file, without
// verification (verify:0) and with the read-back check (verify:1).
// COPY_BENCH_SOURCE names the file; the copy goes to COPY_BENCH_DEST (default:
// beside the source as "<source>.copy").
#include "BenchSupport.h"
#include "core/services/BLCommon.h"
#include "core/services/BLProgressThread.h"

#include <QFile>
#include <QFileInfo>

#include <cstdlib>

namespace {

QString environment(const char* name)
{
    const char* value = std::getenv(name);
    return value ? QString::fromLocal8Bit(value) : QString();
}

// A worker that reports progress but does not pause between chunks.
class NoPauseWorker : public BLProgressThread
{
public:
    void waitThread() override {}
};

void copyOnce(benchmark::State& state, BLProgressThread* worker)
{
    const bool verify = state.range(0) != 0;
    const QString source = environment("COPY_BENCH_SOURCE");
    QString destination = environment("COPY_BENCH_DEST");
    if (destination.isEmpty())
        destination = source + ".copy";
    const qint64 size = QFileInfo(source).size();
    if (size <= 0) {
        state.SkipWithError("set COPY_BENCH_SOURCE to an existing file");
        return;
    }
    for (auto _ : state) {
        state.PauseTiming();
        QFile::remove(destination);
        state.ResumeTiming();
        qint64 done = 0;
        if (BLCommon::copyFileWithProgress(source, destination, worker, &done, size / 1048576, verify) != 0) {
            state.SkipWithError("copy failed");
            break;
        }
    }
    QFile::remove(destination);
    state.SetBytesProcessed(state.iterations() * size);
}

void BM_CopyWithProgress(benchmark::State& state)
{
    NoPauseWorker worker;
    copyOnce(state, &worker);
}

// The same with the base worker's 100 ms pause after every chunk.
void BM_CopyWithProgressDefaultPause(benchmark::State& state)
{
    BLProgressThread worker;
    copyOnce(state, &worker);
}

} // namespace

BENCHMARK(BM_CopyWithProgress)
    ->ArgName("verify")
    ->Arg(0)
    ->Arg(1)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->Iterations(1);
BENCHMARK(BM_CopyWithProgressDefaultPause)
    ->ArgName("verify")
    ->Arg(0)
    ->Arg(1)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->Iterations(1);

CLIPWRIGHT_BENCHMARK_MAIN()
