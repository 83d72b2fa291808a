// The interface's rules: calls out of turn are refused.
#include "ViewerSession.h"

#include <gtest/gtest.h>

using namespace vvtest;

TEST(ViewerInterface, CallsOutOfTurnAreRefused)
{
    const char* none[] = {nullptr};
    vv_bitmap_t bitmap{};
    EXPECT_EQ(vv_get_thumbnail(none, 0, 0, VV_ICON_OK, &bitmap), VV_ERR_PARAM);
    EXPECT_EQ(vv_play(), VV_ERR_NOT_INIT);
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
    }
    // vv_exit ended it; it can start again.
    ViewerSession again;
    EXPECT_EQ(again.initResult(), VV_OK);
}
