#pragma once

#include "core/services/IProgressView.h"

class QEventLoop;

// A progress dialog without a window: it keeps what a window would show and
// runs the modal session as a local event loop, so the progress protocol works
// in tests and command-line tools exactly as under the GUI.
class BLHeadlessProgressView : public IProgressView
{
public:
    void setTitle(const QString& title) override { m_title = title; }
    void setMessage(const QString& message) override { m_message = message; }
    void setDeterminate(double value, double min, double max) override;
    void setIndeterminate() override { m_determinate = false; }
    void setCancelEnabled(bool enabled) override { m_cancelEnabled = enabled; }
    void runModal(BLProgressCtrl* controller) override;
    void endModal() override;

    // The Cancel button: asks the controller to cancel when it is enabled.
    void pressCancel();

    QString title() const { return m_title; }
    QString message() const { return m_message; }
    double value() const { return m_value; }
    double minimum() const { return m_min; }
    double maximum() const { return m_max; }
    bool isDeterminate() const { return m_determinate; }
    bool isCancelEnabled() const { return m_cancelEnabled; }
    bool isVisible() const { return m_loop != nullptr; }

private:
    QString m_title;
    QString m_message;
    double m_value = 0;
    double m_min = 0;
    double m_max = 0;
    bool m_determinate = false;
    bool m_cancelEnabled = true;
    BLProgressCtrl* m_controller = nullptr;
    QEventLoop* m_loop = nullptr;
};
