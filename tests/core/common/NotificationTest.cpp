#include "core/card/DOTakeData.h"
#include "core/services/BLCommon.h"
#include "core/services/SCNotificationCenter.h"
#include "core/services/SCNotificationNames.h"
#include "support/TestEnvironment.h"

#include <QCoreApplication>
#include <QThread>

#include <gtest/gtest.h>

#include <thread>

namespace {

class NotificationTest : public ::testing::Test
{
protected:
    void TearDown() override { SCNotificationCenter::defaultCenter()->removeObserver(this); }

    void observe(const QString& name)
    {
        SCNotificationCenter::defaultCenter()->addObserver(this, name, [this](const SCNotification& n) {
            received << n;
            threads << QThread::currentThread();
        });
    }

    QList<SCNotification> received;
    QList<QThread*> threads;
};

} // namespace

TEST_F(NotificationTest, CoalescedPostsDeliverOnceAndOthersEachTime)
{
    observe(SC::SCTakeDidDeleteNotification);
    BLCommon* common = BLCommon::sharedCtrl();
    common->sendDidDeleteNotification(this, {"A"}, "/f1");
    common->sendDidDeleteNotification(this, {"B"}, "/f2");
    common->sendDidDeleteNotification(this, {"C"}, "/f3");
    EXPECT_TRUE(received.isEmpty()); // posted when idle, not at once
    cwtest::settle();
    ASSERT_EQ(received.size(), 1);
    EXPECT_EQ(received[0].userInfo.value(SC::SCDeleteTakeUmidsKey).toStringList(), QStringList({"C"}));
    EXPECT_EQ(received[0].userInfo.value(SC::SCDeleteSelectFolderKey).toString(), "/f3");
    EXPECT_EQ(received[0].sender, this);

    received.clear();
    common->sendDidDelNotificationNotCoalesce(this, {"A"}, "/f1");
    common->sendDidDelNotificationNotCoalesce(this, {"B"}, "/f2");
    common->sendDidDelNotificationNotCoalesce(this, {"C"}, "/f3");
    cwtest::settle();
    ASSERT_EQ(received.size(), 3);
    EXPECT_EQ(received[0].userInfo.value(SC::SCDeleteSelectFolderKey).toString(), "/f1");
    EXPECT_EQ(received[2].userInfo.value(SC::SCDeleteSelectFolderKey).toString(), "/f3");

    observe(SC::SCTakeDidAddNotification);
    received.clear();
    DOTakeData take;
    take.setUmid("060A2B340101010501010D4313000000");
    common->sendDidAddNotification(this, "/work", {take});
    common->sendNotificationNow(this, SC::SCTakeDidAddNotification);
    EXPECT_EQ(received.size(), 1); // "now" is synchronous
    cwtest::settle();
    ASSERT_EQ(received.size(), 2);
    EXPECT_EQ(received[1].userInfo.value(SC::SCAddSelectFolderKey).toString(), "/work");
    const auto takes = received[1].userInfo.value(SC::SCAddTakeDatasKey).value<QList<DOTakeData>>();
    ASSERT_EQ(takes.size(), 1);
    EXPECT_EQ(takes[0].getUmid(), take.getUmid());
}

TEST_F(NotificationTest, PostsFromAWorkerArriveOnTheMainThread)
{
    observe(SC::SCSelectFolderDataDidUpdateNotification);
    observe(SC::SCNewFolderDidMakeNotification);
    std::thread worker([] {
        BLCommon::sharedCtrl()->sendNotification(nullptr, SC::SCSelectFolderDataDidUpdateNotification,
                                                 {{SC::SCDUpdateSelectFolderKey, "/dest"}});
        BLCommon::sharedCtrl()->sendNotificationNow(nullptr, SC::SCNewFolderDidMakeNotification);
    });
    // The worker's "now" post waits for the main thread, so keep the loop running.
    EXPECT_TRUE(cwtest::waitFor([this] { return received.size() == 2; }));
    worker.join();
    cwtest::settle();
    ASSERT_EQ(received.size(), 2);
    EXPECT_NE(received[0].name, received[1].name);
    EXPECT_EQ(threads, QList<QThread*>(2, QCoreApplication::instance()->thread()));
}
