#include "core/services/BLProgressThread.h"

#include "core/services/BLProgressCtrl.h"

#include <chrono>
#include <thread>

QString BLProgressThread::getInitTitle()
{
    return QString();
}

QString BLProgressThread::getInitMessage()
{
    return QString();
}

void BLProgressThread::getInitProgress(double* value, double* min, double* max)
{
    *value = 0;
    *min = 0;
    *max = 0;
}

bool BLProgressThread::getInitCancelEnable()
{
    return true;
}

void BLProgressThread::loopProcess()
{
    for (int i = 0; i < 50 && !isCancel(); ++i)
        waitThread();
}

void BLProgressThread::waitThread()
{
    std::this_thread::sleep_for(std::chrono::microseconds(100000));
}

void BLProgressThread::startThread(BLProgressCtrl* ctrl)
{
    m_progressCtrl = ctrl;
    // The work begins only once the dialog is on screen.
    while (!isStart())
        waitThread();
    loopProcess();
    setThreadResult();
}

void BLProgressThread::startByMainThread(BLProgressCtrl* ctrl)
{
    m_progressCtrl = ctrl;
    loopProcess();
    m_processFlag = true;
    ctrl->setThreadResult(isCancel());
}

void BLProgressThread::setStart()
{
    std::lock_guard lock(m_startLock);
    m_isStart = true;
}

bool BLProgressThread::isStart()
{
    std::lock_guard lock(m_startLock);
    return m_isStart;
}

void BLProgressThread::setCancel()
{
    std::lock_guard lock(m_cancelLock);
    m_isCancel = true;
}

bool BLProgressThread::isCancel()
{
    std::lock_guard lock(m_cancelLock);
    return m_isCancel;
}

void BLProgressThread::setTitle(const QString& title)
{
    if (BLProgressCtrl* ctrl = m_progressCtrl)
        QMetaObject::invokeMethod(
            ctrl, [ctrl, title] { ctrl->setTitle(title); }, Qt::QueuedConnection);
}

void BLProgressThread::setMessage(const QString& message)
{
    if (BLProgressCtrl* ctrl = m_progressCtrl)
        QMetaObject::invokeMethod(
            ctrl, [ctrl, message] { ctrl->setMessage(message); }, Qt::QueuedConnection);
}

void BLProgressThread::setProgress(double value, double min, double max)
{
    m_progressValue = value;
    m_progressMin = min;
    m_progressMax = max;
    if (BLProgressCtrl* ctrl = m_progressCtrl)
        QMetaObject::invokeMethod(
            ctrl,
            [worker = weak_from_this()] {
                if (const auto self = worker.lock())
                    self->setProgressOnMainThread();
            },
            Qt::QueuedConnection);
}

void BLProgressThread::setProgressOnMainThread()
{
    if (m_progressCtrl)
        m_progressCtrl->setProgress(m_progressValue, m_progressMin, m_progressMax);
}

void BLProgressThread::setCancelEnable(bool enabled)
{
    if (BLProgressCtrl* ctrl = m_progressCtrl)
        QMetaObject::invokeMethod(
            ctrl, [ctrl, enabled] { ctrl->setCancelEnable(enabled); }, Qt::QueuedConnection);
}

void BLProgressThread::setThreadResult()
{
    m_processFlag = true;
    const bool cancelled = isCancel();
    if (BLProgressCtrl* ctrl = m_progressCtrl)
        QMetaObject::invokeMethod(
            ctrl, [ctrl, worker = this, cancelled] { ctrl->threadDidEnd(worker, cancelled); },
            Qt::QueuedConnection);
}
