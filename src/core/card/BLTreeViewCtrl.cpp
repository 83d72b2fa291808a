#include "core/card/BLTreeViewCtrl.h"

#include "core/card/BLDiskCtrl.h"
#include "core/card/DOTakeData.h"
#include "core/formats/mhl/BLMhlHistory.h"
#include "core/services/BLCommon.h"
#include "core/services/BLLogCtrl.h"
#include "core/services/BLVolumeProvider.h"
#include "core/services/BLVolumeWatcher.h"
#include "core/services/SCNotificationCenter.h"
#include "core/services/SCNotificationNames.h"

#include <QDir>
#include <QFileInfo>
#include <QItemSelectionModel>

#include <algorithm>

namespace {
constexpr int kProcessId = 632;
constexpr int kMountProcessId = 6512;
constexpr int kFirstMenuTag = 44001;
constexpr int kLastMenuTag = 44055;

const QString kBPAV = QStringLiteral("BPAV");

QString cleanPath(const QString& path)
{
    return path.isEmpty() ? path : QDir::cleanPath(path);
}

// Both name the same folder (an empty path names none).
bool samePath(const QString& path, const QString& path2)
{
    return !path.isEmpty() && cleanPath(path) == cleanPath(path2);
}

QString parentOf(const QString& path)
{
    return path.isEmpty() ? path : QFileInfo(cleanPath(path)).path();
}

// The path is the mount point or lies below it.
bool liesOn(const QString& path, const QString& mountPoint)
{
    const QString clean = cleanPath(path);
    const QString root = cleanPath(mountPoint);
    if (root.isEmpty() || clean.isEmpty())
        return false;
    return root == QLatin1String("/") || clean == root || clean.startsWith(root + QLatin1Char('/'));
}

QString volumeImage(const QString& path)
{
    return QString::fromLatin1(path == QLatin1String("/") ? DOTreeData::kStartupDiskImage
                                                          : DOTreeData::kVolumeImage);
}

const QString kFolderImage = QString::fromLatin1(DOTreeData::kFolderImage);
} // namespace

const QList<BLTreeViewCtrl::MenuItem>& BLTreeViewCtrl::menuItems()
{
    static const QList<MenuItem> kItems = {
        {MENU_ITEM_ID_NEW_FOLDER, "MENU_ITEM_ID_NEW_FOLDER", "New Folder..."},
        {MENU_ITEM_ID_CHANGE_FOLDER_NAME, "MENU_ITEM_ID_CHANGE_FOLDER_NAME", "Rename Folder..."},
        {MENU_ITEM_ID_DELETE, "MENU_ITEM_ID_DELETE", "Delete Folder..."},
        {0, nullptr, nullptr},
        {MENU_ITEM_ID_OPEN_IN_FINDER, "MENU_ITEM_ID_OPEN_IN_FINDER", "Open in File Manager"},
        {MENU_ITEM_ID_CLIP_SEARCH, "MENU_ITEM_ID_CLIP_SEARCH", "Search Clips..."},
        {0, nullptr, nullptr},
        {MENU_ITEM_ID_ALL_COPY, "MENU_ITEM_ID_ALL_COPY", "Copy All Clips to the Other Pane..."},
        {MENU_ITEM_ID_FOLDER_DIVISION, "MENU_ITEM_ID_FOLDER_DIVISION", "Divide Folder..."},
        {MENU_ITEM_ID_FOLDER_COMBINE, "MENU_ITEM_ID_FOLDER_COMBINE", "Combine Folders..."},
        {MENU_ITEM_ID_MEDIA_NAME_CHANGE, "MENU_ITEM_ID_MEDIA_NAME_CHANGE", "Change Media Name..."},
        {MENU_ITEM_ID_VERIFY_FOLDER, "MENU_ITEM_ID_VERIFY_FOLDER", "Verify Folder..."},
        {0, nullptr, nullptr},
        {MENU_ITEM_ID_CHANGE_WORK_FOLDER, "MENU_ITEM_ID_CHANGE_WORK_FOLDER", "Change Work Folder..."},
        {MENU_ITEM_ID_MOVE_UP_FOLDER, "MENU_ITEM_ID_MOVE_UP_FOLDER", "Up One Folder"},
        {MENU_ITEM_ID_OFFLOAD, "MENU_ITEM_ID_OFFLOAD", "Offload Card..."},
        // Passed on to the thumbnail grid; not in the list's own menu.
        {MENU_ITEM_ID_IMPORT, "MENU_ITEM_ID_IMPORT", nullptr},
        {MENU_ITEM_ID_EXPORT, "MENU_ITEM_ID_EXPORT", nullptr},
        {MENU_ITEM_ID_SORT_TITLE, "MENU_ITEM_ID_SORT_TITLE", nullptr},
        {MENU_ITEM_ID_SORT_SIZE, "MENU_ITEM_ID_SORT_SIZE", nullptr},
        {MENU_ITEM_ID_SORT_DURATION, "MENU_ITEM_ID_SORT_DURATION", nullptr},
        {MENU_ITEM_ID_SORT_DATE, "MENU_ITEM_ID_SORT_DATE", nullptr},
    };
    return kItems;
}

namespace {
const BLTreeViewCtrl::MenuItem* findMenuItem(int tag)
{
    if (tag < kFirstMenuTag || tag > kLastMenuTag)
        return nullptr;
    const QList<BLTreeViewCtrl::MenuItem>& items = BLTreeViewCtrl::menuItems();
    const auto it = std::find_if(items.begin(), items.end(),
                                 [tag](const BLTreeViewCtrl::MenuItem& item) { return item.tag == tag; });
    return it == items.end() ? nullptr : &*it;
}
} // namespace

BLTreeViewCtrl::BLTreeViewCtrl(const MediaInfo& mediaInfo, const void* paneSender, QObject* parent)
    : QAbstractListModel(parent), m_mediaInfoCtrl(mediaInfo),
      m_selectionModel(new QItemSelectionModel(this, this))
{
    connect(m_selectionModel, &QItemSelectionModel::selectionChanged, this,
            &BLTreeViewCtrl::tableViewSelectionDidChange);

    SCNotificationCenter* center = SCNotificationCenter::defaultCenter();
    const auto observe = [this, center](const QString& name,
                                        void (BLTreeViewCtrl::*handler)(const SCNotification&),
                                        const void* sender = nullptr) {
        center->addObserver(
            this, name,
            [this, handler](const SCNotification& notification) { (this->*handler)(notification); }, sender);
    };
    observe(SC::SCWorkspaceDidMountNotification, &BLTreeViewCtrl::workspaceDidMountNotification);
    observe(SC::SCWorkspaceDidUnmountNotification, &BLTreeViewCtrl::workspaceDidUnmountNotification);
    observe(SC::SCWorkFolderDidChangeNotification, &BLTreeViewCtrl::workFolderDidChangeNotification,
            paneSender);
    observe(SC::SCNewFolderDidMakeNotification, &BLTreeViewCtrl::newFolderDidMakeNotification);
    observe(SC::SCFolderNameDidChangeNotification, &BLTreeViewCtrl::folderNameDidChangeNotification);
    observe(SC::SCFolderDidDeleteNotification, &BLTreeViewCtrl::folderDidDeleteNotification);
    BLVolumeWatcher::sharedWatcher(); // the source of the mount and unmount notifications

    m_diskChange.setSingleShot(true);
    m_diskChange.setInterval(200);
    connect(&m_watcher, &QFileSystemWatcher::directoryChanged, &m_diskChange, qOverload<>(&QTimer::start));
    connect(&m_diskChange, &QTimer::timeout, this, &BLTreeViewCtrl::workFolderDidChangeOnDisk);
}

BLTreeViewCtrl::~BLTreeViewCtrl()
{
    SCNotificationCenter::defaultCenter()->removeObserver(this);
}

// ---- rows ----

QString BLTreeViewCtrl::fullPathOfRow(int row) const
{
    if (row < 0 || row >= m_datas.size())
        return {};
    const QString workFolder = m_mediaInfoCtrl.getWorkFolder();
    const QString& relative = m_datas.at(row).getRelativePath();
    if (workFolder.isEmpty())
        return relative;
    if (relative == QLatin1String("/"))
        return workFolder;
    return QDir(workFolder).filePath(relative);
}

int BLTreeViewCtrl::selectedRow() const
{
    const QModelIndexList selected = m_selectionModel->selectedIndexes();
    return selected.isEmpty() ? -1 : selected.first().row();
}

int BLTreeViewCtrl::searchIndexByFolderPath(const QString& path) const
{
    for (int row = 0; row < m_datas.size(); ++row)
        if (samePath(fullPathOfRow(row), path))
            return row;
    return -1;
}

int BLTreeViewCtrl::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(m_datas.size());
}

QVariant BLTreeViewCtrl::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= m_datas.size())
        return {};
    const DOTreeData& row = m_datas.at(index.row());
    switch (role) {
    case Qt::DisplayRole:
        return row.getDisplayName();
    case Qt::ToolTipRole:
    case FullPathRole:
        return fullPathOfRow(index.row());
    case IndentRole:
        return index.row() == 0 || workFonderIsVolumeList() ? 0 : 1;
    case ImageRole:
        return row.getImage();
    default:
        return {};
    }
}

// ---- rebuilding ----

void BLTreeViewCtrl::updateData(bool keepSelect)
{
    const QString pane = m_mediaInfoCtrl.getMediaInfoTypeString();
    BLLogCtrl::debug(kProcessId, QStringLiteral("[BLTreeViewCtrl updateData](%1) Start").arg(pane));
    BLLogCtrl::debug(
        kProcessId,
        QStringLiteral("[BLTreeViewCtrl updateData](%1)    keepSelect:%2").arg(pane).arg(int(keepSelect)));

    const QString selectFolder = m_mediaInfoCtrl.getSelectFolder();
    m_doTreeViewNotification = false;
    beginResetModel(); // also empties the selection, without signals
    m_datas.clear();
    makeTreeView();
    endResetModel();

    int selected = -1;
    if (keepSelect) {
        selected = searchIndexByFolderPath(selectFolder);
        if (selected >= 0)
            m_selectionModel->setCurrentIndex(index(selected), QItemSelectionModel::ClearAndSelect);
    }
    m_doTreeViewNotification = true;
    if (selected < 0)
        selectTreeIndex(0);

    const QString workFolder = m_mediaInfoCtrl.getWorkFolder();
    if (!m_watcher.directories().isEmpty())
        m_watcher.removePaths(m_watcher.directories());
    if (!workFolder.isEmpty() && BLCommon::isFolder(workFolder))
        m_watcher.addPath(workFolder);
    BLLogCtrl::debug(kProcessId, QStringLiteral("[BLTreeViewCtrl updateData](%1) End").arg(pane));
}

void BLTreeViewCtrl::workFolderDidChangeOnDisk()
{
    const QString workFolder = m_mediaInfoCtrl.getWorkFolder();
    if (workFolder.isEmpty())
        return;
    if (!BLCommon::isFolder(workFolder))
        emit workFolderMoveUpRequested();
    else
        updateData(true);
}

void BLTreeViewCtrl::makeTreeView()
{
    const QString workFolder = m_mediaInfoCtrl.getWorkFolder();
    QStringList names = BLCommon::getFolders(workFolder); // the volumes for the volume list
    if (!workFolder.isEmpty()) {
        const bool cardLayout = BLCommon::visibleFolderNameOf(workFolder) == QLatin1String("PRIVATE");
        const QString privateFolder = QDir(workFolder).filePath(QStringLiteral("PRIVATE"));
        names.removeIf([&](const QString& name) {
            return name == kBPAV || (cardLayout && name == QLatin1String("PRIVATE") &&
                                     !isExceptORX(privateFolder, QStringLiteral("ORX")));
        });
    }
    makeTreeData(names);
}

bool BLTreeViewCtrl::isExceptORX(const QString& path, const QString& name)
{
    const QStringList folders = BLCommon::getFolders(path);
    if (!folders.contains(name))
        return false;
    if (folders.size() > 1)
        return true;
    return name == QLatin1String("ORX") && isExceptORX(QDir(path).filePath(name), kBPAV);
}

void BLTreeViewCtrl::makeTreeData(const QStringList& names)
{
    const QString workFolder = m_mediaInfoCtrl.getWorkFolder();
    const bool volumeList = workFolder.isEmpty();
    const QList<BLVolume> volumes = BLVolumeProvider::current()->mountedVolumes();
    for (const QString& name : names) {
        const QString path = volumeList ? name : QDir(workFolder).filePath(name);
        const QString displayName = BLCommon::getDisplayName(path, volumes);
        m_datas.append(DOTreeData(name, displayName.isEmpty() ? name : displayName,
                                  volumeList ? volumeImage(name) : kFolderImage));
    }
    sortDatas();
    if (!volumeList) {
        const QString displayName = BLCommon::getDisplayName(workFolder, volumes);
        m_datas.prepend(
            DOTreeData(QStringLiteral("/"), displayName.isEmpty() ? workFolder : displayName,
                       BLCommon::isVolume(workFolder) ? volumeImage(cleanPath(workFolder)) : kFolderImage));
    }
}

void BLTreeViewCtrl::sortDatas()
{
    // The start-up disk leads the volume list.
    std::stable_sort(m_datas.begin(), m_datas.end(), [](const DOTreeData& a, const DOTreeData& b) {
        const bool aStartup = a.getRelativePath() == QLatin1String("/");
        const bool bStartup = b.getRelativePath() == QLatin1String("/");
        return aStartup != bStartup ? aStartup : a.compare(b) < 0;
    });
}

// ---- selection ----

void BLTreeViewCtrl::selectTreeIndex(int row)
{
    const QModelIndex target = index(row);
    if (selectedRow() == (target.isValid() ? row : -1)) {
        tableViewSelectionDidChange();
        return;
    }
    if (target.isValid())
        m_selectionModel->setCurrentIndex(target, QItemSelectionModel::ClearAndSelect);
    else
        m_selectionModel->clear();
}

void BLTreeViewCtrl::tableViewSelectionDidChange()
{
    if (!m_doTreeViewNotification)
        return;
    const QString pane = m_mediaInfoCtrl.getMediaInfoTypeString();
    BLLogCtrl::debug(kProcessId, QStringLiteral("==================== [BLTreeViewCtrl "
                                                "tableViewSelectionDidChange](%1) Start ====================")
                                     .arg(pane));
    const QString selectFolder = fullPathOfRow(selectedRow());
    BLLogCtrl::debug(kProcessId,
                     QStringLiteral("[BLTreeViewCtrl tableViewSelectionDidChange](%1)    selectFolder:%2")
                         .arg(pane, selectFolder));
    emit selectFolderChosen(selectFolder, true);
    BLLogCtrl::debug(
        kProcessId,
        QStringLiteral(
            "==================== [BLTreeViewCtrl tableViewSelectionDidChange](%1) End ====================")
            .arg(pane));
}

void BLTreeViewCtrl::doubleClickSelecttion()
{
    const int row = selectedRow();
    if (row < 0)
        return;
    const QString path = fullPathOfRow(row);
    if (BLCommon::isFolder(path))
        emit workFolderChosen(path, true);
    else
        emit selectFolderNotFound();
}

// ---- menus ----

bool BLTreeViewCtrl::isSupportMenuItem(int tag, bool* isEnable, bool* isCheck) const
{
    const MenuItem* item = findMenuItem(tag);
    if (!item)
        return false;
    if (!item->title)
        return m_mediaInfoCtrl.isSupportMenuItemToThumbView(tag, isEnable, isCheck);
    if (isEnable)
        *isEnable = isEnabled(tag);
    if (isCheck)
        *isCheck = false;
    return true;
}

bool BLTreeViewCtrl::isEnabled(int tag) const
{
    const QString selectFolder = m_mediaInfoCtrl.getSelectFolder();
    const bool selected = !selectFolder.isEmpty();
    switch (tag) {
    case MENU_ITEM_ID_CHANGE_FOLDER_NAME:
        return selected && BLCommon::isSameDisplayName(selectFolder) && !BLCommon::isVolume(selectFolder);
    case MENU_ITEM_ID_NEW_FOLDER:
        return workFonderIsVolumeList() || samePath(selectFolder, m_mediaInfoCtrl.getWorkFolder());
    case MENU_ITEM_ID_OPEN_IN_FINDER:
    case MENU_ITEM_ID_CLIP_SEARCH:
        return selected;
    case MENU_ITEM_ID_ALL_COPY:
        return m_mediaInfoCtrl.isEnableAllCopyMenuItem();
    case MENU_ITEM_ID_DELETE:
        return selected && !BLCommon::isVolume(selectFolder);
    case MENU_ITEM_ID_FOLDER_DIVISION:
        return !m_mediaInfoCtrl.getTakeDataWithoutNonImport().isEmpty();
    case MENU_ITEM_ID_FOLDER_COMBINE: {
        if (!selected)
            return false;
        // At least two readable folders other than BPAV side by side.
        const QString parent = parentOf(selectFolder);
        const QStringList folders = BLCommon::getFolders(parent);
        const BLDiskCtrl* disk = BLDiskCtrl::sharedCtrl();
        const auto readable = std::count_if(folders.begin(), folders.end(), [&](const QString& name) {
            return name != kBPAV && disk->isReadableThisPath(QDir(parent).filePath(name));
        });
        return readable >= 2;
    }
    case MENU_ITEM_ID_CHANGE_WORK_FOLDER:
    case MENU_ITEM_ID_MOVE_UP_FOLDER:
        return true;
    case MENU_ITEM_ID_OFFLOAD:
        return !workFonderIsVolumeList();
    case MENU_ITEM_ID_VERIFY_FOLDER:
        return selected && BLCommon::isFolder(QDir(selectFolder).filePath(BLMhlHistory::kFolderName));
    case MENU_ITEM_ID_MEDIA_NAME_CHANGE:
        return selected &&
               BLCommon::isFiles(
                   QDir(BLCommon::getPathOfBPAV(selectFolder)).filePath(QStringLiteral("MEDIAPRO.XML")));
    default:
        return false;
    }
}

void BLTreeViewCtrl::selectMenuItem(int tag)
{
    bool enable = false;
    if (!isSupportMenuItem(tag, &enable, nullptr) || !enable)
        return;
    BLLogCtrl::debug(
        kProcessId,
        QStringLiteral("==================== [BLTreeViewCtrl selectMenuItem](%1) menuItemID:%2 "
                       "====================")
            .arg(m_mediaInfoCtrl.getMediaInfoTypeString(), QLatin1String(findMenuItem(tag)->name)));
    if (tag != MENU_ITEM_ID_OPEN_IN_FINDER) {
        emit menuItemChosen(tag);
        return;
    }
    const QString selectFolder = m_mediaInfoCtrl.getSelectFolder();
    if (BLCommon::isFolder(selectFolder))
        emit openInFileManagerRequested(selectFolder);
    else
        emit selectFolderNotFound();
}

// ---- notifications ----

void BLTreeViewCtrl::workspaceDidMountNotification(const SCNotification&)
{
    const QString pane = m_mediaInfoCtrl.getMediaInfoTypeString();
    BLLogCtrl::debug(kMountProcessId,
                     QStringLiteral("[BLTreeViewCtrl workspaceDidMountNotification](%1) Start").arg(pane));
    if (workFonderIsVolumeList())
        updateData(true);
    BLLogCtrl::debug(kMountProcessId,
                     QStringLiteral("[BLTreeViewCtrl workspaceDidMountNotification](%1) End").arg(pane));
}

void BLTreeViewCtrl::workspaceDidUnmountNotification(const SCNotification& notification)
{
    const QString pane = m_mediaInfoCtrl.getMediaInfoTypeString();
    BLLogCtrl::debug(kMountProcessId,
                     QStringLiteral("[BLTreeViewCtrl workspaceDidUnmountNotification](%1) Start").arg(pane));
    if (workFonderIsVolumeList())
        updateData(true);
    else if (liesOn(m_mediaInfoCtrl.getWorkFolder(),
                    notification.userInfo.value(SC::NSDevicePath).toString()))
        emit workFolderChosen(QString(), false);
    BLLogCtrl::debug(kMountProcessId,
                     QStringLiteral("[BLTreeViewCtrl workspaceDidUnmountNotification](%1) End").arg(pane));
}

void BLTreeViewCtrl::workFolderDidChangeNotification(const SCNotification& notification)
{
    const QString pane = m_mediaInfoCtrl.getMediaInfoTypeString();
    BLLogCtrl::debug(kProcessId,
                     QStringLiteral("[BLTreeViewCtrl workFolderDidChangeNotification](%1) Start").arg(pane));
    updateData(notification.userInfo.value(SC::SCKeepSelectKey).toBool());
    BLLogCtrl::debug(kProcessId,
                     QStringLiteral("[BLTreeViewCtrl workFolderDidChangeNotification](%1) End").arg(pane));
}

void BLTreeViewCtrl::newFolderDidMakeNotification(const SCNotification& notification)
{
    const QString pane = m_mediaInfoCtrl.getMediaInfoTypeString();
    BLLogCtrl::debug(kProcessId,
                     QStringLiteral("[BLTreeViewCtrl newFolderDidMakeNotification](%1) Start").arg(pane));
    if (samePath(notification.userInfo.value(SC::SCParentPathKey).toString(),
                 m_mediaInfoCtrl.getWorkFolder()))
        updateData(true);
    BLLogCtrl::debug(kProcessId,
                     QStringLiteral("[BLTreeViewCtrl newFolderDidMakeNotification](%1) End").arg(pane));
}

void BLTreeViewCtrl::folderNameDidChangeNotification(const SCNotification& notification)
{
    const QString pane = m_mediaInfoCtrl.getMediaInfoTypeString();
    BLLogCtrl::debug(kProcessId,
                     QStringLiteral("[BLTreeViewCtrl folderNameDidChangeNotification](%1) Start").arg(pane));
    const QString source = notification.userInfo.value(SC::SCSourcePathKey).toString();
    const QString workFolder = m_mediaInfoCtrl.getWorkFolder();
    const QString selectFolder = m_mediaInfoCtrl.getSelectFolder();
    emit folderRenamed(source, notification.userInfo.value(SC::SCDestinationPathKey).toString());
    if (m_mediaInfoCtrl.getWorkFolder() != workFolder || m_mediaInfoCtrl.getSelectFolder() != selectFolder ||
        samePath(parentOf(source), m_mediaInfoCtrl.getWorkFolder()))
        updateData(true);
    BLLogCtrl::debug(kProcessId,
                     QStringLiteral("[BLTreeViewCtrl folderNameDidChangeNotification](%1) End").arg(pane));
}

void BLTreeViewCtrl::folderDidDeleteNotification(const SCNotification& notification)
{
    const QString pane = m_mediaInfoCtrl.getMediaInfoTypeString();
    BLLogCtrl::debug(kProcessId,
                     QStringLiteral("[BLTreeViewCtrl folderDidDeleteNotification](%1) Start").arg(pane));
    const QString deleted = notification.userInfo.value(SC::SCDeletePathKey).toString();
    const QString workFolder = m_mediaInfoCtrl.getWorkFolder();
    if (samePath(deleted, workFolder))
        emit workFolderMoveUpRequested();
    else if (samePath(deleted, m_mediaInfoCtrl.getSelectFolder()))
        updateData(false);
    else if (samePath(parentOf(deleted), workFolder))
        updateData(true);
    BLLogCtrl::debug(kProcessId,
                     QStringLiteral("[BLTreeViewCtrl folderDidDeleteNotification](%1) End").arg(pane));
}

// ---- helpers ----

bool BLTreeViewCtrl::workFonderIsVolumeList() const
{
    return m_mediaInfoCtrl.getWorkFolder().isEmpty();
}
