// clipwright-cli offload and verify: copies a card folder to several
// destinations at once, verified and with an ASC MHL history, and checks a
// folder against its history later. SIGINT and SIGTERM cancel an offload.
#include "CliCommand.h"

#include "core/operations/offload/BLOffloadCtrl.h"
#include "core/operations/offload/BLOffloadThread.h"
#include "core/services/BLCommon.h"
#include "core/services/BLProgressCtrl.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

void printCheck(const BLMhlHistory::Check& check, const char* command)
{
    for (const QString& path : check.altered)
        cliErr() << "clipwright-cli " << command << ": altered " << path << Qt::endl;
    for (const QString& path : check.missing)
        cliErr() << "clipwright-cli " << command << ": missing " << path << Qt::endl;
    for (const QString& path : check.added)
        cliErr() << "clipwright-cli " << command << ": new " << path << Qt::endl;
}

} // namespace

int runOffload(const QStringList& args)
{
    QStringList rest = args;
    const bool json = rest.removeAll(QStringLiteral("--json")) > 0;
    QString name;
    if (const qsizetype at = rest.indexOf(QStringLiteral("--name")); at >= 0) {
        if (at + 1 >= rest.size())
            return cliUsage("offload");
        name = rest.takeAt(at + 1);
        rest.removeAt(at);
        if (!BLCommon::checkHyphenationCharacter(name))
            return cliUsage("offload");
    }
    if (rest.size() < 2 || rest.size() > 1 + BLOffloadThread::kMaxDestinations ||
        std::any_of(rest.begin(), rest.end(), [](const QString& a) { return a.startsWith('-'); }))
        return cliUsage("offload");
    const QString source = cliWorkFolder(rest.takeFirst());
    if (!QFileInfo(source).isDir()) {
        cliErr() << "clipwright-cli offload: " << source << ": no such folder" << Qt::endl;
        return kExitFailed;
    }
    if (name.isEmpty())
        name = BLOffloadCtrl::defaultName(source);
    QStringList destinations;
    for (const QString& argument : rest) {
        const QString folder = cliWorkFolder(argument);
        const QString problem = BLOffloadCtrl::destinationProblem(source, folder, name, destinations);
        if (!problem.isEmpty()) {
            cliErr() << "clipwright-cli offload: " << problem << Qt::endl;
            return kExitFailed;
        }
        destinations << folder + '/' + name;
    }

    StderrPresenter presenter("offload");
    CancelOnSignal interrupt;
    auto worker = std::make_shared<BLOffloadThread>(source, destinations);
    {
        TerminalProgressView progress("MiB");
        BLProgressCtrl::sharedCtrl()->showProgress(worker, true);
    }
    printCheck(worker->sourceCheck(), "offload");
    if (!worker->sourceError().isEmpty())
        cliErr() << "clipwright-cli offload: " << worker->sourceError() << Qt::endl;
    if (worker->wasCancelled()) {
        cliErr() << "clipwright-cli offload: cancelled; no copy was kept" << Qt::endl;
        return kExitFailed;
    }

    bool all = worker->sourceError().isEmpty();
    QJsonArray results;
    for (const BLOffloadThread::Destination& d : worker->destinations()) {
        all = all && d.verified;
        QJsonObject result{{"destination", d.path}, {"result", d.verified ? "verified" : "failed"}};
        if (d.verified) {
            QJsonArray files;
            for (const BLMhlHistory::Entry& e : worker->files())
                files.append(QJsonObject{{"path", e.path},
                                         {"size", e.size},
                                         {"xxh64", BLMhlHistory::hashText(e.hash)},
                                         {"action", e.action}});
            result["files"] = files;
            result["bytes"] = worker->totalBytes();
            result["manifest"] = d.manifest;
            if (!json)
                cliOut() << d.path << ": " << worker->files().size() << " files, "
                         << BLCommon::sizeText(worker->totalBytes()) << " verified\n";
        } else if (!d.reason.isEmpty()) {
            result["file"] = d.failedFile;
            result["reason"] = d.reason;
            cliErr() << "clipwright-cli offload: " << d.path << " failed"
                     << (d.failedFile.isEmpty() ? QString() : QStringLiteral(" at ") + d.failedFile) << ": "
                     << d.reason << "; its copy was removed" << Qt::endl;
        }
        results.append(result);
    }
    if (json)
        cliOut() << QJsonDocument(QJsonObject{{"source", source}, {"destinations", results}})
                        .toJson(QJsonDocument::Indented);
    return all ? kExitOk : kExitFailed;
}

int runVerify(const QStringList& args)
{
    QStringList rest = args;
    const bool json = rest.removeAll(QStringLiteral("--json")) > 0;
    const bool seal = rest.removeAll(QStringLiteral("--seal")) > 0;
    if (rest.size() != 1 || rest[0].startsWith('-'))
        return cliUsage("verify");
    const QString folder = cliWorkFolder(rest[0]);
    BLMhlHistory history(folder);
    if (!QFileInfo(folder).isDir() || !history.load() || history.lastGeneration() == 0) {
        cliErr() << "clipwright-cli verify: " << folder << ": "
                 << (history.error().isEmpty() ? QStringLiteral("no ascmhl history") : history.error())
                 << Qt::endl;
        return kExitFailed;
    }
    const BLMhlHistory::Check check = history.check(nullptr);
    printCheck(check, "verify");
    QString manifest;
    if (check.ok() && seal) {
        manifest = history.writeGeneration(check.entries, QStringLiteral("in-place"));
        if (manifest.isEmpty())
            cliErr() << "clipwright-cli verify: " << history.error() << Qt::endl;
    }
    if (json) {
        QJsonObject report{{"folder", folder},
                           {"generation", history.lastGeneration()},
                           {"altered", QJsonArray::fromStringList(check.altered)},
                           {"missing", QJsonArray::fromStringList(check.missing)},
                           {"new", QJsonArray::fromStringList(check.added)},
                           {"result", check.ok() ? "verified" : "failed"}};
        if (!manifest.isEmpty())
            report["manifest"] = manifest;
        cliOut() << QJsonDocument(report).toJson(QJsonDocument::Indented);
    } else if (check.ok()) {
        cliOut() << folder << ": " << check.entries.size() - check.added.size() << " files verified"
                 << (manifest.isEmpty() ? QString() : QStringLiteral(", sealed in ") + manifest) << "\n";
    }
    return check.ok() && (!seal || !manifest.isEmpty()) ? kExitOk : kExitFailed;
}
