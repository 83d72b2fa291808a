#pragma once

#include "media/viewer/AudioOutput.h"
#include "media/viewer/Clock.h"
#include "media/viewer/FrameConverter.h"
#include "media/viewer/Log.h"
#include "media/viewer/Settings.h"
#include "media/viewer/TakeVideo.h"
#include "media/viewer/vv.h"

#include <atomic>
#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

namespace vv {

// The player: an engine thread that owns the take's video, carries out the
// transport requests in order, decodes ahead during playback and presents
// each picture when the clock reaches it, and an audio thread (AudioOutput)
// whose sound drives that clock. Every message and every picture leaves from
// the engine thread.
class Player
{
public:
    enum class Request
    {
        SetTake,
        StartOffset,
        Play,
        Pause,
        Stop,
        FastForward,
        Rewind,
        FirstFrame,
        LastFrame,
        PlusOne,
        MinusOne,
        ShowFrame,
        Redraw,
        MakeThumbnail,
    };

    Player(const Settings& settings, const vv_display_t& display, Log& log, IVVDemuxCallBacker* callbacker);
    // Ends both threads; VM_EXITED is the engine thread's last message.
    ~Player();

    void setMessageFunc(vv_message_func_t func, void* context);
    void setCallbacker(IVVDemuxCallBacker* callbacker) { m_callbacker = callbacker; }

    // Queues a request; frame and flag as the request needs them.
    void post(Request request, int64_t frame = 0, int flag = 0);
    // Queues a new take (its video positioned anywhere).
    void setTake(std::unique_ptr<TakeVideo> video, std::unique_ptr<TakeAudio> audio);
    bool hasTake() const { return m_hasTake; }
    // The state last announced (VM_PLAYED ... VM_STOPPED).
    int state() const { return m_publicState; }

    void setAudioChoice(int choice) { m_audio.setChoice(choice); }
    void changeSettings(const vv_init_param_t& param);
    void setFullScreen(bool on);
    // Whether the caller runs on one of the player's threads.
    bool isOwnThread() const;

private:
    struct Command
    {
        Request request;
        int64_t frame = 0;
        int flag = 0;
        std::shared_ptr<TakeVideo> video;
        std::shared_ptr<TakeAudio> audio;
    };
    struct Decoded
    {
        FramePtr picture;
        int64_t frame;
    };

    void post(Command command);
    void run();
    void handle(Command& command);
    bool moving() const;
    // One step of playing or scanning; answers when to look again (none: at once).
    std::optional<Clock::Time> step();
    std::optional<Clock::Time> stepPlaying();
    std::optional<Clock::Time> stepScanning();

    void startPlaying(int64_t frame);
    void startScanning(int64_t frame, int state);
    void stopMoving();
    void positionAt(int64_t frame);
    void endOfTake();
    bool decodeOne();
    bool decodeAt(int64_t frame, Decoded& out);
    void present(Decoded& decoded, bool report);
    void deliver(const AVFrame* picture, int64_t frame);
    void reportFrame(int64_t frame);
    void makeTypicalPicture();

    void setState(int state);
    void send(int id, const void* param);
    void endOfJob();
    double timeOf(int64_t frame) const { return double(frame) * m_frameSeconds; }
    int64_t lastFrame() const { return m_video->frameCount() - 1; }

    // Shared with the calling threads.
    std::mutex m_mutex;
    std::condition_variable m_wake;
    std::deque<Command> m_commands;
    bool m_quit = false;
    std::mutex m_messageMutex;
    vv_message_func_t m_messageFunc = nullptr;
    void* m_messageContext = nullptr;
    std::atomic<IVVDemuxCallBacker*> m_callbacker;
    std::atomic<bool> m_hasTake{false};
    std::atomic<int> m_publicState{VM_STOPPED};
    std::atomic<int64_t> m_playInfoIntervalUs;
    std::atomic<bool> m_frameDrop;
    std::atomic<int> m_lowResolution;
    std::atomic<bool> m_fullScreen{false};
    Settings m_settings; // under m_mutex
    const int m_decodeQueue;

    // The engine thread's own.
    const vv_display_t m_display;
    Log& m_log;
    Clock m_clock;
    AudioOutput m_audio;
    std::shared_ptr<TakeVideo> m_video;
    double m_frameSeconds = 1.0 / 30;
    int m_state = VM_STOPPED;
    int64_t m_startOffset = 0;
    std::deque<Decoded> m_queue;
    bool m_videoEnded = false;
    bool m_justStarted = false; // the first picture after a start is never dropped
    FramePtr m_picture;         // the picture shown
    int64_t m_current = -1;     // its frame
    int64_t m_lastReported = -1;
    Clock::Time m_lastReportTime{};
    FrameConverter m_converter{SWS_FAST_BILINEAR};
    FrameConverter m_thumbnailConverter{SWS_AREA};
    std::vector<uint8_t> m_pixels;
    std::thread m_thread;
};

} // namespace vv
