#include "MetadataTestSupport.h"

#include "core/formats/metadata/BLNonMetaAcss.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <algorithm>

using namespace cwmeta;

namespace {
DOAlias makeAlias(const QString& lang, const QString& value)
{
    DOAlias alias;
    alias.setLang(lang);
    alias.setValue(value);
    return alias;
}

DOTitle makeTitle(const QString& usAscii, const QString& lang, const QString& value)
{
    DOTitle title;
    title.setUsAscii(usAscii);
    title.setAlias(makeAlias(lang, value));
    return title;
}

// A node without the root's "lastUpdate", which every save stamps.
XmlNode withoutStamp(XmlNode node)
{
    node.attributes.removeIf([](const auto& a) { return a.first == "lastUpdate"; });
    return node;
}

class NonMetaAcssTest : public ::testing::Test
{
protected:
    QString copy(const QString& name) { return copyFixture("nrt/" + name, m_dir.path()); }
    QTemporaryDir m_dir;
};
} // namespace

TEST_F(NonMetaAcssTest, ReadsEveryElementOfACameraFile)
{
    BLNonMetaAcss acss;
    ASSERT_TRUE(acss.loadForFilePath(copy("C0001M01.XML")));
    DONonRealTimeMeta meta;
    ASSERT_TRUE(acss.getNonMetaData(meta, "ja"));

    // What the card generator's files do not hold (their standard values are
    // cross-checked elsewhere): the header, the "who" and packet tables, the
    // pull-down setting, device elements and the language's alias.
    EXPECT_EQ(meta.getNonMetaHeader().getXmlns_lib(), "urn:schemas-professionalDisc:lib:ver.1.20");
    EXPECT_EQ(meta.getNonMetaHeader().getLastUpdate(), "2009-03-05T14:07:59+09:00");
    EXPECT_EQ(meta.getLtcChangeTable().getLtcChangeArray().value(1).getStatus(), "end");
    EXPECT_EQ(meta.getKeyFrame().getFrameCount(), "15");
    EXPECT_EQ(meta.getWhoChangeArray().value(0).getValue(), "CREW7");
    EXPECT_EQ(meta.getKlvPacketArray().value(1).getLengthValue(), "0B02");
    EXPECT_EQ(meta.getVideoFormat().getVideoLayout().getPullDownSetting().getFramePhase(), "0");
    EXPECT_EQ(meta.getDevice().getElementArray().value(1).getSoftware(), "0.90");
    EXPECT_EQ(meta.getLens(), "ZOOM-14");
    EXPECT_EQ(meta.getTitle().getAlias().getLang(), "ja");
    EXPECT_EQ(meta.getTitle().getAlias().getValue(), QString::fromUtf8("夜明けの港"));
    EXPECT_EQ(meta.getDescription(), "Two boats & a crane");
    EXPECT_EQ(meta.getRecordingMode().getCacheRec(), "false");

    // Another language reads its own alias; an unknown one leaves the alias empty.
    DOTitle title;
    ASSERT_TRUE(acss.getTitle(title, "en"));
    EXPECT_EQ(title.getAlias().getValue(), "Harbour at dawn");
    DOTitle none;
    ASSERT_TRUE(acss.getTitle(none, "fr"));
    EXPECT_EQ(none.getUsAscii(), "Harbour at dawn");
    EXPECT_EQ(none.getAlias().getLang(), "");
    EXPECT_EQ(none.getAlias().getValue(), "");

    // A sparse file: missing elements stay empty without failing.
    BLNonMetaAcss sparse;
    ASSERT_TRUE(sparse.loadForFilePath(copy("C0002M01.XML")));
    DONonRealTimeMeta few;
    ASSERT_TRUE(sparse.getNonMetaData(few, "en"));
    EXPECT_EQ(few.getNonMetaHeader().getXmlns(), "urn:example:camera:nonRealTimeMeta");
    EXPECT_EQ(few.getNonMetaHeader().getXsi_schema(), "");
    EXPECT_EQ(few.getTargetMaterial().getStatus(), "NG");
    EXPECT_TRUE(few.getBasicChangeArray().isEmpty());
    EXPECT_TRUE(few.getAudioFormat().getRecPortArray().isEmpty());

    // A well-formed file of another kind is loaded but not read as metadata.
    const QString other = m_dir.filePath("OTHER.XML");
    ASSERT_TRUE(writeBytes(other, "<MediaProfile><Duration value=\"1\"/></MediaProfile>"));
    BLNonMetaAcss wrongKind;
    ASSERT_TRUE(wrongKind.loadForFilePath(other));
    DONonRealTimeMeta notMeta;
    EXPECT_FALSE(wrongKind.getNonMetaData(notMeta, "en"));
}

TEST_F(NonMetaAcssTest, SavedWithoutChangesKeepsEverything)
{
    for (const char* name : {"C0001M01.XML", "C0002M01.XML", "C0003M01.XML"}) {
        const QString path = copy(name);
        const XmlNode before = readXmlOutline(path);
        ASSERT_FALSE(before.name.isEmpty()) << name;
        BLNonMetaAcss acss;
        ASSERT_TRUE(acss.loadForFilePath(path));
        DONonRealTimeMeta meta;
        ASSERT_TRUE(acss.getNonMetaData(meta, "en"));
        ASSERT_TRUE(acss.save());
        const XmlNode after = readXmlOutline(path);
        EXPECT_EQ(withoutStamp(after), withoutStamp(before)) << name << "\n" << readBytes(path).constData();
        EXPECT_TRUE(isDateTime(after.attribute("lastUpdate"))) << after.attribute("lastUpdate").toStdString();
        EXPECT_NE(after.attribute("lastUpdate"), before.attribute("lastUpdate"));
    }
}

TEST_F(NonMetaAcssTest, EditedCameraFileKeepsUnknownsAndSchemaOrder)
{
    const QString path = copy("C0001M01.XML");
    const XmlNode before = readXmlOutline(path);
    BLNonMetaAcss acss;
    ASSERT_TRUE(acss.loadForFilePath(path));

    // What the clip property dialog does: title, creator, description, last update, then the version;
    // the table rewrites of the clip operations are checked where those operations are tested.
    ASSERT_TRUE(acss.setTitle(makeTitle("Harbour at noon", "en", "Harbour at noon")));
    ASSERT_TRUE(acss.setCreator("Ann Example"));
    ASSERT_TRUE(acss.setDescription("Two boats\nand a crane <&>"));
    ASSERT_TRUE(acss.setLastUpdate());
    ASSERT_TRUE(acss.updateVersion());
    ASSERT_TRUE(acss.save());

    const XmlNode root = readXmlOutline(path);
    Names order = before.childNames();
    order.insert(std::find(order.begin(), order.end(), "Title"), "Creator");
    EXPECT_EQ(root.childNames(), order);

    // Namespaces: default and lib brought to ver.1.30, the others kept.
    QList<std::pair<QString, QString>> namespaces = before.namespaces;
    namespaces[0].second = BLNonMetaAcss::kNameSpace;
    namespaces[1].second = BLNonMetaAcss::kLibNameSpace;
    EXPECT_EQ(root.namespaces, namespaces);
    EXPECT_EQ(root.namespaceUri, BLNonMetaAcss::kNameSpace);
    EXPECT_EQ(root.child("Title")->namespaceUri, BLNonMetaAcss::kNameSpace);
    EXPECT_EQ(root.child("Title")->child("lib:Alias")->namespaceUri, BLNonMetaAcss::kLibNameSpace);
    EXPECT_EQ(root.attribute("vx:build"), "A12");
    EXPECT_EQ(root.attribute("xsi:schemaLocation"), before.attribute("xsi:schemaLocation"));

    // Every element not edited is exactly as before, unknown ones included.
    for (const std::string& name : before.childNames()) {
        if (name == "LastUpdate" || name == "Title" || name == "Description")
            continue;
        const QString element = QString::fromStdString(name);
        EXPECT_EQ(describe(*root.child(element)), describe(*before.child(element))) << name;
    }
    EXPECT_EQ(root.child("vx:Extension")->child("vx:Item")->text, "kept");

    // The edits.
    EXPECT_EQ(describe(*root.child("Title")),
              QString::fromUtf8("<Title usAscii=\"Harbour at noon\" vx:edited=\"no\">\n"
                                "  <lib:Alias xml:lang=\"en\">Harbour at noon\n"
                                "  <lib:Alias xml:lang=\"ja\">夜明けの港\n"));
    EXPECT_EQ(root.child("Creator")->attribute("name"), "Ann Example");
    EXPECT_EQ(root.child("Description")->text, "Two boats\nand a crane <&>");
    EXPECT_TRUE(isDateTime(root.child("LastUpdate")->attribute("value")));
}

TEST_F(NonMetaAcssTest, NewElementsTakeTheirSchemaPlaces)
{
    const QString path = copy("C0002M01.XML");
    BLNonMetaAcss acss;
    ASSERT_TRUE(acss.loadForFilePath(path));

    // Creator on a file without Title: an empty Title is made and Creator precedes it.
    ASSERT_TRUE(acss.setCreator("Bo"));
    // The LTC table is replaced where it stood: after the unknown "Genlock", before CreationDate.
    DOLtcChangeTable ltc;
    ltc.setTcFps("25");
    ltc.setHalfStep("true");
    ASSERT_TRUE(acss.updateLtcChangeTable(ltc));
    // Missing elements go right after the nearest present element that precedes them in the
    // schema, so they come before the unknown "Battery" that follows CreationDate.
    ASSERT_TRUE(acss.setKeyFrame("12"));
    ASSERT_TRUE(acss.setLastUpdate());
    DOBodyUmidBasicChange a;
    a.setFrameCount("0");
    a.setValue("A");
    a.setStatus("start");
    DOBodyUmidBasicChange b = a;
    b.setFrameCount("100");
    b.setValue("B");
    ASSERT_TRUE(acss.updateBasicChangeTable({a, b}));
    ASSERT_TRUE(acss.setDescription("note"));
    DOTargetMaterial target;
    target.setUmidRef("X");
    ASSERT_TRUE(acss.setTargetMaterial(target));
    ASSERT_TRUE(acss.save());

    const XmlNode root = readXmlOutline(path);
    EXPECT_EQ(root.childNames(),
              Names({"TargetMaterial", "Duration", "Genlock", "LtcChangeTable", "CreationDate", "LastUpdate",
                     "KeyFrame", "BodyUmidBasicChangeTable", "Battery", "KlvPacketTable", "VideoFormat",
                     "Device", "Creator", "Title", "Description", "RecordingMode"}));
    EXPECT_EQ(root.child("Title")->attributes, (QList<std::pair<QString, QString>>{{"usAscii", ""}}));
    EXPECT_TRUE(root.child("Title")->children.isEmpty());
    EXPECT_EQ(root.child("LtcChangeTable")->attributes,
              (QList<std::pair<QString, QString>>{{"tcFps", "25"}, {"halfStep", "true"}}));
    EXPECT_TRUE(root.child("LtcChangeTable")->children.isEmpty());
    const XmlNode* basic = root.child("BodyUmidBasicChangeTable");
    EXPECT_EQ(basic->childNames(), Names({"BodyUmidBasicChange", "BodyUmidBasicChange"}));
    EXPECT_EQ(
        basic->children[1].attributes,
        (QList<std::pair<QString, QString>>{{"frameCount", "100"}, {"value", "B"}, {"status", "start"}}));
    // Empty record fields leave existing values alone.
    EXPECT_EQ(root.child("TargetMaterial")->attribute("status"), "NG");
    EXPECT_EQ(root.child("TargetMaterial")->attribute("umidRef"), "X");
    for (const XmlNode& element : root.children)
        EXPECT_EQ(element.namespaceUri, "urn:example:camera:nonRealTimeMeta") << element.name.toStdString();
}

TEST_F(NonMetaAcssTest, TitleAliasCreatorAndDescriptionRules)
{
    const QString path = m_dir.filePath("C0003M01.XML");
    auto saved = [&](BLNonMetaAcss& acss) {
        EXPECT_TRUE(acss.save());
        return readXmlOutline(path);
    };
    // Clearing the only alias of a title without US-ASCII text removes Title;
    // clearing creator and description removes them, and again fails.
    BLNonMetaAcss acss;
    ASSERT_TRUE(acss.loadForFilePath(copy("C0003M01.XML")));
    ASSERT_TRUE(acss.setTitle(makeTitle("", "de", "")));
    EXPECT_EQ(saved(acss).childNames(), Names({"TargetMaterial", "Duration", "Creator", "Description"}));
    ASSERT_TRUE(acss.setCreator(""));
    ASSERT_TRUE(acss.setDescription(""));
    EXPECT_FALSE(acss.delCreatorData() || acss.delDescriptionData() || acss.delTitleData());
    EXPECT_EQ(saved(acss).childNames(), Names({"TargetMaterial", "Duration"}));
    // No title, no text: nothing is made; US-ASCII text alone makes a Title without alias.
    ASSERT_TRUE(acss.setTitle(makeTitle("", "de", "")));
    EXPECT_EQ(saved(acss).child("Title"), nullptr);
    ASSERT_TRUE(acss.setTitle(makeTitle("Port", "de", "")));
    EXPECT_TRUE(saved(acss).child("Title")->children.isEmpty());

    // With US-ASCII text a title whose alias is cleared stays, without its alias.
    BLNonMetaAcss kept;
    ASSERT_TRUE(kept.loadForFilePath(copy("C0003M01.XML")));
    ASSERT_TRUE(kept.setTitle(makeTitle("Harbour", "de", "")));
    EXPECT_EQ(saved(kept).child("Title")->attributes,
              (QList<std::pair<QString, QString>>{{"usAscii", "Harbour"}}));
    EXPECT_TRUE(saved(kept).child("Title")->children.isEmpty());

    // Two languages: a new language is appended, clearing one keeps the other.
    BLNonMetaAcss two;
    ASSERT_TRUE(two.loadForFilePath(copy("C0003M01.XML")));
    ASSERT_TRUE(two.setTitle(makeTitle("", "en", "Harbour")));
    ASSERT_TRUE(two.setTitle(makeTitle("", "de", "Hafen am Morgen")));
    XmlNode root = saved(two);
    ASSERT_EQ(root.child("Title")->children.size(), 2);
    EXPECT_EQ(root.child("Title")->children[0].text, "Hafen am Morgen");
    EXPECT_EQ(root.child("Title")->children[1].attributes,
              (QList<std::pair<QString, QString>>{{"xml:lang", "en"}}));
    EXPECT_EQ(root.child("Title")->children[1].text, "Harbour");
    ASSERT_TRUE(two.setTitle(makeTitle("", "de", "")));
    root = saved(two);
    ASSERT_EQ(root.child("Title")->children.size(), 1);
    EXPECT_EQ(root.child("Title")->children[0].attribute("xml:lang"), "en");

    // A file without the "lib" namespace gets it declared before the first alias.
    BLNonMetaAcss sparse;
    ASSERT_TRUE(sparse.loadForFilePath(copy("C0002M01.XML")));
    ASSERT_TRUE(sparse.setTitle(makeTitle("Boats", "en", "Boats")));
    ASSERT_TRUE(sparse.save());
    BLNonMetaAcss again;
    ASSERT_TRUE(again.loadForFilePath(m_dir.filePath("C0002M01.XML")));
    DOTitle title;
    ASSERT_TRUE(again.getTitle(title, "en"));
    EXPECT_EQ(title.getAlias().getValue(), "Boats");
    EXPECT_EQ(title.getUsAscii(), "Boats");
    EXPECT_EQ(readXmlOutline(m_dir.filePath("C0002M01.XML")).child("Title")->child("lib:Alias")->namespaceUri,
              BLNonMetaAcss::kLibNameSpace);
}

TEST_F(NonMetaAcssTest, HostileFilesAreRefused)
{
    expectHostileFilesRefused("NonRealTimeMeta", "C0001M01.XML", [](const QString& folder) {
        BLNonMetaAcss acss;
        DONonRealTimeMeta meta;
        return acss.loadForFilePath(folder + "/C0001M01.XML") || acss.getNonMetaData(meta, "en") ||
               acss.setCreator("x") || acss.save();
    });
}
