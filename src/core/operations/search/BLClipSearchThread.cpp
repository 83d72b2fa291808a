#include "core/operations/search/BLClipSearchThread.h"

#include "core/card/BLHouseKeepingCtrl.h"
#include "core/operations/search/BLClipSearchCtrl.h"
#include "core/services/BLCommon.h"
#include "core/services/BLLogCtrl.h"

#include <QCoreApplication>
#include <QDir>

#include <chrono>
#include <thread>

namespace {
constexpr int kProcessId = 637;

void log(const QString& message)
{
    BLLogCtrl::debug(kProcessId, message);
}

bool sameFolder(const QString& folder, const QString& folder2)
{
    return QDir::cleanPath(folder).compare(QDir::cleanPath(folder2), Qt::CaseInsensitive) == 0;
}
} // namespace

BLClipSearchThread::BLClipSearchThread(BLClipSearchCtrl* ctrl, const QString& title, const QString& comment,
                                       const QDateTime& from, const QDateTime& to,
                                       const QList<PaneTakes>& paneTakes)
    : m_title(title), m_comment(comment), m_from(from), m_to(to), m_paneTakes(paneTakes),
      m_clipSearchCtrl(ctrl)
{
}

void BLClipSearchThread::startThread(const QString& path)
{
    m_arraySeachPath = {path};
    log(QStringLiteral("[BLClipSearchThread startThread] Start"));
    loopSearch();
    log(QStringLiteral("[BLClipSearchThread startThread] End"));
    sendFinish();
}

void BLClipSearchThread::loopSearch()
{
    while (!m_arraySeachPath.isEmpty()) {
        checkFolder(m_arraySeachPath.takeFirst());
        if (isNotFoundPath() || isSalvage() || isCancel())
            break;
        if (!m_arraySeachPath.isEmpty())
            waitThread();
    }
}

void BLClipSearchThread::checkFolder(const QString& folder)
{
    if (!BLCommon::isFolder(folder)) {
        setNotFoundPath();
        return;
    }
    if (BLCommon::isExceedFolderLimit(folder)) {
        setFolderLimit();
        return;
    }
    if (BLCommon::doSalvage(folder)) {
        setSalvage();
        return;
    }

    QList<DOTakeData> takes;
    if (const QList<DOTakeData>* shown = paneTakesOf(folder)) {
        takes = *shown;
    } else {
        BLHouseKeepingCtrl houseKeeping;
        {
            std::lock_guard lock(m_hkcLock);
            m_houseKeepingCtrl = &houseKeeping;
        }
        // A cancel that came before the pass started reaches it here.
        if (isCancel())
            houseKeeping.setCancel();
        takes = houseKeeping.doHouseKeeping(folder);
        {
            std::lock_guard lock(m_hkcLock);
            m_houseKeepingCtrl = nullptr;
        }
        if (BLCommon::isExceedFolderLimitByMaterial(houseKeeping)) {
            setFolderLimit();
            return;
        }
    }

    log(QStringLiteral("[BLClipSearchThread checkFolder] Search Place:%1").arg(folder));
    for (const DOTakeData& take : takes) {
        if (isCancel())
            return;
        if (checkTakeData(take))
            sendFindList(makeListData(take, folder));
    }
    if (isCancel())
        return;
    const QDir dir(folder);
    for (const QString& name : BLCommon::getFolders(folder))
        if (name != QLatin1String("BPAV"))
            m_arraySeachPath.append(dir.filePath(name));
}

bool BLClipSearchThread::checkTakeData(const DOTakeData& take) const
{
    const int status = take.getTakeStatus();
    if (status == 4 || status == 5 || status == 6)
        return false;
    if (!m_title.isEmpty() && !take.getAlias().contains(m_title) && !take.getUsAscii().contains(m_title))
        return false;
    if (!m_comment.isEmpty() && !take.getDescription().contains(m_comment))
        return false;
    if (m_from.isValid() && m_to.isValid()) {
        const QDateTime created = BLCommon::makeCalendarDateFromString(take.getCreationDate());
        if (!created.isValid() || created < m_from || created > m_to)
            return false;
    }
    return true;
}

QVariantMap BLClipSearchThread::makeListData(const DOTakeData& take, const QString& path) const
{
    const QDateTime created = BLCommon::makeCalendarDateFromString(take.getCreationDate());
    const QString title = take.getAlias().isEmpty() ? take.getUsAscii() : take.getAlias();
    const QString duration =
        BLCommon::convertOfDurationByTakeData(take).replace(QLatin1Char('.'), QLatin1Char(':'));
    const QString size = take.getSearchTakeSize();
    const QString date = BLCommon::makeDateTimeStringFromCalendarData(created);
    log(QStringLiteral("    umid:%1 title:%2 size:%3 duration:%4 date:%5")
            .arg(take.getUmid(), title, size, duration, date));
    return {{QStringLiteral("umid"), take.getUmid()},
            {QStringLiteral("path"), path},
            {QStringLiteral("image"), getListImage(take)},
            {QStringLiteral("takeId"), take.getTakeID()},
            {QStringLiteral("title"), title},
            {QStringLiteral("size"), size},
            {QStringLiteral("duration"), duration},
            {QStringLiteral("date"), date},
            {QStringLiteral("displayPath"), displayPathOf(path)},
            {QStringLiteral("sizeBySort"), take.getTakeSize()},
            {QStringLiteral("durationBySort"), duration},
            {QStringLiteral("dateBySort"), created}};
}

QString BLClipSearchThread::getListImage(const DOTakeData& take)
{
    switch (take.getTakeStatus()) {
    case 0:
        return QStringLiteral("clip_ok");
    case 2:
        return QStringLiteral("clip_mediaspaning");
    case 3:
        return QStringLiteral("clip_import");
    case 4:
        return QStringLiteral("clip_notimport");
    case 5:
    case 6:
        return QStringLiteral("clip_error");
    default:
        return QStringLiteral("clip_normal");
    }
}

void BLClipSearchThread::sendFindList(const QVariantMap& row)
{
    std::shared_ptr<BLClipSearchThread> self = shared_from_this();
    QMetaObject::invokeMethod(
        QCoreApplication::instance(),
        [self, row] {
            std::lock_guard lock(self->m_ctrlLock);
            if (self->m_clipSearchCtrl)
                self->m_clipSearchCtrl->addFindList(row);
        },
        Qt::QueuedConnection);
}

void BLClipSearchThread::sendFinish()
{
    std::shared_ptr<BLClipSearchThread> self = shared_from_this();
    QMetaObject::invokeMethod(
        QCoreApplication::instance(),
        [self] {
            std::lock_guard lock(self->m_ctrlLock);
            if (self->m_clipSearchCtrl)
                self->m_clipSearchCtrl->searchDidFinish(*self);
            self->m_finished = true;
            self->m_finishTaken.notify_all();
        },
        Qt::QueuedConnection);
    // Waits for the main thread, unless the dialog goes away meanwhile (it
    // may be waiting for this thread to end).
    std::unique_lock lock(m_ctrlLock);
    m_finishTaken.wait(lock, [this] { return m_finished || !m_clipSearchCtrl; });
    m_finished = true;
}

QString BLClipSearchThread::displayPathOf(const QString& path) const
{
    // Asks the volumes once per folder, not once per take.
    if (path != m_displayPathOf) {
        m_displayPathOf = path;
        m_displayPath = BLCommon::getDisplayPath(path);
    }
    return m_displayPath;
}

const QList<DOTakeData>* BLClipSearchThread::paneTakesOf(const QString& folder) const
{
    for (const PaneTakes& pane : m_paneTakes)
        if (!pane.first.isEmpty() && sameFolder(pane.first, folder))
            return &pane.second;
    return nullptr;
}

void BLClipSearchThread::setCancel()
{
    {
        std::lock_guard lock(m_cancelLock);
        m_isCancel = true;
    }
    log(QStringLiteral("[BLClipSearchThread setCancel] Cancel"));
    std::lock_guard lock(m_hkcLock);
    if (m_houseKeepingCtrl)
        m_houseKeepingCtrl->setCancel(); // cancelHouseKeeping
}

bool BLClipSearchThread::isCancel() const
{
    std::lock_guard lock(m_cancelLock);
    return m_isCancel;
}

void BLClipSearchThread::setNotFoundPath()
{
    std::lock_guard lock(m_notFoundLock);
    m_isNotFoundPath = true;
}

bool BLClipSearchThread::isNotFoundPath() const
{
    std::lock_guard lock(m_notFoundLock);
    return m_isNotFoundPath;
}

void BLClipSearchThread::setFolderLimit()
{
    std::lock_guard lock(m_folderLimitLock);
    m_isFolderLimit = true;
}

bool BLClipSearchThread::isFolderLimit() const
{
    std::lock_guard lock(m_folderLimitLock);
    return m_isFolderLimit;
}

void BLClipSearchThread::setSalvage()
{
    std::lock_guard lock(m_salvageLock);
    m_isSalvage = true;
}

bool BLClipSearchThread::isSalvage() const
{
    std::lock_guard lock(m_salvageLock);
    return m_isSalvage;
}

void BLClipSearchThread::clearClipSearchCtrl()
{
    std::lock_guard lock(m_ctrlLock);
    m_clipSearchCtrl = nullptr;
    m_finishTaken.notify_all();
}

bool BLClipSearchThread::isFinished() const
{
    std::lock_guard lock(m_ctrlLock);
    return m_finished;
}

void BLClipSearchThread::waitThread()
{
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
}
