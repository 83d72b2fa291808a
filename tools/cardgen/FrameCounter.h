#pragma once

#include <cstdint>
#include <optional>

namespace cardgen {

// The numbers drawn into every generated picture: the clip's number on the card
// (four digits) above the frame's index within the clip (five digits), as large
// black seven-segment digits on a white picture. Their places are fixed
// fractions of the picture, so a decoded picture scaled to any size (keeping
// its aspect) can be read back; the digits stay legible at a quarter of a
// 1920 x 1080 picture after MPEG-2 coding.
struct FrameCounterValue
{
    int clip = 0;
    int frame = 0;
    bool operator==(const FrameCounterValue&) const = default;
};

class FrameCounter
{
public:
    static constexpr int kClipDigits = 4;
    static constexpr int kFrameDigits = 5;
    static constexpr uint8_t kPaper = 235; // video white
    static constexpr uint8_t kInk = 16;    // video black

    // Fills an 8-bit luma plane with the paper and draws the two numbers
    // (each taken modulo its digit count).
    static void draw(uint8_t* plane, int stride, int width, int height, int clip, int frame);

    // Reads the numbers back from an 8-bit gray (luma) plane; nullopt when any
    // digit is not a clean seven-segment digit on white paper.
    static std::optional<FrameCounterValue> read(const uint8_t* plane, int stride, int width, int height);
    // The same for packed pixels of bytesPerPixel bytes (RGB, BGR, RGBA, ...):
    // the picture is gray, so the mean of the first three bytes is its level.
    static std::optional<FrameCounterValue> readPacked(const uint8_t* pixels, int stride, int width,
                                                       int height, int bytesPerPixel);
};

} // namespace cardgen
