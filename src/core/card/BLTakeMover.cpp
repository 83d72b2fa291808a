#include "core/card/BLTakeMover.h"

#include "core/services/BLCommon.h"
#include "core/services/BLLogCtrl.h"
#include "core/services/BLProgressThread.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

#include <atomic>
#include <cerrno>
#include <cstring>
#include <sys/stat.h>
#include <unistd.h>

const QString BLTakeMover::kStagingName = QStringLiteral(".clipwright-staging");

namespace {

constexpr int kProcessId = 644;

std::atomic<int> g_stagingCounter{0};

void log(const QString& message)
{
    BLLogCtrl::debug(kProcessId, message);
}

bool exists(const QString& path)
{
    struct stat st
    {
    };
    return lstat(QFile::encodeName(path).constData(), &st) == 0;
}

QString errorText(int error)
{
    return QString::fromLocal8Bit(std::strerror(error));
}

// A name for the staging folder no other item of this or another run takes.
QString stagingEntry(const QString& staging, const QString& name)
{
    return QStringLiteral("%1/%2-%3-%4").arg(staging, name).arg(getpid()).arg(++g_stagingCounter);
}

// Leaves the worker out of the way for as long as it lives: moving back after
// a cancel neither counts nor stops at the cancel that caused it.
class WithoutProgress
{
public:
    explicit WithoutProgress(BLProgressThread*& thread) : m_slot(thread), m_saved(thread)
    {
        thread = nullptr;
    }
    ~WithoutProgress() { m_slot = m_saved; }

private:
    BLProgressThread*& m_slot;
    BLProgressThread* m_saved;
};

} // namespace

BLTakeMover::BLTakeMover(const QString& fromBpav, const QString& toBpav)
    : m_fromBpav(fromBpav), m_toBpav(toBpav)
{
}

void BLTakeMover::setProgress(BLProgressThread* thread, qint64* done, qint64 maxCount)
{
    m_thread = thread;
    m_done = done;
    m_max = maxCount;
}

QString BLTakeMover::stagingOf(const QString& bpav) const
{
    return bpav + QLatin1Char('/') + kStagingName;
}

QString BLTakeMover::fromPath(const Item& item) const
{
    return m_fromBpav + QLatin1Char('/') + item.from;
}

QString BLTakeMover::toPath(const Item& item) const
{
    return m_toBpav + QLatin1Char('/') + item.to;
}

bool BLTakeMover::fail(const QString& path, const QString& reason)
{
    m_failedPath = path;
    m_failureReason = reason;
    log(QStringLiteral("[BLTakeMover] %1 : %2").arg(path, reason));
    return false;
}

int BLTakeMover::probe()
{
    const QString fromStaging = stagingOf(m_fromBpav);
    const QString toStaging = stagingOf(m_toBpav);
    for (const QString& staging : {fromStaging, toStaging})
        if (!QDir().mkpath(staging)) {
            fail(staging, errorText(errno));
            return -1;
        }
    const QString trial = stagingEntry(fromStaging, QStringLiteral("probe"));
    const QString arrived = toStaging + QLatin1Char('/') + QFileInfo(trial).fileName();
    if (!BLCommon::createNewFile(trial)) {
        fail(trial, errorText(errno));
        return -1;
    }
    const int error = BLCommon::renameNoReplace(trial, arrived);
    ::unlink(QFile::encodeName(trial).constData());
    ::unlink(QFile::encodeName(arrived).constData());
    if (error == 0 || error == EXDEV)
        return error == 0 ? 0 : 1;
    fail(arrived, errorText(error));
    return -1;
}

int BLTakeMover::moveTake(const Take& take)
{
    for (const Item& item : take.items) {
        if (const int result = transfer(fromPath(item), toPath(item), m_toBpav, item))
            return result;
        // Across file systems the copy has counted its MiB; a cancel is taken here too.
        if (const int result = advance(m_cross ? 0 : item.files))
            return result;
    }
    // Copied items leave their sources only now that the whole take is in place.
    return completeTake(take) ? kMoved : kFailed;
}

bool BLTakeMover::bringBack(const Take& take)
{
    const WithoutProgress quiet(m_thread);
    // What exists only at the destination goes back first, so that the take
    // is whole at the source before any destination copy is removed.
    bool whole = true;
    for (qsizetype i = take.items.size() - 1; i >= 0; --i) {
        const Item& item = take.items.at(i);
        if (!item.copy && exists(toPath(item)) && !exists(fromPath(item)))
            whole = transfer(toPath(item), fromPath(item), m_fromBpav, item) == kMoved && whole;
    }
    if (!whole)
        return false;
    // A destination item unlike its source is not of this move: it stays.
    for (const Item& item : take.items) {
        if (isDuplicate(item) && !removeItem(m_toBpav, item.to))
            return false;
        if (item.copy) // the take folder the copies went into, when nothing else is there
            QDir().rmdir(QFileInfo(toPath(item)).path());
    }
    return true;
}

bool BLTakeMover::completeTake(const Take& take)
{
    for (const Item& item : take.items)
        if (!item.copy && isDuplicate(item) && !removeItem(m_fromBpav, item.from))
            return false;
    return true;
}

BLTakeMover::Place BLTakeMover::placeOf(const Take& take) const
{
    const qsizetype arrived = std::count_if(take.items.begin(), take.items.end(), [this](const Item& item) {
        return exists(toPath(item)) && (!exists(fromPath(item)) || isDuplicate(item));
    });
    if (arrived == 0)
        return Place::Source;
    return arrived == take.items.size() ? Place::Destination : Place::Split;
}

bool BLTakeMover::isDuplicate(const Item& item) const
{
    return exists(fromPath(item)) && exists(toPath(item)) && sameTree(fromPath(item), toPath(item));
}

bool BLTakeMover::sameTree(const QString& path, const QString& path2)
{
    const QFileInfo a(path);
    const QFileInfo b(path2);
    if (a.isDir() != b.isDir() || a.isSymLink() != b.isSymLink())
        return false;
    if (!a.isDir() || a.isSymLink())
        return a.isSymLink() || a.size() == b.size();
    const QDir::Filters filter = QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot;
    const QStringList names = QDir(path).entryList(filter, QDir::Name);
    if (names != QDir(path2).entryList(filter, QDir::Name))
        return false;
    return std::all_of(names.begin(), names.end(), [&](const QString& name) {
        return sameTree(path + QLatin1Char('/') + name, path2 + QLatin1Char('/') + name);
    });
}

void BLTakeMover::clearStaging()
{
    for (const QString& staging : {stagingOf(m_fromBpav), stagingOf(m_toBpav)})
        if (exists(staging))
            BLCommon::removeFile(staging);
}

int BLTakeMover::transfer(const QString& from, const QString& to, const QString& toBpav, const Item& item)
{
    log(QStringLiteral("[BLClipMoveThread doMoveFiles] %1 -> %2").arg(from, to));
    if (!m_cross && !item.copy) {
        const int error = BLCommon::renameNoReplace(from, to);
        if (error == 0)
            return kMoved;
        if (error != EXDEV) {
            fail(from, errorText(error));
            return kFailed;
        }
        // Another file system mounted inside the card: copy this item.
    }
    return copyThroughStaging(from, to, toBpav);
}

int BLTakeMover::copyThroughStaging(const QString& source, const QString& destination, const QString& toBpav)
{
    if (exists(destination)) {
        fail(destination, errorText(EEXIST));
        return kFailed;
    }
    const QString staging = stagingOf(toBpav);
    if (!QDir().mkpath(staging) || !QDir().mkpath(QFileInfo(destination).path())) {
        fail(destination, errorText(errno));
        return kFailed;
    }
    const QString staged = stagingEntry(staging, QFileInfo(destination).fileName());
    int result = copyTree(source, staged);
    if (result == kMoved) {
        const int error = BLCommon::renameNoReplace(staged, destination);
        if (error != 0) {
            fail(destination, errorText(error));
            result = kFailed;
        }
    }
    if (result != kMoved)
        BLCommon::removeFile(staged);
    return result;
}

int BLTakeMover::copyTree(const QString& source, const QString& destination)
{
    const QFileInfo info(source);
    if (info.isDir() && !info.isSymLink()) {
        if (!BLCommon::createNewFolder(destination)) {
            fail(destination, errorText(errno));
            return kFailed;
        }
        const QStringList names =
            QDir(source).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
        for (const QString& name : names)
            if (const int result =
                    copyTree(source + QLatin1Char('/') + name, destination + QLatin1Char('/') + name))
                return result;
        return kMoved;
    }
    if (!info.isFile() || info.isSymLink()) // a link or a special file: as it is
        return BLCommon::copyFile(source, destination) ? kMoved : (fail(source, errorText(errno)), kFailed);

    if (m_thread && m_thread->isCancel())
        return kCancelled;
    errno = 0;
    const int result = BLCommon::copyFileWithProgress(source, destination, m_cross ? m_thread : nullptr,
                                                      m_cross ? m_done : nullptr, m_max, true);
    switch (result) {
    case 0:
        return kMoved;
    case 3:
        return kCancelled;
    case BLCommon::kCopyNotVerified:
        fail(source, QStringLiteral("its copy does not read back as the original was read"));
        return kFailed;
    default:
        fail(source, errno != 0 ? errorText(errno) : QStringLiteral("it could not be copied"));
        return kFailed;
    }
}

bool BLTakeMover::removeItem(const QString& bpav, const QString& relative)
{
    const QString path = bpav + QLatin1Char('/') + relative;
    if (!exists(path))
        return true;
    // Out of its place in one rename, so that nothing half removed is ever
    // found there; what lies in staging is thrown away.
    const QString staging = stagingOf(bpav);
    if (!QDir().mkpath(staging))
        return fail(staging, errorText(errno));
    const QString removed = stagingEntry(staging, QStringLiteral("removed"));
    if (const int error = BLCommon::renameNoReplace(path, removed))
        return fail(path, errorText(error));
    BLCommon::removeFile(removed);
    log(QStringLiteral("[BLTakeMover removeItem] ") + path);
    return true;
}

int BLTakeMover::advance(qint64 files)
{
    if (!m_thread)
        return kMoved;
    if (m_done) {
        *m_done += files;
        m_thread->setProgress(double(qMin(*m_done, m_max)), 0, double(m_max));
    }
    m_thread->waitThread();
    return m_thread->isCancel() ? kCancelled : kMoved;
}

void BLTakeMover::measure(const QString& path, qint64* files, qint64* bytes)
{
    *files = 0;
    *bytes = 0;
    const QFileInfo info(path);
    if (info.isFile() && !info.isSymLink()) {
        *files = 1;
        *bytes = info.size();
        return;
    }
    QDirIterator it(path, QDir::Files | QDir::Hidden | QDir::System | QDir::NoSymLinks,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        it.next();
        ++*files;
        *bytes += it.fileInfo().size();
    }
}
