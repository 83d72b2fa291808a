#pragma once

#include "media/viewer/vv.h"

namespace vv {

// The library's bitmaps (vv_bitmap_t): allocation and BMP files.
class Bitmap
{
public:
    // Fills the record with a new zeroed bitmap; VV_ERR_PARAM or VV_ERR_MEMORY.
    static int allocate(int width, int height, int bitsPerPixel, vv_bitmap_t& out);
    static void release(vv_bitmap_t& bitmap);
    // Writes a Windows BMP file (see vv_bitmap_write).
    static int writeBmp(const char* path, const vv_bitmap_t& bitmap, bool overwrite);
};

} // namespace vv
