#pragma once

#include "core/card/DOClipData.h"
#include "core/card/DOTakeData.h"

#include <QList>
#include <QString>
#include <QStringList>

class DOClipCtrl;
class IOperationPane;

// The service behind every operation on takes: the checks an operation runs
// before it starts, the files of a clip or take, the deletion of a take and
// the roll-back of a cancelled operation, and the reading of clip and take
// folders into records. Keeps no state between calls; create one where
// needed. Every file reference is resolved inside the BPAV folder of the work
// folder concerned (BLCardPath), so nothing outside it is ever touched.
//
// A check answers true (or 0 where it answers a code) when the request may go
// on; a refusal has already been shown to the user and logged.
class BLClipCtrl
{
public:
    // Operation types of the checks.
    static constexpr int kTypeCopy = 0;
    static constexpr int kTypeMove = 1;
    static constexpr int kTypeCombine = 3;
    static constexpr int kTypeDelete = 4;
    // checkCopyToFolderName: 2 copy, 3 move; answers below.
    static constexpr int kNameTypeCopy = 2;
    static constexpr int kNameTypeMove = 3;
    static constexpr int kNameReady = 0;
    static constexpr int kNameNotCreated = 1;
    static constexpr int kNameRefusedClose = 2;
    static constexpr int kNameRefusedKeepOpen = 3;

    // A file larger than this is not copied or moved onto a FAT32 volume.
    static constexpr qint64 kFat32Limit = 4405067775;

    // ---- checks before an operation ----
    // The destination folder name the user typed: refuses "BPAV" and what
    // the folder-name rules refuse, tests the disk space, and makes the folder
    // under the destination parent when it does not exist yet (then the
    // record's new-folder flag is set).
    int checkCopyToFolderName(const QString& name, DOClipCtrl& clipCtrl, int type);
    // The destination work folder: named, usable drive, readable and
    // writable, and not the source folder.
    bool checkCopyPath(const DOClipCtrl& clipCtrl, int type);
    // The source work folder may be changed (move, combine, delete).
    bool checkWritableMoveOrigin(const DOClipCtrl& clipCtrl, int type);
    // Every chosen take (made the target in turn) may be deleted.
    bool checkDeletePath(DOClipCtrl& clipCtrl);
    // The target take's folder, and each clip folder of a multi-clip take.
    bool isDeletable(const DOClipCtrl& clipCtrl);
    // The destination stays within 600 clip folders and 600 take folders.
    bool checkFolderLimit(const DOClipCtrl& clipCtrl);
    // No chosen take or clip has the folder name or the UMID of one in the
    // destination; the new takes become the chosen ones.
    bool checkRepeatClip(DOClipCtrl& clipCtrl);
    // 0 when the UMID is that of a take or clip of the destination takes.
    int checkUmid(const QString& umid, const DOClipCtrl& clipCtrl);
    // 0 when a take of the record has the UMID of a take of another record of
    // the list (the record itself stands at the index).
    int checkUmid(const DOClipCtrl& clipCtrl, const QList<DOClipCtrl>& clipCtrls, int index);
    // The pane's selected folder still exists (for type 5, a rename, its work
    // folder too); else "MSG_632_3169" is shown and the pane is told.
    bool checkFolderExist(IOperationPane& pane, int type);
    bool checkFolderExistOfWorkFolder(const QString& folder);
    bool checkFolderExistOfRootFolder(const QString& folder);
    // The selected folders of the destination and the source pane (either
    // may be absent) still exist.
    bool checkFolderExistToMediaInfo(IOperationPane* toPane, IOperationPane* fromPane);

    // ---- the files of records ----
    // Absolute paths of the existing files of a record in a BPAV folder: XML,
    // SMI (not for status 3, whose take-info reference names the folder),
    // BIM, PPN, MP4. With the folder flag the folder goes first (for status 4,
    // the loose file itself).
    QStringList getOperatePaths(const DOClipData& clip, bool needFolder, const QString& fromPath, int status);
    QStringList getOperatePaths(const DOTakeData& take, bool needFolder, const QString& fromPath, int status);
    // Per take, the paths of its clips and then its own, each path once.
    void setOperatePaths(QList<QStringList>& paths, const QList<DOTakeData>& takes, int& pathCount,
                         bool needFolder, const QString& workPath);
    int getPathCount(const QList<DOTakeData>& takes, const QString& workPath, bool needFolder);
    // The files of every record's takes, each counted in its source folder.
    qint64 getPathCount(const QList<DOClipCtrl>& records);
    // The existing files of one record.
    int getPathCount(const DOClipData& clip, const QString& workPath);
    int getPathCount(const DOTakeData& take, const QString& workPath);

    // ---- deletion and roll-back ----
    // Removes the target take's folders in the work folder: each clip folder
    // of a multi-clip take in order, then the take's own folder; for a loose
    // MP4 file the file. Stops at the first that cannot be removed.
    bool doFileDelete(const DOClipCtrl& clipCtrl, const QString& workFolder);
    // The same, then the take leaves the work folder's media profile.
    bool doDeleteTake(const DOClipCtrl& clipCtrl, const QString& workFolder);
    // Undoes an operation on its destination: removes the destination work
    // folder when the operation made it, otherwise deletes the first count
    // takes handled.
    void processCancel(DOClipCtrl& clipCtrl, int operatedCount);

    // ---- reading a folder into records ----
    // One entry of the BPAV folder's CLPR folder as a clip: status 0 with all
    // of MP4, SMI, XML, BIM and PPN; 3 with MP4 and XML (its take-info
    // reference then names the clip folder); 4 for a loose MP4 file directly in
    // CLPR (with a new UMID); 5 otherwise. The MP4 contents are not examined.
    DOClipData checkCLPRFiles(const QString& workFolder, const QString& folderName);
    // One entry of the TAKR folder as a take: status 1 with its take info and
    // metadata, 5 otherwise; the take info, when there, gives its UMID, clip
    // UMIDs and take-info entries.
    DOTakeData checkTAKRFiles(const QString& workFolder, const QString& folderName);
    // A clip on this medium from references known from the media profile.
    DOClipData addClipList(const QString& umid, const QString& smi, const QString& mp4, const QString& xml,
                           const QString& bim, const QString& ppn, const QString& workFolder);

    // ---- filling records from metadata ----
    // Reads the take info at a path (already resolved) into the take: its UMID,
    // clip UMIDs and take-info entries from the plain group. False when the
    // file cannot be read.
    bool getTakeInfo(DOTakeData& take, const QString& smiPath);
    // Gives the take its clips from the list, in the order of its clip UMIDs,
    // and decides the statuses that follow: an unusable clip makes the take
    // unusable, a clip not on this medium makes it media spanning.
    void searchClip(DOTakeData& take, QList<DOClipData>& clips);
    // The clip of that UMID in the list (marked as existing), or null.
    static DOClipData* isClipData(const QString& umid, QList<DOClipData>& clips);
    // Fills the take and its clips from their non-real-time metadata.
    bool getNonRealData(DOTakeData& take, const QString& workFolder);
    bool getTakeNonRealMeta(DOTakeData& take, const QString& workFolder);
    bool getClipNonRealMeta(DOClipData& clip, const QString& workFolder);
    bool getTakeNonMetaData(DOTakeData& take, const QString& workFolder);

    // ---- re-joining multi-clip takes in a destination ----
    // After an operation has put the files of its takes into the destination,
    // a take that arrived in parts (some clips now, others by an earlier
    // operation) becomes one take again. Copy, move, division and combine
    // call updateTakeInfo, then rebuildTakeData, then write the destination's
    // media profile from the record's destination takes. Folders are removed
    // only where they are take folders in the destination's TAKR folder.
    //
    // Adds each operated take (the new forms when the change flag is set) to
    // the destination takes, joining it with a destination take it belongs
    // to. False when a joined take's take info could not be written.
    bool updateTakeInfo(DOClipCtrl& clipCtrl);
    // Adds the target take to a non-empty list of destination takes, joining
    // it with every destination take whose take info names it or that its
    // own take info names.
    bool createTakeData(DOClipCtrl& clipCtrl);
    // The base with the added take's clips and take-info entries taken in
    // (the entries in place of the reference one part holds to the other) and
    // the components of both.
    DOTakeData margeTake(const DOTakeData& base, const DOTakeData& added);
    // Writes the joined take's take info and puts it in place of the
    // destination take at the index; a take-info source it lacks the clip of
    // makes it media spanning.
    bool createNewTakeData(DOClipCtrl& clipCtrl, DOTakeData& take, int index);
    // Tidies the destination takes: drops entries a larger one supersedes,
    // joins parts whose components show they follow each other, completes
    // takes from fragments, and rewrites clip order, status and non-real-time
    // metadata (duration, time-code changes) of every multi-clip take.
    void rebuildTakeData(DOClipCtrl& clipCtrl);
    // 1 when another entry of the take's UMID, or a take sharing one of its
    // clips, holds more clips; else 0.
    int checkClipData(const DOTakeData& take, const QList<DOTakeData>& takes);
    // The index of the multi-clip take of the list whose UMID the component
    // before the take's first clip component (not its first component) carries;
    // -1 when there is none.
    int checkComponent(const DOTakeData& take, const QList<DOTakeData>& takes);
    // Completes takes from fragments until none can be; when any was, the
    // record's destination and added takes become the new list and every
    // UMID concerned is to leave the media profile first.
    void rebuildTakeData(DOClipCtrl& clipCtrl, QList<DOTakeData>& newTakes, const QString& path);
    // Moves into the take the clips its take info names from the other takes
    // of the list; a take that gave one leaves the list and loses its folder.
    void removeTakeData(DOTakeData& take, QList<DOTakeData>& takeDatas, const QString& path);
    // Whether fragments of the list (takes holding another number of clips
    // than their take info names) hold every clip the take's take info names,
    // some of them not the take's own.
    bool checkTakeInfo(const DOTakeData& take, const QList<DOTakeData>& takeDatas);
    // The take's clip of that UMID, or null.
    static const DOClipData* checkTakeInfo(const DOTakeData& take, const QString& takeInfoUmid);
    // Lists the clips in take-info order; a complete take is read again from
    // its metadata in the work folder and loses its spanning state and its
    // components.
    void sortDOClipData(DOTakeData& take, const QString& path);
    // By clip creation date, the order alike left as it is.
    QList<DOClipData> sortArrayClipData(const QList<DOClipData>& clips);
    // The take's LTC change points for its duration as the sum of its clips:
    // its metadata's own when they already end the whole take, rebuilt to end
    // with its last clip's end when the duration changes (the take's duration
    // is then set), none when nothing changes. Sets the take's time-code rate
    // and half-step texts from its metadata.
    QList<DOLtcChange> rebuildLtdChange(const QList<DOTakeData>& takes, DOTakeData& target,
                                        const QString& workFolder);
    // Writes the take's UMID, duration and (when given) LTC change points into
    // its non-real-time metadata.
    bool reMakeNonMeta(const DOTakeData& take, const QString& workFolder,
                       const QList<DOLtcChange>& ltcChanges);
};
