#include "core/formats/mp4/CAudioPointerData.h"

quint64 CAudioPointerData::GetSizeA(quint32 chunk, quint32 bytesPerSample) const
{
    return quint64(nGetFrameinBlock(chunk)) * bytesPerSample;
}

qint64 CAudioPointerData::GetOffsetA(quint32 chunk, quint64 reference) const
{
    if (chunk >= m_arrStco.size())
        return 0;
    return qint64(m_arrStco[chunk]) - qint64(reference);
}
