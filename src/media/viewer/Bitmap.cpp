#include "media/viewer/Bitmap.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include <unistd.h>

namespace vv {

namespace {

void put16(std::vector<uint8_t>& out, uint32_t v)
{
    out.push_back(uint8_t(v));
    out.push_back(uint8_t(v >> 8));
}

void put32(std::vector<uint8_t>& out, uint32_t v)
{
    put16(out, v & 0xFFFF);
    put16(out, v >> 16);
}

constexpr uint32_t kFileHeaderSize = 14;
constexpr uint32_t kInfoHeaderSize = 40;
constexpr uint32_t kPixelsPerMetre = 2835; // 72 dots per inch

bool valid(const vv_bitmap_t& b)
{
    return b.pixels && b.width > 0 && b.height > 0 && (b.bits_per_pixel == 24 || b.bits_per_pixel == 32) &&
           b.stride >= b.width * (b.bits_per_pixel / 8);
}

} // namespace

int Bitmap::allocate(int width, int height, int bitsPerPixel, vv_bitmap_t& out)
{
    if (width <= 0 || height <= 0 || (bitsPerPixel != 24 && bitsPerPixel != 32))
        return VV_ERR_PARAM;
    const int stride = (width * (bitsPerPixel / 8) + 3) & ~3;
    auto* pixels = static_cast<uint8_t*>(std::calloc(size_t(stride) * size_t(height), 1));
    if (!pixels)
        return VV_ERR_MEMORY;
    out = vv_bitmap_t{width, height, bitsPerPixel, stride, pixels};
    return VV_OK;
}

void Bitmap::release(vv_bitmap_t& bitmap)
{
    std::free(bitmap.pixels);
    bitmap = vv_bitmap_t{0, 0, 0, 0, nullptr};
}

int Bitmap::writeBmp(const char* path, const vv_bitmap_t& bitmap, bool overwrite)
{
    if (!path || !*path || !valid(bitmap))
        return VV_ERR_PARAM;
    const uint32_t bytes = uint32_t(bitmap.bits_per_pixel / 8);
    const uint32_t rowSize = (uint32_t(bitmap.width) * bytes + 3) & ~3u;
    const uint32_t imageSize = rowSize * uint32_t(bitmap.height);
    std::vector<uint8_t> data;
    data.reserve(kFileHeaderSize + kInfoHeaderSize + imageSize);
    // BITMAPFILEHEADER
    data.push_back('B');
    data.push_back('M');
    put32(data, kFileHeaderSize + kInfoHeaderSize + imageSize);
    put32(data, 0);
    put32(data, kFileHeaderSize + kInfoHeaderSize);
    // BITMAPINFOHEADER: a positive height means bottom-up rows; BI_RGB.
    put32(data, kInfoHeaderSize);
    put32(data, uint32_t(bitmap.width));
    put32(data, uint32_t(bitmap.height));
    put16(data, 1);
    put16(data, uint32_t(bitmap.bits_per_pixel));
    put32(data, 0);
    put32(data, imageSize);
    put32(data, kPixelsPerMetre);
    put32(data, kPixelsPerMetre);
    put32(data, 0);
    put32(data, 0);
    for (int y = bitmap.height - 1; y >= 0; --y) {
        const uint8_t* row = bitmap.pixels + size_t(y) * size_t(bitmap.stride);
        data.insert(data.end(), row, row + size_t(bitmap.width) * bytes);
        data.resize(data.size() + (rowSize - uint32_t(bitmap.width) * bytes), 0);
    }

    // Written beside the target and moved over it, so no half file is ever seen.
    static std::atomic<unsigned> counter{0};
    const std::string temp =
        std::string(path) + ".tmp" + std::to_string(getpid()) + "_" + std::to_string(counter.fetch_add(1));
    FILE* file = std::fopen(temp.c_str(), "wb");
    if (!file)
        return VV_ERR_WRITE;
    const bool written = std::fwrite(data.data(), 1, data.size(), file) == data.size();
    const bool closed = std::fclose(file) == 0;
    bool placed = false;
    if (written && closed) {
        if (overwrite) {
            placed = std::rename(temp.c_str(), path) == 0;
        } else {
            // link() refuses an existing target, unlike rename().
            placed = link(temp.c_str(), path) == 0;
        }
    }
    if (!placed || !overwrite)
        unlink(temp.c_str());
    return placed ? VV_OK : VV_ERR_WRITE;
}

} // namespace vv
