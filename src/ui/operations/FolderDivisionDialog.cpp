#include "ui/operations/FolderDivisionDialog.h"

#include "core/operations/BLFolderDivisionCtrl.h"
#include "core/services/BLLocalizedStrings.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

FolderDivisionDialog::FolderDivisionDialog(QWidget* parent)
    : QDialog(parent), m_msg(new QLabel(this)), m_size(new QComboBox(this))
{
    setObjectName(QStringLiteral("FolderDivision"));
    m_msg->setObjectName(QStringLiteral("msg"));
    m_size->setObjectName(QStringLiteral("size"));
    m_msg->setTextFormat(Qt::PlainText);
    m_size->setEditable(true);
    m_size->setInsertPolicy(QComboBox::NoInsert);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    buttons->button(QDialogButtonBox::Ok)->setText(BLLocalizedString(QStringLiteral("BTN_STYLE_START")));
    buttons->button(QDialogButtonBox::Cancel)->setText(BLLocalizedString(QStringLiteral("BTN_STYLE_CANCEL")));
    connect(buttons, &QDialogButtonBox::accepted, this, &FolderDivisionDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &FolderDivisionDialog::reject);

    auto* form = new QFormLayout;
    form->addRow(BLLocalizedString(QStringLiteral("LOCALIZED_FOLDER_DIVISION_FOLDER")), m_msg);
    form->addRow(BLLocalizedString(QStringLiteral("LOCALIZED_FOLDER_DIVISION_SIZE")), m_size);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(buttons);
}

void FolderDivisionDialog::setTitle(const QString& title)
{
    setWindowTitle(title);
}

void FolderDivisionDialog::setFolderName(const QString& name)
{
    m_msg->setText(name);
}

void FolderDivisionDialog::setCapacities(const QStringList& capacities, int selected)
{
    m_size->clear();
    m_size->addItems(capacities);
    m_size->setCurrentIndex(selected);
}

QString FolderDivisionDialog::capacityText() const
{
    return m_size->currentText();
}

int FolderDivisionDialog::runModal(BLFolderDivisionCtrl* ctrl)
{
    m_ctrl = ctrl;
    m_size->setFocus();
    const int code = exec();
    m_ctrl = nullptr;
    return code;
}

void FolderDivisionDialog::endModal(int code)
{
    done(code);
}

void FolderDivisionDialog::accept()
{
    if (m_ctrl)
        m_ctrl->onStart();
    else
        QDialog::accept();
}

void FolderDivisionDialog::reject()
{
    if (m_ctrl)
        m_ctrl->onCancel();
    else
        QDialog::reject();
}
