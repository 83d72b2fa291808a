#include "core/card/BLHouseKeepingCtrl.h"
#include "core/formats/metadata/BLNonMetaAcss.h"
#include "core/operations/BLClipPropertyCtrl.h"
#include "core/operations/IClipPropertyView.h"
#include "core/services/BLAtomicFile.h"
#include "core/services/BLCommon.h"
#include "core/services/SCNotificationNames.h"
#include "support/CardFolder.h"
#include "support/MessageRecorder.h"
#include "support/NotificationRecorder.h"
#include "support/TestEnvironment.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

#include <functional>

namespace {

// The dialog: keeps its fields; runModal types into them and presses OK.
class FakePropertyView : public IClipPropertyView
{
public:
    QString fields[FieldCount];
    std::function<void()> typing;
    QList<int> endCodes;
    int okPresses = 0;

    void setTitle(const QString&) override {}
    void setPicture(const QImage&) override {}
    void setField(Field field, const QString& text) override { fields[field] = text; }
    QString field(Field field) const override { return fields[field]; }
    int runModal(BLClipPropertyCtrl* ctrl) override
    {
        endCodes.clear();
        if (typing)
            typing();
        ctrl->OnOK();
        return endCodes.value(0, BLClipPropertyCtrl::kStopCodeCancel);
    }
    void endModal(int code) override { endCodes.append(code); }
};

class ClipPropertyTest : public cwtest::HomeTest
{
protected:
    void SetUp() override
    {
        HomeTest::SetUp();
        cardgen::Options options = cwtest::CardFolder::fast(1, {2});
        options.recorded = QDateTime(QDate(2020, 1, 2), QTime(10, 0));
        m_card = std::make_unique<cwtest::CardFolder>(options);
        ASSERT_TRUE(m_card->ok()) << m_card->error().toStdString();
        for (const DOTakeData& take : BLHouseKeepingCtrl().doHouseKeeping(folder()))
            if (!take.getSingleClipFlag())
                m_take = take;
        ASSERT_EQ(m_take.getClipData().size(), 2);
    }
    void TearDown() override
    {
        BLAtomicFile::setRenameHookForTesting(nullptr);
        HomeTest::TearDown();
    }

    QString folder() const { return m_card->workFolder(); }
    QString fileOf(const QString& reference) const
    {
        return BLCommon::makeFilePath(BLCommon::getPathOfBPAV(folder()), {reference});
    }
    QString takeFile() const { return fileOf(m_take.getXMLUri()); }
    QStringList clipFiles() const
    {
        QStringList files;
        for (const DOClipData& clip : m_take.getClipData())
            files << fileOf(clip.getXMLUri());
        return files;
    }
    static DOTitle titleOf(const QString& path)
    {
        BLNonMetaAcss meta;
        DOTitle title;
        EXPECT_TRUE(meta.loadForFilePath(path));
        meta.getTitle(title, BLCommon::getSystemLanguage());
        return title;
    }

    // Runs the dialog with typed texts (null: left as shown).
    bool edit(const QString& usAscii, const QString& alias = {}, const QString& description = {},
              const QString& creator = {})
    {
        m_view.typing = [&] {
            m_view.fields[IClipPropertyView::UsAscii] = usAscii;
            if (!alias.isNull())
                m_view.fields[IClipPropertyView::ValueAlias] = alias;
            if (!description.isNull())
                m_view.fields[IClipPropertyView::Description] = description;
            if (!creator.isNull())
                m_view.fields[IClipPropertyView::Creator] = creator;
        };
        return BLClipPropertyCtrl(&m_view, m_take, 3, folder(), nullptr).showModal();
    }

    std::unique_ptr<cwtest::CardFolder> m_card;
    DOTakeData m_take;
    FakePropertyView m_view;
    cwtest::NotificationRecorder m_changes{{SC::SCClipPropertyDidChangeNotification}};
    cwtest::MessageRecorder m_messages;
};

TEST_F(ClipPropertyTest, OkWithNothingEditedRewritesTheClipsButNotTheTakeAndTellsNobody)
{
    const QByteArray take = cwtest::readFile(takeFile());
    QList<QByteArray> clips;
    for (const QString& path : clipFiles())
        clips << cwtest::readFile(path);
    EXPECT_FALSE(edit(m_take.getUsAscii()));
    EXPECT_EQ(m_view.endCodes, QList<int>{BLClipPropertyCtrl::kStopCodeOK});
    EXPECT_EQ(cwtest::readFile(takeFile()), take);
    for (int i = 0; i < clips.size(); ++i)
        EXPECT_NE(cwtest::readFile(clipFiles()[i]), clips[i]) << i;
    EXPECT_TRUE(m_changes.notes.isEmpty());
    EXPECT_TRUE(m_messages.keys().isEmpty());
}

TEST_F(ClipPropertyTest, ChecksRefuseEachTextOverItsLimitAndKeepTheDialogOpen)
{
    const struct
    {
        QString usAscii, alias, description, creator;
        const char* refusal; // nullptr: accepted
    } cases[] = {
        {QString(64, 'a'), {}, {}, {}, "MSG_641_3106"},
        {QString(63, 'a'), {}, {}, {}, nullptr},
        {QStringLiteral("Caf\u00e9"), {}, {}, {}, "MSG_641_3105"},
        {QStringLiteral("t"), QStringLiteral("two\nlines"), {}, {}, "MSG_641_3116"},
        {QStringLiteral("t"), QString(64, QChar(0x00e9)), {}, {}, "MSG_641_3107"},
        {QStringLiteral("t"), {}, QString(2047, 'd'), {}, nullptr},
        {QStringLiteral("t"), {}, QString(2046, 'd') + QChar(0x00e9), {}, "MSG_641_3108"},
        {QStringLiteral("t"), {}, {}, QStringLiteral("me\r"), "MSG_641_3117"},
        {QStringLiteral("t"), {}, {}, QString(128, 'c'), "MSG_641_3109"},
    };
    for (const auto& c : cases) {
        m_messages.clear();
        const bool changed = edit(c.usAscii, c.alias, c.description, c.creator);
        SCOPED_TRACE(c.refusal ? c.refusal : "accepted");
        if (c.refusal) {
            EXPECT_FALSE(changed);
            EXPECT_EQ(m_messages.keys(), QStringList{c.refusal});
            EXPECT_TRUE(m_view.endCodes.isEmpty());
        } else {
            EXPECT_TRUE(changed);
            EXPECT_TRUE(m_messages.keys().isEmpty());
            EXPECT_EQ(titleOf(takeFile()).getUsAscii(), c.usAscii);
        }
    }
}

TEST_F(ClipPropertyTest, EditedTextsGoTrimmedIntoEveryFileKeepingForeignElements)
{
    const QByteArray foreign = "<x:Extra xmlns:x=\"urn:example:extra\" note=\"keep\"/>";
    const QStringList files = clipFiles() << takeFile();
    for (const QString& path : files) {
        QByteArray data = cwtest::readFile(path);
        const qsizetype end = data.lastIndexOf("</");
        ASSERT_GT(end, 0);
        data.insert(end, foreign);
        ASSERT_TRUE(cwtest::writeFile(path, data));
    }

    ASSERT_TRUE(edit(QStringLiteral("  Beach day "), QStringLiteral(" Strand "), QStringLiteral(" notes  "),
                     QStringLiteral(" Crew ")));
    for (const QString& path : files) {
        SCOPED_TRACE(path.toStdString());
        const DOTitle title = titleOf(path);
        EXPECT_EQ(title.getUsAscii(), "Beach day");
        EXPECT_EQ(title.getAlias().getValue(), "Strand");
        BLNonMetaAcss meta;
        DONonRealTimeMeta record;
        ASSERT_TRUE(meta.loadForFilePath(path));
        ASSERT_TRUE(meta.getNonMetaData(record, BLCommon::getSystemLanguage()));
        EXPECT_EQ(record.getDescription(), "notes");
        EXPECT_EQ(record.getCreator(), "Crew");
        EXPECT_TRUE(cwtest::readFile(path).contains("note=\"keep\""));
    }
    ASSERT_EQ(m_changes.notes.size(), 1);
    const DOTakeData changed = m_changes.notes[0].userInfo[SC::SCDidChangeTakeDataKey].value<DOTakeData>();
    EXPECT_EQ(changed.getUsAscii(), "Beach day");
    EXPECT_FALSE(changed.getLastUpDate().isEmpty());
    EXPECT_EQ(m_changes.notes[0].userInfo[SC::SCIndexTakeDataKey].toInt(), 3);
}

TEST_F(ClipPropertyTest, AFailedWriteLeavesTheTakeFileAndAVanishedFolderClosesTheDialog)
{
    const QByteArray take = cwtest::readFile(takeFile());
    BLAtomicFile::setRenameHookForTesting(
        [this](const QString&, const QString& to) { return to != takeFile(); });
    EXPECT_FALSE(edit(QStringLiteral("New title")));
    EXPECT_EQ(m_messages.keys(), QStringList{"MSG_631_3166"});
    EXPECT_EQ(cwtest::readFile(takeFile()), take);
    EXPECT_TRUE(m_changes.notes.isEmpty());
    BLAtomicFile::setRenameHookForTesting(nullptr);

    m_messages.clear();
    m_view.typing = [this] {
        m_view.fields[IClipPropertyView::UsAscii] = QStringLiteral("Other");
        ASSERT_TRUE(QDir(folder()).removeRecursively());
    };
    EXPECT_FALSE(BLClipPropertyCtrl(&m_view, m_take, 0, folder(), nullptr).showModal());
    EXPECT_EQ(m_messages.keys(), QStringList{"MSG_632_3169"});
}

} // namespace
