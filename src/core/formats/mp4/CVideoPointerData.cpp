#include "core/formats/mp4/CVideoPointerData.h"

#include "core/formats/mp4/CMP4File.h"

int CVideoPointerData::getFPS()
{
    const quint64 r = m_ulSampleDuration == 0 ? 0 : quint64(m_ulTimeScale) * 100 / m_ulSampleDuration;
    int code = 0;
    int ntsc = 0;
    if (r >= 5901 && r <= 5998) {
        code = 14;
        ntsc = 1;
    } else if (r == 5000) {
        code = 12;
    } else if (r >= 2901 && r <= 2998) {
        code = 9;
        ntsc = 1;
    } else if (r == 2500) {
        code = 6;
    } else if (r >= 2491 && r <= 2498) {
        code = 6;
        ntsc = 1;
    } else if (r >= 2301 && r <= 2398) {
        code = 2;
        ntsc = 1;
    }
    m_nFrameRate = code;
    m_nNtscRate = ntsc;
    return code;
}

int CVideoPointerData::getAspect()
{
    const quint64 q = m_ulHeight == 0 ? 0 : quint64(m_ulWidth) * 10 / m_ulHeight;
    m_nAspect = (q >= 12 && q <= 15) ? 2 : (q >= 17 && q <= 18) ? 4 : 0;
    return m_nAspect;
}

int CVideoPointerData::getWidth()
{
    m_nWidth = CMP4File::nWidthCode(m_ulWidth);
    return m_nWidth;
}

int CVideoPointerData::getHeight()
{
    m_nHeight = CMP4File::nHeightCode(m_ulHeight);
    return m_nHeight;
}

int CVideoPointerData::eGOP(quint32 frame) const
{
    if (frame >= m_arrSdtp.size())
        return 3;
    const quint32 d = m_arrSdtp[frame];
    if (d & 0x20)
        return 0;
    if ((d & 0x10) && (d & 0x04))
        return 1;
    if (d == 0x19)
        return 2;
    return 3;
}

quint32 CVideoPointerData::GetSizeV(quint32 frame) const
{
    if (m_ulStszConstant == 0)
        return frame < m_arrStsz.size() ? m_arrStsz[frame] : 0;
    return m_ulStszConstant;
}

quint64 CVideoPointerData::ulGetTopOfPictureOffset(quint32 chunk, quint32 frame) const
{
    if (chunk >= m_arrStco.size())
        return 0;
    return quint64(m_arrStco[chunk]) + GetSizeV(frame);
}

bool CVideoPointerData::GetPresentationFrame(quint32 chunk, quint32 frame, quint32 indexInChunk)
{
    const quint32 n = nGetFrameinBlock(chunk);
    if (chunk >= m_arrStco.size() || indexInChunk >= n || indexInChunk > frame)
        return false;
    const quint32 first = frame - indexInChunk;
    if (quint64(first) + n > m_ulFrameCount)
        return false;
    if (m_arrWorkOffsets.empty() || m_ulWorkChunk != chunk || m_ulWorkFirstFrame != first) {
        m_arrWorkOffsets.resize(n);
        quint64 offset = m_arrStco[chunk];
        for (quint32 i = 0; i < n; ++i) {
            m_arrWorkOffsets[i] = offset;
            offset += GetSizeV(first + i);
        }
        m_ulWorkChunk = chunk;
        m_ulWorkFirstFrame = first;
    }
    // Groups of three stored pictures: anchor, then the two shown before it.
    const quint32 base = indexInChunk / 3 * 3;
    const quint32 groupSize = qMin<quint32>(3, n - base);
    const quint32 p = base + (indexInChunk - base + 1) % groupSize;
    m_ulPresentationIndex = first + p;
    m_ullPictureOffset = m_arrWorkOffsets[p];
    return true;
}
