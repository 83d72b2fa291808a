#pragma once

#include "media/viewer/VideoClip.h"

#include <memory>
#include <string>
#include <vector>

namespace vv {

// The video of a take: its clips' MP4 files one after the other, with frame
// numbers that continue from clip to clip. Only the clip being decoded holds
// a decoder.
class TakeVideo
{
public:
    static int open(const std::vector<std::string>& paths, VideoClip::Use use,
                    std::unique_ptr<TakeVideo>& out);

    int64_t frameCount() const { return m_frameCount; }
    int clipCount() const { return int(m_clips.size()); }
    const VideoClip& clip(int index) const { return *m_clips[size_t(index)]; }
    AVRational frameRate() const { return m_clips.front()->frameRate(); }
    // The clip that holds a take frame, and where a clip begins in the take.
    int clipOf(int64_t frame) const;
    int64_t clipStart(int index) const { return m_starts[size_t(index)]; }

    // As VideoClip's, in take frames; decode() goes on into the next clip at
    // the end of one (a clip that cannot be decoded further ends early).
    int seek(int64_t frame);
    int decode(AVFrame* out, int64_t& frame);
    int64_t keyFrameAfter(int64_t frame);
    int64_t keyFrameBefore(int64_t frame);

private:
    std::vector<std::unique_ptr<VideoClip>> m_clips;
    std::vector<int64_t> m_starts;
    int64_t m_frameCount = 0;
    int m_current = -1;   // the clip being decoded (-1: none yet)
    bool m_ended = false; // decode() went past the last clip
};

} // namespace vv
