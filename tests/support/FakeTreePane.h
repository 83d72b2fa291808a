#pragma once

#include "core/card/BLTreeViewCtrl.h"
#include "core/card/DOTakeData.h"
#include "core/services/BLCommon.h"
#include "core/services/SCNotificationNames.h"

#include <QFileInfo>

namespace cwtest {

// Stands in for the pane that owns the list: keeps a work folder and a
// selected folder, and acts on the list's signals as the pane does.
class FakeTreePane : public BLTreeViewCtrl::MediaInfo
{
public:
    QString workFolder;
    QString selectFolder;
    QList<DOTakeData> takes;
    bool allCopy = false;
    int selectionsHandedOver = 0;
    int notFound = 0;
    QList<int> commands;
    QStringList opened;

    QString getWorkFolder() const override { return workFolder; }
    QString getSelectFolder() const override { return selectFolder; }
    QString getMediaInfoTypeString() const override { return QStringLiteral("Main"); }
    QList<DOTakeData> getTakeDataWithoutNonImport() const override { return takes; }
    bool isEnableAllCopyMenuItem() const override { return allCopy; }
    bool isSupportMenuItemToThumbView(int tag, bool* isEnable, bool* isCheck) const override
    {
        if (isEnable)
            *isEnable = tag != MENU_ITEM_ID_EXPORT;
        if (isCheck)
            *isCheck = tag == MENU_ITEM_ID_SORT_DATE;
        return true;
    }

    void attach(BLTreeViewCtrl& tree)
    {
        QObject::connect(&tree, &BLTreeViewCtrl::selectFolderChosen, [this](const QString& path, bool) {
            selectFolder = path;
            ++selectionsHandedOver;
        });
        QObject::connect(&tree, &BLTreeViewCtrl::workFolderChosen,
                         [this](const QString& path, bool keep) { setWorkFolder(path, keep); });
        QObject::connect(&tree, &BLTreeViewCtrl::workFolderMoveUpRequested,
                         [this] { setWorkFolder(QFileInfo(workFolder).path(), true); });
        QObject::connect(&tree, &BLTreeViewCtrl::folderRenamed,
                         [this](const QString& from, const QString& to) {
                             if (selectFolder == from)
                                 selectFolder = to;
                             if (workFolder == from)
                                 setWorkFolder(to, true);
                         });
        QObject::connect(&tree, &BLTreeViewCtrl::selectFolderNotFound, [this] { ++notFound; });
        QObject::connect(&tree, &BLTreeViewCtrl::menuItemChosen, [this](int tag) { commands << tag; });
        QObject::connect(&tree, &BLTreeViewCtrl::openInFileManagerRequested,
                         [this](const QString& folder) { opened << folder; });
    }

    // As the pane does: a change is stored and announced at once.
    void setWorkFolder(const QString& path, bool keepSelect)
    {
        if (path == workFolder)
            return;
        workFolder = path;
        BLCommon::sharedCtrl()->sendNotificationNow(this, SC::SCWorkFolderDidChangeNotification,
                                                    {{SC::SCKeepSelectKey, keepSelect}});
    }
};

} // namespace cwtest
