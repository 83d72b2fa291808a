#pragma once

#include "cardgen/FrameCounter.h"

#include <QImage>

#include <optional>

namespace cwtest {

// Reads the clip number and frame index that cardgen draws into every picture
// from a decoded image of any size (gray, RGB or RGBA formats).
std::optional<cardgen::FrameCounterValue> readFrameCounter(const QImage& image);

} // namespace cwtest
