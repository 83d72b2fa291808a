#include "media/MediaVersion.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libswresample/swresample.h>
#include <libswscale/swscale.h>
}

std::string clipwrightMediaVersions()
{
    return std::string("avformat ") + AV_STRINGIFY(LIBAVFORMAT_VERSION) + ", avcodec " +
           AV_STRINGIFY(LIBAVCODEC_VERSION) + ", swscale " + AV_STRINGIFY(LIBSWSCALE_VERSION) +
           ", swresample " + AV_STRINGIFY(LIBSWRESAMPLE_VERSION) + "; runtime avformat " +
           std::to_string(avformat_version()) + ", avcodec " + std::to_string(avcodec_version()) +
           ", swscale " + std::to_string(swscale_version()) + ", swresample " +
           std::to_string(swresample_version());
}
