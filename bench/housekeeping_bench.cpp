// Housekeeping of a card as a pane loads it: a generated card of n short
// single clips (cardgen's fast mode), its media profile listing them all,
// read with a warm file cache. The growth from 60 to 600 clips should be
// close to linear.
#include "cardgen/CardGenerator.h"
#include "core/metadata/BLHouseKeepingCtrl.h"

#include <QCoreApplication>
#include <QDir>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <map>
#include <memory>

namespace {

// One card per size, made on first use and kept for the run.
QString cardOf(int clips)
{
    static std::map<int, std::unique_ptr<QTemporaryDir>> cards;
    auto& dir = cards[clips];
    if (!dir) {
        dir = std::make_unique<QTemporaryDir>();
        cardgen::Options options;
        options.outputFolder = dir->filePath(QStringLiteral("card"));
        options.clips = clips;
        options.frames = 6;
        options.size = QStringLiteral("tiny");
        options.frameRate = QStringLiteral("29.97p");
        options.fast = true;
        QString error;
        if (!cardgen::CardGenerator::generate(options, &error))
            qFatal("cardgen: %s", qPrintable(error));
    }
    return dir->filePath(QStringLiteral("card"));
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
    // Keep the benchmark's log and settings out of the real home folder.
    QTemporaryDir home;
    qputenv("HOME", home.path().toUtf8());
    qputenv("XDG_CONFIG_HOME", (home.path() + "/.config").toUtf8());
    qputenv("XDG_STATE_HOME", (home.path() + "/.local/state").toUtf8());
    qputenv("XDG_CACHE_HOME", (home.path() + "/.cache").toUtf8());
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
