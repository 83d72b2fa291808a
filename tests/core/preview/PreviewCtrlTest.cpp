#include "RecordingPreviewView.h"
#include "core/services/BLPlistCtrl.h"
#include "support/AsOrdinaryUser.h"
#include "support/NotificationRecorder.h"
#include "support/QtPrinters.h"

#include <QFileInfo>

#include <gtest/gtest.h>

using namespace pvtest;

// Playing to the end and Play from there are left to the pane scenario.
TEST_F(PreviewCtrlTest, StepsFrameExactlyThroughAMultiClipTakeAndStopsOnRequest)
{
    const cwtest::CardFolder card(tinyCard(0, 15, {2}));
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    const cardgen::ManifestTake& manifestTake = card.manifest().takes.front();
    const DOTakeData take = takeOf(card, manifestTake);
    start();
    pauseIn(card, take);
    EXPECT_EQ(ctrl->getAVInfo().total_frames, 30);

    // By the buttons and the keys; a frame key waits for the frame before to be shown.
    const auto key = [&](int k) { return [this, k] { return ctrl->keyDown(k); }; };
    const auto button = [&](bool (BLPreviewButtonCtrl::*action)()) {
        return [this, action] { return (buttons().*action)(); };
    };
    const std::pair<std::function<bool()>, qint64> steps[] = {
        {button(&BLPreviewButtonCtrl::onLastFrame), 29},
        {key(Qt::Key_Left), 28},
        {button(&BLPreviewButtonCtrl::onTopFrame), 0},
        {key(Qt::Key_Right), 1},
        {key(Qt::Key_Down), 29},
        {button(&BLPreviewButtonCtrl::onMinusFrame), 28},
        {key(Qt::Key_Up), 0},
        {button(&BLPreviewButtonCtrl::onPlusFrame), 1}};
    for (const auto& [action, frame] : steps) {
        ASSERT_TRUE(waitFor([&] { return ctrl->isEndOfViewerJob(); })) << frame;
        ASSERT_TRUE(action()) << frame;
        ASSERT_TRUE(waitForFrame(frame)) << frame;
        EXPECT_EQ(view.lastPicture().counter, counterOf(manifestTake, frame));
        EXPECT_EQ(view.sliderValue, frame * 1000 / 29);
    }
    EXPECT_EQ(ctrl->getViewerState(), VM_PAUSING);

    post(SC::SCMovieStopNotification);
    EXPECT_EQ(ctrl->getViewerState(), VM_STOPPED); // handled before the notification returns
    EXPECT_TRUE(ctrl->getSelectFolder().isEmpty());

    // A change of either pane's folder stops as well; a property change of
    // the take playing renews its title, one of another folder does not.
    play(card, take);
    ASSERT_TRUE(waitForState(VM_PLAYED));
    EXPECT_EQ(view.title, take.getAlias());
    DOTakeData renamed = take;
    renamed.setAlias("Harbour\nat dawn");
    for (const QString& folder : {card.workFolder() + "/other", card.workFolder()})
        BLCommon::sharedCtrl()->sendNotificationNow(
            nullptr, SC::SCClipPropertyDidChangeNotification,
            {{SC::SCSelectFolderKey, folder}, {SC::SCDidChangeTakeDataKey, QVariant::fromValue(renamed)}});
    EXPECT_EQ(view.title, "Harbour at dawn");
    EXPECT_EQ(view.journal.count("title Harbour at dawn"), 1);
    post(SC::SCSub1SelectFolderDidChangeNotification);
    EXPECT_EQ(ctrl->getViewerState(), VM_STOPPED);
}

TEST_F(PreviewCtrlTest, ASecondTakeStopsTheFirstBeforeItIsHandedOverAndAnUnusableTakeIsNotPlayed)
{
    const cwtest::CardFolder card(tinyCard(2, 60));
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    const DOTakeData first = takeOf(card, card.manifest().takes[0]);
    const DOTakeData second = takeOf(card, card.manifest().takes[1]);
    start();

    play(card, first);
    ASSERT_TRUE(waitFor([&] { return ctrl->getTimeSliderCtrl().getFrameNo() >= 3; }));
    view.journal.clear();
    play(card, second);
    // The first take's stop reached the view before the second take's title.
    const qsizetype stopped = view.journal.indexOf("title ");
    ASSERT_GE(stopped, 0) << view.journal.join(" | ").toStdString();
    EXPECT_LT(stopped, view.journal.indexOf("title " + second.getAlias()));
    ASSERT_TRUE(waitFor([&] { return ctrl->getTimeSliderCtrl().getFrameNo() >= 3; }));
    EXPECT_EQ(ctrl->getUmid(), second.getUmid());
    EXPECT_EQ(view.lastPicture().counter->clip, card.manifest().takes[1].clips.front().counterClip);

    // A take the viewer cannot open: the message, and nothing plays.
    DOTakeData broken = first;
    broken.setMP4Uri(broken.getXMLUri());
    play(card, broken);
    EXPECT_EQ(messages.keys(), QStringList{"MSG_655_3202"});
    EXPECT_EQ(ctrl->getViewerState(), VM_STOPPED);
    EXPECT_EQ(view.title, "");

    DOTakeData unusable = first;
    unusable.setTakeStatus(5);
    play(card, unusable);
    settle(200);
    EXPECT_EQ(ctrl->getViewerState(), VM_STOPPED);
}

// Entering and leaving full screen is left to the widget test.
TEST_F(PreviewCtrlTest, FullScreenNeedsAPictureAndTheScreenAndAResolutionChangeShowsThePictureAgain)
{
    const cwtest::CardFolder card(tinyCard(1, 30));
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    start();
    EXPECT_EQ(menu(MENU_ITEM_ID_PREVIEW_FULL_SCREEN), false);
    ctrl->showFullscreen();
    EXPECT_EQ(view.fullScreenLoops, 0);

    pauseIn(card, takeOf(card, card.manifest().takes.front()));
    EXPECT_EQ(view.lastPicture().width, 320);
    EXPECT_EQ(menu(MENU_ITEM_ID_PREVIEW_FULL_SCREEN), true);
    view.refuseFullScreen = true;
    ctrl->showFullscreen();
    EXPECT_EQ(view.fullScreenLoops, 0);
    EXPECT_FALSE(ctrl->isFullScreen());

    BLPlistCtrl::sharedCtrl()->setLowResolution(1);
    post(SC::SCResolutionDidChangeNotification);
    ASSERT_TRUE(waitFor([&] { return view.lastPicture().width == 160; }));
    EXPECT_EQ(view.lastPicture().height, 90);
}

// The picture chosen and shown in the grid is left to the pane scenario.
TEST_F(PreviewCtrlTest, TheTypicalPictureNeedsAWritableImportedClip)
{
    const cwtest::CardFolder card(tinyCard(1, 30));
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    const DOTakeData take = takeOf(card, card.manifest().takes.front());
    const cwtest::NotificationRecorder posted({SC::SCMovieThumbDidChangeNotification});
    start();
    pauseIn(card, take);

    // A metadata file that cannot be written refuses it with a message;
    // everything but that file stays open to an ordinary user.
    const QString nonMeta = card.bpav() + take.getXMLUri().mid(1);
    QFile::setPermissions(QFileInfo(card.workFolder()).path(),
                          QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner |
                              QFileDevice::ReadOther | QFileDevice::ExeOther);
    ASSERT_TRUE(QFile::setPermissions(nonMeta, QFileDevice::ReadOwner | QFileDevice::ReadOther));
    {
        const cwtest::AsOrdinaryUser nobody;
        ctrl->onMakeThumbnail();
    }
    QFile::setPermissions(nonMeta, QFileDevice::ReadOwner | QFileDevice::WriteOwner);
    EXPECT_EQ(messages.keys(), QStringList{"MSG_6510_3214"});

    // An MP4 file not yet imported has no metadata to take the picture.
    DOTakeData loose = take;
    loose.setTakeStatus(4);
    play(card, loose);
    ASSERT_TRUE(waitForState(VM_PLAYED));
    EXPECT_EQ(menu(MENU_ITEM_ID_PREVIEW_MAKE_THUMBNAIL), false);
    ctrl->onMakeThumbnail();
    settle(300);
    EXPECT_TRUE(posted.notes.isEmpty());
}

TEST_F(PreviewCtrlTest, AViewerThatCannotStartShowsTheMessageAndLeavesThePreviewUnused)
{
    // The library runs only once per process: started here first, it refuses
    // the preview's start.
    vv_display_t display{};
    vv_init_param_t param{};
    ASSERT_EQ(vv_init(&param, &display, 0), VV_OK);
    ctrl = std::make_unique<BLPreviewCtrl>(view);
    EXPECT_FALSE(ctrl->initializeCtrl());
    EXPECT_EQ(messages.keys(), QStringList{"MSG_655_3202"});
    EXPECT_FALSE(ctrl->isUseViewerLibrary());

    const cwtest::CardFolder card(tinyCard(1, 6));
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    const DOTakeData take = takeOf(card, card.manifest().takes.front());
    play(card, take);
    EXPECT_TRUE(logged("0000:[BLPreviewCtrl moviePlayNotification] non use ViewerLibrary"));
    vv_bitmap_t bitmap{};
    EXPECT_EQ(ctrl->getThumbnail(card.workFolder(), take, &bitmap), -1);
    EXPECT_EQ(menu(MENU_ITEM_ID_PREVIEW_PLAY), false);
    ctrl.reset();
    EXPECT_EQ(vv_exit(), VV_OK);
}

TEST_F(PreviewCtrlTest, KeysButtonsAndMenuItemsDriveTheTransportAndIgnoreWhatWouldChangeNothing)
{
    const cwtest::CardFolder card(tinyCard(1, 90));
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    start();
    EXPECT_EQ(menu(MENU_ITEM_ID_PREVIEW_PLAY), false); // nothing to play yet
    EXPECT_EQ(menu(44049), std::nullopt);
    EXPECT_FALSE(ctrl->keyDown(Qt::Key_A));
    EXPECT_FALSE(buttons().onPlay());
    EXPECT_FALSE(buttons().onLastFrame());

    play(card, takeOf(card, card.manifest().takes.front()));
    ASSERT_TRUE(waitForState(VM_PLAYED));
    EXPECT_TRUE(view.journal.contains("focus"));
    EXPECT_EQ(menu(MENU_ITEM_ID_PREVIEW_PLAY), false);
    EXPECT_EQ(menu(MENU_ITEM_ID_PREVIEW_PAUSE), true);
    EXPECT_FALSE(buttons().onPlay());                                  // play while playing does nothing
    ASSERT_TRUE(waitFor([&] { return slider().getFrameNo() >= 45; })); // rewinding then takes a while

    // Rewinding ends paused on the first frame, fast forward on the last; each
    // run starts at the other end, so the viewer reports it before pausing.
    const auto reports = [](const char* id) {
        return cwtest::logMessages().count(QStringLiteral("0000:[GetViewerMessageFunc] message_id:") + id);
    };
    const std::tuple<std::function<bool()>, const char*, qint64> runs[] = {
        {[this] { return buttons().onRW(); }, "VM_REWINDED", 0},
        {[this] { return buttons().onFF(); }, "VM_FASTFORWARDED", 89},
        {[this] { return ctrl->keyDown(Qt::Key_R); }, "VM_REWINDED", 0},
        {[this] { return ctrl->keyDown(Qt::Key_F); }, "VM_FASTFORWARDED", 89}};
    for (const auto& [action, id, frame] : runs) {
        const qsizetype before = reports(id);
        ASSERT_TRUE(action()) << id;
        ASSERT_TRUE(waitFor([&] { return reports(id) > before; })) << id;
        ASSERT_TRUE(waitForState(VM_PAUSING));
        ASSERT_TRUE(waitForFrame(frame));
        EXPECT_FALSE(buttons().onPause());
    }
    EXPECT_TRUE(ctrl->keyDown(Qt::Key_Space)); // and plays again from the start
    ASSERT_TRUE(waitForState(VM_PLAYED));
}

TEST_F(PreviewCtrlTest, ControlsHearOfStateChangesOnlyAndFrameReportsCountOnlyWhileShowing)
{
    ctrl = std::make_unique<BLPreviewCtrl>(view);
    EXPECT_EQ(view.ctrl, ctrl.get());
    view.journal.clear();
    ctrl->setViewerState(VM_STOPPED);
    EXPECT_TRUE(view.journal.isEmpty());

    const vv_frame_info_t info{0, 5, 5, 30, 30};
    ctrl->recvFrameInfoMessage(info);
    EXPECT_EQ(ctrl->getTimeSliderCtrl().getFrameNo(), -1);
    EXPECT_EQ(view.timeCode, "00:00:00:00");

    ctrl->setViewerState(VM_PAUSING);
    EXPECT_EQ(view.journal, QStringList{"slider on"});
    ctrl->recvFrameInfoMessage(info);
    EXPECT_EQ(ctrl->getTimeSliderCtrl().getFrameNo(), 5);
    EXPECT_NE(view.timeCode, "00:00:00:00");
}
