#pragma once

#include "core/card/DOClipCtrl.h"
#include "core/card/DOTakeData.h"
#include "core/services/BLHeadlessProgressView.h"
#include "core/services/IMessagePresenter.h"
#include "core/services/TerminationSignals.h"

#include <QStringList>
#include <QTextStream>

// One subcommand of clipwright-cli. run gets the arguments after the
// subcommand name and answers the exit status: 0 success, 1 failure, 2 usage.
struct CliCommand
{
    const char* name;
    const char* arguments; // shown in the usage text
    const char* summary;
    int (*run)(const QStringList& args);
};

constexpr int kExitOk = 0;
constexpr int kExitFailed = 1;
constexpr int kExitUsage = 2;

QTextStream& cliOut();
QTextStream& cliErr();
// Prints the usage line of a subcommand to stderr and answers kExitUsage.
int cliUsage(const char* name);

// Shows the program's alerts on stderr, prefixed with the command, and answers
// them as their first button would (OK). Installed for its lifetime.
class StderrPresenter : public IMessagePresenter
{
public:
    explicit StderrPresenter(const char* command);
    ~StderrPresenter() override;
    int showAlert(const SCAlert& alert) override;

private:
    QString m_command;
};

// The progress dialog of an operation as one line on stderr, kept up to date
// when stderr is a terminal (values followed by the unit, when given).
// Installed as the progress view for its lifetime.
class TerminalProgressView : public BLHeadlessProgressView
{
public:
    explicit TerminalProgressView(const char* unit);
    ~TerminalProgressView() override;
    void setMessage(const QString& message) override;
    void setDeterminate(double value, double min, double max) override;

private:
    void print();

    QString m_unit;
    bool m_shown;
    bool m_printed = false;
};

// SIGINT and SIGTERM press the progress dialog's Cancel button, for its lifetime.
class CancelOnSignal
{
public:
    CancelOnSignal();
    bool received() const { return m_received; }

private:
    TerminationSignals m_signals;
    bool m_received = false;
};

// An argument naming a folder, as an absolute clean path.
QString cliWorkFolder(const QString& argument);
// The takes of a work folder (after housekeeping) and those of them named by
// their IDs. For a copy or a move (transferred: "copied", "moved") no ID
// means every take that can be, and a take not imported or unusable is
// refused. False, said on stderr, when a take is missing or refused or none
// is left.
bool chooseTakes(const char* command, const QString& workFolder, const QStringList& ids,
                 const char* transferred, QList<DOTakeData>* takes, QList<DOTakeData>* chosen);

// The request of a copy or a move from its arguments (SOURCE_WORK_FOLDER
// DEST_WORK_FOLDER [TAKE_ID...], at least two): the record's folders, the
// chosen takes and the source's takes. kExitOk, or the exit status after
// saying what is wrong on stderr.
int transferRecord(const char* command, const char* transferred, const QStringList& args, DOClipCtrl* record);

int runCombine(const QStringList& args);
int runCopy(const QStringList& args);
int runDelete(const QStringList& args);
int runDivide(const QStringList& args);
int runExport(const QStringList& args);
int runInfo(const QStringList& args);
int runImport(const QStringList& args);
int runMediaName(const QStringList& args);
int runMove(const QStringList& args);
int runMp4Info(const QStringList& args);
int runOffload(const QStringList& args);
int runPpn(const QStringList& args);
int runScan(const QStringList& args);
int runSearch(const QStringList& args);
int runVerify(const QStringList& args);
