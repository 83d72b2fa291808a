#include "ui/operations/ClipTransferDialog.h"

#include "ui/common/LocalizedTitle.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

ClipTransferDialog::ClipTransferDialog(const QString& name, QWidget* parent)
    : QDialog(parent), m_source(new QLabel(this)), m_message(new QLabel(this)),
      m_destination(new QLineEdit(this))
{
    setObjectName(name);
    m_source->setObjectName(QStringLiteral("source"));
    m_message->setObjectName(QStringLiteral("message"));
    m_destination->setObjectName(QStringLiteral("destination"));
    m_source->setTextFormat(Qt::PlainText);
    QFont bold = m_source->font();
    bold.setBold(true);
    m_source->setFont(bold);
    m_message->setWordWrap(true);
    m_destination->setMinimumWidth(320);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    buttons->button(QDialogButtonBox::Ok)->setText(QStringLiteral("BTN_STYLE_OK"));
    buttons->button(QDialogButtonBox::Cancel)->setText(QStringLiteral("BTN_STYLE_CANCEL"));
    connect(buttons, &QDialogButtonBox::accepted, this, &ClipTransferDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &ClipTransferDialog::reject);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_source);
    layout->addWidget(m_message);
    layout->addWidget(m_destination);
    layout->addWidget(buttons);

    localizedTitleByObject(this);
}

void ClipTransferDialog::setTitle(const QString& title)
{
    setWindowTitle(title);
}

void ClipTransferDialog::setMessage(const QString& message)
{
    m_message->setText(message);
}

void ClipTransferDialog::setSource(const QString& name)
{
    m_source->setText(name);
}

void ClipTransferDialog::setDestination(const QString& name)
{
    m_destination->setText(name);
    m_destination->selectAll();
}

QString ClipTransferDialog::destination() const
{
    return m_destination->text();
}

int ClipTransferDialog::runModal(IClipTransferCtrl* ctrl)
{
    m_ctrl = ctrl;
    m_destination->setFocus();
    const int code = exec();
    m_ctrl = nullptr;
    return code;
}

void ClipTransferDialog::endModal(int code)
{
    done(code);
}

void ClipTransferDialog::accept()
{
    if (m_ctrl)
        m_ctrl->onOK();
    else
        QDialog::accept();
}

void ClipTransferDialog::reject()
{
    if (m_ctrl)
        m_ctrl->onCancel();
    else
        QDialog::reject();
}
