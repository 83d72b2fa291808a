#include "core/operations/BLFolderCombineThread.h"

#include "core/card/BLClipCtrl.h"
#include "core/card/BLDiskCtrl.h"
#include "core/card/BLMediaProCtrl.h"
#include "core/operations/BLClipMoveThread.h"
#include "core/services/BLCommon.h"
#include "core/services/BLLogCtrl.h"

#include <algorithm>
#include <thread>

namespace {

constexpr int kProcessId = 644;

void log(const QString& message)
{
    BLLogCtrl::debug(kProcessId, message);
}

} // namespace

BLFolderCombineThread::BLFolderCombineThread(const QList<DOClipCtrl>& records,
                                             BLFolderCombineCtrl* combineCtrl)
    : m_arrClipCtrl(records), m_combineCtrl(combineCtrl)
{
}

BLFolderCombineThread::~BLFolderCombineThread() = default;

QString BLFolderCombineThread::getInitMessage()
{
    return QStringLiteral("MSG_673_3154");
}

void BLFolderCombineThread::getInitProgress(double* value, double* min, double* max)
{
    *value = 0;
    *min = 0;
    *max = double(getAllCount());
}

void BLFolderCombineThread::waitThread()
{
    std::this_thread::yield();
}

qint64 BLFolderCombineThread::getAllCount() const
{
    return BLClipCtrl().getPathCount(m_arrClipCtrl);
}

void BLFolderCombineThread::loopProcess()
{
    log(QStringLiteral("[BLFolderCombineCtrl loopProcess] Start"));
    std::stable_sort(
        m_arrClipCtrl.begin(), m_arrClipCtrl.end(),
        [](const DOClipCtrl& a, const DOClipCtrl& b) { return a.compareByTakeCreationDate(b) < 0; });
    const qint64 maxCount = getAllCount();
    qint64 done = 0;
    for (int r = 0; r < m_arrClipCtrl.size(); ++r) {
        DOClipCtrl& record = m_arrClipCtrl[r];
        m_moves.push_back(std::make_unique<BLClipMoveThread>(record));
        BLClipMoveThread& move = *m_moves.back();
        int stoppedAt = -1;
        const int result = move.beginRun(false) != BLClipMoveThread::kRunReady
                               ? 2
                               : move.moveRun(this, &done, maxCount, &stoppedAt);
        if (result == 3) {
            processCancel(r, stoppedAt);
            end(QStringLiteral("[BLFolderCombineCtrl loopProcess]    FolderCombine fail (RET_MOVE_CANCEL)"));
            return;
        }
        if (result != 0) {
            const QString source = record.sourceWorkFolder();
            const QString destination = record.destinationWorkFolder();
            const BLDiskCtrl* disk = BLDiskCtrl::sharedCtrl();
            QString key = QStringLiteral("MSG_654_3179");
            if (!BLCommon::isFolder(source) || !BLCommon::isFolder(destination))
                key = QStringLiteral("MSG_632_3169");
            else if (disk->isUsableDrive(destination) == 2 || disk->isUsableDrive(source) == 2)
                key = QStringLiteral("MSG_6510_3205");
            if (processCancel(r, stoppedAt))
                BLCommon::sharedCtrl()->messageBox(key, QString(), 0, 0);
            end(QStringLiteral("[BLFolderCombineCtrl loopProcess]    FolderCombine fail (RET_MOVE_FAIL)"));
            return;
        }
        move.endRun();
        for (const QString& umid : move.clipCtrl().getDelUmid())
            record.addDelUmid(umid);
    }

    setCancelEnable(false);
    setMessage(QStringLiteral("MSG_732_3230"));
    setProgress(0, 0, 0);
    for (int round = 0; round < 20; ++round)
        waitThread();
    m_success = writeIndexes();
    end(m_success
            ? QStringLiteral("[BLFolderCombineCtrl loopProcess]    FolderCombine fail (RET_MOVE_SUCCESS)")
            : QStringLiteral("[BLFolderCombineCtrl loopProcess]    File Move fail (RET_MOVE_FAIL)"));
}

bool BLFolderCombineThread::writeIndexes()
{
    // Joined source by source, each on what the one before left.
    BLClipCtrl clipCtrl;
    for (int r = 0; r < m_arrClipCtrl.size(); ++r) {
        DOClipCtrl& record = m_arrClipCtrl[r];
        if (r > 0)
            record.setToTakes(m_arrClipCtrl.at(r - 1).getToTakes());
        if (!clipCtrl.updateTakeInfo(record))
            return false;
        clipCtrl.rebuildTakeData(record);
    }
    BLMediaProCtrl mediaProCtrl;
    bool written = true;
    for (const DOClipCtrl& record : std::as_const(m_arrClipCtrl)) {
        QList<DOTakeData> remaining = record.getBeforeTakes();
        for (const DOTakeData& moved : record.getFromTakes())
            remaining.removeIf([&](const DOTakeData& take) {
                return BLMediaProCtrl::isSameUmid(take.getUmid(), moved.getUmid());
            });
        written = mediaProCtrl.createMediaPro(remaining, record.sourceWorkFolder()) && written;
    }
    QList<DOTakeData> takes = m_arrClipCtrl.back().getToTakes();
    std::stable_sort(takes.begin(), takes.end(),
                     [](const DOTakeData& a, const DOTakeData& b) { return a.compareByCreationDate(b) < 0; });
    const QString destination = m_arrClipCtrl.back().destinationWorkFolder();
    written = mediaProCtrl.createCopyMediaPro(destination, takes, m_arrClipCtrl.front().sourceWorkFolder(),
                                              QString()) &&
              mediaProCtrl.isCueUp(destination) && written;
    for (const DOClipCtrl& record : std::as_const(m_arrClipCtrl))
        written = mediaProCtrl.updateCueUpByClipDelete(record) && written;
    return written;
}

bool BLFolderCombineThread::processCancel(int record, int take)
{
    setCancel();
    bool restored = true;
    for (int r = 0; r < int(m_moves.size()); ++r) {
        const int last = r < record ? int(m_arrClipCtrl.at(r).getFromTakes().size()) - 1 : take;
        restored = m_moves[std::size_t(r)]->processCancel(last) && restored;
    }
    m_restored = restored;
    return restored;
}

void BLFolderCombineThread::end(const QString& logLine)
{
    log(logLine);
    log(QStringLiteral("[BLFolderCombineCtrl loopProcess] End"));
}
