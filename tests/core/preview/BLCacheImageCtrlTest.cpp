// The thumbnail cache: requests by notification, pictures from the viewer
// library and from the cache folder, de-duplication and cancels. The
// clean-up by age is left to the main window test, which closes the cache.
#include "core/app/preview/BLCacheImageCtrl.h"

#include "PreviewTestSupport.h"
#include "support/FrameCounter.h"
#include "support/NotificationRecorder.h"
#include "support/QtPrinters.h"

#include <QDateTime>
#include <QDir>
#include <QImage>

#include <gtest/gtest.h>

using namespace pvtest;

namespace {

// One picture delivered by SCCacheImageDidGetNotification.
struct Delivery
{
    QImage image;
    int takeStatus = -1;
    QString selectFolder;
};

// Keeps every picture the cache delivers, in order.
class DeliveryRecorder : public cwtest::NotificationRecorder
{
public:
    DeliveryRecorder() : NotificationRecorder({SC::SCCacheImageDidGetNotification}) {}
    // The pictures of a take's key frame.
    QList<Delivery> of(const DOTakeData& take) const
    {
        QList<Delivery> found;
        for (const SCNotification& note : notes) {
            const QVariantMap& info = note.userInfo;
            if (info.value(SC::SCCacheGUmidKey).toString() == take.getUmid() &&
                info.value(SC::SCCacheGFrameNoKey).toLongLong() == take.getKeyFrame())
                found.append({info.value(SC::SCCacheGImageKey).value<QImage>(),
                              info.value(SC::SCCacheGTakeStatusKey).toInt(),
                              info.value(SC::SCCacheGSelectFolderKey).toString()});
        }
        return found;
    }
    int countFor(const DOTakeData& take) const { return int(of(take).size()); }
    // Waits for the picture of a take's key frame; the last one delivered.
    std::optional<Delivery> waitFor(const DOTakeData& take) const
    {
        if (!cwtest::waitFor([&] { return countFor(take) > 0; }))
            return std::nullopt;
        return of(take).last();
    }
};

void request(int mediaInfoType, const QString& folder, const DOTakeData& take)
{
    BLCommon::sharedCtrl()->sendNotificationNow(nullptr, SC::SCCacheImageRequestNotification,
                                                {{SC::SCCacheRMediaInfoKey, mediaInfoType},
                                                 {SC::SCCacheRSelectFolderKey, folder},
                                                 {SC::SCCacheRTakeDataKey, QVariant::fromValue(take)}});
}

void cancel(int mediaInfoType)
{
    BLCommon::sharedCtrl()->sendNotificationNow(nullptr, SC::SCCacheImageCancelNotification,
                                                {{SC::SCCacheCMediaInfoKey, mediaInfoType}});
}

void setModified(const QString& path, const QDateTime& when)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite)) << path.toStdString();
    ASSERT_TRUE(file.setFileTime(when, QFileDevice::FileModificationTime));
}

// A card with two single-clip takes and one take of two clips, 9 frames a clip.
class CacheImageCtrlTest : public cwtest::HomeTest
{
protected:
    static void SetUpTestSuite() { s_card = new cwtest::CardFolder(tinyCard(2, 9, {2})); }
    static void TearDownTestSuite()
    {
        delete s_card;
        s_card = nullptr;
    }
    void SetUp() override
    {
        cwtest::HomeTest::SetUp();
        ASSERT_TRUE(s_card->ok()) << s_card->error().toStdString();
    }

    static QString folder() { return s_card->workFolder(); }
    // The record a pane holds for take 0 or 1 (single clips) or 2 (two clips).
    static DOTakeData take(int index, qint64 keyFrame, int status)
    {
        DOTakeData data = takeOf(*s_card, s_card->manifest().takes[size_t(index)]);
        data.setKeyFrame(keyFrame);
        data.setTakeStatus(status);
        return data;
    }
    static cardgen::FrameCounterValue counter(int index, qint64 frame)
    {
        return counterOf(s_card->manifest().takes[size_t(index)], frame);
    }
    QString cacheFolder() { return home().cacheHome() + "/Clipwright"; }
    QString cacheFile(const DOTakeData& take)
    {
        return cacheFolder() + "/" + BLCacheImageCtrl::makeCacheImageName(take);
    }

    static cwtest::CardFolder* s_card;
};

cwtest::CardFolder* CacheImageCtrlTest::s_card = nullptr;

} // namespace

TEST_F(CacheImageCtrlTest, ARequestDecodesTheKeyFrameOnceAndThenServesTheCacheFile)
{
    DeliveryRecorder recorder;
    BLCacheImageCtrl ctrl;
    ASSERT_EQ(ctrl.getCacheFolderPath(), cacheFolder());

    // A single clip, and frame 11 of two 9-frame clips: frame 2 of the second.
    for (const auto& [index, keyFrame, status] : {std::tuple{1, 5, 0}, {2, 11, 2}}) {
        const DOTakeData made = take(index, keyFrame, status);
        request(0, folder(), made);
        const std::optional<Delivery> delivered = recorder.waitFor(made);
        ASSERT_TRUE(delivered);
        EXPECT_EQ(delivered->takeStatus, status);
        EXPECT_EQ(delivered->selectFolder, folder());
        EXPECT_EQ(delivered->image.size(), QSize(160, 90));
        EXPECT_EQ(cwtest::readFrameCounter(delivered->image), counter(index, keyFrame));
        // The picture is kept as a BMP file that reads back as the same picture.
        EXPECT_EQ(QImage(cacheFile(made)), delivered->image);
    }
    EXPECT_TRUE(waitFor([&] { return ctrl.getRequestCount() == 0; }));

    // A second request is served from the file without decoding: a file with
    // another picture under the take's name is what comes back, untouched.
    const DOTakeData cached = take(1, 5, 0);
    const QString file = cacheFile(cached);
    QImage marker(160, 90, QImage::Format_RGB32);
    marker.fill(Qt::red);
    ASSERT_TRUE(marker.save(file, "BMP"));
    const QDateTime old = QDateTime::currentDateTime().addSecs(-3600);
    setModified(file, old);
    recorder.notes.clear();
    request(1, folder(), cached);
    const std::optional<Delivery> again = recorder.waitFor(cached);
    ASSERT_TRUE(again);
    EXPECT_EQ(again->image, marker);
    EXPECT_EQ(QFileInfo(file).lastModified(), old);
}

TEST_F(CacheImageCtrlTest, RequestsForOnePictureAreServedOnceWhicheverPaneAsked)
{
    DeliveryRecorder recorder;
    BLCacheImageCtrl ctrl;
    // The first picture leaves the worker in its pause between pictures, so
    // the next requests queue up behind each other.
    const DOTakeData first = take(0, 0, 0);
    request(0, folder(), first);
    ASSERT_TRUE(recorder.waitFor(first));

    const DOTakeData twice = take(1, 3, 0);
    const DOTakeData other = take(1, 4, 0); // the same take with another key frame
    for (int pane : {0, 1, 0})
        request(pane, folder(), twice);
    request(0, folder(), other);
    ASSERT_TRUE(recorder.waitFor(other));
    EXPECT_EQ(recorder.countFor(twice), 1);
    EXPECT_EQ(recorder.countFor(other), 1);
    EXPECT_EQ(ctrl.getRequestCount(), 0);
}

TEST_F(CacheImageCtrlTest, ACancelRemovesOnlyThatPanesRequests)
{
    // With the worker ended the queue stays as the notifications leave it.
    BLCacheImageCtrl ctrl;
    ctrl.setExitThread();
    const DOTakeData b = take(1, 2, 0);
    request(1, folder(), take(0, 1, 0));
    request(2, folder(), b);
    request(1, folder(), take(2, 3, 0));
    request(2, folder(), take(2, 3, 0));
    ASSERT_EQ(ctrl.getRequestCount(), 4);
    cancel(1);
    ASSERT_EQ(ctrl.getRequestCount(), 2);
    EXPECT_EQ(ctrl.getTopRequestData()->getMediaInfoType(), 2);
    EXPECT_EQ(ctrl.getTopRequestData()->getTakeData().getUmid(), b.getUmid());
    cancel(2);
    EXPECT_EQ(ctrl.getRequestCount(), 0);
}

TEST_F(CacheImageCtrlTest, EveryFailureStillEndsInAPicture)
{
    DeliveryRecorder recorder;
    BLCacheImageCtrl ctrl;
    const QImage error = BLCacheImageCtrl::errorImage();
    ASSERT_EQ(error.width(), 160);

    // An MP4 file not yet imported: a picture, but no cache file.
    const DOTakeData loose = take(0, 2, 4);
    request(0, folder(), loose);
    const std::optional<Delivery> looseMade = recorder.waitFor(loose);
    ASSERT_TRUE(looseMade);
    EXPECT_EQ(cwtest::readFrameCounter(looseMade->image), counter(0, 2));
    EXPECT_FALSE(QFileInfo::exists(cacheFile(loose)));

    // Missing essence, no essence, a cache file that is no picture: the error
    // picture; nothing is kept and the damaged file is left alone.
    DOTakeData missing = take(0, 3, 0);
    missing.setMP4Uri("./CLPR/NONE0001/NONE0001.MP4");
    DOTakeData none = take(0, 4, 0);
    none.setMP4Uri(QString(""));
    const DOTakeData damaged = take(1, 6, 0);
    ASSERT_TRUE(cwtest::writeFile(cacheFile(damaged), "not a bitmap"));
    for (const DOTakeData& failing : {missing, none, damaged}) {
        request(0, folder(), failing);
        const std::optional<Delivery> made = recorder.waitFor(failing);
        ASSERT_TRUE(made);
        EXPECT_EQ(made->image, error);
    }
    EXPECT_EQ(QFileInfo(cacheFile(damaged)).size(), 12);
    EXPECT_EQ(QDir(cacheFolder()).entryList(QDir::Files),
              QStringList{QFileInfo(cacheFile(damaged)).fileName()});
}

TEST_F(CacheImageCtrlTest, WithoutACacheFolderPicturesAreMadeEachTime)
{
    // A file where the cache folder belongs keeps the folder from being made.
    ASSERT_TRUE(cwtest::writeFile(cacheFolder(), "in the way"));
    DeliveryRecorder recorder;
    BLCacheImageCtrl ctrl;
    EXPECT_TRUE(ctrl.getCacheFolderPath().isEmpty());

    const DOTakeData made = take(0, 7, 0);
    request(0, folder(), made);
    const std::optional<Delivery> delivered = recorder.waitFor(made);
    ASSERT_TRUE(delivered);
    EXPECT_EQ(cwtest::readFrameCounter(delivered->image), counter(0, 7));

    ctrl.deleteCacheImageByCreationData();
    EXPECT_TRUE(QFileInfo(cacheFolder()).isFile());
}
