#pragma once

#include <QListView>

class BLTreeViewCtrl;
class QMenu;

// The folder list of a pane: shows a BLTreeViewCtrl and shares its selection
// model; passes double clicks, the delete key and the commands of its context
// menu to the controller, and opens folders in the desktop's file manager
// when the controller asks.
class SCTreeView : public QListView
{
    Q_OBJECT
public:
    explicit SCTreeView(BLTreeViewCtrl* ctrl, QWidget* parent = nullptr);

    // The context menu as it stands now: one action per command of the list,
    // its data the command's tag and enabled as the controller answers.
    // Choosing an action runs the command. The caller owns the menu.
    QMenu* makeContextMenu();
    // Opens the folder in the desktop's file manager; when the desktop has
    // none for folders, says so in a message box.
    void openInFileManager(const QString& folder);

protected:
    void contextMenuEvent(QContextMenuEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    BLTreeViewCtrl* m_ctrl;
};
