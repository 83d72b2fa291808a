// clipwright-cli move: moves takes of one work folder into another with the
// checks, worker and move back of the move dialog, without a window. SIGINT
// and SIGTERM cancel like the dialog's Cancel button.
#include "CliCommand.h"

#include "core/operations/BLClipMoveCtrl.h"
#include "core/services/BLCommon.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

int runMove(const QStringList& args)
{
    QStringList rest = args;
    const bool json = rest.removeAll(QStringLiteral("--json")) > 0;
    if (rest.size() < 2 ||
        std::any_of(rest.begin(), rest.end(), [](const QString& a) { return a.startsWith('-'); }))
        return cliUsage("move");
    StderrPresenter presenter("move");
    DOClipCtrl record;
    if (const int status = transferRecord("move", "moved", rest, &record))
        return status;
    const QString source = record.sourceWorkFolder();
    const QFileInfo destination(record.destinationWorkFolder());
    const QList<DOTakeData> chosen = record.getFromTakes();

    // Ctrl+C or SIGTERM: the worker stops and moves back what it moved.
    CancelOnSignal interrupt;
    BLClipMoveCtrl ctrl(nullptr, record, nullptr, nullptr);
    bool ready = false, moved = false;
    {
        TerminalProgressView progress("");
        ready = ctrl.checkRequest(destination.fileName()) == BLClipMoveCtrl::kCheckReady;
        moved = ready && !interrupt.received() && ctrl.execClipMove();
    }
    const BLClipMoveThread* run = ctrl.lastRun();
    if (ready && !run && ctrl.getClipCtrl().getNewFolderFlag())
        QDir().rmdir(destination.filePath()); // the folder the checks made, still empty
    if (!moved) {
        if (interrupt.received() && (!run || run->isRestored()))
            cliErr() << "clipwright-cli move: cancelled; every take is back in " << source << Qt::endl;
        return kExitFailed;
    }

    if (json) {
        QJsonArray movedTakes;
        for (const DOTakeData& take : chosen)
            movedTakes.append(QJsonObject{{"takeId", take.getShownTakeID()}, {"umid", take.getUmid()}});
        cliOut() << QJsonDocument(QJsonObject{{"source", source},
                                              {"destination", destination.filePath()},
                                              {"copiedAcrossFileSystems", run->isCrossVolume()},
                                              {"takes", movedTakes},
                                              {"files", run->movedFiles()},
                                              {"bytes", run->movedBytes()}})
                        .toJson(QJsonDocument::Indented);
    } else {
        cliOut() << chosen.size() << (chosen.size() == 1 ? " take, " : " takes, ") << run->movedFiles()
                 << " files, " << BLCommon::sizeText(run->movedBytes()) << " moved to "
                 << destination.filePath()
                 << (run->isCrossVolume() ? " (copied and verified across file systems)" : "") << "\n";
    }
    return kExitOk;
}
