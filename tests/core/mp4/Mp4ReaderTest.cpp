#include "Mp4TestSupport.h"

#include "core/formats/mp4/CMP4File.h"

#include <cstring>
#include <functional>

using cwtest::be32;
using cwtest::Mp4Box;
using cwtest::Mp4Builder;

namespace {

Mp4Box* videoStbl(QList<Mp4Box>& boxes)
{
    return boxes[2].find("trak:0/mdia/minf/stbl");
}

// The reader's own text for a file, "" when every step passes.
std::string readerError(const QByteArray& file)
{
    CMP4File reader;
    CVideoPointerData video;
    CAudioPointerData audio[CMP4File::kMaxAudioTracks];
    if (!reader.Open(file.constData(), CFileM::kModeRead))
        return "open";
    if (reader.ulCheckHeader() && reader.ulSeekToMoov() && reader.ulReadMoov(&video, audio) &&
        reader.blCheckVideo())
        return "";
    return reader.getLastError() ? reader.getLastError() : "(no text)";
}

} // namespace

TEST_F(Mp4Test, BoxTreeFaultsAreRefusedWithTheirTexts)
{
    using Boxes = QList<Mp4Box>;
    // Inserts a box at the top level (""), into moov ("moov") or below it.
    auto insertInto = [](const QString& parent, int at, const Mp4Box& box) {
        return [=](Boxes& b) {
            (parent.isEmpty()   ? b
             : parent == "moov" ? b[2].children
                                : b[2].find(parent)->children)
                .insert(at, box);
        };
    };
    auto body = [](const QString& box, std::function<void(QByteArray&)> edit) {
        return [=](Boxes& b) { edit(b[2].find(box)->body); };
    };
    auto replaceAt = [](int at, const QByteArray& bytes) {
        return [=](QByteArray& d) { d.replace(at, bytes.size(), bytes); };
    };
    auto truncate = [](int size) { return [=](QByteArray& d) { d.truncate(size); }; };
    Mp4Box large("free", QByteArray(40, 'f'));
    large.largeSize = true;
    large.sizeHigh = 1; // the upper half of a 64-bit size is ignored
    const QString video = "trak:0/mdia/minf/stbl";
    const struct
    {
        const char* name;
        std::function<void(Boxes&)> mutate;
        const char* error; // "" when the file passes
    } cases[] = {
        {"free before ftyp", insertInto("", 0, Mp4Box("free", QByteArray(4, '\0'))),
         "MP4 File Read Header Error"},
        {"unknown box before moov", insertInto("", 2, Mp4Box("junk", QByteArray(8, 'j'))),
         "MP4 File Seek to Moov Error"},
        {"unknown box in a track", insertInto("trak:1", 1, Mp4Box("wxyz")), "Seek Do not find Tag\n"},
        {"known boxes are walked over",
         [](Boxes& b) {
             b[2].children.insert(1, Mp4Box("iods", QByteArray(12, 'i')));
             b[2].find("trak:0")->children.insert(1,
                                                  Mp4Box("edts", {}, {Mp4Box("elst", QByteArray(20, 'e'))}));
             b[2].find("trak:0")->children.insert(1, Mp4Box("uuid", QByteArray(24, 'u')));
             b.insert(1, Mp4Box("free", QByteArray(100, 'f')));
         },
         ""},
        {"64-bit size in moov", insertInto("moov", 1, large), ""},
        {"64-bit chunk offsets", [&](Boxes& b) { b[2].find(video + "/stco")->type = "co64"; },
         "STCO Header Error\n"},
        {"no sdtp runs into the end of the file",
         [&](Boxes& b) { b[2].find(video)->children.removeAt(b[2].find(video)->indexOf("sdtp")); },
         "MP4 box Seek reached EOF\n"},
        {"stco count low", body(video + "/stco", replaceAt(4, be32(1))), "Read stco Length Error\n"},
        {"sample count against stsz", body(video + "/stsz", replaceAt(8, be32(13))),
         "MP4 File Moov Read Error"},
        {"short video stsd", body(video + "/stsd", truncate(100)), "Read STSD  Error\n"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        Boxes boxes = cameraFile().boxes();
        c.mutate(boxes);
        EXPECT_EQ(check(boxes), c.error);
    }

    // A mdat with a 64-bit size; a size that does not even cover the box header.
    Mp4Builder b = cameraFile();
    b.mdatLargeSize = true;
    EXPECT_EQ(check(b.boxes()), "");
    Boxes boxes = cameraFile().boxes();
    boxes[2].children.insert(1, large);
    QByteArray raw = Mp4Builder::serialize(boxes);
    raw.replace(raw.indexOf(QByteArray("free")) + 8, 4, be32(4));
    EXPECT_EQ(check(write(raw)), "MP4 box Size Error\n");
}

TEST_F(Mp4Test, AtMostEightAudioTracks)
{
    Mp4Builder b;
    b.tracks << Mp4Builder::videoTrack({"IBBPBB"});
    const QByteArray formats[] = {"twos", "in24", "in32"};
    for (int i = 0; i < 8; ++i)
        b.tracks << Mp4Builder::audioTrack(formats[i % 3], i < 4 ? 2 : 1, {800});
    // A track of another kind is read but not counted.
    b.tracks << Mp4Builder::audioTrack("tmcd", 1, {1});

    const QByteArray file = write(b.boxes());
    CCreatePPT ppt;
    ASSERT_EQ(ppt.blCheckMP4(file.constData()), 1) << ppt.getErrorText();
    EXPECT_EQ(ppt.getNumAudioStream(), 8);
    EXPECT_EQ(ppt.getAudioChannel(), 4 * 2 + 4);
    QString seventh, ninth, none;
    ppt.getAudioFormatStr(7, seventh);
    ppt.getAudioFormatStr(8, ninth);
    ppt.getAudioFormatStr(-1, none);
    EXPECT_EQ(seventh + ' ' + ninth + ' ' + none, "LPCM24 ----- -----");
    ppt.CloseCheckMP4();

    b.tracks << Mp4Builder::audioTrack("twos", 1, {800});
    EXPECT_EQ(check(b.boxes()), "Audio channel is over (8)\n");
}

TEST_F(Mp4Test, SequenceHeaderMustLieInTheFirst2048BytesOfChunkZero)
{
    Mp4Builder b = cameraFile();
    QByteArray& chunk0 = b.tracks[0].chunkData[0];
    const QByteArray start = cwtest::mpeg2SequenceStart(1920, 1080, 3, 4, false);
    const QByteArray filler(start.size(), '\x55');
    ASSERT_TRUE(chunk0.startsWith(start));
    chunk0.replace(0, start.size(), filler);
    chunk0.replace(2100, start.size(), start);
    EXPECT_EQ(check(b.boxes()), "MPEG-2 Sequence Header Err\n");

    chunk0.replace(2100, start.size(), filler);
    chunk0.replace(2040, start.size(), start);
    EXPECT_EQ(check(b.boxes()), "MPEG-2 Sequence Extension Err\n") << "the extension begins past byte 2048";

    chunk0.replace(2040, start.size(), filler);
    chunk0.replace(1000, start.size(), start);
    EXPECT_EQ(check(b.boxes()), "");

    // A first chunk that ends less than 2048 bytes before the end of the file.
    QList<Mp4Box> boxes = cameraFile().boxes();
    videoStbl(boxes)->find("stco")->body.replace(8, 4,
                                                 be32(quint32(Mp4Builder::serialize(boxes).size() - 2000)));
    EXPECT_EQ(check(boxes), "MPEG-2 Read err\n");

    // No video track at all.
    b = cameraFile();
    b.tracks.removeFirst();
    EXPECT_EQ(check(b.boxes()), "MPEG-2 Read err\n");
}

TEST_F(Mp4Test, TruncatedFilesAreRefusedWithATextNeverACrash)
{
    Mp4Builder b = cameraFile();
    b.xmlBody = QByteArray("<?xml version=\"1.0\"?><NonRealTimeMeta/>", 40);
    const QList<Mp4Box> boxes = b.boxes();
    const QByteArray whole = Mp4Builder::serialize(boxes);
    const qsizetype moovStart = whole.size() - qsizetype(boxes[2].size());
    int checked = 0;
    // Every byte of moov, a stride through the rest.
    for (qsizetype length = 0; length < whole.size(); length += (length < moovStart - 64 ? 61 : 1)) {
        const QByteArray file = write(whole.left(length));
        CCreatePPT ppt;
        const char* xml = nullptr;
        int xmlLength = -1;
        ASSERT_EQ(ppt.blCheckMP4(file.constData(), xml, xmlLength), 0) << "length " << length;
        ASSERT_NE(ppt.getErrorText(), nullptr) << "length " << length;
        ASSERT_GT(std::strlen(ppt.getErrorText()), 0u);
        EXPECT_EQ(xml, nullptr);
        ++checked;
    }
    EXPECT_GT(checked, 1000);
    // Cut at a track boundary inside moov: not mistaken for a file with fewer tracks.
    const qsizetype audioTrak = whole.indexOf("trak", whole.indexOf("trak", moovStart) + 4) - 4;
    EXPECT_EQ(readerError(write(whole.left(audioTrak))), "MP4 box Seek reached EOF\n");
}
