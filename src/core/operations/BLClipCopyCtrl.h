#pragma once

#include "core/operations/BLClipCopyThread.h"
#include "core/operations/DOClipCtrl.h"

#include <QList>
#include <QString>

class IClipCopyView;
class IOperationPane;

// The copy of takes from one work folder into another: the dialog asks for
// the destination folder's name, OK runs the checks in their order (each
// refusal shown and logged), and the copy then runs under the progress
// dialog. Panes showing the destination reload when it is done. Without a
// view (the command-line tool) the same checks and worker run on a name given.
// Main thread only.
class BLClipCopyCtrl
{
public:
    // Modes of showModal: copy the selected takes, or all takes of a folder.
    static constexpr int kModeSelection = 0;
    static constexpr int kModeAll = 1;
    // Answers of checkRequest: go on, refused (the dialog closes), refused
    // (the dialog stays open for another name).
    static constexpr int kCheckReady = 0;
    static constexpr int kCheckRefused = 1;
    static constexpr int kCheckKeepOpen = 2;

    // The record has the source and proposed destination work folders, the
    // takes to copy and the destination pane's takes. Either pane may be absent.
    BLClipCopyCtrl(IClipCopyView* view, const DOClipCtrl& clipCtrl, IOperationPane* toPane,
                   IOperationPane* fromPane);

    const DOClipCtrl& getClipCtrl() const { return m_clipCtrl; }
    void setClipCtrl(const DOClipCtrl& clipCtrl) { m_clipCtrl = clipCtrl; }
    // Whether files are verified (the setting, unless changed here).
    void setVerify(bool verify) { m_verify = verify; }

    // Shows the dialog; copies when it ends with OK. True when copied.
    bool showModal(int mode);
    void onOK();
    void onCancel();

    // The checks of OK for a destination folder name, in their order.
    int checkRequest(const QString& name);
    // Runs the copy under the progress dialog; true when every take was
    // copied and the destination's index written.
    bool execClipCopy();
    // The worker of the last run (null before one).
    const BLClipCopyThread* lastRun() const { return m_worker.get(); }

private:
    IClipCopyView* m_view;
    DOClipCtrl m_clipCtrl;
    IOperationPane* m_toMediaInfo;
    IOperationPane* m_fromMediaInfo;
    bool m_verify;
    std::shared_ptr<BLClipCopyThread> m_worker;
};
