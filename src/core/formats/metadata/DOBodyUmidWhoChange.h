#pragma once

#include "core/formats/metadata/DOLtcChange.h"

// One entry of the body UMID who change table; the same three attributes
// (frame count, value, status) as an LTC change entry.
class DOBodyUmidWhoChange : public DOLtcChange
{
};
