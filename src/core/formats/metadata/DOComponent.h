#pragma once

#include "core/formats/metadata/DOMediaFile.h"

// A Component element of a media-profile material: one file that makes up the
// material (a clip's essence, or a clip of a multi-clip take). The media
// fields are used only for a component that lies on another medium.
class DOComponent : public DOMediaFile
{
public:
    const QString& getMediaName() const { return m_sMediaName; }
    void setMediaName(const QString& value) { m_sMediaName = value; }

    // Orders two components by the last path component of their uri, ignoring
    // case: negative, 0 or positive as this one sorts before, with or after.
    int compareByUri(const DOComponent& other) const;

private:
    QString m_sMediaName;
};
