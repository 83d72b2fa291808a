#pragma once

#include <QtGlobal>

#include <vector>

// One entry of a chunk-run table: chunks from ulFirstChunk (1-based) on hold
// ulSamplesPerChunk samples each.
struct ChunkRun
{
    quint32 ulFirstChunk = 0;
    quint32 ulSamplesPerChunk = 0;
    quint32 ulDescriptionIndex = 0;
};

// The sample tables of one track as read from its MP4 boxes.
class CPointerData
{
public:
    // Samples per chunk of the run that holds chunk (counted from 0); 0 without runs.
    quint32 nGetFrameinBlock(quint32 chunk) const;
    // Index of the run that holds chunk: starting at run 0, move on while a
    // next run exists whose first chunk is at most chunk + 1. Without runs 0.
    quint32 ulRunOfChunk(quint32 chunk) const;
    // Whether the size table gives one size per sample (or the size-1 form).
    bool hasSizeTable() const { return m_ulStszConstant <= 1; }
    // Replaces the chunk-run table.
    void vSetRuns(quint32 boxSize, std::vector<ChunkRun> runs);

    quint8 m_bPresent = 0;      // the track was read
    quint32 m_ulChunkCount = 0; // entries of the chunk offset table
    quint32 m_ulFrameCount = 0; // samples of the track

    // chunk-run table ("stsc")
    quint32 m_ulStscSize = 0; // box size
    std::vector<ChunkRun> m_arrStsc;

    // sample size table ("stsz")
    quint32 m_ulStszSize = 0;     // box size
    quint32 m_ulStszConstant = 0; // 0: one size per sample in m_arrStsz; else the size of every sample
    quint32 m_ulStszCount = 0;    // sample count of the box
    std::vector<quint32> m_arrStsz;

    // chunk offset table ("stco")
    quint32 m_ulStcoSize = 0; // box size
    std::vector<quint32> m_arrStco;

    // dependency table ("sdtp", video only): the dependency byte of each sample
    std::vector<quint32> m_arrSdtp;

    // Video: the MPEG-4 object type indication. Audio: 260, 261 or 262.
    quint32 m_ulFormat = 0;

private:
    // The last run search, so that walking the chunks in order stays linear.
    mutable quint32 m_ulRunCacheChunk = 0;
    mutable quint32 m_ulRunCacheRun = 0;
};
