// The card's XML files, identifiers and manifest.
#include "XmlTree.h"
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

QString fileOf(const std::vector<ManifestFile>& files, const QString& kind)
{
    for (const ManifestFile& f : files) {
        if (f.kind == kind)
            return f.path;
    }
    return QString();
}

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

TEST(CardgenMetadata, XmlFilesCarryTheManifestsIdentifiersAndDurations)
{
    const cwtest::CardFolder card(mixedCard());
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    const Manifest& m = card.manifest();
    ASSERT_EQ(m.takes.size(), 3u);

    std::set<QString> clipUmids;
    for (const ManifestTake& take : m.takes) {
        for (const cardgen::ManifestClip& clip : take.clips) {
            clipUmids.insert(clip.umid);
            const XmlDocument nrt = XmlDocument::load(card.path(fileOf(clip.files, "XML")));
            ASSERT_TRUE(nrt.wellFormed) << nrt.error.toStdString();
            EXPECT_EQ(nrt.root.name, "NonRealTimeMeta");
            EXPECT_EQ(nrt.root.attr("xmlns"), "urn:schemas-professionalDisc:nonRealTimeMeta:ver.1.30");
            EXPECT_EQ(nrt.root.child("TargetMaterial")->attr("umidRef"), clip.umid);
            EXPECT_EQ(nrt.root.child("TargetMaterial")->attr("status"), "OK");
            EXPECT_EQ(nrt.root.child("Duration")->attr("value").toInt(), clip.frames);
            const auto changes = nrt.root.child("LtcChangeTable")->all("LtcChange");
            ASSERT_EQ(changes.size(), 2u);
            EXPECT_EQ(changes[1]->attr("frameCount").toInt(), clip.frames - 1);
            EXPECT_EQ(nrt.root.child("VideoFormat")->child("VideoFrame")->attr("formatFps"), "29.97p");
            EXPECT_EQ(nrt.root.child("AudioFormat")->attr("numOfChannel"), "2");
            EXPECT_EQ(nrt.root.child("Title")->child("lib:Alias")->text, clip.name);

            const XmlDocument smi = XmlDocument::load(card.path(fileOf(clip.files, "SMI")));
            ASSERT_TRUE(smi.wellFormed) << smi.error.toStdString();
            EXPECT_EQ(smi.root.name, "smil");
            EXPECT_EQ(smi.root.attr("umid"), clip.umid);
            EXPECT_EQ(smi.root.child("body")->child("switch")->child("par")->child("video")->attr("src"),
                      clip.name + ".MP4");
        }
    }
    // Time codes run on from clip to clip (drop-frame LTC values: frames + 40).
    const auto ltc = [&](const cardgen::ManifestClip& clip) {
        const XmlDocument nrt = XmlDocument::load(card.path(fileOf(clip.files, "XML")));
        const auto changes = nrt.root.child("LtcChangeTable")->all("LtcChange");
        return QStringList{changes[0]->attr("value"), changes[1]->attr("value")};
    };
    EXPECT_EQ(ltc(m.takes[0].clips[0]), (QStringList{"40000000", "45000000"}));
    EXPECT_EQ(ltc(m.takes[1].clips[0]), (QStringList{"46000000", "51000000"}));

    // The multi-clip take: its own SMI and XML in TAKR, one ref per clip in order.
    const ManifestTake& multi = m.takes[2];
    EXPECT_EQ(multi.kind, "multi");
    EXPECT_EQ(multi.takeId, "ABC0003U01");
    EXPECT_EQ(multi.frames, 18);
    const XmlDocument takeSmi = XmlDocument::load(card.path(fileOf(multi.files, "SMI")));
    ASSERT_TRUE(takeSmi.wellFormed);
    EXPECT_EQ(fileOf(multi.files, "SMI"), "BPAV/TAKR/ABC0003U01/ABC0003U01.SMI");
    EXPECT_EQ(takeSmi.root.attr("umid"), multi.umid);
    const auto refs = takeSmi.root.child("body")->child("par")->all("ref");
    ASSERT_EQ(refs.size(), 3u);
    for (size_t i = 0; i < refs.size(); ++i) {
        EXPECT_EQ(refs[i]->attr("src"), "urn:smpte:umid:" + multi.clips[i].umid);
        EXPECT_EQ(refs[i]->attr("clipBegin"), "smpte-30-drop=00:00:00:00");
    }
    EXPECT_EQ(refs[1]->attr("begin"), "smpte-30-drop=00:00:00:06");
    const XmlDocument takeNrt = XmlDocument::load(card.path(fileOf(multi.files, "XML")));
    EXPECT_EQ(fileOf(multi.files, "XML"), "BPAV/TAKR/ABC0003U01/ABC0003U01M01.XML");
    EXPECT_EQ(takeNrt.root.child("TargetMaterial")->attr("umidRef"), multi.umid);
    EXPECT_EQ(takeNrt.root.child("Duration")->attr("value"), "18");

    // The media profile lists every clip and the take, and every reference exists.
    const XmlDocument profile = XmlDocument::load(card.bpav() + "/MEDIAPRO.XML");
    ASSERT_TRUE(profile.wellFormed) << profile.error.toStdString();
    EXPECT_EQ(profile.root.attr("version"), "1.10");
    const XmlElement* attached = profile.root.child("Properties")->child("Attached");
    EXPECT_EQ(attached->attr("mediaId"), m.cards[0].mediaId);
    EXPECT_EQ(attached->attr("mediaName"), "SHOOT");
    EXPECT_EQ(attached->attr("mediaKind"), "ProfessionalMemoryCard");
    const auto materials = profile.root.child("Contents")->all("Material");
    ASSERT_EQ(materials.size(), 6u);
    std::set<QString> listed;
    for (const XmlElement* material : materials) {
        listed.insert(material->attr("umid"));
        EXPECT_TRUE(QFile::exists(card.bpav() + material->attr("uri").mid(1)))
            << material->attr("uri").toStdString();
        EXPECT_EQ(material->attr("type"), "PD-EDL");
        for (const char* kind : {"Component", "RelevantInfo"}) {
            for (const XmlElement* e : material->all(kind))
                EXPECT_TRUE(QFile::exists(card.bpav() + e->attr("uri").mid(1)))
                    << e->attr("uri").toStdString();
        }
    }
    std::set<QString> expected = clipUmids;
    expected.insert(multi.umid);
    EXPECT_EQ(listed, expected);
    const XmlElement* first = materials.front();
    EXPECT_EQ(first->attr("uri"), "./CLPR/ABC0001/ABC0001.SMI");
    EXPECT_EQ(first->attr("dur"), "6");
    EXPECT_EQ(first->child("Component")->attr("videoType"), "MPEG2HD35_-_-_MP@HL");
    const auto relevant = first->all("RelevantInfo");
    ASSERT_EQ(relevant.size(), 3u);
    EXPECT_EQ(relevant[1]->attr("type"), "BiM");
    const XmlElement* takeMaterial = materials.back();
    EXPECT_EQ(takeMaterial->attr("uri"), "./TAKR/ABC0003U01/ABC0003U01.SMI");
    const auto components = takeMaterial->all("Component");
    ASSERT_EQ(components.size(), 3u);
    EXPECT_EQ(components[2]->attr("umid"), multi.clips[2].umid);

    const XmlDocument cueup = XmlDocument::load(card.bpav() + "/CUEUP.XML");
    ASSERT_TRUE(cueup.wellFormed);
    EXPECT_EQ(cueup.root.child("history")->child("clip")->attr("umid"), multi.clips[2].umid);
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
    o.damages = {*cardgen::Damage::parse("missing=SMI", nullptr), *cardgen::Damage::parse("loose", nullptr)};
    const cwtest::CardFolder card(o);
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    EXPECT_FALSE(QFile::exists(card.workFolder() + "/BPAV"));
    EXPECT_TRUE(QFile::exists(card.workFolder() + "/PRIVATE/ORX/BPAV/MEDIAPRO.XML"));
    EXPECT_EQ(filesOnDisk(card.workFolder()), filesListed(card.manifest(), 0));

    // The JSON on disk says the same.
    QFile json(card.workFolder() + "/cardgen-manifest.json");
    ASSERT_TRUE(json.open(QIODevice::ReadOnly));
    const QJsonObject root = QJsonDocument::fromJson(json.readAll()).object();
    EXPECT_EQ(root, card.manifest().toJson());
    const QJsonArray takes = root["takes"].toArray();
    ASSERT_EQ(takes.size(), 3);
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

TEST(CardgenMetadata, SpanningTakeIsSpreadOverTwoCards)
{
    cardgen::Options o = cwtest::CardFolder::quick();
    o.clips = 0;
    o.spanningClips = 4;
    o.fast = true;
    const cwtest::CardFolder card(o);
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    const Manifest& m = card.manifest();
    ASSERT_EQ(m.cards.size(), 2u);
    ASSERT_EQ(m.takes.size(), 2u);
    const ManifestTake& first = m.takes[0];
    const ManifestTake& second = m.takes[1];
    EXPECT_EQ(first.card, 0);
    EXPECT_EQ(second.card, 1);
    EXPECT_EQ(first.takeId, "ABC0001U01");
    EXPECT_EQ(second.takeId, "ABC0001U02");
    EXPECT_EQ(first.spanPart, 1);
    EXPECT_EQ(second.spanPart, 2);
    EXPECT_EQ(first.expectedStatus, 2);
    EXPECT_EQ(second.expectedStatus, 2);
    EXPECT_EQ(first.clips.front().name, "ABC0001");
    EXPECT_EQ(second.clips.front().name, "ABC0003");
    EXPECT_EQ(filesOnDisk(card.workFolder(0)), filesListed(m, 0));
    EXPECT_EQ(filesOnDisk(card.workFolder(1)), filesListed(m, 1));

    // The first part's take info ends with an open reference to the second part.
    const XmlDocument smi = XmlDocument::load(card.path(fileOf(first.files, "SMI")));
    const auto refs = smi.root.child("body")->child("par")->all("ref");
    ASSERT_EQ(refs.size(), 3u);
    EXPECT_EQ(refs[2]->attr("src"), "urn:smpte:umid:" + second.umid);
    EXPECT_EQ(refs[2]->attr("begin"), "smpte-30-drop=00:00:00:12");
    EXPECT_FALSE(refs[2]->attributes.contains("clipEnd"));
    EXPECT_FALSE(refs[2]->attributes.contains("end"));

    // Each card's media profile links the take to its part on the other card.
    const XmlDocument a = XmlDocument::load(card.bpav(0) + "/MEDIAPRO.XML");
    const XmlDocument b = XmlDocument::load(card.bpav(1) + "/MEDIAPRO.XML");
    const auto componentsA = a.root.child("Contents")->all("Material").back()->all("Component");
    const auto componentsB = b.root.child("Contents")->all("Material").back()->all("Component");
    ASSERT_EQ(componentsA.size(), 3u);
    ASSERT_EQ(componentsB.size(), 3u);
    EXPECT_TRUE(componentsA[2]->attr("uri").startsWith("file:///"));
    EXPECT_EQ(componentsA[2]->attr("mediaId"), m.cards[1].mediaId);
    EXPECT_EQ(componentsA[2]->attr("umid"), second.umid);
    EXPECT_TRUE(componentsB[0]->attr("uri").startsWith("file:///"));
    EXPECT_EQ(componentsB[0]->attr("mediaId"), m.cards[0].mediaId);
    EXPECT_EQ(componentsB[0]->attr("umid"), first.umid);
    EXPECT_FALSE(componentsB[1]->attributes.contains("mediaId"));
    EXPECT_NE(m.cards[0].mediaId, m.cards[1].mediaId);
}

} // namespace
