#pragma once

#include "core/operations/BLClipCopyThread.h"
#include "core/operations/BLClipTransferCtrl.h"

#include <memory>

class BLClipCtrl;

// The copy of takes from one work folder into another: the dialog asks for
// the destination folder's name, OK runs the checks, and the copy then runs
// under the progress dialog. Panes showing the destination reload when it is
// done. Main thread only.
class BLClipCopyCtrl : public BLClipTransferCtrl
{
public:
    // Modes of showModal: copy the selected takes, or all takes of a folder.
    static constexpr int kModeSelection = 0;
    static constexpr int kModeAll = 1;

    BLClipCopyCtrl(IClipTransferView* view, const DOClipCtrl& clipCtrl, IOperationPane* toPane,
                   IOperationPane* fromPane);

    // Whether files are verified (the setting, unless changed here).
    void setVerify(bool verify) { m_verify = verify; }

    // Shows the dialog; copies when it ends with OK. True when copied.
    bool showModal(int mode);
    // Runs the copy under the progress dialog; true when every take was
    // copied and the destination's index written.
    bool execClipCopy();
    // The worker of the last run (null before one).
    const BLClipCopyThread* lastRun() const { return m_worker.get(); }

protected:
    // The source must be readable.
    bool checkSourceLast(BLClipCtrl& clipCtrl) override;

private:
    bool m_verify;
    std::shared_ptr<BLClipCopyThread> m_worker;
};
