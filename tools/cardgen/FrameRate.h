#pragma once

#include <QString>
#include <QStringList>

#include <cstdint>
#include <optional>

namespace cardgen {

// A recording frame rate as the camera names it ("59.94i", "25p", ...), with
// what the essence and the time code need to know about it.
struct FrameRate
{
    QString name;
    int num = 0; // frames per second = num / den (a frame holds both fields)
    int den = 1;
    bool interlaced = false;
    int tcBase = 0; // time-code frames per second: 24, 25 or 30
    bool dropCapable = false;
    bool doubled = false; // two frames per time-code frame (50p, 59.94p)
    int defaultGop = 15;

    static std::optional<FrameRate> byName(const QString& name);
    static QStringList names();

    // MP4 media time scale and the duration of one frame in it.
    int timescale() const { return num; }
    int sampleDelta() const { return den; }
    // Audio samples at 48 kHz from frame 0 up to (not including) the given frame.
    int64_t audioSamplesBefore(int64_t frame) const;
};

// A time code in time-code frames (at tcBase), drop-frame or not.
struct TimeCode
{
    int hours = 0;
    int minutes = 0;
    int seconds = 0;
    int frames = 0;
    bool dropFrame = false;

    // "HH:MM:SS:FF" (or ";" / "." before the frames); nullopt when malformed.
    static std::optional<TimeCode> parse(const QString& text, int tcBase, bool dropFrame);
    // Time code frames counted from 00:00:00:00.
    int64_t toCount(int tcBase) const;
    static TimeCode fromCount(int64_t count, int tcBase, bool dropFrame);

    // "HH:MM:SS:FF", with ";" before the frames when drop-frame.
    QString display() const;
    // The eight-digit LTC change value: frames (+40 when drop-frame), seconds, minutes, hours.
    QString ltcValue() const;
    // Four BCD bytes: frames (bit 6 = drop-frame), seconds, minutes, hours.
    uint32_t bcdBytes() const;
};

// Maps the frames of a recording to time codes: frame 0 has the start time code,
// every frame (every second frame at doubled rates) advances it by one.
class TimeCodeClock
{
public:
    TimeCodeClock(const FrameRate& rate, const TimeCode& start);
    TimeCode at(int64_t frame) const;
    bool dropFrame() const { return m_dropFrame; }

private:
    FrameRate m_rate;
    int64_t m_startCount = 0;
    bool m_dropFrame = false;
};

} // namespace cardgen
