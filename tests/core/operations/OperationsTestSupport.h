#pragma once

#include "cardgen/CardGenerator.h"
#include "support/TestEnvironment.h"

#include <QMap>
#include <QString>
#include <QStringList>

namespace optest {

// A small card written fast: tiny pictures, 6 frames per clip at 29.97p, one
// essence shared by every clip.
cardgen::Options smallCard(int clips);

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
