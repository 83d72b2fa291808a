#pragma once

#include <QDateTime>
#include <QString>
#include <QStringList>

class DOClipData;
class DOTakeData;

// Questions about the file systems the program writes to: their kind, access
// rights, sizes and free space, the space check before writing, and the
// machine's hardware address for UMIDs. Keeps no state; callable from any
// thread (only checkDiskSpace talks to the user). Volume facts come from
// BLVolumeProvider.
class BLDiskCtrl
{
public:
    static BLDiskCtrl* sharedCtrl();
    static void releaseCtrl();

    // ---- file system kind ----
    // 0 a native file system, 1 FAT32, 2 a network share, 3 anything else or
    // unreadable statistics.
    int isUsableDrive(const QString& path) const;

    // ---- access ----
    // Single-item tests of the item itself.
    bool isWritableThisPath(const QString& path) const;
    bool isReadableThisPath(const QString& path) const;
    // Its folder lets it be removed; "/" answers yes.
    bool isDeletableThisPath(const QString& path) const;
    // Recursive: yes for a path that is not a folder; otherwise the folder and
    // every visible entry in it, folders recursively.
    bool isWritableFolderPath(const QString& path) const;
    bool isReadableFolderPath(const QString& path) const;
    // The same with the delete test; a file is tested itself.
    bool isDeletablePath(const QString& path) const;
    // Yes for a missing path; a file by its own test; a folder must be
    // writable and so must all of its BPAV folder, if it has one.
    bool isWritablePath(const QString& path) const;
    // The folder and those of its BPAV folder, CLPR, TAKR, MEDIAPRO.XML and
    // CUEUP.XML that exist pass the single-item test.
    bool baseWritableCheck(const QString& folder) const;
    bool baseReadableCheck(const QString& folder) const;
    // The destination's base folders, and its TAKR folder when a take has clips.
    bool checkWritableToFolder(const QList<DOTakeData>& takes, const QString& to) const;
    bool checkReadableToFolder(const QList<DOTakeData>& takes, const QString& to) const;
    // Every clip folder and take folder (holding its metadata) in the source
    // is writable: moves and deletions write there.
    bool checkWritableFromFolder(const QList<DOTakeData>& takes, const QString& from) const;
    // Every clip of every take, then the take, passes checkReadableFiles.
    bool checkReadableFromFolder(const QList<DOTakeData>& takes, const QString& from) const;
    // The record's metadata folder and each file it refers to are readable:
    // metadata, essence, then (not for a take of status 3) take info, picture
    // pointer table and real-time metadata.
    bool checkReadableFiles(const DOClipData& clip, const QString& from) const;
    bool checkReadableFiles(const DOTakeData& take, const QString& from) const;

    // ---- sizes ----
    // Size of the item itself (a link is not followed); 0 when missing.
    qint64 getFileSize(const QString& path) const;
    // Sum over the entries, folders recursively (links are not followed).
    qint64 getFolderSize(const QString& path) const;
    qint64 getClipSize(const QString& folder) const { return getFolderSize(folder); }
    // Total and free bytes of the file system holding the path (either out
    // argument may be null); false when they cannot be read.
    bool getDiskSizeInfo(const QString& path, qint64* size, qint64* freeSize) const;
    qint64 getDiskSize(const QString& path) const;
    qint64 getFreeSize(const QString& path) const;
    qint64 getUsedSize(const QString& path) const;
    // The creation date where the file system records one, else the last
    // modification; invalid for a missing item.
    QDateTime getCreationDate(const QString& path) const;

    // ---- space check ----
    // Whether the sources fit on the destination within the user's usage limit
    // ("SYSTEM_DISK_MAX" on the start-up disk, "LOCAL_DISK_MAX" elsewhere).
    // Without a destination, the volume of the first source's BPAV folder is
    // tested with nothing needed. On no, the user has been told.
    bool checkDiskSpace(const QStringList& paths, const QString& path2) const;

    // ---- numbers as text ----
    static QString ll_str(qint64 value);
    // Every character is taken as a decimal digit; no sign, no validation.
    static qint64 str_ll(const QString& text);

    // ---- network address ----
    // 12 upper-case hexadecimal digits of the hardware address of the first up,
    // non-loopback interface that has one (twelve zeros when none); with
    // converted, "FFFE" is inserted after the sixth digit (16 digits).
    QString getMacAddress(bool converted) const;
    // Cuts or pads with "0" to 12 digits, then inserts "FFFE" after the sixth.
    static QString convertMacAddress(const QString& address);

private:
    BLDiskCtrl() = default;
};
