#pragma once

#include "core/formats/metadata/DOMediaAttributes.h"

// A child of a media-profile material that names one file, with the medium
// the file lies on.
class DOMediaFile : public DOMediaAttributes
{
public:
    const QString& getMediaId() const { return m_sMediaId; }
    void setMediaId(const QString& value) { m_sMediaId = value; }
    const QString& getMediaKind() const { return m_sMediaKind; }
    void setMediaKind(const QString& value) { m_sMediaKind = value; }

private:
    QString m_sMediaId;
    QString m_sMediaKind;
};
