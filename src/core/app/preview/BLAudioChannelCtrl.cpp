#include "core/app/preview/BLAudioChannelCtrl.h"

#include "core/app/preview/IAudioChannelView.h"
#include "core/services/BLLocalizedStrings.h"
#include "core/services/BLLogCtrl.h"
#include "media/viewer/vv.h"

BLAudioChannelCtrl::BLAudioChannelCtrl(IAudioChannelView& view) : m_view(view)
{
    setAudioChannelView();
}

void BLAudioChannelCtrl::onAudio()
{
    m_bStereo = !m_bStereo;
    setAudioChannelView();
    changeAudioChannelStatus();
}

void BLAudioChannelCtrl::onChnnel(int tag)
{
    const bool change = !m_bStereo && ((tag == 2 && m_iChannel == 1) || (tag == 1 && m_iChannel == 2));
    if (change)
        m_iChannel = tag;
    // A box clicked without a change gets its old tick back.
    setAudioChannelView();
    if (change)
        changeAudioChannelStatus();
}

void BLAudioChannelCtrl::setAudioChannelView()
{
    if (m_bStereo) {
        m_view.setStereoButtonTitle(BLLocalizedString(QStringLiteral("LOCALIZED_PREVIEW_STEREO")));
        m_view.setChannelBox(1, true, false);
        m_view.setChannelBox(2, true, false);
    } else {
        m_view.setStereoButtonTitle(BLLocalizedString(QStringLiteral("LOCALIZED_PREVIEW_MONAURAL")));
        m_view.setChannelBox(1, m_iChannel == 1, true);
        m_view.setChannelBox(2, m_iChannel == 2, true);
    }
}

void BLAudioChannelCtrl::changeAudioChannelStatus()
{
    int channel = VV_AUDIO_BOTH;
    const char* name = "VV_AUDIO_BOTH";
    if (!m_bStereo) {
        channel = m_iChannel == 1 ? VV_AUDIO_L : VV_AUDIO_R;
        name = m_iChannel == 1 ? "VV_AUDIO_L" : "VV_AUDIO_R";
    }
    BLLogCtrl::debug(0, QStringLiteral("[BLAudioChannelCtrl changeAudioChannelStatus] call vv_audio_ch(%1)")
                            .arg(QLatin1String(name)));
    vv_audio_ch(channel);
}
