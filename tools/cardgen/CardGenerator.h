#pragma once

#include "cardgen/CardManifest.h"

#include <QDateTime>
#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

namespace cardgen {

// One defect to build into a single-clip take of the card.
struct Damage
{
    enum class Kind
    {
        Missing,  // some of the clip's files are not written
        Unlisted, // the clip folder is not in MEDIAPRO.XML
        Loose,    // the clip is only its MP4 file, lying directly in CLPR
        NoFtyp,   // the MP4 file starts with a "free" box instead of ftyp
        Co64,     // the MP4 file has 64-bit chunk offsets (co64) instead of stco
        Hidden,   // the clip folder's name starts with "."
        NotOk,    // the clip's metadata gives its material the status "NG"
    };
    Kind kind = Kind::Missing;
    QStringList files; // Missing: any of "MP4", "XML", "SMI", "BIM", "PPN"
    int take = 0;      // 1-based among the single-clip takes; 0 picks one from the last backwards

    // "missing=BIM+PPN", "unlisted", "loose", "noftyp", "co64", "hidden", "notok",
    // each optionally followed by "@N" (the take).
    static std::optional<Damage> parse(const QString& text, QString* error);
    QString name() const;
};

struct Options
{
    QString outputFolder;                       // the work folder that receives the card
    QString layout = QStringLiteral("BPAV");    // or "PRIVATE/ORX/BPAV"
    int clips = 3;                              // single-clip takes
    std::vector<int> multiClipTakes;            // one take of N clips in TAKR per entry
    int spanningClips = 0;                      // a take of N clips spread over this card and the second one
    QString secondCardFolder;                   // work folder of the second card (spanning only)
    int frames = 30;                            // per clip, a multiple of 3
    QString size = QStringLiteral("1920x1080"); // "1440x1080", "1280x720" or "tiny" (320x180)
    QString frameRate = QStringLiteral("59.94i");
    int gop = 0;         // frames per GOP, a multiple of 3 up to 15; 0: 15 at 59.94 Hz / 23.98p, 12 at 50 Hz
    int audioTracks = 1; // 0 to 4
    int audioChannelsPerTrack = 2;          // 1 or 2
    bool embedXml = false;                  // embed each clip's metadata in its MP4 file
    QString prefix = QStringLiteral("ABC"); // clip names are prefix + 4 digits
    std::vector<Damage> damages;
    bool fast = false;                                     // encode one essence and reuse it for every clip
    QDateTime recorded;                                    // when the first clip was recorded (invalid: now)
    QString startTimecode = QStringLiteral("00:00:00:00"); // of the first clip; the others follow on
    bool nonDropFrame = false;                             // non-drop time code at 29.97 and 59.94 Hz
    QString mediaName;
    QString manifestPath; // default: <outputFolder>/cardgen-manifest.json
    int quantizer = 4;    // MPEG-2 quantiser scale (2..31)
};

// Writes a synthetic camera card (and the manifest describing it) into a work
// folder: real MPEG-2 video with a frame counter in every picture, PCM tones,
// and every index and metadata file. On failure nothing of the card is left.
class CardGenerator
{
public:
    static std::optional<Manifest> generate(const Options& options, QString* error);

    static QStringList sizeNames();
    // The video format name the card's metadata gives a frame size.
    static QString videoCodecFor(int width, int height, int mbps);
};

} // namespace cardgen
