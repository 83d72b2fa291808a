#include "core/formats/metadata/BLCueupInfoAcss.h"

#include "core/services/BLCommon.h"

namespace {
const QString kRootPath = QStringLiteral("/cueupinfo");
const QString kHistoryPath = QStringLiteral("/cueupinfo/history");
const QString kClipPath = QStringLiteral("/cueupinfo/history/clip");

QString clipPath(const QString& uri)
{
    return QStringLiteral("%1[@uri=%2]").arg(kClipPath, BLDomXmlParse::quoteLiteral(uri));
}
} // namespace

bool BLCueupInfoAcss::loadForFolderPath(const QString& folderPath)
{
    m_sFilePath = BLCommon::standardizePath(folderPath + QLatin1Char('/') + kFileName);
    m_bLoaded = m_xml.loadXml(m_sFilePath);
    return m_bLoaded;
}

bool BLCueupInfoAcss::createForFolderPath(const QString& folderPath)
{
    m_bLoaded = false;
    m_sFilePath = BLCommon::standardizePath(folderPath + QLatin1Char('/') + kFileName);
    return m_xml.createDocument(QStringLiteral("cueupinfo")) && m_xml.selectNodeArray(kRootPath) == 1 &&
           m_xml.setNameSpaceWithName(QString(), kNameSpace) == 1 &&
           m_xml.setNameSpaceWithName(QStringLiteral("xsi"),
                                      QStringLiteral("http://www.w3.org/2001/XMLSchema-instance")) == 1 &&
           m_xml.setAttribute(QStringLiteral("xsi:schemaLocation"),
                              kNameSpace + QLatin1String(" cueupinfo.xsd")) == 1 &&
           m_xml.addElement(QStringLiteral("history"), QString()) == 1;
}

bool BLCueupInfoAcss::save()
{
    return m_xml.saveXml(m_sFilePath);
}

bool BLCueupInfoAcss::getClipData(DOClip& clip)
{
    if (!m_bLoaded)
        return false;
    const int count = m_xml.selectNodeArray(clip.getUri().isEmpty() ? kClipPath : clipPath(clip.getUri()));
    if (count > 0) {
        clip.setUri(m_xml.getAttributeValue(QStringLiteral("uri")));
        clip.setUmid(m_xml.getAttributeValue(QStringLiteral("umid")));
        clip.setFtc(m_xml.getAttributeValue(QStringLiteral("ftc")));
    }
    return count >= 0;
}

bool BLCueupInfoAcss::setClipData(const DOClip& clip)
{
    if (clip.getUri().isEmpty())
        return false;
    const int history = m_xml.selectNodeArray(kHistoryPath);
    if (history < 0 || (history == 0 && (m_xml.selectNodeArray(kRootPath) <= 0 ||
                                         !m_xml.addElement(QStringLiteral("history"), QString()))))
        return false;
    const int found = m_xml.selectNodeArray(clipPath(clip.getUri()));
    if (found < 0)
        return false;
    if (found == 0) {
        if (m_xml.selectNodeArray(kHistoryPath) <= 0 || !m_xml.addElement(QStringLiteral("clip"), QString()))
            return false;
        const int count = m_xml.selectNodeArray(kClipPath);
        if (count <= 0 || m_xml.selectNodeArray(QStringLiteral("%1[%2]").arg(kClipPath).arg(count)) != 1)
            return false;
        m_xml.setAttribute(QStringLiteral("uri"), clip.getUri());
    }
    m_xml.setAttribute(QStringLiteral("umid"), clip.getUmid());
    m_xml.setAttribute(QStringLiteral("ftc"), clip.getFtc());
    return true;
}

bool BLCueupInfoAcss::delClipData(const QString& uri)
{
    if (uri.isEmpty() || m_xml.selectNodeArray(clipPath(uri)) <= 0)
        return false;
    return m_xml.removeElement() == 1;
}
