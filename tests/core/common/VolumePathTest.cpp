#include "core/services/BLCommon.h"
#include "support/FakeVolumeProvider.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

TEST(VolumePathTest, VolumeNamesComeFromTheMountedVolumes)
{
    cwtest::FakeVolumeProvider volumes;
    volumes.addVolume({"/media/u/CARD", "vfat", "CARD", 1, 1});
    volumes.addVolume({"/media/u/CARD/inner", "exfat", "INNER", 1, 1});

    EXPECT_EQ(BLCommon::getVolumeName("/home/x/Videos"), "/");
    EXPECT_EQ(BLCommon::getVolumeName("/media/u/CARD/BPAV"), "/media/u/CARD/");
    EXPECT_EQ(BLCommon::getVolumeName("/media/u/CARD/inner/BPAV/CLPR"), "/media/u/CARD/inner/");
    EXPECT_EQ(BLCommon::getVolumeName("/media/u/CARDS/BPAV"), "/"); // a longer name is another folder

    EXPECT_TRUE(BLCommon::compareVolumes("/media/u/CARD/a", "/media/u/CARD/b/c"));
    EXPECT_FALSE(BLCommon::compareVolumes("/media/u/CARD/a", "/home/x"));

    EXPECT_TRUE(BLCommon::isVolume("/media/u/CARD/"));
    EXPECT_FALSE(BLCommon::isVolume("/media/u"));
    EXPECT_EQ(BLCommon::getFileList(""), QStringList({"/", "/media/u/CARD", "/media/u/CARD/inner"}));
}

TEST(VolumePathTest, BpavIsFoundInBothLayouts)
{
    QTemporaryDir dir;
    const QString card = dir.path() + "/card";
    const QString both = dir.path() + "/both";
    const QString none = dir.path() + "/none";
    QDir().mkpath(card + "/PRIVATE/ORX/BPAV");
    QDir().mkpath(both + "/PRIVATE/ORX/BPAV");
    QDir().mkpath(both + "/BPAV");
    QDir().mkpath(none);

    EXPECT_EQ(BLCommon::getPathOfBPAV(card), card + "/PRIVATE/ORX/BPAV");
    EXPECT_EQ(BLCommon::visibleFolderNameOf(card), "PRIVATE");
    EXPECT_TRUE(BLCommon::isBPAVFolder(card));
    EXPECT_EQ(BLCommon::getPathOfBPAV(both), both + "/BPAV");
    EXPECT_EQ(BLCommon::visibleFolderNameOf(both), "BPAV");
    EXPECT_EQ(BLCommon::getPathOfBPAV(none), none + "/BPAV");
    EXPECT_FALSE(BLCommon::isBPAVFolder(none));
    // A file named BPAV is not the folder.
    QFile(none + "/BPAV").open(QIODevice::WriteOnly);
    EXPECT_FALSE(BLCommon::isBPAVFolder(none));
}

// Listing folders is left to the folder list tests.
TEST(VolumePathTest, FolderAndFileTests)
{
    QTemporaryDir dir;
    const QString root = dir.path();
    QDir().mkpath(root + "/visible/inner");
    QDir().mkpath(root + "/.hidden");
    QFile(root + "/file.MP4").open(QIODevice::WriteOnly);
    QFile(root + "/.hiddenfile").open(QIODevice::WriteOnly);
    ASSERT_TRUE(QFile::link(root + "/visible", root + "/link"));
    ASSERT_TRUE(QFile::link(root + "/visible", root + "/.hiddenlink"));

    // A link to a folder counts as a folder; a hidden link does not.
    const struct
    {
        const char* name;
        bool folder, file;
    } entries[] = {{"visible/", true, false},     {"link", true, false},     {".hidden", false, false},
                   {".hiddenlink", false, false}, {"file.MP4", false, true}, {".hiddenfile", false, true},
                   {"missing", false, false}};
    for (const auto& e : entries) {
        EXPECT_EQ(BLCommon::isFolder(root + "/" + e.name), e.folder) << e.name;
        EXPECT_EQ(BLCommon::isFiles(root + "/" + e.name), e.file) << e.name;
    }
}
