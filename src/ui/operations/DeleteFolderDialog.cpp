#include "ui/operations/DeleteFolderDialog.h"

#include "ui/common/LocalizedTitle.h"

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QStyle>
#include <QVBoxLayout>

DeleteFolderDialog::DeleteFolderDialog(QWidget* parent)
    : QDialog(parent), m_message(new QLabel(this)), m_folder(new QLabel(this)),
      m_yes(new QPushButton(QStringLiteral("BTN_STYLE_YES"), this)),
      m_no(new QPushButton(QStringLiteral("BTN_STYLE_NO"), this))
{
    setObjectName(QStringLiteral("DeleteFolder"));
    setWindowTitle(QStringLiteral("LOCALIZED_FOLDER_DELETE_TITLE"));
    m_message->setObjectName(QStringLiteral("message"));
    m_folder->setObjectName(QStringLiteral("folder"));
    m_message->setWordWrap(true);
    m_message->setMinimumWidth(360);
    m_folder->setTextFormat(Qt::PlainText);
    QFont bold = m_folder->font();
    bold.setBold(true);
    m_folder->setFont(bold);

    auto* icon = new QLabel(this);
    const int size = style()->pixelMetric(QStyle::PM_MessageBoxIconSize, nullptr, this);
    icon->setPixmap(style()->standardIcon(QStyle::SP_MessageBoxWarning, nullptr, this).pixmap(size, size));
    icon->setAlignment(Qt::AlignTop);

    auto* buttons = new QDialogButtonBox(this);
    buttons->addButton(m_yes, QDialogButtonBox::AcceptRole);
    buttons->addButton(m_no, QDialogButtonBox::RejectRole);
    m_yes->setAutoDefault(false);
    m_no->setDefault(true);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* text = new QVBoxLayout;
    text->addWidget(m_message);
    text->addWidget(m_folder);
    auto* row = new QHBoxLayout;
    row->addWidget(icon);
    row->addLayout(text, 1);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(row);
    layout->addWidget(buttons);

    localizedTitleByObject(this);
}

bool DeleteFolderDialog::confirmDelete(const QString& message, const QString& folderName)
{
    m_message->setText(message);
    m_folder->setText(folderName);
    m_no->setFocus();
    return exec() == QDialog::Accepted;
}
