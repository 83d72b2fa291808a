#pragma once

#include <QByteArray>
#include <QString>

#include <functional>

// Writes a whole file so that a crash or a failure never leaves it half
// written: the bytes go to a temporary file beside the target, are flushed to
// disk, and the temporary file then replaces the target by a rename. On any
// failure the previous file stays as it was and the temporary file is removed.
class BLAtomicFile
{
public:
    static bool writeFile(const QString& path, const QByteArray& data);
    // The same for a file another writer makes: it gets the path of the
    // temporary file (created empty) and answers whether it wrote it whole.
    using Writer = std::function<bool(const QString& temporaryPath)>;
    static bool writeWith(const QString& path, const Writer& writer);

    // Removes temporary files a process stopped midway left beside the
    // target (only when no writer can be at work on it any more).
    static void removeLeftovers(const QString& path);
    // The name pattern of those temporary files, for a folder listing.
    static QString leftoverPattern(const QString& path);

    // Fault injection for tests: replaces the final rename (answer false to fail it).
    using RenameHook = std::function<bool(const QString& from, const QString& to)>;
    static void setRenameHookForTesting(RenameHook hook);
};
