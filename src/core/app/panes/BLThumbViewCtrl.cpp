#include "core/app/panes/BLThumbViewCtrl.h"

#include "core/services/BLPlistCtrl.h"

#include "core/app/panes/BLMediaInfoCtrl.h"
#include "core/card/BLDiskCtrl.h"
#include "core/card/BLTreeViewCtrl.h"
#include "core/card/DOTakeData.h"
#include "core/formats/metadata/BLNonMetaAcss.h"
#include "core/operations/BLClipboardCtrl.h"
#include "core/services/BLCommon.h"
#include "core/services/BLLogCtrl.h"
#include "core/services/SCNotificationCenter.h"
#include "core/services/SCNotificationNames.h"

#include <QDir>
#include <QFileInfo>
#include <QItemSelectionModel>
#include <QMimeData>
#include <QTimer>
#include <QUrl>

#include <algorithm>
#include <exception>

namespace {
constexpr int kSortProcessId = 636;
constexpr int kFirstMenuTag = 44001;
constexpr int kLastMenuTag = 44216;

// The folder list's commands, answered by the list even when the grid has the focus.
constexpr int kTreeTags[] = {
    MENU_ITEM_ID_CHANGE_FOLDER_NAME, MENU_ITEM_ID_NEW_FOLDER,      MENU_ITEM_ID_OPEN_IN_FINDER,
    MENU_ITEM_ID_ALL_COPY,           MENU_ITEM_ID_FOLDER_DIVISION, MENU_ITEM_ID_FOLDER_COMBINE,
    MENU_ITEM_ID_CHANGE_WORK_FOLDER, MENU_ITEM_ID_MOVE_UP_FOLDER,  MENU_ITEM_ID_CLIP_SEARCH,
    MENU_ITEM_ID_MEDIA_NAME_CHANGE,  MENU_ITEM_ID_OFFLOAD,         MENU_ITEM_ID_VERIFY_FOLDER};

const char* const kSortNames[] = {"THUMB_SORT_TITLE", "THUMB_SORT_SIZE", "THUMB_SORT_DURATION",
                                  "THUMB_SORT_DATE"};

const BLThumbViewCtrl::MenuItem* findMenuItem(int tag)
{
    const QList<BLThumbViewCtrl::MenuItem>& items = BLThumbViewCtrl::menuItems();
    const auto it = std::find_if(items.begin(), items.end(),
                                 [tag](const BLThumbViewCtrl::MenuItem& item) { return item.tag == tag; });
    return it == items.end() ? nullptr : &*it;
}

bool sameFolder(const QString& folder, const QString& folder2)
{
    return !folder.isEmpty() &&
           QDir::cleanPath(folder).compare(QDir::cleanPath(folder2), Qt::CaseInsensitive) == 0;
}

} // namespace

const QString BLThumbViewCtrl::kTakesMimeType = QStringLiteral("application/x-clipwright-takes");

const QList<BLThumbViewCtrl::MenuItem>& BLThumbViewCtrl::menuItems()
{
    static const QList<MenuItem> kItems = {
        {MENU_ITEM_ID_THUMB_PLAY, "MENU_ITEM_ID_THUMB_PLAY", "Play"},
        {MENU_ITEM_ID_SHOW_INFO, "MENU_ITEM_ID_SHOW_INFO", "Properties..."},
        {0, nullptr, nullptr},
        {MENU_ITEM_ID_CUT, "MENU_ITEM_ID_CUT", "Cut"},
        {MENU_ITEM_ID_COPY, "MENU_ITEM_ID_COPY", "Copy"},
        {MENU_ITEM_ID_PASTE, "MENU_ITEM_ID_PASTE", "Paste"},
        {MENU_ITEM_ID_DELETE, "MENU_ITEM_ID_DELETE", "Delete..."},
        {MENU_ITEM_ID_SELECT_ALL, "MENU_ITEM_ID_SELECT_ALL", "Select All"},
        {0, nullptr, nullptr},
        {MENU_ITEM_ID_IMPORT, "MENU_ITEM_ID_IMPORT", "Import MP4 Files..."},
        {MENU_ITEM_ID_EXPORT, "MENU_ITEM_ID_EXPORT", "Export as MPEG-2 TS..."},
        {0, nullptr, nullptr},
        {MENU_ITEM_ID_SORT_TITLE, "MENU_ITEM_ID_SORT_TITLE", "Sort by Title"},
        {MENU_ITEM_ID_SORT_SIZE, "MENU_ITEM_ID_SORT_SIZE", "Sort by Size"},
        {MENU_ITEM_ID_SORT_DURATION, "MENU_ITEM_ID_SORT_DURATION", "Sort by Duration"},
        {MENU_ITEM_ID_SORT_DATE, "MENU_ITEM_ID_SORT_DATE", "Sort by Date"},
    };
    return kItems;
}

BLThumbViewCtrl::BLThumbViewCtrl(BLMediaInfoCtrl& mediaInfoCtrl, QObject* parent)
    : QAbstractListModel(parent), m_mediaInfoCtrl(mediaInfoCtrl),
      m_selectionModel(new QItemSelectionModel(this, this)),
      m_sortMode(BLPlistCtrl::sharedCtrl()->getSortMode(mediaInfoCtrl.getMediaInfoType()))
{
    SCNotificationCenter* center = SCNotificationCenter::defaultCenter();
    const auto observe = [this, center](const QString& name,
                                        void (BLThumbViewCtrl::*handler)(const SCNotification&)) {
        center->addObserver(this, name, [this, handler](const SCNotification& notification) {
            (this->*handler)(notification);
        });
    };
    connect(m_selectionModel, &QItemSelectionModel::selectionChanged, this,
            [this] { m_mediaInfoCtrl.updateFolderSize(); });
    observe(SC::SCMainSelectFolderDidChangeNotification, &BLThumbViewCtrl::selectFolderDidChangeNotification);
    observe(SC::SCSub1SelectFolderDidChangeNotification, &BLThumbViewCtrl::selectFolderDidChangeNotification);
    observe(SC::SCSelectFolderDataDidUpdateNotification,
            &BLThumbViewCtrl::selectFolderDataDidUpdateNotification);
    observe(SC::SCTakeDidAddNotification, &BLThumbViewCtrl::takeDidAddNotification);
    observe(SC::SCTakeDidUpdateNotification, &BLThumbViewCtrl::takeDidUpdateNotification);
    observe(SC::SCTakeDidDeleteNotification, &BLThumbViewCtrl::takeDidDeleteNotification);
    observe(SC::SCCacheImageDidGetNotification, &BLThumbViewCtrl::cacheImageDidGetNotification);
    observe(SC::SCMovieThumbDidChangeNotification, &BLThumbViewCtrl::movieThumbDidChangeNotification);
    observe(SC::SCThumbViewSelectItemNotification, &BLThumbViewCtrl::thumbViewSelectItemNotification);
    observe(SC::SCClipPropertyDidChangeNotification, &BLThumbViewCtrl::clipPropertyDidChangeNotification);
    center->addObserver(this, SC::SCDateFormatDidChangeNotification,
                        [this](const SCNotification&) { dateFormatDidChangeNotification(); });
}

BLThumbViewCtrl::~BLThumbViewCtrl()
{
    SCNotificationCenter::defaultCenter()->removeObserver(this);
}

// ---- menus ----

bool BLThumbViewCtrl::isSupportMenuItem(int tag, bool* isEnable, bool* isCheck) const
{
    if (std::find(std::begin(kTreeTags), std::end(kTreeTags), tag) != std::end(kTreeTags))
        return m_mediaInfoCtrl.isSupportMenuItemToTreeView(tag, isEnable, isCheck);
    if (tag < kFirstMenuTag || tag > kLastMenuTag || !findMenuItem(tag))
        return false;
    if (isEnable)
        *isEnable = isEnableMenuItem(tag);
    if (isCheck)
        *isCheck = (tag >= MENU_ITEM_ID_SORT_TITLE && tag <= MENU_ITEM_ID_SORT_DATE) &&
                   tag - MENU_ITEM_ID_SORT_TITLE == m_sortMode;
    return true;
}

bool BLThumbViewCtrl::isEnableMenuItem(int tag) const
{
    const QList<DOTakeData> selected = m_mediaInfoCtrl.getSelectAllTakeData();
    const auto anyOf = [&selected](auto predicate) {
        return std::any_of(selected.begin(), selected.end(), predicate);
    };
    const auto unusable = [](const DOTakeData& take) { return take.getTakeStatus() >= 4; };
    const auto onlyOneOfStatusUpTo = [&selected](int status) {
        return selected.size() == 1 && selected.front().getTakeStatus() >= 0 &&
               selected.front().getTakeStatus() <= status;
    };
    switch (tag) {
    case MENU_ITEM_ID_IMPORT:
        // With a selection, only MP4 files not yet imported can be imported.
        if (selected.isEmpty())
            return !m_mediaInfoCtrl.getSelectFolder().isEmpty();
        return std::all_of(selected.begin(), selected.end(),
                           [](const DOTakeData& take) { return take.getTakeStatus() == 4; });
    case MENU_ITEM_ID_EXPORT:
        return !selected.isEmpty() && !anyOf(unusable) &&
               !anyOf([](const DOTakeData& take) { return take.IsHQMode(); });
    case MENU_ITEM_ID_COPY:
    case MENU_ITEM_ID_CUT:
        return !selected.isEmpty() && !anyOf(unusable);
    case MENU_ITEM_ID_PASTE:
        return BLClipboardCtrl::sharedCtrl()->checkPaste(m_mediaInfoCtrl.getSelectFolder());
    case MENU_ITEM_ID_DELETE:
        return !selected.isEmpty();
    case MENU_ITEM_ID_SHOW_INFO:
        return onlyOneOfStatusUpTo(3);
    case MENU_ITEM_ID_THUMB_PLAY:
        return onlyOneOfStatusUpTo(4);
    case MENU_ITEM_ID_SORT_TITLE:
    case MENU_ITEM_ID_SORT_SIZE:
    case MENU_ITEM_ID_SORT_DURATION:
    case MENU_ITEM_ID_SORT_DATE:
    case MENU_ITEM_ID_SELECT_ALL:
        return true;
    default:
        return false;
    }
}

void BLThumbViewCtrl::selectMenuItem(int tag)
{
    bool enable = false;
    if (!isSupportMenuItem(tag, &enable, nullptr) || !enable)
        return;
    const MenuItem* item = findMenuItem(tag);
    if (!item) {
        m_mediaInfoCtrl.selectMenuItemToTreeView(tag);
        return;
    }
    BLLogCtrl::debug(kProcessId,
                     QStringLiteral("==================== [BLThumbViewCtrl selectMenuItem](%1) menuItemID:%2 "
                                    "====================")
                         .arg(m_mediaInfoCtrl.getMediaInfoTypeString(), QLatin1String(item->name)));
    switch (tag) {
    case MENU_ITEM_ID_COPY:
        m_mediaInfoCtrl.selectCutCopyMenuItem(BLClipboardCtrl::kModeCopy);
        break;
    case MENU_ITEM_ID_CUT:
        m_mediaInfoCtrl.selectCutCopyMenuItem(BLClipboardCtrl::kModeCut);
        break;
    case MENU_ITEM_ID_PASTE:
        m_mediaInfoCtrl.selectPasteMenuItem();
        break;
    case MENU_ITEM_ID_SORT_TITLE:
    case MENU_ITEM_ID_SORT_SIZE:
    case MENU_ITEM_ID_SORT_DURATION:
    case MENU_ITEM_ID_SORT_DATE:
        sortItem(tag - MENU_ITEM_ID_SORT_TITLE, false);
        break;
    case MENU_ITEM_ID_SELECT_ALL:
        selectAllThumbData();
        break;
    case MENU_ITEM_ID_THUMB_PLAY:
        if (checkSelectFolder())
            sendPlayMovieNotification(m_mediaInfoCtrl.getTakeData(findSelectAllThumbData().value(0, -1)));
        break;
    case MENU_ITEM_ID_DELETE:
        m_mediaInfoCtrl.deleteClipData();
        break;
    case MENU_ITEM_ID_SHOW_INFO:
        m_mediaInfoCtrl.showClipProperty(findSelectAllThumbData().value(0, -1));
        break;
    case MENU_ITEM_ID_EXPORT:
        m_mediaInfoCtrl.showMPEG2TSConvert();
        break;
    case MENU_ITEM_ID_IMPORT:
        m_mediaInfoCtrl.showMP4Import();
        break;
    default:
        break;
    }
}

// ---- selection ----

void BLThumbViewCtrl::selectAllThumbData()
{
    if (m_thumbArray.isEmpty())
        return;
    m_selectionModel->select(QItemSelection(index(0), index(int(m_thumbArray.size()) - 1)),
                             QItemSelectionModel::ClearAndSelect);
}

BLThumbViewCtrl::EmptyReason BLThumbViewCtrl::emptyReason() const
{
    if (!m_thumbArray.isEmpty() || m_loading)
        return EmptyReason::NotEmpty;
    const QString folder = m_mediaInfoCtrl.getSelectFolder();
    if (folder.isEmpty())
        return EmptyReason::NoFolder;
    if (BLCommon::isBPAVFolder(folder))
        return EmptyReason::NoTakes;
    // Row 0 is the work folder itself; more rows are folders to look in.
    return m_mediaInfoCtrl.treeViewCtrl()->rowCount() > 1 ? EmptyReason::NoCard
                                                          : EmptyReason::NoCardNoFolders;
}

int BLThumbViewCtrl::getSelectCount() const
{
    return int(m_selectionModel->selectedIndexes().size());
}

int BLThumbViewCtrl::findFirstSelectIndex() const
{
    for (int row = 0; row < m_thumbArray.size(); ++row)
        if (m_selectionModel->isRowSelected(row))
            return row;
    return -1;
}

QList<int> BLThumbViewCtrl::findSelectAllThumbData() const
{
    QList<int> indexes;
    for (int row = 0; row < m_thumbArray.size(); ++row)
        if (m_selectionModel->isRowSelected(row))
            indexes.append(m_thumbArray[row].getIndexTakeData());
    return indexes;
}

// ---- loading and sorting ----

void BLThumbViewCtrl::sortItem(int mode, bool needRefresh)
{
    const QString folder = m_mediaInfoCtrl.getSelectFolder();
    if (!folder.isEmpty() && !BLCommon::isFolder(folder)) {
        m_mediaInfoCtrl.notFoundSelectFolder();
        return;
    }
    if (mode == m_sortMode && !needRefresh)
        return;
    if (mode != m_sortMode)
        BLPlistCtrl::sharedCtrl()->setSortMode(m_mediaInfoCtrl.getMediaInfoType(), mode);
    m_sortMode = mode;
    BLLogCtrl::debug(kSortProcessId, QStringLiteral("[BLThumbViewCtrl sortItem](%1) sort mode:%2")
                                         .arg(m_mediaInfoCtrl.getMediaInfoTypeString(),
                                              QLatin1String(kSortNames[mode >= 1 && mode <= 3 ? mode : 0])));
    sortRecords();
    emit scrollToTop();
}

void BLThumbViewCtrl::sortRecords()
{
    int (DOThumbData::*compare)(const DOThumbData&) const = &DOThumbData::compareByTitle;
    switch (m_sortMode) {
    case kSortSize:
        compare = &DOThumbData::compareBySize;
        break;
    case kSortDuration:
        compare = &DOThumbData::compareByDuration;
        break;
    case kSortDate:
        compare = &DOThumbData::compareByDate;
        break;
    default:
        break;
    }
    emit layoutAboutToBeChanged({}, QAbstractItemModel::VerticalSortHint);
    // The selection and any other kept index follow their items.
    const QModelIndexList before = persistentIndexList();
    QList<int> takeIndexes;
    for (const QModelIndex& index : before)
        takeIndexes.append(m_thumbArray[index.row()].getIndexTakeData());
    std::stable_sort(m_thumbArray.begin(), m_thumbArray.end(),
                     [compare](const DOThumbData& a, const DOThumbData& b) { return (a.*compare)(b) < 0; });
    QModelIndexList after;
    for (int takeIndex : takeIndexes)
        after.append(index(rowOfTakeIndex(takeIndex)));
    changePersistentIndexList(before, after);
    emit layoutChanged({}, QAbstractItemModel::VerticalSortHint);
}

void BLThumbViewCtrl::changeFolder()
{
    // A reload asked for while housekeeping runs (the event loop turns) follows it.
    if (m_loading) {
        m_reloadPending = true;
        return;
    }
    m_loading = true;
    do {
        m_reloadPending = false;
        loadFolder();
    } while (m_reloadPending);
    m_loading = false;
}

void BLThumbViewCtrl::loadFolder()
{
    const QString pane = m_mediaInfoCtrl.getMediaInfoTypeString();
    const QString folder = m_mediaInfoCtrl.getSelectFolder();
    BLLogCtrl::debug(kProcessId, QStringLiteral("[BLThumbViewCtrl changeFolder](%1) Start").arg(pane));
    BLCommon* common = BLCommon::sharedCtrl();
    if (BLCommon::isBPAVFolder(folder))
        common->sendNotificationNow(this, SC::SCShowHouseKeepingWindowNotification);
    try {
        beginResetModel();
        m_thumbArray.clear();
        endResetModel();
        sendCacheImageCancelNotification();
        m_mediaInfoCtrl.makeTakeData();
        m_mediaInfoCtrl.updateVolumeSize();
        m_mediaInfoCtrl.updateFolderSize();
        beginResetModel();
        const QList<DOTakeData>& takes = m_mediaInfoCtrl.getTakeData();
        m_thumbArray.reserve(takes.size());
        for (int i = 0; i < takes.size(); ++i)
            addThumbDataObject(takes[i], i);
        endResetModel();
        sortItem(m_sortMode, true);
    } catch (const std::exception&) {
        BLLogCtrl::debug(kProcessId,
                         QStringLiteral("[BLThumbViewCtrl changeFolder](%1) exception error!").arg(pane));
    }
    common->sendNotificationNow(this, SC::SCCloseHouseKeepingWindowNotification);
    BLLogCtrl::debug(kProcessId, QStringLiteral("[BLThumbViewCtrl changeFolder](%1) End").arg(pane));
}

void BLThumbViewCtrl::addThumbDataObject(const DOTakeData& take, int indexTakeData)
{
    m_thumbArray.append(DOThumbData(take, indexTakeData));
}

// ---- playback and pictures ----

void BLThumbViewCtrl::sendPlayMovieNotification(const DOTakeData& take)
{
    BLCommon* common = BLCommon::sharedCtrl();
    common->sendNotificationNow(this, SC::SCMovieStopNotification);
    const QString folder = m_mediaInfoCtrl.getSelectFolder();
    const QString bpav = BLCommon::getPathOfBPAV(folder);
    // The essence of the take, or of each of its clips; one without a
    // reference is looked for where the camera puts it ("CLPR/X/X.MP4").
    QStringList essence;
    const auto add = [&](const QString& mp4, const QString& folder) {
        essence << (mp4.isEmpty() && !folder.isEmpty()
                        ? folder + QLatin1Char('/') + folder.section(QLatin1Char('/'), -1) +
                              QStringLiteral(".MP4")
                        : mp4);
    };
    if (!take.getMP4Uri().isEmpty() || take.getClipData().isEmpty())
        add(take.getMP4Uri(), BLCommon::getFolderName(take));
    for (const DOClipData& clip : take.getClipData())
        add(clip.getMP4Uri(), BLCommon::getFolderName(clip));
    const auto missing = std::find_if(essence.begin(), essence.end(), [&](const QString& mp4) {
        return mp4.isEmpty() || !BLCommon::isFiles(BLCommon::makeFilePath(bpav, {mp4}));
    });
    if (missing != essence.end()) {
        const QString file = missing->startsWith(QLatin1String("./")) ? missing->mid(2) : *missing;
        common->messageBox(QStringLiteral("MSG_633_3191"), QString(), 0, 0, {take.getShownTakeID(), file});
        return;
    }
    common->sendNotification(
        this, SC::SCMoviePlayNotification,
        {{SC::SCPlaySelectFolderKey, QString(folder)}, {SC::SCPlayTakeDataKey, QVariant::fromValue(take)}});
}

void BLThumbViewCtrl::sendCacheImageRequestNotification(int row)
{
    if (row < 0 || row >= m_thumbArray.size())
        return;
    const DOTakeData take = m_mediaInfoCtrl.getTakeData(m_thumbArray[row].getIndexTakeData());
    BLCommon::sharedCtrl()->sendNotificationNotCoalesce(
        this, SC::SCCacheImageRequestNotification,
        {{SC::SCCacheRSelectFolderKey, m_mediaInfoCtrl.getSelectFolder()},
         {SC::SCCacheRTakeDataKey, QVariant::fromValue(take)},
         {SC::SCCacheRMediaInfoKey, m_mediaInfoCtrl.getMediaInfoType()}});
}

void BLThumbViewCtrl::sendCacheImageCancelNotification()
{
    BLCommon::sharedCtrl()->sendNotificationNow(
        this, SC::SCCacheImageCancelNotification,
        {{SC::SCCacheCMediaInfoKey, m_mediaInfoCtrl.getMediaInfoType()}});
}

void BLThumbViewCtrl::requestImage(int row)
{
    if (row < 0 || row >= m_thumbArray.size() || m_thumbArray[row].isImageRequested())
        return;
    m_thumbArray[row].setImageRequested(true);
    sendCacheImageRequestNotification(row);
}

// ---- mouse and keys ----

void BLThumbViewCtrl::doubleClickThumbItemCtrl(int row)
{
    if (getSelectCount() == 1 && findFirstSelectIndex() == row && checkSelectFolder())
        sendPlayMovieNotification(m_mediaInfoCtrl.getTakeData(m_thumbArray[row].getIndexTakeData()));
}

void BLThumbViewCtrl::enterKeyDown()
{
    const int row = findFirstSelectIndex();
    if (row >= 0)
        doubleClickThumbItemCtrl(row);
}

// ---- item model ----

int BLThumbViewCtrl::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(m_thumbArray.size());
}

QVariant BLThumbViewCtrl::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= m_thumbArray.size())
        return {};
    const DOThumbData& thumb = m_thumbArray[index.row()];
    switch (role) {
    case Qt::DisplayRole:
    case TitleRole:
        return thumb.getTitle();
    case Qt::ToolTipRole:
        return m_mediaInfoCtrl.getTakeData(thumb.getIndexTakeData()).getToolTip();
    case TakeIdRole:
        return thumb.getTakeID();
    case DurationRole:
        return thumb.getDuration();
    case DateRole:
        return thumb.getDateText();
    case ImageRole:
        return thumb.getImage();
    case TakeStatusRole:
        return thumb.getTakeStatus();
    default:
        return {};
    }
}

Qt::ItemFlags BLThumbViewCtrl::flags(const QModelIndex& index) const
{
    if (!index.isValid())
        return Qt::ItemIsDropEnabled;
    return Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsDragEnabled | Qt::ItemIsDropEnabled;
}

QStringList BLThumbViewCtrl::mimeTypes() const
{
    return {kTakesMimeType, QStringLiteral("text/uri-list")};
}

QStringList BLThumbViewCtrl::droppedFiles(const QMimeData* data) const
{
    if (!data || data->hasFormat(kTakesMimeType) || !data->hasUrls() ||
        m_mediaInfoCtrl.getSelectFolder().isEmpty())
        return {};
    QStringList files;
    for (const QUrl& url : data->urls()) {
        if (!url.isLocalFile() || !QFileInfo(url.toLocalFile()).isFile())
            return {};
        files << url.toLocalFile();
    }
    return files;
}

QMimeData* BLThumbViewCtrl::mimeData(const QModelIndexList& indexes) const
{
    QStringList lines{QString::number(m_mediaInfoCtrl.getMediaInfoType())};
    for (const QModelIndex& index : indexes)
        if (index.isValid() && index.row() < m_thumbArray.size())
            lines << m_thumbArray[index.row()].getUmid();
    auto* mime = new QMimeData;
    mime->setData(kTakesMimeType, lines.join(QLatin1Char('\n')).toUtf8());
    return mime;
}

bool BLThumbViewCtrl::canDropMimeData(const QMimeData* data, Qt::DropAction action, int, int,
                                      const QModelIndex&) const
{
    if (!droppedFiles(data).isEmpty())
        return true;
    if (!data || !data->hasFormat(kTakesMimeType) || (action != Qt::CopyAction && action != Qt::MoveAction))
        return false;
    // Only takes from the other pane; a drop on the pane they came from does nothing.
    const QByteArray payload = data->data(kTakesMimeType);
    bool ok = false;
    const int fromType = QString::fromUtf8(payload.left(payload.indexOf('\n'))).toInt(&ok);
    return ok && fromType != m_mediaInfoCtrl.getMediaInfoType();
}

bool BLThumbViewCtrl::dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                                   const QModelIndex& parent)
{
    if (!canDropMimeData(data, action, row, column, parent))
        return false;
    if (const QStringList files = droppedFiles(data); !files.isEmpty()) {
        // The dialog opens once the drop has returned to the file manager.
        QTimer::singleShot(0, this, [this, files] { m_mediaInfoCtrl.showMP4Import(files); });
        return true;
    }
    m_mediaInfoCtrl.dropClipData(action == Qt::MoveAction);
    return true;
}

Qt::DropActions BLThumbViewCtrl::supportedDragActions() const
{
    return Qt::CopyAction | Qt::MoveAction;
}

Qt::DropActions BLThumbViewCtrl::supportedDropActions() const
{
    return Qt::CopyAction | Qt::MoveAction;
}

// ---- helpers ----

int BLThumbViewCtrl::rowOfUmid(const QString& umid) const
{
    for (int row = 0; row < m_thumbArray.size(); ++row)
        if (m_thumbArray[row].getUmid().compare(umid, Qt::CaseInsensitive) == 0)
            return row;
    return -1;
}

QImage BLThumbViewCtrl::getImageOfTake(int indexTakeData) const
{
    const int row = rowOfTakeIndex(indexTakeData);
    return row < 0 ? QImage() : m_thumbArray[row].getImage();
}

int BLThumbViewCtrl::rowOfTakeIndex(int indexTakeData) const
{
    for (int row = 0; row < m_thumbArray.size(); ++row)
        if (m_thumbArray[row].getIndexTakeData() == indexTakeData)
            return row;
    return -1;
}

bool BLThumbViewCtrl::isSelectFolder(const QString& folder) const
{
    return sameFolder(folder, m_mediaInfoCtrl.getSelectFolder());
}

bool BLThumbViewCtrl::checkSelectFolder() const
{
    if (BLCommon::isFolder(m_mediaInfoCtrl.getSelectFolder()))
        return true;
    m_mediaInfoCtrl.notFoundSelectFolder();
    return false;
}

void BLThumbViewCtrl::emitRowChanged(int row)
{
    if (row >= 0 && row < m_thumbArray.size())
        emit dataChanged(index(row), index(row));
}

void BLThumbViewCtrl::refreshAfterInPlaceChange(const QString& folder, bool changed)
{
    m_mediaInfoCtrl.updateSize(folder);
    if (changed)
        sortRecords();
    m_mediaInfoCtrl.updateToolButtons();
    m_mediaInfoCtrl.updateToolAllCopyButton();
}
