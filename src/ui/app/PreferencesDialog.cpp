#include "ui/app/PreferencesDialog.h"

#include "core/app/BLPreferencesCtrl.h"
#include "core/services/BLLocalizedStrings.h"
#include "ui/common/LocalizedTitle.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

namespace {
// A group box of radio buttons, one per title, numbered by row.
QGroupBox* radioRows(const QString& title, const QStringList& rows, QButtonGroup* group, QWidget* parent)
{
    auto* box = new QGroupBox(title, parent);
    auto* layout = new QVBoxLayout(box);
    for (int row = 0; row < rows.size(); ++row) {
        auto* button = new QRadioButton(rows[row], box);
        group->addButton(button, row);
        layout->addWidget(button);
    }
    return box;
}
} // namespace

PreferencesDialog::PreferencesDialog(QWidget* parent)
    : QDialog(parent), m_orderDate(new QButtonGroup(this)), m_orderResolution(new QButtonGroup(this)),
      m_pauseChar(new QComboBox(this)), m_sampleText(new QLineEdit(this)),
      m_verifyCopy(new QCheckBox(QStringLiteral("Verify copied files"), this))
{
    setWindowTitle(QStringLiteral("Preferences"));
    auto* layout = new QVBoxLayout(this);

    layout->addWidget(radioRows(QStringLiteral("Date order"),
                                {QStringLiteral("Year, month, day"), QStringLiteral("Day, month, year"),
                                 QStringLiteral("Month, day, year")},
                                m_orderDate, this));
    auto* form = new QFormLayout;
    m_pauseChar->addItems({QStringLiteral("/"), QStringLiteral("-"), QStringLiteral(".")});
    form->addRow(new QLabel(QStringLiteral("Date separator:"), this), m_pauseChar);
    m_sampleText->setReadOnly(true);
    form->addRow(new QLabel(QStringLiteral("Sample:"), this), m_sampleText);
    layout->addLayout(form);

    layout->addWidget(radioRows(QStringLiteral("Preview resolution"),
                                {QStringLiteral("Full"), QStringLiteral("Half"), QStringLiteral("Quarter")},
                                m_orderResolution, this));
    layout->addWidget(m_verifyCopy);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    buttons->button(QDialogButtonBox::Ok)->setText(BLLocalizedString(QStringLiteral("BTN_STYLE_OK")));
    buttons->button(QDialogButtonBox::Cancel)->setText(BLLocalizedString(QStringLiteral("BTN_STYLE_CANCEL")));
    connect(buttons, &QDialogButtonBox::accepted, this, &PreferencesDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &PreferencesDialog::reject);
    layout->addWidget(buttons);

    for (QButtonGroup* group : {m_orderDate, m_orderResolution})
        connect(group, &QButtonGroup::idToggled, this, [this](int, bool checked) {
            if (checked)
                changed();
        });
    connect(m_pauseChar, &QComboBox::currentIndexChanged, this, &PreferencesDialog::changed);

    localizedTitleByObject(this);
}

int PreferencesDialog::dateOrderRow() const
{
    return std::max(m_orderDate->checkedId(), 0);
}

void PreferencesDialog::setDateOrderRow(int row)
{
    if (QAbstractButton* button = m_orderDate->button(row))
        button->setChecked(true);
}

bool PreferencesDialog::selectSeparator(const QString& title)
{
    const int index = m_pauseChar->findText(title, Qt::MatchExactly);
    if (index < 0)
        return false;
    m_pauseChar->setCurrentIndex(index);
    return true;
}

QString PreferencesDialog::selectedSeparator() const
{
    return m_pauseChar->currentText();
}

int PreferencesDialog::resolutionRow() const
{
    return std::max(m_orderResolution->checkedId(), 0);
}

void PreferencesDialog::setResolutionRow(int row)
{
    if (QAbstractButton* button = m_orderResolution->button(row))
        button->setChecked(true);
}

bool PreferencesDialog::verifyCopy() const
{
    return m_verifyCopy->isChecked();
}

void PreferencesDialog::setVerifyCopy(bool verify)
{
    m_verifyCopy->setChecked(verify);
}

void PreferencesDialog::setSampleText(const QString& text)
{
    m_sampleText->setText(text);
}

int PreferencesDialog::runModal()
{
    return exec();
}

void PreferencesDialog::endModal(int code)
{
    done(code);
}

void PreferencesDialog::accept()
{
    if (m_ctrl)
        m_ctrl->onOK();
    else
        QDialog::accept();
}

void PreferencesDialog::reject()
{
    if (m_ctrl)
        m_ctrl->onCancel();
    else
        QDialog::reject();
}

void PreferencesDialog::changed()
{
    if (m_ctrl)
        m_ctrl->onChanged();
}
