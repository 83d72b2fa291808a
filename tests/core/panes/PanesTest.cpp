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
    auto pane = openPane(card.workFolder());
    BLThumbViewCtrl& grid = *pane->thumbViewCtrl();
    EXPECT_EQ(grid.rowCount(), 3);
    // The status says what it counts and measures: a small card in MB.
    EXPECT_TRUE(m_view.folderSize.startsWith("3 takes, ")) << m_view.folderSize.toStdString();
    EXPECT_TRUE(m_view.folderSize.endsWith(" MB")) << m_view.folderSize.toStdString();
    selectRows(grid, {0, 2});
    EXPECT_TRUE(m_view.folderSize.startsWith("2 of 3 takes selected, ")) << m_view.folderSize.toStdString();

    const QString loads = "0633:[BLThumbViewCtrl changeFolder](Main) End";
    pane->setSelectFolder(card.workFolder(), true);
    cwtest::settle();
    EXPECT_EQ(logCount(loads), 1);
    BLCommon::sharedCtrl()->sendNotification(nullptr, SC::SCSelectFolderDataDidUpdateNotification,
                                             {{SC::SCDUpdateSelectFolderKey, card.workFolder().toUpper()}});
    EXPECT_TRUE(cwtest::waitFor([&] { return logCount(loads) == 2; }));

    // The same work folder chosen again is read again.
    ASSERT_TRUE(BLCommon::copyFile(card.bpav() + "/CLPR/ABC0001", card.bpav() + "/CLPR/ABC0001 copy"));
    m_view.chosenFolder = card.workFolder();
    pane->changeWorkFolder();
    EXPECT_TRUE(cwtest::waitFor([&] { return grid.rowCount() == 4; }));
    EXPECT_TRUE(m_messages.keys().isEmpty());
}

// The menu's check marks and sorting through it are left to the widget test.
TEST_F(PanesTest, SortsByEachModeOnlyWhenTheModeChangesOrARefreshIsForced)
{
    cwtest::CardFolder card(cwtest::CardFolder::fast(3, {2}));
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
    QString multi;
    for (const DOTakeData& take : pane->getTakeData())
        if (take.getClipData().size() == 2)
            multi = take.getUmid();
    selectRows(grid, {rowOf(grid, multi)});
    grid.sortItem(BLThumbViewCtrl::kSortSize, false);
    EXPECT_TRUE(ordered([](const DOThumbData& t) { return t.getSize(); }));
    EXPECT_EQ(rowOf(grid, multi), 3);
    EXPECT_EQ(grid.findFirstSelectIndex(), 3);
    grid.sortItem(BLThumbViewCtrl::kSortDuration, false);
    EXPECT_TRUE(ordered([](const DOThumbData& t) { return t.getDurationFrames(); }));
    EXPECT_EQ(rowOf(grid, multi), 3);
    grid.sortItem(BLThumbViewCtrl::kSortDate, false);
    EXPECT_TRUE(ordered([](const DOThumbData& t) { return t.getDate(); }));

    // Sorting again by the same mode does nothing unless forced.
    grid.sortItem(BLThumbViewCtrl::kSortDate, false);
    EXPECT_EQ(scrolls, 3);
    grid.sortItem(BLThumbViewCtrl::kSortDate, true);
    EXPECT_EQ(scrolls, 4);
}

TEST_F(PanesTest, PanesThatLostTheirFoldersStartOnTheVolumeListWithOneMessage)
{
    QTemporaryDir dir;
    const QString kept = dir.filePath("kept");
    ASSERT_TRUE(QDir().mkpath(kept));
    BLPlistCtrl* plist = BLPlistCtrl::sharedCtrl();
    // Main: the work folder was deleted. Sub1: the work folder is there, its selected folder not.
    plist->setWorkFolderPathByMain(dir.filePath("gone"));
    plist->setSelectFolderPathByMain(dir.filePath("gone"));
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
    const int loose = grid.thumbArray()[0].getTakeStatus() == 4 ? 0 : 1;
    const int clip = 1 - loose;
    ASSERT_EQ(grid.thumbArray()[loose].getTakeStatus(), 4);

    // A loose MP4 among the selection: no Copy, Cut or Export; an HQ take:
    // Copy but no Export; a take of the other card exports.
    const struct
    {
        QList<int> rows;
        int item;
        bool enabled;
    } cases[] = {{{}, MENU_ITEM_ID_COPY, false},           {{}, MENU_ITEM_ID_IMPORT, true},
                 {{0, 1}, MENU_ITEM_ID_COPY, false},       {{0, 1}, MENU_ITEM_ID_CUT, false},
                 {{0, 1}, MENU_ITEM_ID_DELETE, true},      {{loose}, MENU_ITEM_ID_IMPORT, true},
                 {{loose}, MENU_ITEM_ID_THUMB_PLAY, true}, {{loose}, MENU_ITEM_ID_SHOW_INFO, false},
                 {{clip}, MENU_ITEM_ID_COPY, true},        {{clip}, MENU_ITEM_ID_EXPORT, false},
                 {{clip}, MENU_ITEM_ID_IMPORT, false}};
    for (const auto& c : cases) {
        selectRows(grid, c.rows);
        EXPECT_EQ(grid.isEnableMenuItem(c.item), c.enabled) << c.item << " " << c.rows.size();
    }
    subGrid.selectAllThumbData();
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
    BLCommon* common = BLCommon::sharedCtrl();
    common->sendDidDeleteNotification(nullptr, {first.getUmid()}, card.workFolder() + "2");
    cwtest::settle();
    EXPECT_EQ(grid.rowCount(), 3);
    common->sendDidDeleteNotification(nullptr, {first.getUmid()}, card.workFolder().toUpper());
    ASSERT_TRUE(cwtest::waitFor([&] { return grid.rowCount() == 2; }));
    EXPECT_TRUE(consistent());
    // And added again: appended and sorted in, without a reload.
    common->sendDidAddNotification(nullptr, card.workFolder(), {first});
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
    for (const qint64 frame : {asked.getKeyFrame() + 1, asked.getKeyFrame()})
        common->sendNotificationNow(nullptr, SC::SCCacheImageDidGetNotification,
                                    {{SC::SCCacheGImageKey, picture},
                                     {SC::SCCacheGTakeStatusKey, asked.getTakeStatus()},
                                     {SC::SCCacheGFrameNoKey, frame},
                                     {SC::SCCacheGUmidKey, asked.getUmid()},
                                     {SC::SCCacheGSelectFolderKey, card.workFolder()}});
    EXPECT_EQ(grid.data(grid.index(1), BLThumbViewCtrl::ImageRole).value<QImage>(), picture);
}

// A single clip's new picture, shown in the grid, is left to the pane scenario.
TEST_F(PanesTest, ANewTypicalPictureInASecondClipIsWrittenIntoEveryMetadataFileShownAndReadBack)
{
    cardgen::Options options = cwtest::CardFolder::fast(0, {2});
    options.fast = false; // every clip's pictures carry its own clip number
    cwtest::CardFolder card(options);
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    const BLCacheImageCtrl cache;
    auto pane = openPane(card.workFolder());
    BLThumbViewCtrl& grid = *pane->thumbViewCtrl();
    ASSERT_EQ(grid.rowCount(), 1);
    const cardgen::ManifestTake& planned = card.manifest().takes.front();
    const auto keyFrameIn = [&](const QString& reference) {
        BLNonMetaAcss meta;
        DOKeyFrame keyFrame;
        if (!meta.loadForFilePath(BLCommon::makeFilePath(card.bpav(), {reference})) ||
            !meta.getKeyFrame(keyFrame))
            return QString("unreadable");
        return keyFrame.getFrameCount();
    };

    const qint64 frame = planned.clips[0].frames + 3;
    BLCommon::sharedCtrl()->sendNotificationNow(nullptr, SC::SCMovieThumbDidChangeNotification,
                                                {{SC::SCMThumbSelectFolderKey, card.workFolder()},
                                                 {SC::SCMThumbUmidsKey, planned.umid},
                                                 {SC::SCMThumbFrameNoKey, frame}});
    const DOTakeData updated = pane->getTakeData(0);
    EXPECT_EQ(updated.getKeyFrame(), frame);
    EXPECT_EQ(keyFrameIn(updated.getXMLUri()), QString::number(frame));
    for (const DOClipData& clip : updated.getClipData())
        EXPECT_EQ(keyFrameIn(clip.getXMLUri()), QString::number(frame));
    grid.requestImage(0);
    const cardgen::FrameCounterValue expected{planned.clips[1].counterClip, 3};
    EXPECT_TRUE(cwtest::waitFor([&] {
        const QImage image = grid.data(grid.index(0), BLThumbViewCtrl::ImageRole).value<QImage>();
        return !image.isNull() && cwtest::readFrameCounter(image) == expected;
    }));
    EXPECT_TRUE(QFileInfo::exists(
        QDir(cache.getCacheFolderPath()).filePath(BLCacheImageCtrl::makeCacheImageName(updated))));
    EXPECT_TRUE(m_messages.keys().isEmpty());

    // A reload reads the new key frame back from the card.
    BLCommon::sharedCtrl()->sendNotification(nullptr, SC::SCSelectFolderDataDidUpdateNotification,
                                             {{SC::SCDUpdateSelectFolderKey, card.workFolder()}});
    ASSERT_TRUE(
        cwtest::waitFor([] { return logCount("0633:[BLThumbViewCtrl changeFolder](Main) End") == 2; }));
    EXPECT_EQ(pane->getTakeData(0).getKeyFrame(), frame);
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
    ASSERT_TRUE(cwtest::waitFor([&] { return pane->thumbViewCtrl()->getSelectCount() == 1; }));
    EXPECT_EQ(pane->getWorkFolder(), parent);
    EXPECT_EQ(pane->getSelectFolder(), card.workFolder());
    EXPECT_EQ(pane->getSelectAllTakeData().value(0).getUmid(), umid);
}

} // namespace
