// Combining folders: the candidates and the collision checks across sources,
// and a cancel putting every take back.
#include "OperationsTestSupport.h"
#include "core/card/BLHouseKeepingCtrl.h"
#include "core/operations/BLFolderCombineCtrl.h"
#include "core/operations/BLFolderCombineThread.h"

#include <QProcess>
#include <QTimeZone>

namespace {

// The record of a combine into the folder, with its takes.
DOClipCtrl destinationRecord(const QString& folder)
{
    DOClipCtrl record;
    record.setCopyToFolder(QFileInfo(folder).path());
    record.setCopyToFolderName(QFileInfo(folder).fileName());
    record.setToTakes(BLHouseKeepingCtrl().doHouseKeeping(folder));
    return record;
}

class FolderCombineTest : public optest::OperationTest
{
protected:
    // A card of its own clip names in the shared media folder.
    QString makeCard(const QString& name, const QString& prefix, int clips, std::vector<int> multi, int day,
                     bool looseFirst = false)
    {
        cardgen::Options options = cwtest::CardFolder::fast(clips, std::move(multi));
        if (looseFirst)
            options.damages.push_back(cwtest::damage(cardgen::Damage::Kind::Loose, 1));
        options.outputFolder = parent() + "/" + name;
        options.manifestPath = home().path(name + ".json");
        options.prefix = prefix;
        options.recorded = QDateTime(QDate(2026, 3, day), QTime(10, 0), QTimeZone::utc());
        QString error;
        EXPECT_TRUE(cardgen::CardGenerator::generate(options, &error)) << error.toStdString();
        return options.outputFolder;
    }

    QString parent() { return home().path("media"); }
};

} // namespace

// The candidates leave out the destination and BPAV; a clip the third of
// three sources shares with the first (by name and UMID) ends the combine
// before anything moves.
TEST_F(FolderCombineTest, ACollisionInAnySourceEndsTheCombineBeforeAnythingMoves)
{
    const QString destination = makeCard("DEST", "DST", 1, {}, 1);
    const QString first = makeCard("A", "AAA", 2, {}, 2);
    makeCard("C", "CCC", 2, {}, 3);
    ASSERT_EQ(QProcess::execute("cp", {"-a", first, parent() + "/B"}), 0);
    ASSERT_TRUE(QDir().mkpath(parent() + "/BPAV"));
    BLFolderCombineCtrl ctrl(nullptr, destinationRecord(destination));
    ctrl.preShowModal();
    QStringList names;
    for (const QVariantMap& row : ctrl.rows())
        names << row.value("realName").toString();
    EXPECT_EQ(names, QStringList({"A", "B", "C"}));
    const QMap<QString, QByteArray> before = optest::snapshot(parent());
    EXPECT_FALSE(ctrl.execFolderCombine({"A", "C", "B"}, true));
    EXPECT_EQ(messages.keys(), QStringList({"MSG_654_3175"}));
    EXPECT_EQ(optest::snapshot(parent()), before);
    EXPECT_EQ(ctrl.lastRun(), nullptr);
}

// A cancel in the second source puts every take of both back; a source
// keeping a loose MP4 file is never deleted.
TEST_F(FolderCombineTest, ACancelPutsEverythingBackAndAFolderKeepingTakesStays)
{
    const QString destination = makeCard("DEST", "DST", 1, {}, 1);
    makeCard("A", "AAA", 2, {2}, 2);
    makeCard("B", "BBB", 2, {}, 3, true);
    const QMap<QString, QByteArray> before = optest::snapshot(parent());
    BLFolderCombineCtrl ctrl(nullptr, destinationRecord(destination));
    DOClipCtrl record = destinationRecord(destination);
    QList<DOClipCtrl> records;
    for (const char* name : {"A", "B"}) {
        DOClipCtrl source = record;
        source.setCopyFromPath(parent());
        source.setCopyFromFolderName(name);
        source.setFromTakes(BLHouseKeepingCtrl().doHouseKeeping(parent() + "/" + name));
        source.setBeforeTakes(source.getFromTakes());
        records << source;
    }
    auto worker = std::make_shared<optest::Paced<BLFolderCombineThread>>(
        [](BLFolderCombineThread& thread, double done) {
            if (done >= 12)
                thread.setCancel();
        },
        records, &ctrl);
    BLProgressCtrl::sharedCtrl()->showProgress(worker, true);
    EXPECT_TRUE(worker->isRestored());
    EXPECT_EQ(optest::snapshot(parent()), before);
    // B's loose MP4 file keeps it from being deleted; A goes.
    ASSERT_TRUE(ctrl.execFolderCombine({"A", "B"}, true));
    EXPECT_EQ(ctrl.deletedFolders(), QStringList({parent() + "/A"}));
    EXPECT_EQ(BLHouseKeepingCtrl().doHouseKeeping(parent() + "/B").size(), 1);
    EXPECT_EQ(BLHouseKeepingCtrl().doHouseKeeping(destination).size(), 5);
}
