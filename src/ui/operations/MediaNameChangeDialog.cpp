#include "ui/operations/MediaNameChangeDialog.h"

#include "core/operations/BLMediaNameChangeCtrl.h"
#include "core/services/BLLocalizedStrings.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

MediaNameChangeDialog::MediaNameChangeDialog(QWidget* parent)
    : QDialog(parent), m_mediaName(new QLineEdit(this))
{
    setObjectName(QStringLiteral("MediaNameChange"));
    m_mediaName->setMinimumWidth(320);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    buttons->button(QDialogButtonBox::Ok)->setText(BLLocalizedString(QStringLiteral("BTN_STYLE_OK")));
    buttons->button(QDialogButtonBox::Cancel)->setText(BLLocalizedString(QStringLiteral("BTN_STYLE_CANCEL")));
    connect(buttons, &QDialogButtonBox::accepted, this, &MediaNameChangeDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &MediaNameChangeDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(new QLabel(BLLocalizedString(QStringLiteral("LOCALIZED_MEDIA_NAME_MESSAGE")), this));
    layout->addWidget(m_mediaName);
    layout->addWidget(buttons);
}

void MediaNameChangeDialog::setTitle(const QString& title)
{
    setWindowTitle(title);
}

void MediaNameChangeDialog::setMediaName(const QString& name)
{
    m_mediaName->setText(name);
    m_mediaName->selectAll();
}

QString MediaNameChangeDialog::mediaName() const
{
    return m_mediaName->text();
}

int MediaNameChangeDialog::runModal(BLMediaNameChangeCtrl* ctrl)
{
    m_ctrl = ctrl;
    m_mediaName->setFocus();
    const int code = exec();
    m_ctrl = nullptr;
    return code;
}

void MediaNameChangeDialog::endModal(int code)
{
    done(code);
}

void MediaNameChangeDialog::accept()
{
    if (m_ctrl)
        m_ctrl->onOK();
    else
        QDialog::accept();
}

void MediaNameChangeDialog::reject()
{
    if (m_ctrl)
        m_ctrl->onCancel();
    else
        QDialog::reject();
}
