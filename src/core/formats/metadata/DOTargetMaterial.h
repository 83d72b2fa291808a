#pragma once

#include <QString>

// The material a non-real-time metadata document describes: its UMID and status.
class DOTargetMaterial
{
public:
    const QString& getUmidRef() const { return m_sUmidRef; }
    void setUmidRef(const QString& value) { m_sUmidRef = value; }
    const QString& getStatus() const { return m_sStatus; }
    void setStatus(const QString& value) { m_sStatus = value; }

private:
    QString m_sUmidRef;
    QString m_sStatus;
};
