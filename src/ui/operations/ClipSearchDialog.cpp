#include "ui/operations/ClipSearchDialog.h"

#include "core/operations/search/BLClipSearchCtrl.h"
#include "ui/common/LocalizedTitle.h"
#include "ui/panes/SCThumbView.h"

#include <QButtonGroup>
#include <QDateEdit>
#include <QFormLayout>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QStandardItemModel>
#include <QTableView>
#include <QVBoxLayout>

namespace {
constexpr int kSortRole = Qt::UserRole + 1;
constexpr int kIndexRole = Qt::UserRole + 2;

// The status mark of a row's image name, as the grid draws it.
QIcon statusIcon(const QString& image)
{
    static const QStringList kImages = {"clip_ok",     "clip_normal",    "clip_mediaspaning",
                                        "clip_import", "clip_notimport", "clip_error"};
    static QMap<QString, QIcon> icons;
    if (!icons.contains(image)) {
        QPixmap pixmap(16, 16);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        paintStatusMark(painter, QRectF(1, 1, 14, 14), std::max<qsizetype>(0, kImages.indexOf(image)));
        icons.insert(image, QIcon(pixmap));
    }
    return icons.value(image);
}

QStandardItem* item(const QString& text, const QVariant& sortBy)
{
    auto* cell = new QStandardItem(text);
    cell->setEditable(false);
    cell->setData(sortBy, kSortRole);
    return cell;
}
} // namespace

ClipSearchDialog::ClipSearchDialog(QWidget* parent)
    : QDialog(parent), m_title(new QLineEdit(this)), m_comment(new QLineEdit(this)),
      m_interval(new QButtonGroup(this)), m_dateFrom(new QDateEdit(this)), m_dateTo(new QDateEdit(this)),
      m_place(new QLabel(this)), m_message(new QLabel(this)), m_progress(new QProgressBar(this)),
      m_arrayCtrl(new QStandardItemModel(0, 6, this)), m_tableView(new QTableView(this)),
      m_searchButton(new QPushButton(QStringLiteral("Search"), this)),
      m_cancelButton(new QPushButton(QStringLiteral("Cancel"), this)),
      m_closeButton(new QPushButton(QStringLiteral("Close"), this))
{
    setObjectName(QStringLiteral("ClipSearch"));
    setWindowTitle(QStringLiteral("Search Clips"));
    m_title->setObjectName(QStringLiteral("title"));
    m_comment->setObjectName(QStringLiteral("comment"));
    m_place->setTextFormat(Qt::PlainText);
    m_message->setTextFormat(Qt::PlainText);
    m_message->setWordWrap(true);
    m_progress->setRange(0, 0); // busy
    m_progress->setMaximumWidth(120);
    m_progress->setTextVisible(false);
    m_progress->hide();

    auto* dates = new QGridLayout;
    const char* const ranges[] = {"Any date", "Last 7 days", "Last month", "Last year", "From"};
    for (int i = 0; i < 5; ++i) {
        auto* button = new QRadioButton(QString::fromLatin1(ranges[i]), this);
        m_interval->addButton(button, i);
        dates->addWidget(button, i < 4 ? 0 : 1, i < 4 ? i : 0);
    }
    for (QDateEdit* edit : {m_dateFrom, m_dateTo}) {
        edit->setCalendarPopup(true);
        edit->setDisplayFormat(QStringLiteral("yyyy-MM-dd"));
    }
    dates->addWidget(m_dateFrom, 1, 1);
    dates->addWidget(new QLabel(QStringLiteral("to"), this), 1, 2, Qt::AlignCenter);
    dates->addWidget(m_dateTo, 1, 3);

    auto* form = new QFormLayout;
    form->addRow(QStringLiteral("Title:"), m_title);
    form->addRow(QStringLiteral("Comment:"), m_comment);
    form->addRow(QStringLiteral("Recorded:"), dates);
    form->addRow(QStringLiteral("Search in:"), m_place);

    m_arrayCtrl->setHorizontalHeaderLabels({QStringLiteral("Take"), QStringLiteral("Title"),
                                            QStringLiteral("Duration"), QStringLiteral("Date"),
                                            QStringLiteral("Size"), QStringLiteral("Folder")});
    m_arrayCtrl->setSortRole(kSortRole);
    m_tableView->setModel(m_arrayCtrl);
    m_tableView->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_tableView->setSelectionMode(QAbstractItemView::SingleSelection);
    m_tableView->setSortingEnabled(true);
    m_tableView->sortByColumn(-1, Qt::AscendingOrder);
    m_tableView->verticalHeader()->hide();
    m_tableView->horizontalHeader()->setStretchLastSection(true);
    m_tableView->setMinimumSize(640, 240);

    auto* buttons = new QHBoxLayout;
    buttons->addWidget(m_progress);
    buttons->addWidget(m_message, 1);
    buttons->addWidget(m_searchButton);
    buttons->addWidget(m_cancelButton);
    buttons->addWidget(m_closeButton);
    m_searchButton->setDefault(true);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(m_tableView, 1);
    layout->addLayout(buttons);

    connect(m_searchButton, &QPushButton::clicked, this, [this] {
        if (m_ctrl)
            m_ctrl->onSearch();
    });
    connect(m_cancelButton, &QPushButton::clicked, this, [this] {
        if (m_ctrl)
            m_ctrl->onCancel();
    });
    connect(m_closeButton, &QPushButton::clicked, this, [this] {
        if (m_ctrl)
            m_ctrl->onClose();
    });
    connect(m_interval, &QButtonGroup::idClicked, this, [this] {
        if (m_ctrl)
            m_ctrl->onInterval();
    });
    connect(m_tableView, &QTableView::doubleClicked, this, [this] {
        if (m_ctrl)
            m_ctrl->doubleClickAction();
    });
    localizedTitleByObject(this);
}

QString ClipSearchDialog::titleText() const
{
    return m_title->text();
}

QString ClipSearchDialog::commentText() const
{
    return m_comment->text();
}

int ClipSearchDialog::interval() const
{
    return std::max(0, m_interval->checkedId());
}

QDate ClipSearchDialog::dateFrom() const
{
    return m_dateFrom->date();
}

QDate ClipSearchDialog::dateTo() const
{
    return m_dateTo->date();
}

void ClipSearchDialog::setTitleText(const QString& text)
{
    m_title->setText(text);
}

void ClipSearchDialog::setCommentText(const QString& text)
{
    m_comment->setText(text);
}

void ClipSearchDialog::setInterval(int interval)
{
    if (QAbstractButton* button = m_interval->button(interval))
        button->setChecked(true);
}

void ClipSearchDialog::setDates(const QDate& from, const QDate& to)
{
    m_dateFrom->setDate(from);
    m_dateTo->setDate(to);
}

void ClipSearchDialog::setDatePickersEnabled(bool enabled)
{
    m_dateFrom->setEnabled(enabled);
    m_dateTo->setEnabled(enabled);
}

void ClipSearchDialog::setPlace(const QString& place)
{
    m_place->setText(place);
}

void ClipSearchDialog::setMessage(const QString& message)
{
    m_message->setText(message);
}

void ClipSearchDialog::setSearching(bool searching)
{
    m_progress->setVisible(searching);
    for (QWidget* widget : {static_cast<QWidget*>(m_searchButton), static_cast<QWidget*>(m_closeButton),
                            static_cast<QWidget*>(m_title), static_cast<QWidget*>(m_comment)})
        widget->setEnabled(!searching);
    for (QAbstractButton* button : m_interval->buttons())
        button->setEnabled(!searching);
    m_cancelButton->setEnabled(searching);
}

void ClipSearchDialog::setCancelEnabled(bool enabled)
{
    m_cancelButton->setEnabled(enabled);
}

void ClipSearchDialog::clearRows()
{
    m_arrayCtrl->removeRows(0, m_arrayCtrl->rowCount());
}

void ClipSearchDialog::addRow(int index, const QVariantMap& row)
{
    QStandardItem* take = item(row.value("takeId").toString(), row.value("takeId"));
    take->setIcon(statusIcon(row.value("image").toString()));
    take->setData(index, kIndexRole);
    m_arrayCtrl->appendRow({take, item(row.value("title").toString(), row.value("title")),
                            item(row.value("duration").toString(), row.value("durationBySort")),
                            item(row.value("date").toString(), row.value("dateBySort")),
                            item(row.value("size").toString(), row.value("sizeBySort")),
                            item(row.value("displayPath").toString(), row.value("displayPath"))});
}

int ClipSearchDialog::selectedRow() const
{
    const QModelIndexList rows = m_tableView->selectionModel()->selectedRows();
    return rows.isEmpty() ? -1 : rows.first().data(kIndexRole).toInt();
}

int ClipSearchDialog::runModal(BLClipSearchCtrl* ctrl)
{
    m_ctrl = ctrl;
    setSearching(false);
    m_title->setFocus();
    const int code = exec();
    m_ctrl = nullptr;
    return code;
}

void ClipSearchDialog::endModal(int code)
{
    done(code);
}

void ClipSearchDialog::reject()
{
    // Escape is Close, which waits for the search to be stopped.
    if (m_ctrl)
        m_ctrl->onClose();
    else
        QDialog::reject();
}
