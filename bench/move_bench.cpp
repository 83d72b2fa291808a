// Moving every take of a card into a new folder on the same volume, as the
// move dialog runs it after OK: the checks, the journal, the folders, both
// folders' index files. A generated card of n short single clips (cardgen's
// fast mode) is copied afresh before each run, outside the timing.
#include "BenchSupport.h"
#include "core/card/BLHouseKeepingCtrl.h"
#include "core/operations/BLClipMoveCtrl.h"
#include "core/services/BLHeadlessProgressView.h"
#include "core/services/BLProgressCtrl.h"

#include <QDir>
#include <QFileInfo>
#include <QProcess>

namespace {

void BM_MoveTakes(benchmark::State& state)
{
    const int clips = int(state.range(0));
    const QString card = bench::cardOf(clips);
    const QString parent = QFileInfo(card).path() + "/moves";
    const QString source = parent + "/Card";
    const QString destination = parent + "/Moved";
    BLHeadlessProgressView progress;
    BLProgressCtrl::sharedCtrl()->setView(&progress);
    for (auto _ : state) {
        state.PauseTiming();
        QDir(parent).removeRecursively();
        QDir().mkpath(parent);
        if (QProcess::execute("cp", {"-a", card, source}) != 0)
            state.SkipWithError("cp failed");
        const QList<DOTakeData> takes = BLHouseKeepingCtrl().doHouseKeeping(source);
        DOClipCtrl record;
        record.setSourceWorkFolder(parent + "/Card");
        record.setDestinationWorkFolder(parent + "/Moved");
        record.setFromTakes(takes);
        record.setBeforeTakes(takes);
        state.ResumeTiming();

        BLClipMoveCtrl ctrl(nullptr, record, nullptr, nullptr);
        if (ctrl.checkRequest("Moved") != BLClipMoveCtrl::kCheckReady || !ctrl.execClipMove())
            state.SkipWithError("the move failed");
    }
    BLProgressCtrl::sharedCtrl()->setView(nullptr);
    if (BLHouseKeepingCtrl().doHouseKeeping(destination).size() != clips)
        state.SkipWithError("wrong number of takes moved");
    state.counters["takes_per_s"] =
        benchmark::Counter(double(clips), benchmark::Counter::kIsIterationInvariantRate);
}

} // namespace

BENCHMARK(BM_MoveTakes)->Arg(60)->Arg(300)->Arg(600)->Unit(benchmark::kMillisecond)->UseRealTime();

CLIPWRIGHT_BENCHMARK_MAIN()
