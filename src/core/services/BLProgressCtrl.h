#pragma once

#include <QObject>
#include <QString>

#include <memory>

class BLHeadlessProgressView;
class BLProgressThread;
class IProgressView;

// Runs one long operation: its worker on a thread of its own while the shared
// modal progress dialog is up, or directly on the main thread without the
// dialog. Main thread only. Workers reach it through BLProgressThread.
class BLProgressCtrl : public QObject
{
public:
    static BLProgressCtrl* sharedCtrl();
    static void releaseCtrl();

    // The dialog runs are shown in (not owned); nullptr selects the built-in
    // headless view.
    void setView(IProgressView* view);
    IProgressView* view() const;

    // The one entry point of an operation: runs the worker with the dialog
    // (enable) or without it. Answers whether the worker ended cancelled.
    bool showProgress(std::shared_ptr<BLProgressThread> worker, bool enable);

    // The Cancel button: asks the worker to stop and disables the button.
    void onCancel();
    // The dialog is on screen: the worker may begin.
    void windowDidBecomeMain();

    // The dialog's title and message are localisation keys (or literal texts).
    void setTitle(const QString& title);
    void setMessage(const QString& message);
    // Determinate when max is above min; otherwise an animated indeterminate bar.
    void setProgress(double value, double min, double max);
    void setCancelEnable(bool enabled);
    // The worker's result: ends the modal session when the dialog is shown.
    void setThreadResult(bool cancelled);
    // A worker's thread has ended: its result counts only while it is the
    // worker of the current run.
    void threadDidEnd(const BLProgressThread* worker, bool cancelled);
    bool isCancel() const { return m_isCancel; }
    bool getShowProgressWindow() const { return m_isShowProgress; }
    void setShowProgressWindow(bool show) { m_isShowProgress = show; }

private:
    BLProgressCtrl();
    ~BLProgressCtrl() override;

    IProgressView* m_view = nullptr;
    std::unique_ptr<BLHeadlessProgressView> m_headlessView;
    std::shared_ptr<BLProgressThread> m_progressThread;
    bool m_isCancel = false;
    bool m_isShowProgress = false;
};
