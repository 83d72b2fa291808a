#pragma once

#include "cardgen/FrameRate.h"

#include <QByteArray>

namespace cardgen {

// The real-time metadata file (.BIM) of a clip: the BiM decoder
// initialisation with the camera metadata schema, a 64 KiB initial
// description, then one 1,024-byte unit per frame that carries the frame's
// time code in bytes 12 to 15 (frames, seconds, minutes, hours as BCD).
class BimWriter
{
public:
    static constexpr int kUnitSize = 1024;
    static constexpr int kTimeCodeOffset = 12;

    static QByteArray build(const TimeCodeClock& clock, int frames);
    // The variable-length unsigned integer of BiM (7 bits per byte, high bit = more).
    static QByteArray vluimsbf8(uint32_t value);
};

} // namespace cardgen
