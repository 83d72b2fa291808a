#include "OperationsTestSupport.h"

#include "core/card/BLCardPath.h"
#include "support/QtPrinters.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

TEST(CardPathTest, ReferencesResolveOnlyInsideTheBpavFolder)
{
    QTemporaryDir dir;
    const QString root = dir.path();
    const QString bpav = root + "/card/BPAV";
    optest::writeFile(bpav + "/CLPR/A0001/A0001.MP4", "essence");
    optest::writeFile(root + "/outside/file", "sentinel");
    ASSERT_TRUE(QFile::link(root + "/outside", bpav + "/CLPR/OUT"));
    ASSERT_TRUE(QFile::link(root + "/outside/file", bpav + "/CLPR/A0001/LINK.MP4"));
    ASSERT_TRUE(QFile::link(bpav + "/CLPR/A0001", bpav + "/CLPR/IN"));
    ASSERT_TRUE(QFile::link(root + "/nowhere", bpav + "/CLPR/DANGLING"));

    // Inside, existing or not, with or without the leading "./".
    EXPECT_EQ(BLCardPath::resolveReference(bpav, "./CLPR/A0001/A0001.MP4"), bpav + "/CLPR/A0001/A0001.MP4");
    EXPECT_EQ(BLCardPath::resolveReference(bpav, "CLPR/A0001/A0001.MP4"), bpav + "/CLPR/A0001/A0001.MP4");
    EXPECT_EQ(BLCardPath::resolveReference(bpav, "./CLPR/NEW/NEW.XML"), bpav + "/CLPR/NEW/NEW.XML");
    EXPECT_EQ(BLCardPath::resolveReference(bpav, "./CLPR/../MEDIAPRO.XML"), bpav + "/MEDIAPRO.XML");
    EXPECT_EQ(BLCardPath::resolveReference(bpav, "./CLPR/IN/A0001.MP4"), bpav + "/CLPR/IN/A0001.MP4");

    // Leaving the folder, by name or through a link.
    for (const char* reference :
         {"", ".", "./", "./..", "./../../outside/file", "../card/BPAV/CLPR", "./CLPR/../../BPAV2/x",
          "/etc/passwd", "./CLPR/OUT", "./CLPR/OUT/file", "./CLPR/OUT/new/file", "./CLPR/A0001/LINK.MP4",
          "./CLPR/DANGLING", "./CLPR/DANGLING/file"})
        EXPECT_EQ(BLCardPath::resolveReference(bpav, reference), "") << reference;
    EXPECT_EQ(BLCardPath::resolveReference(root + "/missing/BPAV", "./CLPR/x"), "");
    EXPECT_TRUE(BLCardPath::isFileOfReference(bpav, "./CLPR/A0001/A0001.MP4"));
    EXPECT_FALSE(BLCardPath::isFileOfReference(bpav, "./CLPR/A0001/LINK.MP4"));
    EXPECT_FALSE(BLCardPath::isFileOfReference(bpav, "./CLPR/A0001"));

    // A record's folder lies two levels down at least.
    EXPECT_EQ(BLCardPath::resolveRecordFolder(bpav, "./CLPR/A0001/A0001.MP4"), bpav + "/CLPR/A0001");
    EXPECT_EQ(BLCardPath::resolveRecordFolder(bpav, "./CLPR/A0001"), bpav + "/CLPR/A0001");
    for (const char* reference : {"./CLPR/A0002.MP4", "./MEDIAPRO.XML", "./CLPR", "./CLPR/OUT/file"})
        EXPECT_EQ(BLCardPath::resolveRecordFolder(bpav, reference), "") << reference;
    optest::writeFile(bpav + "/CLPR/A0002/A0002M01.XML", "meta");
    optest::writeFile(bpav + "/CLPR/A0002/A0002.MP4", "essence");
    EXPECT_EQ(BLCardPath::getFolderSize("./CLPR/A0002/A0002M01.XML", root + "/card"), 11);
    EXPECT_EQ(BLCardPath::getFolderSize("./CLPR/OUT/file", root + "/card"), 0);
}
