// Folder division: the packing of 10,000 takes of 1 to 8 clips (seeded random
// clip sizes of 50 MB to 2 GB) onto disks of 4, 25 and 50 GB, with the disks
// used against the lower bound (total size / capacity, rounded up); and the
// division of a generated card of 600 single clips into folders of about ten
// clips each on the same volume, checks, moves and index files included (the
// card is copied afresh before each run, outside the timing).
#include "core/card/BLHouseKeepingCtrl.h"
#include "core/operations/BLFolderDivisionCtrl.h"
#include "core/operations/Segment.h"
#include "core/services/BLHeadlessProgressView.h"
#include "core/services/BLProgressCtrl.h"
#include "support/CardFolder.h"
#include "support/TestEnvironment.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QRandomGenerator>

#include <benchmark/benchmark.h>

#include <cmath>

namespace {

constexpr double kGB = 1073741824.0;

std::vector<TAKE> randomTakes(int count, double* total)
{
    QRandomGenerator random(42);
    std::vector<TAKE> takes(count);
    *total = 0;
    for (int t = 0; t < count; ++t) {
        TAKE& take = takes[t];
        take.umid = QByteArray::number(t);
        const int clips = random.bounded(1, 9);
        for (int c = 0; c < clips; ++c) {
            const double size = double(random.bounded(50, 2048)) * 1048576.0 + random.bounded(1048576);
            take.clips.push_back({take.umid + '-' + QByteArray::number(c), size, -1});
            take.totalSize += size;
        }
        take.remainSize = take.totalSize;
        *total += take.totalSize;
    }
    return takes;
}

void BM_PackTakes(benchmark::State& state)
{
    const double capacity = double(state.range(0)) * kGB;
    double total = 0;
    const std::vector<TAKE> takes = randomTakes(10000, &total);
    int disks = 0;
    for (auto _ : state) {
        state.PauseTiming();
        std::vector<TAKE> work = takes;
        state.ResumeTiming();
        if (Segment(work.data(), int(work.size()), capacity, &disks) != kSegmentDone)
            state.SkipWithError("Segment failed");
    }
    state.counters["disks"] = disks;
    state.counters["lower_bound"] = std::ceil(total / capacity);
}

void BM_DivideFolder(benchmark::State& state)
{
    const int clips = int(state.range(0));
    cardgen::Options options = cwtest::CardFolder::quick();
    options.clips = clips;
    options.fast = true;
    const cwtest::CardFolder card(options);
    if (!card.ok())
        qFatal("cardgen: %s", qPrintable(card.error()));
    const QString parent = QFileInfo(card.workFolder()).path() + "/divisions";
    const QString folder = parent + "/Card";
    BLHeadlessProgressView progress;
    BLProgressCtrl::sharedCtrl()->setView(&progress);
    int folders = 0;
    for (auto _ : state) {
        state.PauseTiming();
        QDir(parent).removeRecursively();
        QDir().mkpath(parent);
        if (QProcess::execute("cp", {"-a", card.workFolder(), folder}) != 0)
            state.SkipWithError("cp failed");
        const QList<DOTakeData> takes = BLHouseKeepingCtrl().doHouseKeeping(folder);
        state.ResumeTiming();

        BLFolderDivisionCtrl ctrl(nullptr, takes, folder, nullptr);
        QList<DOClipCtrl> records;
        if (!ctrl.planDivision(double(takes.front().getTakeSize()) * 10.5, records) ||
            !ctrl.runDivision(records))
            state.SkipWithError("the division failed");
        folders = int(records.size());
    }
    BLProgressCtrl::sharedCtrl()->setView(nullptr);
    state.counters["folders"] = folders;
    state.counters["takes_per_s"] =
        benchmark::Counter(double(clips), benchmark::Counter::kIsIterationInvariantRate);
}

} // namespace

BENCHMARK(BM_PackTakes)->Arg(4)->Arg(25)->Arg(50)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_DivideFolder)->Arg(600)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(3);

int main(int argc, char** argv)
{
    cwtest::isolateProcessHome(); // the log and settings stay out of the real home folder
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
