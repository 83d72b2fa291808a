#include "core/formats/metadata/BLMediaProfileAcss.h"

#include "core/services/BLCommon.h"
#include "core/services/BLPlistCtrl.h"

#include <algorithm>

namespace {
const QString kRootPath = QStringLiteral("/MediaProfile");
const QString kPropertiesPath = QStringLiteral("/MediaProfile/Properties");
const QString kContentsPath = QStringLiteral("/MediaProfile/Contents");
const QString kMaterialPath = QStringLiteral("/MediaProfile/Contents/Material");

// The known children of an element, in the order the card format wants them.
const QStringList kRootKinds = {QStringLiteral("Properties"), QStringLiteral("Contents")};
const QStringList kPropertyKinds = {QStringLiteral("System"), QStringLiteral("Attached"),
                                    QStringLiteral("Metadata")};
const QStringList kContentsKinds = {QStringLiteral("Material")};
const QStringList kMaterialKinds = {QStringLiteral("Component"), QStringLiteral("Proxy"),
                                    QStringLiteral("RelevantInfo")};

QString uriPredicate(const QString& uri)
{
    return QStringLiteral("[@uri=%1]").arg(BLDomXmlParse::quoteLiteral(uri));
}

QString materialPath(const QString& uri)
{
    return kMaterialPath + uriPredicate(uri);
}

QString positionPredicate(int position)
{
    return QStringLiteral("[%1]").arg(position);
}

// The attributes every child kind and the material share, in file order
// after "uri" (the material puts "title" before them and "status" after).
void readCommonAttributes(const BLDomXmlParse& xml, DOMediaAttributes& record)
{
    record.setUri(xml.getAttributeValue(QStringLiteral("uri")));
    record.setType(xml.getAttributeValue(QStringLiteral("type")));
    record.setVideoType(xml.getAttributeValue(QStringLiteral("videoType")));
    record.setAudioType(xml.getAttributeValue(QStringLiteral("audioType")));
    record.setFps(xml.getAttributeValue(QStringLiteral("fps")));
    record.setDur(xml.getAttributeValue(QStringLiteral("dur")));
    record.setCh(xml.getAttributeValue(QStringLiteral("ch")));
    record.setAspectRatio(xml.getAttributeValue(QStringLiteral("aspectRatio")));
    record.setOffset(xml.getAttributeValue(QStringLiteral("offset")));
    record.setUmid(xml.getAttributeValue(QStringLiteral("umid")));
}

// An attribute of the record; an empty value leaves a stored one, unless
// replacing, which removes it.
void writeAttribute(BLDomXmlParse& xml, const QString& name, const QString& value, bool replace)
{
    if (replace && value.isEmpty())
        xml.removeAttribute(name);
    else
        xml.setAttribute(name, value);
}

void writeCommonAttributes(BLDomXmlParse& xml, const DOMediaAttributes& record, bool replace = false)
{
    writeAttribute(xml, QStringLiteral("type"), record.getType(), replace);
    writeAttribute(xml, QStringLiteral("videoType"), record.getVideoType(), replace);
    writeAttribute(xml, QStringLiteral("audioType"), record.getAudioType(), replace);
    writeAttribute(xml, QStringLiteral("fps"), record.getFps(), replace);
    writeAttribute(xml, QStringLiteral("dur"), record.getDur(), replace);
    writeAttribute(xml, QStringLiteral("ch"), record.getCh(), replace);
    writeAttribute(xml, QStringLiteral("aspectRatio"), record.getAspectRatio(), replace);
    writeAttribute(xml, QStringLiteral("offset"), record.getOffset(), replace);
    writeAttribute(xml, QStringLiteral("umid"), record.getUmid(), replace);
}

// What identifies a material across a rewrite: its uri and its UMID.
QString materialKey(const QString& uri, const QString& umid)
{
    return uri + QLatin1Char('\n') + umid.right(64).toLower();
}

template <class Record> bool anyWithoutUri(const QList<Record>& records)
{
    return std::any_of(records.begin(), records.end(), [](const Record& r) { return r.getUri().isEmpty(); });
}
} // namespace

// ---- file ----

bool BLMediaProfileAcss::loadForFolderPath(const QString& folderPath)
{
    m_sFilePath = BLCommon::standardizePath(folderPath + QLatin1Char('/') + kFileName);
    // A well-formed file of another kind is no media profile either.
    m_bLoaded = m_xml.loadXml(m_sFilePath) && m_xml.selectNodeArray(kRootPath) == 1;
    return m_bLoaded;
}

bool BLMediaProfileAcss::createForFolderPath(const QString& folderPath)
{
    m_bLoaded = false;
    m_sFilePath = BLCommon::standardizePath(folderPath + QLatin1Char('/') + kFileName);
    return m_xml.createDocument(QStringLiteral("MediaProfile")) && m_xml.selectNodeArray(kRootPath) == 1 &&
           m_xml.setNameSpaceWithName(QString(), kNameSpace) == 1 && m_xml.setMediaProfileHeader() == 1 &&
           m_xml.setAttribute(QStringLiteral("version"), QStringLiteral("1.10")) == 1 && initMediaPro();
}

bool BLMediaProfileAcss::save(const QString& mediaId)
{
    m_xml.setMediaProfileHeader();
    if (m_bLoaded && mediaId.isEmpty() && !updateAttachedData())
        return false;
    return m_xml.saveXml(m_sFilePath);
}

bool BLMediaProfileAcss::updateAttachedData()
{
    DOAttached attached;
    if (!getAttachedData(attached))
        return false;
    const int sequentialNo = BLCommon::nextSequentialNo();
    attached.setMediaId(BLCommon::createMediaID(sequentialNo));
    if (setAttachedData(attached) != 0)
        return false;
    BLPlistCtrl::sharedCtrl()->setSequentialNo(sequentialNo);
    return true;
}

// ---- reads ----

int BLMediaProfileAcss::selectForRead(const QString& query)
{
    return m_bLoaded ? m_xml.selectNodeArray(query) : -1;
}

bool BLMediaProfileAcss::getMediaPro(DOMediaProfileData& data, const QString& takeID, int searchMode)
{
    if (!m_bLoaded)
        return false;
    DOSystem system;
    if (getSystemData(system))
        data.setSystem(system);
    DOAttached attached;
    if (getAttachedData(attached))
        data.setAttached(attached);
    DOMetadata metadata;
    if (getMetadataData(metadata))
        data.setMetadata(metadata);
    const QList<DOMaterial> materials = getMaterialData(takeID, searchMode);
    if (!materials.isEmpty())
        data.setMaterial(materials);
    return true;
}

bool BLMediaProfileAcss::getSystemData(DOSystem& system)
{
    const int count = selectForRead(kPropertiesPath + QLatin1String("/System"));
    if (count > 0)
        getSystemTag(system);
    return count >= 0;
}

bool BLMediaProfileAcss::getAttachedData(DOAttached& attached)
{
    const int count = selectForRead(kPropertiesPath + QLatin1String("/Attached"));
    if (count > 0)
        getAtacchedTag(attached);
    return count >= 0;
}

bool BLMediaProfileAcss::getMetadataData(DOMetadata& metadata)
{
    const int count = selectForRead(kPropertiesPath + QLatin1String("/Metadata"));
    if (count > 0)
        getMetadataTag(metadata);
    return count >= 0;
}

QList<DOMaterial> BLMediaProfileAcss::getMaterialData(const QString& takeID, int searchMode)
{
    const int count = selectForRead(kMaterialPath);
    if (count <= 0)
        return {};
    QString search = takeID;
    if (searchMode == 1)
        search = QStringLiteral("/CLPR/") + takeID;
    else if (searchMode == 2)
        search = QStringLiteral("/TAKR/") + takeID;

    // Read every material row first: reading the children moves the selection.
    QList<DOMaterial> materials;
    QList<int> positions;
    for (int i = 0; i < count; ++i) {
        DOMaterial material;
        getMaterialTag(material, i);
        if (search.isEmpty() || material.getUri().contains(search)) {
            materials.append(material);
            positions.append(i + 1);
        }
    }
    for (qsizetype i = 0; i < materials.size(); ++i) {
        const QString path = kMaterialPath + positionPredicate(positions.at(i));
        materials[i].setComponent(getChildData<DOComponent>(path, QStringLiteral("Component"), takeID,
                                                            &BLMediaProfileAcss::getComponentTag));
        materials[i].setProxy(
            getChildData<DOProxy>(path, QStringLiteral("Proxy"), takeID, &BLMediaProfileAcss::getProxyTag));
        materials[i].setRelevantInfo(getChildData<DORelevantInfo>(
            path, QStringLiteral("RelevantInfo"), takeID, &BLMediaProfileAcss::getRelevantInfoTag));
    }
    return materials;
}

QList<DOComponent> BLMediaProfileAcss::getComponentData(const QString& materialUri, const QString& takeID)
{
    return getChildData<DOComponent>(materialUri.isEmpty() ? kMaterialPath : materialPath(materialUri),
                                     QStringLiteral("Component"), takeID,
                                     &BLMediaProfileAcss::getComponentTag);
}

QList<DOProxy> BLMediaProfileAcss::getProxyData(const QString& materialUri, const QString& takeID)
{
    return getChildData<DOProxy>(materialUri.isEmpty() ? kMaterialPath : materialPath(materialUri),
                                 QStringLiteral("Proxy"), takeID, &BLMediaProfileAcss::getProxyTag);
}

QList<DORelevantInfo> BLMediaProfileAcss::getRelevantInfoData(const QString& materialUri,
                                                              const QString& takeID)
{
    return getChildData<DORelevantInfo>(materialUri.isEmpty() ? kMaterialPath : materialPath(materialUri),
                                        QStringLiteral("RelevantInfo"), takeID,
                                        &BLMediaProfileAcss::getRelevantInfoTag);
}

template <class Record>
QList<Record> BLMediaProfileAcss::getChildData(const QString& parentPath, const QString& kind,
                                               const QString& takeID,
                                               void (BLMediaProfileAcss::*readRow)(Record&, int))
{
    QList<Record> records;
    const int count = selectForRead(parentPath + QLatin1Char('/') + kind);
    for (int i = 0; i < count; ++i) {
        Record record;
        (this->*readRow)(record, i);
        if (takeID.isEmpty() || record.getUri().contains(takeID))
            records.append(record);
    }
    return records;
}

void BLMediaProfileAcss::getSystemTag(DOSystem& system) const
{
    system.setSystemId(m_xml.getAttributeValue(QStringLiteral("systemId")));
    system.setSystemKind(m_xml.getAttributeValue(QStringLiteral("systemKind")));
    system.setVersion(m_xml.getAttributeValue(QStringLiteral("version")));
}

void BLMediaProfileAcss::getAtacchedTag(DOAttached& attached) const
{
    attached.setMediaId(m_xml.getAttributeValue(QStringLiteral("mediaId")));
    attached.setMediaKind(m_xml.getAttributeValue(QStringLiteral("mediaKind")));
    attached.setMediaName(m_xml.getAttributeValue(QStringLiteral("mediaName")));
}

void BLMediaProfileAcss::getMetadataTag(DOMetadata& metadata) const
{
    metadata.setType(m_xml.getAttributeValue(QStringLiteral("type")));
    metadata.setCharset(m_xml.getAttributeValue(QStringLiteral("charset")));
}

void BLMediaProfileAcss::getMaterialTag(DOMaterial& material, int index)
{
    m_xml.selectNode(index);
    readCommonAttributes(m_xml, material);
    material.setTitle(m_xml.getAttributeValue(QStringLiteral("title")));
    material.setMPStatus(m_xml.getAttributeValue(QStringLiteral("status")));
}

void BLMediaProfileAcss::getMediaFileTag(DOMediaFile& file, int index)
{
    m_xml.selectNode(index);
    file.setMediaId(m_xml.getAttributeValue(QStringLiteral("mediaId")));
    file.setMediaKind(m_xml.getAttributeValue(QStringLiteral("mediaKind")));
    readCommonAttributes(m_xml, file);
}

void BLMediaProfileAcss::getComponentTag(DOComponent& component, int index)
{
    getMediaFileTag(component, index);
    component.setMediaName(m_xml.getAttributeValue(QStringLiteral("mediaName")));
}

void BLMediaProfileAcss::getProxyTag(DOProxy& proxy, int index)
{
    getMediaFileTag(proxy, index);
}

void BLMediaProfileAcss::getRelevantInfoTag(DORelevantInfo& info, int index)
{
    getMediaFileTag(info, index);
}

// ---- writes ----

bool BLMediaProfileAcss::addOrderedChild(const QString& parentPath, const QStringList& kinds, int kind)
{
    int index = 0;
    for (int k = 0; k <= kind; ++k) {
        const QString path = parentPath + QLatin1Char('/') + kinds.at(k);
        const int count = m_xml.selectNodeArray(path);
        if (count < 0)
            return false;
        if (count > 0 && m_xml.selectNodeArray(path + positionPredicate(count)) == 1)
            index = std::max(index, m_xml.getIndexByParent() + 1);
    }
    const QString path = parentPath + QLatin1Char('/') + kinds.at(kind);
    if (m_xml.selectNodeArray(parentPath) <= 0 || !m_xml.insertElement(kinds.at(kind), QString(), index))
        return false;
    // The new child is the last of its kind.
    const int count = m_xml.selectNodeArray(path);
    return count > 0 && m_xml.selectNodeArray(path + positionPredicate(count)) == 1;
}

int BLMediaProfileAcss::selectProperty(int kind)
{
    const int found = m_xml.selectNodeArray(kPropertiesPath + QLatin1Char('/') + kPropertyKinds.at(kind));
    if (found != 0)
        return found < 0 ? -1 : 0;
    const int properties = m_xml.selectNodeArray(kPropertiesPath);
    if (properties < 0 || (properties == 0 && !addOrderedChild(kRootPath, kRootKinds, 0)))
        return -1;
    return addOrderedChild(kPropertiesPath, kPropertyKinds, kind) ? 1 : -1;
}

int BLMediaProfileAcss::setSystemData(const DOSystem& system)
{
    if (system.getSystemId().isEmpty())
        return -1;
    const int state = selectProperty(0);
    if (state < 0)
        return -1;
    if (state == 1)
        m_xml.setAttribute(QStringLiteral("systemId"), system.getSystemId());
    m_xml.setAttribute(QStringLiteral("systemKind"), system.getSystemKind());
    m_xml.setAttribute(QStringLiteral("version"), system.getVersion());
    return 0;
}

int BLMediaProfileAcss::setAttachedData(const DOAttached& attached)
{
    const int exists = m_xml.selectNodeArray(kPropertiesPath + QLatin1String("/Attached"));
    if (exists < 0 || (exists > 0 && attached.getMediaId().isEmpty()))
        return -1;
    const int state = selectProperty(1);
    if (state < 0)
        return -1;
    if (state == 1) {
        m_xml.setAttribute(QStringLiteral("mediaId"), attached.getMediaId());
        m_xml.setAttribute(QStringLiteral("mediaKind"), QStringLiteral("ProfessionalMemoryCard"));
    }
    m_xml.setAttribute(QStringLiteral("mediaId"), attached.getMediaId());
    m_xml.setAttribute(QStringLiteral("mediaKind"), attached.getMediaKind());
    m_xml.setAttribute(QStringLiteral("mediaName"), attached.getMediaName());
    return 0;
}

int BLMediaProfileAcss::setMetadataData(const DOMetadata& metadata)
{
    if (metadata.getCharset().isEmpty() && metadata.getType().isEmpty())
        return -1;
    if (selectProperty(2) < 0)
        return -1;
    m_xml.setAttribute(QStringLiteral("charset"), metadata.getCharset());
    m_xml.setAttribute(QStringLiteral("type"), metadata.getType());
    return 0;
}

int BLMediaProfileAcss::setMaterialData(const QList<DOMaterial>& materials)
{
    if (materials.isEmpty() || anyWithoutUri(materials))
        return -1;
    const int contents = m_xml.selectNodeArray(kContentsPath);
    if (contents < 0 || (contents == 0 && !addOrderedChild(kRootPath, kRootKinds, 1)))
        return -1;
    for (const DOMaterial& material : materials) {
        const int found = m_xml.selectNodeArray(materialPath(material.getUri()));
        if (found < 0)
            return -1;
        if (found == 0) {
            if (m_xml.selectNodeArray(kContentsPath) <= 0 ||
                !m_xml.addElement(QStringLiteral("Material"), QString()))
                return -1;
            const int count = m_xml.selectNodeArray(kMaterialPath);
            if (count <= 0 || m_xml.selectNodeArray(kMaterialPath + positionPredicate(count)) != 1)
                return -1;
            m_xml.setAttribute(QStringLiteral("uri"), material.getUri());
        }
        m_xml.setAttribute(QStringLiteral("title"), material.getTitle());
        writeCommonAttributes(m_xml, material);
        m_xml.setAttribute(QStringLiteral("status"), material.getMPStatus());
    }
    return 0;
}

int BLMediaProfileAcss::setComponentData(const QList<DOComponent>& components, const QString& materialUri)
{
    return setChildData(components, materialUri, 0);
}

int BLMediaProfileAcss::setProxyData(const QList<DOProxy>& proxies, const QString& materialUri)
{
    return setChildData(proxies, materialUri, 1);
}

int BLMediaProfileAcss::setRelevantInfoDaata(const QList<DORelevantInfo>& infos, const QString& materialUri)
{
    return setChildData(infos, materialUri, 2);
}

template <class Record>
int BLMediaProfileAcss::setChildData(const QList<Record>& records, const QString& materialUri, int kind)
{
    if (records.isEmpty() || anyWithoutUri(records))
        return -1;
    // The first material of that uri: positions below count its children only.
    const QString material = materialPath(materialUri) + positionPredicate(1);
    const QString childPath = material + QLatin1Char('/') + kMaterialKinds.at(kind);
    if (m_xml.selectNodeArray(material) <= 0)
        return -1;
    for (const Record& record : records) {
        const int found = m_xml.selectNodeArray(childPath + uriPredicate(record.getUri()));
        if (found < 0)
            return -1;
        if (found == 0) {
            if (!addOrderedChild(material, kMaterialKinds, kind))
                return -1;
            writeLeadingAttributes(record);
        }
        writeCommonAttributes(m_xml, record);
    }
    return 0;
}

void BLMediaProfileAcss::writeLeadingAttributes(const DOComponent& component)
{
    // Only a component on another medium names that medium.
    if (component.getUri().contains(QLatin1String("file://"))) {
        if (!component.getMediaId().isEmpty())
            m_xml.setAttribute(QStringLiteral("mediaId"), component.getMediaId());
        if (!component.getMediaKind().isEmpty())
            m_xml.setAttribute(QStringLiteral("mediaKind"), component.getMediaKind());
        if (!component.getMediaName().isEmpty())
            m_xml.setAttribute(QStringLiteral("mediaName"), component.getMediaName());
    }
    m_xml.setAttribute(QStringLiteral("uri"), component.getUri());
}

void BLMediaProfileAcss::writeLeadingAttributes(const DOProxy& proxy)
{
    m_xml.setAttribute(QStringLiteral("mediaId"), proxy.getMediaId());
    m_xml.setAttribute(QStringLiteral("mediaKind"), proxy.getMediaKind());
    m_xml.setAttribute(QStringLiteral("uri"), proxy.getUri());
}

void BLMediaProfileAcss::writeLeadingAttributes(const DORelevantInfo& info)
{
    m_xml.setAttribute(QStringLiteral("uri"), info.getUri());
}

int BLMediaProfileAcss::removeAll(const QString& query)
{
    const int count = m_xml.selectNodeArray(query);
    // Each removal drops the node from the selection, so the next is first.
    for (int i = 0; i < count; ++i)
        if (m_xml.selectNode(0) != 1 || m_xml.removeElement() != 1)
            return i;
    return count;
}

int BLMediaProfileAcss::replaceMaterialData(const QList<DOMaterial>& materials)
{
    if (anyWithoutUri(materials))
        return -1;
    const int contents = m_xml.selectNodeArray(kContentsPath);
    if (contents < 0 || (contents == 0 && !addOrderedChild(kRootPath, kRootKinds, 1)))
        return -1;
    QStringList current;
    const int count = m_xml.selectNodeArray(kMaterialPath);
    for (int i = 0; i < count; ++i) {
        m_xml.selectNode(i);
        current << materialKey(m_xml.getAttributeValue(QStringLiteral("uri")),
                               m_xml.getAttributeValue(QStringLiteral("umid")));
    }
    for (qsizetype placed = 0; placed < materials.size(); ++placed) {
        const DOMaterial& material = materials.at(placed);
        bool created = false;
        if (!placeElement(kContentsPath, kContentsKinds, 0, current, placed,
                          materialKey(material.getUri(), material.getUmid()), created))
            return -1;
        if (created)
            m_xml.setAttribute(QStringLiteral("uri"), material.getUri());
        m_xml.setAttribute(QStringLiteral("title"), material.getTitle());
        writeCommonAttributes(m_xml, material, true);
        writeAttribute(m_xml, QStringLiteral("status"), material.getMPStatus(), true);
        const QString path = kMaterialPath + positionPredicate(int(placed) + 1);
        if (!replaceChildData(material.getComponent(), path, 0) ||
            !replaceChildData(material.getRelevantInfo(), path, 2))
            return -1;
    }
    return removeFrom(kMaterialPath, int(materials.size())) ? 0 : -1;
}

template <class Record>
bool BLMediaProfileAcss::replaceChildData(const QList<Record>& records, const QString& materialPath, int kind)
{
    const QString path = materialPath + QLatin1Char('/') + kMaterialKinds.at(kind);
    QStringList current;
    const int count = m_xml.selectNodeArray(path);
    for (int i = 0; i < count; ++i) {
        m_xml.selectNode(i);
        current << m_xml.getAttributeValue(QStringLiteral("uri"));
    }
    for (qsizetype placed = 0; placed < records.size(); ++placed) {
        const Record& record = records.at(placed);
        bool created = false;
        if (record.getUri().isEmpty() ||
            !placeElement(materialPath, kMaterialKinds, kind, current, placed, record.getUri(), created))
            return false;
        if (created)
            writeLeadingAttributes(record);
        writeCommonAttributes(m_xml, record, true);
    }
    return removeFrom(path, int(records.size()));
}

bool BLMediaProfileAcss::placeElement(const QString& parentPath, const QStringList& kinds, int kind,
                                      QStringList& current, qsizetype placed, const QString& key,
                                      bool& created)
{
    const QString path = parentPath + QLatin1Char('/') + kinds.at(kind);
    auto select = [&](qsizetype index) {
        return m_xml.selectNodeArray(path + positionPredicate(int(index) + 1)) == 1;
    };
    const qsizetype found = current.indexOf(key, placed);
    created = found < 0;
    if (found == placed)
        return select(placed);
    if (placed == current.size()) {
        // None of this kind left to reuse: a new one after the placed ones.
        current.append(key);
        return addOrderedChild(parentPath, kinds, kind);
    }
    if (!select(placed))
        return false;
    const int index = m_xml.getIndexByParent();
    if (found > placed) {
        if (!select(found) || m_xml.moveElement(index) != 1)
            return false;
        current.move(found, placed);
    } else {
        if (m_xml.selectNodeArray(parentPath) <= 0 || !m_xml.insertElement(kinds.at(kind), QString(), index))
            return false;
        current.insert(placed, key);
    }
    return select(placed);
}

bool BLMediaProfileAcss::removeFrom(const QString& path, int keep)
{
    int count = m_xml.selectNodeArray(path);
    for (; count > keep; --count) {
        if (m_xml.selectNodeArray(path + positionPredicate(count)) != 1 || m_xml.removeElement() != 1)
            return false;
    }
    return count >= 0;
}

bool BLMediaProfileAcss::delContentsData()
{
    return removeAll(kContentsPath) == 1;
}

int BLMediaProfileAcss::delMaterialData(const QString& materialUri)
{
    return removeAll(materialPath(materialUri));
}

int BLMediaProfileAcss::delComponentData(const QString& materialUri)
{
    return removeAll(materialPath(materialUri) + QLatin1String("/Component"));
}

int BLMediaProfileAcss::delProxyData(const QString& materialUri)
{
    return removeAll(materialPath(materialUri) + QLatin1String("/Proxy"));
}

int BLMediaProfileAcss::delRelevantInfoData(const QString& materialUri)
{
    return removeAll(materialPath(materialUri) + QLatin1String("/RelevantInfo"));
}

bool BLMediaProfileAcss::updateVersion(const QString& version)
{
    return m_xml.selectNodeArray(kRootPath) > 0 &&
           m_xml.setAttribute(QStringLiteral("version"), version) == 1;
}
