#pragma once

#include <QByteArray>
#include <QList>

// Writes real-time metadata files (.BIM) of the camera's layout for tests
// and fuzzing: BiM decoder init, lengths, a 44-byte header, a skipped part
// and one 1,024-byte unit per frame with its time code at bytes 12 to 15.
namespace cwtest {

// vluimsbf8: 7 bits per byte, most significant group first, top bit set
// while another byte follows.
inline QByteArray vluimsbf8(quint64 value)
{
    QByteArray out(1, char(value & 0x7F));
    while (value >>= 7)
        out.prepend(char(0x80 | (value & 0x7F)));
    return out;
}

struct BimFile
{
    QByteArray schemaUri = "urn:schemas-professionalDisc:realTimeMeta:cameraMeta";
    QByteArray locationHint = "./RealTimeMetaCameraMeta.xsd";
    QList<quint32> timeCodes;  // one unit per entry: bytes frames, seconds, minutes, hours
    qint64 unitCount = -1;     // N; -1: timeCodes.size() + 1
    qint64 lengthDelta = 0;    // added to the initial description length the reader expects
    quint32 skipBits = 8 * 12; // B: the header announces B / 8 bytes to skip

    quint64 units() const
    {
        return unitCount < 0 ? quint64(timeCodes.size()) : unitCount > 0 ? quint64(unitCount - 1) : 0;
    }

    QByteArray bytes() const
    {
        const quint64 n = unitCount < 0 ? quint64(timeCodes.size()) + 1 : quint64(unitCount);
        QByteArray out("\x01\x02\x03", 3);
        out += char(0x80 | schemaUri.size()); // the top bit is no part of the length
        out += schemaUri;
        out += char(0x80 | locationHint.size());
        out += locationHint;
        out += char(0x5A);
        const quint64 x = 65478 - quint64(locationHint.size()) + units() * 1024;
        const quint64 k = x <= 128 ? 1 : x <= 16385 ? 2 : x <= 2097154 ? 3 : x <= 268435459 ? 4 : 5;
        out += vluimsbf8(quint64(qint64(x - k) + lengthDelta));
        out += vluimsbf8(n);
        QByteArray header(44, '\x11');
        header[41] = char(0xA0 | ((skipBits >> 16) & 0x0F));
        header[42] = char(skipBits >> 8);
        header[43] = char(skipBits);
        out += header;
        out += QByteArray(skipBits / 8, '\x22');
        for (quint32 tc : timeCodes) {
            QByteArray unit(1024, '\x33');
            for (int i = 0; i < 4; ++i)
                unit[12 + i] = char(tc >> (24 - 8 * i));
            out += unit;
        }
        return out;
    }
};

} // namespace cwtest
