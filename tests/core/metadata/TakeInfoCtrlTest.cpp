#include "MetadataTestSupport.h"

#include "core/card/BLTakeInfoCtrl.h"
#include "support/TestEnvironment.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace cwmeta;

namespace {
const QString kPrefix = "urn:smpte:umid:";

// A UMID whose time stamp is sixteen times the digit.
QString umid(char digit)
{
    return "060A2B340101010501010D4313000000" + QString(16, QLatin1Char(digit)) + "080046FFFE010203";
}

DOTakeInfo entry(char digit, const QString& clipBegin, const QString& clipEnd, const QString& begin,
                 const QString& end)
{
    DOTakeInfo info;
    info.setSrc(kPrefix + umid(digit));
    info.setClipBegin(clipBegin);
    info.setClipEnd(clipEnd);
    info.setBegin(begin);
    info.setEnd(end);
    return info;
}

DOTakeData takeWith(char takeDigit, const QList<char>& clips, const QList<DOTakeInfo>& entries)
{
    DOTakeData take;
    take.setUmid(umid(takeDigit));
    for (char c : clips) {
        DOClipData clip;
        clip.setUmid(umid(c));
        take.setClipData(clip);
    }
    take.setArrTakeInfo(entries);
    return take;
}

// The plain group's refs of a saved file, each as "src clipBegin clipEnd begin end"
// with absent attributes shown as "-".
Names plainRefs(const QString& path)
{
    Names refs;
    const XmlNode root = readXmlOutline(path);
    const XmlNode* par = root.child("body") ? root.child("body")->child("par") : nullptr;
    if (!par)
        return refs;
    for (const XmlNode& ref : par->children) {
        if (ref.name != "ref")
            continue;
        QStringList parts;
        for (const char* name : {"src", "clipBegin", "clipEnd", "begin", "end"})
            parts << (ref.attribute(name).isEmpty() ? QStringLiteral("-") : ref.attribute(name));
        refs.push_back(parts.join(' ').toStdString());
    }
    return refs;
}

std::string line(char digit, const char* rest)
{
    return (kPrefix + umid(digit)).toStdString() + ' ' + rest;
}

class TakeInfoCtrlTest : public ::testing::Test
{
protected:
    QString copy(const QString& name) { return copyFixture("smi/" + name, m_dir.path()); }
    QTemporaryDir m_dir;
};
} // namespace

TEST_F(TakeInfoCtrlTest, RestructuringReplacesTheClipList)
{
    const QString path = copy("T0001.SMI");
    const XmlNode before = readXmlOutline(path);
    ASSERT_TRUE(BLTakeInfoCtrl::restructuringTakeInfo(
        path, {entry('2', "0", "450", "0", "450"), entry('1', "10", "", "450", "")}));
    // Empty values are left out; new refs are in the file's own default namespace.
    EXPECT_EQ(plainRefs(path), Names({line('2', "0 450 0 450"), line('1', "10 - 450 -")}));
    // Everything else stays: the switch group, the unknown marker, the root.
    const XmlNode after = readXmlOutline(path);
    EXPECT_EQ(after.child("body")->child("par")->childNames(), Names({"vx:Marker", "ref", "ref"}));
    EXPECT_EQ(after.child("body")->child("par")->child("ref")->namespaceUri, "urn:example:foreign:takeInfo");
    XmlNode expected = before;
    expected.child("body")->child("par")->children = after.child("body")->child("par")->children;
    EXPECT_EQ(after, expected);

    // A file that cannot be read is left as it was.
    ASSERT_TRUE(cwtest::writeFile(m_dir.filePath("BAD.SMI"), "<smil><body>"));
    EXPECT_FALSE(
        BLTakeInfoCtrl::restructuringTakeInfo(m_dir.filePath("BAD.SMI"), {entry('1', "0", "", "0", "")}));
    EXPECT_EQ(cwtest::readFile(m_dir.filePath("BAD.SMI")), "<smil><body>");

    // An empty list empties the clip list.
    ASSERT_TRUE(BLTakeInfoCtrl::restructuringTakeInfo(path, {}));
    EXPECT_TRUE(plainRefs(path).empty());
}

TEST_F(TakeInfoCtrlTest, SpanningTakeGetsItsFirstPartAndALinkToTheNext)
{
    const QString path = copy("T0001.SMI");
    // The take holds clips 1 and 2 here; clip 3 and clip 4 lie on another medium.
    const DOTakeData take =
        takeWith('A', {'1', '2'},
                 {entry('1', "0", "300", "0", "300"), entry('2', "0", "450", "300", "750"),
                  entry('3', "0", "600", "750", "1350"), entry('4', "0", "90", "1350", "1440")});
    const DOTakeData next = takeWith('N', {'3', '4'}, {});

    // Nothing to write: every entry names the take's own clips, or a foreign
    // entry has no source; yes, and the file is untouched.
    const QByteArray bytes = cwtest::readFile(path);
    const DOTakeData own =
        takeWith('A', {'1', '2'}, {entry('1', "0", "300", "0", "300"), entry('2', "0", "450", "300", "750")});
    EXPECT_TRUE(BLTakeInfoCtrl::createTakeInfo(path, own, next));
    DOTakeInfo blank = entry('3', "0", "", "750", "");
    blank.setSrc("");
    const DOTakeData unnamed = takeWith('A', {'1'}, {entry('1', "0", "300", "0", "300"), blank});
    EXPECT_TRUE(BLTakeInfoCtrl::createTakeInfo(path, unnamed, next));
    // A take without clips, or an entry list that cannot be written (no begin
    // for the first entry), is refused and leaves the file as it was.
    EXPECT_FALSE(
        BLTakeInfoCtrl::createTakeInfo(path, takeWith('A', {}, {entry('3', "0", "", "0", "")}), next));
    const DOTakeData broken =
        takeWith('A', {'1'}, {entry('1', "0", "300", "", "300"), entry('3', "0", "9", "300", "309")});
    EXPECT_FALSE(BLTakeInfoCtrl::createTakeInfo(path, broken, next));
    EXPECT_EQ(cwtest::readFile(path), bytes);

    ASSERT_TRUE(BLTakeInfoCtrl::createTakeInfo(path, take, next));
    // The entries before the first foreign clip, then the next take starting at its begin, open-ended.
    EXPECT_EQ(plainRefs(path),
              Names({line('1', "0 300 0 300"), line('2', "0 450 300 750"), line('N', "750 - 750 -")}));
    EXPECT_EQ(readXmlOutline(path).attribute("umid"), kPrefix + umid('A'));

    // The search starts after the entry of the take's first clip: an earlier
    // foreign entry that already names the next take is kept, and no second
    // reference to it is added.
    const QString second = copy("T0001.SMI");
    const DOTakeData later =
        takeWith('B', {'2'},
                 {entry('N', "0", "300", "0", "300"), entry('2', "0", "450", "300", "750"),
                  entry('3', "0", "600", "750", "1350")});
    ASSERT_TRUE(BLTakeInfoCtrl::createTakeInfo(second, later, next));
    EXPECT_EQ(plainRefs(second), Names({line('N', "0 300 0 300"), line('2', "0 450 300 750")}));
}
