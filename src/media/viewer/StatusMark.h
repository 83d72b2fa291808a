#pragma once

#include "media/viewer/vv.h"

namespace vv {

// Draws the status marks of thumbnails: a round coloured badge with a white
// rim and a white symbol, anti-aliased, drawn with pixel code so that no
// image files are needed.
class StatusMark
{
public:
    // Draws the mark of icon (VV_ICON_OK ... VV_ICON_MEDIA_SPANNING) into the
    // top left corner of a 24- or 32-bit bitmap; VV_ICON_NONE draws nothing.
    static void draw(vv_bitmap_t& bitmap, int icon);
    // Fills the bitmap with the error picture: grey with a large red badge
    // holding a white cross.
    static void drawErrorPicture(vv_bitmap_t& bitmap);
    // The badge's diameter in a bitmap of this height.
    static int badgeSize(int height);
};

} // namespace vv
