#pragma once

#include <QtGlobal>

// A thin file object over the POSIX file service: open an existing regular
// file by path, read, write, seek with 64-bit positions, ask the length.
class CFileM
{
public:
    // Modes for Open.
    static constexpr int kModeRead = 5;
    static constexpr int kModeWrite = 14;
    // Origins for Seek.
    static constexpr int kSeekStart = 32;
    static constexpr int kSeekEnd = 48;
    static constexpr int kSeekCurrent = 16;

    CFileM() = default;
    ~CFileM();
    CFileM(const CFileM&) = delete;
    CFileM& operator=(const CFileM&) = delete;

    // Opens an existing regular file (never creates one); bit 1 of mode opens
    // it for writing too. Closes any file open before. 1 on success, else 0.
    virtual int Open(const char* path, int mode);
    // 1 when no file was open or closing succeeded, else 0. No file is open afterwards.
    virtual int Close();
    // Reads exactly count bytes at the current position and answers count (0
    // when no file is open). Throws CFileException on a failure of the file
    // service and when the file ends first.
    virtual quint32 Read(void* buffer, quint32 count);
    // Writes at the current position; answers the number of bytes written.
    virtual quint32 Write(const void* buffer, quint32 count);
    // Moves to offset counted from the start (kSeekStart), the end (kSeekEnd)
    // or the current position (any other mode). A move before the start or
    // past the end of the file is refused. Answers the new position, 0 when refused.
    virtual quint64 Seek(qint64 offset, int mode);
    // The file length in bytes; 0 when no file is open or it can't be had.
    virtual quint64 GetLength();

    bool isOpen() const { return m_nFileRef >= 0; }

private:
    int m_nFileRef = -1; // descriptor of the open file, -1 when none
};
