#include "core/operations/BLClipMoveThread.h"

#include "core/card/BLCardPath.h"
#include "core/card/BLClipCtrl.h"
#include "core/card/BLDiskCtrl.h"
#include "core/card/BLMediaProCtrl.h"
#include "core/services/BLCommon.h"
#include "core/services/BLLogCtrl.h"

#include <QDir>
#include <QFileInfo>

#include <cstring>
#include <thread>

namespace {

constexpr int kProcessId = 644;
constexpr qint64 kMiB = 1048576;

void log(const QString& message)
{
    BLLogCtrl::debug(kProcessId, message);
}

// A reference below the BPAV folder without its leading "./".
QString relativeOf(const QString& reference)
{
    return reference.startsWith(QLatin1String("./")) ? reference.mid(2) : reference;
}

// The clip or take folder holding a record's files, below the BPAV folder
// ("CLPR/ABC0001"): the folder of its first reference, or the reference itself
// when it has no extension (a clip of status 3 names its folder that way).
QString folderOf(const QStringList& references)
{
    for (const QString& reference : references) {
        if (reference.isEmpty())
            continue;
        const QString relative = relativeOf(reference);
        return QFileInfo(relative).suffix().isEmpty() ? relative : QFileInfo(relative).path();
    }
    return {};
}

QStringList referencesOf(const DOClipData& clip)
{
    return {clip.getSMIUri(), clip.getXMLUri(), clip.getMP4Uri()};
}

QStringList referencesOf(const DOTakeData& take)
{
    return {take.getSMIUri(), take.getXMLUri()};
}

} // namespace

BLClipMoveThread::BLClipMoveThread(const DOClipCtrl& clipCtrl) : m_clipCtrl(clipCtrl) {}

QString BLClipMoveThread::getInitMessage()
{
    return QStringLiteral("MSG_673_3151");
}

void BLClipMoveThread::getInitProgress(double* value, double* min, double* max)
{
    *value = 0;
    *min = 0;
    *max = 0;
}

void BLClipMoveThread::waitThread()
{
    std::this_thread::yield();
}

BLTakeMover::Take BLClipMoveThread::planTake(const DOClipCtrl& record, bool split)
{
    const DOTakeData& target = record.getTargetTake();
    const DOTakeData& newTarget = record.getChangeFlag() ? record.getNewTargetTake() : target;
    const QString fromBpav = BLCommon::getPathOfBPAV(record.sourceWorkFolder());
    BLTakeMover::Take plan;
    plan.umid = target.getUmid();
    for (const DOClipData& clip : target.getClipData())
        plan.clipUmids << clip.getUmid();
    const auto add = [&](const QString& from, const QString& to, bool copy) {
        if (from.isEmpty() || to.isEmpty() ||
            std::any_of(plan.items.begin(), plan.items.end(),
                        [&](const BLTakeMover::Item& item) { return item.from == from; }))
            return;
        BLTakeMover::Item item{from, to, copy};
        BLTakeMover::measure(fromBpav + QLatin1Char('/') + from, &item.files, &item.bytes);
        plan.items.append(item);
    };
    if (target.getTakeStatus() == 4) { // a loose MP4 file
        add(relativeOf(target.getMP4Uri()), relativeOf(newTarget.getMP4Uri()), false);
        return plan;
    }
    const QList<DOClipData>& clips = target.getClipData();
    for (int k = 0; k < clips.size(); ++k)
        add(folderOf(referencesOf(clips.at(k))),
            folderOf(referencesOf(newTarget.getClipData().value(k, clips.at(k)))), false);
    if (target.getSMIUri().isEmpty())
        return plan;
    // A single clip's own folder is its clip folder, which moves whole.
    if (!split || clips.isEmpty()) {
        add(folderOf(referencesOf(target)), folderOf(referencesOf(newTarget)), false);
        return plan;
    }
    const QStringList from = referencesOf(target);
    const QStringList to = referencesOf(newTarget);
    for (int i = 0; i < from.size(); ++i)
        if (!from.at(i).isEmpty() && BLCardPath::isFileOfReference(fromBpav, from.at(i)))
            add(relativeOf(from.at(i)), relativeOf(to.at(i)), true);
    return plan;
}

BLTakeMover* BLClipMoveThread::moverFor(const DOClipCtrl& record)
{
    const QString fromBpav = BLCommon::getPathOfBPAV(record.sourceWorkFolder());
    const QString toBpav = BLCommon::getPathOfBPAV(record.destinationWorkFolder());
    if (m_mover && m_mover->fromBpav() == fromBpav && m_mover->toBpav() == toBpav)
        return m_mover.get();
    if (!BLCommon::createFixedFolders(record.destinationWorkFolder()))
        return nullptr;
    m_mover = std::make_unique<BLTakeMover>(fromBpav, toBpav);
    const int probe = m_mover->probe();
    m_mover->setCrossVolume(probe == 1);
    return probe < 0 ? nullptr : m_mover.get();
}

int BLClipMoveThread::moveTake(const DOClipCtrl& record, bool split, BLProgressThread* thread,
                               qint64* fromCount, qint64 maxCount)
{
    BLTakeMover* mover = moverFor(record);
    if (!mover)
        return BLTakeMover::kFailed;
    mover->setProgress(thread, fromCount, maxCount);
    return mover->moveTake(planTake(record, split));
}

int BLClipMoveThread::doMoveFile(const DOClipCtrl& record, BLProgressThread* thread, qint64* fromCount,
                                 qint64 maxCount)
{
    return moveTake(record, false, thread, fromCount, maxCount);
}

int BLClipMoveThread::doMoveFileForSplit(const DOClipCtrl& record, BLProgressThread* thread,
                                         qint64* fromCount, qint64 maxCount)
{
    return moveTake(record, true, thread, fromCount, maxCount);
}

void BLClipMoveThread::setTarget(int index)
{
    const DOTakeData& take = m_clipCtrl.getFromTakes().at(index);
    m_clipCtrl.setTargetTake(take);
    m_clipCtrl.setNewTargetTake(m_clipCtrl.getNewTakes().value(index, take));
}

int BLClipMoveThread::beginRun(bool split)
{
    m_plan.clear();
    m_runFiles = 0;
    m_runBytes = 0;
    for (int i = 0; i < m_clipCtrl.getFromTakes().size(); ++i) {
        setTarget(i);
        m_plan.append(planTake(m_clipCtrl, split));
        for (const BLTakeMover::Item& item : std::as_const(m_plan.back().items)) {
            m_runFiles += item.files;
            m_runBytes += item.bytes;
        }
    }
    // The journal comes first: from here on a process stopped at any moment
    // leaves a move the next load ends.
    const QString source = m_clipCtrl.sourceWorkFolder();
    const QString destination = m_clipCtrl.destinationWorkFolder();
    if (!BLCommon::createFixedFolders(destination) || !m_journal.begin(source, destination, m_plan))
        return kRunNoJournal;
    return moverFor(m_clipCtrl) ? kRunReady : kRunNoMover;
}

int BLClipMoveThread::moveRun(BLProgressThread* thread, qint64* done, qint64 maxCount, int* stoppedAt)
{
    m_mover->setProgress(thread, done, maxCount);
    for (int i = 0; i < m_plan.size(); ++i) {
        setTarget(i);
        const int result = m_mover->moveTake(m_plan.at(i));
        if (result != BLTakeMover::kMoved) {
            *stoppedAt = i;
            return result;
        }
        m_clipCtrl.addDelUmid(m_clipCtrl.getFromTakes().at(i).getUmid());
    }
    return BLTakeMover::kMoved;
}

void BLClipMoveThread::endRun()
{
    m_journal.setMoved();
    m_journal.finish();
    m_mover->clearStaging();
}

void BLClipMoveThread::loopProcess()
{
    log(QStringLiteral("[BLClipMoveThread loopProcess] Start"));
    const int begun = beginRun(false);
    if (begun == kRunNoJournal) {
        setCancel();
        removeNewFolder();
        m_restored = true;
        showMessage({QStringLiteral("MSG_644_3300"),
                     {BLCommon::getPathOfBPAV(m_clipCtrl.sourceWorkFolder()), m_journal.failure()}});
        log(QStringLiteral("[BLClipMoveThread loopProcess] End"));
        return;
    }
    if (begun == kRunNoMover) {
        const Message message = failureMessage();
        log(QStringLiteral("[BLClipMoveThread doMoveFile]    File Move fail (RET_MOVE_FAIL)"));
        if (processCancel(-1))
            showMessage(message);
        log(QStringLiteral("[BLClipMoveThread loopProcess] End"));
        return;
    }
    // The bar counts files on one file system, where each folder moves at
    // once, and MiB across two, where they are copied.
    const qint64 maxCount = m_mover->isCrossVolume() ? m_runBytes / kMiB : m_runFiles;
    qint64 done = 0;
    setProgress(0, 0, double(maxCount));
    int stoppedAt = -1;
    const int result = moveRun(this, &done, maxCount, &stoppedAt);
    if (result == BLTakeMover::kCancelled) {
        log(QStringLiteral("[BLClipMoveThread doMoveFile]    File Move fail (RET_MOVE_CANCEL)"));
        processCancel(stoppedAt);
    } else if (result != BLTakeMover::kMoved) {
        // Why is decided before the move back, which may remove the
        // destination folder this move made.
        const Message message = failureMessage();
        log(QStringLiteral("[BLClipMoveThread doMoveFile]    File Move fail (RET_MOVE_FAIL)"));
        if (processCancel(stoppedAt))
            showMessage(message);
    }
    if (result != BLTakeMover::kMoved) {
        log(QStringLiteral("[BLClipMoveThread loopProcess] End"));
        return;
    }

    // The files are in place: the index files follow, which cannot be cancelled.
    m_journal.setMoved();
    m_movedFiles = m_runFiles;
    m_movedBytes = m_runBytes;
    setCancelEnable(false);
    setMessage(QStringLiteral("MSG_732_3230"));
    setProgress(0, 0, 0);
    for (int round = 0; round < 20; ++round)
        waitThread();
    m_succeeded = writeIndexes();
    m_journal.finish();
    m_mover->clearStaging();
    log(m_succeeded ? QStringLiteral("[BLClipMoveThread loopProcess]    File Move (RET_MOVE_SUCCESS)")
                    : QStringLiteral("[BLClipMoveThread loopProcess]    File Move fail (RET_MOVE_FAIL)"));
    log(QStringLiteral("[BLClipMoveThread loopProcess] End"));
}

bool BLClipMoveThread::writeIndexes()
{
    BLClipCtrl clipCtrl;
    const QString source = m_clipCtrl.sourceWorkFolder();
    const QString destination = m_clipCtrl.destinationWorkFolder();
    BLMediaProCtrl mediaProCtrl;
    bool written = clipCtrl.updateTakeInfo(m_clipCtrl);
    if (written) {
        clipCtrl.rebuildTakeData(m_clipCtrl);
        written = mediaProCtrl.createCopyMediaPro(destination, m_clipCtrl.getToTakes(), source, QString()) &&
                  mediaProCtrl.isCueUp(destination);
    }
    // The source keeps the takes it had less the moved ones (each matched once).
    QList<DOTakeData> remaining = m_clipCtrl.getBeforeTakes();
    for (const DOTakeData& moved : m_clipCtrl.getFromTakes()) {
        const auto it = std::find_if(remaining.begin(), remaining.end(), [&](const DOTakeData& take) {
            return BLMediaProCtrl::isSameUmid(take.getUmid(), moved.getUmid());
        });
        if (it != remaining.end())
            remaining.erase(it);
    }
    return mediaProCtrl.createMediaPro(remaining, source) &&
           mediaProCtrl.updateCueUpByClipDelete(m_clipCtrl) && written;
}

bool BLClipMoveThread::processCancel(int operatedCount)
{
    setCancel();
    m_processCancel = true;
    log(QStringLiteral("[BLClipMoveThread processCancel] Start"));
    bool restored = true;
    for (int i = qMin(operatedCount, int(m_plan.size()) - 1); i >= 0; --i)
        restored = m_mover->bringBack(m_plan.at(i)) && restored;
    if (restored) {
        if (m_mover)
            m_mover->clearStaging();
        m_journal.finish();
        removeNewFolder();
    } else {
        showMessage({QStringLiteral("MSG_644_3301"),
                     {m_clipCtrl.sourceWorkFolder(), m_clipCtrl.destinationWorkFolder(),
                      m_mover->failedPath() + QStringLiteral(": ") + m_mover->failureReason()}});
    }
    m_restored = restored;
    log(QStringLiteral("[BLClipMoveThread processCancel] End"));
    return restored;
}

void BLClipMoveThread::removeNewFolder()
{
    if (!m_clipCtrl.getNewFolderFlag())
        return;
    // Empty again: its fixed folders, then itself.
    const QString destination = m_clipCtrl.destinationWorkFolder();
    const QString bpav = BLCommon::getPathOfBPAV(destination);
    for (const QString& folder :
         {bpav + QStringLiteral("/CLPR"), bpav + QStringLiteral("/TAKR"), bpav, destination})
        QDir().rmdir(folder);
}

BLClipMoveThread::Message BLClipMoveThread::failureMessage() const
{
    const QString source = m_clipCtrl.sourceWorkFolder();
    const QString destination = m_clipCtrl.destinationWorkFolder();
    BLDiskCtrl* disk = BLDiskCtrl::sharedCtrl();
    QString key = QStringLiteral("MSG_644_3300");
    if (!BLCommon::isFolder(destination) || !BLCommon::isFolder(source))
        key = QStringLiteral("MSG_632_3169");
    else if (disk->isUsableDrive(destination) == 2)
        key = QStringLiteral("MSG_6510_3208");
    else if (disk->isUsableDrive(source) == 2)
        key = QStringLiteral("MSG_6510_3207");
    if (!m_mover)
        return {key, {destination, QString::fromLocal8Bit(std::strerror(errno))}};
    return {key, {m_mover->failedPath(), m_mover->failureReason()}};
}

void BLClipMoveThread::showMessage(const Message& message)
{
    BLCommon::sharedCtrl()->messageBox(message.key, QString(), 0, 0, message.args);
}
