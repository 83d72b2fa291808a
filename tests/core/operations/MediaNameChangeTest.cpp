// The media-name dialog: confirming the name shown writes nothing but is still
// announced. The lengths accepted are checked by the media-name command's test.
#include "OperationsTestSupport.h"
#include "core/operations/BLMediaNameChangeCtrl.h"
#include "core/operations/IMediaNameChangeView.h"
#include "support/NotificationRecorder.h"

namespace {

// Answers OK with each name in turn until the controller ends the dialog.
class AnsweringView : public IMediaNameChangeView
{
public:
    explicit AnsweringView(QStringList answers) : m_answers(std::move(answers)) {}
    int runModal(BLMediaNameChangeCtrl* ctrl) override
    {
        for (const QString& answer : std::as_const(m_answers)) {
            m_answer = answer;
            ctrl->onOK();
            if (m_ended)
                break;
        }
        return m_code;
    }
    void endModal(int code) override
    {
        m_ended = true;
        m_code = code;
    }
    void setTitle(const QString&) override {}
    void setMediaName(const QString& name) override { shown = name; }
    QString mediaName() const override { return m_answer; }
    QString shown;

private:
    QStringList m_answers;
    QString m_answer;
    bool m_ended = false;
    int m_code = 0;
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
