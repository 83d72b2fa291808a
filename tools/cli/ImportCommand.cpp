// clipwright-cli import: imports MP4 files into a work folder with the checks,
// worker and roll-back of the import dialog, without a window. SIGINT and
// SIGTERM cancel like the progress dialog's Cancel button.
#include "CliCommand.h"

#include "core/operations/import/BLMP4ImportCtrl.h"
#include "core/services/BLCommon.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

int runImport(const QStringList& args)
{
    QStringList rest = args;
    const bool json = rest.removeAll(QStringLiteral("--json")) > 0;
    const bool verify = rest.removeAll(QStringLiteral("--no-verify")) == 0;
    if (rest.size() < 2 ||
        std::any_of(rest.begin(), rest.end(), [](const QString& a) { return a.startsWith('-'); }))
        return cliUsage("import");
    StderrPresenter presenter("import");
    const QString destination = cliWorkFolder(rest.takeFirst());
    if (!BLCommon::isFolder(destination)) {
        cliErr() << "clipwright-cli import: " << destination << ": not a folder" << Qt::endl;
        return kExitFailed;
    }
    QStringList files;
    for (const QString& file : std::as_const(rest))
        files << QFileInfo(file).absoluteFilePath();

    BLMP4ImportCtrl ctrl(nullptr, DOMP4Import(destination), nullptr);
    if (!verify)
        ctrl.setVerify(false);
    if (!ctrl.addFiles(files))
        return kExitFailed;
    QList<bool> moved;
    for (const QString& file : std::as_const(files))
        moved << ctrl.isInDestinationCLPR(file);

    // Ctrl+C or SIGTERM: the worker stops and undoes every file.
    CancelOnSignal interrupt;
    bool imported = false;
    {
        TerminalProgressView progress("MiB");
        imported = !interrupt.received() && ctrl.execImport();
    }
    if (!imported) {
        if (interrupt.received() || ctrl.isCancelled())
            cliErr() << "clipwright-cli import: cancelled; " << destination << " is as it was" << Qt::endl;
        return kExitFailed;
    }

    const QList<DOTakeData> takes = ctrl.getImport().getAddTake();
    qint64 bytes = 0;
    QJsonArray clips;
    for (int i = 0; i < takes.size(); ++i) {
        const QString clip = ctrl.getImport().clipName(i + 1);
        const QString mp4 =
            BLCommon::makeFilePath(BLCommon::getPathOfBPAV(destination), {takes[i].getMP4Uri()});
        const qint64 size = QFileInfo(mp4).size();
        bytes += size;
        clips.append(QJsonObject{{"clip", clip},
                                 {"source", files.value(i)},
                                 {"mp4", mp4},
                                 {"umid", takes[i].getUmid()},
                                 {"moved", moved.value(i)},
                                 {"size", size}});
    }
    if (json) {
        cliOut() << QJsonDocument(QJsonObject{{"destination", destination},
                                              {"verified", verify},
                                              {"clips", clips},
                                              {"bytes", bytes}})
                        .toJson(QJsonDocument::Indented);
    } else {
        cliOut() << takes.size() << (takes.size() == 1 ? " file, " : " files, ") << BLCommon::sizeText(bytes)
                 << " imported into " << destination << " as " << ctrl.getImport().clipName(1)
                 << (takes.size() > 1 ? QStringLiteral("..%1").arg(takes.size(), 2, 10, QLatin1Char('0'))
                                      : QString())
                 << "\n";
    }
    return kExitOk;
}
