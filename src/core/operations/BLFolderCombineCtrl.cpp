#include "core/operations/BLFolderCombineCtrl.h"

#include "core/card/BLClipCtrl.h"
#include "core/card/BLDiskCtrl.h"
#include "core/card/BLHouseKeepingCtrl.h"
#include "core/operations/BLDeleteFolderCtrl.h"
#include "core/operations/BLFolderCombineThread.h"
#include "core/operations/IFolderCombineView.h"
#include "core/services/BLCommon.h"
#include "core/services/BLLocalizedStrings.h"
#include "core/services/BLLogCtrl.h"
#include "core/services/BLProgressCtrl.h"
#include "core/services/SCNotificationNames.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>

namespace {

constexpr int kProcessId = 654;
const QString kCheck = QStringLiteral("check");
const QString kName = QStringLiteral("name");
const QString kRealName = QStringLiteral("realName");

void log(const QString& message)
{
    BLLogCtrl::debug(kProcessId, message);
}

void showMessage(const QString& key)
{
    BLCommon::sharedCtrl()->messageBox(key, QString(), 0, 0);
}

// Nothing is left in the folder but an empty card structure: folders, and
// the two index files of a BPAV folder.
bool holdsOnlyEmptyCard(const QString& folder)
{
    const QStringList contents = BLDeleteFolderCtrl::getAllContentsOfFolder(folder);
    return std::all_of(contents.begin(), contents.end(), [&](const QString& relative) {
        const QFileInfo info(folder + QLatin1Char('/') + relative);
        return (info.isDir() && !info.isSymLink()) || info.fileName() == QLatin1String("MEDIAPRO.XML") ||
               info.fileName() == QLatin1String("CUEUP.XML");
    });
}

} // namespace

BLFolderCombineCtrl::BLFolderCombineCtrl(IFolderCombineView* view, const DOClipCtrl& clipCtrl)
    : m_view(view), m_ClipCtrl(clipCtrl)
{
}

BLFolderCombineCtrl::~BLFolderCombineCtrl() = default;

QString BLFolderCombineCtrl::candidateParent() const
{
    const QString destination = m_ClipCtrl.destinationWorkFolder();
    return BLCommon::isVolume(destination) ? destination : QFileInfo(QDir::cleanPath(destination)).path();
}

QString BLFolderCombineCtrl::siblingPath(const QString& name) const
{
    return BLCommon::makeFilePath(candidateParent(), {name});
}

bool BLFolderCombineCtrl::showModal()
{
    Q_ASSERT(m_view);
    preShowModal();
    m_view->setTitle(BLLocalizedString(QStringLiteral("LOCALIZED_FOLDER_COMBINE_TITLE")));
    m_view->setDestination(BLCommon::getDisplayName(m_ClipCtrl.destinationWorkFolder()));
    m_view->setRows(m_arrayCtrl);
    m_view->setOkEnabled(false);
    if (m_view->runModal(this) != kStopCodeOK)
        return false;
    return execFolderCombine(setFromInfo(), getDelSwitch());
}

void BLFolderCombineCtrl::preShowModal()
{
    m_datas.clear();
    m_arrayCtrl.clear();
    const QString parent = candidateParent();
    const QString destination = QFileInfo(QDir::cleanPath(m_ClipCtrl.destinationWorkFolder())).fileName();
    const BLDiskCtrl* disk = BLDiskCtrl::sharedCtrl();
    for (const QString& name : BLCommon::getFolders(parent)) {
        const QString path = BLCommon::makeFilePath(parent, {name});
        if (disk->isReadableThisPath(path) && BLCommon::checkVisibleDirectory(path))
            m_datas.append(DOFolderCombine(BLCommon::getDisplayName(path), name));
    }
    std::stable_sort(m_datas.begin(), m_datas.end(),
                     [](const DOFolderCombine& a, const DOFolderCombine& b) { return a.compare(b) < 0; });
    for (const DOFolderCombine& data : std::as_const(m_datas)) {
        if (data.getRealName().compare(QLatin1String("BPAV"), Qt::CaseInsensitive) == 0 ||
            data.getRealName().compare(destination, Qt::CaseInsensitive) == 0)
            continue;
        m_arrayCtrl.append({{kCheck, 0}, {kName, data.getDisplayName()}, {kRealName, data.getRealName()}});
    }
}

QStringList BLFolderCombineCtrl::setFromInfo() const
{
    QStringList names;
    for (const QVariantMap& row : m_view ? m_view->rows() : m_arrayCtrl)
        if (row.value(kCheck).toInt() == 1)
            names << row.value(kRealName).toString();
    return names;
}

bool BLFolderCombineCtrl::getDelSwitch() const
{
    return m_view && m_view->deleteSwitch();
}

void BLFolderCombineCtrl::tableViewSelectionDidChange()
{
    m_view->setOkEnabled(!setFromInfo().isEmpty());
}

void BLFolderCombineCtrl::onStart()
{
    if (!setFromInfo().isEmpty())
        m_view->endModal(kStopCodeOK);
}

void BLFolderCombineCtrl::onCancel()
{
    m_view->endModal(kStopCodeCancel);
}

bool BLFolderCombineCtrl::checkFolderExistForCombine(const QStringList& sources) const
{
    const bool exist = BLCommon::isFolder(m_ClipCtrl.destinationWorkFolder()) &&
                       std::all_of(sources.begin(), sources.end(), [this](const QString& name) {
                           return BLCommon::isFolder(siblingPath(name));
                       });
    if (!exist)
        showMessage(QStringLiteral("MSG_632_3169"));
    return exist;
}

QList<DOClipCtrl> BLFolderCombineCtrl::makeRecords(const QStringList& names) const
{
    QList<DOClipCtrl> records;
    for (const QString& name : names) {
        DOClipCtrl record;
        record.setCopyFromPath(candidateParent());
        record.setCopyFromFolderName(name);
        record.setCopyToFolder(m_ClipCtrl.getCopyToPath());
        record.setCopyToFolderName(m_ClipCtrl.getCopyToFolderName());
        const QList<DOTakeData> before = BLHouseKeepingCtrl().doHouseKeeping(record.sourceWorkFolder());
        record.setBeforeTakes(before);
        QList<DOTakeData> moving;
        for (const DOTakeData& take : before) {
            if (take.getTakeStatus() == 4 || take.getTakeStatus() == 5)
                record.setCombDelFlag(false);
            else
                moving << take.copyTake();
        }
        record.setFromTakes(moving);
        record.setNewTakes(moving);
        if (records.isEmpty()) {
            record.setToTakes(m_ClipCtrl.getToTakes());
        } else {
            QList<DOTakeData> to = records.back().getToTakes();
            to << records.back().getFromTakes();
            record.setToTakes(to);
        }
        log(QStringLiteral("[BLFolderCombineCtrl execFolderCombine]    select : %1")
                .arg(record.sourceWorkFolder()));
        records.append(record);
    }
    return records;
}

bool BLFolderCombineCtrl::execFolderCombine(const QStringList& names, bool deleteSources)
{
    log(QStringLiteral("[BLFolderCombineCtrl execFolderCombine] Start"));
    m_combined = false;
    m_deleted.clear();
    const auto end = [](bool result) {
        log(QStringLiteral("[BLFolderCombineCtrl execFolderCombine] End"));
        return result;
    };
    if (names.isEmpty() || !checkFolderExistForCombine(names))
        return end(false);
    QList<DOClipCtrl> records = makeRecords(names);

    // Every check passes before anything moves.
    BLClipCtrl clipCtrl;
    QList<DOTakeData> brought;
    for (int i = 0; i < records.size(); ++i) {
        DOClipCtrl& record = records[i];
        if ((i == 0 && !clipCtrl.checkCopyPath(record, BLClipCtrl::kTypeCombine)) ||
            !clipCtrl.checkWritableMoveOrigin(record, BLClipCtrl::kTypeCombine))
            return end(false);
        if (!clipCtrl.checkRepeatClip(record) || clipCtrl.checkUmid(record, records, i) == 0) {
            showMessage(QStringLiteral("MSG_654_3175"));
            return end(false);
        }
        brought << record.getFromTakes();
    }
    if (BLCommon::isExceedFolderLimitByCopy(m_ClipCtrl.destinationWorkFolder(), brought)) {
        showMessage(QStringLiteral("MSG_632_3236"));
        log(QStringLiteral("[BLFolderCombineCtrl execFolderCombine]    ExceedFolderLimit"));
        return end(false);
    }

    bool cancelled = false;
    if (!brought.isEmpty()) {
        // Cancel stays possible while files move: everything then goes back.
        m_worker = std::make_shared<BLFolderCombineThread>(records, this);
        BLProgressCtrl::sharedCtrl()->showProgress(m_worker, true);
        records = m_worker->records();
        cancelled = !m_worker->isSucceeded();
        if (m_worker->isRestored())
            return end(false);
    }

    BLCommon* common = BLCommon::sharedCtrl();
    if (!cancelled && deleteSources) {
        BLDeleteFolderCtrl deleteCtrl;
        for (const DOClipCtrl& record : std::as_const(records)) {
            const QString source = record.sourceWorkFolder();
            if (!record.getCombDelFlag() || BLDeleteFolderCtrl::getFolderCount(source) >= 2 ||
                BLDeleteFolderCtrl::getFileCount(source) != 0 || !holdsOnlyEmptyCard(source) ||
                !deleteCtrl.allCheck(source))
                continue;
            if (!QDir(source).removeRecursively())
                break;
            m_deleted << source;
        }
    }
    for (const DOClipCtrl& record : std::as_const(records)) {
        const QString source = record.sourceWorkFolder();
        if (m_deleted.contains(source))
            common->sendNotificationNotCoalesce(this, SC::SCFolderDidDeleteNotification,
                                                {{SC::SCDeletePathKey, source}});
        else if (!record.getDelUmid().isEmpty())
            common->sendNotificationNotCoalesce(this, SC::SCSelectFolderDataDidUpdateNotification,
                                                {{SC::SCDUpdateSelectFolderKey, source}});
    }
    if (!brought.isEmpty())
        common->sendNotificationNotCoalesce(
            this, SC::SCSelectFolderDataDidUpdateNotification,
            {{SC::SCDUpdateSelectFolderKey, m_ClipCtrl.destinationWorkFolder()}});
    m_combined = !cancelled;
    return end(m_combined);
}
