#include "ui/panes/SCTreeView.h"

#include "core/card/BLTreeViewCtrl.h"
#include "core/services/BLCommon.h"
#include "ui/common/LocalizedTitle.h"

#include <QContextMenuEvent>
#include <QDesktopServices>
#include <QFileIconProvider>
#include <QItemSelectionModel>
#include <QKeyEvent>
#include <QMenu>
#include <QProcess>
#include <QStandardPaths>
#include <QStyledItemDelegate>
#include <QUrl>

#include <memory>

namespace {
constexpr int kIndentWidth = 16;

// Draws a row with its icon from the desktop's icon theme (the file icon
// provider's when the theme has none) and indents the folders below the work
// folder.
class TreeRowDelegate : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override
    {
        return QStyledItemDelegate::sizeHint(option, index) + QSize(indentOf(index), 0);
    }

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override
    {
        QStyledItemDelegate::initStyleOption(option, index);
        const QString image = index.data(BLTreeViewCtrl::ImageRole).toString();
        const QFileIconProvider::IconType fallback = image == QLatin1String(DOTreeData::kFolderImage)
                                                         ? QFileIconProvider::Folder
                                                         : QFileIconProvider::Drive;
        option->icon = QIcon::fromTheme(image, m_icons.icon(fallback));
        option->features |= QStyleOptionViewItem::HasDecoration;
        option->rect.adjust(indentOf(index), 0, 0, 0);
    }

private:
    static int indentOf(const QModelIndex& index)
    {
        return index.data(BLTreeViewCtrl::IndentRole).toInt() * kIndentWidth;
    }

    QFileIconProvider m_icons;
};
} // namespace

SCTreeView::SCTreeView(BLTreeViewCtrl* ctrl, QWidget* parent) : QListView(parent), m_ctrl(ctrl)
{
    setModel(ctrl);
    QItemSelectionModel* own = selectionModel();
    setSelectionModel(ctrl->selectionModel());
    delete own;
    setSelectionMode(QAbstractItemView::SingleSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setItemDelegate(new TreeRowDelegate(this));

    connect(this, &QAbstractItemView::doubleClicked, ctrl, [ctrl] { ctrl->doubleClickSelecttion(); });
    connect(ctrl, &BLTreeViewCtrl::openInFileManagerRequested, this, &SCTreeView::openInFileManager);
}

void SCTreeView::openInFileManager(const QString& folder)
{
    auto fail = [folder] {
        BLCommon::sharedCtrl()->messageBox(QStringLiteral("MSG_632_3302"), QString(), 0, 0,
                                           {BLCommon::getDisplayName(folder)});
    };
    // The desktop's opener says whether it found a program for folders; the
    // toolkit's own call only says whether it could start it.
    const QString opener = QStandardPaths::findExecutable(QStringLiteral("xdg-open"));
    if (opener.isEmpty()) {
        if (!QDesktopServices::openUrl(QUrl::fromLocalFile(folder)))
            fail();
        return;
    }
    auto* process = new QProcess(this);
    process->setProcessChannelMode(QProcess::ForwardedChannels);
    connect(process, &QProcess::finished, this, [process, fail](int code, QProcess::ExitStatus status) {
        if (status != QProcess::NormalExit || code != 0)
            fail();
        process->deleteLater();
    });
    connect(process, &QProcess::errorOccurred, this, [process, fail](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart) {
            fail();
            process->deleteLater();
        }
    });
    process->start(opener, {folder});
}

QMenu* SCTreeView::makeContextMenu()
{
    auto* menu = new QMenu(this);
    for (const BLTreeViewCtrl::MenuItem& item : BLTreeViewCtrl::menuItems()) {
        if (item.tag == 0) {
            menu->addSeparator();
            continue;
        }
        if (!item.title)
            continue; // a thumbnail command
        QAction* action = menu->addAction(QString::fromUtf8(item.title));
        action->setData(item.tag);
        bool enable = false;
        m_ctrl->isSupportMenuItem(item.tag, &enable, nullptr);
        action->setEnabled(enable);
    }
    connect(menu, &QMenu::triggered, m_ctrl,
            [ctrl = m_ctrl](QAction* action) { ctrl->selectMenuItem(action->data().toInt()); });
    localizedTitleByObject(menu);
    return menu;
}

void SCTreeView::contextMenuEvent(QContextMenuEvent* event)
{
    setFocus(Qt::MouseFocusReason); // the row under the pointer is already selected by the press
    const std::unique_ptr<QMenu> menu(makeContextMenu());
    menu->exec(event->globalPos());
}

void SCTreeView::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Delete) {
        m_ctrl->selectMenuItem(MENU_ITEM_ID_DELETE); // runs only when enabled
        return;
    }
    QListView::keyPressEvent(event);
}
