#include "Mp4TestSupport.h"

using cwtest::Mp4Builder;
using cwtest::mpeg2SequenceStart;

namespace {

struct Texts
{
    QString xmlParam, format, size, fps, width, height, channels, audio0;
};

Texts texts(const CCreatePPT& ppt)
{
    Texts t;
    EXPECT_EQ(ppt.getVideoFormatXMLParam(t.xmlParam), 1);
    EXPECT_EQ(ppt.getVideoFormatStr(t.format), 1);
    EXPECT_EQ(ppt.getVideoSizeStr(t.size), 1);
    EXPECT_EQ(ppt.getVideoFPSStr(t.fps), 1);
    EXPECT_EQ(ppt.getWidth(t.width), 1);
    EXPECT_EQ(ppt.getHeight(t.height), 1);
    EXPECT_EQ(ppt.getAudioChannelStr(t.channels), 1);
    EXPECT_EQ(ppt.getAudioFormatStr(0, t.audio0), 1);
    return t;
}

} // namespace

TEST_F(Mp4Test, CheckerReportsCodesAndTextsOfThePictureFormats)
{
    struct Case
    {
        int width, height, aspect, frameRateCode;
        bool progressive;
        quint8 objectType;
        quint32 bitrate;
        int fpsCode, widthCode, heightCode, aspectCode, drop, tcFps;
        const char *xmlParam, *format, *size, *fps;
    };
    // Edges only: the formats a camera records are checked against the card generator elsewhere.
    const Case cases[] = {
        {1280, 720, 3, 7, true, 100, 35999999, 14, 3, 4, 4, 1, 30, "MPEG2HD35_1280_720_MP@HL",
         "MPEG-2 HD35Mbps", "1280 X 720 16:9", "59.94p"},
        {1280, 720, 1, 6, true, 97, 35000000, 12, 3, 4, 4, 0, 25, "MPEG2HD35_1280_720_MP@HL",
         "MPEG-2 HD35Mbps", "1280 X 720 16:9", "50p"},
        {1920, 1080, 3, 1, false, 97, 35000000, 18, 7, 7, 4, 1, 24, "MPEG2HD35_1920_1080_MP@HL",
         "MPEG-2 HD35Mbps", "1920 X 1080 16:9", "23.98p"},
        {720, 480, 2, 4, false, 96, 18000000, 9, 1, 1, 2, 1, 30, "MPEG218_720_480_MP@HL", "MPEG-2 18Mbps",
         " 720 X 480 4:3", "59.94i"},
        {720, 480, 2, 4, false, 96, 25000000, 9, 1, 1, 2, 1, 30, "MPEG225CBR_720_480_MP@H-14",
         "MPEG-2 25Mbps", " 720 X 480 4:3", "59.94i"},
        {704, 576, 4, 9, false, 32, 8500000, 0, 0, 0, 0, 0, 30, "UN08Mbps-_-_MP@HL", "Unknown 08Mbps",
         "---- X ----  -:-", "--.--"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::to_string(c.width) + "x" + std::to_string(c.height) + " " + c.fps);
        Mp4Builder b;
        b.tracks << Mp4Builder::videoTrack(
            {"IBBPBB"}, 3000,
            mpeg2SequenceStart(c.width, c.height, c.aspect, c.frameRateCode, c.progressive));
        b.tracks[0].objectType = c.objectType;
        b.tracks[0].maxBitrate = c.bitrate;
        b.tracks << Mp4Builder::audioTrack("in24", 1, {1601});
        const QByteArray file = write(b.boxes());
        CCreatePPT ppt;
        ASSERT_EQ(ppt.blCheckMP4(file.constData()), 1) << ppt.getErrorText();
        EXPECT_EQ(ppt.getErrorText(), nullptr);
        EXPECT_EQ(ppt.ulGetNumOfFrame(), 6u);
        EXPECT_EQ(ppt.getFPS(), c.fpsCode);
        EXPECT_EQ(ppt.nGetFps(), c.tcFps);
        EXPECT_EQ(ppt.getWidth(), c.widthCode);
        EXPECT_EQ(ppt.getHeight(), c.heightCode);
        EXPECT_EQ(ppt.getAspect(), c.aspectCode);
        EXPECT_EQ(ppt.getDrop(), c.drop);
        EXPECT_EQ(ppt.getMaxBitrate(), c.bitrate);
        EXPECT_EQ(ppt.getVideoESObjectID(), c.objectType);
        const Texts t = texts(ppt);
        EXPECT_EQ(t.xmlParam, c.xmlParam);
        EXPECT_EQ(t.format, c.format);
        EXPECT_EQ(t.size, c.size);
        EXPECT_EQ(t.fps, c.fps);
        EXPECT_EQ(t.width, c.widthCode ? QString::number(c.width) : "----");
        EXPECT_EQ(t.height, c.heightCode ? QString::number(c.height) : "----");
        EXPECT_EQ(t.channels, "1CH");
        EXPECT_EQ(t.audio0, "LPCM24");
        EXPECT_FALSE(ppt.isAudioStereo());
    }
}

TEST_F(Mp4Test, EmbeddedXmlIsReturnedWholeOrWithoutItsFourBytePrefix)
{
    const QByteArray document = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<NonRealTimeMeta/>\n";
    struct Case
    {
        QByteArray body;
        QByteArray expected; // the document handed out, without its last byte
    };
    // Edges only: the formats a camera records are checked against the card generator elsewhere.
    const Case cases[] = {
        {document + '\0', document},
        {QByteArray(4, '\0') + document + '\0', document},
        {QByteArray("\x00\x00\x00\x01", 4) + document, document.chopped(1)},
        {QByteArray("abcdX", 5), QByteArray()}, // one byte behind the prefix: length 0
    };
    for (const Case& c : cases) {
        Mp4Builder b = cameraFile();
        b.xmlBody = c.body;
        const QByteArray file = write(b.boxes());
        CCreatePPT ppt;
        const char* xml = nullptr;
        int length = -1;
        ASSERT_EQ(ppt.blCheckMP4(file.constData(), xml, length), 1) << ppt.getErrorText();
        EXPECT_EQ(ppt.getErrorText(), nullptr);
        ASSERT_NE(xml, nullptr);
        EXPECT_EQ(QByteArray(xml, length), c.expected);
        EXPECT_EQ(xml[length + 1], '\0') << "the buffer ends in a zero byte";
        EXPECT_EQ(ppt.ulGetNumOfFrame(), 12u) << "the check itself is not affected";
        ppt.CloseCheckMP4();
    }

    // No document, and one too short to hold its prefix: still a pass.
    for (const QByteArray& body : {QByteArray(), QByteArray("<?x", 3)}) {
        Mp4Builder b = cameraFile();
        b.xmlBody = body;
        const QByteArray file = write(b.boxes());
        CCreatePPT ppt;
        const char* xml = "untouched";
        int length = -1;
        EXPECT_EQ(ppt.blCheckMP4(file.constData(), xml, length), 1);
        EXPECT_EQ(xml, nullptr);
        EXPECT_EQ(length, 0);
        EXPECT_STREQ(ppt.getErrorText(),
                     body.isEmpty() ? "blCheckMP4() No XML Data" : "blCheckMP4() XML Data Error");
    }
}
