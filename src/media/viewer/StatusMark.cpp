#include "media/viewer/StatusMark.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

namespace vv {

namespace {

struct Colour
{
    uint8_t r, g, b;
};

struct Point
{
    double x, y;
};

// A symbol: strokes between points of the unit disc (y downwards); a stroke
// from a point to itself is a dot.
struct Stroke
{
    Point from, to;
};

constexpr Colour kWhite{255, 255, 255};
constexpr double kStrokeWidth = 0.2; // in badge radii

const std::vector<Stroke> kTick = {{{-0.5, 0.02}, {-0.15, 0.38}}, {{-0.15, 0.38}, {0.5, -0.38}}};
const std::vector<Stroke> kImport = {{{0, -0.62}, {0, 0.18}},     {{-0.3, -0.12}, {0, 0.18}},
                                     {{0.3, -0.12}, {0, 0.18}},   {{-0.52, 0.22}, {-0.52, 0.5}},
                                     {{-0.52, 0.5}, {0.52, 0.5}}, {{0.52, 0.5}, {0.52, 0.22}}};
const std::vector<Stroke> kExclamation = {{{0, -0.58}, {0, 0.12}}, {{0, 0.48}, {0, 0.48}}};
const std::vector<Stroke> kDoubleArrow = {{{-0.58, 0}, {0.58, 0}},
                                          {{-0.58, 0}, {-0.3, -0.28}},
                                          {{-0.58, 0}, {-0.3, 0.28}},
                                          {{0.58, 0}, {0.3, -0.28}},
                                          {{0.58, 0}, {0.3, 0.28}}};
const std::vector<Stroke> kCross = {{{-0.42, -0.42}, {0.42, 0.42}}, {{-0.42, 0.42}, {0.42, -0.42}}};

struct Mark
{
    Colour colour;
    const std::vector<Stroke>* symbol;
};

const Mark* markOf(int icon)
{
    static const Mark ok{{40, 160, 64}, &kTick};
    static const Mark imported{{30, 110, 220}, &kImport};
    static const Mark notImported{{230, 145, 20}, &kExclamation};
    static const Mark spanning{{140, 70, 200}, &kDoubleArrow};
    static const Mark error{{205, 35, 35}, &kCross};
    switch (icon) {
    case VV_ICON_OK:
        return &ok;
    case VV_ICON_MP4_IMPORTED:
        return &imported;
    case VV_ICON_MP4_NOT_IMPORTED:
        return &notImported;
    case VV_ICON_MEDIA_SPANNING:
        return &spanning;
    case VV_ICON_ERROR:
        return &error;
    default:
        return nullptr;
    }
}

double distanceToStroke(Point p, const Stroke& s)
{
    const double dx = s.to.x - s.from.x, dy = s.to.y - s.from.y;
    const double length2 = dx * dx + dy * dy;
    double t = length2 > 0 ? ((p.x - s.from.x) * dx + (p.y - s.from.y) * dy) / length2 : 0;
    t = std::clamp(t, 0.0, 1.0);
    return std::hypot(p.x - (s.from.x + t * dx), p.y - (s.from.y + t * dy));
}

// The badge's colour at a point given in badge radii from its centre, or
// nothing outside it.
bool badgeColour(const Mark& mark, Point p, double rimWidth, Colour& out)
{
    const double r = std::hypot(p.x, p.y);
    if (r > 1)
        return false;
    if (r > 1 - rimWidth) {
        out = kWhite;
        return true;
    }
    for (const Stroke& stroke : *mark.symbol) {
        if (distanceToStroke(p, stroke) <= kStrokeWidth / 2) {
            out = kWhite;
            return true;
        }
    }
    out = mark.colour;
    return true;
}

// Draws a badge of the given diameter with its top left corner at (left, top),
// four by four samples a pixel.
void drawBadge(vv_bitmap_t& bitmap, const Mark& mark, int left, int top, int diameter)
{
    constexpr int kSamples = 4;
    const int bytes = bitmap.bits_per_pixel / 8;
    const double radius = diameter / 2.0;
    const double rimWidth = std::min(0.3, 1.2 / radius);
    for (int y = std::max(0, top); y < std::min(bitmap.height, top + diameter); ++y) {
        uint8_t* row = bitmap.pixels + size_t(y) * size_t(bitmap.stride);
        for (int x = std::max(0, left); x < std::min(bitmap.width, left + diameter); ++x) {
            double sum[3] = {0, 0, 0};
            int covered = 0;
            for (int sy = 0; sy < kSamples; ++sy) {
                for (int sx = 0; sx < kSamples; ++sx) {
                    const Point p{(x - left + (sx + 0.5) / kSamples - radius) / radius,
                                  (y - top + (sy + 0.5) / kSamples - radius) / radius};
                    Colour c{};
                    if (!badgeColour(mark, p, rimWidth, c))
                        continue;
                    sum[0] += c.b;
                    sum[1] += c.g;
                    sum[2] += c.r;
                    ++covered;
                }
            }
            if (covered == 0)
                continue;
            uint8_t* pixel = row + size_t(x) * size_t(bytes);
            constexpr int kAll = kSamples * kSamples;
            for (int i = 0; i < 3; ++i)
                pixel[i] = uint8_t(std::lround((sum[i] + pixel[i] * double(kAll - covered)) / kAll));
        }
    }
}

} // namespace

int StatusMark::badgeSize(int height)
{
    return std::max(12, int(std::lround(height * 0.22)));
}

void StatusMark::draw(vv_bitmap_t& bitmap, int icon)
{
    const Mark* mark = markOf(icon);
    if (!mark || !bitmap.pixels)
        return;
    const int margin = std::max(2, bitmap.height / 30);
    drawBadge(bitmap, *mark, margin, margin, badgeSize(bitmap.height));
}

void StatusMark::drawErrorPicture(vv_bitmap_t& bitmap)
{
    if (!bitmap.pixels)
        return;
    const int bytes = bitmap.bits_per_pixel / 8;
    for (int y = 0; y < bitmap.height; ++y) {
        uint8_t* row = bitmap.pixels + size_t(y) * size_t(bitmap.stride);
        for (int x = 0; x < bitmap.width; ++x) {
            uint8_t* pixel = row + size_t(x) * size_t(bytes);
            std::memset(pixel, 64, 3);
            if (bytes == 4)
                pixel[3] = 255;
        }
    }
    const int diameter = bitmap.height * 6 / 10;
    drawBadge(bitmap, *markOf(VV_ICON_ERROR), (bitmap.width - diameter) / 2, (bitmap.height - diameter) / 2,
              diameter);
}

} // namespace vv
