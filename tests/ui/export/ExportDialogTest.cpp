// The export dialog with its controller, on generated cards and the real
// conversion library.
#include "core/card/BLHouseKeepingCtrl.h"
#include "core/operations/export/BLMPEG2TSConvertCtrl.h"
#include "core/services/BLPlistCtrl.h"
#include "support/AsOrdinaryUser.h"
#include "support/CardFolder.h"
#include "support/MessageRecorder.h"
#include "support/TestEnvironment.h"
#include "support/UserInput.h"
#include "ui/export/MPEG2TSConvertDialog.h"

#include <QDir>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTimer>

#include <gtest/gtest.h>

namespace {

TEST(ExportFormulas, ProgressAndConvertParameters)
{
    const struct
    {
        int take, takes, percent, value;
    } bars[] = {{2, 2, 50, 75}, {1, 3, 100, 33}, {3, 3, 100, 99}, {1, 1, 100, 100}, {1, 2, 0, 0}};
    for (const auto& b : bars)
        EXPECT_EQ(BLMPEG2TSConvertCtrl::progressValue(b.take, b.takes, b.percent), b.value)
            << b.take << b.takes;

    const mpeg2ts_convert_params_t p =
        BLMPEG2TSConvertCtrl::makeConvertParams("2008-03-07T21:05:09-05:00", "X0011AABB", 1234, 1);
    const auto* bytes = reinterpret_cast<const uint8_t*>(&p);
    EXPECT_EQ(std::vector<uint8_t>(bytes, bytes + 14),
              (std::vector<uint8_t>{19, 7, 5, 3, 8, 21, 5, 9, 0, 0x00, 0x11, 0xAA, 0xBB, 1}));
    EXPECT_EQ(p.start_frames, 1234u);

    wchar_t wide[8];
    EXPECT_EQ(DOMPEG2TSConvert::toWChar("/t\xC3\xA9\xE6\x98\xA0", wide, 8), 4);
    EXPECT_EQ(std::wstring(wide), L"/t\u00E9\u6620");
    EXPECT_EQ(DOMPEG2TSConvert::toWChar("ab\xFF"
                                        "cd",
                                        wide, 8),
              2); // stops at an invalid byte
}

class ExportDialogTest : public cwtest::HomeTest
{
protected:
    void SetUp() override
    {
        HomeTest::SetUp();
        cardgen::Options options = cwtest::CardFolder::quick();
        options.clips = 1;
        options.multiClipTakes = {3};
        options.frames = 150;
        m_card = std::make_unique<cwtest::CardFolder>(options);
        ASSERT_TRUE(m_card->ok()) << m_card->error().toStdString();
        m_takes = BLHouseKeepingCtrl().doHouseKeeping(m_card->workFolder());
        ASSERT_EQ(m_takes.size(), 2);
        QFile::setPermissions(m_dest.path(), QFileDevice::Permissions(0x7777));
    }

    // Runs the dialog for the takes with the script started once it is up.
    void run(const QList<DOTakeData>& takes, const std::function<void()>& script)
    {
        cwtest::whenShown(&m_dialog, script);
        m_ctrl.showModal(m_card->workFolder(), takes);
    }
    // Calls then() once the dialog is ready for another Start.
    void whenReady(const std::function<void()>& then)
    {
        auto* timer = new QTimer(&m_dialog);
        QObject::connect(timer, &QTimer::timeout, [this, timer, then] {
            if (m_ctrl.isRunning() || !m_dialog.startButton()->isVisible())
                return;
            timer->deleteLater();
            then();
        });
        timer->start(5);
    }
    QStringList written() const { return QDir(m_dest.path()).entryList(QDir::Files); }

    std::unique_ptr<cwtest::CardFolder> m_card;
    QList<DOTakeData> m_takes;
    QTemporaryDir m_dest;
    cwtest::MessageRecorder m_messages;
    DOMPEG2TSConvert m_mpeg;
    MPEG2TSConvertDialog m_dialog;
    BLMPEG2TSConvertCtrl m_ctrl{m_mpeg, &m_dialog};
};

TEST_F(ExportDialogTest, ExportsEveryTakeAndCloses)
{
    run(m_takes, [this] {
        EXPECT_EQ(m_dialog.pathField()->text(), BLPlistCtrl::sharedCtrl()->getExportFolder());
        m_dialog.pathField()->setText(m_dest.path());
        m_dialog.startButton()->click();
        EXPECT_TRUE(m_dialog.cancelButton()->isVisible());
        EXPECT_FALSE(m_dialog.closeButton()->isEnabled());
    });
    EXPECT_TRUE(m_ctrl.isFinished());
    EXPECT_TRUE(m_messages.keys().isEmpty()) << m_messages.keys().join(' ').toStdString();
    QStringList expected;
    for (const DOTakeData& take : m_takes)
        expected << take.getShownTakeID() + ".M2T";
    expected.sort();
    EXPECT_EQ(written(), expected);
    EXPECT_EQ(BLPlistCtrl::sharedCtrl()->getExportFolder(), m_dest.path());

    // One take: the field names the file, which may be renamed.
    run({m_takes.front()}, [this] {
        EXPECT_EQ(m_dialog.pathField()->text(), m_dest.filePath(m_takes.front().getShownTakeID() + ".M2T"));
        m_dialog.pathField()->setText(m_dest.filePath("renamed.M2T"));
        m_dialog.startButton()->click();
    });
    EXPECT_TRUE(QFile::exists(m_dest.filePath("renamed.M2T")));
}

TEST_F(ExportDialogTest, RefusedDestinationsWriteNothing)
{
    const QString locked = m_dest.filePath("locked");
    QDir().mkdir(locked);
    QFile::setPermissions(locked, QFileDevice::ReadOwner | QFileDevice::ExeOwner | QFileDevice::ReadOther |
                                      QFileDevice::ExeOther);
    const struct
    {
        int takes;
        QString path;
        QString key;
    } cases[] = {
        {1, "", "MSG_6510_3226"},
        {2, "", "MSG_6510_3225"},
        {2, m_dest.filePath("missing/folder"), "MSG_6510_3210"},
        {2, m_dest.filePath("bad:name/folder"), "MSG_648_3160"},
        {1, locked + "/take.M2T", "MSG_6510_3221"},
    };
    for (const auto& c : cases) {
        m_messages.clear();
        run(m_takes.mid(0, c.takes), [&] {
            {
                cwtest::AsOrdinaryUser nobody;
                m_dialog.pathField()->setText(c.path);
                m_dialog.startButton()->click();
            }
            EXPECT_FALSE(m_ctrl.isRunning());
            if (m_ctrl.isRunning())
                m_dialog.cancelButton()->click();
            whenReady([this] { m_dialog.closeButton()->click(); });
        });
        EXPECT_EQ(m_messages.keys(), QStringList{c.key}) << c.path.toStdString();
    }
    EXPECT_EQ(written(), QStringList());
    EXPECT_TRUE(QDir(locked).isEmpty());
}

TEST_F(ExportDialogTest, CancelLeavesNoFileAndTheDialogReady)
{
    // A take long enough (200 s of sound to encode) to be cancelled at its first per cent.
    cardgen::Options options = cwtest::CardFolder::fast(1);
    options.frames = 6000;
    const cwtest::CardFolder card(options);
    ASSERT_TRUE(card.ok());
    const QList<DOTakeData> takes = BLHouseKeepingCtrl().doHouseKeeping(card.workFolder());
    bool cancelled = false;
    QObject::connect(m_dialog.progressBar(), &QProgressBar::valueChanged, [&](int value) {
        if (value > 0 && !cancelled) {
            cancelled = true;
            m_dialog.cancelButton()->click();
        }
    });
    cwtest::whenShown(&m_dialog, [&] {
        m_dialog.pathField()->setText(m_dest.filePath("take.M2T"));
        m_dialog.startButton()->click();
        whenReady([&] {
            EXPECT_TRUE(cancelled);
            EXPECT_FALSE(m_ctrl.isFinished());
            EXPECT_EQ(written(), QStringList());
            EXPECT_EQ(m_dialog.progressBar()->value(), 0);
            EXPECT_TRUE(m_dialog.startButton()->isEnabled() && m_dialog.closeButton()->isEnabled());
            m_dialog.closeButton()->click();
        });
    });
    m_ctrl.showModal(card.workFolder(), takes);
    EXPECT_TRUE(m_messages.keys().isEmpty());
}

} // namespace
