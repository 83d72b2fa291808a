// The media pane with a card of 600 takes (cardgen's fast mode), in the main
// window as the application builds it, on the offscreen platform:
//
//   panes_bench --benchmark_counters_tabular=true
//
// - SelectFolderToGridShown: from choosing the card in the folder list to the
//   grid painted with its 600 items, housekeeping included (it runs on its
//   worker while the event loop turns).
// - ScrollWholeGrid: the grid scrolled from top to bottom one page at a time,
//   each page painted, so every row is painted once (the pictures asked for on
//   the way are decoded by the thumbnail cache's worker meanwhile).
#include "core/app/BLMainWindowCtrl.h"
#include "core/app/panes/BLMediaInfoCtrl.h"
#include "core/app/panes/BLThumbViewCtrl.h"
#include "core/card/BLTreeViewCtrl.h"
#include "core/services/BLCommon.h"
#include "support/CardFolder.h"
#include "support/MessageRecorder.h"
#include "support/TestEnvironment.h"
#include "ui/app/SCMainWindow.h"
#include "ui/panes/SCMediaInfoView.h"
#include "ui/panes/SCThumbView.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QScrollBar>

#include <benchmark/benchmark.h>

#include <memory>

namespace {

constexpr int kTakes = 600;

// The window, its controller and the card, made on first use and kept for the run.
struct Panes
{
    cwtest::CardFolder card{[] {
        cardgen::Options options = cwtest::CardFolder::quick();
        options.clips = kTakes;
        options.fast = true;
        return options;
    }()};
    cwtest::MessageRecorder messages;
    std::unique_ptr<SCMainWindow> window;
    std::unique_ptr<BLMainWindowCtrl> ctrl;
    BLMediaInfoCtrl* pane = nullptr;
    SCThumbView* view = nullptr;

    Panes()
    {
        if (!card.ok())
            qFatal("cardgen: %s", qPrintable(card.error()));
        // The folder list shows the card's parent: row 1 the card, row 2 an empty folder.
        const QString parent = QFileInfo(card.workFolder()).path();
        QDir(parent).mkdir(QStringLiteral("empty"));
        window = std::make_unique<SCMainWindow>();
        ctrl = std::make_unique<BLMainWindowCtrl>(*window);
        window->setController(ctrl.get());
        ctrl->awakeFromNib();
        window->installPaneViews();
        window->setWindowFrame(QRectF(0, 0, 1280, 820));
        window->show();
        pane = ctrl->getMediaInfoCtrl(0);
        view = window->mediaInfoView(0)->thumbView();
        ctrl->initializeCtrl();
        pane->setWorkFolder(parent, false);
        settle();
    }

    BLThumbViewCtrl* grid() const { return pane->thumbViewCtrl(); }

    static void settle()
    {
        for (int i = 0; i < 5; ++i)
            QApplication::processEvents();
    }

    // Chooses a row of the folder list and waits until the grid holds rows
    // and has been painted.
    void selectFolder(int row, int rows)
    {
        pane->treeViewCtrl()->selectTreeIndex(row);
        QElapsedTimer timer;
        timer.start();
        while (grid()->rowCount() != rows) {
            if (timer.elapsed() > 60000)
                qFatal("the grid did not load");
            QApplication::processEvents(QEventLoop::AllEvents, 5);
        }
        view->viewport()->repaint();
    }
};

// Made on first use; gone before the application object.
std::unique_ptr<Panes> g_panes;

Panes& panes()
{
    if (!g_panes)
        g_panes = std::make_unique<Panes>();
    return *g_panes;
}

void BM_SelectFolderToGridShown(benchmark::State& state)
{
    Panes& p = panes();
    p.selectFolder(1, kTakes); // the first pass writes what housekeeping repairs
    for (auto _ : state) {
        state.PauseTiming();
        p.selectFolder(2, 0);
        Panes::settle();
        state.ResumeTiming();
        p.selectFolder(1, kTakes);
    }
    state.counters["takes"] = kTakes;
}
BENCHMARK(BM_SelectFolderToGridShown)->Unit(benchmark::kMillisecond)->Iterations(5);

void BM_ScrollWholeGrid(benchmark::State& state)
{
    Panes& p = panes();
    p.selectFolder(1, kTakes);
    QScrollBar* bar = p.view->verticalScrollBar();
    int pages = 0;
    for (auto _ : state) {
        bar->setValue(0);
        pages = 0;
        for (;;) {
            p.view->viewport()->repaint();
            QApplication::processEvents(); // pictures that have arrived
            ++pages;
            if (bar->value() >= bar->maximum())
                break;
            bar->setValue(bar->value() + p.view->viewport()->height());
        }
    }
    state.counters["pages"] = pages;
}
BENCHMARK(BM_ScrollWholeGrid)->Unit(benchmark::kMillisecond)->Iterations(5);

} // namespace

int main(int argc, char** argv)
{
    cwtest::isolateProcessHome(); // settings, log and thumbnail cache in a temporary home
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    g_panes.reset();
    return 0;
}
