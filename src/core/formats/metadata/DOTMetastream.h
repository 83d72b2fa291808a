#pragma once

#include "core/formats/metadata/DOTRef.h"

// A "metastream" element of a take-info group; same attributes as a "ref".
class DOTMetastream : public DOTRef
{
};
