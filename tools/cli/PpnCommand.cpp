// clipwright-cli ppn: writes the picture pointer table of an MP4 file through
// the program's atomic file writer, so a failure never leaves a partial table
// behind and an existing one stays as it was.
#include "CliCommand.h"

#include "core/formats/mp4/CCreatePPT.h"
#include "core/services/BLAtomicFile.h"

#include <QFile>
#include <QFileInfo>

int runPpn(const QStringList& args)
{
    if (args.size() != 2 || args[0].startsWith('-') || args[1].startsWith('-'))
        return cliUsage("ppn");
    const QString& mp4 = args[0];
    const QString& ppn = args[1];
    QTextStream& err = cliErr();
    if (QFileInfo(ppn).isDir()) {
        err << "clipwright-cli ppn: " << ppn << " is a folder\n";
        return kExitFailed;
    }
    CCreatePPT ppt;
    const bool written = BLAtomicFile::writeWith(ppn, [&](const QString& temporary) {
        return ppt.StartConvert(QFile::encodeName(mp4).constData(),
                                QFile::encodeName(temporary).constData()) == 1;
    });
    if (!written) {
        const char* reason = ppt.getErrorText();
        err << "clipwright-cli ppn: " << mp4 << ": "
            << (reason ? QString::fromUtf8(reason).trimmed() : QStringLiteral("cannot write ") + ppn) << "\n";
        return kExitFailed;
    }
    const qint64 size = QFileInfo(ppn).size();
    cliOut() << ppn << ": " << (size > 32 ? (size - 32) / 16 : 0) << " entries\n";
    return kExitOk;
}
