#pragma once

#include <QString>

// One audio recording port of a clip's audio format.
class DOAudioRecPort
{
public:
    const QString& getPort() const { return m_sPort; }
    void setPort(const QString& value) { m_sPort = value; }
    const QString& getAudioCodec() const { return m_sAudioCodec; }
    void setAudioCodec(const QString& value) { m_sAudioCodec = value; }
    const QString& getTrackDst() const { return m_sTrackDst; }
    void setTrackDst(const QString& value) { m_sTrackDst = value; }

private:
    QString m_sPort;
    QString m_sAudioCodec;
    QString m_sTrackDst;
};
