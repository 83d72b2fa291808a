#include "ui/operations/OffloadDialog.h"

#include "core/operations/offload/BLOffloadCtrl.h"
#include "core/services/BLLocalizedStrings.h"

#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

OffloadDialog::OffloadDialog(QWidget* parent)
    : QDialog(parent), m_source(new QLabel(this)), m_destinations(new QListWidget(this)),
      m_add(new QPushButton(BLLocalizedString(QStringLiteral("LOCALIZED_OFFLOAD_ADD")), this))
{
    setObjectName(QStringLiteral("Offload"));
    setWindowTitle(BLLocalizedString(QStringLiteral("LOCALIZED_OFFLOAD_TITLE")));
    m_source->setObjectName(QStringLiteral("source"));
    m_destinations->setObjectName(QStringLiteral("destinations"));
    m_add->setObjectName(QStringLiteral("add"));
    m_source->setTextFormat(Qt::PlainText);
    auto* remove = new QPushButton(BLLocalizedString(QStringLiteral("LOCALIZED_OFFLOAD_REMOVE")), this);
    remove->setObjectName(QStringLiteral("remove"));
    connect(m_add, &QPushButton::clicked, this, [this] {
        if (m_ctrl)
            m_ctrl->onAdd();
    });
    connect(remove, &QPushButton::clicked, this, [this] {
        if (m_ctrl)
            m_ctrl->onRemove();
    });

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    buttons->button(QDialogButtonBox::Ok)->setText(BLLocalizedString(QStringLiteral("BTN_STYLE_START")));
    buttons->button(QDialogButtonBox::Cancel)->setText(BLLocalizedString(QStringLiteral("BTN_STYLE_CANCEL")));
    connect(buttons, &QDialogButtonBox::accepted, this, &OffloadDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &OffloadDialog::reject);

    auto* listButtons = new QHBoxLayout;
    listButtons->addWidget(m_add);
    listButtons->addWidget(remove);
    listButtons->addStretch();
    auto* form = new QFormLayout;
    form->addRow(BLLocalizedString(QStringLiteral("LOCALIZED_OFFLOAD_CARD")), m_source);
    form->addRow(BLLocalizedString(QStringLiteral("LOCALIZED_OFFLOAD_COPY_TO")), m_destinations);
    form->addRow(QString(), listButtons);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(buttons);
}

void OffloadDialog::setSource(const QString& text)
{
    m_source->setText(text);
}

void OffloadDialog::setDestinations(const QStringList& lines)
{
    m_destinations->clear();
    m_destinations->addItems(lines);
}

int OffloadDialog::selectedDestination() const
{
    return m_destinations->currentRow();
}

void OffloadDialog::setAddEnabled(bool enabled)
{
    m_add->setEnabled(enabled);
}

QString OffloadDialog::chooseFolder()
{
    return QFileDialog::getExistingDirectory(this, QString(), QString(), QFileDialog::ShowDirsOnly);
}

int OffloadDialog::runModal(BLOffloadCtrl* ctrl)
{
    m_ctrl = ctrl;
    m_add->setFocus();
    const int code = exec();
    m_ctrl = nullptr;
    return code;
}

void OffloadDialog::endModal(int code)
{
    done(code);
}

void OffloadDialog::accept()
{
    if (m_ctrl)
        m_ctrl->onStart();
    else
        QDialog::accept();
}

void OffloadDialog::reject()
{
    if (m_ctrl)
        m_ctrl->onCancel();
    else
        QDialog::reject();
}
