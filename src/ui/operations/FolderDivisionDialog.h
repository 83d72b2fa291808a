#pragma once

#include "core/operations/IFolderDivisionView.h"

#include <QDialog>

class QComboBox;
class QLabel;

// The folder-division dialog: the folder's name, the capacity of one disk in
// GB (chosen from the list or typed), Start and Cancel. Start, Cancel and
// Escape go through the controller, which ends the dialog.
class FolderDivisionDialog : public QDialog, public IFolderDivisionView
{
public:
    explicit FolderDivisionDialog(QWidget* parent = nullptr);

    QComboBox* sizeField() const { return m_size; }

    // IFolderDivisionView
    void setTitle(const QString& title) override;
    void setFolderName(const QString& name) override;
    void setCapacities(const QStringList& capacities, int selected) override;
    QString capacityText() const override;
    int runModal(BLFolderDivisionCtrl* ctrl) override;
    void endModal(int code) override;

    void accept() override;
    void reject() override;

private:
    QLabel* m_msg;
    QComboBox* m_size;
    BLFolderDivisionCtrl* m_ctrl = nullptr;
};
