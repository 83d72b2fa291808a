#include "core/operations/BLClipCopyThread.h"

#include "core/card/BLCardPath.h"
#include "core/card/BLClipCtrl.h"
#include "core/card/BLDiskCtrl.h"
#include "core/card/BLMediaProCtrl.h"
#include "core/services/BLCommon.h"
#include "core/services/BLLogCtrl.h"

#include <QFileInfo>

#include <chrono>
#include <thread>

namespace {
constexpr int kProcessId = 642;
constexpr qint64 kMiB = 1048576;

void log(const QString& message)
{
    BLLogCtrl::debug(kProcessId, message);
}

// A record's references in the order its files are copied.
QStringList referencesOf(const DOClipData& record)
{
    // A take-info reference without an extension names the clip's folder.
    const QString smi = QFileInfo(record.getSMIUri()).suffix().isEmpty() ? QString() : record.getSMIUri();
    return {record.getXMLUri(), smi, record.getPPNUri(), record.getBIMUri(), record.getMP4Uri()};
}

// A take's own files as a clip record carries them.
DOClipData filesOf(const DOTakeData& take)
{
    DOClipData files;
    files.setXMLUri(take.getXMLUri());
    files.setSMIUri(take.getSMIUri());
    files.setPPNUri(take.getPPNUri());
    files.setBIMUri(take.getBIMUri());
    files.setMP4Uri(take.getMP4Uri());
    return files;
}
} // namespace

BLClipCopyThread::BLClipCopyThread(const DOClipCtrl& clipCtrl, bool verify)
    : m_clipCtrl(clipCtrl), m_verify(verify)
{
    const QString source = m_clipCtrl.sourceWorkFolder();
    qint64 bytes = 0;
    for (const DOTakeData& take : m_clipCtrl.getFromTakes()) {
        bytes += BLCardPath::getFolderSize(take.getXMLUri(), source);
        for (const DOClipData& clip : take.getClipData())
            bytes += BLCardPath::getFolderSize(clip.getXMLUri(), source);
    }
    m_totalMiB = bytes / kMiB;
}

QString BLClipCopyThread::getInitMessage()
{
    return QStringLiteral("MSG_673_3150");
}

void BLClipCopyThread::getInitProgress(double* value, double* min, double* max)
{
    const qsizetype takes = m_clipCtrl.getFromTakes().size();
    *value = 0;
    *min = 0;
    *max = takes == 1 ? 0 : double(takes);
}

void BLClipCopyThread::waitThread()
{
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
}

void BLClipCopyThread::loopProcess()
{
    log(QStringLiteral("[BLClipCopyThread loopProcess] Start"));
    BLClipCtrl clipCtrl;
    qint64 done = 0;
    const QList<DOTakeData> takes = m_clipCtrl.getFromTakes();
    for (int i = 0; i < takes.size(); ++i) {
        m_clipCtrl.setTargetTake(takes.at(i));
        m_clipCtrl.setNewTargetTake(m_clipCtrl.getNewTakes().value(i, takes.at(i)));
        const int result = doFileCopy(&done);
        if (result == 0)
            continue;
        // Why it failed is decided before the undo, which may remove the
        // destination folder this copy made.
        const char* message = result == 3 ? nullptr : failureMessage(result);
        // Undo the takes handled, the one in progress included.
        clipCtrl.processCancel(m_clipCtrl, i + 1);
        m_copied.clear();
        if (!message) {
            log(QStringLiteral("[BLClipCopyThread loopProcess]    File Copy fail (RET_COPY_CANCEL)"));
        } else {
            BLCommon::sharedCtrl()->messageBox(QString::fromLatin1(message), QString(), 0, 0,
                                               {QFileInfo(m_failedFile).fileName()});
            log(QStringLiteral("[BLClipCopyThread loopProcess]    File Copy fail (RET_COPY_FAIL)"));
        }
        log(QStringLiteral("[BLClipCopyThread loopProcess] End"));
        return;
    }

    // The files are in place: the destination's index follows, which cannot
    // be cancelled.
    setCancelEnable(false);
    setMessage(QStringLiteral("MSG_732_3230"));
    setProgress(0, 0, 0);
    for (int round = 0; round < 20; ++round)
        waitThread();
    if (!clipCtrl.updateTakeInfo(m_clipCtrl)) {
        log(QStringLiteral("[BLClipCopyThread loopProcess]    File Copy fail (RET_COPY_FAIL)"));
        log(QStringLiteral("[BLClipCopyThread loopProcess] End"));
        return;
    }
    clipCtrl.rebuildTakeData(m_clipCtrl);
    const QString destination = m_clipCtrl.destinationWorkFolder();
    BLMediaProCtrl mediaProCtrl;
    m_succeeded = mediaProCtrl.createCopyMediaPro(destination, m_clipCtrl.getToTakes(),
                                                  m_clipCtrl.sourceWorkFolder(), QString()) &&
                  mediaProCtrl.isCueUp(destination);
    if (m_succeeded)
        log(QStringLiteral("[BLClipCopyThread loopProcess]    File Copy (RET_COPY_SUCCESS)"));
    log(QStringLiteral("[BLClipCopyThread loopProcess] End"));
}

int BLClipCopyThread::doFileCopy(qint64* fromSize)
{
    const DOTakeData& target = m_clipCtrl.getTargetTake();
    const DOTakeData& newTarget = m_clipCtrl.getChangeFlag() ? m_clipCtrl.getNewTargetTake() : target;
    const QString destination = m_clipCtrl.destinationWorkFolder();
    const QString bpav = BLCommon::getPathOfBPAV(destination);
    if (!BLCommon::createFixedFolders(destination))
        return 2;
    const auto makeFolder = [&bpav](const QString& smiReference) {
        const QString folder = BLCardPath::resolveRecordFolder(bpav, smiReference);
        return !folder.isEmpty() &&
               (BLCommon::isFolder(folder) || BLCommon::createNewFolderWithParent(folder));
    };
    const QList<DOClipData>& clips = target.getClipData();
    for (int k = 0; k < clips.size(); ++k) {
        const DOClipData& to = newTarget.getClipData().value(k, clips.at(k));
        if (!makeFolder(to.getSMIUri()))
            return 2;
        if (const int result = doCopyFiles(clips.at(k), to, fromSize))
            return result;
    }
    if (target.getSMIUri().isEmpty())
        return 0;
    if (!makeFolder(newTarget.getSMIUri()))
        return 2;
    return doCopyFiles(filesOf(target), filesOf(newTarget), fromSize);
}

int BLClipCopyThread::doCopyFiles(const DOClipData& from, const DOClipData& to, qint64* fromSize)
{
    return copyFiles(referencesOf(from), referencesOf(to), fromSize);
}

int BLClipCopyThread::copyFiles(const QStringList& fromReferences, const QStringList& toReferences,
                                qint64* fromSize)
{
    const QString sourceBpav = BLCommon::getPathOfBPAV(m_clipCtrl.sourceWorkFolder());
    const QString destinationBpav = BLCommon::getPathOfBPAV(m_clipCtrl.destinationWorkFolder());
    for (int i = 0; i < fromReferences.size(); ++i) {
        if (fromReferences.at(i).isEmpty())
            continue;
        // A file of one chunk gives no chance to cancel within it.
        if (isCancel())
            return 3;
        // Nothing is read or written outside the two cards' BPAV folders.
        const QString source = BLCardPath::resolveReference(sourceBpav, fromReferences.at(i));
        const QString destination = BLCardPath::resolveReference(destinationBpav, toReferences.at(i));
        if (source.isEmpty() || destination.isEmpty())
            return 2;
        log(QStringLiteral("[BLClipCopyThread doCopyFiles] %1 -> %2").arg(source, destination));
        quint64 hash = 0;
        const int result =
            BLCommon::copyFileWithProgress(source, destination, this, fromSize, m_totalMiB, m_verify, &hash);
        if (result != 0) {
            m_failedFile = destination;
            return result;
        }
        m_copied.append({source, destination, QFileInfo(destination).size(), hash});
    }
    return 0;
}

const char* BLClipCopyThread::failureMessage(int result) const
{
    if (result == BLCommon::kCopyNotVerified)
        return "MSG_642_3300";
    const QString destination = m_clipCtrl.destinationWorkFolder();
    if (!BLCommon::isFolder(destination) || !BLCommon::isFolder(m_clipCtrl.sourceWorkFolder()))
        return "MSG_632_3169";
    if (BLDiskCtrl::sharedCtrl()->isUsableDrive(destination) == 2)
        return "MSG_6510_3206";
    return "MSG_631_3166";
}
