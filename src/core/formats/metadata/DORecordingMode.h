#pragma once

#include <QString>

// The recording mode of a clip.
class DORecordingMode
{
public:
    const QString& getType() const { return m_sType; }
    void setType(const QString& value) { m_sType = value; }
    const QString& getCacheRec() const { return m_sCacheRec; }
    void setCacheRec(const QString& value) { m_sCacheRec = value; }

private:
    QString m_sType;
    QString m_sCacheRec;
};
