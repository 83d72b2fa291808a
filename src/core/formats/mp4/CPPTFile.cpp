#include "core/formats/mp4/CPPTFile.h"

#include "core/formats/mp4/CAudioPointerData.h"
#include "core/formats/mp4/CVideoPointerData.h"

namespace {
// The table gives an audio chunk's size as its samples times four bytes.
constexpr quint32 kAudioBytesPerSample = 4;
} // namespace

void CPPTFile::InitPPT()
{
    m_arrHeader.assign(kHeaderSize, 0);
    m_arrEntry.clear();
}

int CPPTFile::SetData(CVideoPointerData* video, CAudioPointerData* audio)
{
    m_pVideo = video;
    m_pAudio = audio;
    if (m_arrHeader.size() != kHeaderSize)
        InitPPT();
    blMakePPTHeader();
    if (!m_pVideo->m_bPresent)
        return 1;
    // Every frame has a dependency byte, which bounds the table by the MP4's size.
    if (m_pVideo->m_ulFrameCount > m_pVideo->m_arrSdtp.size())
        return 0;
    m_arrEntry.assign(size_t(m_pVideo->m_ulFrameCount) * kEntrySize, 0);
    if (!blCreatePointer())
        return 0;
    return WriteData(m_pVideo->m_ulFrameCount) ? 1 : -1;
}

int CPPTFile::blMakePPTHeader()
{
    quint8* h = m_arrHeader.data();
    const int fps = m_pVideo->getFPS();
    const int aspect = m_pVideo->getAspect();
    const int width = m_pVideo->getWidth();
    const int height = m_pVideo->getHeight();
    h[0] = 0x01;
    h[1] = 0x50;
    h[7] = quint8((fps & 0x1F) << 3 | (aspect & 0x07));
    h[8] = quint8((width & 0x0F) << 4 | (height & 0x0F));
    h[9] = 0x20;
    h[10] = 0x51;
    h[11] = 0x10;
    h[12] = quint8((m_pVideo->getDrop() & 0x0F) << 4 | 0x0F);
    h[13] = h[14] = h[15] = 0xFF;
    h[22] = h[23] = h[24] = 0xFF;
    return 1;
}

int CPPTFile::blCreatePointer()
{
    CVideoPointerData& video = *m_pVideo;
    const quint32 frames = video.m_ulFrameCount;
    const quint32 audioChunks = (m_pAudio && m_pAudio->m_bPresent) ? m_pAudio->m_ulChunkCount : 0;
    quint32 f = 0; // frame number in storage order
    quint32 a = 0; // audio chunk number
    for (quint32 j = 0; j < video.m_ulChunkCount; ++j) {
        const quint32 n = video.nGetFrameinBlock(j);
        if (quint64(f) + n > frames)
            return 0;
        const quint64 top = video.ulGetTopOfPictureOffset(j, f);
        for (quint32 k = 0; k < n; ++k, ++f) {
            if (!video.GetPresentationFrame(j, f, k))
                return 0;
            const quint32 shown = video.m_ulPresentationIndex;
            const quint32 size = video.GetSizeV(shown);
            const quint32 offset = quint32(video.GetOffsetV());
            quint8* e = m_arrEntry.data() + size_t(f) * kEntrySize;
            e[0] = quint8((k == 0 ? 0x80 : 0) | (video.eGOP(shown) & 0x03) << 5 | ((size >> 16) & 0x1F));
            e[1] = quint8(size >> 8);
            e[2] = quint8(size);
            e[4] = quint8(offset >> 24);
            e[5] = quint8(offset >> 16);
            e[6] = quint8(offset >> 8);
            e[7] = quint8(offset);
            if (k == 0 && a < audioChunks) {
                const quint32 audioSize = quint32(m_pAudio->GetSizeA(a, kAudioBytesPerSample));
                const quint32 relative = quint32(m_pAudio->GetOffsetA(a, top));
                e[10] = quint8(0xC0 | ((audioSize >> 16) & 0x1F));
                e[11] = quint8(audioSize >> 8);
                e[12] = quint8(audioSize);
                e[13] = quint8(relative >> 16);
                e[14] = quint8(relative >> 8);
                e[15] = quint8(relative);
                ++a;
            } else {
                e[10] = 0x40;
            }
        }
    }
    return f == frames ? 1 : 0;
}

int CPPTFile::WriteData(quint32 count)
{
    const size_t entryBytes = size_t(count) * kEntrySize;
    if (entryBytes > m_arrEntry.size())
        return 0;
    if (Write(m_arrHeader.data(), kHeaderSize) != quint32(kHeaderSize))
        return 0;
    const quint8* p = m_arrEntry.data();
    size_t left = entryBytes;
    while (left > 0) {
        const quint32 chunk = quint32(qMin<size_t>(left, 1u << 30));
        if (Write(p, chunk) != chunk)
            return 0;
        p += chunk;
        left -= chunk;
    }
    return 1;
}
