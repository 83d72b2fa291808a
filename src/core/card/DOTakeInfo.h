#pragma once

#include <QString>

// One clip reference of a multi-clip take's take info: the clip's UMID ("src")
// and the clip and take positions, kept as the take info spells them.
class DOTakeInfo
{
public:
    // Digits of a stored UMID; longer texts keep only their last 64 characters,
    // which drops a leading "urn:smpte:umid:".
    static constexpr int kUmidLength = 64;
    static QString toStoredUmid(const QString& text) { return text.right(kUmidLength); }

    const QString& getSrc() const { return m_src; }
    void setSrc(const QString& value) { m_src = toStoredUmid(value); }
    const QString& getClipBegin() const { return m_clipBegin; }
    void setClipBegin(const QString& value) { m_clipBegin = value; }
    const QString& getClipEnd() const { return m_clipEnd; }
    void setClipEnd(const QString& value) { m_clipEnd = value; }
    const QString& getBegin() const { return m_begin; }
    void setBegin(const QString& value) { m_begin = value; }
    const QString& getEnd() const { return m_end; }
    void setEnd(const QString& value) { m_end = value; }

    // The source as a UMID reference: "urn:smpte:umid:" followed by the digits.
    QString getUmid() const { return QStringLiteral("urn:smpte:umid:") + m_src; }

    // A copy of the five texts (all the record holds).
    DOTakeInfo copyTakeInfo() const { return *this; }

private:
    QString m_src;
    QString m_clipBegin;
    QString m_clipEnd;
    QString m_begin;
    QString m_end;
};
