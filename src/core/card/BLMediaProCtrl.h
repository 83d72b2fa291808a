#pragma once

#include "core/card/DOClipData.h"
#include "core/card/DOTakeData.h"
#include "core/formats/metadata/DOComponent.h"
#include "core/formats/metadata/DOMaterial.h"
#include "core/formats/metadata/DORelevantInfo.h"

#include <QList>
#include <QString>
#include <QStringList>
#include <QVariantMap>

class BLHouseKeepingCtrl;
class BLMediaProfileAcss;
class DOClipCtrl;

// Keeps a folder's media profile ("MEDIAPRO.XML") and cue-up info
// ("CUEUP.XML") in step with the clip and take folders that are really there.
//
// The checking side (used by housekeeping) tests every material the media
// profile lists against the files, picks up folders it does not list and
// answers clip and take records with their statuses decided. The writing side
// (used by every operation that changes a folder) rebuilds the media profile
// from a list of takes, carries its header over when takes are copied, and
// deletes materials.
//
// Keeps no state: each operation makes its own readers, so one object may be
// used from any thread. Every file reference is resolved inside the BPAV
// folder of the work folder concerned (BLCardPath); nothing outside it is read
// as a clip's file, rewritten or deleted.
class BLMediaProCtrl
{
public:
    // What one material of the media profile says about a clip's files.
    struct MaterialFiles
    {
        QString umid;
        QString smi, mp4, xml, bim, ppn; // references, "./..." relative to the BPAV folder
        bool bSMI = false, bMP4 = false, bXML = false, bBIM = false, bPPN = false; // the file exists
    };

    // ---- checking side ----
    // Reads the whole media profile, decides every listed clip and take,
    // adds loose MP4 files and the folders the profile does not list. Answers
    // whether an unlisted folder was added (the profile needs repair); no on a
    // read failure or a cancel.
    bool checkMediaProMeta(BLMediaProfileAcss& mediaPro, QList<DOTakeData>& takes, const QString& workFolder,
                           QList<DOClipData>& clips, BLHouseKeepingCtrl& houseKeeping);
    // One clip record per clip material, its status decided from the files
    // that exist. No when cancelled.
    bool isCLPR(const QList<DOMaterial>& materials, const QString& workFolder, QList<DOClipData>& clips,
                BLHouseKeepingCtrl& houseKeeping);
    // The material's UMID and its five references with whether each file
    // exists. No when the material does not name both its essence and its
    // non-real-time metadata.
    bool isCLPRFiles(const DOMaterial& material, const QString& workFolder, MaterialFiles& files);
    // The XML, BiM and PPN references of the material's relevant-info entries.
    void isRelevantInfo(const DOMaterial& material, const QString& workFolder, MaterialFiles& files);
    // Every MP4 file lying directly in CLPR as a clip of status 4 with a new UMID.
    void isMP4(const QString& workFolder, QList<DOClipData>& clips, BLHouseKeepingCtrl& houseKeeping);
    // One take record per take material. No when cancelled.
    bool isTAKR(const QList<DOMaterial>& materials, QList<DOTakeData>& takes, const QString& workFolder,
                BLHouseKeepingCtrl& houseKeeping);
    // Adds the CLPR and TAKR folders that no record refers to, unusable clip
    // folders too; yes when one the profile should list was added.
    bool checkMediaProFiles(QList<DOTakeData>& takes, const QString& workFolder, QList<DOClipData>& clips);
    // Fills every take and every clip from its non-real-time metadata. A take
    // whose metadata cannot be read gets status 5; so does a clip, which then
    // keeps the values it had. An unusable clip keeps no duration or size.
    void makeMediaPro(QList<DOTakeData>& takes, const QString& workFolder, QList<DOClipData>& clips);

    // Names of the visible entries of the BPAV folder's CLPR folder that are
    // folders or MP4 files, and of the visible folders in TAKR, sorted; none
    // when CLPR or TAKR leads outside the BPAV folder.
    static QStringList getClipEntries(const QString& workFolder);
    static QStringList getTakeEntries(const QString& workFolder);

    // Whether the MP4 reader accepts the file (the pre-check before a clip is
    // shown as usable or imported).
    static bool isReadableMP4(const QString& path);

    // ---- writing side ----
    // 0 the media profile exists; 1 it did not and an empty one with a new
    // media id was written; 2 it did not and could not be written.
    int isMediaPro(BLMediaProfileAcss& mediaPro, const QString& workFolder);
    // Writes an empty media profile with a new media id over whatever is there.
    bool createEmptyMediaPro(BLMediaProfileAcss& mediaPro, const QString& workFolder);
    // "CUEUP.XML" exists, or an empty one has just been written.
    bool isCueUp(const QString& workFolder);
    // Rewrites the media profile from the takes: a take without clips stands
    // for its single clip.
    bool createMediaPro(const QList<DOTakeData>& takes, const QString& workFolder);
    // Rewrites the media profile: one material per clip with essence (loose
    // MP4 files of status 4 left out), then one per multi-clip take of status
    // below 4. The version is "1.20" when a take is 720-line, else "1.10"; the
    // header, and what the file holds beyond the records of a material that
    // stays, are kept (BLMediaProfileAcss::replaceMaterialData). Deletes
    // nothing. No (and nothing changed) when the profile cannot be loaded or
    // written.
    bool createMediaPro(const QList<DOTakeData>& takes, const QString& workFolder,
                        const QList<DOClipData>& clips);

    // Material of a clip (mode 0) and of a multi-clip take (mode 1).
    DOMaterial createMaterialData(const DOClipData& clip);
    DOMaterial createMaterialData(const DOTakeData& take);
    // The essence component of a clip.
    DOComponent createComponentData(const DOClipData& clip);
    // A clip of a multi-clip take: its take-info reference and UMID.
    DOComponent createTakeComponentData(const QString& uri, const QString& umid);
    // Relevant info 0 "XML", 1 "BiM" or 2 "PPN" of a clip or take.
    template <class Record> DORelevantInfo createRelevantInfo(const Record& record, int index);

    // After takes were copied or moved into a folder: creates its media
    // profile when missing (taking the source's media name, which is then
    // announced), sets the media id when one is given, and rewrites the
    // profile from the takes sorted by creation date.
    bool createCopyMediaPro(const QString& toFolder, const QList<DOTakeData>& takes,
                            const QString& fromFolder, const QString& mediaId);
    // Removes the materials of the takes and of their clips (found by
    // reference and UMID together).
    // upVer tells that the takes left in the folder include a 720-line take:
    // the version becomes "1.20". Nothing is saved when a removal fails.
    bool deleteMaterial(const QList<DOTakeData>& takes, const QString& workFolder, bool upVer);
    // Removes the materials whose reference lies in one of the folders (or is
    // one of the files) given below the BPAV folder ("CLPR/ABC0001"): what a
    // move took away. Nothing is written when none does, or when the profile
    // cannot be read (a scan then makes it anew from the folders).
    bool deleteMaterialsIn(const QString& workFolder, const QStringList& paths);
    // Removes the material when its UMID is the given one.
    bool deleteMaterial(BLMediaProfileAcss& mediaPro, const DOMaterial& material, const QString& umid);

    // After clips were deleted from the operation's source folder: its cue-up
    // info loses its first entry when that names a deleted UMID.
    bool updateCueUpByClipDelete(const DOClipCtrl& clipCtrl);

    // A component naming a take that lies on another medium.
    DOComponent createComponent(const DOTakeData& take, const QString& mediaId);
    // Whether a component of the list carries the UMID.
    bool checkComponent(const QList<DOComponent>& components, const QString& umid);

    // Posts SCMediaNameDidChangeNotification (not coalesced) for the main thread.
    void sendMediaNameDidChangeNotificationOnMainThread(const QVariantMap& userInfo);

    // "1.20" when any take is 720-line, else "1.10".
    static QString versionFor(const QList<DOTakeData>& takes);
    // UMIDs compared as stored (last 64 characters), ignoring case.
    static bool isSameUmid(const QString& umid, const QString& umid2);
};

template <class Record> DORelevantInfo BLMediaProCtrl::createRelevantInfo(const Record& record, int index)
{
    DORelevantInfo info;
    switch (index) {
    case 0:
        info.setUri(record.getXMLUri());
        info.setType(QStringLiteral("XML"));
        break;
    case 1:
        info.setUri(record.getBIMUri());
        info.setType(QStringLiteral("BiM"));
        break;
    case 2:
        info.setUri(record.getPPNUri());
        info.setType(QStringLiteral("PPN"));
        break;
    default:
        break;
    }
    return info;
}
