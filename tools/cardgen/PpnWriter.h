#pragma once

#include "cardgen/Mp4Writer.h"

#include <QByteArray>

namespace cardgen {

// The picture pointer table (.PPN) of an MP4 file, made from the writer's
// layout: a 32-byte header with the frame-rate, aspect and size codes, then one
// 16-byte entry per frame, the frames of each chunk in presentation order, each
// with its picture type, size and offset, and on a chunk's first entry the size
// and relative place of the first audio track's chunk.
class PpnWriter
{
public:
    static QByteArray build(const Mp4Layout& layout);

    // The codes of the header (also used by the readers of MP4 files).
    static int frameRateCode(int timescale, int sampleDelta, bool* ntsc);
    static int aspectCode(int width, int height);
    static int widthCode(int width);
    static int heightCode(int height);
};

} // namespace cardgen
