// MP4 files not laid out as the camera does (written by libavformat: an edit
// list, a first GOP without leading pictures, the last sample's duration
// missing from the track's) are positioned frame-accurately too.
#include "support/ForeignMp4.h"
#include "ViewerSession.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace vvtest;

namespace {

constexpr int kCounterClip = 7;

} // namespace

TEST(ForeignMp4, EveryFrameIsFoundAndStepsAreExact)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("FOREIGN.MP4"));
    ASSERT_TRUE(cwtest::writeForeignMp4(path.toStdString(), 45, kCounterClip));
    const QByteArray utf8 = path.toUtf8();
    const char* paths[] = {utf8.constData(), utf8.constData()};

    // Backwards, so that every thumbnail needs a seek of its own.
    for (int64_t frame = 89; frame >= 0; --frame) {
        vv_bitmap_t bitmap{};
        ASSERT_EQ(vv_get_thumbnail(paths, 2, frame, VV_ICON_NONE, &bitmap), VV_OK) << "frame " << frame;
        EXPECT_EQ(readCounter(bitmap), (cardgen::FrameCounterValue{kCounterClip, int(frame % 45)}))
            << "frame " << frame;
        vv_bitmap_free(&bitmap);
    }

    ViewerSession viewer(InitParam().set(InitParam::kPlayInfoInterval, "0"));
    vv_av_info_t info{};
    ASSERT_EQ(vv_set_av_info(paths, 2, &info), VV_OK);
    EXPECT_EQ(info.total_frames, 90);
    EXPECT_EQ(info.frame_rate_num, 30000);
    EXPECT_EQ(info.frame_rate_den, 1001);
    ASSERT_TRUE(viewer.job([] { return vv_show_frame(42, 0); }));
    for (int64_t frame = 43; frame <= 48; ++frame) {
        ASSERT_TRUE(viewer.job(vv_plus_one_frame));
        EXPECT_EQ(viewer.pictures().back().frame, frame);
        EXPECT_EQ(viewer.pictures().back().counter,
                  (cardgen::FrameCounterValue{kCounterClip, int(frame % 45)}));
    }
    for (int64_t frame = 47; frame >= 34; --frame) {
        ASSERT_TRUE(viewer.job(vv_minus_one_frame));
        EXPECT_EQ(viewer.pictures().back().frame, frame);
        EXPECT_EQ(viewer.pictures().back().counter,
                  (cardgen::FrameCounterValue{kCounterClip, int(frame % 45)}));
    }
}
