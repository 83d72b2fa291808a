#include "core/formats/metadata/BLTakeInfoAcss.h"

#include <QHash>

#include <utility>

const QString BLTakeInfoAcss::kNameSpace =
    QStringLiteral("urn:schemas-professionalDisc:edl:ver.1.30:takeInfo");

namespace {
using Attributes = QList<std::pair<QString, QString>>;

const QString kRootPath = QStringLiteral("/smil");
const QString kHeadPath = QStringLiteral("/smil/head");
const QString kBodyPath = QStringLiteral("/smil/body");
const QString kSwitchPath = QStringLiteral("/smil/body/switch");

QString groupPath(int position)
{
    return position == 0 ? QStringLiteral("/smil/body/switch/par") : QStringLiteral("/smil/body/par");
}

// Attributes of a clip element in writing order.
Attributes attributesOf(const DOTRef& e)
{
    return {{"src", e.getSrc()},
            {"systemComponent", e.getSystemComponent()},
            {"clipBegin", e.getClipBegin()},
            {"clipEnd", e.getClipEnd()},
            {"begin", e.getBegin()},
            {"end", e.getEnd()},
            {"header", e.getHeader()},
            {"type", e.getType()}};
}

Attributes attributesOf(const DOTVideo& e)
{
    return attributesOf(static_cast<const DOTRef&>(e)) + Attributes{{"aspectRatio", e.getAspectRatio()},
                                                                    {"decBegin", e.getDecBegin()},
                                                                    {"decEnd", e.getDecEnd()},
                                                                    {"preDecDur", e.getPreDecDur()},
                                                                    {"postDecDur", e.getPostDecDur()}};
}

Attributes attributesOf(const DOTAudio& e)
{
    return attributesOf(static_cast<const DOTRef&>(e)) +
           Attributes{{"trackSrc", e.getTrackSrc()}, {"trackDst", e.getTrackDst()}};
}

void readAttributes(const BLDomXmlParse& xml, DOTRef& e)
{
    e.setSrc(xml.getAttributeValue("src"));
    e.setSystemComponent(xml.getAttributeValue("systemComponent"));
    e.setClipBegin(xml.getAttributeValue("clipBegin"));
    e.setClipEnd(xml.getAttributeValue("clipEnd"));
    e.setBegin(xml.getAttributeValue("begin"));
    e.setEnd(xml.getAttributeValue("end"));
    e.setHeader(xml.getAttributeValue("header"));
    e.setType(xml.getAttributeValue("type"));
}

void readAttributes(const BLDomXmlParse& xml, DOTVideo& e)
{
    readAttributes(xml, static_cast<DOTRef&>(e));
    e.setAspectRatio(xml.getAttributeValue("aspectRatio"));
    e.setDecBegin(xml.getAttributeValue("decBegin"));
    e.setDecEnd(xml.getAttributeValue("decEnd"));
    e.setPreDecDur(xml.getAttributeValue("preDecDur"));
    e.setPostDecDur(xml.getAttributeValue("postDecDur"));
}

void readAttributes(const BLDomXmlParse& xml, DOTAudio& e)
{
    readAttributes(xml, static_cast<DOTRef&>(e));
    e.setTrackSrc(xml.getAttributeValue("trackSrc"));
    e.setTrackDst(xml.getAttributeValue("trackDst"));
}
} // namespace

bool BLTakeInfoAcss::loadForFilePath(const QString& path)
{
    m_sFilePath = path;
    m_bLoaded = m_xml.loadXml(path);
    return m_bLoaded;
}

bool BLTakeInfoAcss::createForFilePath(const QString& path, const QString& umid)
{
    m_sFilePath = path;
    m_bLoaded = false;
    return m_xml.createDocument("smil") && m_xml.selectNodeArray(kRootPath) == 1 &&
           m_xml.setNameSpaceWithName("", kNameSpace) == 1 &&
           (umid.isEmpty() || m_xml.setTakeInfoHeader(umid) == 1);
}

bool BLTakeInfoAcss::save()
{
    return m_xml.saveXml(m_sFilePath);
}

// ---- reading ----

bool BLTakeInfoAcss::getSmilData(DOTSmil& smil, const QString& src)
{
    if (!m_bLoaded || m_xml.selectNodeArray(kRootPath) != 1)
        return false;
    smil.setUmid(m_xml.getAttributeValue("umid"));
    DOTHead head;
    if (!getHeadData(head))
        return false;
    smil.setHead(head);
    DOTBody body;
    if (!getBodyData(body, src))
        return false;
    smil.setBody(body);
    return true;
}

bool BLTakeInfoAcss::getHeadData(DOTHead& head)
{
    if (!m_bLoaded)
        return false;
    if (m_xml.selectNodeArray(kHeadPath) < 1)
        return true;
    if (m_xml.selectNodeArray(kHeadPath + "/trackBuffer") > 0) {
        DOTTrackBuffer buffer;
        buffer.setVideo(m_xml.getAttributeValue("video"));
        buffer.setAudio(m_xml.getAttributeValue("audio"));
        head.setTrackBuffer(buffer);
    }
    if (m_xml.selectNodeArray(kHeadPath + "/initialBuffer") > 0) {
        DOTInitialBuffer buffer;
        buffer.setVideo(m_xml.getAttributeValue("video"));
        buffer.setAudio(m_xml.getAttributeValue("audio"));
        head.setInitialBuffer(buffer);
    }
    if (m_xml.selectNodeArray(kHeadPath + "/meta") > 0) {
        DOTMeta meta;
        meta.setName(m_xml.getAttributeValue("name"));
        meta.setContent(m_xml.getAttributeValue("content"));
        head.setMeta(meta);
    }
    // The record holds the metadata reference as setMetadataData writes it,
    // so a read record written back leaves the head unchanged.
    if (m_xml.selectNodeArray(kHeadPath + "/metadata/ref") > 0) {
        DOTMetadata metadata;
        metadata.setSrc(m_xml.getAttributeValue("src"));
        metadata.setType(m_xml.getAttributeValue("type"));
        head.setMetadata(metadata);
    }
    return true;
}

bool BLTakeInfoAcss::getBodyData(DOTBody& body, const QString& src)
{
    DOTPar swPar;
    DOTPar par;
    if (!getParData(swPar, src, 0) || !getParData(par, src, 1))
        return false;
    body.setSwPar(swPar);
    body.setPar(par);
    return true;
}

bool BLTakeInfoAcss::getParData(DOTPar& par, const QString& src, int position)
{
    if (!m_bLoaded)
        return false;
    if (m_xml.selectNodeArray(groupPath(position)) > 0)
        par.setSystemComponent(m_xml.getAttributeValue("systemComponent"));
    par.setRef(getRefData(src, position));
    par.setVideo(getVideoData(src, position));
    par.setAudio(getAudioData(src, position));
    par.setMetastream(getMetastreamData(src, position));
    return true;
}

template <class T>
QList<T> BLTakeInfoAcss::getClipElements(const QString& kind, const QString& src, int position)
{
    QList<T> result;
    if (!m_bLoaded)
        return result;
    const int count = m_xml.selectNodeArray(groupPath(position) + '/' + kind);
    for (int i = 0; i < count; ++i) {
        m_xml.selectNode(i);
        T element;
        readAttributes(m_xml, element);
        if (src.isEmpty() || element.getSrc().contains(src))
            result.append(element);
    }
    return result;
}

QList<DOTRef> BLTakeInfoAcss::getRefData(const QString& src, int position)
{
    return getClipElements<DOTRef>("ref", src, position);
}

QList<DOTVideo> BLTakeInfoAcss::getVideoData(const QString& src, int position)
{
    return getClipElements<DOTVideo>("video", src, position);
}

QList<DOTAudio> BLTakeInfoAcss::getAudioData(const QString& src, int position)
{
    return getClipElements<DOTAudio>("audio", src, position);
}

QList<DOTMetastream> BLTakeInfoAcss::getMetastreamData(const QString& src, int position)
{
    return getClipElements<DOTMetastream>("metastream", src, position);
}

// ---- writing ----

bool BLTakeInfoAcss::setSmilData(const DOTSmil& smil)
{
    if (m_xml.selectNodeArray(kRootPath) != 1)
        return false;
    if (!smil.getUmid().isEmpty())
        m_xml.setTakeInfoHeader(smil.getUmid());
    return setHeadData(smil.getHead()) && setBodyData(smil.getBody());
}

bool BLTakeInfoAcss::ensureHead()
{
    if (m_xml.selectNodeArray(kHeadPath) > 0)
        return true;
    // The head precedes the body.
    const bool hasBody = m_xml.selectNodeArray(kBodyPath) > 0;
    const int bodyIndex = hasBody ? m_xml.getIndexByParent() : 0;
    if (m_xml.selectNodeArray(kRootPath) < 1)
        return false;
    return (hasBody ? m_xml.insertElement("head", "", bodyIndex) : m_xml.addElement("head", "")) == 1;
}

bool BLTakeInfoAcss::ensureChild(const QString& parentPath, const QString& name)
{
    if (m_xml.selectNodeArray(parentPath + '/' + name) > 0)
        return true;
    return m_xml.selectNodeArray(parentPath) > 0 && m_xml.addElement(name, "") == 1;
}

bool BLTakeInfoAcss::setHeadData(const DOTHead& head)
{
    if (!ensureHead())
        return false;
    if (head.getMetadata().getType().isEmpty())
        return true;
    return setMetadataData(head.getMetadata());
}

bool BLTakeInfoAcss::setMetadataData(const DOTMetadata& metadata)
{
    if (metadata.getType().isEmpty())
        return false;
    if (!ensureHead() || !ensureChild(kHeadPath, "metadata") || !ensureChild(kHeadPath + "/metadata", "ref"))
        return false;
    m_xml.selectNodeArray(kHeadPath + "/metadata/ref");
    m_xml.setAttribute("src", metadata.getSrc());
    m_xml.setAttribute("type", metadata.getType());
    return true;
}

bool BLTakeInfoAcss::setBodyData(const DOTBody& body)
{
    if (m_xml.selectNodeArray(kBodyPath) < 1) {
        if (m_xml.selectNodeArray(kRootPath) < 1 || m_xml.addElement("body", "") != 1)
            return false;
    }
    if (!body.getSwPar().getRef().isEmpty() && !setParData(body.getSwPar(), 0))
        return false;
    if (!body.getPar().getRef().isEmpty() && !setParData(body.getPar(), 1))
        return false;
    return true;
}

bool BLTakeInfoAcss::setParData(const DOTPar& par, int position)
{
    if (!checkParTag(position))
        return false;
    m_xml.selectNodeArray(groupPath(position));
    m_xml.setAttribute("systemComponent", par.getSystemComponent());
    return setRefData(par.getRef(), position) && setVideoData(par.getVideo(), position) &&
           setAudioData(par.getAudio(), position) && setMetastreamData(par.getMetastream(), position);
}

bool BLTakeInfoAcss::checkParTag(int position)
{
    if (m_xml.selectNodeArray(kRootPath) != 1)
        return false;
    if (m_xml.selectNodeArray(kBodyPath) == 0 && m_xml.addElement("body", "") != 1)
        return false;
    if (position == 0) {
        if (m_xml.selectNodeArray(kSwitchPath) == 0) {
            // The switch group comes before the plain group.
            const bool hasPar = m_xml.selectNodeArray(groupPath(1)) > 0;
            const int parIndex = hasPar ? m_xml.getIndexByParent() : 0;
            m_xml.selectNodeArray(kBodyPath);
            if ((hasPar ? m_xml.insertElement("switch", "", parIndex) : m_xml.addElement("switch", "")) != 1)
                return false;
        }
        return ensureChild(kSwitchPath, "par");
    }
    return ensureChild(kBodyPath, "par");
}

template <class T>
bool BLTakeInfoAcss::setClipElements(const QList<T>& elements, const QString& kind, bool clipEndRequired,
                                     int position)
{
    for (const T& e : elements) {
        if (e.getSrc().isEmpty() || e.getClipBegin().isEmpty() || e.getBegin().isEmpty())
            return false;
        if (clipEndRequired && e.getClipEnd().isEmpty())
            return false;
        // The source is looked up inside a single-quoted query literal.
        if (e.getSrc().contains(QLatin1Char('\'')))
            return false;
    }
    if (!checkParTag(position))
        return false;
    const QString par = groupPath(position) + "[1]";
    // The n-th element of the list with a given source updates the n-th
    // element of the group with that source: several audio tracks of one clip
    // share their source and each keeps its own attributes.
    QHash<QString, int> occurrences;
    for (const T& e : elements) {
        const int occurrence = ++occurrences[e.getSrc()];
        const int found = m_xml.selectNodeArray(QStringLiteral("%1/%2[@src='%3'][%4]")
                                                    .arg(groupPath(position), kind, e.getSrc())
                                                    .arg(occurrence));
        if (found < 0)
            return false;
        if (found == 0) {
            if (m_xml.selectNodeArray(par) < 1 || m_xml.addElement(kind, "") != 1)
                return false;
            const int count = m_xml.selectNodeArray(par + '/' + kind);
            if (m_xml.selectNodeArray(QStringLiteral("%1/%2[%3]").arg(par, kind).arg(count)) != 1)
                return false;
        }
        for (const auto& [name, value] : attributesOf(e))
            m_xml.setAttribute(name, value);
    }
    return true;
}

bool BLTakeInfoAcss::setRefData(const QList<DOTRef>& refs, int position)
{
    return setClipElements(refs, "ref", false, position);
}

bool BLTakeInfoAcss::setVideoData(const QList<DOTVideo>& videos, int position)
{
    return setClipElements(videos, "video", true, position);
}

bool BLTakeInfoAcss::setAudioData(const QList<DOTAudio>& audios, int position)
{
    return setClipElements(audios, "audio", true, position);
}

bool BLTakeInfoAcss::setMetastreamData(const QList<DOTMetastream>& metastreams, int position)
{
    return setClipElements(metastreams, "metastream", true, position);
}

// ---- deleting ----

int BLTakeInfoAcss::delClipElements(const QString& kind, const QString& src, int position)
{
    const int count = m_xml.selectNodeArray(groupPath(position) + '/' + kind);
    int removed = 0;
    // Last first: a removed node leaves the selection, the earlier indices stay valid.
    for (int i = count - 1; i >= 0; --i) {
        m_xml.selectNode(i);
        if (src.isEmpty() || m_xml.getAttributeValue("src") == src) {
            m_xml.removeElement();
            ++removed;
        }
    }
    return removed;
}

int BLTakeInfoAcss::delRefData(const QString& src, int position)
{
    return delClipElements("ref", src, position);
}

int BLTakeInfoAcss::delVideoData(const QString& src, int position)
{
    return delClipElements("video", src, position);
}

int BLTakeInfoAcss::delAudioData(const QString& src, int position)
{
    return delClipElements("audio", src, position);
}

int BLTakeInfoAcss::delMetastreamData(const QString& src, int position)
{
    return delClipElements("metastream", src, position);
}

bool BLTakeInfoAcss::isGroupEmpty(int position)
{
    const QString group = groupPath(position);
    for (const char* kind : {"ref", "video", "audio", "metastream"})
        if (m_xml.selectNodeArray(group + '/' + kind) > 0)
            return false;
    return true;
}

int BLTakeInfoAcss::removeFirst(const QString& path)
{
    return m_xml.selectNodeArray(path) > 0 ? m_xml.removeElement() : 0;
}

int BLTakeInfoAcss::delParData(const QString& src, int position)
{
    if (m_xml.selectNodeArray(groupPath(position)) < 1)
        return 0;
    const int removed = delRefData(src, position) + delVideoData(src, position) +
                        delAudioData(src, position) + delMetastreamData(src, position);
    if (removed == 0)
        return 0;
    const bool switchEmpty = isGroupEmpty(0);
    const bool plainEmpty = isGroupEmpty(1);
    if (switchEmpty && plainEmpty)
        removeFirst(kBodyPath);
    else if (switchEmpty)
        removeFirst(kSwitchPath);
    else if (plainEmpty)
        removeFirst(groupPath(1));
    return 1;
}
