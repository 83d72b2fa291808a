#include "ui/preview/SCPreviewView.h"

#include "core/app/preview/BLAudioChannelCtrl.h"
#include "core/app/preview/BLPreviewButtonCtrl.h"
#include "core/app/preview/BLPreviewCtrl.h"
#include "core/app/preview/BLTimeSliderCtrl.h"
#include "ui/preview/SCAudioChannelView.h"
#include "ui/preview/SCFullScreenWindow.h"
#include "ui/preview/SCImageButton.h"
#include "ui/preview/SCOpenGLView.h"
#include "ui/preview/SCPreviewAudioOutput.h"
#include "ui/preview/SCPreviewButtonBar.h"
#include "ui/preview/SCTimeCodeField.h"
#include "ui/preview/SCTimeSlider.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QVBoxLayout>

SCPreviewView::SCPreviewView(QWidget* parent)
    : QWidget(parent), m_titleField(new QLabel(this)), m_openGLView(new SCOpenGLView(*this, this)),
      m_buttonBar(new SCPreviewButtonBar(this)), m_timeSlider(new SCTimeSlider(this)),
      m_timeCodeField(new SCTimeCodeField(this)), m_audioChannel(new SCAudioChannelView(this)),
      m_fullScreen(std::make_unique<SCFullScreenWindow>(*this))
{
    m_titleField->setTextFormat(Qt::PlainText);
    m_titleField->setAlignment(Qt::AlignHCenter);

    auto* transport = new QHBoxLayout;
    transport->setSpacing(8);
    transport->addWidget(m_buttonBar);
    transport->addWidget(m_timeSlider, 1);
    transport->addWidget(m_timeCodeField);
    transport->addWidget(m_audioChannel);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(4, 2, 4, 4);
    layout->setSpacing(4);
    layout->addWidget(m_titleField);
    layout->addWidget(m_openGLView, 1);
    layout->addLayout(transport);
    connectButtons();
}

SCPreviewView::~SCPreviewView() = default;

void SCPreviewView::connectButtons()
{
    const struct
    {
        int button;
        bool (BLPreviewButtonCtrl::*action)();
    } actions[] = {{BLPreviewButtonCtrl::kPlay, &BLPreviewButtonCtrl::onPlay},
                   {BLPreviewButtonCtrl::kPause, &BLPreviewButtonCtrl::onPause},
                   {BLPreviewButtonCtrl::kFF, &BLPreviewButtonCtrl::onFF},
                   {BLPreviewButtonCtrl::kRW, &BLPreviewButtonCtrl::onRW},
                   {BLPreviewButtonCtrl::kTopFrame, &BLPreviewButtonCtrl::onTopFrame},
                   {BLPreviewButtonCtrl::kLastFrame, &BLPreviewButtonCtrl::onLastFrame},
                   {BLPreviewButtonCtrl::kPlusFrame, &BLPreviewButtonCtrl::onPlusFrame},
                   {BLPreviewButtonCtrl::kMinusFrame, &BLPreviewButtonCtrl::onMinusFrame}};
    for (const auto& entry : actions) {
        connect(m_buttonBar->button(entry.button), &QAbstractButton::clicked, this,
                [this, action = entry.action] {
                    if (m_ctrl)
                        (m_ctrl->getPreviewButtonCtrl().*action)();
                });
    }
}

void SCPreviewView::paintPicture(QPainter& painter, const QRect& rect)
{
    painter.fillRect(rect, Qt::black);
    if (!m_ctrl || m_ctrl->getViewerState() == VM_STOPPED)
        return;
    m_ctrl->lockDraw();
    const QImage frame = m_frame;
    const QSize aspect = m_aspect;
    m_ctrl->unlockDraw();
    if (frame.isNull())
        return;
    // The largest rectangle of the picture's display aspect that fits, centred.
    const QSize shape = aspect.isEmpty() ? frame.size() : aspect;
    const QSize size = shape.scaled(rect.size(), Qt::KeepAspectRatio);
    const QRect target(rect.x() + (rect.width() - size.width()) / 2,
                       rect.y() + (rect.height() - size.height()) / 2, size.width(), size.height());
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(target, frame);
}

bool SCPreviewView::forwardKey(QKeyEvent* event)
{
    if (!m_ctrl || (event->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)))
        return false;
    return m_ctrl->keyDown(event->key());
}

void SCPreviewView::setPreviewCtrl(BLPreviewCtrl* ctrl)
{
    m_ctrl = ctrl;
    m_timeSlider->setTimeSliderCtrl(ctrl ? &ctrl->getTimeSliderCtrl() : nullptr);
    m_audioChannel->setAudioChannelCtrl(ctrl ? &ctrl->getAudioChannelCtrl() : nullptr);
}

IPreviewButtonView& SCPreviewView::buttonView()
{
    return *m_buttonBar;
}

ITimeSliderView& SCPreviewView::timeSliderView()
{
    return *m_timeSlider;
}

ITimeCodeView& SCPreviewView::timeCodeView()
{
    return *m_timeCodeField;
}

IAudioChannelView& SCPreviewView::audioChannelView()
{
    return *m_audioChannel;
}

vv_audio_sink_t SCPreviewView::audioSink()
{
    if (!m_audioOutput)
        m_audioOutput = std::make_unique<SCPreviewAudioOutput>();
    return m_audioOutput->sink();
}

void SCPreviewView::drawFrame(const vv_frame_t& frame)
{
    // The viewer's pixels live only during this call.
    m_frame = QImage(frame.pixels, frame.width, frame.height, frame.stride, QImage::Format_RGB32).copy();
    m_aspect = QSize(frame.aspect_num, frame.aspect_den);
    if (m_repaintPending.exchange(true))
        return;
    QMetaObject::invokeMethod(
        this,
        [this] {
            m_repaintPending = false;
            m_openGLView->update();
            if (m_fullScreen->isVisible())
                m_fullScreen->update();
        },
        Qt::QueuedConnection);
}

void SCPreviewView::setTitle(const QString& title)
{
    m_titleField->setText(title);
}

void SCPreviewView::redraw()
{
    m_openGLView->update();
}

void SCPreviewView::makeFirstResponder()
{
    m_openGLView->setFocus(Qt::OtherFocusReason);
}

void SCPreviewView::setPictureVisible(bool visible)
{
    m_openGLView->setVisible(visible);
}

bool SCPreviewView::enterFullScreen()
{
    return m_fullScreen->enter();
}

void SCPreviewView::runFullScreenLoop()
{
    m_fullScreen->runLoop();
}

void SCPreviewView::leaveFullScreen()
{
    m_fullScreen->leave();
}
