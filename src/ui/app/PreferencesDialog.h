#pragma once

#include "core/app/IPreferencesView.h"

#include <QDialog>

class BLPreferencesCtrl;
class QButtonGroup;
class QCheckBox;
class QComboBox;
class QLineEdit;

// The Preferences dialog: date order, date separator, preview resolution, a
// sample of the date as it will be shown, and whether copies are verified. OK and Cancel go through the
// controller, which ends the dialog.
class PreferencesDialog : public QDialog, public IPreferencesView
{
public:
    explicit PreferencesDialog(QWidget* parent = nullptr);

    void setController(BLPreferencesCtrl* ctrl) { m_ctrl = ctrl; }

    QButtonGroup* orderDateGroup() const { return m_orderDate; }
    QButtonGroup* orderResolutionGroup() const { return m_orderResolution; }
    QComboBox* pauseCharPopUp() const { return m_pauseChar; }
    QLineEdit* sampleField() const { return m_sampleText; }
    QCheckBox* verifyCopyBox() const { return m_verifyCopy; }

    // IPreferencesView
    int dateOrderRow() const override;
    void setDateOrderRow(int row) override;
    bool selectSeparator(const QString& title) override;
    QString selectedSeparator() const override;
    int resolutionRow() const override;
    void setResolutionRow(int row) override;
    bool verifyCopy() const override;
    void setVerifyCopy(bool verify) override;
    void setSampleText(const QString& text) override;
    int runModal() override;
    void endModal(int code) override;

    void accept() override;
    void reject() override;

private:
    void changed();

    BLPreferencesCtrl* m_ctrl = nullptr;
    QButtonGroup* m_orderDate;
    QButtonGroup* m_orderResolution;
    QComboBox* m_pauseChar;
    QLineEdit* m_sampleText;
    QCheckBox* m_verifyCopy;
};
