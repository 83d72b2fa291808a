#include "core/operations/BLFolderNameCtrl.h"

#include "core/card/BLDiskCtrl.h"
#include "core/operations/IFolderNameView.h"
#include "core/services/BLCommon.h"
#include "core/services/BLLocalizedStrings.h"
#include "core/services/BLLogCtrl.h"
#include "core/services/SCNotificationNames.h"

#include <QDir>
#include <QFileInfo>

namespace {
constexpr int kProcessId = 651;
constexpr int kClipCtrlProcessId = 640;

// Message keys of the name rules, one row per check type.
struct NameKeys
{
    const char* notInput;
    const char* hyphenation;
    const char* sameName; // create and rename only
    const char* length;
    const char* notWritable;
    const char* notUsable;
};
constexpr NameKeys kNameKeys[] = {
    {"MSG_651_3129", "MSG_651_3147", "MSG_651_3130", "MSG_651_3146", "MSG_6510_3213", "MSG_651_3232"},
    {"MSG_652_3132", "MSG_652_3149", "MSG_652_3133", "MSG_652_3148", "MSG_6510_3212", "MSG_651_3232"},
    {"MSG_642_3168", "MSG_651_3147", nullptr, "MSG_651_3146", "MSG_6510_3206", "MSG_651_3232"},
    {"MSG_644_3197", "MSG_651_3147", nullptr, "MSG_651_3146", "MSG_6510_3208", "MSG_651_3232"},
};

const QString kCheckFail =
    QStringLiteral("[BLFolderNameCtrl checkFolderName]    Create or Edit Folder Name fail : ");

void log(const QString& message)
{
    BLLogCtrl::debug(kProcessId, message);
}

void showMessage(const char* key, int style = 0)
{
    BLCommon::sharedCtrl()->messageBox(QString::fromLatin1(key), QString(), style, 0);
}

QString parentOf(const QString& path)
{
    return QFileInfo(QDir::cleanPath(path)).path();
}

QString nameOf(const QString& path)
{
    return QFileInfo(QDir::cleanPath(path)).fileName();
}

bool onNetworkDrive(const QString& path)
{
    return BLDiskCtrl::sharedCtrl()->isUsableDrive(path) == 2;
}

// Another entry of the folder has the name, ignoring case; the entry named
// `except` does not count.
bool otherEntryNamed(const QString& folder, const QString& name, const QString& except)
{
    const QStringList entries = BLCommon::getFileList(folder);
    for (const QString& entry : entries)
        if (entry != except && entry.compare(name, Qt::CaseInsensitive) == 0)
            return true;
    return false;
}
} // namespace

BLFolderNameCtrl::BLFolderNameCtrl(IFolderNameView* view) : m_view(view) {}

bool BLFolderNameCtrl::showNewFolder(const QString& parentPath)
{
    m_mode = kModeCreate;
    m_strPath = parentPath;
    return showModal(BLCommon::getDisplayName(parentPath), QString());
}

bool BLFolderNameCtrl::showRename(const QString& path, const QString& workFolder)
{
    m_mode = kModeRename;
    m_strPath = path;
    const bool isWorkFolder = QDir::cleanPath(path) == QDir::cleanPath(workFolder);
    return showModal(isWorkFolder ? QString() : BLCommon::getDisplayName(parentOf(path)),
                     BLCommon::getDisplayName(path));
}

bool BLFolderNameCtrl::showModal(const QString& location, const QString& name)
{
    log(QStringLiteral("[BLFolderNameCtrl showModal] Start"));
    m_newFolderPath.clear();
    m_sameFlag = false;
    m_folderNotFound = false;

    Q_ASSERT(m_view);
    const bool create = m_mode == kModeCreate;
    m_view->setTitle(BLLocalizedString(create ? QStringLiteral("LOCALIZED_FOLDER_CREATE_TITLE")
                                              : QStringLiteral("LOCALIZED_FOLDER_CHANGE_TITLE")));
    m_view->setMessage(BLLocalizedString(QStringLiteral("LOCALIZED_FOLDER_MESSAGE")));
    m_view->setFolderPath(location);
    m_view->setInputFolderName(name);

    bool changed = false;
    if (m_view->runModal(this) == kStopCodeOK) {
        const QString typed = typedName();
        BLCommon* common = BLCommon::sharedCtrl();
        if (create) {
            changed = createNewFolder(typed, m_strPath);
            if (changed)
                common->sendNotification(this, SC::SCNewFolderDidMakeNotification,
                                         {{SC::SCParentPathKey, m_strPath}});
            else
                showMessage(onNetworkDrive(m_strPath) ? "MSG_6510_3213" : "MSG_651_3131");
        } else if (!m_sameFlag) {
            changed = changeFolderName(typed, m_strPath);
            if (changed)
                common->sendNotification(this, SC::SCFolderNameDidChangeNotification,
                                         {{SC::SCSourcePathKey, m_strPath},
                                          {SC::SCDestinationPathKey, m_newFolderPath},
                                          {SC::SCParentPathKey, parentOf(m_strPath)}});
            else
                showMessage(onNetworkDrive(m_strPath) ? "MSG_6510_3212" : "MSG_652_3134");
        }
    }
    log(QStringLiteral("[BLFolderNameCtrl showModal] End"));
    return changed;
}

void BLFolderNameCtrl::OnOK()
{
    const QString name = typedName();
    if (name.compare(QLatin1String("BPAV"), Qt::CaseInsensitive) == 0) {
        showMessage("MSG_651_3132"); // the material's own folder name
        return;
    }
    switch (checkFolderName(name, m_strPath, m_mode)) {
    case kNameAccepted:
        m_view->endModal(kStopCodeOK);
        break;
    case kNameRefusedClose:
        m_view->endModal(kStopCodeCancel);
        break;
    default:
        break; // the user corrects the name
    }
}

void BLFolderNameCtrl::OnCancel()
{
    log(QStringLiteral("[BLFolderNameCtrl OnCancel] OnCancel"));
    m_view->endModal(kStopCodeCancel);
}

QString BLFolderNameCtrl::typedName() const
{
    return m_view->inputFolderName().trimmed();
}

bool BLFolderNameCtrl::checkFolderExist(const QString& path, int type)
{
    const bool exists = type == kTypeCreate ? BLCommon::isFolder(path)
                                            : BLCommon::isFolder(path) && BLCommon::isFolder(parentOf(path));
    if (!exists) {
        showMessage("MSG_632_3169");
        m_folderNotFound = true;
    }
    return exists;
}

int BLFolderNameCtrl::checkFolderName(const QString& name, const QString& path, int type)
{
    Q_ASSERT(type >= kTypeCreate && type <= kTypeMove);
    const NameKeys& keys = kNameKeys[type];
    m_sameFlag = false;

    if ((type == kTypeCreate || type == kTypeRename) && !checkFolderExist(path, type)) {
        log(kCheckFail + QStringLiteral("Not Exist"));
        return kNameRefusedClose;
    }
    if (!BLCommon::checkNotInput(name)) {
        showMessage(keys.notInput);
        log(kCheckFail + QStringLiteral("Not Input"));
        return kNameRefusedKeepOpen;
    }
    const bool rootItself = name == QLatin1String("/") && path == QLatin1String("/");
    if (!rootItself && !BLCommon::checkHyphenationCharacter(name)) {
        showMessage(keys.hyphenation, 1);
        log(kCheckFail + QStringLiteral("HyphenationCharacter"));
        return kNameRefusedKeepOpen;
    }

    if (type == kTypeRename) {
        const QString current = nameOf(path);
        if (name == current) { // nothing to change
            m_sameFlag = true;
            return kNameAccepted;
        }
        // A change of case only is allowed unless another entry already has the name.
        if (!BLCommon::checkSameName(parentOf(path), name)) {
            if (otherEntryNamed(parentOf(path), name, current)) {
                showMessage(keys.sameName);
                log(kCheckFail + QStringLiteral("Same name exist"));
                return kNameRefusedKeepOpen;
            }
            log(QStringLiteral("[BLFolderNameCtrl checkFolderName]    Edit Folder Name succeed: Same name "
                               "exist(case insensitive)"));
        }
    } else if (!BLCommon::checkSameName(path, name)) {
        if (type == kTypeCreate) {
            showMessage(keys.sameName);
            log(kCheckFail + QStringLiteral("Same name exist"));
            return kNameRefusedKeepOpen;
        }
        m_sameFlag = true; // a copy or move goes into the existing folder
    }

    if (name.toUcs4().size() > kMaxNameLength) {
        showMessage(keys.length);
        log(kCheckFail + QStringLiteral("Length error"));
        return kNameRefusedKeepOpen;
    }

    const BLDiskCtrl* disk = BLDiskCtrl::sharedCtrl();
    if (disk->isUsableDrive(path) == 3) {
        showMessage(keys.notUsable);
        BLLogCtrl::debug(kClipCtrlProcessId, QStringLiteral("[BLClipCtrl checkCopyPath] isUsableDrive fail"));
        return kNameRefusedClose;
    }
    if (!disk->isReadableThisPath(path) || !disk->isWritableThisPath(path)) {
        showMessage(keys.notWritable);
        log(kCheckFail + QStringLiteral("isWritable"));
        return kNameRefusedClose;
    }
    if (type == kTypeRename && !disk->isDeletableThisPath(path)) {
        showMessage("MSG_6510_3212");
        log(kCheckFail + QStringLiteral("isDeletable"));
        return kNameRefusedClose;
    }
    return kNameAccepted;
}

bool BLFolderNameCtrl::createNewFolder(const QString& name, const QString& parentPath)
{
    m_newFolderPath = QDir(parentPath).filePath(name);
    const bool made = BLCommon::createNewFolder(m_newFolderPath);
    log(QStringLiteral("[BLFolderNameCtrl createNewFolder] path : ") + m_newFolderPath);
    return made;
}

bool BLFolderNameCtrl::changeFolderName(const QString& name, const QString& path)
{
    m_newFolderPath = QDir(parentOf(path)).filePath(name);
    const bool moved = BLCommon::moveFolder(path, m_newFolderPath);
    log(QStringLiteral("[BLFolderNameCtrl changeFolderName] %1 -> %2").arg(path, m_newFolderPath));
    return moved;
}
