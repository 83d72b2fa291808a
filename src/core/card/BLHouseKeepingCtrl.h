#pragma once

#include "core/card/DOClipData.h"
#include "core/card/DOTakeData.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <functional>
#include <mutex>

class BLMediaProfileAcss;

// Housekeeping: turns a work folder on disk into the takes a pane shows,
// repairing the folder's index files on the way. It makes sure the cue-up info
// and the media profile exist, examines every clip folder in CLPR and take
// folder in TAKR, reconciles them with the media profile (rewriting it where
// it needs repair), groups the clips into takes, reads each take's metadata
// and take info, and answers the takes sorted by creation date.
//
// One controller serves one pass, normally on a worker thread; setCancel may
// come from any thread, and the pass stops at its next cancel point. A
// cancelled controller stays cancelled.
class BLHouseKeepingCtrl
{
public:
    // What the last pass did to an index file, or could not do.
    struct Repair
    {
        QString file;   // "MEDIAPRO.XML", "CUEUP.XML", or the journal of a move
        QString action; // "created", "rebuilt", "rewritten", "not-written"; "ended", "not-ended" (a move)
        QString detail; // why, in words
        QString copy;   // where the damaged file was copied before, if it was
    };

    // The takes of the work folder (possibly none); never fails as such.
    QList<DOTakeData> doHouseKeeping(const QString& workFolder);

    void setCancel();
    bool isCancel() const;

    // Clip and take materials the media profile listed (for the folder limits).
    void setCLPRMateCount(int count) { m_CLPRMateCount = count; }
    int getCLPRMateCount() const { return m_CLPRMateCount; }
    void setTAKRMateCount(int count) { m_TAKRMateCount = count; }
    int getTAKRMateCount() const { return m_TAKRMateCount; }

    // Called with the number of each cancel point (1 to 7) as the pass
    // reaches it, before the flag is read: lets tests cancel at one point.
    void setCancelPointHookForTesting(std::function<void(int step)> hook)
    {
        m_cancelPointHook = std::move(hook);
    }

    // The clips found by the last pass.
    const QList<DOClipData>& getClipData() const { return m_arrClipData; }
    // What the last pass repaired or could not write, in order.
    const QList<Repair>& getRepairs() const { return m_repairs; }
    // The last pass found no media profile it could read (damaged, or
    // missing and not creatable): its takes come from the folders alone.
    bool isIndexUnreadable() const { return m_bIndexUnreadable; }

    // ---- steps ----
    // Reads every CLPR entry into the clip list and every TAKR folder into
    // the takes. CLPR and TAKR are made when missing; one that cannot be
    // made (a medium that cannot be written) gives nothing.
    void isClipFolder(const QString& workFolder, QList<DOTakeData>& takes);
    void checkCLPRFolder(const QString& workFolder);
    void checkTAKRFolder(QList<DOTakeData>& takes, const QString& workFolder);
    // Groups the clips into takes and reads the takes' metadata and take info.
    void buildTakeData(QList<DOTakeData>& takes, const QString& workFolder);
    // Every take claims its clips; every clip left over becomes a take.
    void clipTotake(QList<DOTakeData>& takes);
    // A single-clip take for a clip.
    DOTakeData makeTakeData(const DOClipData& clip);
    // The take-info entries of a multi-clip take; a clip it names that is
    // not in the folder makes the take media spanning.
    void getTakeInfoData(DOTakeData& take, const QString& smiPath);

private:
    // The pass proper; false when it ended early (the takes are then as far
    // as they got).
    bool passFolder(const QString& workFolder, QList<DOTakeData>& takes);
    // Where the takes come from: the media profile as it is, the media
    // profile read past trailing NUL bytes (to be written again), a new
    // media profile to be filled from the folders, or the folders alone (the
    // medium cannot be written).
    enum class Source
    {
        Profile,
        PaddedProfile,
        NewProfile,
        FoldersOnly
    };
    // Decides the source, leaving a readable media profile loaded in the
    // accessor: makes a missing one, and replaces a damaged one once a copy
    // of it is kept (keepDamagedCopy). Tells the user.
    Source openMediaPro(const QString& workFolder, BLMediaProfileAcss& mediaPro);
    // Copies the file into the log folder's "damaged" folder, named after the
    // card's path and the time; the copy's path, or "" when it failed.
    QString keepDamagedCopy(const QString& workFolder, const QString& path);
    // Writes the media profile anew from the takes and clips found and
    // records the repair, or tells the user that the medium does not let it
    // be written.
    void rewriteMediaPro(const QList<DOTakeData>& takes, const QString& workFolder, const QString& action,
                         const QString& reason);
    void addRepair(const QString& file, const QString& action, const QString& detail);
    // Ends a move of takes the folder took part in that its process did not
    // live to end (BLMoveJournal), and tells the user.
    void endInterruptedMove(const QString& workFolder);
    // "MSG_732_3176", once a pass.
    void tellNotWritable();
    // Logs the cancel step when the flag is set.
    bool isCancelAt(int step) const;

    std::function<void(int)> m_cancelPointHook;

    QList<DOClipData> m_arrClipData;
    QList<Repair> m_repairs;
    QString m_sDamagedCopy;
    bool m_bToldNotWritable = false;
    bool m_bIndexUnreadable = false;
    mutable std::mutex m_cancelLock;
    bool m_bCancel = false;
    int m_CLPRMateCount = 0;
    int m_TAKRMateCount = 0;
};
