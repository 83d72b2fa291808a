#pragma once

#include "PreviewTestSupport.h"
#include "cardgen/FrameCounter.h"
#include "core/app/preview/BLPreviewButtonCtrl.h"
#include "core/app/preview/BLPreviewCtrl.h"
#include "core/app/preview/IAudioChannelView.h"
#include "core/app/preview/IPreviewButtonView.h"
#include "core/app/preview/IPreviewView.h"
#include "core/app/preview/ITimeCodeView.h"
#include "core/app/preview/ITimeSliderView.h"
#include "support/SimulatedAudioDevice.h"

#include <QStringList>

#include <mutex>
#include <optional>

namespace pvtest {

// One picture the view was given, with the counter read from its pixels.
struct Picture
{
    qint64 frame = -1;
    int width = 0;
    int height = 0;
    std::optional<cardgen::FrameCounterValue> counter;
};

using cwtest::SimulatedAudioDevice;

// Stands in for the preview area: keeps what the controllers asked of it, in
// order (journal), and the last picture. Full screen is entered at once
// unless refused, and left at once.
class RecordingPreviewView : public IPreviewView,
                             public IPreviewButtonView,
                             public ITimeSliderView,
                             public ITimeCodeView,
                             public IAudioChannelView
{
public:
    BLPreviewCtrl* ctrl = nullptr;
    QStringList journal;
    QString title;
    qint64 sliderValue = -1;
    bool sliderEnabled = false;
    QString timeCode;
    bool refuseFullScreen = false;
    int fullScreenLoops = 0;
    SimulatedAudioDevice* audio = nullptr;

    void setPreviewCtrl(BLPreviewCtrl* c) override { ctrl = c; }
    IPreviewButtonView& buttonView() override { return *this; }
    ITimeSliderView& timeSliderView() override { return *this; }
    ITimeCodeView& timeCodeView() override { return *this; }
    IAudioChannelView& audioChannelView() override { return *this; }
    vv_audio_sink_t audioSink() override { return audio ? audio->sink() : vv_audio_sink_t{}; }

    void drawFrame(const vv_frame_t& frame) override
    {
        Picture p;
        p.frame = frame.frame_no;
        p.width = frame.width;
        p.height = frame.height;
        p.counter =
            cardgen::FrameCounter::readPacked(frame.pixels, frame.stride, frame.width, frame.height, 4);
        std::lock_guard lock(m_mutex);
        m_last = p;
    }
    Picture lastPicture()
    {
        std::lock_guard lock(m_mutex);
        return m_last;
    }

    void setTitle(const QString& t) override
    {
        title = t;
        journal << QStringLiteral("title ") + t;
    }
    void redraw() override {}
    void makeFirstResponder() override { journal << QStringLiteral("focus"); }
    void setPictureVisible(bool) override {}
    bool enterFullScreen() override { return !refuseFullScreen; }
    void runFullScreenLoop() override { ++fullScreenLoops; }
    void leaveFullScreen() override {}
    void setButtonImages(int, const QString&, const QString&) override {}
    qint64 maxValue() const override { return 1000; }
    void setSliderValue(qint64 value) override { sliderValue = value; }
    void setSliderEnabled(bool enabled) override
    {
        sliderEnabled = enabled;
        journal << (enabled ? QStringLiteral("slider on") : QStringLiteral("slider off"));
    }
    void setTimeCode(const QString& text) override { timeCode = text; }
    void setStereoButtonTitle(const QString&) override {}
    void setChannelBox(int, bool, bool) override {}

private:
    std::mutex m_mutex;
    Picture m_last;
};

// The preview controller on a recording view.
class PreviewCtrlTest : public PreviewTest
{
protected:
    void start()
    {
        ctrl = std::make_unique<BLPreviewCtrl>(view);
        ASSERT_TRUE(ctrl->initializeCtrl());
    }
    BLTimeSliderCtrl& slider() { return ctrl->getTimeSliderCtrl(); }
    BLPreviewButtonCtrl& buttons() { return ctrl->getPreviewButtonCtrl(); }
    static void post(const QString& name) { BLCommon::sharedCtrl()->sendNotificationNow(nullptr, name); }
    // Plays the take and pauses it.
    void pauseIn(const cwtest::CardFolder& card, const DOTakeData& take)
    {
        play(card, take);
        ASSERT_TRUE(waitForState(VM_PLAYED));
        ASSERT_TRUE(buttons().onPause());
        ASSERT_TRUE(waitForState(VM_PAUSING));
    }
    // Whether a menu item is enabled; none when the preview does not handle it.
    std::optional<bool> menu(int item)
    {
        bool enable = false;
        return ctrl->isSupportMenuItem(item, &enable) ? std::optional(enable) : std::nullopt;
    }

    RecordingPreviewView view;
};

} // namespace pvtest
