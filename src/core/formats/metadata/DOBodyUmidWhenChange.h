#pragma once

#include "core/formats/metadata/DOLtcChange.h"

// One entry of the body UMID when change table; the same three attributes
// (frame count, value, status) as an LTC change entry.
class DOBodyUmidWhenChange : public DOLtcChange
{
};
