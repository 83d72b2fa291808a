#pragma once

#include "core/common/IMessagePresenter.h"

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

int runCopy(const QStringList& args);
int runMp4Info(const QStringList& args);
int runPpn(const QStringList& args);
int runScan(const QStringList& args);
