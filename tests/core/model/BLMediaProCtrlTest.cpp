// The media-profile upkeep on generated cards: what the checking side decides
// for each listed and unlisted clip and take, and what a rewrite writes.
#include "core/card/BLMediaProCtrl.h"
#include "core/card/BLHouseKeepingCtrl.h"
#include "core/card/DOClipCtrl.h"
#include "core/formats/metadata/BLCueupInfoAcss.h"
#include "core/formats/metadata/BLMediaProfileAcss.h"
#include "core/services/BLCommon.h"
#include "core/services/SCNotificationNames.h"
#include "support/AsOrdinaryUser.h"
#include "support/CardFolder.h"
#include "support/NotificationRecorder.h"
#include "support/TestEnvironment.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>

#include <gtest/gtest.h>

namespace {

using cwtest::damage;

const QString k720Codec = QStringLiteral("MPEG2HD18.3CBR_1280_720_MP@HL");

QList<DOMaterial> materialsOf(const QString& workFolder)
{
    BLMediaProfileAcss mediaPro;
    if (!mediaPro.loadForFolderPath(BLCommon::getPathOfBPAV(workFolder)))
        return {};
    return mediaPro.getMaterialData(QString(), 0);
}

QStringList materialUris(const QString& workFolder)
{
    QStringList uris;
    for (const DOMaterial& material : materialsOf(workFolder))
        uris << material.getUri();
    return uris;
}

const DOMaterial* findMaterial(const QList<DOMaterial>& materials, const QString& uri)
{
    const auto m = std::find_if(materials.begin(), materials.end(),
                                [&](const DOMaterial& x) { return x.getUri() == uri; });
    return m == materials.end() ? nullptr : &*m;
}

// The root's "version" attribute, read without the XML layer.
QString versionOf(const QString& workFolder)
{
    static const QRegularExpression version(R"re(<MediaProfile[^>]* version="([^"]*)")re");
    return version.match(cwtest::readFile(BLCommon::getPathOfBPAV(workFolder) + "/MEDIAPRO.XML")).captured(1);
}

DOAttached attachedOf(const QString& workFolder)
{
    BLMediaProfileAcss mediaPro;
    DOAttached attached;
    if (mediaPro.loadForFolderPath(BLCommon::getPathOfBPAV(workFolder)))
        mediaPro.getAttachedData(attached);
    return attached;
}

// The take of that UMID as housekeeping loads it, with the given status.
DOTakeData loaded(const QList<DOTakeData>& takes, const QString& umid, int status = 0)
{
    const auto take = std::find_if(takes.begin(), takes.end(),
                                   [&umid](const DOTakeData& t) { return t.getUmid() == umid; });
    EXPECT_NE(take, takes.end()) << umid.toStdString();
    DOTakeData result = take == takes.end() ? DOTakeData() : *take;
    result.setTakeStatus(status);
    return result;
}

using MediaProCtrlTest = cwtest::HomeTest;

} // namespace

// Statuses of whole takes on damaged cards are checked against the generator
// by the housekeeping tests; here what only the checking side decides.
TEST_F(MediaProCtrlTest, CheckingSideDecidesListedClipsAndPicksUpWhatTheProfileMisses)
{
    using Kind = cardgen::Damage::Kind;
    cardgen::Options options = cwtest::CardFolder::fast(4);
    options.damages = {damage(Kind::Unlisted, 1), damage(Kind::Loose, 2),
                       damage(Kind::Missing, 3, {"SMI", "BIM", "PPN"}), damage(Kind::Unlisted, 4)};
    cwtest::CardFolder card(options);
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    const auto& planned = card.manifest().takes;
    const QString work = card.workFolder();

    // The camera lists a loose file by its essence alone; an unlisted clip
    // folder loses its metadata, so that it is unusable.
    BLMediaProfileAcss mediaPro;
    ASSERT_TRUE(mediaPro.loadForFolderPath(card.bpav()));
    DOMaterial looseEntry;
    looseEntry.setUri("./CLPR/ABC0002.MP4");
    looseEntry.setType("MP4");
    ASSERT_EQ(mediaPro.replaceMaterialData(mediaPro.getMaterialData(QString(), 0) + QList{looseEntry}), 0);
    ASSERT_TRUE(mediaPro.save("0123"));
    ASSERT_TRUE(QFile::remove(card.bpav() + "/CLPR/ABC0004/ABC0004M01.XML"));

    BLMediaProCtrl ctrl;
    QList<DOTakeData> takes;
    QList<DOClipData> clips;

    BLHouseKeepingCtrl houseKeeping;
    EXPECT_TRUE(ctrl.checkMediaProMeta(mediaPro, takes, work, clips, houseKeeping))
        << "an unlisted folder was added";
    const auto listed = std::count_if(planned.begin(), planned.end(), [](const auto& t) { return t.listed; });
    EXPECT_EQ(houseKeeping.getCLPRMateCount(), listed + 1) << "and the camera's loose entry";
    ASSERT_EQ(clips.size(), 4) << "the loose file once";

    // Only metadata and essence left: status 3, real; the unlisted folders are
    // picked up, the one without metadata as unusable.
    const auto partial = std::find_if(clips.begin(), clips.end(),
                                      [&](const DOClipData& c) { return c.getUmid() == planned[2].umid; });
    ASSERT_NE(partial, clips.end());
    EXPECT_EQ(partial->getClipStatus(), 3);
    EXPECT_TRUE(partial->getRealFlag());
    EXPECT_EQ(partial->getCurrentDuration(), 6);
    auto statusInFolder = [&clips](const QString& name) {
        const auto clip = std::find_if(clips.begin(), clips.end(),
                                       [&name](const DOClipData& c) { return c.getFolderName() == name; });
        return clip == clips.end() ? -1 : clip->getClipStatus();
    };
    EXPECT_EQ(statusInFolder("ABC0001"), 0);
    EXPECT_EQ(statusInFolder("ABC0004"), 5);

    // The loose file: status 4 with a new UMID; the camera's entry is left out.
    const auto loose = std::find_if(clips.begin(), clips.end(), [](const DOClipData& c) {
        return c.getMP4Uri() == "./CLPR/ABC0002.MP4";
    });
    ASSERT_NE(loose, clips.end());
    EXPECT_EQ(loose->getClipStatus(), 4);
    EXPECT_EQ(loose->getUmid().size(), 64);
}

TEST_F(MediaProCtrlTest, RewriteWritesVersionMaterialsAndKeepsTheHeader)
{
    cardgen::Options options = cwtest::CardFolder::fast(3);
    options.multiClipTakes = {2, 2};
    options.mediaName = "Interview";
    cwtest::CardFolder card(options);
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    const auto& planned = card.manifest().takes;
    const QString work = card.workFolder();
    const DOAttached before = attachedOf(work);
    const QList<DOTakeData> read = BLHouseKeepingCtrl().doHouseKeeping(work);

    // Given out of the card's order, which the profile follows. ABC0003 lost
    // its essence: it gets no material, and its folder stays.
    DOTakeData complete = loaded(read, planned[0].umid);
    complete.setFormatFps(""); // written empty: the stored value goes
    DOTakeData mp4Only = loaded(read, planned[1].umid, 3);
    mp4Only.setSMIUri("./CLPR/ABC0002");
    mp4Only.setAudioCodec("LPCM16");
    ASSERT_TRUE(QFile::remove(card.bpav() + "/CLPR/ABC0003/ABC0003.MP4"));
    DOTakeData lost = loaded(read, planned[2].umid, 5);
    lost.setMateUpFlg(false);
    DOTakeData loose;
    loose.setUmid(QString(64, 'A'));
    loose.setMP4Uri("./CLPR/ABC0009.MP4");
    loose.setTakeStatus(4);
    DOTakeData good = loaded(read, planned[3].umid);
    DOTakeData broken = loaded(read, planned[4].umid, 5);
    const QList<DOTakeData> takes{mp4Only, complete, lost, loose, good, broken};

    BLMediaProCtrl ctrl;
    ASSERT_TRUE(ctrl.createMediaPro(takes, work));
    EXPECT_TRUE(QFileInfo::exists(card.bpav() + "/CLPR/ABC0003/ABC0003M01.XML"));
    const QList<DOMaterial> materials = materialsOf(work);
    QStringList expected{mp4Only.getMP4Uri(), complete.getSMIUri()};
    for (const DOTakeData& take : {good, broken}) {
        for (const DOClipData& clip : take.getClipData())
            expected << clip.getSMIUri();
    }
    expected << good.getSMIUri();
    EXPECT_EQ(materialUris(work), expected)
        << "no material for the lost clip, the loose file or the unusable take";
    EXPECT_EQ(versionOf(work), "1.10");

    // Each kind of material: its type, components and relevant info.
    const struct
    {
        QString uri, type;
        int components;
        QStringList relevant;
    } kinds[] = {
        {complete.getSMIUri(),
         "PD-EDL",
         1,
         {complete.getXMLUri(), complete.getBIMUri(), complete.getPPNUri()}},
        {mp4Only.getMP4Uri(), "MP4", 0, {mp4Only.getXMLUri()}},
        {good.getSMIUri(), "PD-EDL", 2, {good.getXMLUri()}},
    };
    for (const auto& k : kinds) {
        SCOPED_TRACE(k.uri.toStdString());
        const DOMaterial* material = findMaterial(materials, k.uri);
        ASSERT_NE(material, nullptr);
        EXPECT_EQ(material->getType(), k.type);
        EXPECT_EQ(material->getComponent().size(), k.components);
        QStringList relevant;
        for (const auto& info : material->getRelevantInfo())
            relevant << info.getUri();
        EXPECT_EQ(relevant, k.relevant);
    }
    const DOMaterial* clipMaterial = findMaterial(materials, complete.getSMIUri());
    EXPECT_EQ(clipMaterial->getComponent()[0].getVideoType(), complete.getVideoCodec());
    EXPECT_TRUE(clipMaterial->getFps().isEmpty());
    EXPECT_EQ(findMaterial(materials, mp4Only.getMP4Uri())->getAudioType(), "LPCM16");
    EXPECT_EQ(findMaterial(materials, good.getSMIUri())->getComponent()[1].getUmid(), good.getClipUmid(1));
    EXPECT_EQ(attachedOf(work).getMediaId(), before.getMediaId());
    EXPECT_EQ(attachedOf(work).getMediaName(), "Interview");

    // A 720-line take anywhere in the list gives version 1.20; it goes when the take goes.
    DOTakeData hd720 = complete;
    hd720.setVideoCodec(k720Codec);
    ASSERT_TRUE(ctrl.createMediaPro({hd720, good}, work));
    EXPECT_EQ(versionOf(work), "1.20");
    ASSERT_TRUE(ctrl.createMediaPro({complete, good}, work));
    EXPECT_EQ(versionOf(work), "1.10");

    // Without a media profile nothing is written.
    ASSERT_TRUE(QFile::remove(card.bpav() + "/MEDIAPRO.XML"));
    EXPECT_FALSE(ctrl.createMediaPro({complete}, work));
    EXPECT_FALSE(QFileInfo::exists(card.bpav() + "/MEDIAPRO.XML"));
}

TEST_F(MediaProCtrlTest, IndexFilesAreCreatedWhenMissing)
{
    QTemporaryDir dir;
    const QString work = dir.filePath("work");
    ASSERT_TRUE(QDir().mkpath(work + "/BPAV"));
    BLMediaProCtrl ctrl;

    BLMediaProfileAcss mediaPro;
    EXPECT_EQ(ctrl.isMediaPro(mediaPro, work), 1);
    const DOAttached attached = attachedOf(work);
    EXPECT_TRUE(QRegularExpression("^[0-9A-F]{32}$").match(attached.getMediaId()).hasMatch())
        << attached.getMediaId().toStdString();
    EXPECT_TRUE(materialsOf(work).isEmpty());
    EXPECT_EQ(ctrl.isMediaPro(mediaPro, work), 0);
    EXPECT_EQ(attachedOf(work).getMediaId(), attached.getMediaId());

    EXPECT_TRUE(ctrl.isCueUp(work));
    BLCueupInfoAcss cueUp;
    EXPECT_TRUE(cueUp.loadForFolderPath(work + "/BPAV"));

    // A folder that cannot be written gets neither.
    QFile::setPermissions(dir.path(), QFile::Permissions(0x7777)); // reachable for "nobody"
    const QString locked = dir.filePath("locked");
    ASSERT_TRUE(QDir().mkpath(locked + "/BPAV"));
    QFile::setPermissions(locked + "/BPAV", QFile::Permissions(0x5555));
    {
        cwtest::AsOrdinaryUser nobody;
        BLMediaProfileAcss refused;
        EXPECT_EQ(ctrl.isMediaPro(refused, locked), 2);
        EXPECT_FALSE(ctrl.isCueUp(locked));
    }
    QFile::setPermissions(locked + "/BPAV", QFile::Permissions(0x7777));
    EXPECT_FALSE(QFileInfo::exists(locked + "/BPAV/MEDIAPRO.XML"));
}

TEST_F(MediaProCtrlTest, CopyIntoAFolderWithoutProfileCarriesAndAnnouncesTheMediaName)
{
    cardgen::Options options = cwtest::CardFolder::fast(2);
    options.mediaName = "Field Day";
    cwtest::CardFolder card(options);
    ASSERT_TRUE(card.ok());
    const auto& planned = card.manifest().takes;
    QTemporaryDir dir;
    const QString destination = dir.filePath("dest");
    ASSERT_TRUE(QDir().mkpath(destination + "/BPAV/CLPR"));
    for (const auto& take : planned)
        ASSERT_TRUE(BLCommon::copyFile(card.path(take.clips.front().folder),
                                       destination + "/BPAV/CLPR/" + take.clips.front().name));

    cwtest::NotificationRecorder announced({SC::SCMediaNameDidChangeNotification});
    const QList<DOTakeData> read = BLHouseKeepingCtrl().doHouseKeeping(card.workFolder());
    DOTakeData later = loaded(read, planned[0].umid);
    later.setCreationDate("2020-01-02T00:00:00Z");
    DOTakeData earlier = loaded(read, planned[1].umid);
    earlier.setCreationDate("2020-01-01T00:00:00Z");
    BLMediaProCtrl ctrl;
    ASSERT_TRUE(ctrl.createCopyMediaPro(destination, {later, earlier}, card.workFolder(), QString()));
    cwtest::settle();

    EXPECT_EQ(attachedOf(destination).getMediaName(), "Field Day");
    EXPECT_NE(attachedOf(destination).getMediaId(), attachedOf(card.workFolder()).getMediaId());
    EXPECT_EQ(materialUris(destination), QStringList({earlier.getSMIUri(), later.getSMIUri()}));
    ASSERT_EQ(announced.notes.size(), 1);
    EXPECT_EQ(announced.notes[0].userInfo.value(SC::SCSelectFolderKey).toString(), destination);
    EXPECT_EQ(announced.notes[0].userInfo.value(SC::SCMediaNameKey).toString(), "Field Day");

    // Into a folder that has a profile, with a media id: the id is set, nothing announced.
    const QString mediaId = QString(32, 'C');
    ASSERT_TRUE(ctrl.createCopyMediaPro(destination, {earlier}, card.workFolder(), mediaId));
    cwtest::settle();
    EXPECT_EQ(attachedOf(destination).getMediaId(), mediaId);
    EXPECT_EQ(announced.notes.size(), 1);
}

TEST_F(MediaProCtrlTest, DeleteMaterialRemovesTheTakeAndItsClipsByUmid)
{
    cardgen::Options options = cwtest::CardFolder::fast(2);
    options.multiClipTakes = {2};
    cwtest::CardFolder card(options);
    ASSERT_TRUE(card.ok());
    const auto& planned = card.manifest().takes;
    const QString work = card.workFolder();
    const QStringList before = materialUris(work);
    ASSERT_EQ(before.size(), 5);

    const QList<DOTakeData> read = BLHouseKeepingCtrl().doHouseKeeping(work);
    DOTakeData multi = loaded(read, planned[2].umid);
    for (int i = 0; i < 2; ++i) {
        DOClipData clip = multi.getClipData(i);
        clip.setUmid(clip.getUmid().toLower()); // found ignoring case
        multi.removeClipData(i);
        multi.setClipData(clip, i);
    }
    DOTakeData unknown;
    unknown.setUmid(QString(64, 'F'));
    BLMediaProCtrl ctrl;
    ASSERT_TRUE(ctrl.deleteMaterial({multi, unknown}, work, false));
    EXPECT_EQ(materialUris(work), before.mid(0, 2));

    // The folder keeps a 720-line take: the version follows.
    DOTakeData first = loaded(read, planned[0].umid);
    ASSERT_TRUE(ctrl.deleteMaterial({first}, work, true));
    EXPECT_EQ(materialUris(work), before.mid(1, 1));
    EXPECT_EQ(versionOf(work), "1.20");

    ASSERT_TRUE(QFile::remove(card.bpav() + "/MEDIAPRO.XML"));
    EXPECT_FALSE(ctrl.deleteMaterial({first}, work, false));
}

TEST_F(MediaProCtrlTest, CueUpLosesItsEntryOnlyWhenItNamesADeletedClip)
{
    cwtest::CardFolder card(cwtest::CardFolder::fast(2));
    ASSERT_TRUE(card.ok());
    const QString cueUpPath = card.bpav() + "/CUEUP.XML";
    BLCueupInfoAcss cueUp;
    DOClip entry;
    ASSERT_TRUE(cueUp.loadForFolderPath(card.bpav()) && cueUp.getClipData(entry));
    ASSERT_EQ(entry.getUmid(), card.manifest().takes.back().umid) << "the generator names the last clip";

    DOClipCtrl clipCtrl;
    clipCtrl.setSourceWorkFolder(card.workFolder());
    clipCtrl.addDelUmid(card.manifest().takes.front().umid);
    const QByteArray before = cwtest::readFile(cueUpPath);
    BLMediaProCtrl ctrl;
    EXPECT_TRUE(ctrl.updateCueUpByClipDelete(clipCtrl));
    EXPECT_EQ(cwtest::readFile(cueUpPath), before) << "another clip was deleted: the file is untouched";

    clipCtrl.addDelUmid(entry.getUmid().toLower());
    EXPECT_TRUE(ctrl.updateCueUpByClipDelete(clipCtrl));
    BLCueupInfoAcss after;
    DOClip left;
    ASSERT_TRUE(after.loadForFolderPath(card.bpav()) && after.getClipData(left));
    EXPECT_TRUE(left.getUri().isEmpty()) << left.getUri().toStdString();

    ASSERT_TRUE(QFile::remove(cueUpPath));
    EXPECT_FALSE(ctrl.updateCueUpByClipDelete(clipCtrl));
    EXPECT_FALSE(QFileInfo::exists(cueUpPath));
}
