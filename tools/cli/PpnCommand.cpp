// clipwright-cli ppn: writes the picture pointer table of an MP4 file. The
// table is written to a new file beside the target and renamed over it, so a
// failure never leaves a partial table behind.
#include "CliCommand.h"

#include "core/mp4/CCreatePPT.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

#include <cstdio>

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
    const QString temporary = ppn + ".tmp-" + QString::number(QCoreApplication::applicationPid());
    QFile created(temporary);
    if (!created.open(QIODevice::WriteOnly | QIODevice::NewOnly)) {
        err << "clipwright-cli ppn: cannot create " << temporary << ": " << created.errorString() << "\n";
        return kExitFailed;
    }
    created.close();

    CCreatePPT ppt;
    const bool written = ppt.StartConvert(QFile::encodeName(mp4).constData(), QFile::encodeName(temporary).constData());
    if (!written || std::rename(QFile::encodeName(temporary).constData(), QFile::encodeName(ppn).constData()) != 0) {
        QFile::remove(temporary);
        err << "clipwright-cli ppn: " << mp4 << ": "
            << (written ? QStringLiteral("cannot replace ") + ppn : QString::fromUtf8(ppt.getErrorText()).trimmed())
            << "\n";
        return kExitFailed;
    }
    const qint64 size = QFileInfo(ppn).size();
    cliOut() << ppn << ": " << (size > 32 ? (size - 32) / 16 : 0) << " entries\n";
    return kExitOk;
}
