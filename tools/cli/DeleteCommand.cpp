// clipwright-cli delete: deletes takes of a work folder with the checks and
// worker of a pane's Delete command, without a window. It asks first unless
// told --yes, and never guesses an answer when there is no terminal to ask
// on. SIGINT and SIGTERM cancel like the dialog's Cancel button: the take in
// progress is finished and no further take is deleted.
#include "CliCommand.h"

#include "core/operations/BLClipDeleteCtrl.h"
#include "core/services/BLCommon.h"

#include <QFileInfo>

#include <cstdio>
#include <unistd.h>

namespace {

QString takesText(qsizetype count)
{
    return QString::number(count) + (count == 1 ? QStringLiteral(" take") : QStringLiteral(" takes"));
}

// Asks on the terminal; only "y" or "yes" deletes.
bool confirmed(qsizetype count, const QString& workFolder)
{
    cliErr() << "Delete " << takesText(count) << " from " << workFolder << "? [y/N] " << Qt::flush;
    QTextStream in(stdin);
    const QString answer = in.readLine().trimmed().toLower();
    return answer == QLatin1String("y") || answer == QLatin1String("yes");
}

} // namespace

int runDelete(const QStringList& args)
{
    QStringList rest = args;
    const bool yes = rest.removeAll(QStringLiteral("--yes")) > 0;
    if (rest.size() < 2 ||
        std::any_of(rest.begin(), rest.end(), [](const QString& a) { return a.startsWith('-'); }))
        return cliUsage("delete");
    QTextStream& err = cliErr();
    const QString workFolder = cliWorkFolder(rest.at(0));
    QStringList ids = rest.mid(1);
    ids.removeDuplicates();
    if (!BLCommon::isBPAVFolder(workFolder)) {
        err << "clipwright-cli delete: " << workFolder << ": no BPAV folder" << Qt::endl;
        return kExitFailed;
    }
    // Refused before the folder is even read: nothing may change unasked.
    if (!yes && ::isatty(STDIN_FILENO) != 1) {
        err << "clipwright-cli delete: stdin is not a terminal to ask on; pass --yes to delete without "
               "asking"
            << Qt::endl;
        return kExitUsage;
    }

    StderrPresenter presenter("delete");
    QList<DOTakeData> takes, chosen;
    if (!chooseTakes("delete", workFolder, ids, nullptr, &takes, &chosen))
        return kExitFailed;
    if (!yes && !confirmed(chosen.size(), workFolder)) {
        err << "clipwright-cli delete: nothing deleted" << Qt::endl;
        return kExitFailed;
    }

    DOClipCtrl record;
    record.setSourceWorkFolder(workFolder);
    record.setFromTakes(chosen);
    record.setBeforeTakes(takes);
    record.setToTakes(takes);

    // Ctrl+C or SIGTERM: the take in progress is finished, the rest stay.
    CancelOnSignal interrupt;
    BLClipDeleteCtrl ctrl(record, nullptr);
    bool deleted = false;
    {
        TerminalProgressView progress(""); // takes at first, then paths
        deleted = ctrl.clipDelete(false);
    }
    const BLClipDeleteThread* run = ctrl.lastRun();
    if (!run)
        return kExitFailed; // a check refused, and said why
    cliOut() << run->clipCtrl().getDelUmid().size() << " of " << takesText(chosen.size()) << " deleted from "
             << workFolder << "\n";
    if (deleted)
        return kExitOk;
    if (interrupt.received())
        err << "clipwright-cli delete: cancelled; the take in progress was finished, no further take was "
               "deleted"
            << Qt::endl;
    else if (!run->isMediaProWritten())
        err << "clipwright-cli delete: " << workFolder << ": the media profile could not be rewritten"
            << Qt::endl;
    else if (run->failedUmids().isEmpty())
        err << "clipwright-cli delete: " << workFolder << ": the cue-up info could not be updated"
            << Qt::endl;
    return kExitFailed;
}
