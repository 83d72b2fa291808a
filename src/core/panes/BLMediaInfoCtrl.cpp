#include "core/panes/BLMediaInfoCtrl.h"

#include "core/app/BLLogCtrl.h"
#include "core/app/BLMainWindowCtrl.h"
#include "core/app/BLPlistCtrl.h"
#include "core/common/BLCommon.h"
#include "core/common/BLLocalizedStrings.h"
#include "core/common/SCNotificationNames.h"
#include "core/export/BLMPEG2TSConvertCtrl.h"
#include "core/metadata/BLHouseKeepingCtrl.h"
#include "core/model/BLClipSearchCtrl.h"
#include "core/model/BLDiskCtrl.h"
#include "core/mp4/BLMP4ImportCtrl.h"
#include "core/offload/BLOffloadCtrl.h"
#include "core/operations/BLClipCopyCtrl.h"
#include "core/operations/BLClipDeleteCtrl.h"
#include "core/operations/BLClipMoveCtrl.h"
#include "core/operations/BLClipboardCtrl.h"
#include "core/operations/BLDeleteFolderCtrl.h"
#include "core/operations/BLFolderCombineCtrl.h"
#include "core/operations/BLFolderDivisionCtrl.h"
#include "core/operations/BLFolderNameCtrl.h"
#include "core/operations/BLMediaNameChangeCtrl.h"
#include "core/operations/DOClipCtrl.h"
#include "core/panes/BLClipPropertyCtrl.h"
#include "core/panes/BLThumbViewCtrl.h"
#include "core/panes/IMediaInfoView.h"

#include <QDir>
#include <QEventLoop>
#include <QFileInfo>

#include <algorithm>
#include <thread>

namespace {
constexpr int kProcessId = 631;
constexpr int kWorkFolderProcessId = 659;

// The tool buttons that follow the folder list's enabling rules.
constexpr int kTreeToolButtons[] = {MENU_ITEM_ID_CHANGE_WORK_FOLDER, MENU_ITEM_ID_MOVE_UP_FOLDER,
                                    MENU_ITEM_ID_NEW_FOLDER, MENU_ITEM_ID_FOLDER_DIVISION,
                                    MENU_ITEM_ID_CLIP_SEARCH};

bool samePath(const QString& path, const QString& path2)
{
    return QDir::cleanPath(path) == QDir::cleanPath(path2);
}

QList<DOTakeData> copyTakes(const QList<DOTakeData>& takes)
{
    QList<DOTakeData> copies;
    copies.reserve(takes.size());
    for (const DOTakeData& take : takes)
        copies.append(take.copyTake());
    return copies;
}

// Runs housekeeping on a worker while the event loop keeps turning, so the
// housekeeping sheet and the alerts housekeeping may show stay alive.
QList<DOTakeData> runHouseKeeping(BLHouseKeepingCtrl& houseKeeping, const QString& folder)
{
    QList<DOTakeData> takes;
    QEventLoop loop;
    std::thread worker([&] {
        takes = houseKeeping.doHouseKeeping(folder);
        QMetaObject::invokeMethod(&loop, &QEventLoop::quit, Qt::QueuedConnection);
    });
    loop.exec();
    worker.join();
    return takes;
}
} // namespace

BLMediaInfoCtrl::BLMediaInfoCtrl(int infoType, BLMainWindowCtrl* mainWindowCtrl, QObject* parent)
    : QObject(parent), m_infoType(infoType), m_mainWindowCtrl(mainWindowCtrl)
{
    // The list and the grid read the pane's state, so the pane's own fields
    // come first.
    m_treeViewCtrl = new BLTreeViewCtrl(*this, static_cast<const void*>(this), this);
    m_thumbViewCtrl = new BLThumbViewCtrl(*this, this);

    connect(m_treeViewCtrl, &BLTreeViewCtrl::selectFolderChosen, this, &BLMediaInfoCtrl::setSelectFolder);
    connect(m_treeViewCtrl, &BLTreeViewCtrl::workFolderChosen, this, &BLMediaInfoCtrl::setWorkFolder);
    connect(m_treeViewCtrl, &BLTreeViewCtrl::selectFolderNotFound, this,
            &BLMediaInfoCtrl::notFoundSelectFolder);
    connect(m_treeViewCtrl, &BLTreeViewCtrl::workFolderMoveUpRequested, this,
            &BLMediaInfoCtrl::moveUpWorkFolder);
    connect(m_treeViewCtrl, &BLTreeViewCtrl::folderRenamed, this,
            [this](const QString& from, const QString& to) {
                renameWorkFolder(from, to);
                renameSelectFolder(from, to);
            });
    connect(m_treeViewCtrl, &BLTreeViewCtrl::menuItemChosen, this, &BLMediaInfoCtrl::runTreeCommand);
}

BLMediaInfoCtrl::~BLMediaInfoCtrl()
{
    finalizeCtrl();
}

bool BLMediaInfoCtrl::initializeCtrl()
{
    const auto refresh = [this] {
        updateToolButtons();
        updateToolAllCopyButton();
        updateVolumeSize();
        updateFolderSize();
    };
    if (!workFonderIsVolumeList() && !BLCommon::isFolder(getWorkFolder())) {
        setWorkFolder(QString(), false);
        m_treeViewCtrl->selectTreeIndex(0);
        refresh();
        return true;
    }

    // Read before the list rebuilds: its first selection replaces the stored one.
    const BLPlistCtrl* plist = BLPlistCtrl::sharedCtrl();
    QString remembered =
        m_infoType == kTypeMain ? plist->getSelectFolderPathByMain() : plist->getSelectFolderPathBySub1();
    if (remembered == QLatin1String("."))
        remembered.clear();

    BLCommon::sharedCtrl()->sendNotificationNow(static_cast<const void*>(this),
                                                SC::SCWorkFolderDidChangeNotification,
                                                {{SC::SCKeepSelectKey, false}});
    bool lost = false;
    if (remembered.isEmpty()) {
        m_treeViewCtrl->selectTreeIndex(0);
    } else {
        const int row = m_treeViewCtrl->searchIndexByFolderPath(remembered);
        if (row < 0) {
            setWorkFolder(QString(), false);
            m_treeViewCtrl->selectTreeIndex(0);
            lost = true;
        } else {
            m_treeViewCtrl->selectTreeIndex(row);
        }
    }
    refresh();
    return lost;
}

void BLMediaInfoCtrl::finalizeCtrl()
{
    if (BLHouseKeepingCtrl* houseKeeping = m_houseKeeping.load())
        houseKeeping->setCancel();
}

// ---- BLTreeViewCtrl::MediaInfo ----

QString BLMediaInfoCtrl::getWorkFolder() const
{
    const BLPlistCtrl* plist = BLPlistCtrl::sharedCtrl();
    return m_infoType == kTypeMain ? plist->getWorkFolderPathByMain() : plist->getWorkFolderPathBySub1();
}

QString BLMediaInfoCtrl::getMediaInfoTypeString() const
{
    return m_infoType == kTypeMain ? QStringLiteral("Main") : QStringLiteral("Sub1");
}

QList<DOTakeData> BLMediaInfoCtrl::getTakeDataWithoutNonImport() const
{
    QList<DOTakeData> takes;
    std::copy_if(m_arrTakeData.begin(), m_arrTakeData.end(), std::back_inserter(takes),
                 [](const DOTakeData& take) { return take.getTakeStatus() < 4; });
    return takes;
}

bool BLMediaInfoCtrl::isEnableAllCopyMenuItem() const
{
    const BLMediaInfoCtrl* other = anotherMediaInfoCtrl();
    return !m_selectFolder.isEmpty() && !m_arrTakeData.isEmpty() && other &&
           !other->getSelectFolder().isEmpty();
}

bool BLMediaInfoCtrl::isSupportMenuItemToThumbView(int tag, bool* isEnable, bool* isCheck) const
{
    return isRefresh(tag, isEnable, isCheck) || m_thumbViewCtrl->isSupportMenuItem(tag, isEnable, isCheck);
}

bool BLMediaInfoCtrl::isRefresh(int tag, bool* isEnable, bool* isCheck) const
{
    if (tag != MENU_ITEM_ID_REFRESH)
        return false;
    if (isEnable)
        *isEnable = !m_selectFolder.isEmpty() || !workFonderIsVolumeList();
    if (isCheck)
        *isCheck = false;
    return true;
}

void BLMediaInfoCtrl::refresh()
{
    BLLogCtrl::debug(kProcessId,
                     QStringLiteral("[BLMediaInfoCtrl refresh](%1)").arg(getMediaInfoTypeString()));
    m_treeViewCtrl->updateData(true);
    // Every pane showing the folder reads it again through housekeeping.
    if (!m_selectFolder.isEmpty())
        BLCommon::sharedCtrl()->sendNotificationNow(this, SC::SCSelectFolderDataDidUpdateNotification,
                                                    {{SC::SCDUpdateSelectFolderKey, m_selectFolder}});
}

// ---- folders ----

void BLMediaInfoCtrl::setWorkFolder(const QString& path, bool keepSelect)
{
    const QString pane = getMediaInfoTypeString();
    if (path == getWorkFolder()) {
        BLLogCtrl::debug(kProcessId,
                         QStringLiteral("[BLMediaInfoCtrl setWorkFolder](%1) NO change:%2").arg(pane, path));
        return;
    }
    BLLogCtrl::debug(kProcessId,
                     QStringLiteral("[BLMediaInfoCtrl setWorkFolder](%1) WorkFolder:%2").arg(pane, path));
    BLPlistCtrl* plist = BLPlistCtrl::sharedCtrl();
    if (m_infoType == kTypeMain)
        plist->setWorkFolderPathByMain(path);
    else
        plist->setWorkFolderPathBySub1(path);
    updateToolButtons();
    updateToolAllCopyButton();
    BLCommon::sharedCtrl()->sendNotificationNow(static_cast<const void*>(this),
                                                SC::SCWorkFolderDidChangeNotification,
                                                {{SC::SCKeepSelectKey, keepSelect}});
}

void BLMediaInfoCtrl::setSelectFolder(const QString& path, bool userSelect)
{
    const QString pane = getMediaInfoTypeString();
    if (path == m_selectFolder) {
        BLLogCtrl::debug(
            kProcessId, QStringLiteral("[BLMediaInfoCtrl setSelectFolder](%1) NO change:%2").arg(pane, path));
        return;
    }
    BLLogCtrl::debug(kProcessId,
                     QStringLiteral("[BLMediaInfoCtrl setSelectFolder](%1) SelectFolder:%2").arg(pane, path));
    storeSelectFolder(path);
    updateFolderName();
    const QString& name = m_infoType == kTypeMain ? SC::SCMainSelectFolderDidChangeNotification
                                                  : SC::SCSub1SelectFolderDidChangeNotification;
    BLCommon* common = BLCommon::sharedCtrl();
    if (userSelect)
        common->sendNotification(static_cast<const void*>(this), name);
    else
        common->sendNotificationNotCoalesce(static_cast<const void*>(this), name);
}

void BLMediaInfoCtrl::storeSelectFolder(const QString& path)
{
    m_selectFolder = path;
    BLPlistCtrl* plist = BLPlistCtrl::sharedCtrl();
    if (m_infoType == kTypeMain)
        plist->setSelectFolderPathByMain(path);
    else
        plist->setSelectFolderPathBySub1(path);
}

bool BLMediaInfoCtrl::selectFonderIsVolume() const
{
    return BLCommon::isVolume(m_selectFolder);
}

void BLMediaInfoCtrl::changeWorkFolder()
{
    if (!m_baseView)
        return;
    const QString chosen = m_baseView->chooseFolder(getWorkFolder());
    if (chosen.isEmpty()) {
        BLLogCtrl::debug(kWorkFolderProcessId,
                         QStringLiteral("[BLMediaInfoCtrl changeWorkFolder]    cancel"));
        return;
    }
    BLLogCtrl::debug(kWorkFolderProcessId,
                     QStringLiteral("[BLMediaInfoCtrl changeWorkFolder] workFolder:") + chosen);
    // The same folder chosen again is read again, as a user expects.
    if (QDir::cleanPath(chosen) == QDir::cleanPath(getWorkFolder())) {
        refresh();
        return;
    }
    setWorkFolder(chosen, false);
    m_treeViewCtrl->selectTreeIndex(0);
}

void BLMediaInfoCtrl::moveUpWorkFolder()
{
    const QString work = getWorkFolder();
    if (work.isEmpty())
        return;
    const QString clean = QDir::cleanPath(work);
    const QString parent = QFileInfo(clean).path();
    // A volume's root (or "/") has no folder above it in the list: the volume list.
    const bool top =
        clean == QLatin1String("/") || parent == QLatin1String("/Volumes") || BLCommon::isVolume(clean);
    setWorkFolder(top ? QString() : parent, true);
}

void BLMediaInfoCtrl::moveUpSelectFolder()
{
    const QString previous = getWorkFolder();
    moveUpWorkFolder();
    const int row = m_treeViewCtrl->searchIndexByFolderPath(previous);
    if (row >= 0)
        m_treeViewCtrl->selectTreeIndex(row);
}

void BLMediaInfoCtrl::renameWorkFolder(const QString& from, const QString& to)
{
    const QString work = getWorkFolder();
    if (work.isEmpty())
        return;
    if (samePath(work, from))
        setWorkFolder(to, true);
    else if (work.startsWith(QDir::cleanPath(from) + QLatin1Char('/')))
        setWorkFolder(to + work.mid(QDir::cleanPath(from).size()), true);
}

void BLMediaInfoCtrl::renameSelectFolder(const QString& from, const QString& to)
{
    if (m_selectFolder.isEmpty())
        return;
    // The takes stay the same; only the path they are read from changes.
    if (samePath(m_selectFolder, from))
        storeSelectFolder(to);
    else if (m_selectFolder.startsWith(QDir::cleanPath(from) + QLatin1Char('/')))
        storeSelectFolder(to + m_selectFolder.mid(QDir::cleanPath(from).size()));
    else
        return;
    updateFolderName();
}

void BLMediaInfoCtrl::notFoundSelectFolder()
{
    BLCommon* common = BLCommon::sharedCtrl();
    common->sendNotificationNow(static_cast<const void*>(this), SC::SCMovieStopNotification);
    common->messageBox(QStringLiteral("MSG_632_3199"), QString(), 0, 0);
    notFoundSelectFolderNoMessage();
}

void BLMediaInfoCtrl::notFoundSelectFolderNoMessage()
{
    BLLogCtrl::debug(kProcessId, QStringLiteral("[BLMediaInfoCtrl notFoundSelectFolder](%1) SelectFolder:%2")
                                     .arg(getMediaInfoTypeString(), m_selectFolder));
    setWorkFolder(QString(), false);
}

// ---- takes ----

void BLMediaInfoCtrl::makeTakeData()
{
    m_arrTakeData.clear();
    const QString folder = m_selectFolder;
    if (folder.isEmpty())
        return;
    BLCommon* common = BLCommon::sharedCtrl();
    if (BLCommon::isExceedFolderLimit(folder)) {
        common->messageBox(QStringLiteral("MSG_632_3236"), QString(), 0, 0);
        return;
    }
    BLHouseKeepingCtrl houseKeeping;
    m_houseKeeping = &houseKeeping;
    QList<DOTakeData> takes = runHouseKeeping(houseKeeping, folder);
    m_houseKeeping = nullptr;
    if (BLCommon::isExceedFolderLimitByMaterial(houseKeeping)) {
        common->messageBox(QStringLiteral("MSG_632_3236"), QString(), 0, 0);
        return;
    }
    m_arrTakeData = std::move(takes);
    DOTakeData::debugDOTakeDataLog(m_arrTakeData);
    if (BLCommon::doSalvage(folder))
        common->messageBox(QStringLiteral("MSG_632_3100"), QStringLiteral("MSG_632_3101"), 0, 0);
}

void BLMediaInfoCtrl::setTakeData(const DOTakeData& take)
{
    m_arrTakeData.append(take);
}

void BLMediaInfoCtrl::setTakeData(const DOTakeData& take, int index)
{
    m_arrTakeData.insert(std::clamp(index, 0, int(m_arrTakeData.size())), take);
}

void BLMediaInfoCtrl::replaceTakeData(const DOTakeData& take, int index)
{
    if (index >= 0 && index < m_arrTakeData.size())
        m_arrTakeData[index] = take;
}

int BLMediaInfoCtrl::getTakeDataByUmid(const QString& umid) const
{
    for (int i = 0; i < m_arrTakeData.size(); ++i)
        if (m_arrTakeData[i].getUmid().compare(umid, Qt::CaseInsensitive) == 0)
            return i;
    return -1;
}

int BLMediaInfoCtrl::deleteTakeDataByUmid(const QString& umid)
{
    const int index = getTakeDataByUmid(umid);
    if (index >= 0)
        m_arrTakeData.removeAt(index);
    return index;
}

QList<DOTakeData> BLMediaInfoCtrl::getSelectAllTakeData() const
{
    QList<DOTakeData> takes;
    for (int index : m_thumbViewCtrl->findSelectAllThumbData())
        if (index >= 0 && index < m_arrTakeData.size())
            takes.append(m_arrTakeData[index]);
    return takes;
}

// ---- displays ----

void BLMediaInfoCtrl::updateFolderName()
{
    if (m_baseView)
        m_baseView->setFolderName(m_selectFolder.isEmpty() ? QString()
                                                           : BLCommon::getDisplayName(m_selectFolder));
}

void BLMediaInfoCtrl::updateFolderSize()
{
    if (!m_baseView)
        return;
    if (m_selectFolder.isEmpty()) {
        m_baseView->setFolderSize(QString());
        return;
    }
    // The takes shown, and those selected, with their size.
    qint64 total = 0;
    for (const DOTakeData& take : m_arrTakeData)
        total += take.getTakeSize();
    const int selected = m_thumbViewCtrl->getSelectCount();
    if (selected == 0) {
        m_baseView->setFolderSize(BLLocalizedString(QStringLiteral("LOCALIZED_PANE_TAKES"))
                                      .arg(m_arrTakeData.size())
                                      .arg(BLCommon::sizeText(total)));
        return;
    }
    qint64 selectedSize = 0;
    for (const DOTakeData& take : getSelectAllTakeData())
        selectedSize += take.getTakeSize();
    m_baseView->setFolderSize(BLLocalizedString(QStringLiteral("LOCALIZED_PANE_TAKES_SELECTED"))
                                  .arg(selected)
                                  .arg(m_arrTakeData.size())
                                  .arg(BLCommon::sizeText(selectedSize)));
}

void BLMediaInfoCtrl::updateVolumeSize()
{
    if (!m_baseView)
        return;
    const QString path = workFonderIsVolumeList() ? m_selectFolder : getWorkFolder();
    if (path.isEmpty()) {
        m_baseView->setVolumeSize(QString());
        return;
    }
    const BLDiskCtrl* disk = BLDiskCtrl::sharedCtrl();
    m_baseView->setVolumeSize(
        BLLocalizedString(QStringLiteral("LOCALIZED_PANE_DISK_USE"))
            .arg(BLCommon::sizeText(disk->getUsedSize(path)), BLCommon::sizeText(disk->getDiskSize(path))));
}

void BLMediaInfoCtrl::updateSize(const QString& path)
{
    const QString onVolume = workFonderIsVolumeList() ? m_selectFolder : getWorkFolder();
    if (!onVolume.isEmpty() && BLCommon::compareVolumes(path, onVolume))
        updateVolumeSize();
    if (!m_selectFolder.isEmpty() && samePath(path, m_selectFolder))
        updateFolderSize();
}

void BLMediaInfoCtrl::updateToolButtons()
{
    if (!m_baseView)
        return;
    for (int tag : kTreeToolButtons) {
        bool enable = false;
        m_baseView->setToolButtonEnabled(tag, isSupportMenuItemToTreeView(tag, &enable, nullptr) && enable);
    }
}

void BLMediaInfoCtrl::updateToolAllCopyButton()
{
    if (!m_baseView)
        return;
    bool enable = false;
    m_baseView->setToolButtonEnabled(MENU_ITEM_ID_ALL_COPY,
                                     isSupportMenuItemToTreeView(MENU_ITEM_ID_ALL_COPY, &enable, nullptr) &&
                                         enable);
}

void BLMediaInfoCtrl::setDividerLocked(bool locked)
{
    if (m_baseView)
        m_baseView->setDividerLocked(locked);
}

// ---- commands ----

bool BLMediaInfoCtrl::checkSelectFolderExist()
{
    BLCommon::sharedCtrl()->sendNotificationNow(static_cast<const void*>(this), SC::SCMovieStopNotification);
    if (m_selectFolder.isEmpty())
        return false;
    if (BLCommon::isFolder(m_selectFolder))
        return true;
    notFoundSelectFolder();
    return false;
}

void BLMediaInfoCtrl::selectCutCopyMenuItem(int mode)
{
    if (!checkSelectFolderExist())
        return;
    const QList<DOTakeData> takes = getSelectAllTakeData();
    if (takes.isEmpty())
        return;
    BLClipboardCtrl::sharedCtrl()->setClipData(takes, m_selectFolder, mode);
}

void BLMediaInfoCtrl::selectPasteMenuItem()
{
    BLClipboardCtrl* clipboard = BLClipboardCtrl::sharedCtrl();
    if (clipboard->getMode() == BLClipboardCtrl::kModeEmpty)
        return;
    if (!checkSelectFolderExist()) {
        clipboard->setClipData({}, QString(), BLClipboardCtrl::kModeEmpty);
        return;
    }
    DOClipCtrl clipCtrl = makeClipCtrl(clipboard->getPath(), m_selectFolder);
    clipCtrl.setFromTakes(copyTakes(clipboard->getTakeDatas()));
    clipCtrl.setToTakes(m_arrTakeData);
    if (hasNonImportTake(clipCtrl.getFromTakes()))
        return;
    if (clipboard->getMode() == BLClipboardCtrl::kModeCopy) {
        BLMediaInfoCtrl* other = anotherMediaInfoCtrl();
        const bool otherIsSource = other && samePath(other->getSelectFolder(), clipboard->getPath());
        openClipCopy(clipCtrl, BLClipCopyCtrl::kModeSelection, this, otherIsSource ? other : nullptr);
    } else {
        BLHouseKeepingCtrl houseKeeping;
        m_houseKeeping = &houseKeeping;
        clipCtrl.setBeforeTakes(runHouseKeeping(houseKeeping, clipboard->getPath()));
        m_houseKeeping = nullptr;
        BLMediaInfoCtrl* other = anotherMediaInfoCtrl();
        const bool otherIsSource = other && samePath(other->getSelectFolder(), clipboard->getPath());
        openClipMove(clipCtrl, this, otherIsSource ? other : nullptr);
    }
    clipboard->setClipData({}, QString(), BLClipboardCtrl::kModeEmpty);
}

void BLMediaInfoCtrl::selectAllCopyMenuItem()
{
    BLMediaInfoCtrl* other = anotherMediaInfoCtrl();
    if (!other || !checkSelectFolderExist())
        return;
    if (!BLCommon::isFolder(other->getSelectFolder())) {
        other->notFoundSelectFolder();
        return;
    }
    BLCommon::sharedCtrl()->sendNotificationNow(static_cast<const void*>(this), SC::SCMovieStopNotification);
    DOClipCtrl clipCtrl = makeClipCtrl(m_selectFolder, other->getSelectFolder());
    clipCtrl.setFromTakes(copyTakes(getTakeDataWithoutNonImport()));
    clipCtrl.setToTakes(other->getTakeData());
    openClipCopy(clipCtrl, BLClipCopyCtrl::kModeAll, other, this);
}

void BLMediaInfoCtrl::dropClipData(bool isMove)
{
    BLMediaInfoCtrl* other = anotherMediaInfoCtrl();
    if (!other || !checkSelectFolderExist())
        return;
    if (!BLCommon::isFolder(other->getSelectFolder())) {
        other->notFoundSelectFolder();
        return;
    }
    DOClipCtrl clipCtrl = makeClipCtrl(other->getSelectFolder(), m_selectFolder);
    clipCtrl.setFromTakes(copyTakes(other->getSelectAllTakeData()));
    clipCtrl.setToTakes(m_arrTakeData);
    clipCtrl.setBeforeTakes(other->getTakeData());
    if (clipCtrl.getFromTakes().isEmpty() || hasNonImportTake(clipCtrl.getFromTakes()))
        return;
    if (isMove)
        openClipMove(clipCtrl, this, other);
    else
        openClipCopy(clipCtrl, BLClipCopyCtrl::kModeSelection, this, other);
}

void BLMediaInfoCtrl::showNewFolder()
{
    if (!m_baseView || !checkSelectFolderExist())
        return;
    BLFolderNameCtrl ctrl(&m_baseView->folderNameView());
    ctrl.showNewFolder(m_selectFolder);
    if (ctrl.isFolderNotFound())
        notFoundSelectFolder();
}

void BLMediaInfoCtrl::showChangeFolderName()
{
    if (!m_baseView || !checkSelectFolderExist())
        return;
    BLFolderNameCtrl ctrl(&m_baseView->folderNameView());
    ctrl.showRename(m_selectFolder, getWorkFolder());
    if (ctrl.isFolderNotFound())
        notFoundSelectFolder();
}

void BLMediaInfoCtrl::showDeletFolder()
{
    if (!m_baseView || !checkSelectFolderExist())
        return;
    BLDeleteFolderCtrl ctrl(&m_baseView->deleteFolderView());
    ctrl.deleteProcessOfFolder(m_selectFolder);
    if (ctrl.isFolderNotFound())
        notFoundSelectFolder();
}

void BLMediaInfoCtrl::showFolderDivision()
{
    IFolderDivisionView* view = m_baseView ? m_baseView->folderDivisionView() : nullptr;
    if (!view || !checkSelectFolderExist())
        return;
    BLFolderDivisionCtrl ctrl(view, m_arrTakeData, m_selectFolder, this);
    ctrl.showModal();
}

void BLMediaInfoCtrl::showOffload()
{
    IOffloadView* view = m_baseView ? m_baseView->offloadView() : nullptr;
    const QString source = getWorkFolder();
    if (!view || !BLCommon::isFolder(source))
        return;
    BLOffloadCtrl ctrl(view, source);
    ctrl.showModal();
}

void BLMediaInfoCtrl::showFolderCombine()
{
    IFolderCombineView* view = m_baseView ? m_baseView->folderCombineView() : nullptr;
    if (!view || !checkSelectFolderExist())
        return;
    DOClipCtrl clipCtrl = makeClipCtrl(m_selectFolder, m_selectFolder);
    clipCtrl.setToTakes(m_arrTakeData);
    BLFolderCombineCtrl ctrl(view, clipCtrl);
    ctrl.showModal();
}

void BLMediaInfoCtrl::showChangeMediaName()
{
    IMediaNameChangeView* view = m_baseView ? m_baseView->mediaNameChangeView() : nullptr;
    if (!view || !checkSelectFolderExist())
        return;
    BLMediaNameChangeCtrl ctrl(view, this);
    ctrl.showModal(m_selectFolder);
}

void BLMediaInfoCtrl::deleteClipData()
{
    if (!checkSelectFolderExist())
        return;
    const QList<DOTakeData> chosen = getSelectAllTakeData();
    if (chosen.isEmpty())
        return;
    DOClipCtrl clipCtrl;
    clipCtrl.setSourceWorkFolder(m_selectFolder);
    clipCtrl.setFromTakes(chosen);
    clipCtrl.setBeforeTakes(m_arrTakeData);
    clipCtrl.setToTakes(m_arrTakeData);
    BLClipDeleteCtrl(clipCtrl, this).clipDelete();
}

void BLMediaInfoCtrl::showClipSearch()
{
    BLClipSearchCtrl* search = m_mainWindowCtrl ? m_mainWindowCtrl->getClipSearchCtrl() : nullptr;
    if (!search || !checkSelectFolderExist())
        return;
    search->setPath(m_selectFolder);
    QString umid, path;
    if (search->showModal(&umid, &path))
        showFolderWithTake(path, umid);
}

void BLMediaInfoCtrl::showFolderWithTake(const QString& folder, const QString& umid)
{
    int row = m_treeViewCtrl->searchIndexByFolderPath(folder);
    if (row < 0) {
        // A folder deeper down: its parent becomes the work folder.
        setWorkFolder(QFileInfo(QDir::cleanPath(folder)).path(), false);
        row = m_treeViewCtrl->searchIndexByFolderPath(folder);
    }
    if (row < 0)
        return;
    m_treeViewCtrl->selectTreeIndex(row);
    // Delivered after the folder change it follows, so after the reload.
    BLCommon::sharedCtrl()->sendNotificationNotCoalesce(
        static_cast<const void*>(this), SC::SCThumbViewSelectItemNotification,
        {{SC::SCSelectFolderKey, folder}, {SC::SCItemUmidKey, umid}});
}

void BLMediaInfoCtrl::showClipProperty(int index)
{
    IClipPropertyView* view = m_baseView ? m_baseView->clipPropertyView() : nullptr;
    if (!view || index < 0 || index >= m_arrTakeData.size() || !checkSelectFolderExist())
        return;
    BLClipPropertyCtrl ctrl(view, m_arrTakeData.at(index), index, m_selectFolder, this);
    ctrl.setPicture(m_thumbViewCtrl->getImageOfTake(index));
    ctrl.showModal();
}

void BLMediaInfoCtrl::showMPEG2TSConvert()
{
    IMPEG2TSConvertView* view = m_baseView ? m_baseView->mpeg2tsConvertView() : nullptr;
    if (!view || !checkSelectFolderExist())
        return;
    DOMPEG2TSConvert own;
    DOMPEG2TSConvert& mpeg = m_mainWindowCtrl ? m_mainWindowCtrl->getDOMPEG2TSConvert() : own;
    BLMPEG2TSConvertCtrl(mpeg, view).showModal(m_selectFolder, getSelectAllTakeData());
}

void BLMediaInfoCtrl::showMP4Import(const QStringList& files)
{
    if (!m_baseView || !m_baseView->mp4ImportView() || !checkSelectFolderExist())
        return;
    BLMP4ImportCtrl ctrl(m_baseView->mp4ImportView(), DOMP4Import(QDir::cleanPath(m_selectFolder)), this);
    ctrl.showModal(getSelectAllTakeData(), files);
}

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
