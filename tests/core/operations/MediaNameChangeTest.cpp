// The media-name dialog on generated cards: the lengths accepted in UTF-8
// bytes, and an unchanged name announced without a write.
#include "OperationsTestSupport.h"
#include "core/operations/BLMediaNameChangeCtrl.h"
#include "core/operations/IMediaNameChangeView.h"

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

using MediaNameChangeTest = cwtest::HomeTest;

} // namespace

TEST_F(MediaNameChangeTest, NamesOfUpTo62BytesAreWrittenAndAnUnchangedOneIsOnlyAnnounced)
{
    cwtest::MessageRecorder messages;
    QStringList announced;
    SCNotificationCenter::defaultCenter()->addObserver(
        this, SC::SCMediaNameDidChangeNotification,
        [&](const SCNotification& n) { announced << n.userInfo.value(SC::SCMediaNameKey).toString(); });
    const auto change = [&](const QString& folder, const QStringList& answers) {
        AnsweringView view(answers);
        const bool changed = BLMediaNameChangeCtrl(&view, nullptr).showModal(folder);
        cwtest::settle();
        return std::pair(changed, view.shown);
    };
    cardgen::Options options = cwtest::CardFolder::fast(1);
    options.mediaName = "SHOOT";
    const cwtest::CardFolder named(options);
    const cwtest::CardFolder unnamed(cwtest::CardFolder::fast(1));
    ASSERT_TRUE(named.ok() && unnamed.ok());

    // Confirming the name shown writes nothing; an empty name is refused
    // where there was one.
    const QMap<QString, QByteArray> before = optest::snapshot(named.bpav());
    EXPECT_EQ(change(named.workFolder(), {"", "SHOOT"}), std::pair(true, QString("SHOOT")));
    EXPECT_EQ(optest::snapshot(named.bpav()), before);
    EXPECT_EQ(messages.keys(), QStringList({"MSG_6512_3196"}));
    EXPECT_EQ(announced, QStringList({"SHOOT"}));

    // 63 bytes and 21 three-byte characters are refused with the dialog kept
    // open; 62 bytes are written and read back.
    const QString name62(62, 'n');
    EXPECT_TRUE(
        change(named.workFolder(), {QString(63, 'n'), QString(21, QChar(0x3042)), "bad/name", name62}).first);
    EXPECT_EQ(messages.keys(),
              QStringList({"MSG_6512_3196", "MSG_6512_3227", "MSG_6512_3227", "MSG_648_3160"}));
    BLMediaNameChangeCtrl reader(nullptr, nullptr);
    ASSERT_TRUE(reader.preShowModal(named.workFolder()));
    EXPECT_EQ(reader.defaultName(), name62);

    // An empty name is accepted where there was none.
    EXPECT_TRUE(change(unnamed.workFolder(), {""}).first);
    EXPECT_EQ(messages.keys().size(), 4);
    EXPECT_EQ(announced, QStringList({"SHOOT", name62, ""}));
    SCNotificationCenter::defaultCenter()->removeObserver(this);
}
