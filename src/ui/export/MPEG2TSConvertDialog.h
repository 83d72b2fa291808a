#pragma once

#include "core/operations/export/IMPEG2TSConvertView.h"

#include <QDialog>

class QLabel;
class QLineEdit;
class QProgressBar;
class QPushButton;

// The export dialog ("MPEG2TSConvert"): the destination (a file for one take,
// a folder for several) with Choose, the take counter, the message, the
// progress bar, and Start, Cancel (in Start's place while exporting) and
// Close. Escape acts as Close, and is ignored while exporting.
class MPEG2TSConvertDialog : public QDialog, public IMPEG2TSConvertView
{
    Q_OBJECT
public:
    explicit MPEG2TSConvertDialog(QWidget* parent = nullptr);

    QLineEdit* pathField() const { return m_path; }
    QLabel* counterField() const { return m_counter; }
    QLabel* messageField() const { return m_message; }
    QProgressBar* progressBar() const { return m_progress; }
    QPushButton* startButton() const { return m_start; }
    QPushButton* cancelButton() const { return m_cancel; }
    QPushButton* closeButton() const { return m_close; }
    QPushButton* chooseButton() const { return m_choose; }

    // IMPEG2TSConvertView
    void setDestinationLabel(const QString& text) override;
    void setPath(const QString& path) override;
    QString path() const override;
    void setCounter(const QString& text) override;
    void setMessage(const QString& text) override;
    void setProgress(int value) override;
    void setButtons(bool enabled, bool running) override;
    QString chooseFolder(const QString& start) override;
    void runModal(IMPEG2TSConvertCtrl* ctrl) override;
    void endModal() override;

    void reject() override;

private:
    QLabel* m_label;
    QLineEdit* m_path;
    QPushButton* m_choose;
    QLabel* m_counter;
    QLabel* m_message;
    QProgressBar* m_progress;
    QPushButton* m_start;
    QPushButton* m_cancel;
    QPushButton* m_close;
    IMPEG2TSConvertCtrl* m_ctrl = nullptr;
};
