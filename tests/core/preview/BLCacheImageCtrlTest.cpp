// The thumbnail cache: requests by notification, pictures from the viewer
// library and from the cache folder, de-duplication, cancels and clean-up.
#include "core/app/preview/BLCacheImageCtrl.h"

#include "core/card/DOTakeData.h"
#include "core/services/BLCommon.h"
#include "core/services/SCNotificationCenter.h"
#include "core/services/SCNotificationNames.h"
#include "support/CardFolder.h"
#include "support/FrameCounter.h"
#include "support/QtPrinters.h"
#include "support/TestEnvironment.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QImage>

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

namespace {

const QString kUmid64 = QStringLiteral("060A2B340101010501010D4313000000"
                                       "0123456789ABCDEF0123456789ABCDEF");

// Runs the event loop until the condition holds or ten seconds have passed.
bool processUntil(const std::function<bool()>& condition)
{
    QElapsedTimer clock;
    clock.start();
    while (!condition() && clock.elapsed() < 10000)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    return condition();
}

// One picture delivered by SCCacheImageDidGetNotification.
struct Delivery
{
    QImage image;
    int takeStatus = -1;
    qint64 frameNo = -1;
    QString umid;
    QString selectFolder;
};

// Keeps every picture the cache delivers, in order.
class DeliveryRecorder
{
public:
    DeliveryRecorder()
    {
        SCNotificationCenter::defaultCenter()->addObserver(
            this, SC::SCCacheImageDidGetNotification, [this](const SCNotification& note) {
                const QVariantMap& info = note.userInfo;
                deliveries.append({info.value(SC::SCCacheGImageKey).value<QImage>(),
                                   info.value(SC::SCCacheGTakeStatusKey).toInt(),
                                   info.value(SC::SCCacheGFrameNoKey).toLongLong(),
                                   info.value(SC::SCCacheGUmidKey).toString(),
                                   info.value(SC::SCCacheGSelectFolderKey).toString()});
            });
    }
    ~DeliveryRecorder() { SCNotificationCenter::defaultCenter()->removeObserver(this); }

    int countFor(const QString& umid, qint64 frameNo) const
    {
        return int(std::count_if(deliveries.begin(), deliveries.end(),
                                 [&](const Delivery& d) { return d.umid == umid && d.frameNo == frameNo; }));
    }
    // Waits for the picture of a take's key frame; the last one delivered.
    std::optional<Delivery> waitFor(const DOTakeData& take) const
    {
        if (!processUntil([&] { return countFor(take.getUmid(), take.getKeyFrame()) > 0; }))
            return std::nullopt;
        for (qsizetype i = deliveries.size() - 1; i >= 0; --i)
            if (deliveries[i].umid == take.getUmid() && deliveries[i].frameNo == take.getKeyFrame())
                return deliveries[i];
        return std::nullopt;
    }

    QList<Delivery> deliveries;
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

void writeFile(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << path.toStdString();
    file.write(bytes);
}

// A card with two single-clip takes and one take of two clips, 9 frames a clip.
class CacheImageCtrlTest : public cwtest::HomeTest
{
protected:
    static void SetUpTestSuite()
    {
        cardgen::Options options = cwtest::CardFolder::quick();
        options.clips = 2;
        options.multiClipTakes = {2};
        options.frames = 9;
        s_card = new cwtest::CardFolder(options);
    }
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

    // The take record a pane would hold for a take of the card.
    static DOTakeData takeOf(const QString& kind, int index, qint64 keyFrame, int status)
    {
        int seen = 0;
        for (const cardgen::ManifestTake& made : s_card->manifest().takes) {
            if (made.kind != kind || seen++ != index)
                continue;
            DOTakeData take;
            take.setUmid(made.umid);
            take.setKeyFrame(keyFrame);
            take.setTakeStatus(status);
            for (const cardgen::ManifestClip& madeClip : made.clips) {
                const QString mp4 = mp4Reference(madeClip);
                if (kind == QLatin1String("multi")) {
                    DOClipData clip;
                    clip.setUmid(madeClip.umid);
                    clip.setMP4Uri(mp4);
                    take.setClipData(clip);
                } else {
                    take.setMP4Uri(mp4);
                }
            }
            return take;
        }
        ADD_FAILURE() << "no take " << kind.toStdString() << " " << index;
        return {};
    }

    // The counter drawn into a frame of a take (frames numbered across its clips).
    static cardgen::FrameCounterValue counterOf(const QString& kind, int index, int frame)
    {
        int seen = 0;
        for (const cardgen::ManifestTake& made : s_card->manifest().takes) {
            if (made.kind != kind || seen++ != index)
                continue;
            for (const cardgen::ManifestClip& clip : made.clips) {
                if (frame < clip.frames)
                    return {clip.counterClip, frame};
                frame -= clip.frames;
            }
        }
        return {};
    }

    QString cacheFolder() { return home().cacheHome() + "/Clipwright"; }
    QString cacheFile(const DOTakeData& take)
    {
        return cacheFolder() + "/" + BLCacheImageCtrl::makeCacheImageName(take);
    }

    static cwtest::CardFolder* s_card;

private:
    static QString mp4Reference(const cardgen::ManifestClip& clip)
    {
        const QString bpav = s_card->manifest().cards.front().bpav + "/";
        for (const cardgen::ManifestFile& file : clip.files)
            if (file.kind == QLatin1String("MP4"))
                return "./" + file.path.mid(bpav.size());
        return {};
    }
};

cwtest::CardFolder* CacheImageCtrlTest::s_card = nullptr;

} // namespace

TEST(CacheImageName, UmidKeyFrameAndStatusNameTheFile)
{
    DOTakeData take;
    take.setUmid(kUmid64);
    take.setKeyFrame(1234);
    take.setTakeStatus(0);
    const QString name = BLCacheImageCtrl::makeCacheImageName(take);
    EXPECT_EQ(name, kUmid64.right(32) + "_00001234_0.bmp");
    EXPECT_TRUE(name.startsWith("0123456789ABCDEF0123456789ABCDEF_"));

    // A UMID of 31 characters is used whole; 32 and more give the last 32.
    take.setUmid(kUmid64.left(31));
    EXPECT_EQ(BLCacheImageCtrl::makeCacheImageName(take), kUmid64.left(31) + "_00001234_0.bmp");
    take.setUmid(kUmid64.left(33));
    EXPECT_EQ(BLCacheImageCtrl::makeCacheImageName(take), kUmid64.mid(1, 32) + "_00001234_0.bmp");

    // Longer frame numbers keep all their digits; the status follows the take.
    take.setKeyFrame(123456789);
    take.setTakeStatus(4);
    EXPECT_TRUE(BLCacheImageCtrl::makeCacheImageName(take).endsWith("_123456789_4.bmp"));
}

TEST_F(CacheImageCtrlTest, ARequestDecodesTheKeyFrameOnceAndThenServesTheCacheFile)
{
    DeliveryRecorder recorder;
    BLCacheImageCtrl ctrl;
    ASSERT_EQ(ctrl.getCacheFolderPath(), cacheFolder());

    const DOTakeData take = takeOf("single", 1, 5, 0);
    request(0, folder(), take);
    const std::optional<Delivery> made = recorder.waitFor(take);
    ASSERT_TRUE(made);
    EXPECT_EQ(made->takeStatus, 0);
    EXPECT_EQ(made->selectFolder, folder());
    EXPECT_EQ(made->image.width(), 160);
    EXPECT_EQ(made->image.height(), 90);
    EXPECT_EQ(cwtest::readFrameCounter(made->image), counterOf("single", 1, 5));

    // The picture is kept as a BMP file that reads back as the same picture.
    const QString file = cacheFile(take);
    ASSERT_TRUE(QFileInfo(file).isFile());
    EXPECT_EQ(QImage(file), made->image);
    EXPECT_TRUE(processUntil([&] { return ctrl.getRequestCount() == 0; }));

    // A second request is served from the file without decoding: a file with
    // another picture under the take's name is what comes back, untouched.
    QImage marker(160, 90, QImage::Format_RGB32);
    marker.fill(Qt::red);
    ASSERT_TRUE(marker.save(file, "BMP"));
    const QDateTime old = QDateTime::currentDateTime().addSecs(-3600);
    setModified(file, old);
    recorder.deliveries.clear();
    request(1, folder(), take);
    const std::optional<Delivery> cached = recorder.waitFor(take);
    ASSERT_TRUE(cached);
    EXPECT_EQ(cached->image, marker);
    EXPECT_EQ(QFileInfo(file).lastModified(), old);
}

TEST_F(CacheImageCtrlTest, AMultiClipTakeIsDecodedAcrossItsClipsInOrder)
{
    DeliveryRecorder recorder;
    BLCacheImageCtrl ctrl;
    // Frame 11 of two 9-frame clips is frame 2 of the second clip.
    const DOTakeData take = takeOf("multi", 0, 11, 2);
    request(0, folder(), take);
    const std::optional<Delivery> made = recorder.waitFor(take);
    ASSERT_TRUE(made);
    EXPECT_EQ(made->takeStatus, 2);
    EXPECT_EQ(cwtest::readFrameCounter(made->image), counterOf("multi", 0, 11));
    EXPECT_TRUE(QFileInfo(cacheFile(take)).isFile());
}

TEST_F(CacheImageCtrlTest, RequestsForOnePictureAreServedOnceWhicheverPaneAsked)
{
    DeliveryRecorder recorder;
    BLCacheImageCtrl ctrl;
    // The first picture leaves the worker in its pause between pictures, so
    // the next requests queue up behind each other.
    const DOTakeData first = takeOf("single", 0, 0, 0);
    request(0, folder(), first);
    ASSERT_TRUE(recorder.waitFor(first));

    const DOTakeData twice = takeOf("single", 1, 3, 0);
    const DOTakeData other = takeOf("single", 1, 4, 0); // the same take with another key frame
    request(0, folder(), twice);
    request(1, folder(), twice);
    request(0, folder(), twice);
    request(0, folder(), other);
    ASSERT_TRUE(recorder.waitFor(other));
    EXPECT_EQ(recorder.countFor(twice.getUmid(), 3), 1);
    EXPECT_EQ(recorder.countFor(other.getUmid(), 4), 1);
    EXPECT_EQ(ctrl.getRequestCount(), 0);
}

TEST_F(CacheImageCtrlTest, ACancelRemovesOnlyThatPanesRequests)
{
    const DOTakeData a = takeOf("single", 0, 1, 0);
    const DOTakeData b = takeOf("single", 1, 2, 0);
    const DOTakeData c = takeOf("multi", 0, 3, 0);
    {
        // With the worker ended the queue stays as the notifications leave it.
        BLCacheImageCtrl ctrl;
        ctrl.setExitThread();
        request(1, folder(), a);
        request(2, folder(), b);
        request(1, folder(), c);
        request(2, folder(), c);
        ASSERT_EQ(ctrl.getRequestCount(), 4);
        cancel(1);
        ASSERT_EQ(ctrl.getRequestCount(), 2);
        EXPECT_EQ(ctrl.getTopRequestData()->getMediaInfoType(), 2);
        EXPECT_EQ(ctrl.getTopRequestData()->getTakeData().getUmid(), b.getUmid());
        cancel(3);
        EXPECT_EQ(ctrl.getRequestCount(), 2);
        cancel(2);
        EXPECT_EQ(ctrl.getRequestCount(), 0);
        EXPECT_FALSE(ctrl.getTopRequestData());
    }

    // With the worker running, the cancelled pane gets no pictures, the other all of its own.
    // The worker decodes a (not cached yet) while b and c wait in the queue, so the
    // cancel reaches b before the worker can take it.
    DeliveryRecorder recorder;
    BLCacheImageCtrl ctrl;
    request(2, folder(), a);
    request(1, folder(), b);
    request(2, folder(), c);
    cancel(1);
    ASSERT_TRUE(recorder.waitFor(a));
    ASSERT_TRUE(recorder.waitFor(c));
    EXPECT_EQ(recorder.countFor(b.getUmid(), b.getKeyFrame()), 0);
    EXPECT_EQ(recorder.deliveries.size(), 2);
}

TEST_F(CacheImageCtrlTest, EveryFailureStillEndsInAPicture)
{
    DeliveryRecorder recorder;
    BLCacheImageCtrl ctrl;
    const QImage error = BLCacheImageCtrl::errorImage();
    ASSERT_FALSE(error.isNull());
    EXPECT_EQ(error.width(), 160);

    // An MP4 file not yet imported: a picture, but no cache file.
    const DOTakeData loose = takeOf("single", 0, 2, 4);
    request(0, folder(), loose);
    const std::optional<Delivery> looseMade = recorder.waitFor(loose);
    ASSERT_TRUE(looseMade);
    EXPECT_EQ(cwtest::readFrameCounter(looseMade->image), counterOf("single", 0, 2));
    EXPECT_FALSE(QFileInfo::exists(cacheFile(loose)));

    // Missing essence: the error picture, nothing kept.
    DOTakeData missing = takeOf("single", 0, 3, 0);
    missing.setMP4Uri("./CLPR/NONE0001/NONE0001.MP4");
    request(0, folder(), missing);
    const std::optional<Delivery> missingMade = recorder.waitFor(missing);
    ASSERT_TRUE(missingMade);
    EXPECT_EQ(missingMade->image, error);
    EXPECT_FALSE(QFileInfo::exists(cacheFile(missing)));

    // A cache file that is no picture: the error picture; the file is left alone.
    const DOTakeData damaged = takeOf("single", 1, 6, 0);
    writeFile(cacheFile(damaged), "not a bitmap");
    request(0, folder(), damaged);
    const std::optional<Delivery> damagedMade = recorder.waitFor(damaged);
    ASSERT_TRUE(damagedMade);
    EXPECT_EQ(damagedMade->image, error);
    EXPECT_EQ(QFileInfo(cacheFile(damaged)).size(), 12);

    // No cache file appeared beside the damaged one.
    EXPECT_EQ(QDir(cacheFolder()).entryList(QDir::Files),
              QStringList{QFileInfo(cacheFile(damaged)).fileName()});
}

TEST_F(CacheImageCtrlTest, WithoutACacheFolderPicturesAreMadeEachTime)
{
    // A file where the cache folder belongs keeps the folder from being made.
    QDir().mkpath(home().cacheHome());
    writeFile(cacheFolder(), "in the way");
    DeliveryRecorder recorder;
    BLCacheImageCtrl ctrl;
    EXPECT_TRUE(ctrl.getCacheFolderPath().isEmpty());

    const DOTakeData take = takeOf("single", 0, 7, 0);
    request(0, folder(), take);
    const std::optional<Delivery> made = recorder.waitFor(take);
    ASSERT_TRUE(made);
    EXPECT_EQ(cwtest::readFrameCounter(made->image), counterOf("single", 0, 7));

    ctrl.deleteCacheImageByCreationData();
    EXPECT_TRUE(QFileInfo(cacheFolder()).isFile());
}

TEST_F(CacheImageCtrlTest, CleanUpRemovesFilesMadeBeforeTheLifeTime)
{
    cwtest::writeSettings(home().configHome(), {{"CACHE_LIFE_TIME", 3}});
    BLCacheImageCtrl ctrl;
    ctrl.setExitThread();
    const QString folder = ctrl.getCacheFolderPath();
    ASSERT_FALSE(folder.isEmpty());
    const QDateTime now = QDateTime::currentDateTime();
    for (const auto& [name, days] : {std::pair{"old.bmp", 4}, {"young.bmp", 2}, {"new.bmp", 0}}) {
        writeFile(folder + "/" + name, "x");
        setModified(folder + "/" + name, now.addDays(-days));
    }

    ctrl.deleteCacheImageByCreationData();
    QStringList left = QDir(folder).entryList(QDir::AllEntries | QDir::NoDotAndDotDot);
    left.sort();
    EXPECT_EQ(left, (QStringList{"new.bmp", "young.bmp"}));
}
