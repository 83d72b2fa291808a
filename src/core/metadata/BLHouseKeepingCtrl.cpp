#include "core/metadata/BLHouseKeepingCtrl.h"

#include "core/app/BLLogCtrl.h"
#include "core/common/BLCommon.h"
#include "core/metadata/BLMediaProfileAcss.h"
#include "core/metadata/BLTakeInfoAcss.h"
#include "core/model/BLDiskCtrl.h"
#include "core/model/BLMediaProCtrl.h"
#include "core/operations/BLCardPath.h"
#include "core/operations/BLClipCtrl.h"

#include <QSet>

#include <algorithm>

namespace {

constexpr int kLogId = 700;

void log(const QString& message)
{
    BLLogCtrl::debug(kLogId, message);
}

QString umidKey(const QString& umid)
{
    return umid.right(DOTakeInfo::kUmidLength).toLower();
}

void showMessage(const char* key)
{
    BLCommon::sharedCtrl()->messageBox(QString::fromLatin1(key), QString(), 0, 0);
}

} // namespace

QList<DOTakeData> BLHouseKeepingCtrl::doHouseKeeping(const QString& workFolder)
{
    log(QStringLiteral("[BLHouseKeepingCtrl doHouseKeeping] Start"));
    QList<DOTakeData> takes;
    if (passFolder(workFolder, takes)) {
        std::stable_sort(takes.begin(), takes.end(), [](const DOTakeData& a, const DOTakeData& b) {
            return a.compareByCreationDate(b) < 0;
        });
    }
    log(QStringLiteral("[BLHouseKeepingCtrl doHouseKeeping] End"));
    return takes;
}

bool BLHouseKeepingCtrl::passFolder(const QString& workFolder, QList<DOTakeData>& takes)
{
    m_arrClipData.clear();
    if (!BLCommon::isBPAVFolder(workFolder)) {
        log(QStringLiteral("[BLHouseKeepingCtrl doHouseKeeping]    BPAV Folder is Nothing : ") + workFolder);
        return false;
    }
    if (isCancelAt(1))
        return false;

    BLMediaProCtrl mediaProCtrl;
    if (!mediaProCtrl.isCueUp(workFolder)) {
        log(QStringLiteral("[BLHouseKeepingCtrl doHouseKeeping]    CueUp.xml Create failed : ") + workFolder);
        return false;
    }
    if (isCancelAt(2))
        return false;

    const QString bpav = BLCommon::getPathOfBPAV(workFolder);
    BLMediaProfileAcss mediaPro;
    const int state = mediaProCtrl.isMediaPro(mediaPro, workFolder);
    bool needsRepair = false;
    if (state == 0) {
        if (!mediaPro.loadForFolderPath(bpav)) {
            log(QStringLiteral("[BLHouseKeepingCtrl doHouseKeeping]    MediaPro.xml Read Error : ") +
                workFolder);
            return false;
        }
        if (isCancelAt(3))
            return false;
        needsRepair = mediaProCtrl.checkMediaProMeta(mediaPro, takes, workFolder, m_arrClipData, *this);
        if (!isCancel()) {
            // The records of folders the profile did not list still lack
            // what a rewrite writes for them.
            if (needsRepair)
                mediaProCtrl.makeMediaPro(takes, workFolder, m_arrClipData);
            buildTakeData(takes, workFolder);
        }
    } else if (state == 1) {
        if (!isClipFolder(workFolder, takes))
            return false;
        if (isCancelAt(4))
            return false;
        // The fresh document isMediaPro has just written.
        if (!mediaPro.loadForFolderPath(bpav)) {
            log(QStringLiteral("[BLHouseKeepingCtrl doHouseKeeping]    MediaPro.xml Create Error : ") +
                workFolder);
            return false;
        }
        if (isCancelAt(5))
            return false;
        mediaProCtrl.makeMediaPro(takes, workFolder, m_arrClipData);
        buildTakeData(takes, workFolder);
        if (isCancelAt(6))
            return false;
        rewriteMediaPro(takes, workFolder);
    } else {
        showMessage("MSG_732_3176");
        return false;
    }
    if (isCancelAt(7))
        return false;

    if (needsRepair)
        rewriteMediaPro(takes, workFolder);
    if (!BLCommon::checkTakeDuration(takes))
        showMessage("MSG_111_3225");
    return true;
}

void BLHouseKeepingCtrl::rewriteMediaPro(const QList<DOTakeData>& takes, const QString& workFolder)
{
    const QString path =
        BLCommon::getPathOfBPAV(workFolder) + QLatin1Char('/') + BLMediaProfileAcss::kFileName;
    if (!BLDiskCtrl::sharedCtrl()->isWritableThisPath(path))
        showMessage("MSG_732_3176");
    else if (!BLMediaProCtrl().createMediaPro(takes, workFolder, m_arrClipData))
        log(QStringLiteral("[BLHouseKeepingCtrl doHouseKeeping]    MediaPro.xml Create Error : ") +
            workFolder);
}

void BLHouseKeepingCtrl::setCancel()
{
    std::lock_guard lock(m_cancelLock);
    m_bCancel = true;
}

bool BLHouseKeepingCtrl::isCancel() const
{
    std::lock_guard lock(m_cancelLock);
    return m_bCancel;
}

bool BLHouseKeepingCtrl::isCancelAt(int step) const
{
    if (m_cancelPointHook)
        m_cancelPointHook(step);
    if (!isCancel())
        return false;
    log(QStringLiteral("[BLHouseKeepingCtrl doHouseKeeping] Cancel Step %1").arg(step));
    return true;
}

// ---- scanning ----

bool BLHouseKeepingCtrl::isClipFolder(const QString& workFolder, QList<DOTakeData>& takes)
{
    if (!BLCommon::isCLPRFolder(workFolder)) {
        log(QStringLiteral(
                "[BLHouseKeepingCtrl isClipFolder]    CLPR Folder create failed of isCLPRFolder : ") +
            workFolder);
        return false;
    }
    checkCLPRFolder(workFolder);
    if (!BLCommon::isTAKRFolder(workFolder)) {
        log(QStringLiteral(
                "[BLHouseKeepingCtrl isClipFolder]    TAKR Folder create failed of isTAKRFolder : ") +
            workFolder);
        return false;
    }
    checkTAKRFolder(takes, workFolder);
    return true;
}

void BLHouseKeepingCtrl::checkCLPRFolder(const QString& workFolder)
{
    const QString bpav = BLCommon::getPathOfBPAV(workFolder);
    BLClipCtrl clipCtrl;
    for (const QString& name : BLMediaProCtrl::getClipEntries(workFolder)) {
        DOClipData clip = clipCtrl.checkCLPRFiles(workFolder, name);
        if (clip.getClipStatus() != 5 &&
            !BLMediaProCtrl::isReadableMP4(BLCardPath::resolveReference(bpav, clip.getMP4Uri()))) {
            clip.setClipStatus(5);
            clip.setCurrentDuration(0);
        }
        clip.setMPStatus(QStringLiteral("none"));
        m_arrClipData.append(clip);
    }
}

void BLHouseKeepingCtrl::checkTAKRFolder(QList<DOTakeData>& takes, const QString& workFolder)
{
    BLClipCtrl clipCtrl;
    for (const QString& name : BLMediaProCtrl::getTakeEntries(workFolder))
        takes.append(clipCtrl.checkTAKRFiles(workFolder, name));
}

// ---- building takes ----

void BLHouseKeepingCtrl::buildTakeData(QList<DOTakeData>& takes, const QString& workFolder)
{
    clipTotake(takes);
    const QString bpav = BLCommon::getPathOfBPAV(workFolder);
    BLClipCtrl clipCtrl;
    for (DOTakeData& take : takes) {
        if (take.getTakeStatus() >= 4)
            continue;
        if (!clipCtrl.getNonRealData(take, workFolder))
            take.setTakeStatus(5);
        if (!take.getClipData().isEmpty())
            getTakeInfoData(take, BLCardPath::resolveReference(bpav, take.getSMIUri()));
    }
}

void BLHouseKeepingCtrl::clipTotake(QList<DOTakeData>& takes)
{
    BLClipCtrl clipCtrl;
    for (DOTakeData& take : takes)
        clipCtrl.searchClip(take, m_arrClipData);
    for (const DOClipData& clip : std::as_const(m_arrClipData)) {
        if (!clip.getExistFlag())
            takes.append(makeTakeData(clip));
    }
}

DOTakeData BLHouseKeepingCtrl::makeTakeData(const DOClipData& clip)
{
    auto dotted = [](const QString& reference) {
        return reference.isEmpty() ? reference : BLCommon::addDot(reference);
    };
    DOTakeData take;
    take.setCompleteFlag(true);
    take.setClipEndFlag(true);
    take.setSingleClipFlag(true);
    take.setUmid(clip.getUmid());
    take.setCurrentDuration(clip.getCurrentDuration());
    take.setSize(clip.getSize());
    take.setOffset(clip.getOffset());
    take.setTakeStatus(clip.getClipStatus());
    take.setMPStatus(clip.getMPStatus());
    take.setMateUpFlg(clip.getMateUpFlg());
    take.setXMLUri(dotted(clip.getXMLUri()));
    take.setSMIUri(dotted(clip.getSMIUri()));
    take.setBIMUri(dotted(clip.getBIMUri()));
    take.setPPNUri(dotted(clip.getPPNUri()));
    take.setMP4Uri(dotted(clip.getMP4Uri()));
    take.setRealFlag(true);
    return take;
}

void BLHouseKeepingCtrl::getTakeInfoData(DOTakeData& take, const QString& smiPath)
{
    BLTakeInfoAcss takeInfo;
    if (smiPath.isEmpty() || !takeInfo.loadForFilePath(smiPath))
        return;
    QSet<QString> present;
    for (const DOClipData& clip : std::as_const(m_arrClipData))
        present.insert(umidKey(clip.getUmid()));
    QList<DOTakeInfo> entries;
    for (const DOTRef& ref : takeInfo.getRefData(QString(), 1)) {
        DOTakeInfo entry;
        entry.setSrc(ref.getSrc());
        entry.setClipBegin(ref.getClipBegin());
        entry.setClipEnd(ref.getClipEnd());
        entry.setBegin(ref.getBegin());
        entry.setEnd(ref.getEnd());
        entries.append(entry);
        if (!present.contains(umidKey(entry.getSrc()))) {
            take.setMediaSpanning(true);
            if (take.getTakeStatus() < 3)
                take.setTakeStatus(2);
        }
    }
    // Replaces what a take-info read while classifying the folder gave.
    take.setArrTakeInfo(entries);
}
