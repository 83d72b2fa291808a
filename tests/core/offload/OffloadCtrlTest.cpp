// File > Offload Card through its controller: the room check before anything
// is copied, and a run to one destination with its summary.
#include "core/operations/offload/BLOffloadCtrl.h"
#include "core/operations/offload/IOffloadView.h"
#include "support/CardFolder.h"
#include "support/MessageRecorder.h"
#include "support/TestEnvironment.h"

#include <QDir>
#include <QFile>
#include <QStorageInfo>

#include <gtest/gtest.h>

#include <functional>

namespace {

// The dialog: runs a script of the user's actions while "shown".
class FakeOffloadView : public IOffloadView
{
public:
    std::function<void(BLOffloadCtrl&)> script;
    QStringList lines;
    int code = -1;
    bool ended = false;

    void setSource(const QString&) override {}
    void setDestinations(const QStringList& l) override { lines = l; }
    int selectedDestination() const override { return -1; }
    void setAddEnabled(bool) override {}
    QString chooseFolder() override { return {}; }
    int runModal(BLOffloadCtrl* ctrl) override
    {
        ended = false;
        script(*ctrl);
        if (!ended)
            ctrl->onCancel();
        return code;
    }
    void endModal(int c) override
    {
        code = c;
        ended = true;
    }
};

using OffloadCtrlTest = cwtest::HomeTest;

TEST_F(OffloadCtrlTest, RefusesADestinationWithoutRoomThenOffloadsToOneVerified)
{
    cwtest::CardFolder card;
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    const QString target = home().path("media/A");
    ASSERT_TRUE(QDir().mkpath(target));
    const QString copy = target + '/' + BLOffloadCtrl::defaultName(card.workFolder());
    cwtest::MessageRecorder messages;
    FakeOffloadView view;
    bool endedByStart = false;
    view.script = [&](BLOffloadCtrl& ctrl) {
        ASSERT_TRUE(ctrl.addDestination(target));
        ctrl.onStart();
        endedByStart = view.ended;
    };

    // A sparse file makes the card larger than the destination's free space:
    // the dialog stays for another choice.
    QFile big(card.workFolder() + "/BIG.BIN");
    ASSERT_TRUE(big.open(QIODevice::WriteOnly) &&
                big.resize(QStorageInfo(target).bytesAvailable() + (qint64(1) << 30)));
    big.close();
    EXPECT_FALSE(BLOffloadCtrl(&view, card.workFolder()).showModal());
    EXPECT_FALSE(endedByStart);
    ASSERT_EQ(view.lines.size(), 1);
    EXPECT_TRUE(view.lines[0].startsWith(target)) << view.lines[0].toStdString();
    ASSERT_EQ(messages.alerts().size(), 1);
    EXPECT_TRUE(messages.alerts()[0].messageKey.contains("no room"))
        << messages.alerts()[0].messageKey.toStdString();
    EXPECT_FALSE(QFileInfo::exists(copy));

    ASSERT_TRUE(big.remove());
    messages.clear();
    EXPECT_TRUE(BLOffloadCtrl(&view, card.workFolder()).showModal());
    ASSERT_EQ(messages.alerts().size(), 1);
    EXPECT_TRUE(messages.alerts()[0].infoKey.startsWith(copy + ": "))
        << messages.alerts()[0].infoKey.toStdString();
    EXPECT_TRUE(messages.alerts()[0].infoKey.contains(" verified"));
    EXPECT_TRUE(BLOffloadCtrl::verifyFolder(copy));
}

} // namespace
