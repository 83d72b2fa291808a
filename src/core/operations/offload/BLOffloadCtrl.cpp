#include "core/operations/offload/BLOffloadCtrl.h"

#include "core/card/BLDiskCtrl.h"
#include "core/formats/metadata/BLDomXmlParse.h"
#include "core/operations/offload/BLOffloadThread.h"
#include "core/operations/offload/IOffloadView.h"
#include "core/services/BLCommon.h"
#include "core/services/BLProgressCtrl.h"
#include "core/services/BLProgressThread.h"

#include <QDir>
#include <QFileInfo>
#include <QMap>
#include <QStorageInfo>

namespace {

void showMessage(const QString& message, const QString& info = {})
{
    BLCommon::sharedCtrl()->messageBox(message, info, 0, 0);
}

// The check of a folder against its history, on the progress dialog's worker.
class VerifyThread : public BLProgressThread
{
public:
    explicit VerifyThread(const BLMhlHistory& history) : m_history(history) {}
    QString getInitTitle() override { return QStringLiteral("Verify Folder"); }
    QString getInitMessage() override { return QStringLiteral("Verifying..."); }
    void loopProcess() override { m_check = m_history.check(this); }
    const BLMhlHistory::Check& check() const { return m_check; }

private:
    const BLMhlHistory& m_history;
    BLMhlHistory::Check m_check;
};

} // namespace

BLOffloadCtrl::BLOffloadCtrl(IOffloadView* view, const QString& source)
    : m_view(view), m_source(QDir::cleanPath(source))
{
}

BLOffloadCtrl::~BLOffloadCtrl() = default;

bool BLOffloadCtrl::showModal()
{
    Q_ASSERT(m_view);
    m_cardSize = BLDiskCtrl::sharedCtrl()->getFolderSize(m_source);
    m_view->setSource(QStringLiteral("%1 (%2)").arg(m_source, BLCommon::sizeText(m_cardSize)));
    showDestinations();
    m_verified = false;
    m_worker.reset();
    if (m_view->runModal(this) == kStopCodeOK && m_worker) {
        BLProgressCtrl::sharedCtrl()->showProgress(m_worker, true);
        showSummary();
    }
    return m_verified;
}

void BLOffloadCtrl::onAdd()
{
    const QString folder = m_view->chooseFolder();
    if (!folder.isEmpty())
        addDestination(folder);
}

void BLOffloadCtrl::onRemove()
{
    const int row = m_view->selectedDestination();
    if (row >= 0 && row < m_folders.size()) {
        m_folders.removeAt(row);
        showDestinations();
    }
}

bool BLOffloadCtrl::addDestination(const QString& folder)
{
    const QString clean = QDir::cleanPath(folder);
    if (m_folders.size() >= BLOffloadThread::kMaxDestinations || m_folders.contains(clean)) {
        showMessage(QStringLiteral("%1 cannot be added: a card goes to at most %2 different folders.")
                        .arg(clean)
                        .arg(BLOffloadThread::kMaxDestinations));
        return false;
    }
    m_folders << clean;
    showDestinations();
    return true;
}

void BLOffloadCtrl::showDestinations()
{
    QStringList lines;
    for (const QString& folder : std::as_const(m_folders))
        lines << QStringLiteral("%1 (%2 free)")
                     .arg(folder, BLCommon::sizeText(QStorageInfo(folder).bytesAvailable()));
    m_view->setDestinations(lines);
    m_view->setAddEnabled(m_folders.size() < BLOffloadThread::kMaxDestinations);
}

QString BLOffloadCtrl::roomProblem() const
{
    // Destinations on one file system share its free space.
    QMap<QString, int> copies;
    for (const QString& folder : m_folders)
        ++copies[QStorageInfo(folder).rootPath()];
    for (const QString& folder : m_folders) {
        const QStorageInfo storage(folder);
        const qint64 needed = m_cardSize * copies.value(storage.rootPath());
        if (!storage.isValid() || storage.bytesAvailable() < needed)
            return QStringLiteral("%1 has no room for the card: %2 needed, %3 free.")
                .arg(folder, BLCommon::sizeText(needed), BLCommon::sizeText(storage.bytesAvailable()));
    }
    return {};
}

void BLOffloadCtrl::onStart()
{
    if (m_folders.isEmpty()) {
        showMessage(QStringLiteral("Add a destination folder for the card."));
        return;
    }
    m_cardSize = BLDiskCtrl::sharedCtrl()->getFolderSize(m_source);
    const QString name = defaultName(m_source);
    QStringList copies;
    QString problem = roomProblem();
    for (const QString& folder : std::as_const(m_folders)) {
        if (problem.isEmpty())
            problem = destinationProblem(m_source, folder, name, copies);
        copies << folder + '/' + name;
    }
    if (!problem.isEmpty()) {
        showMessage(problem, QStringLiteral("Nothing was copied."));
        return;
    }
    m_worker = std::make_shared<BLOffloadThread>(m_source, copies);
    m_view->endModal(kStopCodeOK);
}

void BLOffloadCtrl::onCancel()
{
    m_view->endModal(kStopCodeCancel);
}

void BLOffloadCtrl::showSummary()
{
    const BLMhlHistory::Check& check = m_worker->sourceCheck();
    QStringList lines;
    for (const QString& path : check.altered)
        lines << QStringLiteral("Card: altered %1").arg(path);
    for (const QString& path : check.missing)
        lines << QStringLiteral("Card: missing %1").arg(path);
    if (!m_worker->sourceError().isEmpty())
        lines << m_worker->sourceError();
    bool all = m_worker->sourceError().isEmpty() && !m_worker->wasCancelled();
    if (m_worker->wasCancelled())
        lines << QStringLiteral("Cancelled; no copy was kept.");
    else
        for (const BLOffloadThread::Destination& d : m_worker->destinations()) {
            all = all && d.verified;
            if (d.verified)
                lines << QStringLiteral("%1: %2 files, %3 verified")
                             .arg(d.path)
                             .arg(m_worker->files().size())
                             .arg(BLCommon::sizeText(m_worker->totalBytes()));
            else if (!d.reason.isEmpty())
                lines << QStringLiteral("%1: failed%2: %3; its copy was removed")
                             .arg(d.path,
                                  d.failedFile.isEmpty() ? QString() : QStringLiteral(" at ") + d.failedFile,
                                  d.reason);
        }
    m_verified = all;
    showMessage(all ? QStringLiteral("The card was offloaded and every copy verified.")
                    : QStringLiteral("The offload did not complete."),
                lines.join('\n'));
}

QString BLOffloadCtrl::defaultName(const QString& source)
{
    BLDomXmlParse xml;
    if (xml.loadXml(BLCommon::getPathOfBPAV(source) + QStringLiteral("/MEDIAPRO.XML")) &&
        xml.selectNodeArray(QStringLiteral("//*[@mediaName]")) > 0) {
        const QString name = xml.getAttributeValue(QStringLiteral("mediaName"));
        if (BLCommon::checkHyphenationCharacter(name) && !name.isEmpty())
            return name;
    }
    return QFileInfo(source).fileName();
}

QString BLOffloadCtrl::destinationProblem(const QString& source, const QString& folder, const QString& name,
                                          const QStringList& taken)
{
    const QString destination = folder + '/' + name;
    if (!QFileInfo(folder).isDir())
        return folder + QStringLiteral(": no such folder");
    if (QFileInfo::exists(destination) || QFileInfo(destination).isSymLink())
        return destination + QStringLiteral(": exists; an offload never merges into a folder");
    if (taken.contains(destination) || destination.startsWith(source + '/') ||
        source.startsWith(destination + '/'))
        return destination + QStringLiteral(": not a separate destination");
    return {};
}

bool BLOffloadCtrl::verifyFolder(const QString& folder)
{
    BLMhlHistory history(folder);
    if (!history.load() || history.lastGeneration() == 0) {
        showMessage(QStringLiteral("%1 cannot be verified.").arg(folder),
                    history.error().isEmpty() ? QStringLiteral("It has no ascmhl history.")
                                              : history.error());
        return false;
    }
    auto worker = std::make_shared<VerifyThread>(history);
    if (BLProgressCtrl::sharedCtrl()->showProgress(worker, true))
        return false;
    const BLMhlHistory::Check& check = worker->check();
    QStringList lines;
    for (const QString& path : check.altered)
        lines << QStringLiteral("altered %1").arg(path);
    for (const QString& path : check.missing)
        lines << QStringLiteral("missing %1").arg(path);
    for (const QString& path : check.added)
        lines << QStringLiteral("new %1").arg(path);
    if (check.ok())
        lines.prepend(QStringLiteral("%1 files verified against generation %2.")
                          .arg(check.entries.size() - check.added.size())
                          .arg(history.lastGeneration()));
    showMessage(check.ok() ? QStringLiteral("%1 matches its history.").arg(folder)
                           : QStringLiteral("%1 does not match its history.").arg(folder),
                lines.join('\n'));
    return check.ok();
}
