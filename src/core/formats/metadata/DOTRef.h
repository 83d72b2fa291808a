#pragma once

#include <QString>

// One clip element of a take-info group: a "ref" names a clip by its UMID
// ("src" is "urn:smpte:umid:" + UMID), the range used within the clip and its
// place on the take's timeline. Also the base of the video, audio and
// metastream elements, which carry the same attributes.
class DOTRef
{
public:
    const QString& getSrc() const { return m_sSrc; }
    void setSrc(const QString& value) { m_sSrc = value; }
    const QString& getSystemComponent() const { return m_sSystemComponent; }
    void setSystemComponent(const QString& value) { m_sSystemComponent = value; }
    const QString& getClipBegin() const { return m_sClipBegin; }
    void setClipBegin(const QString& value) { m_sClipBegin = value; }
    const QString& getClipEnd() const { return m_sClipEnd; }
    void setClipEnd(const QString& value) { m_sClipEnd = value; }
    const QString& getBegin() const { return m_sBegin; }
    void setBegin(const QString& value) { m_sBegin = value; }
    const QString& getEnd() const { return m_sEnd; }
    void setEnd(const QString& value) { m_sEnd = value; }
    const QString& getHeader() const { return m_sHeader; }
    void setHeader(const QString& value) { m_sHeader = value; }
    const QString& getType() const { return m_sType; }
    void setType(const QString& value) { m_sType = value; }

private:
    QString m_sSrc;
    QString m_sSystemComponent;
    QString m_sClipBegin;
    QString m_sClipEnd;
    QString m_sBegin;
    QString m_sEnd;
    QString m_sHeader;
    QString m_sType;
};
