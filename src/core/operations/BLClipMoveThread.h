#pragma once

#include "core/card/BLMoveJournal.h"
#include "core/card/BLTakeMover.h"
#include "core/card/DOClipCtrl.h"
#include "core/services/BLProgressThread.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <memory>

// Moves the chosen takes of a move into the destination work folder under
// the progress dialog, take by take, each clip and take folder whole (see
// BLTakeMover), with a journal that lets the next load end a move the process
// did not live to end (BLMoveJournal). A cancel or a failure moves every take
// handled back, the one under way included, and removes a destination folder
// the move made. After the last take the destination's takes are joined again
// and both folders' index files are written.
class BLClipMoveThread : public BLProgressThread
{
public:
    explicit BLClipMoveThread(const DOClipCtrl& clipCtrl);

    QString getInitMessage() override;
    void getInitProgress(double* value, double* min, double* max) override;
    void loopProcess() override;
    // The pause after each folder moved (and each chunk copied): a yield.
    void waitThread() override;

    // ---- one take, as the folder operations use it too ----
    // The folders and files that the record's target take moves (to the
    // paths of the new target when the change flag is set). The split form
    // copies a multi-clip take's own files instead, since several folders
    // need them.
    static BLTakeMover::Take planTake(const DOClipCtrl& record, bool split);
    // Moves the record's target take: 0 moved, 2 failed, 3 cancelled. The
    // thread is told of progress (files on one file system, MiB across two)
    // and asked about cancel.
    int doMoveFile(const DOClipCtrl& record, BLProgressThread* thread, qint64* fromCount, qint64 maxCount);
    int doMoveFileForSplit(const DOClipCtrl& record, BLProgressThread* thread, qint64* fromCount,
                           qint64 maxCount);
    // ---- a run of the record's chosen takes, as loopProcess and the folder
    // operations (one run per source and destination pair) make it ----
    // Plans every chosen take (the new forms when the change flag is set),
    // makes the destination's fixed folders, writes the journal and gets the
    // mover: kRunReady, kRunNoJournal (journalFailure() says why) or
    // kRunNoMover. Nothing has moved when it fails.
    static constexpr int kRunReady = 0;
    static constexpr int kRunNoJournal = 1;
    static constexpr int kRunNoMover = 2;
    int beginRun(bool split);
    QString journalFailure() const { return m_journal.failure(); }
    // The files and bytes the planned takes hold.
    qint64 runFiles() const { return m_runFiles; }
    qint64 runBytes() const { return m_runBytes; }
    // Moves the planned takes in order: 0 every one moved (each UMID joins the
    // record's deleted UMIDs), else 2 or 3 with *stoppedAt the take that failed
    // or was cancelled (partly moved; processCancel puts it back).
    int moveRun(BLProgressThread* thread, qint64* done, qint64 maxCount, int* stoppedAt);
    // Every file is in place: the journal goes and the staging folders are emptied.
    void endRun();
    // Moves the takes of the run from the first to the one at operatedCount
    // back to the source; removes the destination folder when the move made
    // it. False when a take could not be put back (the journal then stays).
    bool processCancel(int operatedCount);

    // Every take moved and both index files written.
    bool isSucceeded() const { return m_succeeded; }
    // Stopped (cancelled or failed) with every take back at the source.
    bool isRestored() const { return m_restored; }
    const DOClipCtrl& clipCtrl() const { return m_clipCtrl; }
    bool isCrossVolume() const { return m_mover && m_mover->isCrossVolume(); }
    // Files and bytes of the takes moved (none after a move back).
    qint64 movedFiles() const { return m_movedFiles; }
    qint64 movedBytes() const { return m_movedBytes; }

private:
    // The mover between the record's two BPAV folders (made once, on the first take).
    BLTakeMover* moverFor(const DOClipCtrl& record);
    void setTarget(int index);
    int moveTake(const DOClipCtrl& record, bool split, BLProgressThread* thread, qint64* fromCount,
                 qint64 maxCount);
    // The takes' index files after the move.
    bool writeIndexes();
    // A message for the user: its key and what fills it.
    struct Message
    {
        QString key;
        QStringList args;
    };
    // Why the move failed: a folder gone, a network drive, or the file and
    // the reason (decided before the move back).
    Message failureMessage() const;
    static void showMessage(const Message& message);
    // A destination folder this move made, empty again, goes.
    void removeNewFolder();

    DOClipCtrl m_clipCtrl;
    QList<BLTakeMover::Take> m_plan;
    std::unique_ptr<BLTakeMover> m_mover;
    BLMoveJournal m_journal;
    bool m_processCancel = false;
    bool m_succeeded = false;
    bool m_restored = false;
    qint64 m_movedFiles = 0;
    qint64 m_movedBytes = 0;
    qint64 m_runFiles = 0;
    qint64 m_runBytes = 0;
};
