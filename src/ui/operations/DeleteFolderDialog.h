#pragma once

#include "core/operations/IDeleteFolderView.h"

#include <QDialog>

class QLabel;
class QPushButton;

// The question before a folder is deleted: the message, the folder's name, and
// Yes and No buttons. No is the default, so Return does not delete.
class DeleteFolderDialog : public QDialog, public IDeleteFolderView
{
public:
    explicit DeleteFolderDialog(QWidget* parent = nullptr);

    QLabel* messageField() const { return m_message; }
    QLabel* folderField() const { return m_folder; }
    QPushButton* yesButton() const { return m_yes; }
    QPushButton* noButton() const { return m_no; }

    // IDeleteFolderView
    bool confirmDelete(const QString& message, const QString& folderName) override;

private:
    QLabel* m_message;
    QLabel* m_folder;
    QPushButton* m_yes;
    QPushButton* m_no;
};
