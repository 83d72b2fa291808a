// Importing MP4 files into a work folder: the clips made, the checks of Add
// and OK, the re-import of a loose file, and what a cancel leaves.
#include "OperationsTestSupport.h"
#include "core/app/preview/BLCacheImageCtrl.h"
#include "core/card/BLHouseKeepingCtrl.h"
#include "core/operations/import/BLMP4ImportCtrl.h"
#include "core/operations/import/BLMP4ImportThread.h"
#include "core/services/BLCommon.h"
#include "support/FakeVolumeProvider.h"
#include "support/ForeignMp4.h"
#include "support/FrameCounter.h"
#include "support/NotificationRecorder.h"

#include <QImage>

namespace {

const QDateTime kImportTime(QDate(2026, 1, 16), QTime(9, 30, 15), Qt::UTC);

// The thumbnail the cache delivers for a take of a folder.
QImage thumbnail(const QString& folder, const DOTakeData& take)
{
    QImage image;
    SCNotificationCenter::defaultCenter()->addObserver(
        &image, SC::SCCacheImageDidGetNotification, [&](const SCNotification& n) {
            if (n.userInfo.value(SC::SCCacheGUmidKey).toString() == take.getUmid())
                image = n.userInfo.value(SC::SCCacheGImageKey).value<QImage>();
        });
    BLCommon::sharedCtrl()->sendNotificationNow(nullptr, SC::SCCacheImageRequestNotification,
                                                {{SC::SCCacheRMediaInfoKey, 0},
                                                 {SC::SCCacheRSelectFolderKey, folder},
                                                 {SC::SCCacheRTakeDataKey, QVariant::fromValue(take)}});
    cwtest::waitFor([&] { return !image.isNull(); });
    SCNotificationCenter::defaultCenter()->removeObserver(&image);
    return image;
}

// The import dialog as a user answers it: OK at once.
class OkImportView : public IMP4ImportView
{
public:
    void setDestination(const QString&) override {}
    void setFileNames(const QStringList&) override {}
    int selectedRow() const override { return -1; }
    QString pathText() const override { return {}; }
    void setPathText(const QString&) override {}
    void setAddEnabled(bool) override {}
    void setDeleteEnabled(bool) override {}
    void setOKEnabled(bool) override {}
    QStringList chooseFiles() override { return {}; }
    int runModal(IMP4ImportCtrl* ctrl) override
    {
        ctrl->onOK();
        return m_code;
    }
    void endModal(int code) override { m_code = code; }

private:
    int m_code = -1;
};

// An import whose worker calls the hook at each of its pauses (one after each file).
class PacedImportCtrl : public BLMP4ImportCtrl
{
public:
    using BLMP4ImportCtrl::BLMP4ImportCtrl;
    std::function<void(BLMP4ImportThread&)> step;

protected:
    std::shared_ptr<BLMP4ImportThread> createImportThread() override
    {
        struct Paced : BLMP4ImportThread
        {
            explicit Paced(PacedImportCtrl* ctrl) : BLMP4ImportThread(ctrl), m_ctrl(ctrl) {}
            void waitThread() override { m_ctrl->step(*this); }
            PacedImportCtrl* m_ctrl;
        };
        return std::make_shared<Paced>(this);
    }
};

class MP4ImportTest : public optest::OperationTest
{
protected:
    void SetUp() override
    {
        OperationTest::SetUp();
        destination = home().path("media/Dest");
        ASSERT_TRUE(QDir().mkpath(destination));
    }
    bool import(BLMP4ImportCtrl& ctrl, const QStringList& files)
    {
        ctrl.setClock([] { return kImportTime; });
        const bool imported = ctrl.addFiles(files) && ctrl.execImport();
        cwtest::settle();
        return imported;
    }
    bool import(const QString& folder, const QStringList& files)
    {
        BLMP4ImportCtrl ctrl(nullptr, DOMP4Import(folder), nullptr);
        return import(ctrl, files);
    }
    QStringList clipFolders(const QString& folder) const
    {
        return QDir(BLCommon::getPathOfBPAV(folder) + "/CLPR").entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    }

    cwtest::NotificationRecorder additions{{SC::SCTakeDidAddNotification}};
    QString destination;
};

} // namespace

TEST_F(MP4ImportTest, FilesBecomeClipsNamedByTheImportTimeThatLoadWithThumbnails)
{
    cardgen::Options options = cwtest::CardFolder::quick();
    options.clips = 3;
    cwtest::CardFolder card(options);
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    const QList<DOTakeData> sources = BLHouseKeepingCtrl().doHouseKeeping(card.workFolder());
    QStringList files;
    for (const DOTakeData& take : sources)
        files << BLCommon::makeFilePath(card.bpav(), {take.getMP4Uri()});
    BLCacheImageCtrl cache;
    ASSERT_TRUE(import(destination, files)) << messages.keys().join(", ").toStdString();
    EXPECT_TRUE(messages.keys().isEmpty()) << messages.keys().join(", ").toStdString();
    EXPECT_EQ(clipFolders(destination),
              QStringList({"P20260116093015_01", "P20260116093015_02", "P20260116093015_03"}));
    ASSERT_EQ(additions.notes.size(), 1);
    EXPECT_EQ(additions.notes[0].userInfo.value(SC::SCAddSelectFolderKey), destination);
    // The folder loads with the three takes: their MP4 as it was, their
    // thumbnails the pictures of the sources.
    const QList<DOTakeData> takes = BLHouseKeepingCtrl().doHouseKeeping(destination);
    ASSERT_EQ(takes.size(), 3);
    for (const DOTakeData& take : takes) {
        const QString clip = take.getShownTakeID();
        const QString folder = BLCommon::getPathOfBPAV(destination) + "/CLPR/" + clip;
        const int n = clip.right(2).toInt();
        EXPECT_EQ(take.getTakeStatus(), 3) << clip.toStdString();
        EXPECT_EQ(cwtest::readFile(folder + "/" + clip + ".MP4"), cwtest::readFile(files.at(n - 1)))
            << clip.toStdString();
        const auto counter = cwtest::readFrameCounter(thumbnail(destination, take));
        ASSERT_TRUE(counter.has_value()) << clip.toStdString();
        EXPECT_EQ(counter, cwtest::readFrameCounter(thumbnail(card.workFolder(), sources.at(n - 1))));
    }
}

TEST_F(MP4ImportTest, TheChecksOfAddAndOfOKRefuseWithTheirMessages)
{
    const QString in = home().path("in");
    ASSERT_TRUE(QDir().mkpath(in));
    ASSERT_TRUE(cwtest::writeFile(in + "/clip.Mp4", "x"));
    ASSERT_TRUE(cwtest::writeFile(in + "/plain.MP4", "not an MP4 file"));
    ASSERT_TRUE(cwtest::writeForeignMp4((in + "/muxer.mp4").toStdString(), 12, 1));
    // Names of 257 and 256 characters: no file system here holds either, so
    // the shorter one passes the length test and is then not found.
    const struct
    {
        QString path;
        const char* key; // nullptr: accepted
    } cases[] = {
        {"", "MSG_648_3161"},
        {in + "/what?.MP4", "MSG_648_3160"},
        {in + "/" + QString(253, 'a') + ".MP4", "MSG_648_3159"},
        {in + "/" + QString(252, 'a') + ".MP4", "MSG_648_3188"},
        {in + "/clip.Mp4", "MSG_648_3162"},
        {in + "/plain.MP4", nullptr},
        {in + "//plain.MP4", "MSG_648_3163"},
    };
    BLMP4ImportCtrl ctrl(nullptr, DOMP4Import(destination), nullptr);
    for (const auto& c : cases) {
        messages.clear();
        EXPECT_EQ(ctrl.addFiles({c.path}), c.key == nullptr) << c.path.toStdString();
        EXPECT_EQ(messages.keys(), c.key ? QStringList{c.key} : QStringList()) << c.path.toStdString();
    }
    EXPECT_EQ(ctrl.getFileList(), QStringList{in + "/plain.MP4"});
    const auto refusal = [&](const QString& folder, const QStringList& files) {
        messages.clear();
        EXPECT_FALSE(import(folder, files));
        return messages.keys();
    };

    // The checker decides on OK: the muxer's file (not laid out as the camera
    // writes) is refused, and nothing is made.
    EXPECT_EQ(refusal(destination, {in + "/muxer.mp4"}), QStringList{"MSG_648_3124"});
    EXPECT_TRUE(QDir(destination).isEmpty());

    // 598 clip folders take 2 more files, not 3.
    cwtest::CardFolder card(cwtest::CardFolder::fast(3));
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    QStringList files;
    for (const QString clip : {"ABC0001", "ABC0002", "ABC0003"})
        files << card.bpav() + "/CLPR/" + clip + "/" + clip + ".MP4";
    for (int i = 0; i < 598; ++i)
        ASSERT_TRUE(QDir().mkpath(destination + QString("/BPAV/CLPR/E%1").arg(i, 4, 10, QChar('0'))));
    EXPECT_EQ(refusal(destination, files), QStringList{"MSG_632_3236"});
    EXPECT_EQ(clipFolders(destination).size(), 598);
    EXPECT_TRUE(import(destination, files.mid(0, 2))) << messages.keys().join(", ").toStdString();
    EXPECT_EQ(clipFolders(destination).size(), 600);

    // A file over the FAT32 limit (sparse) to a FAT32 destination.
    const QString big = in + "/big.MP4";
    ASSERT_TRUE(cwtest::writeFile(big, ""));
    ASSERT_TRUE(QFile::resize(big, 4405067776));
    ASSERT_TRUE(QDir().mkpath(home().path("media/Other")));
    cwtest::FakeVolumeProvider volumes;
    volumes.addVolume({home().path("media"), "vfat", "CARD", 64'000'000'000, 60'000'000'000});
    EXPECT_EQ(refusal(home().path("media/Other"), {big}), QStringList{"MSG_648_3127"});
}

TEST_F(MP4ImportTest, ReimportingALooseFileOfTheDestinationMovesItAndKeepsItsUmid)
{
    cardgen::Options options = cwtest::CardFolder::fast(3);
    options.damages = {cwtest::damage(cardgen::Damage::Kind::Loose, 2)};
    cwtest::CardFolder card(options);
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    const QList<DOTakeData> takes = BLHouseKeepingCtrl().doHouseKeeping(card.workFolder());
    const auto loose =
        std::find_if(takes.begin(), takes.end(), [](const DOTakeData& t) { return t.getTakeStatus() == 4; });
    ASSERT_NE(loose, takes.end());
    const QString file = BLCommon::makeFilePath(card.bpav(), {loose->getMP4Uri()});
    const QByteArray bytes = cwtest::readFile(file);
    OkImportView view;
    BLMP4ImportCtrl ctrl(&view, DOMP4Import(card.workFolder()), nullptr);
    ctrl.setClock([] { return kImportTime; });
    ASSERT_TRUE(ctrl.showModal({loose->copyTake()})) << messages.keys().join(", ").toStdString();
    cwtest::settle();
    EXPECT_FALSE(QFileInfo::exists(file));
    EXPECT_EQ(cwtest::readFile(card.bpav() + "/CLPR/P20260116093015_01/P20260116093015_01.MP4"), bytes);
    EXPECT_EQ(updates, QStringList{card.workFolder()});
    const QList<DOTakeData> after = BLHouseKeepingCtrl().doHouseKeeping(card.workFolder());
    const auto imported = std::find_if(after.begin(), after.end(), [](const DOTakeData& t) {
        return t.getShownTakeID() == "P20260116093015_01";
    });
    ASSERT_NE(imported, after.end());
    EXPECT_EQ(imported->getUmid(), loose->getUmid());
    EXPECT_EQ(imported->getTakeStatus(), 3);
}

TEST_F(MP4ImportTest, ACancelLeavesTheFolderAsItWasAndTheMovedFileWhereItWas)
{
    cardgen::Options options = cwtest::CardFolder::fast(3);
    options.damages = {cwtest::damage(cardgen::Damage::Kind::Loose, 3)};
    cwtest::CardFolder card(options);
    cwtest::CardFolder other(cwtest::CardFolder::fast(2));
    ASSERT_TRUE(card.ok() && other.ok());
    BLHouseKeepingCtrl().doHouseKeeping(card.workFolder());
    const QMap<QString, QByteArray> before = optest::snapshot(card.workFolder());
    const QStringList files{card.bpav() + "/CLPR/ABC0003.MP4", other.bpav() + "/CLPR/ABC0001/ABC0001.MP4",
                            other.bpav() + "/CLPR/ABC0002/ABC0002.MP4"};
    ASSERT_TRUE(QFileInfo::exists(files.first()));
    // Cancelled after the first file (moved), the second and the last (copied).
    for (int cancelAt : {1, 2, 3}) {
        PacedImportCtrl ctrl(nullptr, DOMP4Import(card.workFolder()), nullptr);
        int pauses = 0;
        ctrl.step = [&](BLMP4ImportThread& worker) {
            if (++pauses == cancelAt)
                worker.setCancel();
        };
        EXPECT_FALSE(import(ctrl, files)) << cancelAt;
        EXPECT_TRUE(ctrl.isCancelled()) << cancelAt;
        EXPECT_EQ(optest::snapshot(card.workFolder()), before) << cancelAt;
    }
    // Into a folder without a card: the card folders the import made go too.
    PacedImportCtrl ctrl(nullptr, DOMP4Import(destination), nullptr);
    ctrl.step = [](BLMP4ImportThread& worker) { worker.setCancel(); };
    EXPECT_FALSE(import(ctrl, files.mid(1)));
    EXPECT_TRUE(QDir(destination).isEmpty());
    EXPECT_TRUE(messages.keys().isEmpty()) << messages.keys().join(", ").toStdString();
    EXPECT_TRUE(updates.isEmpty() && additions.notes.isEmpty());
}
