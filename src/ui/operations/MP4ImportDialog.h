#pragma once

#include "core/operations/import/IMP4ImportView.h"

#include <QDialog>

class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;

// The import dialog ("MP4Import"): the destination folder, the list of MP4
// files to import, a path field with Search (a chooser that accepts several
// MP4 files) and Add, Delete for the selected file, OK and Cancel. The
// buttons, Return and Escape go through the controller, which ends the dialog.
class MP4ImportDialog : public QDialog, public IMP4ImportView
{
    Q_OBJECT
public:
    explicit MP4ImportDialog(QWidget* parent = nullptr);

    QListWidget* fileList() const { return m_list; }
    QLineEdit* pathField() const { return m_path; }
    QPushButton* addButton() const { return m_add; }
    QPushButton* deleteButton() const { return m_delete; }
    QPushButton* okButton() const { return m_ok; }

    // IMP4ImportView
    void setDestination(const QString& name) override;
    void setFileNames(const QStringList& names) override;
    int selectedRow() const override;
    QString pathText() const override;
    void setPathText(const QString& text) override;
    void setAddEnabled(bool enabled) override;
    void setDeleteEnabled(bool enabled) override;
    void setOKEnabled(bool enabled) override;
    QStringList chooseFiles() override;
    int runModal(IMP4ImportCtrl* ctrl) override;
    void endModal(int code) override;

    void accept() override;
    void reject() override;

private:
    QLabel* m_destination;
    QListWidget* m_list;
    QLineEdit* m_path;
    QPushButton* m_add;
    QPushButton* m_delete;
    QPushButton* m_ok;
    IMP4ImportCtrl* m_ctrl = nullptr;
    QString m_lastFolder;
};
