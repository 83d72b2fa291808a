#pragma once

#include <QString>
#include <QStringList>

#include <memory>

class BLOffloadThread;
class IOffloadView;

// File > Offload Card: the card folder copied into DEST/NAME for up to four
// destination folders chosen in the dialog. Start refuses a destination that
// cannot take the card (no room, the copy's folder exists) before anything is
// copied, then runs BLOffloadThread under the progress dialog and shows a
// summary per destination. Folder > Verify Folder checks a folder against its
// ASC MHL history and shows what differs. Main thread only.
class BLOffloadCtrl
{
public:
    static constexpr int kStopCodeOK = 1;
    static constexpr int kStopCodeCancel = 0;

    BLOffloadCtrl(IOffloadView* view, const QString& source);
    ~BLOffloadCtrl();

    // Runs the dialog; true when every destination verified.
    bool showModal();
    void onAdd();
    void onRemove();
    void onStart();
    void onCancel();

    // Adds a destination folder; false (told) when it is one too many or taken.
    bool addDestination(const QString& folder);
    const QStringList& destinations() const { return m_folders; }
    // The worker of the last run (null before one).
    const BLOffloadThread* lastRun() const { return m_worker.get(); }

    // The card's media name from its MEDIAPRO.XML, else the folder's name.
    static QString defaultName(const QString& source);
    // Why the copy of source at folder/name cannot be made ("" when it can);
    // taken: the copies already planned.
    static QString destinationProblem(const QString& source, const QString& folder, const QString& name,
                                      const QStringList& taken);
    // The folder checked against its history, under the progress dialog; the
    // report is shown. True when everything listed matched.
    static bool verifyFolder(const QString& folder);

private:
    void showDestinations();
    // "" when every destination has room for its copies, else the refusal.
    QString roomProblem() const;
    void showSummary();

    IOffloadView* m_view;
    QString m_source;
    qint64 m_cardSize = 0;
    QStringList m_folders;
    std::shared_ptr<BLOffloadThread> m_worker;
    bool m_verified = false;
};
