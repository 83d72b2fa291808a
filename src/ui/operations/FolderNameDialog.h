#pragma once

#include "core/operations/IFolderNameView.h"

#include <QDialog>

class QLabel;
class QLineEdit;

// The folder-name dialog of New Folder and Rename Folder: a prompt, the
// location, the name field, OK and Cancel. OK, Cancel and Escape go through
// the controller, which ends the dialog.
class FolderNameDialog : public QDialog, public IFolderNameView
{
public:
    explicit FolderNameDialog(QWidget* parent = nullptr);

    QLineEdit* nameField() const { return m_inputFolderName; }
    QLabel* locationField() const { return m_folderPath; }

    // IFolderNameView
    void setTitle(const QString& title) override;
    void setMessage(const QString& message) override;
    void setFolderPath(const QString& location) override;
    void setInputFolderName(const QString& name) override;
    QString inputFolderName() const override;
    int runModal(BLFolderNameCtrl* ctrl) override;
    void endModal(int code) override;

    void accept() override;
    void reject() override;

private:
    QLabel* m_message;
    QLabel* m_folderPath;
    QLineEdit* m_inputFolderName;
    BLFolderNameCtrl* m_ctrl = nullptr;
};
