#include "ui/operations/FolderCombineDialog.h"

#include "core/operations/BLFolderCombineCtrl.h"
#include "core/services/BLLocalizedStrings.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

FolderCombineDialog::FolderCombineDialog(QWidget* parent)
    : QDialog(parent), m_destination(new QLabel(this)), m_tableView(new QTableWidget(0, 1, this)),
      m_delSwitch(new QCheckBox(BLLocalizedString(QStringLiteral("LOCALIZED_FOLDER_COMBINE_DELETE")), this))
{
    setObjectName(QStringLiteral("FolderCombine"));
    m_destination->setTextFormat(Qt::PlainText);
    m_tableView->horizontalHeader()->hide();
    m_tableView->horizontalHeader()->setStretchLastSection(true);
    m_tableView->verticalHeader()->hide();
    m_tableView->setSelectionMode(QAbstractItemView::NoSelection);
    m_tableView->setEditTriggers(QAbstractItemView::NoEditTriggers);
    connect(m_tableView, &QTableWidget::itemChanged, this, [this] {
        if (m_ctrl)
            m_ctrl->tableViewSelectionDidChange();
    });

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    m_okButton = buttons->button(QDialogButtonBox::Ok);
    m_okButton->setText(BLLocalizedString(QStringLiteral("BTN_STYLE_START")));
    buttons->button(QDialogButtonBox::Cancel)->setText(BLLocalizedString(QStringLiteral("BTN_STYLE_CANCEL")));
    connect(buttons, &QDialogButtonBox::accepted, this, &FolderCombineDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &FolderCombineDialog::reject);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(
        new QLabel(BLLocalizedString(QStringLiteral("LOCALIZED_FOLDER_COMBINE_DESTINATION")), this));
    layout->addWidget(m_destination);
    layout->addWidget(m_tableView);
    layout->addWidget(m_delSwitch);
    layout->addWidget(buttons);
}

void FolderCombineDialog::setTitle(const QString& title)
{
    setWindowTitle(title);
}

void FolderCombineDialog::setDestination(const QString& name)
{
    m_destination->setText(name);
}

void FolderCombineDialog::setRows(const QList<QVariantMap>& rows)
{
    const QSignalBlocker quiet(m_tableView);
    m_rows = rows;
    m_tableView->setRowCount(int(rows.size()));
    for (int i = 0; i < rows.size(); ++i) {
        auto* item = new QTableWidgetItem(rows.at(i).value(QStringLiteral("name")).toString());
        item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsUserCheckable);
        item->setCheckState(rows.at(i).value(QStringLiteral("check")).toInt() == 1 ? Qt::Checked
                                                                                   : Qt::Unchecked);
        m_tableView->setItem(i, 0, item);
    }
}

QList<QVariantMap> FolderCombineDialog::rows() const
{
    QList<QVariantMap> rows = m_rows;
    for (int i = 0; i < rows.size(); ++i)
        rows[i][QStringLiteral("check")] = m_tableView->item(i, 0)->checkState() == Qt::Checked ? 1 : 0;
    return rows;
}

bool FolderCombineDialog::deleteSwitch() const
{
    return m_delSwitch->isChecked();
}

void FolderCombineDialog::setOkEnabled(bool enabled)
{
    m_okButton->setEnabled(enabled);
}

int FolderCombineDialog::runModal(BLFolderCombineCtrl* ctrl)
{
    m_ctrl = ctrl;
    const int code = exec();
    m_ctrl = nullptr;
    return code;
}

void FolderCombineDialog::endModal(int code)
{
    done(code);
}

void FolderCombineDialog::accept()
{
    if (m_ctrl)
        m_ctrl->onStart();
    else
        QDialog::accept();
}

void FolderCombineDialog::reject()
{
    if (m_ctrl)
        m_ctrl->onCancel();
    else
        QDialog::reject();
}
