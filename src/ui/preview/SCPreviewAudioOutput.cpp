#include "ui/preview/SCPreviewAudioOutput.h"

#include <QAudioDevice>
#include <QAudioFormat>
#include <QAudioSink>
#include <QMediaDevices>
#include <QTimer>

namespace {

constexpr int kRate = 48000;
constexpr int kChannels = 2;
constexpr int kFrameBytes = kChannels * int(sizeof(int16_t));
constexpr int kPumpIntervalMs = 10;

} // namespace

SCPreviewAudioOutput::SCPreviewAudioOutput(QObject* parent) : QObject(parent)
{
    const QAudioDevice device = QMediaDevices::defaultAudioOutput();
    if (device.isNull())
        return;
    QAudioFormat format;
    format.setSampleRate(kRate);
    format.setChannelCount(kChannels);
    format.setSampleFormat(QAudioFormat::Int16);
    if (!device.isFormatSupported(format))
        return;
    m_audioSink = std::make_unique<QAudioSink>(device, format);
    m_device = m_audioSink->start();
    if (!m_device) {
        m_audioSink.reset();
        return;
    }
    m_timer = new QTimer(this);
    m_timer->setInterval(kPumpIntervalMs);
    connect(m_timer, &QTimer::timeout, this, &SCPreviewAudioOutput::pump);
    m_timer->start();
}

SCPreviewAudioOutput::~SCPreviewAudioOutput()
{
    if (m_audioSink)
        m_audioSink->stop();
}

vv_audio_sink_t SCPreviewAudioOutput::sink()
{
    if (!m_audioSink)
        return vv_audio_sink_t{};
    return vv_audio_sink_t{&SCPreviewAudioOutput::write, &SCPreviewAudioOutput::flush, this};
}

int32_t SCPreviewAudioOutput::write(void* context, const int16_t* samples, int32_t frames, int32_t /*rate*/,
                                    int32_t channels)
{
    auto* self = static_cast<SCPreviewAudioOutput*>(context);
    std::lock_guard lock(self->m_mutex);
    if (samples && frames > 0 && channels == kChannels)
        self->m_queue.append(reinterpret_cast<const char*>(samples), qsizetype(frames) * kFrameBytes);
    return int32_t(self->m_queue.size() / kFrameBytes) + self->m_deviceFrames;
}

void SCPreviewAudioOutput::flush(void* context)
{
    auto* self = static_cast<SCPreviewAudioOutput*>(context);
    std::lock_guard lock(self->m_mutex);
    self->m_queue.clear();
    self->m_resetPending = true;
    self->m_deviceFrames = 0;
}

void SCPreviewAudioOutput::pump()
{
    std::lock_guard lock(m_mutex);
    if (m_resetPending) {
        // What the device holds was flushed: start it afresh.
        m_resetPending = false;
        m_audioSink->reset();
        m_device = m_audioSink->start();
    }
    if (!m_device)
        return;
    const qsizetype room = m_audioSink->bytesFree() / kFrameBytes * kFrameBytes;
    const qsizetype count = std::min(room, m_queue.size());
    if (count > 0) {
        const qint64 written = m_device->write(m_queue.constData(), count);
        if (written > 0)
            m_queue.remove(0, written);
    }
    m_deviceFrames = int32_t((m_audioSink->bufferSize() - m_audioSink->bytesFree()) / kFrameBytes);
}
