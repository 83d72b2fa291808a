#pragma once

#include <QString>

// The media profile's System element: the program that last wrote the file.
class DOSystem
{
public:
    const QString& getSystemId() const { return m_sSystemId; }
    void setSystemId(const QString& value) { m_sSystemId = value; }
    const QString& getSystemKind() const { return m_sSystemKind; }
    void setSystemKind(const QString& value) { m_sSystemKind = value; }
    const QString& getVersion() const { return m_sVersion; }
    void setVersion(const QString& value) { m_sVersion = value; }

private:
    QString m_sSystemId;
    QString m_sSystemKind;
    QString m_sVersion;
};
