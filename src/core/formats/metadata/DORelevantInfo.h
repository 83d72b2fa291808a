#pragma once

#include "core/formats/metadata/DOMediaFile.h"

// A RelevantInfo element of a media-profile material: a metadata file that
// belongs to it (non-real-time metadata, real-time metadata, picture pointers).
class DORelevantInfo : public DOMediaFile
{
};
