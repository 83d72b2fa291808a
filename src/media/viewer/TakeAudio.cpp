#include "media/viewer/TakeAudio.h"

#include "media/viewer/TakeVideo.h"
#include "media/viewer/vv.h"

#include <algorithm>

namespace vv {

namespace {

int64_t samplesOfFrames(int64_t frames, AVRational rate)
{
    return rescale(frames, int64_t(AudioClip::kRate) * rate.den, rate.num);
}

} // namespace

int TakeAudio::open(const TakeVideo& video, std::unique_ptr<TakeAudio>& out)
{
    out.reset();
    auto take = std::make_unique<TakeAudio>();
    take->m_rate = video.frameRate();
    for (int c = 0; c < video.clipCount(); ++c) {
        const int64_t length = samplesOfFrames(video.clip(c).frameCount(), take->m_rate);
        std::unique_ptr<AudioClip> clip;
        // A clip whose sound cannot be read plays silent; its pictures matter more.
        AudioClip::open(video.clip(c).path(), length, clip);
        if (c == 0 && !clip)
            return VV_OK;
        if (c == 0)
            take->m_channels = clip->channels();
        take->m_clips.push_back(std::move(clip));
        take->m_lengths.push_back(length);
        take->m_frameStarts.push_back(video.clipStart(c));
    }
    out = std::move(take);
    return VV_OK;
}

int TakeAudio::seek(int64_t frame)
{
    const auto after = std::upper_bound(m_frameStarts.begin(), m_frameStarts.end(), frame);
    m_current = size_t(std::max<ptrdiff_t>(0, after - m_frameStarts.begin() - 1));
    m_position = std::clamp<int64_t>(samplesOfFrames(frame - m_frameStarts[m_current], m_rate), 0,
                                     m_lengths[m_current]);
    if (AudioClip* clip = m_clips[m_current].get())
        return clip->seek(m_position);
    return VV_OK;
}

int TakeAudio::read(int16_t* samples, int count, int choice)
{
    m_first.resize(size_t(count));
    m_second.resize(size_t(count));
    int done = 0;
    while (done < count && m_current < m_clips.size()) {
        const int64_t left = m_lengths[m_current] - m_position;
        if (left <= 0) {
            if (++m_current < m_clips.size()) {
                m_position = 0;
                if (m_clips[m_current])
                    m_clips[m_current]->seek(0);
            }
            continue;
        }
        const int want = int(std::min<int64_t>(count - done, left));
        if (AudioClip* clip = m_clips[m_current].get()) {
            // The clip gives exactly its length (silence where its sound ends early).
            if (const int rc = clip->read(m_first.data() + done, m_second.data() + done, want); rc < 0)
                return rc;
        } else {
            std::fill(m_first.begin() + done, m_first.begin() + done + want, int16_t(0));
            std::fill(m_second.begin() + done, m_second.begin() + done + want, int16_t(0));
        }
        done += want;
        m_position += want;
    }
    for (int i = 0; i < done; ++i) {
        const int16_t first = m_first[size_t(i)], second = m_second[size_t(i)];
        samples[2 * i] = choice == VV_AUDIO_R ? second : first;
        samples[2 * i + 1] = choice == VV_AUDIO_L ? first : second;
    }
    return done;
}

} // namespace vv
