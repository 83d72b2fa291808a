// The media-name dialog: confirming the name shown writes nothing but is still
// announced. The lengths accepted are checked by the media-name command's test.
#include "OperationsTestSupport.h"
#include "core/operations/BLMediaNameChangeCtrl.h"
#include "core/operations/IMediaNameChangeView.h"
#include "support/NotificationRecorder.h"

namespace {

class AnsweringView : public optest::AnsweringDialog<IMediaNameChangeView, BLMediaNameChangeCtrl>
{
public:
    using AnsweringDialog::AnsweringDialog;
    void setTitle(const QString&) override {}
    void setMediaName(const QString& name) override { shown = name; }
    QString mediaName() const override { return answer(); }
    QString shown;
};

} // namespace

TEST(MediaNameChangeTest, AnUnchangedNameIsAnnouncedWithoutAWrite)
{
    const cwtest::ScopedHome home;
    const cwtest::MessageRecorder messages;
    const cwtest::NotificationRecorder announced({SC::SCMediaNameDidChangeNotification});
    cardgen::Options options = cwtest::CardFolder::fast(1);
    options.mediaName = "SHOOT";
    const cwtest::CardFolder card(options);
    ASSERT_TRUE(card.ok());
    const QMap<QString, QByteArray> before = optest::snapshot(card.bpav());
    // An empty name is refused where there was one; the name shown is confirmed.
    AnsweringView view({"", "SHOOT"});
    EXPECT_TRUE(BLMediaNameChangeCtrl(&view, nullptr).showModal(card.workFolder()));
    cwtest::settle();
    EXPECT_EQ(view.shown, "SHOOT");
    EXPECT_EQ(messages.keys(), QStringList({"MSG_6512_3196"}));
    EXPECT_EQ(optest::snapshot(card.bpav()), before);
    ASSERT_EQ(announced.notes.size(), 1);
    EXPECT_EQ(announced.notes[0].userInfo.value(SC::SCMediaNameKey).toString(), "SHOOT");
}
