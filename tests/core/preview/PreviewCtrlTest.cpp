#include "RecordingPreviewView.h"
#include "core/services/BLPlistCtrl.h"
#include "support/AsOrdinaryUser.h"
#include "support/NotificationRecorder.h"
#include "support/QtPrinters.h"

#include <QFileInfo>

#include <gtest/gtest.h>

using namespace pvtest;

TEST_F(PreviewCtrlTest, PlaysATakeToItsEndAndFollowsTheTransportCommands)
{
    const cwtest::CardFolder card(tinyCard(0, 15, {2}));
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    const cardgen::ManifestTake& manifestTake = card.manifest().takes.front();
    const DOTakeData take = takeOf(card, manifestTake);
    start();

    play(card, take);
    ASSERT_TRUE(waitForState(VM_PLAYED));
    EXPECT_EQ(view.title, take.getAlias());
    EXPECT_EQ(ctrl->getUmid(), take.getUmid());
    EXPECT_EQ(ctrl->getAVInfo().total_frames, 30);
    EXPECT_TRUE(view.sliderEnabled);
    // Played to the end it pauses on the second clip's last frame, the take
    // still loaded; Play starts it again from the start.
    ASSERT_TRUE(waitForState(VM_PAUSING));
    ASSERT_TRUE(waitForFrame(29));
    EXPECT_EQ(view.pictures().back().counter, counterOf(manifestTake, 29));
    EXPECT_EQ(view.title, take.getAlias());
    EXPECT_TRUE(view.sliderEnabled);
    EXPECT_EQ(view.sliderValue, 1000);
    EXPECT_EQ(ctrl->getUmid(), take.getUmid());
    ASSERT_TRUE(buttons().onPlay());
    ASSERT_TRUE(waitForState(VM_PLAYED));
    ASSERT_TRUE(waitFor([&] { return ctrl->getTimeSliderCtrl().getFrameNo() < 29; }));

    // Paused, then stepped through by the buttons and the keys; a frame key
    // waits for the frame before to be shown.
    post(SC::SCMoviePauseNotification);
    ASSERT_TRUE(waitForState(VM_PAUSING));
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

    const int redraws = view.redraws;
    post(SC::SCMovieStopNotification);
    EXPECT_EQ(ctrl->getViewerState(), VM_STOPPED); // handled before the notification returns
    EXPECT_EQ(view.title, "");
    EXPECT_GT(view.redraws, redraws);
    EXPECT_TRUE(ctrl->getSelectFolder().isEmpty());

    // A change of either pane's folder stops as well; a property change of
    // the take playing renews its title, one of another take does not.
    play(card, take);
    ASSERT_TRUE(waitForState(VM_PLAYED));
    DOTakeData renamed = take;
    renamed.setAlias("Harbour\nat dawn");
    const auto propertiesChanged = [&](const QString& folder, const DOTakeData& changed) {
        BLCommon::sharedCtrl()->sendNotificationNow(
            nullptr, SC::SCClipPropertyDidChangeNotification,
            {{SC::SCSelectFolderKey, folder}, {SC::SCDidChangeTakeDataKey, QVariant::fromValue(changed)}});
    };
    propertiesChanged(card.workFolder() + "/other", renamed);
    EXPECT_EQ(view.title, take.getAlias());
    propertiesChanged(card.workFolder(), renamed);
    EXPECT_EQ(view.title, "Harbour at dawn");
    post(SC::SCSub1SelectFolderDidChangeNotification);
    EXPECT_EQ(ctrl->getViewerState(), VM_STOPPED);
}

TEST_F(PreviewCtrlTest, ASecondTakeStopsTheFirstBeforeItIsHandedOverAndAnUnusableTakeIsNotPlayed)
{
    const cwtest::CardFolder card(tinyCard(2, 60));
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    const DOTakeData first = takeOf(card, card.manifest().takes[0]);
    const DOTakeData second = takeOf(card, card.manifest().takes[1]);
    ASSERT_NE(first.getAlias(), second.getAlias());
    start();

    play(card, first);
    ASSERT_TRUE(waitFor([&] { return ctrl->getTimeSliderCtrl().getFrameNo() >= 3; }));
    view.journal.clear();
    play(card, second);
    // The first take's stop reached the view before the second take's title.
    const qsizetype stopped = view.journal.indexOf("title ");
    const qsizetype handedOver = view.journal.indexOf("title " + second.getAlias());
    ASSERT_GE(stopped, 0) << view.journal.join(" | ").toStdString();
    EXPECT_LT(stopped, handedOver) << view.journal.join(" | ").toStdString();
    ASSERT_TRUE(waitForState(VM_PLAYED));
    ASSERT_TRUE(waitFor([&] { return ctrl->getTimeSliderCtrl().getFrameNo() >= 3; }));
    EXPECT_EQ(view.title, second.getAlias());
    EXPECT_EQ(ctrl->getUmid(), second.getUmid());
    EXPECT_EQ(view.lastPicture().counter->clip, card.manifest().takes[1].clips.front().counterClip);

    // A take the viewer cannot open: the message, and nothing plays.
    DOTakeData broken = first;
    broken.setMP4Uri(broken.getXMLUri());
    play(card, broken);
    EXPECT_EQ(messages.keys(), QStringList{"MSG_655_3202"});
    EXPECT_TRUE(logged("0000:[BLPreviewCtrl setMovieFiles] call vv_set_av_info return:-6"));
    EXPECT_EQ(ctrl->getViewerState(), VM_STOPPED);
    EXPECT_EQ(view.title, "");

    DOTakeData unusable = first;
    unusable.setTakeStatus(5);
    play(card, unusable);
    EXPECT_EQ(ctrl->getViewerState(), VM_STOPPED);
    EXPECT_TRUE(logged("0000:[BLPreviewCtrl moviePlayNotification] take is non clip"));
    settle(200);
    EXPECT_EQ(ctrl->getViewerState(), VM_STOPPED);
}

TEST_F(PreviewCtrlTest, FullScreenAndResolutionChangesShowThePictureAgain)
{
    const cwtest::CardFolder card(tinyCard(1, 30));
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    start();
    EXPECT_EQ(menu(MENU_ITEM_ID_PREVIEW_FULL_SCREEN), false);
    ctrl->showFullscreen();
    EXPECT_EQ(view.fullScreenLoops, 0);
    EXPECT_TRUE(logged("0000:[BLPreviewCtrl showFullscreen] now VM_STOPPED"));

    pauseIn(card, takeOf(card, card.manifest().takes.front()));
    EXPECT_EQ(view.lastPicture().width, 320);
    EXPECT_EQ(menu(MENU_ITEM_ID_PREVIEW_FULL_SCREEN), true);
    view.journal.clear();
    ctrl->selectMenuItem(MENU_ITEM_ID_PREVIEW_FULL_SCREEN);
    EXPECT_EQ(view.fullScreenLoops, 1);
    EXPECT_TRUE(view.fullScreenPictureSeen); // the picture shown is delivered again, marked full screen
    EXPECT_FALSE(ctrl->isFullScreen());
    EXPECT_EQ(view.journal, QStringList({"enter full screen", "leave full screen", "redraw"}));
    // Back in the window the picture comes again without the mark.
    ASSERT_TRUE(waitFor([&] { return !view.lastPicture().fullScreen; }));

    // A screen that cannot be taken leaves the preview as it was.
    view.refuseFullScreen = true;
    ctrl->showFullscreen();
    EXPECT_EQ(view.fullScreenLoops, 1);
    EXPECT_TRUE(logged("0000:[BLPreviewCtrl showFullscreen] CGDisplayCapture Error = -1"));

    // A lower resolution redelivers the picture at its new size.
    BLPlistCtrl::sharedCtrl()->setLowResolution(1);
    post(SC::SCResolutionDidChangeNotification);
    ASSERT_TRUE(waitFor([&] { return view.lastPicture().width == 160; }));
    EXPECT_EQ(view.lastPicture().height, 90);
    EXPECT_TRUE(
        logged("0000:[BLPreviewCtrl resolutionDidChangeNotification] call vv_change_init_param(1) return:0"));
}

TEST_F(PreviewCtrlTest, TheTypicalPictureIsTheFrameShownAndNeedsAWritableClip)
{
    const cwtest::CardFolder card(tinyCard(1, 30));
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    const DOTakeData take = takeOf(card, card.manifest().takes.front());
    const cwtest::NotificationRecorder posted({SC::SCMovieThumbDidChangeNotification});
    start();

    ctrl->onMakeThumbnail();
    EXPECT_TRUE(logged("0000:[BLPreviewCtrl onMakeThumbnail] now VM_STOPPED"));

    pauseIn(card, take);
    ctrl->selectMenuItem(MENU_ITEM_ID_PREVIEW_LAST_FRAME);
    ASSERT_TRUE(waitForFrame(29));
    EXPECT_EQ(menu(MENU_ITEM_ID_PREVIEW_MAKE_THUMBNAIL), true);
    ctrl->selectMenuItem(MENU_ITEM_ID_PREVIEW_MAKE_THUMBNAIL);
    ASSERT_TRUE(waitFor([&] { return !posted.notes.isEmpty(); }));
    ASSERT_EQ(posted.notes.size(), 1);
    EXPECT_EQ(posted.notes[0].userInfo.value(SC::SCMThumbSelectFolderKey).toString(), card.workFolder());
    EXPECT_EQ(posted.notes[0].userInfo.value(SC::SCMThumbUmidsKey).toString(), take.getUmid());
    EXPECT_EQ(posted.notes[0].userInfo.value(SC::SCMThumbFrameNoKey).toLongLong(), 29);
    EXPECT_TRUE(messages.keys().isEmpty());

    // A metadata file that cannot be written refuses it with a message.
    const QString nonMeta = card.bpav() + take.getXMLUri().mid(1);
    ASSERT_TRUE(QFileInfo::exists(nonMeta));
    // Everything but that file stays open to an ordinary user.
    QFile::setPermissions(QFileInfo(card.workFolder()).path(),
                          QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner |
                              QFileDevice::ReadOther | QFileDevice::ExeOther);
    QFile::setPermissions(nonMeta, QFileDevice::ReadOwner | QFileDevice::ReadOther);
    {
        const cwtest::AsOrdinaryUser nobody;
        ctrl->onMakeThumbnail();
    }
    QFile::setPermissions(nonMeta, QFileDevice::ReadOwner | QFileDevice::WriteOwner);
    EXPECT_EQ(messages.keys(), QStringList{"MSG_6510_3214"});
    settle(300);
    EXPECT_EQ(posted.notes.size(), 1);

    // An MP4 file not yet imported has no metadata to take the picture.
    DOTakeData loose = take;
    loose.setTakeStatus(4);
    play(card, loose);
    ASSERT_TRUE(waitForState(VM_PLAYED));
    EXPECT_EQ(menu(MENU_ITEM_ID_PREVIEW_MAKE_THUMBNAIL), false);
    ctrl->onMakeThumbnail();
    EXPECT_TRUE(
        logged("0000:[BLPreviewCtrl onMakeThumbnail] movie file is not-import, don't make thumbnail"));
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
    EXPECT_TRUE(logged("0000:[BLPreviewCtrl initViewerLibrary] call vv_init return:-3"));

    const cwtest::CardFolder card(tinyCard(1, 6));
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    const DOTakeData take = takeOf(card, card.manifest().takes.front());
    play(card, take);
    EXPECT_TRUE(logged("0000:[BLPreviewCtrl moviePlayNotification] non use ViewerLibrary"));
    vv_bitmap_t bitmap{};
    EXPECT_EQ(ctrl->getThumbnail(card.workFolder(), take, &bitmap), -1);
    EXPECT_TRUE(logged("0000:[BLPreviewCtrl getThumbnail] non use ViewerLibrary"));
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
    EXPECT_TRUE(logged("0000:[BLPreviewButtonCtrl onPlay] now VM_STOPPED"));
    EXPECT_FALSE(buttons().onLastFrame());

    play(card, takeOf(card, card.manifest().takes.front()));
    ASSERT_TRUE(waitForState(VM_PLAYED));
    EXPECT_TRUE(view.journal.contains("focus"));
    EXPECT_EQ(menu(MENU_ITEM_ID_PREVIEW_PLAY), false);
    EXPECT_EQ(menu(MENU_ITEM_ID_PREVIEW_PAUSE), true);
    EXPECT_EQ(view.images[BLPreviewButtonCtrl::kPlay],
              qMakePair(QString("macbtn_play_a"), QString("macbtn_play_a_p")));
    EXPECT_FALSE(buttons().onPlay()); // play while playing does nothing
    EXPECT_FALSE(logged("0000:[BLPreviewButtonCtrl onPlay] call vv_play"));
    ASSERT_TRUE(waitFor([&] { return slider().getFrameNo() >= 45; })); // rewinding then takes a while
    ASSERT_TRUE(buttons().onRW());
    EXPECT_TRUE(logged("0000:[BLPreviewButtonCtrl onRW] call vv_rew"));
    ASSERT_TRUE(waitFor([&] { return view.images[BLPreviewButtonCtrl::kRW].first == "macbtn_rw_a"; }));
    ASSERT_TRUE(waitForState(VM_PAUSING)); // rewinding ends paused at the first frame
    EXPECT_EQ(view.images[BLPreviewButtonCtrl::kRW].first, "macbtn_rw_n");
    EXPECT_EQ(view.images[BLPreviewButtonCtrl::kPause],
              qMakePair(QString("macbtn_stop_a"), QString("macbtn_stop_a_p")));
    EXPECT_FALSE(buttons().onPause());
    ASSERT_TRUE(buttons().onFF());
    ASSERT_TRUE(waitFor([&] { return view.images[BLPreviewButtonCtrl::kFF].first == "macbtn_ff_a"; }));
    EXPECT_EQ(view.images[BLPreviewButtonCtrl::kPause].first, "macbtn_stop_n");
    ASSERT_TRUE(waitForState(VM_PAUSING)); // fast forward ends paused on the last frame
    EXPECT_EQ(view.images[BLPreviewButtonCtrl::kFF].first, "macbtn_ff_n");

    ctrl->selectMenuItem(MENU_ITEM_ID_PREVIEW_LAST_FRAME);
    ASSERT_TRUE(waitForFrame(89));

    EXPECT_TRUE(ctrl->keyDown(Qt::Key_R));
    ASSERT_TRUE(waitFor([&] { return logged("0000:[GetViewerMessageFunc] message_id:VM_REWINDED"); }));
    ASSERT_TRUE(waitForState(VM_PAUSING));
    EXPECT_TRUE(ctrl->keyDown(Qt::Key_F));
    ASSERT_TRUE(waitFor([&] { return logged("0000:[GetViewerMessageFunc] message_id:VM_FASTFORWARDED"); }));
    ASSERT_TRUE(waitForState(VM_PAUSING));
    ASSERT_TRUE(waitForFrame(89));
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
    EXPECT_EQ(view.images[BLPreviewButtonCtrl::kPause].first, "macbtn_stop_a");
    ctrl->recvFrameInfoMessage(info);
    EXPECT_EQ(ctrl->getTimeSliderCtrl().getFrameNo(), 5);
    EXPECT_NE(view.timeCode, "00:00:00:00");
}
