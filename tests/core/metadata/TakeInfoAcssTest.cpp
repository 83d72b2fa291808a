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

TEST_F(TakeInfoAcssTest, CameraFilesAreReadAndTheirRecordsWrittenBackAsTheyWere)
{
    for (const char* name : {"C0001.SMI", "T0001.SMI"}) {
        const QString path = copy(name);
        const XmlNode before = readXmlOutline(path);
        ASSERT_FALSE(before.name.isEmpty());
        BLTakeInfoAcss acss;
        DOTSmil smil;
        ASSERT_TRUE(acss.loadForFilePath(path) && acss.getSmilData(smil, ""));
        ASSERT_TRUE(acss.setSmilData(smil) && acss.save());
        // Two audio tracks of one clip keep their own attributes.
        EXPECT_EQ(readXmlOutline(path), before) << name;

        // What the generated cards do not hold: buffers, a switch group of
        // refs; a document without them reads as empty parts.
        const DOTPar& sw = smil.getBody().getSwPar();
        const DOTPar& par = smil.getBody().getPar();
        QStringList sources;
        for (const DOTRef& ref : par.getRef())
            sources << ref.getSrc();
        if (QString(name) == "C0001.SMI") {
            EXPECT_EQ(smil.getUmid(), kClip1);
            EXPECT_EQ(smil.getHead().getTrackBuffer().getAudio(), "4");
            EXPECT_EQ(sw.getRef().value(0).getClipEnd(), "smpte-30=00:00:10:00");
            EXPECT_EQ(par.getAudio().value(1).getTrackSrc(), "2");
        } else {
            EXPECT_EQ(smil.getHead().getTrackBuffer().getVideo(), "");
            EXPECT_EQ(sw.getRef().value(0).getClipEnd(), "");
            EXPECT_EQ(sources, QStringList({kClip1, kClip2, kClip3}));
        }
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
