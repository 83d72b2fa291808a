#pragma once

#include <QString>

// The "meta" element of a take-info head.
class DOTMeta
{
public:
    const QString& getName() const { return m_sName; }
    void setName(const QString& value) { m_sName = value; }
    const QString& getContent() const { return m_sContent; }
    void setContent(const QString& value) { m_sContent = value; }

private:
    QString m_sName;
    QString m_sContent;
};
