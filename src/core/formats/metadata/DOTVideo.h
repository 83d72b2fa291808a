#pragma once

#include "core/formats/metadata/DOTRef.h"

#include <QString>

// A "video" element of a take-info group.
class DOTVideo : public DOTRef
{
public:
    const QString& getAspectRatio() const { return m_sAspectRatio; }
    void setAspectRatio(const QString& value) { m_sAspectRatio = value; }
    const QString& getDecBegin() const { return m_sDecBegin; }
    void setDecBegin(const QString& value) { m_sDecBegin = value; }
    const QString& getDecEnd() const { return m_sDecEnd; }
    void setDecEnd(const QString& value) { m_sDecEnd = value; }
    const QString& getPreDecDur() const { return m_sPreDecDur; }
    void setPreDecDur(const QString& value) { m_sPreDecDur = value; }
    const QString& getPostDecDur() const { return m_sPostDecDur; }
    void setPostDecDur(const QString& value) { m_sPostDecDur = value; }

private:
    QString m_sAspectRatio;
    QString m_sDecBegin;
    QString m_sDecEnd;
    QString m_sPreDecDur;
    QString m_sPostDecDur;
};
