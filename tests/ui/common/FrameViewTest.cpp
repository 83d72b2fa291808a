#include "ui/common/SCFrameView.h"

#include <QImage>

#include <gtest/gtest.h>

TEST(FrameViewTest, DrawsTheFrameImagesAroundTheGreyContent)
{
    SCFrameView frame;
    frame.resize(120, 80);
    const QImage image = frame.grab().toImage();
    ASSERT_EQ(image.size(), QSize(120, 80));

    const QColor outline(0xa3, 0xa3, 0xa3);
    const QColor grey(243, 243, 243);
    EXPECT_EQ(SCFrameView::backgroundColor(), grey);
    // The edges, drawn from the resource images: outline outside, highlight inside.
    EXPECT_EQ(image.pixelColor(0, 40), outline);
    EXPECT_EQ(image.pixelColor(1, 40), QColor(Qt::white));
    EXPECT_EQ(image.pixelColor(60, 0), outline);
    EXPECT_EQ(image.pixelColor(119, 40), outline);
    EXPECT_EQ(image.pixelColor(60, 79), outline);
    EXPECT_EQ(image.pixelColor(60, 40), grey);
    // A rounded corner leaves its very corner to the window behind it.
    EXPECT_NE(image.pixelColor(0, 0), outline);

    frame.show();
    EXPECT_EQ(frame.contentView()->geometry(), QRect(6, 6, 108, 68));
    EXPECT_EQ(frame.contentView()->palette().color(QPalette::Window), grey);
}
