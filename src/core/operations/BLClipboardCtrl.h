#pragma once

#include "core/card/DOTakeData.h"

#include <QList>
#include <QString>

// The application's clipboard for Cut, Copy and Paste of takes between
// folders: copies of the takes, the folder they were taken from and the mode.
// A shared instance used on the main thread.
class BLClipboardCtrl
{
public:
    static constexpr int kModeEmpty = 0;
    static constexpr int kModeCut = 1;
    static constexpr int kModeCopy = 2;

    static BLClipboardCtrl* sharedCtrl();
    static void releaseCtrl();

    // Replaces the contents: with a mode other than empty, takes and a
    // folder, copies of the takes (copyTake) and the folder are kept; anything
    // else empties the clipboard.
    void setClipData(const QList<DOTakeData>& takes, const QString& path, int mode);
    // Whether Paste is offered in a pane showing the folder: the clipboard
    // holds takes from another folder, none of them a loose MP4 file or
    // unusable, and all their files are still there.
    bool checkPaste(const QString& folder) const;

    const QList<DOTakeData>& getTakeDatas() const { return m_takeDatas; }
    const QString& getPath() const { return m_path; }
    int getMode() const { return m_mode; }

private:
    BLClipboardCtrl() = default;

    QList<DOTakeData> m_takeDatas;
    QString m_path;
    int m_mode = kModeEmpty;
};
