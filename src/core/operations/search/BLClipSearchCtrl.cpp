#include "core/operations/search/BLClipSearchCtrl.h"

#include "core/card/IOperationPane.h"
#include "core/operations/search/BLClipSearchThread.h"
#include "core/operations/search/IClipSearchView.h"
#include "core/services/BLCommon.h"
#include "core/services/BLLocalizedStrings.h"
#include "core/services/BLLogCtrl.h"

#include <QDir>
#include <QFileInfo>
#include <QTimeZone>

namespace {
constexpr int kProcessId = 637;

void log(const QString& message)
{
    BLLogCtrl::debug(kProcessId, message);
}

QString parentOf(const QString& path)
{
    return QFileInfo(path).path();
}

QString nameOf(const QString& path)
{
    return QFileInfo(path).fileName();
}
} // namespace

BLClipSearchCtrl::BLClipSearchCtrl(IClipSearchView* view, const QList<IOperationPane*>& mediaInfoCtrls,
                                   QObject* parent)
    : QObject(parent), m_view(view), m_arrMediaInfoCtrls(mediaInfoCtrls)
{
}

BLClipSearchCtrl::~BLClipSearchCtrl()
{
    releaseSearch();
    for (auto& [search, thread] : m_threads) {
        search->clearClipSearchCtrl();
        search->setCancel();
    }
    reapThreads(true);
}

bool BLClipSearchCtrl::showModal(QString* umid, QString* path)
{
    m_view->setTitleText(QString());
    m_view->setCommentText(QString());
    m_view->setPlace(QString());
    m_view->setInterval(0);
    const QDate today = QDate::currentDate();
    m_view->setDates(today, today);
    m_view->setMessage(QString());
    m_view->setPlace(BLCommon::getDisplayPath(m_path));
    onInterval();
    clearNotFoundPath();

    const bool chosen = m_view->runModal(this) == kStopCodeChoice;
    if (chosen) {
        const QVariantMap row = m_arrayCtrl.value(m_view->selectedRow());
        *umid = row.value(QStringLiteral("umid")).toString();
        *path = row.value(QStringLiteral("path")).toString();
        log(QStringLiteral("Select Clip Path : %1, Umid : %2").arg(*path, *umid));
        return true;
    }
    if (isNotFoundPath())
        BLCommon::sharedCtrl()->messageBox(QStringLiteral("MSG_632_3169"), QString(), 0, 0);
    return false;
}

void BLClipSearchCtrl::setPath(const QString& path)
{
    m_path = path;
    m_view->setPlace(BLCommon::getDisplayPath(path));
}

void BLClipSearchCtrl::onSearch()
{
    log(QStringLiteral("[BLClipSearchCtrl onSearch] Start"));
    if (m_path.isEmpty()) {
        log(QStringLiteral("[BLClipSearchCtrl onSearch] path is nil!"));
        return;
    }
    const QString title = m_view->titleText().trimmed();
    const QString comment = m_view->commentText().trimmed();
    QDateTime from, to;
    makeSearchDateFrom(&from, &to);
    log(QStringLiteral("    Search Title     :%1").arg(title));
    log(QStringLiteral("    Search Comment   :%1").arg(comment));
    log(QStringLiteral("    Search Place     :%1").arg(m_path));
    if (from.isValid()) {
        log(QStringLiteral("    Search Date From :%1")
                .arg(BLCommon::makeDateTimeStringFromCalendarData(from)));
        log(QStringLiteral("    Search Date To   :%1").arg(BLCommon::makeDateTimeStringFromCalendarData(to)));
    }

    m_arrayCtrl.clear();
    m_listedPaths.clear();
    m_view->clearRows();
    m_view->setMessage(QString());
    searchWillStart();

    // The panes' folders are searched in the takes they show now.
    QList<BLClipSearchThread::PaneTakes> paneTakes;
    for (const IOperationPane* pane : m_arrMediaInfoCtrls)
        if (pane && !pane->getSelectFolder().isEmpty())
            paneTakes.append({pane->getSelectFolder(), pane->getTakeData()});

    releaseSearch();
    reapThreads(false);
    m_searchThread = std::make_shared<BLClipSearchThread>(this, title, comment, from, to, paneTakes);
    std::shared_ptr<BLClipSearchThread> search = m_searchThread;
    const QString start = m_path;
    m_threads.emplace_back(search, std::thread([search, start] { search->startThread(start); }));
    log(QStringLiteral("[BLClipSearchCtrl onSearch] End"));
}

void BLClipSearchCtrl::onCancel()
{
    if (m_searchThread)
        m_searchThread->setCancel();
    m_view->setCancelEnabled(false);
}

void BLClipSearchCtrl::onClose()
{
    if (m_searching)
        return;
    m_view->endModal(kStopCodeClose);
}

void BLClipSearchCtrl::onInterval()
{
    m_view->setDatePickersEnabled(!m_searching && m_view->interval() == 4);
}

void BLClipSearchCtrl::doubleClickAction()
{
    if (m_view->selectedRow() < 0 || m_view->selectedRow() >= m_arrayCtrl.size())
        return;
    if (m_searchThread)
        m_searchThread->setCancel();
    releaseSearch();
    m_searching = false;
    m_view->setSearching(false);
    m_view->endModal(kStopCodeChoice);
}

void BLClipSearchCtrl::searchWillStart()
{
    m_searching = true;
    m_view->setSearching(true);
    m_view->setDatePickersEnabled(false);
}

void BLClipSearchCtrl::searchDidFinish(const BLClipSearchThread& thread)
{
    m_searching = false;
    m_view->setSearching(false);
    onInterval();
    if (thread.isNotFoundPath()) {
        setNotFoundPath();
        m_view->endModal(kStopCodeClose);
    } else if (thread.isFolderLimit()) {
        m_view->setMessage(BLLocalizedString(QStringLiteral("MSG_632_3236")));
    } else if (thread.isSalvage()) {
        m_view->setMessage(BLLocalizedString(QStringLiteral("MSG_632_3100")));
    } else if (thread.isCancel()) {
        // the user stopped it: nothing to say
    } else if (m_arrayCtrl.isEmpty()) {
        m_view->setMessage(BLLocalizedString(QStringLiteral("MSG_637_3104")));
    }
}

void BLClipSearchCtrl::addFindList(const QVariantMap& row)
{
    const QString path = QDir::cleanPath(row.value(QStringLiteral("path")).toString());
    if (IsClipList(path))
        return;
    m_listedPaths.insert(path);
    m_arrayCtrl.append(row);
    m_view->addRow(int(m_arrayCtrl.size()) - 1, row);
}

bool BLClipSearchCtrl::IsClipList(const QString& path) const
{
    const QString clean = QDir::cleanPath(path);
    const QString name = nameOf(clean);
    const QString parent = parentOf(clean);
    if (name == QLatin1String("PRIVATE"))
        return m_listedPaths.contains(parent);
    if (name == QLatin1String("ORX"))
        return m_listedPaths.contains(parent) ||
               (nameOf(parent) == QLatin1String("PRIVATE") && m_listedPaths.contains(parentOf(parent)));
    return false;
}

void BLClipSearchCtrl::makeSearchDateFrom(QDateTime* from, QDateTime* to) const
{
    makeSearchDateFrom(m_view->interval(), QDate::currentDate(), m_view->dateFrom(), m_view->dateTo(), from,
                       to);
}

void BLClipSearchCtrl::makeSearchDateFrom(int interval, const QDate& today, const QDate& pickedFrom,
                                          const QDate& pickedTo, QDateTime* from, QDateTime* to)
{
    QDate first = today;
    QDate last = today;
    switch (interval) {
    case 1:
        first = today.addDays(-7);
        break;
    case 2:
        first = today.addMonths(-1);
        break;
    case 3:
        first = today.addYears(-1);
        break;
    case 4:
        first = pickedFrom;
        last = pickedTo;
        break;
    default:
        *from = QDateTime();
        *to = QDateTime();
        return;
    }
    *from = QDateTime(first, QTime(0, 0, 0), QTimeZone::utc());
    *to = QDateTime(last, QTime(23, 59, 59), QTimeZone::utc());
}

void BLClipSearchCtrl::releaseSearch()
{
    if (!m_searchThread)
        return;
    m_searchThread->clearClipSearchCtrl();
    m_searchThread.reset();
}

void BLClipSearchCtrl::reapThreads(bool all)
{
    std::erase_if(m_threads, [all](auto& entry) {
        if (!all && !entry.first->isFinished())
            return false;
        entry.second.join();
        return true;
    });
}
