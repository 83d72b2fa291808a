#include "core/card/BLClipCtrl.h"

#include "core/card/BLCardPath.h"
#include "core/card/BLDiskCtrl.h"
#include "core/card/BLMediaProCtrl.h"
#include "core/card/DOClipCtrl.h"
#include "core/card/IOperationPane.h"
#include "core/formats/metadata/BLNonMetaAcss.h"
#include "core/formats/metadata/BLTakeInfoAcss.h"
#include "core/services/BLCommon.h"
#include "core/services/BLLogCtrl.h"
#include "core/services/SCNotificationNames.h"

#include <QDir>
#include <QFileInfo>

#include <utility>

namespace {

constexpr int kLogId = 640;

void log(const QString& message)
{
    BLLogCtrl::debug(kLogId, message);
}

// Shows a message key; a refusal without a key of its own shows nothing.
void showMessage(const char* key, int style = 0)
{
    if (key)
        BLCommon::sharedCtrl()->messageBox(QString::fromLatin1(key), QString(), style, 0);
}

bool isSameUmid(const QString& umid, const QString& umid2)
{
    return !umid.isEmpty() &&
           DOTakeInfo::toStoredUmid(umid).compare(DOTakeInfo::toStoredUmid(umid2), Qt::CaseInsensitive) == 0;
}

// The folder holding a record's files in a BPAV folder: that of its metadata,
// else of its take info or essence; for a loose MP4 file (status 4) the file
// itself. "" when unknown or outside the BPAV folder.
template <class Record> QString recordFolder(const QString& bpav, const Record& record, int status)
{
    if (status == 4) {
        const QString file = BLCardPath::resolveReference(bpav, record.getMP4Uri());
        return BLCommon::isFiles(file) ? file : QString();
    }
    for (const QString& reference : {record.getXMLUri(), record.getSMIUri(), record.getMP4Uri()})
        if (!reference.isEmpty())
            return BLCardPath::resolveRecordFolder(bpav, reference);
    return {};
}

template <class Record>
QStringList operatePaths(const Record& record, bool needFolder, const QString& bpav, int status)
{
    QStringList paths;
    QString lastReference;
    for (const QString* reference : {&record.getXMLUri(), &record.getSMIUri(), &record.getBIMUri(),
                                     &record.getPPNUri(), &record.getMP4Uri()}) {
        if (status == 3 && reference == &record.getSMIUri())
            continue;
        const QString path = BLCardPath::resolveReference(bpav, *reference);
        if (BLCommon::isFiles(path)) {
            paths << path;
            lastReference = *reference;
        }
    }
    if (needFolder && !paths.isEmpty()) {
        const QString folder =
            status == 4 ? paths.last() : BLCardPath::resolveRecordFolder(bpav, lastReference);
        if (!folder.isEmpty())
            paths.prepend(folder);
    }
    return paths;
}

template <class Record> int existingFileCount(const Record& record, const QString& workPath)
{
    const QString bpav = BLCommon::getPathOfBPAV(workPath);
    int count = 0;
    for (const QString& reference :
         {record.getXMLUri(), record.getSMIUri(), record.getBIMUri(), record.getPPNUri(), record.getMP4Uri()})
        if (BLCardPath::isFileOfReference(bpav, reference))
            ++count;
    return count;
}

// Removes a record's folder (or loose file), logging it.
bool removeLogged(const QString& path)
{
    log(QStringLiteral("[BLClipCtrl doFileDelete]    path:") + path);
    return !path.isEmpty() && BLCommon::removeFile(path);
}

bool hasExtension(const QString& name, QLatin1String extension)
{
    return QFileInfo(name).suffix().compare(extension, Qt::CaseInsensitive) == 0;
}

// The visible files of a folder inside the BPAV folder, by name in sorted
// order, so that a folder holding two files of one kind always gives the same
// record. Nothing for a folder that leads outside the BPAV folder.
QStringList visibleFilesOf(const QString& bpav, const QString& folderReference)
{
    const QString folder = BLCardPath::resolveReference(bpav, folderReference);
    if (!BLCommon::isFolder(folder))
        return {};
    QStringList names = BLCommon::getFileList(folder);
    names.sort();
    QStringList files;
    for (const QString& name : std::as_const(names))
        if (!name.startsWith(QLatin1Char('.')) &&
            BLCardPath::isFileOfReference(bpav, folderReference + QLatin1Char('/') + name))
            files << name;
    return files;
}

// Loads the non-real-time metadata a reference names, in the system language.
bool loadNonRealTimeMeta(const QString& workFolder, const QString& reference, DONonRealTimeMeta& meta)
{
    const QString path = BLCardPath::resolveReference(BLCommon::getPathOfBPAV(workFolder), reference);
    if (path.isEmpty())
        return false;
    BLNonMetaAcss acss;
    return acss.loadForFilePath(path) && acss.getNonMetaData(meta, BLCommon::getSystemLanguage());
}

QString firstAudioCodec(const DONonRealTimeMeta& meta)
{
    const QList<DOAudioRecPort>& ports = meta.getAudioFormat().getRecPortArray();
    return ports.isEmpty() ? QString() : ports.first().getAudioCodec();
}

} // namespace

// ---- checks before an operation ----

bool BLClipCtrl::checkWritableMoveOrigin(const DOClipCtrl& clipCtrl, int type)
{
    const QString source = clipCtrl.sourceWorkFolder();
    BLDiskCtrl* disk = BLDiskCtrl::sharedCtrl();
    if (disk->isUsableDrive(source) == 3) {
        showMessage("MSG_651_3232");
        return false;
    }
    if (disk->baseReadableCheck(source) && disk->baseWritableCheck(source) &&
        disk->checkWritableFromFolder(clipCtrl.getFromTakes(), source))
        return true;
    switch (type) {
    case kTypeMove:
        showMessage("MSG_6510_3207");
        break;
    case kTypeCombine:
        showMessage("MSG_6510_3205");
        break;
    case kTypeDelete:
        showMessage("MSG_6510_3203");
        break;
    default:
        break;
    }
    return false;
}

bool BLClipCtrl::checkDeletePath(DOClipCtrl& clipCtrl)
{
    const QList<DOTakeData> takes = clipCtrl.getFromTakes();
    for (const DOTakeData& take : takes) {
        clipCtrl.setTargetTake(take);
        if (!isDeletable(clipCtrl))
            return false;
    }
    return true;
}

bool BLClipCtrl::isDeletable(const DOClipCtrl& clipCtrl)
{
    const DOTakeData& take = clipCtrl.getTargetTake();
    const QString bpav = BLCommon::getPathOfBPAV(clipCtrl.sourceWorkFolder());
    QStringList folders{recordFolder(bpav, take, take.getTakeStatus())};
    if (!take.getSingleClipFlag())
        for (const DOClipData& clip : take.getClipData())
            folders << recordFolder(bpav, clip, clip.getClipStatus());
    for (const QString& folder : std::as_const(folders)) {
        if (folder.isEmpty() || !BLDiskCtrl::sharedCtrl()->isDeletablePath(folder)) {
            BLLogCtrl::debug(0, folder + QStringLiteral(" : [undeletable]"));
            showMessage("MSG_6510_3203");
            return false;
        }
    }
    return true;
}

bool BLClipCtrl::checkFolderLimit(const DOClipCtrl& clipCtrl)
{
    return !BLCommon::isExceedFolderLimitByCopy(clipCtrl.destinationWorkFolder(), clipCtrl.getFromTakes());
}

bool BLClipCtrl::checkRepeatClip(DOClipCtrl& clipCtrl)
{
    clipCtrl.setNewTakes(clipCtrl.getFromTakes());
    const QString bpav = BLCommon::getPathOfBPAV(clipCtrl.destinationWorkFolder());
    // The destination holds an entry of the folder's name (ignoring case)
    // beside where the folder would go.
    const auto exists = [&bpav](const QString& folderReference) {
        const QFileInfo folder(folderReference);
        return !BLCommon::checkSameName(BLCommon::makeFilePath(bpav, {folder.path()}), folder.fileName());
    };
    for (const DOTakeData& take : clipCtrl.getFromTakes()) {
        for (const DOClipData& clip : take.getClipData()) {
            const QString folder = BLCommon::getFolderName(clip);
            if ((!folder.isEmpty() && exists(folder)) || checkUmid(clip.getUmid(), clipCtrl) == 0)
                return false;
        }
        if (!take.getSMIUri().isEmpty()) {
            const QString folder =
                take.getTakeStatus() == 3 ? take.getSMIUri() : QFileInfo(take.getSMIUri()).path();
            if (exists(folder) || checkUmid(take.getUmid(), clipCtrl) == 0)
                return false;
        }
    }
    return true;
}

int BLClipCtrl::checkUmid(const QString& umid, const DOClipCtrl& clipCtrl)
{
    for (const DOTakeData& take : clipCtrl.getToTakes()) {
        if (isSameUmid(umid, take.getUmid()))
            return 0;
        for (const DOClipData& clip : take.getClipData())
            if (isSameUmid(umid, clip.getUmid()))
                return 0;
    }
    return 1;
}

int BLClipCtrl::checkUmid(const DOClipCtrl& clipCtrl, const QList<DOClipCtrl>& clipCtrls, int index)
{
    for (const DOTakeData& take : clipCtrl.getFromTakes())
        for (int other = 0; other < clipCtrls.size(); ++other)
            if (other != index)
                for (const DOTakeData& otherTake : clipCtrls.at(other).getFromTakes())
                    if (isSameUmid(take.getUmid(), otherTake.getUmid()))
                        return 0;
    return 1;
}

bool BLClipCtrl::checkFolderExist(IOperationPane& pane, int type)
{
    const bool exists = checkFolderExistOfWorkFolder(pane.getSelectFolder()) &&
                        (type != 5 || checkFolderExistOfRootFolder(pane.getWorkFolder()));
    if (!exists) {
        showMessage("MSG_632_3169");
        pane.notFoundSelectFolderNoMessage();
    }
    return exists;
}

bool BLClipCtrl::checkFolderExistOfWorkFolder(const QString& folder)
{
    return !folder.isEmpty() && BLCommon::isFolder(folder);
}

bool BLClipCtrl::checkFolderExistOfRootFolder(const QString& folder)
{
    // The volume list has no folder of its own to lose.
    return folder.isEmpty() || BLCommon::isFolder(folder);
}

bool BLClipCtrl::checkFolderExistToMediaInfo(IOperationPane* toPane, IOperationPane* fromPane)
{
    for (IOperationPane* pane : {toPane, fromPane}) {
        if (pane && !checkFolderExistOfWorkFolder(pane->getSelectFolder())) {
            showMessage("MSG_632_3169");
            pane->notFoundSelectFolderNoMessage();
            return false;
        }
    }
    return true;
}

// ---- the files of records ----

QStringList BLClipCtrl::getOperatePaths(const DOClipData& clip, bool needFolder, const QString& fromPath,
                                        int status)
{
    return operatePaths(clip, needFolder, fromPath, status);
}

QStringList BLClipCtrl::getOperatePaths(const DOTakeData& take, bool needFolder, const QString& fromPath,
                                        int status)
{
    return operatePaths(take, needFolder, fromPath, status);
}

void BLClipCtrl::setOperatePaths(QList<QStringList>& paths, const QList<DOTakeData>& takes, int& pathCount,
                                 bool needFolder, const QString& workPath)
{
    const QString bpav = BLCommon::getPathOfBPAV(workPath);
    paths.clear();
    pathCount = 0;
    for (const DOTakeData& take : takes) {
        QStringList list;
        for (const DOClipData& clip : take.getClipData())
            list << getOperatePaths(clip, needFolder, bpav, clip.getClipStatus());
        list << getOperatePaths(take, needFolder, bpav, take.getTakeStatus());
        // A path named twice (a loose file is its own folder; a take may carry
        // its clip's references) is listed once: it can be removed only once.
        list.removeDuplicates();
        pathCount += int(list.size());
        paths << list;
    }
}

qint64 BLClipCtrl::getPathCount(const QList<DOClipCtrl>& records)
{
    qint64 count = 0;
    for (const DOClipCtrl& record : records)
        count += getPathCount(record.getFromTakes(), record.sourceWorkFolder(), false);
    return count;
}

int BLClipCtrl::getPathCount(const QList<DOTakeData>& takes, const QString& workPath, bool needFolder)
{
    QList<QStringList> paths;
    int count = 0;
    setOperatePaths(paths, takes, count, needFolder, workPath);
    return count;
}

int BLClipCtrl::getPathCount(const DOClipData& clip, const QString& workPath)
{
    return existingFileCount(clip, workPath);
}

int BLClipCtrl::getPathCount(const DOTakeData& take, const QString& workPath)
{
    return existingFileCount(take, workPath);
}

// ---- deletion and roll-back ----

bool BLClipCtrl::doFileDelete(const DOClipCtrl& clipCtrl, const QString& workFolder)
{
    log(QStringLiteral("[BLClipCtrl doFileDelete] Start"));
    const DOTakeData& take = clipCtrl.getTargetTake();
    const QString bpav = BLCommon::getPathOfBPAV(workFolder);
    bool removed = true;
    if (take.getTakeStatus() != 4 && !take.getSingleClipFlag()) {
        for (const DOClipData& clip : take.getClipData()) {
            removed = removeLogged(recordFolder(bpav, clip, clip.getClipStatus()));
            if (!removed)
                break;
        }
    }
    if (removed)
        removed = removeLogged(recordFolder(bpav, take, take.getTakeStatus()));
    log(QStringLiteral("[BLClipCtrl doFileDelete] End"));
    return removed;
}

bool BLClipCtrl::doDeleteTake(const DOClipCtrl& clipCtrl, const QString& workFolder)
{
    if (!doFileDelete(clipCtrl, workFolder))
        return false;
    const DOTakeData& take = clipCtrl.getTargetTake();
    if (take.getTakeStatus() == 4)
        return true;
    return BLMediaProCtrl().deleteMaterial({take}, workFolder, BLCommon::Is720SP(clipCtrl.getToTakes()));
}

void BLClipCtrl::processCancel(DOClipCtrl& clipCtrl, int operatedCount)
{
    log(QStringLiteral("[BLClipCtrl processCancel] Start"));
    const QString destination = clipCtrl.destinationWorkFolder();
    if (clipCtrl.getNewFolderFlag()) {
        // The folder this operation made holds nothing but what it put there.
        if (BLCommon::isFolder(destination) && !BLCommon::isVolume(destination))
            BLCommon::removeFile(destination);
        log(QStringLiteral("[BLClipCtrl processCancel]    del:") + destination);
    } else {
        const QList<DOTakeData> takes =
            clipCtrl.getChangeFlag() ? clipCtrl.getNewTakes() : clipCtrl.getFromTakes();
        for (int i = 0; i < operatedCount && i < takes.size(); ++i) {
            clipCtrl.setTargetTake(takes.at(i));
            doDeleteTake(clipCtrl, destination);
        }
    }
    log(QStringLiteral("[BLClipCtrl processCancel] End"));
}

// ---- reading a folder into records ----

DOClipData BLClipCtrl::checkCLPRFiles(const QString& workFolder, const QString& folderName)
{
    const QString bpav = BLCommon::getPathOfBPAV(workFolder);
    const QString folderReference = QStringLiteral("./CLPR/") + folderName;
    DOClipData clip;

    QString mp4;
    QString smi;
    QString xml;
    QString bim;
    QString ppn;
    const QStringList files = visibleFilesOf(bpav, folderReference);
    for (const QString& name : files) {
        const QString reference = folderReference + QLatin1Char('/') + name;
        for (auto [extension, found] :
             {std::pair{QLatin1String("MP4"), &mp4}, std::pair{QLatin1String("SMI"), &smi},
              std::pair{QLatin1String("XML"), &xml}, std::pair{QLatin1String("BIM"), &bim},
              std::pair{QLatin1String("PPN"), &ppn}})
            if (found->isEmpty() && hasExtension(name, extension))
                *found = reference;
    }
    clip.setMP4Uri(mp4);
    clip.setSMIUri(smi);
    clip.setXMLUri(xml);
    clip.setBIMUri(bim);
    clip.setPPNUri(ppn);

    const QString folder = BLCardPath::resolveReference(bpav, folderReference);
    if (!mp4.isEmpty() && !xml.isEmpty()) {
        // A clip on this medium; without all five files it is an MP4 with its
        // metadata only, whose take-info reference names the clip folder.
        clip.setFolderName(folderName);
        clip.setRealFlag(true);
        clip.setSize(BLDiskCtrl::sharedCtrl()->getClipSize(folder));
        if (!smi.isEmpty() && !bim.isEmpty() && !ppn.isEmpty()) {
            clip.setClipStatus(0);
        } else {
            clip.setSMIUri(folderReference);
            clip.setClipStatus(3);
        }
    } else if (hasExtension(folderName, QLatin1String("MP4")) && BLCommon::isFiles(folder)) {
        clip.setMP4Uri(folderReference);
        clip.setUmid(BLCommon::sharedCtrl()->createUmid());
        clip.setSize(BLDiskCtrl::sharedCtrl()->getFileSize(folder));
        clip.setClipStatus(4);
    } else {
        clip.setFolderName(folderName);
        clip.setClipStatus(5);
        if (mp4.isEmpty())
            clip.setMateUpFlg(false);
    }
    return clip;
}

DOTakeData BLClipCtrl::checkTAKRFiles(const QString& workFolder, const QString& folderName)
{
    const QString bpav = BLCommon::getPathOfBPAV(workFolder);
    const QString folderReference = QStringLiteral("./TAKR/") + folderName;
    DOTakeData take;

    QString smi;
    QString xml;
    const QStringList files = visibleFilesOf(bpav, folderReference);
    for (const QString& name : files) {
        const QString reference = folderReference + QLatin1Char('/') + name;
        if (smi.isEmpty() && hasExtension(name, QLatin1String("SMI")))
            smi = reference;
        else if (xml.isEmpty() && hasExtension(name, QLatin1String("XML")))
            xml = reference;
    }
    take.setSMIUri(smi);
    take.setXMLUri(xml);
    take.setTakeStatus(!smi.isEmpty() && !xml.isEmpty() ? 1 : 5);
    if (!smi.isEmpty() && !getTakeInfo(take, BLCardPath::resolveReference(bpav, smi)))
        take.setTakeStatus(5);
    take.setRealFlag(true);
    const QString folder = BLCardPath::resolveReference(bpav, folderReference);
    take.setSize(BLCommon::isFolder(folder) ? BLDiskCtrl::sharedCtrl()->getClipSize(folder) : 0);
    take.setMPStatus(QStringLiteral("none"));
    return take;
}

DOClipData BLClipCtrl::addClipList(const QString& umid, const QString& smi, const QString& mp4,
                                   const QString& xml, const QString& bim, const QString& ppn,
                                   const QString& workFolder)
{
    const auto relative = [](const QString& reference) {
        return reference.isEmpty() ? QString() : BLCommon::addDot(reference);
    };
    DOClipData clip;
    clip.setSMIUri(relative(smi));
    clip.setMP4Uri(relative(mp4));
    clip.setXMLUri(relative(xml));
    clip.setBIMUri(relative(bim));
    clip.setPPNUri(relative(ppn));
    clip.setUmid(umid);
    clip.setRealFlag(true);
    clip.setSize(BLCardPath::getFolderSize(clip.getXMLUri(), workFolder));
    return clip;
}

// ---- filling records from metadata ----

bool BLClipCtrl::getTakeInfo(DOTakeData& take, const QString& smiPath)
{
    if (smiPath.isEmpty())
        return false;
    BLTakeInfoAcss acss;
    DOTSmil smil;
    if (!acss.loadForFilePath(smiPath) || !acss.getSmilData(smil, QString()))
        return false;
    take.setUmid(smil.getUmid());
    for (const DOTRef& ref : smil.getBody().getPar().getRef()) {
        take.setClipUmid(ref.getSrc());
        DOTakeInfo info;
        info.setSrc(ref.getSrc());
        info.setClipBegin(ref.getClipBegin());
        info.setClipEnd(ref.getClipEnd());
        info.setBegin(ref.getBegin());
        info.setEnd(ref.getEnd());
        take.setTakeInfoData(info);
    }
    return true;
}

DOClipData* BLClipCtrl::isClipData(const QString& umid, QList<DOClipData>& clips)
{
    const QString wanted = DOTakeInfo::toStoredUmid(umid);
    for (DOClipData& clip : clips) {
        if (DOTakeInfo::toStoredUmid(clip.getUmid()).compare(wanted, Qt::CaseInsensitive) == 0) {
            clip.setExistFlag(true);
            return &clip;
        }
    }
    return nullptr;
}

void BLClipCtrl::searchClip(DOTakeData& take, QList<DOClipData>& clips)
{
    bool missing = false;
    for (const QString& umid : take.getClipUmid()) {
        const DOClipData* clip = isClipData(umid, clips);
        if (!clip) {
            missing = true;
            continue;
        }
        take.setClipData(*clip);
        if (clip->getClipStatus() == 5) {
            take.setTakeStatus(5);
            take.setCurrentDuration(0);
        }
        if (!clip->getRealFlag())
            missing = true;
    }
    if (missing && take.getTakeStatus() != 5) {
        take.setMediaSpanning(true);
        take.setTakeStatus(2);
    }
    if (take.getClipData().isEmpty()) {
        take.setTakeStatus(5);
        take.setCurrentDuration(0);
    }
}

bool BLClipCtrl::getNonRealData(DOTakeData& take, const QString& workFolder)
{
    if (!getTakeNonRealMeta(take, workFolder))
        return false;

    QList<DOClipData> clips = take.getClipData();
    for (DOClipData& clip : clips)
        if (!getClipNonRealMeta(clip, workFolder))
            return false;
    take.setArrClipData(clips);

    if (!clips.isEmpty() && !getTakeNonMetaData(take, workFolder))
        return false;

    // The key frame must lie within the take as it is on this medium.
    const qint64 duration = take.getCurrentDuration();
    const qint64 keyFrame = take.getKeyFrame();
    const qint64 surplus = duration - take.getTakeDuration();
    if (keyFrame > duration)
        take.setKeyFrame(0);
    else if (surplus > 0)
        take.setKeyFrame(keyFrame > surplus ? keyFrame - surplus : 0);
    return true;
}

bool BLClipCtrl::getTakeNonRealMeta(DOTakeData& take, const QString& workFolder)
{
    if (take.getXMLUri().isEmpty())
        return false;
    const QList<DOClipData>& clips = take.getClipData();
    DONonRealTimeMeta meta;
    if (!loadNonRealTimeMeta(workFolder, clips.isEmpty() ? take.getXMLUri() : clips.last().getXMLUri(), meta))
        return false;

    if (take.getClipUmid().isEmpty())
        take.setUmid(meta.getTargetMaterial().getUmidRef());
    const qint64 duration = BLCommon::toFrameCount(meta.getDuration());
    if (duration < 0)
        return false;
    take.setCurrentDuration(duration);
    take.setUsAscii(meta.getTitle().getUsAscii());
    take.setAlias(meta.getTitle().getAlias().getValue());
    take.setDescription(meta.getDescription());
    take.setCreator(meta.getCreator());
    const QString status = meta.getTargetMaterial().getStatus();
    take.setStatus(status);
    if (take.getTakeStatus() == 0 && status.compare(QLatin1String("OK"), Qt::CaseInsensitive) != 0)
        take.setTakeStatus(1);
    take.setCreationDate(meta.getCreationDate());
    take.setLastUpDate(meta.getLastUpdate());
    take.setRecodingMode(meta.getRecordingMode().getType());
    const DOVideoFormat& video = meta.getVideoFormat();
    take.setVideoCodec(video.getVideoFrame().getVideoCodec());
    take.setFormatFps(video.getVideoFrame().getFormatFps());
    take.setPixel(video.getVideoLayout().getPixel());
    take.setNumOfVerticalLine(video.getVideoLayout().getNumOfVerticalLine());
    take.setARatio(video.getVideoLayout().getAspectRatio());
    take.setNumOfChannel(meta.getAudioFormat().getNumOfChannel());
    const QString audioCodec = firstAudioCodec(meta);
    if (!audioCodec.isEmpty())
        take.setAudioCodec(audioCodec);
    take.setManufacturer(meta.getDevice().getManufacturer());
    take.setModelName(meta.getDevice().getModelName());
    take.setKeyFrame(std::max<qint64>(BLCommon::toFrameCount(meta.getKeyFrame().getFrameCount()), 0));
    take.setArrLtcChanges(meta.getLtcChangeTable().getLtcChangeArray());
    take.setMediaSpanning(false);
    return true;
}

bool BLClipCtrl::getClipNonRealMeta(DOClipData& clip, const QString& workFolder)
{
    if (clip.getXMLUri().isEmpty())
        return true;
    DONonRealTimeMeta meta;
    if (!loadNonRealTimeMeta(workFolder, clip.getXMLUri(), meta))
        return false;
    const qint64 duration = BLCommon::toFrameCount(meta.getDuration());
    if (duration < 0)
        return false;
    clip.setCurrentDuration(duration);
    const DOVideoFormat& video = meta.getVideoFormat();
    clip.setVideoCodec(video.getVideoFrame().getVideoCodec());
    clip.setFormatFps(video.getVideoFrame().getFormatFps());
    clip.setARatio(video.getVideoLayout().getAspectRatio());
    clip.setNumOfChannel(meta.getAudioFormat().getNumOfChannel());
    const QString audioCodec = firstAudioCodec(meta);
    if (!audioCodec.isEmpty())
        clip.setAudioCodec(audioCodec);
    clip.setCreationDate(meta.getCreationDate());
    clip.setArrLtcChanges(meta.getLtcChangeTable().getLtcChangeArray());
    return true;
}

bool BLClipCtrl::getTakeNonMetaData(DOTakeData& take, const QString& workFolder)
{
    DONonRealTimeMeta meta;
    if (!loadNonRealTimeMeta(workFolder, take.getXMLUri(), meta))
        return false;
    const qint64 duration = BLCommon::toFrameCount(meta.getDuration());
    if (duration < 0)
        return false;
    take.setCurrentDuration(duration);
    const DOLtcChangeTable& ltc = meta.getLtcChangeTable();
    take.setTcFps(ltc.getTcFps());
    take.setHalfStep(ltc.getHalfStep());
    take.setArrLtcChanges(ltc.getLtcChangeArray());
    take.setKeyFrame(std::max<qint64>(BLCommon::toFrameCount(meta.getKeyFrame().getFrameCount()), 0));
    return true;
}
