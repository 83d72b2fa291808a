#pragma once

#include "core/card/DOTakeData.h"
#include "media/viewer/vv.h"

#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <vector>

class BLAudioChannelCtrl;
class BLClipViewerCallback;
class BLPreviewButtonCtrl;
class BLTimeCodeCtrl;
class BLTimeSliderCtrl;
class IPreviewView;

// Menu tags of the preview's commands (the Preview menu).
inline constexpr int MENU_ITEM_ID_PREVIEW_PLAY = 44301;
inline constexpr int MENU_ITEM_ID_PREVIEW_PAUSE = 44302;
inline constexpr int MENU_ITEM_ID_PREVIEW_FF = 44303;
inline constexpr int MENU_ITEM_ID_PREVIEW_RW = 44304;
inline constexpr int MENU_ITEM_ID_PREVIEW_TOP_FRAME = 44305;
inline constexpr int MENU_ITEM_ID_PREVIEW_LAST_FRAME = 44306;
inline constexpr int MENU_ITEM_ID_PREVIEW_PLUS_FRAME = 44307;
inline constexpr int MENU_ITEM_ID_PREVIEW_MINUS_FRAME = 44308;
inline constexpr int MENU_ITEM_ID_PREVIEW_FULL_SCREEN = 44309;
inline constexpr int MENU_ITEM_ID_PREVIEW_MAKE_THUMBNAIL = 44310;

// The viewer library's message entry: runs on the library's engine thread and
// hands the message to the controller given as context, which handles it on
// the main thread.
void GetViewerMessageFunc(vv_viewer_message_t* message, void* context);

// The preview: the bridge to the viewer library. It starts and ends the
// library, hands it the take to play, receives its messages and keeps the
// viewer state, which it passes on to the transport controls (buttons, time
// slider, time code, audio channels). It also answers the preview's keys and
// menu commands, runs full screen, makes a take's typical picture, and offers
// the thumbnail calls of the thumbnail cache.
//
// Lives on the main thread; every message receiver runs there. The library's
// threads reach it only through GetViewerMessageFunc, the frame sink, the draw
// lock and endOfViewerJob.
class BLPreviewCtrl
{
public:
    explicit BLPreviewCtrl(IPreviewView& view);
    ~BLPreviewCtrl();
    BLPreviewCtrl(const BLPreviewCtrl&) = delete;
    BLPreviewCtrl& operator=(const BLPreviewCtrl&) = delete;

    // Starts the viewer library. False (after "MSG_655_3202") when it could
    // not start: the program cannot go on.
    bool initializeCtrl();
    void finalizeCtrl();
    bool initViewerLibrary();
    void finalizeViewerLibrary();
    bool isUseViewerLibrary() const { return m_bUseViewerLibrary; }

    // Hands the take's MP4 files to the library and the take to the controls:
    // 0, or -1 when the take has no MP4 file or the library refused it.
    int setMovieFiles(const QString& selectFolder, const DOTakeData& takeData);
    // Absolute paths of the take's real-time metadata files in clip order: a
    // single clip's own, one per clip of a multi-clip take, or none at all
    // when a clip lacks one.
    static QStringList getBIMFilePaths(const QString& selectFolder, const DOTakeData& takeData,
                                       int* fileCount);
    static void setTakeInfo(vv_take_info_t* takeInfo, const DOTakeData& takeData);

    int getViewerState() const;
    void setViewerState(int state);
    void lockDraw();
    void unlockDraw();
    void showOpenGLView();
    void hideOpenGLView();
    // Shows the picture full screen until the user leaves it; refused while
    // stopped.
    void showFullscreen();
    void loopFullscreen();
    bool isFullScreen() const { return m_bFullScreen; }
    // Whether frame reports are being dropped after a drag of the time slider.
    bool isSkipFrameInfoNow() const;
    // The library finished a transport job (engine thread).
    void endOfViewerJob();
    // Whether no frame step asked for by a key is still on its way.
    bool isEndOfViewerJob() const { return m_bEndOfJob; }
    // Makes the frame shown the take's typical picture.
    void onMakeThumbnail();

    // A key pressed in the preview picture or full screen (a Qt::Key):
    // space play or pause, F fast forward, R rewind, up first frame, down
    // last frame, right one frame on, left one frame back. Answers whether it
    // is a preview key.
    bool keyDown(int key);
    // Whether the tag is a preview command; *isEnable tells whether it is
    // available now.
    bool isSupportMenuItem(int tag, bool* isEnable) const;
    void selectMenuItem(int tag);

    // The take being previewed (while not stopped).
    const DOTakeData& getTakeData() const { return m_takeData; }
    const QString& getSelectFolder() const { return m_selectFolder; }
    const QString& getUmid() const { return m_umid; }
    const vv_av_info_t& getAVInfo() const { return m_avInfo; }

    BLPreviewButtonCtrl& getPreviewButtonCtrl() { return *m_previewButtonCtrl; }
    BLTimeSliderCtrl& getTimeSliderCtrl() { return *m_timeSliderCtrl; }
    BLTimeCodeCtrl& getTimeCodeCtrl() { return *m_timeCodeCtrl; }
    BLAudioChannelCtrl& getAudioChannelCtrl() { return *m_audioChannelCtrl; }

    // ---- thumbnails (used by the thumbnail cache, from its worker) ----
    // The take's key frame with its status mark: 0, or -1 (nothing in *thumbnail).
    int getThumbnail(const QString& selectFolder, const DOTakeData& takeData, vv_bitmap_t* thumbnail) const;
    // Writes a bitmap as a BMP file (replacing one there): 0, or -1 with no file left.
    int writeBmpByFileName(const QString& path, const vv_bitmap_t* bitmap) const;
    void freeBmpBuffer(vv_bitmap_t* bitmap) const;

    // ---- message receivers (main thread) ----
    void recvPlayedMessage(int messageId);
    void recvFastForwardedMessage(int messageId);
    void recvRewindedMessage(int messageId);
    void recvPausingMessage(int messageId);
    void recvStoppedMessage(int messageId);
    void recvFrameInfoMessage(const vv_frame_info_t& param);
    void recvTypicalPictureMessage(vv_typical_picture_t& param);
    void recvExitedMessage(int messageId);

private:
    friend void GetViewerMessageFunc(vv_viewer_message_t* message, void* context);
    struct PendingMessage
    {
        int id = 0;
        vv_frame_info_t frameInfo{};
        vv_typical_picture_t typicalPicture{};
    };

    void postMessage(const PendingMessage& message);
    void deliverMessages();
    void dispatchMessage(PendingMessage& message);
    // Stops the library and waits until the stop has been handled, so that
    // nothing of the take before arrives after the next one is handed over.
    void stopViewer(const char* caller);
    bool checkUseViewerLibrary(const char* operation) const;
    void updateTitle(const DOTakeData& takeData);

    void moviePlayNotification(const QVariantMap& userInfo);
    void movieStopNotification();
    void moviePauseNotification();
    void selectFolderDidChangeNotification();
    void clipPropertyDidChangeNotification(const QVariantMap& userInfo);
    void resolutionDidChangeNotification();

    static void frameSink(void* context, const vv_frame_t* frame);
    static void lockDrawLock(void* context);
    static void unlockDrawLock(void* context);

    IPreviewView& m_view;
    std::atomic<bool> m_bUseViewerLibrary{false};
    vv_av_info_t m_avInfo{};
    DOTakeData m_takeData;
    QString m_selectFolder;
    QString m_umid;
    int m_takeStatus = -1;

    mutable std::mutex m_stateLock;
    int m_viewerState = VM_STOPPED;
    std::recursive_mutex m_drawLock;
    std::atomic<bool> m_bEndOfJob{true};
    bool m_bFullScreen = false;

    // Finished transport jobs and whether the library last reported the
    // stopped state, for stopViewer (written on the engine thread).
    std::mutex m_jobLock;
    std::condition_variable m_jobDone;
    quint64 m_jobCount = 0;
    bool m_bStopped = true;

    // Messages from the engine thread waiting for the main thread.
    std::mutex m_messageLock;
    std::vector<PendingMessage> m_messages;
    QObject m_mainThread;

    std::unique_ptr<BLClipViewerCallback> m_callback;
    std::unique_ptr<BLPreviewButtonCtrl> m_previewButtonCtrl;
    std::unique_ptr<BLTimeSliderCtrl> m_timeSliderCtrl;
    std::unique_ptr<BLTimeCodeCtrl> m_timeCodeCtrl;
    std::unique_ptr<BLAudioChannelCtrl> m_audioChannelCtrl;
};
