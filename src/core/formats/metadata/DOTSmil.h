#pragma once

#include "core/formats/metadata/DOTBody.h"
#include "core/formats/metadata/DOTHead.h"

#include <QString>

// A take-info (SMIL) document: the take's UMID, its head and its body.
class DOTSmil
{
public:
    const QString& getUmid() const { return m_sUmid; }
    void setUmid(const QString& value) { m_sUmid = value; }
    const DOTHead& getHead() const { return m_Head; }
    void setHead(const DOTHead& value) { m_Head = value; }
    const DOTBody& getBody() const { return m_Body; }
    void setBody(const DOTBody& value) { m_Body = value; }

private:
    QString m_sUmid;
    DOTHead m_Head;
    DOTBody m_Body;
};
