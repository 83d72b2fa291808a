#include "core/app/BLLogCtrl.h"
#include "core/app/BLMainWindowCtrl.h"
#include "core/app/BLPlistCtrl.h"
#include "core/app/IMainWindowView.h"
#include "core/common/BLCommon.h"
#include "core/common/SCNotificationCenter.h"
#include "core/common/SCNotificationNames.h"
#include "core/metadata/BLNonMetaAcss.h"
#include "core/metadata/DOKeyFrame.h"
#include "core/operations/BLClipboardCtrl.h"
#include "core/operations/IClipTransferView.h"
#include "core/operations/IDeleteFolderView.h"
#include "core/operations/IFolderNameView.h"
#include "core/panes/BLMediaInfoCtrl.h"
#include "core/panes/BLThumbViewCtrl.h"
#include "core/panes/IMediaInfoView.h"
#include "core/preview/BLCacheImageCtrl.h"
#include "support/CardFolder.h"
#include "support/FrameCounter.h"
#include "support/MessageRecorder.h"
#include "support/TestEnvironment.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QItemSelectionModel>
#include <QMimeData>

#include <gtest/gtest.h>

#include <functional>
#include <memory>

namespace {

// The pane's view: keeps the texts and button states it is given.
class FakeMediaInfoView : public IMediaInfoView, IFolderNameView, IDeleteFolderView, IClipTransferView
{
public:
    QString folderName, folderSize, volumeSize;
    QMap<int, bool> buttons;

    void setFolderName(const QString& text) override { folderName = text; }
    void setFolderSize(const QString& text) override { folderSize = text; }
    void setVolumeSize(const QString& text) override { volumeSize = text; }
    void setToolButtonEnabled(int tag, bool enabled) override { buttons[tag] = enabled; }
    void setDividerLocked(bool) override {}
    QString chooseFolder(const QString&) override { return chosenFolder; }
    QString chosenFolder; // what Change Work Folder answers ("" for Cancel)
    IFolderNameView& folderNameView() override { return *this; }
    IDeleteFolderView& deleteFolderView() override { return *this; }
    IClipTransferView& clipCopyView() override { return *this; }
    IClipTransferView& clipMoveView() override { return *this; }

    // Dialogs answer Cancel / No; the copy dialog keeps what it was shown.
    void setTitle(const QString&) override {}
    void setMessage(const QString&) override {}
    void setFolderPath(const QString&) override {}
    void setInputFolderName(const QString&) override {}
    QString inputFolderName() const override { return {}; }
    int runModal(BLFolderNameCtrl*) override { return 0; }
    void endModal(int) override {}
    bool confirmDelete(const QString&, const QString&) override { return false; }
    void setSource(const QString& name) override { copySource = name; }
    void setDestination(const QString& name) override { copyDestination = name; }
    QString destination() const override { return copyDestination; }
    int runModal(IClipTransferCtrl*) override
    {
        ++copyDialogs;
        return 0;
    }
    QString copySource, copyDestination;
    int copyDialogs = 0;
};

class FakeMainWindowView : public IMainWindowView
{
public:
    QRectF screenFrame() const override { return {0, 0, 1920, 1080}; }
    QRectF windowFrame() const override { return {0, 0, 1024, 768}; }
    void setWindowFrame(const QRectF&) override {}
    QSizeF minimumWindowSize() const override { return {800, 600}; }
    bool isWindowVisible() const override { return true; }
    bool isKeyWindow() const override { return true; }
    void setSplitToDefault() override {}
    void setDividersLocked(bool) override {}
    bool isHouseKeepingSheetVisible() const override { return false; }
    void showHouseKeepingSheet() override {}
    void closeHouseKeepingSheet() override {}
};

// Counts the notifications of one name for as long as it lives.
class NotificationCounter
{
public:
    explicit NotificationCounter(const QString& name)
    {
        SCNotificationCenter::defaultCenter()->addObserver(
            this, name, [this](const SCNotification& n) { notes.append(n); });
    }
    ~NotificationCounter() { SCNotificationCenter::defaultCenter()->removeObserver(this); }
    QList<SCNotification> notes;
};

class PanesTest : public cwtest::HomeTest
{
protected:
    void SetUp() override
    {
        HomeTest::SetUp();
        cwtest::writeSettings(home().configHome(), {{"LOG_FLAG", "ALL"}});
        BLClipboardCtrl::sharedCtrl()->setClipData({}, {}, BLClipboardCtrl::kModeEmpty);
    }

    // Turns the event loop until the condition holds (or five seconds pass).
    static bool pump(const std::function<bool()>& done)
    {
        QElapsedTimer timer;
        timer.start();
        while (!done() && timer.elapsed() < 5000)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        QCoreApplication::processEvents();
        return done();
    }
    // Lets queued notifications arrive when nothing is expected to happen.
    static void settle()
    {
        for (int i = 0; i < 5; ++i)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    }

    // Log messages as "PPPP:message".
    static QStringList logLines()
    {
        QFile log(BLLogCtrl::sharedCtrl()->logFilePath());
        if (!log.open(QIODevice::ReadOnly))
            return {};
        QStringList lines;
        for (const QString& line : QString::fromUtf8(log.readAll()).split("\r\n", Qt::SkipEmptyParts))
            lines << line.mid(20);
        return lines;
    }
    static int logCount(const QString& message) { return int(logLines().filter(message).size()); }

    // A Main pane showing the card's work folder, loaded.
    std::unique_ptr<BLMediaInfoCtrl> openPane(const QString& folder, int type = BLMediaInfoCtrl::kTypeMain,
                                              BLMainWindowCtrl* window = nullptr)
    {
        BLPlistCtrl* plist = BLPlistCtrl::sharedCtrl();
        if (type == BLMediaInfoCtrl::kTypeMain) {
            plist->setWorkFolderPathByMain(folder);
            plist->setSelectFolderPathByMain(folder);
        } else {
            plist->setWorkFolderPathBySub1(folder);
            plist->setSelectFolderPathBySub1(folder);
        }
        auto pane = std::make_unique<BLMediaInfoCtrl>(type, window);
        pane->setView(&m_view);
        EXPECT_FALSE(pane->initializeCtrl());
        const QString start =
            QStringLiteral("[BLThumbViewCtrl changeFolder](%1) End").arg(pane->getMediaInfoTypeString());
        EXPECT_TRUE(pump([&] { return logCount(start) >= 1; }));
        return pane;
    }

    static QStringList umidsInGridOrder(const BLThumbViewCtrl& grid)
    {
        QStringList umids;
        for (const DOThumbData& thumb : grid.thumbArray())
            umids << thumb.getUmid();
        return umids;
    }

    static void selectRows(BLThumbViewCtrl& grid, const QList<int>& rows)
    {
        grid.selectionModel()->clear();
        for (int row : rows)
            grid.selectionModel()->select(grid.index(row), QItemSelectionModel::Select);
    }

    static int rowOf(const BLThumbViewCtrl& grid, const QString& umid)
    {
        return int(umidsInGridOrder(grid).indexOf(umid));
    }

    cwtest::MessageRecorder m_messages;
    FakeMediaInfoView m_view;
};

TEST_F(PanesTest, AFolderLoadsOnceReselectingItChangesNothingAndAnUpdateInOtherCaseReloads)
{
    cwtest::CardFolder card(cwtest::CardFolder::fast(3));
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    NotificationCounter show(SC::SCShowHouseKeepingWindowNotification);
    NotificationCounter close(SC::SCCloseHouseKeepingWindowNotification);

    auto pane = openPane(card.workFolder());
    BLThumbViewCtrl& grid = *pane->thumbViewCtrl();
    EXPECT_EQ(pane->getSelectFolder(), card.workFolder());
    EXPECT_EQ(grid.rowCount(), 3);
    EXPECT_EQ(logCount("0633:[BLThumbViewCtrl changeFolder](Main) Start"), 1);
    EXPECT_EQ(show.notes.size(), 1);
    EXPECT_EQ(close.notes.size(), 1);
    // The status says what it counts and measures: a small card in MB.
    EXPECT_TRUE(m_view.folderSize.startsWith("3 takes, ")) << m_view.folderSize.toStdString();
    EXPECT_TRUE(m_view.folderSize.endsWith(" MB")) << m_view.folderSize.toStdString();
    EXPECT_TRUE(m_view.volumeSize.startsWith("Disk: ") && m_view.volumeSize.contains(" used of "))
        << m_view.volumeSize.toStdString();
    grid.selectionModel()->select(grid.index(0), QItemSelectionModel::Select);
    grid.selectionModel()->select(grid.index(2), QItemSelectionModel::Select);
    EXPECT_TRUE(m_view.folderSize.startsWith("2 of 3 takes selected, ")) << m_view.folderSize.toStdString();
    grid.selectionModel()->clear();
    EXPECT_EQ(m_view.folderName, "card");

    // Selecting the same folder again.
    const QString noChange = "0631:[BLMediaInfoCtrl setSelectFolder](Main) NO change:" + card.workFolder();
    const int noChanges = logCount(noChange);
    pane->setSelectFolder(card.workFolder(), true);
    settle();
    EXPECT_EQ(logCount(noChange), noChanges + 1);
    EXPECT_EQ(logCount("0633:[BLThumbViewCtrl changeFolder](Main) Start"), 1);

    // An update of another folder changes nothing; the same folder in other case reloads.
    BLCommon::sharedCtrl()->sendNotification(nullptr, SC::SCSelectFolderDataDidUpdateNotification,
                                             {{SC::SCDUpdateSelectFolderKey, card.workFolder() + "x"}});
    settle();
    EXPECT_EQ(logCount("0633:[BLThumbViewCtrl changeFolder](Main) Start"), 1);
    BLCommon::sharedCtrl()->sendNotification(nullptr, SC::SCSelectFolderDataDidUpdateNotification,
                                             {{SC::SCDUpdateSelectFolderKey, card.workFolder().toUpper()}});
    EXPECT_TRUE(pump([] { return logCount("0633:[BLThumbViewCtrl changeFolder](Main) End") == 2; }));
    EXPECT_EQ(grid.rowCount(), 3);

    // The same work folder chosen again is read again.
    ASSERT_TRUE(BLCommon::copyFile(card.bpav() + "/CLPR/ABC0001", card.bpav() + "/CLPR/ABC0001 copy"));
    m_view.chosenFolder = card.workFolder();
    pane->changeWorkFolder();
    EXPECT_TRUE(pump([&] { return grid.rowCount() == 4; }));
    EXPECT_TRUE(m_messages.keys().isEmpty());
}

TEST_F(PanesTest, SortsByEachModeOnlyWhenTheModeChangesOrARefreshIsForced)
{
    cardgen::Options options = cwtest::CardFolder::fast(3);
    options.multiClipTakes = {2};
    cwtest::CardFolder card(options);
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    auto pane = openPane(card.workFolder());
    BLThumbViewCtrl& grid = *pane->thumbViewCtrl();
    ASSERT_EQ(grid.rowCount(), 4);
    int scrolls = 0;
    QObject::connect(&grid, &BLThumbViewCtrl::scrollToTop, [&] { ++scrolls; });

    const auto ordered = [&](auto measure) {
        const QList<DOThumbData>& thumbs = grid.thumbArray();
        for (int i = 1; i < thumbs.size(); ++i)
            if (measure(thumbs[i - 1]) > measure(thumbs[i]))
                return false;
        return true;
    };
    EXPECT_TRUE(ordered([](const DOThumbData& t) { return t.getTitle().toLower(); }));

    // Already by title: nothing.
    grid.sortItem(BLThumbViewCtrl::kSortTitle, false);
    EXPECT_EQ(scrolls, 0);

    // The multi-clip take is the longest and the largest; the selection stays on its item.
    const QString multi = [&] {
        for (const DOTakeData& take : pane->getTakeData())
            if (take.getClipData().size() == 2)
                return take.getUmid();
        return QString();
    }();
    ASSERT_FALSE(multi.isEmpty());
    selectRows(grid, {rowOf(grid, multi)});
    grid.sortItem(BLThumbViewCtrl::kSortSize, false);
    EXPECT_EQ(scrolls, 1);
    EXPECT_TRUE(ordered([](const DOThumbData& t) { return t.getSize(); }));
    EXPECT_EQ(umidsInGridOrder(grid).last(), multi);
    EXPECT_EQ(grid.findFirstSelectIndex(), rowOf(grid, multi));
    EXPECT_EQ(grid.getSelectCount(), 1);

    grid.sortItem(BLThumbViewCtrl::kSortDuration, false);
    EXPECT_TRUE(ordered([](const DOThumbData& t) { return t.getDurationFrames(); }));
    EXPECT_EQ(umidsInGridOrder(grid).last(), multi);

    grid.sortItem(BLThumbViewCtrl::kSortDate, false);
    EXPECT_TRUE(ordered([](const DOThumbData& t) { return t.getDate(); }));
    EXPECT_EQ(scrolls, 3);
    grid.sortItem(BLThumbViewCtrl::kSortDate, false);
    EXPECT_EQ(scrolls, 3);
    grid.sortItem(BLThumbViewCtrl::kSortDate, true);
    EXPECT_EQ(scrolls, 4);

    // The menu checks the current mode and sorts through the command.
    bool enable = false;
    bool check = false;
    EXPECT_TRUE(grid.isSupportMenuItem(MENU_ITEM_ID_SORT_DATE, &enable, &check));
    EXPECT_TRUE(enable);
    EXPECT_TRUE(check);
    grid.selectMenuItem(MENU_ITEM_ID_SORT_TITLE);
    EXPECT_EQ(grid.getSortMode(), BLThumbViewCtrl::kSortTitle);
    EXPECT_TRUE(ordered([](const DOThumbData& t) { return t.getTitle().toLower(); }));
}

TEST_F(PanesTest, PanesThatLostTheirFoldersStartOnTheVolumeListWithOneMessage)
{
    QTemporaryDir dir;
    const QString gone = dir.filePath("gone");
    const QString kept = dir.filePath("kept");
    ASSERT_TRUE(QDir().mkpath(kept));
    BLPlistCtrl* plist = BLPlistCtrl::sharedCtrl();
    // Main: the work folder was deleted. Sub1: the work folder is there, its selected folder not.
    plist->setWorkFolderPathByMain(gone);
    plist->setSelectFolderPathByMain(gone);
    plist->setWorkFolderPathBySub1(kept);
    plist->setSelectFolderPathBySub1(kept + "/vanished");

    FakeMainWindowView view;
    BLMainWindowCtrl window(view);
    window.awakeFromNib();
    EXPECT_TRUE(window.initializeCtrl()); // the program goes on
    EXPECT_EQ(m_messages.keys(), QStringList{"MSG_632_3169"});
    for (int type : {BLMediaInfoCtrl::kTypeMain, BLMediaInfoCtrl::kTypeSub1}) {
        BLMediaInfoCtrl* pane = window.getMediaInfoCtrl(type);
        ASSERT_NE(pane, nullptr);
        EXPECT_TRUE(pane->workFonderIsVolumeList()) << type;
        EXPECT_EQ(window.getAnotherMediaInfoCtrl(pane), window.getMediaInfoCtrl(1 - type));
    }
    window.finalizeCtrl();

    // Both folders there: no message.
    m_messages.clear();
    plist->setWorkFolderPathByMain(kept);
    plist->setSelectFolderPathByMain(kept);
    plist->setWorkFolderPathBySub1(kept);
    plist->setSelectFolderPathBySub1(".");
    BLMainWindowCtrl window2(view);
    window2.awakeFromNib();
    EXPECT_TRUE(window2.initializeCtrl());
    EXPECT_TRUE(m_messages.keys().isEmpty());
    EXPECT_EQ(window2.getMediaInfoCtrl(0)->getSelectFolder(), kept);
    EXPECT_EQ(window2.getMediaInfoCtrl(1)->getSelectFolder(), kept);
}

TEST_F(PanesTest, CommandsFollowTheSelectedTakes)
{
    cardgen::Options options = cwtest::CardFolder::fast(2);
    options.damages.push_back(*cardgen::Damage::parse("loose@2", nullptr));
    cwtest::CardFolder hq(options);
    ASSERT_TRUE(hq.ok()) << hq.error().toStdString();
    cardgen::Options plainOptions = cwtest::CardFolder::fast(1);
    plainOptions.size = "1440x1080";
    plainOptions.frames = 3;
    cwtest::CardFolder plain(plainOptions);
    ASSERT_TRUE(plain.ok()) << plain.error().toStdString();

    FakeMainWindowView windowView;
    BLMainWindowCtrl window(windowView);
    window.awakeFromNib();
    BLMediaInfoCtrl& main = *window.getMediaInfoCtrl(BLMediaInfoCtrl::kTypeMain);
    BLMediaInfoCtrl& sub = *window.getMediaInfoCtrl(BLMediaInfoCtrl::kTypeSub1);
    BLPlistCtrl* plist = BLPlistCtrl::sharedCtrl();
    plist->setWorkFolderPathByMain(hq.workFolder());
    plist->setSelectFolderPathByMain(hq.workFolder());
    plist->setWorkFolderPathBySub1(plain.workFolder());
    plist->setSelectFolderPathBySub1(plain.workFolder());
    main.setView(&m_view);
    FakeMediaInfoView subView;
    sub.setView(&subView);
    EXPECT_TRUE(window.initializeCtrl());
    ASSERT_TRUE(
        pump([&] { return main.thumbViewCtrl()->rowCount() == 2 && sub.thumbViewCtrl()->rowCount() == 1; }));
    BLThumbViewCtrl& grid = *main.thumbViewCtrl();
    BLThumbViewCtrl& subGrid = *sub.thumbViewCtrl();

    int loose = -1;
    int clip = -1;
    for (int row = 0; row < grid.rowCount(); ++row)
        (grid.thumbArray()[row].getTakeStatus() == 4 ? loose : clip) = row;
    ASSERT_GE(loose, 0);
    ASSERT_GE(clip, 0);

    // Nothing selected.
    EXPECT_FALSE(grid.isEnableMenuItem(MENU_ITEM_ID_COPY));
    EXPECT_FALSE(grid.isEnableMenuItem(MENU_ITEM_ID_EXPORT));
    EXPECT_TRUE(grid.isEnableMenuItem(MENU_ITEM_ID_IMPORT));
    EXPECT_FALSE(grid.isEnableMenuItem(MENU_ITEM_ID_THUMB_PLAY));

    // A loose MP4 among the selection: no Copy, Cut or Export.
    grid.selectAllThumbData();
    EXPECT_EQ(grid.getSelectCount(), 2);
    EXPECT_FALSE(grid.isEnableMenuItem(MENU_ITEM_ID_COPY));
    EXPECT_FALSE(grid.isEnableMenuItem(MENU_ITEM_ID_CUT));
    EXPECT_TRUE(grid.isEnableMenuItem(MENU_ITEM_ID_DELETE));
    selectRows(grid, {loose});
    EXPECT_FALSE(grid.isEnableMenuItem(MENU_ITEM_ID_COPY));
    EXPECT_TRUE(grid.isEnableMenuItem(MENU_ITEM_ID_IMPORT));
    EXPECT_TRUE(grid.isEnableMenuItem(MENU_ITEM_ID_THUMB_PLAY));
    EXPECT_FALSE(grid.isEnableMenuItem(MENU_ITEM_ID_SHOW_INFO));

    // An HQ take: Copy but no Export; a take of the other card exports.
    selectRows(grid, {clip});
    EXPECT_TRUE(main.getSelectAllTakeData().front().IsHQMode());
    EXPECT_TRUE(grid.isEnableMenuItem(MENU_ITEM_ID_COPY));
    EXPECT_FALSE(grid.isEnableMenuItem(MENU_ITEM_ID_EXPORT));
    EXPECT_FALSE(grid.isEnableMenuItem(MENU_ITEM_ID_IMPORT));
    subGrid.selectAllThumbData();
    EXPECT_FALSE(sub.getSelectAllTakeData().front().IsHQMode());
    EXPECT_TRUE(subGrid.isEnableMenuItem(MENU_ITEM_ID_EXPORT));
    bool enable = true;
    EXPECT_TRUE(subGrid.isSupportMenuItem(MENU_ITEM_ID_EXPORT, &enable, nullptr));
    EXPECT_TRUE(enable);

    // Paste with an empty clipboard: disabled and does nothing.
    EXPECT_FALSE(subGrid.isEnableMenuItem(MENU_ITEM_ID_PASTE));
    {
        NotificationCounter stops(SC::SCMovieStopNotification);
        sub.selectPasteMenuItem();
        EXPECT_TRUE(stops.notes.isEmpty());
    }
    EXPECT_EQ(BLClipboardCtrl::sharedCtrl()->getMode(), BLClipboardCtrl::kModeEmpty);
    EXPECT_TRUE(m_messages.keys().isEmpty());

    // Copy the HQ take: the other pane may paste it, its own pane not; a
    // paste empties the clipboard.
    grid.selectMenuItem(MENU_ITEM_ID_COPY);
    BLClipboardCtrl* clipboard = BLClipboardCtrl::sharedCtrl();
    ASSERT_EQ(clipboard->getMode(), BLClipboardCtrl::kModeCopy);
    ASSERT_EQ(clipboard->getTakeDatas().size(), 1);
    EXPECT_EQ(clipboard->getTakeDatas().front().getUmid(), grid.thumbArray()[clip].getUmid());
    EXPECT_EQ(clipboard->getPath(), hq.workFolder());
    EXPECT_TRUE(subGrid.isEnableMenuItem(MENU_ITEM_ID_PASTE));
    EXPECT_FALSE(grid.isEnableMenuItem(MENU_ITEM_ID_PASTE));
    sub.selectPasteMenuItem(); // the copy dialog opens on the two folders
    EXPECT_EQ(subView.copyDialogs, 1);
    EXPECT_EQ(subView.copySource, QFileInfo(hq.workFolder()).fileName());
    EXPECT_EQ(subView.copyDestination, QFileInfo(sub.getSelectFolder()).fileName());
    EXPECT_EQ(clipboard->getMode(), BLClipboardCtrl::kModeEmpty);

    // Copy All needs takes here and a folder in the other pane.
    EXPECT_TRUE(main.isEnableAllCopyMenuItem());
    EXPECT_TRUE(m_view.buttons.value(MENU_ITEM_ID_ALL_COPY, false));
    EXPECT_TRUE(m_view.buttons.value(MENU_ITEM_ID_CHANGE_WORK_FOLDER));
    main.treeViewCtrl()->selectMenuItem(MENU_ITEM_ID_ALL_COPY); // the copy dialog opens on both folders
    EXPECT_EQ(m_view.copyDialogs, 1);
    EXPECT_EQ(m_view.copyDestination, QFileInfo(sub.getSelectFolder()).fileName());

    // A drag from the grid carries the pane and the UMIDs; only the other pane takes it.
    std::unique_ptr<QMimeData> mime(grid.mimeData({grid.index(clip)}));
    EXPECT_EQ(QString::fromUtf8(mime->data(BLThumbViewCtrl::kTakesMimeType)),
              "0\n" + grid.thumbArray()[clip].getUmid());
    EXPECT_FALSE(grid.canDropMimeData(mime.get(), Qt::CopyAction, -1, -1, {}));
    EXPECT_TRUE(subGrid.canDropMimeData(mime.get(), Qt::MoveAction, -1, -1, {}));

    // A drop of the loose MP4 is refused with a message.
    selectRows(grid, {loose});
    std::unique_ptr<QMimeData> looseMime(grid.mimeData({grid.index(loose)}));
    EXPECT_TRUE(subGrid.dropMimeData(looseMime.get(), Qt::CopyAction, -1, -1, {}));
    EXPECT_EQ(m_messages.keys(), QStringList{"MSG_633_3183"});
    window.finalizeCtrl();
}

TEST_F(PanesTest, TakesAddedDeletedAndPicturesArrivingUpdateTheGridInPlace)
{
    cwtest::CardFolder card(cwtest::CardFolder::fast(3));
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    auto pane = openPane(card.workFolder());
    BLThumbViewCtrl& grid = *pane->thumbViewCtrl();
    ASSERT_EQ(grid.rowCount(), 3);
    const auto consistent = [&] {
        for (const DOThumbData& thumb : grid.thumbArray())
            if (pane->getTakeData(thumb.getIndexTakeData()).getUmid() != thumb.getUmid())
                return false;
        return grid.rowCount() == pane->getTakeData().size();
    };

    // The first take (in take order) is deleted; another folder's deletion changes nothing.
    const DOTakeData first = pane->getTakeData(0);
    BLCommon::sharedCtrl()->sendDidDeleteNotification(nullptr, {first.getUmid()}, card.workFolder() + "2");
    settle();
    EXPECT_EQ(grid.rowCount(), 3);
    BLCommon::sharedCtrl()->sendDidDeleteNotification(nullptr, {first.getUmid()},
                                                      card.workFolder().toUpper());
    ASSERT_TRUE(pump([&] { return grid.rowCount() == 2; }));
    EXPECT_TRUE(consistent());
    EXPECT_EQ(rowOf(grid, first.getUmid()), -1);
    EXPECT_EQ(pane->getTakeDataByUmid(first.getUmid()), -1);

    // And added again: appended and sorted in.
    BLCommon::sharedCtrl()->sendDidAddNotification(nullptr, card.workFolder(), {first});
    ASSERT_TRUE(pump([&] { return grid.rowCount() == 3; }));
    EXPECT_TRUE(consistent());
    EXPECT_EQ(pane->getTakeDataByUmid(first.getUmid()), 2);
    EXPECT_EQ(rowOf(grid, first.getUmid()), 0); // first by title
    EXPECT_EQ(logCount("0633:[BLThumbViewCtrl changeFolder](Main) Start"), 1);

    // Pictures: asked once per item; a stale one is dropped.
    NotificationCounter requests(SC::SCCacheImageRequestNotification);
    grid.requestImage(1);
    grid.requestImage(1);
    ASSERT_TRUE(pump([&] { return requests.notes.size() == 1; }));
    const DOTakeData asked =
        requests.notes.front().userInfo.value(SC::SCCacheRTakeDataKey).value<DOTakeData>();
    EXPECT_EQ(asked.getUmid(), grid.thumbArray()[1].getUmid());
    QImage picture(16, 9, QImage::Format_RGB32);
    picture.fill(Qt::red);
    const auto deliver = [&](qint64 frame) {
        BLCommon::sharedCtrl()->sendNotificationNow(nullptr, SC::SCCacheImageDidGetNotification,
                                                    {{SC::SCCacheGImageKey, picture},
                                                     {SC::SCCacheGTakeStatusKey, asked.getTakeStatus()},
                                                     {SC::SCCacheGFrameNoKey, frame},
                                                     {SC::SCCacheGUmidKey, asked.getUmid()},
                                                     {SC::SCCacheGSelectFolderKey, card.workFolder()}});
    };
    deliver(asked.getKeyFrame() + 1);
    EXPECT_TRUE(grid.data(grid.index(1), BLThumbViewCtrl::ImageRole).value<QImage>().isNull());
    deliver(asked.getKeyFrame());
    EXPECT_EQ(grid.data(grid.index(1), BLThumbViewCtrl::ImageRole).value<QImage>(), picture);
}

TEST_F(PanesTest, ATypicalPictureIsWrittenIntoTheMetadataAndReadBack)
{
    cardgen::Options options = cwtest::CardFolder::fast(1);
    options.multiClipTakes = {2};
    cwtest::CardFolder card(options);
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    auto pane = openPane(card.workFolder());
    ASSERT_EQ(pane->getTakeData().size(), 2);
    const QString bpav = BLCommon::getPathOfBPAV(card.workFolder());
    const auto keyFrameIn = [&](const QString& reference) {
        BLNonMetaAcss meta;
        DOKeyFrame keyFrame;
        if (!meta.loadForFilePath(BLCommon::makeFilePath(bpav, {reference})) || !meta.getKeyFrame(keyFrame))
            return QString("unreadable");
        return keyFrame.getFrameCount();
    };

    NotificationCounter requests(SC::SCCacheImageRequestNotification);
    for (const DOTakeData& take : QList<DOTakeData>(pane->getTakeData())) {
        SCOPED_TRACE(take.getTakeID().toStdString());
        BLCommon::sharedCtrl()->sendNotificationNow(nullptr, SC::SCMovieThumbDidChangeNotification,
                                                    {{SC::SCMThumbSelectFolderKey, card.workFolder()},
                                                     {SC::SCMThumbUmidsKey, take.getUmid()},
                                                     {SC::SCMThumbFrameNoKey, qint64(4)}});
        const DOTakeData updated = pane->getTakeData(pane->getTakeDataByUmid(take.getUmid()));
        EXPECT_EQ(updated.getKeyFrame(), 4);
        EXPECT_EQ(keyFrameIn(take.getXMLUri()), "4");
        for (const DOClipData& clip : take.getClipData())
            EXPECT_EQ(keyFrameIn(clip.getXMLUri()), "4");
    }
    EXPECT_TRUE(pump([&] { return requests.notes.size() == 2; }));
    EXPECT_TRUE(m_messages.keys().isEmpty());

    // A reload reads the new key frames back from the card.
    BLCommon::sharedCtrl()->sendNotification(nullptr, SC::SCSelectFolderDataDidUpdateNotification,
                                             {{SC::SCDUpdateSelectFolderKey, card.workFolder()}});
    ASSERT_TRUE(pump([] { return logCount("0633:[BLThumbViewCtrl changeFolder](Main) End") == 2; }));
    ASSERT_EQ(pane->getTakeData().size(), 2);
    for (const DOTakeData& take : pane->getTakeData())
        EXPECT_EQ(take.getKeyFrame(), 4) << take.getTakeID().toStdString();
}

TEST_F(PanesTest, TheGridShowsTheKeyFramePictureFromTheCacheAndFollowsANewTypicalPicture)
{
    cardgen::Options options = cwtest::CardFolder::fast(1);
    options.multiClipTakes = {2};
    options.fast = false; // every clip's pictures carry its own clip number
    cwtest::CardFolder card(options);
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    const BLCacheImageCtrl cache;
    auto pane = openPane(card.workFolder());
    BLThumbViewCtrl& grid = *pane->thumbViewCtrl();
    ASSERT_EQ(grid.rowCount(), 2);
    const auto shown = [&](int row) {
        const QImage image = grid.data(grid.index(row), BLThumbViewCtrl::ImageRole).value<QImage>();
        return image.isNull() ? std::nullopt : cwtest::readFrameCounter(image);
    };
    const auto manifestTake = [&](const QString& umid) {
        for (const cardgen::ManifestTake& take : card.manifest().takes)
            if (take.umid == umid)
                return take;
        return cardgen::ManifestTake();
    };

    for (int row = 0; row < grid.rowCount(); ++row)
        grid.requestImage(row);
    const auto firstFrameShown = [&](int row) {
        const cardgen::ManifestTake take = manifestTake(grid.thumbArray()[row].getUmid());
        return !take.clips.empty() &&
               shown(row) == cardgen::FrameCounterValue{take.clips.front().counterClip, 0};
    };
    ASSERT_TRUE(pump([&] { return firstFrameShown(0) && firstFrameShown(1); }));

    // A new typical picture of the multi-clip take, in its second clip: the
    // grid shows that frame, made afresh by the cache.
    const int row = manifestTake(grid.thumbArray()[0].getUmid()).clips.size() == 2 ? 0 : 1;
    const cardgen::ManifestTake multi = manifestTake(grid.thumbArray()[row].getUmid());
    ASSERT_EQ(multi.clips.size(), 2u);
    BLCommon::sharedCtrl()->sendNotificationNow(
        nullptr, SC::SCMovieThumbDidChangeNotification,
        {{SC::SCMThumbSelectFolderKey, card.workFolder()},
         {SC::SCMThumbUmidsKey, multi.umid},
         {SC::SCMThumbFrameNoKey, qint64(multi.clips[0].frames + 3)}});
    const cardgen::FrameCounterValue expected{multi.clips[1].counterClip, 3};
    ASSERT_TRUE(pump([&] { return shown(row) == expected; }));
    const DOTakeData updated = pane->getTakeData(pane->getTakeDataByUmid(multi.umid));
    EXPECT_TRUE(QFileInfo::exists(
        QDir(cache.getCacheFolderPath()).filePath(BLCacheImageCtrl::makeCacheImageName(updated))));
}

TEST_F(PanesTest, ACommandOnASelectedFolderThatWasRemovedShowsTheMessageAndReturnsToTheVolumeList)
{
    cwtest::CardFolder card(cwtest::CardFolder::fast(1));
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    auto pane = openPane(card.workFolder());
    BLThumbViewCtrl& grid = *pane->thumbViewCtrl();
    grid.selectAllThumbData();
    ASSERT_TRUE(grid.isEnableMenuItem(MENU_ITEM_ID_COPY));
    ASSERT_TRUE(QDir(card.workFolder()).removeRecursively());

    NotificationCounter stops(SC::SCMovieStopNotification);
    grid.selectMenuItem(MENU_ITEM_ID_COPY);
    EXPECT_EQ(m_messages.keys(), QStringList{"MSG_632_3199"});
    EXPECT_FALSE(stops.notes.isEmpty());
    EXPECT_TRUE(pane->workFonderIsVolumeList());
    EXPECT_EQ(BLClipboardCtrl::sharedCtrl()->getMode(), BLClipboardCtrl::kModeEmpty);
    // The list of volumes selects its first volume.
    EXPECT_TRUE(BLCommon::isVolume(pane->getSelectFolder()));
}

TEST_F(PanesTest, AChosenSearchResultShowsItsFolderWithTheTakeSelected)
{
    cwtest::CardFolder card(cwtest::CardFolder::fast(3));
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    const QString parent = QFileInfo(card.workFolder()).path();
    auto pane = openPane(QFileInfo(parent).path()); // the card lies two levels down
    const QString umid = card.manifest().takes[1].umid;

    pane->showFolderWithTake(card.workFolder(), umid);
    BLThumbViewCtrl& grid = *pane->thumbViewCtrl();
    ASSERT_TRUE(pump([&] { return grid.getSelectCount() == 1; }));
    EXPECT_EQ(pane->getWorkFolder(), parent);
    EXPECT_EQ(pane->getSelectFolder(), card.workFolder());
    EXPECT_EQ(pane->getSelectAllTakeData().value(0).getUmid(), umid);
}

} // namespace
