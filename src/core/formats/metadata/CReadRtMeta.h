#pragma once

#include <QtGlobal>

#include <vector>

// The time code of one frame as stored: frames, seconds, minutes, hours, each
// two BCD digits whose upper nibble also carries flag bits.
struct FTCSTRUCT
{
    quint8 frames = 0;
    quint8 seconds = 0;
    quint8 minutes = 0;
    quint8 hours = 0;
};

// Reader of a clip's real-time metadata file (.BIM): a BiM header followed by
// one 1,024-byte unit per frame, of which only the time code is read.
class CReadRtMeta
{
public:
    static constexpr quint32 kUnitSize = 1024;

    CReadRtMeta() = default;
    CReadRtMeta(const CReadRtMeta&) = delete;
    CReadRtMeta& operator=(const CReadRtMeta&) = delete;

    // Reads the file at path (UTF-8) and its frame time codes; start is the
    // frame position of this clip within its take. False with the error text
    // set on a fault of the header. A short frame unit ends the read with
    // true and the reader closed.
    bool blReadBIM(const char* path, unsigned long start);
    // The time code of frame i of this clip; false when the reader is not
    // open or i is beyond the last frame unit.
    bool GetTimeCode(unsigned long i, FTCSTRUCT* timeCode) const;
    // Releases the time codes; the reader can then read another file.
    void CloseFTC();
    // Releases the buffers of the header parts.
    void FreeMem();

    bool isOpen() const { return m_bOpen; }
    // The unit count N of the file last read (N - 1 frame units), also when a
    // short frame unit left the reader closed; 0 after CloseFTC.
    quint64 getUnitCount() const { return m_ullUnitCount; }
    unsigned long getStartPosition() const { return m_ulStartPosition; }
    const char* getLastError() const { return m_pLastError; }

private:
    bool m_bOpen = false;
    quint64 m_ullUnitCount = 0;
    std::vector<FTCSTRUCT> m_arrTimeCode;
    unsigned long m_ulStartPosition = 0;
    const char* m_pLastError = nullptr;
    // Header parts, held during a read.
    std::vector<char> m_arrSchemaUri;
    std::vector<char> m_arrLocationHint;
    std::vector<quint8> m_arrHeader;
};
