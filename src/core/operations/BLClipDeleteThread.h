#pragma once

#include "core/card/DOClipCtrl.h"
#include "core/services/BLProgressThread.h"

#include <QStringList>

// Deletes the chosen takes of a work folder under the progress dialog: for
// each take its paths (its clips' folders and files, then its own), the last
// first, each counted and shown; a loose MP4 file loses only the file. A
// take whose removal is under way when Cancel comes is finished without
// progress, and no further take is begun. A failed removal is reported and
// the next take tried. The work folder's media profile is then rewritten from
// the takes that remain (a take that failed is left out of it all the same)
// and its cue-up info loses the deleted takes. Nothing is undone.
class BLClipDeleteThread : public BLProgressThread
{
public:
    // The record names the work folder (its source), the takes to delete and
    // the folder's takes before the deletion.
    explicit BLClipDeleteThread(const DOClipCtrl& clipCtrl);

    QString getInitMessage() override;
    void getInitProgress(double* value, double* min, double* max) override;
    // Cancel is offered only when more than one take goes.
    bool getInitCancelEnable() override;
    void loopProcess() override;
    // Only yields: deleting a card's 600 takes must not wait for a timer.
    void waitThread() override;

    // Every take was deleted and the media profile and cue-up info written.
    bool isSucceeded() const { return m_succeeded; }
    // The record as the run left it: getDelUmid() lists the deleted takes.
    const DOClipCtrl& clipCtrl() const { return m_doClipCtrl; }
    // The takes whose files could not all be removed.
    const QStringList& failedUmids() const { return m_failedUmids; }
    // Whether the media profile was rewritten from the remaining takes.
    bool isMediaProWritten() const { return m_mediaProWritten; }

private:
    // Removes one take's paths; after a cancel during them, the rest without
    // progress. False when a path could not be removed.
    bool deleteTake(const QStringList& paths, int* done, int total);
    // The message for a failed removal.
    const char* failureMessage() const;

    DOClipCtrl m_doClipCtrl;
    QStringList m_failedUmids;
    bool m_mediaProWritten = false;
    bool m_succeeded = false;
};
