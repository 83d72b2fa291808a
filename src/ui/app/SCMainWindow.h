#pragma once

#include "core/app/IMainWindowView.h"

#include <QMainWindow>

class BLMainWindowCtrl;
class ClipSearchDialog;
class HouseKeepingSheet;
class QAction;
class QMenu;
class QSplitter;
class SCFrameView;
class SCMediaInfoView;
class SCPreviewView;

// The main window: a vertical split between the pane area (the "Main" and
// "Sub1" pane containers side by side in a split of their own) and the
// preview container, each in a decorated frame; the housekeeping sheet; and
// the menu bar. The splitters' positions and whether the preview is shown are
// kept in the settings. It reports its window events to its controller and
// does what the controller asks.
class SCMainWindow : public QMainWindow, public IMainWindowView
{
    Q_OBJECT
public:
    static constexpr int kMinimumWidth = 800;
    static constexpr int kMinimumHeight = 600;
    static constexpr int kPaneAreaMinimumHeight = 300;
    static constexpr int kPreviewMinimumHeight = 180;

    explicit SCMainWindow(QWidget* parent = nullptr);
    ~SCMainWindow() override;

    void setController(BLMainWindowCtrl* ctrl) { m_ctrl = ctrl; }

    // The containers into which the pane views (0 Main, 1 Sub1) and the
    // preview view are inserted.
    QWidget* paneContainer(int index) const;
    // Inserts the views of the controller's two panes into their containers.
    void installPaneViews();
    // The pane view 0 (Main) or 1 (Sub1); null before installPaneViews.
    SCMediaInfoView* mediaInfoView(int index) const;
    // The pane whose folder list or grid has the keyboard focus: the menus'
    // pane commands go to it (through the controller); null when neither has it.
    SCMediaInfoView* activeMediaInfoView() const;
    QWidget* previewContainer() const { return m_previewView; }
    // The preview area inside the preview container.
    SCPreviewView* previewWidget() const { return m_preview; }
    QSplitter* splitView() const { return m_splitView; }
    // The split between the Main and the Sub1 pane.
    QSplitter* paneSplitView() const { return m_paneSplitView; }
    HouseKeepingSheet* houseKeepingSheet() const { return m_hkWindow; }
    bool dividersLocked() const { return m_dividersLocked; }

    QMenu* fileMenu() const { return m_fileMenu; }
    QMenu* editMenu() const { return m_editMenu; }
    QMenu* viewMenu() const { return m_viewMenu; }
    QMenu* clipMenu() const { return m_clipMenu; }
    QMenu* folderMenu() const { return m_folderMenu; }
    QMenu* previewMenu() const { return m_previewMenu; }
    QMenu* helpMenu() const { return m_helpMenu; }
    QAction* quitAction() const { return m_quitAction; }
    QAction* preferencesAction() const { return m_preferencesAction; }
    QAction* resetWindowSizeAction() const { return m_resetWindowSizeAction; }
    QAction* showPreviewAction() const { return m_showPreviewAction; }
    QAction* aboutAction() const { return m_aboutAction; }
    // Enables the menu items that are available now (run before a menu opens).
    void validateMenuItems();
    // Enables every pane command again once a menu has closed, so that its
    // shortcut reaches selectPaneMenuItem, which checks it at that moment.
    void enablePaneMenuItems();

    // IMainWindowView
    QRectF screenFrame() const override;
    QRectF windowFrame() const override;
    void setWindowFrame(const QRectF& frame) override;
    QSizeF minimumWindowSize() const override;
    bool isWindowVisible() const override;
    bool isKeyWindow() const override;
    void setSplitToDefault() override;
    void setDividersLocked(bool locked) override;
    IPreviewView* previewView() override;
    IClipSearchView* clipSearchView() override;
    bool isHouseKeepingSheetVisible() const override;
    void showHouseKeepingSheet() override;
    void closeHouseKeepingSheet() override;

signals:
    // The window has closed and its controller has shut down.
    void windowClosed();

protected:
    void closeEvent(QCloseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void createMenus();
    // A pane command in a menu: its data is the tag.
    QAction* addPaneAction(QMenu* menu, const char* title, int tag, const QKeySequence& shortcut = {});
    void selectPaneMenuItem(QAction* action);
    // Tells the controller which pane, and which of its lists, has the focus.
    void focusChanged(QWidget* now);
    // The application's focus changes reach the window until its destructor
    // starts (its child widgets change the focus as they go).
    QMetaObject::Connection m_focusConnection;
    void zoomStateChanged(Qt::WindowStates oldState);
    // The splitters whose positions the settings keep, by name.
    QList<std::pair<QString, QSplitter*>> layoutSplitters() const;
    void restoreLayout();
    // Gives the panes two thirds of the split once the splitter is laid out.
    void applyDefaultSplit();
    void saveLayout() const;
    // View > Show Preview; hiding it stops what it plays.
    void showPreview(bool show);
    QRectF maximizedFrame() const;

    BLMainWindowCtrl* m_ctrl = nullptr;
    HouseKeepingSheet* m_hkWindow;
    SCFrameView* m_mediaInfoFrame1;
    SCFrameView* m_mediaInfoFrame2;
    QWidget* m_mediaInfoView1;
    QWidget* m_mediaInfoView2;
    SCFrameView* m_previewFrame;
    QWidget* m_previewView;
    SCPreviewView* m_preview;
    ClipSearchDialog* m_clipSearchDialog = nullptr;
    QSplitter* m_splitView;
    QSplitter* m_paneSplitView;

    QMenu* m_fileMenu = nullptr;
    QMenu* m_editMenu = nullptr;
    QMenu* m_viewMenu = nullptr;
    QMenu* m_clipMenu = nullptr;
    QMenu* m_folderMenu = nullptr;
    QMenu* m_previewMenu = nullptr;
    QMenu* m_helpMenu = nullptr;
    QList<QAction*> m_paneActions;
    SCMediaInfoView* m_paneViews[2] = {nullptr, nullptr};
    SCMediaInfoView* m_activePane = nullptr;
    QAction* m_quitAction = nullptr;
    QAction* m_preferencesAction = nullptr;
    QAction* m_resetWindowSizeAction = nullptr;
    QAction* m_showPreviewAction = nullptr;
    QAction* m_aboutAction = nullptr;

    bool m_dividersLocked = false;
    int m_lockedLowerHeight = 0;
    bool m_splitToDefault = false; // the default split waits for the splitter's layout
    bool m_settingFrame = false;
    bool m_revertingZoom = false;
    bool m_closed = false;
};
