#include "core/operations/BLDeleteFolderCtrl.h"
#include "OperationsTestSupport.h"
#include "core/card/BLDiskCtrl.h"
#include "core/operations/IDeleteFolderView.h"
#include "core/services/BLLocalizedStrings.h"
#include "core/services/BLLogCtrl.h"
#include "support/AsOrdinaryUser.h"
#include "support/FakeVolumeProvider.h"
#include "support/NotificationRecorder.h"

namespace {

// The confirmation as the user answers it.
class AnsweringDeleteView : public IDeleteFolderView
{
public:
    explicit AnsweringDeleteView(bool yes) : answer(yes) {}
    bool confirmDelete(const QString& message, const QString& folderName) override
    {
        asked << message + " | " + folderName;
        return answer;
    }
    bool answer;
    QStringList asked;
};

// The progress dialog without a window, watching the bar.
class WatchingProgressView : public BLHeadlessProgressView
{
public:
    void setDeterminate(double value, double min, double max) override
    {
        BLHeadlessProgressView::setDeterminate(value, min, max);
        values << value;
        if (onProgress)
            onProgress(value);
    }
    QList<double> values;
    std::function<void(double)> onProgress;
};

// Every path under a folder, relative and sorted.
QStringList tree(const QString& folder)
{
    return optest::snapshot(folder).keys();
}

const QFile::Permissions kOpenDir = QFile::Permissions(0x7777);
const QFile::Permissions kOpenFile = QFile::Permissions(0x6666);
const QFile::Permissions kReadOnlyDir = QFile::Permissions(0x5555);

void writeFile(const QString& path)
{
    cwtest::writeFile(path, "x");
}

} // namespace

class BLDeleteFolderCtrlTest : public cwtest::HomeTest
{
protected:
    void SetUp() override
    {
        HomeTest::SetUp();
        cwtest::writeSettings(home().configHome(), {{"LOG_FLAG", "ALL"}});
        QFile::setPermissions(home().home(), kOpenDir);
        // The ordinary user of the permission tests writes the log too.
        BLLogCtrl::debug(0, "test");
        QFile::setPermissions(home().stateHome() + "/Clipwright/Clipwright.log", kOpenFile);
        BLProgressCtrl::sharedCtrl()->setView(&progress);
    }
    void TearDown() override
    {
        BLProgressCtrl::sharedCtrl()->setView(nullptr);
        HomeTest::TearDown();
    }

    // A work folder holding a card made by cardgen (its manifest removed).
    QString cardIn(const cwtest::CardFolder& card)
    {
        EXPECT_TRUE(card.ok()) << card.error().toStdString();
        QFile::remove(card.workFolder() + "/cardgen-manifest.json");
        optest::openTree(card.workFolder());
        return card.workFolder();
    }
    // The question for a folder holding a card of that many clip and take folders.
    static QString cardQuestion(const QString& folder, int entries)
    {
        return BLLocalizedString("MSG_655_3143")
                   .arg(entries)
                   .arg(BLCommon::sizeText(BLDiskCtrl::sharedCtrl()->getClipSize(folder))) +
               " | " + QFileInfo(folder).fileName();
    }

    WatchingProgressView progress;
    cwtest::MessageRecorder messages;
    cwtest::NotificationRecorder recorder{
        {SC::SCFolderDidDeleteNotification, SC::SCSelectFolderDataDidUpdateNotification}};
    QList<SCNotification>& posted = recorder.notes;
};

// A folder holding only its card (a desktop's leftovers do not count) and an
// empty folder: each is deleted under the progress dialog once the user says
// Yes, and announced at once.
TEST_F(BLDeleteFolderCtrlTest, AFolderHoldingOnlyACardOrNothingIsDeletedOnYes)
{
    cwtest::CardFolder card(cwtest::CardFolder::fast(3, {2}));
    const QString folder = cardIn(card);
    writeFile(folder + "/.DS_Store");
    const qsizetype items = tree(folder).size() + 1;
    const QString empty = home().path("media/Empty");
    ASSERT_TRUE(QDir().mkpath(empty));
    const QStringList questions{cardQuestion(folder, 3 + 2 + 1),
                                BLLocalizedString("MSG_655_3164") + " | Empty"};
    AnsweringDeleteView yes(true);
    for (const QString& path : {folder, empty}) {
        SCOPED_TRACE(path.toStdString());
        posted.clear();
        EXPECT_TRUE(BLDeleteFolderCtrl(&yes).deleteProcessOfFolder(path));
        EXPECT_FALSE(QFileInfo::exists(path));
        // Posted at once, before the program is idle again.
        ASSERT_EQ(posted.size(), 1);
        EXPECT_EQ(posted[0].name, SC::SCFolderDidDeleteNotification);
        EXPECT_EQ(posted[0].userInfo, QVariantMap({{SC::SCDeletePathKey, path}}));
        // The bar counts every item of the first card up to the last.
        if (path == folder) {
            ASSERT_FALSE(progress.values.isEmpty());
            EXPECT_EQ(progress.values.last(), items);
        }
    }
    EXPECT_EQ(yes.asked, questions);
    EXPECT_TRUE(messages.alerts().isEmpty());
}

// Refused before the question, one case per message: the folder stays.
TEST_F(BLDeleteFolderCtrlTest, FoldersHoldingMoreThanACardOrThatCannotGoAreRefused)
{
    cwtest::CardFolder card(cwtest::CardFolder::fast(1));
    const QString folder = cardIn(card);
    cwtest::FakeVolumeProvider volumes;
    AnsweringDeleteView view(true);
    BLDeleteFolderCtrl ctrl(&view);
    const auto refused = [&](const QString& path, const char* key, const QString& named = {}) {
        messages.clear();
        EXPECT_FALSE(ctrl.deleteProcessOfFolder(path)) << key;
        ASSERT_EQ(messages.keys(), QStringList{key});
        EXPECT_TRUE(messages.alerts()[0].message.contains(named));
        EXPECT_EQ(ctrl.isFolderNotFound(), QString(key) == "MSG_632_3169");
    };
    writeFile(folder + "/notes.txt");
    refused(folder, "MSG_655_3142");
    QFile::remove(folder + "/notes.txt");
    writeFile(folder + "/.git/config");
    refused(folder, "MSG_655_3301", "\".git\"");
    refused(home().path("media/gone"), "MSG_632_3169");
    QDir().mkpath(home().path("media/Card/BPAV"));
    volumes.addVolume({home().path("media"), "ntfs", "DISK", 64'000'000'000, 32'000'000'000});
    refused(home().path("media/Card"), "MSG_651_3232");
    EXPECT_TRUE(view.asked.isEmpty());
    EXPECT_TRUE(QFileInfo::exists(card.bpav() + "/MEDIAPRO.XML"));
    EXPECT_TRUE(QFileInfo::exists(folder + "/.git/config"));
    EXPECT_TRUE(posted.isEmpty());
}

// A locked hidden folder that only the full listing sees keeps everything. A
// file written while the deletion runs is not one of the items checked, so it
// stays with the folders holding it, while a desktop's leftovers go; panes
// showing the folder reload.
TEST_F(BLDeleteFolderCtrlTest, WhatCannotGoOrCameAfterTheCheckStays)
{
    cwtest::CardFolder card(cwtest::CardFolder::fast(2));
    const QString folder = cardIn(card);
    const QStringList before = tree(folder);
    AnsweringDeleteView view(true);
    BLDeleteFolderCtrl ctrl(&view);
    writeFile(folder + "/.Trashes/kept");
    QFile::setPermissions(folder + "/.Trashes/kept", kOpenFile);
    QFile::setPermissions(folder + "/.Trashes", kReadOnlyDir);
    {
        cwtest::AsOrdinaryUser user;
        EXPECT_FALSE(ctrl.deleteProcessOfFolder(folder));
    }
    QFile::setPermissions(folder + "/.Trashes", kOpenDir);
    EXPECT_EQ(messages.keys(), QStringList({"MSG_6510_3203"}));
    QStringList after = tree(folder);
    after.removeAll(".Trashes");
    after.removeAll(".Trashes/kept");
    EXPECT_EQ(after, before);
    EXPECT_TRUE(progress.values.isEmpty());

    messages.clear();
    ASSERT_TRUE(QDir(folder + "/.Trashes").removeRecursively());
    writeFile(folder + "/._BPAV");
    writeFile(card.bpav() + "/CLPR/.DS_Store");
    progress.onProgress = [&](double) {
        if (!QFileInfo::exists(card.bpav() + "/late.txt"))
            writeFile(card.bpav() + "/late.txt");
    };
    EXPECT_FALSE(ctrl.deleteProcessOfFolder(folder));
    EXPECT_EQ(messages.keys(), QStringList({"MSG_6510_3203"}));
    EXPECT_EQ(tree(folder), QStringList({"._BPAV", "BPAV", "BPAV/late.txt"}));
    cwtest::settle();
    ASSERT_EQ(posted.size(), 1);
    EXPECT_EQ(posted[0].name, SC::SCSelectFolderDataDidUpdateNotification);
}

// A cancelled deletion stops between whole clip and take folders: the folder
// stays with its index files, every clip folder left is complete, no deletion
// is announced, panes showing the folder are told to reload, and deleting it
// again finishes the job.
TEST_F(BLDeleteFolderCtrlTest, CancelLeavesTheFolderWithWholeClipsAndItsIndex)
{
    cwtest::CardFolder card(cwtest::CardFolder::fast(24, {3}));
    const QString folder = cardIn(card);
    const QString bpav = card.bpav();
    const QStringList before = tree(folder);
    progress.onProgress = [this](double) { progress.pressCancel(); };
    AnsweringDeleteView view(true);
    BLDeleteFolderCtrl ctrl(&view);
    EXPECT_FALSE(ctrl.deleteProcessOfFolder(folder));
    EXPECT_TRUE(messages.alerts().isEmpty());
    const QStringList after = tree(folder);
    EXPECT_LT(after.size(), before.size());
    EXPECT_TRUE(after.contains("BPAV/MEDIAPRO.XML") && after.contains("BPAV/CUEUP.XML"));
    // The take went first.
    EXPECT_TRUE(QDir(bpav + "/TAKR").entryList(QDir::AllEntries | QDir::NoDotAndDotDot).isEmpty());
    for (const cardgen::ManifestTake& take : card.manifest().takes)
        for (const cardgen::ManifestClip& clip : take.clips) {
            if (!QFileInfo::exists(folder + '/' + clip.folder))
                continue;
            for (const cardgen::ManifestFile& file : clip.files)
                EXPECT_TRUE(QFileInfo::exists(folder + '/' + file.path)) << file.path.toStdString();
        }
    ASSERT_TRUE(posted.isEmpty()); // nothing announced at once
    cwtest::settle();
    ASSERT_EQ(posted.size(), 1);
    EXPECT_EQ(posted[0].name, SC::SCSelectFolderDataDidUpdateNotification);
    EXPECT_EQ(posted[0].userInfo, QVariantMap({{SC::SCDUpdateSelectFolderKey, folder}}));
    progress.onProgress = nullptr;
    EXPECT_TRUE(ctrl.deleteProcessOfFolder(folder));
    EXPECT_FALSE(QFileInfo::exists(folder));
}
