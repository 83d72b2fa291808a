#include "cardgen/BimWriter.h"

#include "cardgen/BoxBuilder.h"

namespace cardgen {

namespace {

const QByteArray kSchema("urn:schemas-professionalDisc:realTimeMeta:cameraMeta");
const QByteArray kLocation("./RealTimeMetaCameraMeta.xsd");
constexpr int kHeaderSize = 44;
// The decoder initialisation and the initial description fill the first 64 KiB.
constexpr uint32_t kInitialSpace = 65536;

// The size of the length field as the readers expect it for a length X.
uint32_t lengthFieldSize(uint32_t x)
{
    if (x <= 128)
        return 1;
    if (x <= 16385)
        return 2;
    if (x <= 2097154)
        return 3;
    if (x <= 268435459)
        return 4;
    return 5;
}

} // namespace

QByteArray BimWriter::vluimsbf8(uint32_t value)
{
    QByteArray out;
    out.prepend(char(value & 0x7F));
    value >>= 7;
    while (value != 0) {
        out.prepend(char(0x80 | (value & 0x7F)));
        value >>= 7;
    }
    return out;
}

QByteArray BimWriter::build(const TimeCodeClock& clock, int frames)
{
    const auto units = uint32_t(frames);
    BoxBuilder b;
    b.u24(0x000001);
    b.u8(uint32_t(kSchema.size()));
    b.bytes(kSchema);
    b.u8(uint32_t(kLocation.size()));
    b.bytes(kLocation);
    b.u8(0);
    // The initial description runs from behind its length field to the end of
    // the file: everything after the first 64 KiB is frame units.
    const uint32_t x = kInitialSpace - uint32_t(b.size()) + units * kUnitSize;
    b.bytes(vluimsbf8(x - lengthFieldSize(x)));
    b.bytes(vluimsbf8(units + 1));
    const uint32_t skipped = kInitialSpace - uint32_t(b.size()) - kHeaderSize;
    const uint32_t bits = skipped * 8;
    b.zeros(41);
    b.u8((bits >> 16) & 0x0F);
    b.u16(bits & 0xFFFF);
    b.zeros(int(skipped));
    for (int i = 0; i < frames; ++i) {
        b.zeros(kTimeCodeOffset);
        b.u32(clock.at(i).bcdBytes());
        b.zeros(kUnitSize - kTimeCodeOffset - 4);
    }
    return b.data();
}

} // namespace cardgen
