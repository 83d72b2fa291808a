#pragma once

#include "core/formats/metadata/DOVideoFrame.h"
#include "core/formats/metadata/DOVideoLayout.h"

#include <QString>

// The video format of a clip: recording port, frame and layout.
class DOVideoFormat
{
public:
    const QString& getVideoRecPort() const { return m_sVideoRecPort; }
    void setVideoRecPort(const QString& value) { m_sVideoRecPort = value; }
    const DOVideoFrame& getVideoFrame() const { return m_VideoFrame; }
    void setVideoFrame(const DOVideoFrame& value) { m_VideoFrame = value; }
    const DOVideoLayout& getVideoLayout() const { return m_VideoLayout; }
    void setVideoLayout(const DOVideoLayout& value) { m_VideoLayout = value; }

private:
    QString m_sVideoRecPort;
    DOVideoFrame m_VideoFrame;
    DOVideoLayout m_VideoLayout;
};
