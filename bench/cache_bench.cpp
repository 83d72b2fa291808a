// Thumbnail cache: what a cache hit costs against making a new picture, on a
// take of 1920 x 1080 pictures.
//
//   cache_bench --benchmark_counters_tabular=true
//
// BM_CacheHit: the serving function on a cached picture (find and read the
// BMP file). BM_CacheHitRequestToPicture: from the request notification to the
// picture's notification on the main thread, with the worker idle.
// BM_CacheMiss: decoding the key frame and writing the cache file.
#include "BenchSupport.h"
#include "core/app/preview/BLCacheImageCtrl.h"
#include "core/card/DOTakeData.h"
#include "core/services/BLCommon.h"
#include "core/services/SCNotificationCenter.h"
#include "core/services/SCNotificationNames.h"
#include "support/CardFolder.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>

#include <chrono>
#include <cstdio>
#include <cstdlib>

namespace {

struct Take
{
    QString folder;
    DOTakeData take;
};

// One single-clip take of 30 frames at 1920 x 1080, key frame 17.
const Take& benchTake()
{
    static cwtest::CardFolder* card = nullptr;
    static Take take;
    if (card)
        return take;
    cardgen::Options options;
    options.clips = 1;
    options.frames = 30;
    card = new cwtest::CardFolder(options);
    if (!card->ok()) {
        std::fprintf(stderr, "cardgen: %s\n", qPrintable(card->error()));
        std::abort();
    }
    const cardgen::ManifestTake& made = card->manifest().takes.front();
    take.folder = card->workFolder();
    take.take.setUmid(made.umid);
    take.take.setKeyFrame(17);
    take.take.setTakeStatus(0);
    for (const cardgen::ManifestFile& file : made.clips.front().files)
        if (file.kind == QLatin1String("MP4"))
            take.take.setMP4Uri("./" + file.path.mid(card->manifest().cards.front().bpav.size() + 1));
    return take;
}

// Runs the event loop for a while (lets the worker finish its pause).
void processFor(int milliseconds)
{
    QElapsedTimer clock;
    clock.start();
    while (clock.elapsed() < milliseconds)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
}

void BM_CacheHit(benchmark::State& state)
{
    const Take& take = benchTake();
    BLCacheImageCtrl ctrl;
    ctrl.setExitThread();
    const DOCacheRequestData request(0, take.folder, take.take);
    if (ctrl.getViewerImage(request).isNull() || ctrl.searchCacheImage(request).isEmpty()) {
        state.SkipWithError("no cache file");
        return;
    }
    for (auto _ : state)
        benchmark::DoNotOptimize(ctrl.getCacheImage(request));
}
BENCHMARK(BM_CacheHit)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_CacheHitRequestToPicture(benchmark::State& state)
{
    const Take& take = benchTake();
    BLCacheImageCtrl ctrl;
    const DOCacheRequestData request(0, take.folder, take.take);
    if (ctrl.getViewerImage(request).isNull()) {
        state.SkipWithError("no picture");
        return;
    }
    bool delivered = false;
    SCNotificationCenter::defaultCenter()->addObserver(&delivered, SC::SCCacheImageDidGetNotification,
                                                       [&](const SCNotification&) { delivered = true; });
    const QVariantMap userInfo{{SC::SCCacheRMediaInfoKey, 0},
                               {SC::SCCacheRSelectFolderKey, take.folder},
                               {SC::SCCacheRTakeDataKey, QVariant::fromValue(take.take)}};
    for (auto _ : state) {
        processFor(150); // past the worker's pause after the previous picture
        delivered = false;
        const auto start = std::chrono::steady_clock::now();
        BLCommon::sharedCtrl()->sendNotificationNow(nullptr, SC::SCCacheImageRequestNotification, userInfo);
        while (!delivered)
            QCoreApplication::processEvents(QEventLoop::AllEvents);
        state.SetIterationTime(
            std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    }
    SCNotificationCenter::defaultCenter()->removeObserver(&delivered);
}
BENCHMARK(BM_CacheHitRequestToPicture)->Unit(benchmark::kMillisecond)->UseManualTime()->Iterations(30);

void BM_CacheMiss(benchmark::State& state)
{
    const Take& take = benchTake();
    BLCacheImageCtrl ctrl;
    ctrl.setExitThread();
    const DOCacheRequestData request(0, take.folder, take.take);
    for (auto _ : state) {
        state.PauseTiming();
        QFile::remove(ctrl.searchCacheImage(request));
        state.ResumeTiming();
        benchmark::DoNotOptimize(ctrl.getViewerImage(request));
    }
}
BENCHMARK(BM_CacheMiss)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace

CLIPWRIGHT_BENCHMARK_MAIN()
