#include "media/viewer/TakeVideo.h"

#include "media/viewer/vv.h"

#include <algorithm>

namespace vv {

int TakeVideo::open(const std::vector<std::string>& paths, VideoClip::Use use,
                    std::unique_ptr<TakeVideo>& out)
{
    if (paths.empty())
        return VV_ERR_PARAM;
    auto take = std::make_unique<TakeVideo>();
    for (const std::string& path : paths) {
        std::unique_ptr<VideoClip> clip;
        if (const int rc = VideoClip::open(path, use, clip); rc != VV_OK)
            return rc;
        take->m_starts.push_back(take->m_frameCount);
        take->m_frameCount += clip->frameCount();
        take->m_clips.push_back(std::move(clip));
    }
    out = std::move(take);
    return VV_OK;
}

int TakeVideo::clipOf(int64_t frame) const
{
    const auto after = std::upper_bound(m_starts.begin(), m_starts.end(), frame);
    return std::max(0, int(after - m_starts.begin()) - 1);
}

int TakeVideo::seek(int64_t frame)
{
    frame = std::clamp<int64_t>(frame, 0, m_frameCount - 1);
    const int clip = clipOf(frame);
    if (clip != m_current && m_current >= 0)
        m_clips[size_t(m_current)]->release();
    m_current = clip;
    m_ended = false;
    return m_clips[size_t(clip)]->seek(frame - m_starts[size_t(clip)]);
}

int TakeVideo::decode(AVFrame* out, int64_t& frame)
{
    if (m_ended)
        return kEnd;
    if (m_current < 0) {
        if (const int rc = seek(0); rc != VV_OK)
            return rc;
    }
    for (;;) {
        VideoClip& clip = *m_clips[size_t(m_current)];
        int64_t clipFrame = 0;
        const int rc = clip.decode(out, clipFrame);
        if (rc == VV_OK) {
            frame = m_starts[size_t(m_current)] + clipFrame;
            return VV_OK;
        }
        if (rc == VV_ERR_MEMORY)
            return rc;
        // The clip is done (or cannot be decoded further): on to the next one.
        clip.release();
        int next = m_current + 1;
        while (next < clipCount() && m_clips[size_t(next)]->seek(0) != VV_OK)
            ++next;
        if (next >= clipCount()) {
            m_ended = true;
            return kEnd;
        }
        m_current = next;
    }
}

int64_t TakeVideo::keyFrameAfter(int64_t frame)
{
    for (int c = clipOf(std::max<int64_t>(frame, 0)); c < clipCount(); ++c) {
        const int64_t key = m_clips[size_t(c)]->keyFrameAfter(frame - m_starts[size_t(c)]);
        if (key >= 0)
            return m_starts[size_t(c)] + key;
    }
    return -1;
}

int64_t TakeVideo::keyFrameBefore(int64_t frame)
{
    for (int c = clipOf(std::min(frame, m_frameCount - 1)); c >= 0; --c) {
        const int64_t key = m_clips[size_t(c)]->keyFrameBefore(frame - m_starts[size_t(c)]);
        if (key >= 0)
            return m_starts[size_t(c)] + key;
    }
    return -1;
}

} // namespace vv
