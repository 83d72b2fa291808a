#include "support/FrameCounter.h"

namespace cwtest {

std::optional<cardgen::FrameCounterValue> readFrameCounter(const QImage& image)
{
    if (image.isNull())
        return std::nullopt;
    const QImage gray = image.convertToFormat(QImage::Format_Grayscale8);
    return cardgen::FrameCounter::read(gray.constBits(), int(gray.bytesPerLine()), gray.width(),
                                       gray.height());
}

} // namespace cwtest
