#include "MetadataTestSupport.h"

#include "core/app/BLPlistCtrl.h"
#include "core/metadata/BLMediaProfileAcss.h"
#include "support/TestEnvironment.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>

#include <gtest/gtest.h>

#include <type_traits>

namespace {
const QString kFixture = cwmeta::fixturePath("mediapro/MEDIAPRO.XML");
const QString kCameraMediaId = "1234567890ABCDEF1234567890ABCDEF";

class MediaProfileAcssTest : public cwtest::HomeTest
{
protected:
    // A BPAV folder in the test home holding the given media profile text.
    QString makeFolder(const QByteArray& profile)
    {
        const QString folder = home().path("card/BPAV");
        QDir().mkpath(folder);
        QFile file(folder + "/MEDIAPRO.XML");
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(profile);
        return folder;
    }
    QString cameraFolder() { return makeFolder(cwmeta::readBytes(kFixture)); }
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

QString rootLine(const QStringList& outline)
{
    const qsizetype at = outline.indexOf(QRegularExpression("MediaProfile .*")); // whole lines
    return at < 0 ? QString() : outline.at(at);
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

template <class Record> QString describeFile(const Record& r)
{
    return QStringList{r.getUri(), r.getType(), r.getVideoType(),   r.getAudioType(), r.getFps(),
                       r.getDur(), r.getCh(),   r.getAspectRatio(), r.getOffset(),    r.getUmid()}
        .join('|');
}

QString describe(const DOMaterial& m)
{
    QStringList parts{describeFile(m) + '|' + m.getTitle() + '|' + m.getMPStatus()};
    for (const DOComponent& c : m.getComponent())
        parts << "C:" + c.getMediaId() + "," + c.getMediaKind() + "," + c.getMediaName() + "," +
                     describeFile(c);
    for (const DOProxy& p : m.getProxy())
        parts << "P:" + p.getMediaId() + "," + p.getMediaKind() + "," + describeFile(p);
    for (const DORelevantInfo& i : m.getRelevantInfo())
        parts << "R:" + i.getMediaId() + "," + i.getMediaKind() + "," + describeFile(i);
    return parts.join(' ');
}

QStringList describe(const QList<DOMaterial>& materials)
{
    QStringList list;
    for (const DOMaterial& m : materials)
        list << describe(m);
    return list;
}

QStringList uris(const QList<DOMaterial>& materials)
{
    QStringList list;
    for (const DOMaterial& m : materials)
        list << m.getUri();
    return list;
}

// A record from the fields describeFile lists, '|' between them; missing ones stay empty.
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

// The record on a medium of the card kind.
template <class Record> Record onMedium(Record r, const QString& mediaId, const QString& mediaName = {})
{
    r.setMediaId(mediaId);
    r.setMediaKind("ProfessionalMemoryCard");
    if constexpr (std::is_same_v<Record, DOComponent>)
        r.setMediaName(mediaName);
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

// Runs the rewrite a folder gets after an operation: replace the contents
// with these materials, set the version, save with the media id.
bool rebuild(BLMediaProfileAcss& acss, const QList<DOMaterial>& materials, const QString& mediaId)
{
    acss.delContentsData(); // false when there was no Contents yet
    if (acss.setMaterialData(materials) != 0)
        return false;
    for (const DOMaterial& m : materials) {
        if (!m.getComponent().isEmpty() && acss.setComponentData(m.getComponent(), m.getUri()) != 0)
            return false;
        if (!m.getRelevantInfo().isEmpty() && acss.setRelevantInfoDaata(m.getRelevantInfo(), m.getUri()) != 0)
            return false;
    }
    return acss.updateVersion("1.10") && acss.save(mediaId);
}

} // namespace

TEST_F(MediaProfileAcssTest, ReadsEveryPartOfACameraFile)
{
    cameraFolder();
    BLMediaProfileAcss acss;
    ASSERT_TRUE(acss.loadForFolderPath("~/card/BPAV/")); // "~" is the user's home
    EXPECT_EQ(acss.filePath(), home().path("card/BPAV/MEDIAPRO.XML"));
    DOMediaProfileData data;
    ASSERT_TRUE(acss.getMediaPro(data, "", 0));

    EXPECT_EQ(data.getSystem().getSystemId(), "0800460200a1");
    EXPECT_EQ(data.getSystem().getSystemKind(), "Camera CX-100 ver.1.10");
    EXPECT_EQ(data.getSystem().getVersion(), "2.00");
    EXPECT_EQ(data.getAttached().getMediaId(), kCameraMediaId);
    EXPECT_EQ(data.getAttached().getMediaKind(), "ProfessionalMemoryCard");
    EXPECT_EQ(data.getAttached().getMediaName(), "Wedding A");
    EXPECT_EQ(data.getMetadata().getCharset(), "UTF-8");
    EXPECT_EQ(data.getMetadata().getType(), "nonRealTimeMeta");

    const QStringList umidOf = {"",
                                "060A2B340101010501010D431300000000123456789012340800460202123456",
                                "060A2B340101010501010D431300000000123456789012350800460202123456",
                                "060A2B340101010501010D431300000000123456789012360800460202123456",
                                "060A2B340101010501010D431300000000123456789012370800460202123456",
                                "060A2B340101010501010D431300000000123456789012380800460202123456"};
    const QString hd = "MPEG2HD35_1920_1080_MP@HL";
    EXPECT_EQ(cwmeta::joined(describe(data.getMaterial())),
              cwmeta::joined(QStringList({
                  "./CLPR/A0001/A0001.SMI|PD-EDL|||59.94i|300|2|16:9|0|" + umidOf[1] +
                      "||0"
                      " C:,,,./CLPR/A0001/A0001.MP4|MP4|" +
                      hd +
                      "|LPCM16|59.94i|300|2|16:9|0|"
                      " P:,,./CLPR/A0001/A0001P.MP4|MP4|MPEG4SP|||||||"
                      " R:,,./CLPR/A0001/A0001M01.XML|XML||||||||"
                      " R:,,./CLPR/A0001/A0001R01.BIM|BiM||||||||"
                      " R:,,./CLPR/A0001/A0001I01.PPN|PPN||||||||",
                  "./CLPR/A0002/A0002.SMI|PD-EDL|||59.94i|450|2|16:9|0|" + umidOf[2] +
                      "||0"
                      " C:,,,./CLPR/A0002/A0002.MP4|MP4|" +
                      hd +
                      "|LPCM16|59.94i|450|2|16:9|0|"
                      " R:,,./CLPR/A0002/A0002M01.XML|XML||||||||"
                      " R:,,./CLPR/A0002/A0002R01.BIM|BiM||||||||"
                      " R:,,./CLPR/A0002/A0002I01.PPN|PPN||||||||",
                  "./CLPR/A0003/A0003.MP4|MP4|" + hd + "|LPCM16|29.97p|120|2|16:9|0|" + umidOf[3] +
                      "||3"
                      " R:,,./CLPR/A0003/A0003M01.XML|XML||||||||",
                  "./TAKR/T0001/T0001.SMI|PD-EDL|||59.94i|750|2|16:9|0|" + umidOf[4] +
                      "||0"
                      " C:,,,./CLPR/A0001/A0001.SMI|PD-EDL||||||||" +
                      umidOf[1] +
                      " C:FEDCBA0987654321FEDCBA0987654321,ProfessionalMemoryCard,Wedding B,"
                      "file://FEDCBA0987654321FEDCBA0987654321/CLPR/B0001/B0001.SMI|PD-EDL||||||||" +
                      umidOf[5] + " R:,,./TAKR/T0001/T0001M01.XML|XML||||||||",
              })));

    // Search modes: 1 clips, 2 takes, 0 any; the children of a found material
    // are filtered by the take id itself, so a take's clips are not its children.
    const struct
    {
        QString id;
        int mode;
        QStringList uris;
        int components, proxies, infos; // of the first found
    } searches[] = {
        {"", 1, {"./CLPR/A0001/A0001.SMI", "./CLPR/A0002/A0002.SMI", "./CLPR/A0003/A0003.MP4"}, 1, 1, 3},
        {"", 2, {"./TAKR/T0001/T0001.SMI"}, 2, 0, 1},
        {"A000", 0, {"./CLPR/A0001/A0001.SMI", "./CLPR/A0002/A0002.SMI", "./CLPR/A0003/A0003.MP4"}, 1, 1, 3},
        {"A0001", 1, {"./CLPR/A0001/A0001.SMI"}, 1, 1, 3},
        {"T0001", 2, {"./TAKR/T0001/T0001.SMI"}, 0, 0, 1},
        {"A0001", 2, {}, 0, 0, 0},
        {"T0001", 1, {}, 0, 0, 0},
    };
    for (const auto& s : searches) {
        SCOPED_TRACE(s.id.toStdString() + " mode " + std::to_string(s.mode));
        const QList<DOMaterial> found = acss.getMaterialData(s.id, s.mode);
        EXPECT_EQ(uris(found), s.uris);
        if (found.isEmpty())
            continue;
        EXPECT_EQ(found[0].getComponent().size(), s.components);
        EXPECT_EQ(found[0].getProxy().size(), s.proxies);
        EXPECT_EQ(found[0].getRelevantInfo().size(), s.infos);
    }
    ASSERT_TRUE(acss.getMediaPro(data, "", 2));
    EXPECT_EQ(data.getMaterial().size(), 1);
    EXPECT_EQ(data.getAttached().getMediaName(), "Wedding A");
}

TEST_F(MediaProfileAcssTest, EditsKeepForeignContentAndFormatOrder)
{
    const QString folder = cameraFolder();
    const QStringList before = savedOutline(kFixture);
    ASSERT_FALSE(before.isEmpty());

    BLMediaProfileAcss acss;
    ASSERT_TRUE(acss.loadForFolderPath(folder));
    DOAttached attached;
    ASSERT_TRUE(acss.getAttachedData(attached));
    attached.setMediaName("Wedding A2");
    EXPECT_EQ(acss.setAttachedData(attached), 0);

    // An existing material: changed values in place, empty fields leave stored ones.
    DOMaterial a0002;
    a0002.setUri("./CLPR/A0002/A0002.SMI");
    a0002.setDur("451");
    a0002.setMPStatus("5");
    EXPECT_EQ(acss.setMaterialData({a0002}), 0);
    // New children land after their own kind, before the kinds that follow it.
    EXPECT_EQ(
        acss.setProxyData({fileRecord<DOProxy>("./CLPR/A0002/A0002P.MP4|MP4")}, "./CLPR/A0002/A0002.SMI"), 0);
    const auto remote =
        onMedium(fileRecord<DOComponent>(
                     "file://00112233445566778899AABBCCDDEEFF/CLPR/C0001/C0001.SMI|PD-EDL||||||||UMID-C0001"),
                 "00112233445566778899AABBCCDDEEFF", "Wedding C");
    EXPECT_EQ(acss.setComponentData({remote}, "./TAKR/T0001/T0001.SMI"), 0);
    EXPECT_EQ(
        acss.setRelevantInfoDaata({fileRecord<DORelevantInfo>("./CLPR/A0001/A0001M01.XML|||||||||UMID-NRT")},
                                  "./CLPR/A0001/A0001.SMI"),
        0);
    // A new material with its files.
    const DOMaterial a0004 = clipMaterial("A0004");
    EXPECT_EQ(acss.setMaterialData({a0004}), 0);
    EXPECT_EQ(acss.setComponentData(a0004.getComponent(), a0004.getUri()), 0);
    EXPECT_EQ(acss.setRelevantInfoDaata(a0004.getRelevantInfo(), a0004.getUri()), 0);
    EXPECT_TRUE(acss.updateVersion("1.10"));
    ASSERT_TRUE(acss.save(kCameraMediaId));

    QStringList expected = before;
    auto replace = [&expected](const QString& from, const QString& to) {
        const qsizetype at = expected.indexOf(from);
        ASSERT_GE(at, 0) << from.toStdString();
        expected[at] = to;
    };
    auto insertAfter = [&expected](const QString& line, const QStringList& lines) {
        const qsizetype at = expected.indexOf(line);
        ASSERT_GE(at, 0) << line.toStdString();
        for (qsizetype i = 0; i < lines.size(); ++i)
            expected.insert(at + 1 + i, lines.at(i));
    };
    const QString root = rootLine(expected);
    replace(root, QString(root).replace(R"(version="1.20")", R"(version="1.10")"));
    replace(
        R"(    Attached mediaId="1234567890ABCDEF1234567890ABCDEF" mediaKind="ProfessionalMemoryCard" mediaName="Wedding A" cam:slot="A")",
        R"(    Attached mediaId="1234567890ABCDEF1234567890ABCDEF" mediaKind="ProfessionalMemoryCard" mediaName="Wedding A2" cam:slot="A")");
    const QString oldA0002 =
        R"(    Material uri="./CLPR/A0002/A0002.SMI" type="PD-EDL" fps="59.94i" dur="450" ch="2" aspectRatio="16:9" offset="0" umid="060A2B340101010501010D431300000000123456789012350800460202123456" status="0")";
    replace(
        oldA0002,
        QString(oldA0002).replace(R"(dur="450")", R"(dur="451")").replace(R"(status="0")", R"(status="5")"));
    insertAfter(
        R"(      Component uri="./CLPR/A0002/A0002.MP4" type="MP4" videoType="MPEG2HD35_1920_1080_MP@HL" audioType="LPCM16" fps="59.94i" dur="450" ch="2" aspectRatio="16:9" offset="0")",
        {R"(      Proxy mediaId="" uri="./CLPR/A0002/A0002P.MP4" type="MP4")"});
    insertAfter(
        R"(      Component mediaId="FEDCBA0987654321FEDCBA0987654321" mediaKind="ProfessionalMemoryCard" mediaName="Wedding B" uri="file://FEDCBA0987654321FEDCBA0987654321/CLPR/B0001/B0001.SMI" type="PD-EDL" umid="060A2B340101010501010D431300000000123456789012380800460202123456")",
        {R"(      Component mediaId="00112233445566778899AABBCCDDEEFF" mediaKind="ProfessionalMemoryCard" mediaName="Wedding C" uri="file://00112233445566778899AABBCCDDEEFF/CLPR/C0001/C0001.SMI" type="PD-EDL" umid="UMID-C0001")"});
    replace(R"(      RelevantInfo uri="./CLPR/A0001/A0001M01.XML" type="XML")",
            R"(      RelevantInfo uri="./CLPR/A0001/A0001M01.XML" type="XML" umid="UMID-NRT")");
    insertAfter(
        R"(      "./CLPR/A0002/A0002.SMI")",
        {R"(    Material uri="./CLPR/A0004/A0004.SMI" type="PD-EDL" fps="59.94i" dur="600" ch="4" aspectRatio="16:9" offset="0" umid="UMID-A0004" status="0")",
         R"(      Component uri="./CLPR/A0004/A0004.MP4" type="MP4" videoType="MPEG2HD35_1920_1080_MP@HL" audioType="LPCM16" fps="59.94i" dur="600" ch="4" aspectRatio="16:9" offset="0")",
         R"(      RelevantInfo uri="./CLPR/A0004/A0004M01.XML" type="XML")",
         R"(      RelevantInfo uri="./CLPR/A0004/A0004R01.BIM" type="BiM")",
         R"(      RelevantInfo uri="./CLPR/A0004/A0004I01.PPN" type="PPN")"});
    EXPECT_EQ(cwmeta::joined(savedOutline(acss.filePath())), cwmeta::joined(expected));

    // The saved file reads back with the same values.
    BLMediaProfileAcss again;
    ASSERT_TRUE(again.loadForFolderPath(folder));
    const QList<DOMaterial> materials = again.getMaterialData("", 0);
    ASSERT_EQ(materials.size(), 5);
    EXPECT_EQ(describe(materials.last()), describe(a0004));
}

TEST_F(MediaProfileAcssTest, RebuildsKeepTheHeaderAndReadBackExactlyAtTheFolderLimit)
{
    const QString folder = cameraFolder();
    const QStringList before = savedOutline(kFixture);
    BLMediaProfileAcss acss;
    ASSERT_TRUE(acss.loadForFolderPath(folder));

    // The clip A0002 left the folder; the take and A0001 stay (without the
    // proxy, which a rewrite does not carry), clips up to the 600 limit came in.
    QList<DOMaterial> materials = acss.getMaterialData("", 0);
    materials.removeAt(1);
    materials[0].setProxy({});
    for (int i = 5; materials.size() < 600; ++i)
        materials.append(clipMaterial(QStringLiteral("A%1").arg(i, 4, 10, QLatin1Char('0'))));
    ASSERT_TRUE(rebuild(acss, materials, kCameraMediaId));

    const QStringList after = savedOutline(acss.filePath());
    // Root (but the version), Properties and the foreign trailer are kept, in their order.
    EXPECT_EQ(rootLine(after).toStdString(),
              QString(rootLine(before)).replace(R"(version="1.20")", R"(version="1.10")").toStdString());
    EXPECT_EQ(cwmeta::joined(block(after, "  Properties")), cwmeta::joined(block(before, "  Properties")));
    EXPECT_LT(after.indexOf("  Properties"), after.indexOf("  Contents"));
    EXPECT_LT(after.indexOf("  Contents"), after.indexOf(R"(  cam:Trailer checksum="9f2c")"));
    // Contents is exactly the new materials: the foreign playlist, the
    // material markers and the proxy are gone.
    const QString contents = block(after, "  Contents").join('\n');
    EXPECT_FALSE(contents.contains("cam:") || contents.contains("Proxy"));
    BLMediaProfileAcss again;
    ASSERT_TRUE(again.loadForFolderPath(folder));
    EXPECT_EQ(cwmeta::joined(describe(again.getMaterialData("", 0))), cwmeta::joined(describe(materials)));

    // Rewritten over itself in another order with every third material gone.
    QList<DOMaterial> second;
    for (qsizetype i = materials.size() - 1; i >= 0; --i)
        if (i % 3 != 0)
            second.append(materials.at(i));
    ASSERT_TRUE(rebuild(again, second, kCameraMediaId));
    BLMediaProfileAcss reread;
    ASSERT_TRUE(reread.loadForFolderPath(folder));
    EXPECT_EQ(cwmeta::joined(describe(reread.getMaterialData("", 0))), cwmeta::joined(describe(second)));
    DOAttached kept;
    ASSERT_TRUE(reread.getAttachedData(kept));
    EXPECT_EQ(kept.getMediaId(), kCameraMediaId);
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
    {
        BLMediaProfileAcss acss;
        ASSERT_TRUE(acss.loadForFolderPath(folder));
        ASSERT_TRUE(acss.save("ANY"));
        EXPECT_EQ(storedMediaId(), kCameraMediaId);
        EXPECT_EQ(BLPlistCtrl::sharedCtrl()->getSequentialNo(), 9997);
    }
    // Empty text: a new id from the sequence number plus one; 9998 is the
    // last number, after it comes 0.
    QStringList ids;
    for (const int expectedNo : {9998, 0, 1}) {
        BLMediaProfileAcss acss;
        ASSERT_TRUE(acss.loadForFolderPath(folder));
        ASSERT_TRUE(acss.save(""));
        EXPECT_EQ(BLPlistCtrl::sharedCtrl()->getSequentialNo(), expectedNo);
        ids << storedMediaId();
        EXPECT_TRUE(QRegularExpression("^[0-9A-F]{32}$").match(ids.last()).hasMatch())
            << ids.last().toStdString();
        EXPECT_EQ(ids.last().mid(14, 2), QString::number((expectedNo % 64) | 0xC0, 16).toUpper());
    }
    EXPECT_EQ(QSet<QString>(ids.begin(), ids.end()).size(), 3);
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
    ASSERT_TRUE(acss.loadForFolderPath(noAttached));
    ASSERT_TRUE(acss.save(""));
    const QStringList outline = cwmeta::fileOutlineLines(acss.filePath());
    ASSERT_EQ(outline.size(), 6);
    EXPECT_TRUE(
        QRegularExpression(
            R"(^    Attached mediaId="[0-9A-F]{32}" mediaKind="ProfessionalMemoryCard" mediaName=""$)")
            .match(outline.at(3))
            .hasMatch())
        << outline.join('\n').toStdString();
    EXPECT_EQ(outline.at(4), R"(    Metadata charset="UTF-8")");
    EXPECT_EQ(BLPlistCtrl::sharedCtrl()->getSequentialNo(), 2);
}

TEST_F(MediaProfileAcssTest, NewProfileHoldsTheHeaderAndIsWrittenOnlyBySave)
{
    const QString folder = home().path("new/BPAV");
    QDir().mkpath(folder);
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
    ASSERT_TRUE(rebuild(loaded, {clipMaterial("A0001")}, "KEEP"));
    EXPECT_EQ(cwmeta::fileOutlineLines(loaded.filePath()).value(3), "  Contents");
    BLMediaProfileAcss reread;
    ASSERT_TRUE(reread.loadForFolderPath(folder));
    EXPECT_EQ(describe(reread.getMaterialData("", 0)), QStringList{describe(clipMaterial("A0001"))});
}

TEST_F(MediaProfileAcssTest, PropertiesWritersFollowTheirRules)
{
    // A profile without Properties, with a foreign element first.
    const QString folder =
        makeFolder(R"(<MediaProfile xmlns="urn:x" xmlns:f="urn:f"><f:Head/><Contents/></MediaProfile>)");
    BLMediaProfileAcss acss;
    ASSERT_TRUE(acss.loadForFolderPath(folder));

    DOMetadata metadata;
    EXPECT_EQ(acss.setMetadataData(metadata), -1); // both values empty
    metadata.setType("nonRealTimeMeta");
    EXPECT_EQ(acss.setMetadataData(metadata), 0);
    DOSystem system;
    system.setSystemKind("K");
    EXPECT_EQ(acss.setSystemData(system), -1); // no system id
    system.setSystemId("0800460200a1");
    system.setVersion("3");
    EXPECT_EQ(acss.setSystemData(system), 0);
    // An existing System keeps its id; an empty version leaves the stored one.
    DOSystem other;
    other.setSystemId("ffffffffffff");
    other.setSystemKind("K2");
    EXPECT_EQ(acss.setSystemData(other), 0);
    // A new Attached may start without an id; an existing one may not lose it.
    DOAttached attached;
    attached.setMediaName("Card");
    EXPECT_EQ(acss.setAttachedData(attached), 0);
    EXPECT_EQ(acss.setAttachedData(attached), -1);
    attached.setMediaId("ID");
    attached.setMediaName("");
    EXPECT_EQ(acss.setAttachedData(attached), 0);
    ASSERT_TRUE(acss.save("ID"));

    EXPECT_EQ(cwmeta::joined(savedOutline(acss.filePath())),
              cwmeta::joined(
                  QStringList({R"(MediaProfile xmlns="urn:x" xmlns:f="urn:f" createdAt="*")", "  Properties",
                               R"(    System systemId="0800460200a1" systemKind="K2" version="3")",
                               R"(    Attached mediaId="ID" mediaKind="ProfessionalMemoryCard" mediaName="")",
                               R"(    Metadata type="nonRealTimeMeta")", "  f:Head", "  Contents"})));
}

TEST_F(MediaProfileAcssTest, ChildAttributesFollowTheFormatRules)
{
    const QString folder = home().path("BPAV");
    QDir().mkpath(folder);
    BLMediaProfileAcss acss;
    ASSERT_TRUE(acss.createForFolderPath(folder));
    const auto material = fileRecord<DOMaterial>("./TAKR/T0001/T0001.SMI|PD-EDL");
    ASSERT_EQ(acss.setMaterialData({material}), 0);

    // Media attributes only for a component on another medium, and only when
    // set; a proxy always names its medium, even without an id; relevant infos never do.
    const auto local = onMedium(fileRecord<DOComponent>("./CLPR/A0001/A0001.SMI|PD-EDL"), "ID1", "Name");
    const auto remote = onMedium(fileRecord<DOComponent>("file://ID1/CLPR/B0001/B0001.SMI|PD-EDL"), "ID1");
    const auto proxy = onMedium(fileRecord<DOProxy>("./CLPR/A0001/A0001P.MP4||||59.94i"), "");
    const auto info = onMedium(fileRecord<DORelevantInfo>("./TAKR/T0001/T0001M01.XML|XML"), "ID1");
    // Written out of format order on purpose: each lands among its own kind.
    ASSERT_EQ(acss.setRelevantInfoDaata({info}, material.getUri()), 0);
    ASSERT_EQ(acss.setProxyData({proxy}, material.getUri()), 0);
    ASSERT_EQ(acss.setComponentData({local, remote}, material.getUri()), 0);
    EXPECT_EQ(acss.setComponentData({local}, "./TAKR/T9999/T9999.SMI"), -1); // no such material
    ASSERT_TRUE(acss.save(""));

    const QStringList outline = cwmeta::fileOutlineLines(acss.filePath());
    EXPECT_EQ(
        cwmeta::joined(block(outline, R"(    Material uri="./TAKR/T0001/T0001.SMI" type="PD-EDL")")),
        cwmeta::joined(QStringList(
            {R"(    Material uri="./TAKR/T0001/T0001.SMI" type="PD-EDL")",
             R"(      Component uri="./CLPR/A0001/A0001.SMI" type="PD-EDL")",
             R"(      Component mediaId="ID1" mediaKind="ProfessionalMemoryCard" uri="file://ID1/CLPR/B0001/B0001.SMI" type="PD-EDL")",
             R"(      Proxy mediaId="" mediaKind="ProfessionalMemoryCard" uri="./CLPR/A0001/A0001P.MP4" fps="59.94i")",
             R"(      RelevantInfo uri="./TAKR/T0001/T0001M01.XML" type="XML")"})));
}

TEST_F(MediaProfileAcssTest, WritingTheSameUriUpdatesOneElement)
{
    QDir().mkpath(home().path("BPAV"));
    BLMediaProfileAcss acss;
    ASSERT_TRUE(acss.createForFolderPath(home().path("BPAV")));
    DOMaterial first = clipMaterial("A0001");
    first.setTitle("First");
    ASSERT_EQ(acss.setMaterialData({first}), 0);
    DOMaterial second;
    second.setUri(first.getUri());
    second.setDur("999");
    ASSERT_EQ(acss.setMaterialData({second}), 0);
    ASSERT_EQ(acss.setComponentData(first.getComponent(), first.getUri()), 0);
    DOComponent changed = first.getComponent().first();
    changed.setDur("999");
    ASSERT_EQ(acss.setComponentData({changed}, first.getUri()), 0);
    // Uris holding quotes are matched like any other.
    DOMaterial quoted = clipMaterial("Tom's \"best\"");
    for (int i = 0; i < 2; ++i) {
        ASSERT_EQ(acss.setMaterialData({quoted}), 0);
        ASSERT_EQ(acss.setRelevantInfoDaata(quoted.getRelevantInfo(), quoted.getUri()), 0);
    }

    // Refused requests change nothing.
    ASSERT_TRUE(acss.save("ID"));
    const QStringList before = cwmeta::fileOutlineLines(acss.filePath()).mid(1);
    DOMaterial noUri;
    noUri.setTitle("x");
    EXPECT_EQ(acss.setMaterialData({}), -1);
    EXPECT_EQ(acss.setMaterialData({clipMaterial("A0009"), noUri}), -1);
    EXPECT_EQ(acss.setComponentData({}, first.getUri()), -1);
    EXPECT_EQ(acss.setComponentData({DOComponent()}, first.getUri()), -1);
    ASSERT_TRUE(acss.save("ID"));
    EXPECT_EQ(cwmeta::joined(cwmeta::fileOutlineLines(acss.filePath()).mid(1)), cwmeta::joined(before));

    BLMediaProfileAcss again;
    ASSERT_TRUE(again.loadForFolderPath(home().path("BPAV")));
    const QList<DOMaterial> materials = again.getMaterialData("", 0);
    ASSERT_EQ(materials.size(), 2);
    // Only what was written: the first material's component, the second's relevant infos.
    first.setDur("999");
    first.setComponent({changed});
    first.setRelevantInfo({});
    quoted.setComponent({});
    EXPECT_EQ(describe(materials[0]), describe(first));
    EXPECT_EQ(describe(materials[1]), describe(quoted));
}

TEST_F(MediaProfileAcssTest, DeletionsCountWhatTheyRemove)
{
    const QString folder =
        makeFolder(cwmeta::readBytes(kFixture).replace("./CLPR/A0003/A0003.MP4", "./CLPR/A0002/A0002.SMI"));
    BLMediaProfileAcss acss;
    ASSERT_TRUE(acss.loadForFolderPath(folder));
    EXPECT_EQ(acss.delMaterialData("./CLPR/A0002/A0002.SMI"), 2); // both materials of that uri
    EXPECT_EQ(acss.delMaterialData("./CLPR/A0002/A0002.SMI"), 0);
    EXPECT_EQ(uris(acss.getMaterialData("", 0)),
              QStringList({"./CLPR/A0001/A0001.SMI", "./TAKR/T0001/T0001.SMI"}));

    // Without Contents the properties and foreign content are saved as they were.
    EXPECT_TRUE(acss.delContentsData());
    EXPECT_FALSE(acss.delContentsData());
    EXPECT_TRUE(acss.getMaterialData("", 0).isEmpty());
    ASSERT_TRUE(acss.save(kCameraMediaId));
    const QStringList outline = cwmeta::fileOutlineLines(acss.filePath());
    EXPECT_EQ(cwmeta::joined(block(outline, "  Properties")),
              cwmeta::joined(block(cwmeta::fileOutlineLines(kFixture), "  Properties")));
    EXPECT_FALSE(outline.join('\n').contains("Contents"));
    EXPECT_EQ(outline.last(), R"(  cam:Trailer checksum="9f2c")");
}

TEST(DOComponentTest, CompareByUriUsesTheFileNameIgnoringCase)
{
    auto component = [](const QString& uri) {
        DOComponent c;
        c.setUri(uri);
        return c;
    };
    EXPECT_LT(component("file://ID/CLPR/A0009/A0003.SMI").compareByUri(component("./CLPR/A0001/B0001.SMI")),
              0);
    EXPECT_GT(component("./CLPR/A0001/b0002.SMI").compareByUri(component("./CLPR/Z0001/B0001.SMI")), 0);
    EXPECT_EQ(component("./x/ABC.SMI").compareByUri(component("./y/abc.smi")), 0);
}
