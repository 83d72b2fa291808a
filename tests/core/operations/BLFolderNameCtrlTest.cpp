#include "core/operations/BLFolderNameCtrl.h"
#include "core/services/BLLogCtrl.h"
#include "core/services/BLCommon.h"
#include "core/services/BLLocalizedStrings.h"
#include "core/services/SCNotificationCenter.h"
#include "core/services/SCNotificationNames.h"
#include "core/operations/IFolderNameView.h"
#include "support/AsOrdinaryUser.h"
#include "support/FakeVolumeProvider.h"
#include "support/MessageRecorder.h"
#include "support/QtPrinters.h"
#include "support/TestEnvironment.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

namespace {

// The dialog as a user drives it: each name of the script is typed and OK
// pressed, until the controller ends the dialog; then Cancel.
class ScriptedFolderNameView : public IFolderNameView
{
public:
    explicit ScriptedFolderNameView(QStringList script = {}) : typed(std::move(script)) {}

    void setTitle(const QString& t) override { title = t; }
    void setMessage(const QString& m) override { message = m; }
    void setFolderPath(const QString& l) override { location = l; }
    void setInputFolderName(const QString& name) override { m_field = name; }
    QString inputFolderName() const override { return m_field; }

    int runModal(BLFolderNameCtrl* ctrl) override
    {
        initialName = m_field;
        m_ended = false;
        for (const QString& name : typed) {
            m_field = name;
            ++okPresses;
            ctrl->OnOK();
            if (m_ended)
                return m_code;
        }
        ctrl->OnCancel();
        return m_code;
    }
    void endModal(int code) override
    {
        m_ended = true;
        m_code = code;
    }

    QStringList typed;
    QString title, message, location, initialName;
    int okPresses = 0;

private:
    QString m_field;
    bool m_ended = false;
    int m_code = -1;
};

const QFile::Permissions kOpenDir = QFile::Permissions(0x7777);
const QFile::Permissions kReadOnlyDir = QFile::Permissions(0x5555);

} // namespace

class BLFolderNameCtrlTest : public cwtest::HomeTest
{
protected:
    void SetUp() override
    {
        HomeTest::SetUp();
        cwtest::writeSettings(home().configHome(), {{"LOG_FLAG", "ALL"}});
        root = home().path("media");
        ASSERT_TRUE(QDir().mkpath(root));
        // Open to the ordinary user of the permission tests, log included.
        QFile::setPermissions(home().home(), kOpenDir);
        QFile::setPermissions(root, kOpenDir);
        BLLogCtrl::debug(0, "test");
        QFile::setPermissions(home().stateHome() + "/Clipwright/Clipwright.log", QFile::Permissions(0x6666));
        for (const QString& name :
             {SC::SCNewFolderDidMakeNotification, SC::SCFolderNameDidChangeNotification})
            SCNotificationCenter::defaultCenter()->addObserver(
                this, name, [this](const SCNotification& n) { posted << n; });
    }
    void TearDown() override
    {
        SCNotificationCenter::defaultCenter()->removeObserver(this);
        HomeTest::TearDown();
    }

    QString makeFolder(const QString& name)
    {
        const QString path = root + '/' + name;
        EXPECT_TRUE(QDir().mkpath(path));
        QFile::setPermissions(path, kOpenDir);
        return path;
    }
    QStringList entries() const
    {
        return QDir(root).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    }
    // Log lines as "PPPP:message".
    QStringList logLines()
    {
        QFile file(home().stateHome() + "/Clipwright/Clipwright.log");
        if (!file.open(QIODevice::ReadOnly))
            return {};
        QStringList lines;
        for (const QString& line : QString::fromUtf8(file.readAll()).split("\r\n", Qt::SkipEmptyParts))
            lines << line.mid(20);
        return lines.mid(1); // without the line that opened the log
    }
    static void idle()
    {
        for (int i = 0; i < 3; ++i)
            QCoreApplication::processEvents();
    }

    QString root;
    cwtest::MessageRecorder messages;
    QList<SCNotification> posted;
};

static const QString kFail = "0651:[BLFolderNameCtrl checkFolderName]    Create or Edit Folder Name fail : ";

TEST_F(BLFolderNameCtrlTest, NewFolderIsMadeInTheParentWithItsNameTrimmed)
{
    ScriptedFolderNameView view({"  Shoot 1  "});
    BLFolderNameCtrl ctrl(&view);
    EXPECT_TRUE(ctrl.showNewFolder(root));

    EXPECT_EQ(view.title, BLLocalizedString("LOCALIZED_FOLDER_CREATE_TITLE"));
    EXPECT_EQ(view.message, BLLocalizedString("LOCALIZED_FOLDER_MESSAGE"));
    EXPECT_EQ(view.location, "media");
    EXPECT_EQ(view.initialName, "");
    EXPECT_EQ(entries(), QStringList({"Shoot 1"}));
    EXPECT_TRUE(QFileInfo(root + "/Shoot 1").isDir());
    EXPECT_EQ(ctrl.getNewFolderPath(), root + "/Shoot 1");
    EXPECT_TRUE(messages.alerts().isEmpty());

    EXPECT_TRUE(posted.isEmpty()); // posted when the program is next idle
    idle();
    ASSERT_EQ(posted.size(), 1);
    EXPECT_EQ(posted[0].name, SC::SCNewFolderDidMakeNotification);
    EXPECT_EQ(posted[0].userInfo, QVariantMap({{SC::SCParentPathKey, root}}));
}

TEST_F(BLFolderNameCtrlTest, NewFolderRefusalsKeepTheDialogOpenUntilANameFits)
{
    makeFolder("Existing");
    const QString name80(80, QChar(u'é'));
    QStringList script = {"", "   ", "bpav", " BPAV ", "existing", QString(81, 'x')};
    const QStringList refusedCharacters = {":", "\\", "\n", "\u00A5"};
    for (const QString& c : refusedCharacters)
        script << "Shoot" + c + "1";
    script << ".Shoot" << name80 << "never typed";
    ScriptedFolderNameView view(script);
    BLFolderNameCtrl ctrl(&view);
    EXPECT_TRUE(ctrl.showNewFolder(root));

    EXPECT_EQ(view.okPresses, script.size() - 1);
    QStringList keys = {"MSG_651_3129", "MSG_651_3129", "MSG_651_3132",
                        "MSG_651_3132", "MSG_651_3130", "MSG_651_3146"};
    for (qsizetype i = 0; i <= refusedCharacters.size(); ++i)
        keys << "MSG_651_3147";
    EXPECT_EQ(messages.keys(), keys);
    EXPECT_EQ(entries(), QStringList({"Existing", name80}));
    EXPECT_EQ(ctrl.getNewFolderPath(), root + '/' + name80);
    idle();
    ASSERT_EQ(posted.size(), 1);
}

TEST_F(BLFolderNameCtrlTest, CancelChangesNothing)
{
    ScriptedFolderNameView create;
    BLFolderNameCtrl ctrl(&create);
    EXPECT_FALSE(ctrl.showNewFolder(root));
    const QString shoot = makeFolder("Shoot");
    ScriptedFolderNameView rename;
    BLFolderNameCtrl renamer(&rename);
    EXPECT_FALSE(renamer.showRename(shoot, root));

    idle();
    EXPECT_EQ(entries(), QStringList({"Shoot"}));
    EXPECT_TRUE(posted.isEmpty());
    EXPECT_TRUE(messages.alerts().isEmpty());
}

TEST_F(BLFolderNameCtrlTest, RenameChangesTheCaseOnlyThroughATemporaryName)
{
    const QString shoot = makeFolder("Shoot");
    QFile marker(shoot + "/clip.txt");
    ASSERT_TRUE(marker.open(QIODevice::WriteOnly));
    marker.close();

    ScriptedFolderNameView view({"SHOOT"});
    BLFolderNameCtrl ctrl(&view);
    EXPECT_TRUE(ctrl.showRename(shoot, root));
    EXPECT_EQ(view.title, BLLocalizedString("LOCALIZED_FOLDER_CHANGE_TITLE"));
    EXPECT_EQ(view.location, "media");
    EXPECT_EQ(view.initialName, "Shoot");
    EXPECT_EQ(entries(), QStringList({"SHOOT"})); // no temporary name left behind
    EXPECT_TRUE(QFileInfo::exists(root + "/SHOOT/clip.txt"));
    EXPECT_EQ(ctrl.getNewFolderPath(), root + "/SHOOT");
    EXPECT_TRUE(messages.alerts().isEmpty());

    idle();
    ASSERT_EQ(posted.size(), 1);
    EXPECT_EQ(posted[0].name, SC::SCFolderNameDidChangeNotification);
    EXPECT_EQ(posted[0].userInfo, QVariantMap({{SC::SCSourcePathKey, shoot},
                                               {SC::SCDestinationPathKey, root + "/SHOOT"},
                                               {SC::SCParentPathKey, root}}));
}

TEST_F(BLFolderNameCtrlTest, RenameToTheSameNameDoesNothingAndToASiblingsNameIsRefused)
{
    const QString shoot = makeFolder("Shoot");
    makeFolder("Other");
    ScriptedFolderNameView same({"Shoot"});
    BLFolderNameCtrl ctrl(&same);
    EXPECT_FALSE(ctrl.showRename(shoot, root));
    EXPECT_TRUE(ctrl.getSameFlag());
    EXPECT_TRUE(messages.alerts().isEmpty());

    // The rename refusals use their own keys.
    ScriptedFolderNameView refused({"", "OTHER", "a|b", QString(81, 'y'), "Renamed"});
    BLFolderNameCtrl renamer(&refused);
    EXPECT_TRUE(renamer.showRename(shoot, shoot)); // the pane's work folder itself
    EXPECT_EQ(refused.location, "");
    EXPECT_EQ(messages.keys(), QStringList({"MSG_652_3132", "MSG_652_3133", "MSG_652_3149", "MSG_652_3148"}));
    EXPECT_EQ(entries(), QStringList({"Other", "Renamed"}));

    idle();
    ASSERT_EQ(posted.size(), 1);
    EXPECT_EQ(posted[0].userInfo.value(SC::SCDestinationPathKey), root + "/Renamed");
}

TEST_F(BLFolderNameCtrlTest, CaseOnlyRenameIsRefusedWhenASiblingHasThatSpelling)
{
    // A case-sensitive file system can hold both spellings; the other one is not replaced.
    const QString shoot = makeFolder("Shoot");
    makeFolder("SHOOT");
    ScriptedFolderNameView view({"SHOOT"});
    BLFolderNameCtrl ctrl(&view);
    EXPECT_FALSE(ctrl.showRename(shoot, root));
    EXPECT_EQ(messages.keys(), QStringList({"MSG_652_3133"}));
    EXPECT_EQ(entries(), QStringList({"SHOOT", "Shoot"}));
}

TEST_F(BLFolderNameCtrlTest, AFolderThatHasGoneEndsTheDialog)
{
    ScriptedFolderNameView create({"New", "never typed"});
    BLFolderNameCtrl ctrl(&create);
    EXPECT_FALSE(ctrl.showNewFolder(root + "/gone"));
    EXPECT_EQ(create.okPresses, 1);
    EXPECT_TRUE(ctrl.isFolderNotFound());

    ScriptedFolderNameView rename({"New"});
    BLFolderNameCtrl renamer(&rename);
    EXPECT_FALSE(renamer.showRename(root + "/gone", root));
    EXPECT_TRUE(renamer.isFolderNotFound());

    EXPECT_EQ(messages.keys(), QStringList({"MSG_632_3169", "MSG_632_3169"}));
    EXPECT_EQ(entries(), QStringList());
}

TEST_F(BLFolderNameCtrlTest, AParentThatCannotBeWrittenEndsTheDialog)
{
    const QString shoot = makeFolder("Shoot");
    const QString locked = makeFolder("Locked");
    const QString inner = makeFolder("Locked/Inner");
    QFile::setPermissions(locked, kReadOnlyDir);
    {
        cwtest::AsOrdinaryUser user;
        ScriptedFolderNameView create({"New", "never typed"});
        BLFolderNameCtrl ctrl(&create);
        EXPECT_FALSE(ctrl.showNewFolder(locked));
        EXPECT_EQ(create.okPresses, 1);

        ScriptedFolderNameView renameInner({"Renamed"}); // the folder is writable, its parent is not
        BLFolderNameCtrl renamer(&renameInner);
        EXPECT_FALSE(renamer.showRename(inner, root));
    }
    QFile::setPermissions(shoot, kReadOnlyDir);
    {
        cwtest::AsOrdinaryUser user;
        ScriptedFolderNameView renameShoot({"Renamed"});
        BLFolderNameCtrl renamer(&renameShoot);
        EXPECT_FALSE(renamer.showRename(shoot, root));
    }
    QFile::setPermissions(locked, kOpenDir);
    QFile::setPermissions(shoot, kOpenDir);

    EXPECT_EQ(messages.keys(), QStringList({"MSG_6510_3213", "MSG_6510_3212", "MSG_6510_3212"}));
    const QStringList log = logLines();
    EXPECT_EQ(log.count(kFail + "isWritable"), 2);
    EXPECT_EQ(log.count(kFail + "isDeletable"), 1);
    EXPECT_EQ(entries(), QStringList({"Locked", "Shoot"}));
    EXPECT_EQ(QDir(locked).entryList(QDir::Dirs | QDir::NoDotAndDotDot), QStringList({"Inner"}));
}

TEST_F(BLFolderNameCtrlTest, ADriveOfAnUnusableKindEndsTheDialog)
{
    cwtest::FakeVolumeProvider volumes;
    volumes.addVolume({root, "exfat", "CARD", 64'000'000'000, 32'000'000'000});
    ScriptedFolderNameView view({"New", "never typed"});
    BLFolderNameCtrl ctrl(&view);
    EXPECT_FALSE(ctrl.showNewFolder(root));
    EXPECT_EQ(view.location, "CARD"); // a volume shows its own name
    EXPECT_EQ(view.okPresses, 1);
    EXPECT_EQ(messages.keys(), QStringList({"MSG_651_3232"}));
    EXPECT_EQ(entries(), QStringList());
}

TEST_F(BLFolderNameCtrlTest, CopyAndMoveDestinationsAcceptAnExistingFolder)
{
    makeFolder("Dest");
    BLFolderNameCtrl rules;
    EXPECT_EQ(rules.checkFolderName("dest", root, BLFolderNameCtrl::kTypeCopy),
              BLFolderNameCtrl::kNameAccepted);
    EXPECT_TRUE(rules.getSameFlag());
    EXPECT_EQ(rules.checkFolderName("New", root, BLFolderNameCtrl::kTypeMove),
              BLFolderNameCtrl::kNameAccepted);
    EXPECT_FALSE(rules.getSameFlag());
    EXPECT_TRUE(messages.alerts().isEmpty());

    const int keepOpen = BLFolderNameCtrl::kNameRefusedKeepOpen;
    EXPECT_EQ(rules.checkFolderName("", root, BLFolderNameCtrl::kTypeCopy), keepOpen);
    EXPECT_EQ(rules.checkFolderName("", root, BLFolderNameCtrl::kTypeMove), keepOpen);
    EXPECT_EQ(rules.checkFolderName("a*b", root, BLFolderNameCtrl::kTypeCopy), keepOpen);
    EXPECT_EQ(rules.checkFolderName(QString(81, 'z'), root, BLFolderNameCtrl::kTypeMove), keepOpen);
    EXPECT_EQ(messages.keys(), QStringList({"MSG_642_3168", "MSG_644_3197", "MSG_651_3147", "MSG_651_3146"}));
    EXPECT_EQ(messages.alerts()[2].buttons.size(), 1);
    EXPECT_EQ(entries(), QStringList({"Dest"})); // checks make nothing
}
