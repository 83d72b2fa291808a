#pragma once

#include "core/services/IProgressView.h"

#include <QDialog>

class QLabel;
class QProgressBar;
class QPushButton;

// The shared progress dialog: a message line, a bar and a Cancel button,
// window-modal on its parent (application-modal without one). Only the
// controller closes it; Escape and the window's close button act as Cancel.
class ProgressDialog : public QDialog, public IProgressView
{
public:
    explicit ProgressDialog(QWidget* parent = nullptr);

    void setTitle(const QString& title) override;
    void setMessage(const QString& message) override;
    void setDeterminate(double value, double min, double max) override;
    void setIndeterminate() override;
    void setCancelEnabled(bool enabled) override;
    void runModal(BLProgressCtrl* controller) override;
    void endModal() override;

    void reject() override;

protected:
    void showEvent(QShowEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    static constexpr int kSteps = 1000; // resolution of the determinate bar

    QLabel* m_message;
    QProgressBar* m_progress;
    QPushButton* m_cancel;
    BLProgressCtrl* m_controller = nullptr;
};
