#include "core/operations/import/BLMP4ImportThread.h"

#include "core/operations/import/BLMP4ImportCtrl.h"

#include <thread>

BLMP4ImportThread::BLMP4ImportThread(BLMP4ImportCtrl* ctrl) : m_ctrl(ctrl) {}

QString BLMP4ImportThread::getInitMessage()
{
    return QStringLiteral("MSG_673_3155");
}

void BLMP4ImportThread::getInitProgress(double* value, double* min, double* max)
{
    *value = 0;
    *min = 0;
    *max = 0;
}

void BLMP4ImportThread::loopProcess()
{
    m_succeeded = m_ctrl->doImportWithThread(this);
}

void BLMP4ImportThread::waitThread()
{
    std::this_thread::yield();
}
