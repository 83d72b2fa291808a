// cardgen's MP4 files through the MP4 checker and the import's BLBIMCtrl.
#include "CrossCheckSupport.h"

#include "core/formats/metadata/BLBIMCtrl.h"
#include "core/formats/metadata/BLNonMetaAcss.h"
#include "core/formats/mp4/CCreatePPT.h"

using crosscheck::clipFile;
using crosscheck::local;

namespace {

// What the checker must report for a frame-rate name: its frame-rate code,
// time-code base and NTSC-rate flag.
struct RateCodes
{
    const char* name;
    int fpsCode, tcFps, drop;
};
const RateCodes kRates[] = {
    {"59.94i", 9, 30, 1}, {"29.97p", 8, 30, 1}, {"23.98p", 2, 24, 1}, {"59.94p", 14, 30, 1},
    {"50i", 7, 25, 0},    {"25p", 6, 25, 0},    {"50p", 12, 25, 0},
};

// ... and for a frame size: codes and texts.
struct SizeCodes
{
    const char* name;
    int widthCode, heightCode, aspectCode;
    quint32 bitrate;
    const char *xmlParam, *format, *sizeText, *width, *height;
};
const SizeCodes kSizes[] = {
    {"1920x1080", 7, 7, 4, 35000000, "MPEG2HD35_1920_1080_MP@HL", "MPEG-2 HD35Mbps", "1920 X 1080 16:9",
     "1920", "1080"},
    {"1440x1080", 4, 7, 4, 25000000, "MPEG2HD25CBR_1440_1080_MP@H-14", "MPEG-2 HD25Mbps", "1440 X 1080 16:9",
     "1440", "1080"},
    {"1280x720", 3, 4, 4, 35000000, "MPEG2HD35_1280_720_MP@HL", "MPEG-2 HD35Mbps", "1280 X 720 16:9", "1280",
     "720"},
};

struct Format
{
    const SizeCodes* size;
    const RateCodes* rate;
};

std::vector<Format> formats()
{
    // Every rate at full HD; the other sizes at the rates they are recorded in.
    std::vector<Format> list;
    for (const RateCodes& r : kRates)
        list.push_back({&kSizes[0], &r});
    list.push_back({&kSizes[1], &kRates[0]});
    list.push_back({&kSizes[1], &kRates[4]});
    list.push_back({&kSizes[2], &kRates[3]});
    list.push_back({&kSizes[2], &kRates[6]});
    return list;
}

class Mp4CheckCross : public ::testing::TestWithParam<Format>
{
};

// The clip's own metadata document, as the camera (cardgen) wrote it.
DONonRealTimeMeta cameraMetadata(const QString& path)
{
    BLNonMetaAcss acss;
    DONonRealTimeMeta meta;
    EXPECT_TRUE(acss.loadForFilePath(path) && acss.getNonMetaData(meta, "en")) << path.toStdString();
    return meta;
}

} // namespace

TEST_P(Mp4CheckCross, CheckerReportsTheFormatCardgenRecorded)
{
    const SizeCodes& s = *GetParam().size;
    const RateCodes& r = *GetParam().rate;
    cardgen::Options o = crosscheck::oneClipCard(s.name, r.name);
    o.audioTracks = 1;
    const cwtest::CardFolder card(o);
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    const cardgen::ManifestClip& clip = card.manifest().takes.front().clips.front();
    const QString mp4 = clipFile(card, clip, "MP4");

    CCreatePPT ppt;
    ASSERT_EQ(ppt.blCheckMP4(local(mp4).constData()), 1) << ppt.getErrorText();
    EXPECT_EQ(ppt.ulGetNumOfFrame(), quint32(clip.frames));
    EXPECT_EQ(ppt.getFPS(), r.fpsCode);
    EXPECT_EQ(ppt.nGetFps(), r.tcFps);
    EXPECT_EQ(ppt.getDrop(), r.drop);
    EXPECT_EQ(ppt.getWidth(), s.widthCode);
    EXPECT_EQ(ppt.getHeight(), s.heightCode);
    EXPECT_EQ(ppt.getAspect(), s.aspectCode);
    EXPECT_EQ(ppt.getMaxBitrate(), s.bitrate);
    EXPECT_EQ(ppt.getVideoESObjectID(), 97u) << "MPEG-2 Main profile";
    QString text;
    ppt.getVideoFormatXMLParam(text);
    EXPECT_EQ(text, s.xmlParam);
    ppt.getVideoFormatStr(text);
    EXPECT_EQ(text, s.format);
    ppt.getVideoSizeStr(text);
    EXPECT_EQ(text, s.sizeText);
    ppt.getVideoFPSStr(text);
    EXPECT_EQ(text, r.name);
    ppt.getWidth(text);
    EXPECT_EQ(text, s.width);
    ppt.getHeight(text);
    EXPECT_EQ(text, s.height);
    ppt.CloseCheckMP4();

    // What the import learns of the file is what the camera wrote into the clip's metadata.
    BLBIMCtrl* bim = BLBIMCtrl::sharedCtrl();
    ASSERT_TRUE(bim->preImportMP4(mp4));
    const DONonRealTimeMeta meta = cameraMetadata(clipFile(card, clip, "XML"));
    EXPECT_EQ(QString::number(bim->getDuration()), meta.getDuration());
    EXPECT_EQ(QString::number(bim->getFrameCount()),
              meta.getLtcChangeTable().getLtcChangeArray().value(1).getFrameCount());
    EXPECT_EQ(bim->gettcFps(), meta.getLtcChangeTable().getTcFps());
    const DOVideoFormat& video = meta.getVideoFormat();
    EXPECT_EQ(bim->getVideoCodec(), video.getVideoFrame().getVideoCodec());
    EXPECT_EQ(bim->getFormatFps(), video.getVideoFrame().getFormatFps());
    EXPECT_EQ(bim->getPixel(), video.getVideoLayout().getPixel());
    EXPECT_EQ(bim->getNumOfVertical(), video.getVideoLayout().getNumOfVerticalLine());
    EXPECT_EQ(bim->getARatio(), video.getVideoLayout().getAspectRatio());
    EXPECT_EQ(QString::number(bim->getAudioChannel()), meta.getAudioFormat().getNumOfChannel());
    EXPECT_EQ(bim->getAudioCodec(), meta.getAudioFormat().getRecPortArray().value(0).getAudioCodec());
    BLBIMCtrl::releaseCtrl();
}

INSTANTIATE_TEST_SUITE_P(Formats, Mp4CheckCross, ::testing::ValuesIn(formats()),
                         [](const ::testing::TestParamInfo<Format>& info) {
                             QString name =
                                 QString("%1_%2").arg(info.param.size->name, info.param.rate->name);
                             name.replace('.', '_');
                             return name.toStdString();
                         });

TEST(Mp4CheckCrossAudio, CheckerCountsCardgensTracksAndChannels)
{
    struct Case
    {
        int tracks, channelsPerTrack;
    };
    for (const Case c : {Case{0, 2}, Case{1, 1}, Case{1, 2}, Case{2, 2}, Case{3, 1}, Case{4, 2}}) {
        SCOPED_TRACE(std::to_string(c.tracks) + " tracks of " + std::to_string(c.channelsPerTrack));
        cardgen::Options o = crosscheck::oneClipCard("tiny", "29.97p", 3);
        o.audioTracks = c.tracks;
        o.audioChannelsPerTrack = c.channelsPerTrack;
        const cwtest::CardFolder card(o);
        ASSERT_TRUE(card.ok()) << card.error().toStdString();
        const cardgen::ManifestTake& take = card.manifest().takes.front();
        const QString mp4 = clipFile(card, take.clips.front(), "MP4");

        CCreatePPT ppt;
        ASSERT_EQ(ppt.blCheckMP4(local(mp4).constData()), 1) << ppt.getErrorText();
        EXPECT_EQ(ppt.getNumAudioStream(), take.audioTracks);
        EXPECT_EQ(ppt.getAudioChannel(), take.audioChannels);
        EXPECT_EQ(ppt.isAudioStereo(), take.audioChannels > 1);
        QString text;
        ppt.getAudioChannelStr(text);
        EXPECT_EQ(text, QString("%1CH").arg(take.audioChannels));
        for (int stream = 0; stream < CCreatePPT::kMaxAudioTracks; ++stream) {
            ppt.getAudioFormatStr(stream, text);
            EXPECT_EQ(text, stream < c.tracks ? "LPCM16" : "-----") << stream;
        }
        // A size the camera does not record: unknown size codes.
        EXPECT_EQ(ppt.getWidth(), 0);
        EXPECT_EQ(ppt.getHeight(), 0);
        ppt.getVideoSizeStr(text);
        EXPECT_EQ(text, "---- X ----  16:9");
        ppt.CloseCheckMP4();
    }
}

TEST(Mp4CheckCrossXml, EmbeddedDocumentIsTheClipsMetadataFile)
{
    cardgen::Options o = crosscheck::oneClipCard("tiny", "59.94i");
    o.clips = 2;
    o.embedXml = true;
    const cwtest::CardFolder card(o);
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    for (const cardgen::ManifestTake& take : card.manifest().takes) {
        const cardgen::ManifestClip& clip = take.clips.front();
        SCOPED_TRACE(clip.name.toStdString());
        const QByteArray metadata = crosscheck::readFile(clipFile(card, clip, "XML"));
        ASSERT_FALSE(metadata.isEmpty());

        CCreatePPT ppt;
        const char* xml = nullptr;
        int length = 0;
        ASSERT_EQ(ppt.blCheckMP4(local(clipFile(card, clip, "MP4")).constData(), xml, length), 1);
        ASSERT_NE(xml, nullptr) << ppt.getErrorText();
        EXPECT_EQ(QString::fromUtf8(xml, length), QString::fromUtf8(metadata));
        ppt.CloseCheckMP4();

        BLBIMCtrl* bim = BLBIMCtrl::sharedCtrl();
        ASSERT_TRUE(bim->checkNonMetaExist(clipFile(card, clip, "MP4")));
        EXPECT_EQ(QString::fromUtf8(bim->getNonMetaData()), QString::fromUtf8(metadata));
        BLBIMCtrl::releaseCtrl();
    }

    // Without embedding there is no document.
    const cwtest::CardFolder plain(crosscheck::oneClipCard("tiny", "59.94i"));
    ASSERT_TRUE(plain.ok());
    EXPECT_FALSE(BLBIMCtrl::sharedCtrl()->checkNonMetaExist(
        clipFile(plain, plain.manifest().takes.front().clips.front(), "MP4")));
    BLBIMCtrl::releaseCtrl();
}
