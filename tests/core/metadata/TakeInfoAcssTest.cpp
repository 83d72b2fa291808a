#include "MetadataTestSupport.h"

#include "core/formats/metadata/BLTakeInfoAcss.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace cwmeta;

namespace {
const QString kUmid = "urn:smpte:umid:060A2B340101010501010D4313000000";
const QString kClip1 = kUmid + "1111111111111111080046FFFE010203";
const QString kClip2 = kUmid + "2222222222222222080046FFFE010203";
const QString kClip3 = kUmid + "3333333333333333080046FFFE010203";

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

TEST_F(TakeInfoAcssTest, HostileFilesAreRefused)
{
    expectHostileFilesRefused("smil", "C0001.SMI", [](const QString& folder) {
        BLTakeInfoAcss acss;
        DOTSmil smil;
        return acss.loadForFilePath(folder + "/C0001.SMI") || acss.getSmilData(smil, "") || acss.save();
    });
}
