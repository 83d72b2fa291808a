// clipwright-cli: a small dispatcher over the subcommands below.
#include "CliCommand.h"

#include "core/services/AppVersion.h"
#include "core/services/BLCommon.h"

#include <QCoreApplication>

#include <iterator>

namespace {

const CliCommand kCommands[] = {
    {"combine", "[--delete-sources] [--json] DEST_WORK_FOLDER SOURCE_WORK_FOLDER...",
     "Move every take of folders beside a work folder into it, deleting the emptied ones if asked",
     runCombine},
    {"copy", "[--no-verify] [--json] SOURCE_WORK_FOLDER DEST_WORK_FOLDER [TAKE_ID...]",
     "Copy takes (all, or those named) into another work folder, verifying every file", runCopy},
    {"delete", "[--yes] WORK_FOLDER TAKE_ID...",
     "Delete takes of a work folder, asking first unless --yes (a cancel finishes the take in progress)",
     runDelete},
    {"divide", "[--json] WORK_FOLDER --capacity GB",
     "Divide a work folder into new folders beside it that each fit a disk of the capacity", runDivide},
    {"export", "[--json] WORK_FOLDER DEST_FOLDER [TAKE_ID...]",
     "Export takes (all that can be, or those named) as MPEG-2 transport streams (TAKE_ID.M2T)", runExport},
    {"import", "[--no-verify] [--json] DEST_WORK_FOLDER FILE.MP4...",
     "Import MP4 files into a work folder as new clips; a cancel or failure leaves the folder as it was",
     runImport},
    {"media-name", "WORK_FOLDER [NAME]", "Print the media name of a work folder, or change it to NAME",
     runMediaName},
    {"move", "[--json] SOURCE_WORK_FOLDER DEST_WORK_FOLDER [TAKE_ID...]",
     "Move takes (all, or those named) into another work folder; a cancel or failure moves them back",
     runMove},
    {"info", "[--json] WORK_FOLDER TAKE_ID",
     "Print a take's properties as the property dialog shows them (title, description, creator...)", runInfo},
    {"mp4info", "[--json] FILE...", "Check MP4 files of the camera's kind and print their properties",
     runMp4Info},
    {"offload", "[--json] [--name NAME] SOURCE DEST...",
     "Copy a card folder into DEST/NAME for one to four DESTs, verified, with an ASC MHL history",
     runOffload},
    {"ppn", "MP4 PPN", "Write the picture pointer table (.PPN) of an MP4 file", runPpn},
    {"scan", "[--json] WORK_FOLDER",
     "Run housekeeping on a work folder (repairing its index files) and print its takes", runScan},
    {"search", "[--json] WORK_FOLDER [--title TEXT] [--comment TEXT] [--interval N]",
     "Search the folder and those below it for takes by title, comment and date (N: 1 week, 2 month, 3 year)",
     runSearch},
    {"verify", "[--json] [--seal] FOLDER",
     "Check a folder against its ASC MHL history; --seal then records a new generation", runVerify},
};

void printUsage(QTextStream& out)
{
    out << "usage: clipwright-cli COMMAND [ARGUMENTS]\n"
           "       clipwright-cli --help | --version\n\ncommands:\n";
    for (const CliCommand& c : kCommands)
        out << "  " << QString::fromLatin1(c.name).leftJustified(9) << c.arguments << "\n      " << c.summary
            << "\n";
    out << "\nExit status: 0 success, 1 a file or folder failed (or the operation was cancelled), 2 wrong "
           "usage.\n";
    out.flush();
}

} // namespace

QTextStream& cliOut()
{
    static QTextStream out(stdout);
    return out;
}

QTextStream& cliErr()
{
    static QTextStream err(stderr);
    return err;
}

StderrPresenter::StderrPresenter(const char* command) : m_command(QString::fromLatin1(command))
{
    BLCommon::setMessagePresenter(this);
}

StderrPresenter::~StderrPresenter()
{
    BLCommon::setMessagePresenter(nullptr);
}

int StderrPresenter::showAlert(const SCAlert& alert)
{
    cliErr() << "clipwright-cli " << m_command << ": " << alert.message;
    if (!alert.informative.isEmpty())
        cliErr() << " " << alert.informative;
    cliErr() << Qt::endl;
    return kFirstButton;
}

int cliUsage(const char* name)
{
    for (const CliCommand& c : kCommands) {
        if (qstrcmp(c.name, name) == 0)
            cliErr() << "usage: clipwright-cli " << c.name << " " << c.arguments << Qt::endl;
    }
    return kExitUsage;
}

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName("clipwright-cli");
    QCoreApplication::setApplicationVersion(appVersion());
    const QStringList args = QCoreApplication::arguments().mid(1);
    if (args.isEmpty()) {
        printUsage(cliErr());
        return kExitUsage;
    }
    if (args[0] == "-h" || args[0] == "--help" || args[0] == "help") {
        printUsage(cliOut());
        return kExitOk;
    }
    if (args[0] == "--version") {
        cliOut() << "clipwright-cli " << appVersion() << Qt::endl;
        return kExitOk;
    }
    for (const CliCommand& c : kCommands) {
        if (args[0] == QLatin1String(c.name)) {
            const int status = c.run(args.mid(1));
            cliOut().flush();
            cliErr().flush();
            return status;
        }
    }
    cliErr() << "clipwright-cli: unknown command \"" << args[0] << "\"\n\n";
    printUsage(cliErr());
    return kExitUsage;
}
