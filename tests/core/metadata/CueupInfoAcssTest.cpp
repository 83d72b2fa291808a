#include "MetadataTestSupport.h"

#include "core/formats/metadata/BLCueupInfoAcss.h"
#include "support/TestEnvironment.h"

#include <gtest/gtest.h>

namespace {
const QString kFixture = cwmeta::fixturePath("cueup/CUEUP.XML");
const QString kUmid1 = "060A2B340101010501010D431300000000123456789012340800460202123456";

class CueupInfoAcssTest : public cwtest::HomeTest
{
protected:
    QString makeFolder(const QByteArray& text)
    {
        EXPECT_TRUE(cwtest::writeFile(home().path("card/BPAV/CUEUP.XML"), text));
        return home().path("card/BPAV");
    }
};

DOClip clip(const QString& uri, const QString& umid = {}, const QString& ftc = {})
{
    DOClip c;
    c.setUri(uri);
    c.setUmid(umid);
    c.setFtc(ftc);
    return c;
}

std::string describe(const DOClip& c)
{
    return (c.getUri() + '|' + c.getUmid() + '|' + c.getFtc()).toStdString();
}
} // namespace

TEST_F(CueupInfoAcssTest, CameraFileEntriesAreReadAndRemovedKeepingForeignContent)
{
    BLCueupInfoAcss acss;
    ASSERT_TRUE(acss.loadForFolderPath(makeFolder(cwtest::readFile(kFixture))));
    DOClip second = clip("./CLPR/A0001/A0001.SMI");
    ASSERT_TRUE(acss.getClipData(second));
    EXPECT_EQ(describe(second), "./CLPR/A0001/A0001.SMI|" + kUmid1.toStdString() + "|00:00:03:00");
    DOClip missing = clip("./CLPR/A0009/A0009.SMI", "U", "F");
    EXPECT_TRUE(acss.getClipData(missing));
    EXPECT_EQ(describe(missing), "./CLPR/A0009/A0009.SMI|U|F") << "an entry not there changes nothing";

    // Removing an entry keeps everything else as it was.
    EXPECT_FALSE(acss.delClipData(""));
    EXPECT_TRUE(acss.delClipData("./CLPR/A0002/A0002.SMI"));
    EXPECT_FALSE(acss.delClipData("./CLPR/A0002/A0002.SMI"));
    ASSERT_TRUE(acss.save());
    cwmeta::XmlNode expected = cwmeta::readXmlOutline(kFixture);
    ASSERT_EQ(expected.child("history")->child("clip")->attribute("uri"), "./CLPR/A0002/A0002.SMI");
    expected.child("history")->children.removeFirst();
    EXPECT_EQ(cwmeta::readXmlOutline(acss.filePath()), expected);

    // A file without history has nothing to remove.
    BLCueupInfoAcss bare;
    ASSERT_TRUE(bare.loadForFolderPath(makeFolder(R"(<cueupinfo xmlns="urn:x"><other/></cueupinfo>)")));
    EXPECT_FALSE(bare.delClipData("./CLPR/A0001/A0001.SMI"));
}

TEST_F(CueupInfoAcssTest, HostileFilesAreRefused)
{
    cwmeta::expectHostileFilesRefused("cueupinfo", "CUEUP.XML", [](const QString& folder) {
        BLCueupInfoAcss acss;
        DOClip clip;
        return acss.loadForFolderPath(folder) || acss.getClipData(clip) || acss.save();
    });
}
