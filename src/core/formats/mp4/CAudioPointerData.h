#pragma once

#include "core/formats/mp4/CPointerData.h"

// One audio track: its sample tables and whether it is stereo.
class CAudioPointerData : public CPointerData
{
public:
    // Bytes of audio chunk: its samples (from the chunk runs) times bytesPerSample.
    quint64 GetSizeA(quint32 chunk, quint32 bytesPerSample) const;
    // File offset of audio chunk less reference (0 for a chunk beyond the table).
    qint64 GetOffsetA(quint32 chunk, quint64 reference) const;

    quint8 m_bStereo = 0;
};
