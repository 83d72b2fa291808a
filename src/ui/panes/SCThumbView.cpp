#include "ui/panes/SCThumbView.h"

#include "core/app/panes/BLThumbViewCtrl.h"
#include "core/card/BLTreeViewCtrl.h"
#include "core/services/BLLocalizedStrings.h"
#include "ui/common/LocalizedTitle.h"

#include <QContextMenuEvent>
#include <QDrag>
#include <QItemSelectionModel>
#include <QKeyEvent>
#include <QKeySequence>
#include <QMenu>
#include <QMimeData>
#include <QPainter>
#include <QPainterPath>
#include <QStyledItemDelegate>

#include <memory>

namespace {
constexpr int kMargin = 6;
constexpr int kPictureWidth = 156;
constexpr int kPictureHeight = 88; // 16:9
constexpr int kTextLines = 4;      // take id, title, duration, date
constexpr int kDragPictureWidth = 96;

} // namespace

// The mark of a take's status, drawn in a square: 0 complete, 1 complete with
// a status text other than OK, 2 a clip on another medium, 3 made from an MP4
// file, 4 an MP4 file not yet imported, 5 and 6 unusable.
void paintStatusMark(QPainter& painter, const QRectF& box, int status)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    const qreal unit = box.width() / 10.0;
    QPen symbol(Qt::white, unit * 1.2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
    auto at = [&](qreal x, qreal y) { return QPointF(box.left() + x * unit, box.top() + y * unit); };
    switch (status) {
    case 0: // a check on green
        painter.setPen(Qt::NoPen);
        painter.setBrush(QColor(46, 160, 67));
        painter.drawEllipse(box);
        painter.setPen(symbol);
        painter.drawPolyline(QList<QPointF>{at(2.8, 5.2), at(4.4, 6.8), at(7.4, 3.6)});
        break;
    case 1: // an exclamation mark on amber
        painter.setPen(Qt::NoPen);
        painter.setBrush(QColor(214, 150, 20));
        painter.drawEllipse(box);
        painter.setPen(symbol);
        painter.drawLine(at(5, 2.6), at(5, 5.8));
        painter.drawPoint(at(5, 7.6));
        break;
    case 2: { // two joined links on orange: the take continues elsewhere
        painter.setPen(Qt::NoPen);
        painter.setBrush(QColor(230, 110, 30));
        painter.drawEllipse(box);
        painter.setPen(symbol);
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(QRectF(at(1.8, 3.8), at(5.6, 6.2)), unit, unit);
        painter.drawRoundedRect(QRectF(at(4.4, 3.8), at(8.2, 6.2)), unit, unit);
        break;
    }
    case 3: // an arrow into a tray on blue: made from an MP4 file
        painter.setPen(Qt::NoPen);
        painter.setBrush(QColor(40, 110, 200));
        painter.drawEllipse(box);
        painter.setPen(symbol);
        painter.drawLine(at(5, 2.4), at(5, 6.0));
        painter.drawPolyline(QList<QPointF>{at(3.4, 4.6), at(5, 6.2), at(6.6, 4.6)});
        painter.drawPolyline(QList<QPointF>{at(2.8, 6.4), at(2.8, 7.6), at(7.2, 7.6), at(7.2, 6.4)});
        break;
    case 4: { // a grey label "MP4": not yet imported
        painter.setPen(Qt::NoPen);
        painter.setBrush(QColor(120, 120, 120));
        painter.drawRoundedRect(box.adjusted(0, box.height() * 0.2, 0, -box.height() * 0.2), unit * 1.5,
                                unit * 1.5);
        QFont font = painter.font();
        font.setBold(true);
        font.setPixelSize(std::max(6, int(unit * 3.2)));
        painter.setFont(font);
        painter.setPen(Qt::white);
        painter.drawText(box, Qt::AlignCenter, QStringLiteral("MP4"));
        break;
    }
    default: // a cross on red: unusable
        painter.setPen(Qt::NoPen);
        painter.setBrush(QColor(200, 40, 40));
        painter.drawEllipse(box);
        painter.setPen(symbol);
        painter.drawLine(at(3.3, 3.3), at(6.7, 6.7));
        painter.drawLine(at(6.7, 3.3), at(3.3, 6.7));
        break;
    }
    painter.restore();
}
namespace {

// The picture shown until the thumbnail has arrived: a dark frame with the
// take's status mark in its middle.
void paintPlaceholder(QPainter& painter, const QRect& area, int status)
{
    painter.fillRect(area, QColor(60, 60, 64));
    const int side = area.height() / 2;
    paintStatusMark(
        painter, QRectF(area.center().x() - side / 2.0, area.center().y() - side / 2.0, side, side), status);
}

// Paints one thumbnail: the picture (or the placeholder, asking the grid for
// the picture) above four text lines.
class ThumbItemDelegate : public QStyledItemDelegate
{
public:
    ThumbItemDelegate(BLThumbViewCtrl* ctrl, QObject* parent) : QStyledItemDelegate(parent), m_ctrl(ctrl) {}

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex&) const override
    {
        return QSize(kPictureWidth + 2 * kMargin,
                     2 * kMargin + kPictureHeight + kMargin + kTextLines * option.fontMetrics.height());
    }

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override
    {
        painter->save();
        const bool selected = option.state & QStyle::State_Selected;
        const QPalette& palette = option.palette;
        if (selected) {
            painter->setRenderHint(QPainter::Antialiasing);
            QColor fill = palette.color(QPalette::Highlight);
            fill.setAlpha(option.state & QStyle::State_Active ? 110 : 60);
            painter->setPen(Qt::NoPen);
            painter->setBrush(fill);
            painter->drawRoundedRect(QRectF(option.rect).adjusted(1, 1, -1, -1), 5, 5);
        }

        const QRect pictureArea(option.rect.left() + kMargin, option.rect.top() + kMargin, kPictureWidth,
                                kPictureHeight);
        const QImage image = index.data(BLThumbViewCtrl::ImageRole).value<QImage>();
        if (image.isNull()) {
            m_ctrl->requestImage(index.row());
            paintPlaceholder(*painter, pictureArea, index.data(BLThumbViewCtrl::TakeStatusRole).toInt());
        } else {
            QSize scaled = image.size().scaled(pictureArea.size(), Qt::KeepAspectRatio);
            QRect target(QPoint(0, 0), scaled);
            target.moveCenter(pictureArea.center());
            painter->fillRect(pictureArea, Qt::black);
            painter->setRenderHint(QPainter::SmoothPixmapTransform);
            painter->drawImage(target, image);
        }
        if (selected) {
            painter->setPen(QPen(palette.color(QPalette::Highlight), 2));
            painter->setBrush(Qt::NoBrush);
            painter->drawRect(pictureArea.adjusted(-1, -1, 1, 1));
        }

        const int lineHeight = option.fontMetrics.height();
        QRect line(pictureArea.left(), pictureArea.bottom() + kMargin, kPictureWidth, lineHeight);
        const QColor text = palette.color(QPalette::Text);
        auto drawLine = [&](const QString& value, const QFont& font, const QColor& color) {
            painter->setFont(font);
            painter->setPen(color);
            painter->drawText(line, Qt::AlignHCenter | Qt::AlignVCenter,
                              QFontMetrics(font).elidedText(value, Qt::ElideMiddle, line.width()));
            line.translate(0, lineHeight);
        };
        QFont bold = option.font;
        bold.setBold(true);
        QColor secondary = text;
        secondary.setAlpha(170);
        drawLine(index.data(BLThumbViewCtrl::TakeIdRole).toString(), bold, text);
        drawLine(index.data(BLThumbViewCtrl::TitleRole).toString(), option.font, text);
        drawLine(index.data(BLThumbViewCtrl::DurationRole).toString(), option.font, secondary);
        drawLine(index.data(BLThumbViewCtrl::DateRole).toString(), option.font, secondary);

        if (option.state & QStyle::State_HasFocus) {
            painter->setRenderHint(QPainter::Antialiasing);
            painter->setPen(QPen(palette.color(QPalette::Highlight), 1, Qt::DotLine));
            painter->setBrush(Qt::NoBrush);
            painter->drawRoundedRect(QRectF(option.rect).adjusted(0.5, 0.5, -0.5, -0.5), 5, 5);
        }
        painter->restore();
    }

private:
    BLThumbViewCtrl* m_ctrl;
};

// What a drag shows under the pointer: the first item's picture (or its
// placeholder) and, for several items, their number.
QPixmap dragPixmap(const QModelIndexList& indexes)
{
    const QModelIndex first = indexes.first();
    const QImage image = first.data(BLThumbViewCtrl::ImageRole).value<QImage>();
    const QRect area(0, 0, kDragPictureWidth, kDragPictureWidth * 9 / 16);
    QPixmap pixmap(area.size());
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    if (image.isNull())
        paintPlaceholder(painter, area, first.data(BLThumbViewCtrl::TakeStatusRole).toInt());
    else
        painter.drawImage(area, image);
    if (indexes.size() > 1) {
        const QRectF badge(area.right() - 28, 2, 26, 16);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(QColor(200, 40, 40));
        painter.drawRoundedRect(badge, 8, 8);
        painter.setPen(Qt::white);
        painter.drawText(badge, Qt::AlignCenter, QString::number(indexes.size()));
    }
    return pixmap;
}
} // namespace

SCThumbView::SCThumbView(BLThumbViewCtrl* ctrl, QWidget* parent) : QListView(parent), m_ctrl(ctrl)
{
    setModel(ctrl);
    QItemSelectionModel* own = selectionModel();
    setSelectionModel(ctrl->selectionModel());
    delete own;

    setViewMode(QListView::IconMode);
    setMovement(QListView::Static);
    setResizeMode(QListView::Adjust);
    setFlow(QListView::LeftToRight);
    setWrapping(true);
    setUniformItemSizes(true);
    setSpacing(4);
    setSelectionMode(QAbstractItemView::ExtendedSelection);
    setSelectionRectVisible(true);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    setItemDelegate(new ThumbItemDelegate(ctrl, this));

    setDragEnabled(true);
    setDropIndicatorShown(false);
    setDragDropMode(QAbstractItemView::DragDrop);
    viewport()->setAcceptDrops(true); // drags arrive at the viewport
    setDefaultDropAction(Qt::CopyAction);

    connect(this, &QAbstractItemView::doubleClicked, ctrl,
            [ctrl](const QModelIndex& index) { ctrl->doubleClickThumbItemCtrl(index.row()); });
    connect(ctrl, &BLThumbViewCtrl::scrollToTop, this, &QAbstractItemView::scrollToTop);
    connect(ctrl, &BLThumbViewCtrl::scrollToItem, this,
            [this](int row) { scrollTo(m_ctrl->index(row), QAbstractItemView::EnsureVisible); });
}

QMenu* SCThumbView::makeContextMenu()
{
    auto* menu = new QMenu(this);
    for (const BLThumbViewCtrl::MenuItem& item : BLThumbViewCtrl::menuItems()) {
        if (item.tag == 0) {
            menu->addSeparator();
            continue;
        }
        if (!item.title)
            continue;
        QAction* action = menu->addAction(QString::fromUtf8(item.title));
        action->setData(item.tag);
        bool enable = false;
        bool check = false;
        m_ctrl->isSupportMenuItem(item.tag, &enable, &check);
        action->setEnabled(enable);
        if (item.tag >= MENU_ITEM_ID_SORT_TITLE && item.tag <= MENU_ITEM_ID_SORT_DATE) {
            action->setCheckable(true);
            action->setChecked(check);
        }
    }
    connect(menu, &QMenu::triggered, m_ctrl,
            [ctrl = m_ctrl](QAction* action) { ctrl->selectMenuItem(action->data().toInt()); });
    localizedTitleByObject(menu);
    return menu;
}

QString SCThumbView::emptyText() const
{
    const QString shortcut = QKeySequence(QKeySequence::Open).toString(QKeySequence::NativeText);
    switch (m_ctrl->emptyReason()) {
    case BLThumbViewCtrl::EmptyReason::NoFolder:
        return BLLocalizedString(QStringLiteral("LOCALIZED_GRID_EMPTY_NO_FOLDER")).arg(shortcut);
    case BLThumbViewCtrl::EmptyReason::NoCard:
        return BLLocalizedString(QStringLiteral("LOCALIZED_GRID_EMPTY_NO_CARD")).arg(shortcut);
    case BLThumbViewCtrl::EmptyReason::NoCardNoFolders:
        return BLLocalizedString(QStringLiteral("LOCALIZED_GRID_EMPTY_NO_CARD_NO_FOLDERS")).arg(shortcut);
    case BLThumbViewCtrl::EmptyReason::NoTakes:
        return BLLocalizedString(QStringLiteral("LOCALIZED_GRID_EMPTY_NO_TAKES"));
    case BLThumbViewCtrl::EmptyReason::NotEmpty:
        break;
    }
    return QString();
}

void SCThumbView::paintEvent(QPaintEvent* event)
{
    QListView::paintEvent(event);
    if (model()->rowCount() > 0)
        return;
    const QString text = emptyText();
    if (text.isEmpty())
        return;
    QPainter painter(viewport());
    painter.setPen(palette().color(QPalette::Disabled, QPalette::WindowText));
    painter.drawText(viewport()->rect().adjusted(24, 24, -24, -24), Qt::AlignCenter | Qt::TextWordWrap, text);
}

void SCThumbView::contextMenuEvent(QContextMenuEvent* event)
{
    setFocus(Qt::MouseFocusReason); // the press has already selected the item under the pointer
    const std::unique_ptr<QMenu> menu(makeContextMenu());
    menu->exec(event->globalPos());
}

void SCThumbView::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        m_ctrl->enterKeyDown();
        return;
    }
    if (event->key() == Qt::Key_Delete) {
        m_ctrl->selectMenuItem(MENU_ITEM_ID_DELETE); // runs only when takes are selected
        return;
    }
    QListView::keyPressEvent(event);
}

void SCThumbView::startDrag(Qt::DropActions supportedActions)
{
    const QModelIndexList indexes = selectionModel()->selectedIndexes();
    if (indexes.isEmpty())
        return;
    QMimeData* data = m_ctrl->mimeData(indexes);
    if (!data)
        return;
    // The drag only carries the takes; the pane it ends on runs the copy or
    // move, so nothing is removed here whatever the drop answers.
    auto* drag = new QDrag(this);
    drag->setMimeData(data);
    const QPixmap pixmap = dragPixmap(indexes);
    drag->setPixmap(pixmap);
    drag->setHotSpot(QPoint(pixmap.width() / 2, pixmap.height() / 2));
    drag->exec(supportedActions, Qt::CopyAction);
}

bool SCThumbView::acceptsDrag(QDropEvent* event) const
{
    if (event->source() == this)
        return false;
    // Files from the file manager are imported, which copies them whatever
    // the drag proposed (a move would let the file manager remove them).
    if (!m_ctrl->droppedFiles(event->mimeData()).isEmpty()) {
        event->setDropAction(Qt::CopyAction);
        return true;
    }
    const Qt::DropAction action = event->dropAction();
    if (action != Qt::CopyAction && action != Qt::MoveAction)
        return false;
    return m_ctrl->canDropMimeData(event->mimeData(), action, -1, -1, QModelIndex());
}

void SCThumbView::dragEnterEvent(QDragEnterEvent* event)
{
    if (acceptsDrag(event))
        event->accept();
    else
        event->ignore();
}

void SCThumbView::dragMoveEvent(QDragMoveEvent* event)
{
    // The whole grid is one target: no drop position, no indicator.
    if (acceptsDrag(event))
        event->accept();
    else
        event->ignore();
}

void SCThumbView::dropEvent(QDropEvent* event)
{
    if (!acceptsDrag(event)) {
        event->ignore();
        return;
    }
    const Qt::DropAction action = event->dropAction();
    event->setDropAction(action);
    event->accept();
    m_ctrl->dropMimeData(event->mimeData(), action, -1, -1, QModelIndex());
}
