#pragma once

#include "core/card/DOClipCtrl.h"
#include "core/operations/IClipTransferView.h"

#include <QString>

class BLClipCtrl;
class IOperationPane;

// What the copy and the move of takes share: the dialog that asks for the
// destination folder's name, and the checks of its OK in their order (each
// refusal shown and logged). Without a view (the command-line tool) the same
// checks run on a name given. Main thread only.
class BLClipTransferCtrl : public IClipTransferCtrl
{
public:
    // Answers of checkRequest: go on, refused (the dialog closes), refused
    // (the dialog stays open for another name).
    static constexpr int kCheckReady = 0;
    static constexpr int kCheckRefused = 1;
    static constexpr int kCheckKeepOpen = 2;

    // What tells the operations apart in the checks and their log lines.
    struct Kind
    {
        int processId;
        const char* logName;    // "[BLClipCopyCtrl execClipCopy]"
        const char* operation;  // "File Copy"
        const char* realResult; // "RET_COPY_REAL"
        int nameType;           // of checkCopyToFolderName
        int pathType;           // of checkCopyPath
        const char* collisionKey;
    };

    const DOClipCtrl& getClipCtrl() const { return m_clipCtrl; }
    void setClipCtrl(const DOClipCtrl& clipCtrl) { m_clipCtrl = clipCtrl; }

    void onOK() override;
    void onCancel() override;
    // The checks of OK for a destination folder name. A refusal leaves no
    // folder of this operation behind.
    int checkRequest(const QString& name);

protected:
    // The record has the source and proposed destination work folders, the
    // takes and the destination pane's takes. Either pane may be absent.
    BLClipTransferCtrl(const Kind& kind, IClipTransferView* view, const DOClipCtrl& clipCtrl,
                       IOperationPane* toPane, IOperationPane* fromPane);

    // Shows the dialog with the title and prompt keys, the source's and the
    // proposed destination's names; true when it ended with OK.
    bool runDialog(const QString& titleKey, const QString& messageKey);
    // The source's own checks: before the destination is looked at, and once
    // the destination's path passed.
    virtual bool checkSourceFirst(BLClipCtrl&) { return true; }
    virtual bool checkSourceLast(BLClipCtrl&) { return true; }
    void log(const QString& message) const;
    // Tells panes showing the folder to read it again.
    void notifyUpdate(const QString& workFolder);

    IClipTransferView* m_view;
    DOClipCtrl m_clipCtrl;
    IOperationPane* m_toMediaInfo;
    IOperationPane* m_fromMediaInfo;

private:
    Kind m_kind;
};
