// clipwright-cli scan: housekeeping of a work folder, as a pane runs it when it
// loads the folder (the folder's index files are repaired on the way), and
// the takes it finds.
#include "CliCommand.h"

#include "core/card/BLHouseKeepingCtrl.h"
#include "core/services/BLCommon.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

QString kindOf(const DOTakeData& take)
{
    if (take.getTakeStatus() == 4)
        return QStringLiteral("loose");
    return take.getSingleClipFlag() ? QStringLiteral("single") : QStringLiteral("multi");
}

QJsonObject describe(const DOTakeData& take)
{
    QJsonArray clipUmids;
    for (const DOClipData& clip : take.getClipData())
        clipUmids.append(clip.getUmid());
    return QJsonObject{
        {"takeId", take.getShownTakeID()},
        {"umid", take.getUmid()},
        {"status", take.getTakeStatus()},
        {"kind", kindOf(take)},
        {"clipCount", take.getSingleClipFlag() ? 1 : int(take.getClipData().size())},
        {"clipUmids", clipUmids},
        {"mediaSpanning", take.getMediaSpanning()},
        {"frames", take.getTakeDuration()},
        {"duration", BLCommon::convertOfDurationByTakeData(take)},
        {"frameRate", take.getFormatFps()},
        {"videoFormat", take.getVideoFormat()},
        {"videoCodec", take.getVideoCodec()},
        {"size", take.getTakeSize()},
    };
}

void printText(const QString& workFolder, const QJsonArray& takes)
{
    QTextStream& out = cliOut();
    out << workFolder << ": " << takes.size() << (takes.size() == 1 ? " take" : " takes") << "\n";
    for (const QJsonValue& value : takes) {
        const QJsonObject take = value.toObject();
        const QString id = take["takeId"].toString();
        out << (id.isEmpty() ? QStringLiteral("-") : id).leftJustified(12) << " "
            << take["kind"].toString().leftJustified(6) << " "
            << QString::number(take["clipCount"].toInt()).rightJustified(3) << " clip(s)  status "
            << take["status"].toInt() << "  " << take["duration"].toString() << "  "
            << take["frameRate"].toString().leftJustified(7) << " "
            << take["videoFormat"].toString().leftJustified(10) << " "
            << QString::number(take["size"].toInteger()) << " bytes\n"
            << "             UMID " << take["umid"].toString() << "\n";
    }
}

} // namespace

int runScan(const QStringList& args)
{
    QStringList rest = args;
    const bool json = rest.removeAll("--json") > 0;
    if (rest.size() != 1 || rest.first().startsWith('-'))
        return cliUsage("scan");
    const QString workFolder = QFileInfo(rest.first()).absoluteFilePath();
    if (!BLCommon::isBPAVFolder(workFolder)) {
        cliErr() << "clipwright-cli scan: " << workFolder << ": no BPAV folder" << Qt::endl;
        return kExitFailed;
    }

    StderrPresenter presenter("scan");
    BLHouseKeepingCtrl houseKeeping;
    const QList<DOTakeData> takes = houseKeeping.doHouseKeeping(workFolder);

    QJsonArray repairs;
    for (const BLHouseKeepingCtrl::Repair& repair : houseKeeping.getRepairs()) {
        QJsonObject entry{{"file", repair.file}, {"action", repair.action}, {"detail", repair.detail}};
        cliErr() << "clipwright-cli scan: " << repair.file << " " << repair.action << ": " << repair.detail;
        if (!repair.copy.isEmpty()) {
            entry["copy"] = repair.copy;
            cliErr() << " (the damaged file is kept at " << repair.copy << ")";
        }
        cliErr() << Qt::endl;
        repairs.append(entry);
    }
    QJsonArray all;
    for (const DOTakeData& take : takes)
        all.append(describe(take));
    if (json)
        cliOut() << QJsonDocument(
                        QJsonObject{{"workFolder", workFolder}, {"takes", all}, {"repairs", repairs}})
                        .toJson(QJsonDocument::Indented);
    else
        printText(workFolder, all);
    if (houseKeeping.isIndexUnreadable() && takes.isEmpty()) {
        cliErr() << "clipwright-cli scan: " << workFolder
                 << ": the folder's media profile could not be read or made, and no take was found"
                 << Qt::endl;
        return kExitFailed;
    }
    return kExitOk;
}
