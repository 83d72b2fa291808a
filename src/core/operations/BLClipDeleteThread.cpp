#include "core/operations/BLClipDeleteThread.h"

#include "core/card/BLClipCtrl.h"
#include "core/card/BLDiskCtrl.h"
#include "core/card/BLMediaProCtrl.h"
#include "core/services/BLCommon.h"
#include "core/services/BLLogCtrl.h"

#include <algorithm>
#include <thread>

namespace {
constexpr int kProcessId = 645;

void log(const QString& message)
{
    BLLogCtrl::debug(kProcessId, message);
}
} // namespace

BLClipDeleteThread::BLClipDeleteThread(const DOClipCtrl& clipCtrl) : m_doClipCtrl(clipCtrl) {}

QString BLClipDeleteThread::getInitMessage()
{
    return QStringLiteral("MSG_673_3152");
}

void BLClipDeleteThread::getInitProgress(double* value, double* min, double* max)
{
    *value = 0;
    *min = 0;
    *max = double(m_doClipCtrl.getFromTakes().size());
}

bool BLClipDeleteThread::getInitCancelEnable()
{
    return m_doClipCtrl.getFromTakes().size() > 1;
}

void BLClipDeleteThread::waitThread()
{
    std::this_thread::yield();
}

void BLClipDeleteThread::loopProcess()
{
    log(QStringLiteral("[BLClipDeleteThread loopProcess] Start"));
    const QString workFolder = m_doClipCtrl.sourceWorkFolder();
    const QList<DOTakeData> takes = m_doClipCtrl.getFromTakes();
    QList<QStringList> paths;
    int total = 0;
    BLClipCtrl().setOperatePaths(paths, takes, total, true, workFolder);
    QList<DOTakeData> remaining = m_doClipCtrl.getBeforeTakes();

    int done = 0;
    for (qsizetype i = 0; i < takes.size(); ++i) {
        const DOTakeData& take = takes.at(i);
        m_doClipCtrl.setTargetTake(take);
        const bool deleted = deleteTake(paths.at(i), &done, total);
        if (!deleted) {
            m_failedUmids << take.getUmid();
            BLCommon::sharedCtrl()->messageBox(QString::fromLatin1(failureMessage()), QString(), 0, 0);
        }
        // Deleted or not, the take is no longer listed: what is left of it on
        // disk shows again when the folder is next read.
        const auto same = std::find_if(remaining.begin(), remaining.end(), [&take](const DOTakeData& t) {
            return t.getUmid().compare(take.getUmid(), Qt::CaseInsensitive) == 0;
        });
        if (same != remaining.end())
            remaining.erase(same);
        if (deleted)
            m_doClipCtrl.addDelUmid(take.getUmid());
        // A cancel ends the loop with an end line of its own; the index below
        // is rewritten all the same.
        if (isCancel()) {
            log(QStringLiteral("[BLClipDeleteThread loopProcess]    Cancel"));
            log(QStringLiteral("[BLClipDeleteThread loopProcess] End"));
            break;
        }
    }

    // The index follows what is on disk whatever happened above.
    BLMediaProCtrl mediaProCtrl;
    m_mediaProWritten = mediaProCtrl.createMediaPro(remaining, workFolder);
    const bool cueUpUpdated = m_mediaProWritten && mediaProCtrl.updateCueUpByClipDelete(m_doClipCtrl);
    m_succeeded = m_failedUmids.isEmpty() && m_doClipCtrl.getDelUmid().size() == takes.size() && cueUpUpdated;
    log(QStringLiteral("[BLClipDeleteThread loopProcess] End"));
}

bool BLClipDeleteThread::deleteTake(const QStringList& paths, int* done, int total)
{
    const int before = *done;
    if (BLCommon::removeFileWithProgress(paths, this, done, total))
        return true;
    if (!isCancel())
        return false;
    // Cancelled after a removal (or failed just as Cancel came): the paths not
    // yet removed, the first of the list, go too, so no take is left half
    // deleted by a cancel. One that cannot be removed fails the take.
    const qsizetype left = paths.size() - (*done - before);
    return BLCommon::removeFileWithProgress(paths.mid(0, left), nullptr, nullptr, 0);
}

const char* BLClipDeleteThread::failureMessage() const
{
    const QString workFolder = m_doClipCtrl.sourceWorkFolder();
    if (!BLCommon::isFolder(workFolder))
        return "MSG_632_3169";
    if (BLDiskCtrl::sharedCtrl()->isUsableDrive(workFolder) == 2)
        return "MSG_6510_3203";
    return "MSG_631_3166";
}
