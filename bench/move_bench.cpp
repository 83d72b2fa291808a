// Moving every take of a card into a new folder on the same volume, as the
// move dialog runs it after OK: the checks, the journal, the folders, both
// folders' index files. A generated card of n short single clips (cardgen's
// fast mode) is copied afresh before each run, outside the timing.
#include "core/common/BLHeadlessProgressView.h"
#include "core/common/BLProgressCtrl.h"
#include "core/metadata/BLHouseKeepingCtrl.h"
#include "core/operations/BLClipMoveCtrl.h"
#include "support/CardFolder.h"
#include "support/TestEnvironment.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QProcess>

#include <benchmark/benchmark.h>

#include <map>
#include <memory>

namespace {

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
        BLHouseKeepingCtrl().doHouseKeeping(card->workFolder());
    }
    return card->workFolder();
}

void BM_MoveTakes(benchmark::State& state)
{
    const int clips = int(state.range(0));
    const QString card = cardOf(clips);
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
        record.setCopyFromPath(parent);
        record.setCopyFromFolderName("Card");
        record.setCopyToFolder(parent);
        record.setCopyToFolderName("Moved");
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

int main(int argc, char** argv)
{
    cwtest::isolateProcessHome(); // the log and settings stay out of the real home folder
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
