#include "Mp4TestSupport.h"

using cwtest::be32;
using cwtest::Mp4Builder;
using cwtest::Mp4Track;

namespace {

QByteArray readAll(const QString& path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

QByteArray hex(const char* text) { return QByteArray::fromHex(text); }

// The stored sizes and types of two chunks stored I B B P B B.
const QList<quint32> kSizes[2] = {{5000, 1000, 1100, 3000, 1200, 1300}, {4000, 900, 950, 2000, 800, 850}};

Mp4Builder pointerFile(int audioChunks)
{
    Mp4Builder b;
    Mp4Track video;
    const QByteArray start = cwtest::mpeg2SequenceStart(1920, 1080, 3, 4, false);
    for (int c = 0; c < 2; ++c) {
        QByteArray deps;
        for (char t : QByteArray("IBBPBB"))
            deps += t == 'I' ? cwtest::kDepI : t == 'P' ? cwtest::kDepP : cwtest::kDepB;
        video.addVideoChunk(kSizes[c], deps, c == 0 ? start : QByteArray());
    }
    b.tracks << video;
    QList<quint32> audio = {1601, 1602, 1601};
    b.tracks << Mp4Builder::audioTrack("twos", 2, audio.mid(0, audioChunks));
    return b;
}

} // namespace

TEST_F(Mp4Test, PointerTableListsEveryChunkInPresentationOrder)
{
    const Mp4Builder b = pointerFile(1);
    const QByteArray mp4 = write(b.boxes());
    const QByteArray ppnPath = write(QByteArray(), "clip.PPN");
    CCreatePPT ppt;
    ASSERT_EQ(ppt.StartConvert(mp4.constData(), ppnPath.constData()), 1) << ppt.getErrorText();
    EXPECT_EQ(ppt.getErrorText(), nullptr);
    const QByteArray ppn = readAll(path("clip.PPN"));
    ASSERT_EQ(ppn.size(), 32 + 12 * 16);
    EXPECT_EQ(ppn.left(32), hex("01500000000000" "4C77205110" "1FFFFFFF" "000000000000" "FFFFFF" "00000000000000"));

    // The six frames of a chunk stored I B B P B B are listed in the order of
    // the frames stored at positions 1, 2, 0, 4, 5, 3 (B B I B B P).
    const int order[6] = {1, 2, 0, 4, 5, 3};
    const int types[6] = {0, 2, 2, 1, 2, 2}; // I B B P B B as stored
    const quint32 audioChunk = quint32(b.chunkOffset(1, 0));
    for (int c = 0; c < 2; ++c) {
        const quint32 chunk = quint32(b.chunkOffset(0, c));
        for (int k = 0; k < 6; ++k) {
            SCOPED_TRACE("chunk " + std::to_string(c) + " entry " + std::to_string(k));
            const int p = order[k];
            quint32 before = 0;
            for (int i = 0; i < p; ++i)
                before += kSizes[c][i];
            const QByteArray e = ppn.mid(32 + (c * 6 + k) * 16, 16);
            const quint32 size = kSizes[c][p];
            EXPECT_EQ(quint8(e[0]), (k == 0 ? 0x80 : 0) | types[p] << 5 | (size >> 16));
            EXPECT_EQ(e.mid(1, 3), be32((size & 0xFFFF) << 8).mid(1));
            EXPECT_EQ(e.mid(4, 4), be32(chunk + before));
            EXPECT_EQ(e.mid(8, 2), QByteArray(2, '\0'));
            if (c == 0 && k == 0) {
                // Audio chunk 0: 1601 samples x 4 bytes, placed behind the
                // end of the chunk's first stored picture.
                EXPECT_EQ(e.mid(10), hex("C0") + be32(1601 * 4).mid(2) + be32(audioChunk - (chunk + 5000)).mid(1));
            } else {
                EXPECT_EQ(e.mid(10), hex("400000000000")) << "no audio chunk for this entry";
            }
        }
    }
    // One entry in full: the first B of chunk 0.
    EXPECT_EQ(ppn.mid(32, 16), hex("C003E800") + be32(quint32(b.chunkOffset(0, 0)) + 5000) + hex("0000C01904001DB0"));

    // With an audio chunk for every video chunk the second chunk has one too.
    const Mp4Builder both = pointerFile(2);
    const QByteArray mp4b = write(both.boxes(), "both.MP4");
    ASSERT_EQ(ppt.StartConvert(mp4b.constData(), ppnPath.constData()), 1) << ppt.getErrorText();
    const QByteArray e = readAll(path("clip.PPN")).mid(32 + 6 * 16, 16);
    const quint32 top = quint32(both.chunkOffset(0, 1)) + 4000;
    EXPECT_EQ(e.mid(10), hex("C0") + be32(1602 * 4).mid(2) + be32(quint32(both.chunkOffset(1, 1)) - top).mid(1));
}

TEST_F(Mp4Test, ChunksOfOtherLengthsRotateEachGroupOfThree)
{
    // Stored I B B P / I B B P B, one chunk each.
    Mp4Builder b;
    Mp4Track video;
    const QByteArray start = cwtest::mpeg2SequenceStart(1920, 1080, 3, 4, false);
    video.addVideoChunk({3000, 100, 101, 2000}, QByteArray() + cwtest::kDepI + cwtest::kDepB + cwtest::kDepB +
                                                    cwtest::kDepP, start);
    video.addVideoChunk({3001, 102, 103, 2001, 104}, QByteArray() + cwtest::kDepI + cwtest::kDepB + cwtest::kDepB +
                                                         cwtest::kDepP + cwtest::kDepB);
    b.tracks << video;
    const QByteArray mp4 = write(b.boxes());
    const QByteArray ppnPath = write(QByteArray(), "clip.PPN");
    CCreatePPT ppt;
    ASSERT_EQ(ppt.StartConvert(mp4.constData(), ppnPath.constData()), 1) << ppt.getErrorText();
    const QByteArray ppn = readAll(path("clip.PPN"));
    ASSERT_EQ(ppn.size(), 32 + 9 * 16);
    QList<quint32> sizes;
    for (int i = 0; i < 9; ++i)
        sizes << (quint32(quint8(ppn[32 + i * 16 + 1])) << 8 | quint8(ppn[32 + i * 16 + 2]));
    EXPECT_EQ(sizes, (QList<quint32>{100, 101, 3000, 2000, 102, 103, 3001, 104, 2001}));
}

TEST_F(Mp4Test, PointerTableHeaderCarriesTheTrackCodes)
{
    struct Case
    {
        quint32 timescale, delta;
        quint16 width, height;
        const char* bytes7to12;
    };
    const Case cases[] = {
        {30000, 1001, 1920, 1080, "4C77205110" "1F"}, // 29.97: code 9, NTSC rate, 16:9
        {30000, 1000, 1920, 1080, "0477205110" "0F"}, // 30: code 0
        {30000, 1001, 1440, 1080, "4A47205110" "1F"}, // 4:3 aspect of 1440-wide HD: q = 13
        {60000, 1001, 1280, 720, "7434205110" "1F"},  // 59.94: code 14
        {50, 1, 1280, 720, "6434205110" "0F"},        // 50: code 12
        {25, 1, 1920, 1080, "3477205110" "0F"},       // 25: code 6
        {24000, 1001, 1920, 1080, "1477205110" "1F"}, // 23.976: code 2
        {2497, 100, 720, 480, "3211205110" "1F"},     // 24.97: code 6, NTSC rate
        {1, 0, 704, 576, "0200205110" "0F"},          // no duration, unknown sizes, q = 12
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::to_string(c.timescale) + "/" + std::to_string(c.delta));
        Mp4Builder b;
        b.tracks << Mp4Builder::videoTrack({"IBBPBB"});
        b.tracks[0].timescale = c.timescale;
        b.tracks[0].timeToSample = {{6, c.delta}};
        b.tracks[0].width = c.width;
        b.tracks[0].height = c.height;
        const QByteArray mp4 = write(b.boxes());
        const QByteArray ppnPath = write(QByteArray(), "clip.PPN");
        CCreatePPT ppt;
        ASSERT_EQ(ppt.StartConvert(mp4.constData(), ppnPath.constData()), 1) << ppt.getErrorText();
        const QByteArray ppn = readAll(path("clip.PPN"));
        EXPECT_EQ(ppn.mid(7, 6).toHex().toUpper(), QByteArray(c.bytes7to12));
    }

    // The mean duration is taken over the entries, not weighed by their counts:
    // (1001 + 3003) / 2 = 2002, so 14.98 frames per second and code 0.
    Mp4Builder b;
    b.tracks << Mp4Builder::videoTrack({"IBBPBB"});
    b.tracks[0].timeToSample = {{5, 1001}, {1, 3003}};
    const QByteArray mp4 = write(b.boxes());
    const QByteArray ppnPath = write(QByteArray(), "clip.PPN");
    CCreatePPT ppt;
    ASSERT_EQ(ppt.StartConvert(mp4.constData(), ppnPath.constData()), 1);
    EXPECT_EQ(quint8(readAll(path("clip.PPN"))[7]) >> 3, 0);
}

TEST_F(Mp4Test, PointerTableRefusalsLeaveTheirTexts)
{
    const QByteArray mp4 = write(pointerFile(1).boxes());
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

    QList<cwtest::Mp4Box> boxes = pointerFile(1).boxes();
    boxes[2].type = "moox";
    EXPECT_EQ(ppt.StartConvert(write(boxes, "y.MP4").constData(), ppn.constData()), 0);
    EXPECT_STREQ(ppt.getErrorText(), "MP4 File Seek to Moov Error");

    boxes = pointerFile(1).boxes();
    boxes[2].find("trak:0/mdia/minf/stbl/stsc")->body.replace(4, 4, be32(2));
    EXPECT_EQ(ppt.StartConvert(write(boxes, "z.MP4").constData(), ppn.constData()), 0);
    EXPECT_STREQ(ppt.getErrorText(), "MP4 File Moov Read Error");

    // Tables that do not describe every frame: a dependency byte missing, a
    // chunk run promising more frames than the sizes give.
    boxes = pointerFile(1).boxes();
    boxes[2].find("trak:0/mdia/minf/stbl/sdtp")->body.chop(1);
    EXPECT_EQ(ppt.StartConvert(write(boxes, "w.MP4").constData(), ppn.constData()), 0);
    EXPECT_STREQ(ppt.getErrorText(), "MP4 File Moov Read Error");
    boxes = pointerFile(1).boxes();
    boxes[2].find("trak:0/mdia/minf/stbl/stsc")->body.replace(12, 4, be32(7));
    EXPECT_EQ(ppt.StartConvert(write(boxes, "v.MP4").constData(), ppn.constData()), 0);
    EXPECT_STREQ(ppt.getErrorText(), "MP4 File Moov Read Error");

    // Without a video track only success is answered; nothing is written.
    Mp4Builder audioOnly;
    audioOnly.tracks << Mp4Builder::audioTrack("twos", 2, {1601});
    EXPECT_EQ(ppt.StartConvert(write(audioOnly.boxes(), "a.MP4").constData(), ppn.constData()), 1);
    EXPECT_EQ(QFileInfo(path("clip.PPN")).size(), 0);
}
