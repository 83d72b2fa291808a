// Deleting every take of a card as the Delete command does without its
// question: the checks, the worker under the (headless) progress dialog and
// the rewrite of the media profile. Generated cards of n short single clips
// (cardgen's fast mode); each run deletes from a fresh copy, made and read
// outside the timing. 600 takes should go in well under 2 s.
#include "core/common/BLCommon.h"
#include "core/metadata/BLHouseKeepingCtrl.h"
#include "core/operations/BLClipDeleteCtrl.h"
#include "support/CardFolder.h"
#include "support/TestEnvironment.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <map>
#include <memory>
#include <optional>

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

void BM_DeleteAllTakes(benchmark::State& state)
{
    const int clips = int(state.range(0));
    const QString card = cardOf(clips);
    std::optional<QTemporaryDir> dir; // the last copy goes while timing is paused
    for (auto _ : state) {
        state.PauseTiming();
        dir.emplace();
        const QString work = dir->filePath(QStringLiteral("card"));
        QList<DOTakeData> takes;
        if (BLCommon::copyFile(card, work))
            takes = BLHouseKeepingCtrl().doHouseKeeping(work);
        if (takes.size() != clips) {
            state.SkipWithError("the card's copy does not hold its takes");
            break;
        }
        DOClipCtrl record;
        record.setCopyFromPath(QFileInfo(work).path());
        record.setCopyFromFolderName(QFileInfo(work).fileName());
        record.setFromTakes(takes);
        record.setBeforeTakes(takes);
        record.setToTakes(takes);
        BLClipDeleteCtrl ctrl(record, nullptr);
        state.ResumeTiming();

        const bool deleted = ctrl.clipDelete(false);

        state.PauseTiming();
        if (!deleted || !QDir(BLCommon::getPathOfBPAV(work) + QStringLiteral("/CLPR")).isEmpty())
            state.SkipWithError("not every take was deleted");
        state.ResumeTiming();
    }
    state.counters["takes_per_s"] =
        benchmark::Counter(double(clips), benchmark::Counter::kIsIterationInvariantRate);
}

} // namespace

BENCHMARK(BM_DeleteAllTakes)
    ->Arg(60)
    ->Arg(300)
    ->Arg(600)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->Iterations(5);

int main(int argc, char** argv)
{
    cwtest::isolateProcessHome(); // the log and settings stay out of the real home folder
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
