#pragma once

#include "core/formats/metadata/DOAlias.h"

#include <QString>

// A clip's title: the US-ASCII form and the alias of one language.
class DOTitle
{
public:
    const QString& getUsAscii() const { return m_sUsAscii; }
    void setUsAscii(const QString& value) { m_sUsAscii = value; }
    const DOAlias& getAlias() const { return m_Alias; }
    void setAlias(const DOAlias& value) { m_Alias = value; }

private:
    QString m_sUsAscii;
    DOAlias m_Alias;
};
