#include "MetadataTestSupport.h"

#include "core/formats/metadata/BLNonMetaAcss.h"
#include "support/TestEnvironment.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <algorithm>

using namespace cwmeta;

namespace {
DOTitle makeTitle(const QString& usAscii, const QString& lang, const QString& value)
{
    DOAlias alias;
    alias.setLang(lang);
    alias.setValue(value);
    DOTitle title;
    title.setUsAscii(usAscii);
    title.setAlias(alias);
    return title;
}

class NonMetaAcssTest : public ::testing::Test
{
protected:
    QString copy(const QString& name) { return copyFixture("nrt/" + name, m_dir.path()); }
    QTemporaryDir m_dir;
};
} // namespace

TEST_F(NonMetaAcssTest, ReadsTheAliasOfTheLanguageAndWhatGeneratedCardsDoNotHold)
{
    BLNonMetaAcss acss;
    ASSERT_TRUE(acss.loadForFilePath(copy("C0001M01.XML")));
    DONonRealTimeMeta meta;
    ASSERT_TRUE(acss.getNonMetaData(meta, "ja"));
    EXPECT_EQ(meta.getWhoChangeArray().value(0).getValue(), "CREW7");
    EXPECT_EQ(meta.getKlvPacketArray().value(1).getLengthValue(), "0B02");
    EXPECT_EQ(meta.getDescription(), "Two boats & a crane");
    EXPECT_EQ(meta.getTitle().getAlias().getValue(), QString::fromUtf8("夜明けの港"));
    // An unknown language leaves the alias empty.
    DOTitle none;
    ASSERT_TRUE(acss.getTitle(none, "fr"));
    EXPECT_EQ(none.getUsAscii() + '|' + none.getAlias().getLang() + '|' + none.getAlias().getValue(),
              "Harbour at dawn||");

    // A sparse file: missing elements stay empty without failing.
    BLNonMetaAcss sparse;
    ASSERT_TRUE(sparse.loadForFilePath(copy("C0002M01.XML")));
    ASSERT_TRUE(sparse.getNonMetaData(meta = DONonRealTimeMeta(), "en"));
    EXPECT_EQ(meta.getTargetMaterial().getStatus(), "NG");
    EXPECT_TRUE(meta.getBasicChangeArray().isEmpty() && meta.getAudioFormat().getRecPortArray().isEmpty());

    // A well-formed file of another kind is loaded but not read as metadata.
    const QString other = m_dir.filePath("OTHER.XML");
    ASSERT_TRUE(cwtest::writeFile(other, "<MediaProfile><Duration value=\"1\"/></MediaProfile>"));
    BLNonMetaAcss wrongKind;
    ASSERT_TRUE(wrongKind.loadForFilePath(other));
    EXPECT_FALSE(wrongKind.getNonMetaData(meta, "en"));
}

TEST_F(NonMetaAcssTest, SavedWithoutChangesKeepsEverythingButTheStamp)
{
    for (const char* name : {"C0001M01.XML", "C0002M01.XML", "C0003M01.XML"}) {
        const QString path = copy(name);
        XmlNode expected = readXmlOutline(path);
        ASSERT_FALSE(expected.name.isEmpty()) << name;
        BLNonMetaAcss acss;
        DONonRealTimeMeta meta;
        ASSERT_TRUE(acss.loadForFilePath(path) && acss.getNonMetaData(meta, "en") && acss.save());
        const XmlNode after = readXmlOutline(path);
        EXPECT_TRUE(isDateTime(after.attribute("lastUpdate"))) << after.attribute("lastUpdate").toStdString();
        EXPECT_NE(after.attribute("lastUpdate"), expected.attribute("lastUpdate"));
        expected.setAttribute("lastUpdate", after.attribute("lastUpdate"));
        EXPECT_EQ(after, expected) << name;
    }
}

TEST_F(NonMetaAcssTest, EditsTakeTheirSchemaPlacesFollowTheTitleRulesAndKeepEverythingElse)
{
    // The property dialog's edits on a camera file with unknown elements:
    // expected is the file as it was, its namespaces brought to the current
    // version, with the edits, the stamps of this save and Creator before Title.
    const QString path = copy("C0001M01.XML");
    const XmlNode before = readXmlOutline(path);
    BLNonMetaAcss acss;
    ASSERT_TRUE(acss.loadForFilePath(path));
    ASSERT_TRUE(acss.setTitle(makeTitle("Harbour at noon", "en", "Harbour at noon")));
    ASSERT_TRUE(acss.setCreator("Ann Example") && acss.setDescription("Two boats\nand a crane <&>"));
    ASSERT_TRUE(acss.setLastUpdate() && acss.updateVersion() && acss.save());
    const XmlNode root = readXmlOutline(path);
    const QString oldDefault = before.namespaces[0].second, oldLib = before.namespaces[1].second;
    std::function<void(XmlNode&)> renamespace = [&](XmlNode& node) {
        if (node.namespaceUri == oldDefault)
            node.namespaceUri = BLNonMetaAcss::kNameSpace;
        if (node.namespaceUri == oldLib)
            node.namespaceUri = BLNonMetaAcss::kLibNameSpace;
        std::for_each(node.children.begin(), node.children.end(), renamespace);
    };
    XmlNode expected = before;
    renamespace(expected);
    expected.namespaces[0].second = BLNonMetaAcss::kNameSpace;
    expected.namespaces[1].second = BLNonMetaAcss::kLibNameSpace;
    expected.setAttribute("lastUpdate", root.attribute("lastUpdate"));
    expected.child("LastUpdate")->setAttribute("value", root.child("LastUpdate")->attribute("value"));
    expected.child("Title")->setAttribute("usAscii", "Harbour at noon");
    expected.child("Title")->child("lib:Alias")->text = "Harbour at noon";
    expected.child("Description")->text = "Two boats\nand a crane <&>";
    const auto title = std::find_if(expected.children.begin(), expected.children.end(),
                                    [](const XmlNode& n) { return n.name == "Title"; });
    expected.children.insert(title, XmlNode{.name = "Creator",
                                            .namespaceUri = BLNonMetaAcss::kNameSpace,
                                            .attributes = {{"name", "Ann Example"}},
                                            .namespaces = {},
                                            .text = {},
                                            .children = {}});
    EXPECT_EQ(root, expected);
    EXPECT_TRUE(isDateTime(root.child("LastUpdate")->attribute("value")));

    // A sparse file in another namespace: a new element goes right after the
    // nearest present one that precedes it in the schema (before the unknown
    // "Battery"), a replaced table stays where it stood (after "Genlock"),
    // empty record fields leave values alone, and "lib" is declared for the alias.
    const QString sparsePath = copy("C0002M01.XML");
    BLNonMetaAcss sparse;
    ASSERT_TRUE(sparse.loadForFilePath(sparsePath) && sparse.setCreator("Bo"));
    DOLtcChangeTable ltc;
    ltc.setTcFps("25");
    ltc.setHalfStep("true");
    DOBodyUmidBasicChange change;
    change.setFrameCount("0");
    change.setValue("A");
    change.setStatus("start");
    DOTargetMaterial target;
    target.setUmidRef("X");
    ASSERT_TRUE(sparse.updateLtcChangeTable(ltc) && sparse.setKeyFrame("12") && sparse.setLastUpdate() &&
                sparse.updateBasicChangeTable({change}) && sparse.setTargetMaterial(target));
    ASSERT_TRUE(sparse.setTitle(makeTitle("Boats", "en", "Boats")) && sparse.save());
    const XmlNode edited = readXmlOutline(sparsePath);
    EXPECT_EQ(edited.childNames(),
              Names({"TargetMaterial", "Duration", "Genlock", "LtcChangeTable", "CreationDate", "LastUpdate",
                     "KeyFrame", "BodyUmidBasicChangeTable", "Battery", "KlvPacketTable", "VideoFormat",
                     "Device", "Creator", "Title", "RecordingMode"}));
    EXPECT_EQ(describe(*edited.child("LtcChangeTable")), "<LtcChangeTable tcFps=\"25\" halfStep=\"true\">\n");
    EXPECT_EQ(describe(*edited.child("BodyUmidBasicChangeTable")),
              "<BodyUmidBasicChangeTable>\n  <BodyUmidBasicChange frameCount=\"0\" value=\"A\" "
              "status=\"start\">\n");
    EXPECT_EQ(describe(*edited.child("TargetMaterial")), "<TargetMaterial umidRef=\"X\" status=\"NG\">\n");
    for (const XmlNode& element : edited.children)
        EXPECT_EQ(element.namespaceUri, "urn:example:camera:nonRealTimeMeta") << element.name.toStdString();
    EXPECT_EQ(edited.child("Title")->child("lib:Alias")->namespaceUri, BLNonMetaAcss::kLibNameSpace);

    // Title rules: a new language is appended and clearing one keeps the
    // other; clearing the last alias of a title without US-ASCII text removes
    // it; cleared creator and description go; US-ASCII text alone keeps or
    // makes a title without alias, and no text makes nothing.
    const QString third = copy("C0003M01.XML");
    BLNonMetaAcss rules;
    ASSERT_TRUE(rules.loadForFilePath(third));
    auto savedTitle = [&] {
        EXPECT_TRUE(rules.save());
        const XmlNode saved = readXmlOutline(third);
        return saved.child("Title") ? describe(*saved.child("Title")) : QString("(none)");
    };
    ASSERT_TRUE(rules.setTitle(makeTitle("", "en", "Harbour")));
    EXPECT_EQ(savedTitle(), "<Title usAscii=\"\">\n  <lib:Alias xml:lang=\"de\">Hafen\n"
                            "  <lib:Alias xml:lang=\"en\">Harbour\n");
    ASSERT_TRUE(rules.setTitle(makeTitle("", "de", "")));
    EXPECT_EQ(savedTitle(), "<Title usAscii=\"\">\n  <lib:Alias xml:lang=\"en\">Harbour\n");
    ASSERT_TRUE(rules.setTitle(makeTitle("", "en", "")) && rules.setCreator("") && rules.setDescription(""));
    EXPECT_EQ(savedTitle(), "(none)");
    EXPECT_EQ(readXmlOutline(third).childNames(), Names({"TargetMaterial", "Duration"}));
    EXPECT_FALSE(rules.delCreatorData() || rules.delDescriptionData() || rules.delTitleData());
    ASSERT_TRUE(rules.setTitle(makeTitle("", "de", "")));
    EXPECT_EQ(savedTitle(), "(none)");
    ASSERT_TRUE(rules.setTitle(makeTitle("Port", "de", "Hafen")) &&
                rules.setTitle(makeTitle("Port", "de", "")));
    EXPECT_EQ(savedTitle(), "<Title usAscii=\"Port\">\n");
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
