#pragma once

#include "core/formats/mp4/CFileM.h"

#include <vector>

class CAudioPointerData;
class CVideoPointerData;

// The picture pointer table file (.PPN): a 32-byte header and one 16-byte
// entry per video frame in presentation order, each giving the picture's
// type, size and file offset and, on the first entry of a chunk, the size and
// place of the matching audio chunk. Numbers are big-endian.
class CPPTFile : public CFileM
{
public:
    static constexpr int kHeaderSize = 32;
    static constexpr int kEntrySize = 16;

    // Allocates the zeroed header.
    void InitPPT();
    // Builds the header and, when the video track is present, the entries,
    // and writes them at the start of the open file. 1 on success, 0 when
    // the tables do not describe every frame, -1 when the write fails.
    int SetData(CVideoPointerData* video, CAudioPointerData* audio);
    int blMakePPTHeader();
    int blCreatePointer();
    // Writes the header and count entries; 1 when everything was written.
    int WriteData(quint32 count);

private:
    std::vector<quint8> m_arrHeader;
    std::vector<quint8> m_arrEntry;
    CVideoPointerData* m_pVideo = nullptr;
    CAudioPointerData* m_pAudio = nullptr;
};
