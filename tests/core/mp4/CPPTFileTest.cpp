#include "Mp4TestSupport.h"
#include "support/TestEnvironment.h"

using cwtest::be32;
using cwtest::Mp4Builder;
using cwtest::Mp4Track;

TEST_F(Mp4Test, ChunksOfOtherLengthsRotateEachGroupOfThree)
{
    // Stored I B B P / I B B P B, one chunk each.
    Mp4Builder b;
    Mp4Track video;
    const QByteArray start = cwtest::mpeg2SequenceStart(1920, 1080, 3, 4, false);
    video.addVideoChunk({3000, 100, 101, 2000},
                        QByteArray() + cwtest::kDepI + cwtest::kDepB + cwtest::kDepB + cwtest::kDepP, start);
    video.addVideoChunk({3001, 102, 103, 2001, 104}, QByteArray() + cwtest::kDepI + cwtest::kDepB +
                                                         cwtest::kDepB + cwtest::kDepP + cwtest::kDepB);
    b.tracks << video;
    const QByteArray mp4 = write(b.boxes());
    const QByteArray ppnPath = write(QByteArray(), "clip.PPN");
    CCreatePPT ppt;
    ASSERT_EQ(ppt.StartConvert(mp4.constData(), ppnPath.constData()), 1) << ppt.getErrorText();
    const QByteArray ppn = cwtest::readFile(path("clip.PPN"));
    ASSERT_EQ(ppn.size(), 32 + 9 * 16);
    QList<quint32> sizes;
    for (int i = 0; i < 9; ++i)
        sizes << (quint32(quint8(ppn[32 + i * 16 + 1])) << 8 | quint8(ppn[32 + i * 16 + 2]));
    EXPECT_EQ(sizes, (QList<quint32>{100, 101, 3000, 2000, 102, 103, 3001, 104, 2001}));
}

TEST_F(Mp4Test, PointerTableRefusalsLeaveTheirTexts)
{
    const QByteArray mp4 = write(cameraFile().boxes());
    const QByteArray ppn = write(QByteArray(), "clip.PPN");
    const QByteArray missing = local(path("none"));
    CCreatePPT ppt;
    EXPECT_EQ(ppt.StartConvert(missing.constData(), ppn.constData()), 0);
    EXPECT_STREQ(ppt.getErrorText(), "MP4 File Open Error");
    EXPECT_EQ(ppt.StartConvert(mp4.constData(), missing.constData()), 0);
    EXPECT_STREQ(ppt.getErrorText(), "PPT File Open Error");
    EXPECT_FALSE(QFileInfo::exists(path("none")));

    const QByteArray notMp4 = write(QByteArray("not an mp4 file at all"), "x.MP4");
    EXPECT_EQ(ppt.StartConvert(notMp4.constData(), ppn.constData()), 0);
    EXPECT_STREQ(ppt.getErrorText(), "MP4 File Read Header Error");

    QList<cwtest::Mp4Box> boxes = cameraFile().boxes();
    // A chunk run promising more frames than the sizes give.
    boxes[2].find("trak:0/mdia/minf/stbl/stsc")->body.replace(12, 4, be32(7));
    EXPECT_EQ(ppt.StartConvert(write(boxes, "v.MP4").constData(), ppn.constData()), 0);
    EXPECT_STREQ(ppt.getErrorText(), "MP4 File Moov Read Error");

    // Without a video track only success is answered; nothing is written.
    Mp4Builder audioOnly;
    audioOnly.tracks << Mp4Builder::audioTrack("twos", 2, {1601});
    EXPECT_EQ(ppt.StartConvert(write(audioOnly.boxes(), "a.MP4").constData(), ppn.constData()), 1);
    EXPECT_EQ(QFileInfo(path("clip.PPN")).size(), 0);
}
