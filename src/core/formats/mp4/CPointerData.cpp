#include "core/formats/mp4/CPointerData.h"

quint32 CPointerData::ulRunOfChunk(quint32 chunk) const
{
    // A search for a later chunk passes every run that the search for an
    // earlier chunk passed, so it may start where that one stopped.
    quint32 run = chunk >= m_ulRunCacheChunk ? m_ulRunCacheRun : 0;
    while (run + 1 < m_arrStsc.size() && quint64(chunk) + 1 >= m_arrStsc[run + 1].ulFirstChunk)
        ++run;
    m_ulRunCacheChunk = chunk;
    m_ulRunCacheRun = run;
    return run;
}

quint32 CPointerData::nGetFrameinBlock(quint32 chunk) const
{
    if (m_arrStsc.empty())
        return 0;
    return m_arrStsc[ulRunOfChunk(chunk)].ulSamplesPerChunk;
}

void CPointerData::vSetRuns(quint32 boxSize, std::vector<ChunkRun> runs)
{
    m_ulStscSize = boxSize;
    m_arrStsc = std::move(runs);
    m_ulRunCacheChunk = 0;
    m_ulRunCacheRun = 0;
}
