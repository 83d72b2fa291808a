#pragma once

#include <QString>

// The reference ("ref" under "metadata") of a take-info head.
class DOTMetadata
{
public:
    const QString& getSrc() const { return m_sSrc; }
    void setSrc(const QString& value) { m_sSrc = value; }
    const QString& getType() const { return m_sType; }
    void setType(const QString& value) { m_sType = value; }

private:
    QString m_sSrc;
    QString m_sType;
};
