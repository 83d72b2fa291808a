#include "core/app/preview/BLPreviewCtrl.h"

#include "core/app/preview/BLCacheImageCtrl.h"

#include "core/app/preview/BLAudioChannelCtrl.h"
#include "core/app/preview/BLCacheImageCtrl.h"
#include "core/app/preview/BLClipViewerCallback.h"
#include "core/app/preview/BLPreviewButtonCtrl.h"
#include "core/app/preview/BLTimeCodeCtrl.h"
#include "core/app/preview/BLTimeSliderCtrl.h"
#include "core/app/preview/IPreviewView.h"
#include "core/card/BLDiskCtrl.h"
#include "core/services/BLCommon.h"
#include "core/services/BLLogCtrl.h"
#include "core/services/BLPlistCtrl.h"
#include "core/services/SCNotificationCenter.h"
#include "core/services/SCNotificationNames.h"

#include <QByteArrayList>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <chrono>
#include <cstring>

namespace {

constexpr int kProcessId = 0;
// Longest wait for the library to confirm a stop before the next take.
constexpr std::chrono::seconds kStopTimeout{3};

void log(const QString& message)
{
    BLLogCtrl::debug(kProcessId, message);
}

struct MenuItem
{
    int tag;
    const char* name;
};

constexpr MenuItem kMenuItems[] = {
    {MENU_ITEM_ID_PREVIEW_PLAY, "MENU_ITEM_ID_PREVIEW_PLAY"},
    {MENU_ITEM_ID_PREVIEW_PAUSE, "MENU_ITEM_ID_PREVIEW_PAUSE"},
    {MENU_ITEM_ID_PREVIEW_FF, "MENU_ITEM_ID_PREVIEW_FF"},
    {MENU_ITEM_ID_PREVIEW_RW, "MENU_ITEM_ID_PREVIEW_RW"},
    {MENU_ITEM_ID_PREVIEW_TOP_FRAME, "MENU_ITEM_ID_PREVIEW_TOP_FRAME"},
    {MENU_ITEM_ID_PREVIEW_LAST_FRAME, "MENU_ITEM_ID_PREVIEW_LAST_FRAME"},
    {MENU_ITEM_ID_PREVIEW_PLUS_FRAME, "MENU_ITEM_ID_PREVIEW_PLUS_FRAME"},
    {MENU_ITEM_ID_PREVIEW_MINUS_FRAME, "MENU_ITEM_ID_PREVIEW_MINUS_FRAME"},
    {MENU_ITEM_ID_PREVIEW_FULL_SCREEN, "MENU_ITEM_ID_PREVIEW_FULL_SCREEN"},
    {MENU_ITEM_ID_PREVIEW_MAKE_THUMBNAIL, "MENU_ITEM_ID_PREVIEW_MAKE_THUMBNAIL"},
};

const char* menuItemName(int tag)
{
    for (const MenuItem& item : kMenuItems) {
        if (item.tag == tag)
            return item.name;
    }
    return nullptr;
}

bool isMoving(int state)
{
    return state == VM_PLAYED || state == VM_FASTFORWARDED || state == VM_REWINDED;
}

// The initialisation block made from the settings, with the texts it points at.
class InitParam
{
public:
    InitParam()
    {
        // The status-mark images are named for completeness; the library draws
        // its marks itself and does not read them.
        const QDir resources(QCoreApplication::applicationDirPath());
        for (const char* image :
             {"thumbnail_NormalWMask.bmp", "thumbnail_okWMask.bmp", "thumbnail_importWMask.bmp",
              "thumbnail_notimportWMask.bmp", "thumbnail_mediaspaningWMask2.bmp", "thumbnail_error.bmp"})
            m_texts << resources.filePath(QString::fromLatin1(image)).toUtf8();
        const BLPlistCtrl* plist = BLPlistCtrl::sharedCtrl();
        for (const QString& text : {plist->getViewerLogLevel(),
                                    plist->getViewerLogFileSize(),
                                    plist->getViewerLogFilePath(),
                                    plist->getViewerStartingDelay(),
                                    plist->getViewerFrameTimeout(),
                                    plist->getViewerAudioQueueSize(),
                                    plist->getViewerVideoQueueSize(),
                                    plist->getViewerVideoRingNum(),
                                    plist->getViewerAudioQueueSleep(),
                                    plist->getViewerVideoQueueSleep(),
                                    plist->getViewerVideoRingSleep(),
                                    plist->getViewerDemuxSleep(),
                                    plist->getViewerAudioDecodeSleep(),
                                    plist->getViewerAudioOutSleep(),
                                    plist->getViewerVideoDecodeSleep(),
                                    plist->getViewerVideoOutSleep(),
                                    plist->getViewerVideoPlayInfoInterval(),
                                    plist->getViewerVideoFrameDropFlag(),
                                    QString::number(plist->getLowResolution()),
                                    plist->getViewerJudgeTime(),
                                    plist->getViewerJudgeMin(),
                                    plist->getViewerJudgeDenominator(),
                                    plist->getViewerJudgeDecodeFrameMin(),
                                    plist->getViewerMaxCacheSizeOfVideoDecodeFrame(),
                                    plist->getViewerMaxQueueSizeOfVideoDecodeFrame()})
            m_texts << text.toUtf8();
        static_assert(sizeof(vv_init_param_t) == 31 * sizeof(const char*));
        const char* pointers[31];
        for (int i = 0; i < 31; ++i)
            pointers[i] = m_texts.at(i).constData();
        std::memcpy(&m_param, pointers, sizeof m_param);
    }

    const vv_init_param_t* get() const { return &m_param; }
    QString logFilePath() const { return QString::fromUtf8(m_texts.at(8)); }
    QString lowResolution() const { return QString::fromUtf8(m_texts.at(24)); }

private:
    QByteArrayList m_texts;
    vv_init_param_t m_param{};
};

} // namespace

BLPreviewCtrl::BLPreviewCtrl(IPreviewView& view)
    : m_view(view), m_previewButtonCtrl(std::make_unique<BLPreviewButtonCtrl>(*this, view.buttonView())),
      m_timeSliderCtrl(std::make_unique<BLTimeSliderCtrl>(*this, view.timeSliderView())),
      m_timeCodeCtrl(std::make_unique<BLTimeCodeCtrl>(view.timeCodeView())),
      m_audioChannelCtrl(std::make_unique<BLAudioChannelCtrl>(view.audioChannelView()))
{
    // The controls start in the stopped state.
    m_previewButtonCtrl->updateByViewerState(VM_STOPPED);
    m_timeSliderCtrl->updateByViewerState(VM_STOPPED);
    m_timeCodeCtrl->updateByViewerState(VM_STOPPED);

    SCNotificationCenter* center = SCNotificationCenter::defaultCenter();
    center->addObserver(this, SC::SCMoviePlayNotification,
                        [this](const SCNotification& n) { moviePlayNotification(n.userInfo); });
    center->addObserver(this, SC::SCMovieStopNotification,
                        [this](const SCNotification&) { movieStopNotification(); });
    center->addObserver(this, SC::SCMoviePauseNotification,
                        [this](const SCNotification&) { moviePauseNotification(); });
    for (const QString& name :
         {SC::SCMainSelectFolderDidChangeNotification, SC::SCSub1SelectFolderDidChangeNotification})
        center->addObserver(this, name,
                            [this](const SCNotification&) { selectFolderDidChangeNotification(); });
    center->addObserver(this, SC::SCClipPropertyDidChangeNotification,
                        [this](const SCNotification& n) { clipPropertyDidChangeNotification(n.userInfo); });
    center->addObserver(this, SC::SCResolutionDidChangeNotification,
                        [this](const SCNotification&) { resolutionDidChangeNotification(); });
    m_view.setPreviewCtrl(this);
}

BLPreviewCtrl::~BLPreviewCtrl()
{
    SCNotificationCenter::defaultCenter()->removeObserver(this);
    // No library thread may call in once the controller is gone.
    if (m_bUseViewerLibrary)
        finalizeViewerLibrary();
}

bool BLPreviewCtrl::initializeCtrl()
{
    if (initViewerLibrary())
        return true;
    BLCommon::sharedCtrl()->messageBox(QStringLiteral("MSG_655_3202"), QString(), 0, 0);
    return false;
}

void BLPreviewCtrl::finalizeCtrl()
{
    finalizeViewerLibrary();
}

bool BLPreviewCtrl::initViewerLibrary()
{
    const InitParam param;
    const QString logFolder = QFileInfo(param.logFilePath()).absolutePath();
    if (!QFileInfo(logFolder).isDir())
        BLCommon::createNewFolderWithParent(logFolder);

    vv_display_t display{};
    display.frame_sink = &BLPreviewCtrl::frameSink;
    display.frame_context = this;
    display.audio_sink = m_view.audioSink();
    display.reserved[0] = display.reserved[1] = display.reserved[2] = 1;
    display.draw_lock = vv_draw_lock_t{&BLPreviewCtrl::lockDrawLock, &BLPreviewCtrl::unlockDrawLock, this};

    const int result = vv_init(param.get(), &display, 0);
    auto callback = std::make_unique<BLClipViewerCallback>(*this);
    vv_set_demux_callbacker(callback.get());
    m_callback = std::move(callback);
    log(QString::asprintf("[BLPreviewCtrl initViewerLibrary] call vv_init return:%d", result));
    if (result != VV_OK)
        return false;
    vv_set_callback_func_g(&GetViewerMessageFunc, this);
    m_bUseViewerLibrary = true;
    return true;
}

void BLPreviewCtrl::finalizeViewerLibrary()
{
    if (!checkUseViewerLibrary("finalizeViewerLibrary"))
        return;
    const int result = vv_exit();
    log(QString::asprintf("[BLPreviewCtrl finalizeViewerLibrary] call vv_exit return:%d", result));
    m_bUseViewerLibrary = false;
    vv_set_demux_callbacker(nullptr);
    m_callback.reset();
}

bool BLPreviewCtrl::checkUseViewerLibrary(const char* operation) const
{
    if (m_bUseViewerLibrary)
        return true;
    log(QStringLiteral("[BLPreviewCtrl %1] non use ViewerLibrary").arg(QLatin1String(operation)));
    return false;
}

int BLPreviewCtrl::setMovieFiles(const QString& selectFolder, const DOTakeData& takeData)
{
    int fileCount = 0;
    const QStringList paths = BLCommon::getMp4FilePaths(selectFolder, takeData, &fileCount);
    if (fileCount == 0) {
        log(QStringLiteral("[BLPreviewCtrl setMovieFiles]    non MP4 file"));
        return -1;
    }
    int bimCount = 0;
    const QStringList bimPaths = getBIMFilePaths(selectFolder, takeData, &bimCount);

    QByteArrayList utf8;
    std::vector<const char*> pointers;
    for (const QString& path : paths) {
        log(QStringLiteral("[BLPreviewCtrl setMovieFiles]    MP4 file:") + path);
        utf8 << path.toUtf8();
    }
    for (const QByteArray& path : std::as_const(utf8))
        pointers.push_back(path.constData());
    vv_av_info_t avInfo{};
    const int result = vv_set_av_info(pointers.data(), int32_t(pointers.size()), &avInfo);
    log(QString::asprintf("[BLPreviewCtrl setMovieFiles] call vv_set_av_info return:%d", result));
    m_timeCodeCtrl->delereReadRtMeta();
    if (result != VV_OK) {
        BLCommon::sharedCtrl()->messageBox(QStringLiteral("MSG_655_3202"), QString(), 0, 0);
        return -1;
    }
    if (bimCount > 0)
        m_timeCodeCtrl->createReadRtMeta(bimPaths, bimCount);

    m_avInfo = avInfo;
    m_takeData = takeData;
    m_selectFolder = selectFolder;
    m_umid = takeData.getUmid();
    m_takeStatus = takeData.getTakeStatus();
    updateTitle(takeData);
    m_timeSliderCtrl->setAVInfo(m_avInfo, takeData);
    m_timeCodeCtrl->setAVInfo(m_avInfo, takeData);
    return 0;
}

QStringList BLPreviewCtrl::getBIMFilePaths(const QString& selectFolder, const DOTakeData& takeData,
                                           int* fileCount)
{
    QStringList references;
    if (takeData.getClipData().isEmpty()) {
        if (!takeData.getBIMUri().isEmpty())
            references << takeData.getBIMUri();
    } else {
        for (const DOClipData& clip : takeData.getClipData()) {
            if (clip.getBIMUri().isEmpty()) {
                references.clear();
                break;
            }
            references << clip.getBIMUri();
        }
    }
    const QString bpav = BLCommon::getPathOfBPAV(selectFolder);
    QStringList paths;
    for (const QString& reference : std::as_const(references))
        paths << BLCommon::makeFilePath(bpav, {reference});
    if (fileCount)
        *fileCount = int(paths.size());
    return paths;
}

void BLPreviewCtrl::setTakeInfo(vv_take_info_t* takeInfo, const DOTakeData& takeData)
{
    *takeInfo = vv_take_info_t{0, takeData.getOffset(), 0};
}

int BLPreviewCtrl::getViewerState() const
{
    std::lock_guard lock(m_stateLock);
    return m_viewerState;
}

void BLPreviewCtrl::setViewerState(int state)
{
    {
        std::lock_guard lock(m_stateLock);
        if (m_viewerState == state)
            return;
        m_viewerState = state;
    }
    // The controls ask for the state themselves, so they are told outside the lock.
    m_previewButtonCtrl->updateByViewerState(state);
    m_timeSliderCtrl->updateByViewerState(state);
    m_timeCodeCtrl->updateByViewerState(state);
}

void BLPreviewCtrl::lockDraw()
{
    m_drawLock.lock();
}

void BLPreviewCtrl::unlockDraw()
{
    m_drawLock.unlock();
}

void BLPreviewCtrl::showOpenGLView()
{
    if (!checkUseViewerLibrary("showOpenGLView"))
        return;
    std::lock_guard lock(m_drawLock);
    m_view.setPictureVisible(true);
}

void BLPreviewCtrl::hideOpenGLView()
{
    if (!checkUseViewerLibrary("hideOpenGLView"))
        return;
    std::lock_guard lock(m_drawLock);
    m_view.setPictureVisible(false);
}

void BLPreviewCtrl::showFullscreen()
{
    if (!checkUseViewerLibrary("showFullscreen") || m_bFullScreen)
        return;
    if (getViewerState() == VM_STOPPED) {
        log(QStringLiteral("[BLPreviewCtrl showFullscreen] now VM_STOPPED"));
        return;
    }
    {
        std::lock_guard lock(m_drawLock);
        if (!m_view.enterFullScreen()) {
            log(QString::asprintf("[BLPreviewCtrl showFullscreen] CGDisplayCapture Error = %d", -1));
            return;
        }
        m_bFullScreen = true;
        log(QString::asprintf("[BLPreviewCtrl showFullscreen] call vv_show_full_screen return:%d",
                              vv_show_full_screen()));
    }
    loopFullscreen();
    {
        std::lock_guard lock(m_drawLock);
        m_view.leaveFullScreen();
        log(QString::asprintf("[BLPreviewCtrl showFullscreen] call vv_show return:%d", vv_show()));
        m_bFullScreen = false;
    }
    m_view.redraw();
}

void BLPreviewCtrl::loopFullscreen()
{
    m_view.runFullScreenLoop();
}

bool BLPreviewCtrl::isSkipFrameInfoNow() const
{
    return m_timeSliderCtrl->getSkipFrameInfo();
}

void BLPreviewCtrl::endOfViewerJob()
{
    m_bEndOfJob = true;
    {
        std::lock_guard lock(m_jobLock);
        ++m_jobCount;
    }
    m_jobDone.notify_all();
}

void BLPreviewCtrl::onMakeThumbnail()
{
    if (!checkUseViewerLibrary("onMakeThumbnail"))
        return;
    if (getViewerState() == VM_STOPPED) {
        log(QStringLiteral("[BLPreviewCtrl onMakeThumbnail] now VM_STOPPED"));
        return;
    }
    if (m_takeStatus > 3) {
        log(QStringLiteral("[BLPreviewCtrl onMakeThumbnail] movie file is not-import, don't make thumbnail"));
        return;
    }
    log(QString::asprintf("[BLPreviewCtrl onMakeThumbnail] call vv_pause return:%d", vv_pause()));
    int fileCount = 0;
    for (const QString& path : BLCommon::getMp4FilePaths(m_selectFolder, m_takeData, &fileCount)) {
        if (!QFileInfo::exists(path)) {
            log(QStringLiteral("[BLPreviewCtrl onMakeThumbnail]    MP4 file not found:\"%1\"").arg(path));
            return;
        }
    }
    const QString nonMeta =
        BLCommon::makeFilePath(BLCommon::getPathOfBPAV(m_selectFolder), {m_takeData.getXMLUri()});
    const BLDiskCtrl* disk = BLDiskCtrl::sharedCtrl();
    if (!disk->checkWritableToFolder({m_takeData}, m_selectFolder) || !disk->isWritableThisPath(nonMeta) ||
        !disk->isDeletableThisPath(nonMeta)) {
        log(QStringLiteral("[BLPreviewCtrl onMakeThumbnail]    can't write:\"%1\"").arg(nonMeta));
        BLCommon::sharedCtrl()->messageBox(QStringLiteral("MSG_6510_3214"), QString(), 0, 0);
        return;
    }
    log(QString::asprintf("[BLPreviewCtrl onMakeThumbnail] call vv_make_thumbnail return:%d",
                          vv_make_thumbnail()));
}

bool BLPreviewCtrl::keyDown(int key)
{
    if (key != Qt::Key_Space && key != Qt::Key_F && key != Qt::Key_R && key != Qt::Key_Up &&
        key != Qt::Key_Down && key != Qt::Key_Right && key != Qt::Key_Left)
        return false;
    // A frame step waits for the one before to be shown, so that a held
    // key does not pile up requests.
    if (!m_bEndOfJob)
        return true;
    BLPreviewButtonCtrl& buttons = *m_previewButtonCtrl;
    switch (key) {
    case Qt::Key_Space:
        if (isMoving(getViewerState()))
            buttons.onPause();
        else
            buttons.onPlay();
        return true;
    case Qt::Key_F:
        buttons.onFF();
        return true;
    case Qt::Key_R:
        buttons.onRW();
        return true;
    }
    // Cleared before the request: its end may come at once.
    m_bEndOfJob = false;
    bool sent = false;
    if (key == Qt::Key_Up)
        sent = buttons.onTopFrame();
    else if (key == Qt::Key_Down)
        sent = buttons.onLastFrame();
    else if (key == Qt::Key_Right)
        sent = buttons.onPlusFrame();
    else
        sent = buttons.onMinusFrame();
    if (!sent)
        m_bEndOfJob = true;
    return true;
}

bool BLPreviewCtrl::isSupportMenuItem(int tag, bool* isEnable) const
{
    *isEnable = false;
    if (!menuItemName(tag))
        return false;
    if (!m_bUseViewerLibrary)
        return true;
    const int state = getViewerState();
    const bool transport = state != VM_STOPPED && !isSkipFrameInfoNow();
    switch (tag) {
    case MENU_ITEM_ID_PREVIEW_PLAY:
        *isEnable = transport && state != VM_PLAYED;
        break;
    case MENU_ITEM_ID_PREVIEW_PAUSE:
        *isEnable = transport && state != VM_PAUSING;
        break;
    case MENU_ITEM_ID_PREVIEW_FF:
        *isEnable = transport && state != VM_FASTFORWARDED;
        break;
    case MENU_ITEM_ID_PREVIEW_RW:
        *isEnable = transport && state != VM_REWINDED;
        break;
    case MENU_ITEM_ID_PREVIEW_FULL_SCREEN:
        *isEnable = state != VM_STOPPED && !m_bFullScreen;
        break;
    case MENU_ITEM_ID_PREVIEW_MAKE_THUMBNAIL:
        *isEnable = state != VM_STOPPED && m_takeStatus >= 0 && m_takeStatus <= 3;
        break;
    default:
        *isEnable = transport;
        break;
    }
    return true;
}

void BLPreviewCtrl::selectMenuItem(int tag)
{
    const char* name = menuItemName(tag);
    if (!name)
        return;
    log(QStringLiteral("[BLPreviewCtrl selectMenuItem] menuItemID:") + QLatin1String(name));
    BLPreviewButtonCtrl& buttons = *m_previewButtonCtrl;
    switch (tag) {
    case MENU_ITEM_ID_PREVIEW_PLAY:
        buttons.onPlay();
        break;
    case MENU_ITEM_ID_PREVIEW_PAUSE:
        buttons.onPause();
        break;
    case MENU_ITEM_ID_PREVIEW_FF:
        buttons.onFF();
        break;
    case MENU_ITEM_ID_PREVIEW_RW:
        buttons.onRW();
        break;
    case MENU_ITEM_ID_PREVIEW_TOP_FRAME:
        buttons.onTopFrame();
        break;
    case MENU_ITEM_ID_PREVIEW_LAST_FRAME:
        buttons.onLastFrame();
        break;
    case MENU_ITEM_ID_PREVIEW_PLUS_FRAME:
        buttons.onPlusFrame();
        break;
    case MENU_ITEM_ID_PREVIEW_MINUS_FRAME:
        buttons.onMinusFrame();
        break;
    case MENU_ITEM_ID_PREVIEW_FULL_SCREEN:
        showFullscreen();
        break;
    case MENU_ITEM_ID_PREVIEW_MAKE_THUMBNAIL:
        onMakeThumbnail();
        break;
    }
}

// The thumbnail calls are the cache worker's; the preview offers them only
// while the viewer library is in use.
int BLPreviewCtrl::getThumbnail(const QString& selectFolder, const DOTakeData& takeData,
                                vv_bitmap_t* thumbnail) const
{
    if (!checkUseViewerLibrary("getThumbnail"))
        return -1;
    return BLCacheImageCtrl::getThumbnail(selectFolder, takeData, thumbnail);
}

int BLPreviewCtrl::writeBmpByFileName(const QString& path, const vv_bitmap_t* bitmap) const
{
    if (!checkUseViewerLibrary("writeBmpByFileName"))
        return -1;
    return BLCacheImageCtrl::writeBmpByFileName(path, *bitmap);
}

void BLPreviewCtrl::freeBmpBuffer(vv_bitmap_t* bitmap) const
{
    if (!checkUseViewerLibrary("freeBmpBuffer"))
        return;
    BLCacheImageCtrl::freeBmpBuffer(bitmap);
}

void BLPreviewCtrl::stopViewer(const char* caller)
{
    quint64 jobs = 0;
    {
        std::lock_guard lock(m_jobLock);
        jobs = m_jobCount;
    }
    const int result = vv_stop();
    log(QString::asprintf("[BLPreviewCtrl %s] call vv_stop return:%d", caller, result));
    if (result == VV_OK) {
        // The stop is done when a job has ended with the library stopped; its
        // messages came before that end.
        std::unique_lock lock(m_jobLock);
        m_jobDone.wait_for(lock, kStopTimeout, [&] { return m_jobCount > jobs && m_bStopped; });
    }
    deliverMessages();
}

void BLPreviewCtrl::updateTitle(const DOTakeData& takeData)
{
    const QString alias = takeData.getSingleLineAlias();
    m_view.setTitle(alias.isEmpty() ? takeData.getUsAscii() : alias);
}

void BLPreviewCtrl::moviePlayNotification(const QVariantMap& userInfo)
{
    if (!checkUseViewerLibrary("moviePlayNotification"))
        return;
    const QString selectFolder = userInfo.value(SC::SCPlaySelectFolderKey).toString();
    const DOTakeData takeData = userInfo.value(SC::SCPlayTakeDataKey).value<DOTakeData>();
    stopViewer("moviePlayNotification");
    const int status = takeData.getTakeStatus();
    if (status < 0 || status > 4) {
        log(QStringLiteral("[BLPreviewCtrl moviePlayNotification] take is non clip"));
        return;
    }
    if (setMovieFiles(selectFolder, takeData) != 0)
        return;
    vv_take_info_t takeInfo{};
    setTakeInfo(&takeInfo, takeData);
    log(QString::asprintf("[BLPreviewCtrl moviePlayNotification] call vv_set_take_info(offset:%u) return:%d",
                          takeInfo.start_offset, vv_set_take_info(&takeInfo)));
    m_view.makeFirstResponder();
    log(QString::asprintf("[BLPreviewCtrl moviePlayNotification] call vv_play return:%d", vv_play()));
}

void BLPreviewCtrl::movieStopNotification()
{
    if (checkUseViewerLibrary("movieStopNotification"))
        stopViewer("movieStopNotification");
}

void BLPreviewCtrl::moviePauseNotification()
{
    if (checkUseViewerLibrary("moviePauseNotification"))
        log(QString::asprintf("[BLPreviewCtrl moviePauseNotification] call vv_pause return:%d", vv_pause()));
}

void BLPreviewCtrl::selectFolderDidChangeNotification()
{
    if (checkUseViewerLibrary("selectFolderDidChangeNotification"))
        stopViewer("selectFolderDidChangeNotification");
}

void BLPreviewCtrl::clipPropertyDidChangeNotification(const QVariantMap& userInfo)
{
    if (!checkUseViewerLibrary("clipPropertyDidChangeNotification") || getViewerState() == VM_STOPPED)
        return;
    const DOTakeData takeData = userInfo.value(SC::SCDidChangeTakeDataKey).value<DOTakeData>();
    if (userInfo.value(SC::SCSelectFolderKey).toString() == m_selectFolder && takeData.getUmid() == m_umid)
        updateTitle(takeData);
}

void BLPreviewCtrl::resolutionDidChangeNotification()
{
    if (!checkUseViewerLibrary("resolutionDidChangeNotification"))
        return;
    const InitParam param;
    const int result = vv_change_init_param(1, 0, param.get());
    log(QStringLiteral(
            "[BLPreviewCtrl resolutionDidChangeNotification] call vv_change_init_param(%1) return:%2")
            .arg(param.lowResolution())
            .arg(result));
}

void BLPreviewCtrl::frameSink(void* context, const vv_frame_t* frame)
{
    static_cast<BLPreviewCtrl*>(context)->m_view.drawFrame(*frame);
}

void BLPreviewCtrl::lockDrawLock(void* context)
{
    static_cast<BLPreviewCtrl*>(context)->lockDraw();
}

void BLPreviewCtrl::unlockDrawLock(void* context)
{
    static_cast<BLPreviewCtrl*>(context)->unlockDraw();
}
