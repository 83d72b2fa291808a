// cardgen's MP4 files through the MP4 checker and the import's BLBIMCtrl.
#include "CrossCheckSupport.h"

#include "core/formats/metadata/BLBIMCtrl.h"
#include "core/formats/metadata/BLNonMetaAcss.h"
#include "core/formats/mp4/CCreatePPT.h"

using crosscheck::clipFile;
using crosscheck::local;

namespace {

// The clip's own metadata document, as the camera (cardgen) wrote it.
DONonRealTimeMeta cameraMetadata(const QString& path)
{
    BLNonMetaAcss acss;
    DONonRealTimeMeta meta;
    EXPECT_TRUE(acss.loadForFilePath(path) && acss.getNonMetaData(meta, "en")) << path.toStdString();
    return meta;
}

} // namespace

// The codes and texts of each format are the checker's own tests; here the
// checker finds them in cardgen's files where the camera puts them.
TEST(Mp4CheckCross, WhatTheImportLearnsOfAFileIsWhatTheCameraWroteIntoItsMetadata)
{
    // Every rate at full HD; the other sizes at the rates they are recorded in.
    std::vector<std::pair<QString, QString>> formats;
    for (const char* rate : {"59.94i", "29.97p", "23.98p", "59.94p", "50i", "25p", "50p"})
        formats.emplace_back("1920x1080", rate);
    formats.insert(
        formats.end(),
        {{"1440x1080", "59.94i"}, {"1440x1080", "50i"}, {"1280x720", "59.94p"}, {"1280x720", "50p"}});
    // The sound varies with the format: tracks and channels per track.
    const std::pair<int, int> sound[] = {{1, 2}, {0, 2}, {1, 1}, {2, 2}, {3, 1}, {4, 2}};
    for (size_t f = 0; f < formats.size(); ++f) {
        const auto& [size, rate] = formats[f];
        const auto [tracks, channelsPerTrack] = sound[f % std::size(sound)];
        SCOPED_TRACE((size + " " + rate).toStdString() + ", " + std::to_string(tracks) + " tracks");
        cardgen::Options o = crosscheck::oneClipCard(size, rate);
        o.audioTracks = tracks;
        o.audioChannelsPerTrack = channelsPerTrack;
        const cwtest::CardFolder card(o);
        ASSERT_TRUE(card.ok()) << card.error().toStdString();
        const cardgen::ManifestTake& take = card.manifest().takes.front();
        const cardgen::ManifestClip& clip = take.clips.front();
        const QString mp4 = clipFile(card, clip, "MP4");

        CCreatePPT ppt;
        ASSERT_EQ(ppt.blCheckMP4(local(mp4).constData()), 1) << ppt.getErrorText();
        EXPECT_EQ(ppt.ulGetNumOfFrame(), quint32(clip.frames));
        QString fps, sizeText;
        ppt.getVideoFPSStr(fps);
        ppt.getVideoSizeStr(sizeText);
        EXPECT_EQ(fps, rate);
        EXPECT_EQ(sizeText, QString(size).replace("x", " X ") + " 16:9");
        EXPECT_EQ(ppt.getNumAudioStream(), take.audioTracks);
        EXPECT_EQ(ppt.getAudioChannel(), take.audioChannels);
        EXPECT_EQ(ppt.isAudioStereo(), take.audioChannels > 1);
        for (int stream = 0; stream < CCreatePPT::kMaxAudioTracks; ++stream) {
            QString text;
            ppt.getAudioFormatStr(stream, text);
            EXPECT_EQ(text, stream < tracks ? "LPCM16" : "-----") << stream;
        }
        ppt.CloseCheckMP4();

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
        if (tracks > 0) {
            EXPECT_EQ(bim->getAudioCodec(), meta.getAudioFormat().getRecPortArray().value(0).getAudioCodec());
        }
        BLBIMCtrl::releaseCtrl();
    }
}
