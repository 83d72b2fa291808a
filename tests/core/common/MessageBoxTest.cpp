#include "core/services/BLCommon.h"
#include "support/MessageRecorder.h"
#include "support/TestEnvironment.h"

#include <gtest/gtest.h>

// The table's texts with pattern 1 are left to the presenter's widget test.
TEST(MessageBoxTest, PatternsGiveTheirButtonsInOrderAndTheAnswerComesBack)
{
    cwtest::MessageRecorder recorder(IMessagePresenter::kSecondButton);
    BLCommon* common = BLCommon::sharedCtrl();
    EXPECT_EQ(common->messageBox("MSG_632_3169", "", 0, 2), IMessagePresenter::kSecondButton);
    recorder.setAnswer(IMessagePresenter::kFirstButton);
    EXPECT_EQ(common->messageBox("a literal text", "", 0, 7), IMessagePresenter::kFirstButton);
    const QList<SCAlert> alerts = recorder.alerts();
    ASSERT_EQ(alerts.size(), 2);
    EXPECT_EQ(alerts[0].buttons, QStringList({"Yes", "No"}));
    EXPECT_EQ(alerts[1].message, "a literal text");    // no entry: shown as given
    EXPECT_EQ(alerts[1].buttons, QStringList({"OK"})); // an unknown pattern still has a way out
}
