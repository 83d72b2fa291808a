#pragma once

#include <QString>

#include <atomic>
#include <memory>
#include <mutex>

class BLProgressCtrl;

// Base of every worker run under the progress dialog. A worker overrides
// loopProcess (the work, which checks isCancel between steps and pauses with
// waitThread) and the initial dialog values. Updates of the dialog are
// forwarded to the main thread without waiting. Workers are owned by
// shared_ptr: the run and the worker's thread each hold it.
class BLProgressThread : public std::enable_shared_from_this<BLProgressThread>
{
public:
    virtual ~BLProgressThread() = default;

    // ---- overridden by workers ----
    virtual QString getInitTitle();
    virtual QString getInitMessage();
    virtual void getInitProgress(double* value, double* min, double* max);
    virtual bool getInitCancelEnable();
    // The work. The base only pauses up to 50 times unless cancelled.
    virtual void loopProcess();
    // The pause between steps: 100 ms.
    virtual void waitThread();

    // ---- run ----
    // Entry of the worker's thread: waits for setStart, works, hands over the result.
    void startThread(BLProgressCtrl* ctrl);
    // The run without dialog, on the calling (main) thread.
    void startByMainThread(BLProgressCtrl* ctrl);

    void setStart();
    bool isStart();
    void setCancel();
    bool isCancel();

    // ---- dialog updates (from the worker's thread) ----
    void setTitle(const QString& title);
    void setMessage(const QString& message);
    // Stores the values; the main thread shows the latest ones.
    void setProgress(double value, double min, double max);
    void setCancelEnable(bool enabled);

    // Ends the run: sets the process flag and hands the cancel flag to the controller.
    void setThreadResult();
    void setProcessFlag(bool flag) { m_processFlag = flag; }
    bool getProcessFlag() const { return m_processFlag; }

protected:
    double progressValue() const { return m_progressValue; }
    double progressMin() const { return m_progressMin; }
    double progressMax() const { return m_progressMax; }

private:
    void setProgressOnMainThread();

    bool m_isStart = false;
    bool m_isCancel = false;
    std::mutex m_startLock;
    std::mutex m_cancelLock;
    BLProgressCtrl* m_progressCtrl = nullptr;
    std::atomic<double> m_progressValue{0};
    std::atomic<double> m_progressMin{0};
    std::atomic<double> m_progressMax{0};
    std::atomic<bool> m_processFlag{false};
};
