#include "core/app/preview/BLTimeSliderCtrl.h"

#include "core/app/preview/BLPreviewCtrl.h"
#include "core/app/preview/ITimeSliderView.h"
#include "core/services/BLLogCtrl.h"

#include <QThread>

namespace {

constexpr int kProcessId = 0;

void log(const QString& message)
{
    BLLogCtrl::debug(kProcessId, message);
}

} // namespace

BLTimeSliderCtrl::BLTimeSliderCtrl(BLPreviewCtrl& previewCtrl, ITimeSliderView& view)
    : m_previewCtrl(previewCtrl), m_view(view), m_llMaxValue(view.maxValue())
{
}

BLTimeSliderCtrl::~BLTimeSliderCtrl()
{
    setSliderIsDraging(false);
    joinDragThread();
}

void BLTimeSliderCtrl::setAVInfo(const vv_av_info_t& avInfo, const DOTakeData& /*takeData*/)
{
    m_llFrameCount = avInfo.total_frames;
    std::lock_guard lock(m_skipLock);
    m_bSkip = false;
    m_llSkipFrame = -1;
}

void BLTimeSliderCtrl::updateByViewerState(int state)
{
    if (state >= VM_PLAYED && state <= VM_PAUSING) {
        m_view.setSliderEnabled(true);
    } else if (state == VM_STOPPED) {
        m_view.setSliderEnabled(false);
        m_llSliderValue = 0;
        m_view.setSliderValue(0);
        m_llFrameCount = 0;
        m_llCurrentFrame = -1;
    }
}

void BLTimeSliderCtrl::setFrameNo(qint64 frameNo)
{
    if (frameNo == m_llCurrentFrame)
        return;
    m_llCurrentFrame = frameNo;
    if (getSliderIsDraging())
        return;
    // A take of one frame has nowhere to go either.
    const qint64 frameCount = m_llFrameCount;
    const qint64 value = frameCount <= 1 ? 0 : frameNo * m_llMaxValue / (frameCount - 1);
    m_llSliderValue = value;
    m_view.setSliderValue(value);
}

void BLTimeSliderCtrl::setSliderIsDraging(bool draging)
{
    {
        std::lock_guard lock(m_dragLock);
        m_bDraging = draging;
    }
    m_dragChanged.notify_all();
}

bool BLTimeSliderCtrl::getSliderIsDraging() const
{
    std::lock_guard lock(m_dragLock);
    return m_bDraging;
}

bool BLTimeSliderCtrl::getSkipFrameInfo() const
{
    std::lock_guard lock(m_skipLock);
    return m_bSkip;
}

bool BLTimeSliderCtrl::checkSlipFrameInfo(qint64 frameNo)
{
    std::lock_guard lock(m_skipLock);
    if (!m_bSkip)
        return false;
    if (m_llSkipFrame < 0)
        return true;
    if (frameNo < m_llSkipFrame - kSkipMargin || frameNo > m_llSkipFrame + kSkipMargin)
        return true;
    log(QString::asprintf(
        "[BLTimeSliderCtrl checkSlipFrameInfo] end skip frame_no = %lld, skip_frame_no = %lld, "
        "margin = %d",
        static_cast<long long>(frameNo), static_cast<long long>(m_llSkipFrame), kSkipMargin));
    m_bSkip = false;
    m_llSkipFrame = -1;
    return false;
}

int BLTimeSliderCtrl::timeSliderDragStart()
{
    joinDragThread();
    setSliderIsDraging(true);
    const int state = m_previewCtrl.getViewerState();
    if (state >= VM_PLAYED && state <= VM_REWINDED) {
        {
            std::lock_guard lock(m_skipLock);
            m_bSkip = true;
            m_llSkipFrame = -1;
        }
        log(QStringLiteral("[BLTimeSliderCtrl timeSliderDragStart] call vv_pause"));
        vv_pause();
    }
    const qint64 startValue = m_llSliderValue;
    m_dragThread.reset(QThread::create([this, startValue] { timeSliderDragingThread(startValue); }));
    m_dragThread->start(QThread::LowestPriority);
    return state;
}

void BLTimeSliderCtrl::sliderDidMove(qint64 value)
{
    m_llSliderValue = value;
}

void BLTimeSliderCtrl::timeSliderDragEnd(int stateBefore)
{
    setSliderIsDraging(false);
    // The thread's last request must not overtake the one below.
    joinDragThread();
    const qint64 frame = frameOfSliderValue(m_llSliderValue);
    setSkipTarget(frame);
    if (stateBefore == VM_PAUSING) {
        log(QString::asprintf("[BLTimeSliderCtrl timeSliderDragEnd] call vv_show_frame(%lld, 0)",
                              static_cast<long long>(frame)));
        vv_show_frame(frame, 0);
    } else if (stateBefore >= VM_PLAYED && stateBefore <= VM_REWINDED) {
        log(QString::asprintf("[BLTimeSliderCtrl timeSliderDragEnd] call vv_show_frame(%lld, 1)",
                              static_cast<long long>(frame)));
        vv_show_frame(frame, 1);
    }
}

void BLTimeSliderCtrl::timeSliderDragingThread(qint64 startValue)
{
    qint64 shownValue = startValue;
    std::unique_lock lock(m_dragLock);
    while (!m_dragChanged.wait_for(lock, kDragInterval, [this] { return !m_bDraging; })) {
        const qint64 value = m_llSliderValue;
        if (value == shownValue)
            continue;
        shownValue = value;
        lock.unlock();
        const qint64 frame = frameOfSliderValue(value);
        setSkipTarget(frame);
        log(QString::asprintf("[BLTimeSliderCtrl timeSliderDragingThread] call vv_show_frame(%lld, 0)",
                              static_cast<long long>(frame)));
        vv_show_frame(frame, 0);
        lock.lock();
    }
}

void BLTimeSliderCtrl::joinDragThread()
{
    if (m_dragThread) {
        m_dragThread->wait();
        m_dragThread.reset();
    }
}

qint64 BLTimeSliderCtrl::frameOfSliderValue(qint64 value) const
{
    const qint64 frameCount = m_llFrameCount;
    if (m_llMaxValue <= 0 || frameCount <= 0)
        return 0;
    return (frameCount - 1) * value / m_llMaxValue;
}

void BLTimeSliderCtrl::setSkipTarget(qint64 frameNo)
{
    std::lock_guard lock(m_skipLock);
    if (m_bSkip)
        m_llSkipFrame = frameNo;
}
