#include "core/app/preview/BLPreviewButtonCtrl.h"

#include "core/app/preview/BLPreviewCtrl.h"
#include "core/app/preview/IPreviewButtonView.h"
#include "core/services/BLLogCtrl.h"

namespace {

constexpr int kProcessId = 0;

// Image names of the buttons that show the viewer state: normal and pressed,
// then the active pair.
struct StateButton
{
    BLPreviewButtonCtrl::Button button;
    int state;
    const char* normal;
    const char* pressed;
    const char* active;
    const char* activePressed;
};

constexpr StateButton kStateButtons[] = {
    {BLPreviewButtonCtrl::kPlay, VM_PLAYED, "macbtn_play_n", "macbtn_play_p", "macbtn_play_a",
     "macbtn_play_a_p"},
    {BLPreviewButtonCtrl::kFF, VM_FASTFORWARDED, "macbtn_ff_n", "macbtn_ff_p", "macbtn_ff_a",
     "macbtn_ff_a_p"},
    {BLPreviewButtonCtrl::kRW, VM_REWINDED, "macbtn_rw_n", "macbtn_rw_p", "macbtn_rw_a", "macbtn_rw_a_p"},
    {BLPreviewButtonCtrl::kPause, VM_PAUSING, "macbtn_stop_n", "macbtn_stop_p", "macbtn_stop_a",
     "macbtn_stop_a_p"},
};

} // namespace

BLPreviewButtonCtrl::BLPreviewButtonCtrl(BLPreviewCtrl& previewCtrl, IPreviewButtonView& view)
    : m_previewCtrl(previewCtrl), m_view(view)
{
    m_view.setButtonImages(kTopFrame, QStringLiteral("macbtn_top_n"), QStringLiteral("macbtn_top_p"));
    m_view.setButtonImages(kLastFrame, QStringLiteral("macbtn_last_n"), QStringLiteral("macbtn_last_p"));
    m_view.setButtonImages(kPlusFrame, QStringLiteral("macbtn_plus_n"), QStringLiteral("macbtn_plus_p"));
    m_view.setButtonImages(kMinusFrame, QStringLiteral("macbtn_minus_n"), QStringLiteral("macbtn_minus_p"));
}

bool BLPreviewButtonCtrl::run(const char* action, int ignoredState, int (*call)(), const char* callName)
{
    const QString prefix = QStringLiteral("[BLPreviewButtonCtrl %1]").arg(QLatin1String(action));
    if (m_previewCtrl.isSkipFrameInfoNow()) {
        BLLogCtrl::debug(kProcessId, prefix + QStringLiteral(" slipFrameInfoNow"));
        return false;
    }
    const int state = m_previewCtrl.getViewerState();
    if (state == VM_STOPPED) {
        BLLogCtrl::debug(kProcessId, prefix + QStringLiteral(" now VM_STOPPED"));
        return false;
    }
    if (state == ignoredState)
        return false;
    BLLogCtrl::debug(kProcessId, prefix + QStringLiteral(" call ") + QLatin1String(callName));
    return call() == VV_OK;
}

bool BLPreviewButtonCtrl::onPlay()
{
    return run("onPlay", VM_PLAYED, &vv_play, "vv_play");
}

bool BLPreviewButtonCtrl::onPause()
{
    return run("onPause", VM_PAUSING, &vv_pause, "vv_pause");
}

bool BLPreviewButtonCtrl::onFF()
{
    return run("onFF", VM_FASTFORWARDED, &vv_ff, "vv_ff");
}

bool BLPreviewButtonCtrl::onRW()
{
    return run("onRW", VM_REWINDED, &vv_rew, "vv_rew");
}

bool BLPreviewButtonCtrl::onTopFrame()
{
    return run("onTopFrame", 0, &vv_first_frame, "vv_first_frame");
}

bool BLPreviewButtonCtrl::onLastFrame()
{
    return run("onLastFrame", 0, &vv_last_frame, "vv_last_frame");
}

bool BLPreviewButtonCtrl::onPlusFrame()
{
    return run("onPlusFrame", 0, &vv_plus_one_frame, "vv_plus_one_frame");
}

bool BLPreviewButtonCtrl::onMinusFrame()
{
    return run("onMinusFrame", 0, &vv_minus_one_frame, "vv_minus_one_frame");
}

void BLPreviewButtonCtrl::updateByViewerState(int state)
{
    for (const StateButton& b : kStateButtons) {
        const bool active = b.state == state;
        m_view.setButtonImages(b.button, QLatin1String(active ? b.active : b.normal),
                               QLatin1String(active ? b.activePressed : b.pressed));
    }
}
