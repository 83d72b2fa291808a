#pragma once

#include <QString>

// The "trackBuffer" element of a take-info head.
class DOTTrackBuffer
{
public:
    const QString& getVideo() const { return m_sVideo; }
    void setVideo(const QString& value) { m_sVideo = value; }
    const QString& getAudio() const { return m_sAudio; }
    void setAudio(const QString& value) { m_sAudio = value; }

private:
    QString m_sVideo;
    QString m_sAudio;
};
