#pragma once

#include <QString>

// The media profile's Metadata element, carried over unchanged between folders.
class DOMetadata
{
public:
    const QString& getType() const { return m_sType; }
    void setType(const QString& value) { m_sType = value; }
    const QString& getCharset() const { return m_sCharset; }
    void setCharset(const QString& value) { m_sCharset = value; }

private:
    QString m_sType;
    QString m_sCharset;
};
