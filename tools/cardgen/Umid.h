#pragma once

#include <QDateTime>
#include <QString>

namespace cardgen {

// Makes the 64-digit UMIDs of clips and takes and the 32-digit media ids of
// cards: a fixed label, an SMPTE 309 time stamp and the machine node of a
// fictitious camera. Time stamps come from the recording times the caller
// passes, so a card's identifiers are unique without reading the clock.
class Umid
{
public:
    // The machine node: 12 hexadecimal digits of a hardware address.
    static constexpr const char* kHardwareAddress = "0200C1A9D0E1";

    // A new UMID for something recorded at the given time; the serial runs 1..63.
    QString next(const QDateTime& when);
    static QString mediaId(const QDateTime& when, int serial);
    // "0200c1a9d0e1": the address as the media profile's System element gives it.
    static QString systemId();

    // The 16-character time stamp "%08d%06d%02X".
    static QString smpte309(const QDateTime& when, int serial);
    static QString machineNode();

private:
    int m_serial = 1;
};

} // namespace cardgen
