#include "core/app/preview/BLAudioChannelCtrl.h"
#include "core/app/preview/BLPreviewButtonCtrl.h"
#include "core/app/preview/BLPreviewCtrl.h"
#include "core/app/preview/BLTimeSliderCtrl.h"
#include "core/preview/PreviewTestSupport.h"
#include "core/services/BLCommon.h"
#include "core/services/SCNotificationNames.h"
#include "support/FrameCounter.h"
#include "support/MessageRecorder.h"
#include "support/QtPrinters.h"
#include "support/UserInput.h"
#include "ui/preview/SCAudioChannelView.h"
#include "ui/preview/SCFullScreenWindow.h"
#include "ui/preview/SCImageButton.h"
#include "ui/preview/SCOpenGLView.h"
#include "ui/preview/SCPreviewButtonBar.h"
#include "ui/preview/SCPreviewView.h"
#include "ui/preview/SCTimeCodeField.h"
#include "ui/preview/SCTimeSlider.h"

#include <QApplication>
#include <QCheckBox>
#include <QLabel>

#include <gtest/gtest.h>

using namespace pvtest;
using cwtest::key;
using cwtest::mouse;

namespace {

// The part of a grab that is not black: the picture inside its bars.
QRect pictureRect(const QImage& image)
{
    QRect box;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (qGray(image.pixel(x, y)) > 40)
                box |= QRect(x, y, 1, 1);
    return box;
}

std::optional<cardgen::FrameCounterValue> counterIn(QWidget* widget)
{
    const QImage image = widget->grab().toImage();
    const QRect picture = pictureRect(image);
    if (picture.isEmpty())
        return std::nullopt;
    return cwtest::readFrameCounter(image.copy(picture));
}

} // namespace

class PreviewViewTest : public PreviewTest
{
protected:
    void TearDown() override
    {
        ctrl.reset();
        view.reset();
        PreviewTest::TearDown();
    }
    void start()
    {
        view = std::make_unique<SCPreviewView>();
        view->resize(900, 500);
        view->show();
        ctrl = std::make_unique<BLPreviewCtrl>(*view);
        ASSERT_TRUE(ctrl->initializeCtrl());
    }
    // Shows the view and pauses in the first take of a one-take card.
    void pauseInATake()
    {
        ASSERT_TRUE(card().ok()) << card().error().toStdString();
        start();
        play(card(), takeOf(card(), manifestTake()));
        ASSERT_TRUE(waitForState(VM_PLAYED));
        view->buttonBar()->button(BLPreviewButtonCtrl::kPause)->click();
        ASSERT_TRUE(waitForState(VM_PAUSING));
    }

    const cardgen::ManifestTake& manifestTake() const { return card().manifest().takes.front(); }
    bool waitForPicture(QWidget* picture, qint64 frame)
    {
        return waitFor([&] { return counterIn(picture) == counterOf(manifestTake(), frame); });
    }

    // A one-take card made once for the suite; the tests only read it.
    static const cwtest::CardFolder& card()
    {
        static const cwtest::CardFolder folder(tinyCard(1, 30));
        return folder;
    }
    std::unique_ptr<SCPreviewView> view;
};

// The controls follow the run, the slider the mouse and the audio choice its
// buttons; the picture shows the delivered frame in its aspect.
TEST_F(PreviewViewTest, ThePictureShowsTheDeliveredFrameInItsAspectAndTheControlsFollow)
{
    ASSERT_TRUE(card().ok()) << card().error().toStdString();
    start();
    SCImageButton* playButton = view->buttonBar()->button(BLPreviewButtonCtrl::kPlay);
    EXPECT_EQ(playButton->shownImage(), "macbtn_play_n");
    EXPECT_FALSE(view->timeSlider()->isEnabled());

    play(card(), takeOf(card(), manifestTake()));
    ASSERT_TRUE(waitForState(VM_PLAYED));
    EXPECT_EQ(view->titleField()->text(), takeOf(card(), manifestTake()).getAlias());
    EXPECT_TRUE(view->openGLView()->hasFocus());
    EXPECT_EQ(playButton->shownImage(), "macbtn_play_a");
    EXPECT_TRUE(view->timeSlider()->isEnabled());
    key(view->openGLView(), Qt::Key_Space);
    ASSERT_TRUE(waitForState(VM_PAUSING));
    EXPECT_EQ(view->buttonBar()->button(BLPreviewButtonCtrl::kPause)->shownImage(), "macbtn_stop_a");

    SCTimeSlider* slider = view->timeSlider();
    const QPoint middle = slider->rect().center();
    mouse(slider, QEvent::MouseButtonPress, middle);
    EXPECT_TRUE(ctrl->getTimeSliderCtrl().getSliderIsDraging());
    mouse(slider, QEvent::MouseMove, middle + QPoint(slider->width() / 8, 0));
    mouse(slider, QEvent::MouseButtonRelease, middle + QPoint(slider->width() / 8, 0));
    const qint64 frame = 29LL * slider->value() / SCTimeSlider::kMaximum;
    EXPECT_GT(frame, 15);
    EXPECT_LT(frame, 25);
    ASSERT_TRUE(waitForFrame(frame));
    ASSERT_TRUE(waitForPicture(view->openGLView(), frame));

    key(view->openGLView(), Qt::Key_Down);
    ASSERT_TRUE(waitForFrame(29));
    ASSERT_TRUE(waitForPicture(view->openGLView(), 29));
    // 16:9 in a wider than high area: black bars at the sides or above and below.
    const QImage grab = view->openGLView()->grab().toImage();
    const QRect picture = pictureRect(grab);
    EXPECT_NEAR(double(picture.width()) / picture.height(), 16.0 / 9.0, 0.03);
    EXPECT_TRUE(picture.width() == grab.width() || picture.height() == grab.height());
    EXPECT_EQ(view->timeSlider()->value(), SCTimeSlider::kMaximum);
    EXPECT_EQ(view->timeCodeField()->text(), "00:00.00:29");
    view->buttonBar()->button(BLPreviewButtonCtrl::kTopFrame)->click();
    ASSERT_TRUE(waitForFrame(0));

    SCAudioChannelView* audio = view->audioChannel();
    EXPECT_FALSE(audio->channelBox(1)->isEnabled());
    audio->stereoButton()->click();
    EXPECT_FALSE(ctrl->getAudioChannelCtrl().isStereo());
    EXPECT_EQ(audio->stereoButton()->text(), "Mono");
    EXPECT_TRUE(audio->channelBox(1)->isChecked());
    audio->channelBox(2)->click();
    EXPECT_EQ(ctrl->getAudioChannelCtrl().getChannel(), 2);
    EXPECT_FALSE(audio->channelBox(1)->isChecked());
    audio->channelBox(2)->click(); // the chosen box stays ticked
    EXPECT_TRUE(audio->channelBox(2)->isChecked());

    // Stopped: the picture is black and the slider rests.
    BLCommon::sharedCtrl()->sendNotificationNow(nullptr, SC::SCMovieStopNotification);
    settle(100);
    EXPECT_TRUE(pictureRect(view->openGLView()->grab().toImage()).isEmpty());
    EXPECT_FALSE(view->timeSlider()->isEnabled());
}

TEST_F(PreviewViewTest, FullScreenOpensOnADoubleClickAndEscapeLeavesIt)
{
    pauseInATake();
    view->buttonBar()->button(BLPreviewButtonCtrl::kLastFrame)->click();
    ASSERT_TRUE(waitForFrame(29));

    SCFullScreenWindow* fullScreen = view->fullScreenWindow();
    bool opened = false;
    std::optional<cardgen::FrameCounterValue> shown;
    // Inside the full-screen loop: a preview key, then Escape.
    QTimer::singleShot(200, [&] {
        opened = fullScreen->isVisible() && fullScreen->isFullScreen() && ctrl->isFullScreen();
        key(fullScreen, Qt::Key_Left);
        QTimer::singleShot(300, [&] {
            shown = counterIn(fullScreen);
            key(fullScreen, Qt::Key_Escape);
        });
    });
    cwtest::doubleClick(view->openGLView(), view->openGLView()->rect().center());
    ASSERT_TRUE(waitFor([&] { return opened && !ctrl->isFullScreen(); }));
    EXPECT_FALSE(fullScreen->isVisible());
    EXPECT_EQ(shown, counterOf(manifestTake(), 28));
    ASSERT_TRUE(waitForPicture(view->openGLView(), 28));
}
