#pragma once

#include <QString>

// One entry of the cue-up info: the clip (take-info uri and UMID) and the time
// code where playback resumes.
class DOClip
{
public:
    const QString& getUri() const { return m_sUri; }
    void setUri(const QString& value) { m_sUri = value; }
    const QString& getUmid() const { return m_sUmid; }
    void setUmid(const QString& value) { m_sUmid = value; }
    const QString& getFtc() const { return m_sFtc; }
    void setFtc(const QString& value) { m_sFtc = value; }

private:
    QString m_sUri;
    QString m_sUmid;
    QString m_sFtc;
};
