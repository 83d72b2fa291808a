#include "ui/operations/FolderNameDialog.h"

#include "core/operations/BLFolderNameCtrl.h"
#include "ui/common/LocalizedTitle.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

FolderNameDialog::FolderNameDialog(QWidget* parent)
    : QDialog(parent), m_message(new QLabel(this)), m_folderPath(new QLabel(this)),
      m_inputFolderName(new QLineEdit(this))
{
    setObjectName(QStringLiteral("FolderName"));
    m_message->setObjectName(QStringLiteral("message"));
    m_folderPath->setObjectName(QStringLiteral("folderPath"));
    m_inputFolderName->setObjectName(QStringLiteral("inputFolderName"));
    m_folderPath->setTextFormat(Qt::PlainText);
    m_inputFolderName->setMinimumWidth(320);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    buttons->button(QDialogButtonBox::Ok)->setText(QStringLiteral("BTN_STYLE_OK"));
    buttons->button(QDialogButtonBox::Cancel)->setText(QStringLiteral("BTN_STYLE_CANCEL"));
    connect(buttons, &QDialogButtonBox::accepted, this, &FolderNameDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &FolderNameDialog::reject);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_folderPath);
    layout->addWidget(m_message);
    layout->addWidget(m_inputFolderName);
    layout->addWidget(buttons);

    localizedTitleByObject(this);
}

void FolderNameDialog::setTitle(const QString& title)
{
    setWindowTitle(title);
}

void FolderNameDialog::setMessage(const QString& message)
{
    m_message->setText(message);
}

void FolderNameDialog::setFolderPath(const QString& location)
{
    m_folderPath->setText(location);
    m_folderPath->setVisible(!location.isEmpty());
}

void FolderNameDialog::setInputFolderName(const QString& name)
{
    m_inputFolderName->setText(name);
    m_inputFolderName->selectAll();
}

QString FolderNameDialog::inputFolderName() const
{
    return m_inputFolderName->text();
}

int FolderNameDialog::runModal(BLFolderNameCtrl* ctrl)
{
    m_ctrl = ctrl;
    m_inputFolderName->setFocus();
    const int code = exec();
    m_ctrl = nullptr;
    return code;
}

void FolderNameDialog::endModal(int code)
{
    done(code);
}

void FolderNameDialog::accept()
{
    if (m_ctrl)
        m_ctrl->OnOK();
    else
        QDialog::accept();
}

void FolderNameDialog::reject()
{
    if (m_ctrl)
        m_ctrl->OnCancel();
    else
        QDialog::reject();
}
