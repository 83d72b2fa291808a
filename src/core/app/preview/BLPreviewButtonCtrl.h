#pragma once

#include "media/viewer/vv.h"

class BLPreviewCtrl;
class IPreviewButtonView;

// The transport buttons: play, pause, fast forward, rewind, first frame,
// last frame, one frame on, one frame back. Every action is ignored while
// the viewer is stopped or frame reports are skipped after a slider drag; an
// action answers whether it sent a request to the viewer library. The button
// of the current state (play, fast forward, rewind, pause) shows its active
// images.
class BLPreviewButtonCtrl
{
public:
    enum Button
    {
        kPlay,
        kPause,
        kFF,
        kRW,
        kTopFrame,
        kLastFrame,
        kPlusFrame,
        kMinusFrame,
        kButtonCount
    };

    BLPreviewButtonCtrl(BLPreviewCtrl& previewCtrl, IPreviewButtonView& view);

    bool onPlay();
    bool onPause();
    bool onFF();
    bool onRW();
    bool onTopFrame();
    bool onLastFrame();
    bool onPlusFrame();
    bool onMinusFrame();

    void updateByViewerState(int state);

private:
    // Runs a library call unless the state forbids it; ignoredState is the
    // state in which the call would change nothing (0: none).
    bool run(const char* action, int ignoredState, int (*call)(), const char* callName);

    BLPreviewCtrl& m_previewCtrl;
    IPreviewButtonView& m_view;
};
