#include "core/operations/BLClipCtrl.h"

#include "core/common/BLCommon.h"
#include "core/metadata/BLNonMetaAcss.h"
#include "core/metadata/BLTakeInfoAcss.h"
#include "core/model/BLDiskCtrl.h"
#include "core/operations/BLCardPath.h"

#include <QFileInfo>

namespace {

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
    take.setCurrentDuration(meta.getDuration().toLongLong());
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
    take.setKeyFrame(meta.getKeyFrame().getFrameCount().toLongLong());
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
    clip.setCurrentDuration(meta.getDuration().toLongLong());
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
    take.setCurrentDuration(meta.getDuration().toLongLong());
    const DOLtcChangeTable& ltc = meta.getLtcChangeTable();
    take.setTcFps(ltc.getTcFps());
    take.setHalfStep(ltc.getHalfStep());
    take.setArrLtcChanges(ltc.getLtcChangeArray());
    take.setKeyFrame(meta.getKeyFrame().getFrameCount().toLongLong());
    return true;
}
