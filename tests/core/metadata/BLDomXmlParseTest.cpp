#include "core/formats/metadata/BLDomXmlParse.h"
#include "core/services/BLAtomicFile.h"
#include "support/TestEnvironment.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>

#include "MetadataTestSupport.h"

#include <gtest/gtest.h>

namespace {
const QByteArray kProfile = R"(<?xml version="1.0" encoding="UTF-8"?>
<MediaProfile xmlns="urn:example:foreign:mediaprofile" xmlns:lib="urn:schemas-professionalDisc:lib:ver.1.30" createdAt="2009-01-01T00:00:00+09:00" version="1.10">
  <Contents>
    <Material uri="./CLPR/A0001/A0001.MP4" type="MP4" videoType="x" umid="U1"/>
    <Material uri="./CLPR/A0002/A0002.MP4" type="MP4" umid="U2">
      <Component uri="./CLPR/A0002/A0002M01.XML" type="NRT"/>
    </Material>
    <lib:Alias xml:lang="ja">Title &amp; more</lib:Alias>
    <Unknown/>
  </Contents>
</MediaProfile>
)";

} // namespace

TEST(DomXmlParseTest, QueriesMatchDefaultNamespacePrefixesAndLanguage)
{
    BLDomXmlParse xml;
    ASSERT_TRUE(xml.loadXmlData(kProfile));
    EXPECT_EQ(xml.selectNodeArray("/MediaProfile/Contents/Material"), 2);
    EXPECT_EQ(xml.getAttributeValue("umid"), "U1");
    EXPECT_EQ(xml.selectNode(1), 1);
    EXPECT_EQ(xml.getAttributeValue("umid"), "U2");
    EXPECT_EQ(xml.selectNode(2), 0);
    EXPECT_EQ(xml.getAttributeValue("umid"), "U2"); // a refused selectNode leaves the current node

    EXPECT_EQ(xml.selectNodeArray("/MediaProfile/Contents/Material[@uri='./CLPR/A0002/A0002.MP4']/Component"),
              1);
    EXPECT_EQ(xml.getAttributeValue("type"), "NRT");

    // A prefixed step matches the prefix as written, not the unprefixed name.
    EXPECT_EQ(xml.selectNodeArray("/MediaProfile/Contents/lib:Alias[@xml:lang='ja']"), 1);
    EXPECT_EQ(xml.getElementValue(0), "Title & more");
    EXPECT_EQ(xml.selectNodeArray("/MediaProfile/Contents/Alias"), 0);

    // A malformed query clears the selection and answers -1.
    EXPECT_EQ(xml.selectNodeArray("/MediaProfile/Contents/Material[@uri='x'"), -1);
    EXPECT_EQ(xml.getElementValue(0), "");

    // The same names match in a document without any namespace.
    BLDomXmlParse plain;
    ASSERT_TRUE(plain.loadXmlData("<MediaProfile><Contents><Material uri='a'/></Contents></MediaProfile>"));
    EXPECT_EQ(plain.selectNodeArray("/MediaProfile/Contents/Material"), 1);

    // A name at the start of a predicate follows the same rule as a step.
    EXPECT_EQ(xml.selectNodeArray("/MediaProfile/Contents/Material[Component]"), 1);
    EXPECT_EQ(xml.getAttributeValue("umid"), "U2");
    EXPECT_EQ(plain.selectNodeArray("/MediaProfile/Contents[Material]"), 1);
    EXPECT_EQ(plain.selectNodeArray("/MediaProfile/Contents[Missing]"), 0);
}

TEST(DomXmlParseTest, HostileDocumentsAreRefusedQuickly)
{
    QElapsedTimer timer;
    timer.start();
    QList<QByteArray> hostile = cwmeta::hostileDocuments("r");
    hostile << QByteArray("\xff\xfe<\0r\0/\0>\0", 10)                               // UTF-16 hiding a doctype
            << QByteArray("<a>").repeated(5000) + QByteArray("</a>").repeated(5000) // deep nesting
            << "";
    for (const QByteArray& doc : hostile) {
        BLDomXmlParse xml;
        EXPECT_FALSE(xml.loadXmlData(doc)) << doc.left(60).constData();
        EXPECT_FALSE(xml.hasDocument());
        EXPECT_EQ(xml.selectNodeArray("/r"), -1);
    }
    // An attribute value above the parser's own limit, in a file within the size limit.
    EXPECT_FALSE(BLDomXmlParse().loadXmlData("<r a=\"" + QByteArray(12 * 1024 * 1024, 'x') + "\"/>"));

    EXPECT_LT(timer.elapsed(), 5000);
}

TEST(DomXmlParseTest, SavesAreAtomic)
{
    QTemporaryDir dir;
    const QString path = dir.filePath("MEDIAPRO.XML");
    BLDomXmlParse xml;
    ASSERT_TRUE(xml.loadXmlData(kProfile));
    ASSERT_TRUE(xml.saveXml(path));
    const QByteArray before = cwtest::readFile(path);
    ASSERT_FALSE(before.isEmpty());
    QFile::setPermissions(path, QFileDevice::ReadOwner | QFileDevice::WriteOwner);
    const QFileDevice::Permissions permissions = QFile::permissions(path);

    // A failing final rename leaves the previous file byte for byte, and no temporary file.
    ASSERT_EQ(xml.selectNodeArray("/MediaProfile/Contents"), 1);
    ASSERT_EQ(xml.addElement("Material", ""), 1);
    BLAtomicFile::setRenameHookForTesting([](const QString&, const QString&) { return false; });
    EXPECT_FALSE(xml.saveXml(path));
    BLAtomicFile::setRenameHookForTesting(nullptr);
    EXPECT_EQ(cwtest::readFile(path), before);
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files | QDir::Hidden), QStringList({"MEDIAPRO.XML"}));

    // A successful save replaces the content and keeps the file's permissions.
    ASSERT_TRUE(xml.saveXml(path));
    EXPECT_EQ(cwtest::readFile(path), xml.xmlData());
    EXPECT_EQ(QFile::permissions(path), permissions);
    EXPECT_FALSE(xml.saveXml(dir.path())); // a folder is never replaced
}

namespace {
// What a selection holds, node by node: name, position under its parent, uri.
QStringList selectionOutline(BLDomXmlParse& xml, int count)
{
    QStringList outline;
    for (int i = 0; i < count; ++i) {
        xml.selectNode(i);
        outline << QStringLiteral("%1@%2 %3")
                       .arg(xml.currentNodeName())
                       .arg(xml.getIndexByParent())
                       .arg(xml.getAttributeValue("uri"));
    }
    return outline;
}

// Plain paths are walked directly; the same path with a no-op predicate goes
// through the XPath engine. Both must select the same nodes.
void expectSameAsXPath(BLDomXmlParse& xml, const QString& query)
{
    const int plain = xml.selectNodeArray(query);
    const QStringList plainOutline = selectionOutline(xml, plain);
    const int engine = xml.selectNodeArray(query + "[true()]");
    EXPECT_EQ(plain, engine) << query.toStdString();
    EXPECT_EQ(plainOutline, selectionOutline(xml, engine)) << query.toStdString();
}

const QByteArray kMixed = R"(<?xml version="1.0" encoding="UTF-8"?>
<MediaProfile xmlns="urn:a" xmlns:lib="urn:lib" xmlns:same="urn:a">
  <Contents>
    <Material uri="m1" k="1"><Component uri="c1"/><Component uri="c2"/></Material>
    <!-- a comment between elements -->
    <Material uri="m2" k="1"><Component uri="c3"/></Material>
    <lib:Material uri="m1"/>
    <same:Material uri="m3"/>
    <Material xmlns="" uri="m4"/>
    <Material xmlns="urn:other" uri="m5"/>
    <Material uri="it's"/>
    <Material uri="m1" k="2"/>
    <Material lib:uri="m6"/>
    <Material uri=""/>
  </Contents>
  <Contents><Material uri="m7"/></Contents>
</MediaProfile>
)";

const QStringList kQueries = {
    "/Other",
    "/MediaProfile/Contents[2]",
    "/MediaProfile/Contents/Material",
    "/MediaProfile/Contents/Material[3]",
    "/MediaProfile/Contents/Material[0]",
    "/MediaProfile/Contents/Material[@uri='m1'][2]",
    "/MediaProfile/Contents/Material[@uri='m1']/Component[2]",
    "/MediaProfile/Contents/Material[2][@uri='m2']",
    "/MediaProfile/Contents/Material[@k='1'][2]/Component",
    "/MediaProfile/Contents/Material[@uri=\"it's\"]",
    "/MediaProfile/Contents/Material[@uri='m6']",
    "/MediaProfile/Contents/Material[@uri='']",
    "/MediaProfile/Contents/lib:Material",
    "/MediaProfile/Contents/same:Material",
};
} // namespace

// Plain paths are walked directly, reusing the leading steps the previous
// query shared; each edit below changes what a shared step or the step after
// it selects, and the walk must still select what the XPath engine selects.
TEST(DomXmlParseTest, PlainPathsSelectWhatTheXPathEngineSelectsAfterEveryEdit)
{
    BLDomXmlParse xml;
    ASSERT_TRUE(xml.loadXmlData(kMixed));
    auto checkAll = [&xml] {
        for (const QString& query : kQueries)
            expectSameAsXPath(xml, query);
    };
    checkAll();
    // m3 is in the default namespace under another prefix, m4 in none; m5 is foreign.
    EXPECT_EQ(xml.selectNodeArray("/MediaProfile/Contents/Material"), 9);

    // Values with either quote, or both, make valid literals.
    const QString quoted = "/MediaProfile/Contents/Material[@uri=%1]";
    EXPECT_EQ(xml.selectNodeArray(quoted.arg(BLDomXmlParse::quoteLiteral("it's"))), 1);
    ASSERT_EQ(xml.setAttribute("uri", R"(say "it's")"), 1);
    EXPECT_EQ(xml.selectNodeArray(quoted.arg(BLDomXmlParse::quoteLiteral(R"(say "it's")"))), 1);

    const QString m2 = "/MediaProfile/Contents/Material[@uri='m2'][1]";
    EXPECT_EQ(xml.selectNodeArray(m2 + "/Component"), 1);
    ASSERT_EQ(xml.selectNodeArray(m2), 1);
    ASSERT_EQ(xml.addElement("Component", ""), 1);
    EXPECT_EQ(xml.selectNodeArray(m2 + "/Component"), 2);
    ASSERT_EQ(xml.selectNodeArray(m2 + "/Component[2]"), 1);
    ASSERT_EQ(xml.setAttribute("uri", "c4"), 1);
    EXPECT_EQ(xml.selectNodeArray(m2 + "/Component[@uri='c4']"), 1);

    // A changed attribute moves a material out of and into a predicate.
    ASSERT_EQ(xml.selectNodeArray(m2), 1);
    ASSERT_EQ(xml.setAttribute("uri", "m9"), 1);
    EXPECT_EQ(xml.selectNodeArray(m2 + "/Component"), 0);
    EXPECT_EQ(xml.selectNodeArray("/MediaProfile/Contents/Material[@uri='m9'][1]/Component"), 2);
    ASSERT_EQ(xml.selectNodeArray("/MediaProfile/Contents/Material[@uri='m9']"), 1);
    ASSERT_EQ(xml.removeAttribute("uri"), 1);
    EXPECT_EQ(xml.selectNodeArray("/MediaProfile/Contents/Material[@uri='m9'][1]/Component"), 0);

    // Inserted siblings shift positions.
    EXPECT_EQ(xml.selectNodeArray("/MediaProfile/Contents/Material[1]/Component[1]"), 1);
    ASSERT_EQ(xml.selectNodeArray("/MediaProfile/Contents[1]"), 1);
    ASSERT_EQ(xml.insertElement("Material", "", 0), 1);
    expectSameAsXPath(xml, "/MediaProfile/Contents/Material[1]/Component[1]");
    EXPECT_EQ(xml.selectNodeArray("/MediaProfile/Contents/Material[1]/Component[1]"), 0);

    // Removed elements (and those under them) are never selected again.
    EXPECT_EQ(xml.selectNodeArray("/MediaProfile/Contents/Material[@uri='m1'][1]/Component"), 2);
    ASSERT_EQ(xml.selectNodeArray("/MediaProfile/Contents/Material[@uri='m1'][1]"), 1);
    ASSERT_EQ(xml.removeElement(), 1);
    EXPECT_EQ(xml.selectNodeArray("/MediaProfile/Contents/Material[@uri='m1'][1]"), 1);
    EXPECT_EQ(xml.getAttributeValue("k"), "2");
    EXPECT_EQ(xml.selectNodeArray("/MediaProfile/Contents/Material/Component"), 2);
    ASSERT_EQ(xml.selectNodeArray("/MediaProfile/Contents"), 2);
    ASSERT_EQ(xml.removeElement(), 1);
    EXPECT_EQ(xml.selectNodeArray("/MediaProfile/Contents/Material/Component"), 0);
    EXPECT_EQ(xml.selectNodeArray("/MediaProfile/Contents/Material"), 1);

    // Text content replaced under a selected path drops its children.
    ASSERT_EQ(xml.selectNodeArray("/MediaProfile/Contents"), 1);
    ASSERT_EQ(xml.setElement("text"), 1);
    EXPECT_EQ(xml.selectNodeArray("/MediaProfile/Contents/Material"), 0);

    // A header stamp on the root is seen by a root predicate.
    EXPECT_EQ(xml.selectNodeArray("/MediaProfile[@umid='U']"), 0);
    ASSERT_EQ(xml.setTakeInfoHeader("U"), 1);
    EXPECT_EQ(xml.selectNodeArray("/MediaProfile[@umid='U']/Contents"), 1);

    // Changing the default namespace changes what unprefixed names match.
    ASSERT_EQ(xml.selectNodeArray("/MediaProfile"), 1);
    ASSERT_EQ(xml.setNameSpaceWithName("", "urn:other"), 1);
    checkAll();
}

TEST(DomXmlParseTest, PrefixedAttributesAndUnboundPrefixes)
{
    BLDomXmlParse xml;
    ASSERT_TRUE(xml.loadXmlData(R"(<r xmlns="urn:d" xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance" )"
                                R"(xsi:schemaLocation="urn:d d.xsd" schemaLocation="plain"><c/></r>)"));
    ASSERT_EQ(xml.selectNodeArray("/r"), 1);
    // A prefixed name reads the attribute of that namespace, the bare name the unqualified one.
    EXPECT_EQ(xml.getAttributeValue("xsi:schemaLocation"), "urn:d d.xsd");
    EXPECT_EQ(xml.getAttributeValue("schemaLocation"), "plain");
    EXPECT_EQ(xml.getAttributeValue("nope:schemaLocation"), "");
    EXPECT_EQ(xml.setAttribute("xsi:schemaLocation", "urn:d other.xsd"), 1);
    EXPECT_EQ(xml.getAttributeValue("xsi:schemaLocation"), "urn:d other.xsd");
    EXPECT_EQ(xml.removeAttribute("xsi:schemaLocation"), 1);
    EXPECT_EQ(xml.getAttributeValue("xsi:schemaLocation") + xml.getAttributeValue("schemaLocation"), "plain");

    // Names with a prefix that is not declared are refused: the file would not load again.
    EXPECT_EQ(xml.setAttribute("lib:x", "1"), 0);
    EXPECT_EQ(xml.addElement("lib:Alias", "t"), 0);
    EXPECT_EQ(xml.insertElement("lib:Alias", "t", 0), 0);
    EXPECT_EQ(xml.setNameSpaceWithName("lib", "urn:lib"), 1);
    EXPECT_EQ(xml.addElement("lib:Alias", "t"), 1);
    EXPECT_EQ(xml.setAttribute("lib:x", "1"), 1);
    BLDomXmlParse again;
    ASSERT_TRUE(again.loadXmlData(xml.xmlData())) << xml.xmlData().constData();
    ASSERT_EQ(again.selectNodeArray("/r/lib:Alias"), 1);
    EXPECT_EQ(again.getElementValue(0), "t");
}
