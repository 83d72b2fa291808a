#pragma once

#include <QJsonObject>
#include <QString>
#include <QStringList>

#include <vector>

namespace cardgen {

// What the generator made, for the tests that read the card back.
struct ManifestFile
{
    QString kind; // "MP4", "XML", "SMI", "BIM", "PPN", "MEDIAPRO", "CUEUP"
    QString path; // relative to the card's work folder
    qint64 size = 0;
};

struct ManifestClip
{
    QString name;
    QString folder; // relative to the work folder ("BPAV/CLPR/ABC0001"); the file itself for a loose MP4
    QString umid;
    int frames = 0;
    int counterClip = 0; // the clip number drawn into its pictures
    QString startTimecode;
    QString lastTimecode;
    int expectedStatus = 0; // clip status the folder scan should give; -1 when it should not see the clip
    std::vector<ManifestFile> files;
};

struct ManifestTake
{
    QString takeId; // the folder that holds its metadata (clip or TAKR folder), or the loose file's name
    QString umid;
    QString kind; // "single", "multi", "loose"
    int card = 0;
    std::vector<ManifestClip> clips;
    std::vector<ManifestFile> files; // a multi-clip take's own SMI and XML
    int frames = 0;
    QString frameRate;
    int frameRateNum = 0;
    int frameRateDen = 1;
    int width = 0;
    int height = 0;
    QString videoFormat;
    int audioTracks = 0;
    int audioChannels = 0;
    qint64 size = 0;                          // bytes of all its files
    QString damage = QStringLiteral("clean"); // or the damage kind
    QStringList missingFiles;
    bool listed = true;     // listed in the media profile
    int expectedStatus = 0; // take status; -1 when the folder scan should not see the take
    int spanPart = 0;       // 1 or 2 for the parts of a take spread over two cards
    QString spanOtherUmid;
};

struct ManifestCard
{
    QString folder; // absolute path of the work folder
    QString bpav;   // "BPAV" or "PRIVATE/ORX/BPAV"
    QString mediaId;
    QString mediaName;
    std::vector<ManifestFile> files; // MEDIAPRO.XML and CUEUP.XML
};

struct Manifest
{
    std::vector<ManifestCard> cards;
    std::vector<ManifestTake> takes;
    double seconds = 0; // time the generation took

    // Every file of one card (index files, then the takes' files).
    std::vector<ManifestFile> filesOf(int card) const;
    QJsonObject toJson() const;
};

} // namespace cardgen
