// Housekeeping of a card as a pane loads it: a generated card of n short
// single clips (cardgen's fast mode), its media profile listing them all,
// read with a warm file cache. The growth from 60 to 600 clips should be
// close to linear.
#include "BenchSupport.h"
#include "core/card/BLHouseKeepingCtrl.h"

namespace {

void BM_HouseKeeping(benchmark::State& state)
{
    const int clips = int(state.range(0));
    const QString card = bench::cardOf(clips);
    BLHouseKeepingCtrl().doHouseKeeping(card); // warms the cache
    for (auto _ : state) {
        BLHouseKeepingCtrl houseKeeping;
        const QList<DOTakeData> takes = houseKeeping.doHouseKeeping(card);
        if (takes.size() != clips)
            state.SkipWithError("wrong number of takes");
        benchmark::DoNotOptimize(takes);
    }
    state.counters["clips_per_s"] =
        benchmark::Counter(double(clips), benchmark::Counter::kIsIterationInvariantRate);
}

} // namespace

BENCHMARK(BM_HouseKeeping)->Arg(60)->Arg(300)->Arg(600)->Unit(benchmark::kMillisecond)->UseRealTime();

CLIPWRIGHT_BENCHMARK_MAIN()
