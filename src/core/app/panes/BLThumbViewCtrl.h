#pragma once

#include "core/app/panes/DOThumbData.h"

#include <QAbstractListModel>
#include <QList>

class BLMediaInfoCtrl;
class DOTakeData;
class QItemSelectionModel;
struct SCNotification;

// Menu tags of the thumbnail commands that the folder list does not know.
inline constexpr int MENU_ITEM_ID_COPY = 44007;
inline constexpr int MENU_ITEM_ID_CUT = 44009;
inline constexpr int MENU_ITEM_ID_PASTE = 44010;
inline constexpr int MENU_ITEM_ID_SHOW_INFO = 44014;
inline constexpr int MENU_ITEM_ID_SELECT_ALL = 44050;
inline constexpr int MENU_ITEM_ID_THUMB_PLAY = 44216;

// The thumbnail grid of a pane, as an item model: one row per take of the
// pane's selected folder, in the current sort order. The grid owns its
// selection model, reloads when its pane's selected folder changes or the
// folder's data is updated, updates single items in place when takes are
// added, updated or deleted, and validates and runs the thumbnail commands.
//
// Items are cheap records; a picture is asked of the thumbnail cache only
// when the view is about to show the item (requestImage), and arrives by
// SCCacheImageDidGetNotification.
class BLThumbViewCtrl : public QAbstractListModel
{
    Q_OBJECT
public:
    static constexpr int kSortTitle = 0;
    static constexpr int kSortSize = 1;
    static constexpr int kSortDuration = 2;
    static constexpr int kSortDate = 3;

    // Dragged takes: "<pane type>\n" followed by one UMID per line.
    static const QString kTakesMimeType;

    enum Role
    {
        TakeIdRole = Qt::UserRole + 1, // the take's name (its folder or MP4 file name)
        TitleRole,
        DurationRole,   // duration text
        DateRole,       // creation date in the user's date settings
        ImageRole,      // QImage; null until the picture has arrived
        TakeStatusRole, // 0 to 6
    };

    // A thumbnail command: its tag, its name in log lines and its title in
    // the grid's context menu.
    struct MenuItem
    {
        int tag;
        const char* name;
        const char* title;
    };
    // The grid's commands in context-menu order; tag 0 separates groups.
    static const QList<MenuItem>& menuItems();

    explicit BLThumbViewCtrl(BLMediaInfoCtrl& mediaInfoCtrl, QObject* parent = nullptr);
    ~BLThumbViewCtrl() override;

    QItemSelectionModel* selectionModel() const { return m_selectionModel; }
    const QList<DOThumbData>& thumbArray() const { return m_thumbArray; }
    int getSortMode() const { return m_sortMode; }

    // Why the grid shows nothing, for the text it shows instead.
    enum class EmptyReason
    {
        NotEmpty,        // it shows takes, or is loading
        NoFolder,        // no folder is selected (the list of disks)
        NoCard,          // the folder holds no card, but folders to look in
        NoCardNoFolders, // the folder holds neither a card nor folders
        NoTakes,         // a card without takes
    };
    EmptyReason emptyReason() const;

    // ---- menus ----
    // Whether the tag is a command of the grid or of the folder list (passed
    // on to it); *isEnable and *isCheck (either may be null) receive its
    // state now.
    bool isSupportMenuItem(int tag, bool* isEnable, bool* isCheck) const;
    // The enabling rule of one of the grid's own commands.
    bool isEnableMenuItem(int tag) const;
    // Runs an enabled command: logs it and acts.
    void selectMenuItem(int tag);

    // ---- selection ----
    void selectAllThumbData();
    int getSelectCount() const;
    // The first selected row in grid order, or -1.
    int findFirstSelectIndex() const;
    // The take indexes of the selected items, in grid order.
    QList<int> findSelectAllThumbData() const;
    // The picture shown for the take at the index of the pane's list (null until decoded).
    QImage getImageOfTake(int indexTakeData) const;

    // ---- loading and sorting ----
    // Sorts by a mode (kSort...); nothing when the mode is unchanged and no
    // refresh is forced.
    void sortItem(int mode, bool needRefresh);
    // Reloads the pane's selected folder (housekeeping included) into the grid.
    void changeFolder();

    // ---- playback and pictures ----
    // Plays the take when its essence is there ("MSG_633_3191" otherwise).
    void sendPlayMovieNotification(const DOTakeData& take);
    void sendCacheImageRequestNotification(int row);
    void sendCacheImageCancelNotification();
    // The item is about to be shown: asks the thumbnail cache for its
    // picture, once per picture.
    void requestImage(int row);

    // ---- mouse and keys ----
    // Plays the item's take when it is the only selected item.
    void doubleClickThumbItemCtrl(int row);
    // Return or Enter: plays the only selected take.
    void enterKeyDown();

    // ---- item model ----
    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    QStringList mimeTypes() const override;
    QMimeData* mimeData(const QModelIndexList& indexes) const override;
    // Takes dragged from the other pane's grid may be dropped; the drop
    // becomes dropClipData(isMove) of this pane, a move for Qt::MoveAction.
    // Local files dropped from the file manager ("text/uri-list") open the
    // import dialog with them, once the drop has returned.
    bool canDropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                         const QModelIndex& parent) const override;
    bool dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                      const QModelIndex& parent) override;
    Qt::DropActions supportedDragActions() const override;
    Qt::DropActions supportedDropActions() const override;
    // The local files of a drop from the file manager; none for anything else
    // or without a selected folder.
    QStringList droppedFiles(const QMimeData* data) const;

signals:
    // The view shows the first row (after a sort).
    void scrollToTop();
    // The view shows a row (an item chosen from outside).
    void scrollToItem(int row);

private:
    // The grid's process id in the log.
    static constexpr int kProcessId = 633;

    // One reload of the selected folder (changeFolder repeats it while asked).
    void loadFolder();
    void addThumbDataObject(const DOTakeData& take, int indexTakeData);
    // Sorts the records by the current mode, keeping the selection on its items.
    void sortRecords();
    int rowOfUmid(const QString& umid) const;
    int rowOfTakeIndex(int indexTakeData) const;
    bool isSelectFolder(const QString& folder) const;
    // A folder-level command may run: the selected folder still exists.
    bool checkSelectFolder() const;
    void emitRowChanged(int row);
    // After takes were added or deleted in place: sizes, order and buttons.
    void refreshAfterInPlaceChange(const QString& folder, bool changed);

    void selectFolderDidChangeNotification(const SCNotification& notification);
    void selectFolderDataDidUpdateNotification(const SCNotification& notification);
    void takeDidAddNotification(const SCNotification& notification);
    void takeDidUpdateNotification(const SCNotification& notification);
    void takeDidDeleteNotification(const SCNotification& notification);
    void cacheImageDidGetNotification(const SCNotification& notification);
    void movieThumbDidChangeNotification(const SCNotification& notification);
    void thumbViewSelectItemNotification(const SCNotification& notification);
    void clipPropertyDidChangeNotification(const SCNotification& notification);
    void dateFormatDidChangeNotification();

    // Writes a key frame into the metadata of the take and of its clips.
    bool writeKeyFrame(const DOTakeData& take, qint64 keyFrame) const;

    BLMediaInfoCtrl& m_mediaInfoCtrl;
    QItemSelectionModel* m_selectionModel;
    QList<DOThumbData> m_thumbArray;
    int m_sortMode = kSortTitle;
    // A reload runs (it waits for housekeeping); a reload asked for meanwhile
    // follows it.
    bool m_loading = false;
    bool m_reloadPending = false;
};
