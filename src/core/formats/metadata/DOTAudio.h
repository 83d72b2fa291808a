#pragma once

#include "core/formats/metadata/DOTRef.h"

#include <QString>

// An "audio" element of a take-info group.
class DOTAudio : public DOTRef
{
public:
    const QString& getTrackSrc() const { return m_sTrackSrc; }
    void setTrackSrc(const QString& value) { m_sTrackSrc = value; }
    const QString& getTrackDst() const { return m_sTrackDst; }
    void setTrackDst(const QString& value) { m_sTrackDst = value; }

private:
    QString m_sTrackSrc;
    QString m_sTrackDst;
};
