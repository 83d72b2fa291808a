// The interface's rules: calls out of turn are refused.
#include "ViewerSession.h"

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
