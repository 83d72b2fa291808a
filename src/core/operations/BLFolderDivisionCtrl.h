#pragma once

#include "core/card/DOClipCtrl.h"
#include "core/card/DOTakeData.h"
#include "core/operations/Segment.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <memory>
#include <vector>

class BLFolderDivisionThread;
class IFolderDivisionView;
class IOperationPane;

// Divides the takes of a work folder into new folders beside it (inside it
// for a volume root), each small enough for a disk of the capacity the user
// chooses: the dialog takes the capacity, Start checks the folder and plans
// the folders (Segment), re-forms takes split over several folders as
// spanning takes, and runs BLFolderDivisionThread under the progress dialog.
// Main thread only.
class BLFolderDivisionCtrl
{
public:
    static constexpr int kStopCodeOK = 1;
    static constexpr int kStopCodeCancel = 0;
    static constexpr double kGiB = 1073741824.0;
    // The capacities offered (GB) and the one preselected.
    static const QStringList kCapacities;
    static constexpr int kPreselected = 9;

    // The takes of the folder as its pane shows them; the pane may be null.
    BLFolderDivisionCtrl(IFolderDivisionView* view, const QList<DOTakeData>& takes, const QString& folder,
                         IOperationPane* pane);
    ~BLFolderDivisionCtrl();

    // Runs the dialog; true when the folder was divided.
    bool showModal();
    void onStart();
    void onCancel();
    // Start without the dialog (the command-line tool): the checks, the plan
    // and the run with the capacity text as typed. True when divided.
    bool execFolderDivision(const QString& capacityText);

    // ---- checks and plan ----
    // False when the folder cannot or need not be divided; *errorCloseDialog
    // tells whether the dialog ends (else it stays open for another capacity).
    bool FolderDivision(QList<DOClipCtrl>& records, bool* errorCloseDialog);
    // The plan for a capacity in bytes: Segment, the new folders' names and
    // one record per new folder. False (shown) when it cannot be packed.
    bool planDivision(double capacity, QList<DOClipCtrl>& records);
    // Re-forms the split takes and runs the worker under the progress dialog;
    // the panes are told of what changed. True when divided.
    bool runDivision(QList<DOClipCtrl> records);
    // The capacity text as bytes: digits with at most one "." not leading, at
    // least 4.
    static bool chkSize(const QString& text, double* divSize);
    // Bytes of the folder: its two index files and the takes that take part.
    qint64 getDivSize() const;
    bool checkWritableFromTakeData() const;
    static std::vector<TAKE> preSegment(const QList<DOTakeData>& takes);
    // The new folders' paths: FOLDER_1 ... (inside a volume root: _1 ...),
    // each one level deeper (FOLDER_1_1 ...) as long as a name is taken.
    static QStringList createDivFolderName(int count, const QString& path);
    // Per disk that receives anything, its takes (multi-clip takes reduced to
    // the clips placed there), in take order.
    static QList<QList<DOTakeData>> makeDivInfo(const std::vector<TAKE>& arrTake, int count,
                                                const QList<DOTakeData>& takes);
    // One record per take list, sorted by the takes' creation dates.
    static QList<DOClipCtrl> getClipCtrl(const QList<QList<DOTakeData>>& takeLists, const QString& folder,
                                         const QStringList& folders);
    // Numbers the parts of split takes and makes every part but the last a
    // take of its own (new UMID, take folder renumbered).
    bool CreateMetaData(QList<DOClipCtrl>& records);

    // The worker of the last run (null before one).
    const BLFolderDivisionThread* lastRun() const { return m_worker.get(); }
    const QList<DOClipCtrl>& records() const { return m_records; }

private:
    // The part of the split take that holds the take's clip of that UMID.
    static DOTakeData createSpannningNewTake(const DOTakeData& splitTake, const DOTakeData& part);
    static QList<DOComponent> updateComponent(const QList<DOComponent>& components,
                                              const QList<DOClipData>& clips);
    // Start once the capacity text is known: 0 divided, 1 refused with the
    // dialog kept open, 2 refused or failed with the dialog closed.
    int start(const QString& capacityText);

    IFolderDivisionView* m_view;
    QList<DOTakeData> m_arrTmpTake;
    QList<DOTakeData> m_arrTakeData;
    QString m_selectFolder;
    IOperationPane* m_mediaInfoCtrl;
    QString m_capacityText;
    QList<DOClipCtrl> m_records;
    std::shared_ptr<BLFolderDivisionThread> m_worker;
    bool m_divided = false;
};
