#include "core/card/BLDiskCtrl.h"

#include "core/card/DOTakeData.h"
#include "core/services/BLCommon.h"
#include "core/services/BLLogCtrl.h"
#include "core/services/BLPlistCtrl.h"
#include "core/services/BLVolumeProvider.h"

#include <QDir>
#include <QFileInfo>
#include <QNetworkInterface>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <mutex>

namespace {
std::mutex g_sharedMutex;
BLDiskCtrl* g_shared = nullptr;

constexpr int kMacDigits = 12;
constexpr int kKindLogId = 1111;
constexpr int kSpaceLogId = 6510;

enum class Access
{
    Write,
    Read,
    Delete
};

// The access test of this process for the item (effective ids, so a test run
// as another file-system user sees that user's rights).
bool accessible(const QString& path, int mode)
{
    return !path.isEmpty() && faccessat(AT_FDCWD, QFile::encodeName(path).constData(), mode, AT_EACCESS) == 0;
}

bool singleTest(const BLDiskCtrl* disk, const QString& path, Access access)
{
    switch (access) {
    case Access::Write:
        return disk->isWritableThisPath(path);
    case Access::Read:
        return disk->isReadableThisPath(path);
    case Access::Delete:
        return disk->isDeletableThisPath(path);
    }
    return false;
}

// The folder and every visible entry in it pass the test, folders recursively.
bool folderTest(const BLDiskCtrl* disk, const QString& folder, Access access)
{
    if (!singleTest(disk, folder, access))
        return false;
    const QStringList names = BLCommon::getFileList(folder);
    for (const QString& name : names) {
        const QString entry = QDir(folder).filePath(name);
        if (!BLCommon::checkVisibleDirectory(entry))
            continue;
        const bool ok = BLCommon::isFolder(entry) && !QFileInfo(entry).isSymLink()
                            ? folderTest(disk, entry, access)
                            : singleTest(disk, entry, access);
        if (!ok)
            return false;
    }
    return true;
}
} // namespace

BLDiskCtrl* BLDiskCtrl::sharedCtrl()
{
    std::lock_guard lock(g_sharedMutex);
    if (!g_shared)
        g_shared = new BLDiskCtrl();
    return g_shared;
}

void BLDiskCtrl::releaseCtrl()
{
    std::lock_guard lock(g_sharedMutex);
    delete g_shared;
    g_shared = nullptr;
}

// ---- file system kind ----

int BLDiskCtrl::isUsableDrive(const QString& path) const
{
    static const QStringList kNative = {"ext2", "ext3",  "ext4",    "xfs",  "btrfs", "zfs",
                                        "f2fs", "tmpfs", "overlay", "apfs", "hfs"};
    static const QStringList kFat32 = {"vfat", "msdos", "fat"};
    static const QStringList kShare = {"cifs", "smb3", "smbfs"};
    const std::optional<BLVolume> volume = BLVolumeProvider::current()->volumeForPath(path);
    if (!volume)
        return 3;
    const QString type = volume->fsType.toLower();
    if (kNative.contains(type)) {
        BLLogCtrl::debug(kKindLogId, QStringLiteral("[BLDiskCtrl isUsableDrive] FORMAT_OK"));
        return 0;
    }
    if (kFat32.contains(type)) {
        BLLogCtrl::debug(kKindLogId, QStringLiteral("[BLDiskCtrl isUsableDrive] FORMAT_FAT32"));
        return 1;
    }
    if (kShare.contains(type)) {
        BLLogCtrl::debug(kKindLogId, QStringLiteral("[BLDiskCtrl isUsableDrive] FORMAT_SAMBA"));
        return 2;
    }
    BLLogCtrl::debug(kKindLogId, QStringLiteral("[BLDiskCtrl isUsableDrive] FORMAT_NG"));
    return 3;
}

// ---- access ----

bool BLDiskCtrl::isWritableThisPath(const QString& path) const
{
    return accessible(path, W_OK);
}

bool BLDiskCtrl::isReadableThisPath(const QString& path) const
{
    return accessible(path, R_OK);
}

bool BLDiskCtrl::isDeletableThisPath(const QString& path) const
{
    const QString clean = QDir::cleanPath(path);
    if (clean == QLatin1String("/"))
        return true;
    struct stat item
    {
    };
    struct stat parent
    {
    };
    const QString parentPath = QFileInfo(clean).path();
    if (path.isEmpty() || lstat(QFile::encodeName(clean).constData(), &item) != 0 ||
        stat(QFile::encodeName(parentPath).constData(), &parent) != 0)
        return false;
    if (!accessible(parentPath, W_OK | X_OK))
        return false;
    // In a sticky folder (such as /tmp) only the owners may remove an entry.
    if (parent.st_mode & S_ISVTX) {
        const uid_t me = geteuid();
        return me == 0 || item.st_uid == me || parent.st_uid == me;
    }
    return true;
}

bool BLDiskCtrl::isWritableFolderPath(const QString& path) const
{
    return !BLCommon::isFolder(path) || folderTest(this, path, Access::Write);
}

bool BLDiskCtrl::isReadableFolderPath(const QString& path) const
{
    return !BLCommon::isFolder(path) || folderTest(this, path, Access::Read);
}

bool BLDiskCtrl::isDeletablePath(const QString& path) const
{
    if (BLCommon::isFolder(path))
        return folderTest(this, path, Access::Delete);
    return !BLCommon::isFiles(path) || isDeletableThisPath(path);
}

bool BLDiskCtrl::isWritablePath(const QString& path) const
{
    if (BLCommon::isFiles(path))
        return isWritableThisPath(path);
    if (!BLCommon::isFolder(path))
        return true;
    if (!isWritableThisPath(path))
        return false;
    const QString bpav = QDir(path).filePath(QStringLiteral("BPAV"));
    return !QFileInfo::exists(bpav) || isWritableFolderPath(bpav);
}

namespace {
bool baseCheck(const BLDiskCtrl* disk, const QString& folder, Access access)
{
    if (!singleTest(disk, folder, access))
        return false;
    const QString bpav = BLCommon::getPathOfBPAV(folder);
    for (const QString& path :
         {bpav, QDir(bpav).filePath(QStringLiteral("CLPR")), QDir(bpav).filePath(QStringLiteral("TAKR")),
          QDir(bpav).filePath(QStringLiteral("MEDIAPRO.XML")),
          QDir(bpav).filePath(QStringLiteral("CUEUP.XML"))})
        if (QFileInfo::exists(path) && !singleTest(disk, path, access))
            return false;
    return true;
}
} // namespace

bool BLDiskCtrl::baseWritableCheck(const QString& folder) const
{
    return baseCheck(this, folder, Access::Write);
}

bool BLDiskCtrl::baseReadableCheck(const QString& folder) const
{
    return baseCheck(this, folder, Access::Read);
}

namespace {
bool anyTakeHasClips(const QList<DOTakeData>& takes)
{
    return std::any_of(takes.begin(), takes.end(),
                       [](const DOTakeData& t) { return !t.getClipData().isEmpty(); });
}

QString takrFolder(const QString& folder)
{
    return QDir(BLCommon::getPathOfBPAV(folder)).filePath(QStringLiteral("TAKR"));
}

// The folder holding a record's non-real-time metadata; "" without one.
QString metadataFolder(const QString& bpav, const QString& xmlUri)
{
    return xmlUri.isEmpty() ? QString() : QFileInfo(BLCommon::makeFilePath(bpav, {xmlUri})).path();
}

// The metadata folder and every non-empty reference, in order, are readable.
bool readableFiles(const BLDiskCtrl* disk, const QString& bpav, const QStringList& references)
{
    const QString folder = metadataFolder(bpav, references.first());
    if (!folder.isEmpty() && !disk->isReadableThisPath(folder))
        return false;
    for (const QString& reference : references)
        if (!reference.isEmpty() && !disk->isReadableThisPath(BLCommon::makeFilePath(bpav, {reference})))
            return false;
    return true;
}
} // namespace

bool BLDiskCtrl::checkWritableToFolder(const QList<DOTakeData>& takes, const QString& to) const
{
    return baseWritableCheck(to) && (!anyTakeHasClips(takes) || isWritableFolderPath(takrFolder(to)));
}

bool BLDiskCtrl::checkReadableToFolder(const QList<DOTakeData>& takes, const QString& to) const
{
    return baseReadableCheck(to) && (!anyTakeHasClips(takes) || isReadableFolderPath(takrFolder(to)));
}

bool BLDiskCtrl::checkWritableFromFolder(const QList<DOTakeData>& takes, const QString& from) const
{
    const QString bpav = BLCommon::getPathOfBPAV(from);
    for (const DOTakeData& take : takes) {
        for (const DOClipData& clip : take.getClipData())
            if (!isWritableFolderPath(metadataFolder(bpav, clip.getXMLUri())))
                return false;
        if (!isWritableFolderPath(metadataFolder(bpav, take.getXMLUri())))
            return false;
    }
    return true;
}

bool BLDiskCtrl::checkReadableFromFolder(const QList<DOTakeData>& takes, const QString& from) const
{
    for (const DOTakeData& take : takes) {
        for (const DOClipData& clip : take.getClipData())
            if (!checkReadableFiles(clip, from))
                return false;
        if (!checkReadableFiles(take, from))
            return false;
    }
    return true;
}

bool BLDiskCtrl::checkReadableFiles(const DOClipData& clip, const QString& from) const
{
    return readableFiles(
        this, BLCommon::getPathOfBPAV(from),
        {clip.getXMLUri(), clip.getMP4Uri(), clip.getSMIUri(), clip.getPPNUri(), clip.getBIMUri()});
}

bool BLDiskCtrl::checkReadableFiles(const DOTakeData& take, const QString& from) const
{
    QStringList references{take.getXMLUri(), take.getMP4Uri()};
    if (take.getTakeStatus() != 3) // an imported take has only its metadata and essence
        references << take.getSMIUri() << take.getPPNUri() << take.getBIMUri();
    return readableFiles(this, BLCommon::getPathOfBPAV(from), references);
}

// ---- sizes ----

qint64 BLDiskCtrl::getFileSize(const QString& path) const
{
    struct stat st
    {
    };
    if (path.isEmpty() || lstat(QFile::encodeName(path).constData(), &st) != 0)
        return 0;
    return qint64(st.st_size);
}

qint64 BLDiskCtrl::getFolderSize(const QString& path) const
{
    qint64 total = 0;
    const QStringList names = BLCommon::getFileList(path);
    for (const QString& name : names) {
        const QString entry = QDir(path).filePath(name);
        // Links are counted as themselves so that a loop of links cannot recurse forever.
        total += BLCommon::isFolder(entry) && !QFileInfo(entry).isSymLink() ? getFolderSize(entry)
                                                                            : getFileSize(entry);
    }
    return total;
}

bool BLDiskCtrl::getDiskSizeInfo(const QString& path, qint64* size, qint64* freeSize) const
{
    const std::optional<BLVolume> volume = BLVolumeProvider::current()->volumeForPath(path);
    if (size)
        *size = volume ? volume->bytesTotal : 0;
    if (freeSize)
        *freeSize = volume ? volume->bytesFree : 0;
    return volume.has_value();
}

qint64 BLDiskCtrl::getDiskSize(const QString& path) const
{
    qint64 size = 0;
    getDiskSizeInfo(path, &size, nullptr);
    return size;
}

qint64 BLDiskCtrl::getFreeSize(const QString& path) const
{
    qint64 freeSize = 0;
    getDiskSizeInfo(path, nullptr, &freeSize);
    return freeSize;
}

qint64 BLDiskCtrl::getUsedSize(const QString& path) const
{
    qint64 size = 0;
    qint64 freeSize = 0;
    getDiskSizeInfo(path, &size, &freeSize);
    return size - freeSize;
}

QDateTime BLDiskCtrl::getCreationDate(const QString& path) const
{
    const QFileInfo info(path);
    if (path.isEmpty() || !info.exists())
        return {};
    const QDateTime born = info.birthTime();
    return born.isValid() ? born : info.lastModified();
}

// ---- space check ----

bool BLDiskCtrl::checkDiskSpace(const QStringList& paths, const QString& path2) const
{
    BLLogCtrl::debug(kSpaceLogId, QStringLiteral("[BLDiskCtrl checkDiskSpace] Start"));

    // Without a destination: the BPAV folder of the first source (a clip file).
    QString volumePath = path2;
    if (volumePath.isEmpty() && !paths.isEmpty())
        volumePath = QFileInfo(QFileInfo(QFileInfo(paths.first()).path()).path()).path();

    qint64 total = 0;
    qint64 freeSize = 0;
    getDiskSizeInfo(volumePath, &total, &freeSize);

    qint64 needed = 0;
    if (!path2.isEmpty())
        for (const QString& path : paths)
            needed += QFileInfo(path).suffix().compare(QLatin1String("MP4"), Qt::CaseInsensitive) == 0
                          ? getFileSize(path)
                          : getClipSize(path);

    const BLPlistCtrl* plist = BLPlistCtrl::sharedCtrl();
    const bool startupDisk = BLCommon::getVolumeName(volumePath) == QLatin1String("/");
    const int limit = startupDisk ? plist->getSystemDiskMax() : plist->getLocalDiskMax();
    const int used = total > 0 ? int((total - (freeSize - needed)) * 100 / total) : 100;

    const QString neededText = BLCommon::convertSizeStr(needed, QStringLiteral("#,##0.0"), 2);
    const QString freeText = BLCommon::convertSizeStr(freeSize, QStringLiteral("#,##0.0"), 2);
    BLLogCtrl::debug(kSpaceLogId,
                     QStringLiteral("[BLDiskCtrl checkDiskSpace]    Used space : %1%").arg(used));
    BLLogCtrl::debug(kSpaceLogId,
                     QStringLiteral("[BLDiskCtrl checkDiskSpace]    Usable limit : %1%").arg(limit));
    BLLogCtrl::debug(kSpaceLogId,
                     QStringLiteral("[BLDiskCtrl checkDiskSpace]    Necessary space : ") + neededText);
    BLLogCtrl::debug(kSpaceLogId, QStringLiteral("[BLDiskCtrl checkDiskSpace]    Free space : ") + freeText);

    if (limit == 0 || limit == 100) {
        if (needed <= freeSize) {
            BLLogCtrl::debug(kSpaceLogId, QStringLiteral("DiscCtrl checkDiskSpace Message freeSpace"));
            BLLogCtrl::debug(kSpaceLogId, QStringLiteral("[BLDiskCtrl checkDiskSpace] End"));
            return true;
        }
        BLCommon::sharedCtrl()->messageBox(QStringLiteral("MSG_6510_3229"), QString(), 0, 0);
        BLLogCtrl::debug(kSpaceLogId, QStringLiteral("DiscCtrl checkDiskSpace Message nonSpace"));
        return false;
    }

    if (used < limit) {
        BLLogCtrl::debug(kSpaceLogId, QStringLiteral("[BLDiskCtrl checkDiskSpace] End"));
        return true;
    }
    BLCommon::sharedCtrl()->messageBox(QStringLiteral("MSG_6510_3193"), QString(), 0, 0,
                                       {QString::number(limit), neededText, freeText, QString::number(used)});
    BLLogCtrl::debug(kSpaceLogId, QStringLiteral("[BLDiskCtrl checkDiskSpace] End"));
    return false;
}

// ---- numbers as text ----

QString BLDiskCtrl::ll_str(qint64 value)
{
    return QString::number(value);
}

qint64 BLDiskCtrl::str_ll(const QString& text)
{
    quint64 value = 0; // unsigned: wraps instead of overflowing on absurd input
    for (const QChar c : text)
        value = value * 10 + quint64(qint64(c.unicode()) - '0');
    return qint64(value);
}

// ---- network address ----

QString BLDiskCtrl::getMacAddress(bool converted) const
{
    QString address;
    const QList<QNetworkInterface> interfaces = QNetworkInterface::allInterfaces();
    for (const QNetworkInterface& nic : interfaces) {
        const auto flags = nic.flags();
        if (!flags.testFlag(QNetworkInterface::IsUp) || flags.testFlag(QNetworkInterface::IsLoopBack))
            continue;
        QString hex = nic.hardwareAddress().remove(QLatin1Char(':')).toUpper();
        if (hex.isEmpty() || hex.count(QLatin1Char('0')) == hex.size())
            continue;
        address = hex;
        break;
    }
    address = address.left(kMacDigits).leftJustified(kMacDigits, QLatin1Char('0'));
    return converted ? convertMacAddress(address) : address;
}

QString BLDiskCtrl::convertMacAddress(const QString& address)
{
    const QString digits = address.left(kMacDigits).leftJustified(kMacDigits, QLatin1Char('0'));
    return digits.left(6) + QStringLiteral("FFFE") + digits.mid(6);
}
