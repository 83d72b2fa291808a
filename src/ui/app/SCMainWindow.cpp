#include "ui/app/SCMainWindow.h"

#include "core/app/BLMainWindowCtrl.h"
#include "core/app/panes/BLMediaInfoCtrl.h"
#include "core/app/panes/BLThumbViewCtrl.h"
#include "core/app/preview/BLPreviewCtrl.h"
#include "core/card/BLTreeViewCtrl.h"
#include "core/services/BLCommon.h"
#include "core/services/BLLogCtrl.h"
#include "core/services/BLPlistCtrl.h"
#include "core/services/SCNotificationNames.h"
#include "ui/app/HouseKeepingSheet.h"
#include "ui/common/LocalizedTitle.h"
#include "ui/common/SCFrameView.h"
#include "ui/operations/ClipSearchDialog.h"
#include "ui/panes/SCMediaInfoView.h"
#include "ui/panes/SCThumbView.h"
#include "ui/panes/SCTreeView.h"
#include "ui/preview/SCPreviewView.h"

#include <QApplication>
#include <QCloseEvent>
#include <QHBoxLayout>
#include <QMenuBar>
#include <QScreen>
#include <QSplitter>
#include <QVBoxLayout>
#include <QWindowStateChangeEvent>

SCMainWindow::SCMainWindow(QWidget* parent)
    : QMainWindow(parent), m_hkWindow(new HouseKeepingSheet(this)), m_mediaInfoFrame1(new SCFrameView),
      m_mediaInfoFrame2(new SCFrameView), m_mediaInfoView1(m_mediaInfoFrame1->contentView()),
      m_mediaInfoView2(m_mediaInfoFrame2->contentView()), m_previewFrame(new SCFrameView),
      m_previewView(m_previewFrame->contentView()), m_preview(new SCPreviewView(m_previewView)),
      m_splitView(new QSplitter(Qt::Vertical)), m_paneSplitView(new QSplitter(Qt::Horizontal))
{
    setWindowTitle(QStringLiteral("Clipwright"));
    setMinimumSize(kMinimumWidth, kMinimumHeight);

    m_paneSplitView->addWidget(m_mediaInfoFrame1);
    m_paneSplitView->addWidget(m_mediaInfoFrame2);
    m_paneSplitView->setChildrenCollapsible(false);
    m_paneSplitView->setMinimumHeight(kPaneAreaMinimumHeight);
    m_previewFrame->setMinimumHeight(kPreviewMinimumHeight);
    auto* previewLayout = new QHBoxLayout(m_previewView);
    previewLayout->setContentsMargins(0, 0, 0, 0);
    previewLayout->addWidget(m_preview);

    // Made for browsing: a change of the window's height goes to the panes.
    m_splitView->addWidget(m_paneSplitView);
    m_splitView->addWidget(m_previewFrame);
    m_splitView->setChildrenCollapsible(false);
    m_splitView->setStretchFactor(0, 1);
    m_splitView->setStretchFactor(1, 0);
    setSplitToDefault();
    connect(m_splitView, &QSplitter::splitterMoved, this, [this] { m_splitToDefault = false; });
    auto* central = new QWidget;
    auto* centralLayout = new QHBoxLayout(central);
    centralLayout->setContentsMargins(4, 2, 4, 4);
    centralLayout->addWidget(m_splitView);
    setCentralWidget(central);

    createMenus();
    localizedTitleByObject(this);
}

SCMainWindow::~SCMainWindow()
{
    disconnect(m_focusConnection);
}

void SCMainWindow::createMenus()
{
    QMenuBar* bar = menuBar();
    m_fileMenu = bar->addMenu(QStringLiteral("&File"));
    addPaneAction(m_fileMenu, "Change &Work Folder...", MENU_ITEM_ID_CHANGE_WORK_FOLDER, QKeySequence::Open);
    addPaneAction(m_fileMenu, "&Up One Folder", MENU_ITEM_ID_MOVE_UP_FOLDER,
                  QKeySequence(QStringLiteral("Alt+Up")));
    m_fileMenu->addSeparator();
    addPaneAction(m_fileMenu, "&Import MP4 Files...", MENU_ITEM_ID_IMPORT);
    addPaneAction(m_fileMenu, "&Export as MPEG-2 TS...", MENU_ITEM_ID_EXPORT,
                  QKeySequence(QStringLiteral("Ctrl+E")));
    m_fileMenu->addSeparator();
    addPaneAction(m_fileMenu, "&Offload Card...", MENU_ITEM_ID_OFFLOAD);
    m_fileMenu->addSeparator();
    m_quitAction = m_fileMenu->addAction(QStringLiteral("&Quit"));
    m_quitAction->setShortcut(QKeySequence::Quit);
    m_quitAction->setMenuRole(QAction::QuitRole);

    m_editMenu = bar->addMenu(QStringLiteral("&Edit"));
    addPaneAction(m_editMenu, "Cu&t", MENU_ITEM_ID_CUT, QKeySequence::Cut);
    addPaneAction(m_editMenu, "&Copy", MENU_ITEM_ID_COPY, QKeySequence::Copy);
    addPaneAction(m_editMenu, "&Paste", MENU_ITEM_ID_PASTE, QKeySequence::Paste);
    addPaneAction(m_editMenu, "&Delete", MENU_ITEM_ID_DELETE, QKeySequence::Delete);
    m_editMenu->addSeparator();
    addPaneAction(m_editMenu, "Select &All", MENU_ITEM_ID_SELECT_ALL, QKeySequence::SelectAll);
    m_editMenu->addSeparator();
    addPaneAction(m_editMenu, "Copy All Clips to the &Other Pane...", MENU_ITEM_ID_ALL_COPY);
    m_editMenu->addSeparator();
    m_preferencesAction = m_editMenu->addAction(QStringLiteral("&Preferences..."));
    m_preferencesAction->setShortcut(QKeySequence(QStringLiteral("Ctrl+,")));
    m_preferencesAction->setMenuRole(QAction::PreferencesRole);

    m_viewMenu = bar->addMenu(QStringLiteral("&View"));
    for (const auto& [title, tag] : {std::pair{"Sort by &Title", MENU_ITEM_ID_SORT_TITLE},
                                     std::pair{"Sort by &Size", MENU_ITEM_ID_SORT_SIZE},
                                     std::pair{"Sort by &Duration", MENU_ITEM_ID_SORT_DURATION},
                                     std::pair{"Sort by D&ate", MENU_ITEM_ID_SORT_DATE}})
        addPaneAction(m_viewMenu, title, tag)->setCheckable(true);
    m_viewMenu->addSeparator();
    addPaneAction(m_viewMenu, "Re&fresh", MENU_ITEM_ID_REFRESH, QKeySequence::Refresh);
    m_showPreviewAction = m_viewMenu->addAction(QStringLiteral("Show &Preview"));
    m_showPreviewAction->setCheckable(true);
    m_showPreviewAction->setChecked(BLPlistCtrl::sharedCtrl()->getShowPreview());
    m_previewFrame->setVisible(m_showPreviewAction->isChecked());
    connect(m_showPreviewAction, &QAction::toggled, this, &SCMainWindow::showPreview);
    m_resetWindowSizeAction = m_viewMenu->addAction(QStringLiteral("&Reset Window Size"));
    m_resetWindowSizeAction->setData(MENU_ITEM_ID_RESET_WINDOW_SIZE);
    connect(m_resetWindowSizeAction, &QAction::triggered, this, [this] {
        if (m_ctrl)
            m_ctrl->selectMenuItem(m_resetWindowSizeAction->data().toInt());
    });

    m_clipMenu = bar->addMenu(QStringLiteral("&Clip"));
    addPaneAction(m_clipMenu, "&Play", MENU_ITEM_ID_THUMB_PLAY, QKeySequence(Qt::Key_Space));
    addPaneAction(m_clipMenu, "Show &Info...", MENU_ITEM_ID_SHOW_INFO,
                  QKeySequence(QStringLiteral("Ctrl+I")));
    m_clipMenu->addSeparator();
    addPaneAction(m_clipMenu, "&Search Clips...", MENU_ITEM_ID_CLIP_SEARCH, QKeySequence::Find);

    m_folderMenu = bar->addMenu(QStringLiteral("F&older"));
    addPaneAction(m_folderMenu, "&New Folder...", MENU_ITEM_ID_NEW_FOLDER,
                  QKeySequence(QStringLiteral("Ctrl+Shift+N")));
    addPaneAction(m_folderMenu, "&Rename Folder...", MENU_ITEM_ID_CHANGE_FOLDER_NAME);
    m_folderMenu->addSeparator();
    addPaneAction(m_folderMenu, "D&ivide Folder...", MENU_ITEM_ID_FOLDER_DIVISION);
    addPaneAction(m_folderMenu, "&Combine Folders...", MENU_ITEM_ID_FOLDER_COMBINE);
    m_folderMenu->addSeparator();
    addPaneAction(m_folderMenu, "Change &Media Name...", MENU_ITEM_ID_MEDIA_NAME_CHANGE);
    addPaneAction(m_folderMenu, "&Open in File Manager", MENU_ITEM_ID_OPEN_IN_FINDER);
    addPaneAction(m_folderMenu, "&Verify Folder...", MENU_ITEM_ID_VERIFY_FOLDER);

    // The keys of the transport commands belong to the preview picture (Space
    // plays the grid's take elsewhere): the menu shows them without binding
    // them. Full screen and the thumbnail have window-wide shortcuts.
    m_previewMenu = bar->addMenu(QStringLiteral("P&review"));
    const struct
    {
        int tag;
        const char* title;
        const char* pictureKey;
        QKeySequence shortcut;
    } previewItems[] = {
        {MENU_ITEM_ID_PREVIEW_PLAY, "&Play", "Space", {}},
        {MENU_ITEM_ID_PREVIEW_PAUSE, "P&ause", "Space", {}},
        {MENU_ITEM_ID_PREVIEW_FF, "&Fast Forward", "F", {}},
        {MENU_ITEM_ID_PREVIEW_RW, "&Rewind", "R", {}},
        {0, nullptr, nullptr, {}},
        {MENU_ITEM_ID_PREVIEW_TOP_FRAME, "F&irst Frame", "Up", {}},
        {MENU_ITEM_ID_PREVIEW_LAST_FRAME, "&Last Frame", "Down", {}},
        {MENU_ITEM_ID_PREVIEW_PLUS_FRAME, "&Next Frame", "Right", {}},
        {MENU_ITEM_ID_PREVIEW_MINUS_FRAME, "Pre&vious Frame", "Left", {}},
        {0, nullptr, nullptr, {}},
        {MENU_ITEM_ID_PREVIEW_FULL_SCREEN, "F&ull Screen", nullptr, QKeySequence(Qt::Key_F11)},
        {MENU_ITEM_ID_PREVIEW_MAKE_THUMBNAIL, "Use Frame as &Thumbnail", nullptr,
         QKeySequence(QStringLiteral("Ctrl+T"))}};
    for (const auto& item : previewItems) {
        if (!item.title) {
            m_previewMenu->addSeparator();
            continue;
        }
        QString title = QString::fromLatin1(item.title);
        if (item.pictureKey)
            title += QLatin1Char('\t') + QString::fromLatin1(item.pictureKey);
        QAction* action = m_previewMenu->addAction(title);
        action->setData(item.tag);
        action->setShortcut(item.shortcut);
        connect(action, &QAction::triggered, this, [this, tag = item.tag] {
            // A shortcut of a command not available now does nothing.
            bool enable = false;
            if (m_ctrl && m_ctrl->isSupportMenuItem(tag, &enable) && enable)
                m_ctrl->selectMenuItem(tag);
        });
    }

    m_helpMenu = bar->addMenu(QStringLiteral("&Help"));
    m_aboutAction = m_helpMenu->addAction(QStringLiteral("&About ORX Clipwright"));
    m_aboutAction->setMenuRole(QAction::AboutRole);

    for (QMenu* menu :
         {m_fileMenu, m_editMenu, m_viewMenu, m_clipMenu, m_folderMenu, m_previewMenu, m_helpMenu}) {
        connect(menu, &QMenu::aboutToShow, this, &SCMainWindow::validateMenuItems);
        connect(menu, &QMenu::aboutToHide, this, &SCMainWindow::enablePaneMenuItems);
    }
    m_focusConnection = connect(qApp, &QApplication::focusChanged, this,
                                [this](QWidget*, QWidget* now) { focusChanged(now); });
}

QAction* SCMainWindow::addPaneAction(QMenu* menu, const char* title, int tag, const QKeySequence& shortcut)
{
    QAction* action = menu->addAction(QString::fromUtf8(title));
    action->setData(tag);
    action->setShortcut(shortcut);
    connect(action, &QAction::triggered, this, [this, action] { selectPaneMenuItem(action); });
    m_paneActions << action;
    return action;
}

QWidget* SCMainWindow::paneContainer(int index) const
{
    return index == 0 ? m_mediaInfoView1 : index == 1 ? m_mediaInfoView2 : nullptr;
}

void SCMainWindow::installPaneViews()
{
    for (int index : {0, 1}) {
        BLMediaInfoCtrl* pane = m_ctrl ? m_ctrl->getMediaInfoCtrl(index) : nullptr;
        if (!pane || m_paneViews[index])
            continue;
        QWidget* container = paneContainer(index);
        auto* layout = new QVBoxLayout(container);
        layout->setContentsMargins(0, 0, 0, 0);
        m_paneViews[index] = new SCMediaInfoView(pane, container);
        layout->addWidget(m_paneViews[index]);
    }
    restoreLayout();
    // The menus start on the Main pane's grid.
    if (m_paneViews[0])
        m_paneViews[0]->thumbView()->setFocus(Qt::OtherFocusReason);
}

QList<std::pair<QString, QSplitter*>> SCMainWindow::layoutSplitters() const
{
    QList<std::pair<QString, QSplitter*>> splitters{{QStringLiteral("SPLIT"), m_splitView},
                                                    {QStringLiteral("PANES"), m_paneSplitView}};
    for (int index : {0, 1})
        if (m_paneViews[index])
            splitters.append({index == 0 ? QStringLiteral("PANE_MAIN") : QStringLiteral("PANE_SUB1"),
                              m_paneViews[index]->splitView()});
    return splitters;
}

void SCMainWindow::restoreLayout()
{
    for (const auto& [name, splitter] : layoutSplitters()) {
        const QByteArray state = BLPlistCtrl::sharedCtrl()->getLayoutState(name);
        if (!state.isEmpty() && splitter->restoreState(state) && splitter == m_splitView)
            m_splitToDefault = false;
    }
    // The preview's visibility is its own setting, not the splitter's.
    m_previewFrame->setVisible(m_showPreviewAction->isChecked());
}

void SCMainWindow::saveLayout() const
{
    for (const auto& [name, splitter] : layoutSplitters())
        BLPlistCtrl::sharedCtrl()->setLayoutState(name, splitter->saveState());
}

void SCMainWindow::showPreview(bool show)
{
    // A hidden preview plays nothing.
    if (!show)
        BLCommon::sharedCtrl()->sendNotificationNow(this, SC::SCMovieStopNotification);
    m_previewFrame->setVisible(show);
    BLPlistCtrl::sharedCtrl()->setShowPreview(show);
}

SCMediaInfoView* SCMainWindow::mediaInfoView(int index) const
{
    return index == 0 || index == 1 ? m_paneViews[index] : nullptr;
}

SCMediaInfoView* SCMainWindow::activeMediaInfoView() const
{
    return m_activePane;
}

void SCMainWindow::focusChanged(QWidget* now)
{
    // The menus stay on the pane they were on until the focus goes into the
    // other pane: focus leaving the window (to a dialog, or with the window
    // deactivated) or going to the menu bar (a menu opened or closed from the
    // keyboard) or the preview changes nothing.
    SCMediaInfoView* pane = nullptr;
    for (SCMediaInfoView* view : m_paneViews)
        if (view && now && view->isAncestorOf(now))
            pane = view;
    if (!pane)
        return;
    m_activePane = pane;
    if (m_ctrl)
        m_ctrl->setFocusMediaInfoCtrl(m_activePane ? m_activePane->ctrl() : nullptr,
                                      m_activePane && m_activePane->treeView() == now);
}

void SCMainWindow::selectPaneMenuItem(QAction* action)
{
    const int tag = action->data().toInt();
    bool enable = false;
    // A shortcut of a command that is not available now does nothing.
    if (m_ctrl && m_ctrl->isSupportMenuItem(tag, &enable) && enable)
        m_ctrl->selectMenuItem(tag);
}

void SCMainWindow::validateMenuItems()
{
    const bool key = isKeyWindow();
    m_aboutAction->setEnabled(key);
    m_preferencesAction->setEnabled(key);
    QList<QAction*> tagged = m_previewMenu->actions();
    tagged.prepend(m_resetWindowSizeAction);
    for (QAction* action : std::as_const(tagged)) {
        bool enable = false;
        if (!action->isSeparator() && m_ctrl && m_ctrl->isSupportMenuItem(action->data().toInt(), &enable))
            action->setEnabled(enable);
    }
    for (QAction* action : std::as_const(m_paneActions)) {
        const int tag = action->data().toInt();
        bool enable = false;
        action->setEnabled(m_ctrl && m_ctrl->isSupportMenuItem(tag, &enable) && enable);
        if (action->isCheckable()) {
            bool check = false;
            if (m_activePane && m_activePane->ctrl())
                m_activePane->ctrl()->thumbViewCtrl()->isSupportMenuItem(tag, nullptr, &check);
            action->setChecked(check);
        }
    }
}

void SCMainWindow::enablePaneMenuItems()
{
    for (QAction* action : std::as_const(m_paneActions))
        action->setEnabled(true);
}

QRectF SCMainWindow::screenFrame() const
{
    const QScreen* screen = QGuiApplication::primaryScreen();
    return screen ? QRectF(screen->availableGeometry()) : QRectF();
}

QRectF SCMainWindow::windowFrame() const
{
    return QRectF(pos(), size());
}

void SCMainWindow::setWindowFrame(const QRectF& frame)
{
    m_settingFrame = true;
    if (windowState() & (Qt::WindowMaximized | Qt::WindowFullScreen))
        setWindowState(windowState() & ~(Qt::WindowMaximized | Qt::WindowFullScreen));
    move(frame.topLeft().toPoint());
    resize(frame.size().toSize());
    m_settingFrame = false;
}

QSizeF SCMainWindow::minimumWindowSize() const
{
    return QSizeF(minimumSize());
}

bool SCMainWindow::isWindowVisible() const
{
    return isVisible();
}

bool SCMainWindow::isKeyWindow() const
{
    return QApplication::activeWindow() == this;
}

void SCMainWindow::setSplitToDefault()
{
    // A window being shown or resized gets its size later: the split is made
    // once the splitter has been laid out to its height.
    m_splitToDefault = true;
    applyDefaultSplit();
}

void SCMainWindow::applyDefaultSplit()
{
    const QList<int> sizes = m_splitView->sizes();
    const int total = sizes.value(0) + sizes.value(1);
    const bool laidOut =
        isVisible() && total > 0 && total + m_splitView->handleWidth() == m_splitView->height();
    if (!m_splitToDefault || !laidOut)
        return;
    m_splitToDefault = false;
    m_splitView->setSizes({total * 2 / 3, total - total * 2 / 3});
}

void SCMainWindow::showEvent(QShowEvent* event)
{
    QMainWindow::showEvent(event);
    applyDefaultSplit();
}

void SCMainWindow::setDividersLocked(bool locked)
{
    m_dividersLocked = locked;
    if (locked)
        m_lockedLowerHeight = m_splitView->sizes().value(1);
    m_splitView->handle(1)->setEnabled(!locked);
}

IPreviewView* SCMainWindow::previewView()
{
    return m_preview;
}

IClipSearchView* SCMainWindow::clipSearchView()
{
    if (!m_clipSearchDialog)
        m_clipSearchDialog = new ClipSearchDialog(this);
    return m_clipSearchDialog;
}

bool SCMainWindow::isHouseKeepingSheetVisible() const
{
    return m_hkWindow->isVisible();
}

void SCMainWindow::showHouseKeepingSheet()
{
    m_hkWindow->show();
}

void SCMainWindow::closeHouseKeepingSheet()
{
    m_hkWindow->hide();
}

void SCMainWindow::closeEvent(QCloseEvent* event)
{
    event->accept();
    if (m_closed)
        return;
    m_closed = true;
    BLLogCtrl::debug(0, QStringLiteral("[SCMainWindow windowShouldClose] return:TRUE"));
    saveLayout();
    if (m_ctrl)
        m_ctrl->windowWillCloseNotification();
    emit windowClosed();
}

void SCMainWindow::resizeEvent(QResizeEvent* event)
{
    QMainWindow::resizeEvent(event);
    if (m_splitToDefault) {
        applyDefaultSplit();
    } else if (m_dividersLocked && m_previewFrame->isVisible()) {
        // The layout has already given the split view its new height.
        const QList<int> sizes = m_splitView->sizes();
        const int total = sizes.value(0) + sizes.value(1);
        m_splitView->setSizes({total - m_lockedLowerHeight, m_lockedLowerHeight});
    }
    if (!m_ctrl)
        return;
    // The window system may ignore the minimum size; the controller's rule wins.
    const QSize allowed = m_ctrl->windowWillResize(QSizeF(size())).toSize();
    if (allowed != size())
        resize(allowed);
    m_ctrl->windowDidResize();
}

void SCMainWindow::changeEvent(QEvent* event)
{
    QMainWindow::changeEvent(event);
    if (event->type() != QEvent::WindowStateChange || !m_ctrl || m_settingFrame || m_revertingZoom)
        return;
    const Qt::WindowStates oldState = static_cast<QWindowStateChangeEvent*>(event)->oldState();
    const Qt::WindowStates newState = windowState();
    if ((newState & Qt::WindowMinimized) && !(oldState & Qt::WindowMinimized))
        m_ctrl->windowWillMiniaturizeNotification();
    else if (!(newState & Qt::WindowMinimized) && (oldState & Qt::WindowMinimized))
        m_ctrl->windowDidDeminiaturizeNotification();
    else if ((newState ^ oldState) & Qt::WindowMaximized)
        zoomStateChanged(oldState);
}

void SCMainWindow::zoomStateChanged(Qt::WindowStates oldState)
{
    // Qt tells of a zoom (maximise or restore) once it has been asked for; a
    // refused zoom is undone at once.
    const QRectF target = (windowState() & Qt::WindowMaximized) ? maximizedFrame() : QRectF(normalGeometry());
    if (!m_ctrl->windowShouldZoom(target)) {
        m_revertingZoom = true;
        setWindowState(oldState);
        m_revertingZoom = false;
        return;
    }
    // Some window systems resize before they report the new state: then no
    // resize follows, and the zoom ends here.
    if (size() == target.size().toSize())
        m_ctrl->windowDidResize();
}

QRectF SCMainWindow::maximizedFrame() const
{
    const QRect outer = frameGeometry();
    const QRect inner = geometry();
    const QMargins decoration(inner.left() - outer.left(), inner.top() - outer.top(),
                              outer.right() - inner.right(), outer.bottom() - inner.bottom());
    const QScreen* current = screen();
    const QRect available = current ? current->availableGeometry() : screenFrame().toRect();
    return QRectF(available.marginsRemoved(decoration));
}
