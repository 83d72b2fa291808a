#pragma once

#include "core/app/preview/DOCacheRequestData.h"

#include <QImage>
#include <QList>
#include <QString>

#include <condition_variable>
#include <mutex>
#include <optional>
#include <thread>

struct vv_bitmap_t;

// The thumbnail cache. Panes ask for a take's picture with
// SCCacheImageRequestNotification and withdraw their requests with
// SCCacheImageCancelNotification; a worker thread of its own serves the
// requests one at a time, oldest first, and answers each with
// SCCacheImageDidGetNotification on the main thread. Pictures are kept as BMP
// files in ~/.cache/Clipwright, named after the take's UMID, key frame and
// status, so a take seen before needs no decoding; a new picture comes from
// the viewer library. Every failure still ends in a picture: the cached one,
// a new one or the error picture.
class BLCacheImageCtrl
{
public:
    static constexpr int kProcessId = 631;
    // A take status whose pictures are never kept (an MP4 file not yet imported).
    static constexpr qint32 kTakeStatusMp4NotImported = 4;

    // Makes the cache folder, observes the two notifications and starts the worker.
    BLCacheImageCtrl();
    // Ends the worker (it finishes the request in hand) and waits for it.
    ~BLCacheImageCtrl();
    BLCacheImageCtrl(const BLCacheImageCtrl&) = delete;
    BLCacheImageCtrl& operator=(const BLCacheImageCtrl&) = delete;

    // ---- request queue (main thread and worker) ----
    void addRequestByMediaInfoType(qint32 mediaInfoType, const QString& selectFolder,
                                   const DOTakeData& takeData);
    // Removes every request of a pane.
    void deleteRequestByMediaInfoType(qint32 mediaInfoType);
    // Removes every request for the same picture as the take of the folder.
    void deleteRequestByMediaInfoType(const QString& selectFolder, const DOTakeData& takeData);
    int getRequestCount() const;
    // The oldest request, which stays in the queue; none when it is empty.
    std::optional<DOCacheRequestData> getTopRequestData() const;

    // ---- cache files ----
    // <first caches folder>/Clipwright, made if missing; empty when it can't be had.
    static QString createCacheFolder();
    const QString& getCacheFolderPath() const { return m_cacheFolderPath; }
    // "<UMID>_<key frame, 8 digits at least>_<status>.bmp"; a UMID longer than
    // 31 characters gives its last 32.
    static QString makeCacheImageName(const DOTakeData& takeData);
    // The path of the request's cache file; empty when there is none.
    QString searchCacheImage(const DOCacheRequestData& request) const;
    // The cached picture; the error picture when the file can't be read; null
    // when there is no cache file.
    QImage getCacheImage(const DOCacheRequestData& request) const;
    // A new picture from the viewer library, kept in the cache unless the take
    // is an MP4 file not yet imported; null when the library made none.
    QImage getViewerImage(const DOCacheRequestData& request) const;
    // Removes every cache file made before today 00:00 less "CACHE_LIFE_TIME" days.
    void deleteCacheImageByCreationData() const;

    // ---- worker ----
    // Tells the worker to end after the request in hand.
    void setExitThread();
    bool getExitThread() const;

    // ---- the viewer library's thumbnail calls ----
    // The take's key frame with its status mark, from its MP4 files (every
    // clip's, in order, or the take's own). 0, or -1 on failure.
    static int getThumbnail(const QString& selectFolder, const DOTakeData& takeData, vv_bitmap_t* thumbnail);
    // Writes a BMP file, replacing the path; on failure nothing is left at the
    // path. 0, or -1 on failure.
    static int writeBmpByFileName(const QString& path, const vv_bitmap_t& bitmap);
    static void freeBmpBuffer(vv_bitmap_t* bitmap);
    // The status mark drawn for a take status.
    static int getThumbIconId(qint32 takeStatus);
    // The picture shown when no other can be had; null when even it can't be made.
    static QImage errorImage();

private:
    void startThread();
    void loopProcess();
    void sendImageDidGetNotification(const QImage& image, const QString& selectFolder, const QString& umid,
                                     qint64 frameNo, qint32 takeStatus);

    const QString m_cacheFolderPath; // empty: the cache is off, pictures are made each time
    QList<DOCacheRequestData> m_arrRequest;
    mutable std::mutex m_queueLock;
    mutable std::mutex m_exitLock;
    // Wakes the worker from its pause: on exit, and while idle on a new request.
    std::condition_variable m_wakeCondition;
    bool m_bExitFlag = false;
    std::thread m_thread;
};
