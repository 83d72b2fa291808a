#include "core/operations/BLFolderNameCtrl.h"
#include "OperationsTestSupport.h"
#include "core/operations/IFolderNameView.h"
#include "core/services/BLCommon.h"
#include "support/AsOrdinaryUser.h"
#include "support/NotificationRecorder.h"

namespace {

// The dialog as a user drives it: each name of the script is typed and OK
// pressed, until the controller ends the dialog; then Cancel.
class ScriptedFolderNameView : public IFolderNameView
{
public:
    explicit ScriptedFolderNameView(QStringList script = {}) : typed(std::move(script)) {}

    void setTitle(const QString&) override {}
    void setMessage(const QString&) override {}
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
    QString location, initialName;
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
        root = home().path("media");
        ASSERT_TRUE(QDir().mkpath(root));
        // Open to the ordinary user of the permission tests.
        optest::openTree(root);
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

    QString root;
    cwtest::MessageRecorder messages;
    cwtest::NotificationRecorder recorder{
        {SC::SCNewFolderDidMakeNotification, SC::SCFolderNameDidChangeNotification}};
    QList<SCNotification>& posted = recorder.notes;
};

// Each refused name keeps the dialog open with its message; the name that
// fits is made in the parent, trimmed, and announced when the program is idle.
TEST_F(BLFolderNameCtrlTest, NewFolderRefusalsKeepTheDialogOpenUntilANameFits)
{
    makeFolder("Existing");
    const QString name80(80, QChar(u'é'));
    const QStringList script = {
        "", "bpav", "existing", QString(81, 'x'), "Shoot:1", "  " + name80 + "  ", "never typed"};
    ScriptedFolderNameView view(script);
    BLFolderNameCtrl ctrl(&view);
    EXPECT_TRUE(ctrl.showNewFolder(root));
    EXPECT_EQ(view.location, "media");
    EXPECT_EQ(view.okPresses, script.size() - 1);
    EXPECT_EQ(messages.keys(),
              QStringList({"MSG_651_3129", "MSG_651_3132", "MSG_651_3130", "MSG_651_3146", "MSG_651_3147"}));
    EXPECT_EQ(entries(), QStringList({"Existing", name80}));
    EXPECT_EQ(ctrl.getNewFolderPath(), root + '/' + name80);
    EXPECT_TRUE(posted.isEmpty());
    cwtest::settle();
    ASSERT_EQ(posted.size(), 1);
    EXPECT_EQ(posted[0].name, SC::SCNewFolderDidMakeNotification);
    EXPECT_EQ(posted[0].userInfo, QVariantMap({{SC::SCParentPathKey, root}}));
}

TEST_F(BLFolderNameCtrlTest, RenameChangesTheCaseThroughATemporaryNameAndRefusesWhatIsTaken)
{
    const QString shoot = makeFolder("Shoot");
    ASSERT_TRUE(cwtest::writeFile(shoot + "/clip.txt", "x"));

    // Cancel, or the same name: nothing happens.
    for (const QStringList& typed : {QStringList(), QStringList{"Shoot"}}) {
        ScriptedFolderNameView view(typed);
        BLFolderNameCtrl ctrl(&view);
        EXPECT_FALSE(ctrl.showRename(shoot, root));
        EXPECT_EQ(view.initialName, "Shoot");
    }
    cwtest::settle();
    EXPECT_TRUE(posted.isEmpty());

    ScriptedFolderNameView view({"SHOOT"});
    BLFolderNameCtrl ctrl(&view);
    EXPECT_TRUE(ctrl.showRename(shoot, root));
    EXPECT_EQ(entries(), QStringList({"SHOOT"})); // no temporary name left behind
    EXPECT_TRUE(QFileInfo::exists(root + "/SHOOT/clip.txt"));
    cwtest::settle();
    ASSERT_EQ(posted.size(), 1);
    EXPECT_EQ(posted[0].name, SC::SCFolderNameDidChangeNotification);
    EXPECT_EQ(posted[0].userInfo, QVariantMap({{SC::SCSourcePathKey, shoot},
                                               {SC::SCDestinationPathKey, root + "/SHOOT"},
                                               {SC::SCParentPathKey, root}}));

    // A case-sensitive file system holds both spellings: the other one is not
    // replaced. The rename refusals use their own keys.
    makeFolder("Shoot");
    ScriptedFolderNameView caseOnly({"SHOOT"});
    EXPECT_FALSE(BLFolderNameCtrl(&caseOnly).showRename(shoot, root));
    ScriptedFolderNameView refused({"", "a|b", QString(81, 'y'), "Renamed"});
    EXPECT_TRUE(BLFolderNameCtrl(&refused).showRename(shoot, shoot)); // the pane's work folder itself
    EXPECT_EQ(refused.location, "");
    EXPECT_EQ(messages.keys(), QStringList({"MSG_652_3133", "MSG_652_3132", "MSG_652_3149", "MSG_652_3148"}));
    EXPECT_EQ(entries(), QStringList({"Renamed", "SHOOT"}));
}

// A folder that has gone ends the dialog at the first OK; so does a parent
// that cannot be written, for a new folder and for a rename.
TEST_F(BLFolderNameCtrlTest, AFolderThatHasGoneOrCannotBeWrittenEndsTheDialog)
{
    ScriptedFolderNameView gone({"New", "never typed"});
    BLFolderNameCtrl ctrl(&gone);
    EXPECT_FALSE(ctrl.showNewFolder(root + "/gone"));
    EXPECT_EQ(gone.okPresses, 1);
    EXPECT_TRUE(ctrl.isFolderNotFound());
    const QString locked = makeFolder("Locked");
    const QString inner = makeFolder("Locked/Inner");
    QFile::setPermissions(locked, kReadOnlyDir);
    {
        cwtest::AsOrdinaryUser user;
        ScriptedFolderNameView create({"New", "never typed"});
        EXPECT_FALSE(BLFolderNameCtrl(&create).showNewFolder(locked));
        EXPECT_EQ(create.okPresses, 1);
        ScriptedFolderNameView renameInner({"Renamed"}); // the folder is writable, its parent is not
        EXPECT_FALSE(BLFolderNameCtrl(&renameInner).showRename(inner, root));
    }
    QFile::setPermissions(locked, kOpenDir);
    EXPECT_EQ(messages.keys(), QStringList({"MSG_632_3169", "MSG_6510_3213", "MSG_6510_3212"}));
    EXPECT_EQ(entries(), QStringList({"Locked"}));
    EXPECT_EQ(QDir(locked).entryList(QDir::Dirs | QDir::NoDotAndDotDot), QStringList({"Inner"}));
}
