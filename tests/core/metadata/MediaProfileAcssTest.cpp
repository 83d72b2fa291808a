#include "MetadataTestSupport.h"

#include "core/formats/metadata/BLMediaProfileAcss.h"
#include "core/services/BLPlistCtrl.h"
#include "support/TestEnvironment.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>

#include <gtest/gtest.h>

namespace {
using namespace cwmeta;

const QString kFixture = fixturePath("mediapro/MEDIAPRO.XML");
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
    const XmlNode written = readXmlOutline(acss.filePath());
    XmlNode expected = readXmlOutline(kFixture);
    expected.setAttribute("version", "1.10");
    expected.setAttribute("createdAt", written.attribute("createdAt"));
    expected.child("Properties")->child("Attached")->setAttribute("mediaName", "Wedding A2");
    QList<XmlNode>& contents = expected.child("Contents")->children;
    contents[0].setAttribute("dur", "301");
    ASSERT_NE(written.child("Contents")->child("Material", 3), nullptr);
    const XmlNode a0004 = *written.child("Contents")->child("Material", 3);
    contents = {contents[3], contents[0], contents[2], a0004, contents[4]};
    EXPECT_EQ(written, expected);
    EXPECT_EQ(
        describe(a0004),
        R"(<Material uri="./CLPR/A0004/A0004.SMI" type="PD-EDL" fps="59.94i" dur="600" ch="4" aspectRatio="16:9" offset="0" umid="UMID-A0004" status="0">
  <Component uri="./CLPR/A0004/A0004.MP4" type="MP4" videoType="MPEG2HD35_1920_1080_MP@HL" audioType="LPCM16" fps="59.94i" dur="600" ch="4" aspectRatio="16:9" offset="0">
  <RelevantInfo uri="./CLPR/A0004/A0004M01.XML" type="XML">
  <RelevantInfo uri="./CLPR/A0004/A0004R01.BIM" type="BiM">
  <RelevantInfo uri="./CLPR/A0004/A0004I01.PPN" type="PPN">
)");
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
    EXPECT_EQ(
        describe(*readXmlOutline(path).child("Properties")->child("Attached")),
        QStringLiteral(
            R"(<Attached mediaId="%1" mediaKind="ProfessionalMemoryCard" mediaName="Wedding A" cam:slot="A">)"
            "\n")
            .arg(ids.last()));

    // A profile without Attached gets one, in its place among the properties.
    const QString noAttached =
        makeFolder(R"(<MediaProfile xmlns="urn:x"><Properties><System systemId="a"/>)"
                   R"(<Metadata charset="UTF-8"/></Properties><Contents/></MediaProfile>)");
    BLMediaProfileAcss acss;
    ASSERT_TRUE(acss.loadForFolderPath(noAttached) && acss.save(""));
    const XmlNode properties = *readXmlOutline(acss.filePath()).child("Properties");
    EXPECT_EQ(properties.childNames(), Names({"System", "Attached", "Metadata"}));
    EXPECT_TRUE(QRegularExpression(
                    R"(^<Attached mediaId="[0-9A-F]{32}" mediaKind="ProfessionalMemoryCard" mediaName="">$)")
                    .match(describe(properties.children.value(1)).trimmed())
                    .hasMatch())
        << describe(properties).toStdString();
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
    const QString header = describe(readXmlOutline(acss.filePath()));
    EXPECT_TRUE(
        QRegularExpression(
            R"re(^<MediaProfile xmlns="urn:schemas-professionalDisc:mediaProfile:ver.1.00" )re"
            R"re(createdAt="\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d([+-]\d\d:\d\d|Z)" version="1.10">\n)re"
            R"re(  <Properties>\n    <System systemId="[0-9a-f]{12}" systemKind="ORX Clipwright ver.1.000">\n$)re")
            .match(header)
            .hasMatch())
        << header.toStdString();

    // Loaded back, it is an ordinary profile: materials go into a new Contents after Properties.
    BLMediaProfileAcss loaded;
    ASSERT_TRUE(loaded.loadForFolderPath(folder));
    ASSERT_EQ(loaded.replaceMaterialData({clipMaterial("A0001")}), 0);
    ASSERT_TRUE(loaded.save(""));
    const XmlNode replaced = readXmlOutline(loaded.filePath());
    EXPECT_EQ(replaced.childNames(), Names({"Properties", "Contents"}));
    EXPECT_EQ(replaced.child("Contents")->child("Material")->attribute("uri"), "./CLPR/A0001/A0001.SMI");
}

TEST_F(MediaProfileAcssTest, HostileFilesAreRefused)
{
    expectHostileFilesRefused("MediaProfile", "MEDIAPRO.XML", [](const QString& folder) {
        BLMediaProfileAcss acss;
        DOMediaProfileData data;
        return acss.loadForFolderPath(folder) || acss.getMediaPro(data, "", 0) || acss.save("");
    });
}
