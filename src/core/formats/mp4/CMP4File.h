#pragma once

#include "core/formats/mp4/CFileM.h"

#include <vector>

class CAudioPointerData;
class CPointerData;
class CVideoPointerData;

// Reader of the MP4 files the camera writes: walks the box tree depth first,
// reads the sample tables of every track into the caller's track records,
// the XML document embedded in the "meta" box and the MPEG-2 sequence header
// of the first video chunk. Files of another layout are refused with one of
// the texts below (getLastError). Numbers are big-endian.
//
// Every size and count read from the file is checked against the file length
// before it is used for an allocation, an index or an offset.
class CMP4File : public CFileM
{
public:
    static constexpr int kMaxAudioTracks = 8;
    // Track kinds.
    static constexpr int kKindOther = 0;
    static constexpr int kKindAudio = 1;
    static constexpr int kKindVideo = 2;
    // Audio sample formats.
    static constexpr quint32 kFormatTwos = 260; // 16-bit PCM
    static constexpr quint32 kFormatIn24 = 261; // 24-bit PCM
    static constexpr quint32 kFormatIn32 = 262; // 32-bit PCM

    // Position after the "ftyp" box that must open the file, or 0.
    quint64 ulCheckHeader();
    // Position of the first byte of the "moov" box, or 0 (also when the box
    // runs past the end of the file); records its size.
    quint64 ulSeekToMoov();
    // Reads every track of "moov" into the records (audio: an array of
    // kMaxAudioTracks), which are reset first. Answers the position where the
    // last track ended, or 0.
    quint64 ulReadMoov(CVideoPointerData* video, CAudioPointerData* audio);
    // Reads the MPEG-2 sequence header at the start of the first video chunk.
    // 1 or 0. The file position is kept.
    int blCheckVideo();
    // Size of the body of the embedded "xml " box, 0 when there is none; the
    // file then stands at that body.
    int nGetXMLDataSize();
    // Reads the XML body of the given size into buffer (which holds size
    // bytes). A body that does not begin with "<?xm" loses its first four
    // bytes. Answers the number of bytes placed, or 0.
    int nReadXML(char* buffer, int size);
    // Frees the tables of every record and forgets the records.
    void vFreeMem();

    // The text of the last failure (nullptr when none was recorded).
    const char* getLastError() const { return m_pLastError; }

    // Codes of a picture width (720 1, 1280 3, 1440 4, 1920 7) and height
    // (480 1, 720 4, 1080 7); 0 for any other size.
    static int nWidthCode(quint32 pixels);
    static int nHeightCode(quint32 pixels);

protected:
    // Reads a box header at the current position. skip 0: stands in its body
    // afterwards; otherwise skips the box. 1 when the type matches, 0 when not,
    // -1 when the header can't be read or the skip fails.
    int nCheckBox(const char* type, int skip);
    // Walks forward depth first to the next box of the given type and answers
    // its size (0 when not found). stayAtStart: the file stands at the box's
    // first byte, otherwise in its body.
    quint32 ulSeekBox(const char* type, int stayAtStart);
    quint64 ulSetAVInfo();
    int SetMdhd();
    int SetStts();
    int SetSdtp();
    int SetStsc(int kind);
    int SetStsz(int kind);
    int SetStco(int kind);
    // The audio format code of a sample entry format, 0 when it is none.
    static quint32 ChkAudioTrack(const quint8* format);
    // Frame count of the record of kind from its size table or chunk runs.
    void ulCulcNumOfFrame(int kind);

    quint8 m_bHeaderChecked = 0;
    quint64 m_ullPosition = 0; // offset of the next byte to be read
    CVideoPointerData* m_pVideo = nullptr;
    CAudioPointerData* m_pAudio = nullptr;
    int m_nAudioCount = 0;
    int m_nAudioChannel = 0;
    // Results of blCheckVideo.
    int m_nFrameRate = 0;
    int m_nWidth = 0;
    int m_nHeight = 0;
    int m_nAspect = 0;
    int m_nNtscRate = 0;
    quint32 m_ulMoovSize = 0;
    const char* m_pLastError = nullptr;

private:
    // The record a track of kind is read into; nullptr for another kind.
    CPointerData* record(int kind);
    // Reads count bytes without moving the position account; false on any failure.
    bool bReadRaw(void* buffer, quint32 count);
    // Reads the body of a box whose 8-byte header was just passed (boxSize
    // counts the header) and moves the position account past it. False when
    // the body can't be read or would run past the end of the file.
    bool bReadBody(std::vector<quint8>& body, quint32 boxSize);
    // Reads the 8-byte header of a box that must follow directly.
    int nReadDirectHeader(const char* type, quint32& size, const char* readError, const char* typeError);
    // Moves by count bytes from the current position, where the file and the
    // position account agree; checks the reported position.
    bool bSkip(qint64 count);
};
