#include "core/app/BLMainWindowCtrl.h"
#include "core/services/BLPlistCtrl.h"
#include "core/app/IMainWindowView.h"
#include "core/services/BLCommon.h"
#include "core/services/SCNotificationCenter.h"
#include "core/services/SCNotificationNames.h"
#include "core/card/DOTakeData.h"
#include "support/QtPrinters.h"
#include "support/TestEnvironment.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QStringList>

#include <gtest/gtest.h>

namespace {

// Stands in for the main window: answers with set values and keeps a
// journal of what the controller asked for, in order.
class FakeMainWindowView : public IMainWindowView
{
public:
    QRectF screen{0, 0, 1920, 1080};
    QRectF frame;
    QSizeF minimum{800, 600};
    bool visible = true;
    bool key = true;
    bool locked = false;
    bool sheetVisible = false;
    QStringList journal;

    QRectF screenFrame() const override { return screen; }
    QRectF windowFrame() const override { return frame; }
    void setWindowFrame(const QRectF& f) override
    {
        frame = f;
        journal << QStringLiteral("frame %1,%2 %3x%4%5")
                       .arg(f.x())
                       .arg(f.y())
                       .arg(f.width())
                       .arg(f.height())
                       .arg(locked ? " locked" : "");
    }
    QSizeF minimumWindowSize() const override { return minimum; }
    bool isWindowVisible() const override { return visible; }
    bool isKeyWindow() const override { return key; }
    void setSplitToDefault() override { journal << "split default"; }
    void setDividersLocked(bool l) override { locked = l; }
    bool isHouseKeepingSheetVisible() const override { return sheetVisible; }
    void showHouseKeepingSheet() override
    {
        sheetVisible = true;
        journal << "show sheet";
    }
    void closeHouseKeepingSheet() override
    {
        sheetVisible = false;
        journal << "close sheet";
    }
};

QStringList logMessages(const cwtest::ScopedHome& home)
{
    QFile file(home.stateHome() + "/Clipwright/Clipwright.log");
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QStringList messages;
    for (const QString& line : QString::fromUtf8(file.readAll()).split("\r\n", Qt::SkipEmptyParts))
        messages << line.mid(20); // after "YYYY/MM/DD hh:mm:ss "
    return messages;
}

} // namespace

class MainWindowCtrlTest : public cwtest::HomeTest
{
protected:
    void enableLog() { cwtest::writeSettings(home().configHome(), {{"LOG_FLAG", "ALL"}}); }
    FakeMainWindowView view;
};

TEST_F(MainWindowCtrlTest, FirstStartCentresTheDefaultSizeAndStoresNoOrigin)
{
    view.screen = QRectF(100, 24, 1921, 1057); // odd sizes: the half is cut to a whole number
    BLMainWindowCtrl ctrl(view);
    ctrl.awakeFromNib();
    EXPECT_EQ(view.frame, QRectF(100 + 448, 24 + 144, 1024, 768));
    EXPECT_FALSE(view.locked);

    const auto onDisk = BLPlistCtrl::readPlistFile(BLPlistCtrl::sharedCtrl()->filePath());
    ASSERT_TRUE(onDisk.has_value());
    EXPECT_EQ(onDisk->value("MAIN_WIN_WIDTH").toDouble(), 1024.0);
    EXPECT_EQ(onDisk->value("MAIN_WIN_HEIGHT").toDouble(), 768.0);
    EXPECT_FALSE(onDisk->contains("MAIN_WIN_X"));
    EXPECT_FALSE(onDisk->contains("MAIN_WIN_Y"));
}

TEST_F(MainWindowCtrlTest, StoredOriginIsUsedOnlyWhenBothCoordinatesArePresent)
{
    cwtest::writeSettings(home().configHome(),
                          {{"MAIN_WIN_WIDTH", 1200.0}, {"MAIN_WIN_HEIGHT", 900.0}, {"MAIN_WIN_X", 40.0}});
    {
        BLMainWindowCtrl ctrl(view);
        ctrl.readData();
        EXPECT_EQ(view.frame, QRectF(360, 90, 1200, 900)); // X alone: centred, stored size
    }
    cwtest::releaseSingletons();
    cwtest::writeSettings(home().configHome(),
                          {{"MAIN_WIN_WIDTH", 1200.0}, {"MAIN_WIN_HEIGHT", 900.0}, {"MAIN_WIN_Y", 30.0}});
    {
        BLMainWindowCtrl ctrl(view);
        ctrl.readData();
        EXPECT_EQ(view.frame, QRectF(360, 90, 1200, 900)); // Y alone: centred as well
    }
    cwtest::releaseSingletons();
    cwtest::writeSettings(home().configHome(), {{"MAIN_WIN_WIDTH", 1200.0},
                                                {"MAIN_WIN_HEIGHT", 900.0},
                                                {"MAIN_WIN_X", -40.0},
                                                {"MAIN_WIN_Y", 30.0}});
    BLMainWindowCtrl ctrl(view);
    ctrl.readData();
    EXPECT_EQ(view.frame, QRectF(-40, 30, 1200, 900));
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

    EXPECT_EQ(logMessages(home()),
              QStringList({"0000:[BLMainWindowCtrl windowWillCloseNotification]",
                           "0000:**************************************** Application end   "
                           "****************************************",
                           "0000:" + QString(99, '*')}));
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
    int delivered = 0;
    SCNotificationCenter::defaultCenter()->addObserver(this, SC::SCCacheImageDidGetNotification,
                                                       [&](const SCNotification&) { ++delivered; });
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
    QElapsedTimer clock;
    clock.start();
    while (delivered == 0 && clock.elapsed() < 5000)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    ASSERT_EQ(delivered, 1);

    ctrl.windowWillCloseNotification();
    EXPECT_EQ(QDir(cache).entryList(QDir::Files), QStringList{"made29DaysAgo.bmp"});
    requestPicture(2);
    clock.restart();
    while (clock.elapsed() < 300)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    EXPECT_EQ(delivered, 1);
    SCNotificationCenter::defaultCenter()->removeObserver(this);
}

TEST_F(MainWindowCtrlTest, ResetWindowSizeIsOfferedOnlyToTheVisibleKeyWindow)
{
    BLMainWindowCtrl ctrl(view);
    bool enable = false;
    EXPECT_TRUE(ctrl.isSupportMenuItem(MENU_ITEM_ID_RESET_WINDOW_SIZE, &enable));
    EXPECT_TRUE(enable);

    view.key = false; // a modal dialog in front
    enable = true;
    EXPECT_TRUE(ctrl.isSupportMenuItem(MENU_ITEM_ID_RESET_WINDOW_SIZE, &enable));
    EXPECT_FALSE(enable);

    view.key = true;
    view.visible = false;
    EXPECT_TRUE(ctrl.isSupportMenuItem(MENU_ITEM_ID_RESET_WINDOW_SIZE, &enable));
    EXPECT_FALSE(enable);

    enable = true;
    EXPECT_FALSE(ctrl.isSupportMenuItem(12345, &enable)); // not a tag of the frame
    EXPECT_FALSE(enable);
}

TEST_F(MainWindowCtrlTest, ResetWindowSizeLogsAndCentresTheDefaultSizeWithTheDefaultSplit)
{
    cwtest::writeSettings(home().configHome(), {{"LOG_FLAG", "ALL"},
                                                {"MAIN_WIN_WIDTH", 1500.0},
                                                {"MAIN_WIN_HEIGHT", 1000.0},
                                                {"MAIN_WIN_X", 5.0},
                                                {"MAIN_WIN_Y", 6.0}});
    BLMainWindowCtrl ctrl(view);
    ctrl.awakeFromNib();
    view.journal.clear();

    ctrl.selectMenuItem(MENU_ITEM_ID_RESET_WINDOW_SIZE);
    EXPECT_EQ(view.journal, QStringList({"frame 448,156 1024x768 locked", "split default"}));
    EXPECT_FALSE(view.locked);
    EXPECT_TRUE(logMessages(home()).contains(
        "0631:[BLMainWindowCtrl selectMenuItem] menuItemID:MENU_ITEM_ID_RESET_WINDOW_SIZE"));

    view.journal.clear();
    ctrl.selectMenuItem(4711); // unknown tags change nothing
    EXPECT_TRUE(view.journal.isEmpty());
}

TEST_F(MainWindowCtrlTest, ResizeAndZoomKeepTheMinimumSize)
{
    BLMainWindowCtrl ctrl(view);
    EXPECT_EQ(ctrl.windowWillResize(QSizeF(700, 900)), QSizeF(800, 900));
    EXPECT_EQ(ctrl.windowWillResize(QSizeF(900, 500)), QSizeF(900, 600));
    EXPECT_EQ(ctrl.windowWillResize(QSizeF(1000, 700)), QSizeF(1000, 700));

    // Below the minimum in either dimension: refused, nothing changes.
    EXPECT_FALSE(ctrl.windowShouldZoom(QRectF(0, 0, 799, 1000)));
    EXPECT_FALSE(ctrl.windowShouldZoom(QRectF(0, 0, 1000, 599)));
    EXPECT_FALSE(ctrl.isZoom());
    EXPECT_FALSE(view.locked);
    EXPECT_TRUE(view.journal.isEmpty());

    // A resize that is not a zoom leaves locked dividers alone.
    view.locked = true;
    ctrl.windowDidResize();
    EXPECT_TRUE(view.locked);
    view.locked = false;

    // Accepted: dividers locked until the resize (the preview keeps its height).
    EXPECT_TRUE(ctrl.windowShouldZoom(QRectF(0, 0, 800, 600)));
    EXPECT_TRUE(ctrl.isZoom());
    EXPECT_TRUE(view.locked);
    EXPECT_TRUE(view.journal.isEmpty());
    ctrl.windowDidResize();
    EXPECT_FALSE(ctrl.isZoom());
    EXPECT_FALSE(view.locked);
}

TEST_F(MainWindowCtrlTest, HousekeepingNotificationsShowAndCloseTheSheetOnce)
{
    BLMainWindowCtrl ctrl(view);
    ctrl.awakeFromNib();
    view.journal.clear();
    BLCommon* common = BLCommon::sharedCtrl();

    common->sendNotificationNow(this, SC::SCCloseHouseKeepingWindowNotification); // not shown: nothing
    common->sendNotificationNow(this, SC::SCShowHouseKeepingWindowNotification);
    common->sendNotificationNow(this, SC::SCShowHouseKeepingWindowNotification); // already shown
    EXPECT_TRUE(view.sheetVisible);
    common->sendNotificationNow(nullptr, SC::SCCloseHouseKeepingWindowNotification);
    EXPECT_FALSE(view.sheetVisible);
    EXPECT_EQ(view.journal, QStringList({"show sheet", "close sheet"}));
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
