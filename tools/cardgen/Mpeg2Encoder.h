#pragma once

#include "cardgen/FrameRate.h"

#include <QByteArray>
#include <QString>

#include <optional>
#include <vector>

namespace cardgen {

struct VideoParams
{
    int width = 1920;
    int height = 1080;
    FrameRate rate;
    int gop = 15;        // frames per GOP, a multiple of 3
    int frames = 30;     // a multiple of 3
    int quantizer = 4;   // fixed MPEG-2 quantiser scale (low bit rate for the plain pictures)
    int counterClip = 0; // the clip number drawn into the pictures
};

struct CodedPicture
{
    QByteArray data;
    char type = 'I'; // 'I', 'P' or 'B'
    int display = 0; // index of the frame in presentation order
};

// A clip's MPEG-2 video laid out as the camera stores it: one chunk per GOP;
// within a chunk the intra picture first, each anchor followed by the two
// bidirectional pictures shown before it (I B B P B B P ...), so a GOP is shown
// as B B I B B P ... The first GOP is closed (its leading pictures need only
// its intra picture); the later ones are open.
struct CodedVideo
{
    VideoParams params;
    std::vector<CodedPicture> pictures; // storage order
    std::vector<int> chunkFrames;       // pictures per chunk

    // The presentation index of the picture stored at position p of a chunk
    // that starts with presentation index first.
    static int displayIndex(int first, int p) { return first + (p % 3 == 0 ? p + 2 : p - 1); }
};

// Encodes the counter pictures of one clip with libavcodec's mpeg2video.
class Mpeg2Encoder
{
public:
    static std::optional<CodedVideo> encode(const VideoParams& params, QString* error);

    // Writes a time code into the GOP header at the start of an intra picture.
    static bool setGopTimeCode(QByteArray& picture, const TimeCode& tc);
};

} // namespace cardgen
