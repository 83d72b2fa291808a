#pragma once

#include "core/operations/IMediaNameChangeView.h"

#include <QDialog>

class QLineEdit;

// The media-name dialog: one name field, OK and Cancel, which go through the
// controller.
class MediaNameChangeDialog : public QDialog, public IMediaNameChangeView
{
public:
    explicit MediaNameChangeDialog(QWidget* parent = nullptr);

    QLineEdit* nameField() const { return m_mediaName; }

    // IMediaNameChangeView
    void setTitle(const QString& title) override;
    void setMediaName(const QString& name) override;
    QString mediaName() const override;
    int runModal(BLMediaNameChangeCtrl* ctrl) override;
    void endModal(int code) override;

    void accept() override;
    void reject() override;

private:
    QLineEdit* m_mediaName;
    BLMediaNameChangeCtrl* m_ctrl = nullptr;
};
