#pragma once

#include "core/card/DOTreeData.h"

#include <QAbstractListModel>
#include <QFileSystemWatcher>
#include <QList>
#include <QTimer>

class DOTakeData;
class QItemSelectionModel;
struct SCNotification;

// Menu tags of the folder commands and of the thumbnail commands the folder
// list passes on to the pane's thumbnail grid.
inline constexpr int MENU_ITEM_ID_CHANGE_FOLDER_NAME = 44001;
inline constexpr int MENU_ITEM_ID_NEW_FOLDER = 44002;
inline constexpr int MENU_ITEM_ID_OPEN_IN_FINDER = 44003;
inline constexpr int MENU_ITEM_ID_IMPORT = 44004;
inline constexpr int MENU_ITEM_ID_EXPORT = 44005;
inline constexpr int MENU_ITEM_ID_ALL_COPY = 44008;
inline constexpr int MENU_ITEM_ID_DELETE = 44011;
inline constexpr int MENU_ITEM_ID_FOLDER_DIVISION = 44012;
inline constexpr int MENU_ITEM_ID_FOLDER_COMBINE = 44013;
inline constexpr int MENU_ITEM_ID_CHANGE_WORK_FOLDER = 44017;
inline constexpr int MENU_ITEM_ID_MOVE_UP_FOLDER = 44018;
inline constexpr int MENU_ITEM_ID_SORT_TITLE = 44023;
inline constexpr int MENU_ITEM_ID_SORT_SIZE = 44024;
inline constexpr int MENU_ITEM_ID_SORT_DURATION = 44025;
inline constexpr int MENU_ITEM_ID_SORT_DATE = 44026;
inline constexpr int MENU_ITEM_ID_CLIP_SEARCH = 44027;
inline constexpr int MENU_ITEM_ID_MEDIA_NAME_CHANGE = 44052;
inline constexpr int MENU_ITEM_ID_OFFLOAD = 44054;
inline constexpr int MENU_ITEM_ID_VERIFY_FOLDER = 44055;
inline constexpr int MENU_ITEM_ID_REFRESH = 44060;

// The one-level folder list on the left of a pane, as an item model: row 0 is
// the pane's work folder itself, the other rows its sub-folders (never the
// BPAV folder, and the PRIVATE folder of a card only when it holds something
// besides the camera's material). When the pane's work folder is empty the
// rows are the mounted volumes, the start-up disk "/" first.
//
// The list owns its selection model; selecting a row makes that folder the
// pane's selected folder, a double click makes it the pane's work folder. It
// rebuilds itself on the notifications of folder operations and volume
// mounts, and validates and dispatches the folder commands of the menus. It
// reads the pane's state through MediaInfo and asks the pane to act through
// its signals, which run synchronously (direct connections).
class BLTreeViewCtrl : public QAbstractListModel
{
    Q_OBJECT
public:
    // What the list reads from its pane.
    class MediaInfo
    {
    public:
        virtual ~MediaInfo() = default;
        // "" when the pane shows the volume list.
        virtual QString getWorkFolder() const = 0;
        // "" when no folder is selected.
        virtual QString getSelectFolder() const = 0;
        // The pane's name in log lines ("Main", "Sub1").
        virtual QString getMediaInfoTypeString() const = 0;
        // The takes that are neither loose MP4 files nor unusable.
        virtual QList<DOTakeData> getTakeDataWithoutNonImport() const = 0;
        virtual bool isEnableAllCopyMenuItem() const = 0;
        // The thumbnail grid's answer for its own commands (either pointer may be null).
        virtual bool isSupportMenuItemToThumbView(int tag, bool* isEnable, bool* isCheck) const = 0;
    };

    enum Role
    {
        FullPathRole = Qt::UserRole + 1, // the row's folder: its path joined to the work folder
        IndentRole,                      // 0 for row 0 and for volumes, 1 for the folders below
        ImageRole,                       // the icon-theme name of the row's icon
    };

    // A command of the list: its tag, its name in log lines and its title in
    // the list's context menu (null for the thumbnail commands passed on).
    struct MenuItem
    {
        int tag;
        const char* name;
        const char* title;
    };
    // The commands in context-menu order; an entry with tag 0 separates groups.
    static const QList<MenuItem>& menuItems();

    // mediaInfo is the owning pane; paneSender is the sender with which that
    // pane posts its SCWorkFolderDidChangeNotification.
    BLTreeViewCtrl(const MediaInfo& mediaInfo, const void* paneSender, QObject* parent = nullptr);
    ~BLTreeViewCtrl() override;

    QItemSelectionModel* selectionModel() const { return m_selectionModel; }
    const QList<DOTreeData>& datas() const { return m_datas; }
    // The folder of a row: its path joined to the work folder; "" for no row.
    QString fullPathOfRow(int row) const;
    // The selected row, or -1.
    int selectedRow() const;

    // Rebuilds the rows from disk; with keepSelect the pane's selected folder
    // stays selected when it is still listed, otherwise row 0 is selected.
    // The work folder is watched from then on: a folder made, removed or
    // renamed in it by another program rebuilds the rows the same way.
    void updateData(bool keepSelect);
    // Selects a row (out of range: none); selecting the selected row again
    // hands it to the pane again.
    void selectTreeIndex(int row);
    // The row whose folder is the path, or -1.
    int searchIndexByFolderPath(const QString& path) const;
    // Descends into the selected folder (it becomes the pane's work folder).
    void doubleClickSelecttion();

    // Whether the tag is a command of the list; *isEnable and *isCheck (either
    // may be null) receive its state now.
    bool isSupportMenuItem(int tag, bool* isEnable, bool* isCheck) const;
    // Runs an enabled command: logs it and emits the signal for it.
    void selectMenuItem(int tag);

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;

signals:
    // The pane's selected folder becomes path ("" for none).
    void selectFolderChosen(const QString& path, bool userSelect);
    // The pane's work folder becomes path ("" for the volume list).
    void workFolderChosen(const QString& path, bool keepSelect);
    // The folder the user chose no longer exists.
    void selectFolderNotFound();
    // The work folder is gone: the pane moves up one level.
    void workFolderMoveUpRequested();
    // A folder was renamed: the pane renames its work folder and selected
    // folder where they lie in it.
    void folderRenamed(const QString& source, const QString& destination);
    // A command for the pane, or for its grid (thumbnail commands).
    void menuItemChosen(int tag);
    // "Open in file manager" for the selected folder.
    void openInFileManagerRequested(const QString& folder);

private:
    void makeTreeView();
    void makeTreeData(const QStringList& names);
    static bool isExceptORX(const QString& path, const QString& name);
    void sortDatas();

    void tableViewSelectionDidChange();
    void workspaceDidMountNotification(const SCNotification& notification);
    void workspaceDidUnmountNotification(const SCNotification& notification);
    void workFolderDidChangeNotification(const SCNotification& notification);
    void newFolderDidMakeNotification(const SCNotification& notification);
    void folderNameDidChangeNotification(const SCNotification& notification);
    void folderDidDeleteNotification(const SCNotification& notification);

    bool workFonderIsVolumeList() const;
    bool isEnabled(int tag) const;
    // The work folder changed on disk: the rows follow it, or the pane moves
    // up when the work folder itself has gone.
    void workFolderDidChangeOnDisk();

    const MediaInfo& m_mediaInfoCtrl;
    QItemSelectionModel* m_selectionModel;
    QList<DOTreeData> m_datas;
    bool m_doTreeViewNotification = true;
    QFileSystemWatcher m_watcher;
    QTimer m_diskChange; // a burst of changes (a card being copied in) rebuilds once
};
