#include "core/formats/metadata/BLNonMetaAcss.h"

#include "core/services/BLCommon.h"

const QString BLNonMetaAcss::kNameSpace =
    QStringLiteral("urn:schemas-professionalDisc:nonRealTimeMeta:ver.1.30");
const QString BLNonMetaAcss::kLibNameSpace = QStringLiteral("urn:schemas-professionalDisc:lib:ver.1.30");

QString BLNonMetaAcss::child(const QString& parentPath, const QString& name)
{
    return parentPath + QLatin1Char('/') + name;
}

QString BLNonMetaAcss::aliasPath(const QString& lang)
{
    return QStringLiteral("%1[@xml:lang='%2']").arg(kAlias, lang);
}

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
