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
    const std::vector<QString> paths{path, path};

    // Backwards, so that every thumbnail needs a seek of its own.
    for (int64_t frame = 89; frame >= 0; --frame) {
        const Thumbnail thumb(paths, frame);
        ASSERT_EQ(thumb.rc, VV_OK) << "frame " << frame;
        EXPECT_EQ(thumb.counter(), (cardgen::FrameCounterValue{kCounterClip, int(frame % 45)}))
            << "frame " << frame;
    }

    ViewerSession viewer(InitParam().set(InitParam::kPlayInfoInterval, "0"));
    vv_av_info_t info{};
    ASSERT_EQ(viewer.setTake(paths, &info), VV_OK);
    EXPECT_EQ(info.total_frames, 90);
    ASSERT_TRUE(viewer.job([] { return vv_show_frame(42, 0); }));
    // Six steps on over the clip boundary, then fourteen back.
    for (int step = 1; step <= 20; ++step) {
        const int64_t frame = step <= 6 ? 42 + step : 54 - step;
        ASSERT_TRUE(viewer.job(step <= 6 ? vv_plus_one_frame : vv_minus_one_frame));
        EXPECT_EQ(viewer.pictures().back().frame, frame);
        EXPECT_EQ(viewer.pictures().back().counter,
                  (cardgen::FrameCounterValue{kCounterClip, int(frame % 45)}));
    }
}
