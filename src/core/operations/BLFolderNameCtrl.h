#pragma once

#include <QString>

class IFolderNameView;

// New folder and rename folder: runs the folder-name dialog and owns the rules
// a folder name must pass, which the copy and move destinations use as well.
// Main thread only. The caller (a pane's folder command) passes the folders
// concerned; after a run, isFolderNotFound() tells it that the folder it acted
// on has gone, so it can leave that folder.
class BLFolderNameCtrl
{
public:
    // Dialog modes.
    static constexpr int kModeCreate = 0;
    static constexpr int kModeRename = 1;
    // Name-check types: the two modes, then the destinations of copy and move.
    static constexpr int kTypeCreate = 0;
    static constexpr int kTypeRename = 1;
    static constexpr int kTypeCopy = 2;
    static constexpr int kTypeMove = 3;
    // Answers of checkFolderName.
    static constexpr int kNameAccepted = 0;
    static constexpr int kNameRefusedClose = 1;    // the caller ends its dialog
    static constexpr int kNameRefusedKeepOpen = 2; // the caller keeps its dialog open
    // Codes the dialog ends with.
    static constexpr int kStopCodeOK = 1;
    static constexpr int kStopCodeCancel = 0;

    static constexpr int kMaxNameLength = 80;

    // The view may be null when only checkFolderName is used.
    explicit BLFolderNameCtrl(IFolderNameView* view = nullptr);

    // The New Folder command: asks for a name and makes the folder in the
    // parent. True when a folder was made (its path: getNewFolderPath()).
    bool showNewFolder(const QString& parentPath);
    // The Rename Folder command: asks for the new name of the folder. The work
    // folder of the pane decides the location shown (none for the work folder
    // itself). True when the name changed.
    bool showRename(const QString& path, const QString& workFolder);

    // The dialog's buttons.
    void OnOK();
    void OnCancel();

    // Checks a name for a folder: with type create, copy or move the path is
    // the parent the folder is to be made in, with rename the folder itself.
    // Refusals have been shown and logged. A name that already exists sets the
    // same flag: a rename to the unchanged name (nothing to do) or an existing
    // copy or move destination (the operation goes into it).
    int checkFolderName(const QString& name, const QString& path, int type);
    bool createNewFolder(const QString& name, const QString& parentPath);
    bool changeFolderName(const QString& name, const QString& path);

    const QString& getNewFolderPath() const { return m_newFolderPath; }
    bool getSameFlag() const { return m_sameFlag; }
    bool isFolderNotFound() const { return m_folderNotFound; }

private:
    // Runs the dialog in the current mode on m_strPath; true when something changed.
    bool showModal(const QString& location, const QString& name);
    // The folder the check is about still exists (type create or rename).
    bool checkFolderExist(const QString& path, int type);
    QString typedName() const;

    IFolderNameView* m_view;
    int m_mode = kModeCreate;
    QString m_strPath; // the folder the dialog was opened on
    QString m_newFolderPath;
    bool m_sameFlag = false;
    bool m_folderNotFound = false;
};
