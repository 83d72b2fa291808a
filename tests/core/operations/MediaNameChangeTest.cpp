// The media-name dialog on a generated card: the name shown, the lengths
// accepted in UTF-8 bytes, and an unchanged name announced without a write.
#include "OperationsTestSupport.h"
#include "core/operations/BLMediaNameChangeCtrl.h"
#include "core/operations/IMediaNameChangeView.h"
#include "core/services/SCNotificationCenter.h"
#include "core/services/SCNotificationNames.h"
#include "support/CardFolder.h"
#include "support/MessageRecorder.h"
#include "support/TestEnvironment.h"

#include <QCoreApplication>
#include <QFile>

#include <gtest/gtest.h>

namespace {

// The dialog as a user answers it: OK with each name in turn until the
// controller ends it, then Cancel.
class AnsweringView : public optest::AnsweringDialog<IMediaNameChangeView, BLMediaNameChangeCtrl>
{
public:
    using AnsweringDialog::AnsweringDialog;
    void setTitle(const QString&) override {}
    void setMediaName(const QString& name) override { shown = name; }
    QString mediaName() const override { return answer(); }
    QString shown;
};

class MediaNameChangeTest : public cwtest::HomeTest
{
protected:
    void SetUp() override
    {
        HomeTest::SetUp();
        SCNotificationCenter::defaultCenter()->addObserver(
            this, SC::SCMediaNameDidChangeNotification, [this](const SCNotification& n) {
                announced << n.userInfo.value(SC::SCMediaNameKey).toString();
            });
    }
    void TearDown() override
    {
        SCNotificationCenter::defaultCenter()->removeObserver(this);
        HomeTest::TearDown();
    }
    void settle()
    {
        for (int i = 0; i < 5; ++i)
            QCoreApplication::processEvents();
    }

    cwtest::MessageRecorder messages;
    QStringList announced;
};

} // namespace

// 63 bytes and 21 three-byte characters are refused with the dialog kept
// open; 62 bytes are written and read back.
TEST_F(MediaNameChangeTest, NamesOfUpTo62BytesAreWritten)
{
    cardgen::Options options = cwtest::CardFolder::fast(1);
    options.mediaName = "SHOOT";
    const cwtest::CardFolder card(options);
    ASSERT_TRUE(card.ok());
    const QString name62(62, 'n');
    AnsweringView view({QString(63, 'n'), QString(21, QChar(0x3042)), "bad/name", name62});
    BLMediaNameChangeCtrl ctrl(&view, nullptr);
    ASSERT_TRUE(ctrl.showModal(card.workFolder()));
    settle();
    EXPECT_EQ(view.shown, "SHOOT");
    EXPECT_EQ(messages.keys(), QStringList({"MSG_6512_3227", "MSG_6512_3227", "MSG_648_3160"}));
    EXPECT_EQ(announced, QStringList({name62}));
    BLMediaNameChangeCtrl reader(nullptr, nullptr);
    ASSERT_TRUE(reader.preShowModal(card.workFolder()));
    EXPECT_EQ(reader.defaultName(), name62);
}

// Confirming the name shown writes nothing but still announces it; an
// empty name is refused where there was one and accepted where there was none.
TEST_F(MediaNameChangeTest, AnUnchangedNameIsAnnouncedWithoutAWrite)
{
    cardgen::Options options = cwtest::CardFolder::fast(1);
    options.mediaName = "SHOOT";
    const cwtest::CardFolder named(options);
    const cwtest::CardFolder unnamed(cwtest::CardFolder::fast(1));
    ASSERT_TRUE(named.ok() && unnamed.ok());
    const QMap<QString, QByteArray> before = optest::snapshot(named.bpav());

    AnsweringView same({"", "SHOOT"});
    ASSERT_TRUE(BLMediaNameChangeCtrl(&same, nullptr).showModal(named.workFolder()));
    settle();
    EXPECT_EQ(optest::snapshot(named.bpav()), before);
    EXPECT_EQ(messages.keys(), QStringList({"MSG_6512_3196"}));
    EXPECT_EQ(announced, QStringList({"SHOOT"}));

    AnsweringView cleared({""});
    EXPECT_TRUE(BLMediaNameChangeCtrl(&cleared, nullptr).showModal(unnamed.workFolder()));
    settle();
    EXPECT_EQ(messages.keys().size(), 1);
    EXPECT_EQ(announced, QStringList({"SHOOT", ""}));
}
