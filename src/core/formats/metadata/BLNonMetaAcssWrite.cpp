// BLNonMetaAcss's writing half: the header, single elements, change tables,
// formats and device, creator, title and description.
#include "core/formats/metadata/BLNonMetaAcss.h"

#include "core/services/BLCommon.h"

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
