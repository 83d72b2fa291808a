#include "ui/app/SCMainWindow.h"

#include "core/app/BLLogCtrl.h"
#include "core/app/BLMainWindowCtrl.h"
#include "ui/app/HouseKeepingSheet.h"
#include "ui/common/LocalizedTitle.h"
#include "core/preview/BLPreviewCtrl.h"
#include "ui/common/SCFrameView.h"
#include "ui/preview/SCPreviewView.h"

#include <QApplication>
#include <QCloseEvent>
#include <QHBoxLayout>
#include <QMenuBar>
#include <QScreen>
#include <QSplitter>
#include <QWindowStateChangeEvent>

SCMainWindow::SCMainWindow(QWidget* parent)
    : QMainWindow(parent), m_hkWindow(new HouseKeepingSheet(this)), m_mediaInfoFrame1(new SCFrameView),
      m_mediaInfoFrame2(new SCFrameView), m_mediaInfoView1(m_mediaInfoFrame1->contentView()),
      m_mediaInfoView2(m_mediaInfoFrame2->contentView()), m_previewFrame(new SCFrameView),
      m_previewView(m_previewFrame->contentView()), m_preview(new SCPreviewView(m_previewView)),
      m_splitView(new QSplitter(Qt::Vertical))
{
    setWindowTitle(QStringLiteral("Clipwright"));
    setMinimumSize(kMinimumWidth, kMinimumHeight);

    auto* paneArea = new QWidget;
    auto* paneLayout = new QHBoxLayout(paneArea);
    paneLayout->setContentsMargins(0, 0, 0, 0);
    paneLayout->setSpacing(4);
    paneLayout->addWidget(m_mediaInfoFrame1);
    paneLayout->addWidget(m_mediaInfoFrame2);
    paneArea->setMinimumHeight(kPaneAreaMinimumHeight);
    m_previewFrame->setMinimumHeight(kPreviewMinimumHeight);
    auto* previewLayout = new QHBoxLayout(m_previewView);
    previewLayout->setContentsMargins(0, 0, 0, 0);
    previewLayout->addWidget(m_preview);

    m_splitView->addWidget(paneArea);
    m_splitView->addWidget(m_previewFrame);
    m_splitView->setChildrenCollapsible(false);
    m_splitView->setSizes({3, 2});
    auto* central = new QWidget;
    auto* centralLayout = new QHBoxLayout(central);
    centralLayout->setContentsMargins(4, 2, 4, 4);
    centralLayout->addWidget(m_splitView);
    setCentralWidget(central);

    createMenus();
    localizedTitleByObject(this);
}

void SCMainWindow::createMenus()
{
    QMenuBar* bar = menuBar();
    m_fileMenu = bar->addMenu(QStringLiteral("&File"));
    m_quitAction = m_fileMenu->addAction(QStringLiteral("&Quit"));
    m_quitAction->setShortcut(QKeySequence::Quit);
    m_quitAction->setMenuRole(QAction::QuitRole);

    m_editMenu = bar->addMenu(QStringLiteral("&Edit"));
    m_preferencesAction = m_editMenu->addAction(QStringLiteral("&Preferences..."));
    m_preferencesAction->setShortcut(QKeySequence(QStringLiteral("Ctrl+,")));
    m_preferencesAction->setMenuRole(QAction::PreferencesRole);

    m_viewMenu = bar->addMenu(QStringLiteral("&View"));
    m_resetWindowSizeAction = m_viewMenu->addAction(QStringLiteral("&Reset Window Size"));
    m_resetWindowSizeAction->setData(MENU_ITEM_ID_RESET_WINDOW_SIZE);
    connect(m_resetWindowSizeAction, &QAction::triggered, this, [this] {
        if (m_ctrl)
            m_ctrl->selectMenuItem(m_resetWindowSizeAction->data().toInt());
    });

    m_previewMenu = bar->addMenu(QStringLiteral("P&review"));
    const struct
    {
        int tag;
        const char* title;
    } previewItems[] = {{MENU_ITEM_ID_PREVIEW_PLAY, "&Play"},
                        {MENU_ITEM_ID_PREVIEW_PAUSE, "P&ause"},
                        {MENU_ITEM_ID_PREVIEW_FF, "&Fast Forward"},
                        {MENU_ITEM_ID_PREVIEW_RW, "&Rewind"},
                        {0, nullptr},
                        {MENU_ITEM_ID_PREVIEW_TOP_FRAME, "F&irst Frame"},
                        {MENU_ITEM_ID_PREVIEW_LAST_FRAME, "&Last Frame"},
                        {MENU_ITEM_ID_PREVIEW_PLUS_FRAME, "&Next Frame"},
                        {MENU_ITEM_ID_PREVIEW_MINUS_FRAME, "Pre&vious Frame"},
                        {0, nullptr},
                        {MENU_ITEM_ID_PREVIEW_FULL_SCREEN, "F&ull Screen"},
                        {MENU_ITEM_ID_PREVIEW_MAKE_THUMBNAIL, "Use Frame as &Thumbnail"}};
    for (const auto& item : previewItems) {
        if (!item.title) {
            m_previewMenu->addSeparator();
            continue;
        }
        QAction* action = m_previewMenu->addAction(QString::fromLatin1(item.title));
        action->setData(item.tag);
        connect(action, &QAction::triggered, this, [this, tag = item.tag] {
            if (m_ctrl)
                m_ctrl->selectMenuItem(tag);
        });
    }

    m_helpMenu = bar->addMenu(QStringLiteral("&Help"));
    m_aboutAction = m_helpMenu->addAction(QStringLiteral("&About ORX Clipwright"));
    m_aboutAction->setMenuRole(QAction::AboutRole);

    for (QMenu* menu : {m_fileMenu, m_editMenu, m_viewMenu, m_previewMenu, m_helpMenu})
        connect(menu, &QMenu::aboutToShow, this, &SCMainWindow::validateMenuItems);
}

QWidget* SCMainWindow::paneContainer(int index) const
{
    return index == 0 ? m_mediaInfoView1 : index == 1 ? m_mediaInfoView2 : nullptr;
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

void SCMainWindow::setSplitUpperSideToMinimum()
{
    const QList<int> sizes = m_splitView->sizes();
    const int total = sizes.value(0) + sizes.value(1);
    const int upper = m_splitView->widget(0)->minimumHeight();
    m_splitView->setSizes({upper, std::max(total - upper, kPreviewMinimumHeight)});
}

void SCMainWindow::setDividersLocked(bool locked)
{
    m_dividersLocked = locked;
    if (locked)
        m_lockedUpperHeight = m_splitView->sizes().value(0);
    m_splitView->handle(1)->setEnabled(!locked);
}

IPreviewView* SCMainWindow::previewView()
{
    return m_preview;
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
    if (m_ctrl)
        m_ctrl->windowWillCloseNotification();
    emit windowClosed();
}

void SCMainWindow::resizeEvent(QResizeEvent* event)
{
    QMainWindow::resizeEvent(event);
    if (m_dividersLocked) {
        // The layout has already given the split view its new height.
        const QList<int> sizes = m_splitView->sizes();
        const int total = sizes.value(0) + sizes.value(1);
        m_splitView->setSizes({m_lockedUpperHeight, total - m_lockedUpperHeight});
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
