#include "Mp4TestSupport.h"

using cwtest::Mp4Builder;
using cwtest::mpeg2SequenceStart;

TEST_F(Mp4Test, CheckerReportsCodesAndTextsOfThePictureFormats)
{
    struct Case
    {
        int width, height, aspect, frameRateCode;
        quint8 objectType;
        quint32 bitrate;
        int fpsCode, widthCode, heightCode, aspectCode, drop, tcFps;
        const char *xmlParam, *format, *size, *fps;
    };
    // Edges only: the formats a camera records are checked against the card
    // generator elsewhere. The name of a standard-definition format follows
    // its bit rate; an unknown size and rate give placeholders.
    const Case cases[] = {
        {720, 480, 2, 4, 96, 18000000, 9, 1, 1, 2, 1, 30, "MPEG218_720_480_MP@HL", "MPEG-2 18Mbps",
         " 720 X 480 4:3", "59.94i"},
        {720, 480, 2, 4, 96, 25000000, 9, 1, 1, 2, 1, 30, "MPEG225CBR_720_480_MP@H-14", "MPEG-2 25Mbps",
         " 720 X 480 4:3", "59.94i"},
        {704, 576, 4, 9, 32, 8500000, 0, 0, 0, 0, 0, 30, "UN08Mbps-_-_MP@HL", "Unknown 08Mbps",
         "---- X ----  -:-", "--.--"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.xmlParam);
        Mp4Builder b;
        b.tracks << Mp4Builder::videoTrack(
            {"IBBPBB"}, 3000, mpeg2SequenceStart(c.width, c.height, c.aspect, c.frameRateCode, false));
        b.tracks[0].objectType = c.objectType;
        b.tracks[0].maxBitrate = c.bitrate;
        b.tracks << Mp4Builder::audioTrack("in24", 1, {1601});
        CCreatePPT ppt;
        ASSERT_EQ(ppt.blCheckMP4(write(b.boxes()).constData()), 1) << ppt.getErrorText();
        EXPECT_EQ(ppt.ulGetNumOfFrame(), 6u);
        EXPECT_EQ(
            std::vector<int>({ppt.getFPS(), ppt.nGetFps(), ppt.getWidth(), ppt.getHeight(), ppt.getAspect(),
                              ppt.getDrop(), int(ppt.getMaxBitrate()), int(ppt.getVideoESObjectID())}),
            std::vector<int>({c.fpsCode, c.tcFps, c.widthCode, c.heightCode, c.aspectCode, c.drop,
                              int(c.bitrate), c.objectType}));
        QString xmlParam, format, size, fps, width, channels, audio;
        ppt.getVideoFormatXMLParam(xmlParam);
        ppt.getVideoFormatStr(format);
        ppt.getVideoSizeStr(size);
        ppt.getVideoFPSStr(fps);
        ppt.getWidth(width);
        ppt.getAudioChannelStr(channels);
        ppt.getAudioFormatStr(0, audio);
        EXPECT_EQ(QStringList({xmlParam, format, size, fps, width, channels, audio}),
                  QStringList({c.xmlParam, c.format, c.size, c.fps,
                               c.widthCode ? QString::number(c.width) : "----", "1CH", "LPCM24"}));
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
    // Edges only: the card generator's embedded documents are checked elsewhere.
    const Case cases[] = {
        {document + '\0', document},
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
        EXPECT_TRUE(xml == nullptr && length == 0);
        EXPECT_STREQ(ppt.getErrorText(),
                     body.isEmpty() ? "blCheckMP4() No XML Data" : "blCheckMP4() XML Data Error");
    }
}
