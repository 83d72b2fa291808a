#pragma once

#include "cardgen/FrameRate.h"

#include <QByteArray>

#include <vector>

namespace cardgen {

// The PCM sound of a clip: 48 kHz, 16-bit big-endian ("twos"), one or more
// tracks of one or two channels, a steady sine tone per channel (channel n of
// the clip, counted from 1 over all tracks, sounds at n kHz). The samples are
// cut into one chunk per video chunk.
struct PcmAudio
{
    static constexpr int kSampleRate = 48000;

    int tracks = 0;
    int channelsPerTrack = 2;
    std::vector<std::vector<QByteArray>> chunks; // [track][chunk]
    std::vector<int> chunkSamples;               // samples per chunk, the same for every track

    static PcmAudio make(const FrameRate& rate, const std::vector<int>& chunkFrames, int tracks,
                         int channelsPerTrack);
    int bytesPerSample() const { return 2 * channelsPerTrack; }
};

} // namespace cardgen
