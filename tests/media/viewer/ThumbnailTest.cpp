// Thumbnails: the exact frame of a take and the status marks.
#include "ViewerSession.h"

#include <gtest/gtest.h>

using namespace vvtest;

namespace {

const uint8_t* pixelAt(const vv_bitmap_t& b, int x, int y)
{
    return b.pixels + size_t(y) * size_t(b.stride) + size_t(x) * size_t(b.bits_per_pixel / 8);
}

} // namespace

TEST_F(TwoClipTake, ThumbnailShowsTheFrameAskedFor)
{
    // GOPs are shown as B B I B B P ..., the first of each clip closed, the
    // others open. 0: a leading picture of the first GOP; 2: its intra
    // picture; 15: the first picture shown of an open GOP (needs the GOP
    // before); 17: that GOP's intra picture; 23, 29: inside a GOP, the last of
    // the clip; 30: the second clip's first frame; 50: inside the second
    // clip. Frame numbers outside the take are taken to its ends.
    for (const int64_t frame : {-5, 0, 2, 15, 17, 23, 29, 30, 50, 1000}) {
        const Thumbnail thumb(paths(), frame, VV_ICON_OK);
        ASSERT_EQ(thumb.rc, VV_OK) << "frame " << frame;
        EXPECT_EQ(thumb.counter(), counterOf(take(), std::clamp<int64_t>(frame, 0, 59))) << "frame " << frame;
    }
    // The second clip alone numbers its frames from 0.
    EXPECT_EQ(Thumbnail({paths()[1]}, 20).counter(), counterOf(take(), 50));

    // Thumbnails of large pictures are decoded at a reduced size, exact too.
    cardgen::Options options = tinyTake(1, 18);
    options.size = QStringLiteral("1920x1080");
    options.frameRate = QStringLiteral("59.94i");
    const cwtest::CardFolder card(options);
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    for (const int64_t frame : {0, 2, 7, 15, 17}) {
        const Thumbnail thumb(mp4Paths(card, onlyTake(card)), frame, VV_ICON_OK);
        ASSERT_EQ(thumb.rc, VV_OK) << "frame " << frame;
        EXPECT_EQ(thumb.bitmap.width, 160);
        EXPECT_EQ(thumb.bitmap.height, 90);
        EXPECT_EQ(thumb.counter(), counterOf(onlyTake(card), frame)) << "frame " << frame;
    }
}

TEST_F(TwoClipTake, StatusMarksAreDrawnOnlyInTheirCorner)
{
    const Thumbnail plain(paths(), 30);
    ASSERT_EQ(plain.rc, VV_OK);

    // The badge sits in the top left corner, clear of the counter's digits.
    const int corner = 30;
    std::vector<std::vector<uint8_t>> badges;
    for (const int icon :
         {VV_ICON_OK, VV_ICON_MP4_IMPORTED, VV_ICON_MP4_NOT_IMPORTED, VV_ICON_MEDIA_SPANNING}) {
        const Thumbnail marked(paths(), 30, icon);
        ASSERT_EQ(marked.rc, VV_OK) << "icon " << icon;
        ASSERT_EQ(marked.bitmap.height, plain.bitmap.height);
        int changed = 0;
        std::vector<uint8_t> badge;
        for (int y = 0; y < marked.bitmap.height; ++y) {
            for (int x = 0; x < marked.bitmap.width; ++x) {
                const uint8_t* p = pixelAt(marked.bitmap, x, y);
                const bool same = std::memcmp(p, pixelAt(plain.bitmap, x, y), 3) == 0;
                if (x >= corner || y >= corner) {
                    ASSERT_TRUE(same) << "icon " << icon << " changed pixel " << x << "," << y;
                } else {
                    changed += same ? 0 : 1;
                    badge.insert(badge.end(), p, p + 3);
                }
            }
        }
        EXPECT_GT(changed, 150) << "icon " << icon << " draws no visible mark";
        for (const std::vector<uint8_t>& other : badges)
            EXPECT_NE(badge, other) << "icon " << icon << " looks like another mark";
        badges.push_back(badge);
    }

    // The error mark is a whole picture of its own, made without any file.
    const Thumbnail error({}, 0, VV_ICON_ERROR);
    ASSERT_EQ(error.rc, VV_OK);
    const uint8_t* centre = pixelAt(error.bitmap, 80 - 12, 45);
    EXPECT_GT(centre[2], 150);
    EXPECT_LT(centre[1], 80); // red: the badge, not the grey ground
    EXPECT_EQ(pixelAt(error.bitmap, 2, 2)[0], 64);

    EXPECT_EQ(Thumbnail(paths(), 0, 6).rc, VV_ERR_PARAM);
}
