#pragma once

#include "cardgen/FrameCounter.h"

#include <QString>

#include <optional>
#include <vector>

// What FFmpeg (libavformat + libavcodec), an independent reader, makes of a
// cardgen MP4 file.
struct FfmpegProbe
{
    bool opened = false;
    QString videoCodec;
    int width = 0;
    int height = 0;
    int frameRateNum = 0;
    int frameRateDen = 0;
    long long streamFrames = 0; // frame count the container announces
    int decodedFrames = 0;
    int interlacedFrames = 0;
    // Per decoded frame, in output order: the counter read from its luma.
    std::vector<std::optional<cardgen::FrameCounterValue>> counters;

    struct Audio
    {
        QString codec;
        int sampleRate = 0;
        int channels = 0;
        long long samples = 0;
        std::vector<long long> zeroCrossings; // per channel
    };
    std::vector<Audio> audio;

    static FfmpegProbe run(const QString& path);
};
