#include "core/services/BLCommon.h"

#include "core/services/BLLogCtrl.h"
#include "core/services/BLPlistCtrl.h"
#include "core/services/BLLocalizedStrings.h"
#include "core/services/BLProgressThread.h"
#include "core/services/IMessagePresenter.h"
#include "core/services/SCNotificationCenter.h"
#include "core/services/SCNotificationNames.h"
#include "core/card/BLHouseKeepingCtrl.h"
#include "core/formats/metadata/DOLtcChange.h"
#include "core/card/BLDiskCtrl.h"
#include "core/services/BLVolumeProvider.h"
#include "core/card/DOTakeData.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QLocale>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QThread>
#include <QTimeZone>

#include <cerrno>
#include <fcntl.h>
#include <memory>
#include <optional>
#include <stdio.h>
#include <sys/stat.h>
#include <unistd.h>
#include <xxhash.h>

#include <algorithm>
#include <atomic>
#include <mutex>

namespace {
std::mutex g_sharedMutex;
BLCommon* g_shared = nullptr;
std::atomic<IMessagePresenter*> g_presenter{nullptr};

// XDG base folder from the environment, else HOME joined with the fallback.
QString xdgFolder(const char* variable, const QString& fallback)
{
    const QString value = qEnvironmentVariable(variable);
    if (!value.isEmpty() && QDir::isAbsolutePath(value))
        return QDir::cleanPath(value);
    return QDir::cleanPath(QDir::homePath() + QLatin1Char('/') + fallback);
}

QString ensureFolder(const QString& path)
{
    if (path.isEmpty())
        return {};
    if (QDir(path).exists() || QDir().mkpath(path))
        return path;
    return {};
}

// What a frame-rate name means for time codes and durations.
struct FpsInfo
{
    int timecodeRate = 0;  // rate of the time code
    int durationRate = 25; // rate used to format durations
    bool dropPossible = false;
    bool halved = false; // progressive 50/59.94: two frames per time code frame
};

FpsInfo fpsInfo(const QString& name)
{
    if (name == u"23.98P" || name == u"23.98p")
        return {24, 24, false, false};
    if (name == u"25P" || name == u"25p" || name == u"50I" || name == u"50i")
        return {25, 25, false, false};
    if (name == u"29.97P" || name == u"29.97p" || name == u"59.94I" || name == u"59.94i")
        return {30, 30, true, false};
    if (name == u"50P" || name == u"50p")
        return {50, 25, false, true};
    if (name == u"59.94P" || name == u"59.94p")
        return {60, 30, true, true};
    return {};
}

// Packed-decimal fields of a time code; the flag bits around them are kept.
int tcFrames(const BLCommon::Timecode& tc)
{
    return ((tc[0] >> 4) & 0x3) * 10 + (tc[0] & 0xF);
}
int tcSeconds(const BLCommon::Timecode& tc)
{
    return ((tc[1] >> 4) & 0x7) * 10 + (tc[1] & 0xF);
}
int tcMinutes(const BLCommon::Timecode& tc)
{
    return ((tc[2] >> 4) & 0x7) * 10 + (tc[2] & 0xF);
}
int tcHours(const BLCommon::Timecode& tc)
{
    return ((tc[3] >> 4) & 0x3) * 10 + (tc[3] & 0xF);
}

quint8 packBcd(quint8 old, int value, quint8 tensMask)
{
    const quint8 keep = quint8(~((tensMask << 4) | 0x0F));
    return quint8((old & keep) | (((value / 10) & tensMask) << 4) | (value % 10));
}

void setTcFrames(BLCommon::Timecode* tc, int v)
{
    (*tc)[0] = packBcd((*tc)[0], v, 0x3);
}
void setTcSeconds(BLCommon::Timecode* tc, int v)
{
    (*tc)[1] = packBcd((*tc)[1], v, 0x7);
}
void setTcMinutes(BLCommon::Timecode* tc, int v)
{
    (*tc)[2] = packBcd((*tc)[2], v, 0x7);
}
void setTcHours(BLCommon::Timecode* tc, int v)
{
    (*tc)[3] = packBcd((*tc)[3], v, 0x3);
}

// Time code frames per second at a rate: at 50 and 60 a time code frame spans
// two frames.
int tcUnit(int fps)
{
    return fps == 50 || fps == 60 ? fps / 2 : fps;
}

// Drop frame counts only where a time code second holds 30 frames.
bool tcDrop(const BLCommon::Timecode& tc, int fps)
{
    return ((tc[0] >> 6) & 0x1) && tcUnit(fps) == 30;
}

// Frames at the rate from 00:00:00:00 to the time code.
qint64 framesOfTimecode(const BLCommon::Timecode& tc, int fps)
{
    const int unit = tcUnit(fps);
    const qint64 minutes = tcHours(tc) * 60 + tcMinutes(tc);
    qint64 count = (minutes * 60 + tcSeconds(tc)) * unit + tcFrames(tc);
    if (tcDrop(tc, fps))
        count -= 2 * (minutes - minutes / 10); // frames 0 and 1 of nine minutes in ten
    return count * (fps / unit);
}

// Frames at the rate in 24 hours of the time code's kind.
qint64 framesPerDay(const BLCommon::Timecode& tc, int fps)
{
    const int unit = tcUnit(fps);
    return qint64(24) * (tcDrop(tc, fps) ? 107892 : 3600 * unit) * (fps / unit);
}

// Sets the time code to a frame count at the rate, wrapped to one day (time
// code frames are whole, so at 50 and 60 an odd count rounds down). The drop
// frame flag and the other flag bits stay as they are.
void setTimecodeFrames(BLCommon::Timecode* tc, qint64 frames, int fps)
{
    const int unit = tcUnit(fps);
    const bool drop = tcDrop(*tc, fps);
    const qint64 perDay = framesPerDay(*tc, fps);
    qint64 count = (frames % perDay + perDay) % perDay / (fps / unit);
    if (drop) {
        const qint64 tens = count / 17982;
        const qint64 rest = count % 17982;
        count += 18 * tens + (rest >= 2 ? 2 * ((rest - 2) / 1798) : 0);
    }
    setTcFrames(tc, int(count % unit));
    setTcSeconds(tc, int(count / unit % 60));
    setTcMinutes(tc, int(count / (unit * 60) % 60));
    setTcHours(tc, int(count / (qint64(unit) * 3600)));
}

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

// The folder names of a path without their extensions ("ABC.d" -> "ABC").
QString withoutExtension(const QString& name)
{
    const qsizetype dot = name.lastIndexOf(QLatin1Char('.'));
    return dot > 0 ? name.left(dot) : name;
}

// The folder of the first set reference. A reference without an extension
// names the folder itself (a clip folder standing for its missing take info).
QString folderOfReferences(const QStringList& references)
{
    for (const QString& reference : references) {
        if (reference.isEmpty())
            continue;
        if (QFileInfo(reference).suffix().isEmpty())
            return reference;
        return reference.left(qMax<qsizetype>(reference.lastIndexOf(QLatin1Char('/')), 0));
    }
    return QString();
}

int folderCount(const QString& folder, const QString& sub)
{
    if (!BLCommon::isBPAVFolder(folder))
        return 0;
    return int(BLCommon::getFolders(QDir(BLCommon::getPathOfBPAV(folder)).filePath(sub)).size());
}

// "+09:00" style offset of a date in its own time zone.
QString utcOffsetText(const QDateTime& date)
{
    const int offset = date.offsetFromUtc();
    const int minutes = qAbs(offset) / 60;
    return QString::asprintf("%c%02d:%02d", offset < 0 ? '-' : '+', minutes / 60, minutes % 60);
}
} // namespace

BLCommon* BLCommon::sharedCtrl()
{
    std::lock_guard lock(g_sharedMutex);
    if (!g_shared)
        g_shared = new BLCommon();
    return g_shared;
}

void BLCommon::releaseCtrl()
{
    std::lock_guard lock(g_sharedMutex);
    delete g_shared;
    g_shared = nullptr;
}

// ---- time code ----

QString BLCommon::convertOfDurationByTakeData(const DOTakeData& take)
{
    const qint64 duration = take.getTakeDuration();
    if (duration == 0)
        return QStringLiteral("--:--:--:--");
    return convertOfDurationByFrameCount(duration, take.getFormatFps(), take.getLtcChanges(), false);
}

QString BLCommon::convertOfDurationByFrameCount(qint64 frameCount, const QString& frameFps,
                                                const QList<DOLtcChange>& ltcChanges, bool isLtcTable)
{
    qint64 n = qMax<qint64>(frameCount, 0);
    if (fpsInfo(frameFps).halved)
        n /= 2;
    int rate = 0;
    const bool drop = isDropFrameByLtcChanges(ltcChanges, frameFps, &rate);

    qint64 h, m, s, f;
    if (!drop) {
        h = n / (rate * 3600);
        qint64 r = n - h * rate * 3600;
        m = r / (rate * 60);
        r -= m * rate * 60;
        s = r / rate;
        f = r - s * rate;
    } else {
        // 29.97 Hz drop frame: frames 0 and 1 are skipped at every minute
        // except each tenth, so an hour holds 107892 frames.
        h = n / 108000;
        qint64 r = n - 107892 * h;
        if (r > 108000) {
            ++h;
            r -= 107892;
        }
        qint64 tens = r / 17982;
        if (tens > 0) {
            r -= 17982 * tens;
            if (r > 18000) {
                ++tens;
                r -= 17982;
            }
        }
        qint64 units = r / 1800;
        if (units > 0) {
            r -= 1798 * units;
            if (r >= 1800) {
                ++units;
                r -= 1798;
            }
        }
        m = 10 * tens + units;
        s = r / 30;
        f = r % 30;
        if (s == 60) {
            ++m;
            s = 0;
        }
        if (m == 60) {
            ++h;
            m = 0;
        }
        if (h >= 24)
            h -= 24;
    }

    if (isLtcTable)
        return QString::asprintf("%02lld%02lld%02lld%02lld", f + 40, s, m, h);
    return QString::asprintf(drop ? "%02lld:%02lld.%02lld:%02lld" : "%02lld:%02lld:%02lld:%02lld", h, m, s,
                             f);
}

bool BLCommon::isDropFrameByLtcChanges(const QList<DOLtcChange>& ltcChanges, const QString& frameFps,
                                       int* outFrameRate)
{
    const FpsInfo info = fpsInfo(frameFps);
    if (outFrameRate)
        *outFrameRate = info.durationRate;
    if (!info.dropPossible)
        return false;
    if (ltcChanges.isEmpty() || ltcChanges.first().getValue().isEmpty())
        return true;
    return xtoi(ltcChanges.first().getValue().at(0)) > 3; // the drop-frame flag (bit 6 of the frames byte)
}

int BLCommon::toHDV_FPS(bool /*is720: same rate either way*/, const QString& frameFps)
{
    return fpsInfo(frameFps).timecodeRate;
}

bool BLCommon::Is720SP(const QList<DOTakeData>& takes)
{
    return std::any_of(takes.begin(), takes.end(), [](const DOTakeData& take) { return take.Is720SP(); });
}

bool BLCommon::LTCCValueToTimecode(Timecode* timecode, const QString& ltcChange, quint32 offset, int fps)
{
    *timecode = {0, 0, 0, 0};
    static const QRegularExpression kHex8(QStringLiteral("^[0-9A-Fa-f]{8}$"));
    if (!kHex8.match(ltcChange).hasMatch())
        return false;
    for (int i = 0; i < 4; ++i)
        (*timecode)[i] = quint8(xtoi(ltcChange.at(2 * i)) << 4 | xtoi(ltcChange.at(2 * i + 1)));
    if (offset != 0)
        SubtractOffset(timecode, offset, fps);
    return true;
}

bool BLCommon::GetTimecode(QString* out, const DOTakeData& take)
{
    return GetTimecode(out, take.getLtcChanges(), take.getOffset(),
                       toHDV_FPS(take.Is720SP(), take.getFormatFps()));
}

bool BLCommon::GetTimecode(QString* out, const QList<DOLtcChange>& ltcChanges, quint32 offset, int fps)
{
    if (ltcChanges.isEmpty())
        return false;
    Timecode tc;
    LTCCValueToTimecode(&tc, ltcChanges.first().getValue(), offset, fps);
    *out =
        QString::asprintf("%02d:%02d:%02d:%02d\n", tcHours(tc), tcMinutes(tc), tcSeconds(tc), tcFrames(tc));
    return true;
}

int BLCommon::GetStartFrames(const DOTakeData& take, int* dropFlag)
{
    return GetStartFrames(take.getLtcChanges(), take.getOffset(),
                          toHDV_FPS(take.Is720SP(), take.getFormatFps()), dropFlag);
}

int BLCommon::GetStartFrames(const QList<DOLtcChange>& ltcChanges, quint32 offset, int fps, int* dropFlag)
{
    if (dropFlag)
        *dropFlag = 0;
    if (ltcChanges.isEmpty())
        return 0;
    Timecode tc;
    LTCCValueToTimecode(&tc, ltcChanges.first().getValue(), 0, fps);
    if (dropFlag)
        *dropFlag = (tc[0] >> 6) & 0x1;
    if (fps <= 0)
        return 0;
    // Taken from the frame count, not from the time code, so that at 50 and
    // 60 an odd offset is not rounded to a whole time code frame.
    const qint64 frames = framesOfTimecode(tc, fps) - offset;
    const qint64 day = framesPerDay(tc, fps);
    return int(frames < 0 ? (frames % day + day) % day : frames); // below 00:00:00:00: the day before
}

bool BLCommon::checkTakeDuration(const QList<DOTakeData>& takes)
{
    for (const DOTakeData& take : takes) {
        const QList<DOLtcChange>& ltc = take.getLtcChanges();
        if (take.getClipData().isEmpty()) {
            if (!checkTimeCode(take.getCurrentDuration(), take.getFormatFps(), ltc, take.getTakeSize()))
                return false;
            continue;
        }
        for (const DOClipData& clip : take.getClipData())
            if (!checkTimeCode(clip.getCurrentDuration(), take.getFormatFps(), ltc, take.getTakeSize()))
                return false;
    }
    return true;
}

bool BLCommon::checkTimeCode(qint64 duration, const QString& frameFps, const QList<DOLtcChange>& ltcChanges,
                             qint64 fileSize)
{
    if (fileSize >= (qint64(1) << 32))
        return true;
    const QString text = convertOfDurationByFrameCount(duration, frameFps, ltcChanges, false);
    return text.startsWith(QLatin1Char('0')) && text.mid(3, 2).toInt() < 30;
}

qint64 BLCommon::toFrameCount(const QString& text)
{
    if (text.isEmpty())
        return 0;
    bool ok = false;
    const qint64 frames = text.toLongLong(&ok);
    return ok && frames >= 0 && frames <= kMaxFrameCount ? frames : -1;
}

int BLCommon::xtoi(QChar c)
{
    const char16_t u = c.unicode();
    if (u >= u'0' && u <= u'9')
        return u - u'0';
    if (u >= u'A' && u <= u'F')
        return u - u'A' + 10;
    if (u >= u'a' && u <= u'f')
        return u - u'a' + 10;
    return 0;
}

bool BLCommon::SubtractOffset(Timecode* timecode, quint32 offset, int fps)
{
    if (fps <= 0)
        return false;
    setTimecodeFrames(timecode, framesOfTimecode(*timecode, fps) - offset, fps);
    return true;
}

// ---- dates ----

QDateTime BLCommon::makeCalendarDateFromString(const QString& text)
{
    static const QRegularExpression kPattern(QStringLiteral(
        "^(\\d{4})-(\\d{2})-(\\d{2})T(\\d{2})(\\d{2})(\\d{2})(?:([+-])(\\d{2})(\\d{2})|[Zz])$"));
    QString compact = text;
    compact.remove(QLatin1Char(':'));
    const QRegularExpressionMatch m = kPattern.match(compact);
    if (!m.hasMatch())
        return {};
    const QDate date(m.captured(1).toInt(), m.captured(2).toInt(), m.captured(3).toInt());
    const QTime time(m.captured(4).toInt(), m.captured(5).toInt(), m.captured(6).toInt());
    if (!date.isValid() || !time.isValid())
        return {};
    if (m.captured(7).isEmpty())
        return QDateTime(date, time, QTimeZone::utc());
    const int offset = (m.captured(8).toInt() * 60 + m.captured(9).toInt()) * 60;
    return QDateTime(date, time, QTimeZone(m.captured(7) == u"-" ? -offset : offset));
}

QString BLCommon::getGmtTm()
{
    return getXmlFormatDateString(QDateTime::currentDateTime());
}

QString BLCommon::getXmlFormatDateString(const QDateTime& date)
{
    if (!date.isValid())
        return {};
    return date.toString(QStringLiteral("yyyy-MM-dd'T'HH:mm:ss")) + utcOffsetText(date);
}

QString BLCommon::makeDateStringFromCalendarData(const QDateTime& date, int order, const QString& pause)
{
    const QString y = date.toString(QStringLiteral("yyyy"));
    const QString m = date.toString(QStringLiteral("MM"));
    const QString d = date.toString(QStringLiteral("dd"));
    switch (order) {
    case 2:
        return d + pause + m + pause + y;
    case 1:
        return m + pause + d + pause + y;
    default:
        return y + pause + m + pause + d;
    }
}

QString BLCommon::makeDateTimeStringFromCalendarData(const QDateTime& date)
{
    if (!date.isValid())
        return QString();
    const BLPlistCtrl* plist = BLPlistCtrl::sharedCtrl();
    return makeDateStringFromCalendarData(date, plist->getDateFormat(), plist->getDatePauseChar()) +
           date.toString(QStringLiteral(" HH:mm"));
}

QString BLCommon::getSystemLanguage()
{
    const QLocale locale = QLocale::system();
    if (locale.language() == QLocale::C)
        return QStringLiteral("en");
    return locale.name().section(QLatin1Char('_'), 0, 0);
}

// ---- sizes ----

QString BLCommon::sizeText(qint64 size)
{
    return convertSizeStr(size, QStringLiteral("#,##0.0"), size < (qint64(1) << 30) ? 2 : 3);
}

QString BLCommon::convertSizeStr(qint64 size, const QString& format, int mode)
{
    static const char* const kUnits[] = {nullptr, "LOCALIZED_TYPE_KB", "LOCALIZED_TYPE_MB",
                                         "LOCALIZED_TYPE_GB", "LOCALIZED_TYPE_TB"};
    mode = qBound(0, mode, 4);
    const qsizetype dot = format.indexOf(QLatin1Char('.'));
    const int decimals = dot < 0 ? 0 : int(format.size() - dot - 1);
    qint64 scale = 1;
    for (int i = 0; i < decimals; ++i)
        scale *= 10;

    // Whole-unit steps first; the last step keeps the decimals, rounded down.
    qint64 value = size;
    for (int i = 1; i < mode; ++i)
        value /= 1024;
    __int128 scaled = __int128(value) * scale;
    if (mode > 0)
        scaled /= 1024;
    const qint64 whole = qint64(scaled / scale);
    const qint64 fraction = qint64(scaled % scale);

    QLocale locale;
    locale.setNumberOptions(format.contains(QLatin1Char(','))
                                ? locale.numberOptions() & ~QLocale::OmitGroupSeparator
                                : locale.numberOptions() | QLocale::OmitGroupSeparator);
    QString text = locale.toString(whole);
    if (decimals > 0)
        text += locale.decimalPoint() +
                QString::number(qAbs(fraction)).rightJustified(decimals, QLatin1Char('0'));
    if (kUnits[mode])
        text += QLatin1Char(' ') + BLLocalizedString(QString::fromLatin1(kUnits[mode]));
    return text;
}

// ---- UMID ----

QString BLCommon::createUmid()
{
    int n = m_umidSerialNumber.load();
    while (!m_umidSerialNumber.compare_exchange_weak(n, n >= 63 ? 1 : n + 1)) {
    }
    return QStringLiteral("060A2B340101010501010D43") + QStringLiteral("13") + QStringLiteral("000000") +
           GetSMPTE309(n) + BLDiskCtrl::sharedCtrl()->getMacAddress(true);
}

QString BLCommon::createMediaID(int n)
{
    return GetSMPTE309(n) + BLDiskCtrl::sharedCtrl()->getMacAddress(true);
}

int BLCommon::nextSequentialNo()
{
    const int n = BLPlistCtrl::sharedCtrl()->getSequentialNo() + 1;
    return n >= 9999 ? 0 : n;
}

QString BLCommon::GetSMPTE309(int n)
{
    return GetSMPTE309(n, QDateTime::currentDateTimeUtc());
}

QString BLCommon::GetSMPTE309(int n, const QDateTime& now)
{
    qint64 t = now.toMSecsSinceEpoch();
    if (n > 63)
        t += qint64(n / 64) * 100;
    const QDate day = now.toUTC().date();
    const QString mjd = QString::asprintf("%06d", modifiedJulianDate(day.year(), day.month(), day.day()));
    const QString mjdSwapped = mjd.mid(4, 2) + mjd.mid(2, 2) + mjd.mid(0, 2);
    return QString::asprintf("%08lld", t % 100000000) + mjdSwapped +
           QString::asprintf("%02X", unsigned((n & 0x3F) | 0xC0));
}

int BLCommon::modifiedJulianDate(int year, int month, int day)
{
    if (month <= 2) {
        year -= 1;
        month += 12;
    }
    return (36525 * year) / 100 + year / 400 - year / 100 + (3059 * month - 6118) / 100 + day - 678912;
}

// ---- folders and paths ----

QString BLCommon::makeFilePath(const QString& base, const QStringList& components)
{
    QString path = base;
    for (const QString& component : components) {
        const QString part = removalDot(component);
        if (part.isEmpty())
            continue;
        if (!path.endsWith(QLatin1Char('/')))
            path += QLatin1Char('/');
        path += part.startsWith(QLatin1Char('/')) ? part.mid(1) : part;
    }
    static const QRegularExpression kSlashes(QStringLiteral("/{2,}"));
    path.replace(kSlashes, QStringLiteral("/"));
    if (path.size() > 1 && path.endsWith(QLatin1Char('/')))
        path.chop(1);
    return path;
}

QString BLCommon::addDot(const QString& reference)
{
    if (reference.startsWith(QLatin1Char('.')))
        return reference;
    return reference.startsWith(QLatin1Char('/')) ? QLatin1Char('.') + reference
                                                  : QStringLiteral("./") + reference;
}

QString BLCommon::removalDot(const QString& reference)
{
    return reference.startsWith(QLatin1Char('.')) ? reference.mid(1) : reference;
}

bool BLCommon::isClipReference(const QString& reference)
{
    const QString relative = reference.startsWith(QLatin1String("./")) ? reference.mid(2) : reference;
    return relative.section(QLatin1Char('/'), 0, 0, QString::SectionSkipEmpty)
               .compare(QLatin1String("CLPR"), Qt::CaseInsensitive) == 0;
}

QString BLCommon::standardizePath(const QString& path)
{
    if (path == QLatin1String("~") || path.startsWith(QLatin1String("~/")))
        return QDir::cleanPath(QDir::homePath() + path.mid(1));
    return QDir::cleanPath(path);
}

QString BLCommon::getPathOfBPAV(const QString& folder)
{
    const QString direct = makeFilePath(folder, {QStringLiteral("BPAV")});
    if (isFolder(direct))
        return direct;
    const QString card = makeFilePath(folder, {QStringLiteral("PRIVATE/ORX/BPAV")});
    return isFolder(card) ? card : direct;
}

QString BLCommon::visibleFolderNameOf(const QString& folder)
{
    const QString bpav = getPathOfBPAV(folder);
    return bpav.endsWith(QLatin1String("/PRIVATE/ORX/BPAV")) ? QStringLiteral("PRIVATE")
                                                             : QStringLiteral("BPAV");
}

bool BLCommon::isBPAVFolder(const QString& folder)
{
    return isFolder(getPathOfBPAV(folder));
}

QStringList BLCommon::getMp4FilePaths(const QString& folder, const DOTakeData& take, int* fileCount)
{
    QStringList references;
    if (take.getClipData().isEmpty())
        references << take.getMP4Uri();
    for (const DOClipData& clip : take.getClipData())
        references << clip.getMP4Uri();
    QStringList paths;
    const QString bpav = getPathOfBPAV(folder);
    for (const QString& reference : std::as_const(references)) {
        if (reference.isEmpty()) {
            paths.clear();
            break;
        }
        paths << makeFilePath(bpav, {reference});
    }
    if (fileCount)
        *fileCount = int(paths.size());
    return paths;
}

QString BLCommon::getFolderName(const DOTakeData& take)
{
    return folderOfReferences({take.getSMIUri(), take.getXMLUri(), take.getMP4Uri()});
}

QString BLCommon::getFolderName(const DOClipData& clip)
{
    return folderOfReferences({clip.getSMIUri(), clip.getXMLUri(), clip.getMP4Uri()});
}

QString BLCommon::getVolumeName(const QString& path)
{
    const QString clean = QDir::cleanPath(path);
    QString best = QStringLiteral("/");
    const QList<BLVolume> volumes = BLVolumeProvider::current()->mountedVolumes();
    for (const BLVolume& volume : volumes) {
        const QString root = QDir::cleanPath(volume.rootPath);
        if (root == QLatin1String("/") || root.size() < best.size())
            continue;
        if (clean == root || clean.startsWith(root + QLatin1Char('/')))
            best = root + QLatin1Char('/');
    }
    return best;
}

bool BLCommon::compareVolumes(const QString& path, const QString& path2)
{
    return getVolumeName(path) == getVolumeName(path2);
}

bool BLCommon::isCLPRFolder(const QString& folder)
{
    const QString clpr = QDir(getPathOfBPAV(folder)).filePath(QStringLiteral("CLPR"));
    return isFolder(clpr) || createNewFolderWithParent(clpr);
}

bool BLCommon::isTAKRFolder(const QString& folder)
{
    const QString takr = QDir(getPathOfBPAV(folder)).filePath(QStringLiteral("TAKR"));
    return isFolder(takr) || createNewFolderWithParent(takr);
}

bool BLCommon::createFixedFolders(const QString& folder)
{
    const QString bpav = getPathOfBPAV(folder);
    for (const QString& path :
         {bpav, QDir(bpav).filePath(QStringLiteral("CLPR")), QDir(bpav).filePath(QStringLiteral("TAKR"))})
        if (!isFolder(path) && !createNewFolder(path))
            return false;
    return true;
}

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

// ---- names ----

bool BLCommon::checkHyphenationCharacter(const QString& name)
{
    static const QString kForbidden = QStringLiteral(":/\\><?*\"|");
    if (name.startsWith(QLatin1Char('.')))
        return false;
    for (const QChar c : name)
        if (kForbidden.contains(c))
            return false;
    return checkReturnCode(name);
}

bool BLCommon::checkReturnCode(const QString& name)
{
    return !name.contains(QLatin1Char('\r')) && !name.contains(QLatin1Char('\n')) &&
           !name.contains(QChar(0x00A5));
}

bool BLCommon::checkHyphenationCharacterForPath(const QString& path)
{
    const QStringList names = path.split(QLatin1Char('/'), Qt::SkipEmptyParts);
    for (qsizetype i = names.size() - 1; i >= 0; --i)
        if (!checkHyphenationCharacter(withoutExtension(names.at(i))))
            return false;
    return true;
}

bool BLCommon::checkNotInput(const QString& text)
{
    return !text.isEmpty();
}

bool BLCommon::checkSameName(const QString& folder, const QString& name)
{
    const QStringList names = getFileList(folder);
    for (const QString& entry : names)
        if (entry.compare(name, Qt::CaseInsensitive) == 0)
            return false;
    return true;
}

QString BLCommon::updateTakeUri(const QString& reference, int number)
{
    QStringList parts = reference.split(QLatin1Char('/'));
    if (parts.size() < 2)
        return reference;
    for (QString& part : parts)
        if (part == QLatin1String("CLPR"))
            part = QStringLiteral("TAKR");
    QString& folder = parts[parts.size() - 2];
    folder += QString::asprintf("U%02d", number);
    if (QFileInfo(parts.last()).suffix().compare(QLatin1String("XML"), Qt::CaseInsensitive) == 0)
        parts.last() = folder + QStringLiteral("M01.XML");
    return parts.join(QLatin1Char('/'));
}

QString BLCommon::updateSMIUri(const QString& reference, int number)
{
    const qsizetype slash = reference.lastIndexOf(QLatin1Char('/'));
    const QString folder = reference.left(slash + 1);
    return folder + withoutExtension(reference.mid(slash + 1)) + QString::asprintf("U%02d.SMI", number);
}

// ---- folder-count limits ----

int BLCommon::getFolderCountInCLPR(const QString& folder)
{
    return folderCount(folder, QStringLiteral("CLPR"));
}

int BLCommon::getFolderCountInTAKR(const QString& folder)
{
    return folderCount(folder, QStringLiteral("TAKR"));
}

bool BLCommon::isExceedFolderLimit(const QString& folder)
{
    return getFolderCountInCLPR(folder) > kFolderLimit || getFolderCountInTAKR(folder) > kFolderLimit;
}

bool BLCommon::isExceedFolderLimitByImport(const QString& folder, int importMP4Files)
{
    return getFolderCountInCLPR(folder) + importMP4Files > kFolderLimit;
}

void BLCommon::getFolderCountFromTakeDatas(const QList<DOTakeData>& takes, int* outClip, int* outTake)
{
    int clips = 0;
    int takeFolders = 0;
    for (const DOTakeData& take : takes) {
        if (take.getTakeStatus() >= 4)
            continue; // loose or unusable: never copied
        if (take.getSingleClipFlag()) {
            ++clips;
        } else {
            ++takeFolders;
            clips += int(take.getClipData().size());
        }
    }
    if (outClip)
        *outClip = clips;
    if (outTake)
        *outTake = takeFolders;
}

bool BLCommon::isExceedFolderLimitByCopy(const QString& folder, const QList<DOTakeData>& takes)
{
    int clips = 0;
    int takeFolders = 0;
    getFolderCountFromTakeDatas(takes, &clips, &takeFolders);
    return getFolderCountInCLPR(folder) + clips > kFolderLimit ||
           getFolderCountInTAKR(folder) + takeFolders > kFolderLimit;
}

bool BLCommon::isExceedFolderLimitByMaterial(const BLHouseKeepingCtrl& houseKeeping)
{
    return houseKeeping.getCLPRMateCount() > kFolderLimit || houseKeeping.getTAKRMateCount() > kFolderLimit;
}

// ---- special folders ----

QString BLCommon::createSpFolderPath(const QString& folderType) const
{
    if (folderType == QLatin1String("pref"))
        return ensureFolder(xdgFolder("XDG_CONFIG_HOME", QStringLiteral(".config")));
    if (folderType == QLatin1String("logs"))
        return ensureFolder(xdgFolder("XDG_STATE_HOME", QStringLiteral(".local/state")));
    if (folderType == QLatin1String("mdoc"))
        return ensureFolder(QStandardPaths::writableLocation(QStandardPaths::MoviesLocation));
    return {};
}

QString BLCommon::searchFolderPath(int kind) const
{
    switch (kind) {
    case 0:
        return createSpFolderPath(QStringLiteral("logs"));
    case 1:
        return createSpFolderPath(QStringLiteral("pref"));
    case 2:
        return createSpFolderPath(QStringLiteral("mdoc"));
    case 3:
        return ensureFolder(QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation));
    default:
        return {};
    }
}

void BLCommon::sendNotification(const void* sender, const QString& name, const QVariantMap& userInfo)
{
    SCNotificationCenter::defaultCenter()->enqueue(SCNotification{name, sender, userInfo}, true);
}

void BLCommon::sendNotificationNotCoalesce(const void* sender, const QString& name,
                                           const QVariantMap& userInfo)
{
    SCNotificationCenter::defaultCenter()->enqueue(SCNotification{name, sender, userInfo}, false);
}

void BLCommon::sendNotificationNow(const void* sender, const QString& name, const QVariantMap& userInfo)
{
    SCNotificationCenter::defaultCenter()->postNow(SCNotification{name, sender, userInfo});
}

void BLCommon::sendDidDeleteNotification(const void* sender, const QStringList& delUmid,
                                         const QString& selectFolder)
{
    sendNotification(sender, SC::SCTakeDidDeleteNotification,
                     {{SC::SCDeleteTakeUmidsKey, delUmid}, {SC::SCDeleteSelectFolderKey, selectFolder}});
}

void BLCommon::sendDidDelNotificationNotCoalesce(const void* sender, const QStringList& delUmid,
                                                 const QString& selectFolder)
{
    sendNotificationNotCoalesce(
        sender, SC::SCTakeDidDeleteNotification,
        {{SC::SCDeleteTakeUmidsKey, delUmid}, {SC::SCDeleteSelectFolderKey, selectFolder}});
}

void BLCommon::sendDidAddNotification(const void* sender, const QString& path,
                                      const QList<DOTakeData>& takeDatas)
{
    sendNotification(
        sender, SC::SCTakeDidAddNotification,
        {{SC::SCAddSelectFolderKey, path}, {SC::SCAddTakeDatasKey, QVariant::fromValue(takeDatas)}});
}

void BLCommon::setMessagePresenter(IMessagePresenter* presenter)
{
    g_presenter = presenter;
}

IMessagePresenter* BLCommon::messagePresenter()
{
    return g_presenter;
}

int BLCommon::messageBox(const QString& message, const QString& infoMesse,
                         int /*style: always informational*/, int btnPattern, const QStringList& messageArgs)
{
    QString text = BLLocalizedString(message);
    for (qsizetype i = messageArgs.size() - 1; i >= 0; --i)
        text.replace(QLatin1Char('%') + QString::number(i + 1), messageArgs.at(i));
    SCAlert alert{
        message, infoMesse, text, infoMesse.isEmpty() ? QString() : BLLocalizedString(infoMesse), {}};
    QStringList& buttons = alert.buttons;
    for (int no = 0; no < 2; ++no) {
        const QString label = getBtnLabel(btnPattern, no);
        if (!label.isEmpty())
            buttons << label;
    }
    if (buttons.isEmpty())
        buttons << getBtnLabel(0, 0);
    IMessagePresenter* presenter = g_presenter;
    if (!presenter)
        return IMessagePresenter::kFirstButton;
    // Alerts are windows: a worker's alert is shown by the main thread while
    // the worker waits for the answer.
    QCoreApplication* app = QCoreApplication::instance();
    if (!app || QThread::currentThread() == app->thread())
        return presenter->showAlert(alert);
    int answer = IMessagePresenter::kFirstButton;
    QMetaObject::invokeMethod(
        app, [&] { answer = presenter->showAlert(alert); }, Qt::BlockingQueuedConnection);
    return answer;
}

QString BLCommon::getBtnLabel(int pattern, int no) const
{
    static const char* const kKeys[3][2] = {
        {"BTN_STYLE_OK", nullptr},
        {"BTN_STYLE_OK", "BTN_STYLE_CANCEL"},
        {"BTN_STYLE_YES", "BTN_STYLE_NO"},
    };
    if (pattern < 0 || pattern > 2 || no < 0 || no > 1 || !kKeys[pattern][no])
        return QString();
    return BLLocalizedString(QString::fromLatin1(kKeys[pattern][no]));
}
