#pragma once

#include "core/formats/metadata/DOMediaFile.h"

// A Proxy element of a media-profile material: a low-resolution copy of its essence.
class DOProxy : public DOMediaFile
{
};
