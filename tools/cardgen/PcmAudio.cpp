#include "cardgen/PcmAudio.h"

#include <cmath>
#include <numbers>

namespace cardgen {

PcmAudio PcmAudio::make(const FrameRate& rate, const std::vector<int>& chunkFrames, int tracks,
                        int channelsPerTrack)
{
    PcmAudio audio;
    audio.tracks = tracks;
    audio.channelsPerTrack = channelsPerTrack;
    int64_t frame = 0;
    for (int n : chunkFrames) {
        audio.chunkSamples.push_back(
            int(rate.audioSamplesBefore(frame + n) - rate.audioSamplesBefore(frame)));
        frame += n;
    }
    audio.chunks.resize(size_t(tracks));
    for (int t = 0; t < tracks; ++t) {
        int64_t sample = 0;
        for (int count : audio.chunkSamples) {
            QByteArray chunk;
            chunk.reserve(count * audio.bytesPerSample());
            for (int i = 0; i < count; ++i, ++sample) {
                for (int c = 0; c < channelsPerTrack; ++c) {
                    const int channel = t * channelsPerTrack + c + 1;
                    const double phase =
                        2 * std::numbers::pi * 1000.0 * channel * double(sample) / kSampleRate;
                    const auto v = int16_t(std::lround(8000 * std::sin(phase)));
                    chunk.append(char(uint16_t(v) >> 8));
                    chunk.append(char(uint16_t(v) & 0xFF));
                }
            }
            audio.chunks[size_t(t)].push_back(std::move(chunk));
        }
    }
    return audio;
}

} // namespace cardgen
