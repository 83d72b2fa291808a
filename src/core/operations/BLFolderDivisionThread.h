#pragma once

#include "core/card/DOClipCtrl.h"
#include "core/services/BLProgressThread.h"

#include <QList>
#include <QString>

#include <memory>
#include <vector>

class BLClipMoveThread;

// The work of a folder division under the progress dialog: per new folder
// (one record each) the folder is made and its takes moved there, clip folders
// whole and a take's own files copied (several folders need them), each folder
// a run of the move routine with its journal. A cancel or failure moves every
// take of every record back and removes the new folders. Then the divided
// folder loses the take folders of the takes that went, the parts of split
// takes are linked to their neighbours, and every folder's index files are
// written.
class BLFolderDivisionThread : public BLProgressThread
{
public:
    BLFolderDivisionThread(const QList<DOClipCtrl>& records, const QList<DOTakeData>& beforeTakes);
    ~BLFolderDivisionThread() override;

    QString getInitMessage() override;
    void getInitProgress(double* value, double* min, double* max) override;
    void loopProcess() override;
    void waitThread() override;
    // The existing files of the takes of all records.
    qint64 getTakeCount() const;

    bool isSucceeded() const { return m_success; }
    // Stopped with every take back in the divided folder.
    bool isRestored() const { return m_restored; }
    const QList<DOClipCtrl>& records() const { return m_arrClipCtrl; }

private:
    // The parts numbered one below (front) and one above (next) the part, with
    // the media IDs of their folders; false when there is none.
    bool getSpanningTake(const DOTakeData& part, DOTakeData* front, DOTakeData* next, QString* frontId,
                         QString* nextId) const;
    void linkSpanningTakes();
    bool writeIndexes();
    // Moves the takes of the records before the one at record, then the first
    // take + 1 takes of that one, back; the new folders go.
    bool processCancel(int record, int take);
    void fail(const QString& key, const QString& logLine);

    QList<DOClipCtrl> m_arrClipCtrl;
    QList<DOTakeData> m_arrBeforeTakes;
    std::vector<std::unique_ptr<BLClipMoveThread>> m_moves;
    bool m_success = false;
    bool m_restored = false;
};
