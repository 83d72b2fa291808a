#pragma once

#include <QString>

// The root of a non-real-time metadata document: its default, "lib" and
// "xsi" namespace URIs, its schema location and its "lastUpdate" stamp.
class DONonMetaHeader
{
public:
    const QString& getXmlns() const { return m_sXmlns; }
    void setXmlns(const QString& value) { m_sXmlns = value; }
    const QString& getXmlns_lib() const { return m_sXmlns_lib; }
    void setXmlns_lib(const QString& value) { m_sXmlns_lib = value; }
    const QString& getXmlns_xsi() const { return m_sXmlns_xsi; }
    void setXmlns_xsi(const QString& value) { m_sXmlns_xsi = value; }
    const QString& getXsi_schema() const { return m_sXsi_schema; }
    void setXsi_schema(const QString& value) { m_sXsi_schema = value; }
    const QString& getLastUpdate() const { return m_sLastUpdate; }
    void setLastUpdate(const QString& value) { m_sLastUpdate = value; }

private:
    QString m_sXmlns;
    QString m_sXmlns_lib;
    QString m_sXmlns_xsi;
    QString m_sXsi_schema;
    QString m_sLastUpdate;
};
