#pragma once

#include "core/app/preview/IAudioChannelView.h"

#include <QWidget>

class BLAudioChannelCtrl;
class QCheckBox;
class QPushButton;

// The audio channel choice: the stereo/mono button and the boxes of channels
// 1 and 2.
class SCAudioChannelView : public QWidget, public IAudioChannelView
{
    Q_OBJECT
public:
    explicit SCAudioChannelView(QWidget* parent = nullptr);

    void setAudioChannelCtrl(BLAudioChannelCtrl* ctrl) { m_ctrl = ctrl; }
    QPushButton* stereoButton() const { return m_stereo; }
    QCheckBox* channelBox(int tag) const;

    void setStereoButtonTitle(const QString& title) override;
    void setChannelBox(int tag, bool ticked, bool enabled) override;

private:
    BLAudioChannelCtrl* m_ctrl = nullptr;
    QPushButton* m_stereo;
    QCheckBox* m_channel1;
    QCheckBox* m_channel2;
};
