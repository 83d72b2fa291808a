#pragma once

#include <QString>

// One entry of the KLV packet table.
class DOKlvPacket
{
public:
    const QString& getKey() const { return m_sKey; }
    void setKey(const QString& value) { m_sKey = value; }
    const QString& getFrameCount() const { return m_sFrameCount; }
    void setFrameCount(const QString& value) { m_sFrameCount = value; }
    const QString& getLengthValue() const { return m_sLengthValue; }
    void setLengthValue(const QString& value) { m_sLengthValue = value; }
    const QString& getStatus() const { return m_sStatus; }
    void setStatus(const QString& value) { m_sStatus = value; }

private:
    QString m_sKey;
    QString m_sFrameCount;
    QString m_sLengthValue;
    QString m_sStatus;
};
