#pragma once

#include "core/operations/IClipPropertyView.h"

#include <QDialog>

class QLabel;
class QLineEdit;
class QPlainTextEdit;

// The clip property dialog ("ClipProperty"): the take's picture and
// properties, with title, alias, description and creator editable. OK,
// Cancel and Escape go through the controller, which ends the dialog.
class ClipPropertyDialog : public QDialog, public IClipPropertyView
{
public:
    explicit ClipPropertyDialog(QWidget* parent = nullptr);

    QLineEdit* lineEdit(Field field) const;
    QPlainTextEdit* descriptionEdit() const { return m_description; }
    QLabel* label(Field field) const { return m_labels[field]; }
    QLabel* pictureLabel() const { return m_picture; }

    // IClipPropertyView
    void setTitle(const QString& title) override;
    void setPicture(const QImage& picture) override;
    void setField(Field field, const QString& text) override;
    QString field(Field field) const override;
    int runModal(BLClipPropertyCtrl* ctrl) override;
    void endModal(int code) override;

    void accept() override;
    void reject() override;

private:
    QLabel* m_picture;
    QLineEdit* m_usAscii;
    QLineEdit* m_valueAlias;
    QPlainTextEdit* m_description;
    QLineEdit* m_creator;
    QLabel* m_labels[FieldCount] = {};
    BLClipPropertyCtrl* m_ctrl = nullptr;
};
