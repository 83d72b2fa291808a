#include "core/formats/metadata/BLNonMetaAcss.h"

#include "core/services/BLCommon.h"

const QString BLNonMetaAcss::kNameSpace =
    QStringLiteral("urn:schemas-professionalDisc:nonRealTimeMeta:ver.1.30");
const QString BLNonMetaAcss::kLibNameSpace = QStringLiteral("urn:schemas-professionalDisc:lib:ver.1.30");

namespace {
const QString kRoot = QStringLiteral("/NonRealTimeMeta");
const QString kTitle = QStringLiteral("/NonRealTimeMeta/Title");
const QString kAlias = QStringLiteral("/NonRealTimeMeta/Title/lib:Alias");
const QString kVideoFormat = QStringLiteral("/NonRealTimeMeta/VideoFormat");
const QString kVideoLayout = QStringLiteral("/NonRealTimeMeta/VideoFormat/VideoLayout");
const QString kAudioFormat = QStringLiteral("/NonRealTimeMeta/AudioFormat");
const QString kDevice = QStringLiteral("/NonRealTimeMeta/Device");

// The order of the root's children in the card format's schema.
const QStringList kRootOrder = {"TargetMaterial",
                                "Duration",
                                "LtcChangeTable",
                                "CreationDate",
                                "LastUpdate",
                                "TypicalUbit",
                                "KeyFrame",
                                "BodyUmidBasicChangeTable",
                                "BodyUmidWhenChangeTable",
                                "BodyUmidWhereChangeTable",
                                "BodyUmidWhoChangeTable",
                                "KlvPacketTable",
                                "VideoFormat",
                                "AudioFormat",
                                "SubStream",
                                "Device",
                                "Lens",
                                "Creator",
                                "Title",
                                "Description",
                                "RecordingMode"};
const QStringList kVideoOrder = {"VideoRecPort", "VideoFrame", "VideoLayout"};
const QStringList kLayoutOrder = {"PullDownSetting"};

QString child(const QString& parentPath, const QString& name)
{
    return parentPath + QLatin1Char('/') + name;
}

QString aliasPath(const QString& lang)
{
    return QStringLiteral("%1[@xml:lang='%2']").arg(kAlias, lang);
}
} // namespace

bool BLNonMetaAcss::loadForFilePath(const QString& path)
{
    m_sFilePath = path;
    m_bLoaded = m_xml.loadXml(path);
    return m_bLoaded;
}

bool BLNonMetaAcss::createForFilePath(const QString& path)
{
    m_sFilePath = path;
    m_bLoaded = false;
    return m_xml.createDocument("NonRealTimeMeta") && select(kRoot) == 1 &&
           m_xml.setNameSpaceWithName("", kNameSpace) == 1 &&
           m_xml.setNameSpaceWithName("lib", kLibNameSpace) == 1 && setNonMetaHeader();
}

bool BLNonMetaAcss::save()
{
    return setNonMetaHeader() && m_xml.saveXml(m_sFilePath);
}

// ---- cursor helpers ----

QString BLNonMetaAcss::attribute(const QString& path, const QString& name)
{
    return select(path) > 0 ? m_xml.getAttributeValue(name) : QString();
}

bool BLNonMetaAcss::createElement(const QString& parentPath, const QStringList& order, const QString& name,
                                  const QString& value)
{
    // After the nearest present element that precedes it in the schema, else
    // before the nearest one that follows it, else at the end.
    const qsizetype at = order.indexOf(name);
    int index = -1;
    for (qsizetype i = at - 1; i >= 0 && index < 0; --i) {
        const int count = select(child(parentPath, order[i]));
        if (count > 0 && m_xml.selectNode(count - 1))
            index = m_xml.getIndexByParent() + 1;
    }
    for (qsizetype i = at + 1; i < order.size() && index < 0; ++i)
        if (select(child(parentPath, order[i])) > 0)
            index = m_xml.getIndexByParent();
    if (select(parentPath) < 1)
        return false;
    return (index < 0 ? m_xml.addElement(name, value) : m_xml.insertElement(name, value, index)) == 1;
}

bool BLNonMetaAcss::ensureElement(const QString& parentPath, const QStringList& order, const QString& name)
{
    const QString path = child(parentPath, name);
    if (select(path) > 0)
        return true;
    return createElement(parentPath, order, name) && select(path) > 0;
}

bool BLNonMetaAcss::appendEntry(const QString& tablePath, const QString& entryName)
{
    if (select(tablePath) < 1 || m_xml.addElement(entryName, "") != 1)
        return false;
    const int count = select(QStringLiteral("%1[1]/%2").arg(tablePath, entryName));
    return count > 0 && m_xml.selectNode(count - 1) == 1;
}

bool BLNonMetaAcss::replaceTable(const QString& name)
{
    const int count = select(child(kRoot, name));
    if (count <= 0)
        return createElement(kRoot, kRootOrder, name);
    m_xml.selectNode(0);
    const int index = m_xml.getIndexByParent();
    for (int i = count - 1; i >= 0; --i) {
        m_xml.selectNode(i);
        m_xml.removeElement();
    }
    return select(kRoot) > 0 && m_xml.insertElement(name, "", index) == 1;
}

bool BLNonMetaAcss::removeSingle(const QString& path)
{
    return select(path) == 1 && m_xml.removeElement() == 1;
}

// ---- reading ----

bool BLNonMetaAcss::getNonMetaData(DONonRealTimeMeta& meta, const QString& lang)
{
    if (!m_bLoaded)
        return false;
    DONonMetaHeader header;
    if (!getNonMetaHeader(header))
        return false;
    meta.setNonMetaHeader(header);
    meta.setDuration(attribute(child(kRoot, "Duration"), "value"));
    meta.setCreationDate(attribute(child(kRoot, "CreationDate"), "value"));
    meta.setLastUpdate(attribute(child(kRoot, "LastUpdate"), "value"));
    meta.setTypicalUbit(attribute(child(kRoot, "TypicalUbit"), "value"));
    meta.setLens(attribute(child(kRoot, "Lens"), "modelName"));
    meta.setCreator(attribute(child(kRoot, "Creator"), "name"));
    meta.setDescription(select(child(kRoot, "Description")) > 0 ? m_xml.getElementValue(0) : QString());
    if (const auto list = getBasicChangeTable(); !list.isEmpty())
        meta.setBasicChangeArray(list);
    if (const auto list = getWhenChangeTable(); !list.isEmpty())
        meta.setWhenChangeArray(list);
    if (const auto list = getWhereChangeTable(); !list.isEmpty())
        meta.setWhereChangeArray(list);
    if (const auto list = getWhoChangeTable(); !list.isEmpty())
        meta.setWhoChangeArray(list);
    if (const auto list = getKlvPacket(); !list.isEmpty())
        meta.setKlvPacketArray(list);

    DOTargetMaterial target;
    if (!getTargetMaterial(target))
        return false;
    meta.setTargetMaterial(target);
    DOLtcChangeTable ltc;
    if (!getLtcChangeTable(ltc))
        return false;
    meta.setLtcChangeTable(ltc);
    DOKeyFrame keyFrame;
    if (!getKeyFrame(keyFrame))
        return false;
    meta.setKeyFrame(keyFrame);
    DOVideoFormat video;
    if (!getVideoFormat(video))
        return false;
    meta.setVideoFormat(video);
    DOAudioFormat audio;
    if (!getAudioFormat(audio))
        return false;
    meta.setAudioFormat(audio);
    DOSubStream subStream;
    if (!getSubStream(subStream))
        return false;
    meta.setSubStream(subStream);
    DODevice device;
    if (!getDevice(device))
        return false;
    meta.setDevice(device);
    DOTitle title;
    if (!getTitle(title, lang))
        return false;
    meta.setTitle(title);
    DORecordingMode mode;
    if (!getRecordingMode(mode))
        return false;
    meta.setRecordingMode(mode);
    return true;
}

bool BLNonMetaAcss::getNonMetaHeader(DONonMetaHeader& header)
{
    if (!m_bLoaded || select(kRoot) != 1)
        return false;
    header.setXmlns(m_xml.getNameSpaceValue(""));
    header.setXmlns_lib(m_xml.getNameSpaceValue("lib"));
    header.setXmlns_xsi(m_xml.getNameSpaceValue("xsi"));
    header.setXsi_schema(m_xml.getAttributeValue("xsi:schemaLocation"));
    header.setLastUpdate(m_xml.getAttributeValue("lastUpdate"));
    return true;
}

bool BLNonMetaAcss::getTargetMaterial(DOTargetMaterial& target)
{
    if (!m_bLoaded)
        return false;
    if (select(child(kRoot, "TargetMaterial")) > 0) {
        target.setUmidRef(m_xml.getAttributeValue("umidRef"));
        target.setStatus(m_xml.getAttributeValue("status"));
    }
    return true;
}

template <class T> QList<T> BLNonMetaAcss::getChangeEntries(const QString& path)
{
    QList<T> entries;
    if (!m_bLoaded)
        return entries;
    const int count = select(path);
    for (int i = 0; i < count; ++i) {
        m_xml.selectNode(i);
        T entry;
        entry.setFrameCount(m_xml.getAttributeValue("frameCount"));
        entry.setValue(m_xml.getAttributeValue("value"));
        entry.setStatus(m_xml.getAttributeValue("status"));
        entries.append(entry);
    }
    return entries;
}

bool BLNonMetaAcss::getLtcChangeTable(DOLtcChangeTable& table)
{
    if (!m_bLoaded)
        return false;
    const QString path = child(kRoot, "LtcChangeTable");
    if (select(path) > 0) {
        table.setTcFps(m_xml.getAttributeValue("tcFps"));
        table.setHalfStep(m_xml.getAttributeValue("halfStep"));
        table.setLtcChangeArray(getChangeEntries<DOLtcChange>(child(path, "LtcChange")));
    }
    return true;
}

QList<DOBodyUmidBasicChange> BLNonMetaAcss::getBasicChangeTable()
{
    return getChangeEntries<DOBodyUmidBasicChange>(
        QStringLiteral("/NonRealTimeMeta/BodyUmidBasicChangeTable/BodyUmidBasicChange"));
}

QList<DOBodyUmidWhenChange> BLNonMetaAcss::getWhenChangeTable()
{
    return getChangeEntries<DOBodyUmidWhenChange>(
        QStringLiteral("/NonRealTimeMeta/BodyUmidWhenChangeTable/BodyUmidWhenChange"));
}

QList<DOBodyUmidWhereChange> BLNonMetaAcss::getWhereChangeTable()
{
    return getChangeEntries<DOBodyUmidWhereChange>(
        QStringLiteral("/NonRealTimeMeta/BodyUmidWhereChangeTable/BodyUmidWhereChange"));
}

QList<DOBodyUmidWhoChange> BLNonMetaAcss::getWhoChangeTable()
{
    return getChangeEntries<DOBodyUmidWhoChange>(
        QStringLiteral("/NonRealTimeMeta/BodyUmidWhoChangeTable/BodyUmidWhoChange"));
}

QList<DOKlvPacket> BLNonMetaAcss::getKlvPacket()
{
    QList<DOKlvPacket> packets;
    if (!m_bLoaded)
        return packets;
    const int count = select(QStringLiteral("/NonRealTimeMeta/KlvPacketTable/KlvPacket"));
    for (int i = 0; i < count; ++i) {
        m_xml.selectNode(i);
        DOKlvPacket packet;
        packet.setFrameCount(m_xml.getAttributeValue("frameCount"));
        packet.setKey(m_xml.getAttributeValue("key"));
        packet.setLengthValue(m_xml.getAttributeValue("lengthValue"));
        packet.setStatus(m_xml.getAttributeValue("status"));
        packets.append(packet);
    }
    return packets;
}

bool BLNonMetaAcss::getKeyFrame(DOKeyFrame& keyFrame)
{
    if (!m_bLoaded)
        return false;
    if (select(child(kRoot, "KeyFrame")) > 0)
        keyFrame.setFrameCount(m_xml.getAttributeValue("frameCount"));
    return true;
}

bool BLNonMetaAcss::getVideoFormat(DOVideoFormat& format)
{
    if (!m_bLoaded)
        return false;
    if (select(child(kVideoFormat, "VideoRecPort")) > 0)
        format.setVideoRecPort(m_xml.getAttributeValue("port"));
    if (select(child(kVideoFormat, "VideoFrame")) > 0) {
        DOVideoFrame frame;
        frame.setVideoCodec(m_xml.getAttributeValue("videoCodec"));
        frame.setCaptureFps(m_xml.getAttributeValue("captureFps"));
        frame.setRecFps(m_xml.getAttributeValue("recFps"));
        frame.setFormatFps(m_xml.getAttributeValue("formatFps"));
        frame.setClipBegin(m_xml.getAttributeValue("clipBegin"));
        format.setVideoFrame(frame);
    }
    if (select(kVideoLayout) > 0) {
        DOVideoLayout layout;
        layout.setPixel(m_xml.getAttributeValue("pixel"));
        layout.setNumOfVerticalLine(m_xml.getAttributeValue("numOfVerticalLine"));
        layout.setAspectRatio(m_xml.getAttributeValue("aspectRatio"));
        if (select(child(kVideoLayout, "PullDownSetting")) > 0) {
            DOPullDownSetting setting;
            setting.setPullDownKind(m_xml.getAttributeValue("pullDownKind"));
            setting.setFramePhase(m_xml.getAttributeValue("aFramePhase"));
            layout.setPullDownSetting(setting);
        }
        format.setVideoLayout(layout);
    }
    return true;
}

bool BLNonMetaAcss::getAudioFormat(DOAudioFormat& format)
{
    if (!m_bLoaded)
        return false;
    if (select(kAudioFormat) > 0)
        format.setNumOfChannel(m_xml.getAttributeValue("numOfChannel"));
    format.setRecPortArray(getRecPortArray());
    return true;
}

QList<DOAudioRecPort> BLNonMetaAcss::getRecPortArray()
{
    QList<DOAudioRecPort> ports;
    if (!m_bLoaded)
        return ports;
    const int count = select(child(kAudioFormat, "AudioRecPort"));
    for (int i = 0; i < count; ++i) {
        m_xml.selectNode(i);
        DOAudioRecPort port;
        port.setAudioCodec(m_xml.getAttributeValue("audioCodec"));
        port.setPort(m_xml.getAttributeValue("port"));
        port.setTrackDst(m_xml.getAttributeValue("trackDst"));
        ports.append(port);
    }
    return ports;
}

bool BLNonMetaAcss::getSubStream(DOSubStream& subStream)
{
    if (!m_bLoaded)
        return false;
    if (select(child(kRoot, "SubStream")) > 0) {
        subStream.setCodec(m_xml.getAttributeValue("codec"));
        subStream.setClipBegin(m_xml.getAttributeValue("clipBegin"));
    }
    return true;
}

bool BLNonMetaAcss::getDevice(DODevice& device)
{
    if (!m_bLoaded)
        return false;
    if (select(kDevice) > 0) {
        device.setManufacturer(m_xml.getAttributeValue("manufacturer"));
        device.setModelName(m_xml.getAttributeValue("modelName"));
        device.setSerialNo(m_xml.getAttributeValue("serialNo"));
    }
    device.setElementArray(getElementArray());
    return true;
}

QList<DOElement> BLNonMetaAcss::getElementArray()
{
    QList<DOElement> elements;
    if (!m_bLoaded)
        return elements;
    const int count = select(child(kDevice, "Element"));
    for (int i = 0; i < count; ++i) {
        m_xml.selectNode(i);
        DOElement element;
        element.setHardware(m_xml.getAttributeValue("hardware"));
        element.setSoftware(m_xml.getAttributeValue("software"));
        elements.append(element);
    }
    return elements;
}

bool BLNonMetaAcss::getTitle(DOTitle& title, const QString& lang)
{
    if (!m_bLoaded)
        return false;
    if (select(kTitle) > 0)
        title.setUsAscii(m_xml.getAttributeValue("usAscii"));
    DOAlias alias;
    if (!getAlias(alias, lang))
        return false;
    title.setAlias(alias);
    return true;
}

bool BLNonMetaAcss::getAlias(DOAlias& alias, const QString& lang)
{
    if (!m_bLoaded)
        return false;
    const int count = select(aliasPath(lang));
    if (count < 0)
        return false;
    if (count > 0) {
        alias.setLang(m_xml.getAttributeValue("xml:lang"));
        alias.setValue(m_xml.getElementValue(0));
    }
    return true;
}

bool BLNonMetaAcss::getRecordingMode(DORecordingMode& mode)
{
    if (!m_bLoaded)
        return false;
    if (select(child(kRoot, "RecordingMode")) > 0) {
        mode.setType(m_xml.getAttributeValue("type"));
        mode.setCacheRec(m_xml.getAttributeValue("cacheRec"));
    }
    return true;
}

// ---- writing: header ----

bool BLNonMetaAcss::setNonMetaHeader()
{
    return m_xml.setNonRealTimeMetaHeader() == 1;
}

bool BLNonMetaAcss::setNonMetaHeader(const DONonMetaHeader& header)
{
    if (!setNonMetaHeader() || select(kRoot) != 1)
        return false;
    m_xml.setNameSpaceWithName("", header.getXmlns());
    m_xml.setNameSpaceWithName("lib", header.getXmlns_lib());
    m_xml.setNameSpaceWithName("xsi", header.getXmlns_xsi());
    // Refused by the XML layer (and left out) while "xsi" is not declared.
    m_xml.setAttribute("xsi:schemaLocation", header.getXsi_schema());
    m_xml.setAttribute("lastUpdate", header.getLastUpdate());
    return true;
}

bool BLNonMetaAcss::updateVersion()
{
    return setNonMetaHeader() && select(kRoot) == 1 && m_xml.setNameSpaceWithName("", kNameSpace) == 1 &&
           m_xml.setNameSpaceWithName("lib", kLibNameSpace) == 1;
}

// ---- writing: single elements ----

bool BLNonMetaAcss::setTargetMaterial(const DOTargetMaterial& target)
{
    if (!setNonMetaHeader() || !ensureElement(kRoot, kRootOrder, "TargetMaterial"))
        return false;
    m_xml.setAttribute("umidRef", target.getUmidRef());
    m_xml.setAttribute("status", target.getStatus());
    return true;
}

bool BLNonMetaAcss::setDuration(const QString& frames)
{
    if (!setNonMetaHeader() || !ensureElement(kRoot, kRootOrder, "Duration"))
        return false;
    m_xml.setAttribute("value", frames);
    return true;
}

bool BLNonMetaAcss::setCreationDate(const QString& date)
{
    if (!setNonMetaHeader() || !ensureElement(kRoot, kRootOrder, "CreationDate"))
        return false;
    m_xml.setAttribute("value", date.isEmpty() ? BLCommon::getGmtTm() : date);
    return true;
}

bool BLNonMetaAcss::setLastUpdate()
{
    if (!setNonMetaHeader() || !ensureElement(kRoot, kRootOrder, "LastUpdate"))
        return false;
    m_xml.setAttribute("value", BLCommon::getGmtTm());
    return true;
}

bool BLNonMetaAcss::setTypicalUbit(const QString& value)
{
    if (!setNonMetaHeader() || !ensureElement(kRoot, kRootOrder, "TypicalUbit"))
        return false;
    m_xml.setAttribute("value", value);
    return true;
}

bool BLNonMetaAcss::setKeyFrame(const QString& frameCount)
{
    if (!setNonMetaHeader() || !ensureElement(kRoot, kRootOrder, "KeyFrame"))
        return false;
    m_xml.setAttribute("frameCount", frameCount);
    return true;
}

bool BLNonMetaAcss::setLens(const QString& modelName)
{
    if (!setNonMetaHeader())
        return false;
    if (modelName.isEmpty())
        return true;
    if (!ensureElement(kRoot, kRootOrder, "Lens"))
        return false;
    m_xml.setAttribute("modelName", modelName);
    return true;
}

bool BLNonMetaAcss::setSubStream(const DOSubStream& subStream)
{
    if (!setNonMetaHeader())
        return false;
    if (subStream.getCodec().isEmpty())
        return true;
    if (!ensureElement(kRoot, kRootOrder, "SubStream"))
        return false;
    m_xml.setAttribute("codec", subStream.getCodec());
    m_xml.setAttribute("clipBegin", subStream.getClipBegin());
    return true;
}

bool BLNonMetaAcss::setRecordingMode(const DORecordingMode& mode)
{
    if (!setNonMetaHeader())
        return false;
    if (mode.getCacheRec().isEmpty() || mode.getType().isEmpty())
        return true;
    if (!ensureElement(kRoot, kRootOrder, "RecordingMode"))
        return false;
    m_xml.setAttribute("cacheRec", mode.getCacheRec());
    m_xml.setAttribute("type", mode.getType());
    return true;
}

// ---- writing: tables ----

template <class T>
bool BLNonMetaAcss::setChangeEntries(const QString& tableName, const QString& entryName,
                                     const QList<T>& entries)
{
    const QString table = child(kRoot, tableName);
    for (const T& entry : entries) {
        if (!appendEntry(table, entryName))
            return false;
        m_xml.setAttribute("frameCount", entry.getFrameCount());
        m_xml.setAttribute("value", entry.getValue());
        m_xml.setAttribute("status", entry.getStatus());
    }
    return true;
}

bool BLNonMetaAcss::setLtcChangeTable(const DOLtcChangeTable& table)
{
    if (!setNonMetaHeader() || !ensureElement(kRoot, kRootOrder, "LtcChangeTable"))
        return false;
    m_xml.setAttribute("tcFps", table.getTcFps());
    m_xml.setAttribute("halfStep", table.getHalfStep());
    return setChangeEntries("LtcChangeTable", "LtcChange", table.getLtcChangeArray());
}

bool BLNonMetaAcss::updateLtcChangeTable(const DOLtcChangeTable& table)
{
    return setNonMetaHeader() && replaceTable("LtcChangeTable") && setLtcChangeTable(table);
}

bool BLNonMetaAcss::setBasicChangeTable(const QList<DOBodyUmidBasicChange>& changes)
{
    return setNonMetaHeader() && ensureElement(kRoot, kRootOrder, "BodyUmidBasicChangeTable") &&
           setChangeEntries("BodyUmidBasicChangeTable", "BodyUmidBasicChange", changes);
}

bool BLNonMetaAcss::updateBasicChangeTable(const QList<DOBodyUmidBasicChange>& changes)
{
    return setNonMetaHeader() && replaceTable("BodyUmidBasicChangeTable") && setBasicChangeTable(changes);
}

bool BLNonMetaAcss::setWhenChangeTable(const QList<DOBodyUmidWhenChange>& changes)
{
    return setNonMetaHeader() && ensureElement(kRoot, kRootOrder, "BodyUmidWhenChangeTable") &&
           setChangeEntries("BodyUmidWhenChangeTable", "BodyUmidWhenChange", changes);
}

bool BLNonMetaAcss::setWhereChangeTable(const QList<DOBodyUmidWhereChange>& changes)
{
    return setNonMetaHeader() && ensureElement(kRoot, kRootOrder, "BodyUmidWhereChangeTable") &&
           setChangeEntries("BodyUmidWhereChangeTable", "BodyUmidWhereChange", changes);
}

bool BLNonMetaAcss::setWhoChangeTable(const QList<DOBodyUmidWhoChange>& changes)
{
    return setNonMetaHeader() && ensureElement(kRoot, kRootOrder, "BodyUmidWhoChangeTable") &&
           setChangeEntries("BodyUmidWhoChangeTable", "BodyUmidWhoChange", changes);
}

bool BLNonMetaAcss::setKlvPacket(const QList<DOKlvPacket>& packets)
{
    if (!setNonMetaHeader() || !ensureElement(kRoot, kRootOrder, "KlvPacketTable"))
        return false;
    const QString table = child(kRoot, "KlvPacketTable");
    for (const DOKlvPacket& packet : packets) {
        if (!appendEntry(table, "KlvPacket"))
            return false;
        m_xml.setAttribute("frameCount", packet.getFrameCount());
        m_xml.setAttribute("key", packet.getKey());
        m_xml.setAttribute("lengthValue", packet.getLengthValue());
        m_xml.setAttribute("status", packet.getStatus());
    }
    return true;
}

// ---- writing: formats and device ----

bool BLNonMetaAcss::setVideoFormat(const DOVideoFormat& format)
{
    return setNonMetaHeader() && ensureElement(kRoot, kRootOrder, "VideoFormat") &&
           setVideoRecPort(format.getVideoRecPort()) && setVideoFrame(format.getVideoFrame()) &&
           setVideoLayout(format.getVideoLayout());
}

bool BLNonMetaAcss::setVideoRecPort(const QString& port)
{
    if (!setNonMetaHeader())
        return false;
    if (port.isEmpty())
        return true;
    if (!ensureElement(kRoot, kRootOrder, "VideoFormat") ||
        !ensureElement(kVideoFormat, kVideoOrder, "VideoRecPort"))
        return false;
    m_xml.setAttribute("port", port);
    return true;
}

bool BLNonMetaAcss::setVideoFrame(const DOVideoFrame& frame)
{
    if (!setNonMetaHeader())
        return false;
    if (frame.getVideoCodec().isEmpty() || frame.getFormatFps().isEmpty())
        return true;
    if (!ensureElement(kRoot, kRootOrder, "VideoFormat") ||
        !ensureElement(kVideoFormat, kVideoOrder, "VideoFrame"))
        return false;
    m_xml.setAttribute("videoCodec", frame.getVideoCodec());
    m_xml.setAttribute("captureFps", frame.getCaptureFps());
    m_xml.setAttribute("recFps", frame.getRecFps());
    m_xml.setAttribute("formatFps", frame.getFormatFps());
    m_xml.setAttribute("clipBegin", frame.getClipBegin());
    return true;
}

bool BLNonMetaAcss::setVideoLayout(const DOVideoLayout& layout)
{
    if (!setNonMetaHeader())
        return false;
    if (layout.getPixel().isEmpty() || layout.getNumOfVerticalLine().isEmpty())
        return true;
    if (!ensureElement(kRoot, kRootOrder, "VideoFormat") ||
        !ensureElement(kVideoFormat, kVideoOrder, "VideoLayout"))
        return false;
    m_xml.setAttribute("pixel", layout.getPixel());
    m_xml.setAttribute("numOfVerticalLine", layout.getNumOfVerticalLine());
    m_xml.setAttribute("aspectRatio", layout.getAspectRatio());
    return setPullDownSetting(layout.getPullDownSetting());
}

bool BLNonMetaAcss::setPullDownSetting(const DOPullDownSetting& setting)
{
    if (!setNonMetaHeader())
        return false;
    if (setting.getPullDownKind().isEmpty() || setting.getFramePhase().isEmpty())
        return true;
    if (!ensureElement(kVideoLayout, kLayoutOrder, "PullDownSetting"))
        return false;
    m_xml.setAttribute("pullDownKind", setting.getPullDownKind());
    m_xml.setAttribute("aFramePhase", setting.getFramePhase());
    return true;
}

bool BLNonMetaAcss::setAudioFormat(const DOAudioFormat& format)
{
    if (!setNonMetaHeader() || !ensureElement(kRoot, kRootOrder, "AudioFormat"))
        return false;
    m_xml.setAttribute("numOfChannel", format.getNumOfChannel());
    for (const DOAudioRecPort& port : format.getRecPortArray()) {
        if (!appendEntry(kAudioFormat, "AudioRecPort"))
            return false;
        m_xml.setAttribute("audioCodec", port.getAudioCodec());
        m_xml.setAttribute("port", port.getPort());
        m_xml.setAttribute("trackDst", port.getTrackDst());
    }
    return true;
}

bool BLNonMetaAcss::setDevice(const DODevice& device)
{
    if (!setNonMetaHeader())
        return false;
    if (device.getManufacturer().isEmpty() || device.getModelName().isEmpty())
        return true;
    if (!ensureElement(kRoot, kRootOrder, "Device"))
        return false;
    m_xml.setAttribute("manufacturer", device.getManufacturer());
    m_xml.setAttribute("modelName", device.getModelName());
    m_xml.setAttribute("serialNo", device.getSerialNo());
    for (const DOElement& element : device.getElementArray()) {
        if (!appendEntry(kDevice, "Element"))
            return false;
        m_xml.setAttribute("hardware", element.getHardware());
        m_xml.setAttribute("software", element.getSoftware());
    }
    return true;
}

// ---- writing: creator, title, description ----

bool BLNonMetaAcss::setCreator(const QString& name)
{
    if (!setNonMetaHeader())
        return false;
    if (name.isEmpty())
        return delCreatorData();
    const QString creator = child(kRoot, "Creator");
    if (select(creator) == 0) {
        if (select(kTitle) == 0 && !setTitleData(DOTitle()))
            return false;
        if (select(kTitle) < 1)
            return false;
        const int index = m_xml.getIndexByParent();
        if (select(kRoot) < 1 || m_xml.insertElement("Creator", "", index) != 1)
            return false;
    }
    if (select(creator) < 1)
        return false;
    m_xml.setAttribute("name", name);
    return true;
}

bool BLNonMetaAcss::setTitleData(const DOTitle& title)
{
    if (!setNonMetaHeader() || !ensureElement(kRoot, kRootOrder, "Title"))
        return false;
    return m_xml.setAttribute("usAscii", title.getUsAscii()) == 1;
}

bool BLNonMetaAcss::setAlias(const DOAlias& alias)
{
    if (!setNonMetaHeader())
        return false;
    const QString lang = alias.getLang();
    if (alias.getValue().isEmpty())
        return isDeletableTitle(alias) ? delTitleData() : delAliasData(lang);
    // The language is matched inside a single-quoted query literal.
    if (lang.isEmpty() || lang.contains(QLatin1Char('\'')))
        return false;
    const int count = select(aliasPath(lang));
    if (count < 0)
        return false;
    for (int i = 0; i < count; ++i) {
        m_xml.selectNode(i);
        m_xml.setElement(alias.getValue());
    }
    if (count > 0)
        return true;
    if (select(kTitle) < 1)
        return false;
    // A file without the "lib" namespace gets it declared on the root first.
    if (m_xml.getNameSpaceValue("lib").isEmpty()) {
        if (select(kRoot) != 1 || m_xml.setNameSpaceWithName("lib", kLibNameSpace) != 1 || select(kTitle) < 1)
            return false;
    }
    if (m_xml.addElement("lib:Alias", alias.getValue()) != 1)
        return false;
    const int aliases = select(QStringLiteral("/NonRealTimeMeta/Title[1]/lib:Alias"));
    return aliases > 0 && m_xml.selectNode(aliases - 1) == 1 && m_xml.setAttribute("xml:lang", lang) == 1;
}

bool BLNonMetaAcss::setTitle(const DOTitle& title)
{
    if (!setNonMetaHeader())
        return false;
    const DOAlias& alias = title.getAlias();
    const bool noText = alias.getValue().isEmpty();
    const int titles = select(kTitle);
    if (titles < 0)
        return false;
    if (titles == 0) {
        if (noText)
            return title.getUsAscii().isEmpty() || setTitleData(title);
        return setTitleData(title) && setAlias(alias);
    }
    if (titles == 1) {
        if (!noText)
            return setAlias(alias) && setTitleData(title);
        if (isDeletableTitle(alias)) {
            if (!delAliasData(alias.getLang()))
                return false;
            return title.getUsAscii().isEmpty() ? delTitleData() : setTitleData(title);
        }
        // Other languages stay; a cleared alias of this language goes.
        delAliasData(alias.getLang());
        return setTitleData(title);
    }
    return noText ? delAliasData(alias.getLang()) : setAlias(alias);
}

bool BLNonMetaAcss::setDescription(const QString& text)
{
    if (!setNonMetaHeader())
        return false;
    if (text.isEmpty())
        return delDescriptionData();
    if (select(child(kRoot, "Description")) > 0)
        return m_xml.setElement(text) == 1;
    return createElement(kRoot, kRootOrder, "Description", text);
}

bool BLNonMetaAcss::isDeletableTitle(const DOAlias& alias)
{
    return select(kAlias) == 1 && m_xml.getAttributeValue("xml:lang") == alias.getLang();
}

bool BLNonMetaAcss::delCreatorData()
{
    return setNonMetaHeader() && removeSingle(child(kRoot, "Creator"));
}

bool BLNonMetaAcss::delTitleData()
{
    return setNonMetaHeader() && removeSingle(kTitle);
}

bool BLNonMetaAcss::delDescriptionData()
{
    return setNonMetaHeader() && removeSingle(child(kRoot, "Description"));
}

bool BLNonMetaAcss::delAliasData(const QString& lang)
{
    return setNonMetaHeader() && removeSingle(aliasPath(lang));
}
