// clipwright-cli copy: copies takes of one work folder into another with the
// checks, worker and roll-back of the copy dialog, without a window. SIGINT
// and SIGTERM cancel like the dialog's Cancel button.
#include "CliCommand.h"

#include "core/operations/BLClipCopyCtrl.h"
#include "core/services/BLCommon.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

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
    StderrPresenter presenter("copy");
    DOClipCtrl record;
    if (const int status = transferRecord("copy", "copied", rest, &record))
        return status;
    const QString source = record.sourceWorkFolder();
    const QFileInfo destination(record.destinationWorkFolder());
    const QList<DOTakeData> chosen = record.getFromTakes();

    // Ctrl+C or SIGTERM: the worker stops and undoes what it copied.
    CancelOnSignal interrupt;
    BLClipCopyCtrl ctrl(nullptr, record, nullptr, nullptr);
    if (!verify)
        ctrl.setVerify(false);
    bool ready = false, copied = false;
    {
        TerminalProgressView progress("MiB");
        ready = ctrl.checkRequest(destination.fileName()) == BLClipCopyCtrl::kCheckReady;
        copied = ready && !interrupt.received() && ctrl.execClipCopy();
    }
    if (ready && !copied && ctrl.getClipCtrl().getNewFolderFlag())
        QDir().rmdir(destination.filePath()); // the folder the copy made, empty again
    if (!copied) {
        if (interrupt.received())
            cliErr() << "clipwright-cli copy: cancelled; " << destination.filePath() << " is as it was"
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
