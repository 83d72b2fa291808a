#pragma once

#include <QString>

// A title in one language ("lib:Alias" with its "xml:lang").
class DOAlias
{
public:
    const QString& getLang() const { return m_sLang; }
    void setLang(const QString& value) { m_sLang = value; }
    const QString& getValue() const { return m_sValue; }
    void setValue(const QString& value) { m_sValue = value; }

private:
    QString m_sLang;
    QString m_sValue;
};
