#pragma once

#include "core/operations/BLClipMoveThread.h"
#include "core/operations/BLClipTransferCtrl.h"

#include <memory>

class BLClipCtrl;

// The move of takes from one work folder into another: the dialog asks for
// the destination folder's name, OK runs the checks (the source must be
// changeable and its takes deletable; disk space counts only across
// volumes), and the move then runs under the progress dialog. Panes showing
// either folder reload when anything changed. Main thread only.
class BLClipMoveCtrl : public BLClipTransferCtrl
{
public:
    // The record's takes of the source folder (before takes) are those the
    // source keeps less the moved ones afterwards.
    BLClipMoveCtrl(IClipTransferView* view, const DOClipCtrl& clipCtrl, IOperationPane* toPane,
                   IOperationPane* fromPane);

    // Shows the dialog; moves when it ends with OK. True when moved.
    bool showModal();
    // Runs the move under the progress dialog; true when every take was moved
    // and both index files written.
    bool execClipMove();
    // The worker of the last run (null before one).
    const BLClipMoveThread* lastRun() const { return m_worker.get(); }

protected:
    // The source may be changed and each chosen take and clip folder deleted.
    bool checkSourceFirst(BLClipCtrl& clipCtrl) override;

private:
    std::shared_ptr<BLClipMoveThread> m_worker;
};
