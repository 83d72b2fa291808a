#include "core/card/BLMediaProCtrl.h"

#include "core/card/BLCardPath.h"
#include "core/card/BLClipCtrl.h"
#include "core/card/BLDiskCtrl.h"
#include "core/card/BLHouseKeepingCtrl.h"
#include "core/card/DOClipCtrl.h"
#include "core/formats/metadata/BLCueupInfoAcss.h"
#include "core/formats/metadata/BLMediaProfileAcss.h"
#include "core/formats/mp4/CCreatePPT.h"
#include "core/services/BLCommon.h"
#include "core/services/BLLogCtrl.h"
#include "core/services/BLPlistCtrl.h"
#include "core/services/SCNotificationNames.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSet>

#include <algorithm>

namespace {

constexpr int kHouseKeepingLogId = 700;
constexpr int kDeleteLogId = 645;

const QString kClpr = QStringLiteral("CLPR");

bool isType(const QString& type, const char* name)
{
    return type.compare(QLatin1String(name), Qt::CaseInsensitive) == 0;
}

// A reference as the records keep it ("./..."); empty stays empty.
QString dotted(const QString& reference)
{
    return reference.isEmpty() ? reference : BLCommon::addDot(reference);
}

// The path components of a reference after its leading "./".
QStringList partsOf(const QString& reference)
{
    const QString relative = reference.startsWith(QLatin1String("./")) ? reference.mid(2) : reference;
    return relative.split(QLatin1Char('/'), Qt::SkipEmptyParts);
}

// The entry of CLPR (or TAKR) that a reference lies in, lower-cased: "abc0001"
// for "./CLPR/ABC0001/ABC0001.MP4" and "a001.mp4" for "./CLPR/A001.MP4"; ""
// for a reference elsewhere.
QString entryKey(const QString& reference, const QString& top)
{
    const QStringList parts = partsOf(reference);
    if (parts.size() < 2 || parts.first().compare(top, Qt::CaseInsensitive) != 0)
        return QString();
    return parts.at(1).toLower();
}

// A reference that names a file lying directly in CLPR ("./CLPR/A001.MP4").
bool isDirectlyInClpr(const QString& reference)
{
    return partsOf(reference).size() == 2 && !entryKey(reference, kClpr).isEmpty();
}

// An unusable clip (status 5) has no duration and no size and is not counted
// as present.
void markUnusable(DOClipData& clip)
{
    clip.setClipStatus(5);
    clip.setSize(0);
    clip.setRealFlag(false);
    clip.setCurrentDuration(0);
}

// Fills a clip from its non-real-time metadata (read through a take that
// carries the clip's references); a clip whose metadata cannot be read, or
// that is unusable, keeps no duration or size. A loose MP4 file has none.
void fillClip(BLClipCtrl& clipCtrl, DOClipData& clip, const QString& workFolder)
{
    if (clip.getClipStatus() == 4 || clip.getXMLUri().isEmpty())
        return;
    DOTakeData metadata;
    metadata.setXMLUri(dotted(clip.getXMLUri()));
    metadata.setSMIUri(dotted(clip.getSMIUri()));
    metadata.setBIMUri(dotted(clip.getBIMUri()));
    metadata.setPPNUri(dotted(clip.getPPNUri()));
    metadata.setMP4Uri(dotted(clip.getMP4Uri()));
    if (clipCtrl.getNonRealData(metadata, workFolder)) {
        clip.setUmid(metadata.getUmid());
        clip.setVideoCodec(metadata.getVideoCodec());
        clip.setAudioCodec(metadata.getAudioCodec());
        clip.setFormatFps(metadata.getFormatFps());
        clip.setNumOfChannel(metadata.getNumOfChannel());
        clip.setARatio(metadata.getARatio());
        clip.setCurrentDuration(metadata.getCurrentDuration());
        clip.setRealFlag(true);
        clip.setSize(BLCardPath::getFolderSize(BLCommon::getFolderName(clip), workFolder));
    } else {
        clip.setClipStatus(5);
    }
    if (clip.getClipStatus() == 5)
        markUnusable(clip);
}

// The clip a take without clips stands for in the media profile.
DOClipData clipOfTake(const DOTakeData& take)
{
    DOClipData clip;
    clip.setUmid(take.getUmid());
    clip.setXMLUri(take.getXMLUri());
    clip.setSMIUri(take.getSMIUri());
    clip.setBIMUri(take.getBIMUri());
    clip.setPPNUri(take.getPPNUri());
    clip.setMP4Uri(take.getMP4Uri());
    clip.setRealFlag(true);
    clip.setVideoCodec(take.getVideoCodec());
    clip.setAudioCodec(take.getAudioCodec());
    clip.setFormatFps(take.getFormatFps());
    clip.setNumOfChannel(take.getNumOfChannel());
    clip.setARatio(take.getARatio());
    clip.setSize(take.getSize());
    clip.setCurrentDuration(take.getCurrentDuration());
    clip.setMPStatus(take.getMPStatus());
    clip.setMateUpFlg(take.getMateUpFlg());
    clip.setOffset(take.getOffset());
    clip.setClipStatus(take.getTakeStatus());
    return clip;
}

// The essence component of a material, if it lists one.
const DOComponent* essenceComponent(const DOMaterial& material)
{
    for (const DOComponent& component : material.getComponent()) {
        if (isType(component.getType(), "MP4"))
            return &component;
    }
    return nullptr;
}

// The reference of a clip's or take's material: its essence for status 3
// (an MP4 file with its metadata only), else its take info.
template <class Record> QString materialUri(const Record& record, int status)
{
    return status == 3 ? record.getMP4Uri() : record.getSMIUri();
}

template <class Entry> void appendWithUri(QList<Entry>& list, const Entry& entry)
{
    if (!entry.getUri().isEmpty())
        list.append(entry);
}

} // namespace

// A new media profile's system entry names this machine by its network
// address, which only the disk controller above the file formats knows.
bool BLMediaProfileAcss::initMediaPro()
{
    DOSystem system;
    system.setSystemId(BLDiskCtrl::sharedCtrl()->getMacAddress(false).toLower());
    system.setSystemKind(kSystemKind);
    return setSystemData(system) == 0;
}

// ---- checking side ----

bool BLMediaProCtrl::checkMediaProMeta(BLMediaProfileAcss& mediaPro, QList<DOTakeData>& takes,
                                       const QString& workFolder, QList<DOClipData>& clips,
                                       BLHouseKeepingCtrl& houseKeeping)
{
    DOMediaProfileData data;
    if (!mediaPro.getMediaPro(data, QString(), 0))
        return false;
    QList<DOMaterial> clipMaterials;
    QList<DOMaterial> takeMaterials;
    for (const DOMaterial& material : data.getMaterial())
        (BLCommon::isClipReference(material.getUri()) ? clipMaterials : takeMaterials).append(material);
    houseKeeping.setCLPRMateCount(int(clipMaterials.size()));
    houseKeeping.setTAKRMateCount(int(takeMaterials.size()));

    if (!isCLPR(clipMaterials, workFolder, clips, houseKeeping)) {
        BLLogCtrl::debug(
            kHouseKeepingLogId,
            QStringLiteral("[BLMediaProCtrl checkMediaProMeta]    MediaPro.xml Read Error of isCLPR : ") +
                workFolder);
        return false;
    }
    isMP4(workFolder, clips, houseKeeping);
    if (houseKeeping.isCancel())
        return false;
    if (!isTAKR(takeMaterials, takes, workFolder, houseKeeping)) {
        BLLogCtrl::debug(
            kHouseKeepingLogId,
            QStringLiteral("[BLMediaProCtrl checkMediaProMeta]    MediaPro.xml Read Error of isTAKR : ") +
                workFolder);
        return false;
    }
    return checkMediaProFiles(takes, workFolder, clips);
}

bool BLMediaProCtrl::isCLPR(const QList<DOMaterial>& materials, const QString& workFolder,
                            QList<DOClipData>& clips, BLHouseKeepingCtrl& houseKeeping)
{
    const QString bpav = BLCommon::getPathOfBPAV(workFolder);
    BLClipCtrl clipCtrl;
    for (const DOMaterial& material : materials) {
        if (houseKeeping.isCancel())
            return false;
        MaterialFiles f;
        const bool readable = isCLPRFiles(material, workFolder, f);
        if (!readable && f.bMP4 && !f.bSMI && !f.bXML && !f.bBIM && !f.bPPN && isDirectlyInClpr(f.mp4)) {
            // A loose file the camera listed; it is picked up as one below.
            BLLogCtrl::debug(0, QStringLiteral("[BLMediaProCtrl isCLPR] Camcoder HouseKeeping clip"));
            continue;
        }
        DOClipData clip = clipCtrl.addClipList(f.umid, f.smi, f.mp4, f.xml, f.bim, f.ppn, workFolder);
        int status = 5;
        if (readable && f.bSMI)
            status = f.bMP4 && f.bXML && f.bBIM && f.bPPN ? 0 : 5;
        else if (readable)
            status = f.bMP4 && f.bXML && !f.bBIM && !f.bPPN ? 3 : 5;
        if (status != 5 && !isReadableMP4(BLCardPath::resolveReference(bpav, f.mp4)))
            status = 5;
        if (!f.bMP4)
            clip.setMateUpFlg(false);

        const DOComponent* essence = essenceComponent(material);
        clip.setClipStatus(status);
        clip.setMPStatus(material.getMPStatus());
        clip.setVideoCodec(!material.getVideoType().isEmpty() || !essence ? material.getVideoType()
                                                                          : essence->getVideoType());
        clip.setAudioCodec(!material.getAudioType().isEmpty() || !essence ? material.getAudioType()
                                                                          : essence->getAudioType());
        clip.setFormatFps(material.getFps());
        clip.setNumOfChannel(material.getCh());
        clip.setARatio(material.getAspectRatio());
        const qint64 duration = BLCommon::toFrameCount(material.getDur());
        clip.setCurrentDuration(duration);
        clip.setOffset(material.getOffset().toUInt());
        if (status == 5 || duration < 0)
            markUnusable(clip);
        clips.append(clip);
    }
    return true;
}

bool BLMediaProCtrl::isCLPRFiles(const DOMaterial& material, const QString& workFolder, MaterialFiles& files)
{
    const QString bpav = BLCommon::getPathOfBPAV(workFolder);
    files.umid = material.getUmid();
    if (isType(material.getType(), "MP4")) {
        files.mp4 = dotted(material.getUri());
    } else {
        files.smi = dotted(material.getUri());
        if (const DOComponent* essence = essenceComponent(material))
            files.mp4 = dotted(essence->getUri());
    }
    files.bSMI = BLCardPath::isFileOfReference(bpav, files.smi);
    files.bMP4 = BLCardPath::isFileOfReference(bpav, files.mp4);
    isRelevantInfo(material, workFolder, files);
    return !files.mp4.isEmpty() && !files.xml.isEmpty();
}

void BLMediaProCtrl::isRelevantInfo(const DOMaterial& material, const QString& workFolder,
                                    MaterialFiles& files)
{
    const QString bpav = BLCommon::getPathOfBPAV(workFolder);
    for (const DORelevantInfo& info : material.getRelevantInfo()) {
        const QString reference = dotted(info.getUri());
        const bool exists = BLCardPath::isFileOfReference(bpav, reference);
        if (isType(info.getType(), "XML") && files.xml.isEmpty()) {
            files.xml = reference;
            files.bXML = exists;
        } else if (isType(info.getType(), "BiM") && files.bim.isEmpty()) {
            files.bim = reference;
            files.bBIM = exists;
        } else if (isType(info.getType(), "PPN") && files.ppn.isEmpty()) {
            files.ppn = reference;
            files.bPPN = exists;
        }
    }
}

void BLMediaProCtrl::isMP4(const QString& workFolder, QList<DOClipData>& clips,
                           BLHouseKeepingCtrl& houseKeeping)
{
    const QString clpr =
        BLCardPath::resolveReference(BLCommon::getPathOfBPAV(workFolder), QStringLiteral("./CLPR"));
    for (const QString& name : getClipEntries(workFolder)) {
        if (houseKeeping.isCancel())
            return;
        const QString path = clpr + QLatin1Char('/') + name;
        if (QFileInfo(name).suffix().compare(QLatin1String("MP4"), Qt::CaseInsensitive) != 0 ||
            !BLCommon::isFiles(path))
            continue;
        DOClipData clip;
        clip.setMP4Uri(QStringLiteral("./CLPR/") + name);
        const QString umid = BLCommon::sharedCtrl()->createUmid();
        BLLogCtrl::debug(0, QStringLiteral("strUmid:") + umid);
        clip.setUmid(umid);
        clip.setClipStatus(4);
        clip.setRealFlag(false);
        clip.setSize(BLDiskCtrl::sharedCtrl()->getFileSize(path));
        clips.append(clip);
    }
}

bool BLMediaProCtrl::isTAKR(const QList<DOMaterial>& materials, QList<DOTakeData>& takes,
                            const QString& workFolder, BLHouseKeepingCtrl& houseKeeping)
{
    const QString bpav = BLCommon::getPathOfBPAV(workFolder);
    for (const DOMaterial& material : materials) {
        if (houseKeeping.isCancel())
            return false;
        DOTakeData take;
        take.setUmid(material.getUmid());
        take.setSMIUri(dotted(material.getUri()));
        const bool bSMI = BLCardPath::isFileOfReference(bpav, take.getSMIUri());
        if (bSMI) {
            for (const DOComponent& component : material.getComponent())
                take.setClipUmid(component.getUmid());
            take.setTakeComponents(material.getComponent());
        }
        for (const DORelevantInfo& info : material.getRelevantInfo()) {
            if (isType(info.getType(), "XML")) {
                take.setXMLUri(dotted(info.getUri()));
                break;
            }
        }
        const bool bXML = BLCardPath::isFileOfReference(bpav, take.getXMLUri());
        take.setSize(BLCardPath::getFolderSize(take.getXMLUri(), workFolder));
        const qint64 duration = BLCommon::toFrameCount(material.getDur());
        take.setCurrentDuration(duration);
        take.setFormatFps(material.getFps());
        take.setARatio(material.getAspectRatio());
        take.setNumOfChannel(material.getCh());
        take.setVideoCodec(material.getVideoType());
        take.setOffset(material.getOffset().toUInt());
        take.setMPStatus(material.getMPStatus());
        if (!bSMI || !bXML || duration < 0) {
            take.setTakeStatus(5);
            take.setCurrentDuration(0);
        }
        take.setRealFlag(true);
        takes.append(take);
    }
    return true;
}

bool BLMediaProCtrl::checkMediaProFiles(QList<DOTakeData>& takes, const QString& workFolder,
                                        QList<DOClipData>& clips)
{
    const QString bpav = BLCommon::getPathOfBPAV(workFolder);
    BLClipCtrl clipCtrl;
    bool added = false;

    QSet<QString> listed;
    for (const DOClipData& clip : std::as_const(clips)) {
        for (const QString* reference :
             {&clip.getMP4Uri(), &clip.getXMLUri(), &clip.getSMIUri(), &clip.getBIMUri()})
            listed.insert(entryKey(*reference, kClpr));
    }
    for (const QString& name : getClipEntries(workFolder)) {
        if (listed.contains(name.toLower()))
            continue;
        DOClipData clip = clipCtrl.checkCLPRFiles(workFolder, name);
        if (clip.getClipStatus() < 4 && !isReadableMP4(BLCardPath::resolveReference(bpav, clip.getMP4Uri())))
            markUnusable(clip);
        // An unusable folder is shown (under its UMID, where its metadata
        // gives one) but gives the profile nothing to list, so it alone does
        // not call for a rewrite.
        if (clip.getClipStatus() == 5)
            fillClip(clipCtrl, clip, workFolder);
        clips.append(clip);
        added = added || clip.getClipStatus() != 5;
    }

    const QString takr = QStringLiteral("TAKR");
    listed.clear();
    for (const DOTakeData& take : std::as_const(takes))
        listed.insert(entryKey(take.getSMIUri(), takr));
    for (const QString& name : getTakeEntries(workFolder)) {
        if (listed.contains(name.toLower()))
            continue;
        takes.append(clipCtrl.checkTAKRFiles(workFolder, name));
        added = true;
    }
    return added;
}

void BLMediaProCtrl::makeMediaPro(QList<DOTakeData>& takes, const QString& workFolder,
                                  QList<DOClipData>& clips)
{
    BLClipCtrl clipCtrl;
    for (DOTakeData& take : takes) {
        if (!clipCtrl.getNonRealData(take, workFolder))
            take.setTakeStatus(5);
    }
    for (DOClipData& clip : clips)
        fillClip(clipCtrl, clip, workFolder);
}

bool BLMediaProCtrl::isReadableMP4(const QString& path)
{
    if (path.isEmpty())
        return false;
    CCreatePPT checker;
    const bool accepted = checker.blCheckMP4(QFile::encodeName(path).constData()) == 1;
    checker.CloseCheckMP4();
    return accepted;
}

QStringList BLMediaProCtrl::getClipEntries(const QString& workFolder)
{
    const QString clpr =
        BLCardPath::resolveReference(BLCommon::getPathOfBPAV(workFolder), QStringLiteral("./CLPR"));
    QStringList names;
    if (clpr.isEmpty())
        return names;
    for (const QString& name : BLCommon::getFileList(clpr)) {
        if (name.startsWith(QLatin1Char('.')))
            continue;
        const QFileInfo info(clpr + QLatin1Char('/') + name);
        if (info.isDir() || info.suffix().compare(QLatin1String("MP4"), Qt::CaseInsensitive) == 0)
            names << name;
    }
    names.sort();
    return names;
}

QStringList BLMediaProCtrl::getTakeEntries(const QString& workFolder)
{
    const QString takr =
        BLCardPath::resolveReference(BLCommon::getPathOfBPAV(workFolder), QStringLiteral("./TAKR"));
    QStringList names;
    if (takr.isEmpty())
        return names;
    for (const QString& name : BLCommon::getFileList(takr)) {
        if (!name.startsWith(QLatin1Char('.')) && QFileInfo(takr + QLatin1Char('/') + name).isDir())
            names << name;
    }
    names.sort();
    return names;
}

// ---- writing side ----

int BLMediaProCtrl::isMediaPro(BLMediaProfileAcss& mediaPro, const QString& workFolder)
{
    const QString bpav = BLCommon::getPathOfBPAV(workFolder);
    if (BLCommon::isFiles(bpav + QLatin1Char('/') + BLMediaProfileAcss::kFileName))
        return 0;
    return createEmptyMediaPro(mediaPro, workFolder) ? 1 : 2;
}

bool BLMediaProCtrl::createEmptyMediaPro(BLMediaProfileAcss& mediaPro, const QString& workFolder)
{
    if (!mediaPro.createForFolderPath(BLCommon::getPathOfBPAV(workFolder)))
        return false;
    DOAttached attached;
    const int sequentialNo = BLCommon::nextSequentialNo();
    attached.setMediaId(BLCommon::createMediaID(sequentialNo));
    if (mediaPro.setAttachedData(attached) != 0 || !mediaPro.save(attached.getMediaId()))
        return false;
    BLPlistCtrl::sharedCtrl()->setSequentialNo(sequentialNo);
    return true;
}

bool BLMediaProCtrl::isCueUp(const QString& workFolder)
{
    const QString bpav = BLCommon::getPathOfBPAV(workFolder);
    if (BLCommon::isFiles(bpav + QLatin1Char('/') + BLCueupInfoAcss::kFileName))
        return true;
    BLCueupInfoAcss cueUp;
    return cueUp.createForFolderPath(bpav) && cueUp.save();
}

bool BLMediaProCtrl::createMediaPro(const QList<DOTakeData>& takes, const QString& workFolder)
{
    QList<DOClipData> clips;
    for (const DOTakeData& take : takes) {
        if (take.getClipData().isEmpty())
            clips.append(clipOfTake(take));
    }
    for (const DOTakeData& take : takes)
        clips.append(take.getClipData());
    return createMediaPro(takes, workFolder, clips);
}

bool BLMediaProCtrl::createMediaPro(const QList<DOTakeData>& takes, const QString& workFolder,
                                    const QList<DOClipData>& clips)
{
    const QString bpav = BLCommon::getPathOfBPAV(workFolder);
    BLMediaProfileAcss mediaPro;
    if (!mediaPro.loadForFolderPath(bpav))
        return false;

    // A clip without essence gets no material; its folder stays on disk (the
    // pane shows it as unusable, so the user can delete it on purpose).
    QList<DOMaterial> materials;
    for (const DOClipData& clip : clips) {
        if (clip.getClipStatus() != 4 && clip.getMateUpFlg())
            appendWithUri(materials, createMaterialData(clip));
    }
    for (const DOTakeData& take : takes) {
        if (!take.getClipData().isEmpty() && take.getTakeStatus() < 4)
            appendWithUri(materials, createMaterialData(take));
    }

    if (mediaPro.replaceMaterialData(materials) != 0)
        return false;
    DOAttached attached;
    mediaPro.getAttachedData(attached);
    return mediaPro.updateVersion(versionFor(takes)) && mediaPro.save(attached.getMediaId());
}

DOMaterial BLMediaProCtrl::createMaterialData(const DOClipData& clip)
{
    DOMaterial material;
    const bool mp4Only = clip.getClipStatus() == 3;
    material.setUri(materialUri(clip, clip.getClipStatus()));
    if (mp4Only) {
        material.setType(QStringLiteral("MP4"));
        material.setVideoType(clip.getVideoCodec());
        material.setAudioType(clip.getAudioCodec());
    } else {
        material.setType(QStringLiteral("PD-EDL"));
    }
    material.setFps(clip.getFormatFps());
    material.setDur(QString::number(clip.getCurrentDuration()));
    material.setCh(clip.getNumOfChannel());
    material.setAspectRatio(clip.getARatio());
    material.setOffset(QString::number(clip.getOffset()));
    material.setUmid(clip.getUmid());
    material.setMPStatus(clip.getMPStatus());

    QList<DOComponent> components;
    if (!mp4Only)
        appendWithUri(components, createComponentData(clip));
    material.setComponent(components);
    QList<DORelevantInfo> infos;
    for (int index = 0; index < (mp4Only ? 1 : 3); ++index)
        appendWithUri(infos, createRelevantInfo(clip, index));
    material.setRelevantInfo(infos);
    return material;
}

DOMaterial BLMediaProCtrl::createMaterialData(const DOTakeData& take)
{
    DOMaterial material;
    material.setUri(materialUri(take, take.getTakeStatus()));
    if (take.getTakeStatus() == 3) {
        material.setType(QStringLiteral("MP4"));
        material.setVideoType(take.getVideoCodec());
        material.setAudioType(take.getAudioCodec());
    } else {
        material.setType(QStringLiteral("PD-EDL"));
    }
    material.setFps(take.getFormatFps());
    material.setDur(QString::number(take.getCurrentDuration()));
    material.setCh(take.getNumOfChannel());
    material.setAspectRatio(take.getARatio());
    material.setOffset(QString::number(take.getOffset()));
    material.setUmid(take.getUmid());
    material.setMPStatus(take.getMPStatus());

    QList<DOComponent> components;
    if (!take.getTakeComponents().isEmpty()) {
        for (const DOComponent& component : take.getTakeComponents()) {
            if (!isSameUmid(component.getUmid(), take.getUmid()))
                appendWithUri(components, component);
        }
        material.setComponent(components);
        if (components.isEmpty())
            return material;
    } else {
        for (const DOClipData& clip : take.getClipData())
            appendWithUri(components, createTakeComponentData(clip.getSMIUri(), clip.getUmid()));
        material.setComponent(components);
    }
    QList<DORelevantInfo> infos;
    appendWithUri(infos, createRelevantInfo(take, 0));
    material.setRelevantInfo(infos);
    return material;
}

DOComponent BLMediaProCtrl::createComponentData(const DOClipData& clip)
{
    DOComponent component;
    component.setUri(clip.getMP4Uri());
    component.setType(QStringLiteral("MP4"));
    component.setVideoType(clip.getVideoCodec());
    component.setAudioType(clip.getAudioCodec());
    component.setFps(clip.getFormatFps());
    component.setDur(QString::number(clip.getCurrentDuration()));
    component.setCh(clip.getNumOfChannel());
    component.setAspectRatio(clip.getARatio());
    component.setOffset(QString::number(clip.getOffset()));
    return component;
}

DOComponent BLMediaProCtrl::createTakeComponentData(const QString& uri, const QString& umid)
{
    DOComponent component;
    component.setUri(uri);
    component.setType(QStringLiteral("PD-EDL"));
    component.setUmid(umid);
    return component;
}

bool BLMediaProCtrl::createCopyMediaPro(const QString& toFolder, const QList<DOTakeData>& takes,
                                        const QString& fromFolder, const QString& mediaId)
{
    BLMediaProfileAcss mediaPro;
    const int state = isMediaPro(mediaPro, toFolder);
    if (state == 2)
        return false;
    const bool created = state == 1;
    BLMediaProfileAcss header;
    if (!header.loadForFolderPath(BLCommon::getPathOfBPAV(toFolder)))
        return false;

    DOAttached attached;
    header.getAttachedData(attached);
    bool announce = false;
    if (created) {
        BLMediaProfileAcss source;
        if (source.loadForFolderPath(BLCommon::getPathOfBPAV(fromFolder))) {
            DOAttached sourceAttached;
            DOMetadata sourceMetadata;
            if (source.getAttachedData(sourceAttached)) {
                attached.setMediaName(sourceAttached.getMediaName());
                announce = true;
            }
            if (source.getMetadataData(sourceMetadata) &&
                (!sourceMetadata.getCharset().isEmpty() || !sourceMetadata.getType().isEmpty()))
                header.setMetadataData(sourceMetadata);
        }
    }
    if (!mediaId.isEmpty()) {
        attached.setMediaId(mediaId);
        announce = false;
    }
    // Without a media id the save gives the profile a new one.
    if (!header.initMediaPro() ||
        (!attached.getMediaId().isEmpty() && header.setAttachedData(attached) != 0) ||
        !header.updateVersion(versionFor(takes)) || !header.save(attached.getMediaId()))
        return false;
    if (announce) {
        sendMediaNameDidChangeNotificationOnMainThread(
            {{SC::SCSelectFolderKey, toFolder}, {SC::SCMediaNameKey, attached.getMediaName()}});
    }

    QList<DOTakeData> sorted = takes;
    std::stable_sort(sorted.begin(), sorted.end(),
                     [](const DOTakeData& a, const DOTakeData& b) { return a.compareByCreationDate(b) < 0; });
    return createMediaPro(sorted, toFolder);
}

bool BLMediaProCtrl::deleteMaterial(const QList<DOTakeData>& takes, const QString& workFolder, bool upVer)
{
    BLLogCtrl::debug(kDeleteLogId, QStringLiteral("[BLMediaProCtrl deleteMaterial] Start"));
    BLMediaProfileAcss mediaPro;
    if (!mediaPro.loadForFolderPath(BLCommon::getPathOfBPAV(workFolder))) {
        BLLogCtrl::debug(kDeleteLogId,
                         QStringLiteral("[BLMediaProCtrl deleteMaterial]    MediaPro.xml Read Error :") +
                             workFolder);
        return false;
    }
    const QList<DOMaterial> materials = mediaPro.getMaterialData(QString(), 0);
    // By reference and UMID together: a clip folder duplicated by hand has
    // the same UMID under another reference, and keeps its material.
    int removed = 0;
    auto removeByUmid = [&](const QString& umid, const QString& uri) {
        for (const DOMaterial& material : materials) {
            if (material.getUri() != dotted(uri) || !isSameUmid(material.getUmid(), umid))
                continue;
            ++removed;
            if (!deleteMaterial(mediaPro, material, umid)) {
                BLLogCtrl::debug(
                    kDeleteLogId,
                    QStringLiteral("[BLMediaProCtrl deleteMaterial]    Tag remove fail (UMID:%1)").arg(umid));
                return false;
            }
        }
        return true;
    };
    for (const DOTakeData& take : takes) {
        for (const DOClipData& clip : take.getClipData()) {
            if (!removeByUmid(clip.getUmid(), materialUri(clip, clip.getClipStatus())))
                return false;
        }
        if (!removeByUmid(take.getUmid(), materialUri(take, take.getTakeStatus())))
            return false;
    }
    // Takes the profile does not list yet (the roll-back of a copy) leave it
    // as it is, byte for byte.
    if (removed == 0 && !upVer) {
        BLLogCtrl::debug(kDeleteLogId, QStringLiteral("[BLMediaProCtrl deleteMaterial] End"));
        return true;
    }
    if (upVer)
        mediaPro.updateVersion(QStringLiteral("1.20"));
    DOAttached attached;
    mediaPro.getAttachedData(attached);
    const bool saved = mediaPro.save(attached.getMediaId());
    BLLogCtrl::debug(kDeleteLogId, QStringLiteral("[BLMediaProCtrl deleteMaterial] End"));
    return saved;
}

bool BLMediaProCtrl::deleteMaterialsIn(const QString& workFolder, const QStringList& paths)
{
    // A profile that cannot be read is made anew from the folders by the next scan.
    BLMediaProfileAcss mediaPro;
    if (!mediaPro.loadForFolderPath(BLCommon::getPathOfBPAV(workFolder)))
        return true;
    int removed = 0;
    for (const DOMaterial& material : mediaPro.getMaterialData(QString(), 0)) {
        const QString& reference = material.getUri();
        const QString uri = reference.startsWith(QLatin1String("./")) ? reference.mid(2) : reference;
        const bool inside = std::any_of(paths.begin(), paths.end(), [&](const QString& path) {
            return uri.compare(path, Qt::CaseInsensitive) == 0 ||
                   uri.startsWith(path + QLatin1Char('/'), Qt::CaseInsensitive);
        });
        if (inside && mediaPro.delMaterialData(material.getUri()) > 0)
            ++removed;
    }
    if (removed == 0)
        return true;
    DOAttached attached;
    mediaPro.getAttachedData(attached);
    return mediaPro.save(attached.getMediaId());
}

bool BLMediaProCtrl::deleteMaterial(BLMediaProfileAcss& mediaPro, const DOMaterial& material,
                                    const QString& umid)
{
    if (!isSameUmid(material.getUmid(), umid))
        return false;
    return mediaPro.delMaterialData(material.getUri()) > 0;
}

bool BLMediaProCtrl::updateCueUpByClipDelete(const DOClipCtrl& clipCtrl)
{
    const QString source =
        BLCommon::makeFilePath(clipCtrl.getCopyFromPath(), {clipCtrl.getCopyFromFolderName()});
    BLCueupInfoAcss cueUp;
    DOClip first;
    if (!cueUp.loadForFolderPath(BLCommon::getPathOfBPAV(source)) || !cueUp.getClipData(first))
        return false;
    const QStringList& deleted = clipCtrl.getDelUmid();
    if (std::none_of(deleted.begin(), deleted.end(),
                     [&](const QString& umid) { return isSameUmid(first.getUmid(), umid); }))
        return true;
    return cueUp.delClipData(first.getUri()) && cueUp.save();
}

DOComponent BLMediaProCtrl::createComponent(const DOTakeData& take, const QString& mediaId)
{
    DOComponent component;
    component.setMediaId(mediaId);
    component.setMediaKind(QStringLiteral("ProfessionalMemoryCard"));
    component.setUri(QStringLiteral("file://") + BLCommon::removalDot(take.getSMIUri()));
    component.setType(QStringLiteral("PD-EDL"));
    component.setUmid(take.getUmid());
    return component;
}

bool BLMediaProCtrl::checkComponent(const QList<DOComponent>& components, const QString& umid)
{
    return std::any_of(components.begin(), components.end(),
                       [&](const DOComponent& component) { return isSameUmid(component.getUmid(), umid); });
}

void BLMediaProCtrl::sendMediaNameDidChangeNotificationOnMainThread(const QVariantMap& userInfo)
{
    BLCommon::sharedCtrl()->sendNotificationNotCoalesce(this, SC::SCMediaNameDidChangeNotification, userInfo);
}

QString BLMediaProCtrl::versionFor(const QList<DOTakeData>& takes)
{
    return BLCommon::Is720SP(takes) ? QStringLiteral("1.20") : QStringLiteral("1.10");
}

bool BLMediaProCtrl::isSameUmid(const QString& umid, const QString& umid2)
{
    return !umid.isEmpty() &&
           umid.right(DOTakeInfo::kUmidLength)
                   .compare(umid2.right(DOTakeInfo::kUmidLength), Qt::CaseInsensitive) == 0;
}
