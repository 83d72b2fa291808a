#include "cardgen/FrameCounter.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <functional>

namespace cardgen {

namespace {

// Segments a..g (top, upper right, lower right, bottom, lower left, upper left,
// middle) lit for each digit.
constexpr std::array<uint8_t, 10> kSegments = {0x3F, 0x06, 0x5B, 0x4F, 0x66, 0x6D, 0x7D, 0x07, 0x7F, 0x6F};

// One row of digits, in thousandths of the picture's width and height.
struct Row
{
    int digits;
    int left;
    int digitWidth;
    int gap;
    int top;
    int bottom;
};

constexpr Row kClipRow{FrameCounter::kClipDigits, 280, 80, 40, 100, 340};
constexpr Row kFrameRow{FrameCounter::kFrameDigits, 75, 130, 50, 430, 900};

// A digit's box in pixels.
struct Box
{
    double x, y, w, h, t; // left, top, width, height, stroke thickness
};

Box digitBox(const Row& row, int index, int width, int height)
{
    const double x = (row.left + index * (row.digitWidth + row.gap)) * width / 1000.0;
    const double w = row.digitWidth * width / 1000.0;
    const double y = row.top * height / 1000.0;
    const double h = (row.bottom - row.top) * height / 1000.0;
    return {x, y, w, h, std::min(w, h / 2) / 4};
}

struct Rect
{
    double x0, y0, x1, y1;
};

std::array<Rect, 7> segmentRects(const Box& b)
{
    const double t = b.t;
    const double midTop = b.y + (b.h - t) / 2;
    return {{
        {b.x, b.y, b.x + b.w, b.y + t},                       // a
        {b.x + b.w - t, b.y, b.x + b.w, b.y + b.h / 2},       // b
        {b.x + b.w - t, b.y + b.h / 2, b.x + b.w, b.y + b.h}, // c
        {b.x, b.y + b.h - t, b.x + b.w, b.y + b.h},           // d
        {b.x, b.y + b.h / 2, b.x + t, b.y + b.h},             // e
        {b.x, b.y, b.x + t, b.y + b.h / 2},                   // f
        {b.x, midTop, b.x + b.w, midTop + t},                 // g
    }};
}

// The middle of each segment, away from the corners it shares with others.
std::array<Rect, 7> segmentProbes(const Box& b)
{
    std::array<Rect, 7> probes{};
    const std::array<Rect, 7> rects = segmentRects(b);
    for (size_t i = 0; i < rects.size(); ++i) {
        const double cx = (rects[i].x0 + rects[i].x1) / 2;
        const double cy = (rects[i].y0 + rects[i].y1) / 2;
        const double r = b.t / 4;
        probes[i] = {cx - r, cy - r, cx + r, cy + r};
    }
    return probes;
}

// The two holes of a digit, which are paper for every digit.
std::array<Rect, 2> holeProbes(const Box& b)
{
    const double cx = b.x + b.w / 2;
    const double r = b.t / 4;
    const double upper = b.y + b.t + (b.h / 2 - 1.5 * b.t) / 2;
    const double lower = b.y + b.h / 2 + b.t / 2 + (b.h / 2 - 1.5 * b.t) / 2;
    return {{{cx - r, upper - r, cx + r, upper + r}, {cx - r, lower - r, cx + r, lower + r}}};
}

void fill(uint8_t* plane, int stride, int width, int height, const Rect& r, uint8_t value)
{
    const int x0 = std::clamp(int(r.x0 + 0.5), 0, width);
    const int x1 = std::clamp(int(r.x1 + 0.5), 0, width);
    const int y0 = std::clamp(int(r.y0 + 0.5), 0, height);
    const int y1 = std::clamp(int(r.y1 + 0.5), 0, height);
    for (int y = y0; y < y1; ++y)
        std::memset(plane + size_t(y) * stride + x0, value, size_t(std::max(0, x1 - x0)));
}

using Sampler = std::function<int(int x, int y)>;

// Mean level over the pixels whose centres lie in the rectangle (at least the
// one pixel under its centre).
double mean(const Sampler& level, int width, int height, const Rect& r)
{
    int x0 = int(r.x0 + 0.5), x1 = int(r.x1 + 0.5), y0 = int(r.y0 + 0.5), y1 = int(r.y1 + 0.5);
    if (x1 <= x0) {
        x0 = int((r.x0 + r.x1) / 2);
        x1 = x0 + 1;
    }
    if (y1 <= y0) {
        y0 = int((r.y0 + r.y1) / 2);
        y1 = y0 + 1;
    }
    x0 = std::clamp(x0, 0, width - 1);
    y0 = std::clamp(y0, 0, height - 1);
    x1 = std::clamp(x1, x0 + 1, width);
    y1 = std::clamp(y1, y0 + 1, height);
    long sum = 0;
    for (int y = y0; y < y1; ++y)
        for (int x = x0; x < x1; ++x)
            sum += level(x, y);
    return double(sum) / ((x1 - x0) * (y1 - y0));
}

std::optional<int> readRow(const Sampler& level, int width, int height, const Row& row)
{
    constexpr double threshold = (FrameCounter::kPaper + FrameCounter::kInk) / 2.0;
    int value = 0;
    for (int i = 0; i < row.digits; ++i) {
        const Box box = digitBox(row, i, width, height);
        for (const Rect& hole : holeProbes(box)) {
            if (mean(level, width, height, hole) < threshold)
                return std::nullopt;
        }
        uint8_t lit = 0;
        const std::array<Rect, 7> probes = segmentProbes(box);
        for (size_t s = 0; s < probes.size(); ++s) {
            if (mean(level, width, height, probes[s]) < threshold)
                lit |= uint8_t(1u << s);
        }
        const auto digit = std::find(kSegments.begin(), kSegments.end(), lit);
        if (digit == kSegments.end())
            return std::nullopt;
        value = value * 10 + int(digit - kSegments.begin());
    }
    return value;
}

void drawRow(uint8_t* plane, int stride, int width, int height, const Row& row, int value)
{
    for (int i = row.digits - 1; i >= 0; --i) {
        const uint8_t lit = kSegments[size_t(value % 10)];
        value /= 10;
        const std::array<Rect, 7> rects = segmentRects(digitBox(row, i, width, height));
        for (size_t s = 0; s < rects.size(); ++s) {
            if (lit & (1u << s))
                fill(plane, stride, width, height, rects[s], FrameCounter::kInk);
        }
    }
}

std::optional<FrameCounterValue> readWith(const Sampler& level, int width, int height)
{
    if (width < 16 || height < 16)
        return std::nullopt;
    const std::optional<int> clip = readRow(level, width, height, kClipRow);
    const std::optional<int> frame = readRow(level, width, height, kFrameRow);
    if (!clip || !frame)
        return std::nullopt;
    return FrameCounterValue{*clip, *frame};
}

int power10(int digits)
{
    int p = 1;
    while (digits-- > 0)
        p *= 10;
    return p;
}

} // namespace

void FrameCounter::draw(uint8_t* plane, int stride, int width, int height, int clip, int frame)
{
    for (int y = 0; y < height; ++y)
        std::memset(plane + size_t(y) * stride, kPaper, size_t(width));
    drawRow(plane, stride, width, height, kClipRow, clip % power10(kClipDigits));
    drawRow(plane, stride, width, height, kFrameRow, frame % power10(kFrameDigits));
}

std::optional<FrameCounterValue> FrameCounter::read(const uint8_t* plane, int stride, int width, int height)
{
    return readWith([&](int x, int y) { return int(plane[size_t(y) * stride + x]); }, width, height);
}

std::optional<FrameCounterValue> FrameCounter::readPacked(const uint8_t* pixels, int stride, int width,
                                                          int height, int bytesPerPixel)
{
    if (bytesPerPixel < 3)
        return std::nullopt;
    return readWith(
        [&](int x, int y) {
            const uint8_t* p = pixels + size_t(y) * stride + size_t(x) * bytesPerPixel;
            return (int(p[0]) + p[1] + p[2]) / 3;
        },
        width, height);
}

} // namespace cardgen
