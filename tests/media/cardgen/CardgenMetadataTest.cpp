// The card's XML files, identifiers and manifest.
#include "support/CardFolder.h"

#include <QDirIterator>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QRegularExpression>

#include <gtest/gtest.h>

#include <map>
#include <set>

namespace {

using cardgen::Manifest;
using cardgen::ManifestFile;
using cardgen::ManifestTake;

// Every file under the work folder except the manifest, with its size.
std::map<QString, qint64> filesOnDisk(const QString& workFolder)
{
    std::map<QString, qint64> files;
    QDirIterator it(workFolder, QDir::Files | QDir::Hidden | QDir::NoDotAndDotDot,
                    QDirIterator::Subdirectories);
    const QDir base(workFolder);
    while (it.hasNext()) {
        it.next();
        const QString relative = base.relativeFilePath(it.filePath());
        if (relative != QStringLiteral("cardgen-manifest.json"))
            files[relative] = it.fileInfo().size();
    }
    return files;
}

std::map<QString, qint64> filesListed(const Manifest& m, int card)
{
    std::map<QString, qint64> files;
    for (const ManifestFile& f : m.filesOf(card))
        files[f.path] = f.size;
    return files;
}

cardgen::Options mixedCard()
{
    cardgen::Options o = cwtest::CardFolder::quick();
    o.clips = 2;
    o.multiClipTakes = {3};
    o.fast = true;
    o.recorded = QDateTime::fromString(QStringLiteral("2009-03-05T14:07:59+09:00"), Qt::ISODate);
    o.mediaName = QStringLiteral("SHOOT");
    return o;
}

TEST(CardgenMetadata, UmidsAndMediaIdsHaveTheCardForm)
{
    const cwtest::CardFolder card(mixedCard());
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    const Manifest& m = card.manifest();
    static const QRegularExpression umidForm(
        QStringLiteral("^060A2B340101010501010D4313000000[0-9A-F]{32}$"));
    std::set<QString> seen;
    for (const ManifestTake& take : m.takes) {
        EXPECT_TRUE(umidForm.match(take.umid).hasMatch()) << take.umid.toStdString();
        seen.insert(take.umid);
        for (const cardgen::ManifestClip& clip : take.clips) {
            EXPECT_TRUE(umidForm.match(clip.umid).hasMatch()) << clip.umid.toStdString();
            seen.insert(clip.umid);
        }
    }
    EXPECT_EQ(seen.size(), 6u) << "UMIDs repeat";

    // Time stamp of the first clip: milliseconds since 1970 modulo 10^8, the
    // modified Julian date 54895 of 2009-03-05 with its digit pairs reversed,
    // serial 1; then the machine node.
    const QString umid = m.takes[0].umid;
    const qint64 ms = QDateTime::fromString("2009-03-05T05:07:59Z", Qt::ISODate).toMSecsSinceEpoch();
    EXPECT_EQ(umid.mid(32, 8), QString::asprintf("%08lld", ms % 100000000));
    EXPECT_EQ(umid.mid(40, 6), "954805");
    EXPECT_EQ(umid.mid(46, 2), "C1");
    EXPECT_EQ(umid.mid(48), "0200C1FFFEA9D0E1");
    EXPECT_EQ(m.takes[1].umid.mid(46, 2), "C2");
    EXPECT_TRUE(
        QRegularExpression("^[0-9]{14}[0-9A-F]{2}0200C1FFFEA9D0E1$").match(m.cards[0].mediaId).hasMatch())
        << m.cards[0].mediaId.toStdString();
}

TEST(CardgenMetadata, ManifestListsExactlyTheFilesOnDisk)
{
    cardgen::Options o = mixedCard();
    o.layout = QStringLiteral("PRIVATE/ORX/BPAV");
    o.spanningClips = 2;
    o.damages = {*cardgen::Damage::parse("missing=SMI@1", nullptr),
                 *cardgen::Damage::parse("loose@2", nullptr)};
    const cwtest::CardFolder card(o);
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    EXPECT_FALSE(QFile::exists(card.workFolder() + "/BPAV"));
    EXPECT_TRUE(QFile::exists(card.workFolder() + "/PRIVATE/ORX/BPAV/MEDIAPRO.XML"));
    // A spanning take puts its second part on a second card.
    EXPECT_EQ(filesOnDisk(card.workFolder()), filesListed(card.manifest(), 0));
    EXPECT_EQ(filesOnDisk(card.workFolder(1)), filesListed(card.manifest(), 1));

    // The JSON on disk says the same.
    QFile json(card.workFolder() + "/cardgen-manifest.json");
    ASSERT_TRUE(json.open(QIODevice::ReadOnly));
    const QJsonObject root = QJsonDocument::fromJson(json.readAll()).object();
    EXPECT_EQ(root, card.manifest().toJson());
    const QJsonArray takes = root["takes"].toArray();
    ASSERT_EQ(takes.size(), 5);
    qint64 total = 0;
    for (const QJsonValue take : takes) {
        qint64 size = 0;
        for (const QJsonValue clip : take["clips"].toArray()) {
            for (const QJsonValue f : clip["files"].toArray())
                size += f["size"].toInteger();
        }
        for (const QJsonValue f : take["files"].toArray())
            size += f["size"].toInteger();
        EXPECT_EQ(take["size"].toInteger(), size);
        total += size;
    }
    EXPECT_EQ(root["cards"][0]["bpav"].toString(), "PRIVATE/ORX/BPAV");
    EXPECT_GT(total, 0);
}

} // namespace
