#pragma once

#include "media/viewer/AudioClip.h"

#include <memory>
#include <string>
#include <vector>

namespace vv {

class TakeVideo;

// The sound of a take as interleaved stereo at 48 kHz, clip after clip; each
// clip lasts exactly as long as its video, so sound and pictures stay together
// across clip boundaries.
class TakeAudio
{
public:
    // VV_OK with out null when the take's first clip has no sound.
    static int open(const TakeVideo& video, std::unique_ptr<TakeAudio>& out);

    int channels() const { return m_channels; }
    // Goes to the sound of a take frame.
    int seek(int64_t frame);
    // Reads up to count stereo sample frames into samples (2 * count values)
    // with the channel choice (VV_AUDIO_L, VV_AUDIO_R, VV_AUDIO_BOTH); answers
    // the number read, 0 at the end of the take.
    int read(int16_t* samples, int count, int choice);

private:
    std::vector<std::unique_ptr<AudioClip>> m_clips; // null: a clip without sound
    std::vector<int64_t> m_lengths;                  // sample frames per clip
    std::vector<int64_t> m_frameStarts;
    AVRational m_rate{0, 1};
    int m_channels = 0;
    size_t m_current = 0;
    int64_t m_position = 0; // within the current clip
    std::vector<int16_t> m_first, m_second;
};

} // namespace vv
