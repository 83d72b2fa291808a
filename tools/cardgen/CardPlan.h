#pragma once

#include "cardgen/FrameRate.h"

#include <QDateTime>
#include <QString>
#include <QStringList>

namespace cardgen {

// What every clip of a card shares: how its essence is recorded.
struct EssenceFormat
{
    FrameRate rate;
    int width = 1920;
    int height = 1080;
    QString videoCodec; // "MPEG2HD35_1920_1080_MP@HL", ...
    QString aspectRatio = QStringLiteral("16:9");
    int audioTracks = 1;
    int audioChannelsPerTrack = 2;
    QString audioCodec = QStringLiteral("LPCM16");
    int audioChannels() const { return audioTracks * audioChannelsPerTrack; }
};

// One clip as the generator lays it out.
struct ClipPlan
{
    QString name;       // "ABC0001"
    QString folderName; // its folder in CLPR: the name, or "." + name when hidden
    QString umid;
    int number = 0; // 1-based recording order on the card; drawn into the pictures
    int frames = 0;
    int takeOffset = 0; // frames of its take before it
    QDateTime created;
    TimeCode start;                        // time code of its first frame
    TimeCode last;                         // time code of its last frame
    QString status = QStringLiteral("OK"); // status of its target material

    QString mp4() const { return name + QStringLiteral(".MP4"); }
    QString xml() const { return name + QStringLiteral("M01.XML"); }
    QString smi() const { return name + QStringLiteral(".SMI"); }
    QString bim() const { return name + QStringLiteral("R01.BIM"); }
    QString ppn() const { return name + QStringLiteral("I01.PPN"); }
};

// A multi-clip take (a TAKR folder), possibly one part of a take spread over
// two cards.
struct TakePlan
{
    QString folder; // "ABC0004U01"
    QString umid;
    int frames = 0;
    QDateTime created;
    TimeCode start;
    TimeCode last;
    // Spanning: the part on the other card that follows or precedes this one.
    QString nextPartUmid;
    int nextPartBegin = 0; // where the next part starts on the take's timeline
    QString otherPartUri;  // "file:///TAKR/..." of the other part
    QString otherPartUmid;
    QString otherMediaId;
    QString otherMediaName;
    bool otherPartFirst = false; // the other part precedes this one

    QString smi() const { return folder + QStringLiteral(".SMI"); }
    QString xml() const { return folder + QStringLiteral("M01.XML"); }
};

} // namespace cardgen
