#include "core/operations/offload/BLOffloadThread.h"

#include "core/services/BLCommon.h"
#include "core/services/BLLocalizedStrings.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <condition_variable>
#include <cstring>
#include <deque>
#include <fcntl.h>
#include <mutex>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#include <vector>
#include <xxhash.h>

namespace {

QByteArray nativePath(const QString& path)
{
    return QFile::encodeName(path);
}

QString text(const char* key)
{
    return BLLocalizedString(QString::fromLatin1(key));
}

QString errorText(int error)
{
    return QString::fromLocal8Bit(std::strerror(error));
}

// The buffers a file's bytes travel in from the reader to the writers. A
// buffer goes back to the pool when the last writer has written it.
class ChunkPool
{
public:
    struct Chunk
    {
        char* data;
        qint64 length = 0;
    };

    ChunkPool(int count, qint64 size)
    {
        for (int i = 0; i < count; ++i) {
            m_storage.emplace_back(new char[size_t(size)]);
            m_free.push_back(m_storage.back().get());
        }
    }

    std::shared_ptr<Chunk> take()
    {
        std::unique_lock lock(m_lock);
        m_available.wait(lock, [this] { return !m_free.empty(); });
        char* data = m_free.back();
        m_free.pop_back();
        return std::shared_ptr<Chunk>(new Chunk{data}, [this](Chunk* chunk) {
            {
                std::lock_guard guard(m_lock);
                m_free.push_back(chunk->data);
            }
            m_available.notify_one();
            delete chunk;
        });
    }

private:
    std::vector<std::unique_ptr<char[]>> m_storage;
    std::vector<char*> m_free;
    std::mutex m_lock;
    std::condition_variable m_available;
};

// What the source holds at one relative path.
struct Item
{
    QString path;
    mode_t mode = 0;
    timespec modified{};
    QByteArray linkTarget;
};

struct Job
{
    enum Kind
    {
        Folder,
        Link,
        Open,
        Data,
        Close,
        Finish
    } kind;
    const Item* item = nullptr;
    std::shared_ptr<ChunkPool::Chunk> chunk = nullptr;
    quint64 hash = 0;
};

} // namespace

// One destination's thread: makes its folders and files from the jobs in
// order and verifies each file while it is written: every chunk is sent to
// the disk at once, and the chunk kVerifyLag bytes behind is waited for,
// dropped from the cache and read back from the disk, hashing. The disk
// writes and reads in one stream, the file's flush at its close is short, and
// the copy's pages never pile up in the cache. On a failure the destination
// is removed and the remaining jobs go by.
class BLOffloadThread::Writer
{
public:
    Writer(BLOffloadThread* owner, Destination* destination)
        : m_owner(owner), m_destination(destination), m_hash(XXH64_createState())
    {
        m_thread = std::thread([this] { work(); });
    }

    ~Writer() { XXH64_freeState(m_hash); }

    void push(Job job)
    {
        {
            std::lock_guard lock(m_lock);
            m_jobs.push_back(std::move(job));
        }
        m_ready.notify_one();
    }

    void join() { m_thread.join(); }
    bool failed() const { return m_failed; }

private:
    // The bytes written but not yet read back: enough for the disk to keep
    // writing while a chunk is read back.
    static constexpr qint64 kVerifyLag = 4 * kChunkSize;
    static constexpr qint64 kReadPiece = 1024 * 1024;

    void work()
    {
        std::vector<const Item*> folders;
        for (;;) {
            Job job;
            {
                std::unique_lock lock(m_lock);
                m_ready.wait(lock, [this] { return !m_jobs.empty(); });
                job = std::move(m_jobs.front());
                m_jobs.pop_front();
            }
            if (job.kind == Job::Finish)
                break;
            if (m_failed || m_owner->isCancel())
                continue;
            if (job.kind == Job::Folder)
                folders.push_back(job.item);
            handle(job);
        }
        if (m_fd >= 0) // a file cut short by a cancel
            ::close(m_fd);
        // Folders get their dates once nothing more is written into them.
        for (auto f = folders.rbegin(); !m_failed && f != folders.rend(); ++f) {
            const timespec times[2] = {{0, UTIME_OMIT}, (*f)->modified};
            utimensat(AT_FDCWD, target(**f).constData(), times, 0);
        }
    }

    QByteArray target(const Item& item) const { return nativePath(m_destination->path + '/' + item.path); }

    void handle(const Job& job)
    {
        const Item& item = *job.item;
        switch (job.kind) {
        case Job::Folder:
            if (::mkdir(target(item).constData(), item.mode & 07777) != 0)
                fail(item, errorText(errno));
            break;
        case Job::Link:
            if (::symlink(item.linkTarget.constData(), target(item).constData()) != 0)
                fail(item, errorText(errno));
            break;
        case Job::Open:
            // Read and write: the same descriptor reads the copy back.
            m_fd = ::open(target(item).constData(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, item.mode & 07777);
            if (m_fd < 0) {
                fail(item, errorText(errno));
                break;
            }
            posix_fadvise(m_fd, 0, 0, POSIX_FADV_SEQUENTIAL);
            m_written = m_verified = 0;
            XXH64_reset(m_hash, 0);
            break;
        case Job::Data:
            for (qint64 done = 0; done < job.chunk->length;) {
                const ssize_t n = ::write(m_fd, job.chunk->data + done, size_t(job.chunk->length - done));
                if (n < 0 && errno == EINTR)
                    continue;
                if (n <= 0) {
                    fail(item, errorText(n < 0 ? errno : ENOSPC));
                    return;
                }
                done += n;
                *m_destination->written += n;
            }
            // Starts the chunk's way to the disk without waiting for it.
            sync_file_range(m_fd, m_written, job.chunk->length, SYNC_FILE_RANGE_WRITE);
            m_written += job.chunk->length;
            while (m_written - m_verified > kVerifyLag)
                if (!verify(item, m_verified + kChunkSize))
                    return;
            break;
        case Job::Close: {
            const timespec times[2] = {{0, UTIME_OMIT}, item.modified};
            if (::fdatasync(m_fd) != 0 || ::futimens(m_fd, times) != 0) {
                fail(item, errorText(errno));
                return;
            }
            if (!verify(item, m_written))
                return;
            // A file longer than what was written reads back as a mismatch too.
            char extra;
            const bool matches = XXH64_digest(m_hash) == job.hash && ::pread(m_fd, &extra, 1, m_written) == 0;
            const int closed = ::close(m_fd);
            m_fd = -1;
            if (closed != 0)
                fail(item, errorText(errno));
            else if (!matches)
                fail(item, text("MSG_OFFLOAD_READ_BACK_DIFFERS"));
            break;
        }
        case Job::Finish:
            break;
        }
    }

    // Reads the copy back from m_verified up to end from the disk, hashing:
    // waits until that part is written, drops its pages and reads them again.
    bool verify(const Item& item, qint64 end)
    {
        const qint64 length = end - m_verified;
        if (length == 0)
            return true;
        // A file system without ranged writeback flushes the whole file.
        if (sync_file_range(m_fd, m_verified, length,
                            SYNC_FILE_RANGE_WAIT_BEFORE | SYNC_FILE_RANGE_WRITE |
                                SYNC_FILE_RANGE_WAIT_AFTER) != 0 &&
            ::fdatasync(m_fd) != 0) {
            fail(item, errorText(errno));
            return false;
        }
        // Up to the end of the file, so that a last partial page goes too.
        posix_fadvise(m_fd, m_verified, 0, POSIX_FADV_DONTNEED);
        posix_fadvise(m_fd, m_verified, length, POSIX_FADV_WILLNEED);
        if (!m_buffer)
            m_buffer.reset(new char[kReadPiece]);
        for (qint64 offset = m_verified; offset < end;) {
            const ssize_t n = ::pread(m_fd, m_buffer.get(), size_t(qMin(kReadPiece, end - offset)), offset);
            if (n < 0 && errno == EINTR)
                continue;
            if (n <= 0) {
                fail(item, n < 0 ? errorText(errno) : text("MSG_OFFLOAD_READ_BACK_DIFFERS"));
                return false;
            }
            XXH64_update(m_hash, m_buffer.get(), size_t(n));
            offset += n;
        }
        posix_fadvise(m_fd, m_verified, 0, POSIX_FADV_DONTNEED); // the copy stays out of the cache
        m_verified = end;
        return true;
    }

    void fail(const Item& item, const QString& reason)
    {
        m_failed = true;
        if (m_fd >= 0)
            ::close(m_fd);
        m_fd = -1;
        m_destination->failedFile = item.path;
        m_destination->reason = reason;
        *m_destination->written = -1;
        BLCommon::removeFile(m_destination->path);
    }

    BLOffloadThread* m_owner;
    Destination* m_destination;
    std::deque<Job> m_jobs;
    std::mutex m_lock;
    std::condition_variable m_ready;
    std::atomic<bool> m_failed{false};
    int m_fd = -1;
    qint64 m_written = 0;  // bytes of the open file written
    qint64 m_verified = 0; // bytes of it read back
    XXH64_state_t* m_hash;
    std::unique_ptr<char[]> m_buffer;
    std::thread m_thread;
};

BLOffloadThread::BLOffloadThread(const QString& source, const QStringList& destinations) : m_source(source)
{
    for (const QString& path : destinations) {
        Destination d;
        d.path = path;
        m_destinations.append(d);
    }
}

void BLOffloadThread::loopProcess()
{
    run();
}

bool BLOffloadThread::run()
{
    m_startTime = QDateTime::currentMSecsSinceEpoch();
    BLMhlHistory history(m_source);
    if (!QFileInfo(m_source).isDir()) {
        m_sourceError = text("MSG_OFFLOAD_NO_FOLDER").arg(m_source);
        return false;
    }
    if (!history.load()) {
        m_sourceError = history.error();
        return false;
    }
    if (history.lastGeneration() > 0) {
        // A card offloaded before: it must still be what its history says.
        setMessage(text("MSG_OFFLOAD_CHECKING_SOURCE"));
        m_sourceCheck = history.check(this);
        m_cancelled = m_sourceCheck.cancelled;
        if (!m_sourceCheck.ok()) {
            if (!m_cancelled)
                m_sourceError = text("MSG_OFFLOAD_SOURCE_DIFFERS");
            return false;
        }
    }
    copyAll(BLMhlHistory::contents(m_source, true));
    if (m_cancelled) {
        for (Destination& d : m_destinations)
            if (d.reason.isEmpty())
                BLCommon::removeFile(d.path);
        return false;
    }
    // The files' actions, checked against the history the copies continue,
    // before the manifests record them.
    for (BLMhlHistory::Entry& e : m_files) {
        const auto known = history.files().constFind(e.path);
        e.action = known != history.files().cend() && known->hash == e.hash ? QStringLiteral("verified")
                                                                            : QStringLiteral("original");
    }
    bool all = true;
    for (Destination& d : m_destinations) {
        if (d.reason.isEmpty()) {
            BLMhlHistory copy(d.path);
            d.manifest = copy.load() ? copy.writeGeneration(m_files, QStringLiteral("transfer")) : QString();
            if (d.manifest.isEmpty()) {
                d.reason = copy.error();
                BLCommon::removeFile(d.path);
            }
        }
        d.verified = d.reason.isEmpty();
        all = all && d.verified;
    }
    return all;
}

void BLOffloadThread::copyAll(const QStringList& paths)
{
    std::vector<Item> items;
    items.reserve(size_t(paths.size()));
    for (QString path : paths) {
        const bool folder = path.endsWith('/');
        if (folder)
            path.chop(1);
        struct stat st
        {
        };
        const QByteArray source = nativePath(m_source + '/' + path);
        if (::lstat(source.constData(), &st) != 0) {
            m_sourceError = m_source + '/' + path + QStringLiteral(": ") + errorText(errno);
            m_cancelled = true;
            return;
        }
        Item item{path, st.st_mode, st.st_mtim, {}};
        if (S_ISLNK(st.st_mode))
            item.linkTarget = QFile::encodeName(QFile::symLinkTarget(QString::fromLocal8Bit(source)));
        else if (S_ISREG(st.st_mode))
            m_totalBytes += st.st_size;
        items.push_back(item);
    }

    std::vector<std::unique_ptr<Writer>> writers;
    for (Destination& d : m_destinations) {
        if (::mkdir(nativePath(d.path).constData(), 0777) != 0) {
            d.reason = d.path + QStringLiteral(": ") + errorText(errno); // an existing folder stays as it is
            *d.written = -1;
            writers.push_back(nullptr);
        } else {
            writers.push_back(std::make_unique<Writer>(this, &d));
        }
    }
    const auto toAll = [&](const Job& job) {
        bool any = false;
        for (const auto& w : writers)
            if (w && !w->failed()) {
                w->push(job);
                any = true;
            }
        return any;
    };

    ChunkPool pool(kChunkCount, kChunkSize);
    const std::unique_ptr<XXH64_state_t, decltype(&XXH64_freeState)> state(XXH64_createState(),
                                                                           XXH64_freeState);
    qint64 read = 0;
    for (const Item& item : items) {
        if (S_ISDIR(item.mode) || S_ISLNK(item.mode)) {
            if (!toAll({S_ISDIR(item.mode) ? Job::Folder : Job::Link, &item}))
                break;
            continue;
        }
        const int fd = ::open(nativePath(m_source + '/' + item.path).constData(), O_RDONLY | O_CLOEXEC);
        if (fd < 0 || !toAll({Job::Open, &item})) {
            if (fd < 0)
                m_sourceError = m_source + '/' + item.path + QStringLiteral(": ") + errorText(errno);
            m_cancelled = fd < 0;
            if (fd >= 0)
                ::close(fd);
            break;
        }
        posix_fadvise(fd, 0, 0, POSIX_FADV_SEQUENTIAL);
        XXH64_reset(state.get(), 0);
        qint64 fileBytes = 0;
        for (;;) {
            std::shared_ptr<ChunkPool::Chunk> chunk = pool.take();
            while (chunk->length < kChunkSize) {
                const ssize_t n = ::read(fd, chunk->data + chunk->length, size_t(kChunkSize - chunk->length));
                if (n < 0 && errno == EINTR)
                    continue;
                if (n < 0) {
                    m_sourceError = m_source + '/' + item.path + QStringLiteral(": ") + errorText(errno);
                    break;
                }
                if (n == 0)
                    break;
                chunk->length += n;
            }
            if (!m_sourceError.isEmpty() || isCancel()) {
                m_cancelled = true;
                break;
            }
            if (chunk->length == 0)
                break;
            XXH64_update(state.get(), chunk->data, size_t(chunk->length));
            read += chunk->length;
            fileBytes += chunk->length;
            if (!toAll({Job::Data, &item, chunk}))
                break;
            showProgress(item.path, read);
            if (chunk->length < kChunkSize)
                break;
        }
        ::close(fd);
        if (m_cancelled)
            break;
        const quint64 hash = XXH64_digest(state.get());
        toAll({Job::Close, &item, nullptr, hash});
        if (!item.path.startsWith(BLMhlHistory::kFolderName + '/'))
            m_files.append({item.path, fileBytes,
                            QDateTime::fromMSecsSinceEpoch(item.modified.tv_sec * 1000 +
                                                           item.modified.tv_nsec / 1000000),
                            hash, QString()});
    }
    for (const auto& w : writers)
        if (w) {
            w->push({Job::Finish});
            w->join();
        }
    showProgress(QString(), read);
}

void BLOffloadThread::showProgress(const QString& file, qint64 read)
{
    const qint64 now = QDateTime::currentMSecsSinceEpoch();
    if (!file.isEmpty() && now - m_lastShown < 200)
        return;
    m_lastShown = now;
    constexpr double kMiB = 1024.0 * 1024.0;
    const double seconds = qMax<qint64>(now - m_startTime, 1) / 1000.0;
    qint64 slowest = m_totalBytes;
    QStringList each;
    for (const Destination& d : m_destinations) {
        if (*d.written < 0) {
            each << text("LOCALIZED_OFFLOAD_DEST_FAILED").arg(QFileInfo(d.path).fileName());
            continue;
        }
        slowest = qMin<qint64>(slowest, *d.written);
        each << text("LOCALIZED_OFFLOAD_WRITTEN").arg(d.path).arg(qint64(*d.written / kMiB));
    }
    const double rate = read / seconds;
    const qint64 left = rate > 0 ? qint64((m_totalBytes - slowest) / rate) : 0;
    setMessage(text("LOCALIZED_OFFLOAD_PROGRESS")
                   .arg(file)
                   .arg(rate / kMiB, 0, 'f', 1)
                   .arg(left)
                   .arg(each.join(QStringLiteral(", "))));
    setProgress(slowest / kMiB, 0, m_totalBytes / kMiB);
}
