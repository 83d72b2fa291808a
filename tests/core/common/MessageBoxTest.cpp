#include "core/services/BLCommon.h"
#include "support/MessageRecorder.h"
#include "support/TestEnvironment.h"

#include <gtest/gtest.h>

TEST(MessageBoxTest, PatternsGiveTheirButtonsInOrderAndTheAnswerComesBack)
{
    cwtest::MessageRecorder recorder(IMessagePresenter::kSecondButton);
    BLCommon* common = BLCommon::sharedCtrl();

    EXPECT_EQ(common->messageBox("MSG_632_3169", "", 0, 2), IMessagePresenter::kSecondButton);
    EXPECT_EQ(common->messageBox("MSG_632_3169", "", 0, 1), IMessagePresenter::kSecondButton);
    recorder.setAnswer(IMessagePresenter::kFirstButton);
    EXPECT_EQ(common->messageBox("a literal text", "", 0, 0), IMessagePresenter::kFirstButton);
    EXPECT_EQ(common->messageBox("x", "", 0, 7), IMessagePresenter::kFirstButton);

    const QList<SCAlert> alerts = recorder.alerts();
    ASSERT_EQ(alerts.size(), 4);
    EXPECT_EQ(alerts[0].buttons, QStringList({common->getBtnLabel(2, 0), common->getBtnLabel(2, 1)}));
    EXPECT_EQ(alerts[0].buttons.first(), "Yes");
    EXPECT_EQ(alerts[1].buttons, QStringList({"OK", "Cancel"}));
    EXPECT_EQ(alerts[2].buttons, QStringList({"OK"}));
    EXPECT_EQ(alerts[2].message, "a literal text");    // no entry: shown as given
    EXPECT_EQ(alerts[3].buttons, QStringList({"OK"})); // unknown pattern still has a way out
    EXPECT_EQ(recorder.keys().first(), "MSG_632_3169");
}
