#include "core/metadata/BLBIMCtrl.h"
#include "support/Mp4Builder.h"
#include "support/TestEnvironment.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

using cwtest::Mp4Builder;
using cwtest::mpeg2SequenceStart;

namespace {

class BIMCtrlTest : public cwtest::HomeTest
{
protected:
    QString write(const Mp4Builder& b, const QString& name = "clip.MP4")
    {
        const QString path = m_dir.filePath(name);
        EXPECT_TRUE(b.write(path));
        return path;
    }
    QTemporaryDir m_dir;
};

struct Facts
{
    quint32 duration, frameCount;
    QString tcFps, videoCodec, formatFps, pixel, lines, aspect;
    bool stereo;
    int channels;
    QString audioCodec;
    bool operator==(const Facts&) const = default;
};

std::ostream& operator<<(std::ostream& os, const Facts& f)
{
    return os << f.duration << " " << f.frameCount << " " << f.tcFps.toStdString() << " "
              << f.videoCodec.toStdString() << " " << f.formatFps.toStdString() << " "
              << f.pixel.toStdString() << "x" << f.lines.toStdString() << " " << f.aspect.toStdString()
              << " stereo " << f.stereo << " " << f.channels << " " << f.audioCodec.toStdString();
}

Facts facts(const BLBIMCtrl& bim)
{
    return {bim.getDuration(),  bim.getFrameCount(),   bim.gettcFps(),         bim.getVideoCodec(),
            bim.getFormatFps(), bim.getPixel(),        bim.getNumOfVertical(), bim.getARatio(),
            bim.getPort(),      bim.getAudioChannel(), bim.getAudioCodec()};
}

} // namespace

TEST_F(BIMCtrlTest, PreImportKeepsWhatTheCheckerLearntOfEachFile)
{
    struct Case
    {
        const char* name;
        Mp4Builder file;
        Facts expected;
    };
    std::vector<Case> cases;

    Mp4Builder hd; // 1920x1080 59.94i, 12 frames, one stereo 16-bit track
    hd.tracks << Mp4Builder::videoTrack({"IBBPBB", "IBBPBB"});
    hd.tracks << Mp4Builder::audioTrack("twos", 2, {1601, 1602});
    cases.push_back(
        {"hd",
         hd,
         {12, 11, "30", "MPEG2HD35_1920_1080_MP@HL", "59.94i", "1920", "1080", "16:9", true, 2, "LPCM16"}});

    Mp4Builder wide; // 1440x1080 4:3 50i at 25 Mbps, one frame, a mono 24-bit track
    wide.tracks << Mp4Builder::videoTrack({"I"}, 3000, mpeg2SequenceStart(1440, 1080, 2, 3, false));
    wide.tracks[0].maxBitrate = 25000000;
    wide.tracks << Mp4Builder::audioTrack("in24", 1, {1920});
    cases.push_back(
        {"wide",
         wide,
         {1, 0, "25", "MPEG2HD25CBR_1440_1080_MP@H-14", "50i", "1440", "1080", "4:3", false, 1, "LPCM24"}});

    Mp4Builder odd; // 23.98p at a size and aspect the camera does not know, no sound
    odd.tracks << Mp4Builder::videoTrack({"IBB"}, 3000, mpeg2SequenceStart(704, 576, 4, 1, true));
    cases.push_back(
        {"odd",
         odd,
         {3, 2, "24", "MPEG2HD35_-_-_MP@HL", "23.98p", "----", "----", "...", false, 0, "-----"}});

    Mp4Builder many; // 720p 59.94p with a stereo and a mono track: three channels
    many.tracks << Mp4Builder::videoTrack({"IBBPBB"}, 3000, mpeg2SequenceStart(1280, 720, 3, 7, true));
    many.tracks << Mp4Builder::audioTrack("twos", 2, {1601});
    many.tracks << Mp4Builder::audioTrack("in32", 1, {1601});
    cases.push_back(
        {"many",
         many,
         {6, 5, "30", "MPEG2HD35_1280_720_MP@HL", "59.94p", "1280", "720", "16:9", true, 3, "LPCM16"}});

    BLBIMCtrl* bim = BLBIMCtrl::sharedCtrl();
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        ASSERT_TRUE(bim->preImportMP4(write(c.file, QString(c.name) + ".MP4")));
        EXPECT_EQ(facts(*bim), c.expected);
    }

    // A file the checker refuses leaves the facts of the last file.
    const Facts before = facts(*bim);
    Mp4Builder noVideo;
    noVideo.tracks << Mp4Builder::audioTrack("twos", 2, {1601});
    EXPECT_FALSE(bim->preImportMP4(write(noVideo, "audio.MP4")));
    EXPECT_FALSE(bim->preImportMP4(m_dir.filePath("missing.MP4")));
    const QString text = m_dir.filePath("text.MP4");
    ASSERT_TRUE(Mp4Builder::write(text, QByteArray("not an MP4 file at all")));
    EXPECT_FALSE(bim->preImportMP4(text));
    EXPECT_EQ(facts(*bim), before);
}

TEST_F(BIMCtrlTest, EmbeddedDocumentIsKeptOnlyWhenTheFileHasOne)
{
    const QByteArray document = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<NonRealTimeMeta/>\n";
    Mp4Builder with;
    with.tracks << Mp4Builder::videoTrack({"IBBPBB"});
    with.xmlBody = QByteArray(4, '\0') + document + '\0'; // version bytes, then a terminated string
    Mp4Builder without;
    without.tracks << Mp4Builder::videoTrack({"IBBPBB"});
    Mp4Builder empty = with; // a document of no bytes: only the terminator
    empty.xmlBody = QByteArray(4, '\0') + '\0';

    BLBIMCtrl* bim = BLBIMCtrl::sharedCtrl();
    ASSERT_TRUE(bim->checkNonMetaExist(write(with, "with.MP4")));
    EXPECT_EQ(bim->getNonMetaData(), document);
    EXPECT_EQ(bim->getDuration(), 0u) << "the document check learns nothing else";

    EXPECT_FALSE(bim->checkNonMetaExist(write(without, "without.MP4")));
    EXPECT_TRUE(bim->getNonMetaData().isEmpty()) << "no document of an earlier file is left";
    ASSERT_TRUE(bim->checkNonMetaExist(m_dir.filePath("with.MP4")));
    EXPECT_FALSE(bim->checkNonMetaExist(write(empty, "empty.MP4")));
    EXPECT_FALSE(bim->checkNonMetaExist(m_dir.filePath("missing.MP4")));
    EXPECT_TRUE(bim->getNonMetaData().isEmpty());
}

TEST_F(BIMCtrlTest, OneSharedInstanceUntilReleased)
{
    BLBIMCtrl* bim = BLBIMCtrl::sharedCtrl();
    EXPECT_EQ(BLBIMCtrl::sharedCtrl(), bim);
    bim->setDuration(42);
    bim->setVideoCodec("X");
    bim->setNonMetaData("<x/>");
    EXPECT_EQ(BLBIMCtrl::sharedCtrl()->getDuration(), 42u);
    BLBIMCtrl::releaseCtrl();
    BLBIMCtrl* fresh = BLBIMCtrl::sharedCtrl();
    EXPECT_EQ(fresh->getDuration(), 0u);
    EXPECT_TRUE(fresh->getVideoCodec().isEmpty());
    EXPECT_TRUE(fresh->getNonMetaData().isEmpty());
}
