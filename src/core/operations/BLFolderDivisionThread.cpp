#include "core/operations/BLFolderDivisionThread.h"

#include "core/card/BLClipCtrl.h"
#include "core/card/BLDiskCtrl.h"
#include "core/card/BLMediaProCtrl.h"
#include "core/card/BLTakeInfoCtrl.h"
#include "core/formats/metadata/BLTakeInfoAcss.h"
#include "core/operations/BLClipMoveThread.h"
#include "core/services/BLCommon.h"
#include "core/services/BLLogCtrl.h"
#include "core/services/BLPlistCtrl.h"

#include <QDir>
#include <QFileInfo>

#include <thread>

namespace {

constexpr int kProcessId = 653;

void log(const QString& message)
{
    BLLogCtrl::debug(kProcessId, message);
}

QString pathIn(const QString& workFolder, const QString& reference)
{
    return BLCommon::getPathOfBPAV(workFolder) + QLatin1Char('/') + BLCommon::removalDot(reference);
}

bool listsClipOf(const DOTakeData& take, const DOTakeData& part)
{
    for (const DOTakeInfo& info : take.getTakeInfo())
        for (const DOClipData& clip : part.getClipData())
            if (BLMediaProCtrl::isSameUmid(info.getSrc(), clip.getUmid()))
                return true;
    return false;
}

// The take info's own UMID, in the form it was written in (with or without
// the URN prefix).
bool setTakeInfoUmid(const QString& path, const QString& umid)
{
    static const QString prefix = QStringLiteral("urn:smpte:umid:");
    BLTakeInfoAcss acss;
    DOTSmil smil;
    if (!acss.loadForFilePath(path) || !acss.getSmilData(smil, QString()))
        return false;
    smil.setUmid(smil.getUmid().startsWith(prefix) ? prefix + umid : umid);
    return acss.setSmilData(smil) && acss.save();
}

} // namespace

BLFolderDivisionThread::BLFolderDivisionThread(const QList<DOClipCtrl>& records,
                                               const QList<DOTakeData>& beforeTakes)
    : m_arrClipCtrl(records), m_arrBeforeTakes(beforeTakes)
{
}

BLFolderDivisionThread::~BLFolderDivisionThread() = default;

QString BLFolderDivisionThread::getInitMessage()
{
    return QStringLiteral("MSG_673_3153");
}

void BLFolderDivisionThread::getInitProgress(double* value, double* min, double* max)
{
    const qint64 count = getTakeCount();
    *value = 0;
    *min = 0;
    *max = count >= 2 ? double(count) : 0;
}

void BLFolderDivisionThread::waitThread()
{
    std::this_thread::yield();
}

qint64 BLFolderDivisionThread::getTakeCount() const
{
    return BLClipCtrl().getPathCount(m_arrClipCtrl);
}

void BLFolderDivisionThread::loopProcess()
{
    log(QStringLiteral("[BLFolderDivisionThread loopProcess] Start"));
    const qint64 maxCount = getTakeCount();
    qint64 done = 0;
    for (int r = 0; r < m_arrClipCtrl.size(); ++r) {
        DOClipCtrl& record = m_arrClipCtrl[r];
        const int sequentialNo = BLCommon::nextSequentialNo();
        BLPlistCtrl::sharedCtrl()->setSequentialNo(sequentialNo);
        record.setMediaID(BLCommon::createMediaID(sequentialNo));
        if (!BLCommon::createNewFolder(record.destinationWorkFolder())) {
            log(QStringLiteral("[BLFolderDivisionThread loopProcess]    Make Folder fail"));
            if (processCancel(r - 1, int(m_arrClipCtrl.value(r - 1).getFromTakes().size()) - 1))
                fail(QStringLiteral("MSG_6510_3204"), QString());
            return;
        }
        record.setNewFolderFlag(true);
        m_moves.push_back(std::make_unique<BLClipMoveThread>(record));
        BLClipMoveThread& move = *m_moves.back();
        int stoppedAt = -1;
        int result = BLClipMoveThread::kRunReady;
        if (move.beginRun(true) != BLClipMoveThread::kRunReady)
            result = 2;
        else
            result = move.moveRun(this, &done, maxCount, &stoppedAt);
        if (result == 3) {
            log(QStringLiteral(
                "[BLFolderDivisionThread loopProcess]    FolderDivision fail (RET_MOVE_CANCEL)"));
            processCancel(r, stoppedAt);
            log(QStringLiteral("[BLFolderDivisionThread loopProcess] End"));
            return;
        }
        if (result != 0) {
            const QString divided = record.sourceWorkFolder();
            if (processCancel(r, stoppedAt))
                fail(BLCommon::isFolder(divided) ? QStringLiteral("MSG_653_3177")
                                                 : QStringLiteral("MSG_632_3169"),
                     QStringLiteral(
                         "[BLFolderDivisionThread loopProcess]    FolderDivision fail (RET_MOVE_FAIL)"));
            return;
        }
        move.endRun();
        for (const QString& umid : move.clipCtrl().getDelUmid())
            record.addDelUmid(umid);
    }

    // The take folders that went stay no longer in the divided folder.
    for (const DOClipCtrl& record : std::as_const(m_arrClipCtrl))
        for (const DOTakeData& take : record.getFromTakes())
            if (take.getXMLUri().contains(QLatin1String("TAKR"))) {
                const QString folder = QFileInfo(pathIn(record.sourceWorkFolder(), take.getXMLUri())).path();
                if (QFileInfo(folder).path().endsWith(QLatin1String("/TAKR")))
                    QDir(folder).removeRecursively();
            }

    setCancelEnable(false);
    setMessage(QStringLiteral("MSG_732_3230"));
    setProgress(0, 0, 0);
    for (int round = 0; round < 20; ++round)
        waitThread();
    m_success = writeIndexes();
    log(m_success
            ? QStringLiteral("[BLFolderDivisionThread loopProcess]    FolderDivision (RET_MOVE_SUCCESS)")
            : QStringLiteral("[BLFolderDivisionThread loopProcess]    FolderDivision fail (RET_MOVE_FAIL)"));
    log(QStringLiteral("[BLFolderDivisionThread loopProcess] End"));
}

bool BLFolderDivisionThread::writeIndexes()
{
    BLClipCtrl clipCtrl;
    bool written = true;
    for (DOClipCtrl& record : m_arrClipCtrl)
        if (!clipCtrl.updateTakeInfo(record)) {
            log(QStringLiteral(
                "[BLFolderDivisionThread loopProcess]    FolderDivision fail (RET_MOVE_FAIL)"));
            written = false;
        }
    linkSpanningTakes();

    BLMediaProCtrl mediaProCtrl;
    const QString divided = m_arrClipCtrl.front().sourceWorkFolder();
    QList<DOTakeData> remaining = m_arrBeforeTakes;
    for (DOClipCtrl& record : m_arrClipCtrl) {
        written = mediaProCtrl.createCopyMediaPro(record.destinationWorkFolder(), record.getToTakes(),
                                                  divided, record.getMediaID()) &&
                  mediaProCtrl.isCueUp(record.destinationWorkFolder()) && written;
        for (const DOTakeData& moved : record.getFromTakes())
            remaining.removeIf([&](const DOTakeData& take) {
                return BLMediaProCtrl::isSameUmid(take.getUmid(), moved.getUmid());
            });
    }
    written = mediaProCtrl.createMediaPro(remaining, divided) && written;
    mediaProCtrl.isCueUp(divided);
    for (const DOClipCtrl& record : std::as_const(m_arrClipCtrl))
        written = mediaProCtrl.updateCueUpByClipDelete(record) && written;
    return written;
}

void BLFolderDivisionThread::linkSpanningTakes()
{
    BLClipCtrl clipCtrl;
    BLMediaProCtrl mediaProCtrl;
    for (DOClipCtrl& record : m_arrClipCtrl) {
        const QString folder = record.destinationWorkFolder();
        QList<DOTakeData> takes = record.getToTakes();
        for (DOTakeData& part : takes) {
            if (part.getTakeNumber() <= 0 || part.getTotalTakeCount() < 2)
                continue;
            DOTakeData front, next;
            QString frontId, nextId;
            getSpanningTake(part, &front, &next, &frontId, &nextId);
            // A part that continues in another folder names it; the last
            // part's take info lists the whole take under its own UMID.
            if (!next.getUmid().isEmpty())
                BLTakeInfoCtrl::createTakeInfo(pathIn(folder, part.getSMIUri()), part, next);
            else
                setTakeInfoUmid(pathIn(folder, part.getSMIUri()), part.getUmid());
            const QList<DOLtcChange> changes = clipCtrl.rebuildLtdChange(record.getFromTakes(), part, folder);
            clipCtrl.reMakeNonMeta(part, folder, changes);
            if (!front.getUmid().isEmpty() &&
                !mediaProCtrl.checkComponent(part.getTakeComponents(), front.getUmid()))
                part.addFrontComponent(mediaProCtrl.createComponent(front, frontId));
            if (!next.getUmid().isEmpty() &&
                !mediaProCtrl.checkComponent(part.getTakeComponents(), next.getUmid()))
                part.addRearComponent(mediaProCtrl.createComponent(next, nextId));
        }
        record.setToTakes(takes);
    }
}

bool BLFolderDivisionThread::getSpanningTake(const DOTakeData& part, DOTakeData* front, DOTakeData* next,
                                             QString* frontId, QString* nextId) const
{
    bool found = false;
    for (const DOClipCtrl& record : m_arrClipCtrl)
        for (const DOTakeData& take : record.getToTakes()) {
            if (!listsClipOf(take, part) && !listsClipOf(part, take))
                continue;
            if (take.getTakeNumber() == part.getTakeNumber() + 1) {
                *next = take;
                *nextId = record.getMediaID();
                found = true;
            } else if (take.getTakeNumber() == part.getTakeNumber() - 1) {
                *front = take;
                *frontId = record.getMediaID();
                found = true;
            }
        }
    return found;
}

bool BLFolderDivisionThread::processCancel(int record, int take)
{
    setCancel();
    log(QStringLiteral("[BLFolderDivisionThread processCancel] Start"));
    bool restored = true;
    for (int r = 0; r < int(m_moves.size()); ++r) {
        const int last = r < record ? int(m_arrClipCtrl.at(r).getFromTakes().size()) - 1 : take;
        restored = m_moves[std::size_t(r)]->processCancel(last) && restored;
    }
    // A folder made for a record whose move never began.
    for (int r = int(m_moves.size()); r < m_arrClipCtrl.size(); ++r) {
        const QString folder = m_arrClipCtrl.at(r).destinationWorkFolder();
        if (m_arrClipCtrl.at(r).getNewFolderFlag())
            QDir().rmdir(folder);
    }
    m_restored = restored;
    log(QStringLiteral("[BLFolderDivisionThread processCancel] End"));
    return restored;
}

void BLFolderDivisionThread::fail(const QString& key, const QString& logLine)
{
    BLCommon::sharedCtrl()->messageBox(key, QString(), 0, 0);
    if (!logLine.isEmpty())
        log(logLine);
    log(QStringLiteral("[BLFolderDivisionThread loopProcess] End"));
}
