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

namespace {

// The dialog as a user answers it: the destination added and Start pressed;
// Cancel when that does not end it.
class StartingOffloadView : public IOffloadView
{
public:
    explicit StartingOffloadView(QString destination) : m_destination(std::move(destination)) {}
    void setSource(const QString&) override {}
    void setDestinations(const QStringList& l) override { lines = l; }
    int selectedDestination() const override { return -1; }
    void setAddEnabled(bool) override {}
    QString chooseFolder() override { return {}; }
    int runModal(BLOffloadCtrl* ctrl) override
    {
        ended = false;
        EXPECT_TRUE(ctrl->addDestination(m_destination));
        ctrl->onStart();
        endedByStart = ended;
        if (!ended)
            ctrl->onCancel();
        return code;
    }
    void endModal(int c) override
    {
        code = c;
        ended = true;
    }

    QStringList lines;
    int code = -1;
    bool ended = false, endedByStart = false;

private:
    QString m_destination;
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
    StartingOffloadView view(target);

    // A sparse file makes the card larger than the destination's free space:
    // the dialog stays for another choice.
    QFile big(card.workFolder() + "/BIG.BIN");
    ASSERT_TRUE(big.open(QIODevice::WriteOnly) &&
                big.resize(QStorageInfo(target).bytesAvailable() + (qint64(1) << 30)));
    big.close();
    EXPECT_FALSE(BLOffloadCtrl(&view, card.workFolder()).showModal());
    EXPECT_FALSE(view.endedByStart);
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
