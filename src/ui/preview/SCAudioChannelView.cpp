#include "ui/preview/SCAudioChannelView.h"

#include "core/app/preview/BLAudioChannelCtrl.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QPushButton>
#include <QSignalBlocker>

SCAudioChannelView::SCAudioChannelView(QWidget* parent)
    : QWidget(parent), m_stereo(new QPushButton(this)),
      m_channel1(new QCheckBox(QStringLiteral("Ch 1"), this)),
      m_channel2(new QCheckBox(QStringLiteral("Ch 2"), this))
{
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_stereo);
    layout->addWidget(m_channel1);
    layout->addWidget(m_channel2);
    for (QAbstractButton* button :
         {static_cast<QAbstractButton*>(m_stereo), static_cast<QAbstractButton*>(m_channel1),
          static_cast<QAbstractButton*>(m_channel2)})
        button->setFocusPolicy(Qt::NoFocus);
    connect(m_stereo, &QPushButton::clicked, this, [this] {
        if (m_ctrl)
            m_ctrl->onAudio();
    });
    connect(m_channel1, &QCheckBox::clicked, this, [this] {
        if (m_ctrl)
            m_ctrl->onChnnel(1);
    });
    connect(m_channel2, &QCheckBox::clicked, this, [this] {
        if (m_ctrl)
            m_ctrl->onChnnel(2);
    });
}

QCheckBox* SCAudioChannelView::channelBox(int tag) const
{
    return tag == 1 ? m_channel1 : tag == 2 ? m_channel2 : nullptr;
}

void SCAudioChannelView::setStereoButtonTitle(const QString& title)
{
    m_stereo->setText(title);
}

void SCAudioChannelView::setChannelBox(int tag, bool ticked, bool enabled)
{
    QCheckBox* box = channelBox(tag);
    if (!box)
        return;
    const QSignalBlocker blocker(box);
    box->setChecked(ticked);
    box->setEnabled(enabled);
}
