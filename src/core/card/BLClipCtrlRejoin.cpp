// Re-joining multi-clip takes in a destination folder: a take recorded over
// two cards, or copied in pieces, becomes one take again once its clips meet.

#include "core/card/BLCardPath.h"
#include "core/card/BLClipCtrl.h"
#include "core/card/BLMediaProCtrl.h"
#include "core/card/BLTakeInfoCtrl.h"
#include "core/card/DOClipCtrl.h"
#include "core/formats/metadata/BLNonMetaAcss.h"
#include "core/services/BLCommon.h"
#include "core/services/BLLogCtrl.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>

namespace {

constexpr int kLogId = 640;

void log(const QString& message)
{
    BLLogCtrl::debug(kLogId, message);
}

bool sameUmid(const QString& umid, const QString& umid2)
{
    return !umid.isEmpty() && BLMediaProCtrl::isSameUmid(umid, umid2);
}

bool isOk(const QString& status)
{
    return status.compare(QLatin1String("OK"), Qt::CaseInsensitive) == 0;
}

// The index of the first take-info entry naming the UMID, or -1.
int indexOfSource(const QList<DOTakeInfo>& entries, const QString& umid)
{
    for (int i = 0; i < entries.size(); ++i)
        if (sameUmid(entries[i].getSrc(), umid))
            return i;
    return -1;
}

bool containsUmid(const QList<DOTakeData>& takes, const QString& umid)
{
    return std::any_of(takes.begin(), takes.end(),
                       [&umid](const DOTakeData& take) { return sameUmid(take.getUmid(), umid); });
}

// A take-info source is not one of the take's clips.
bool missesClip(const DOTakeData& take)
{
    const QList<DOTakeInfo>& entries = take.getTakeInfo();
    return std::any_of(entries.begin(), entries.end(), [&take](const DOTakeInfo& entry) {
        return BLClipCtrl::checkTakeInfo(take, entry.getSrc()) == nullptr;
    });
}

// Every take-info source is one of the take's clips.
bool isComplete(const DOTakeData& take)
{
    return !take.getTakeInfo().isEmpty() && !missesClip(take);
}

// A frame count of the metadata; -1 when it is none.
qint64 frameOf(const DOLtcChange& change)
{
    return BLCommon::toFrameCount(change.getFrameCount());
}

// Removes a take's own folder from a work folder, only when it is a folder of
// the BPAV folder's TAKR folder: a single clip's folder holds its clip, which
// another take may now own.
void removeTakeFolder(const DOTakeData& take, const QString& workFolder, const char* operation)
{
    if (take.getClipData().isEmpty())
        return;
    const QString bpav = QDir::cleanPath(QDir(BLCommon::getPathOfBPAV(workFolder)).absolutePath());
    const QString folder = BLCardPath::resolveRecordFolder(bpav, take.getXMLUri());
    const QFileInfo parent(QFileInfo(folder).path());
    if (folder.isEmpty() || parent.path() != bpav ||
        parent.fileName().compare(QLatin1String("TAKR"), Qt::CaseInsensitive) != 0 ||
        !BLCommon::isFolder(folder))
        return;
    log(QStringLiteral("[BLClipCtrl %1]    del:%2").arg(QLatin1String(operation), folder));
    BLCommon::removeFile(folder);
}

// The takes the operation put into the destination, under their destination
// names when those differ.
QList<DOTakeData> operatedTakes(const DOClipCtrl& clipCtrl)
{
    QList<DOTakeData> takes = clipCtrl.getFromTakes();
    if (clipCtrl.getChangeFlag())
        for (int i = 0; i < takes.size() && i < clipCtrl.getNewTakes().size(); ++i)
            takes[i] = clipCtrl.getNewTakes().at(i);
    return takes;
}

bool rewriteTakeInfo(const DOTakeData& take, const QString& workFolder)
{
    const QString bpav = BLCommon::getPathOfBPAV(workFolder);
    return BLCardPath::isFileOfReference(bpav, take.getSMIUri()) &&
           BLTakeInfoCtrl::restructuringTakeInfo(BLCardPath::resolveReference(bpav, take.getSMIUri()),
                                                 take.getTakeInfo());
}

} // namespace

bool BLClipCtrl::updateTakeInfo(DOClipCtrl& clipCtrl)
{
    const QList<DOTakeData> takes = operatedTakes(clipCtrl);
    for (const DOTakeData& target : takes) {
        clipCtrl.setTargetTake(target);
        if (!clipCtrl.getToTakes().isEmpty()) {
            if (!createTakeData(clipCtrl))
                return false;
            continue;
        }
        DOTakeData take = target;
        take.removeTakeComponent(takes);
        clipCtrl.setToTake(take);
        clipCtrl.setAddTake(take);
    }
    return true;
}

bool BLClipCtrl::createTakeData(DOClipCtrl& clipCtrl)
{
    log(QStringLiteral("[BLClipCtrl createTakeData] Start"));
    const QString destination = clipCtrl.destinationWorkFolder();
    DOTakeData target = clipCtrl.getTargetTake();
    for (int i = 0; i < clipCtrl.getToTakes().size(); ++i) {
        const DOTakeData toTake = clipCtrl.getToTakes().at(i);
        if (sameUmid(toTake.getUmid(), target.getUmid())) {
            clipCtrl.setToTake(target);
            clipCtrl.setAddTake(target);
            log(QStringLiteral("[BLClipCtrl createTakeData] End"));
            return true;
        }
        // Parts of one take: one names the other in its take info. Single
        // clips are never parts; their take info names no other take. The
        // part that names the other is the base; when both do, the earlier
        // one, whose reference to the next part follows its own entries.
        const int toReference = indexOfSource(toTake.getTakeInfo(), target.getUmid());
        const int targetReference = indexOfSource(target.getTakeInfo(), toTake.getUmid());
        if ((toReference < 0 && targetReference < 0) || toTake.getClipData().isEmpty() ||
            target.getClipData().isEmpty())
            continue;
        const bool toIsBase = toReference >= 0 && (targetReference < 0 || toReference > 0);
        const DOTakeData& base = toIsBase ? toTake : target;
        const DOTakeData& added = toIsBase ? target : toTake;
        DOTakeData joined = margeTake(base, added);
        joined.setArrClipData(sortArrayClipData(joined.getClipData()));
        removeTakeFolder(added, destination, "createTakeData");
        clipCtrl.addDelUmid(toTake.getUmid());
        for (int k = int(clipCtrl.getAddTakes().size()) - 1; k >= 0; --k)
            if (sameUmid(clipCtrl.getAddTakes().at(k).getUmid(), toTake.getUmid()))
                clipCtrl.delAddTake(k);
        if (!createNewTakeData(clipCtrl, joined, i)) {
            log(QStringLiteral("[BLClipCtrl createTakeData] End"));
            return false;
        }
        target = joined;
    }
    sortDOClipData(target, destination);
    clipCtrl.setTargetTake(target);
    clipCtrl.setToTake(target);
    clipCtrl.setAddTake(target);
    log(QStringLiteral("[BLClipCtrl createTakeData] End"));
    return true;
}

DOTakeData BLClipCtrl::margeTake(const DOTakeData& base, const DOTakeData& added)
{
    DOTakeData joined = base;
    QList<DOTakeInfo> entries = base.getTakeInfo();
    // The added take's entries go where the base refers to the added take;
    // when instead the added take refers to the base, those before that
    // reference go ahead of the base's entries.
    int at = indexOfSource(entries, added.getUmid());
    bool replaceReference = at >= 0;
    const QList<DOTakeInfo>& addedEntries = added.getTakeInfo();
    const int referenceToBase = indexOfSource(addedEntries, base.getUmid());
    QList<DOTakeInfo> ahead;
    for (int k = 0; k < addedEntries.size(); ++k) {
        const DOTakeInfo& entry = addedEntries[k];
        const QString& src = entry.getSrc();
        if (sameUmid(src, base.getUmid()) || sameUmid(src, added.getUmid()))
            continue;
        const DOClipData* clip = checkTakeInfo(added, src);
        const int baseEntry = indexOfSource(entries, src);
        if (baseEntry >= 0) {
            // Named by the base too: its clip goes among the base's clips as
            // the entry stands among the base's entries.
            if (clip && !checkTakeInfo(joined, src)) {
                int position = 0;
                for (int e = 0; e < baseEntry; ++e)
                    if (checkTakeInfo(joined, entries[e].getSrc()))
                        ++position;
                joined.setClipData(*clip, position);
                joined.setClipUmid(src, position);
            }
            continue;
        }
        if (clip) {
            joined.setClipData(*clip);
            joined.setClipUmid(src);
        }
        // An entry without its clip here names a further part: kept, so the
        // joined take stays spanning until that part arrives too.
        if (replaceReference) {
            entries[at++] = entry;
            replaceReference = false;
        } else if (at >= 0) {
            entries.insert(at++, entry);
        } else if (k < referenceToBase) {
            ahead.append(entry);
        } else {
            entries.append(entry);
        }
    }
    joined.setArrTakeInfo(ahead + entries);
    joined.rebuildTakeComponent(added.getUmid(), added.getTakeComponents());
    return joined;
}

bool BLClipCtrl::createNewTakeData(DOClipCtrl& clipCtrl, DOTakeData& take, int index)
{
    if (!rewriteTakeInfo(take, clipCtrl.destinationWorkFolder())) {
        log(QStringLiteral("[BLClipCtrl createNewTakeData]    restructuringTakeInfo fail : ") +
            take.getSMIUri());
        return false;
    }
    if (missesClip(take) && take.getTakeStatus() < 3) {
        take.setMediaSpanning(true);
        take.setTakeStatus(2);
    }
    clipCtrl.delToTake(index);
    clipCtrl.setToTake(take, index);
    return true;
}

void BLClipCtrl::rebuildTakeData(DOClipCtrl& clipCtrl)
{
    const QString destination = clipCtrl.destinationWorkFolder();
    const QList<DOTakeData> toTakes = clipCtrl.getToTakes();

    // The entries no larger one supersedes; of two alike (a joined take is
    // listed where its part stood and again at the end) the later, which is
    // the more finished.
    QList<DOTakeData> gathered;
    for (const DOTakeData& take : toTakes) {
        if (checkClipData(take, toTakes) != 0)
            continue;
        const auto alike = std::find_if(gathered.begin(), gathered.end(), [&take](const DOTakeData& other) {
            return sameUmid(other.getUmid(), take.getUmid()) &&
                   other.getClipData().size() == take.getClipData().size();
        });
        if (alike != gathered.end())
            *alike = take;
        else
            gathered.append(take);
    }

    // Parts whose components show that one follows the other.
    QList<bool> valid(gathered.size(), true);
    QList<DOTakeData> result;
    for (int i = 0; i < gathered.size(); ++i) {
        if (!valid[i])
            continue;
        // The other part comes first: as the base it gives the whole take its
        // UMID, folder and metadata, whose time code starts with the take.
        const int other = checkComponent(gathered[i], gathered);
        if (other < 0 || other == i || !valid[other])
            continue;
        DOTakeData joined = margeTake(gathered[other], gathered[i]);
        joined.setArrClipData(sortArrayClipData(joined.getClipData()));
        if (!rewriteTakeInfo(joined, destination))
            log(QStringLiteral("[BLClipCtrl rebuildTakeData]    restructuringTakeInfo fail : ") +
                joined.getSMIUri());
        valid[i] = false;
        valid[other] = false;
        result.append(joined);
    }
    for (int i = 0; i < gathered.size(); ++i) {
        if (valid[i])
            result.append(gathered[i]);
        else if (!containsUmid(result, gathered[i].getUmid()))
            removeTakeFolder(gathered[i], destination, "rebuildTakeData");
    }
    clipCtrl.setToTakes(result);
    rebuildTakeData(clipCtrl, result, destination);

    // Clip order, status and metadata of every multi-clip take; an unusable
    // one is left as it is.
    const QList<DOTakeData> operated = operatedTakes(clipCtrl);
    QList<DOTakeData> takes = clipCtrl.getToTakes();
    for (DOTakeData& take : takes) {
        if (take.getClipData().isEmpty() || take.getTakeStatus() >= 3)
            continue;
        sortDOClipData(take, destination);
        const QList<DOLtcChange> changes = rebuildLtdChange(operated, take, destination);
        if (!reMakeNonMeta(take, destination, changes))
            log(QStringLiteral("[BLClipCtrl rebuildTakeData]    reMakeNonMeta fail : ") + take.getXMLUri());
        QStringList umids;
        for (const DOClipData& clip : take.getClipData())
            umids << clip.getUmid();
        take.setArrClipUmid(umids);
        // Reading the metadata clears the spanning flag, which the take info
        // decides.
        const bool spanning = take.getMediaSpanning();
        getNonRealData(take, destination);
        take.setMediaSpanning(spanning);
    }
    const QList<DOTakeData> known = operated + takes;
    for (DOTakeData& take : takes) {
        if (take.getClipData().isEmpty())
            continue;
        if (!take.getMateUpFlg())
            clipCtrl.addDelUmid(take.getUmid());
        take.removeTakeComponent(known);
    }
    clipCtrl.setToTakes(takes);
    // The takes to add are the same takes as the destination's.
    QList<DOTakeData> addTakes = clipCtrl.getAddTakes();
    for (DOTakeData& add : addTakes)
        for (const DOTakeData& take : std::as_const(takes))
            if (sameUmid(take.getUmid(), add.getUmid()))
                add = take;
    clipCtrl.setAddTakes(addTakes);
}

int BLClipCtrl::checkClipData(const DOTakeData& take, const QList<DOTakeData>& takes)
{
    const qsizetype clips = take.getClipData().size();
    for (const DOTakeData& other : takes) {
        const qsizetype otherClips = other.getClipData().size();
        if (otherClips <= clips)
            continue;
        if (sameUmid(other.getUmid(), take.getUmid()))
            return 1;
        for (const DOClipData& clip : take.getClipData())
            if (checkTakeInfo(other, clip.getUmid()))
                return 1;
    }
    return 0;
}

int BLClipCtrl::checkComponent(const DOTakeData& take, const QList<DOTakeData>& takes)
{
    const QList<DOComponent>& components = take.getTakeComponents();
    for (int k = 1; k < components.size(); ++k) {
        if (!BLCommon::isClipReference(components[k].getUri()))
            continue;
        const QString& umid = components[k - 1].getUmid();
        for (int t = 0; t < takes.size(); ++t)
            if (!takes[t].getClipData().isEmpty() && sameUmid(takes[t].getUmid(), umid) &&
                !sameUmid(umid, take.getUmid()))
                return t;
        return -1;
    }
    return -1;
}

void BLClipCtrl::rebuildTakeData(DOClipCtrl& clipCtrl, QList<DOTakeData>& newTakes, const QString& path)
{
    // Each round takes at least one fragment out of the list, so it ends.
    bool found = false;
    for (;;) {
        const auto completable = std::find_if(newTakes.begin(), newTakes.end(), [&](const DOTakeData& take) {
            return checkTakeInfo(take, newTakes);
        });
        if (completable == newTakes.end())
            break;
        found = true;
        DOTakeData take = *completable;
        newTakes.erase(completable);
        removeTakeData(take, newTakes, path);
        take.setTakeStatus(isOk(take.getStatus()) ? 0 : 1);
        take.cleanTakeComponent();
        newTakes.append(take);
    }
    if (!found)
        return;
    for (const DOTakeData& take : clipCtrl.getToTakes())
        clipCtrl.addDelUmid(take.getUmid());
    clipCtrl.setToTakes({});
    clipCtrl.setAddTakes({});
    for (const DOTakeData& take : std::as_const(newTakes)) {
        clipCtrl.addDelUmid(take.getUmid());
        clipCtrl.setAddTake(take);
        clipCtrl.setToTake(take);
    }
}

void BLClipCtrl::removeTakeData(DOTakeData& take, QList<DOTakeData>& takeDatas, const QString& path)
{
    for (int k = int(takeDatas.size()) - 1; k >= 0; --k) {
        const DOTakeData other = takeDatas.at(k);
        if (sameUmid(other.getUmid(), take.getUmid()))
            continue;
        bool gave = false;
        for (const DOTakeInfo& entry : take.getTakeInfo()) {
            const DOClipData* clip = checkTakeInfo(other, entry.getSrc());
            if (!clip || checkTakeInfo(take, entry.getSrc()))
                continue;
            take.setClipData(*clip);
            if (!take.getClipUmid().contains(entry.getSrc(), Qt::CaseInsensitive))
                take.setClipUmid(entry.getSrc());
            gave = true;
        }
        if (gave) {
            removeTakeFolder(other, path, "rebuildTakeData");
            takeDatas.removeAt(k);
        }
    }
}

bool BLClipCtrl::checkTakeInfo(const DOTakeData& take, const QList<DOTakeData>& takeDatas)
{
    if (take.getTakeInfo().isEmpty() || take.getClipData().isEmpty() || take.getTakeStatus() >= 3)
        return false;
    const auto isFragment = [](const DOTakeData& other) {
        return other.getClipData().size() != other.getTakeInfo().size();
    };
    bool gains = false;
    for (const DOTakeInfo& entry : take.getTakeInfo()) {
        const bool own = checkTakeInfo(take, entry.getSrc()) != nullptr;
        bool found = false;
        for (const DOTakeData& other : takeDatas) {
            if (!isFragment(other) || !checkTakeInfo(other, entry.getSrc()))
                continue;
            found = true;
            if (!own && !sameUmid(other.getUmid(), take.getUmid()))
                gains = true;
        }
        if (!found)
            return false;
    }
    return gains;
}

const DOClipData* BLClipCtrl::checkTakeInfo(const DOTakeData& take, const QString& takeInfoUmid)
{
    for (const DOClipData& clip : take.getClipData())
        if (sameUmid(clip.getUmid(), takeInfoUmid))
            return &clip;
    return nullptr;
}

void BLClipCtrl::sortDOClipData(DOTakeData& take, const QString& path)
{
    if (take.getClipData().isEmpty())
        return;
    // Clips the take info does not name keep their order after the others.
    QList<DOClipData> rest = take.getClipData();
    QList<DOClipData> ordered;
    for (const DOTakeInfo& entry : take.getTakeInfo()) {
        const auto clip = std::find_if(rest.begin(), rest.end(), [&entry](const DOClipData& c) {
            return sameUmid(c.getUmid(), entry.getSrc());
        });
        if (clip != rest.end()) {
            ordered.append(*clip);
            rest.erase(clip);
        }
    }
    take.setArrClipData(ordered + rest);
    if (!isComplete(take) || take.getTakeStatus() >= 3)
        return;
    getNonRealData(take, path);
    take.setTakeStatus(isOk(take.getStatus()) ? 0 : 1);
    take.setMediaSpanning(false);
    take.cleanTakeComponent();
}

QList<DOClipData> BLClipCtrl::sortArrayClipData(const QList<DOClipData>& clips)
{
    QList<DOClipData> sorted = clips;
    std::stable_sort(sorted.begin(), sorted.end(), [](const DOClipData& a, const DOClipData& b) {
        return a.compareByClipCreationDate(b) < 0;
    });
    return sorted;
}

QList<DOLtcChange> BLClipCtrl::rebuildLtdChange(const QList<DOTakeData>& takes, DOTakeData& target,
                                                const QString& workFolder)
{
    if (target.getClipData().isEmpty())
        return {};
    const QString path =
        BLCardPath::resolveReference(BLCommon::getPathOfBPAV(workFolder), target.getXMLUri());
    BLNonMetaAcss acss;
    DONonRealTimeMeta meta;
    if (path.isEmpty() || !acss.loadForFilePath(path) ||
        !acss.getNonMetaData(meta, BLCommon::getSystemLanguage()))
        return {};
    const DOLtcChangeTable& table = meta.getLtcChangeTable();
    const QList<DOLtcChange>& points = table.getLtcChangeArray();
    target.setTcFps(table.getTcFps());
    target.setHalfStep(table.getHalfStep());

    // The "end" point stands at the take's last frame, as the camera and the
    // import write it.
    const qint64 duration = target.getTakeDuration();
    const qint64 lastFrame = duration - 1;
    const DOClipData lastClip = target.getClipData().last();
    const bool endsOperatedTake =
        std::any_of(takes.begin(), takes.end(), [&lastClip](const DOTakeData& take) {
            return !take.getClipData().isEmpty() &&
                   sameUmid(take.getClipData().last().getUmid(), lastClip.getUmid());
        });
    if (endsOperatedTake && !points.isEmpty() && frameOf(points.last()) == lastFrame)
        return points;
    if (duration == BLCommon::toFrameCount(meta.getDuration()))
        return {};
    target.setCurrentDuration(duration);
    if (points.isEmpty() || duration <= 0)
        return {};

    // The time code ends where the last clip's ends.
    DOClipData clip = lastClip;
    getClipNonRealMeta(clip, workFolder);
    DOLtcChange end;
    end.setFrameCount(QString::number(lastFrame));
    end.setValue(clip.getLtcChanges().isEmpty() ? points.last().getValue()
                                                : clip.getLtcChanges().last().getValue());
    end.setStatus(QStringLiteral("end"));
    QList<DOLtcChange> rebuilt;
    for (const DOLtcChange& point : points) {
        const qint64 frame = frameOf(point);
        if (frame >= 0 && frame < lastFrame && point.getStatus() != QLatin1String("end"))
            rebuilt.append(point);
    }
    rebuilt.append(end);
    return rebuilt;
}

bool BLClipCtrl::reMakeNonMeta(const DOTakeData& take, const QString& workFolder,
                               const QList<DOLtcChange>& ltcChanges)
{
    const QString bpav = BLCommon::getPathOfBPAV(workFolder);
    if (!BLCardPath::isFileOfReference(bpav, take.getXMLUri()))
        return false;
    BLNonMetaAcss acss;
    if (!acss.loadForFilePath(BLCardPath::resolveReference(bpav, take.getXMLUri())))
        return false;
    // A file that already says all this stays as it is, byte for byte (a take
    // copied whole keeps the file it had).
    DONonRealTimeMeta meta;
    if (acss.getNonMetaData(meta, BLCommon::getSystemLanguage())) {
        const auto sameChanges = [](const QList<DOLtcChange>& a, const QList<DOLtcChange>& b) {
            return std::equal(
                a.begin(), a.end(), b.begin(), b.end(), [](const DOLtcChange& x, const DOLtcChange& y) {
                    return x.getValue() == y.getValue() && x.getFrameCount() == y.getFrameCount() &&
                           x.getStatus() == y.getStatus();
                });
        };
        const QList<DOBodyUmidBasicChange>& basic = meta.getBasicChangeArray();
        if (meta.getTargetMaterial().getUmidRef() == take.getUmid() &&
            (basic.isEmpty() || basic.first().getValue() == take.getUmid()) &&
            meta.getDuration() == QString::number(take.getCurrentDuration()) &&
            (ltcChanges.isEmpty() || sameChanges(meta.getLtcChangeTable().getLtcChangeArray(), ltcChanges)))
            return true;
    }
    DOTargetMaterial target;
    bool written = acss.getTargetMaterial(target);
    target.setUmidRef(take.getUmid());
    written = written && acss.setTargetMaterial(target);
    QList<DOBodyUmidBasicChange> basic = acss.getBasicChangeTable();
    if (!basic.isEmpty()) {
        basic.first().setValue(take.getUmid());
        written = written && acss.updateBasicChangeTable(basic);
    }
    written = written && acss.setDuration(QString::number(take.getCurrentDuration()));
    if (!ltcChanges.isEmpty()) {
        DOLtcChangeTable table;
        table.setTcFps(take.getTcFps());
        table.setHalfStep(take.getHalfStep());
        table.setLtcChangeArray(ltcChanges);
        written = written && acss.updateLtcChangeTable(table);
    }
    return written && acss.save();
}
