// What the operation commands share: the progress line on a terminal, the
// choice of takes by ID and the cancel by signal.
#include "CliCommand.h"

#include "core/card/BLHouseKeepingCtrl.h"
#include "core/services/BLCommon.h"
#include "core/services/BLLocalizedStrings.h"
#include "core/services/BLProgressCtrl.h"

#include <QDir>
#include <QFileInfo>

#include <unistd.h>

TerminalProgressView::TerminalProgressView(const char* unit)
    : m_unit(QString::fromLatin1(unit)), m_shown(::isatty(STDERR_FILENO) == 1)
{
    BLProgressCtrl::sharedCtrl()->setView(this);
}

TerminalProgressView::~TerminalProgressView()
{
    BLProgressCtrl::sharedCtrl()->setView(nullptr);
    if (m_printed)
        cliErr() << Qt::endl;
}

void TerminalProgressView::setMessage(const QString& message)
{
    BLHeadlessProgressView::setMessage(message);
    print();
}

void TerminalProgressView::setDeterminate(double value, double min, double max)
{
    BLHeadlessProgressView::setDeterminate(value, min, max);
    print();
}

void TerminalProgressView::print()
{
    if (!m_shown)
        return;
    cliErr() << "\r\033[K" << BLLocalizedString(message());
    if (isDeterminate() && maximum() > minimum()) {
        cliErr() << "  " << qint64(value()) << " / " << qint64(maximum());
        if (!m_unit.isEmpty())
            cliErr() << " " << m_unit;
    }
    cliErr().flush();
    m_printed = true;
}

CancelOnSignal::CancelOnSignal()
{
    // Before the operation nothing happens; during it the worker stops as on
    // the dialog's Cancel button.
    QObject::connect(&m_signals, &TerminationSignals::received, [this] {
        m_received = true;
        BLProgressCtrl::sharedCtrl()->onCancel();
    });
}

QString cliWorkFolder(const QString& argument)
{
    return QDir::cleanPath(QFileInfo(argument).absoluteFilePath());
}

bool chooseTakes(const char* command, const QString& workFolder, const QStringList& ids,
                 const char* transferred, QList<DOTakeData>* takes, QList<DOTakeData>* chosen)
{
    QTextStream& err = cliErr();
    const QString prefix = QStringLiteral("clipwright-cli %1: ").arg(QLatin1String(command));
    *takes = BLHouseKeepingCtrl().doHouseKeeping(workFolder);
    chosen->clear();
    for (const QString& id : ids) {
        const auto take = std::find_if(takes->begin(), takes->end(),
                                       [&](const DOTakeData& t) { return t.getShownTakeID() == id; });
        if (take == takes->end()) {
            err << prefix << workFolder << ": no take " << id << Qt::endl;
            return false;
        }
        if (transferred && take->getTakeStatus() >= 4) {
            err << prefix << id
                << (take->getTakeStatus() == 4 ? ": an MP4 file not imported yet" : ": an unusable take")
                << " cannot be " << transferred << Qt::endl;
            return false;
        }
        *chosen << take->copyTake();
    }
    if (ids.isEmpty() && transferred) {
        for (const DOTakeData& take : *takes)
            if (take.getTakeStatus() < 4)
                *chosen << take.copyTake();
    }
    if (chosen->isEmpty()) {
        err << prefix << workFolder << ": no take to " << command << Qt::endl;
        return false;
    }
    return true;
}

int transferRecord(const char* command, const char* transferred, const QStringList& args, DOClipCtrl* record)
{
    QTextStream& err = cliErr();
    const QString prefix = QStringLiteral("clipwright-cli %1: ").arg(QLatin1String(command));
    const QString source = cliWorkFolder(args.at(0));
    const QFileInfo destination(cliWorkFolder(args.at(1)));
    if (!BLCommon::isBPAVFolder(source)) {
        err << prefix << source << ": no BPAV folder" << Qt::endl;
        return kExitFailed;
    }
    if (!QFileInfo(destination.path()).isDir()) {
        err << prefix << destination.path() << ": no such folder" << Qt::endl;
        return kExitFailed;
    }
    QList<DOTakeData> takes, chosen;
    if (!chooseTakes(command, source, args.mid(2), transferred, &takes, &chosen))
        return kExitFailed;
    record->setSourceWorkFolder(source);
    record->setDestinationWorkFolder(destination.filePath());
    record->setFromTakes(chosen);
    record->setBeforeTakes(takes);
    return kExitOk;
}
