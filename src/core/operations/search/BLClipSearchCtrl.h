#pragma once

#include <QDateTime>
#include <QList>
#include <QObject>
#include <QSet>
#include <QString>
#include <QVariantMap>

#include <memory>
#include <thread>
#include <vector>

class BLClipSearchThread;
class IClipSearchView;
class IOperationPane;

// The clip search dialog: finds takes by title, comment and recording date in
// a folder and every folder below it. The walk runs on a BLClipSearchThread;
// its hits arrive here on the main thread and are listed while it goes on.
// Choosing a row (double click) ends the dialog with that take's folder and
// UMID, which the pane then shows with the take selected.
//
// Owned by the main window; main thread only.
class BLClipSearchCtrl : public QObject
{
public:
    static constexpr int kStopCodeChoice = 1;
    static constexpr int kStopCodeClose = 0;

    // The dialog and the two panes (their folders and takes are used for the
    // folders they show).
    BLClipSearchCtrl(IClipSearchView* view, const QList<IOperationPane*>& mediaInfoCtrls,
                     QObject* parent = nullptr);
    ~BLClipSearchCtrl() override;

    // Runs the dialog on the start folder (setPath). True when a row was
    // chosen: its UMID and folder are returned. When the dialog ended because
    // a folder to search had gone, "MSG_632_3169" is shown.
    bool showModal(QString* umid, QString* path);
    void setPath(const QString& path);
    const QString& getPath() const { return m_path; }
    const QList<IOperationPane*>& getMediaInfoCtrls() const { return m_arrMediaInfoCtrls; }

    // ---- the dialog's actions ----
    void onSearch();
    void onCancel();
    void onClose();
    void onInterval();
    void doubleClickAction();

    // ---- from the search thread, on the main thread ----
    void searchWillStart();
    void searchDidFinish(const BLClipSearchThread& thread);
    void addFindList(const QVariantMap& row);
    // The folder is a card's PRIVATE or PRIVATE/ORX below a folder already
    // listed: the same card's takes found again.
    bool IsClipList(const QString& path) const;

    // The date range of the dialog's choice; invalid dates for none.
    void makeSearchDateFrom(QDateTime* from, QDateTime* to) const;
    // The range of a choice on a day: 1 the last seven days, 2 from the same
    // day of the previous month, 3 of the previous year, 4 the two dates
    // given; from 00:00:00 to 23:59:59 UTC.
    static void makeSearchDateFrom(int interval, const QDate& today, const QDate& pickedFrom,
                                   const QDate& pickedTo, QDateTime* from, QDateTime* to);

    void setNotFoundPath() { m_isNotFoundPath = true; }
    void clearNotFoundPath() { m_isNotFoundPath = false; }
    bool isNotFoundPath() const { return m_isNotFoundPath; }

    const QList<QVariantMap>& rows() const { return m_arrayCtrl; }
    bool isSearching() const { return m_searching; }

private:
    // Lets go of the search in progress: it hands nothing more to the dialog.
    void releaseSearch();
    // Joins the walks that have ended.
    void reapThreads(bool all);

    IClipSearchView* m_view;
    QList<IOperationPane*> m_arrMediaInfoCtrls;
    QList<QVariantMap> m_arrayCtrl;
    QSet<QString> m_listedPaths;
    QString m_path;
    std::shared_ptr<BLClipSearchThread> m_searchThread;
    // Every walk not yet joined (a released one may still be stopping).
    std::vector<std::pair<std::shared_ptr<BLClipSearchThread>, std::thread>> m_threads;
    bool m_searching = false;
    bool m_isNotFoundPath = false;
};
