#pragma once

#include "media/viewer/FFmpegUtil.h"

#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <vector>

namespace vv {

// The video track of one MP4 file, decoded frame-accurately in presentation
// order. Frames are numbered from 0 in presentation order; the clip's frames
// are its video samples that lie wholly inside the file.
//
// Positioning uses the demuxer's sample index: seek() goes to the last key
// frame (intra picture) shown at or before the target, so that the leading
// B pictures of an open GOP still get their reference from the GOP before,
// and decode() then drops the pictures before the target. Where each key frame
// is shown is estimated from its decoding time plus the composition offset of
// the first one, and corrected whenever a seek lands on it.
class VideoClip
{
public:
    // Frame threads for playback (throughput); slice threads and reduced
    // size for still pictures (thumbnails: the picture comes out sooner).
    enum class Use
    {
        Playback,
        Still
    };

    static int open(const std::string& path, Use use, std::unique_ptr<VideoClip>& out);

    int64_t frameCount() const { return m_frameCount; }
    // Frames per second, as the sample index spaces them; the take clock and
    // the length of the clip's sound follow it.
    AVRational frameRate() const { return m_rate; }
    int width() const;
    int height() const;
    const std::string& path() const { return m_path; }

    // After seek(frame), decode() answers that frame first (or the first one
    // after it that can be decoded).
    int seek(int64_t frame);
    // The next frame in presentation order: VV_OK with its number, kEnd after
    // the last one, or a VV_ERR_ code.
    int decode(AVFrame* out, int64_t& frame);
    // Frees the decoder and buffered packets (the index stays).
    void release();

    // The first key frame shown after frame, or -1; the last one shown before
    // frame, or -1.
    int64_t keyFrameAfter(int64_t frame);
    int64_t keyFrameBefore(int64_t frame);

private:
    struct Key
    {
        int64_t dts;   // decoding time stamp, as the index gives it
        int64_t frame; // where it is shown (estimate until a seek landed on it)
    };

    VideoClip() = default;
    int probe();
    int openDecoder();
    // The next video packet: a kept one first, else from the file.
    int readPacket(PacketPtr& out);
    int readFromFile(PacketPtr& out);
    int64_t frameOf(int64_t pts) const;
    size_t keyAtOrBefore(int64_t frame) const;

    std::string m_path;
    Use m_use = Use::Playback;
    FormatPtr m_format;
    AVStream* m_stream = nullptr;
    CodecPtr m_decoder;
    int64_t m_frameCount = 0;
    AVRational m_rate{0, 1};
    int64_t m_frameDuration = 1; // in the stream's time base
    std::vector<Key> m_keys;

    bool m_probed = false;
    int64_t m_origin = 0;    // time stamp of frame 0
    int64_t m_keyOffset = 0; // composition offset of a key frame (pts - dts)

    std::deque<PacketPtr> m_pending; // read but not yet sent to the decoder
    bool m_inputEnded = false;       // the decoder was told the input ended
    int64_t m_target = 0;            // frames before it are dropped
    int64_t m_lastOut = -1;
};

} // namespace vv
