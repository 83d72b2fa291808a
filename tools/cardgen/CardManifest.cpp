#include "cardgen/CardManifest.h"

#include <QJsonArray>

namespace cardgen {

namespace {

QJsonArray filesJson(const std::vector<ManifestFile>& files)
{
    QJsonArray array;
    for (const ManifestFile& f : files)
        array.append(QJsonObject{{"kind", f.kind}, {"path", f.path}, {"size", f.size}});
    return array;
}

} // namespace

std::vector<ManifestFile> Manifest::filesOf(int card) const
{
    std::vector<ManifestFile> all = cards[size_t(card)].files;
    for (const ManifestTake& take : takes) {
        if (take.card != card)
            continue;
        all.insert(all.end(), take.files.begin(), take.files.end());
        for (const ManifestClip& clip : take.clips)
            all.insert(all.end(), clip.files.begin(), clip.files.end());
    }
    return all;
}

QJsonObject Manifest::toJson() const
{
    QJsonArray cardArray;
    for (const ManifestCard& c : cards) {
        cardArray.append(QJsonObject{{"folder", c.folder},
                                     {"bpav", c.bpav},
                                     {"mediaId", c.mediaId},
                                     {"mediaName", c.mediaName},
                                     {"files", filesJson(c.files)}});
    }
    QJsonArray takeArray;
    for (const ManifestTake& t : takes) {
        QJsonArray clipArray;
        QJsonArray clipNames;
        for (const ManifestClip& c : t.clips) {
            clipNames.append(c.name);
            clipArray.append(QJsonObject{{"name", c.name},
                                         {"folder", c.folder},
                                         {"umid", c.umid},
                                         {"frames", c.frames},
                                         {"counterClip", c.counterClip},
                                         {"startTimecode", c.startTimecode},
                                         {"lastTimecode", c.lastTimecode},
                                         {"expectedStatus", c.expectedStatus},
                                         {"files", filesJson(c.files)}});
        }
        QJsonObject take{{"takeId", t.takeId},
                         {"umid", t.umid},
                         {"kind", t.kind},
                         {"card", t.card},
                         {"clipNames", clipNames},
                         {"clips", clipArray},
                         {"files", filesJson(t.files)},
                         {"frames", t.frames},
                         {"frameRate", t.frameRate},
                         {"frameRateNum", t.frameRateNum},
                         {"frameRateDen", t.frameRateDen},
                         {"width", t.width},
                         {"height", t.height},
                         {"videoFormat", t.videoFormat},
                         {"audioTracks", t.audioTracks},
                         {"audioChannels", t.audioChannels},
                         {"size", t.size},
                         {"damage", t.damage},
                         {"missingFiles", QJsonArray::fromStringList(t.missingFiles)},
                         {"listed", t.listed},
                         {"expectedStatus", t.expectedStatus}};
        if (t.spanPart > 0) {
            take.insert("spanPart", t.spanPart);
            take.insert("spanOtherUmid", t.spanOtherUmid);
        }
        takeArray.append(take);
    }
    return QJsonObject{
        {"generator", "cardgen"}, {"seconds", seconds}, {"cards", cardArray}, {"takes", takeArray}};
}

} // namespace cardgen
