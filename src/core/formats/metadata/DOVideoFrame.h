#pragma once

#include <QString>

// The "VideoFrame" element of a video format.
class DOVideoFrame
{
public:
    const QString& getVideoCodec() const { return m_sVideoCodec; }
    void setVideoCodec(const QString& value) { m_sVideoCodec = value; }
    const QString& getCaptureFps() const { return m_sCaptureFps; }
    void setCaptureFps(const QString& value) { m_sCaptureFps = value; }
    const QString& getRecFps() const { return m_sRecFps; }
    void setRecFps(const QString& value) { m_sRecFps = value; }
    const QString& getFormatFps() const { return m_sFormatFps; }
    void setFormatFps(const QString& value) { m_sFormatFps = value; }
    const QString& getClipBegin() const { return m_sClipBegin; }
    void setClipBegin(const QString& value) { m_sClipBegin = value; }

private:
    QString m_sVideoCodec;
    QString m_sCaptureFps;
    QString m_sRecFps;
    QString m_sFormatFps;
    QString m_sClipBegin;
};
