#pragma once

#include "media/viewer/vv.h"

#include <QString>

class BLPreviewCtrl;
class IAudioChannelView;
class IPreviewButtonView;
class ITimeCodeView;
class ITimeSliderView;

// What the preview controller needs from the preview area: the picture (in
// the window and full screen), the sound, the title field and the views of
// the transport controls. Everything is called on the main thread except
// drawFrame.
class IPreviewView
{
public:
    virtual ~IPreviewView() = default;

    // The controller whose operations the view's controls and keys call; null
    // once it is gone.
    virtual void setPreviewCtrl(BLPreviewCtrl* ctrl) = 0;

    virtual IPreviewButtonView& buttonView() = 0;
    virtual ITimeSliderView& timeSliderView() = 0;
    virtual ITimeCodeView& timeCodeView() = 0;
    virtual IAudioChannelView& audioChannelView() = 0;

    // Where the viewer's sound goes; a sink without a write function plays
    // silently. Asked once, when the viewer starts.
    virtual vv_audio_sink_t audioSink() = 0;
    // One picture from the viewer, on its engine thread with the draw lock
    // held. The pixels are valid only during the call. full_screen tells
    // whether it belongs to the full-screen display.
    virtual void drawFrame(const vv_frame_t& frame) = 0;

    virtual void setTitle(const QString& title) = 0;
    // Repaints the picture; black while the viewer is stopped.
    virtual void redraw() = 0;
    // Gives the picture the keyboard focus.
    virtual void makeFirstResponder() = 0;
    virtual void setPictureVisible(bool visible) = 0;

    // Full screen: a borderless black window over the whole main screen;
    // false when there is no screen to take. runFullScreenLoop returns when
    // the user leaves full screen (Escape or a double click), passing other
    // keys to BLPreviewCtrl::keyDown meanwhile.
    virtual bool enterFullScreen() = 0;
    virtual void runFullScreenLoop() = 0;
    virtual void leaveFullScreen() = 0;
};
