// The interface's rules: calls out of turn, the log, the last message.
#include "ViewerSession.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace vvtest;

TEST(ViewerInterface, CallsOutOfTurnAreRefused)
{
    const char* none[] = {nullptr};
    vv_bitmap_t bitmap{};
    vv_av_info_t info{};
    EXPECT_EQ(vv_get_thumbnail(nullptr, 1, 0, VV_ICON_OK, &bitmap), VV_ERR_PARAM);
    EXPECT_EQ(vv_get_thumbnail(none, 1, 0, VV_ICON_OK, &bitmap), VV_ERR_PARAM);
    EXPECT_EQ(vv_get_thumbnail(none, 0, 0, VV_ICON_OK, &bitmap), VV_ERR_PARAM);
    EXPECT_EQ(vv_get_thumbnail(none, 1, 0, VV_ICON_OK, nullptr), VV_ERR_PARAM);

    // Before vv_init.
    EXPECT_EQ(vv_play(), VV_ERR_NOT_INIT);
    EXPECT_EQ(vv_set_av_info(none, 1, &info), VV_ERR_PARAM);
    EXPECT_EQ(vv_exit(), VV_ERR_NOT_INIT);
    EXPECT_EQ(vv_set_callback_func_g(nullptr, nullptr), VV_ERR_NOT_INIT);
    EXPECT_EQ(vv_init(nullptr, nullptr, 0), VV_ERR_PARAM);
    {
        ViewerSession viewer;
        ASSERT_EQ(viewer.initResult(), VV_OK);
        vv_display_t display{};
        EXPECT_EQ(vv_init(InitParam().get(), &display, 0), VV_ERR_STATE);
        // No take yet.
        for (int (*call)() : {vv_play, vv_pause, vv_stop, vv_ff, vv_rew, vv_first_frame, vv_last_frame,
                              vv_plus_one_frame, vv_minus_one_frame, vv_make_thumbnail})
            EXPECT_EQ(call(), VV_ERR_NO_TAKE);
        EXPECT_EQ(vv_show_frame(3, 0), VV_ERR_NO_TAKE);
        vv_take_info_t takeInfo{0, 0, 0};
        EXPECT_EQ(vv_set_take_info(&takeInfo), VV_ERR_NO_TAKE);
        EXPECT_EQ(vv_set_take_info(nullptr), VV_ERR_PARAM);
        EXPECT_EQ(vv_set_av_info(nullptr, 1, &info), VV_ERR_PARAM);
        EXPECT_EQ(vv_show_full_screen(), VV_OK);
        EXPECT_EQ(vv_show(), VV_OK);
    }
    // vv_exit ended it with VM_EXITED; it can start again.
    {
        ViewerSession viewer;
        EXPECT_EQ(viewer.initResult(), VV_OK);
    }
}

TEST(ViewerInterface, LogFollowsItsLevelAndSizeLimitAndExitIsTheLastMessage)
{
    const cwtest::CardFolder card(tinyTake(1, 30));
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("Viewer.log"));
    {
        ViewerSession viewer(InitParam()
                                 .set(InitParam::kLogLevel, "2")
                                 .set(InitParam::kLogFilePath, path.toStdString())
                                 .set(InitParam::kLogFileSize, "1"));
        const std::vector<QString> paths = mp4Paths(card, onlyTake(card));
        ASSERT_EQ(viewer.setTake(paths), VV_OK);
        for (int i = 0; i < 20; ++i) {
            ASSERT_TRUE(viewer.job([] { return vv_show_frame(5, 0); }));
            ASSERT_TRUE(viewer.job(vv_stop));
        }
        EXPECT_EQ(viewer.setTake({dir.filePath(QStringLiteral("missing.MP4"))}), VV_ERR_FILE);
        // Ended while playing, the last message is VM_EXITED.
        ASSERT_EQ(viewer.setTake(paths), VV_OK);
        ASSERT_EQ(vv_play(), VV_OK);
        ASSERT_TRUE(viewer.waitForMessage(VM_PLAYED));
        ASSERT_EQ(vv_exit(), VV_OK);
        EXPECT_EQ(viewer.messages().back().id, VM_EXITED);
    }
    const QByteArray log = readAll(path);
    const QByteArray old = readAll(path + QStringLiteral(".old"));
    EXPECT_FALSE(old.isEmpty()) << "a full log is kept as .old";
    EXPECT_LE(old.size(), 1024 + 200);
    EXPECT_TRUE(log.contains("vv_exit"));
    EXPECT_TRUE((old + log).contains("state VM_STOPPED"));
    EXPECT_TRUE((old + log).contains("vv_set_av_info failed: -5"));

    // Level 0 writes nothing.
    const QString silent = dir.filePath(QStringLiteral("Silent.log"));
    {
        ViewerSession viewer(
            InitParam().set(InitParam::kLogLevel, "0").set(InitParam::kLogFilePath, silent.toStdString()));
        EXPECT_EQ(viewer.setTake({dir.filePath(QStringLiteral("missing.MP4"))}), VV_ERR_FILE);
    }
    EXPECT_FALSE(QFile::exists(silent));
}
