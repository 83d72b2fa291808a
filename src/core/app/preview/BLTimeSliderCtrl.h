#pragma once

#include "media/viewer/vv.h"

#include <QtGlobal>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>

class BLPreviewCtrl;
class DOTakeData;
class ITimeSliderView;
class QThread;

// The time slider: shows the frame reported by the viewer and lets the user
// drag to another frame. While the user drags, a low-priority thread shows the
// frame under the slider every 0.7 s; dragging during playback pauses and
// then resumes playing from where the slider was let go. Until the viewer
// reports a frame near the one asked for, the frame reports still on their
// way are skipped, so the slider does not jump back.
class BLTimeSliderCtrl
{
public:
    // Frames either side of the asked frame that end the skipping.
    static constexpr int kSkipMargin = 10;
    static constexpr std::chrono::milliseconds kDragInterval{700};

    BLTimeSliderCtrl(BLPreviewCtrl& previewCtrl, ITimeSliderView& view);
    ~BLTimeSliderCtrl();

    void setAVInfo(const vv_av_info_t& avInfo, const DOTakeData& takeData);
    void updateByViewerState(int state);
    // The frame the viewer shows.
    void setFrameNo(qint64 frameNo);
    qint64 getFrameNo() const { return m_llCurrentFrame; }
    qint64 getSliderValue() const { return m_llSliderValue; }

    void setSliderIsDraging(bool draging);
    bool getSliderIsDraging() const;
    bool getSkipFrameInfo() const;
    // Whether a frame report of the viewer is to be dropped.
    bool checkSlipFrameInfo(qint64 frameNo);

    // The user pressed the slider: answers the viewer state before the drag.
    int timeSliderDragStart();
    // The slider moved under the user's hand.
    void sliderDidMove(qint64 value);
    // The user let go of the slider.
    void timeSliderDragEnd(int stateBefore);

private:
    void timeSliderDragingThread(qint64 startValue);
    // Waits for the drag thread to end.
    void joinDragThread();
    qint64 frameOfSliderValue(qint64 value) const;
    // Skipping goes on until the frame is reported (when skipping at all).
    void setSkipTarget(qint64 frameNo);

    BLPreviewCtrl& m_previewCtrl;
    ITimeSliderView& m_view;
    const qint64 m_llMaxValue;
    std::atomic<qint64> m_llFrameCount{0};
    std::atomic<qint64> m_llCurrentFrame{-1};
    std::atomic<qint64> m_llSliderValue{0};

    mutable std::mutex m_dragLock;
    std::condition_variable m_dragChanged;
    bool m_bDraging = false;
    std::unique_ptr<QThread> m_dragThread;

    mutable std::mutex m_skipLock;
    bool m_bSkip = false;
    qint64 m_llSkipFrame = -1;
};
