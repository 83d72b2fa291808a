#include "core/operations/BLFolderDivisionCtrl.h"

#include "core/card/BLClipCtrl.h"
#include "core/card/BLDiskCtrl.h"
#include "core/card/BLMediaProCtrl.h"
#include "core/card/IOperationPane.h"
#include "core/operations/BLFolderDivisionThread.h"
#include "core/operations/IFolderDivisionView.h"
#include "core/services/BLCommon.h"
#include "core/services/BLLocalizedStrings.h"
#include "core/services/BLLogCtrl.h"
#include "core/services/BLProgressCtrl.h"
#include "core/services/SCNotificationNames.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>

const QStringList BLFolderDivisionCtrl::kCapacities = {
    QStringLiteral("4"),  QStringLiteral("8"),   QStringLiteral("16"),  QStringLiteral("23"),
    QStringLiteral("25"), QStringLiteral("32"),  QStringLiteral("46"),  QStringLiteral("50"),
    QStringLiteral("64"), QStringLiteral("100"), QStringLiteral("128"), QStringLiteral("256")};

namespace {

constexpr int kProcessId = 653;

void log(const QString& message)
{
    BLLogCtrl::debug(kProcessId, message);
}

void showMessage(const QString& key, const QStringList& args = {})
{
    BLCommon::sharedCtrl()->messageBox(key, QString(), 0, 0, args);
}

bool isMultiClip(const DOTakeData& take)
{
    return !take.getClipData().isEmpty();
}

bool holdsClip(const DOTakeData& take, const QString& umid)
{
    return std::any_of(take.getClipData().begin(), take.getClipData().end(), [&](const DOClipData& clip) {
        return BLMediaProCtrl::isSameUmid(clip.getUmid(), umid);
    });
}

// The folder's parent and name as a record holds them ("/" has an empty parent).
void splitFolder(const QString& folder, QString* parent, QString* name)
{
    const QFileInfo info(QDir::cleanPath(folder));
    *parent = info.path() == info.filePath() ? QString() : info.path();
    *name = info.fileName();
}

} // namespace

BLFolderDivisionCtrl::BLFolderDivisionCtrl(IFolderDivisionView* view, const QList<DOTakeData>& takes,
                                           const QString& folder, IOperationPane* pane)
    : m_view(view), m_arrTmpTake(takes), m_selectFolder(QDir::cleanPath(folder)), m_mediaInfoCtrl(pane)
{
}

BLFolderDivisionCtrl::~BLFolderDivisionCtrl() = default;

bool BLFolderDivisionCtrl::showModal()
{
    Q_ASSERT(m_view);
    m_view->setTitle(BLLocalizedString(QStringLiteral("LOCALIZED_FOLDER_DIVISION_TITLE")));
    m_view->setFolderName(BLCommon::getDisplayName(m_selectFolder));
    m_view->setCapacities(kCapacities, kPreselected);
    m_divided = false;
    m_view->runModal(this);
    return m_divided;
}

void BLFolderDivisionCtrl::onStart()
{
    const int result = start(m_view->capacityText().trimmed());
    if (result != 1)
        m_view->endModal(result == 0 ? kStopCodeOK : kStopCodeCancel);
}

void BLFolderDivisionCtrl::onCancel()
{
    m_view->endModal(kStopCodeCancel);
}

bool BLFolderDivisionCtrl::execFolderDivision(const QString& capacityText)
{
    m_divided = false;
    start(capacityText.trimmed());
    return m_divided;
}

int BLFolderDivisionCtrl::start(const QString& capacityText)
{
    m_capacityText = capacityText;
    BLClipCtrl clipCtrl;
    const bool exists = m_mediaInfoCtrl ? clipCtrl.checkFolderExist(*m_mediaInfoCtrl, 9)
                                        : clipCtrl.checkFolderExistOfWorkFolder(m_selectFolder);
    if (!exists) {
        if (!m_mediaInfoCtrl)
            showMessage(QStringLiteral("MSG_632_3169"));
        return 2;
    }
    QList<DOClipCtrl> records;
    bool close = false;
    if (!FolderDivision(records, &close))
        return close ? 2 : 1;
    runDivision(records);
    return 0;
}

bool BLFolderDivisionCtrl::runDivision(QList<DOClipCtrl> records)
{
    CreateMetaData(records);
    log(QStringLiteral("[BLFolderDivisionCtrl onStart] Start"));
    log(QStringLiteral("[BLFolderDivisionCtrl onStart]    divSize : %1").arg(m_capacityText));
    log(QStringLiteral("[BLFolderDivisionCtrl onStart]    selectFolder : %1").arg(m_selectFolder));
    // Cancel stays possible while files move: everything then goes back.
    m_worker = std::make_shared<BLFolderDivisionThread>(records, m_arrTmpTake);
    BLProgressCtrl::sharedCtrl()->showProgress(m_worker, true);
    m_records = m_worker->records();
    m_divided = m_worker->isSucceeded();
    if (!m_worker->isRestored() && !records.isEmpty()) {
        BLCommon* common = BLCommon::sharedCtrl();
        common->sendNotificationNotCoalesce(this, SC::SCSelectFolderDataDidUpdateNotification,
                                            {{SC::SCDUpdateSelectFolderKey, m_selectFolder}});
        const QString parent =
            BLCommon::isVolume(m_selectFolder) ? m_selectFolder : QFileInfo(m_selectFolder).path();
        common->sendNotificationNotCoalesce(this, SC::SCNewFolderDidMakeNotification,
                                            {{SC::SCParentPathKey, parent}});
    }
    log(QStringLiteral("[BLFolderDivisionCtrl onStart] End"));
    return m_divided;
}

bool BLFolderDivisionCtrl::FolderDivision(QList<DOClipCtrl>& records, bool* errorCloseDialog)
{
    *errorCloseDialog = true;
    if (m_arrTmpTake.isEmpty())
        return false;
    m_arrTakeData.clear();
    for (const DOTakeData& take : std::as_const(m_arrTmpTake))
        if (take.getTakeStatus() != 4 && take.getTakeStatus() != 5)
            m_arrTakeData.append(take);

    if (BLDiskCtrl::sharedCtrl()->isUsableDrive(m_selectFolder) == 3) {
        showMessage(QStringLiteral("MSG_651_3232"));
        BLLogCtrl::debug(640, QStringLiteral("[BLClipCtrl checkCopyPath] isUsableDrive fail"));
        return false;
    }
    if (!checkWritableFromTakeData()) {
        showMessage(QStringLiteral("MSG_6510_3204"));
        return false;
    }
    double capacity = 0;
    if (!chkSize(m_capacityText, &capacity)) {
        showMessage(QStringLiteral("MSG_653_3135"));
        *errorCloseDialog = false;
        return false;
    }
    const qint64 size = getDivSize();
    if (capacity > double(size)) {
        showMessage(QStringLiteral("MSG_653_3178"),
                    {BLCommon::getDisplayName(m_selectFolder), m_capacityText,
                     BLCommon::convertSizeStr(size, QStringLiteral("#,##0"), 0)});
        *errorCloseDialog = false;
        return false;
    }
    return planDivision(capacity, records);
}

bool BLFolderDivisionCtrl::planDivision(double capacity, QList<DOClipCtrl>& records)
{
    if (m_arrTakeData.isEmpty())
        for (const DOTakeData& take : std::as_const(m_arrTmpTake))
            if (take.getTakeStatus() != 4 && take.getTakeStatus() != 5)
                m_arrTakeData.append(take);
    std::vector<TAKE> arrTake = preSegment(m_arrTakeData);
    int disks = 0;
    switch (Segment(arrTake.data(), int(arrTake.size()), capacity, &disks)) {
    case kSegmentRepeatedUmid:
        showMessage(QStringLiteral("MSG_673_3232"));
        return false;
    case kSegmentDone:
        break;
    default:
        showMessage(QStringLiteral("MSG_653_3177"));
        return false;
    }
    const QList<QList<DOTakeData>> takeLists = makeDivInfo(arrTake, disks, m_arrTakeData);
    records =
        getClipCtrl(takeLists, m_selectFolder, createDivFolderName(int(takeLists.size()), m_selectFolder));
    return true;
}

bool BLFolderDivisionCtrl::chkSize(const QString& text, double* divSize)
{
    if (text.isEmpty() || text.startsWith(QLatin1Char('.')) || text.count(QLatin1Char('.')) > 1)
        return false;
    if (std::any_of(text.begin(), text.end(), [](QChar c) { return !c.isDigit() && c != QLatin1Char('.'); }))
        return false;
    bool number = false;
    const double value = text.toDouble(&number);
    if (number && value < 4)
        return false;
    *divSize = value * kGiB;
    return true;
}

qint64 BLFolderDivisionCtrl::getDivSize() const
{
    const QString bpav = BLCommon::getPathOfBPAV(m_selectFolder);
    qint64 size = QFileInfo(bpav + QStringLiteral("/MEDIAPRO.XML")).size() +
                  QFileInfo(bpav + QStringLiteral("/CUEUP.XML")).size();
    for (const DOTakeData& take : m_arrTakeData)
        size += take.getTakeSize();
    return size;
}

bool BLFolderDivisionCtrl::checkWritableFromTakeData() const
{
    const BLDiskCtrl* disk = BLDiskCtrl::sharedCtrl();
    if (!disk->isDeletableThisPath(m_selectFolder) || !disk->isReadableThisPath(m_selectFolder) ||
        !disk->isWritableThisPath(m_selectFolder))
        return false;
    const QString bpav = BLCommon::getPathOfBPAV(m_selectFolder);
    const auto usable = [&](const QString& reference) {
        if (reference.isEmpty())
            return true;
        const QString folder = QFileInfo(bpav + QLatin1Char('/') + BLCommon::removalDot(reference)).path();
        return disk->isReadableFolderPath(folder) && disk->isWritableFolderPath(folder);
    };
    for (const DOTakeData& take : m_arrTakeData) {
        if (!usable(take.getXMLUri()))
            return false;
        for (const DOClipData& clip : take.getClipData())
            if (!usable(clip.getXMLUri()))
                return false;
    }
    return true;
}

std::vector<TAKE> BLFolderDivisionCtrl::preSegment(const QList<DOTakeData>& takes)
{
    std::vector<TAKE> arrTake;
    arrTake.reserve(takes.size());
    for (const DOTakeData& take : takes) {
        TAKE record;
        record.umid = take.getUmid().left(65).toUtf8();
        if (isMultiClip(take)) {
            for (const DOClipData& clip : take.getClipData())
                record.clips.push_back(
                    {clip.getUmid().left(65).toUtf8(), double(std::max<qint64>(clip.getSize(), 1)), -1});
        } else {
            record.clips.push_back({record.umid, double(std::max<qint64>(take.getTakeSize(), 1)), -1});
        }
        for (const TAKECLIP& clip : record.clips)
            record.totalSize += clip.size;
        record.remainSize = record.totalSize;
        arrTake.push_back(std::move(record));
    }
    return arrTake;
}

QStringList BLFolderDivisionCtrl::createDivFolderName(int count, const QString& path)
{
    QString base = QDir::cleanPath(path);
    if (BLCommon::isVolume(base) && !base.endsWith(QLatin1Char('/')))
        base += QLatin1Char('/');
    for (;;) {
        QStringList names;
        for (int i = 1; i <= count; ++i)
            names << QStringLiteral("%1_%2").arg(base).arg(i);
        if (std::none_of(names.begin(), names.end(),
                         [](const QString& name) { return QFileInfo(name).exists(); }))
            return names;
        base += QStringLiteral("_1");
    }
}

QList<QList<DOTakeData>> BLFolderDivisionCtrl::makeDivInfo(const std::vector<TAKE>& arrTake, int count,
                                                           const QList<DOTakeData>& takes)
{
    QList<QList<DOTakeData>> lists;
    for (int disk = 0; disk < count; ++disk) {
        QList<DOTakeData> list;
        for (int t = 0; t < takes.size(); ++t) {
            const TAKE& record = arrTake[std::size_t(t)];
            const DOTakeData& take = takes.at(t);
            if (!isMultiClip(take)) {
                if (record.clips.front().disk == disk)
                    list.append(take.copyTake());
                continue;
            }
            QList<DOClipData> clips;
            QStringList umids;
            for (int c = 0; c < take.getClipData().size(); ++c)
                if (record.clips[std::size_t(c)].disk == disk) {
                    clips << take.getClipData().at(c);
                    umids << take.getClipData().at(c).getUmid();
                }
            if (clips.isEmpty())
                continue;
            DOTakeData part = take.copyTake();
            part.setArrClipData(clips);
            part.setArrClipUmid(umids);
            list.append(part);
        }
        if (!list.isEmpty())
            lists.append(list);
    }
    return lists;
}

QList<DOClipCtrl> BLFolderDivisionCtrl::getClipCtrl(const QList<QList<DOTakeData>>& takeLists,
                                                    const QString& folder, const QStringList& folders)
{
    QList<DOClipCtrl> records;
    for (int i = 0; i < takeLists.size(); ++i) {
        DOClipCtrl record;
        QString parent, name;
        splitFolder(folder, &parent, &name);
        record.setCopyFromPath(parent);
        record.setCopyFromFolderName(name);
        splitFolder(folders.at(i), &parent, &name);
        record.setCopyToFolder(parent);
        record.setCopyToFolderName(name);
        record.setFromTakes(takeLists.at(i));
        record.setNewTakes(takeLists.at(i));
        records.append(record);
    }
    std::stable_sort(records.begin(), records.end(), [](const DOClipCtrl& a, const DOClipCtrl& b) {
        return a.compareByTakeCreationDate(b) < 0;
    });
    return records;
}

bool BLFolderDivisionCtrl::CreateMetaData(QList<DOClipCtrl>& records)
{
    // Parts are numbered in clip order, each split take counting its parts.
    for (const DOTakeData& take : std::as_const(m_arrTakeData)) {
        if (!isMultiClip(take))
            continue;
        int number = 0;
        QList<std::pair<int, int>> parts; // record, take
        for (const DOClipData& clip : take.getClipData())
            for (int r = 0; r < records.size(); ++r) {
                QList<DOTakeData> takes = records[r].getFromTakes();
                for (int t = 0; t < takes.size(); ++t) {
                    DOTakeData& part = takes[t];
                    if (part.getTakeNumber() == 0 &&
                        BLMediaProCtrl::isSameUmid(part.getUmid(), take.getUmid()) &&
                        holdsClip(part, clip.getUmid())) {
                        part.setTakeNumber(++number);
                        parts.append({r, t});
                    }
                }
                records[r].setFromTakes(takes);
            }
        for (const auto& [r, t] : std::as_const(parts)) {
            QList<DOTakeData> takes = records[r].getFromTakes();
            takes[t].setTotalTakeCount(number);
            records[r].setFromTakes(takes);
        }
    }
    // Every part but a whole take becomes a spanning take of its own.
    for (DOClipCtrl& record : records) {
        QList<DOTakeData> newTakes = record.getFromTakes();
        for (DOTakeData& part : newTakes) {
            if (!isMultiClip(part))
                continue;
            const auto split =
                std::find_if(m_arrTakeData.begin(), m_arrTakeData.end(), [&](const DOTakeData& take) {
                    return BLMediaProCtrl::isSameUmid(take.getUmid(), part.getUmid());
                });
            if (split == m_arrTakeData.end() || split->getClipData().size() == part.getClipData().size())
                continue;
            part = createSpannningNewTake(*split, part);
            record.setChangeFlag(true);
        }
        record.setNewTakes(newTakes);
    }
    return true;
}

DOTakeData BLFolderDivisionCtrl::createSpannningNewTake(const DOTakeData& splitTake, const DOTakeData& part)
{
    // The first part keeps the take's UMID and files: combined again, the
    // parts join onto the one that names the next, the first.
    if (holdsClip(part, splitTake.getClipData().constFirst().getUmid())) {
        DOTakeData first = part.copyTake();
        first.setTakeComponents(updateComponent(part.getTakeComponents(), part.getClipData()));
        return first;
    }
    // The values of the take stay (they describe its material); what makes
    // it a part of its own is set here.
    DOTakeData take = part.copyTake();
    take.setCompleteFlag(false);
    take.setSingleClipFlag(false);
    take.setInvalidTakeFlag(false);
    take.setUmid(BLCommon::sharedCtrl()->createUmid());
    take.setRealFlag(true);
    take.setTakeStatus(2);
    take.setMediaSpanning(true);
    take.setCurrentDuration(part.getTakeDuration());
    take.setTotalTakeCount(part.getTotalTakeCount());
    take.setTakeComponents(updateComponent(part.getTakeComponents(), part.getClipData()));
    take.setArrTakeInfo(splitTake.getTakeInfo());
    take.setMPStatus(QStringLiteral("none"));
    const int number = part.getTakeNumber();
    const QString takeFolder = QFileInfo(splitTake.getSMIUri()).path();
    const QString lastMeta = QFileInfo(part.getClipData().constLast().getXMLUri()).fileName();
    take.setXMLUri(BLCommon::updateTakeUri(takeFolder + QLatin1Char('/') + lastMeta, number));
    take.setSMIUri(BLCommon::updateSMIUri(BLCommon::updateTakeUri(splitTake.getSMIUri(), number), number));
    return take;
}

QList<DOComponent> BLFolderDivisionCtrl::updateComponent(const QList<DOComponent>& components,
                                                         const QList<DOClipData>& clips)
{
    QList<DOComponent> kept;
    int i = 0;
    if (!components.isEmpty() && components.front().getUri().contains(QLatin1String("file:///")))
        kept << components.at(i++);
    for (; i < components.size(); ++i) {
        const DOComponent& component = components.at(i);
        if (!component.getMediaId().isEmpty()) {
            if (component.getUri().contains(QLatin1String("file:///")))
                kept << component;
            break;
        }
        if (std::any_of(clips.begin(), clips.end(), [&](const DOClipData& clip) {
                return BLMediaProCtrl::isSameUmid(clip.getUmid(), component.getUmid());
            }))
            kept << component;
    }
    return kept;
}
