// BLMediaInfoCtrl's menu routing between the folder list and the grid, and
// the helpers that open the copy and move dialogs.
#include "core/app/panes/BLMediaInfoCtrl.h"

#include "core/app/BLMainWindowCtrl.h"
#include "core/app/panes/BLThumbViewCtrl.h"
#include "core/app/panes/IMediaInfoView.h"
#include "core/card/BLDiskCtrl.h"
#include "core/card/BLHouseKeepingCtrl.h"
#include "core/card/DOClipCtrl.h"
#include "core/operations/BLClipCopyCtrl.h"
#include "core/operations/BLClipDeleteCtrl.h"
#include "core/operations/BLClipMoveCtrl.h"
#include "core/operations/BLClipPropertyCtrl.h"
#include "core/operations/BLClipboardCtrl.h"
#include "core/operations/BLDeleteFolderCtrl.h"
#include "core/operations/BLFolderCombineCtrl.h"
#include "core/operations/BLFolderDivisionCtrl.h"
#include "core/operations/BLFolderNameCtrl.h"
#include "core/operations/BLMediaNameChangeCtrl.h"
#include "core/operations/export/BLMPEG2TSConvertCtrl.h"
#include "core/operations/import/BLMP4ImportCtrl.h"
#include "core/operations/offload/BLOffloadCtrl.h"
#include "core/operations/search/BLClipSearchCtrl.h"
#include "core/services/BLCommon.h"
#include "core/services/BLLocalizedStrings.h"
#include "core/services/BLLogCtrl.h"
#include "core/services/BLPlistCtrl.h"
#include "core/services/SCNotificationNames.h"

#include <QDir>
#include <QEventLoop>
#include <QFileInfo>

#include <algorithm>
#include <thread>

// ---- menu routing ----

bool BLMediaInfoCtrl::isSupportMenuItemToTreeView(int tag, bool* isEnable, bool* isCheck) const
{
    if (isRefresh(tag, isEnable, isCheck))
        return true;
    return m_treeViewCtrl->isSupportMenuItem(tag, isEnable, isCheck);
}

void BLMediaInfoCtrl::selectMenuItemToTreeView(int tag)
{
    bool enable = false;
    if (!isSupportMenuItemToTreeView(tag, &enable, nullptr) || !enable)
        return;
    if (tag == MENU_ITEM_ID_REFRESH)
        refresh();
    else
        m_treeViewCtrl->selectMenuItem(tag);
}

void BLMediaInfoCtrl::selectMenuItemToThumbView(int tag)
{
    if (tag == MENU_ITEM_ID_REFRESH)
        refresh();
    else
        m_thumbViewCtrl->selectMenuItem(tag);
}

void BLMediaInfoCtrl::runTreeCommand(int tag)
{
    switch (tag) {
    case MENU_ITEM_ID_CHANGE_FOLDER_NAME:
        showChangeFolderName();
        break;
    case MENU_ITEM_ID_NEW_FOLDER:
        showNewFolder();
        break;
    case MENU_ITEM_ID_DELETE:
        showDeletFolder();
        break;
    case MENU_ITEM_ID_CHANGE_WORK_FOLDER:
        changeWorkFolder();
        break;
    case MENU_ITEM_ID_MOVE_UP_FOLDER:
        moveUpSelectFolder();
        break;
    case MENU_ITEM_ID_ALL_COPY:
        selectAllCopyMenuItem();
        break;
    case MENU_ITEM_ID_CLIP_SEARCH:
        showClipSearch();
        break;
    case MENU_ITEM_ID_FOLDER_DIVISION:
        showFolderDivision();
        break;
    case MENU_ITEM_ID_FOLDER_COMBINE:
        showFolderCombine();
        break;
    case MENU_ITEM_ID_OFFLOAD:
        showOffload();
        break;
    case MENU_ITEM_ID_VERIFY_FOLDER:
        if (checkSelectFolderExist())
            BLOffloadCtrl::verifyFolder(m_selectFolder);
        break;
    case MENU_ITEM_ID_MEDIA_NAME_CHANGE:
        showChangeMediaName();
        break;
    case MENU_ITEM_ID_IMPORT:
    case MENU_ITEM_ID_EXPORT:
    case MENU_ITEM_ID_SORT_TITLE:
    case MENU_ITEM_ID_SORT_SIZE:
    case MENU_ITEM_ID_SORT_DURATION:
    case MENU_ITEM_ID_SORT_DATE:
        m_thumbViewCtrl->selectMenuItem(tag);
        break;
    default:
        // The remaining commands' dialogs are not available; they stay disabled.
        break;
    }
}

// ---- helpers ----

BLMediaInfoCtrl* BLMediaInfoCtrl::anotherMediaInfoCtrl() const
{
    return m_mainWindowCtrl ? m_mainWindowCtrl->getAnotherMediaInfoCtrl(this) : nullptr;
}

DOClipCtrl BLMediaInfoCtrl::makeClipCtrl(const QString& fromFolder, const QString& toFolder)
{
    DOClipCtrl clipCtrl;
    clipCtrl.setSourceWorkFolder(fromFolder);
    clipCtrl.setDestinationWorkFolder(toFolder);
    return clipCtrl;
}

bool BLMediaInfoCtrl::hasNonImportTake(const QList<DOTakeData>& takes)
{
    const bool found = std::any_of(takes.begin(), takes.end(),
                                   [](const DOTakeData& take) { return take.getTakeStatus() == 4; });
    if (found)
        BLCommon::sharedCtrl()->messageBox(QStringLiteral("MSG_633_3183"), QString(), 0, 0);
    return found;
}

void BLMediaInfoCtrl::openClipCopy(const DOClipCtrl& clipCtrl, int mode, IOperationPane* toPane,
                                   IOperationPane* fromPane)
{
    if (!m_baseView)
        return;
    BLClipCopyCtrl ctrl(&m_baseView->clipCopyView(), clipCtrl, toPane, fromPane);
    ctrl.showModal(mode);
}

void BLMediaInfoCtrl::openClipMove(const DOClipCtrl& clipCtrl, IOperationPane* toPane,
                                   IOperationPane* fromPane)
{
    if (!m_baseView)
        return;
    BLClipMoveCtrl ctrl(&m_baseView->clipMoveView(), clipCtrl, toPane, fromPane);
    ctrl.showModal();
}
