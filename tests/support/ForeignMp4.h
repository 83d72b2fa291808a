#pragma once

#include <string>

namespace cwtest {

// Codes 320 x 180 pictures showing cardgen's frame counter of the clip
// number with libavcodec's MPEG-2 encoder (open GOPs of 12 with two B
// pictures) into an MP4 file written by libavformat's own muxer, laid out as
// that muxer does, not as the camera does.
bool writeForeignMp4(const std::string& path, int frames, int counterClip);

} // namespace cwtest
