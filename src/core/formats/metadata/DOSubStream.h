#pragma once

#include <QString>

// The sub stream of a clip.
class DOSubStream
{
public:
    const QString& getCodec() const { return m_sCodec; }
    void setCodec(const QString& value) { m_sCodec = value; }
    const QString& getClipBegin() const { return m_sClipBegin; }
    void setClipBegin(const QString& value) { m_sClipBegin = value; }

private:
    QString m_sCodec;
    QString m_sClipBegin;
};
