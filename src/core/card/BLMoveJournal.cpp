#include "core/card/BLMoveJournal.h"

#include "core/card/BLCardPath.h"
#include "core/card/BLMediaProCtrl.h"
#include "core/card/DOClipCtrl.h"
#include "core/formats/metadata/BLCueupInfoAcss.h"
#include "core/formats/metadata/BLMediaProfileAcss.h"
#include "core/services/BLAtomicFile.h"
#include "core/services/BLCommon.h"
#include "core/services/BLLogCtrl.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

const QString BLMoveJournal::kFileName = QStringLiteral(".clipwright-move.json");
const QString BLMoveJournal::kMarkerName = QStringLiteral(".clipwright-move-source");

namespace {

constexpr int kProcessId = 644;
const QString kMoving = QStringLiteral("moving");
const QString kMoved = QStringLiteral("moved");

void log(const QString& message)
{
    BLLogCtrl::debug(kProcessId, message);
}

bool exists(const QString& path)
{
    return QFileInfo(path).exists() || QFileInfo(path).isSymLink();
}

// The lock of moves from a BPAV folder: a descriptor of the folder holding an
// exclusive lock, or -1 (errno says why; EWOULDBLOCK when a move holds it).
int lockFolder(const QString& bpav)
{
    const int fd = ::open(QFile::encodeName(bpav).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0)
        return -1;
    if (::flock(fd, LOCK_EX | LOCK_NB) == 0)
        return fd;
    const int error = errno;
    ::close(fd);
    errno = error;
    return -1;
}

class FolderLock
{
public:
    explicit FolderLock(const QString& bpav) : m_fd(lockFolder(bpav)) {}
    ~FolderLock()
    {
        if (m_fd >= 0)
            ::close(m_fd);
    }
    bool held() const { return m_fd >= 0; }

private:
    int m_fd;
};

QJsonObject toJson(const QString& source, const QString& destination, const QString& phase,
                   const QList<BLTakeMover::Take>& takes)
{
    QJsonArray takeArray;
    for (const BLTakeMover::Take& take : takes) {
        QJsonArray items;
        for (const BLTakeMover::Item& item : take.items)
            items.append(QJsonObject{{"from", item.from}, {"to", item.to}, {"copy", item.copy}});
        takeArray.append(QJsonObject{{"umid", take.umid},
                                     {"clipUmids", QJsonArray::fromStringList(take.clipUmids)},
                                     {"items", items}});
    }
    return {{"source", source}, {"destination", destination}, {"phase", phase}, {"takes", takeArray}};
}

// A path of an item as the journal may name it: a clip or take folder, or a
// file in one, strictly below CLPR or TAKR; anything else makes the journal
// unusable, so a damaged one never leads outside the two BPAV folders.
bool isItemPath(const QString& bpav, const QString& path)
{
    const QStringList parts = path.split(QLatin1Char('/'));
    if (parts.size() < 2 || parts.size() > 3 ||
        (parts.front() != QLatin1String("CLPR") && parts.front() != QLatin1String("TAKR")))
        return false;
    for (const QString& part : parts)
        if (part.isEmpty() || part == QLatin1String(".") || part == QLatin1String(".."))
            return false;
    return !BLCardPath::resolveReference(bpav, QStringLiteral("./") + path).isEmpty();
}

bool readJournal(const QString& path, QJsonObject* journal, QList<BLTakeMover::Take>* takes)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    *journal = QJsonDocument::fromJson(file.readAll()).object();
    const QString sourceBpav = BLCommon::getPathOfBPAV((*journal)["source"].toString());
    const QString destinationBpav = BLCommon::getPathOfBPAV((*journal)["destination"].toString());
    const QString phase = (*journal)["phase"].toString();
    if ((phase != kMoving && phase != kMoved) || (*journal)["destination"].toString().isEmpty() ||
        QFileInfo(sourceBpav + QLatin1Char('/') + BLMoveJournal::kFileName).absoluteFilePath() !=
            QFileInfo(path).absoluteFilePath())
        return false;
    for (const QJsonValue& takeValue : (*journal)["takes"].toArray()) {
        BLTakeMover::Take take;
        take.umid = takeValue["umid"].toString();
        for (const QJsonValue& umid : takeValue["clipUmids"].toArray())
            take.clipUmids << umid.toString();
        for (const QJsonValue& itemValue : takeValue["items"].toArray()) {
            BLTakeMover::Item item;
            item.from = itemValue["from"].toString();
            item.to = itemValue["to"].toString();
            item.copy = itemValue["copy"].toBool();
            if (!isItemPath(sourceBpav, item.from) || !isItemPath(destinationBpav, item.to))
                return false;
            take.items.append(item);
        }
        takes->append(take);
    }
    return true;
}

// The source's index files let go of the takes that stay at the destination,
// which a scan of the source would otherwise show as damaged clips.
bool forgetTakes(const QString& source, const QList<BLTakeMover::Take>& takes)
{
    QStringList paths;
    DOClipCtrl record;
    record.setSourceWorkFolder(source);
    for (const BLTakeMover::Take& take : takes) {
        for (const BLTakeMover::Item& item : take.items)
            if (!item.copy)
                paths << item.from;
        record.addDelUmid(take.umid);
        for (const QString& umid : take.clipUmids)
            record.addDelUmid(umid);
    }
    BLMediaProCtrl mediaProCtrl;
    if (!mediaProCtrl.deleteMaterialsIn(source, paths))
        return false;
    mediaProCtrl.updateCueUpByClipDelete(record);
    return true;
}

QString readMarker(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()).trimmed() : QString();
}

} // namespace

BLMoveJournal::~BLMoveJournal()
{
    if (m_lock >= 0)
        ::close(m_lock);
}

bool BLMoveJournal::begin(const QString& sourceWork, const QString& destinationWork,
                          const QList<BLTakeMover::Take>& takes)
{
    const QString sourceBpav = BLCommon::getPathOfBPAV(sourceWork);
    const QString destinationBpav = BLCommon::getPathOfBPAV(destinationWork);
    m_journalPath = sourceBpav + QLatin1Char('/') + kFileName;
    m_markerPath = destinationBpav + QLatin1Char('/') + kMarkerName;
    m_lock = lockFolder(sourceBpav);
    if (m_lock < 0) {
        m_failure = errno == EWOULDBLOCK ? QStringLiteral("another move from this folder is running")
                                         : QString::fromLocal8Bit(std::strerror(errno));
        return false;
    }
    // An earlier move that could not be ended yet keeps its journal: it is
    // needed to end that move.
    if (exists(m_journalPath) || exists(m_markerPath)) {
        m_failure = QStringLiteral("an earlier interrupted move is not ended yet");
        return false;
    }
    const QByteArray journal =
        QJsonDocument(toJson(sourceWork, destinationWork, kMoving, takes)).toJson(QJsonDocument::Compact);
    if (!BLAtomicFile::writeFile(m_journalPath, journal)) {
        m_failure = QStringLiteral("the journal of the move cannot be written");
        return false;
    }
    if (!BLAtomicFile::writeFile(m_markerPath, sourceWork.toUtf8())) {
        QFile::remove(m_journalPath);
        m_failure = QStringLiteral("the destination cannot be written");
        return false;
    }
    m_begun = true;
    return true;
}

bool BLMoveJournal::setMoved()
{
    if (!m_begun)
        return false;
    QFile file(m_journalPath);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    QJsonObject journal = QJsonDocument::fromJson(file.readAll()).object();
    journal["phase"] = kMoved;
    return BLAtomicFile::writeFile(m_journalPath, QJsonDocument(journal).toJson(QJsonDocument::Compact));
}

void BLMoveJournal::finish()
{
    if (m_begun) {
        QFile::remove(m_markerPath);
        QFile::remove(m_journalPath);
        m_begun = false;
    }
    if (m_lock >= 0)
        ::close(m_lock);
    m_lock = -1;
}

BLMoveJournal::Recovery BLMoveJournal::recover(const QString& workFolder)
{
    Recovery recovery;
    const QString bpav = BLCommon::getPathOfBPAV(workFolder);
    QString journalPath = bpav + QLatin1Char('/') + kFileName;
    const QString markerPath = bpav + QLatin1Char('/') + kMarkerName;
    if (!exists(journalPath)) {
        if (!exists(markerPath)) {
            // What a move stopped before its journal was written left behind:
            // its staging folder and the journal's temporary file. One listing
            // finds them; the lock is taken only when there is something to clear.
            const QStringList leftovers =
                QDir(bpav).entryList({BLTakeMover::kStagingName, BLAtomicFile::leftoverPattern(journalPath)},
                                     QDir::AllEntries | QDir::Hidden | QDir::System);
            if (!leftovers.isEmpty() && FolderLock(bpav).held()) {
                if (leftovers.contains(BLTakeMover::kStagingName))
                    BLTakeMover(bpav, bpav).clearStaging();
                BLAtomicFile::removeLeftovers(journalPath);
            }
            return recovery;
        }
        const QString source = readMarker(markerPath);
        journalPath = BLCommon::getPathOfBPAV(source) + QLatin1Char('/') + kFileName;
        if (!exists(journalPath)) {
            if (!source.isEmpty() && !BLCommon::isFolder(BLCommon::getPathOfBPAV(source))) {
                recovery = {Recovery::NotEnded,
                            source,
                            workFolder,
                            0,
                            0,
                            QStringLiteral("the source folder is not available")};
                return recovery;
            }
            QFile::remove(markerPath); // that move was ended from its source
            return recovery;
        }
    }

    QJsonObject journal;
    QList<BLTakeMover::Take> takes;
    const bool readable = readJournal(journalPath, &journal, &takes);
    recovery.source = journal["source"].toString();
    recovery.destination = journal["destination"].toString();
    if (!readable) {
        recovery.state = Recovery::NotEnded;
        recovery.detail = journalPath + QStringLiteral(": the journal of the move cannot be read");
        return recovery;
    }
    const QString sourceBpav = BLCommon::getPathOfBPAV(recovery.source);
    const QString destinationBpav = BLCommon::getPathOfBPAV(recovery.destination);
    const FolderLock lock(sourceBpav);
    if (!lock.held()) {
        recovery.state = errno == EWOULDBLOCK ? Recovery::Busy : Recovery::NotEnded;
        recovery.detail = QString::fromLocal8Bit(std::strerror(errno));
        return recovery;
    }
    const bool destinationThere = BLCommon::isFolder(destinationBpav);
    if (!destinationThere && !BLCommon::isFolder(QFileInfo(recovery.destination).path())) {
        recovery.state = Recovery::NotEnded;
        recovery.detail = QStringLiteral("the destination folder is not available");
        return recovery;
    }

    log(QStringLiteral("[BLMoveJournal recover] %1 -> %2 (%3)")
            .arg(recovery.source, recovery.destination, journal["phase"].toString()));
    BLTakeMover mover(sourceBpav, destinationBpav);
    QList<BLTakeMover::Take> kept;
    // Without a BPAV folder at the destination nothing reached it.
    if (journal["phase"].toString() == kMoved) {
        kept = takes;
    } else if (destinationThere) {
        for (const BLTakeMover::Take& take : takes) {
            bool done = true;
            switch (mover.placeOf(take)) {
            case BLTakeMover::Place::Destination:
                done = mover.completeTake(take);
                if (done)
                    kept.append(take);
                break;
            case BLTakeMover::Place::Split:
                done = mover.bringBack(take);
                recovery.broughtBack += done;
                break;
            case BLTakeMover::Place::Source:
                break;
            }
            if (!done) {
                recovery.state = Recovery::NotEnded;
                recovery.detail = mover.failedPath() + QStringLiteral(": ") + mover.failureReason();
                return recovery;
            }
        }
    }
    mover.clearStaging();
    if (!kept.isEmpty() && !forgetTakes(recovery.source, kept)) {
        recovery.state = Recovery::NotEnded;
        recovery.detail = QStringLiteral("the source's index files cannot be written");
        return recovery;
    }
    recovery.kept = int(kept.size());
    QFile::remove(destinationBpav + QLatin1Char('/') + kMarkerName);
    QFile::remove(journalPath);
    // Index files the move was writing when it stopped leave their temporary files.
    for (const QString& folder : {sourceBpav, destinationBpav})
        for (const QString& name :
             {BLMediaProfileAcss::kFileName, BLCueupInfoAcss::kFileName, kFileName, kMarkerName})
            BLAtomicFile::removeLeftovers(folder + QLatin1Char('/') + name);
    recovery.state = Recovery::Ended;
    log(QStringLiteral("[BLMoveJournal recover] ended: %1 kept, %2 brought back")
            .arg(recovery.kept)
            .arg(recovery.broughtBack));
    return recovery;
}
