#pragma once

#include "core/app/preview/IPreviewView.h"

#include <QImage>
#include <QWidget>

#include <atomic>
#include <memory>

class QKeyEvent;
class QLabel;
class QPainter;
class SCAudioChannelView;
class SCFullScreenWindow;
class SCOpenGLView;
class SCPreviewAudioOutput;
class SCPreviewButtonBar;
class SCTimeCodeField;
class SCTimeSlider;

// The preview area of the main window: the take's title, the picture, and
// under it the transport buttons, the time slider, the time code and the
// audio channel choice; besides it the full-screen window and the sound
// output. The preview controller drives it through IPreviewView.
class SCPreviewView : public QWidget, public IPreviewView
{
    Q_OBJECT
public:
    explicit SCPreviewView(QWidget* parent = nullptr);
    ~SCPreviewView() override;

    BLPreviewCtrl* previewCtrl() const { return m_ctrl; }
    // Paints the current picture into the rectangle: black while stopped.
    void paintPicture(QPainter& painter, const QRect& rect);
    // Passes a key without Ctrl, Alt or Meta to the controller; true when it
    // was a preview key.
    bool forwardKey(QKeyEvent* event);

    QLabel* titleField() const { return m_titleField; }
    SCOpenGLView* openGLView() const { return m_openGLView; }
    SCFullScreenWindow* fullScreenWindow() const { return m_fullScreen.get(); }
    SCPreviewButtonBar* buttonBar() const { return m_buttonBar; }
    SCTimeSlider* timeSlider() const { return m_timeSlider; }
    SCTimeCodeField* timeCodeField() const { return m_timeCodeField; }
    SCAudioChannelView* audioChannel() const { return m_audioChannel; }

    // IPreviewView
    void setPreviewCtrl(BLPreviewCtrl* ctrl) override;
    IPreviewButtonView& buttonView() override;
    ITimeSliderView& timeSliderView() override;
    ITimeCodeView& timeCodeView() override;
    IAudioChannelView& audioChannelView() override;
    vv_audio_sink_t audioSink() override;
    void drawFrame(const vv_frame_t& frame) override;
    void setTitle(const QString& title) override;
    void redraw() override;
    void makeFirstResponder() override;
    void setPictureVisible(bool visible) override;
    bool enterFullScreen() override;
    void runFullScreenLoop() override;
    void leaveFullScreen() override;

private:
    void connectButtons();

    BLPreviewCtrl* m_ctrl = nullptr;
    QLabel* m_titleField;
    SCOpenGLView* m_openGLView;
    SCPreviewButtonBar* m_buttonBar;
    SCTimeSlider* m_timeSlider;
    SCTimeCodeField* m_timeCodeField;
    SCAudioChannelView* m_audioChannel;
    std::unique_ptr<SCFullScreenWindow> m_fullScreen;
    std::unique_ptr<SCPreviewAudioOutput> m_audioOutput;

    // The last picture and its display aspect, under the controller's draw lock.
    QImage m_frame;
    QSize m_aspect;
    std::atomic<bool> m_repaintPending{false};
};
