// Deleting takes through the controller on a generated card, each deletion
// run as a pane would run it after the last one.
#include "OperationsTestSupport.h"
#include "core/card/BLHouseKeepingCtrl.h"
#include "core/operations/BLClipDeleteCtrl.h"

#include <QProcess>

using ClipDeleteTest = optest::OperationTest;

TEST_F(ClipDeleteTest, EveryTakeGoesWholeOrIsReportedAndTheMediaProfileListsTheRest)
{
    // Single clips ABC0001, ABC0002, ABC0004, a loose MP4 file ABC0003 and a
    // take ABC0005U01 of ABC0005 and ABC0006.
    cardgen::Options options = cwtest::CardFolder::fast(4, {2});
    options.damages = {cwtest::damage(cardgen::Damage::Kind::Loose, 3)};
    const cwtest::CardFolder card(options);
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    const QMap<QString, QByteArray> before = optest::snapshot(card.bpav());

    // Deletes the takes named from the folder as read now, answering the
    // question with the button given.
    QList<DOTakeData> takes;
    const auto remove = [&](const QStringList& ids, int answer = IMessagePresenter::kFirstButton) {
        takes = BLHouseKeepingCtrl().doHouseKeeping(card.workFolder());
        QList<DOTakeData> chosen;
        for (const QString& id : ids)
            std::copy_if(takes.begin(), takes.end(), std::back_inserter(chosen),
                         [&](const DOTakeData& take) { return take.getShownTakeID() == id; });
        DOClipCtrl clipCtrl;
        clipCtrl.setSourceWorkFolder(card.workFolder());
        clipCtrl.setFromTakes(chosen);
        clipCtrl.setBeforeTakes(takes);
        messages.clear();
        updates.clear();
        messages.setAnswer(answer);
        const bool deleted = BLClipDeleteCtrl(clipCtrl, nullptr).clipDelete();
        cwtest::settle(); // the notification is posted when idle
        return deleted;
    };
    // The entries of CLPR and TAKR that lost anything.
    const auto touched = [&] {
        const QMap<QString, QByteArray> now = optest::snapshot(card.bpav());
        QStringList entries;
        for (auto it = before.cbegin(); it != before.cend(); ++it)
            if (it.key().contains('/') && now.value(it.key()) != it.value())
                entries << it.key().section('/', 0, 1);
        entries.removeDuplicates();
        return entries;
    };
    // The takes read before the last deletion (but loose files) whose UMIDs
    // the media profile holds.
    const auto listed = [&] {
        QFile file(card.bpav() + "/MEDIAPRO.XML");
        const QString profile = file.open(QIODevice::ReadOnly) ? file.readAll() : QString();
        QStringList ids;
        for (const DOTakeData& take : takes)
            if (take.getTakeStatus() != 4 && profile.contains(take.getUmid()))
                ids << take.getShownTakeID();
        return ids;
    };

    EXPECT_FALSE(remove({"ABC0001", "ABC0005U01"}, IMessagePresenter::kSecondButton));
    EXPECT_EQ(messages.keys(), QStringList{"MSG_645_3123"});
    EXPECT_EQ(optest::snapshot(card.bpav()), before);
    EXPECT_TRUE(updates.isEmpty());

    EXPECT_TRUE(remove({"ABC0003"})); // a loose MP4 file: only the file
    EXPECT_EQ(touched(), QStringList{"CLPR/ABC0003.MP4"});
    EXPECT_EQ(listed(), QStringList({"ABC0001", "ABC0002", "ABC0004", "ABC0005U01"}));

    // Cancel pressed as the dialog comes up, before the worker's first removal:
    // that one was counted, the take's other paths went without progress, and
    // no other take went. The panes reload all the same.
    QMetaObject::invokeMethod(
        BLProgressCtrl::sharedCtrl(), [&] { progress.pressCancel(); }, Qt::QueuedConnection);
    EXPECT_FALSE(remove({"ABC0005U01", "ABC0001", "ABC0004"}));
    EXPECT_EQ(progress.value(), 1);
    EXPECT_EQ(touched(),
              QStringList({"CLPR/ABC0003.MP4", "CLPR/ABC0005", "CLPR/ABC0006", "TAKR/ABC0005U01"}));
    EXPECT_FALSE(QFileInfo::exists(card.bpav() + "/CLPR/ABC0005")); // its first path, removed last
    EXPECT_EQ(listed(), QStringList({"ABC0001", "ABC0002", "ABC0004"}));
    EXPECT_EQ(updates, QStringList{card.workFolder()});

    // A hidden file, which the checks do not look at, made immutable (not even
    // root may remove it) keeps ABC0001's folder; the next take goes.
    const QString held = card.bpav() + "/CLPR/ABC0001/.held";
    ASSERT_TRUE(cwtest::writeFile(held, "x"));
    if (QProcess::execute("chattr", {"+i", held}) != 0)
        GTEST_SKIP() << "no immutable flag here (needs root on a file system that has it)";
    const bool deleted = remove({"ABC0001", "ABC0004"});
    QProcess::execute("chattr", {"-i", held});
    EXPECT_FALSE(deleted);
    EXPECT_EQ(messages.keys(), QStringList({"MSG_645_3123", "MSG_631_3166"}));
    EXPECT_TRUE(touched().contains("CLPR/ABC0004"));
    EXPECT_TRUE(QFileInfo(card.bpav() + "/CLPR/ABC0001").isDir());
    EXPECT_EQ(listed(), QStringList{"ABC0002"});
}
