#pragma once

#include <QList>
#include <QString>

#include <optional>

// One mounted file system as the program sees it.
struct BLVolume
{
    QString rootPath; // mount point, without a trailing "/" (except "/" itself)
    QString fsType;   // "ext4", "vfat", "cifs", ...
    QString displayName;
    qint64 bytesTotal = 0;
    qint64 bytesFree = 0; // bytes this user can still write
};

// Where facts about volumes come from. The default reads the mount table;
// tests install their own to present volumes of chosen kinds and sizes.
class BLVolumeProvider
{
public:
    virtual ~BLVolumeProvider() = default;

    // The start-up disk "/" first, then every other mounted real file system
    // (pseudo file systems, system folders and not-ready volumes left out).
    virtual QList<BLVolume> mountedVolumes() const;
    // The file system that holds a path (a missing path: its nearest existing
    // folder); nothing when its statistics cannot be read.
    virtual std::optional<BLVolume> volumeForPath(const QString& path) const;

    // The provider in use; install(nullptr) goes back to the mount table.
    static const BLVolumeProvider* current();
    static void install(const BLVolumeProvider* provider);
};
