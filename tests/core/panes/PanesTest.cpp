#include "core/app/BLMainWindowCtrl.h"
#include "core/app/panes/BLMediaInfoCtrl.h"
#include "core/app/panes/BLThumbViewCtrl.h"
#include "core/app/panes/IMediaInfoView.h"
#include "core/app/preview/BLCacheImageCtrl.h"
#include "core/formats/metadata/BLNonMetaAcss.h"
#include "core/formats/metadata/DOKeyFrame.h"
#include "core/operations/BLClipboardCtrl.h"
#include "core/operations/IClipTransferView.h"
#include "core/operations/IDeleteFolderView.h"
#include "core/operations/IFolderNameView.h"
#include "core/services/BLCommon.h"
#include "core/services/BLLogCtrl.h"
#include "core/services/BLPlistCtrl.h"
#include "core/services/SCNotificationCenter.h"
#include "core/services/SCNotificationNames.h"
#include "support/CardFolder.h"
#include "support/FakeMainWindowView.h"
#include "support/FrameCounter.h"
#include "support/MessageRecorder.h"
#include "support/NotificationRecorder.h"
#include "support/TestEnvironment.h"

#include <QDir>
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

    // Dialogs answer Cancel / No.
    void setTitle(const QString&) override {}
    void setMessage(const QString&) override {}
    void setFolderPath(const QString&) override {}
    void setInputFolderName(const QString&) override {}
    QString inputFolderName() const override { return {}; }
    int runModal(BLFolderNameCtrl*) override { return 0; }
    void endModal(int) override {}
    bool confirmDelete(const QString&, const QString&) override { return false; }
    void setSource(const QString&) override {}
    void setDestination(const QString&) override {}
    QString destination() const override { return {}; }
    int runModal(IClipTransferCtrl*) override { return 0; }
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

    static int logCount(const QString& message) { return int(cwtest::logMessages().filter(message).size()); }

    // A Main pane showing the card's work folder, loaded.
    std::unique_ptr<BLMediaInfoCtrl> openPane(const QString& folder)
    {
        BLPlistCtrl::sharedCtrl()->setWorkFolderPathByMain(folder);
        BLPlistCtrl::sharedCtrl()->setSelectFolderPathByMain(folder);
        auto pane = std::make_unique<BLMediaInfoCtrl>(BLMediaInfoCtrl::kTypeMain, nullptr);
        pane->setView(&m_view);
        EXPECT_FALSE(pane->initializeCtrl());
        EXPECT_TRUE(
            cwtest::waitFor([] { return logCount("[BLThumbViewCtrl changeFolder](Main) End") >= 1; }));
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
    const cwtest::NotificationRecorder show({SC::SCShowHouseKeepingWindowNotification});
    const cwtest::NotificationRecorder close({SC::SCCloseHouseKeepingWindowNotification});

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
    grid.selectionModel()->select(grid.index(0), QItemSelectionModel::Select);
    grid.selectionModel()->select(grid.index(2), QItemSelectionModel::Select);
    EXPECT_TRUE(m_view.folderSize.startsWith("2 of 3 takes selected, ")) << m_view.folderSize.toStdString();
    grid.selectionModel()->clear();
    EXPECT_EQ(m_view.folderName, "card");

    // Selecting the same folder again.
    const QString noChange = "0631:[BLMediaInfoCtrl setSelectFolder](Main) NO change:" + card.workFolder();
    const int noChanges = logCount(noChange);
    pane->setSelectFolder(card.workFolder(), true);
    cwtest::settle();
    EXPECT_EQ(logCount(noChange), noChanges + 1);
    EXPECT_EQ(logCount("0633:[BLThumbViewCtrl changeFolder](Main) Start"), 1);

    // An update of the same folder in other case reloads.
    BLCommon::sharedCtrl()->sendNotification(nullptr, SC::SCSelectFolderDataDidUpdateNotification,
                                             {{SC::SCDUpdateSelectFolderKey, card.workFolder().toUpper()}});
    EXPECT_TRUE(
        cwtest::waitFor([] { return logCount("0633:[BLThumbViewCtrl changeFolder](Main) End") == 2; }));
    EXPECT_EQ(grid.rowCount(), 3);

    // The same work folder chosen again is read again.
    ASSERT_TRUE(BLCommon::copyFile(card.bpav() + "/CLPR/ABC0001", card.bpav() + "/CLPR/ABC0001 copy"));
    m_view.chosenFolder = card.workFolder();
    pane->changeWorkFolder();
    EXPECT_TRUE(cwtest::waitFor([&] { return grid.rowCount() == 4; }));
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
    EXPECT_TRUE(ordered([](const DOThumbData& t) { return t.getSize(); }));
    EXPECT_EQ(umidsInGridOrder(grid).last(), multi);
    EXPECT_EQ(grid.findFirstSelectIndex(), rowOf(grid, multi));

    grid.sortItem(BLThumbViewCtrl::kSortDuration, false);
    EXPECT_TRUE(ordered([](const DOThumbData& t) { return t.getDurationFrames(); }));
    EXPECT_EQ(umidsInGridOrder(grid).last(), multi);

    // Sorting again by the same mode does nothing unless forced.
    grid.sortItem(BLThumbViewCtrl::kSortDate, false);
    EXPECT_TRUE(ordered([](const DOThumbData& t) { return t.getDate(); }));
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

    cwtest::FakeMainWindowView view;
    BLMainWindowCtrl window(view);
    window.awakeFromNib();
    EXPECT_TRUE(window.initializeCtrl()); // the program goes on
    EXPECT_EQ(m_messages.keys(), QStringList{"MSG_632_3169"});
    for (int type : {BLMediaInfoCtrl::kTypeMain, BLMediaInfoCtrl::kTypeSub1})
        EXPECT_TRUE(window.getMediaInfoCtrl(type)->workFonderIsVolumeList()) << type;
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

    cwtest::FakeMainWindowView windowView;
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
    ASSERT_TRUE(cwtest::waitFor(
        [&] { return main.thumbViewCtrl()->rowCount() == 2 && sub.thumbViewCtrl()->rowCount() == 1; }));
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
    EXPECT_TRUE(grid.isEnableMenuItem(MENU_ITEM_ID_IMPORT));

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

    // Copy All needs takes here and a folder in the other pane.
    EXPECT_TRUE(m_view.buttons.value(MENU_ITEM_ID_ALL_COPY, false));

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
    cwtest::settle();
    EXPECT_EQ(grid.rowCount(), 3);
    BLCommon::sharedCtrl()->sendDidDeleteNotification(nullptr, {first.getUmid()},
                                                      card.workFolder().toUpper());
    ASSERT_TRUE(cwtest::waitFor([&] { return grid.rowCount() == 2; }));
    EXPECT_TRUE(consistent());
    EXPECT_EQ(pane->getTakeDataByUmid(first.getUmid()), -1);

    // And added again: appended and sorted in.
    BLCommon::sharedCtrl()->sendDidAddNotification(nullptr, card.workFolder(), {first});
    ASSERT_TRUE(cwtest::waitFor([&] { return grid.rowCount() == 3; }));
    EXPECT_TRUE(consistent());
    EXPECT_EQ(pane->getTakeDataByUmid(first.getUmid()), 2);
    EXPECT_EQ(rowOf(grid, first.getUmid()), 0); // first by title
    EXPECT_EQ(logCount("0633:[BLThumbViewCtrl changeFolder](Main) Start"), 1);

    // Pictures: asked once per item; a stale one is dropped.
    const cwtest::NotificationRecorder requests({SC::SCCacheImageRequestNotification});
    grid.requestImage(1);
    grid.requestImage(1);
    ASSERT_TRUE(cwtest::waitFor([&] { return requests.notes.size() == 1; }));
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

TEST_F(PanesTest, ANewTypicalPictureIsWrittenIntoTheMetadataShownFromTheCacheAndReadBack)
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
    const QString bpav = BLCommon::getPathOfBPAV(card.workFolder());
    const auto keyFrameIn = [&](const QString& reference) {
        BLNonMetaAcss meta;
        DOKeyFrame keyFrame;
        if (!meta.loadForFilePath(BLCommon::makeFilePath(bpav, {reference})) || !meta.getKeyFrame(keyFrame))
            return QString("unreadable");
        return keyFrame.getFrameCount();
    };
    const auto shown = [&](int row) {
        const QImage image = grid.data(grid.index(row), BLThumbViewCtrl::ImageRole).value<QImage>();
        return image.isNull() ? std::nullopt : cwtest::readFrameCounter(image);
    };
    const auto takeOfRow = [&](int row) {
        for (const cardgen::ManifestTake& take : card.manifest().takes)
            if (take.umid == grid.thumbArray()[row].getUmid())
                return take;
        return cardgen::ManifestTake();
    };

    // The grid first shows each take's first frame.
    for (int row = 0; row < grid.rowCount(); ++row)
        grid.requestImage(row);
    const auto firstFrameShown = [&](int row) {
        const cardgen::ManifestTake take = takeOfRow(row);
        return !take.clips.empty() &&
               shown(row) == cardgen::FrameCounterValue{take.clips.front().counterClip, 0};
    };
    ASSERT_TRUE(cwtest::waitFor([&] { return firstFrameShown(0) && firstFrameShown(1); }));

    // A new typical picture for each take, the multi-clip take's in its second
    // clip: written into every metadata file, shown, made afresh by the cache.
    for (int row = 0; row < grid.rowCount(); ++row) {
        const cardgen::ManifestTake planned = takeOfRow(row);
        SCOPED_TRACE(planned.takeId.toStdString());
        const bool multi = planned.clips.size() == 2;
        const qint64 frame = multi ? planned.clips[0].frames + 3 : 4;
        BLCommon::sharedCtrl()->sendNotificationNow(nullptr, SC::SCMovieThumbDidChangeNotification,
                                                    {{SC::SCMThumbSelectFolderKey, card.workFolder()},
                                                     {SC::SCMThumbUmidsKey, planned.umid},
                                                     {SC::SCMThumbFrameNoKey, frame}});
        const DOTakeData updated = pane->getTakeData(pane->getTakeDataByUmid(planned.umid));
        EXPECT_EQ(updated.getKeyFrame(), frame);
        EXPECT_EQ(keyFrameIn(updated.getXMLUri()), QString::number(frame));
        for (const DOClipData& clip : updated.getClipData())
            EXPECT_EQ(keyFrameIn(clip.getXMLUri()), QString::number(frame));
        const cardgen::FrameCounterValue expected{planned.clips[multi ? 1 : 0].counterClip, multi ? 3 : 4};
        EXPECT_TRUE(cwtest::waitFor([&] { return shown(row) == expected; }));
        EXPECT_TRUE(QFileInfo::exists(
            QDir(cache.getCacheFolderPath()).filePath(BLCacheImageCtrl::makeCacheImageName(updated))));
    }
    EXPECT_TRUE(m_messages.keys().isEmpty());

    // A reload reads the new key frames back from the card.
    QList<qint64> before;
    for (const DOTakeData& take : pane->getTakeData())
        before << take.getKeyFrame();
    BLCommon::sharedCtrl()->sendNotification(nullptr, SC::SCSelectFolderDataDidUpdateNotification,
                                             {{SC::SCDUpdateSelectFolderKey, card.workFolder()}});
    ASSERT_TRUE(
        cwtest::waitFor([] { return logCount("0633:[BLThumbViewCtrl changeFolder](Main) End") == 2; }));
    QList<qint64> after;
    for (const DOTakeData& take : pane->getTakeData())
        after << take.getKeyFrame();
    EXPECT_EQ(after, before);
    EXPECT_FALSE(after.contains(0));
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

    const cwtest::NotificationRecorder stops({SC::SCMovieStopNotification});
    grid.selectMenuItem(MENU_ITEM_ID_COPY);
    EXPECT_EQ(m_messages.keys(), QStringList{"MSG_632_3199"});
    EXPECT_FALSE(stops.notes.isEmpty());
    EXPECT_TRUE(pane->workFonderIsVolumeList());
    EXPECT_TRUE(BLCommon::isVolume(pane->getSelectFolder())); // the list selects its first volume
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
    ASSERT_TRUE(cwtest::waitFor([&] { return grid.getSelectCount() == 1; }));
    EXPECT_EQ(pane->getWorkFolder(), parent);
    EXPECT_EQ(pane->getSelectFolder(), card.workFolder());
    EXPECT_EQ(pane->getSelectAllTakeData().value(0).getUmid(), umid);
}

} // namespace
