#include "MetadataTestSupport.h"

#include "core/formats/metadata/BLMediaProfileAcss.h"
#include "core/services/BLPlistCtrl.h"
#include "support/TestEnvironment.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>

#include <gtest/gtest.h>

namespace {
const QString kFixture = cwmeta::fixturePath("mediapro/MEDIAPRO.XML");
const QString kCameraMediaId = "1234567890ABCDEF1234567890ABCDEF";

class MediaProfileAcssTest : public cwtest::HomeTest
{
protected:
    // A BPAV folder in the test home holding the given media profile text.
    QString makeFolder(const QByteArray& profile)
    {
        EXPECT_TRUE(cwtest::writeFile(home().path("card/BPAV/MEDIAPRO.XML"), profile));
        return home().path("card/BPAV");
    }
    QString cameraFolder() { return makeFolder(cwtest::readFile(kFixture)); }
};

// The outline of a saved profile with the save stamp blanked out.
QStringList savedOutline(const QString& path)
{
    static const QRegularExpression stamp(R"(createdAt="[^"]*")");
    QStringList lines = cwmeta::fileOutlineLines(path);
    for (QString& line : lines)
        line.replace(stamp, R"(createdAt="*")");
    return lines;
}

// The lines of the element that a line starts, up to its next sibling.
QStringList block(const QStringList& outline, const QString& start)
{
    const qsizetype first = outline.indexOf(start);
    if (first < 0)
        return {};
    const qsizetype indent = start.indexOf(QRegularExpression("\\S"));
    qsizetype end = first + 1;
    while (end < outline.size() && outline.at(end).indexOf(QRegularExpression("\\S")) > indent)
        ++end;
    return outline.mid(first, end - first);
}

// A record from its fields, '|' between them, in the order uri, type, video
// and audio type, fps, dur, ch, aspect ratio, offset, umid; missing ones stay empty.
template <class Record> Record fileRecord(const QString& fields)
{
    const QStringList f = fields.split('|');
    Record r;
    r.setUri(f.value(0));
    r.setType(f.value(1));
    r.setVideoType(f.value(2));
    r.setAudioType(f.value(3));
    r.setFps(f.value(4));
    r.setDur(f.value(5));
    r.setCh(f.value(6));
    r.setAspectRatio(f.value(7));
    r.setOffset(f.value(8));
    r.setUmid(f.value(9));
    return r;
}

// A clip material as the folder scanner builds it: take info, its MP4 and
// three metadata files.
DOMaterial clipMaterial(const QString& clip)
{
    const QString base = QStringLiteral("./CLPR/%1/%1").arg(clip);
    DOMaterial material = fileRecord<DOMaterial>(base + ".SMI|PD-EDL|||59.94i|600|4|16:9|0|UMID-" + clip);
    material.setMPStatus("0");
    material.addComponent(
        fileRecord<DOComponent>(base + ".MP4|MP4|MPEG2HD35_1920_1080_MP@HL|LPCM16|59.94i|600|4|16:9|0"));
    for (const char* info : {"M01.XML|XML", "R01.BIM|BiM", "I01.PPN|PPN"})
        material.addRelevantInfo(fileRecord<DORelevantInfo>(base + info));
    return material;
}

} // namespace

TEST_F(MediaProfileAcssTest, ReplacedMaterialsKeepWhatTheRecordsDoNotWrite)
{
    cameraFolder();
    const QStringList before = savedOutline(kFixture);
    BLMediaProfileAcss acss;
    ASSERT_TRUE(acss.loadForFolderPath("~/card/BPAV/")); // "~" is the user's home
    DOAttached attached;
    ASSERT_TRUE(acss.getAttachedData(attached));
    attached.setMediaName("Wedding A2");
    EXPECT_EQ(acss.setAttachedData(attached), 0);

    // A0002 left the folder, the take comes first, A0001 is shorter and its
    // record carries no proxy, A0004 came in.
    QList<DOMaterial> materials = acss.getMaterialData("", 0);
    ASSERT_EQ(materials.size(), 4);
    materials[0].setDur("301");
    materials[0].setProxy({});
    DOMaterial noUri;
    noUri.setTitle("x");
    EXPECT_EQ(acss.replaceMaterialData({materials[0], noUri}), -1);
    ASSERT_EQ(acss.replaceMaterialData({materials[3], materials[0], materials[2], clipMaterial("A0004")}), 0);
    ASSERT_TRUE(acss.updateVersion("1.10"));
    ASSERT_TRUE(acss.save(kCameraMediaId));

    // Foreign attributes and children, A0001's proxy and the playlist stay.
    QStringList expected = before;
    auto at = [&expected](const QString& text) { return expected.indexOf(expected.filter(text).value(0)); };
    auto take = [&](const QString& text) {
        const QStringList lines = block(expected, expected.value(at(text)));
        expected.remove(at(text), lines.size());
        return lines;
    };
    auto insert = [&expected](qsizetype where, const QStringList& lines) {
        for (qsizetype i = 0; i < lines.size(); ++i)
            expected.insert(where + i, lines.at(i));
    };
    expected[at("MediaProfile xmlns")].replace(R"(version="1.20")", R"(version="1.10")");
    expected[at("mediaName=")].replace(R"(mediaName="Wedding A")", R"(mediaName="Wedding A2")");
    expected[at("Material uri=\"./CLPR/A0001/")].replace(R"(dur="300")", R"(dur="301")");
    take("Material uri=\"./CLPR/A0002/");
    const QStringList takeBlock = take("Material uri=\"./TAKR/T0001/");
    insert(at("Material uri=\"./CLPR/A0001/"), takeBlock);
    insert(
        at("cam:Playlist"),
        {R"(    Material uri="./CLPR/A0004/A0004.SMI" type="PD-EDL" fps="59.94i" dur="600" ch="4" aspectRatio="16:9" offset="0" umid="UMID-A0004" status="0")",
         R"(      Component uri="./CLPR/A0004/A0004.MP4" type="MP4" videoType="MPEG2HD35_1920_1080_MP@HL" audioType="LPCM16" fps="59.94i" dur="600" ch="4" aspectRatio="16:9" offset="0")",
         R"(      RelevantInfo uri="./CLPR/A0004/A0004M01.XML" type="XML")",
         R"(      RelevantInfo uri="./CLPR/A0004/A0004R01.BIM" type="BiM")",
         R"(      RelevantInfo uri="./CLPR/A0004/A0004I01.PPN" type="PPN")"});
    EXPECT_EQ(cwmeta::joined(savedOutline(acss.filePath())), cwmeta::joined(expected));
}

TEST_F(MediaProfileAcssTest, SavingWithoutMediaIdRenewsItFromTheSequenceNumber)
{
    cwtest::writeSettings(home().configHome(), {{"SEQUENTIAL_NO", 9997}});
    const QString folder = cameraFolder();
    const QString path = folder + "/MEDIAPRO.XML";
    auto storedMediaId = [&folder] {
        BLMediaProfileAcss acss;
        DOAttached attached;
        EXPECT_TRUE(acss.loadForFolderPath(folder) && acss.getAttachedData(attached));
        return attached.getMediaId();
    };

    // A media id given to save leaves Attached and the sequence alone.
    BLMediaProfileAcss given;
    ASSERT_TRUE(given.loadForFolderPath(folder) && given.save("ANY"));
    EXPECT_EQ(storedMediaId(), kCameraMediaId);
    EXPECT_EQ(BLPlistCtrl::sharedCtrl()->getSequentialNo(), 9997);
    // Empty text: a new id from the sequence number plus one; 9998 is the
    // last number, after it comes 0.
    QStringList ids;
    for (const int expectedNo : {9998, 0, 1}) {
        BLMediaProfileAcss acss;
        ASSERT_TRUE(acss.loadForFolderPath(folder) && acss.save(""));
        EXPECT_EQ(BLPlistCtrl::sharedCtrl()->getSequentialNo(), expectedNo);
        ids << storedMediaId();
        EXPECT_TRUE(QRegularExpression("^[0-9A-F]{32}$").match(ids.last()).hasMatch())
            << ids.last().toStdString();
        EXPECT_EQ(ids.last().mid(14, 2), QString::number((expectedNo % 64) | 0xC0, 16).toUpper());
    }
    // Attached was changed in place: its other values and foreign attribute stay.
    EXPECT_TRUE(cwmeta::fileOutlineLines(path).contains(
        QStringLiteral(
            R"(    Attached mediaId="%1" mediaKind="ProfessionalMemoryCard" mediaName="Wedding A" cam:slot="A")")
            .arg(ids.last())));

    // A profile without Attached gets one, in its place among the properties.
    const QString noAttached =
        makeFolder(R"(<MediaProfile xmlns="urn:x"><Properties><System systemId="a"/>)"
                   R"(<Metadata charset="UTF-8"/></Properties><Contents/></MediaProfile>)");
    BLMediaProfileAcss acss;
    ASSERT_TRUE(acss.loadForFolderPath(noAttached) && acss.save(""));
    const QStringList outline = cwmeta::fileOutlineLines(acss.filePath());
    ASSERT_EQ(outline.size(), 6);
    EXPECT_TRUE(
        QRegularExpression(
            R"(^    Attached mediaId="[0-9A-F]{32}" mediaKind="ProfessionalMemoryCard" mediaName=""$)")
            .match(outline.at(3))
            .hasMatch())
        << outline.join('\n').toStdString();
    EXPECT_EQ(BLPlistCtrl::sharedCtrl()->getSequentialNo(), 2);
}

TEST_F(MediaProfileAcssTest, NewProfileHoldsTheHeaderAndIsWrittenOnlyBySave)
{
    const QString folder = home().path("new/BPAV");
    ASSERT_TRUE(QDir().mkpath(folder));
    BLMediaProfileAcss acss;
    ASSERT_TRUE(acss.createForFolderPath(folder + "/../BPAV/"));
    EXPECT_EQ(acss.filePath(), folder + "/MEDIAPRO.XML");
    EXPECT_FALSE(QFile::exists(acss.filePath()));

    // Saving with empty text makes no media id for a created profile.
    ASSERT_TRUE(acss.save(""));
    EXPECT_EQ(BLPlistCtrl::sharedCtrl()->getSequentialNo(), 0);
    const QStringList outline = cwmeta::fileOutlineLines(acss.filePath());
    EXPECT_TRUE(
        QRegularExpression(
            R"re(^MediaProfile xmlns="urn:schemas-professionalDisc:mediaProfile:ver.1.00" )re"
            R"re(createdAt="\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d([+-]\d\d:\d\d|Z)" version="1.10"\n)re"
            R"re(  Properties\n    System systemId="[0-9a-f]{12}" systemKind="ORX Clipwright ver.1.000"$)re")
            .match(outline.join('\n'))
            .hasMatch())
        << outline.join('\n').toStdString();

    // Loaded back, it is an ordinary profile: materials go into a new Contents after Properties.
    BLMediaProfileAcss loaded;
    ASSERT_TRUE(loaded.loadForFolderPath(folder));
    ASSERT_EQ(loaded.replaceMaterialData({clipMaterial("A0001")}), 0);
    ASSERT_TRUE(loaded.save(""));
    const QStringList replaced = cwmeta::fileOutlineLines(loaded.filePath());
    const qsizetype contents = replaced.indexOf("  Contents");
    EXPECT_GT(contents, replaced.indexOf("  Properties"));
    EXPECT_EQ(replaced.value(contents + 1).toStdString(),
              R"(    Material uri="./CLPR/A0001/A0001.SMI" type="PD-EDL" fps="59.94i" dur="600" ch="4" )"
              R"(aspectRatio="16:9" offset="0" umid="UMID-A0001" status="0")");
}

TEST_F(MediaProfileAcssTest, HostileFilesAreRefused)
{
    cwmeta::expectHostileFilesRefused("MediaProfile", "MEDIAPRO.XML", [](const QString& folder) {
        BLMediaProfileAcss acss;
        DOMediaProfileData data;
        return acss.loadForFolderPath(folder) || acss.getMediaPro(data, "", 0) || acss.save("");
    });
}
