// BLCommon's helpers on takes and clips: time codes and durations, UMIDs,
// the clip files of a take and the folder-count limits. They sit with the
// card's records they read, above the services that declare them.
#include "core/services/BLCommon.h"

#include "core/card/BLDiskCtrl.h"
#include "core/card/BLHouseKeepingCtrl.h"
#include "core/card/DOTakeData.h"
#include "core/formats/metadata/DOLtcChange.h"
#include "core/services/BLPlistCtrl.h"
#include "core/services/SCNotificationNames.h"

#include <QDir>
#include <QRegularExpression>
#include <QVariant>

#include <algorithm>

namespace {

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

} // namespace

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

void BLCommon::sendDidAddNotification(const void* sender, const QString& path,
                                      const QList<DOTakeData>& takeDatas)
{
    sendNotification(
        sender, SC::SCTakeDidAddNotification,
        {{SC::SCAddSelectFolderKey, path}, {SC::SCAddTakeDatasKey, QVariant::fromValue(takeDatas)}});
}
