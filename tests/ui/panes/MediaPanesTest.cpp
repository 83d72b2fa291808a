#include "core/app/BLMainWindowCtrl.h"
#include "core/app/panes/BLMediaInfoCtrl.h"
#include "core/app/panes/BLThumbViewCtrl.h"
#include "core/app/preview/BLPreviewCtrl.h"
#include "core/app/preview/BLTimeSliderCtrl.h"
#include "core/card/BLTreeViewCtrl.h"
#include "core/services/BLCommon.h"
#include "core/services/SCNotificationNames.h"
#include "support/CardFolder.h"
#include "support/FrameCounter.h"
#include "support/MessageRecorder.h"
#include "support/NotificationRecorder.h"
#include "support/QtPrinters.h"
#include "support/TestEnvironment.h"
#include "support/UserInput.h"
#include "ui/app/SCMainWindow.h"
#include "ui/operations/ClipTransferDialog.h"
#include "ui/panes/SCMediaInfoView.h"
#include "ui/panes/SCThumbView.h"
#include "ui/panes/SCTreeView.h"
#include "ui/preview/SCOpenGLView.h"
#include "ui/preview/SCPreviewView.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QKeySequence>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>
#include <QScrollBar>
#include <QSplitter>
#include <QTest>
#include <QToolButton>

#include <memory>

using namespace cwtest;

namespace {

cardgen::Options card(int clips, const QString& prefix, int daysAgo)
{
    cardgen::Options options = CardFolder::fast(clips);
    options.prefix = prefix;
    options.recorded = QDateTime::currentDateTimeUtc().addDays(-daysAgo); // UMIDs of their own
    return options;
}

QList<int> selectedRows(const BLThumbViewCtrl* grid)
{
    QList<int> rows;
    for (const QModelIndex& index : grid->selectionModel()->selectedIndexes())
        rows << index.row();
    std::sort(rows.begin(), rows.end());
    return rows;
}

QAction* actionOf(QMenu* menu, int tag)
{
    for (QAction* action : menu->actions())
        if (!action->isSeparator() && action->data().toInt() == tag)
            return action;
    return nullptr;
}

} // namespace

// The main window with both panes, each on a card of its own, as the
// application builds it.
class MediaPanesTest : public HomeTest
{
protected:
    void SetUp() override
    {
        HomeTest::SetUp();
        ASSERT_TRUE(m_main.ok() && m_sub1.ok())
            << m_main.error().toStdString() << m_sub1.error().toStdString();
        writeSettings(home().configHome(), {{"WORK_FOLDER", m_main.workFolder()},
                                            {"SELECT_FOLDER", m_main.workFolder()},
                                            {"WORK_FOLDER_SUB1", m_sub1.workFolder()},
                                            {"SELECT_FOLDER_SUB1", m_sub1.workFolder()},
                                            {"MAIN_WIN_WIDTH", 1280.0},
                                            {"MAIN_WIN_HEIGHT", 800.0},
                                            {"LOG_FLAG", "DEBUG"}});
        open();
        expectNoMessage();
    }
    // The main window as the application opens it, both grids loaded.
    void open()
    {
        window = std::make_unique<SCMainWindow>();
        ctrl = std::make_unique<BLMainWindowCtrl>(*window);
        window->setController(ctrl.get());
        ctrl->awakeFromNib();
        window->installPaneViews();
        window->show();
        window->activateWindow();
        ASSERT_TRUE(waitFor([&] { return QApplication::activeWindow() == window.get(); }));
        ctrl->initializeCtrl();
        ASSERT_TRUE(
            waitFor([&] { return grid(0)->rowCount() == kMainClips && grid(1)->rowCount() == kSub1Clips; }));
    }
    void close()
    {
        window->close();
        window.reset();
        ctrl.reset();
    }
    void TearDown() override
    {
        close();
        HomeTest::TearDown();
    }
    // Answers the next transfer dialog once it is up, keeping its name and folders.
    static void answerTransfer(bool accept, QString* shown)
    {
        QTimer::singleShot(20, [=] {
            auto* dialog = qobject_cast<ClipTransferDialog*>(QApplication::activeModalWidget());
            if (!dialog)
                return answerTransfer(accept, shown);
            *shown = dialog->objectName() + ": " + dialog->sourceField()->text() + " -> " +
                     dialog->destinationField()->text();
            accept ? dialog->accept() : dialog->reject();
        });
    }

    SCMediaInfoView* pane(int index) const { return window->mediaInfoView(index); }
    SCThumbView* thumbView(int index) const { return pane(index)->thumbView(); }
    BLThumbViewCtrl* grid(int index) const { return pane(index)->ctrl()->thumbViewCtrl(); }
    QPoint centerOf(int index, int row) const
    {
        return thumbView(index)->visualRect(grid(index)->index(row)).center();
    }
    void select(int index, QList<int> rows)
    {
        grid(index)->selectionModel()->clear();
        for (int row : rows)
            grid(index)->selectionModel()->select(grid(index)->index(row), QItemSelectionModel::Select);
    }
    // Whether the grid's picture of a row has arrived.
    bool hasImage(int index, int row) const
    {
        return !grid(index)->index(row).data(BLThumbViewCtrl::ImageRole).value<QImage>().isNull();
    }
    static bool logged(const QString& text) { return logMessages().join('\n').contains(text); }
    void focusPane(int index)
    {
        window->activateWindow();
        // The offscreen platform does not always hand the activation back
        // once a sheet has been shown and hidden.
        if (!waitFor([&] { return QApplication::activeWindow() == window.get(); }, 500))
            QApplication::setActiveWindow(window.get());
        ASSERT_TRUE(waitFor([&] { return QApplication::activeWindow() == window.get(); }));
        thumbView(index)->setFocus(Qt::MouseFocusReason);
        QApplication::processEvents();
        ASSERT_EQ(window->activeMediaInfoView(), pane(index));
    }
    void expectNoMessage()
    {
        EXPECT_TRUE(m_messages.keys().isEmpty()) << m_messages.keys().join(' ').toStdString();
    }

    static constexpr int kMainClips = 12;
    static constexpr int kSub1Clips = 3;
    CardFolder m_main{card(kMainClips, "MAI", 1)};
    CardFolder m_sub1{card(kSub1Clips, "SUB", 2)};
    MessageRecorder m_messages;
    std::unique_ptr<SCMainWindow> window;
    std::unique_ptr<BLMainWindowCtrl> ctrl;
};

TEST_F(MediaPanesTest, TheGridShowsTheTakesAndAsksForThePicturesOfShownItemsOnly)
{
    // Each pane shows its card: the folder name, the takes by name.
    EXPECT_EQ(pane(0)->folderNameField()->text(), QDir(m_main.workFolder()).dirName());
    for (int row = 0; row < kMainClips; ++row)
        EXPECT_EQ(grid(0)->index(row).data(BLThumbViewCtrl::TakeIdRole).toString(),
                  QString("MAI%1").arg(row + 1, 4, 10, QChar('0')));

    // The grid is one row high: the first row's pictures are asked for and
    // drawn; the rows out of sight are not asked for.
    window->splitView()->setSizes({SCMainWindow::kPaneAreaMinimumHeight, 2000});
    QApplication::processEvents();
    SCThumbView* view = thumbView(0);
    const QRect first = view->visualRect(grid(0)->index(0));
    ASSERT_TRUE(view->viewport()->rect().intersects(first));
    ASSERT_FALSE(view->viewport()->rect().intersects(view->visualRect(grid(0)->index(kMainClips - 1))));

    // Until the picture arrives the item shows the dark placeholder.
    const QPoint corner = first.topLeft() + QPoint(9, 9);
    if (!hasImage(0, 0)) {
        EXPECT_EQ(view->viewport()->grab().toImage().pixelColor(corner), QColor(60, 60, 64));
    }
    ASSERT_TRUE(waitFor([&] { return hasImage(0, 0); }));
    EXPECT_NE(view->viewport()->grab().toImage().pixelColor(corner), QColor(60, 60, 64));
    EXPECT_FALSE(grid(0)->thumbArray().at(kMainClips - 1).isImageRequested());

    // Scrolling to the end asks for the rest.
    view->scrollToBottom();
    view->viewport()->grab();
    EXPECT_TRUE(grid(0)->thumbArray().at(kMainClips - 1).isImageRequested());
}

TEST_F(MediaPanesTest, ClicksKeysAndMenusSelectAndPlay)
{
    SCThumbView* view = thumbView(0);
    QWidget* viewport = view->viewport();
    BLThumbViewCtrl* main = grid(0);
    const struct
    {
        int row;
        Qt::KeyboardModifiers modifiers;
        QList<int> selected;
    } clicks[] = {{0, Qt::NoModifier, {0}},
                  {3, Qt::ShiftModifier, {0, 1, 2, 3}},
                  {1, Qt::ControlModifier, {0, 2, 3}},
                  {5, Qt::NoModifier, {5}}};
    for (const auto& c : clicks) {
        click(viewport, centerOf(0, c.row), c.modifiers);
        EXPECT_EQ(selectedRows(main), c.selected) << c.row;
    }
    // Arrow keys move the selection; Shift extends it.
    key(view, Qt::Key_Right);
    EXPECT_EQ(selectedRows(main), QList<int>{6});
    key(view, Qt::Key_Right, Qt::ShiftModifier);
    EXPECT_EQ(selectedRows(main), (QList<int>{6, 7}));

    // A rubber band from the empty space after the last item back over the
    // first row selects what it touches.
    const QRect lastRect = view->visualRect(main->index(kMainClips - 1));
    QPoint empty = lastRect.topRight() + QPoint(20, 10);
    if (empty.x() >= viewport->width())
        empty = QPoint(lastRect.left() + 10, lastRect.bottom() + 20);
    ASSERT_FALSE(view->indexAt(empty).isValid());
    const QPoint end = centerOf(0, 0);
    mouse(viewport, QEvent::MouseButtonPress, empty);
    mouse(viewport, QEvent::MouseMove, (empty + end) / 2);
    mouse(viewport, QEvent::MouseMove, end);
    mouse(viewport, QEvent::MouseButtonRelease, end);
    const QList<int> banded = selectedRows(main);
    EXPECT_GE(banded.size(), 2);
    EXPECT_TRUE(banded.contains(0) && banded.contains(kMainClips - 1));

    // Return and a double click play the only selected take.
    NotificationRecorder plays({SC::SCMoviePlayNotification});
    click(viewport, centerOf(0, 2));
    key(view, Qt::Key_Return);
    ASSERT_TRUE(waitFor([&] { return plays.notes.size() == 1; }));
    mouse(viewport, QEvent::MouseButtonDblClick, centerOf(0, 2));
    mouse(viewport, QEvent::MouseButtonRelease, centerOf(0, 2));
    ASSERT_TRUE(waitFor([&] { return plays.notes.size() == 2; }));

    // Select All in the Edit menu goes to the pane that has the focus.
    focusPane(1);
    window->validateMenuItems();
    actionOf(window->editMenu(), MENU_ITEM_ID_SELECT_ALL)->trigger();
    EXPECT_EQ(grid(1)->getSelectCount(), kSub1Clips);
    EXPECT_EQ(main->getSelectCount(), 1);
}

TEST_F(MediaPanesTest, MenusContextMenuAndToolButtonsFollowTheControllers)
{
    focusPane(0);
    BLThumbViewCtrl* main = grid(0);
    BLMediaInfoCtrl* mainPane = pane(0)->ctrl();
    auto enabled = [&](QMenu* menu, int tag) {
        window->validateMenuItems();
        QAction* action = actionOf(menu, tag);
        EXPECT_NE(action, nullptr) << tag;
        return action && action->isEnabled();
    };

    // With the grid focused, every pane item of the menu bar is enabled
    // exactly as the pane's grid answers, with nothing and with one take selected.
    for (const QList<int>& selection : {QList<int>{}, QList<int>{1}}) {
        select(0, selection);
        window->validateMenuItems();
        for (QMenu* menu : {window->fileMenu(), window->editMenu(), window->viewMenu(), window->clipMenu(),
                            window->folderMenu()}) {
            for (QAction* action : menu->actions()) {
                const int tag = action->data().toInt();
                if (action->isSeparator() || tag == MENU_ITEM_ID_RESET_WINDOW_SIZE ||
                    action == window->quitAction() || action == window->preferencesAction() ||
                    action == window->showPreviewAction())
                    continue;
                bool enable = false;
                mainPane->isSupportMenuItemToThumbView(tag, &enable, nullptr);
                EXPECT_EQ(action->isEnabled(), enable) << action->text().toStdString();
            }
        }
    }

    // With the folder list focused, Delete deletes the folder; the clip
    // commands are not the list's.
    pane(0)->treeView()->setFocus(Qt::MouseFocusReason);
    EXPECT_TRUE(enabled(window->editMenu(), MENU_ITEM_ID_DELETE));
    EXPECT_FALSE(enabled(window->editMenu(), MENU_ITEM_ID_COPY));
    focusPane(0);

    // A shortcut of a disabled command does nothing once the menu has closed.
    window->enablePaneMenuItems();
    main->selectionModel()->clear();
    actionOf(window->editMenu(), MENU_ITEM_ID_CUT)->trigger();
    EXPECT_FALSE(logged("menuItemID:MENU_ITEM_ID_CUT"));
    select(0, {1});
    actionOf(window->editMenu(), MENU_ITEM_ID_CUT)->trigger();
    EXPECT_TRUE(logged("menuItemID:MENU_ITEM_ID_CUT"));

    // Sorting: the checked item follows the grid's sort mode; a new order
    // shows the grid from its top.
    thumbView(0)->scrollToBottom();
    ASSERT_GT(thumbView(0)->verticalScrollBar()->value(), 0);
    actionOf(window->viewMenu(), MENU_ITEM_ID_SORT_DURATION)->trigger();
    EXPECT_EQ(thumbView(0)->verticalScrollBar()->value(), 0);
    window->validateMenuItems();
    EXPECT_FALSE(actionOf(window->viewMenu(), MENU_ITEM_ID_SORT_TITLE)->isChecked());
    EXPECT_TRUE(actionOf(window->viewMenu(), MENU_ITEM_ID_SORT_DURATION)->isChecked());

    // The grid's context menu: each command enabled as the controller
    // answers; choosing one runs it.
    select(0, {0});
    const std::unique_ptr<QMenu> menu(thumbView(0)->makeContextMenu());
    for (QAction* action : menu->actions()) {
        bool enable = false;
        main->isSupportMenuItem(action->data().toInt(), &enable, nullptr);
        EXPECT_TRUE(action->isSeparator() || action->isEnabled() == enable) << action->text().toStdString();
    }
    actionOf(menu.get(), MENU_ITEM_ID_SELECT_ALL)->trigger();
    EXPECT_EQ(main->getSelectCount(), kMainClips);

    // Tool buttons: one per command, enabled as the folder list answers.
    for (int tag : SCMediaInfoView::toolButtonTags()) {
        bool enable = false;
        mainPane->isSupportMenuItemToTreeView(tag, &enable, nullptr);
        ASSERT_NE(pane(0)->toolButton(tag), nullptr);
        EXPECT_EQ(pane(0)->toolButton(tag)->isEnabled(), enable) << tag;
    }
}

// However a menu closes (here with Escape, opened from the keyboard), the
// menus and their shortcuts stay with the pane that had the focus.
TEST_F(MediaPanesTest, MenusClosedWithEscapeKeepTheirCommands)
{
    focusPane(0);
    select(0, {1});
    const QList<QMenu*> menus{window->fileMenu(), window->editMenu(),   window->viewMenu(),
                              window->clipMenu(), window->folderMenu(), window->previewMenu()};
    auto enabledCommands = [&] {
        window->validateMenuItems();
        QStringList enabled;
        for (QMenu* menu : menus)
            for (QAction* action : menu->actions())
                if (!action->isSeparator() && action->isEnabled())
                    enabled << action->text();
        return enabled;
    };
    for (QMenu* menu : menus) {
        SCOPED_TRACE(menu->title().toStdString());
        const QStringList before = enabledCommands();
        ASSERT_TRUE(before.contains("&Play"));
        const QChar mnemonic = menu->title().at(menu->title().indexOf('&') + 1);
        QTest::keyClick(QApplication::focusWidget(), mnemonic.toLatin1(), Qt::AltModifier);
        ASSERT_TRUE(waitFor([&] { return menu->isVisible(); }));
        QTest::keyClick(menu, Qt::Key_Escape);
        ASSERT_TRUE(waitFor([&] { return !menu->isVisible(); }));
        EXPECT_EQ(window->activeMediaInfoView(), pane(0));
        EXPECT_EQ(enabledCommands(), before);
        // Space plays the selected take.
        NotificationRecorder plays({SC::SCMoviePlayNotification});
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);
        EXPECT_TRUE(waitFor([&] { return plays.notes.size() == 1; }, 2000));
        focusPane(0);
    }
}

// Made for browsing: the panes have two thirds of the height at first; the
// splitters, each pane's sort order and a hidden preview survive a restart.
TEST_F(MediaPanesTest, TheLayoutIsMadeForBrowsingAndKeptAcrossARestart)
{
    const QList<int> first = window->splitView()->sizes();
    EXPECT_NEAR(first.value(0), 2 * first.value(1), 3);
    EXPECT_TRUE(window->previewContainer()->isVisibleTo(window.get()));
    EXPECT_TRUE(window->showPreviewAction()->isChecked());
    // The default layout with its pictures is the README's screenshot.
    select(0, {2});
    ASSERT_TRUE(waitFor([&] {
        for (int index : {0, 1})
            thumbView(index)->viewport()->grab();
        for (int row = 0; row < kSub1Clips; ++row)
            if (!hasImage(0, row) || !hasImage(1, row))
                return false;
        return true;
    }));
    ASSERT_TRUE(QDir().mkpath(QStringLiteral(CLIPWRIGHT_BINARY_DIR "/screenshots")));
    EXPECT_TRUE(
        window->grab().toImage().save(QStringLiteral(CLIPWRIGHT_BINARY_DIR "/screenshots/panes.png")));

    window->splitView()->setSizes({first.value(0) - 60, first.value(1) + 60});
    window->paneSplitView()->setSizes({500, 700});
    pane(0)->splitView()->setSizes({150, 300});
    const QList<int> split = window->splitView()->sizes();
    const QList<int> panes = window->paneSplitView()->sizes();
    const QList<int> list = pane(0)->splitView()->sizes();
    focusPane(1);
    actionOf(window->viewMenu(), MENU_ITEM_ID_SORT_DURATION)->trigger();
    ASSERT_EQ(grid(1)->getSortMode(), BLThumbViewCtrl::kSortDuration);

    const auto restart = [&] {
        close();
        releaseSingletons();
        open();
    };
    restart();
    EXPECT_EQ(window->splitView()->sizes(), split);
    EXPECT_EQ(window->paneSplitView()->sizes(), panes);
    EXPECT_EQ(pane(0)->splitView()->sizes(), list);
    EXPECT_EQ(grid(0)->getSortMode(), BLThumbViewCtrl::kSortTitle);
    EXPECT_EQ(grid(1)->getSortMode(), BLThumbViewCtrl::kSortDuration);

    // Hidden, the preview stops and stays hidden at the next start.
    NotificationRecorder stops({SC::SCMovieStopNotification});
    window->showPreviewAction()->trigger();
    EXPECT_FALSE(window->previewContainer()->isVisibleTo(window.get()));
    EXPECT_EQ(stops.notes.size(), 1);
    restart();
    EXPECT_FALSE(window->showPreviewAction()->isChecked());
    EXPECT_FALSE(window->previewContainer()->isVisibleTo(window.get()));
    EXPECT_EQ(window->paneSplitView()->sizes(), panes);
}

// Folders made and removed by another program appear and go in both panes
// showing their parent; F5 reads the selected folder again.
TEST_F(MediaPanesTest, FolderListsFollowTheDiskAndRefreshReloadsTheGrid)
{
    const QString parent = QFileInfo(m_main.workFolder()).path();
    for (int index : {0, 1})
        pane(index)->ctrl()->setWorkFolder(parent, false);
    auto panesListing = [&](const QString& name) {
        int panes = 0;
        for (int index : {0, 1})
            panes += pane(index)->ctrl()->treeViewCtrl()->searchIndexByFolderPath(parent + "/" + name) >= 0;
        return panes;
    };
    ASSERT_EQ(panesListing("card"), 2);
    // The parent holds no card: the grid says so and how to choose another folder.
    ASSERT_TRUE(waitFor([&] { return !thumbView(0)->emptyText().isEmpty(); }));
    const QString hint = thumbView(0)->emptyText();
    EXPECT_TRUE(hint.startsWith("No camera card in this folder.")) << hint.toStdString();
    EXPECT_TRUE(hint.contains(QKeySequence(QKeySequence::Open).toString(QKeySequence::NativeText)));

    ASSERT_TRUE(QDir(parent).mkdir("Day 2"));
    ASSERT_TRUE(waitFor([&] { return panesListing("Day 2") == 2; }, 1000));
    ASSERT_TRUE(QDir(parent).rmdir("Day 2"));
    ASSERT_TRUE(waitFor([&] { return panesListing("Day 2") == 0; }, 1000));

    // The card selected again: a clip folder copied in by hand shows on F5.
    pane(0)->ctrl()->setWorkFolder(m_main.workFolder(), false);
    ASSERT_TRUE(waitFor([&] { return grid(0)->rowCount() == kMainClips; }));
    ASSERT_TRUE(BLCommon::copyFile(m_main.bpav() + "/CLPR/MAI0001", m_main.bpav() + "/CLPR/MAI0001 copy"));
    focusPane(0);
    QTest::keyClick(thumbView(0), Qt::Key_F5);
    ASSERT_TRUE(waitFor([&] { return grid(0)->rowCount() == kMainClips + 1; }));
}

// A take played to its end stays on its last frame and Space plays it again
// from the start.
TEST_F(MediaPanesTest, ATakePlayedToItsEndShowsItsLastFrameAndPlaysAgainOnSpace)
{
    doubleClick(thumbView(0)->viewport(), centerOf(0, 0));
    BLPreviewCtrl* preview = ctrl->getPreviewCtrl();
    const qint64 last = grid(0)->thumbArray().at(0).getDurationFrames() - 1;
    ASSERT_TRUE(waitFor([&] { return preview->getViewerState() == VM_PLAYED; }));
    ASSERT_TRUE(waitFor([&] {
        return preview->getViewerState() == VM_PAUSING && preview->getTimeSliderCtrl().getFrameNo() == last;
    }));
    EXPECT_FALSE(window->previewWidget()->titleField()->text().isEmpty()) << "the take stays loaded";
    // The picture is the last frame's, inside its black bars.
    SCOpenGLView* picture = window->previewWidget()->openGLView();
    const QImage shown = picture->grab().toImage();
    QRect inside;
    for (int y = 0; y < shown.height(); ++y)
        for (int x = 0; x < shown.width(); ++x)
            if (qGray(shown.pixel(x, y)) > 40)
                inside |= QRect(x, y, 1, 1);
    const auto counter = readFrameCounter(shown.copy(inside));
    ASSERT_TRUE(counter.has_value());
    EXPECT_EQ(counter->frame, last);
    ASSERT_TRUE(QDir().mkpath(QStringLiteral(CLIPWRIGHT_BINARY_DIR "/screenshots")));
    EXPECT_TRUE(
        window->grab().toImage().save(QStringLiteral(CLIPWRIGHT_BINARY_DIR "/screenshots/preview.png")));
    // Minimised, the picture is hidden; back, it is shown.
    ctrl->windowWillMiniaturizeNotification();
    EXPECT_FALSE(picture->isVisible());
    ctrl->windowDidDeminiaturizeNotification();
    EXPECT_TRUE(picture->isVisible());

    picture->setFocus(Qt::MouseFocusReason);
    QTest::keyClick(picture, Qt::Key_Space);
    EXPECT_TRUE(waitFor([&] { return preview->getTimeSliderCtrl().getFrameNo() < last; }, 2000))
        << "played again from the start";
    expectNoMessage();
}

// A take whose essence is gone still shows its name, and playing it names
// the file that is missing.
TEST_F(MediaPanesTest, ABrokenTakeShowsItsNameAndSaysWhatIsMissing)
{
    ASSERT_TRUE(QFile::remove(m_main.bpav() + "/CLPR/MAI0002/MAI0002.MP4"));
    focusPane(0);
    QTest::keyClick(thumbView(0), Qt::Key_F5);
    int row = -1;
    ASSERT_TRUE(waitFor([&] {
        for (int r = 0; r < grid(0)->rowCount(); ++r)
            if (grid(0)->index(r).data(BLThumbViewCtrl::TakeIdRole).toString() == "MAI0002")
                row = r;
        return row >= 0 && grid(0)->thumbArray().at(row).getTakeStatus() == 5;
    }));
    select(0, {row});
    key(thumbView(0), Qt::Key_Return);
    ASSERT_EQ(m_messages.keys(), QStringList{"MSG_633_3191"});
    const QString message = m_messages.alerts()[0].message;
    EXPECT_TRUE(message.contains("MAI0002") && message.contains("CLPR/MAI0002/MAI0002.MP4"))
        << message.toStdString();
}

// The Delete key in the grid asks first and only the first button deletes.
TEST_F(MediaPanesTest, TheDeleteKeyDeletesTakesOnceConfirmed)
{
    focusPane(0);
    select(0, {1});
    const QString folder =
        m_main.bpav() + "/CLPR/" + pane(0)->ctrl()->getSelectAllTakeData().value(0).getShownTakeID();
    for (int answer : {IMessagePresenter::kSecondButton, IMessagePresenter::kFirstButton}) {
        const bool confirmed = answer == IMessagePresenter::kFirstButton;
        m_messages.clear();
        m_messages.setAnswer(answer);
        key(thumbView(0), Qt::Key_Delete);
        EXPECT_EQ(m_messages.keys(), QStringList{"MSG_645_3123"});
        EXPECT_NE(QFileInfo::exists(folder), confirmed);
        EXPECT_TRUE(waitFor([&] {
            return !window->isHouseKeepingSheetVisible() &&
                   grid(0)->rowCount() == kMainClips - int(confirmed);
        }));
    }
}

// Takes dropped on the other grid are copied, with Shift moved; cut in one
// pane and pasted in the other they are moved.
TEST_F(MediaPanesTest, DropsAndCutAndPasteCopyOrMoveTakesToTheOtherPane)
{
    BLThumbViewCtrl* main = grid(0);
    select(0, {1, 4});
    const std::unique_ptr<QMimeData> dragged(main->mimeData(main->selectionModel()->selectedIndexes()));
    auto drop = [&](int target, Qt::KeyboardModifiers modifiers) {
        QWidget* viewport = thumbView(target)->viewport();
        const QPoint at = viewport->rect().center();
        const Qt::DropActions actions = Qt::CopyAction | Qt::MoveAction;
        QDragEnterEvent enter(at, actions, dragged.get(), Qt::LeftButton, modifiers);
        QApplication::sendEvent(viewport, &enter);
        QDragMoveEvent move(at, actions, dragged.get(), Qt::LeftButton, modifiers);
        QApplication::sendEvent(viewport, &move);
        if (!move.isAccepted())
            return Qt::IgnoreAction;
        QDropEvent dropped(at, actions, dragged.get(), Qt::LeftButton, modifiers);
        QApplication::sendEvent(viewport, &dropped);
        return dropped.isAccepted() ? dropped.dropAction() : Qt::IgnoreAction;
    };
    QString shown;
    const auto answer = [&](bool accept) { answerTransfer(accept, &shown); };
    // Without Shift the takes are copied: once confirmed the other pane shows them.
    answer(true);
    EXPECT_EQ(drop(1, Qt::NoModifier), Qt::CopyAction);
    EXPECT_EQ(shown, "ClipCopy: card -> card");
    ASSERT_TRUE(waitFor([&] { return grid(1)->rowCount() == kSub1Clips + 2; }));

    // With Shift other takes are moved: both panes show where they are.
    select(0, {2, 3});
    answer(true);
    EXPECT_EQ(drop(1, Qt::ShiftModifier), Qt::MoveAction);
    EXPECT_EQ(shown, "ClipMove: card -> card");
    ASSERT_TRUE(
        waitFor([&] { return grid(1)->rowCount() == kSub1Clips + 4 && main->rowCount() == kMainClips - 2; }));
    expectNoMessage();

    // Takes dropped back on the grid they came from are refused.
    EXPECT_EQ(drop(0, Qt::NoModifier), Qt::IgnoreAction);

    // Cut and Paste: the clipboard is empty after the paste.
    focusPane(0);
    select(0, {0});
    const QString moved = main->index(0).data(BLThumbViewCtrl::TakeIdRole).toString();
    actionOf(window->editMenu(), MENU_ITEM_ID_CUT)->trigger();
    focusPane(1);
    window->validateMenuItems();
    QAction* paste = actionOf(window->editMenu(), MENU_ITEM_ID_PASTE);
    ASSERT_TRUE(paste->isEnabled());
    answer(true);
    paste->trigger();
    ASSERT_TRUE(
        waitFor([&] { return main->rowCount() == kMainClips - 3 && grid(1)->rowCount() == kSub1Clips + 5; }));
    EXPECT_EQ(shown, "ClipMove: card -> card");
    EXPECT_TRUE(QFileInfo::exists(m_sub1.bpav() + "/CLPR/" + moved));
    window->validateMenuItems();
    EXPECT_FALSE(paste->isEnabled());

    // Copy All Clips to the Other Pane opens the copy dialog on both folders.
    shown.clear();
    answer(false);
    actionOf(window->editMenu(), MENU_ITEM_ID_ALL_COPY)->trigger();
    EXPECT_EQ(shown, "ClipCopy: card -> card");
}
