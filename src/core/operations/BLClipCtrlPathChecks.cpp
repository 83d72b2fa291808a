// BLClipCtrl's checks of a destination path before a copy, move or folder
// operation: its name, room, drive and access. They sit with the operations
// because the name check is the folder-name controller's.
#include "core/card/BLClipCtrl.h"

#include "core/card/BLCardPath.h"
#include "core/card/BLDiskCtrl.h"
#include "core/card/DOClipCtrl.h"
#include "core/operations/BLFolderNameCtrl.h"
#include "core/services/BLCommon.h"
#include "core/services/BLLogCtrl.h"
#include "core/services/SCNotificationNames.h"

#include <QDir>
#include <QFileInfo>

namespace {

constexpr int kLogId = 640;

void log(const QString& message)
{
    BLLogCtrl::debug(kLogId, message);
}

void showMessage(const char* key, int style = 0)
{
    if (key)
        BLCommon::sharedCtrl()->messageBox(QString::fromLatin1(key), QString(), style, 0);
}

// Message keys of checkCopyPath by operation type.
struct PathKeys
{
    const char* emptyName;
    const char* forbiddenCharacter;
    const char* notAccessible;
    const char* driveNotUsable;
    const char* sameFolder;
};
constexpr PathKeys kPathKeys[] = {
    {"MSG_642_3168", "MSG_648_3160", "MSG_6510_3206", "MSG_642_3111", "MSG_642_3158"}, // copy
    {"MSG_644_3197", "MSG_648_3160", "MSG_6510_3208", "MSG_644_3186", "MSG_644_3187"}, // move
    {nullptr, "MSG_648_3160", "MSG_6510_3204", "MSG_651_3232", nullptr},
    {nullptr, "MSG_648_3160", "MSG_6510_3205", "MSG_651_3232", nullptr}, // folder combine
};

bool isSamePath(const QString& path, const QString& path2)
{
    return QDir::cleanPath(path).compare(QDir::cleanPath(path2), Qt::CaseInsensitive) == 0;
}

} // namespace

int BLClipCtrl::checkCopyToFolderName(const QString& name, DOClipCtrl& clipCtrl, int type)
{
    // A work folder named like the card's own folder would be taken for one.
    if (name.compare(QLatin1String("BPAV"), Qt::CaseInsensitive) == 0) {
        showMessage("MSG_651_3132", 1);
        log(QStringLiteral("[BLClipCtrl checkCopyToFolderName] BPAV fail"));
        return kNameRefusedKeepOpen;
    }
    BLFolderNameCtrl folderNameCtrl;
    switch (folderNameCtrl.checkFolderName(name, clipCtrl.getCopyToPath(), type)) {
    case BLFolderNameCtrl::kNameRefusedClose:
        return kNameRefusedClose;
    case BLFolderNameCtrl::kNameRefusedKeepOpen:
        return kNameRefusedKeepOpen;
    default:
        break;
    }

    // A move within one volume needs no space.
    const QString source = clipCtrl.sourceWorkFolder();
    const bool onVolumeRoot = BLCommon::isVolume(clipCtrl.destinationWorkFolder());
    if (type == kNameTypeCopy || !BLCommon::compareVolumes(source, clipCtrl.destinationWorkFolder())) {
        const QString bpav = BLCommon::getPathOfBPAV(source);
        QStringList folders;
        for (const DOTakeData& take : clipCtrl.getFromTakes()) {
            folders << BLCardPath::resolveRecordFolder(bpav, take.getXMLUri());
            for (const DOClipData& clip : take.getClipData())
                folders << BLCardPath::resolveRecordFolder(bpav, clip.getXMLUri());
        }
        folders.removeAll(QString());
        const QString destination =
            onVolumeRoot ? clipCtrl.destinationWorkFolder() : clipCtrl.getCopyToPath();
        if (!BLDiskCtrl::sharedCtrl()->checkDiskSpace(folders, destination)) {
            log(QStringLiteral("[BLClipCtrl checkCopyPath] checkDiskSpace fail"));
            return kNameRefusedClose;
        }
    }

    if (!BLCommon::isFolder(BLCommon::makeFilePath(clipCtrl.getCopyToPath(), {name}))) {
        // Shown a volume, the user names a folder on that volume.
        if (onVolumeRoot)
            clipCtrl.setCopyToFolder(clipCtrl.destinationWorkFolder());
        clipCtrl.setChangeFolderFlag(true);
        const QString folder = BLCommon::makeFilePath(clipCtrl.getCopyToPath(), {name});
        if (!BLCommon::isFolder(folder)) {
            if (!BLCommon::createNewFolder(folder))
                return kNameNotCreated;
            clipCtrl.setNewFolderFlag(true);
            BLCommon::sharedCtrl()->sendNotification(this, SC::SCNewFolderDidMakeNotification,
                                                     {{SC::SCParentPathKey, clipCtrl.getCopyToPath()}});
        }
    }
    clipCtrl.setCopyToFolderName(name);
    return kNameReady;
}

bool BLClipCtrl::checkCopyPath(const DOClipCtrl& clipCtrl, int type)
{
    if (type < 0 || type >= int(std::size(kPathKeys)))
        return false;
    const PathKeys& keys = kPathKeys[type];
    const QString work = clipCtrl.destinationWorkFolder();

    if (!clipCtrl.getNewFolderFlag()) {
        if (clipCtrl.getCopyToFolderName().isEmpty()) {
            showMessage(keys.emptyName);
            log(QStringLiteral("[BLClipCtrl checkCopyPath] length fail"));
            return false;
        }
        if (!BLCommon::checkHyphenationCharacterForPath(work)) {
            showMessage(keys.forbiddenCharacter, 1);
            log(QStringLiteral("[BLClipCtrl checkCopyPath] HyphenationCharacter fail"));
            return false;
        }
    }

    BLDiskCtrl* disk = BLDiskCtrl::sharedCtrl();
    const int drive = disk->isUsableDrive(work);
    if (drive == 3) {
        showMessage(keys.driveNotUsable);
        log(QStringLiteral("[BLClipCtrl checkCopyPath] isUsableDrive fail"));
        return false;
    }
    if (drive == 1) {
        // FAT32 cannot hold a file beyond its limit.
        const QString bpav = BLCommon::getPathOfBPAV(clipCtrl.sourceWorkFolder());
        for (const DOTakeData& take : clipCtrl.getFromTakes()) {
            QStringList files = getOperatePaths(take, false, bpav, take.getTakeStatus());
            for (const DOClipData& clip : take.getClipData())
                files << getOperatePaths(clip, false, bpav, clip.getClipStatus());
            for (const QString& file : std::as_const(files)) {
                if (disk->getFileSize(file) > kFat32Limit) {
                    showMessage("MSG_648_3127");
                    log(QStringLiteral("[BLClipCtrl checkCopyPath] isUsable Drive fail : FAT32 & 4GB over"));
                    return false;
                }
            }
        }
    }

    const bool readable = disk->baseReadableCheck(work);
    const bool writable =
        disk->baseWritableCheck(work) && disk->checkWritableToFolder(clipCtrl.getToTakes(), work);
    const bool deletable = work == QLatin1String("/") || disk->isDeletableThisPath(work);
    const bool sameFolder = isSamePath(clipCtrl.sourceWorkFolder(), work);
    if (readable && writable && deletable && !sameFolder)
        return true;
    if (sameFolder) {
        showMessage(keys.sameFolder);
        log(QStringLiteral("[BLClipCtrl checkCopyPath] NSOrderedSame fail"));
        return false;
    }
    showMessage(keys.notAccessible);
    if (readable)
        log(QStringLiteral("[BLClipCtrl checkCopyPath] isWritablePath fail"));
    return false;
}
