// Deleting every take of a card as the Delete command does without its
// question: the checks, the worker under the (headless) progress dialog and
// the rewrite of the media profile. Generated cards of n short single clips
// (cardgen's fast mode); each run deletes from a fresh copy, made and read
// outside the timing. 600 takes should go in well under 2 s.
#include "BenchSupport.h"
#include "core/card/BLHouseKeepingCtrl.h"
#include "core/operations/BLClipDeleteCtrl.h"
#include "core/services/BLCommon.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

#include <optional>

namespace {

void BM_DeleteAllTakes(benchmark::State& state)
{
    const int clips = int(state.range(0));
    const QString card = bench::cardOf(clips);
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
        record.setSourceWorkFolder(work);
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

CLIPWRIGHT_BENCHMARK_MAIN()
