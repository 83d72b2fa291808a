// The reader of the counter drawn into generated pictures never reads a
// counter where there is none (every test that compares pictures relies on it;
// those tests read it back at every size and pixel layout).
#include "support/FrameCounter.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using cardgen::FrameCounter;
using cardgen::FrameCounterValue;

TEST(FrameCounter, RefusesPicturesThatHoldNoCounter)
{
    const int w = 640, h = 360;
    const auto drawn = [&](int clip, int frame) {
        std::vector<uint8_t> plane(size_t(w) * h);
        FrameCounter::draw(plane.data(), w, w, h, clip, frame);
        return plane;
    };
    const auto read = [&](const std::vector<uint8_t>& plane) {
        return FrameCounter::read(plane.data(), w, w, h);
    };
    // An 8 that loses its middle (as in 0) and lower left (as in 9) segments is no digit.
    std::vector<uint8_t> broken = drawn(8888, 88888);
    const std::vector<uint8_t> zero = drawn(8888, 88880), nine = drawn(8888, 88889);
    for (size_t i = 0; i < broken.size(); ++i)
        if (zero[i] == FrameCounter::kPaper || nine[i] == FrameCounter::kPaper)
            broken[i] = FrameCounter::kPaper;
    for (const std::vector<uint8_t>& plane : {std::vector<uint8_t>(size_t(w) * h, FrameCounter::kPaper),
                                              std::vector<uint8_t>(size_t(w) * h, FrameCounter::kInk),
                                              std::vector<uint8_t>(size_t(w) * h, 128), broken})
        EXPECT_FALSE(read(plane).has_value());
    EXPECT_FALSE(FrameCounter::read(broken.data(), 8, 8, 8).has_value()) << "too small to hold digits";
    // What is drawn reads back, numbers wider than their digits by their last digits.
    EXPECT_EQ(read(drawn(9999, 99999)), (FrameCounterValue{9999, 99999}));
    EXPECT_EQ(read(drawn(12345, 123456)), (FrameCounterValue{2345, 23456}));
}

} // namespace
