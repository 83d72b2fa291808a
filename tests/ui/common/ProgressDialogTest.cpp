#include "ui/common/ProgressDialog.h"
#include "core/services/BLLocalizedStrings.h"
#include "core/services/BLProgressCtrl.h"
#include "core/services/BLProgressThread.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QLabel>
#include <QMainWindow>
#include <QProgressBar>
#include <QPushButton>
#include <QTimer>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>

namespace {

// Shows "working" with an unknown end, then a determinate step, then waits
// for Cancel (at most five seconds).
class WaitingWorker : public BLProgressThread
{
public:
    QString getInitTitle() override { return "Copy"; }
    QString getInitMessage() override { return "BTN_STYLE_YES"; }
    void loopProcess() override
    {
        QElapsedTimer clock;
        clock.start();
        while (!isCancel() && clock.elapsed() < 5000) {
            if (clock.elapsed() > 200 && !reported.exchange(true))
                setProgress(25, 0, 100);
            waitThread();
        }
    }
    void waitThread() override { std::this_thread::sleep_for(std::chrono::milliseconds(10)); }

    std::atomic<bool> reported{false};
};

} // namespace

TEST(ProgressDialogTest, TheDialogShowsTheRunAndItsCancelButtonEndsIt)
{
    QMainWindow window;
    window.show();
    ProgressDialog dialog(&window);
    BLProgressCtrl* ctrl = BLProgressCtrl::sharedCtrl();
    ctrl->setView(&dialog);
    auto* message = dialog.findChild<QLabel*>("message");
    auto* bar = dialog.findChild<QProgressBar*>("progress");
    auto* cancel = dialog.findChild<QPushButton*>("cancel");
    ASSERT_TRUE(message && bar && cancel);

    // While it runs: modal, a busy bar until the first step, then the step.
    bool sawBusy = false, escapeKeptOpen = false;
    int sawValue = -1;
    QTimer probe;
    probe.setInterval(20);
    QObject::connect(&probe, &QTimer::timeout, [&] {
        if (!dialog.isVisible())
            return;
        sawBusy = sawBusy || (bar->maximum() == 0 && dialog.windowModality() == Qt::WindowModal);
        if (bar->maximum() > 0 && sawValue < 0) {
            sawValue = bar->value() * 100 / bar->maximum();
            QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
            QApplication::sendEvent(&dialog, &escape); // Escape acts as Cancel
            escapeKeptOpen = dialog.isVisible();
        }
    });
    probe.start();

    const auto worker = std::make_shared<WaitingWorker>();
    EXPECT_TRUE(ctrl->showProgress(worker, true));
    probe.stop();

    EXPECT_TRUE(sawBusy);
    EXPECT_EQ(sawValue, 25);
    EXPECT_TRUE(escapeKeptOpen); // only the worker's end closes the dialog
    EXPECT_FALSE(dialog.isVisible());
    EXPECT_EQ(dialog.windowTitle(), "Copy");
    EXPECT_EQ(message->text(), BLLocalizedString("BTN_STYLE_YES"));

    // A second run clicks the button itself.
    QTimer::singleShot(300, cancel, [cancel] { cancel->click(); });
    EXPECT_TRUE(ctrl->showProgress(std::make_shared<WaitingWorker>(), true));
    BLProgressCtrl::releaseCtrl();
}
