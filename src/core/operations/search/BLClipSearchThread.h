#pragma once

#include "core/card/DOTakeData.h"

#include <QDateTime>
#include <QList>
#include <QPair>
#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <condition_variable>
#include <memory>
#include <mutex>

class BLClipSearchCtrl;
class BLHouseKeepingCtrl;

// One clip search: walks a folder and every folder below it, breadth first,
// on a thread of its own and hands each matching take to the search dialog
// on the main thread as a result row. A folder a pane shows is searched in
// the pane's takes; any other folder is read (and its index files repaired)
// by housekeeping.
//
// The dialog may go away while the walk runs (clearClipSearchCtrl): rows and
// the end of the search are then dropped, and the walk stops at its next
// cancel point once cancelled.
class BLClipSearchThread : public std::enable_shared_from_this<BLClipSearchThread>
{
public:
    // A folder a pane shows, with the takes it shows there.
    using PaneTakes = QPair<QString, QList<DOTakeData>>;

    // Empty texts and invalid dates mean no condition.
    BLClipSearchThread(BLClipSearchCtrl* ctrl, const QString& title, const QString& comment,
                       const QDateTime& from, const QDateTime& to, const QList<PaneTakes>& paneTakes = {});

    // The thread's entry: searches the folder and those below it, then
    // reports the end to the dialog.
    void startThread(const QString& path);

    void loopSearch();
    void checkFolder(const QString& folder);
    bool checkTakeData(const DOTakeData& take) const;
    QVariantMap makeListData(const DOTakeData& take, const QString& path) const;
    static QString getListImage(const DOTakeData& take);

    // Sets the flag and cancels a housekeeping pass in progress.
    void setCancel();
    bool isCancel() const;
    void setNotFoundPath();
    bool isNotFoundPath() const;
    void setFolderLimit();
    bool isFolderLimit() const;
    void setSalvage();
    bool isSalvage() const;
    // The dialog has gone: nothing more is handed to it.
    void clearClipSearchCtrl();
    // The walk has ended and its end was handed over (or dropped).
    bool isFinished() const;

    // Sleeps 0.1 s between folders.
    void waitThread();

private:
    void sendFindList(const QVariantMap& row);
    // Hands the end to the dialog and waits until the main thread has taken
    // it (or the dialog has gone).
    void sendFinish();
    // The pane's takes when a pane shows the folder.
    const QList<DOTakeData>* paneTakesOf(const QString& folder) const;
    QString displayPathOf(const QString& path) const;

    const QString m_title;
    const QString m_comment;
    const QDateTime m_from;
    const QDateTime m_to;
    const QList<PaneTakes> m_paneTakes;

    mutable std::mutex m_cancelLock;
    bool m_isCancel = false;
    mutable std::mutex m_notFoundLock;
    bool m_isNotFoundPath = false;
    mutable std::mutex m_folderLimitLock;
    bool m_isFolderLimit = false;
    mutable std::mutex m_salvageLock;
    bool m_isSalvage = false;

    // Held by the main thread while it adds a row or finishes.
    mutable std::mutex m_ctrlLock;
    std::condition_variable m_finishTaken;
    BLClipSearchCtrl* m_clipSearchCtrl;
    bool m_finished = false;

    QStringList m_arraySeachPath;
    mutable QString m_displayPathOf;
    mutable QString m_displayPath;

    std::mutex m_hkcLock;
    BLHouseKeepingCtrl* m_houseKeepingCtrl = nullptr;
};
