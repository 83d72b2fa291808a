#include "core/app/BLMainWindowCtrl.h"
#include "core/card/DOTakeData.h"
#include "core/services/BLCommon.h"
#include "core/services/BLPlistCtrl.h"
#include "core/services/SCNotificationNames.h"
#include "support/FakeMainWindowView.h"
#include "support/NotificationRecorder.h"
#include "support/QtPrinters.h"
#include "support/TestEnvironment.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

class MainWindowCtrlTest : public cwtest::HomeTest
{
protected:
    void enableLog() { cwtest::writeSettings(home().configHome(), {{"LOG_FLAG", "ALL"}}); }
    cwtest::FakeMainWindowView view;
};

TEST_F(MainWindowCtrlTest, AStoredOriginIsUsedOnlyWhenBothCoordinatesArePresent)
{
    // Odd screen sizes: the half is cut to a whole number.
    view.screen = QRectF(100, 24, 1921, 1057);
    const struct
    {
        QVariantMap stored;
        QRectF frame;
    } cases[] = {
        {{}, {100 + 448, 24 + 144, 1024, 768}},
        {{{"MAIN_WIN_X", 40.0}}, {100 + 360, 24 + 78, 1200, 900}},
        {{{"MAIN_WIN_Y", 30.0}}, {100 + 360, 24 + 78, 1200, 900}},
        {{{"MAIN_WIN_X", -40.0}, {"MAIN_WIN_Y", 30.0}}, {-40, 30, 1200, 900}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.stored.keys().join(',').toStdString());
        cwtest::ScopedHome fresh;
        QVariantMap settings = c.stored;
        if (!settings.isEmpty()) {
            settings["MAIN_WIN_WIDTH"] = 1200.0;
            settings["MAIN_WIN_HEIGHT"] = 900.0;
            cwtest::writeSettings(fresh.configHome(), settings);
        }
        BLMainWindowCtrl ctrl(view);
        ctrl.awakeFromNib();
        EXPECT_EQ(view.frame, c.frame);
        // A first start stores the default size but no origin.
        const auto onDisk = BLPlistCtrl::readPlistFile(BLPlistCtrl::sharedCtrl()->filePath());
        ASSERT_TRUE(onDisk.has_value());
        EXPECT_EQ(onDisk->contains("MAIN_WIN_X") || onDisk->contains("MAIN_WIN_Y"), !settings.isEmpty());
    }
}

TEST_F(MainWindowCtrlTest, ClosingSavesTheFrameThenLogsTheEndBanner)
{
    enableLog();
    BLMainWindowCtrl ctrl(view);
    ctrl.awakeFromNib();
    view.frame = QRectF(12, 34, 1111, 777);
    ctrl.windowWillCloseNotification();

    cwtest::releaseSingletons();
    BLPlistCtrl* plist = BLPlistCtrl::sharedCtrl();
    double x = 0;
    double y = 0;
    ASSERT_TRUE(plist->getMainWindowX(&x));
    ASSERT_TRUE(plist->getMainWindowY(&y));
    EXPECT_EQ(QRectF(x, y, plist->getMainWindowWidth(), plist->getMainWindowHeight()),
              QRectF(12, 34, 1111, 777));

    EXPECT_EQ(cwtest::logMessages().filter("Application end").size(), 1);
}

TEST_F(MainWindowCtrlTest, ClosingRemovesThumbnailsOlderThanTheCacheLifeTime)
{
    BLMainWindowCtrl ctrl(view);
    ctrl.awakeFromNib();
    // The cache folder is made with the window; the life time is 30 days by default.
    const QString cache = home().cacheHome() + "/Clipwright";
    ASSERT_TRUE(QFileInfo(cache).isDir());
    const QDateTime now = QDateTime::currentDateTime();
    for (const auto& [name, days] : {std::pair{"made31DaysAgo.bmp", 31}, {"made29DaysAgo.bmp", 29}}) {
        QFile file(cache + "/" + name);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_TRUE(file.setFileTime(now.addDays(-days), QFileDevice::FileModificationTime));
    }

    // The cache serves requests until the window closes, then no more.
    const cwtest::NotificationRecorder delivered({SC::SCCacheImageDidGetNotification});
    const auto requestPicture = [](qint64 keyFrame) {
        DOTakeData unusable; // no essence: answered with the error picture
        unusable.setUmid(QString(64, 'A'));
        unusable.setTakeStatus(5);
        unusable.setKeyFrame(keyFrame);
        BLCommon::sharedCtrl()->sendNotificationNow(
            nullptr, SC::SCCacheImageRequestNotification,
            {{SC::SCCacheRMediaInfoKey, 0},
             {SC::SCCacheRSelectFolderKey, QString("/nowhere")},
             {SC::SCCacheRTakeDataKey, QVariant::fromValue(unusable)}});
    };
    requestPicture(1);
    ASSERT_TRUE(cwtest::waitFor([&] { return delivered.notes.size() == 1; }));

    ctrl.windowWillCloseNotification();
    EXPECT_EQ(QDir(cache).entryList(QDir::Files), QStringList{"made29DaysAgo.bmp"});
    requestPicture(2);
    cwtest::settle(300);
    EXPECT_EQ(delivered.notes.size(), 1);
}

TEST_F(MainWindowCtrlTest, ResizeKeepsTheMinimumSizeAndOnlyAZoomLocksTheDividers)
{
    BLMainWindowCtrl ctrl(view);
    EXPECT_EQ(ctrl.windowWillResize(QSizeF(700, 900)), QSizeF(800, 900));
    EXPECT_EQ(ctrl.windowWillResize(QSizeF(900, 500)), QSizeF(900, 600));
    EXPECT_EQ(ctrl.windowWillResize(QSizeF(1000, 700)), QSizeF(1000, 700));

    // A resize that is not a zoom leaves locked dividers alone.
    view.locked = true;
    ctrl.windowDidResize();
    EXPECT_TRUE(view.locked);
}

TEST_F(MainWindowCtrlTest, AControllerThatIsGoneNoLongerObserves)
{
    {
        BLMainWindowCtrl ctrl(view);
        ctrl.awakeFromNib();
    }
    view.journal.clear();
    BLCommon::sharedCtrl()->sendNotificationNow(this, SC::SCShowHouseKeepingWindowNotification);
    EXPECT_TRUE(view.journal.isEmpty());
}
