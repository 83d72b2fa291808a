#include "MetadataTestSupport.h"

#include "core/card/DOTakeData.h"
#include "core/formats/metadata/BLBIMCtrl.h"
#include "core/formats/metadata/BLNonMetaAcss.h"
#include "core/operations/import/BLCreateNRT.h"
#include "core/services/BLCommon.h"
#include "support/Mp4Builder.h"
#include "support/QtPrinters.h"
#include "support/TestEnvironment.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using cwmeta::describe;
using cwmeta::isDateTime;
using cwmeta::readXmlOutline;
using cwmeta::XmlNode;
using cwtest::Mp4Builder;
using cwtest::Mp4Track;
using cwtest::mpeg2SequenceStart;

namespace {

const QString kClip = "P20260116093015_01";
const QString kTakeDate = "2026-01-16T09:30:15+00:00";

bool isRecent(const QString& text)
{
    const QDateTime when = BLCommon::makeCalendarDateFromString(text);
    return isDateTime(text) && when.isValid() && qAbs(when.secsTo(QDateTime::currentDateTime())) < 120;
}

// A video track of the given number of frames, stored in chunks of I B B P B B.
Mp4Track video(int frames, const QByteArray& sequenceStart = {})
{
    QList<QByteArray> chunks(frames / 6, "IBBPBB");
    if (frames % 6)
        chunks << QByteArray("IBBPBB").left(frames % 6);
    // Pictures of 2 KiB: the sequence header is read from the first 2 KiB of the first chunk.
    return Mp4Builder::videoTrack(chunks, 2048, sequenceStart);
}

Mp4Builder hdFile(int frames)
{
    Mp4Builder b;
    b.tracks << video(frames);
    b.tracks << Mp4Builder::audioTrack("twos", 2, {1601});
    return b;
}

QString outline(const XmlNode* node)
{
    return node ? describe(*node) : QStringLiteral("(missing)");
}

// A clip folder of an import and its MP4 file examined by BLBIMCtrl.
class CreateNRTTest : public cwtest::HomeTest
{
protected:
    void SetUp() override
    {
        HomeTest::SetUp();
        m_folder = m_dir.filePath(kClip);
        ASSERT_TRUE(QDir().mkpath(m_folder));
    }

    QString mp4() const { return BLCreateNRT::mp4Path(m_folder); }
    QString nonMeta() const { return BLCreateNRT::nonMetaPath(m_folder); }

    void importFile(const Mp4Builder& file)
    {
        ASSERT_TRUE(file.write(mp4()));
        ASSERT_TRUE(BLBIMCtrl::sharedCtrl()->preImportMP4(mp4()));
    }

    // The take record the import makes for the clip from the examined file.
    static DOTakeData takeData()
    {
        const BLBIMCtrl* bim = BLBIMCtrl::sharedCtrl();
        DOTakeData take;
        take.setUmid(BLCommon::sharedCtrl()->createUmid());
        take.setCurrentDuration(bim->getDuration());
        take.setCreationDate(kTakeDate);
        take.setLastUpDate(kTakeDate);
        take.setVideoCodec(bim->getVideoCodec());
        take.setFormatFps(bim->getFormatFps());
        take.setPixel(bim->getPixel());
        take.setNumOfVerticalLine(bim->getNumOfVertical());
        take.setARatio(bim->getARatio());
        take.setAudioCodec(bim->getAudioCodec());
        take.setNumOfChannel(QString::number(bim->getAudioChannel()));
        return take;
    }

    QTemporaryDir m_dir;
    QString m_folder;
};

} // namespace

TEST_F(CreateNRTTest, BuiltDocumentHoldsEveryValueOfTheTable)
{
    importFile(hdFile(1802));
    DOTakeData take = takeData();
    const QString umid = take.getUmid();
    ASSERT_TRUE(BLCreateNRT::createNonMetaFile(m_folder, take));
    EXPECT_EQ(take.getUmid(), umid) << "a built document keeps the take's UMID";

    const XmlNode root = readXmlOutline(nonMeta());
    ASSERT_EQ(root.name, "NonRealTimeMeta");
    EXPECT_EQ(root.namespaces, (QList<std::pair<QString, QString>>{{"", BLNonMetaAcss::kNameSpace},
                                                                   {"lib", BLNonMetaAcss::kLibNameSpace}}));
    EXPECT_TRUE(isRecent(root.attribute("lastUpdate")));
    EXPECT_EQ(root.childNames(),
              (cwmeta::Names{"TargetMaterial", "Duration", "LtcChangeTable", "CreationDate", "LastUpdate",
                             "TypicalUbit", "KeyFrame", "BodyUmidBasicChangeTable", "BodyUmidWhenChangeTable",
                             "BodyUmidWhereChangeTable", "BodyUmidWhoChangeTable", "KlvPacketTable",
                             "VideoFormat", "AudioFormat", "Title"}));

    auto expect = [&](const QString& element, const QString& text) {
        EXPECT_EQ(outline(root.child(element)), text) << element.toStdString();
    };
    expect("TargetMaterial", QString("<TargetMaterial umidRef=\"%1\">\n").arg(umid));
    expect("Duration", "<Duration value=\"1802\">\n");
    // Frame 1801 at 29.97 Hz drop frame is 00:01:00;03.
    expect("LtcChangeTable", "<LtcChangeTable tcFps=\"30\">\n"
                             "  <LtcChange frameCount=\"0\" value=\"40000000\" status=\"increment\">\n"
                             "  <LtcChange frameCount=\"1801\" value=\"43000100\" status=\"end\">\n");
    const QDateTime born = QFileInfo(mp4()).birthTime();
    const QString fileDate =
        BLCommon::getXmlFormatDateString(born.isValid() ? born : QFileInfo(mp4()).lastModified());
    expect("CreationDate", QString("<CreationDate value=\"%1\">\n").arg(fileDate));
    EXPECT_TRUE(isRecent(root.child("LastUpdate")->attribute("value")));
    expect("TypicalUbit", "<TypicalUbit value=\"0000000000000000\">\n");
    expect("KeyFrame", "<KeyFrame frameCount=\"0\">\n");
    expect("BodyUmidBasicChangeTable",
           QString("<BodyUmidBasicChangeTable>\n"
                   "  <BodyUmidBasicChange frameCount=\"0\" value=\"%1\" status=\"start\">\n")
               .arg(umid));
    for (const QString kind : {"When", "Where", "Who"})
        expect("BodyUmid" + kind + "ChangeTable",
               QString("<BodyUmid%1ChangeTable>\n  <BodyUmid%1Change frameCount=\"0\" status=\"none\">\n")
                   .arg(kind));
    expect("KlvPacketTable", "<KlvPacketTable>\n  <KlvPacket frameCount=\"0\" status=\"none\">\n");
    expect("VideoFormat", "<VideoFormat>\n"
                          "  <VideoFrame videoCodec=\"MPEG2HD35_1920_1080_MP@HL\" formatFps=\"59.94i\">\n"
                          "  <VideoLayout pixel=\"1920\" numOfVerticalLine=\"1080\" aspectRatio=\"16:9\">\n");
    expect("AudioFormat", "<AudioFormat numOfChannel=\"2\">\n"
                          "  <AudioRecPort audioCodec=\"LPCM16\" port=\"OTHERS\" trackDst=\"CH1\">\n"
                          "  <AudioRecPort audioCodec=\"LPCM16\" port=\"OTHERS\" trackDst=\"CH2\">\n");
    expect("Title", QString("<Title usAscii=\"\">\n  <lib:Alias xml:lang=\"%1\">%2\n")
                        .arg(BLCommon::getSystemLanguage(), kClip));

    // The project's own reader agrees.
    BLNonMetaAcss acss;
    ASSERT_TRUE(acss.loadForFilePath(nonMeta()));
    DONonRealTimeMeta meta;
    ASSERT_TRUE(acss.getNonMetaData(meta, BLCommon::getSystemLanguage()));
    EXPECT_EQ(meta.getTargetMaterial().getUmidRef(), umid);
    EXPECT_EQ(meta.getTitle().getAlias().getValue(), kClip);
}

TEST_F(CreateNRTTest, LtcTableFollowsFramesRateAndTimeCodeBase)
{
    struct Case
    {
        const char* name;
        int frames;
        QByteArray sequenceStart;
        QString takeLtc;  // first LTC value of a re-imported take
        QString tcFps;    // overrides the examined base when set ("" clears it)
        qint64 duration;  // overrides the examined frame count when not -1
        QString expected; // tcFps, first frame and value, last frame and value
    };
    const QByteArray i5994 = mpeg2SequenceStart(1920, 1080, 3, 4, false);
    const QByteArray p50 = mpeg2SequenceStart(1280, 720, 3, 6, true);
    const Case cases[] = {
        {"one frame", 1, i5994, {}, "-", -1, "30 ... 00000000 ... 00000000"},
        {"50p counts at half the rate", 12, p50, {}, "-", -1, "25 0 40000000 11 45000000"},
        {"a non-drop take", 1802, i5994, "01000000", "-", -1, "30 0 40000000 1801 41000100"},
        {"no time-code base", 12, i5994, {}, "", -1, "... 0 00000000 11 00000000"},
        {"duration and last frame disagree", 12, i5994, {}, "-", 20, "30 0 40000000 ... 00000000"},
    };
    BLBIMCtrl* bim = BLBIMCtrl::sharedCtrl();
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Mp4Builder file;
        file.tracks << video(c.frames, c.sequenceStart);
        importFile(file);
        DOTakeData take = takeData();
        if (!c.takeLtc.isEmpty()) {
            DOLtcChange change;
            change.setFrameCount("0");
            change.setValue(c.takeLtc);
            change.setStatus("increment");
            take.setLtcChange(change);
        }
        if (c.tcFps != "-")
            bim->settcFps(c.tcFps);
        if (c.duration >= 0)
            bim->setDuration(quint32(c.duration));
        ASSERT_TRUE(BLCreateNRT::createNonMetaFile(m_folder, take));
        const QStringList e = c.expected.split(' ');
        EXPECT_EQ(outline(readXmlOutline(nonMeta()).child("LtcChangeTable")),
                  QString("<LtcChangeTable tcFps=\"%1\">\n"
                          "  <LtcChange frameCount=\"%2\" value=\"%3\" status=\"increment\">\n"
                          "  <LtcChange frameCount=\"%4\" value=\"%5\" status=\"end\">\n")
                      .arg(e[0], e[1], e[2], e[3], e[4]));
    }
}

TEST_F(CreateNRTTest, OneAudioPortPerChannel)
{
    struct Case
    {
        const char* name;
        QList<Mp4Track> audio;
        const char* expected;
    };
    const Case cases[] = {
        {"no sound", {}, "<AudioFormat numOfChannel=\"...\">\n"},
        {"stereo and mono",
         {Mp4Builder::audioTrack("in32", 2, {1601}), Mp4Builder::audioTrack("twos", 1, {1601})},
         "<AudioFormat numOfChannel=\"3\">\n"
         "  <AudioRecPort audioCodec=\"LPCM32\" port=\"OTHERS\" trackDst=\"CH1\">\n"
         "  <AudioRecPort audioCodec=\"LPCM32\" port=\"OTHERS\" trackDst=\"CH2\">\n"
         "  <AudioRecPort audioCodec=\"LPCM32\" port=\"OTHERS\" trackDst=\"CH3\">\n"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Mp4Builder file;
        file.tracks << video(6) << c.audio;
        importFile(file);
        DOTakeData take = takeData();
        ASSERT_TRUE(BLCreateNRT::createNonMetaFile(m_folder, take));
        EXPECT_EQ(outline(readXmlOutline(nonMeta()).child("AudioFormat")), c.expected);
    }
}

TEST_F(CreateNRTTest, CreationDateOfTheFileUnlessItHasNoneOrTheZeroDate)
{
    DOTakeData take;
    take.setCreationDate(kTakeDate);
    const QDateTime zero(QDate(1904, 1, 1), QTime(0, 0), Qt::UTC);
    EXPECT_EQ(BLCreateNRT::creationDateValue(zero, take), kTakeDate);
    EXPECT_EQ(BLCreateNRT::creationDateValue(zero.toOffsetFromUtc(-5 * 3600), take), kTakeDate)
        << "the same moment seen west of Greenwich";
    EXPECT_EQ(BLCreateNRT::creationDateValue(QDateTime(), take), kTakeDate);
    EXPECT_EQ(BLCreateNRT::creationDateValue(zero.addDays(1), take), "1904-01-02T00:00:00+00:00");
    const QDateTime recorded(QDate(2026, 1, 16), QTime(10, 30, 15), Qt::OffsetFromUTC, 3600);
    EXPECT_EQ(BLCreateNRT::creationDateValue(recorded, take), "2026-01-16T10:30:15+01:00");

    // Written: an MP4 file without a date (here: none at all) gives the take's date...
    importFile(hdFile(6));
    ASSERT_TRUE(QFile::rename(mp4(), m_dir.filePath("elsewhere.MP4")));
    DOTakeData imported = takeData();
    ASSERT_TRUE(BLCreateNRT::createNonMetaFile(m_folder, imported));
    EXPECT_EQ(readXmlOutline(nonMeta()).child("CreationDate")->attribute("value"), kTakeDate);
    // ... and the time of writing when the take has none either.
    DOTakeData undated = takeData();
    undated.setCreationDate("");
    ASSERT_TRUE(BLCreateNRT::createNonMetaFile(m_folder, undated));
    EXPECT_TRUE(isRecent(readXmlOutline(nonMeta()).child("CreationDate")->attribute("value")));
}

TEST_F(CreateNRTTest, EmbeddedDocumentIsKeptButItsUmidTitleAndLastUpdate)
{
    const QString camera = cwmeta::fixturePath("nrt/C0001M01.XML");
    Mp4Builder file = hdFile(12);
    file.xmlBody = QByteArray(4, '\0') + cwtest::readFile(camera) + '\0';
    importFile(file);
    DOTakeData take = takeData();
    const QString importUmid = take.getUmid();
    ASSERT_TRUE(BLCreateNRT::createNonMetaFile(m_folder, take));

    const XmlNode original = readXmlOutline(camera);
    const XmlNode written = readXmlOutline(nonMeta());
    ASSERT_EQ(written.name, "NonRealTimeMeta");
    const QString newUmid = written.child("TargetMaterial")->attribute("umidRef");
    EXPECT_EQ(take.getUmid(), newUmid) << "the take carries the document's new UMID";
    EXPECT_NE(newUmid, importUmid);
    EXPECT_TRUE(isRecent(written.attribute("lastUpdate")));

    // Everything else is the camera's document as it was.
    XmlNode expected = original;
    expected.setAttribute("lastUpdate", written.attribute("lastUpdate"));
    expected.child("TargetMaterial")->setAttribute("umidRef", newUmid);
    expected.child("LastUpdate")->setAttribute("value", written.child("LastUpdate")->attribute("value"));
    XmlNode* title = expected.child("Title");
    title->attributes = {{"usAscii", ""}};
    title->children.resize(1);
    title->children[0].attributes = {{"xml:lang", BLCommon::getSystemLanguage()}};
    title->children[0].text = kClip;
    EXPECT_EQ(written, expected);
}

TEST_F(CreateNRTTest, AnEmbeddedDocumentThatIsNoMetadataIsReplacedByABuiltOne)
{
    for (const QByteArray& body : {QByteArray("<?xml version=\"1.0\"?>\n<NonRealTimeMeta><Duration"),
                                   QByteArray("<?xml version=\"1.0\"?>\n<Other value=\"1\"/>\n")}) {
        SCOPED_TRACE(body.toStdString());
        Mp4Builder file = hdFile(6);
        file.xmlBody = body + '\0';
        importFile(file);
        ASSERT_TRUE(BLBIMCtrl::sharedCtrl()->checkNonMetaExist(mp4()));
        DOTakeData take = takeData();
        ASSERT_TRUE(BLCreateNRT::createNonMetaFile(m_folder, take));
        const XmlNode root = readXmlOutline(nonMeta());
        EXPECT_EQ(root.childNames().size(), 15u);
        EXPECT_EQ(root.child("TargetMaterial")->attribute("umidRef"), take.getUmid());
    }
}

TEST_F(CreateNRTTest, AFailedStepEndsTheCreation)
{
    importFile(hdFile(6));
    DOTakeData take = takeData();

    // A channel count below zero fails the sound step; what was saved stays.
    BLBIMCtrl::sharedCtrl()->setAudioChannel(-1);
    EXPECT_FALSE(BLCreateNRT::createNonMetaFile(m_folder, take));
    const XmlNode root = readXmlOutline(nonMeta());
    EXPECT_EQ(root.name, "NonRealTimeMeta");
    EXPECT_TRUE(root.children.isEmpty()) << "only the first, empty save reached the disk";

    // A clip folder that is not there.
    const QString gone = m_dir.filePath("P20260116093015_02");
    EXPECT_FALSE(BLCreateNRT::createNonMetaFile(gone, take));
    EXPECT_FALSE(QFileInfo::exists(gone));
}
