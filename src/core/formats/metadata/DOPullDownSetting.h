#pragma once

#include <QString>

// The pull-down setting of a video layout.
class DOPullDownSetting
{
public:
    const QString& getPullDownKind() const { return m_sPullDownKind; }
    void setPullDownKind(const QString& value) { m_sPullDownKind = value; }
    const QString& getFramePhase() const { return m_sFramePhase; }
    void setFramePhase(const QString& value) { m_sFramePhase = value; }

private:
    QString m_sPullDownKind;
    QString m_sFramePhase;
};
