#include "cardgen/FrameRate.h"

#include <QRegularExpression>
#include <QStringList>

#include <array>

namespace cardgen {

namespace {

const std::array<FrameRate, 7> kRates = {{
    {"59.94i", 30000, 1001, true, 30, true, false, 15},
    {"29.97p", 30000, 1001, false, 30, true, false, 15},
    {"23.98p", 24000, 1001, false, 24, false, false, 15},
    {"59.94p", 60000, 1001, false, 30, true, true, 15},
    {"50i", 25, 1, true, 25, false, false, 12},
    {"25p", 25, 1, false, 25, false, false, 12},
    {"50p", 50, 1, false, 25, false, true, 12},
}};

constexpr int64_t kDropFramesPerTenMinutes = 17982;
constexpr int64_t kDropFramesPerMinute = 1798;

} // namespace

std::optional<FrameRate> FrameRate::byName(const QString& name)
{
    for (const FrameRate& rate : kRates) {
        if (rate.name.compare(name, Qt::CaseInsensitive) == 0)
            return rate;
    }
    return std::nullopt;
}

QStringList FrameRate::names()
{
    QStringList list;
    for (const FrameRate& rate : kRates)
        list << rate.name;
    return list;
}

int64_t FrameRate::audioSamplesBefore(int64_t frame) const
{
    // Rounded to the nearest sample so that the chunks of a clip add up exactly.
    return (frame * 48000 * den + num / 2) / num;
}

std::optional<TimeCode> TimeCode::parse(const QString& text, int tcBase, bool dropFrame)
{
    static const QRegularExpression pattern(QStringLiteral("^(\\d\\d):(\\d\\d)[:.](\\d\\d)[:;.](\\d\\d)$"));
    const QRegularExpressionMatch m = pattern.match(text);
    if (!m.hasMatch())
        return std::nullopt;
    TimeCode tc{m.captured(1).toInt(), m.captured(2).toInt(), m.captured(3).toInt(), m.captured(4).toInt(),
                dropFrame};
    if (tc.hours > 23 || tc.minutes > 59 || tc.seconds > 59 || tc.frames >= tcBase)
        return std::nullopt;
    // Drop-frame time code skips frames 0 and 1 at every minute except every tenth.
    if (dropFrame && tc.seconds == 0 && tc.frames < 2 && tc.minutes % 10 != 0)
        return std::nullopt;
    return tc;
}

int64_t TimeCode::toCount(int tcBase) const
{
    const int64_t totalMinutes = int64_t(hours) * 60 + minutes;
    int64_t count = (totalMinutes * 60 + seconds) * tcBase + frames;
    if (dropFrame)
        count -= 2 * (totalMinutes - totalMinutes / 10);
    return count;
}

TimeCode TimeCode::fromCount(int64_t count, int tcBase, bool dropFrame)
{
    if (dropFrame) {
        const int64_t tens = count / kDropFramesPerTenMinutes;
        const int64_t rest = count % kDropFramesPerTenMinutes;
        count += 18 * tens + (rest < 2 ? 0 : 2 * ((rest - 2) / kDropFramesPerMinute));
    }
    TimeCode tc;
    tc.dropFrame = dropFrame;
    tc.frames = int(count % tcBase);
    tc.seconds = int(count / tcBase % 60);
    tc.minutes = int(count / (int64_t(tcBase) * 60) % 60);
    tc.hours = int(count / (int64_t(tcBase) * 3600) % 24);
    return tc;
}

QString TimeCode::display() const
{
    return QString::asprintf("%02d:%02d:%02d%c%02d", hours, minutes, seconds, dropFrame ? ';' : ':', frames);
}

QString TimeCode::ltcValue() const
{
    return QString::asprintf("%02d%02d%02d%02d", frames + (dropFrame ? 40 : 0), seconds, minutes, hours);
}

uint32_t TimeCode::bcdBytes() const
{
    auto bcd = [](int v) { return uint32_t((v / 10) << 4 | (v % 10)); };
    const uint32_t f = bcd(frames) | (dropFrame ? 0x40 : 0);
    return f << 24 | bcd(seconds) << 16 | bcd(minutes) << 8 | bcd(hours);
}

TimeCodeClock::TimeCodeClock(const FrameRate& rate, const TimeCode& start)
    : m_rate(rate), m_startCount(start.toCount(rate.tcBase)), m_dropFrame(start.dropFrame)
{
}

TimeCode TimeCodeClock::at(int64_t frame) const
{
    const int64_t step = m_rate.doubled ? frame / 2 : frame;
    return TimeCode::fromCount(m_startCount + step, m_rate.tcBase, m_dropFrame);
}

} // namespace cardgen
