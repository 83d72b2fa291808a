#pragma once

#include "core/card/DOClipCtrl.h"
#include "core/services/BLProgressThread.h"

#include <QList>
#include <QString>

#include <memory>
#include <vector>

class BLClipMoveThread;
class BLFolderCombineCtrl;

// The work of a folder combine under the progress dialog: the takes of each
// source folder (one record each) move into the destination, a run of the
// move routine with its journal per source; a cancel or failure moves every
// take of every source back. Then the takes are joined in the destination
// source by source and every folder's index files are written.
class BLFolderCombineThread : public BLProgressThread
{
public:
    BLFolderCombineThread(const QList<DOClipCtrl>& records, BLFolderCombineCtrl* combineCtrl);
    ~BLFolderCombineThread() override;

    QString getInitMessage() override;
    void getInitProgress(double* value, double* min, double* max) override;
    void loopProcess() override;
    void waitThread() override;
    // The existing files of the takes of all records.
    qint64 getAllCount() const;

    bool isSucceeded() const { return m_success; }
    bool isRestored() const { return m_restored; }
    const QList<DOClipCtrl>& records() const { return m_arrClipCtrl; }

private:
    bool writeIndexes();
    // Moves the takes of the records before the one at record, then the first
    // take + 1 takes of that one, back.
    bool processCancel(int record, int take);
    void end(const QString& logLine);

    QList<DOClipCtrl> m_arrClipCtrl;
    BLFolderCombineCtrl* m_combineCtrl;
    std::vector<std::unique_ptr<BLClipMoveThread>> m_moves;
    bool m_success = false;
    bool m_restored = false;
};
