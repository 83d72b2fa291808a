#pragma once

#include <QString>

// The media profile's Attached element: the identity and name of the medium.
class DOAttached
{
public:
    const QString& getMediaId() const { return m_sMediaId; }
    void setMediaId(const QString& value) { m_sMediaId = value; }
    const QString& getMediaKind() const { return m_sMediaKind; }
    void setMediaKind(const QString& value) { m_sMediaKind = value; }
    const QString& getMediaName() const { return m_sMediaName; }
    void setMediaName(const QString& value) { m_sMediaName = value; }

private:
    QString m_sMediaId;
    QString m_sMediaKind;
    QString m_sMediaName;
};
