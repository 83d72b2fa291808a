#pragma once

class IAudioChannelView;

// The audio channel choice: stereo (channel 1 left, channel 2 right) or one
// channel on both speakers. The stereo button switches between the two; in
// mono the ticked box (tag 1 or 2) names the channel heard.
class BLAudioChannelCtrl
{
public:
    explicit BLAudioChannelCtrl(IAudioChannelView& view);

    void onAudio();
    void onChnnel(int tag);
    void setAudioChannelView();
    void changeAudioChannelStatus();

    bool isStereo() const { return m_bStereo; }
    int getChannel() const { return m_iChannel; }

private:
    IAudioChannelView& m_view;
    bool m_bStereo = true;
    int m_iChannel = 1;
};
