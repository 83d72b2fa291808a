#include "core/card/DOTakeData.h"
#include "core/services/BLCommon.h"
#include "support/FakeVolumeProvider.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

TEST(NamesTest, FileAndFolderNames)
{
    EXPECT_FALSE(BLCommon::checkHyphenationCharacter(".hidden"));
    EXPECT_FALSE(BLCommon::checkHyphenationCharacter("ABC:1"));
    EXPECT_TRUE(BLCommon::checkHyphenationCharacter("ABC.d")); // only a leading full stop is refused
    EXPECT_TRUE(BLCommon::checkHyphenationCharacter("Take 1 (final)"));
    for (const QString& c :
         QStringList{"/", "\\", ">", "<", "?", "*", "\"", "|", "\r", "\n", QString(QChar(0x00A5))})
        EXPECT_FALSE(BLCommon::checkHyphenationCharacter("A" + c + "B")) << c.toStdString();
    EXPECT_FALSE(BLCommon::checkReturnCode("two\nlines"));
    EXPECT_TRUE(BLCommon::checkReturnCode("ABC:1")); // only line breaks and the yen sign

    EXPECT_TRUE(BLCommon::checkHyphenationCharacterForPath("/media/u/CARD/Shoot.2009/BPAV"));
    EXPECT_FALSE(BLCommon::checkHyphenationCharacterForPath("/media/u/CARD/.cache/BPAV"));
    EXPECT_FALSE(BLCommon::checkHyphenationCharacterForPath("/media/u/A:B/x"));
    EXPECT_TRUE(BLCommon::checkHyphenationCharacterForPath("/media/u/name.with:colon-in-extension"));

    QTemporaryDir dir;
    QDir().mkpath(dir.filePath("C0001"));
    EXPECT_FALSE(BLCommon::checkSameName(dir.path(), "c0001"));
    EXPECT_TRUE(BLCommon::checkSameName(dir.path(), "C0002"));
}

TEST(NamesTest, TakeReferencesFromClipReferences)
{
    EXPECT_EQ(BLCommon::updateTakeUri("./CLPR/ABC0001/ABC0001M01.XML", 1),
              "./TAKR/ABC0001U01/ABC0001U01M01.XML");
    EXPECT_EQ(BLCommon::updateTakeUri("./CLPR/ABC0001/ABC0001.SMI", 12), "./TAKR/ABC0001U12/ABC0001.SMI");
    EXPECT_EQ(BLCommon::updateTakeUri("./TAKR/T0001/C0003M01.XML", 2), "./TAKR/T0001U02/T0001U02M01.XML");
    EXPECT_EQ(BLCommon::updateSMIUri("./TAKR/T0001U02/T0001.SMI", 2), "./TAKR/T0001U02/T0001U02.SMI");
    EXPECT_EQ(BLCommon::updateSMIUri(BLCommon::updateTakeUri("./TAKR/T0001/T0001.SMI", 3), 3),
              "./TAKR/T0001U03/T0001U03.SMI");
}

TEST(FolderLimitTest, SixHundredFoldersAreTheLimit)
{
    QTemporaryDir dir;
    const QString clpr = dir.filePath("BPAV/CLPR");
    for (int i = 1; i <= 600; ++i)
        ASSERT_TRUE(QDir().mkpath(clpr + QString::asprintf("/C%04d", i)));
    QFile(clpr + "/C0601.MP4").open(QIODevice::WriteOnly); // a loose file is not a folder
    QDir().mkpath(clpr + "/.Trash");                       // nor is a hidden one

    EXPECT_EQ(BLCommon::getFolderCountInCLPR(dir.path()), 600);
    EXPECT_FALSE(BLCommon::isExceedFolderLimit(dir.path()));
    EXPECT_FALSE(BLCommon::isExceedFolderLimitByImport(dir.path(), 0));
    EXPECT_TRUE(BLCommon::isExceedFolderLimitByImport(dir.path(), 1));

    QDir().mkpath(clpr + "/C0601");
    EXPECT_TRUE(BLCommon::isExceedFolderLimit(dir.path()));

    // The same folders as take folders.
    ASSERT_TRUE(QDir().rename(clpr, dir.filePath("BPAV/TAKR")));
    ASSERT_TRUE(QDir().mkpath(clpr));
    EXPECT_EQ(BLCommon::getFolderCountInTAKR(dir.path()), 601);
    EXPECT_TRUE(BLCommon::isExceedFolderLimit(dir.path()));

    // 598 take folders: two more multi-clip takes fit, three do not (the
    // dialogs' checks show the clip folders' side).
    for (const char* name : {"C0599", "C0600", "C0601"})
        ASSERT_TRUE(QDir().rmdir(dir.filePath(QString("BPAV/TAKR/") + name)));
    DOTakeData multi;
    multi.setClipData(DOClipData());
    EXPECT_FALSE(BLCommon::isExceedFolderLimitByCopy(dir.path(), {multi, multi}));
    EXPECT_TRUE(BLCommon::isExceedFolderLimitByCopy(dir.path(), {multi, multi, multi}));
}

TEST(FixedFolderTest, FixedFoldersAndUnfinishedRecordings)
{
    QTemporaryDir dir;
    EXPECT_TRUE(BLCommon::createFixedFolders(dir.path()));
    QTemporaryDir card;
    QDir().mkpath(card.filePath("PRIVATE/ORX/BPAV"));
    EXPECT_TRUE(BLCommon::isCLPRFolder(card.path()));
    EXPECT_TRUE(QFileInfo(card.filePath("PRIVATE/ORX/BPAV/CLPR")).isDir());
    QFile(card.filePath("PRIVATE/ORX/BPAV/TAKR")).open(QIODevice::WriteOnly); // a file in the way
    EXPECT_FALSE(BLCommon::isTAKRFolder(card.path()));
    EXPECT_FALSE(BLCommon::createFixedFolders(card.path()));

    EXPECT_FALSE(BLCommon::doSalvage(dir.path()));
    QFile(dir.filePath("BPAV/C0001.sts")).open(QIODevice::WriteOnly);
    EXPECT_TRUE(BLCommon::doSalvage(dir.path()));
    QFile::remove(dir.filePath("BPAV/C0001.sts"));
    QFile(dir.filePath("BPAV/C0001.SLVX")).open(QIODevice::WriteOnly);
    QDir().mkpath(dir.filePath("BPAV/CLPR/C0002/C0002.SLV")); // only the BPAV folder itself counts
    EXPECT_FALSE(BLCommon::doSalvage(dir.path()));
    QFile(dir.filePath("BPAV/C0002.Slv")).open(QIODevice::WriteOnly);
    EXPECT_TRUE(BLCommon::doSalvage(dir.path()));
}

TEST(DisplayNameTest, VolumesShowTheirOwnNames)
{
    QTemporaryDir dir;
    const QString card = QDir::cleanPath(dir.filePath("mnt"));
    QDir().mkpath(card + "/DCIM/100");
    cwtest::FakeVolumeProvider volumes({"/", "ext4", "System", 1, 1});
    volumes.addVolume({card, "vfat", "CARD", 1, 1});

    EXPECT_EQ(BLCommon::getDisplayPath(card + "/DCIM/100"), "CARD:DCIM:100:");
    EXPECT_EQ(BLCommon::getDisplayPath("/home/x"), "System:home:x:");
    EXPECT_EQ(BLCommon::getDisplayName(card), "CARD");
    EXPECT_EQ(BLCommon::getDisplayName(card + "/DCIM"), "DCIM");
    EXPECT_FALSE(BLCommon::isSameDisplayName(card));
    EXPECT_TRUE(BLCommon::isSameDisplayName(card + "/DCIM"));
}
