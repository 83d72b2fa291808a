#pragma once

#include "core/operations/IFolderCombineView.h"

#include <QDialog>

class QCheckBox;
class QLabel;
class QPushButton;
class QTableWidget;

// The folder-combine dialog: the destination's name, the folders beside it
// with a tick each, the switch to delete the emptied folders, Start and
// Cancel. Ticks, Start, Cancel and Escape go through the controller.
class FolderCombineDialog : public QDialog, public IFolderCombineView
{
public:
    explicit FolderCombineDialog(QWidget* parent = nullptr);

    QTableWidget* table() const { return m_tableView; }
    QCheckBox* deleteBox() const { return m_delSwitch; }
    QPushButton* okButton() const { return m_okButton; }

    // IFolderCombineView
    void setTitle(const QString& title) override;
    void setDestination(const QString& name) override;
    void setRows(const QList<QVariantMap>& rows) override;
    QList<QVariantMap> rows() const override;
    bool deleteSwitch() const override;
    void setOkEnabled(bool enabled) override;
    int runModal(BLFolderCombineCtrl* ctrl) override;
    void endModal(int code) override;

    void accept() override;
    void reject() override;

private:
    QLabel* m_destination;
    QTableWidget* m_tableView;
    QCheckBox* m_delSwitch;
    QPushButton* m_okButton;
    QList<QVariantMap> m_rows;
    BLFolderCombineCtrl* m_ctrl = nullptr;
};
