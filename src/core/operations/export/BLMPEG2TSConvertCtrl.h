#pragma once

#include "core/card/DOTakeData.h"
#include "core/operations/export/DOMPEG2TSConvert.h"
#include "core/operations/export/IMPEG2TSConvertView.h"

#include <QList>
#include <QObject>
#include <QString>

#include <atomic>
#include <cstdint>
#include <thread>

// The export dialog: takes of a pane's folder become transport stream files,
// one "<take ID>.M2T" each, in a destination folder (or under a file name for
// a single take). Start checks the destination, then converts the takes one
// after the other on a thread of its own; the dialog closes when every take
// is done, and stays open after a failure or Cancel. Main thread only, except
// setStateCount.
class BLMPEG2TSConvertCtrl : public IMPEG2TSConvertCtrl
{
public:
    BLMPEG2TSConvertCtrl(DOMPEG2TSConvert& mpeg, IMPEG2TSConvertView* view);
    ~BLMPEG2TSConvertCtrl() override;

    // Shows the dialog for the takes (in pane order) of the folder until it closes.
    void showModal(const QString& folder, const QList<DOTakeData>& takes);

    void onOpenDialog() override;
    void onStart() override;
    void onCancel() override;
    void onClose() override;

    // The destination checks, in their order; each refusal is shown.
    bool checkExport(const QString& folder);
    bool checkExportDiscSpace(const QString& folder);
    QStringList getInputPath(int index) const;
    QString getOutputPath(int index) const;
    // 0 = Sunday.
    static int getCreationWeek(const QString& date);
    // The library's parameters for a take with this creation date, user bits and start.
    static mpeg2ts_convert_params_t makeConvertParams(const QString& creationDate, const QString& userBits,
                                                      int startFrames, int dropFlag);
    // The bar while take i (1-based) of n is at percent p.
    static int progressValue(int takeNumber, int takeCount, int percent);

    // From the library's thread: the current take is at percent.
    void setStateCount(int percent);
    void setDialogMessage(const QString& message);
    void setError(const QString& errStr);
    // The message of a library error code.
    void outputMessage(int error);
    void initializeMessage();
    void initializeProgress();
    void enableButtons();
    void disableButtons(bool running);

    bool isFinished() const { return m_finished; }
    bool isRunning() const { return m_thread.joinable(); }

private:
    void doTranscode();
    void doThread();
    // On the main thread once the thread has ended.
    void threadDidEnd(bool done);
    void joinThread();

    DOMPEG2TSConvert& m_mpeg;
    IMPEG2TSConvertView* m_view;
    QObject m_mainThread; // target of what the thread hands to the main thread
    QList<DOTakeData> m_takes;
    QString m_folder;
    QString m_exportFolder;
    QString m_singlePath; // the path field when a single take is exported
    std::atomic<int> m_takeCounter{0};
    int m_progressStart = 0;
    std::atomic<uint8_t> m_finished{0};
    std::atomic<uint8_t> m_cancelled{0};
    std::thread m_thread;
};
