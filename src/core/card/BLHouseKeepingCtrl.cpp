#include "core/card/BLHouseKeepingCtrl.h"

#include "core/card/BLCardPath.h"
#include "core/card/BLClipCtrl.h"
#include "core/card/BLDiskCtrl.h"
#include "core/card/BLMediaProCtrl.h"
#include "core/card/BLMoveJournal.h"
#include "core/formats/metadata/BLCueupInfoAcss.h"
#include "core/formats/metadata/BLMediaProfileAcss.h"
#include "core/formats/metadata/BLTakeInfoAcss.h"
#include "core/services/BLAtomicFile.h"
#include "core/services/BLCommon.h"
#include "core/services/BLLogCtrl.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSet>

#include <algorithm>
#include <utility>

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

void showMessage(const char* key, const QStringList& args = {})
{
    BLCommon::sharedCtrl()->messageBox(QString::fromLatin1(key), QString(), 0, 0, args);
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
    m_repairs.clear();
    m_bToldNotWritable = false;
    m_bIndexUnreadable = false;
    m_sDamagedCopy.clear();
    if (!BLCommon::isBPAVFolder(workFolder)) {
        log(QStringLiteral("[BLHouseKeepingCtrl doHouseKeeping]    BPAV Folder is Nothing : ") + workFolder);
        return false;
    }
    if (isCancelAt(1))
        return false;
    endInterruptedMove(workFolder);

    // Nothing of the card is ever lost by looking at it: a file that cannot
    // be written leaves the takes to be read from the folders, and a damaged
    // index is copied aside before it is replaced.
    const QString bpav = BLCommon::getPathOfBPAV(workFolder);
    BLMediaProCtrl mediaProCtrl;
    const bool hadCueUp = BLCommon::isFiles(bpav + QLatin1Char('/') + BLCueupInfoAcss::kFileName);
    if (!mediaProCtrl.isCueUp(workFolder)) {
        log(QStringLiteral("[BLHouseKeepingCtrl doHouseKeeping]    CueUp.xml Create failed : ") + workFolder);
        addRepair(BLCueupInfoAcss::kFileName, QStringLiteral("not-written"),
                  QStringLiteral("missing, and the medium cannot be written"));
        tellNotWritable();
    } else if (!hadCueUp) {
        addRepair(BLCueupInfoAcss::kFileName, QStringLiteral("created"), QStringLiteral("was missing"));
    }
    if (isCancelAt(2))
        return false;

    BLMediaProfileAcss mediaPro;
    const Source source = openMediaPro(workFolder, mediaPro);
    bool needsRepair = source == Source::PaddedProfile;
    if (source == Source::Profile || source == Source::PaddedProfile) {
        if (isCancelAt(3))
            return false;
        needsRepair =
            mediaProCtrl.checkMediaProMeta(mediaPro, takes, workFolder, m_arrClipData, *this) || needsRepair;
        if (!isCancel()) {
            // The records of folders the profile did not list still lack
            // what a rewrite writes for them.
            if (needsRepair)
                mediaProCtrl.makeMediaPro(takes, workFolder, m_arrClipData);
            buildTakeData(takes, workFolder);
        }
    } else {
        isClipFolder(workFolder, takes);
        if (isCancelAt(4) || isCancelAt(5))
            return false;
        mediaProCtrl.makeMediaPro(takes, workFolder, m_arrClipData);
        buildTakeData(takes, workFolder);
        if (isCancelAt(6))
            return false;
        if (source == Source::NewProfile && m_bIndexUnreadable)
            rewriteMediaPro(takes, workFolder, QStringLiteral("rebuilt"),
                            QStringLiteral("could not be read; made anew from the clip and take folders"));
        else if (source == Source::NewProfile)
            rewriteMediaPro(takes, workFolder, QStringLiteral("created"),
                            QStringLiteral("was missing; made from the clip and take folders"));
    }
    if (isCancelAt(7))
        return false;

    if (needsRepair)
        rewriteMediaPro(takes, workFolder, QStringLiteral("rewritten"),
                        source == Source::PaddedProfile
                            ? QStringLiteral("ended in NUL bytes")
                            : QStringLiteral("did not list every clip and take folder"));
    if (!BLCommon::checkTakeDuration(takes))
        showMessage("MSG_111_3225");
    return true;
}

BLHouseKeepingCtrl::Source BLHouseKeepingCtrl::openMediaPro(const QString& workFolder,
                                                            BLMediaProfileAcss& mediaPro)
{
    const QString bpav = BLCommon::getPathOfBPAV(workFolder);
    const QString path = bpav + QLatin1Char('/') + BLMediaProfileAcss::kFileName;
    BLMediaProCtrl mediaProCtrl;
    if (!BLCommon::isFiles(path)) {
        if (mediaProCtrl.isMediaPro(mediaPro, workFolder) == 1)
            return Source::NewProfile;
        log(QStringLiteral("[BLHouseKeepingCtrl doHouseKeeping]    MediaPro.xml Create Error : ") +
            workFolder);
        m_bIndexUnreadable = true;
        addRepair(BLMediaProfileAcss::kFileName, QStringLiteral("not-written"),
                  QStringLiteral(
                      "missing, and the medium cannot be written; the takes were read from the folders"));
        tellNotWritable();
        return Source::FoldersOnly;
    }

    const bool loaded = mediaPro.loadForFolderPath(bpav);
    if (loaded && !mediaPro.wasPadded())
        return Source::Profile;
    if (!loaded) {
        log(QStringLiteral("[BLHouseKeepingCtrl doHouseKeeping]    MediaPro.xml Read Error : ") + workFolder);
        m_bIndexUnreadable = true;
    }
    // A damaged index is replaced (or, padded, written again) only once a
    // copy of it is kept in the log folder.
    const QString copy = keepDamagedCopy(workFolder, path);
    if (copy.isEmpty()) {
        showMessage("MSG_732_3301");
        addRepair(BLMediaProfileAcss::kFileName, QStringLiteral("not-written"),
                  loaded ? QStringLiteral("ends in NUL bytes; left as it is, as no copy of it could be kept")
                         : QStringLiteral("damaged; left as it is, as no copy of it could be kept; the takes "
                                          "were read from the folders"));
        return loaded ? Source::Profile : Source::FoldersOnly;
    }
    m_sDamagedCopy = copy;
    if (loaded) {
        showMessage("MSG_732_3300", {copy});
        return Source::PaddedProfile;
    }
    if (!mediaProCtrl.createEmptyMediaPro(mediaPro, workFolder)) {
        addRepair(BLMediaProfileAcss::kFileName, QStringLiteral("not-written"),
                  QStringLiteral(
                      "damaged, and the medium cannot be written; the takes were read from the folders"));
        tellNotWritable();
        return Source::FoldersOnly;
    }
    showMessage("MSG_732_3300", {copy});
    return Source::NewProfile;
}

QString BLHouseKeepingCtrl::keepDamagedCopy(const QString& workFolder, const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return QString();
    const QByteArray bytes = file.readAll();
    if (file.error() != QFile::NoError)
        return QString();
    const QString folder = BLLogCtrl::sharedCtrl()->logFolderPath() + QStringLiteral("/damaged");
    if (!QDir().mkpath(folder))
        return QString();
    // Named after the card's path and the time: "media_card_20260116-093015_MEDIAPRO.XML".
    QString card = QDir::cleanPath(workFolder).mid(1).replace(QLatin1Char('/'), QLatin1Char('_'));
    const QString stem = folder + QLatin1Char('/') + (card.isEmpty() ? QStringLiteral("root") : card) +
                         QLatin1Char('_') +
                         QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-HHmmss"));
    QString copy = stem + QLatin1Char('_') + BLMediaProfileAcss::kFileName;
    for (int n = 2; QFileInfo::exists(copy); ++n)
        copy = stem + QStringLiteral("-%1_").arg(n) + BLMediaProfileAcss::kFileName;
    return BLAtomicFile::writeFile(copy, bytes) ? copy : QString();
}

void BLHouseKeepingCtrl::rewriteMediaPro(const QList<DOTakeData>& takes, const QString& workFolder,
                                         const QString& action, const QString& reason)
{
    const QString path =
        BLCommon::getPathOfBPAV(workFolder) + QLatin1Char('/') + BLMediaProfileAcss::kFileName;
    if (!BLDiskCtrl::sharedCtrl()->isWritableThisPath(path)) {
        addRepair(BLMediaProfileAcss::kFileName, QStringLiteral("not-written"),
                  reason + QStringLiteral(", and the medium cannot be written"));
        tellNotWritable();
    } else if (BLMediaProCtrl().createMediaPro(takes, workFolder, m_arrClipData)) {
        addRepair(BLMediaProfileAcss::kFileName, action, reason);
    } else {
        log(QStringLiteral("[BLHouseKeepingCtrl doHouseKeeping]    MediaPro.xml Create Error : ") +
            workFolder);
        addRepair(BLMediaProfileAcss::kFileName, QStringLiteral("not-written"),
                  reason + QStringLiteral(", and writing it failed"));
    }
}

void BLHouseKeepingCtrl::endInterruptedMove(const QString& workFolder)
{
    const BLMoveJournal::Recovery recovery = BLMoveJournal::recover(workFolder);
    switch (recovery.state) {
    case BLMoveJournal::Recovery::Ended:
        addRepair(
            BLMoveJournal::kFileName, QStringLiteral("ended"),
            QStringLiteral("an interrupted move from %1 to %2: %3 takes left in the destination, %4 moved "
                           "back")
                .arg(recovery.source, recovery.destination)
                .arg(recovery.kept)
                .arg(recovery.broughtBack));
        showMessage("MSG_732_3302", {recovery.source, recovery.destination, QString::number(recovery.kept),
                                     QString::number(recovery.broughtBack)});
        break;
    case BLMoveJournal::Recovery::NotEnded:
        addRepair(BLMoveJournal::kFileName, QStringLiteral("not-ended"),
                  QStringLiteral("an interrupted move from %1 to %2: %3")
                      .arg(recovery.source, recovery.destination, recovery.detail));
        showMessage("MSG_732_3303", {recovery.source, recovery.destination, recovery.detail});
        break;
    case BLMoveJournal::Recovery::None:
    case BLMoveJournal::Recovery::Busy: // the move's own process ends it
        break;
    }
}

void BLHouseKeepingCtrl::addRepair(const QString& file, const QString& action, const QString& detail)
{
    // The copy of a damaged media profile goes with what became of it.
    m_repairs.append(
        {file, action, detail, file == BLMediaProfileAcss::kFileName ? m_sDamagedCopy : QString()});
}

void BLHouseKeepingCtrl::tellNotWritable()
{
    if (!std::exchange(m_bToldNotWritable, true))
        showMessage("MSG_732_3176");
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

void BLHouseKeepingCtrl::isClipFolder(const QString& workFolder, QList<DOTakeData>& takes)
{
    // A folder that is missing and cannot be made holds nothing to read.
    if (BLCommon::isCLPRFolder(workFolder))
        checkCLPRFolder(workFolder);
    else
        log(QStringLiteral(
                "[BLHouseKeepingCtrl isClipFolder]    CLPR Folder create failed of isCLPRFolder : ") +
            workFolder);
    if (BLCommon::isTAKRFolder(workFolder))
        checkTAKRFolder(takes, workFolder);
    else
        log(QStringLiteral(
                "[BLHouseKeepingCtrl isClipFolder]    TAKR Folder create failed of isTAKRFolder : ") +
            workFolder);
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
        if (take.getTakeStatus() == 5) {
            // Whatever of its metadata can be read (title, date) tells the
            // user which take is broken; it stays unusable.
            clipCtrl.getNonRealData(take, workFolder);
            continue;
        }
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
