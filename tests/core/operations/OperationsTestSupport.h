#pragma once

#include "cardgen/CardGenerator.h"
#include "core/model/DOTakeData.h"
#include "support/TestEnvironment.h"

#include <QMap>
#include <QString>
#include <QStringList>

#include <ostream>

namespace optest {

// The clips of a work folder's CLPR folder as the folder scan finds them,
// each given its UMID from its metadata (through a take carrying the clip's
// metadata reference, as the scan fills clips).
QList<DOClipData> scanClips(const QString& workFolder);
// The takes of a work folder read the way a folder scan reads them: every
// CLPR and TAKR entry classified, clips claimed by their takes, the rest
// single-clip takes, all filled from their metadata; in folder-name order.
QList<DOTakeData> loadTakes(const QString& workFolder);

// Opens a tree to every user (folders 0777, files 0666) so that permission
// checks made as an ordinary user reach into it; also opens the folders above
// up to the temporary folder.
void openTree(const QString& root);

// Turns the debug log on for the home (drops the singletons so the settings
// are read again).
void enableDebugLog(const cwtest::ScopedHome& home);
// The messages of the log lines, without date, time and process id.
QStringList logLines(const cwtest::ScopedHome& home);
// The log lines of one process id.
QStringList logLinesOf(const cwtest::ScopedHome& home, int processId);

// Every entry under a folder (links not followed) with what identifies it:
// a file's contents, a folder's mark, a link's target.
QMap<QString, QByteArray> snapshot(const QString& root);

void writeFile(const QString& path, const QByteArray& contents);
// Replaces a text in a file; fails the test when it is not there.
void replaceInFile(const QString& path, const QString& from, const QString& to);

} // namespace optest

// Prints a snapshot by its entries' names, one a line, so that a difference
// shows which entries differ.
inline void PrintTo(const QMap<QString, QByteArray>& entries, std::ostream* os)
{
    for (auto it = entries.cbegin(); it != entries.cend(); ++it)
        *os << "\n  " << it.key().toStdString() << " " << it.value().left(12).toStdString();
}
