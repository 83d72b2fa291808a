#pragma once

#include <QString>

// The attributes a media-profile element gives the essence it names: shared
// by Material and by its Component, Proxy and RelevantInfo children.
class DOMediaAttributes
{
public:
    const QString& getUri() const { return m_sUri; }
    void setUri(const QString& value) { m_sUri = value; }
    const QString& getType() const { return m_sType; }
    void setType(const QString& value) { m_sType = value; }
    const QString& getVideoType() const { return m_sVideoType; }
    void setVideoType(const QString& value) { m_sVideoType = value; }
    const QString& getAudioType() const { return m_sAudioType; }
    void setAudioType(const QString& value) { m_sAudioType = value; }
    const QString& getFps() const { return m_sFps; }
    void setFps(const QString& value) { m_sFps = value; }
    const QString& getDur() const { return m_sDur; }
    void setDur(const QString& value) { m_sDur = value; }
    const QString& getCh() const { return m_sCh; }
    void setCh(const QString& value) { m_sCh = value; }
    const QString& getAspectRatio() const { return m_sAspectRatio; }
    void setAspectRatio(const QString& value) { m_sAspectRatio = value; }
    const QString& getOffset() const { return m_sOffset; }
    void setOffset(const QString& value) { m_sOffset = value; }
    const QString& getUmid() const { return m_sUmid; }
    void setUmid(const QString& value) { m_sUmid = value; }

private:
    QString m_sUri;
    QString m_sType;
    QString m_sVideoType;
    QString m_sAudioType;
    QString m_sFps;
    QString m_sDur;
    QString m_sCh;
    QString m_sAspectRatio;
    QString m_sOffset;
    QString m_sUmid;
};
