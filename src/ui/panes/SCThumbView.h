#pragma once

#include <QListView>

class BLThumbViewCtrl;
class QMenu;
class QPainter;
class QRectF;

// The mark of a take's status (0 to 6), drawn in a square.
void paintStatusMark(QPainter& painter, const QRectF& box, int status);

// The thumbnail grid of a pane: an icon-mode list on the grid controller's
// model, sharing its selection model. A delegate paints each item (picture,
// take id, title, duration, date) and asks for the picture only when the item
// is painted. Extended selection (click, Shift, Ctrl, rubber band), arrow
// keys; Return plays, a double click plays, the context menu carries the
// grid's commands. Takes dragged onto the other pane's grid are copied, or
// moved with Shift held.
class SCThumbView : public QListView
{
    Q_OBJECT
public:
    explicit SCThumbView(BLThumbViewCtrl* ctrl, QWidget* parent = nullptr);

    BLThumbViewCtrl* ctrl() const { return m_ctrl; }
    // The context menu as it stands now: one action per command of the grid,
    // its data the command's tag, enabled as the controller answers. Choosing
    // an action runs the command. The caller owns the menu.
    QMenu* makeContextMenu();
    // What the grid says while it shows nothing: why, and what to do ("" while
    // it shows takes or loads).
    QString emptyText() const;

protected:
    void paintEvent(QPaintEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void startDrag(Qt::DropActions supportedActions) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    // Whether the drag may end here: takes from another grid that the model
    // accepts, as a copy or a move.
    bool acceptsDrag(QDropEvent* event) const;

    BLThumbViewCtrl* m_ctrl;
};
