// Housekeeping of a card as a pane loads it: a generated card of n short
// single clips (cardgen's fast mode), its media profile listing them all,
// read with a warm file cache. The growth from 60 to 600 clips should be
// close to linear.
#include "core/metadata/BLHouseKeepingCtrl.h"
#include "support/CardFolder.h"
#include "support/TestEnvironment.h"

#include <QCoreApplication>

#include <benchmark/benchmark.h>

#include <map>
#include <memory>

namespace {

// One card per size, made on first use and kept for the run.
QString cardOf(int clips)
{
    static std::map<int, std::unique_ptr<cwtest::CardFolder>> cards;
    auto& card = cards[clips];
    if (!card) {
        cardgen::Options options = cwtest::CardFolder::quick();
        options.clips = clips;
        options.fast = true;
        card = std::make_unique<cwtest::CardFolder>(options);
        if (!card->ok())
            qFatal("cardgen: %s", qPrintable(card->error()));
    }
    return card->workFolder();
}

void BM_HouseKeeping(benchmark::State& state)
{
    const int clips = int(state.range(0));
    const QString card = cardOf(clips);
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

int main(int argc, char** argv)
{
    cwtest::isolateProcessHome(); // the log and settings stay out of the real home folder
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
