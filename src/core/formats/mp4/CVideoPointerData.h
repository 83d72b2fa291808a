#pragma once

#include "core/formats/mp4/CPointerData.h"

// The video track: its sample tables, the picture properties from its sample
// description and the codes derived from them for the picture pointer table.
class CVideoPointerData : public CPointerData
{
public:
    // Frame-rate code from timescale / mean sample duration; also sets the NTSC-rate flag.
    int getFPS();
    // The NTSC-rate flag computed by the last getFPS.
    int getDrop() const { return m_nNtscRate; }
    // 2 (4:3), 4 (16:9) or 0 from the pixel sizes.
    int getAspect();
    int getWidth();
    int getHeight();

    // Picture type of a stored frame from its dependency byte: 0 intra,
    // 1 forward-predicted, 2 bidirectional, 3 other (also for a frame
    // without a dependency byte).
    int eGOP(quint32 frame) const;
    // Size in bytes of a stored frame (0 when the tables do not give it).
    quint32 GetSizeV(quint32 frame) const;
    // File offset of the picture chosen by the last GetPresentationFrame.
    quint64 GetOffsetV() const { return m_ullPictureOffset; }
    // End of the chunk's first stored picture: chunk offset + size of frame.
    quint64 ulGetTopOfPictureOffset(quint32 chunk, quint32 frame) const;
    // Chooses the frame shown at place indexInChunk of a chunk whose frame
    // at that storage place is number frame, and its file offset. A chunk
    // stores each anchor picture first, followed by the two bidirectional
    // pictures shown before it; a last group of fewer than three pictures is
    // rotated the same way. False when the tables do not cover the chunk.
    bool GetPresentationFrame(quint32 chunk, quint32 frame, quint32 indexInChunk);

    quint32 m_ulPresentationIndex = 0; // work field of GetPresentationFrame: the frame chosen
    quint64 m_ullPictureOffset = 0;    // work field of GetPresentationFrame
    quint32 m_ulHeight = 0;            // pixels, from the sample description
    quint32 m_ulWidth = 0;
    quint32 m_ulSampleDuration = 0; // mean sample duration, media time units
    quint32 m_ulTimeScale = 0;
    quint32 m_ulMediaTimeScale = 0; // as read from the media header
    int m_nFrameRate = 0;
    int m_nAspect = 0;
    int m_nHeight = 0;
    int m_nWidth = 0;
    int m_nNtscRate = 0;
    quint32 m_ulMaxBitrate = 0; // bits per second

private:
    // Stored offsets of the frames of the chunk of the last GetPresentationFrame.
    quint32 m_ulWorkChunk = 0;
    quint32 m_ulWorkFirstFrame = 0;
    std::vector<quint64> m_arrWorkOffsets;
};
