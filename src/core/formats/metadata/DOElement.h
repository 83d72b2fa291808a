#pragma once

#include <QString>

// One hardware/software element of the recording device.
class DOElement
{
public:
    const QString& getHardware() const { return m_sHardware; }
    void setHardware(const QString& value) { m_sHardware = value; }
    const QString& getSoftware() const { return m_sSoftware; }
    void setSoftware(const QString& value) { m_sSoftware = value; }

private:
    QString m_sHardware;
    QString m_sSoftware;
};
