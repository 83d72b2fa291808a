#include "core/operations/import/BLCreateNRT.h"

#include "core/card/BLDiskCtrl.h"
#include "core/card/DOTakeData.h"
#include "core/formats/metadata/BLBIMCtrl.h"
#include "core/formats/metadata/BLNonMetaAcss.h"
#include "core/services/BLAtomicFile.h"
#include "core/services/BLCommon.h"
#include "core/services/BLLogCtrl.h"

#include <QFile>
#include <QFileInfo>

namespace {

constexpr int kLogId = 7001;
const QString kUnknown = QStringLiteral("...");
const QString kNoTimecode = QStringLiteral("00000000");

void log(const QString& message)
{
    BLLogCtrl::debug(kLogId, message);
}

QString orUnknown(const QString& value)
{
    return value.isEmpty() ? kUnknown : value;
}

// One entry of a body UMID change table at frame 0 with the given status.
template <class Entry> QList<Entry> firstFrameEntry(const QString& status, const QString& value = {})
{
    Entry entry;
    entry.setFrameCount(QStringLiteral("0"));
    entry.setValue(value);
    entry.setStatus(status);
    return {entry};
}

} // namespace

QString BLCreateNRT::nonMetaPath(const QString& nowFile)
{
    return nowFile + QLatin1Char('/') + QFileInfo(nowFile).fileName() + QStringLiteral("M01.XML");
}

QString BLCreateNRT::mp4Path(const QString& nowFile)
{
    return nowFile + QLatin1Char('/') + QFileInfo(nowFile).fileName() + QStringLiteral(".MP4");
}

bool BLCreateNRT::createNonMetaFile(const QString& nowFile, DOTakeData& take)
{
    const QString path = nonMetaPath(nowFile);
    log(QStringLiteral("nonMetaPath:%1").arg(path));
    BLBIMCtrl* bim = BLBIMCtrl::sharedCtrl();
    if (bim->checkNonMetaExist(mp4Path(nowFile))) {
        if (!createNonRealTimeMetaFile(bim->getNonMetaData(), path))
            return false;
        BLNonMetaAcss acss;
        DONonMetaHeader header;
        // Only a non-real-time metadata document is taken over.
        if (acss.loadForFilePath(path) && acss.getNonMetaHeader(header))
            return restructNonMeta(acss, take) && createTitle(acss, nowFile) && createLastUpdate(acss) &&
                   acss.save();
        QFile::remove(path);
    }
    BLNonMetaAcss acss;
    return acss.createForFilePath(path) && acss.save() && acss.loadForFilePath(path) &&
           createNonRealTimeMetaData(acss, take, nowFile) && acss.save();
}

bool BLCreateNRT::createNonRealTimeMetaFile(const QByteArray& data, const QString& path)
{
    return BLAtomicFile::writeFile(path, data);
}

bool BLCreateNRT::restructNonMeta(BLNonMetaAcss& acss, DOTakeData& take)
{
    DOTargetMaterial target;
    if (!acss.getTargetMaterial(target))
        return false;
    const QString umid = BLCommon::sharedCtrl()->createUmid();
    target.setUmidRef(umid);
    if (!acss.setTargetMaterial(target))
        return false;
    take.setUmid(umid);
    return true;
}

bool BLCreateNRT::createNonRealTimeMetaData(BLNonMetaAcss& acss, const DOTakeData& take,
                                            const QString& nowFile)
{
    return createTargetMaterial(acss, take) && createDuration(acss) && createLtcChangeTable(acss, take) &&
           createCreationDate(acss, take, nowFile) && createLastUpdate(acss) && createTypicalUbit(acss) &&
           createKeyFrame(acss) && createBodyUmidBasicChangeTable(acss, take) &&
           createBodyUmidWhenChangeTable(acss) && createBodyUmidWhereChangeTable(acss) &&
           createBodyUmidWhoChangeTable(acss) && createKlvPacketTable(acss) &&
           createVideoFormat(acss, take) && createAudioFormat(acss, take) && createTitle(acss, nowFile);
}

bool BLCreateNRT::createTargetMaterial(BLNonMetaAcss& acss, const DOTakeData& take)
{
    DOTargetMaterial target;
    target.setUmidRef(take.getUmid());
    return acss.setTargetMaterial(target);
}

bool BLCreateNRT::createDuration(BLNonMetaAcss& acss)
{
    const quint32 duration = BLBIMCtrl::sharedCtrl()->getDuration();
    log(QStringLiteral("Duration:%1").arg(duration));
    return acss.setDuration(QString::number(duration));
}

bool BLCreateNRT::createLtcChangeTable(BLNonMetaAcss& acss, const DOTakeData& take)
{
    const BLBIMCtrl* bim = BLBIMCtrl::sharedCtrl();
    const QString tcFps = bim->gettcFps();
    const quint32 frameCount = bim->getFrameCount();
    // The time code of a frame in the form of an LTC change value.
    auto timecode = [&](quint32 frame) {
        return tcFps.isEmpty() ? kNoTimecode
                               : BLCommon::convertOfDurationByFrameCount(frame, take.getFormatFps(),
                                                                         take.getLtcChanges(), true);
    };

    DOLtcChange first;
    first.setStatus(QStringLiteral("increment"));
    if (frameCount == 0) {
        first.setFrameCount(kUnknown);
        first.setValue(kNoTimecode);
    } else {
        first.setFrameCount(QStringLiteral("0"));
        first.setValue(timecode(0));
    }
    log(QStringLiteral("FrameCount(incliment):%1").arg(qint32(frameCount)));

    DOLtcChange end;
    end.setStatus(QStringLiteral("end"));
    if (frameCount != 0 && bim->getDuration() == frameCount + 1) {
        end.setFrameCount(QString::number(frameCount));
        end.setValue(timecode(frameCount));
    } else {
        end.setFrameCount(kUnknown);
        end.setValue(kNoTimecode);
    }
    log(QStringLiteral("FrameCount(end):%1").arg(frameCount));
    log(QStringLiteral("tcFps:%1").arg(tcFps));

    DOLtcChangeTable table;
    table.setTcFps(orUnknown(tcFps));
    table.setLtcChangeArray({first, end});
    return acss.setLtcChangeTable(table);
}

QString BLCreateNRT::creationDateValue(const QDateTime& fileDate, const DOTakeData& take)
{
    if (!fileDate.isValid() || fileDate.toUTC().date() == QDate(1904, 1, 1))
        return take.getCreationDate();
    return BLCommon::getXmlFormatDateString(fileDate);
}

bool BLCreateNRT::createCreationDate(BLNonMetaAcss& acss, const DOTakeData& take, const QString& nowFile)
{
    const QDateTime fileDate = BLDiskCtrl::sharedCtrl()->getCreationDate(mp4Path(nowFile));
    return acss.setCreationDate(creationDateValue(fileDate, take));
}

bool BLCreateNRT::createLastUpdate(BLNonMetaAcss& acss)
{
    return acss.setLastUpdate();
}

bool BLCreateNRT::createTypicalUbit(BLNonMetaAcss& acss)
{
    return acss.setTypicalUbit(QStringLiteral("0000000000000000"));
}

bool BLCreateNRT::createKeyFrame(BLNonMetaAcss& acss)
{
    return acss.setKeyFrame(QStringLiteral("0"));
}

bool BLCreateNRT::createBodyUmidBasicChangeTable(BLNonMetaAcss& acss, const DOTakeData& take)
{
    return acss.setBasicChangeTable(
        firstFrameEntry<DOBodyUmidBasicChange>(QStringLiteral("start"), take.getUmid()));
}

bool BLCreateNRT::createBodyUmidWhenChangeTable(BLNonMetaAcss& acss)
{
    return acss.setWhenChangeTable(firstFrameEntry<DOBodyUmidWhenChange>(QStringLiteral("none")));
}

bool BLCreateNRT::createBodyUmidWhereChangeTable(BLNonMetaAcss& acss)
{
    return acss.setWhereChangeTable(firstFrameEntry<DOBodyUmidWhereChange>(QStringLiteral("none")));
}

bool BLCreateNRT::createBodyUmidWhoChangeTable(BLNonMetaAcss& acss)
{
    return acss.setWhoChangeTable(firstFrameEntry<DOBodyUmidWhoChange>(QStringLiteral("none")));
}

bool BLCreateNRT::createKlvPacketTable(BLNonMetaAcss& acss)
{
    DOKlvPacket packet;
    packet.setFrameCount(QStringLiteral("0"));
    packet.setStatus(QStringLiteral("none"));
    return acss.setKlvPacket({packet});
}

bool BLCreateNRT::createVideoFormat(BLNonMetaAcss& acss, const DOTakeData& take)
{
    DOVideoFrame frame;
    frame.setVideoCodec(orUnknown(take.getVideoCodec()));
    frame.setFormatFps(orUnknown(take.getFormatFps()));
    DOVideoLayout layout;
    layout.setPixel(orUnknown(take.getPixel()));
    layout.setNumOfVerticalLine(orUnknown(take.getNumOfVerticalLine()));
    layout.setAspectRatio(orUnknown(take.getARatio()));
    log(QStringLiteral("VideoCodec:%1").arg(frame.getVideoCodec()));
    log(QStringLiteral("FormatFps:%1").arg(frame.getFormatFps()));
    log(QStringLiteral("Pixel:%1").arg(layout.getPixel()));
    log(QStringLiteral("NumOfVerticalLine:%1").arg(layout.getNumOfVerticalLine()));
    log(QStringLiteral("AspectRatio:%1").arg(layout.getAspectRatio()));
    DOVideoFormat format;
    format.setVideoFrame(frame);
    format.setVideoLayout(layout);
    return acss.setVideoFormat(format);
}

bool BLCreateNRT::createAudioFormat(BLNonMetaAcss& acss, const DOTakeData& take)
{
    const int channels = BLBIMCtrl::sharedCtrl()->getAudioChannel();
    log(QStringLiteral("AudioChannel:%1").arg(channels));
    if (channels < 0)
        return false;
    const QString codec = orUnknown(take.getAudioCodec());
    log(QStringLiteral("AudioCodec:%1").arg(codec));
    QList<DOAudioRecPort> ports;
    for (int i = 1; i <= channels; ++i) {
        DOAudioRecPort port;
        port.setAudioCodec(codec);
        port.setPort(QStringLiteral("OTHERS"));
        port.setTrackDst(QStringLiteral("CH%1").arg(i));
        log(QStringLiteral("TrackDst:CH%1").arg(i));
        ports.append(port);
    }
    DOAudioFormat format;
    format.setNumOfChannel(channels == 0 ? kUnknown : QString::number(channels));
    format.setRecPortArray(ports);
    log(QStringLiteral("NumOfChannel:%1").arg(channels));
    return acss.setAudioFormat(format);
}

bool BLCreateNRT::createTitle(BLNonMetaAcss& acss, const QString& nowFile)
{
    const QString name = QFileInfo(mp4Path(nowFile)).completeBaseName();
    log(QStringLiteral("Alias:%1").arg(name));
    DOAlias alias;
    alias.setLang(BLCommon::getSystemLanguage());
    alias.setValue(name);
    DOTitle title;
    title.setUsAscii(QStringLiteral(""));
    title.setAlias(alias);
    // A title the document already has is replaced as a whole (a new document has none).
    acss.delTitleData();
    return acss.setTitleData(title) && acss.setAlias(alias);
}
