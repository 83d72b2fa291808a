#pragma once

#include "core/operations/IClipTransferView.h"

#include <QDialog>

class QLabel;
class QLineEdit;

// The copy and move dialog: the folder the takes come from, a prompt, the name
// of the folder they go into (editable: a new name makes a new folder beside the
// one shown), OK and Cancel. OK, Cancel and Escape go through the controller,
// which ends the dialog.
class ClipTransferDialog : public QDialog, public IClipTransferView
{
    Q_OBJECT
public:
    // The name tells copy ("ClipCopy") from move ("ClipMove").
    explicit ClipTransferDialog(const QString& name, QWidget* parent = nullptr);

    QLabel* sourceField() const { return m_source; }
    QLineEdit* destinationField() const { return m_destination; }

    // IClipTransferView
    void setTitle(const QString& title) override;
    void setMessage(const QString& message) override;
    void setSource(const QString& name) override;
    void setDestination(const QString& name) override;
    QString destination() const override;
    int runModal(IClipTransferCtrl* ctrl) override;
    void endModal(int code) override;

    void accept() override;
    void reject() override;

private:
    QLabel* m_source;
    QLabel* m_message;
    QLineEdit* m_destination;
    IClipTransferCtrl* m_ctrl = nullptr;
};
