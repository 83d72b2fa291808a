#include "core/services/BLPlistCtrl.h"
#include "support/TestEnvironment.h"

#include <QDir>
#include <QFile>
#include <QStandardPaths>

#include <gtest/gtest.h>

using PlistTest = cwtest::HomeTest;

namespace {
QString settingsPath(const cwtest::ScopedHome& home)
{
    return home.configHome() + "/Clipwright/Clipwright.plist";
}
} // namespace

TEST_F(PlistTest, FirstStartWritesTheNewFileAndSettersWriteAtOnce)
{
    BLPlistCtrl* plist = BLPlistCtrl::sharedCtrl();
    ASSERT_EQ(plist->filePath(), settingsPath(home()));
    const std::optional<QVariantMap> onDisk = BLPlistCtrl::readPlistFile(settingsPath(home()));
    ASSERT_TRUE(onDisk.has_value());

    // Kinds as written: geometry as real, integers as integer, texts as string.
    EXPECT_EQ(onDisk->value("MAIN_WIN_WIDTH").typeId(), QMetaType::Double);
    EXPECT_EQ(onDisk->value("CACHE_LIFE_TIME").typeId(), QMetaType::LongLong);
    EXPECT_EQ(onDisk->value("VIDEO_QUEUE_SIZE").toString(), "20");
    EXPECT_EQ(onDisk->value("WORK_FOLDER").toString(),
              QStandardPaths::writableLocation(QStandardPaths::MoviesLocation));
    EXPECT_EQ(onDisk->value("VIEWER_LOG_FILE_PATH").toString(),
              home().stateHome() + "/Clipwright/Viewer.log");

    // A setter writes the file at once; a new store instance reads it back.
    plist->setMainWindowX(12.5);
    plist->setDatePauseChar("-");
    plist->setSequentialNo(9999); // past the last value: 0
    cwtest::releaseSingletons();
    BLPlistCtrl* reread = BLPlistCtrl::sharedCtrl();
    double x = -1;
    ASSERT_TRUE(reread->getMainWindowX(&x));
    EXPECT_EQ(x, 12.5);
    EXPECT_EQ(reread->getDatePauseChar(), "-");
    EXPECT_EQ(reread->getSequentialNo(), 0);
}

TEST_F(PlistTest, BrokenOrMistypedSettingsGiveDefaultsWithoutCrash)
{
    const QString path = settingsPath(home());

    const QList<QByteArray> broken = {
        "",
        "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict><key>LOG_FLAG</key>",
        "<?xml version=\"1.0\"?><plist version=\"1.0\"><array/></plist>",
        "<?xml version=\"1.0\"?><plist><dict><key>A</key><integer>12x</integer></dict></plist>",
        QByteArray("\xff\xfe\x00<plist>", 10),
    };
    for (const QByteArray& content : broken) {
        ASSERT_TRUE(cwtest::writeFile(path, content));
        cwtest::releaseSingletons();
        BLPlistCtrl* plist = BLPlistCtrl::sharedCtrl();
        EXPECT_FALSE(plist->isLoaded()) << content.constData();
        EXPECT_EQ(plist->getMainWindowWidth(), 1024.0);
        // A setter on an unreadable file is lost, and does not replace the file.
        plist->setDateFormat(2);
        EXPECT_EQ(plist->getDateFormat(), 0);
        EXPECT_EQ(cwtest::readFile(path), content);
    }

    // Values of the wrong kind read as the missing-key default.
    cwtest::releaseSingletons();
    QVariantMap wrong;
    wrong["MAIN_WIN_WIDTH"] = QString("800");
    wrong["CACHE_LIFE_TIME"] = QString("7");
    wrong["LOG_FLAG"] = qint64(3);
    wrong["MAIN_WIN_X"] = QString("5");
    wrong["VIEWER_LOG_LEVEL"] = 2.0;
    wrong["MAIN_WIN_HEIGHT"] = qint64(600); // an integer is still a number
    ASSERT_TRUE(BLPlistCtrl::writePlistFile(path, wrong));
    BLPlistCtrl* plist = BLPlistCtrl::sharedCtrl();
    ASSERT_TRUE(plist->isLoaded());
    EXPECT_EQ(plist->getMainWindowWidth(), 1024.0);
    EXPECT_EQ(plist->getMainWindowHeight(), 600.0);
    EXPECT_EQ(plist->getCacheLifeTime(), 30);
    EXPECT_EQ(plist->getLogFlag(), "OFF");
    EXPECT_FALSE(plist->getMainWindowX(nullptr));
    EXPECT_EQ(plist->getViewerLogLevel(), "0");
}
