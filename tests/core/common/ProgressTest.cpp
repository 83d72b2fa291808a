#include "core/services/BLHeadlessProgressView.h"
#include "core/services/BLProgressCtrl.h"
#include "core/services/BLProgressThread.h"

#include <QThread>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <thread>

namespace {

// The headless dialog, keeping the values shown and able to react to
// progress like a user watching the bar.
class RecordingView : public BLHeadlessProgressView
{
public:
    void setDeterminate(double value, double min, double max) override
    {
        values << value;
        BLHeadlessProgressView::setDeterminate(value, min, max);
        if (onProgress)
            onProgress(value);
    }
    void runModal(BLProgressCtrl* controller) override
    {
        ++modalRuns;
        BLHeadlessProgressView::runModal(controller);
    }

    QList<double> values;
    int modalRuns = 0;
    std::function<void(double)> onProgress;
};

// A worker whose steps are given by the test.
class ScriptedWorker : public BLProgressThread
{
public:
    explicit ScriptedWorker(std::function<void(ScriptedWorker*)> work, double initMax = 0)
        : m_work(std::move(work)), m_initMax(initMax)
    {
    }
    QString getInitTitle() override { return "Copy"; }
    QString getInitMessage() override { return "BTN_STYLE_CANCEL"; } // a key with an entry
    void getInitProgress(double* value, double* min, double* max) override
    {
        *value = 0;
        *min = 0;
        *max = m_initMax;
    }
    void loopProcess() override
    {
        started = true;
        thread = QThread::currentThread();
        m_work(this);
    }
    void waitThread() override { std::this_thread::sleep_for(std::chrono::milliseconds(10)); }
    using BLProgressThread::progressValue;

    std::atomic<bool> started{false};
    std::atomic<QThread*> thread{nullptr};

private:
    std::function<void(ScriptedWorker*)> m_work;
    double m_initMax;
};

class ProgressTest : public ::testing::Test
{
protected:
    void SetUp() override { BLProgressCtrl::sharedCtrl()->setView(&view); }
    void TearDown() override { BLProgressCtrl::releaseCtrl(); }

    RecordingView view;
};

} // namespace

TEST_F(ProgressTest, AWorkerDoneAtOnceStillWaitsForTheDialog)
{
    BLProgressCtrl* ctrl = BLProgressCtrl::sharedCtrl();
    auto worker = std::make_shared<ScriptedWorker>([](ScriptedWorker*) {});

    // Its thread alone: the work does not begin before setStart.
    std::thread thread([&] { worker->startThread(ctrl); });
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    EXPECT_FALSE(worker->started);
    EXPECT_FALSE(worker->getProcessFlag());
    worker->setStart();
    thread.join();
    EXPECT_TRUE(worker->started);
    EXPECT_TRUE(worker->getProcessFlag());

    // A whole run: the work starts on its own thread only once the dialog runs.
    auto second = std::make_shared<ScriptedWorker>([this](ScriptedWorker* w) {
        EXPECT_TRUE(w->isStart());
        EXPECT_EQ(view.modalRuns, 1);
    });
    EXPECT_FALSE(ctrl->showProgress(second, true));
    EXPECT_TRUE(second->started);
    EXPECT_NE(second->thread.load(), QThread::currentThread());
    EXPECT_FALSE(view.isVisible());
}

// The initial maximum 0 shown busy is left to the dialog's widget test.
TEST_F(ProgressTest, ALaterMaximumZeroGivesABusyBarAndTheWorkerSetsTheTexts)
{
    std::atomic<int> shown{0};
    view.onProgress = [&](double) { ++shown; };
    auto worker = std::make_shared<ScriptedWorker>([&](ScriptedWorker* w) {
        w->setProgress(3, 0, 10);
        while (shown == 0) // until the bar shows it
            w->waitThread();
        w->setProgress(5, 0, 0);
        w->setTitle("second title");
        w->setMessage("working");
        w->setCancelEnable(false);
    });
    EXPECT_FALSE(BLProgressCtrl::sharedCtrl()->showProgress(worker, true));
    EXPECT_EQ(view.values, QList<double>{3});
    EXPECT_FALSE(view.isDeterminate());
    EXPECT_EQ(view.title(), "second title");
    EXPECT_EQ(view.message(), "working");
    EXPECT_FALSE(view.isCancelEnabled());
}

TEST_F(ProgressTest, FastProgressShowsTheLatestValues)
{
    BLProgressCtrl* ctrl = BLProgressCtrl::sharedCtrl();
    auto worker = std::make_shared<ScriptedWorker>(
        [](ScriptedWorker* w) {
            for (int i = 1; i <= 2000; ++i)
                w->setProgress(i, 0, 2000);
        },
        2000);
    EXPECT_FALSE(ctrl->showProgress(worker, true));
    ASSERT_FALSE(view.values.isEmpty());
    EXPECT_EQ(view.values.last(), 2000);
    EXPECT_TRUE(std::is_sorted(view.values.begin(), view.values.end()));
    EXPECT_EQ(worker->progressValue(), 2000);
}

TEST_F(ProgressTest, ARunWithoutTheDialogWorksOnTheMainThread)
{
    BLProgressCtrl* ctrl = BLProgressCtrl::sharedCtrl();
    auto worker = std::make_shared<ScriptedWorker>([](ScriptedWorker* w) { EXPECT_FALSE(w->isStart()); });
    EXPECT_FALSE(ctrl->showProgress(worker, false));
    EXPECT_EQ(worker->thread.load(), QThread::currentThread());
    EXPECT_EQ(view.modalRuns, 0);

    // The result is the worker's own cancel flag after its work.
    auto selfCancelling = std::make_shared<ScriptedWorker>([](ScriptedWorker* w) { w->setCancel(); });
    EXPECT_TRUE(ctrl->showProgress(selfCancelling, false));
}
