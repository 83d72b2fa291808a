// The reader of the counter drawn into generated pictures never reads a
// counter where there is none (every test that compares pictures relies on it;
// those tests read it back at every size and pixel layout).
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
    // What is drawn reads back, numbers wider than their digits by their last digits.
    EXPECT_EQ(read(drawn(w, h, 9999, 99999), w, h), (FrameCounterValue{9999, 99999}));
    EXPECT_EQ(read(drawn(w, h, 12345, 123456), w, h), (FrameCounterValue{2345, 23456}));
}

} // namespace
