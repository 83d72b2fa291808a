// BLCommon's files and folders: tests, copies and moves with progress, the
// verified copy and hashing. One class, several files by topic.
#include "core/services/BLCommon.h"

#include "core/services/BLLogCtrl.h"
#include "core/services/BLPlistCtrl.h"
#include "core/services/BLProgressThread.h"
#include "core/services/BLVolumeProvider.h"

#include <QDir>
#include <QFileInfo>
#include <QTimeZone>

#include <atomic>
#include <cerrno>
#include <fcntl.h>
#include <optional>
#include <stdio.h>
#include <sys/stat.h>
#include <unistd.h>
#include <xxhash.h>

namespace {
std::atomic<int> g_tempNameCounter{0};

constexpr int kCommonLogId = 601;

bool pathExists(const QString& path)
{
    struct stat st
    {
    };
    return lstat(QFile::encodeName(path).constData(), &st) == 0; // a dangling link exists too
}

// One rename that never replaces an existing destination; across file systems
// the item is copied and the source removed.
bool moveOnce(const QString& source, const QString& destination)
{
    const int error = BLCommon::renameNoReplace(source, destination);
    if (error == 0)
        return true;
    if (error != EXDEV || pathExists(destination) || !BLCommon::copyFile(source, destination))
        return false;
    // The copy is complete; a source that cannot be removed stays as well, so nothing is lost.
    return BLCommon::removeFile(source);
}

// Bytes moved through the program at a time: small enough to stay in the
// processor's cache from the read through the hash to the write.
constexpr qint64 kBufferPiece = 2097152;
// Chunks the disk is asked for ahead of the one being read back.
constexpr qint64 kReadAheadChunks = 4;

struct HashStateFree
{
    void operator()(XXH64_state_t* state) const { XXH64_freeState(state); }
};
using HashState = std::unique_ptr<XXH64_state_t, HashStateFree>;

HashState newHashState()
{
    HashState state(XXH64_createState());
    if (state)
        XXH64_reset(state.get(), 0);
    return state;
}

// Moves the source's next bytes to the destination, at both files' current
// offsets: inside the kernel where the two file systems allow it, else
// through a buffer. With a hash state every byte goes through the buffer and
// is hashed on its way.
class ChunkCopier
{
public:
    ChunkCopier(int in, int out, bool kernelCopy, XXH64_state_t* hash)
        : m_in(in), m_out(out), m_kernelCopy(kernelCopy && !hash), m_hash(hash)
    {
    }

    // Copies up to length bytes; answers how many (0 at the end of the
    // source) or -1 on a read or write error.
    qint64 copy(qint64 length)
    {
        qint64 done = 0;
        while (done < length) {
            const qint64 n = m_kernelCopy ? copyInKernel(length - done) : copyThroughBuffer(length - done);
            if (n < 0)
                return -1;
            if (n == 0)
                break;
            done += n;
        }
        return done;
    }

private:
    qint64 copyInKernel(qint64 length)
    {
        for (;;) {
            const ssize_t n = ::copy_file_range(m_in, nullptr, m_out, nullptr, size_t(length), 0);
            if (n < 0 && errno == EINTR)
                continue;
            if (n > 0)
                m_kernelCopied = true;
            if (n > 0 || m_kernelCopied)
                return n; // n == 0: the end; n < 0: an error
            if (n < 0 && errno != EXDEV && errno != EINVAL && errno != ENOSYS && errno != EOPNOTSUPP &&
                errno != EBADF)
                return -1;
            // Declined before copying anything (some file systems answer 0
            // instead of refusing): plain reads decide.
            m_kernelCopy = false;
            return copyThroughBuffer(length);
        }
    }

    qint64 copyThroughBuffer(qint64 length)
    {
        if (!m_buffer)
            m_buffer.reset(new char[kBufferPiece]);
        length = qMin(length, kBufferPiece);
        ssize_t n;
        do {
            n = ::read(m_in, m_buffer.get(), size_t(length));
        } while (n < 0 && errno == EINTR);
        if (n <= 0)
            return n;
        if (m_hash)
            XXH64_update(m_hash, m_buffer.get(), size_t(n));
        for (ssize_t written = 0; written < n;) {
            const ssize_t w = ::write(m_out, m_buffer.get() + written, size_t(n - written));
            if (w < 0 && errno == EINTR)
                continue;
            if (w <= 0)
                return -1;
            written += w;
        }
        return n;
    }

    int m_in;
    int m_out;
    bool m_kernelCopy;
    XXH64_state_t* m_hash;
    bool m_kernelCopied = false;
    std::unique_ptr<char[]> m_buffer;
};

enum class ReadBack
{
    Matches,
    Differs,
    Cancelled
};

// Reads an open file from its start, hashing, after dropping its pages from
// the cache so that the disk's copy is read and not what was just written.
// Cancel is tested between chunks, never after the last. digest (may be null)
// receives the hash of a file read whole.
ReadBack readBack(int fd, quint64 expected, BLProgressThread* thread,
                  std::optional<quint64>* digest = nullptr)
{
    struct stat st
    {
    };
    HashState state = newHashState();
    if (fstat(fd, &st) != 0 || !S_ISREG(st.st_mode) || !state)
        return ReadBack::Differs;
    posix_fadvise(fd, 0, 0, POSIX_FADV_DONTNEED);
    posix_fadvise(fd, 0, 0, POSIX_FADV_SEQUENTIAL);
    // The disk keeps a few chunks ahead of the hashing, so it never waits for
    // the program; each chunk leaves the cache once hashed.
    const qint64 chunk = BLCommon::kCopyChunkSize;
    posix_fadvise(fd, 0, chunk * kReadAheadChunks, POSIX_FADV_WILLNEED);
    const std::unique_ptr<char[]> buffer(new char[kBufferPiece]);
    for (qint64 offset = 0;;) {
        qint64 length = 0;
        while (length < chunk) {
            const ssize_t n =
                ::pread(fd, buffer.get(), size_t(qMin(kBufferPiece, chunk - length)), offset + length);
            if (n < 0 && errno == EINTR)
                continue;
            if (n < 0) {
                posix_fadvise(fd, 0, 0, POSIX_FADV_DONTNEED);
                return ReadBack::Differs;
            }
            if (n == 0)
                break;
            XXH64_update(state.get(), buffer.get(), size_t(n));
            length += n;
        }
        if (length == 0)
            break;
        posix_fadvise(fd, offset, length, POSIX_FADV_DONTNEED);
        posix_fadvise(fd, offset + chunk * kReadAheadChunks, chunk, POSIX_FADV_WILLNEED);
        offset += length;
        if (offset < st.st_size && thread && thread->isCancel()) {
            posix_fadvise(fd, 0, 0, POSIX_FADV_DONTNEED); // the chunks asked for ahead
            return ReadBack::Cancelled;
        }
    }
    if (digest)
        *digest = XXH64_digest(state.get());
    return XXH64_digest(state.get()) == expected ? ReadBack::Matches : ReadBack::Differs;
}

QString hashText(quint64 hash)
{
    return QStringLiteral("%1").arg(hash, 16, 16, QLatin1Char('0'));
}

// Whole-file flush: data and the size, through the disk's own cache.
bool flushToDisk(int fd)
{
#ifdef __linux__
    return fdatasync(fd) == 0;
#else
    return fsync(fd) == 0;
#endif
}

// Starts writing a range out to the disk without waiting.
void startFlush(int fd, qint64 offset, qint64 length)
{
#ifdef __linux__
    ::sync_file_range(fd, offset, length, SYNC_FILE_RANGE_WRITE);
#endif
}

// Waits until a range has been written out to the disk.
bool waitFlushed(int fd, qint64 offset, qint64 length)
{
#ifdef __linux__
    if (::sync_file_range(fd, offset, length,
                          SYNC_FILE_RANGE_WAIT_BEFORE | SYNC_FILE_RANGE_WRITE | SYNC_FILE_RANGE_WAIT_AFTER) ==
        0)
        return true;
    if (errno != EINVAL && errno != ENOSYS && errno != ESPIPE)
        return false;
#endif
    return flushToDisk(fd);
}

} // namespace

// ---- file and folder tests ----

bool BLCommon::isFolder(const QString& path)
{
    if (path.isEmpty())
        return false;
    const QFileInfo info(path);
    if (!info.isDir() || info.isBundle() || !checkVisibleDirectory(path))
        return false;
    if (QFileInfo(QDir::cleanPath(info.absoluteFilePath())).path() == QLatin1String("/")) {
        const QString name = info.fileName();
        if (name == QLatin1String("automount") || name == QLatin1String("Network"))
            return false;
    }
    return true;
}

bool BLCommon::checkVisibleDirectory(const QString& path)
{
    const QString name = QFileInfo(QDir::cleanPath(path)).fileName();
    return !name.startsWith(QLatin1Char('.'));
}

bool BLCommon::isFiles(const QString& path)
{
    if (path.isEmpty())
        return false;
    const QFileInfo info(path);
    return info.exists() && !info.isDir() && !info.isBundle();
}

bool BLCommon::isVolume(const QString& path)
{
    if (path.isEmpty())
        return false;
    const QString clean = QDir::cleanPath(path);
    const QList<BLVolume> volumes = BLVolumeProvider::current()->mountedVolumes();
    for (const BLVolume& volume : volumes)
        if (QDir::cleanPath(volume.rootPath) == clean)
            return true;
    return false;
}

QStringList BLCommon::getFileList(const QString& path)
{
    if (path.isEmpty()) {
        QStringList roots;
        const QList<BLVolume> volumes = BLVolumeProvider::current()->mountedVolumes();
        for (const BLVolume& volume : volumes)
            roots << volume.rootPath;
        return roots;
    }
    return QDir(path).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                                QDir::Unsorted);
}

QStringList BLCommon::getFolders(const QString& path)
{
    QStringList folders;
    const QStringList names = getFileList(path);
    for (const QString& name : names)
        if (isFolder(path.isEmpty() ? name : QDir(path).filePath(name)))
            folders << name;
    return folders;
}

QString BLCommon::getDisplayName(const QString& path)
{
    return getDisplayName(path, BLVolumeProvider::current()->mountedVolumes());
}

QString BLCommon::getDisplayName(const QString& path, const QList<BLVolume>& volumes)
{
    const QString clean = QDir::cleanPath(path);
    for (const BLVolume& volume : volumes)
        if (QDir::cleanPath(volume.rootPath) == clean && !volume.displayName.isEmpty())
            return volume.displayName;
    return QFileInfo(clean).fileName();
}

QString BLCommon::getDisplayName(const QString& parent, const QString& name)
{
    return getDisplayName(QDir(parent).filePath(name));
}

bool BLCommon::isSameDisplayName(const QString& path)
{
    return getDisplayName(path) == QFileInfo(QDir::cleanPath(path)).fileName();
}

QString BLCommon::getDisplayPath(const QString& path)
{
    const QString clean = QDir::cleanPath(path);
    QString root = getVolumeName(clean);
    if (root.size() > 1)
        root.chop(1);
    QString text = getDisplayName(root) + QLatin1Char(':');
    const QStringList below = clean.mid(root.size()).split(QLatin1Char('/'), Qt::SkipEmptyParts);
    QString current = root;
    for (const QString& name : below) {
        current = QDir(current).filePath(name);
        text += getDisplayName(current) + QLatin1Char(':');
    }
    return text;
}

bool BLCommon::doSalvage(const QString& folder)
{
    const QString bpav = getPathOfBPAV(folder);
    const QStringList names = getFileList(bpav);
    for (const QString& name : names) {
        const QString suffix = QFileInfo(name).suffix();
        if ((suffix.compare(QLatin1String("SLV"), Qt::CaseInsensitive) == 0 ||
             suffix.compare(QLatin1String("STS"), Qt::CaseInsensitive) == 0) &&
            isFiles(QDir(bpav).filePath(name)))
            return true;
    }
    return false;
}

// ---- file operations ----

bool BLCommon::createNewFolder(const QString& path)
{
    return !path.isEmpty() && QDir().mkdir(path);
}

bool BLCommon::createNewFolderWithParent(const QString& path)
{
    return !path.isEmpty() && QDir().mkpath(path);
}

bool BLCommon::createNewFile(const QString& path)
{
    if (path.isEmpty())
        return false;
    const int fd = ::open(QFile::encodeName(path).constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    return fd >= 0 && ::close(fd) == 0;
}

bool BLCommon::removeFile(const QString& path)
{
    if (path.isEmpty() || !pathExists(path))
        return false;
    const QFileInfo info(path);
    if (info.isDir() && !info.isSymLink())
        return QDir(path).removeRecursively();
    return QFile::remove(path);
}

bool BLCommon::copyFile(const QString& source, const QString& toFile)
{
    if (source.isEmpty() || toFile.isEmpty() || pathExists(toFile))
        return false;
    const QFileInfo info(source);
    if (info.isSymLink()) { // the link itself, with its target as written
        char target[4096];
        const ssize_t length = ::readlink(QFile::encodeName(source).constData(), target, sizeof target);
        return length > 0 && length < ssize_t(sizeof target) &&
               ::symlink(QByteArray(target, length).constData(), QFile::encodeName(toFile).constData()) == 0;
    }
    if (!info.isDir())
        return QFile::copy(source, toFile);

    if (!QDir().mkdir(toFile))
        return false;
    const QStringList names = getFileList(source);
    for (const QString& name : names) {
        if (!copyFile(QDir(source).filePath(name), QDir(toFile).filePath(name))) {
            QDir(toFile).removeRecursively(); // no half copy
            return false;
        }
    }
    QFile::setPermissions(toFile, info.permissions());
    return true;
}

bool BLCommon::moveFolder(const QString& source, const QString& toFolder)
{
    const QFileInfo from(QDir::cleanPath(source));
    const QFileInfo to(QDir::cleanPath(toFolder));
    const bool caseOnly = from.absolutePath() == to.absolutePath() && from.fileName() != to.fileName() &&
                          from.fileName().compare(to.fileName(), Qt::CaseInsensitive) == 0;
    if (!caseOnly)
        return moveOnce(source, toFolder);

    // On a file system that ignores case the new name is the old one; go
    // through a temporary name in the same folder.
    const qint64 seconds =
        QDateTime(QDate(2001, 1, 1), QTime(0, 0), QTimeZone::utc()).secsTo(QDateTime::currentDateTimeUtc());
    QString temporary;
    do {
        temporary =
            QDir(from.absolutePath())
                .filePath(QString::asprintf(".%d-%lld-%d", int(getpid()), seconds, ++g_tempNameCounter));
    } while (pathExists(temporary));
    if (!moveOnce(source, temporary))
        return false;
    if (moveOnce(temporary, toFolder))
        return true;
    moveOnce(temporary, source);
    return false;
}

int BLCommon::renameNoReplace(const QString& source, const QString& destination)
{
    const QByteArray from = QFile::encodeName(source);
    const QByteArray to = QFile::encodeName(destination);
    if (renameat2(AT_FDCWD, from.constData(), AT_FDCWD, to.constData(), RENAME_NOREPLACE) == 0)
        return 0;
    if (errno != EINVAL && errno != ENOSYS)
        return errno;
    // The file system cannot refuse to replace: test first.
    if (pathExists(destination))
        return EEXIST;
    return ::rename(from.constData(), to.constData()) == 0 ? 0 : errno;
}

int BLCommon::moveFileWithProgress(const QString& source, const QString& toPath, BLProgressThread* thread,
                                   int* fromCount, int maxCount)
{
    if (!moveFolder(source, toPath))
        return 2;
    if (thread && fromCount && maxCount != 0) {
        ++*fromCount;
        thread->setProgress(*fromCount, 0, maxCount);
        if (thread->isCancel())
            return 3;
    }
    return 0;
}

bool BLCommon::removeFileWithProgress(const QStringList& paths, BLProgressThread* thread, int* from, int max)
{
    for (qsizetype i = paths.size() - 1; i >= 0; --i) {
        const QString& path = paths.at(i);
        const bool removed = removeFile(path);
        BLLogCtrl::debug(kCommonLogId, QStringLiteral("[BLCommon removeFileWithProgress] path : ") + path);
        if (!removed)
            return false;
        if (from)
            ++*from;
        if (thread) {
            thread->setProgress(from ? *from : 0, 0, max);
            if (thread->isCancel())
                return false;
            thread->waitThread();
        }
    }
    return true;
}

int BLCommon::copyFileWithProgress(const QString& source, const QString& toFile, BLProgressThread* thread,
                                   qint64* fromSize, qint64 maxSize)
{
    return copyFileWithProgress(source, toFile, thread, fromSize, maxSize,
                                BLPlistCtrl::sharedCtrl()->getVerifyCopy());
}

int BLCommon::copyFileWithProgress(const QString& source, const QString& toFile, BLProgressThread* thread,
                                   qint64* fromSize, qint64 maxSize, bool verify, quint64* hash)
{
    constexpr qint64 kMiB = 1048576;
    const int in = ::open(QFile::encodeName(source).constData(), O_RDONLY | O_CLOEXEC);
    if (in < 0)
        return 2;
    struct stat st
    {
    };
    if (fstat(in, &st) != 0 || S_ISDIR(st.st_mode)) {
        ::close(in);
        return 2;
    }
    // Never replaces an existing file: that one may be another clip's. A copy
    // to be verified is read back through the same descriptor.
    const int out = ::open(QFile::encodeName(toFile).constData(),
                           (verify ? O_RDWR : O_WRONLY) | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (out < 0) {
        ::close(in);
        return 2;
    }
    posix_fadvise(in, 0, 0, POSIX_FADV_SEQUENTIAL);
    HashState sourceHash;
    if (verify || hash) {
        sourceHash = newHashState();
        if (!sourceHash) {
            ::close(in);
            ::close(out);
            return 2;
        }
    }

    // A chunk counts once it is on the disk. While the disk takes one chunk the
    // next is already copied, so the disk never waits for the program; the
    // last chunk is confirmed by flushing the whole file.
    ChunkCopier copier(in, out, S_ISREG(st.st_mode), sourceHash.get());
    qint64 done = fromSize ? *fromSize : 0;
    qint64 offset = 0;
    qint64 pendingOffset = 0;
    qint64 pendingLength = 0;
    int result = 0;
    for (;;) {
        const qint64 length = copier.copy(kCopyChunkSize);
        if (length < 0) {
            result = 2;
            break;
        }
        if (length > 0)
            startFlush(out, offset, length);
        if (pendingLength > 0) {
            const bool flushed =
                length > 0 ? waitFlushed(out, pendingOffset, pendingLength) : flushToDisk(out);
            if (!flushed) {
                result = 2;
                break;
            }
            posix_fadvise(out, pendingOffset, pendingLength,
                          POSIX_FADV_DONTNEED); // keep the cache for others
            done += pendingLength / kMiB;
            if (fromSize)
                *fromSize = done;
            if (thread) {
                thread->setProgress(double(qMin(done, maxSize)), 0, double(maxSize));
                thread->waitThread();
                if (length > 0 && thread->isCancel()) { // between chunks: never after the last
                    result = 3;
                    break;
                }
            }
        }
        if (length == 0)
            break;
        pendingOffset = offset;
        pendingLength = length;
        offset += length;
    }
    ::close(in);
    if (result == 0 && sourceHash) {
        const quint64 digest = XXH64_digest(sourceHash.get());
        if (hash)
            *hash = digest;
        QString outcome = QStringLiteral("copied");
        if (verify) {
            switch (readBack(out, digest, thread)) {
            case ReadBack::Matches:
                outcome = QStringLiteral("verified");
                break;
            case ReadBack::Differs:
                outcome = QStringLiteral("not verified");
                result = kCopyNotVerified;
                break;
            case ReadBack::Cancelled:
                outcome = QStringLiteral("verification cancelled");
                result = 3;
                break;
            }
        }
        BLLogCtrl::debug(kCommonLogId, QStringLiteral("[BLCommon copyFileWithProgress] %1 xxh64:%2 %3")
                                           .arg(toFile, hashText(digest), outcome));
    } else if (result == 0) {
        BLLogCtrl::debug(kCommonLogId,
                         QStringLiteral("[BLCommon copyFileWithProgress] %1 copied").arg(toFile));
    }
    if (::close(out) != 0 && result == 0)
        result = 2;
    return result;
}

bool BLCommon::verifyCopiedFile(const QString& path, quint64 expected, BLProgressThread* thread,
                                bool* cancelled)
{
    if (cancelled)
        *cancelled = false;
    const int fd = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        return false;
    const ReadBack result = readBack(fd, expected, thread);
    ::close(fd);
    if (cancelled)
        *cancelled = result == ReadBack::Cancelled;
    if (result != ReadBack::Cancelled)
        BLLogCtrl::debug(kCommonLogId,
                         QStringLiteral("[BLCommon verifyCopiedFile] %1 xxh64:%2 %3")
                             .arg(path, hashText(expected),
                                  result == ReadBack::Matches ? QStringLiteral("verified")
                                                              : QStringLiteral("not verified")));
    return result == ReadBack::Matches;
}

bool BLCommon::hashFile(const QString& path, quint64* hash, BLProgressThread* thread, bool* cancelled)
{
    if (cancelled)
        *cancelled = false;
    const int fd = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        return false;
    std::optional<quint64> digest;
    const ReadBack result = readBack(fd, 0, thread, &digest);
    ::close(fd);
    if (cancelled)
        *cancelled = result == ReadBack::Cancelled;
    if (!digest)
        return false;
    *hash = *digest;
    return true;
}
