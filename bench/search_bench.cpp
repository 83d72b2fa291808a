// Clip search and the clip property dialog. The search walks a work folder
// of 20 sub-folders holding a card of 600 single clips each (12,000 clips)
// with a condition every take meets, as the search dialog runs it (the
// housekeeping pass of each folder included, the walk's pause of 0.1 s
// between folders too); it reports when the first row arrived on the main
// thread and when the search ended. The property dialog is opened on a take
// (the dialog built, filled and shown) and closed again.
#include "BenchSupport.h"
#include "core/operations/BLClipPropertyCtrl.h"
#include "core/operations/search/BLClipSearchCtrl.h"
#include "core/operations/search/IClipSearchView.h"
#include "core/services/BLCommon.h"
#include "ui/operations/ClipPropertyDialog.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

namespace {

constexpr int kFolders = 20;
constexpr int kClips = 600;

// The work folder: one generated card copied into each sub-folder.
QString workFolder()
{
    static QTemporaryDir root;
    static bool made = false;
    if (!made) {
        const QString bpav = BLCommon::getPathOfBPAV(bench::cardOf(kClips));
        for (int i = 1; i <= kFolders; ++i) {
            const QString folder = root.filePath(QStringLiteral("F%1").arg(i, 2, 10, QLatin1Char('0')));
            if (!BLCommon::createNewFolder(folder) ||
                !BLCommon::copyFile(bpav, QDir(folder).filePath(QStringLiteral("BPAV"))))
                qFatal("cannot copy the card");
        }
        made = true;
    }
    return root.path();
}

// The dialog: notes when the first row and the end arrive.
class TimingView : public IClipSearchView
{
public:
    QElapsedTimer clock;
    qint64 firstRow = -1;
    int rows = 0;
    QEventLoop loop;

    QString titleText() const override { return {}; }
    QString commentText() const override { return {}; }
    int interval() const override { return 0; }
    QDate dateFrom() const override { return {}; }
    QDate dateTo() const override { return {}; }
    void setTitleText(const QString&) override {}
    void setCommentText(const QString&) override {}
    void setInterval(int) override {}
    void setDates(const QDate&, const QDate&) override {}
    void setDatePickersEnabled(bool) override {}
    void setPlace(const QString&) override {}
    void setMessage(const QString&) override {}
    void setSearching(bool searching) override
    {
        if (!searching)
            loop.quit();
    }
    void setCancelEnabled(bool) override {}
    void clearRows() override { rows = 0; }
    void addRow(int, const QVariantMap&) override
    {
        if (rows++ == 0)
            firstRow = clock.nsecsElapsed();
    }
    int selectedRow() const override { return -1; }
    int runModal(BLClipSearchCtrl*) override { return 0; }
    void endModal(int) override {}
};

void BM_SearchTwentyFoldersOf600Clips(benchmark::State& state)
{
    const QString root = workFolder();
    TimingView view;
    BLClipSearchCtrl ctrl(&view, {});
    ctrl.setPath(root);
    double firstTotal = 0;
    for (auto _ : state) {
        view.clock.start();
        ctrl.onSearch();
        view.loop.exec();
        const double done = double(view.clock.nsecsElapsed()) / 1e9;
        if (view.rows != kFolders * kClips)
            state.SkipWithError("wrong number of rows");
        firstTotal += double(view.firstRow) / 1e9;
        state.SetIterationTime(done);
    }
    state.counters["first_row_s"] = firstTotal / double(state.iterations());
}

void BM_OpenPropertyDialog(benchmark::State& state)
{
    const QString folder = QDir(workFolder()).filePath(QStringLiteral("F01"));
    const QList<DOTakeData> takes = BLHouseKeepingCtrl().doHouseKeeping(folder);
    for (auto _ : state) {
        ClipPropertyDialog dialog;
        BLClipPropertyCtrl ctrl(&dialog, takes.at(kClips / 2), kClips / 2, folder, nullptr);
        ctrl.setOfLoadedData();
        dialog.show();
        QCoreApplication::processEvents();
        dialog.hide();
    }
}

} // namespace

BENCHMARK(BM_SearchTwentyFoldersOf600Clips)->Unit(benchmark::kMillisecond)->UseManualTime()->Iterations(3);
BENCHMARK(BM_OpenPropertyDialog)->Unit(benchmark::kMillisecond)->UseRealTime();

int main(int argc, char** argv)
{
    cwtest::isolateProcessHome(); // the log and settings stay out of the real home folder
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
