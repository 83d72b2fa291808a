#include "core/formats/mp4/CCreatePPT.h"

namespace {

const char kErrSystem[] = "blCheckMP4() System error";
const char kErrNoXml[] = "blCheckMP4() No XML Data";
const char kErrXml[] = "blCheckMP4() XML Data Error";
const char kErrOpen[] = "MP4 File Open Error";
const char kErrPptOpen[] = "PPT File Open Error";
const char kErrHeader[] = "MP4 File Read Header Error";
const char kErrMoov[] = "MP4 File Seek to Moov Error";
const char kErrMoovRead[] = "MP4 File Moov Read Error";
const char kErrPptWrite[] = "PPT File Write Error";

} // namespace

int CCreatePPT::nOpenAndCheck(const char* path)
{
    if (m_bChecked) {
        m_pErrorText = kErrSystem;
        return 0;
    }
    m_pErrorText = nullptr;
    if (!Open(path, kModeRead)) {
        m_pErrorText = kErrOpen;
        return 0;
    }
    const char* error = nullptr;
    if (!ulCheckHeader()) {
        error = kErrHeader;
    } else if (!ulSeekToMoov()) {
        error = kErrMoov;
    } else if (!ulReadMoov(&m_VideoData, m_AudioData)) {
        // A track that fails without a text of its own.
        error = getLastError() ? getLastError() : kErrMoovRead;
    } else if (!blCheckVideo()) {
        error = getLastError();
    }
    if (error) {
        m_pErrorText = error;
        Close();
        vFreeMem();
        return 0;
    }
    m_bChecked = 1;
    return 1;
}

int CCreatePPT::blCheckMP4(const char* path)
{
    if (!nOpenAndCheck(path))
        return 0;
    Close();
    return 1;
}

int CCreatePPT::blCheckMP4(const char* path, const char*& xml, int& length)
{
    xml = nullptr;
    length = 0;
    if (!nOpenAndCheck(path))
        return 0;
    const int size = nGetXMLDataSize();
    if (size == 0) {
        m_pErrorText = kErrNoXml;
    } else {
        m_arrXml.assign(size_t(size) + 1, 0);
        const int read = nReadXML(m_arrXml.data(), size);
        if (read == 0) {
            m_arrXml.clear();
            m_pErrorText = kErrXml;
        } else {
            xml = m_arrXml.data();
            length = read - 1;
        }
    }
    Close();
    return 1;
}

void CCreatePPT::CloseCheckMP4()
{
    m_arrXml.clear();
    m_arrXml.shrink_to_fit();
    vFreeMem();
    m_nFrameRate = m_nWidth = m_nHeight = m_nAspect = m_nNtscRate = 0;
    m_nAudioChannel = 0;
    m_bChecked = 0;
}

int CCreatePPT::StartConvert(const char* mp4Path, const char* ppnPath)
{
    // The records belong to a check in progress.
    if (m_bChecked) {
        m_pErrorText = kErrSystem;
        return 0;
    }
    m_pErrorText = nullptr;
    if (!Open(mp4Path, kModeRead)) {
        m_pErrorText = kErrOpen;
        return 0;
    }
    if (!m_PPTFile.Open(ppnPath, kModeWrite)) {
        m_pErrorText = kErrPptOpen;
        Close();
        return 0;
    }
    if (!ulCheckHeader()) {
        m_pErrorText = kErrHeader;
    } else if (!ulSeekToMoov()) {
        m_pErrorText = kErrMoov;
    } else if (!ulReadMoov(&m_VideoData, m_AudioData)) {
        m_pErrorText = kErrMoovRead;
    } else {
        m_PPTFile.InitPPT();
        const int done = m_PPTFile.SetData(&m_VideoData, &m_AudioData[0]);
        if (done == 0)
            m_pErrorText = kErrMoovRead;
        else if (done < 0)
            m_pErrorText = kErrPptWrite;
    }
    const bool ok = m_pErrorText == nullptr;
    if (m_PPTFile.Close() == 0 && ok)
        m_pErrorText = kErrPptWrite;
    Close();
    vFreeMem();
    return m_pErrorText == nullptr ? 1 : 0;
}

int CCreatePPT::nGetFps() const
{
    switch (m_nFrameRate) {
    case 2:
    case 15:
    case 18:
    case 19:
        return 24;
    case 6:
    case 7:
    case 12:
    case 20:
        return 25;
    default:
        return 30;
    }
}

quint32 CCreatePPT::getAudioESObjectID(int stream) const
{
    if (stream < 0 || stream >= kMaxAudioTracks)
        return 0;
    return m_AudioData[stream].m_ulFormat;
}

int CCreatePPT::getVideoFormatXMLParam(QString& text) const
{
    if (!m_bChecked)
        return 0;
    const int mbps = nMbps();
    const bool cbr = mbps == 25;
    const quint32 object = m_VideoData.m_ulFormat;
    QString s;
    if (object == 97 || object == 100)
        s = QString::asprintf(cbr ? "MPEG2HD%02dCBR_" : "MPEG2HD%02d_", mbps);
    else if (object == 96)
        s = QString::asprintf(cbr ? "MPEG2%02dCBR_" : "MPEG2%02d_", mbps);
    else
        s = QString::asprintf("UN%02dMbps", mbps);
    switch (m_nWidth) {
    case 0:
        s += "-_";
        break;
    case 1:
        s += "720_";
        break;
    case 3:
        s += "1280_";
        break;
    case 4:
        s += "1440_";
        break;
    case 7:
        s += "1920_";
        break;
    }
    switch (m_nHeight) {
    case 0:
        s += "-";
        break;
    case 1:
        s += "480";
        break;
    case 4:
        s += "720";
        break;
    case 7:
        s += "1080";
        break;
    }
    s += cbr ? "_MP@H-14" : "_MP@HL";
    text = s;
    return 1;
}

int CCreatePPT::getVideoFormatStr(QString& text) const
{
    if (!m_bChecked)
        return 0;
    const quint32 object = m_VideoData.m_ulFormat;
    const char* format = (object == 97 || object == 100) ? "MPEG-2 HD%02dMbps"
                         : object == 96                  ? "MPEG-2 %02dMbps"
                                                         : "Unknown %02dMbps";
    text = QString::asprintf(format, nMbps());
    return 1;
}

int CCreatePPT::getVideoSizeStr(QString& text) const
{
    if (!m_bChecked)
        return 0;
    QString s;
    switch (m_nWidth) {
    case 0:
        s = "---- X ";
        break;
    case 1:
        s = " 720 X";
        break;
    case 3:
        s = "1280 X";
        break;
    case 4:
        s = "1440 X";
        break;
    case 7:
        s = "1920 X";
        break;
    }
    switch (m_nHeight) {
    case 1:
        s += " 480";
        break;
    case 4:
        s += " 720";
        break;
    case 7:
        s += " 1080";
        break;
    default:
        s += "---- ";
        break;
    }
    s += m_nAspect == 0 ? " -:-" : m_nAspect == 2 ? " 4:3" : " 16:9";
    text = s;
    return 1;
}

int CCreatePPT::getVideoFPSStr(QString& text) const
{
    if (!m_bChecked)
        return 0;
    switch (m_nFrameRate) {
    case 2:
    case 18:
        text = "23.98p";
        break;
    case 6:
        text = "25p";
        break;
    case 7:
        text = "50i";
        break;
    case 8:
        text = "29.97p";
        break;
    case 9:
        text = "59.94i";
        break;
    case 12:
        text = "50p";
        break;
    case 14:
        text = "59.94p";
        break;
    case 15:
        text = "24p";
        break;
    case 16:
        text = "30p";
        break;
    case 17:
        text = "60p";
        break;
    case 19:
        text = "24i";
        break;
    case 20:
        text = "25i";
        break;
    case 21:
        text = "29.97i";
        break;
    case 22:
        text = "30i";
        break;
    case 23:
        text = "60i";
        break;
    default:
        text = "--.--";
        break;
    }
    return 1;
}

int CCreatePPT::getAudioFormatStr(int stream, QString& text) const
{
    if (!m_bChecked)
        return 0;
    switch (getAudioESObjectID(stream)) {
    case 260:
        text = "LPCM16";
        break;
    case 261:
        text = "LPCM24";
        break;
    case 262:
        text = "LPCM32";
        break;
    case 226:
        text = "DOLBY AC3";
        break;
    case 224:
        text = "PCM16 LE";
        break;
    case 192:
        text = "PRIVATE";
        break;
    case 64:
        text = "MPEG4";
        break;
    default:
        text = "-----";
        break;
    }
    return 1;
}

int CCreatePPT::getAudioChannelStr(QString& text) const
{
    if (!m_bChecked)
        return 0;
    text = QString::asprintf("%dCH", m_nAudioChannel);
    return 1;
}

int CCreatePPT::getWidth(QString& text) const
{
    if (!m_bChecked)
        return 0;
    switch (m_nWidth) {
    case 0:
        text = "----";
        break;
    case 1:
        text = "720";
        break;
    case 3:
        text = "1280";
        break;
    case 4:
        text = "1440";
        break;
    case 7:
        text = "1920";
        break;
    }
    return 1;
}

int CCreatePPT::getHeight(QString& text) const
{
    if (!m_bChecked)
        return 0;
    switch (m_nHeight) {
    case 0:
        text = "----";
        break;
    case 1:
        text = "480";
        break;
    case 4:
        text = "720";
        break;
    case 7:
        text = "1080";
        break;
    }
    return 1;
}
