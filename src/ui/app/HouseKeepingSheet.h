#pragma once

#include <QDialog>

class QProgressBar;

// The sheet that covers the main window while housekeeping checks and repairs
// a folder: a message and a busy bar. Only its owner closes it; the user
// cannot.
class HouseKeepingSheet : public QDialog
{
public:
    explicit HouseKeepingSheet(QWidget* parent);

    QProgressBar* progressBar() const { return m_hkProgress; }

    void reject() override {}

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    QProgressBar* m_hkProgress;
};
