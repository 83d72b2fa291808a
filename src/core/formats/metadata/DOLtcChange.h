#pragma once

#include <QString>

// One entry of the LTC change table of a clip's non-real-time metadata: the
// frame at which the time code changes, the new time code value (eight
// hexadecimal digits: frames, seconds, minutes, hours in BCD) and its status.
class DOLtcChange
{
public:
    const QString& getFrameCount() const { return m_sFrameCount; }
    void setFrameCount(const QString& value) { m_sFrameCount = value; }
    const QString& getValue() const { return m_sValue; }
    void setValue(const QString& value) { m_sValue = value; }
    const QString& getStatus() const { return m_sStatus; }
    void setStatus(const QString& value) { m_sStatus = value; }

private:
    QString m_sFrameCount;
    QString m_sValue;
    QString m_sStatus;
};
