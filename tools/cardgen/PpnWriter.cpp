#include "cardgen/PpnWriter.h"

#include "cardgen/BoxBuilder.h"

namespace cardgen {

int PpnWriter::frameRateCode(int timescale, int sampleDelta, bool* ntsc)
{
    const int r = sampleDelta == 0 ? 0 : int(int64_t(timescale) * 100 / sampleDelta);
    *ntsc = true;
    if (r >= 5901 && r <= 5998)
        return 14;
    if (r >= 2901 && r <= 2998)
        return 9;
    if (r >= 2491 && r <= 2498)
        return 6;
    if (r >= 2301 && r <= 2398)
        return 2;
    *ntsc = false;
    if (r == 5000)
        return 12;
    if (r == 2500)
        return 6;
    return 0;
}

int PpnWriter::aspectCode(int width, int height)
{
    if (height == 0)
        return 0;
    const int q = width * 10 / height;
    if (q >= 12 && q <= 15)
        return 2;
    if (q >= 17 && q <= 18)
        return 4;
    return 0;
}

int PpnWriter::widthCode(int width)
{
    switch (width) {
    case 720:
        return 1;
    case 1280:
        return 3;
    case 1440:
        return 4;
    case 1920:
        return 7;
    default:
        return 0;
    }
}

int PpnWriter::heightCode(int height)
{
    switch (height) {
    case 480:
        return 1;
    case 720:
        return 4;
    case 1080:
        return 7;
    default:
        return 0;
    }
}

QByteArray PpnWriter::build(const Mp4Layout& layout)
{
    BoxBuilder b;
    bool ntsc = false;
    const int fps = frameRateCode(layout.timescale, layout.sampleDelta, &ntsc);
    b.u8(0x01);
    b.u8(0x50);
    b.zeros(5);
    b.u8(uint32_t(fps << 3 | aspectCode(layout.width, layout.height)));
    b.u8(uint32_t(widthCode(layout.width) << 4 | heightCode(layout.height)));
    b.u8(0x20);
    b.u8(0x51);
    b.u8(0x10);
    b.u8(ntsc ? 0x1F : 0x0F);
    b.u24(0xFFFFFF);
    b.zeros(6);
    b.u24(0xFFFFFF);
    b.zeros(7);

    size_t audioChunk = 0;
    size_t first = 0; // storage index of the chunk's first frame
    for (size_t c = 0; c < layout.chunkFrames.size(); ++c) {
        const int n = layout.chunkFrames[c];
        const uint64_t chunkOffset = layout.videoChunkOffsets[c];
        const uint64_t top = chunkOffset + layout.sampleSizes[first];
        for (int k = 0; k < n; ++k) {
            // The frame shown k-th is stored at position p of the chunk.
            const int p = (k + 1) % 3 + 3 * (k / 3);
            const size_t frame = first + size_t(p);
            uint64_t offset = chunkOffset;
            for (int i = 0; i < p; ++i)
                offset += layout.sampleSizes[first + size_t(i)];
            const uint32_t size = layout.sampleSizes[frame];
            const char type = layout.sampleTypes[frame];
            const uint32_t pictureType = type == 'I' ? 0 : type == 'P' ? 1 : 2;
            b.u8((k == 0 ? 0x80 : 0) | pictureType << 5 | ((size >> 16) & 0x1F));
            b.u16(size & 0xFFFF);
            b.u8(0);
            b.u32(uint32_t(offset));
            b.u16(0);
            if (k == 0 && audioChunk < layout.audioChunkOffsets.size()) {
                const uint32_t audioSize = uint32_t(layout.audioChunkSamples[audioChunk]) * 4;
                b.u8(0xC0 | ((audioSize >> 16) & 0x1F));
                b.u16(audioSize & 0xFFFF);
                b.u24(uint32_t(layout.audioChunkOffsets[audioChunk] - top) & 0xFFFFFF);
                ++audioChunk;
            } else {
                b.u8(0x40);
                b.zeros(5);
            }
        }
        first += size_t(n);
    }
    return b.data();
}

} // namespace cardgen
