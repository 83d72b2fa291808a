#pragma once

#include "core/formats/mp4/CAudioPointerData.h"
#include "core/formats/mp4/CMP4File.h"
#include "core/formats/mp4/CPPTFile.h"
#include "core/formats/mp4/CVideoPointerData.h"

#include <QString>

#include <vector>

// The MP4 checker: checks that a file is an MP4 of the camera's kind, learns
// its video and audio properties (as codes and display texts), hands out the
// XML document embedded in it, and writes its picture pointer table (.PPN).
//
// One object serves one check: blCheckMP4, the getters, CloseCheckMP4.
// Paths are UTF-8 file-system paths.
class CCreatePPT : public CMP4File
{
public:
    // 1 when the file passed the check, else 0 (getErrorText tells why).
    int blCheckMP4(const char* path);
    // The same check, then the embedded XML: on success xml points at the
    // document (owned by this object until CloseCheckMP4) and length is the
    // count read less one; without a document xml is nullptr and length 0
    // (the check still answers 1, the error text says why).
    int blCheckMP4(const char* path, const char*& xml, int& length);
    // Frees the XML and every table and ends the check; needed before the
    // next check.
    void CloseCheckMP4();
    // Writes the picture pointer table of mp4Path into the existing file
    // ppnPath, from its start. 1 or 0.
    int StartConvert(const char* mp4Path, const char* ppnPath);

    const char* getErrorText() const { return m_pErrorText; }

    // Properties, valid after a successful check.
    quint32 ulGetNumOfFrame() const { return m_VideoData.m_ulFrameCount; }
    // Time-code rate: 24, 25 or 30.
    int nGetFps() const;
    int getFPS() const { return m_nFrameRate; }
    int getWidth() const { return m_nWidth; }
    int getHeight() const { return m_nHeight; }
    int getAspect() const { return m_nAspect; }
    int getDrop() const { return m_nNtscRate; }
    quint32 getMaxBitrate() const { return m_VideoData.m_ulMaxBitrate; }
    int getNumAudioStream() const { return m_nAudioCount; }
    int getAudioChannel() const { return m_nAudioChannel; }
    bool isAudioStereo() const { return m_nAudioChannel > 1; }
    quint32 getVideoESObjectID() const { return m_VideoData.m_ulFormat; }
    quint32 getAudioESObjectID(int stream) const;

    // Display texts. Each answers 0 and leaves text untouched unless a check
    // has succeeded, else 1.
    int getVideoFormatXMLParam(QString& text) const;
    int getVideoFormatStr(QString& text) const;
    int getVideoSizeStr(QString& text) const;
    int getVideoFPSStr(QString& text) const;
    int getAudioFormatStr(int stream, QString& text) const;
    int getAudioChannelStr(QString& text) const;
    int getWidth(QString& text) const;
    int getHeight(QString& text) const;

private:
    // Opens and checks the file, leaving it open on success; on failure the
    // file is closed and the tables freed.
    int nOpenAndCheck(const char* path);
    int nMbps() const { return int(m_VideoData.m_ulMaxBitrate / 1000000); }

    CPPTFile m_PPTFile;
    const char* m_pErrorText = nullptr;
    std::vector<char> m_arrXml;
    quint8 m_bChecked = 0;
    CVideoPointerData m_VideoData;
    CAudioPointerData m_AudioData[kMaxAudioTracks];
};
