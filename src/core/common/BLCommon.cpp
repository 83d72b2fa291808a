#include "core/common/BLCommon.h"

#include "core/app/BLPlistCtrl.h"
#include "core/common/BLLocalizedStrings.h"
#include "core/common/IMessagePresenter.h"
#include "core/common/SCNotificationCenter.h"
#include "core/model/BLDiskCtrl.h"
#include "core/model/BLVolumeProvider.h"

#include <QDir>
#include <QFileInfo>
#include <QLocale>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTimeZone>

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
int tcFrames(const BLCommon::Timecode& tc) { return ((tc[0] >> 4) & 0x3) * 10 + (tc[0] & 0xF); }
int tcSeconds(const BLCommon::Timecode& tc) { return ((tc[1] >> 4) & 0x7) * 10 + (tc[1] & 0xF); }
int tcMinutes(const BLCommon::Timecode& tc) { return ((tc[2] >> 4) & 0x7) * 10 + (tc[2] & 0xF); }
int tcHours(const BLCommon::Timecode& tc) { return ((tc[3] >> 4) & 0x3) * 10 + (tc[3] & 0xF); }

quint8 packBcd(quint8 old, int value, quint8 tensMask)
{
    const quint8 keep = quint8(~((tensMask << 4) | 0x0F));
    return quint8((old & keep) | (((value / 10) & tensMask) << 4) | (value % 10));
}

void setTcFrames(BLCommon::Timecode* tc, int v) { (*tc)[0] = packBcd((*tc)[0], v, 0x3); }
void setTcSeconds(BLCommon::Timecode* tc, int v) { (*tc)[1] = packBcd((*tc)[1], v, 0x7); }
void setTcMinutes(BLCommon::Timecode* tc, int v) { (*tc)[2] = packBcd((*tc)[2], v, 0x7); }
void setTcHours(BLCommon::Timecode* tc, int v) { (*tc)[3] = packBcd((*tc)[3], v, 0x3); }

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

QString BLCommon::convertOfDurationByFrameCount(qint64 frameCount, const QString& frameFps,
                                                const QStringList& ltcChanges, bool isLtcTable)
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
    return QString::asprintf(drop ? "%02lld:%02lld.%02lld:%02lld" : "%02lld:%02lld:%02lld:%02lld", h, m, s, f);
}

bool BLCommon::isDropFrameByLtcChanges(const QStringList& ltcChanges, const QString& frameFps, int* outFrameRate)
{
    const FpsInfo info = fpsInfo(frameFps);
    if (outFrameRate)
        *outFrameRate = info.durationRate;
    if (!info.dropPossible)
        return false;
    if (ltcChanges.isEmpty() || ltcChanges.first().isEmpty())
        return true;
    return xtoi(ltcChanges.first().at(0)) > 3; // the drop-frame flag (bit 6 of the frames byte)
}

int BLCommon::toHDV_FPS(bool /*is720: same rate either way*/, const QString& frameFps)
{
    return fpsInfo(frameFps).timecodeRate;
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

bool BLCommon::GetTimecode(QString* out, const QStringList& ltcChanges, quint32 offset, int fps)
{
    if (ltcChanges.isEmpty())
        return false;
    Timecode tc;
    LTCCValueToTimecode(&tc, ltcChanges.first(), offset, fps);
    *out = QString::asprintf("%02d:%02d:%02d:%02d\n", tcHours(tc), tcMinutes(tc), tcSeconds(tc), tcFrames(tc));
    return true;
}

int BLCommon::GetStartFrames(const QStringList& ltcChanges, quint32 offset, int fps, int* dropFlag)
{
    if (dropFlag)
        *dropFlag = 0;
    if (ltcChanges.isEmpty())
        return 0;
    Timecode tc;
    LTCCValueToTimecode(&tc, ltcChanges.first(), offset, fps);
    const int hours = tcHours(tc);
    const int minuteTens = (tc[2] >> 4) & 0x7;
    const int minuteUnits = tc[2] & 0xF;
    const int minutes = minuteTens * 10 + minuteUnits;
    const int seconds = tcSeconds(tc);
    int frames = tcFrames(tc);
    if (fps == 50 || fps == 60)
        frames *= 2;
    const bool drop = (tc[0] >> 6) & 0x1;
    if (dropFlag)
        *dropFlag = drop ? 1 : 0;

    if (!drop)
        return (hours * 3600 + minutes * 60 + seconds) * fps + frames;
    if (fps == 60)
        return hours * 215784 + minuteTens * 35964 + minuteUnits * 3596 + seconds * 60 + frames;
    const int totalMinutes = 2 * fps * hours + minutes;
    return (hours * 3600 + minutes * 60 + seconds) * fps + frames - 2 * (totalMinutes - totalMinutes / 10);
}

bool BLCommon::checkTimeCode(qint64 duration, const QString& frameFps, const QStringList& ltcChanges,
                             qint64 fileSize)
{
    if (fileSize >= (qint64(1) << 32))
        return true;
    const QString text = convertOfDurationByFrameCount(duration, frameFps, ltcChanges, false);
    return text.startsWith(QLatin1Char('0')) && text.mid(3, 2).toInt() < 30;
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
    return SubtractFrames(timecode, offset) || SubtractSecond(timecode, offset, fps) ||
           SubtractMinute(timecode, offset, fps) || SubtractHour(timecode, offset, fps);
}

bool BLCommon::SubtractFrames(Timecode* timecode, quint32 offset)
{
    const int frames = tcFrames(*timecode);
    if (frames == 0 || quint32(frames) < offset)
        return false;
    setTcFrames(timecode, frames - int(offset));
    return true;
}

// Borrows one second into the frames; answers false only when there is no
// second to borrow.
bool BLCommon::SubtractSecond(Timecode* timecode, quint32 offset, int fps)
{
    const int seconds = tcSeconds(*timecode);
    if (seconds == 0)
        return false;
    setTcSeconds(timecode, seconds - 1);
    const int frames = tcFrames(*timecode) + fps;
    setTcFrames(timecode, quint32(frames) >= offset ? frames - int(offset) : frames);
    return true;
}

bool BLCommon::SubtractMinute(Timecode* timecode, quint32 offset, int fps)
{
    const int minutes = tcMinutes(*timecode);
    if (minutes == 0)
        return false;
    setTcMinutes(timecode, minutes - 1);
    setTcSeconds(timecode, tcSeconds(*timecode) + 60);
    return SubtractSecond(timecode, offset, fps);
}

bool BLCommon::SubtractHour(Timecode* timecode, quint32 offset, int fps)
{
    const int hours = tcHours(*timecode);
    setTcHours(timecode, hours == 0 ? 23 : hours - 1);
    setTcMinutes(timecode, tcMinutes(*timecode) + 60);
    return SubtractMinute(timecode, offset, fps);
}

// ---- dates ----

QDateTime BLCommon::makeCalendarDateFromString(const QString& text)
{
    static const QRegularExpression kPattern(
        QStringLiteral("^(\\d{4})-(\\d{2})-(\\d{2})T(\\d{2})(\\d{2})(\\d{2})(?:([+-])(\\d{2})(\\d{2})|[Zz])$"));
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

QString BLCommon::convertSizeStr(qint64 size, const QString& format, int mode)
{
    static const char* const kUnits[] = {nullptr, "LOCALIZED_TYPE_KB", "LOCALIZED_TYPE_MB", "LOCALIZED_TYPE_GB",
                                         "LOCALIZED_TYPE_TB"};
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
        text += locale.decimalPoint() + QString::number(qAbs(fraction)).rightJustified(decimals, QLatin1Char('0'));
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
    return reference.startsWith(QLatin1Char('/')) ? QLatin1Char('.') + reference : QStringLiteral("./") + reference;
}

QString BLCommon::removalDot(const QString& reference)
{
    return reference.startsWith(QLatin1Char('.')) ? reference.mid(1) : reference;
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
    return bpav.endsWith(QLatin1String("/PRIVATE/ORX/BPAV")) ? QStringLiteral("PRIVATE") : QStringLiteral("BPAV");
}

bool BLCommon::isBPAVFolder(const QString& folder)
{
    return isFolder(getPathOfBPAV(folder));
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

void BLCommon::sendNotificationNotCoalesce(const void* sender, const QString& name, const QVariantMap& userInfo)
{
    SCNotificationCenter::defaultCenter()->enqueue(SCNotification{name, sender, userInfo}, false);
}

void BLCommon::sendNotificationNow(const void* sender, const QString& name, const QVariantMap& userInfo)
{
    SCNotificationCenter::defaultCenter()->postNow(SCNotification{name, sender, userInfo});
}

void BLCommon::setMessagePresenter(IMessagePresenter* presenter)
{
    g_presenter = presenter;
}

IMessagePresenter* BLCommon::messagePresenter()
{
    return g_presenter;
}

int BLCommon::messageBox(const QString& message, const QString& infoMesse, int /*style: always informational*/,
                         int btnPattern, const QStringList& messageArgs)
{
    QString text = BLLocalizedString(message);
    for (qsizetype i = messageArgs.size() - 1; i >= 0; --i)
        text.replace(QLatin1Char('%') + QString::number(i + 1), messageArgs.at(i));
    SCAlert alert{message, infoMesse, text, infoMesse.isEmpty() ? QString() : BLLocalizedString(infoMesse), {}};
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
    return presenter->showAlert(alert);
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
