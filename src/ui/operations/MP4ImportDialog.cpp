#include "ui/operations/MP4ImportDialog.h"

#include "core/services/BLLocalizedStrings.h"
#include "ui/common/LocalizedTitle.h"

#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QStandardPaths>

MP4ImportDialog::MP4ImportDialog(QWidget* parent)
    : QDialog(parent), m_destination(new QLabel(this)), m_list(new QListWidget(this)),
      m_path(new QLineEdit(this)), m_add(new QPushButton(QStringLiteral("LOCALIZED_IMPORT_ADD"), this)),
      m_delete(new QPushButton(QStringLiteral("LOCALIZED_IMPORT_DELETE"), this))
{
    setObjectName(QStringLiteral("MP4Import"));
    setWindowTitle(QStringLiteral("LOCALIZED_IMPORT_TITLE"));
    m_destination->setObjectName(QStringLiteral("destination"));
    m_destination->setTextFormat(Qt::PlainText);
    QFont bold = m_destination->font();
    bold.setBold(true);
    m_destination->setFont(bold);
    m_list->setObjectName(QStringLiteral("files"));
    m_list->setSelectionMode(QAbstractItemView::SingleSelection);
    m_list->setMinimumSize(420, 160);
    m_path->setObjectName(QStringLiteral("path"));
    auto* search = new QPushButton(QStringLiteral("LOCALIZED_IMPORT_SEARCH"), this);
    m_add->setAutoDefault(false);
    search->setAutoDefault(false);
    m_delete->setAutoDefault(false);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    m_ok = buttons->button(QDialogButtonBox::Ok);
    m_ok->setText(QStringLiteral("BTN_STYLE_OK"));
    buttons->button(QDialogButtonBox::Cancel)->setText(QStringLiteral("BTN_STYLE_CANCEL"));
    connect(buttons, &QDialogButtonBox::accepted, this, &MP4ImportDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &MP4ImportDialog::reject);
    connect(search, &QPushButton::clicked, this, [this] {
        if (m_ctrl)
            m_ctrl->onSearch();
    });
    connect(m_add, &QPushButton::clicked, this, [this] {
        if (m_ctrl)
            m_ctrl->onAdd();
    });
    connect(m_delete, &QPushButton::clicked, this, [this] {
        if (m_ctrl)
            m_ctrl->onDelete();
    });
    connect(m_path, &QLineEdit::textChanged, this,
            [this](const QString& text) { m_add->setEnabled(!text.isEmpty()); });
    connect(m_path, &QLineEdit::returnPressed, m_add, &QPushButton::click);

    auto* layout = new QGridLayout(this);
    layout->addWidget(new QLabel(QStringLiteral("LOCALIZED_IMPORT_TO"), this), 0, 0);
    layout->addWidget(m_destination, 0, 1, 1, 2);
    layout->addWidget(m_list, 1, 0, 1, 3);
    layout->addWidget(m_delete, 2, 2);
    layout->addWidget(m_path, 3, 0, 1, 1);
    layout->addWidget(search, 3, 1);
    layout->addWidget(m_add, 3, 2);
    layout->addWidget(buttons, 4, 0, 1, 3);
    layout->setColumnStretch(0, 1);

    localizedTitleByObject(this);
}

void MP4ImportDialog::setDestination(const QString& name)
{
    m_destination->setText(name);
}

void MP4ImportDialog::setFileNames(const QStringList& names)
{
    const int row = m_list->currentRow();
    m_list->clear();
    m_list->addItems(names);
    if (!names.isEmpty())
        m_list->setCurrentRow(qBound(0, row, int(names.size()) - 1));
}

int MP4ImportDialog::selectedRow() const
{
    return m_list->currentRow();
}

QString MP4ImportDialog::pathText() const
{
    return m_path->text();
}

void MP4ImportDialog::setPathText(const QString& text)
{
    m_path->setText(text);
}

void MP4ImportDialog::setAddEnabled(bool enabled)
{
    m_add->setEnabled(enabled);
}

void MP4ImportDialog::setDeleteEnabled(bool enabled)
{
    m_delete->setEnabled(enabled);
}

void MP4ImportDialog::setOKEnabled(bool enabled)
{
    m_ok->setEnabled(enabled);
}

QStringList MP4ImportDialog::chooseFiles()
{
    if (m_lastFolder.isEmpty())
        m_lastFolder = QStandardPaths::writableLocation(QStandardPaths::MoviesLocation);
    const QStringList files = QFileDialog::getOpenFileNames(
        this, BLLocalizedString(QStringLiteral("LOCALIZED_IMPORT_CHOOSE")), m_lastFolder,
        BLLocalizedString(QStringLiteral("LOCALIZED_IMPORT_FILTER")) + QStringLiteral(" (*.MP4 *.mp4)"));
    if (!files.isEmpty())
        m_lastFolder = QFileInfo(files.first()).absolutePath();
    return files;
}

int MP4ImportDialog::runModal(IMP4ImportCtrl* ctrl)
{
    m_ctrl = ctrl;
    m_path->setFocus();
    const int code = exec();
    m_ctrl = nullptr;
    return code;
}

void MP4ImportDialog::endModal(int code)
{
    done(code);
}

void MP4ImportDialog::accept()
{
    if (m_ctrl)
        m_ctrl->onOK();
    else
        QDialog::accept();
}

void MP4ImportDialog::reject()
{
    if (m_ctrl)
        m_ctrl->onCancel();
    else
        QDialog::reject();
}
