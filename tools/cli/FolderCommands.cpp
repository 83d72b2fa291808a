// clipwright-cli divide, combine and media-name: the folder division, the
// folder combine and the media-name change of the Folder menu, with their
// checks and workers, without a window. SIGINT and SIGTERM cancel a division
// or combine like the dialog's Cancel button: every take goes back.
#include "CliCommand.h"

#include "core/card/BLHouseKeepingCtrl.h"
#include "core/operations/BLFolderCombineCtrl.h"
#include "core/operations/BLFolderCombineThread.h"
#include "core/operations/BLFolderDivisionCtrl.h"
#include "core/operations/BLFolderDivisionThread.h"
#include "core/operations/BLMediaNameChangeCtrl.h"
#include "core/services/BLCommon.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

bool hasOption(const QStringList& args)
{
    return std::any_of(args.begin(), args.end(), [](const QString& a) { return a.startsWith('-'); });
}

QJsonArray takesOf(const QList<DOTakeData>& takes)
{
    QJsonArray array;
    for (const DOTakeData& take : takes) {
        QJsonObject object{{"takeId", take.getShownTakeID()}, {"umid", take.getUmid()}};
        if (take.getTotalTakeCount() > 1) {
            object["part"] = take.getTakeNumber();
            object["parts"] = take.getTotalTakeCount();
        }
        array.append(object);
    }
    return array;
}

void cancelled(const char* command, const QString& folder)
{
    cliErr() << "clipwright-cli " << command << ": cancelled; every take is back in " << folder << Qt::endl;
}

} // namespace

int runDivide(const QStringList& args)
{
    QStringList rest = args;
    const bool json = rest.removeAll(QStringLiteral("--json")) > 0;
    const qsizetype option = rest.indexOf(QStringLiteral("--capacity"));
    if (option < 0 || option + 1 >= rest.size())
        return cliUsage("divide");
    const QString capacity = rest.takeAt(option + 1);
    rest.removeAt(option);
    if (rest.size() != 1 || hasOption(rest))
        return cliUsage("divide");
    StderrPresenter presenter("divide");
    const QString folder = cliWorkFolder(rest.front());
    if (!BLCommon::isFolder(folder)) {
        cliErr() << "clipwright-cli divide: " << folder << " is not a folder" << Qt::endl;
        return kExitFailed;
    }
    const QList<DOTakeData> takes = BLHouseKeepingCtrl().doHouseKeeping(folder);
    CancelOnSignal interrupt;
    BLFolderDivisionCtrl ctrl(nullptr, takes, folder, nullptr);
    bool divided = false;
    {
        TerminalProgressView progress("");
        divided = ctrl.execFolderDivision(capacity);
    }
    if (!divided) {
        if (interrupt.received() && ctrl.lastRun() && ctrl.lastRun()->isRestored())
            cancelled("divide", folder);
        return kExitFailed;
    }
    if (json) {
        QJsonArray folders;
        for (const DOClipCtrl& record : ctrl.records())
            folders.append(QJsonObject{{"path", record.destinationWorkFolder()},
                                       {"takes", takesOf(record.getToTakes())}});
        cliOut() << QJsonDocument(
                        QJsonObject{{"folder", folder}, {"capacityGB", capacity}, {"folders", folders}})
                        .toJson(QJsonDocument::Indented);
    } else {
        for (const DOClipCtrl& record : ctrl.records())
            cliOut() << record.destinationWorkFolder() << ": " << record.getToTakes().size()
                     << (record.getToTakes().size() == 1 ? " take\n" : " takes\n");
    }
    return kExitOk;
}

int runCombine(const QStringList& args)
{
    QStringList rest = args;
    const bool json = rest.removeAll(QStringLiteral("--json")) > 0;
    const bool deleteSources = rest.removeAll(QStringLiteral("--delete-sources")) > 0;
    if (rest.size() < 2 || hasOption(rest))
        return cliUsage("combine");
    StderrPresenter presenter("combine");
    const QString destination = cliWorkFolder(rest.takeFirst());
    if (!BLCommon::isFolder(destination)) {
        cliErr() << "clipwright-cli combine: " << destination << " is not a folder" << Qt::endl;
        return kExitFailed;
    }
    DOClipCtrl record;
    record.setCopyToFolder(QFileInfo(destination).path());
    record.setCopyToFolderName(QFileInfo(destination).fileName());
    record.setToTakes(BLHouseKeepingCtrl().doHouseKeeping(destination));
    BLFolderCombineCtrl ctrl(nullptr, record);
    QStringList names;
    for (const QString& argument : std::as_const(rest)) {
        const QString source = cliWorkFolder(argument);
        const QString name = QFileInfo(source).fileName();
        if (ctrl.siblingPath(name) != source || source == destination) {
            cliErr() << "clipwright-cli combine: " << source << " is not a folder beside " << destination
                     << Qt::endl;
            return kExitUsage;
        }
        names << name;
    }

    CancelOnSignal interrupt;
    bool combined = false;
    {
        TerminalProgressView progress("");
        combined = ctrl.execFolderCombine(names, deleteSources);
    }
    const BLFolderCombineThread* run = ctrl.lastRun();
    if (!combined) {
        if (interrupt.received() && run && run->isRestored())
            cancelled("combine", "their folders");
        return kExitFailed;
    }
    const QList<DOTakeData> takes = run ? run->records().back().getToTakes() : record.getToTakes();
    if (json) {
        QJsonArray sources;
        for (const QString& name : std::as_const(names))
            sources.append(ctrl.siblingPath(name));
        cliOut() << QJsonDocument(QJsonObject{{"destination", destination},
                                              {"sources", sources},
                                              {"deleted", QJsonArray::fromStringList(ctrl.deletedFolders())},
                                              {"takes", takesOf(takes)}})
                        .toJson(QJsonDocument::Indented);
    } else {
        cliOut() << destination << ": " << takes.size() << (takes.size() == 1 ? " take" : " takes");
        if (!ctrl.deletedFolders().isEmpty())
            cliOut() << "; deleted " << ctrl.deletedFolders().join(", ");
        cliOut() << "\n";
    }
    return kExitOk;
}

int runMediaName(const QStringList& args)
{
    if (args.isEmpty() || args.size() > 2 || args.front().startsWith('-'))
        return cliUsage("media-name");
    StderrPresenter presenter("media-name");
    const QString folder = cliWorkFolder(args.front());
    BLMediaNameChangeCtrl ctrl(nullptr, nullptr);
    if (args.size() == 1) {
        if (!BLCommon::isFolder(folder) || !ctrl.preShowModal(folder)) {
            cliErr() << "clipwright-cli media-name: cannot read the media profile of " << folder << Qt::endl;
            return kExitFailed;
        }
        cliOut() << ctrl.defaultName() << "\n";
        return kExitOk;
    }
    return ctrl.changeMediaName(folder, args.at(1)) ? kExitOk : kExitFailed;
}
