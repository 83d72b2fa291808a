#include "core/card/BLTreeViewCtrl.h"
#include "core/card/DOTakeData.h"
#include "core/services/BLCommon.h"
#include "core/services/BLVolumeWatcher.h"
#include "core/services/SCNotificationCenter.h"
#include "core/services/SCNotificationNames.h"
#include "support/AsOrdinaryUser.h"
#include "support/CardFolder.h"
#include "support/FakeTreePane.h"
#include "support/FakeVolumeProvider.h"
#include "support/NotificationRecorder.h"
#include "support/TestEnvironment.h"

#include <QDir>
#include <QFile>
#include <QItemSelectionModel>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

void makeFolders(const QString& root, const QStringList& relatives)
{
    for (const QString& relative : relatives)
        ASSERT_TRUE(QDir().mkpath(QDir(root).filePath(relative))) << relative.toStdString();
}

QStringList displayNames(const BLTreeViewCtrl& tree)
{
    QStringList names;
    for (int row = 0; row < tree.rowCount(); ++row)
        names << tree.data(tree.index(row)).toString();
    return names;
}

void post(const QString& name, const QVariantMap& userInfo)
{
    BLCommon::sharedCtrl()->sendNotificationNow(nullptr, name, userInfo);
}

class TreeViewCtrlTest : public cwtest::HomeTest
{
protected:
    void SetUp() override
    {
        HomeTest::SetUp();
        ASSERT_TRUE(m_dir.isValid());
        m_work = m_dir.filePath("work");
        m_pane.workFolder = m_work;
        m_pane.attach(m_tree);
    }

    QString path(const QString& name) const { return QDir(m_work).filePath(name); }

    QTemporaryDir m_dir;
    QString m_work;
    cwtest::FakeTreePane m_pane;
    BLTreeViewCtrl m_tree{m_pane, &m_pane};
};

TEST_F(TreeViewCtrlTest, ThePrivateFolderOfACardIsShownOnlyWhenItHoldsSomethingElse)
{
    cardgen::Options options = cwtest::CardFolder::quick();
    options.layout = "PRIVATE/ORX/BPAV";
    cwtest::CardFolder card(options);
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    const QString root = card.workFolder();
    m_pane.workFolder = root;
    ASSERT_TRUE(cwtest::writeFile(root + "/notes.txt", "a file is no row"));
    // Each step adds folders; hidden ones do not count, and with a BPAV folder
    // at the top PRIVATE is an ordinary folder.
    const struct
    {
        QStringList add, remove, shown;
    } steps[] = {
        {{}, {}, {"card"}},
        {{"PRIVATE/.cache", "PRIVATE/ORX/.trash"}, {}, {"card"}},
        {{"PRIVATE/ORX/EXTRA"}, {}, {"card", "PRIVATE"}},
        {{"PRIVATE/AVCHD"}, {"PRIVATE/ORX/EXTRA"}, {"card", "PRIVATE"}},
        {{"BPAV"}, {"PRIVATE/AVCHD"}, {"card", "PRIVATE"}},
    };
    for (const auto& step : steps) {
        SCOPED_TRACE(step.add.join(',').toStdString());
        makeFolders(root, step.add);
        for (const QString& gone : step.remove)
            ASSERT_TRUE(QDir(root + "/" + gone).removeRecursively());
        m_tree.updateData(false);
        EXPECT_EQ(displayNames(m_tree), step.shown);
        EXPECT_EQ(m_tree.datas().at(0).getRelativePath(), "/");
        EXPECT_EQ(m_pane.selectFolder, root); // row 0 is handed to the pane
    }
}

TEST_F(TreeViewCtrlTest, ASelectionSurvivesARebuildAndAVanishedFolderIsReportedNotEntered)
{
    makeFolders(m_work, {"a", "b"});
    m_tree.updateData(false);
    m_tree.selectTreeIndex(-1);
    EXPECT_EQ(m_pane.selectFolder, "");

    // Only the own pane's change of work folder rebuilds; a rebuild that keeps
    // the selection finds the folder at its new row without handing it over again.
    m_tree.selectTreeIndex(2);
    makeFolders(m_work, {"a0"});
    const int handed = m_pane.selectionsHandedOver;
    auto workFolderChanged = [](const void* pane, bool keepSelection) {
        BLCommon::sharedCtrl()->sendNotificationNow(pane, SC::SCWorkFolderDidChangeNotification,
                                                    {{SC::SCKeepSelectKey, keepSelection}});
    };
    int otherPane = 0;
    workFolderChanged(&otherPane, true);
    EXPECT_EQ(m_tree.rowCount(), 3);
    workFolderChanged(&m_pane, true);
    EXPECT_EQ(m_tree.rowCount(), 4);
    EXPECT_EQ(m_tree.selectedRow(), 3);
    EXPECT_EQ(m_pane.selectionsHandedOver, handed);
    EXPECT_EQ(m_pane.selectFolder, path("b"));

    m_tree.selectTreeIndex(1);
    ASSERT_TRUE(QDir(path("a")).removeRecursively());
    m_tree.doubleClickSelecttion();
    EXPECT_EQ(m_pane.workFolder, m_work);
    EXPECT_EQ(m_pane.notFound, 1);

    workFolderChanged(&m_pane, false);
    EXPECT_EQ(m_tree.selectedRow(), 0);
    EXPECT_EQ(m_pane.selectFolder, m_work);
    // A missing work folder still shows its own row.
    m_pane.workFolder = path("gone");
    m_tree.updateData(false);
    EXPECT_EQ(displayNames(m_tree), QStringList{"gone"});
}

TEST_F(TreeViewCtrlTest, FolderOperationsOfOtherPartsUpdateTheList)
{
    makeFolders(m_work, {"a", "b", "c"});
    m_tree.updateData(false);
    m_tree.selectTreeIndex(1); // "a"
    auto renamed = [this](const QString& from, const QString& to) {
        ASSERT_TRUE(QDir().rename(path(from), path(to)));
        post(SC::SCFolderNameDidChangeNotification, {{SC::SCSourcePathKey, path(from)},
                                                     {SC::SCDestinationPathKey, path(to)},
                                                     {SC::SCParentPathKey, m_work}});
    };
    auto deleted = [this](const QString& name) {
        ASSERT_TRUE(QDir(path(name)).removeRecursively());
        post(SC::SCFolderDidDeleteNotification, {{SC::SCDeletePathKey, path(name)}});
    };

    // A folder made elsewhere appears after its notification for this
    // folder; the selection stays, and so it does when a sibling is renamed.
    makeFolders(m_work, {"0new", "elsewhere/x"});
    post(SC::SCNewFolderDidMakeNotification, {{SC::SCParentPathKey, path("elsewhere")}});
    EXPECT_EQ(m_tree.rowCount(), 4);
    post(SC::SCNewFolderDidMakeNotification, {{SC::SCParentPathKey, m_work}});
    EXPECT_EQ(displayNames(m_tree), (QStringList{"work", "0new", "a", "b", "c", "elsewhere"}));
    const int handed = m_pane.selectionsHandedOver;
    renamed("b", "0b");
    EXPECT_EQ(displayNames(m_tree), (QStringList{"work", "0b", "0new", "a", "c", "elsewhere"}));
    EXPECT_EQ(m_tree.selectedRow(), 3);
    EXPECT_EQ(m_pane.selectionsHandedOver, handed);

    // Renaming the selected folder: the pane follows it and so does the list.
    renamed("a", "z");
    EXPECT_EQ(m_pane.selectFolder, path("z"));
    EXPECT_EQ(m_tree.fullPathOfRow(m_tree.selectedRow()), path("z"));

    // Deleting a sibling keeps the selection; deleting the selected folder selects row 0.
    deleted("c");
    EXPECT_EQ(displayNames(m_tree), (QStringList{"work", "0b", "0new", "elsewhere", "z"}));
    EXPECT_EQ(m_pane.selectFolder, path("z"));
    deleted("z");
    EXPECT_EQ(m_tree.selectedRow(), 0);
    EXPECT_EQ(m_pane.selectFolder, m_work);

    // Deleting the work folder moves the pane up one level.
    m_pane.setWorkFolder(path("elsewhere"), true);
    ASSERT_EQ(displayNames(m_tree), (QStringList{"elsewhere", "x"}));
    deleted("elsewhere");
    EXPECT_EQ(m_pane.workFolder, m_work);
    EXPECT_EQ(displayNames(m_tree), (QStringList{"work", "0b", "0new"}));
}

class TreeViewCtrlVolumeTest : public TreeViewCtrlTest
{
protected:
    void SetUp() override
    {
        TreeViewCtrlTest::SetUp();
        m_cardA = m_dir.filePath("mnt/CARD_A");
        m_cardB = m_dir.filePath("mnt/CARD_B");
        makeFolders(m_dir.path(), {"mnt/CARD_A/BPAV", "mnt/CARD_A2", "mnt/CARD_B"});
        m_volumes.addVolume({m_cardB, "vfat", "Zeta", 0, 0});
        m_volumes.addVolume({m_cardA, "vfat", "Alpha", 0, 0});
        m_pane.workFolder.clear();
    }

    cwtest::FakeVolumeProvider m_volumes;
    QString m_cardA;
    QString m_cardB;
};

TEST_F(TreeViewCtrlVolumeTest, AnEmptyWorkFolderListsTheVolumesAsTheyAreMountedAndUnmounted)
{
    BLVolumeWatcher watcher;
    cwtest::NotificationRecorder notes(
        {SC::SCWorkspaceDidMountNotification, SC::SCWorkspaceDidUnmountNotification});
    m_tree.updateData(false);
    EXPECT_EQ(displayNames(m_tree), (QStringList{"System", "Alpha", "Zeta"}));
    EXPECT_EQ(m_tree.fullPathOfRow(1), m_cardA);
    EXPECT_EQ(m_pane.selectFolder, "/");
    EXPECT_EQ(m_tree.data(m_tree.index(1), BLTreeViewCtrl::ImageRole).toString(), "drive-removable-media");
    m_tree.selectTreeIndex(2); // Zeta
    const QString cardC = m_dir.filePath("mnt/CARD_C");
    makeFolders(m_dir.path(), {"mnt/CARD_C"});

    m_volumes.addVolume({cardC, "exfat", "Beta", 0, 0});
    watcher.checkVolumes();
    EXPECT_EQ(displayNames(m_tree), (QStringList{"System", "Alpha", "Beta", "Zeta"}));
    EXPECT_EQ(m_tree.selectedRow(), 3);
    EXPECT_EQ(m_pane.selectFolder, m_cardB);

    m_volumes.removeVolume(m_cardA);
    watcher.checkVolumes();
    EXPECT_EQ(displayNames(m_tree), (QStringList{"System", "Beta", "Zeta"}));
    EXPECT_EQ(m_pane.selectFolder, m_cardB);

    // The selected volume goes: the start-up disk is selected.
    m_volumes.removeVolume(m_cardB);
    watcher.checkVolumes();
    EXPECT_EQ(displayNames(m_tree), (QStringList{"System", "Beta"}));
    EXPECT_EQ(m_tree.selectedRow(), 0);
    EXPECT_EQ(m_pane.selectFolder, "/");

    watcher.checkVolumes(); // nothing changed: nothing posted
    QStringList posted;
    for (const SCNotification& n : notes.notes)
        posted << n.name + " " + n.userInfo.value(SC::NSDevicePath).toString();
    EXPECT_EQ(posted, (QStringList{"SCWorkspaceDidMountNotification " + cardC,
                                   "SCWorkspaceDidUnmountNotification " + m_cardA,
                                   "SCWorkspaceDidUnmountNotification " + m_cardB}));

    // Double-clicking a volume makes it the work folder.
    m_tree.selectTreeIndex(1);
    m_tree.doubleClickSelecttion();
    EXPECT_EQ(m_pane.workFolder, cardC);
    EXPECT_EQ(displayNames(m_tree), QStringList{"Beta"});
}

TEST_F(TreeViewCtrlVolumeTest, UnmountingTheCardOfTheWorkFolderShowsTheVolumeList)
{
    m_pane.setWorkFolder(m_dir.filePath("mnt/CARD_A2"), false);
    m_volumes.removeVolume(m_cardA);
    post(SC::SCWorkspaceDidUnmountNotification, {{SC::NSDevicePath, m_cardA}});
    EXPECT_EQ(m_pane.workFolder, m_dir.filePath("mnt/CARD_A2")); // another folder that only begins alike

    m_volumes.addVolume({m_cardA, "vfat", "Alpha", 0, 0});
    m_pane.setWorkFolder(m_cardA + "/BPAV", false);
    m_volumes.removeVolume(m_cardA);
    post(SC::SCWorkspaceDidUnmountNotification, {{SC::NSDevicePath, m_cardA}});
    EXPECT_EQ(m_pane.workFolder, "");
    EXPECT_EQ(displayNames(m_tree), (QStringList{"System", "Zeta"}));
    EXPECT_EQ(m_pane.selectFolder, "/");

    // A mount while a folder is shown leaves the list alone.
    m_pane.setWorkFolder(m_work, false);
    makeFolders(m_work, {"late"});
    post(SC::SCWorkspaceDidMountNotification, {{SC::NSDevicePath, m_cardA}});
    EXPECT_EQ(displayNames(m_tree), QStringList{"work"});
}

struct MenuState
{
    bool supported = false;
    bool enable = false;
    bool check = false;
};

MenuState menuState(const BLTreeViewCtrl& tree, int tag)
{
    MenuState state;
    state.supported = tree.isSupportMenuItem(tag, &state.enable, &state.check);
    return state;
}

// One character per command of the list's menu, in menu order, '1' when
// enabled: new, rename, delete, open, search, copy all, divide, combine,
// media name, verify, change work folder, up, offload.
std::string enabledCommands(const BLTreeViewCtrl& tree)
{
    std::string states;
    for (const BLTreeViewCtrl::MenuItem& item : BLTreeViewCtrl::menuItems())
        if (item.title)
            states += menuState(tree, item.tag).enable ? '1' : '0';
    return states;
}

TEST_F(TreeViewCtrlVolumeTest, MenuCommandsAreEnabledAsTheFolderAllows)
{
    m_tree.updateData(false);
    m_tree.selectTreeIndex(1);
    EXPECT_EQ(enabledCommands(m_tree), "1001100100110") << "a volume, CARD_A beside CARD_A2 and CARD_B";

    cwtest::CardFolder card;
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    makeFolders(card.workFolder(), {"plain"});
    m_pane.setWorkFolder(card.workFolder(), false);
    ASSERT_EQ(displayNames(m_tree), (QStringList{"card", "plain"}));
    EXPECT_EQ(enabledCommands(m_tree), "1111100010111") << "the card folder, alone in its parent";
    makeFolders(card.workFolder(), {"ascmhl"});
    EXPECT_TRUE(menuState(m_tree, MENU_ITEM_ID_VERIFY_FOLDER).enable);
    ASSERT_TRUE(QDir(card.workFolder() + "/ascmhl").removeRecursively());

    m_tree.selectTreeIndex(1);
    EXPECT_EQ(enabledCommands(m_tree), "0111100000111") << "a plain folder beside BPAV only";
    makeFolders(card.workFolder(), {"second"});
    EXPECT_TRUE(menuState(m_tree, MENU_ITEM_ID_FOLDER_COMBINE).enable);
    {
        // An unreadable folder does not count.
        for (const QString& open : {QFileInfo(card.workFolder()).path(), card.workFolder()})
            ASSERT_TRUE(QFile::setPermissions(open, QFile::Permissions(0x7777)));
        ASSERT_TRUE(QFile::setPermissions(card.workFolder() + "/second", QFile::Permissions(0)));
        cwtest::AsOrdinaryUser user;
        EXPECT_FALSE(menuState(m_tree, MENU_ITEM_ID_FOLDER_COMBINE).enable);
    }
    ASSERT_TRUE(QFile::setPermissions(card.workFolder() + "/second", QFile::Permissions(0x7777)));

    // What the pane knows.
    m_pane.takes << DOTakeData();
    m_pane.allCopy = true;
    EXPECT_TRUE(menuState(m_tree, MENU_ITEM_ID_FOLDER_DIVISION).enable);
    EXPECT_TRUE(menuState(m_tree, MENU_ITEM_ID_ALL_COPY).enable);

    m_tree.selectTreeIndex(-1);
    for (const int tag : {MENU_ITEM_ID_CHANGE_FOLDER_NAME, MENU_ITEM_ID_NEW_FOLDER,
                          MENU_ITEM_ID_OPEN_IN_FINDER, MENU_ITEM_ID_DELETE, MENU_ITEM_ID_FOLDER_COMBINE,
                          MENU_ITEM_ID_CLIP_SEARCH, MENU_ITEM_ID_MEDIA_NAME_CHANGE})
        EXPECT_FALSE(menuState(m_tree, tag).enable) << tag;

    // A disabled or unknown command is not handed to the pane.
    for (const int tag : {MENU_ITEM_ID_DELETE, MENU_ITEM_ID_EXPORT, 44006})
        m_tree.selectMenuItem(tag);
    EXPECT_TRUE(m_pane.commands.isEmpty());

    // Thumbnail commands are the grid's to answer.
    const MenuState sortDate = menuState(m_tree, MENU_ITEM_ID_SORT_DATE);
    EXPECT_TRUE(sortDate.supported && sortDate.enable && sortDate.check);
    EXPECT_FALSE(menuState(m_tree, MENU_ITEM_ID_EXPORT).enable);
}

} // namespace
