#pragma once

#include "cardgen/Mpeg2Encoder.h"
#include "cardgen/PcmAudio.h"

#include <QByteArray>
#include <QDateTime>
#include <QString>

#include <optional>
#include <vector>

namespace cardgen {

struct Mp4Options
{
    QDateTime created;
    QByteArray embeddedXml;         // written into moov/udta/meta/"xml " when not empty
    uint32_t maxBitrate = 35000000; // the nominal rate the decoder configuration announces
    bool co64 = false;              // 64-bit chunk offsets instead of stco (damage)
    bool leadingFree = false;       // a "free" box before ftyp (damage)
};

// Where the writer put things: what a picture pointer table describes.
struct Mp4Layout
{
    int width = 0;
    int height = 0;
    int timescale = 0;
    int sampleDelta = 0;
    std::vector<uint32_t> sampleSizes; // video, storage order
    std::vector<char> sampleTypes;     // 'I', 'P', 'B'
    std::vector<int> chunkFrames;
    std::vector<uint64_t> videoChunkOffsets;
    // The first audio track (empty without audio).
    std::vector<uint64_t> audioChunkOffsets;
    std::vector<int> audioChunkSamples;
    qint64 fileSize = 0;
};

// Writes an MP4 file in the camera's layout: ftyp, mdat with one video chunk
// per GOP followed by that GOP's audio chunk of each track, then moov. Each
// track's sample table holds stsd, stts, (video: ctts, stss, sdtp), stsc,
// stsz and stco, with stsz and stco right behind stsc; the video sample entry
// is "mp4v" with an esds whose descriptor lengths are one byte each; audio is
// "twos". All sizes are 32-bit.
class Mp4Writer
{
public:
    static std::optional<Mp4Layout> write(const QString& path, const CodedVideo& video, const PcmAudio& audio,
                                          const Mp4Options& options, QString* error);
};

} // namespace cardgen
