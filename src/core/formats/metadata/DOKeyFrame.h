#pragma once

#include <QString>

// The frame shown as a clip's picture.
class DOKeyFrame
{
public:
    const QString& getFrameCount() const { return m_sFrameCount; }
    void setFrameCount(const QString& value) { m_sFrameCount = value; }

private:
    QString m_sFrameCount;
};
