#pragma once

#include "core/metadata/DOLtcChange.h"

// One entry of the body UMID basic change table; the same three attributes
// (frame count, value, status) as an LTC change entry.
class DOBodyUmidBasicChange : public DOLtcChange
{
};
