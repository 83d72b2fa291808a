#include "core/formats/metadata/BLBIMCtrl.h"
#include "support/Mp4Builder.h"
#include "support/TestEnvironment.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

using cwtest::Mp4Builder;

// What the import learns of an MP4 file; the formats a camera records are
// checked against the card generator elsewhere, these are the edges.
namespace {

class BIMCtrlTest : public cwtest::HomeTest
{
protected:
    QString write(const Mp4Builder& b, const QString& name)
    {
        const QString path = m_dir.filePath(name);
        EXPECT_TRUE(b.write(path));
        return path;
    }
    QTemporaryDir m_dir;
};

QStringList facts(const BLBIMCtrl& bim)
{
    return {QString::number(bim.getDuration()),
            QString::number(bim.getFrameCount()),
            bim.gettcFps(),
            bim.getVideoCodec(),
            bim.getFormatFps(),
            bim.getPixel(),
            bim.getNumOfVertical(),
            bim.getARatio(),
            QString::number(bim.getPort()),
            QString::number(bim.getAudioChannel()),
            bim.getAudioCodec()};
}

} // namespace

TEST_F(BIMCtrlTest, PreImportKeepsWhatTheCheckerLearntUntilAFileIsAccepted)
{
    // 23.98p at a size and aspect the camera does not know, no sound.
    Mp4Builder odd;
    odd.tracks << Mp4Builder::videoTrack({"IBB"}, 3000, cwtest::mpeg2SequenceStart(704, 576, 4, 1, true));
    BLBIMCtrl* bim = BLBIMCtrl::sharedCtrl();
    ASSERT_TRUE(bim->preImportMP4(write(odd, "odd.MP4")));
    const QStringList expected{"3", "2", "24",   "MPEG2HD35_-_-_MP@HL", "23.98p", "----", "----", "...",
                               "0", "0", "-----"};
    EXPECT_EQ(facts(*bim), expected);

    // Files the checker refuses leave the facts of the last file.
    Mp4Builder noVideo;
    noVideo.tracks << Mp4Builder::audioTrack("twos", 2, {1601});
    EXPECT_FALSE(bim->preImportMP4(write(noVideo, "audio.MP4")));
    EXPECT_FALSE(bim->preImportMP4(m_dir.filePath("missing.MP4")));
    const QString text = m_dir.filePath("text.MP4");
    ASSERT_TRUE(Mp4Builder::write(text, QByteArray("not an MP4 file at all")));
    EXPECT_FALSE(bim->preImportMP4(text));
    EXPECT_EQ(facts(*bim), expected);
}
