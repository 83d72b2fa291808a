#pragma once

#include "core/card/DOClipCtrl.h"
#include "core/services/BLProgressThread.h"

#include <QList>
#include <QString>
#include <QStringList>

class BLClipCtrl;

// Copies the chosen takes of a copy into the destination work folder under
// the progress dialog: for each take its clips' files, then its own, in the
// order XML, SMI, PPN, BIM, MP4, each file verified when asked. A failed file
// or a cancel undoes what was copied (the takes handled, the one in progress
// included, or the whole destination folder when the copy made it). After the
// last take the takes that arrived in pieces are joined again and the
// destination's media profile is written. The source is never changed.
class BLClipCopyThread : public BLProgressThread
{
public:
    // One file copied.
    struct CopiedFile
    {
        QString source;
        QString destination;
        qint64 size = 0;
        quint64 hash = 0; // XXH64 of the bytes read, when verified
    };

    BLClipCopyThread(const DOClipCtrl& clipCtrl, bool verify);

    QString getInitMessage() override;
    void getInitProgress(double* value, double* min, double* max) override;
    void loopProcess() override;
    // The pause after each chunk copied: as short as keeps the dialog alive.
    void waitThread() override;

    // Whether every take was copied and the destination's index written.
    bool isSucceeded() const { return m_succeeded; }
    // The record as the copy left it (destination takes joined again).
    const DOClipCtrl& clipCtrl() const { return m_clipCtrl; }
    // The files copied, in order (none after a roll-back).
    const QList<CopiedFile>& copiedFiles() const { return m_copied; }
    // The total shown by the bar: the takes' folders in MiB, rounded down.
    qint64 totalMiB() const { return m_totalMiB; }

private:
    // One take: 0 copied, 2 failed, 3 cancelled, kCopyNotVerified.
    int doFileCopy(qint64* fromSize);
    // The files of one clip or take record.
    int doCopyFiles(const DOClipData& from, const DOClipData& to, qint64* fromSize);
    int copyFiles(const QStringList& fromReferences, const QStringList& toReferences, qint64* fromSize);
    // The message telling why the copy failed (its %1 is the file, for one
    // that did not verify).
    const char* failureMessage(int result) const;

    DOClipCtrl m_clipCtrl;
    bool m_verify;
    qint64 m_totalMiB = 0;
    bool m_succeeded = false;
    QList<CopiedFile> m_copied;
    QString m_failedFile;
};
