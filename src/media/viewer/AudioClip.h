#pragma once

#include "media/viewer/FFmpegUtil.h"

#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <vector>

namespace vv {

// The sound of one MP4 file as its first two channels at 48 kHz (the first
// channel twice when there is only one). The channels of all audio tracks
// count, in track order, so a camera file with one mono track per channel
// gives its first two tracks. The clip's length is set by its video: missing
// sound is silence, sound beyond the video is cut.
class AudioClip
{
public:
    static constexpr int kRate = 48000;

    // VV_OK with out null when the file has no sound it can decode.
    static int open(const std::string& path, int64_t length, std::unique_ptr<AudioClip>& out);

    int channels() const { return m_channels; }
    // Goes to a sample frame of the clip.
    int seek(int64_t sample);
    // Reads up to count sample frames of the two channels: answers the number
    // read, 0 at the end of the clip.
    int read(int16_t* first, int16_t* second, int count);

private:
    struct Track
    {
        AVStream* stream = nullptr;
        CodecPtr decoder;
        SwrPtr resampler;
        int used = 1;                // channels taken from this track (1 or 2)
        std::deque<int16_t> fifo[2]; // decoded samples of those channels
        int64_t position = 0;        // sample frame of the fifo's front
        bool ended = false;
    };

    AudioClip() = default;
    int pump();
    void append(Track& track, const AVFrame* frame);
    int16_t take(int channel);

    FormatPtr m_format;
    std::vector<std::unique_ptr<Track>> m_tracks;
    int m_channels = 0;
    int64_t m_length = 0;
    int64_t m_position = 0;
    std::vector<int16_t> m_convertBuffer;
};

} // namespace vv
