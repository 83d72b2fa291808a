#pragma once

#include "core/card/DOClipCtrl.h"
#include "core/operations/BLClipDeleteThread.h"

#include <memory>

class IOperationPane;

// The deletion of takes from a work folder: asks for confirmation, runs the
// checks in their order (each refusal shown), deletes under the progress
// dialog and makes panes showing the folder reload it, after a cancel too
// (the folder has changed). Without a pane (the command-line tool) the same
// steps run on the record alone. Main thread only.
class BLClipDeleteCtrl
{
public:
    // The record has the work folder as its source, the takes to delete and
    // the folder's takes (before and destination takes). The pane may be null.
    BLClipDeleteCtrl(const DOClipCtrl& clipCtrl, IOperationPane* mediaInfo);

    const DOClipCtrl& getClipCtrl() const { return m_doClipCtrl; }

    // The delete command. ask = false skips the confirmation (the caller has
    // asked already). True when every take was deleted and the folder's media
    // profile and cue-up info written.
    bool clipDelete(bool ask = true);
    // The worker of the last run (null before one).
    const BLClipDeleteThread* lastRun() const { return m_worker.get(); }

private:
    // The checks before the run; false when one refused.
    bool checkRequest();

    DOClipCtrl m_doClipCtrl;
    IOperationPane* m_mediaInfoCtrl;
    std::shared_ptr<BLClipDeleteThread> m_worker;
};
