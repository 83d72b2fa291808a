#pragma once

#include "media/mpeg2ts/mpeg2ts.h"
#include "media/viewer/FFmpegUtil.h"
#include "media/viewer/Log.h"

#include <atomic>
#include <cstdint>
#include <string>
#include <vector>

namespace mpeg2ts {

// Answer of TakeConverter::convert besides the MPEG2TS_ERR_ codes.
constexpr int kCancelled = -1;

// Frame count -> GOP time_code bits (drop flag, hours, minutes, marker,
// seconds, pictures: the 25 bits as they stand in the header, shifted to the
// top of a 32-bit word). fps is the frame rate rounded (24, 25, 30, 50, 60);
// at 50 and 60 the time code counts pairs of frames.
uint32_t gopTimeCode(int64_t frames, int fps, bool dropFrame);

// The 188-byte transport packet carrying the convert parameters in a private
// section (PID MPEG2TS_INFO_PID, table MPEG2TS_INFO_TABLE_ID).
std::vector<uint8_t> infoPacket(const mpeg2ts_convert_params_t& params);

// Converts the MP4 files of one take into one transport stream file.
class TakeConverter
{
public:
    TakeConverter(vv::Log& log, const std::atomic<bool>& cancel, IMpeg2TSCallback* callback);
    ~TakeConverter();

    // MPEG2TS_ERR_NONE, an MPEG2TS_ERR_ code or kCancelled. Nothing is left
    // at the output path unless it answers MPEG2TS_ERR_NONE.
    int convert(const std::vector<std::string>& inputs, const std::string& output,
                const mpeg2ts_convert_params_t& params);

private:
    struct Clip;
    struct Pair;
    struct Channel
    {
        std::vector<int16_t> samples;
        size_t head = 0;
        size_t size() const { return samples.size() - head; }
    };

    int openClips(const std::vector<std::string>& inputs);
    int openOutput(const std::string& path);
    int writeInfo(const mpeg2ts_convert_params_t& params);
    int copyClip(Clip& clip);
    int writeVideo(Clip& clip, AVPacket* packet);
    int decodeAudio(Clip& clip, int track, const AVPacket* packet);
    // Pads or trims the sound to the video's end so far.
    void alignAudio();
    // Encodes every whole frame of sound; at the end the rest, padded.
    int encodeAudio(bool end);
    int writeEncoded(Pair& pair, const AVFrame* frame);
    int finish();
    void reportProgress();
    void log(int level, const std::string& text) { m_log.write(level, "[ConvertMPEG2TS] " + text); }

    vv::Log& m_log;
    const std::atomic<bool>& m_cancel;
    IMpeg2TSCallback* m_callback;

    std::vector<Clip> m_clips;
    int m_channelCount = 0;
    int m_fps = 0;
    bool m_dropFrame = false;
    int64_t m_startFrames = 0;

    struct OutputCloser
    {
        void operator()(AVFormatContext* f) const;
    };
    std::unique_ptr<AVFormatContext, OutputCloser> m_output;
    int m_fd = -1;
    int m_writeErrno = 0;
    AVStream* m_videoOut = nullptr;
    std::vector<Pair> m_pairs;
    std::vector<Channel> m_channels;

    int64_t m_framesDone = 0;  // video frames of the clips before the current one
    int64_t m_framesTotal = 0; // of the take
    int64_t m_packetsWritten = 0;
    int64_t m_lastDts = INT64_MIN;
    int m_lastPercent = -1;
};

} // namespace mpeg2ts
