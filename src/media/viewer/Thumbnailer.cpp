#include "media/viewer/Thumbnailer.h"

#include "media/viewer/Bitmap.h"
#include "media/viewer/StatusMark.h"
#include "media/viewer/TakeVideo.h"

#include <algorithm>

namespace vv {

namespace {

constexpr int kErrorPictureHeight = 90;

} // namespace

int Thumbnailer::fromFrame(const AVFrame* frame, FrameConverter& converter, vv_bitmap_t& out)
{
    const AVRational aspect = FrameConverter::displayAspect(frame);
    const int height = std::clamp(int(rescale(kWidth, aspect.den, aspect.num)), 16, 4 * kWidth);
    vv_bitmap_t bitmap{};
    if (const int rc = Bitmap::allocate(kWidth, height, 24, bitmap); rc != VV_OK)
        return rc;
    if (!converter.convert(frame, bitmap.width, bitmap.height, AV_PIX_FMT_BGR24, bitmap.pixels,
                           bitmap.stride)) {
        Bitmap::release(bitmap);
        return VV_ERR_DECODE;
    }
    out = bitmap;
    return VV_OK;
}

int Thumbnailer::make(const std::vector<std::string>& paths, int64_t frame, int icon, vv_bitmap_t& out)
{
    if (icon < VV_ICON_NONE || icon > VV_ICON_ERROR)
        return VV_ERR_PARAM;
    if (icon == VV_ICON_ERROR) {
        vv_bitmap_t bitmap{};
        if (const int rc = Bitmap::allocate(kWidth, kErrorPictureHeight, 24, bitmap); rc != VV_OK)
            return rc;
        StatusMark::drawErrorPicture(bitmap);
        out = bitmap;
        return VV_OK;
    }
    std::unique_ptr<TakeVideo> take;
    if (const int rc = TakeVideo::open(paths, VideoClip::Use::Still, take); rc != VV_OK)
        return rc;
    FramePtr picture = makeFrame();
    if (!picture)
        return VV_ERR_MEMORY;
    int64_t decoded = 0;
    if (const int rc = take->seek(std::clamp<int64_t>(frame, 0, take->frameCount() - 1)); rc != VV_OK)
        return rc;
    if (const int rc = take->decode(picture.get(), decoded); rc != VV_OK)
        return rc == kEnd ? VV_ERR_DECODE : rc;
    FrameConverter converter(SWS_AREA);
    vv_bitmap_t bitmap{};
    if (const int rc = fromFrame(picture.get(), converter, bitmap); rc != VV_OK)
        return rc;
    StatusMark::draw(bitmap, icon);
    out = bitmap;
    return VV_OK;
}

} // namespace vv
