#pragma once

#include "core/formats/metadata/DOPullDownSetting.h"

#include <QString>

// The "VideoLayout" element of a video format.
class DOVideoLayout
{
public:
    const QString& getPixel() const { return m_sPixel; }
    void setPixel(const QString& value) { m_sPixel = value; }
    const QString& getNumOfVerticalLine() const { return m_sNumOfVerticalLine; }
    void setNumOfVerticalLine(const QString& value) { m_sNumOfVerticalLine = value; }
    const QString& getAspectRatio() const { return m_sAspectRatio; }
    void setAspectRatio(const QString& value) { m_sAspectRatio = value; }
    const DOPullDownSetting& getPullDownSetting() const { return m_PullDownSetting; }
    void setPullDownSetting(const DOPullDownSetting& value) { m_PullDownSetting = value; }

private:
    QString m_sPixel;
    QString m_sNumOfVerticalLine;
    QString m_sAspectRatio;
    DOPullDownSetting m_PullDownSetting;
};
