#include "core/card/BLDiskCtrl.h"
#include "core/services/BLCommon.h"
#include "core/services/BLLogCtrl.h"
#include "core/services/BLPlistCtrl.h"
#include "support/FakeVolumeProvider.h"
#include "support/MessageRecorder.h"
#include "support/TestEnvironment.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

constexpr qint64 kGB = 1'000'000'000;

void writeFile(const QString& path, qint64 size = 0)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    if (size > 0) {
        ASSERT_TRUE(file.resize(size)); // sparse: the size counts, not the blocks
    }
}

} // namespace

class DiskSpaceTest : public cwtest::HomeTest
{
protected:
    void SetUp() override
    {
        HomeTest::SetUp();
        ASSERT_TRUE(m_card.isValid());
        m_volumes.addVolume({QDir::cleanPath(m_card.path()), "vfat", "CARD", 100 * kGB, 15 * kGB});
    }

    void settings(int systemMax, int localMax)
    {
        cwtest::releaseSingletons();
        cwtest::writeSettings(home().configHome(),
                              {{"SYSTEM_DISK_MAX", systemMax}, {"LOCAL_DISK_MAX", localMax}});
    }

    // A clip file of the given size in a source folder on the start-up disk.
    QString source(const QString& name, qint64 size)
    {
        const QString path = home().path("src/BPAV/CLPR/" + name + "/" + name + ".MP4");
        writeFile(path, size);
        return path;
    }

    QTemporaryDir m_card;
    cwtest::FakeVolumeProvider m_volumes;
    cwtest::MessageRecorder m_messages;
};

TEST_F(DiskSpaceTest, TheDataMustFitAndLeaveTheDiskBelowItsUsageLimit)
{
    const QString clip = QFileInfo(source("C10", 10 * kGB)).path();
    writeFile(clip + "/C10M01.XML", 1000);
    m_volumes.addVolume({m_card.path() + "/full", "vfat", "FULL", 100 * kGB, 10 * kGB});
    const QString card = m_card.path() + "/BPAV";
    const QString full = m_card.path() + "/full";
    const QString startup = home().path("dest");
    const QString six = source("C6", 6 * kGB);
    // The card has 85 GB of 100 used, the start-up disk 250 GB of 500.
    const struct
    {
        int systemMax, localMax;
        QString source, destination;
        const char* refusal;
    } cases[] = {
        {0, 90, six, card, "MSG_6510_3193"},                   // 91 %
        {0, 90, source("C5", 5 * kGB), card, "MSG_6510_3193"}, // 90 %: not below
        {0, 90, source("C4", 4 * kGB), card, ""},              // 89 %
        {0, 0, clip, full, "MSG_6510_3229"},                   // a folder counts whole: 10 GB + 1000 bytes
        {0, 0, clip + "/C10.MP4", full, ""},                   // exactly the free space fits
        {0, 100, clip, full, "MSG_6510_3229"},                 // 100 means the same as 0
        {0, 1, six, startup, ""},                              // the start-up disk has its own limit
        {51, 1, six, startup, "MSG_6510_3193"},                // 51 %
        {51, 1, six, QString(), ""}, // no destination: nothing needed, the sources' disk at 50 %
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(QString("%1 to %2").arg(c.source, c.destination).toStdString());
        settings(c.systemMax, c.localMax);
        m_messages.clear();
        EXPECT_EQ(BLDiskCtrl::sharedCtrl()->checkDiskSpace({c.source}, c.destination), !*c.refusal);
        EXPECT_EQ(m_messages.keys(), *c.refusal ? QStringList{c.refusal} : QStringList());
    }
}

TEST(DiskKindTest, FileSystemKindsAndTheirLogLines)
{
    cwtest::ScopedHome home;
    cwtest::FakeVolumeProvider volumes;
    const QList<std::pair<QString, int>> kinds = {
        {"ext4", 0}, {"btrfs", 0}, {"tmpfs", 0}, {"hfs", 0},     {"vfat", 1}, {"msdos", 1},  {"cifs", 2},
        {"smb3", 2}, {"exfat", 3}, {"ntfs", 3},  {"fuseblk", 3}, {"nfs", 3},  {"iso9660", 3}};
    for (const auto& [type, kind] : kinds) {
        volumes.addVolume({"/media/u/" + type, type, type, kGB, kGB});
        EXPECT_EQ(BLDiskCtrl::sharedCtrl()->isUsableDrive("/media/u/" + type + "/BPAV"), kind)
            << type.toStdString();
    }

    volumes.setUnreadable(true);
    EXPECT_EQ(BLDiskCtrl::sharedCtrl()->isUsableDrive("/media/u/ext4"), 3);
    qint64 total = -1, freeSize = -1;
    EXPECT_FALSE(BLDiskCtrl::sharedCtrl()->getDiskSizeInfo("/media/u/ext4", &total, &freeSize));
    EXPECT_TRUE(total == 0 && freeSize == 0);
}

TEST(DiskKindTest, TheMountTableAnswersForRealPaths)
{
    QTemporaryDir dir;
    BLDiskCtrl* disk = BLDiskCtrl::sharedCtrl();
    qint64 total = 0, freeSize = 0;
    // A folder not yet made answers for the file system it would be made on.
    ASSERT_TRUE(disk->getDiskSizeInfo(dir.path() + "/not/yet/made", &total, &freeSize));
    EXPECT_TRUE(total > 0 && freeSize <= total);
    EXPECT_EQ(disk->isUsableDrive("/proc/self"), 3); // a pseudo file system is not for material
    const QStringList volumes = BLCommon::getFileList(QString());
    EXPECT_EQ(volumes.value(0), "/");
    EXPECT_FALSE(volumes.contains("/proc"));
}

TEST(DiskSizeTest, SizesOfFilesFoldersAndLinks)
{
    QTemporaryDir dir;
    const QString clip = dir.path() + "/C0001";
    writeFile(clip + "/C0001.MP4", 100000);
    writeFile(clip + "/C0001M01.XML", 2000);
    writeFile(clip + "/.DS_Store", 30);
    writeFile(clip + "/sub/part.BIM", 400);
    ASSERT_TRUE(QFile::link(clip + "/C0001.MP4", clip + "/link.MP4"));
    const qint64 linkSize = QFileInfo(clip + "/link.MP4").symLinkTarget().toUtf8().size();
    ASSERT_TRUE(QFile::link(clip, clip + "/sub/loop")); // a loop of links must not recurse

    BLDiskCtrl* disk = BLDiskCtrl::sharedCtrl();
    EXPECT_EQ(disk->getFileSize(clip + "/C0001.MP4"), 100000);
    EXPECT_EQ(disk->getFileSize(clip + "/link.MP4"), linkSize); // the link, not its target
    EXPECT_EQ(disk->getFileSize(clip + "/missing"), 0);
    const qint64 loopSize = disk->getFileSize(clip + "/sub/loop");
    EXPECT_EQ(disk->getFolderSize(clip), 100000 + 2000 + 30 + 400 + linkSize + loopSize);
    EXPECT_EQ(disk->getClipSize(clip + "/sub"), 400 + loopSize);

    // No hardware address gives a UMID node of zeros around FFFE.
    EXPECT_EQ(BLDiskCtrl::convertMacAddress(""), "000000FFFE000000");
}
