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

#include <QMap>
#include <QPair>
#include <QStringList>

#include <mutex>
#include <optional>
#include <vector>

namespace pvtest {

// One picture the view was given, with the counter read from its pixels.
struct Picture
{
    qint64 frame = -1;
    int width = 0;
    int height = 0;
    bool fullScreen = false;
    std::optional<cardgen::FrameCounterValue> counter;
};

using cwtest::SimulatedAudioDevice;

// Stands in for the preview area: keeps what the controllers asked of it, in
// order (journal), and every picture. Full screen is entered at once; its
// loop runs the event loop until a picture marked full screen has arrived.
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
    int redraws = 0;
    QMap<int, QPair<QString, QString>> images;
    qint64 sliderValue = -1;
    bool sliderEnabled = false;
    QString timeCode;
    QString stereoTitle;
    QMap<int, QPair<bool, bool>> boxes; // tag -> ticked, enabled
    bool refuseFullScreen = false;
    int fullScreenLoops = 0;
    bool fullScreenPictureSeen = false;
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
        p.fullScreen = frame.full_screen != 0;
        p.counter =
            cardgen::FrameCounter::readPacked(frame.pixels, frame.stride, frame.width, frame.height, 4);
        std::lock_guard lock(m_mutex);
        m_pictures.push_back(p);
    }
    std::vector<Picture> pictures()
    {
        std::lock_guard lock(m_mutex);
        return m_pictures;
    }
    Picture lastPicture()
    {
        std::lock_guard lock(m_mutex);
        return m_pictures.empty() ? Picture() : m_pictures.back();
    }

    void setTitle(const QString& t) override
    {
        title = t;
        journal << QStringLiteral("title ") + t;
    }
    void redraw() override
    {
        ++redraws;
        journal << QStringLiteral("redraw");
    }
    void makeFirstResponder() override { journal << QStringLiteral("focus"); }
    void setPictureVisible(bool) override {}
    bool enterFullScreen() override
    {
        journal << QStringLiteral("enter full screen");
        return !refuseFullScreen;
    }
    void runFullScreenLoop() override
    {
        ++fullScreenLoops;
        fullScreenPictureSeen = waitFor([&] { return lastPicture().fullScreen; }, 5000);
    }
    void leaveFullScreen() override { journal << QStringLiteral("leave full screen"); }

    void setButtonImages(int button, const QString& normal, const QString& pressed) override
    {
        images[button] = {normal, pressed};
    }
    qint64 maxValue() const override { return 1000; }
    void setSliderValue(qint64 value) override { sliderValue = value; }
    void setSliderEnabled(bool enabled) override
    {
        sliderEnabled = enabled;
        journal << (enabled ? QStringLiteral("slider on") : QStringLiteral("slider off"));
    }
    void setTimeCode(const QString& text) override { timeCode = text; }
    void setStereoButtonTitle(const QString& t) override { stereoTitle = t; }
    void setChannelBox(int tag, bool ticked, bool enabled) override { boxes[tag] = {ticked, enabled}; }

private:
    std::mutex m_mutex;
    std::vector<Picture> m_pictures;
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
