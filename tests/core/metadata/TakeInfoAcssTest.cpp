#include "MetadataTestSupport.h"

#include "core/metadata/BLTakeInfoAcss.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace cwmeta;

namespace {
const QString kUmid = "urn:smpte:umid:060A2B340101010501010D4313000000";
const QString kClip1 = kUmid + "1111111111111111080046FFFE010203";
const QString kClip2 = kUmid + "2222222222222222080046FFFE010203";
const QString kClip3 = kUmid + "3333333333333333080046FFFE010203";
const QString kSpare = kUmid + "9999999999999999080046FFFE010203";

DOTRef makeRef(const QString& src, const QString& clipBegin, const QString& clipEnd, const QString& begin,
               const QString& end = {})
{
    DOTRef ref;
    ref.setSrc(src);
    ref.setClipBegin(clipBegin);
    ref.setClipEnd(clipEnd);
    ref.setBegin(begin);
    ref.setEnd(end);
    return ref;
}

class TakeInfoAcssTest : public ::testing::Test
{
protected:
    QString copy(const QString& name) { return copyFixture("smi/" + name, m_dir.path()); }
    QTemporaryDir m_dir;
};
} // namespace

TEST_F(TakeInfoAcssTest, ReadsEveryPartOfACameraFile)
{
    BLTakeInfoAcss acss;
    ASSERT_TRUE(acss.loadForFilePath(copy("C0001.SMI")));
    DOTSmil smil;
    ASSERT_TRUE(acss.getSmilData(smil, ""));
    EXPECT_EQ(smil.getUmid(), kClip1);

    // What the card generator's files do not hold (their standard parts are
    // cross-checked elsewhere): buffers, a switch group of refs, headers.
    EXPECT_EQ(smil.getHead().getTrackBuffer().getAudio(), "4");
    EXPECT_EQ(smil.getHead().getMeta().getContent(), "Camera take");
    const DOTPar& sw = smil.getBody().getSwPar();
    EXPECT_EQ(sw.getSystemComponent(), "proxy");
    EXPECT_EQ(sw.getRef().value(0).getClipEnd(), "smpte-30=00:00:10:00");
    EXPECT_EQ(sw.getVideo().value(0).getPreDecDur(), "2");
    const DOTPar& par = smil.getBody().getPar();
    EXPECT_EQ(par.getRef().value(0).getHeader(), "h1");
    EXPECT_EQ(par.getVideo().value(0).getDecEnd(), "300");
    ASSERT_EQ(par.getAudio().size(), 2);
    EXPECT_EQ(par.getAudio()[1].getTrackSrc(), "2");

    // The source text keeps the elements whose "src" contains it.
    DOTSmil filtered;
    ASSERT_TRUE(acss.getSmilData(filtered, "2222222222222222"));
    EXPECT_EQ(filtered.getBody().getSwPar().getRef().size(), 1);
    EXPECT_EQ(filtered.getBody().getSwPar().getVideo().size(), 1);
    EXPECT_TRUE(filtered.getBody().getPar().getRef().isEmpty());
    EXPECT_TRUE(filtered.getBody().getPar().getAudio().isEmpty());
    EXPECT_EQ(acss.getAudioData("1111", 7).size(), 2); // any position but 0 is the plain group
    EXPECT_EQ(acss.getRefData("", 0)[0].getSrc(), kClip2);

    // A document without head or switch reads as empty parts.
    BLTakeInfoAcss take;
    ASSERT_TRUE(take.loadForFilePath(copy("T0001.SMI")));
    DOTSmil takeSmil;
    ASSERT_TRUE(take.getSmilData(takeSmil, ""));
    EXPECT_EQ(takeSmil.getHead().getTrackBuffer().getVideo(), "");
    EXPECT_EQ(takeSmil.getBody().getSwPar().getRef()[0].getClipEnd(), "");
    QStringList sources;
    for (const DOTRef& ref : takeSmil.getBody().getPar().getRef())
        sources << ref.getSrc();
    EXPECT_EQ(sources, QStringList({kClip1, kClip2, kClip3}));
}

TEST_F(TakeInfoAcssTest, RecordWrittenBackLeavesTheFileAsItWas)
{
    for (const char* name : {"C0001.SMI", "T0001.SMI"}) {
        const QString path = copy(name);
        const XmlNode before = readXmlOutline(path);
        ASSERT_FALSE(before.name.isEmpty());
        BLTakeInfoAcss acss;
        ASSERT_TRUE(acss.loadForFilePath(path));
        DOTSmil smil;
        ASSERT_TRUE(acss.getSmilData(smil, ""));
        ASSERT_TRUE(acss.setSmilData(smil));
        ASSERT_TRUE(acss.save());
        // Same elements, attributes (in order), texts and namespaces; two
        // audio tracks of one clip keep their own attributes.
        EXPECT_EQ(readXmlOutline(path), before) << name << "\n" << readBytes(path).constData();
    }
}

TEST_F(TakeInfoAcssTest, ListsAreValidatedWholeBeforeAnyChange)
{
    BLTakeInfoAcss acss;
    ASSERT_TRUE(acss.loadForFilePath(copy("C0001.SMI")));
    auto outline = [&] {
        acss.save();
        return readXmlOutline(m_dir.filePath("C0001.SMI"));
    };
    const XmlNode original = outline();

    // A video element with an empty clipEnd refuses the whole list, the valid one included.
    DOTVideo good;
    good.setSrc(kClip3);
    good.setClipBegin("0");
    good.setClipEnd("10");
    good.setBegin("0");
    DOTVideo noEnd = good;
    noEnd.setSrc(kClip2 + "X");
    noEnd.setClipEnd("");
    EXPECT_FALSE(acss.setVideoData({good, noEnd}, 1));
    DOTAudio audio;
    audio.setSrc(kClip3);
    audio.setClipBegin("0");
    audio.setBegin("0");
    EXPECT_FALSE(acss.setAudioData({audio}, 1));
    DOTMetastream stream;
    stream.setSrc(kClip3);
    stream.setClipBegin("0");
    stream.setBegin("0");
    EXPECT_FALSE(acss.setMetastreamData({stream}, 1));
    // Missing src, clipBegin or begin, or a src that cannot be quoted, refuse a ref list.
    EXPECT_FALSE(acss.setRefData({makeRef(kClip3, "0", "", "0"), makeRef("", "0", "1", "0")}, 1));
    EXPECT_FALSE(acss.setRefData({makeRef(kClip3, "", "1", "0")}, 1));
    EXPECT_FALSE(acss.setRefData({makeRef(kClip3, "0", "1", "")}, 1));
    EXPECT_FALSE(acss.setRefData({makeRef("urn:x'y", "0", "1", "0")}, 1));
    EXPECT_EQ(outline(), original);

    // A ref may have an empty clipEnd; a known src is updated in place, not added.
    ASSERT_TRUE(acss.setRefData({makeRef(kClip3, "5", "", "9"), makeRef(kClip1, "1", "299", "0")}, 1));
    const XmlNode edited = outline();
    const XmlNode* par = edited.child("body")->child("par");
    EXPECT_EQ(par->childNames(), Names({"ref", "video", "audio", "audio", "metastream", "vx:Marker", "ref"}));
    EXPECT_EQ(par->child("ref", 0)->attribute("clipBegin"), "1");
    EXPECT_EQ(par->child("ref", 0)->attribute("vx:checksum"), "abc");
    EXPECT_EQ(par->child("ref", 0)->attribute("header"), "h1"); // empty record fields leave values alone
    EXPECT_EQ(par->child("ref", 1)->attribute("src"), kClip3);
    EXPECT_FALSE(par->child("ref", 1)->hasAttribute("clipEnd"));
}

TEST_F(TakeInfoAcssTest, DeletingClipsDropsEmptyGroups)
{
    // Removing the last clip of the plain group keeps the switch group.
    {
        const QString path = copy("C0001.SMI");
        BLTakeInfoAcss acss;
        ASSERT_TRUE(acss.loadForFilePath(path));
        EXPECT_EQ(acss.delParData(kClip2, 1), 0); // not in that group: nothing changes
        EXPECT_EQ(acss.delParData(kClip1, 1), 1);
        ASSERT_TRUE(acss.save());
        const XmlNode root = readXmlOutline(path);
        EXPECT_EQ(root.child("body")->childNames(), Names({"switch", "vx:Trailer"}));
        EXPECT_EQ(root.child("body")->child("switch")->child("par")->childNames(), Names({"ref", "video"}));
        EXPECT_EQ(root.child("head")->childNames(),
                  Names({"trackBuffer", "initialBuffer", "meta", "metadata", "vx:Calibration"}));

        // Then the last clip of the switch group: both groups empty, the body goes.
        EXPECT_EQ(acss.delParData(kClip1, 1), 0); // the plain group has no par any more
        EXPECT_EQ(acss.delParData(kClip2, 0), 1);
        ASSERT_TRUE(acss.save());
        EXPECT_EQ(readXmlOutline(path).childNames(), Names({"head"}));
    }
    // Emptying the switch group removes the switch only.
    {
        const QString path = copy("T0001.SMI");
        BLTakeInfoAcss acss;
        ASSERT_TRUE(acss.loadForFilePath(path));
        EXPECT_EQ(acss.delParData(kSpare, 0), 1);
        ASSERT_TRUE(acss.save());
        EXPECT_EQ(readXmlOutline(path).child("body")->childNames(), Names({"par"}));
        // Deleting one clip of several leaves the group.
        EXPECT_EQ(acss.delParData(kClip2, 1), 1);
        EXPECT_EQ(acss.getRefData("", 1).size(), 2);
        // Empty text clears every clip element of the group.
        EXPECT_EQ(acss.delRefData("", 1), 2);
        EXPECT_EQ(acss.delRefData("", 1), 0);
    }
    {
        const QString path = copy("C0001.SMI");
        BLTakeInfoAcss acss;
        ASSERT_TRUE(acss.loadForFilePath(path));
        EXPECT_EQ(acss.delParData("", 1), 1);
        EXPECT_TRUE(acss.getRefData("", 1).isEmpty());
        EXPECT_TRUE(acss.getAudioData("", 1).isEmpty());
        EXPECT_EQ(acss.getRefData("", 0).size(), 1);
    }
}

TEST_F(TakeInfoAcssTest, CreatedDocumentsAndGroupsWithoutRefs)
{
    const QString path = m_dir.filePath("NEW.SMI");
    BLTakeInfoAcss acss;
    ASSERT_TRUE(acss.createForFilePath(path, kClip1));
    EXPECT_FALSE(acss.isLoaded());
    DOTSmil smil;
    EXPECT_FALSE(acss.getSmilData(smil, "")); // reads need a loaded file

    // A switch group without refs is not written; the plain group is.
    DOTPar sw;
    DOTVideo video;
    video.setSrc(kClip2);
    video.setClipBegin("0");
    video.setClipEnd("1");
    video.setBegin("0");
    sw.setVideo({video});
    DOTPar par;
    par.setSystemComponent("main");
    par.setRef({makeRef(kClip1, "0", "100", "0", "100")});
    DOTBody body;
    body.setSwPar(sw);
    body.setPar(par);
    smil.setBody(body);
    DOTHead head;
    DOTMetadata metadata;
    metadata.setSrc("NEWM01.XML");
    metadata.setType("NonRealTimeMeta");
    head.setMetadata(metadata);
    smil.setHead(head);
    ASSERT_TRUE(acss.setBodyData(body));
    ASSERT_TRUE(acss.setHeadData(head)); // made after the body, placed before it
    EXPECT_FALSE(acss.setMetadataData(DOTMetadata()));
    ASSERT_TRUE(acss.save());

    const XmlNode root = readXmlOutline(path);
    EXPECT_EQ(root.namespaceUri, BLTakeInfoAcss::kNameSpace);
    EXPECT_EQ(root.attribute("umid"), kClip1);
    EXPECT_EQ(root.childNames(), Names({"head", "body"}));
    EXPECT_EQ(root.child("body")->childNames(), Names({"par"}));
    EXPECT_EQ(root.child("body")->child("par")->attribute("systemComponent"), "main");
    const XmlNode* ref = root.child("head")->child("metadata")->child("ref");
    ASSERT_NE(ref, nullptr);
    EXPECT_EQ(ref->attribute("type"), "NonRealTimeMeta");

    // A switch group created later goes before the plain group.
    sw.setRef({makeRef(kClip2, "0", "", "0")});
    ASSERT_TRUE(acss.setParData(sw, 0));
    ASSERT_TRUE(acss.save());
    EXPECT_EQ(readXmlOutline(path).child("body")->childNames(), Names({"switch", "par"}));

    BLTakeInfoAcss again;
    ASSERT_TRUE(again.loadForFilePath(path));
    DOTSmil read;
    ASSERT_TRUE(again.getSmilData(read, ""));
    EXPECT_EQ(read.getUmid(), kClip1);
    EXPECT_EQ(read.getHead().getMetadata().getSrc(), "NEWM01.XML");
    EXPECT_EQ(read.getBody().getSwPar().getVideo().size(), 1);
    EXPECT_EQ(read.getBody().getPar().getRef()[0].getEnd(), "100");
}
