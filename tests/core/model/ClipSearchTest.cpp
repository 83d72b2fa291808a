#include "core/formats/metadata/BLNonMetaAcss.h"
#include "core/operations/search/BLClipSearchCtrl.h"
#include "core/operations/search/BLClipSearchThread.h"
#include "core/operations/search/IClipSearchView.h"
#include "core/services/BLCommon.h"
#include "core/services/BLLocalizedStrings.h"
#include "support/CardFolder.h"
#include "support/MessageRecorder.h"
#include "support/QtPrinters.h"
#include "support/TestEnvironment.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTimeZone>

#include <gtest/gtest.h>

#include <functional>

namespace {

// The search dialog: keeps what it is shown; runModal runs a script and then
// turns the event loop until the dialog is ended.
class FakeSearchView : public IClipSearchView
{
public:
    QString title, comment, place, message;
    int range = 0;
    QDate from, to;
    bool searching = false, cancelEnabled = false, pickersEnabled = true;
    QList<QVariantMap> rows;
    std::function<void(BLClipSearchCtrl*)> script;
    int endCode = -1;

    QString titleText() const override { return title; }
    QString commentText() const override { return comment; }
    int interval() const override { return range; }
    QDate dateFrom() const override { return from; }
    QDate dateTo() const override { return to; }
    void setTitleText(const QString& text) override { title = text; }
    void setCommentText(const QString& text) override { comment = text; }
    void setInterval(int value) override { range = value; }
    void setDates(const QDate& f, const QDate& t) override { from = f, to = t; }
    void setDatePickersEnabled(bool enabled) override { pickersEnabled = enabled; }
    void setPlace(const QString& text) override { place = text; }
    void setMessage(const QString& text) override { message = text; }
    void setSearching(bool value) override { searching = cancelEnabled = value; }
    void setCancelEnabled(bool enabled) override { cancelEnabled = enabled; }
    void clearRows() override { rows.clear(); }
    void addRow(int index, const QVariantMap& row) override
    {
        EXPECT_EQ(index, rows.size());
        rows.append(row);
    }
    int selectedRow() const override { return -1; }
    int runModal(BLClipSearchCtrl* ctrl) override
    {
        endCode = -1;
        if (script)
            script(ctrl);
        cwtest::waitFor([this] { return endCode >= 0; }, 20000);
        return endCode;
    }
    void endModal(int code) override { endCode = code; }
};

class ClipSearchTest : public cwtest::HomeTest
{
protected:
    // A card of single clips in root/relative.
    QString makeCard(const QString& relative, int clips, std::vector<cardgen::Damage> damages = {},
                     const QDateTime& recorded = {}, const QString& layout = "BPAV")
    {
        cardgen::Options options = cwtest::CardFolder::fast(clips);
        options.outputFolder = m_root.filePath(relative);
        options.damages = std::move(damages);
        options.recorded = recorded;
        options.layout = layout;
        options.prefix = QStringLiteral("C%1").arg(++m_cards, 2, 10, QLatin1Char('0'));
        QString error;
        EXPECT_TRUE(cardgen::CardGenerator::generate(options, &error)) << error.toStdString();
        return options.outputFolder;
    }

    // Sets the title, alias and description of a clip's metadata.
    void describe(const QString& folder, const QString& clip, const QString& usAscii, const QString& alias,
                  const QString& description = {})
    {
        BLNonMetaAcss meta;
        const QString path =
            QStringLiteral("%1/CLPR/%2/%2M01.XML").arg(BLCommon::getPathOfBPAV(folder), clip);
        ASSERT_TRUE(meta.loadForFilePath(path)) << path.toStdString();
        DOTitle title;
        title.setUsAscii(usAscii);
        DOAlias a;
        a.setLang(BLCommon::getSystemLanguage());
        a.setValue(alias);
        title.setAlias(a);
        ASSERT_TRUE(meta.setTitle(title));
        if (!description.isEmpty()) {
            ASSERT_TRUE(meta.setDescription(description));
        }
        ASSERT_TRUE(meta.save());
    }

    // Runs one search to its end; the rows' take folders and folder names.
    QStringList search(BLClipSearchCtrl& ctrl, const QString& title, const QString& comment = {},
                       int range = 0)
    {
        m_view.title = title;
        m_view.comment = comment;
        m_view.range = range;
        ctrl.onSearch();
        EXPECT_TRUE(m_view.searching);
        EXPECT_TRUE(cwtest::waitFor([&] { return !ctrl.isSearching(); }, 20000));
        QStringList found;
        for (const QVariantMap& row : m_view.rows)
            found << QDir(m_root.path()).relativeFilePath(row["path"].toString()) + ":" +
                         row["takeId"].toString();
        found.sort();
        return found;
    }

    QTemporaryDir m_root;
    int m_cards = 0;
    FakeSearchView m_view;
    cwtest::MessageRecorder m_messages;
};

TEST_F(ClipSearchTest, FindsTakesByTitleCommentAndDateBelowTheStartFolderOnly)
{
    const QString a = makeCard("A", 4,
                               {cwtest::damage(cardgen::Damage::Kind::Loose, 3),
                                cwtest::damage(cardgen::Damage::Kind::Missing, 4, {"MP4", "PPN"})});
    describe(a, "C010001", "beach walk", "Strand", "a sunset comment");
    describe(a, "C010002", "Beach", "Beach");
    describe(a, "C010004", "beach", "beach"); // unusable: never found
    const QString c = makeCard("B/C", 1, {}, QDateTime::currentDateTimeUtc().addDays(-400));
    describe(c, "C020001", "", "on the beach");
    // A card in PRIVATE/ORX/BPAV is found once, not again in its PRIVATE/ORX.
    const QString d = makeCard("D", 1, {}, {}, "PRIVATE/ORX/BPAV");
    describe(d, "C030001", "beach", "");

    BLClipSearchCtrl ctrl(&m_view, {});
    ctrl.setPath(m_root.path());
    // US-ASCII title or alias, case-sensitive; the damaged and the loose take never.
    EXPECT_EQ(search(ctrl, "  beach "), (QStringList{"A:C010001", "B/C:C020001", "D:C030001"}));
    EXPECT_EQ(m_view.message, "");
    EXPECT_EQ(search(ctrl, "Beach"), QStringList{"A:C010002"});
    EXPECT_EQ(search(ctrl, "", "sunset"), QStringList{"A:C010001"});
    // The last week leaves out the card recorded 400 days ago.
    EXPECT_EQ(search(ctrl, "beach", "", 1), (QStringList{"A:C010001", "D:C030001"}));
    EXPECT_EQ(search(ctrl, "nothing like it"), QStringList{});
    EXPECT_EQ(m_view.message, BLLocalizedString("MSG_637_3104"));

    // Below the start folder only.
    ctrl.setPath(QDir(m_root.path()).filePath("B"));
    EXPECT_EQ(search(ctrl, "beach"), QStringList{"B/C:C020001"});

    EXPECT_EQ(m_view.rows.value(0)["title"].toString(), "on the beach");
}

TEST_F(ClipSearchTest, DateRangesStartAtMidnightAndEndAtTheLastSecondInUtc)
{
    const struct
    {
        int interval;
        QDate today;
        QDate first;
        QDate last;
    } cases[] = {
        {1, {2023, 3, 3}, {2023, 2, 24}, {2023, 3, 3}},    {1, {2024, 3, 3}, {2024, 2, 25}, {2024, 3, 3}},
        {2, {2024, 1, 15}, {2023, 12, 15}, {2024, 1, 15}}, {3, {2024, 2, 29}, {2023, 2, 28}, {2024, 2, 29}},
        {4, {2024, 5, 5}, {2020, 1, 2}, {2021, 3, 4}},
    };
    for (const auto& c : cases) {
        QDateTime from, to;
        BLClipSearchCtrl::makeSearchDateFrom(c.interval, c.today, {2020, 1, 2}, {2021, 3, 4}, &from, &to);
        EXPECT_EQ(from, QDateTime(c.first, QTime(0, 0, 0), QTimeZone::utc())) << c.interval;
        EXPECT_EQ(to, QDateTime(c.last, QTime(23, 59, 59), QTimeZone::utc())) << c.interval;
    }
    QDateTime from = QDateTime::currentDateTime(), to = from;
    BLClipSearchCtrl::makeSearchDateFrom(0, {2024, 5, 5}, {}, {}, &from, &to); // any date
    EXPECT_FALSE(from.isValid() || to.isValid());
}

TEST_F(ClipSearchTest, AFolderOverTheLimitIsSkippedAndTheSearchGoesOnWithTheMessageAtTheEnd)
{
    const QString big = m_root.filePath("Big/BPAV/CLPR");
    for (int i = 0; i <= BLCommon::kFolderLimit; ++i)
        ASSERT_TRUE(QDir().mkpath(QStringLiteral("%1/X%2").arg(big).arg(i, 4, 10, QLatin1Char('0'))));
    const QString b = makeCard("Other", 1);
    describe(b, "C010001", "beach", "");

    BLClipSearchCtrl ctrl(&m_view, {});
    ctrl.setPath(m_root.path());
    EXPECT_EQ(search(ctrl, "beach"), QStringList{"Other:C010001"});
    EXPECT_EQ(m_view.message, BLLocalizedString("MSG_632_3236"));
}

TEST_F(ClipSearchTest, AFolderRemovedAfterTheDialogOpenedEndsItWithTheMessage)
{
    const QString a = makeCard("A", 1);
    BLClipSearchCtrl ctrl(&m_view, {});
    ctrl.setPath(a);
    m_view.script = [&](BLClipSearchCtrl* c) {
        ASSERT_TRUE(QDir(a).removeRecursively());
        c->onSearch();
    };
    QString umid, path;
    EXPECT_FALSE(ctrl.showModal(&umid, &path));
    EXPECT_EQ(m_view.endCode, BLClipSearchCtrl::kStopCodeClose);
    EXPECT_EQ(m_messages.keys(), QStringList{"MSG_632_3169"});
}

TEST_F(ClipSearchTest, CancelStopsWithoutAMessage)
{
    makeCard("A", 2);
    makeCard("B", 2);
    BLClipSearchCtrl ctrl(&m_view, {});
    ctrl.setPath(m_root.path());

    // Cancelled at once, during the first housekeeping pass or before it.
    m_view.title.clear();
    ctrl.onSearch();
    ctrl.onCancel();
    EXPECT_FALSE(m_view.cancelEnabled);
    EXPECT_TRUE(cwtest::waitFor([&] { return !ctrl.isSearching(); }));
    EXPECT_LT(m_view.rows.size(), 4);
    EXPECT_EQ(m_view.message, "");
}

} // namespace
