#include "core/services/BLProgressCtrl.h"

#include "core/services/BLHeadlessProgressView.h"
#include "core/services/BLLocalizedStrings.h"
#include "core/services/BLProgressThread.h"

#include <thread>

namespace {
BLProgressCtrl* g_shared = nullptr;
} // namespace

BLProgressCtrl::BLProgressCtrl() : m_headlessView(std::make_unique<BLHeadlessProgressView>()) {}

BLProgressCtrl::~BLProgressCtrl() = default;

BLProgressCtrl* BLProgressCtrl::sharedCtrl()
{
    if (!g_shared)
        g_shared = new BLProgressCtrl();
    return g_shared;
}

void BLProgressCtrl::releaseCtrl()
{
    delete g_shared;
    g_shared = nullptr;
}

void BLProgressCtrl::setView(IProgressView* view)
{
    m_view = view;
}

IProgressView* BLProgressCtrl::view() const
{
    return m_view ? m_view : m_headlessView.get();
}

bool BLProgressCtrl::showProgress(std::shared_ptr<BLProgressThread> worker, bool enable)
{
    m_progressThread = worker;
    m_isCancel = false;

    setTitle(worker->getInitTitle());
    setMessage(worker->getInitMessage());
    double value = 0, min = 0, max = 0;
    worker->getInitProgress(&value, &min, &max);
    setProgress(value, min, max);
    setCancelEnable(worker->getInitCancelEnable());
    m_isShowProgress = enable;

    if (enable) {
        // The worker holds itself alive until its thread ends.
        std::thread([worker, this] { worker->startThread(this); }).detach();
        view()->runModal(this); // returns once setThreadResult ended the session
    } else {
        worker->startByMainThread(this);
    }
    m_progressThread.reset();
    return m_isCancel;
}

void BLProgressCtrl::onCancel()
{
    if (m_progressThread)
        m_progressThread->setCancel();
    view()->setCancelEnabled(false);
}

void BLProgressCtrl::windowDidBecomeMain()
{
    if (m_progressThread)
        m_progressThread->setStart();
}

void BLProgressCtrl::setTitle(const QString& title)
{
    view()->setTitle(BLLocalizedString(title));
}

void BLProgressCtrl::setMessage(const QString& message)
{
    view()->setMessage(BLLocalizedString(message));
}

void BLProgressCtrl::setProgress(double value, double min, double max)
{
    if (max > min)
        view()->setDeterminate(value, min, max);
    else
        view()->setIndeterminate();
}

void BLProgressCtrl::setCancelEnable(bool enabled)
{
    view()->setCancelEnabled(enabled);
}

void BLProgressCtrl::threadDidEnd(const BLProgressThread* worker, bool cancelled)
{
    if (worker == m_progressThread.get())
        setThreadResult(cancelled);
}

void BLProgressCtrl::setThreadResult(bool cancelled)
{
    m_isCancel = cancelled;
    if (m_isShowProgress)
        view()->endModal();
}
