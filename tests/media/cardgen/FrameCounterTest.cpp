// The counter drawn into generated pictures and its reader.
#include "support/FrameCounter.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using cardgen::FrameCounter;
using cardgen::FrameCounterValue;

std::vector<uint8_t> drawn(int w, int h, int clip, int frame)
{
    std::vector<uint8_t> plane(size_t(w) * h);
    FrameCounter::draw(plane.data(), w, w, h, clip, frame);
    return plane;
}

std::optional<FrameCounterValue> read(const std::vector<uint8_t>& plane, int w, int h)
{
    return FrameCounter::read(plane.data(), w, w, h);
}

TEST(FrameCounter, ReadsBackWhatWasDrawnAtEverySize)
{
    const std::vector<std::pair<int, int>> sizes = {{1920, 1080}, {1440, 1080}, {1280, 720},
                                                    {720, 480},   {320, 180},   {160, 90}};
    const std::vector<FrameCounterValue> values = {{0, 0}, {9999, 99999}, {17, 12345}, {600, 80808}};
    for (const auto& [w, h] : sizes) {
        for (const FrameCounterValue& v : values)
            EXPECT_EQ(read(drawn(w, h, v.clip, v.frame), w, h), v) << w << "x" << h;
    }
    // Numbers wider than their digits keep their last digits.
    EXPECT_EQ(read(drawn(320, 180, 12345, 123456), 320, 180), (FrameCounterValue{2345, 23456}));
}

TEST(FrameCounter, RefusesPicturesThatHoldNoCounter)
{
    const int w = 640, h = 360;
    std::vector<uint8_t> white(size_t(w) * h, FrameCounter::kPaper);
    EXPECT_FALSE(read(white, w, h).has_value());
    std::vector<uint8_t> black(size_t(w) * h, FrameCounter::kInk);
    EXPECT_FALSE(read(black, w, h).has_value()) << "an all-black picture must not read as 8888 88888";
    std::vector<uint8_t> grey(size_t(w) * h, 128);
    EXPECT_FALSE(read(grey, w, h).has_value());

    // An 8 that loses its middle and lower left segments is no digit.
    std::vector<uint8_t> picture = drawn(w, h, 8888, 88888);
    const std::vector<uint8_t> zero = drawn(w, h, 8888, 88880); // no middle segment
    const std::vector<uint8_t> nine = drawn(w, h, 8888, 88889); // no lower left segment
    for (size_t i = 0; i < picture.size(); ++i) {
        if (zero[i] == FrameCounter::kPaper || nine[i] == FrameCounter::kPaper)
            picture[i] = FrameCounter::kPaper;
    }
    EXPECT_FALSE(read(picture, w, h).has_value());
    EXPECT_FALSE(FrameCounter::read(picture.data(), 8, 8, 8).has_value()) << "too small to hold digits";
}

TEST(FrameCounter, ReadsPackedPixelsAndScaledImages)
{
    const int w = 1920, h = 1080;
    const std::vector<uint8_t> luma = drawn(w, h, 42, 1234);
    QImage image(w, h, QImage::Format_RGB32);
    for (int y = 0; y < h; ++y) {
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < w; ++x) {
            const int v = luma[size_t(y) * w + x];
            line[x] = qRgb(v, v, v);
        }
    }
    const FrameCounterValue expected{42, 1234};
    EXPECT_EQ(FrameCounter::readPacked(image.constBits(), int(image.bytesPerLine()), w, h, 4), expected);
    const QImage rgb = image.convertToFormat(QImage::Format_RGB888);
    EXPECT_EQ(FrameCounter::readPacked(rgb.constBits(), int(rgb.bytesPerLine()), w, h, 3), expected);
    EXPECT_FALSE(FrameCounter::readPacked(rgb.constBits(), int(rgb.bytesPerLine()), w, h, 1).has_value());
    for (int divisor : {1, 2, 3, 4, 6}) {
        const QImage scaled =
            image.scaled(w / divisor, h / divisor, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        EXPECT_EQ(cwtest::readFrameCounter(scaled), expected) << "1/" << divisor;
    }
    EXPECT_FALSE(cwtest::readFrameCounter(QImage()).has_value());
}

} // namespace
