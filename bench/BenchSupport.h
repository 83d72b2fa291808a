#pragma once

// What the benchmarks share: their generated cards and their main().
#include "core/card/BLHouseKeepingCtrl.h"
#include "support/CardFolder.h"
#include "support/TestEnvironment.h"

#include <QCoreApplication>
#include <QString>

#include <benchmark/benchmark.h>

#include <map>
#include <memory>

namespace bench {

// A card of n short single clips (cardgen's fast mode) whose index files
// housekeeping has written, made on first use and kept for the run.
inline QString cardOf(int clips)
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
        BLHouseKeepingCtrl().doHouseKeeping(card->workFolder());
    }
    return card->workFolder();
}

// Runs the registered benchmarks with a core application in a temporary
// home, so the log, the settings and the caches stay out of the real one.
inline int runBenchmarks(int argc, char** argv)
{
    cwtest::isolateProcessHome();
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}

} // namespace bench

#define CLIPWRIGHT_BENCHMARK_MAIN()                                                                          \
    int main(int argc, char** argv)                                                                          \
    {                                                                                                        \
        return bench::runBenchmarks(argc, argv);                                                             \
    }
