#include "core/app/preview/BLCacheImageCtrl.h"

#include "core/card/DOTakeData.h"
#include "core/services/BLCommon.h"
#include "core/services/BLLogCtrl.h"
#include "core/services/BLPlistCtrl.h"
#include "core/services/SCNotificationCenter.h"
#include "core/services/SCNotificationNames.h"
#include "media/viewer/vv.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <chrono>
#include <vector>

#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

// The viewer bridge's own lines keep its name and process id.
constexpr int kPreviewProcessId = 0;

void log(const QString& message)
{
    BLLogCtrl::debug(BLCacheImageCtrl::kProcessId, message);
}

// A copy of the library's bitmap (rows top to bottom, B G R or B G R A).
QImage imageFromBitmap(const vv_bitmap_t& bitmap)
{
    if (!bitmap.pixels || bitmap.width <= 0 || bitmap.height <= 0)
        return {};
    QImage::Format format = QImage::Format_Invalid;
    if (bitmap.bits_per_pixel == 24)
        format = QImage::Format_BGR888;
    else if (bitmap.bits_per_pixel == 32)
        format = QImage::Format_RGB32; // B G R A in memory on little-endian machines
    if (format == QImage::Format_Invalid)
        return {};
    // The same format as a picture read back from a BMP file.
    return QImage(bitmap.pixels, bitmap.width, bitmap.height, bitmap.stride, format)
        .convertToFormat(QImage::Format_RGB32);
}

} // namespace

BLCacheImageCtrl::BLCacheImageCtrl() : m_cacheFolderPath(createCacheFolder())
{
    SCNotificationCenter* center = SCNotificationCenter::defaultCenter();
    center->addObserver(this, SC::SCCacheImageRequestNotification, [this](const SCNotification& note) {
        const QVariant take = note.userInfo.value(SC::SCCacheRTakeDataKey);
        if (!take.canConvert<DOTakeData>())
            return;
        addRequestByMediaInfoType(note.userInfo.value(SC::SCCacheRMediaInfoKey).toInt(),
                                  note.userInfo.value(SC::SCCacheRSelectFolderKey).toString(),
                                  take.value<DOTakeData>());
    });
    center->addObserver(this, SC::SCCacheImageCancelNotification, [this](const SCNotification& note) {
        const int mediaInfoType = note.userInfo.value(SC::SCCacheCMediaInfoKey).toInt();
        log(QStringLiteral("[BLCacheImageCtrl cacheImageCancelNotification]    mediaInfoType:%1")
                .arg(mediaInfoType));
        deleteRequestByMediaInfoType(mediaInfoType);
    });
    startThread();
}

BLCacheImageCtrl::~BLCacheImageCtrl()
{
    SCNotificationCenter::defaultCenter()->removeObserver(this);
    setExitThread();
    if (m_thread.joinable())
        m_thread.join();
}

// ---- request queue ----

void BLCacheImageCtrl::addRequestByMediaInfoType(qint32 mediaInfoType, const QString& selectFolder,
                                                 const DOTakeData& takeData)
{
    {
        std::lock_guard lock(m_queueLock);
        m_arrRequest.append(DOCacheRequestData(mediaInfoType, selectFolder, takeData));
    }
    // Taking the exit lock orders this after the worker's check of the queue.
    std::lock_guard lock(m_exitLock);
    m_wakeCondition.notify_all();
}

void BLCacheImageCtrl::deleteRequestByMediaInfoType(qint32 mediaInfoType)
{
    std::lock_guard lock(m_queueLock);
    for (qsizetype i = m_arrRequest.size() - 1; i >= 0; --i)
        if (m_arrRequest.at(i).getMediaInfoType() == mediaInfoType)
            m_arrRequest.removeAt(i);
}

void BLCacheImageCtrl::deleteRequestByMediaInfoType(const QString& selectFolder, const DOTakeData& takeData)
{
    std::lock_guard lock(m_queueLock);
    for (qsizetype i = m_arrRequest.size() - 1; i >= 0; --i)
        if (m_arrRequest.at(i).isSamePicture(selectFolder, takeData))
            m_arrRequest.removeAt(i);
}

int BLCacheImageCtrl::getRequestCount() const
{
    std::lock_guard lock(m_queueLock);
    return int(m_arrRequest.size());
}

std::optional<DOCacheRequestData> BLCacheImageCtrl::getTopRequestData() const
{
    std::lock_guard lock(m_queueLock);
    if (m_arrRequest.isEmpty())
        return std::nullopt;
    return m_arrRequest.first();
}

// ---- cache files ----

QString BLCacheImageCtrl::createCacheFolder()
{
    const QString caches = BLCommon::sharedCtrl()->searchFolderPath(3);
    if (caches.isEmpty())
        return {};
    const QString folder = QDir(caches).filePath(QStringLiteral("Clipwright"));
    if (!QDir().mkpath(folder)) {
        log(QStringLiteral("[BLCacheImageCtrl createCacheFolder]    can't make folder:") + folder);
        return {};
    }
    return folder;
}

QString BLCacheImageCtrl::makeCacheImageName(const DOTakeData& takeData)
{
    const QString& umid = takeData.getUmid();
    const QString name = umid.size() > 31 ? umid.right(32) : umid;
    return name + QString::asprintf("_%08lld_%d.bmp", static_cast<long long>(takeData.getKeyFrame()),
                                    int(takeData.getTakeStatus()));
}

QString BLCacheImageCtrl::searchCacheImage(const DOCacheRequestData& request) const
{
    if (m_cacheFolderPath.isEmpty())
        return {};
    const QString path = QDir(m_cacheFolderPath).filePath(makeCacheImageName(request.getTakeData()));
    return QFileInfo(path).isFile() ? path : QString();
}

QImage BLCacheImageCtrl::getCacheImage(const DOCacheRequestData& request) const
{
    const QString path = searchCacheImage(request);
    if (path.isEmpty())
        return {};
    const QString name = QFileInfo(path).fileName();
    log(QStringLiteral("[BLCacheImageCtrl getCacheImage]    found cache file:") + name);
    QImage image(path);
    if (image.isNull()) {
        log(QStringLiteral("[BLCacheImageCtrl getCacheImage]    can't read file:") + name);
        log(QStringLiteral("[BLCacheImageCtrl getCacheImage]    Use ErrorImage"));
        return errorImage();
    }
    return image;
}

QImage BLCacheImageCtrl::getViewerImage(const DOCacheRequestData& request) const
{
    const DOTakeData& take = request.getTakeData();
    vv_bitmap_t bitmap{};
    if (getThumbnail(request.getSelectFolder(), take, &bitmap) != 0)
        return {};

    // The picture is taken from the bitmap itself, so it is had with the cache
    // off too; the file only serves the next request.
    QImage image = imageFromBitmap(bitmap);
    const QString name = makeCacheImageName(take);
    if (take.getTakeStatus() == kTakeStatusMp4NotImported) {
        // Its key frame and status change once imported: such pictures are never kept.
        log(QStringLiteral("[BLCacheImageCtrl getViewerImage]    TakeStatus is TAKE_MP4_NONIMP"));
    } else if (!image.isNull() && !m_cacheFolderPath.isEmpty() && QDir().mkpath(m_cacheFolderPath)) {
        if (writeBmpByFileName(QDir(m_cacheFolderPath).filePath(name), bitmap) == 0)
            log(QStringLiteral("[BLCacheImageCtrl getViewerImage]    write cache file:") + name);
    }
    freeBmpBuffer(&bitmap);

    if (image.isNull()) {
        log(QStringLiteral("[BLCacheImageCtrl getViewerImage]    can't read file:") + name);
        return errorImage();
    }
    return image;
}

void BLCacheImageCtrl::deleteCacheImageByCreationData() const
{
    if (m_cacheFolderPath.isEmpty())
        return;
    // Today 00:00 less the life time; QDate rolls back across months and years.
    const QDateTime limit(QDate::currentDate().addDays(-BLPlistCtrl::sharedCtrl()->getCacheLifeTime()),
                          QTime(0, 0));
    const QStringList names = BLCommon::getFileList(m_cacheFolderPath);
    for (const QString& name : names) {
        const QFileInfo info(QDir(m_cacheFolderPath).filePath(name));
        // A cache file is written once, so its modification time is when it was
        // made; unlike the birth time it survives copies that keep times.
        if (!info.isFile() || info.lastModified() >= limit)
            continue;
        if (QFile::remove(info.filePath()))
            log(QStringLiteral("[BLCacheImageCtrl deleteCacheImageByCreationData]    remove file:") + name);
        else
            log(QStringLiteral("[BLCacheImageCtrl deleteCacheImageByCreationData]    can't remove file:") +
                name);
    }
}

// ---- worker ----

void BLCacheImageCtrl::setExitThread()
{
    std::lock_guard lock(m_exitLock);
    m_bExitFlag = true;
    m_wakeCondition.notify_all();
}

bool BLCacheImageCtrl::getExitThread() const
{
    std::lock_guard lock(m_exitLock);
    return m_bExitFlag;
}

void BLCacheImageCtrl::startThread()
{
    m_thread = std::thread([this] { loopProcess(); });
}

void BLCacheImageCtrl::loopProcess()
{
    // Pictures are made one after another without a pause between them; the
    // worker runs at a lower priority instead, so playback and the window
    // keep the processor when they need it.
    ::setpriority(PRIO_PROCESS, pid_t(::syscall(SYS_gettid)), 10);
    while (!getExitThread()) {
        const std::optional<DOCacheRequestData> request = getTopRequestData();
        std::unique_lock lock(m_exitLock);
        if (!request) {
            // Idle until a request or the exit arrives.
            m_wakeCondition.wait(lock, [this] { return m_bExitFlag || getRequestCount() > 0; });
            continue;
        }
        lock.unlock();

        log(QStringLiteral("[BLCacheImageCtrl loopProcess] loop start count:%1").arg(getRequestCount()));
        const DOTakeData& take = request->getTakeData();
        QImage image = getCacheImage(*request);
        if (image.isNull())
            image = getViewerImage(*request);
        if (image.isNull()) {
            log(QStringLiteral("[BLCacheImageCtrl loopProcess]    Use ErrorImage"));
            image = errorImage();
        }
        if (!image.isNull())
            sendImageDidGetNotification(image, request->getSelectFolder(), take.getUmid(), take.getKeyFrame(),
                                        take.getTakeStatus());
        // Requests for the same picture that piled up meanwhile are answered too.
        deleteRequestByMediaInfoType(request->getSelectFolder(), take);
        log(QStringLiteral("[BLCacheImageCtrl loopProcess] loop end count:%1").arg(getRequestCount()));
    }
}

void BLCacheImageCtrl::sendImageDidGetNotification(const QImage& image, const QString& selectFolder,
                                                   const QString& umid, qint64 frameNo, qint32 takeStatus)
{
    BLCommon::sharedCtrl()->sendNotificationNotCoalesce(this, SC::SCCacheImageDidGetNotification,
                                                        {{SC::SCCacheGImageKey, QVariant::fromValue(image)},
                                                         {SC::SCCacheGTakeStatusKey, takeStatus},
                                                         {SC::SCCacheGFrameNoKey, frameNo},
                                                         {SC::SCCacheGUmidKey, umid},
                                                         {SC::SCCacheGSelectFolderKey, selectFolder}});
}

// ---- the viewer library's thumbnail calls ----

int BLCacheImageCtrl::getThumbnail(const QString& selectFolder, const DOTakeData& takeData,
                                   vv_bitmap_t* thumbnail)
{
    int fileCount = 0;
    const QStringList paths = BLCommon::getMp4FilePaths(selectFolder, takeData, &fileCount);
    if (paths.isEmpty()) {
        BLLogCtrl::debug(kPreviewProcessId, QStringLiteral("[BLPreviewCtrl getThumbnail]    non MP4 file"));
        return -1;
    }
    std::vector<QByteArray> utf8;
    std::vector<const char*> pointers;
    utf8.reserve(size_t(paths.size()));
    for (const QString& path : paths)
        pointers.push_back(utf8.emplace_back(path.toUtf8()).constData());
    const int result = vv_get_thumbnail(pointers.data(), int32_t(pointers.size()), takeData.getKeyFrame(),
                                        getThumbIconId(takeData.getTakeStatus()), thumbnail);
    if (result != 0) {
        BLLogCtrl::debug(
            kPreviewProcessId,
            QStringLiteral("[BLPreviewCtrl getThumbnail]    vv_get_thumbnail return:%1").arg(result));
        return -1;
    }
    return 0;
}

int BLCacheImageCtrl::writeBmpByFileName(const QString& path, const vv_bitmap_t& bitmap)
{
    const int result = vv_bitmap_write(path.toUtf8().constData(), &bitmap, 1);
    if (result != 0) {
        BLLogCtrl::debug(
            kPreviewProcessId,
            QStringLiteral("[BLPreviewCtrl writeBmpByFileName]    vv_bitmap_write return:%1 path:%2")
                .arg(result)
                .arg(path));
        QFile::remove(path);
        return -1;
    }
    return 0;
}

void BLCacheImageCtrl::freeBmpBuffer(vv_bitmap_t* bitmap)
{
    vv_bitmap_free(bitmap);
}

int BLCacheImageCtrl::getThumbIconId(qint32 takeStatus)
{
    switch (takeStatus) {
    case 0:
        return VV_ICON_OK;
    case 1:
        return VV_ICON_NONE;
    case 2:
        return VV_ICON_MEDIA_SPANNING;
    case 3:
        return VV_ICON_MP4_IMPORTED;
    case 4:
        return VV_ICON_MP4_NOT_IMPORTED;
    case 5:
    case 6:
        return VV_ICON_ERROR;
    default:
        BLLogCtrl::debug(
            kPreviewProcessId,
            QStringLiteral("[BLPreviewCtrl getThumbIconId] unknown TakeStatus:%1").arg(takeStatus));
        return VV_ICON_NONE;
    }
}

QImage BLCacheImageCtrl::errorImage()
{
    // The library draws the error picture without reading a file; made once.
    static const QImage image = [] {
        vv_bitmap_t bitmap{};
        if (vv_get_thumbnail(nullptr, 0, 0, VV_ICON_ERROR, &bitmap) != 0)
            return QImage();
        QImage picture = imageFromBitmap(bitmap);
        vv_bitmap_free(&bitmap);
        return picture;
    }();
    return image;
}
