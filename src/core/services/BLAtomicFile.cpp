#include "core/services/BLAtomicFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <mutex>
#include <sys/stat.h>
#include <unistd.h>

namespace {
std::mutex g_hookMutex;
BLAtomicFile::RenameHook g_renameHook;

bool writeAll(int fd, const char* data, qint64 size)
{
    while (size > 0) {
        const ssize_t n = ::write(fd, data, size_t(size));
        if (n < 0) {
            if (errno == EINTR)
                continue;
            return false;
        }
        data += n;
        size -= n;
    }
    return true;
}

void syncFolder(const QByteArray& folder)
{
    const int fd = ::open(folder.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd >= 0) {
        ::fsync(fd);
        ::close(fd);
    }
}
} // namespace

void BLAtomicFile::setRenameHookForTesting(RenameHook hook)
{
    std::lock_guard lock(g_hookMutex);
    g_renameHook = std::move(hook);
}

bool BLAtomicFile::writeFile(const QString& path, const QByteArray& data)
{
    return writeWith(path, [&](const QString& temporaryPath) {
        const int fd = ::open(QFile::encodeName(temporaryPath).constData(), O_WRONLY | O_TRUNC | O_CLOEXEC);
        if (fd < 0)
            return false;
        const bool written = writeAll(fd, data.constData(), data.size());
        return ::close(fd) == 0 && written;
    });
}

bool BLAtomicFile::writeWith(const QString& path, const Writer& writer)
{
    const QFileInfo target(path);
    const QByteArray folder = QFile::encodeName(target.absolutePath());
    const QByteArray finalName = QFile::encodeName(target.absoluteFilePath());
    // Keep the permissions of a file being replaced.
    mode_t mode = 0644;
    struct stat st;
    if (::stat(finalName.constData(), &st) == 0) {
        if (S_ISDIR(st.st_mode))
            return false;
        mode = st.st_mode & 07777;
    }

    QByteArray tempName = folder + "/." + QFile::encodeName(target.fileName()) + ".XXXXXX";
    int fd = ::mkstemp(tempName.data());
    if (fd < 0)
        return false;
    ::close(fd);
    bool ok = writer(QFile::decodeName(tempName));
    // Flushed to disk before it takes the target's place.
    fd = ok ? ::open(tempName.constData(), O_RDONLY | O_CLOEXEC) : -1;
    ok = fd >= 0 && ::fchmod(fd, mode) == 0 && ::fsync(fd) == 0;
    if (fd >= 0)
        ok = (::close(fd) == 0) && ok;
    if (ok) {
        RenameHook hook;
        {
            std::lock_guard lock(g_hookMutex);
            hook = g_renameHook;
        }
        ok = hook ? hook(QFile::decodeName(tempName), path)
                  : ::rename(tempName.constData(), finalName.constData()) == 0;
    }
    if (!ok) {
        ::unlink(tempName.constData());
        return false;
    }
    syncFolder(folder);
    return true;
}

QString BLAtomicFile::leftoverPattern(const QString& path)
{
    // The mkstemp template of writeWith, its six X replaced.
    return QLatin1Char('.') + QFileInfo(path).fileName() + QStringLiteral(".??????");
}

void BLAtomicFile::removeLeftovers(const QString& path)
{
    const QDir folder = QFileInfo(path).dir();
    for (const QString& name : folder.entryList({leftoverPattern(path)}, QDir::Files | QDir::Hidden))
        QFile::remove(folder.filePath(name));
}
