#pragma once

#include "core/card/BLTreeViewCtrl.h"
#include "core/card/DOTakeData.h"
#include "core/card/IOperationPane.h"

#include <QList>
#include <QObject>
#include <QString>

#include <atomic>

class BLHouseKeepingCtrl;
class BLMainWindowCtrl;
class BLThumbViewCtrl;
class DOClipCtrl;
class IMediaInfoView;

// A media pane ("Main" or "Sub1"): the folder list of its work folder, the
// thumbnail grid of its selected folder, the tool buttons and the size texts.
// The pane keeps its work folder and selected folder in the settings, loads
// the selected folder's takes through housekeeping, and is where every
// command on takes and folders starts: it checks the request and fills the
// operation record before it opens the operation's dialog.
//
// Main thread only. While housekeeping runs on its worker the pane keeps the
// event loop turning, so the housekeeping sheet stays alive.
class BLMediaInfoCtrl : public QObject, public BLTreeViewCtrl::MediaInfo, public IOperationPane
{
    Q_OBJECT
public:
    static constexpr int kTypeMain = 0;
    static constexpr int kTypeSub1 = 1;

    // mainWindowCtrl may be null for a pane on its own (it then has no other pane).
    BLMediaInfoCtrl(int infoType, BLMainWindowCtrl* mainWindowCtrl, QObject* parent = nullptr);
    ~BLMediaInfoCtrl() override;

    void setView(IMediaInfoView* view) { m_baseView = view; }
    BLTreeViewCtrl* treeViewCtrl() const { return m_treeViewCtrl; }
    BLThumbViewCtrl* thumbViewCtrl() const { return m_thumbViewCtrl; }
    int getMediaInfoType() const { return m_infoType; }

    // Restores the remembered work folder and selected folder. True when
    // either could not be restored (the pane then shows the volume list).
    bool initializeCtrl();
    // Stops a housekeeping pass in progress.
    void finalizeCtrl();

    // ---- BLTreeViewCtrl::MediaInfo ----
    // (also of IOperationPane)
    QString getWorkFolder() const override;
    QString getSelectFolder() const override { return m_selectFolder; }
    QString getMediaInfoTypeString() const override;
    QList<DOTakeData> getTakeDataWithoutNonImport() const override;
    // This pane has a selected folder with takes, and the other pane has a
    // selected folder.
    bool isEnableAllCopyMenuItem() const override;
    bool isSupportMenuItemToThumbView(int tag, bool* isEnable, bool* isCheck) const override;

    // ---- folders ----
    void setWorkFolder(const QString& path, bool keepSelect);
    void setSelectFolder(const QString& path, bool userSelect);
    bool workFonderIsVolumeList() const { return getWorkFolder().isEmpty(); }
    bool selectFonderIsVolume() const;
    // Asks for a new work folder.
    void changeWorkFolder();
    // The work folder's parent becomes the work folder; from a volume root
    // or "/", the volume list.
    void moveUpWorkFolder();
    // Up One Folder: the work folder moves up one level and stays selected.
    void moveUpSelectFolder();
    // A folder was renamed: the work folder or selected folder in it follows.
    void renameWorkFolder(const QString& from, const QString& to);
    void renameSelectFolder(const QString& from, const QString& to);
    // The selected folder has gone: "MSG_632_3199", then the volume list.
    void notFoundSelectFolder();
    void notFoundSelectFolderNoMessage() override;

    // ---- takes ----
    // Loads the selected folder's takes through housekeeping.
    void makeTakeData();
    const QList<DOTakeData>& getTakeData() const override { return m_arrTakeData; }
    DOTakeData getTakeData(int index) const { return m_arrTakeData.value(index); }
    // Appends a take; with an index, inserts it there.
    void setTakeData(const DOTakeData& take);
    void setTakeData(const DOTakeData& take, int index);
    void replaceTakeData(const DOTakeData& take, int index);
    void setTakeDataArray(const QList<DOTakeData>& takes) { m_arrTakeData = takes; }
    // The index of the take with the UMID, or -1.
    int getTakeDataByUmid(const QString& umid) const;
    // Removes the take with the UMID; answers its index, or -1.
    int deleteTakeDataByUmid(const QString& umid);
    // The selected takes, in grid order.
    QList<DOTakeData> getSelectAllTakeData() const;

    // ---- displays ----
    void updateFolderName();
    void updateFolderSize();
    void updateVolumeSize();
    // Refreshes the texts that a change in the folder at path touches.
    void updateSize(const QString& path);
    void updateToolButtons();
    void updateToolAllCopyButton();
    // Keeps the divider between the folder list and the grid in place.
    void setDividerLocked(bool locked);

    // ---- commands ----
    // Every command first stops the preview and checks that the selected
    // folder still exists (notFoundSelectFolder otherwise).
    bool checkSelectFolderExist();
    // Cut (mode 1) or Copy (mode 2) of the selected takes to the clipboard.
    void selectCutCopyMenuItem(int mode);
    void selectPasteMenuItem();
    void selectAllCopyMenuItem();
    // Takes dragged from the other pane's grid were dropped on this one.
    void dropClipData(bool isMove);
    void showNewFolder();
    void showChangeFolderName();
    void showDeletFolder();
    void showFolderDivision();
    void showFolderCombine();
    void showChangeMediaName();
    // File > Offload Card: the work folder copied to the destinations chosen.
    void showOffload();
    // Deletes the selected takes of the selected folder, once confirmed.
    void deleteClipData();
    // Search Clips: the search dialog on the selected folder; a chosen take
    // is shown selected in its folder.
    void showClipSearch();
    // Shows the folder (it becomes the work folder's sub-folder shown when
    // it is not listed) and selects the take with the UMID once it is loaded.
    void showFolderWithTake(const QString& folder, const QString& umid);
    // Show Info: the property dialog of the take at the index.
    void showClipProperty(int index);
    // Exports the selected takes as MPEG-2 transport streams.
    void showMPEG2TSConvert();
    // Opens the import dialog for the selected folder with the selected
    // takes' MP4 files and the files given (dropped from the file manager).
    void showMP4Import(const QStringList& files = {});
    // View > Refresh: the folder list read again, and the selected folder
    // through housekeeping in every pane that shows it.
    void refresh();

    // ---- menu routing ----
    // The folder list's answer (Refresh included).
    bool isSupportMenuItemToTreeView(int tag, bool* isEnable, bool* isCheck) const;
    void selectMenuItemToTreeView(int tag);
    void selectMenuItemToThumbView(int tag);

private:
    // Refresh is a command of both the folder list and the grid.
    bool isRefresh(int tag, bool* isEnable, bool* isCheck) const;
    BLMediaInfoCtrl* anotherMediaInfoCtrl() const;
    void storeSelectFolder(const QString& path);
    // A folder command chosen in the folder list.
    void runTreeCommand(int tag);
    // The operation record of takes going from one folder to another.
    static DOClipCtrl makeClipCtrl(const QString& fromFolder, const QString& toFolder);
    // Shows "MSG_633_3183" when a take is an MP4 file not yet imported.
    static bool hasNonImportTake(const QList<DOTakeData>& takes);
    // Opens the copy dialog (BLClipCopyCtrl modes) on a filled record; either
    // pane may be absent.
    void openClipCopy(const DOClipCtrl& clipCtrl, int mode, IOperationPane* toPane, IOperationPane* fromPane);
    // Opens the move dialog on a filled record; either pane may be absent.
    void openClipMove(const DOClipCtrl& clipCtrl, IOperationPane* toPane, IOperationPane* fromPane);

    IMediaInfoView* m_baseView = nullptr;
    BLThumbViewCtrl* m_thumbViewCtrl;
    BLTreeViewCtrl* m_treeViewCtrl;
    const int m_infoType;
    BLMainWindowCtrl* m_mainWindowCtrl;
    QString m_selectFolder;
    QList<DOTakeData> m_arrTakeData;
    // The housekeeping pass in progress, for finalizeCtrl.
    std::atomic<BLHouseKeepingCtrl*> m_houseKeeping{nullptr};
};
