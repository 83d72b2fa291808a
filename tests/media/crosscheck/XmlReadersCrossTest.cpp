// cardgen's XML files through the program's metadata readers: the manifest's
// UMIDs, durations, time codes and titles come back.
#include "CrossCheckSupport.h"

#include "core/formats/metadata/BLNonMetaAcss.h"
#include "core/services/BLCommon.h"

using crosscheck::clipFile;

namespace {

cardgen::Options richCard()
{
    cardgen::Options o = cwtest::CardFolder::quick();
    o.clips = 2;
    o.multiClipTakes = {3};
    o.spanningClips = 2;
    o.frameRate = "59.94i";
    o.startTimecode = "00:59:59:20";
    o.audioTracks = 2;
    o.mediaName = "CROSS CARD";
    o.fast = true;
    return o;
}

const cwtest::CardFolder& card()
{
    static const cwtest::CardFolder folder(richCard());
    return folder;
}

// "HH:MM:SS;FF" (or ":FF") of an LTC change value, read by the program's own parser.
QString ltcDisplay(const QString& value)
{
    BLCommon::Timecode tc{};
    EXPECT_TRUE(BLCommon::LTCCValueToTimecode(&tc, value, 0, 30)) << value.toStdString();
    auto bcd = [](quint8 byte, int tensBits) {
        return (byte >> 4 & ((1 << tensBits) - 1)) * 10 + (byte & 0x0F);
    };
    return QString::asprintf("%02d:%02d:%02d%c%02d", bcd(tc[3], 2), bcd(tc[2], 3), bcd(tc[1], 3),
                             (tc[0] & 0x40) ? ';' : ':', bcd(tc[0], 2));
}

// Checks one M01.XML against what the manifest says of its clip or take (the
// formats are compared with the essence by the MP4 cross-check).
void checkNonMeta(const QString& path, const QString& umid, int frames, const QString& start,
                  const QString& last, const QString& title, const cardgen::ManifestTake& take)
{
    SCOPED_TRACE(path.toStdString());
    BLNonMetaAcss acss;
    ASSERT_TRUE(acss.loadForFilePath(path));
    DONonRealTimeMeta meta;
    ASSERT_TRUE(acss.getNonMetaData(meta, "en"));
    EXPECT_EQ(meta.getTargetMaterial().getUmidRef(), umid);
    EXPECT_EQ(meta.getDuration(), QString::number(frames));
    const QList<DOLtcChange> ltc = meta.getLtcChangeTable().getLtcChangeArray();
    ASSERT_EQ(ltc.size(), 2);
    EXPECT_EQ(meta.getLtcChangeTable().getTcFps(), "30");
    EXPECT_EQ(ltcDisplay(ltc[0].getValue()), start);
    EXPECT_EQ(ltc[1].getFrameCount(), QString::number(frames - 1));
    EXPECT_EQ(ltcDisplay(ltc[1].getValue()), last);
    ASSERT_EQ(meta.getBasicChangeArray().size(), 1);
    EXPECT_EQ(meta.getBasicChangeArray()[0].getValue(), umid);
    EXPECT_EQ(meta.getTitle().getUsAscii(), title);
    EXPECT_EQ(meta.getTitle().getAlias().getValue(), title);
    EXPECT_EQ(meta.getAudioFormat().getRecPortArray().size(), take.audioChannels);
}

} // namespace

TEST(XmlReadersCross, NonRealTimeMetadataOfEveryClipAndTake)
{
    ASSERT_TRUE(card().ok()) << card().error().toStdString();
    int clips = 0;
    for (const cardgen::ManifestTake& take : card().manifest().takes) {
        for (const cardgen::ManifestClip& clip : take.clips) {
            checkNonMeta(clipFile(card(), clip, "XML", take.card), clip.umid, clip.frames, clip.startTimecode,
                         clip.lastTimecode, clip.name, take);
            ++clips;
        }
        if (take.kind == "multi") {
            const QString xml = card().path(take.files.back().path, take.card);
            ASSERT_EQ(take.files.back().kind, "XML");
            checkNonMeta(xml, take.umid, take.frames, take.clips.front().startTimecode,
                         take.clips.back().lastTimecode, take.takeId, take);
        }
    }
    EXPECT_EQ(clips, 7);
}
