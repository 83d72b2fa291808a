// Copying takes between work folders on generated cards: what arrives, what
// the checks of OK refuse, and what a cancel leaves (nothing), with the
// progress the dialog shows. A write failure is checked by the copy command's test.
#include "OperationsTestSupport.h"
#include "core/card/BLCardPath.h"
#include "core/card/BLHouseKeepingCtrl.h"
#include "core/formats/metadata/BLMediaProfileAcss.h"
#include "core/operations/BLClipCopyCtrl.h"
#include "core/services/BLCommon.h"

#include <QTimer>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

class WatchingProgressView : public BLHeadlessProgressView
{
public:
    void setDeterminate(double value, double min, double max) override
    {
        BLHeadlessProgressView::setDeterminate(value, min, max);
        values << value;
        maxima << max;
    }
    QList<double> values, maxima;
};

// Every entry under a folder with its size, time stamp and contents.
QMap<QString, QByteArray> footprint(const QString& root)
{
    QMap<QString, QByteArray> entries = optest::snapshot(root);
    for (auto it = entries.begin(); it != entries.end(); ++it) {
        const QFileInfo info(root + "/" + it.key());
        it.value() += " " + QByteArray::number(info.size()) + " " +
                      QByteArray::number(info.lastModified().toMSecsSinceEpoch());
    }
    return entries;
}

// Takes as "UMID status", sorted.
QStringList described(const QList<DOTakeData>& takes)
{
    QStringList lines;
    for (const DOTakeData& take : takes)
        lines << take.getUmid() + " " + QString::number(take.getTakeStatus());
    lines.sort();
    return lines;
}

QList<DOTakeData> copyable(const QList<DOTakeData>& takes)
{
    QList<DOTakeData> chosen;
    for (const DOTakeData& take : takes)
        if (take.getTakeStatus() < 4)
            chosen << take.copyTake();
    return chosen;
}

} // namespace

class ClipCopyTest : public optest::OperationTest
{
protected:
    // The record of a copy of the source's takes (all, or those given) to a
    // folder proposed by name beside the source's parent's "media" folder.
    DOClipCtrl record(const QString& source, const QList<DOTakeData>& takes, const QString& destination)
    {
        DOClipCtrl clipCtrl;
        clipCtrl.setSourceWorkFolder(source);
        clipCtrl.setDestinationWorkFolder(destination);
        clipCtrl.setFromTakes(takes);
        return clipCtrl;
    }
    bool copy(const DOClipCtrl& clipCtrl, const QStringList& names)
    {
        optest::AnsweringTransferView view(names);
        BLClipCopyCtrl ctrl(&view, clipCtrl, nullptr, nullptr);
        const bool copied = ctrl.showModal(BLClipCopyCtrl::kModeSelection);
        cwtest::settle();
        return copied;
    }
};

TEST_F(ClipCopyTest, ACardCopiedIntoANewFolderArrivesWholeAndTheSourceIsUntouched)
{
    cardgen::Options options = cwtest::CardFolder::fast(3, {2});
    options.spanningClips = 2;
    options.size = "1440x1080";
    options.frames = 30;
    cwtest::CardFolder card(options);
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    const QList<DOTakeData> takes = BLHouseKeepingCtrl().doHouseKeeping(card.workFolder());
    const QMap<QString, QByteArray> before = footprint(card.workFolder());
    const QString destination = home().path("media/Copy");
    WatchingProgressView watching;
    BLProgressCtrl::sharedCtrl()->setView(&watching);
    ASSERT_TRUE(copy(record(card.workFolder(), copyable(takes), destination), {"Copy"}));
    EXPECT_TRUE(messages.keys().isEmpty()) << messages.keys().join(", ").toStdString();
    EXPECT_EQ(footprint(card.workFolder()), before);
    EXPECT_EQ(updates, QStringList{destination});
    // The same takes with the same statuses, every file as it was read.
    EXPECT_EQ(described(BLHouseKeepingCtrl().doHouseKeeping(destination)), described(copyable(takes)));
    const QMap<QString, QByteArray> source = optest::snapshot(card.bpav());
    const QMap<QString, QByteArray> copied = optest::snapshot(destination + "/BPAV");
    for (auto it = source.cbegin(); it != source.cend(); ++it) {
        if (it.key().startsWith("CLPR/") || it.key().startsWith("TAKR/")) {
            EXPECT_EQ(copied.value(it.key()), it.value()) << it.key().toStdString();
        }
    }
    // The bar's total is the takes' size in MiB, rounded down, and is never passed.
    qint64 bytes = 0;
    for (const DOTakeData& take : copyable(takes)) {
        bytes += BLCardPath::getFolderSize(take.getXMLUri(), card.workFolder());
        for (const DOClipData& clip : take.getClipData())
            bytes += BLCardPath::getFolderSize(clip.getXMLUri(), card.workFolder());
    }
    ASSERT_GE(bytes / 1048576, 2) << "a card of several MiB";
    EXPECT_TRUE(watching.maxima.contains(double(bytes / 1048576)));
    for (qsizetype i = 0; i < watching.values.size(); ++i)
        EXPECT_LE(watching.values[i], watching.maxima[i]);
}

namespace {

// Holds the copy of a file until released: the file becomes a named pipe that
// gives the file's bytes once released; restore() puts the file back.
class HeldFile
{
public:
    explicit HeldFile(const QString& path) : m_path(path)
    {
        QFile file(path);
        if (file.open(QIODevice::ReadOnly))
            m_bytes = file.readAll();
        m_held = !m_bytes.isEmpty() && QFile::remove(path) &&
                 ::mkfifo(QFile::encodeName(path).constData(), 0644) == 0;
    }
    ~HeldFile() { restore(); }
    bool isHeld() const { return m_held; }
    // Feeds the bytes to the copy waiting on the pipe.
    void release()
    {
        const int fd = ::open(QFile::encodeName(m_path).constData(), O_WRONLY);
        for (qint64 done = 0; fd >= 0 && done < m_bytes.size();) {
            const ssize_t n = ::write(fd, m_bytes.constData() + done, size_t(m_bytes.size() - done));
            if (n <= 0)
                break;
            done += n;
        }
        if (fd >= 0)
            ::close(fd);
    }
    void restore()
    {
        if (!m_held)
            return;
        m_held = false;
        QFile::remove(m_path);
        cwtest::writeFile(m_path, m_bytes);
    }

private:
    QString m_path;
    QByteArray m_bytes;
    bool m_held = false;
};

} // namespace

TEST_F(ClipCopyTest, ACancelLeavesNothingOfTheCopyAndPostsNoUpdate)
{
    cwtest::CardFolder card(cwtest::CardFolder::fast(4));
    cardgen::Options otherOptions = cwtest::CardFolder::fast(2);
    otherOptions.prefix = "OTH";
    otherOptions.recorded = QDateTime::currentDateTimeUtc().addDays(-1); // other UMIDs
    cwtest::CardFolder other(otherOptions);
    ASSERT_TRUE(card.ok() && other.ok());
    const QList<DOTakeData> takes = copyable(BLHouseKeepingCtrl().doHouseKeeping(card.workFolder()));
    BLHouseKeepingCtrl().doHouseKeeping(other.workFolder());
    const QMap<QString, QByteArray> source = optest::snapshot(card.workFolder());
    const QMap<QString, QByteArray> destination = optest::snapshot(other.workFolder());

    // Cancel while a file of the first take, and then of the third, is being
    // copied: into a new folder (it goes), and into a card that holds takes
    // (it stays as it was).
    const struct
    {
        const char* clip;
        QString into;
    } cases[] = {{"ABC0001", home().path("media/Fresh")}, {"ABC0003", other.workFolder()}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.clip);
        HeldFile held(card.bpav() + QString("/CLPR/%1/%1.SMI").arg(c.clip));
        ASSERT_TRUE(held.isHeld());
        QTimer::singleShot(300, [&] {
            progress.pressCancel();
            held.release();
        });
        EXPECT_FALSE(copy(record(card.workFolder(), takes, c.into), {QFileInfo(c.into).fileName()}));
        held.restore();
    }
    EXPECT_FALSE(QFileInfo::exists(home().path("media/Fresh")));
    EXPECT_EQ(optest::snapshot(other.workFolder()), destination);

    EXPECT_TRUE(updates.isEmpty());
    EXPECT_TRUE(messages.keys().isEmpty()) << messages.keys().join(", ").toStdString();
    EXPECT_EQ(optest::snapshot(card.workFolder()), source);
}

TEST_F(ClipCopyTest, OkRefusesABpavNameAClipAlreadyThereAndAFolderOverItsLimits)
{
    cwtest::CardFolder card(cwtest::CardFolder::fast(2));
    ASSERT_TRUE(card.ok());
    const QList<DOTakeData> takes = copyable(BLHouseKeepingCtrl().doHouseKeeping(card.workFolder()));
    const QString destination = home().path("media/Copy");
    // "bpav" keeps the dialog open; the next name is taken.
    ASSERT_TRUE(copy(record(card.workFolder(), takes, destination), {"bpav", "Copy"}));
    EXPECT_EQ(messages.keys(), QStringList{"MSG_651_3132"});
    // The same takes again: their UMIDs are there already.
    messages.clear();
    const QMap<QString, QByteArray> copied = footprint(destination);
    EXPECT_FALSE(copy(record(card.workFolder(), takes, destination), {"Copy"}));
    EXPECT_EQ(messages.keys(), QStringList{"MSG_642_3114"});
    EXPECT_EQ(footprint(destination), copied);
    // A folder with 600 clip folders takes no more; a new folder made for the
    // copy and refused goes again.
    messages.clear();
    const QString full = home().path("media/Full");
    for (int i = 0; i < 600; ++i)
        ASSERT_TRUE(QDir().mkpath(full + QString("/BPAV/CLPR/F%1").arg(i, 4, 10, QChar('0'))));
    EXPECT_FALSE(copy(record(card.workFolder(), takes, full), {"Full"}));
    EXPECT_EQ(messages.keys(), QStringList{"MSG_632_3236"});
    EXPECT_EQ(QDir(full + "/BPAV/CLPR").entryList(QDir::Dirs | QDir::NoDotAndDotDot).size(), 600);
    EXPECT_TRUE(updates.size() == 1) << "only the copy that was made";
}

// Either half of a take recorded across two cards, copied next to the other,
// makes one whole take: its clips in order, one time code over both, one take
// folder and one take material for the whole take.
TEST_F(ClipCopyTest, AHalfCopiedNextToTheOtherMakesOneTake)
{
    for (const int from : {1, 0}) {
        SCOPED_TRACE(from);
        cardgen::Options options = cwtest::CardFolder::fast(0);
        options.spanningClips = 2;
        cwtest::CardFolder card(options);
        ASSERT_TRUE(card.ok()) << card.error().toStdString();
        ASSERT_EQ(card.manifest().takes.size(), 2u);
        const cardgen::ManifestTake& first = card.manifest().takes[0];
        const cardgen::ManifestTake& second = card.manifest().takes[1];
        const int frames = first.frames + second.frames;
        const QList<DOTakeData> half = copyable(BLHouseKeepingCtrl().doHouseKeeping(card.workFolder(from)));
        ASSERT_EQ(half.size(), 1);
        const QString to = card.workFolder(1 - from);

        ASSERT_TRUE(copy(record(card.workFolder(from), half, to), {QFileInfo(to).fileName()}));
        const QList<DOTakeData> takes = BLHouseKeepingCtrl().doHouseKeeping(to);
        ASSERT_EQ(takes.size(), 1);
        const DOTakeData& take = takes[0];
        EXPECT_EQ(take.getUmid(), first.umid);
        EXPECT_EQ(take.getClipUmid(), QStringList({first.clips[0].umid, second.clips[0].umid}));
        EXPECT_LT(take.getTakeStatus(), 2);
        EXPECT_FALSE(take.getMediaSpanning());
        EXPECT_EQ(take.getCurrentDuration(), frames);
        ASSERT_FALSE(take.getLtcChanges().isEmpty());
        EXPECT_EQ(take.getLtcChanges().first().getValue(),
                  take.getClipData().first().getLtcChanges().first().getValue());
        EXPECT_EQ(take.getLtcChanges().last().getFrameCount(), QString::number(frames - 1));
        EXPECT_EQ(take.getLtcChanges().last().getValue(),
                  take.getClipData().last().getLtcChanges().last().getValue());

        BLMediaProfileAcss profile;
        ASSERT_TRUE(profile.loadForFolderPath(BLCommon::getPathOfBPAV(to)));
        QStringList takeMaterials;
        for (const DOMaterial& material : profile.getMaterialData(QString(), 0))
            if (!BLCommon::isClipReference(material.getUri()))
                takeMaterials << material.getUmid() + " " + material.getDur();
        EXPECT_EQ(takeMaterials, QStringList{first.umid + " " + QString::number(frames)});
        EXPECT_EQ(QDir(BLCommon::getPathOfBPAV(to) + "/TAKR").entryList(QDir::Dirs | QDir::NoDotAndDotDot),
                  QStringList{first.takeId});
    }
}
