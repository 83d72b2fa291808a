#include "core/services/BLVolumeProvider.h"

#include <QDir>
#include <QFileInfo>
#include <QStorageInfo>

#include <atomic>

namespace {
std::atomic<const BLVolumeProvider*> g_installed{nullptr};

BLVolume toVolume(const QStorageInfo& info)
{
    return BLVolume{info.rootPath(), QString::fromUtf8(info.fileSystemType()), info.displayName(),
                    info.bytesTotal(), info.bytesAvailable()};
}

// A mount the user would call a volume: a disk partition, a card or a share,
// not the kernel's pseudo file systems nor the system's own folders.
bool isUserVolume(const QStorageInfo& info)
{
    static const QList<QByteArray> kNetworkTypes = {"cifs", "smb3", "smbfs", "nfs", "nfs4", "fuse.sshfs"};
    static const QStringList kSystemFolders = {"/proc", "/sys", "/dev", "/run", "/boot", "/snap"};
    const QString root = info.rootPath();
    if (!info.isValid() || !info.isReady() || !QFileInfo(root).isDir())
        return false; // also drops files bind-mounted into containers
    if (info.fileSystemType() == "squashfs")
        return false;
    if (!info.device().startsWith("/dev/") && !kNetworkTypes.contains(info.fileSystemType()))
        return false;
    if (root.startsWith(QLatin1String("/run/media/")))
        return true;
    for (const QString& folder : kSystemFolders)
        if (root == folder || root.startsWith(folder + QLatin1Char('/')))
            return false;
    return true;
}
} // namespace

QList<BLVolume> BLVolumeProvider::mountedVolumes() const
{
    QList<BLVolume> volumes{toVolume(QStorageInfo::root())};
    QStringList seen{QStringLiteral("/")};
    const QList<QStorageInfo> mounted = QStorageInfo::mountedVolumes();
    for (const QStorageInfo& info : mounted) {
        if (seen.contains(info.rootPath()) || !isUserVolume(info))
            continue;
        seen << info.rootPath();
        volumes << toVolume(info);
    }
    return volumes;
}

std::optional<BLVolume> BLVolumeProvider::volumeForPath(const QString& path) const
{
    if (path.isEmpty())
        return std::nullopt;
    QString existing = QDir::cleanPath(QDir(path).absolutePath());
    while (!QFileInfo::exists(existing) && existing != QLatin1String("/"))
        existing = QFileInfo(existing).path();
    const QStorageInfo info(existing);
    if (!info.isValid() || !info.isReady())
        return std::nullopt;
    return toVolume(info);
}

const BLVolumeProvider* BLVolumeProvider::current()
{
    static const BLVolumeProvider kMountTable;
    const BLVolumeProvider* installed = g_installed.load();
    return installed ? installed : &kMountTable;
}

void BLVolumeProvider::install(const BLVolumeProvider* provider)
{
    g_installed = provider;
}
