#pragma once

#include "core/operations/offload/IOffloadView.h"

#include <QDialog>

class QLabel;
class QListWidget;
class QPushButton;

// The offload dialog: the card folder, the destination folders with their
// free space, Add..., Remove, Start and Cancel. Every button and Escape go
// through the controller, which ends the dialog.
class OffloadDialog : public QDialog, public IOffloadView
{
public:
    explicit OffloadDialog(QWidget* parent = nullptr);

    // IOffloadView
    void setSource(const QString& text) override;
    void setDestinations(const QStringList& lines) override;
    int selectedDestination() const override;
    void setAddEnabled(bool enabled) override;
    QString chooseFolder() override;
    int runModal(BLOffloadCtrl* ctrl) override;
    void endModal(int code) override;

    void accept() override;
    void reject() override;

private:
    QLabel* m_source;
    QListWidget* m_destinations;
    QPushButton* m_add;
    BLOffloadCtrl* m_ctrl = nullptr;
};
