#pragma once

#include "core/card/DOClipCtrl.h"
#include "core/operations/DOFolderCombine.h"

#include <QList>
#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <memory>

class BLFolderCombineThread;
class IFolderCombineView;

// Moves every take of folders beside the destination work folder into it:
// the dialog lists the candidate folders with a tick each, the checks refuse a
// clip that two folders or the destination share before anything moves, the
// worker moves and joins the takes under the progress dialog, and the emptied
// folders go when asked. Main thread only.
class BLFolderCombineCtrl
{
public:
    static constexpr int kStopCodeOK = 1;
    static constexpr int kStopCodeCancel = 0;

    // The record holds the destination work folder and its takes (to-takes).
    BLFolderCombineCtrl(IFolderCombineView* view, const DOClipCtrl& clipCtrl);
    ~BLFolderCombineCtrl();

    // Runs the dialog; combines the ticked folders on Start. True when combined.
    bool showModal();
    // Fills the table: the readable folders beside the destination but it and
    // any "BPAV", sorted by display name, none ticked.
    void preShowModal();
    const QList<DOFolderCombine>& datas() const { return m_datas; }
    const QList<QVariantMap>& rows() const { return m_arrayCtrl; }
    // The on-disk names of the ticked rows.
    QStringList setFromInfo() const;
    bool getDelSwitch() const;
    void tableViewSelectionDidChange();
    void onStart();
    void onCancel();

    // The checks and the combine of the folders of those names (beside the
    // destination); with deleteSources the emptied ones go. True when every
    // take was moved and the index files written.
    bool execFolderCombine(const QStringList& names, bool deleteSources);
    // The folder beside the destination of that name.
    QString siblingPath(const QString& name) const;

    const BLFolderCombineThread* lastRun() const { return m_worker.get(); }
    // The source folders removed by the last combine.
    const QStringList& deletedFolders() const { return m_deleted; }

private:
    // The parent of the candidates: the destination's, or the destination
    // itself when it is a volume root.
    QString candidateParent() const;
    bool checkFolderExistForCombine(const QStringList& sources) const;
    QList<DOClipCtrl> makeRecords(const QStringList& names) const;

    IFolderCombineView* m_view;
    DOClipCtrl m_ClipCtrl;
    QList<DOFolderCombine> m_datas;
    QList<QVariantMap> m_arrayCtrl;
    std::shared_ptr<BLFolderCombineThread> m_worker;
    QStringList m_deleted;
    bool m_combined = false;
};
