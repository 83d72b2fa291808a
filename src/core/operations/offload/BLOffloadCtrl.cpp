#include "core/operations/offload/BLOffloadCtrl.h"

#include "core/card/BLDiskCtrl.h"
#include "core/formats/metadata/BLDomXmlParse.h"
#include "core/operations/offload/BLOffloadThread.h"
#include "core/operations/offload/IOffloadView.h"
#include "core/services/BLCommon.h"
#include "core/services/BLLocalizedStrings.h"
#include "core/services/BLProgressCtrl.h"
#include "core/services/BLProgressThread.h"

#include <QDir>
#include <QFileInfo>
#include <QMap>
#include <QStorageInfo>

namespace {

QString text(const char* key)
{
    return BLLocalizedString(QString::fromLatin1(key));
}

void showMessage(const QString& message, const QString& info = {})
{
    BLCommon::sharedCtrl()->messageBox(message, info, 0, 0);
}

// The check of a folder against its history, on the progress dialog's worker.
class VerifyThread : public BLProgressThread
{
public:
    explicit VerifyThread(const BLMhlHistory& history) : m_history(history) {}
    QString getInitTitle() override { return text("LOCALIZED_VERIFY_TITLE"); }
    QString getInitMessage() override { return text("LOCALIZED_VERIFY_MESSAGE"); }
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
    m_view->setSource(text("LOCALIZED_OFFLOAD_SOURCE").arg(m_source, BLCommon::sizeText(m_cardSize)));
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
        showMessage(text("MSG_OFFLOAD_TOO_MANY").arg(clean).arg(BLOffloadThread::kMaxDestinations));
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
        lines << text("LOCALIZED_OFFLOAD_FREE")
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
            return text("MSG_OFFLOAD_NO_ROOM")
                .arg(folder, BLCommon::sizeText(needed), BLCommon::sizeText(storage.bytesAvailable()));
    }
    return {};
}

void BLOffloadCtrl::onStart()
{
    if (m_folders.isEmpty()) {
        showMessage(text("MSG_OFFLOAD_NO_DESTINATION"));
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
        showMessage(problem, text("MSG_OFFLOAD_NOTHING_COPIED"));
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
        lines << text("MSG_OFFLOAD_CARD_ALTERED").arg(path);
    for (const QString& path : check.missing)
        lines << text("MSG_OFFLOAD_CARD_MISSING").arg(path);
    if (!m_worker->sourceError().isEmpty())
        lines << m_worker->sourceError();
    bool all = m_worker->sourceError().isEmpty() && !m_worker->wasCancelled();
    if (m_worker->wasCancelled())
        lines << text("MSG_OFFLOAD_CANCELLED");
    else
        for (const BLOffloadThread::Destination& d : m_worker->destinations()) {
            all = all && d.verified;
            if (d.verified)
                lines << text("MSG_OFFLOAD_VERIFIED")
                             .arg(d.path)
                             .arg(m_worker->files().size())
                             .arg(BLCommon::sizeText(m_worker->totalBytes()));
            else if (!d.reason.isEmpty())
                lines << (d.failedFile.isEmpty()
                              ? text("MSG_OFFLOAD_FAILED").arg(d.path, d.reason)
                              : text("MSG_OFFLOAD_FAILED_AT").arg(d.path, d.failedFile, d.reason));
        }
    m_verified = all;
    showMessage(all ? text("MSG_OFFLOAD_DONE") : text("MSG_OFFLOAD_NOT_DONE"), lines.join('\n'));
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
        return text("MSG_OFFLOAD_NO_FOLDER").arg(folder);
    if (QFileInfo::exists(destination) || QFileInfo(destination).isSymLink())
        return text("MSG_OFFLOAD_EXISTS").arg(destination);
    if (taken.contains(destination) || destination.startsWith(source + '/') ||
        source.startsWith(destination + '/'))
        return text("MSG_OFFLOAD_NOT_SEPARATE").arg(destination);
    return {};
}

bool BLOffloadCtrl::verifyFolder(const QString& folder)
{
    BLMhlHistory history(folder);
    if (!history.load() || history.lastGeneration() == 0) {
        showMessage(text("MSG_VERIFY_CANNOT").arg(folder),
                    history.error().isEmpty() ? text("MSG_VERIFY_NO_HISTORY") : history.error());
        return false;
    }
    auto worker = std::make_shared<VerifyThread>(history);
    if (BLProgressCtrl::sharedCtrl()->showProgress(worker, true))
        return false;
    const BLMhlHistory::Check& check = worker->check();
    QStringList lines;
    for (const QString& path : check.altered)
        lines << text("MSG_VERIFY_ALTERED").arg(path);
    for (const QString& path : check.missing)
        lines << text("MSG_VERIFY_MISSING").arg(path);
    for (const QString& path : check.added)
        lines << text("MSG_VERIFY_NEW").arg(path);
    if (check.ok())
        lines.prepend(text("MSG_VERIFY_COUNT")
                          .arg(check.entries.size() - check.added.size())
                          .arg(history.lastGeneration()));
    showMessage(check.ok() ? text("MSG_VERIFY_MATCHES").arg(folder) : text("MSG_VERIFY_DIFFERS").arg(folder),
                lines.join('\n'));
    return check.ok();
}
