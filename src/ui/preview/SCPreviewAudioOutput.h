#pragma once

#include "media/viewer/vv.h"

#include <QByteArray>
#include <QObject>

#include <atomic>
#include <memory>
#include <mutex>

class QAudioSink;
class QIODevice;
class QTimer;

// The viewer's sound on the default audio device of Qt Multimedia. The
// viewer writes from its audio thread into a queue; a timer on this object's
// thread hands the queue to the device as it makes room. Without an audio
// device the sink has no write function: the viewer then plays silently on
// the system clock.
class SCPreviewAudioOutput : public QObject
{
    Q_OBJECT
public:
    explicit SCPreviewAudioOutput(QObject* parent = nullptr);
    ~SCPreviewAudioOutput() override;

    bool hasDevice() const { return m_audioSink != nullptr; }
    // The sink for the viewer's display block.
    vv_audio_sink_t sink();

private:
    static int32_t write(void* context, const int16_t* samples, int32_t frames, int32_t rate,
                         int32_t channels);
    static void flush(void* context);
    // Moves what the device has room for from the queue to the device.
    void pump();

    std::unique_ptr<QAudioSink> m_audioSink;
    QIODevice* m_device = nullptr;
    QTimer* m_timer = nullptr;
    std::mutex m_mutex;
    QByteArray m_queue;
    bool m_resetPending = false;
    // Sample frames the device holds, as last seen by pump().
    std::atomic<int32_t> m_deviceFrames{0};
};
