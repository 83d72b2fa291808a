#include "core/operations/BLDeleteFolderCtrl.h"

#include "core/card/BLDiskCtrl.h"
#include "core/operations/BLDeleteFolderThread.h"
#include "core/operations/IDeleteFolderView.h"
#include "core/services/BLCommon.h"
#include "core/services/BLLocalizedStrings.h"
#include "core/services/BLLogCtrl.h"
#include "core/services/BLProgressCtrl.h"
#include "core/services/SCNotificationNames.h"

#include <QDir>
#include <QDirIterator>

#include <algorithm>

namespace {
constexpr int kProcessId = 655;
constexpr int kSummaryProcessId = 100;

const QString kLogPrefix = QStringLiteral("[BLDeleteFolderCtrl deleteProcessOfFolder]");

void log(const QString& message)
{
    BLLogCtrl::debug(kProcessId, message);
}

// A refusal: the message, the controller's log line and the summary line.
void refuse(const char* key, const QString& reason, const QString& summary, const QStringList& args = {})
{
    BLCommon::sharedCtrl()->messageBox(QString::fromLatin1(key), QString(), 0, 0, args);
    log(kLogPrefix + QStringLiteral("    Delete fail (") + reason + QLatin1Char(')'));
    BLLogCtrl::debug(kSummaryProcessId, QStringLiteral("DeleteFolderCtrl ") + summary);
}
// Hidden items a desktop leaves in folders it has shown; they never hold
// anything of the user's.
bool isDesktopLeftover(const QString& name)
{
    static const QStringList kNames = {QStringLiteral(".DS_Store"), QStringLiteral(".Trashes"),
                                       QStringLiteral(".Spotlight-V100"), QStringLiteral(".fseventsd")};
    return name.startsWith(QLatin1String("._")) || kNames.contains(name);
}

// The first of the paths (relative, sorted) that is hidden or lies in a
// hidden folder, other than desktop leftovers and what they hold; "" for none.
QString firstHiddenItem(const QStringList& paths)
{
    for (const QString& relative : paths) {
        const QStringList parts = relative.split(QLatin1Char('/'));
        const auto hidden = std::find_if(parts.begin(), parts.end(), [](const QString& part) {
            return part.startsWith(QLatin1Char('.'));
        });
        if (hidden != parts.end() && !isDesktopLeftover(*hidden))
            return parts.mid(0, hidden - parts.begin() + 1).join(QLatin1Char('/'));
    }
    return QString();
}
} // namespace

BLDeleteFolderCtrl::BLDeleteFolderCtrl(IDeleteFolderView* view) : m_view(view) {}

bool BLDeleteFolderCtrl::deleteProcessOfFolder(const QString& path)
{
    log(kLogPrefix + QStringLiteral(" Start"));
    const QString folder = QDir::cleanPath(path);
    m_folderNotFound = false;

    // Asked only once the folder may go, saying what goes with it.
    Q_ASSERT(m_view);
    bool deleted = false;
    if (checkDeletable(folder)) {
        const QString question =
            BLCommon::getFileList(folder).isEmpty()
                ? BLLocalizedString(QStringLiteral("MSG_655_3164"))
                : BLLocalizedString(QStringLiteral("MSG_655_3143"))
                      .arg(BLCommon::getFolderCountInCLPR(folder) + BLCommon::getFolderCountInTAKR(folder))
                      .arg(BLCommon::sizeText(BLDiskCtrl::sharedCtrl()->getClipSize(folder)));
        if (m_view->confirmDelete(question, BLCommon::getDisplayName(folder)))
            deleted = removeFolder(folder);
    }

    log(kLogPrefix + QStringLiteral(" End"));
    return deleted;
}

bool BLDeleteFolderCtrl::checkDeletable(const QString& path)
{
    if (!BLCommon::isFolder(path)) {
        BLCommon::sharedCtrl()->messageBox(QStringLiteral("MSG_632_3169"), QString(), 0, 0);
        m_folderNotFound = true;
        log(kLogPrefix + QStringLiteral("    Delete fail (Not Exist WorkFolder)"));
        return false;
    }
    const int folders = getFolderCount(path);
    if (folders >= 2) {
        refuse("MSG_655_3142", QStringLiteral("FolderCount>=2"), QStringLiteral("FolderCount>=2"));
        return false;
    }
    if (getFileCount(path) >= 1) {
        refuse("MSG_655_3142", QStringLiteral("The file is included."),
               QStringLiteral("The file is included."));
        return false;
    }
    if (folders == 1 && !BLCommon::isBPAVFolder(path)) {
        refuse("MSG_655_3142", QStringLiteral("The folder is not BPAV"),
               QStringLiteral("FolderCount==1 Not BPAV"));
        return false;
    }
    // Hidden items count too (a repository, notes): deleting the folder would
    // take them without the user having seen them.
    const QStringList contents = getAllContentsOfFolder(path);
    const QString hidden = firstHiddenItem(contents);
    if (!hidden.isEmpty()) {
        refuse("MSG_655_3301", QStringLiteral("Hidden item: ") + hidden, QStringLiteral("Hidden item."),
               {hidden});
        return false;
    }
    const BLDiskCtrl* disk = BLDiskCtrl::sharedCtrl();
    if (disk->isUsableDrive(path) == 3) {
        refuse("MSG_651_3232", QStringLiteral("The folder cannot delete."),
               QStringLiteral("Drive is not usable format."));
        return false;
    }
    if (!disk->isReadableFolderPath(path) || !disk->isWritableFolderPath(path) || !allCheck(path, contents)) {
        refuse("MSG_6510_3203", QStringLiteral("The folder cannot delete."), QStringLiteral("Write inhibit"));
        return false;
    }
    return true;
}

bool BLDeleteFolderCtrl::removeFolder(const QString& path)
{
    auto worker = std::make_shared<BLDeleteFolderThread>(path, m_arrContents);
    const bool cancelled = BLProgressCtrl::sharedCtrl()->showProgress(worker, true);
    BLCommon* common = BLCommon::sharedCtrl();
    if (worker->isSucceeded()) {
        common->sendNotificationNow(this, SC::SCFolderDidDeleteNotification, {{SC::SCDeletePathKey, path}});
        return true;
    }
    if (!cancelled) {
        common->messageBox(QStringLiteral("MSG_6510_3203"), QString(), 0, 0);
        log(kLogPrefix + QStringLiteral(" fail"));
    }
    if (worker->hasRemoved())
        common->sendNotification(this, SC::SCSelectFolderDataDidUpdateNotification,
                                 {{SC::SCDUpdateSelectFolderKey, path}});
    return false;
}

int BLDeleteFolderCtrl::getFolderCount(const QString& path)
{
    return int(BLCommon::getFolders(path).size());
}

int BLDeleteFolderCtrl::getFileCount(const QString& path)
{
    const QStringList names = BLCommon::getFileList(path);
    return int(std::count_if(names.cbegin(), names.cend(), [&](const QString& name) {
        const QString entry = QDir(path).filePath(name);
        return BLCommon::checkVisibleDirectory(entry) && !BLCommon::isFolder(entry);
    }));
}

bool BLDeleteFolderCtrl::allCheck(const QString& path)
{
    return allCheck(path, getAllContentsOfFolder(path));
}

bool BLDeleteFolderCtrl::allCheck(const QString& path, const QStringList& paths)
{
    const BLDiskCtrl* disk = BLDiskCtrl::sharedCtrl();
    m_fileMax = 0;
    m_arrContents.clear();
    if (!disk->isDeletablePath(path))
        return false;
    m_fileMax = int(paths.size());
    QStringList contents{path};
    // Every path is visited, so each needs only its single-item test.
    for (const QString& relative : paths) {
        const QString absolute = QDir(path).filePath(relative);
        if (!disk->isDeletableThisPath(absolute))
            return false;
        contents << absolute;
    }
    m_arrContents = contents;
    return true;
}

QStringList BLDeleteFolderCtrl::getAllContentsOfFolder(const QString& path)
{
    QStringList paths;
    const QDir folder(path);
    QDirIterator it(path, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                    QDirIterator::Subdirectories);
    while (it.hasNext())
        paths << folder.relativeFilePath(it.next());
    paths.sort();
    return paths;
}
