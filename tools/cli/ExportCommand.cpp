// clipwright-cli export: exports takes of a work folder as MPEG-2 transport
// streams with the checks and conversion of the export dialog, without a
// window. SIGINT and SIGTERM cancel like the dialog's Cancel button.
#include "CliCommand.h"

#include "core/card/BLHouseKeepingCtrl.h"
#include "core/operations/export/BLMPEG2TSConvertCtrl.h"
#include "core/services/BLCommon.h"

#include <QEventLoop>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <unistd.h>

namespace {

// The export dialog on the terminal: Start at once with the destination
// given, progress on stderr when it is a terminal, done when the run ends.
class ExportView : public IMPEG2TSConvertView
{
public:
    explicit ExportView(const QString& destination)
        : m_destination(destination), m_shown(::isatty(STDERR_FILENO) == 1)
    {
    }
    ~ExportView() override
    {
        if (m_printed)
            cliErr() << Qt::endl;
    }

    void setDestinationLabel(const QString&) override {}
    void setPath(const QString& path) override { m_path = path; }
    QString path() const override { return m_path; }
    void setCounter(const QString& text) override { m_counter = text; }
    void setMessage(const QString& text) override
    {
        m_message = text.section(QLatin1Char('\r'), -1);
        print();
    }
    void setProgress(int value) override
    {
        m_value = value;
        print();
    }
    void setButtons(bool, bool) override {}
    QString chooseFolder(const QString&) override { return QString(); }
    void runModal(IMPEG2TSConvertCtrl* ctrl) override
    {
        setPath(m_destination);
        ctrl->onStart();
        if (static_cast<BLMPEG2TSConvertCtrl*>(ctrl)->isRunning())
            m_loop.exec();
    }
    void endModal() override { m_loop.quit(); }
    void exportDidEnd(bool) override { m_loop.quit(); }

private:
    void print()
    {
        if (!m_shown || m_counter.isEmpty())
            return;
        cliErr() << "\r\033[K" << m_counter << "  " << m_value << "%  " << m_message;
        cliErr().flush();
        m_printed = true;
    }

    QString m_destination, m_path, m_counter, m_message;
    int m_value = 0;
    bool m_shown;
    bool m_printed = false;
    QEventLoop m_loop;
};

} // namespace

int runExport(const QStringList& args)
{
    QStringList rest = args;
    const bool json = rest.removeAll(QStringLiteral("--json")) > 0;
    if (rest.size() < 2 ||
        std::any_of(rest.begin(), rest.end(), [](const QString& a) { return a.startsWith('-'); }))
        return cliUsage("export");
    StderrPresenter presenter("export");
    const QString source = cliWorkFolder(rest.at(0));
    const QString destination = cliWorkFolder(rest.at(1));
    if (!BLCommon::isBPAVFolder(source)) {
        cliErr() << "clipwright-cli export: " << source << ": no BPAV folder" << Qt::endl;
        return kExitFailed;
    }
    QList<DOTakeData> chosen;
    if (rest.size() > 2) {
        QList<DOTakeData> takes;
        if (!chooseTakes("export", source, rest.mid(2), nullptr, &takes, &chosen))
            return kExitFailed;
    }
    const auto exportable = [](const DOTakeData& take) {
        return take.getTakeStatus() < 4 && !take.IsHQMode();
    };
    if (rest.size() == 2) {
        for (const DOTakeData& take : BLHouseKeepingCtrl().doHouseKeeping(source))
            if (exportable(take))
                chosen << take.copyTake();
    }
    for (const DOTakeData& take : std::as_const(chosen)) {
        if (!exportable(take)) {
            cliErr() << "clipwright-cli export: " << take.getShownTakeID()
                     << (take.IsHQMode() ? ": a take in HQ mode" : ": a take not imported or unusable")
                     << " cannot be exported" << Qt::endl;
            return kExitFailed;
        }
    }
    if (chosen.isEmpty()) {
        cliErr() << "clipwright-cli export: " << source << ": no take to export" << Qt::endl;
        return kExitFailed;
    }

    DOMPEG2TSConvert mpeg;
    // A folder given with its "/" is never taken for a file name in its parent.
    ExportView view(chosen.size() == 1 ? DOMPEG2TSConvert::getMPEG2TSFullFileName(destination, chosen, 0)
                                       : destination + QLatin1Char('/'));
    BLMPEG2TSConvertCtrl ctrl(mpeg, &view);
    TerminationSignals termination;
    bool interrupted = false;
    QObject::connect(&termination, &TerminationSignals::received, [&] {
        interrupted = true;
        ctrl.onCancel();
    });
    ctrl.showModal(source, chosen);
    if (!ctrl.isFinished()) {
        if (interrupted)
            cliErr() << "clipwright-cli export: cancelled; no partial file is left in " << destination
                     << Qt::endl;
        return kExitFailed;
    }

    QJsonArray files;
    for (int i = 0; i < chosen.size(); ++i) {
        const QString file = DOMPEG2TSConvert::getMPEG2TSFullFileName(destination, chosen, i);
        files.append(QJsonObject{{"takeId", chosen[i].getShownTakeID()},
                                 {"umid", chosen[i].getUmid()},
                                 {"file", file},
                                 {"size", QFileInfo(file).size()}});
    }
    if (json)
        cliOut() << QJsonDocument(
                        QJsonObject{{"source", source}, {"destination", destination}, {"takes", files}})
                        .toJson(QJsonDocument::Indented);
    else
        cliOut() << chosen.size() << (chosen.size() == 1 ? " take" : " takes") << " exported to "
                 << destination << "\n";
    return kExitOk;
}
