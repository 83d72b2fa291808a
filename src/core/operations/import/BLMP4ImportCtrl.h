#pragma once

#include "core/operations/import/DOMP4Import.h"
#include "core/operations/import/IMP4ImportView.h"

#include <QByteArray>
#include <QDateTime>
#include <QMap>
#include <QStringList>

#include <functional>
#include <memory>
#include <optional>

class BLMP4ImportThread;
class IOperationPane;

// The import of MP4 files into a work folder: the dialog that lists the files,
// the checks of each file as it joins the list and of the whole list on OK
// (each refusal shown and logged), and the steps run under the progress
// dialog: per file a clip folder named from the import time, the MP4 put in
// place (copied, verified when the setting says so, or moved when it lies
// loose in the destination's CLPR folder), its take record and its M01.XML;
// then MEDIAPRO.XML and CUEUP.XML. A cancel or a failure undoes every file
// (a moved file goes back where it was) and leaves the index files as they
// were. Without a view (the command-line tool) the same checks and steps run
// on files given. Main thread only; doImportWithThread runs on the worker.
class BLMP4ImportCtrl : public IMP4ImportCtrl
{
public:
    static constexpr int kStopCodeImport = 1;
    static constexpr int kStopCodeCancel = 0;

    // The import's destination is its to-import folder, else the pane's
    // selected folder. The view and the pane may be null.
    BLMP4ImportCtrl(IMP4ImportView* view, const DOMP4Import& import, IOperationPane* pane);
    ~BLMP4ImportCtrl() override;

    // The clock that dates the import (the current time unless set).
    void setClock(std::function<QDateTime()> clock) { m_clock = std::move(clock); }
    // Whether copies are verified (the setting, unless changed here).
    void setVerify(bool verify) { m_verify = verify; }

    // Opens the dialog with the MP4 files of the selected takes and the files
    // given (each through the checks of Add) and imports when it ends with
    // OK. True when every file was imported.
    bool showModal(const QList<DOTakeData>& takes, const QStringList& files = {});
    // Without the dialog: the files join the list through the checks of Add;
    // false when one was refused.
    bool addFiles(const QStringList& files);
    // The import of the listed files: the checks of OK, the worker, the
    // notifications. True when every file was imported.
    bool execImport();

    const QStringList& getFileList() const { return m_arrayList; }
    const DOMP4Import& getImport() const { return m_import; }
    QString destination() const;
    // Whether the last run was cancelled.
    bool isCancelled() const { return m_cancelled; }

    // ---- dialog actions ----
    void onSearch() override;
    void onAdd() override;
    void onDelete() override;
    void onOK() override;
    void onCancel() override;

    // ---- checks (each refusal shown and logged) ----
    // A file joining the list: given, a usable name, short enough, an MP4
    // extension, an existing file, not listed already.
    bool objectCheck(const QString& path);
    // A file against the destination, before the worker starts.
    bool systemCheck(const QString& path);
    // The file passes the MP4 checker; BLBIMCtrl then holds its facts.
    bool checkMP4(const QString& path);

    // ---- the worker's steps ----
    bool doImportWithThread(BLMP4ImportThread* thread);
    // The 1-based file's clip folder, made with the card's fixed folders.
    bool createClipFolder(int number);
    QString createClipFolderPath(const QString& folder, int number) const;
    // 0 done, 2 failed, 3 cancelled, BLCommon::kCopyNotVerified.
    int copyImportFile(BLMP4ImportThread* thread, const QString& from, qint64 max);
    int moveImportFile(BLMP4ImportThread* thread, const QString& from, DOClipCtrl& clipCtrl);
    bool createNonMetaForImportFile(const QString& nowFile, DOTakeData& take);
    bool createMediaProfile(const DOClipCtrl& clipCtrl);
    bool createCueup();
    // Undoes the first count files: a copy's clip folder is removed, a moved
    // file goes back where it was before its clip folder is removed; then the
    // index files and fixed folders are restored as they were.
    void processCancel(const QList<DOClipCtrl>& clipCtrls, int count, const QStringList& mp4Files);
    void setProcessFlag(quint8 flag) { m_ProcessFlag = flag; }
    quint8 getProcessFlag() const { return m_ProcessFlag; }

    // Whether the file lies directly in the destination's CLPR folder (it is
    // then moved, not copied).
    bool isInDestinationCLPR(const QString& path) const;

protected:
    // The worker of a run.
    virtual std::shared_ptr<BLMP4ImportThread> createImportThread();

private:
    void modalPreParation(const QList<DOTakeData>& takes, const QStringList& files);
    bool createObject(const QString& path);
    void updateView();
    // The take record a moved file continues: the selected take of that MP4
    // name, else the folder's take of that name (marked), else a new one.
    DOTakeData takeForMovedFile(const QString& path) const;
    // Keeps MEDIAPRO.XML and CUEUP.XML, and which fixed folders exist, so
    // that a roll-back can put them back.
    void keepIndexes();
    void restoreIndexes();

    IMP4ImportView* m_view;
    IOperationPane* m_mediaInfo;
    QStringList m_arrayList;
    DOMP4Import m_import;
    bool m_search = false;
    quint8 m_ProcessFlag = 0;
    bool m_verify;
    bool m_cancelled = false;
    std::function<QDateTime()> m_clock;
    // Of the destination before the run: the folder's takes, the index
    // files' bytes (none when missing) and the fixed folders missing.
    QList<DOTakeData> m_beforeTakes;
    // The takes the pane showed when the run began.
    QList<DOTakeData> m_paneTakes;
    QMap<QString, std::optional<QByteArray>> m_keptIndexes;
    QStringList m_missingFolders;
    qint64 m_doneMiB = 0;
};
