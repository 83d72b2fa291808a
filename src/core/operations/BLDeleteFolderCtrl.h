#pragma once

#include <QString>
#include <QStringList>

class IDeleteFolderView;

// Delete folder: decides whether a work folder may be deleted and deletes it
// under the progress dialog. Only a folder that is empty or holds nothing but
// its BPAV folder (no other sub-folder, no visible file, no hidden item but
// the leftovers of desktops), all of which may be deleted, goes; and only what
// was there when it was checked is removed. The counts and allCheck also serve folder combine. Main
// thread only.
class BLDeleteFolderCtrl
{
public:
    // The view may be null when only the counts and allCheck are used.
    explicit BLDeleteFolderCtrl(IDeleteFolderView* view = nullptr);

    // The Delete Folder command: asks, checks and deletes. True when the
    // folder is gone (SCFolderDidDeleteNotification has been posted). A
    // cancelled or failed run that removed part of the folder posts
    // SCSelectFolderDataDidUpdateNotification for it, so a pane showing it
    // reloads.
    bool deleteProcessOfFolder(const QString& path);

    // Number of sub-folders (visible folders).
    static int getFolderCount(const QString& path);
    // Number of visible entries that are not folders.
    static int getFileCount(const QString& path);
    // The folder and every path under it (hidden ones too) may be deleted.
    // Fills getFileMax() and getArrContents().
    bool allCheck(const QString& path);
    // Every path under the folder at any depth, relative to it, sorted;
    // links are listed, not followed.
    static QStringList getAllContentsOfFolder(const QString& path);

    int getFileMax() const { return m_fileMax; }
    // The folder followed by every path under it, absolute.
    const QStringList& getArrContents() const { return m_arrContents; }
    // The folder was found missing: the caller leaves it.
    bool isFolderNotFound() const { return m_folderNotFound; }

private:
    // The checks after the confirmation; false when one refused (shown and logged).
    bool checkDeletable(const QString& path);
    bool removeFolder(const QString& path);
    // allCheck over a listing already made.
    bool allCheck(const QString& path, const QStringList& paths);

    IDeleteFolderView* m_view;
    int m_fileMax = 0;
    QStringList m_arrContents;
    bool m_folderNotFound = false;
};
