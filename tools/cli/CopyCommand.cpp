// clipwright-cli copy: copies takes of one work folder into another with the
// checks, worker and roll-back of the copy dialog, without a window. SIGINT
// and SIGTERM cancel like the dialog's Cancel button.
#include "CliCommand.h"

#include "core/common/BLCommon.h"
#include "core/common/BLHeadlessProgressView.h"
#include "core/common/BLLocalizedStrings.h"
#include "core/common/BLProgressCtrl.h"
#include "core/common/TerminationSignals.h"
#include "core/metadata/BLHouseKeepingCtrl.h"
#include "core/operations/BLClipCopyCtrl.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <unistd.h>

namespace {

// The progress dialog on a terminal: one line on stderr kept up to date.
class TerminalProgressView : public BLHeadlessProgressView
{
public:
    explicit TerminalProgressView(bool shown) : m_shown(shown) {}
    ~TerminalProgressView() override
    {
        if (m_printed)
            cliErr() << Qt::endl;
    }
    void setMessage(const QString& message) override
    {
        BLHeadlessProgressView::setMessage(message);
        print();
    }
    void setDeterminate(double value, double min, double max) override
    {
        BLHeadlessProgressView::setDeterminate(value, min, max);
        print();
    }

private:
    void print()
    {
        if (!m_shown)
            return;
        cliErr() << "\r\033[K" << BLLocalizedString(message());
        if (isDeterminate() && maximum() > minimum())
            cliErr() << "  " << qint64(value()) << " / " << qint64(maximum()) << " MiB";
        cliErr().flush();
        m_printed = true;
    }

    bool m_shown;
    bool m_printed = false;
};

QString hashText(quint64 hash)
{
    return QStringLiteral("%1").arg(hash, 16, 16, QLatin1Char('0'));
}

} // namespace

int runCopy(const QStringList& args)
{
    QStringList rest = args;
    const bool json = rest.removeAll(QStringLiteral("--json")) > 0;
    const bool verify = rest.removeAll(QStringLiteral("--no-verify")) == 0;
    if (rest.size() < 2 ||
        std::any_of(rest.begin(), rest.end(), [](const QString& a) { return a.startsWith('-'); }))
        return cliUsage("copy");
    QTextStream& err = cliErr();
    const QString source = QDir::cleanPath(QFileInfo(rest.at(0)).absoluteFilePath());
    const QFileInfo destination(QDir::cleanPath(QFileInfo(rest.at(1)).absoluteFilePath()));
    if (!BLCommon::isBPAVFolder(source)) {
        err << "clipwright-cli copy: " << source << ": no BPAV folder" << Qt::endl;
        return kExitFailed;
    }
    if (!QFileInfo(destination.path()).isDir()) {
        err << "clipwright-cli copy: " << destination.path() << ": no such folder" << Qt::endl;
        return kExitFailed;
    }

    StderrPresenter presenter("copy");
    // The takes named (all that can be copied when none is), in the source's order.
    const QList<DOTakeData> takes = BLHouseKeepingCtrl().doHouseKeeping(source);
    QList<DOTakeData> chosen;
    for (const QString& id : rest.mid(2)) {
        const auto take = std::find_if(takes.begin(), takes.end(),
                                       [&](const DOTakeData& t) { return t.getShownTakeID() == id; });
        if (take == takes.end()) {
            err << "clipwright-cli copy: " << source << ": no take " << id << Qt::endl;
            return kExitFailed;
        }
        if (take->getTakeStatus() >= 4) {
            err << "clipwright-cli copy: " << id
                << (take->getTakeStatus() == 4 ? ": an MP4 file not imported yet" : ": an unusable take")
                << " cannot be copied" << Qt::endl;
            return kExitFailed;
        }
        chosen << take->copyTake();
    }
    if (rest.size() == 2) {
        for (const DOTakeData& take : takes)
            if (take.getTakeStatus() < 4)
                chosen << take.copyTake();
    }
    if (chosen.isEmpty()) {
        err << "clipwright-cli copy: " << source << ": no take to copy" << Qt::endl;
        return kExitFailed;
    }

    DOClipCtrl record;
    record.setCopyFromPath(QFileInfo(source).path());
    record.setCopyFromFolderName(QFileInfo(source).fileName());
    record.setCopyToFolder(destination.path());
    record.setCopyToFolderName(destination.fileName());
    record.setFromTakes(chosen);

    // Ctrl+C or SIGTERM: before the copy nothing happens; during it the
    // worker stops and undoes what it copied, as on Cancel.
    bool interrupted = false;
    TerminationSignals stopSignals;
    QObject::connect(&stopSignals, &TerminationSignals::received, [&interrupted] {
        interrupted = true;
        BLProgressCtrl::sharedCtrl()->onCancel();
    });
    TerminalProgressView progress(::isatty(STDERR_FILENO) == 1);
    BLProgressCtrl::sharedCtrl()->setView(&progress);
    BLClipCopyCtrl ctrl(nullptr, record, nullptr, nullptr);
    if (!verify)
        ctrl.setVerify(false);
    const bool ready = ctrl.checkRequest(destination.fileName()) == BLClipCopyCtrl::kCheckReady;
    const bool copied = ready && !interrupted && ctrl.execClipCopy();
    BLProgressCtrl::sharedCtrl()->setView(nullptr);
    if (ready && !copied && ctrl.getClipCtrl().getNewFolderFlag())
        QDir().rmdir(destination.filePath()); // the folder the copy made, empty again
    if (!copied) {
        if (interrupted)
            err << "clipwright-cli copy: cancelled; " << destination.filePath() << " is as it was"
                << Qt::endl;
        return kExitFailed;
    }

    const BLClipCopyThread* run = ctrl.lastRun();
    qint64 bytes = 0;
    QJsonArray files;
    for (const BLClipCopyThread::CopiedFile& file : run->copiedFiles()) {
        bytes += file.size;
        QJsonObject entry{{"source", file.source}, {"destination", file.destination}, {"size", file.size}};
        if (verify)
            entry["xxh64"] = hashText(file.hash);
        files.append(entry);
    }
    if (json) {
        QJsonArray copiedTakes;
        for (const DOTakeData& take : chosen)
            copiedTakes.append(QJsonObject{{"takeId", take.getShownTakeID()}, {"umid", take.getUmid()}});
        cliOut() << QJsonDocument(QJsonObject{{"source", source},
                                              {"destination", destination.filePath()},
                                              {"verified", verify},
                                              {"takes", copiedTakes},
                                              {"files", files},
                                              {"bytes", bytes}})
                        .toJson(QJsonDocument::Indented);
    } else {
        cliOut() << chosen.size() << (chosen.size() == 1 ? " take, " : " takes, ") << files.size()
                 << " files, " << BLCommon::sizeText(bytes) << " copied to " << destination.filePath()
                 << (verify ? " and verified" : "") << "\n";
    }
    return kExitOk;
}
