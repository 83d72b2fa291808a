#pragma once

#include "core/model/DOClipData.h"
#include "core/model/DOTakeData.h"

#include <QList>
#include <QString>

// The service behind every operation on takes: it reads clip and take folders
// into records and fills them from their metadata. Keeps no state between
// calls; create one where needed. Every file reference is resolved inside the
// BPAV folder of the work folder concerned (BLCardPath).
class BLClipCtrl
{
public:
    // ---- reading a folder into records ----
    // One entry of the BPAV folder's CLPR folder as a clip: status 0 with all
    // of MP4, SMI, XML, BIM and PPN; 3 with MP4 and XML (its take-info
    // reference then names the clip folder); 4 for a loose MP4 file directly in
    // CLPR (with a new UMID); 5 otherwise. The MP4 contents are not examined.
    DOClipData checkCLPRFiles(const QString& workFolder, const QString& folderName);
    // One entry of the TAKR folder as a take: status 1 with its take info and
    // metadata, 5 otherwise; the take info, when there, gives its UMID, clip
    // UMIDs and take-info entries.
    DOTakeData checkTAKRFiles(const QString& workFolder, const QString& folderName);
    // A clip on this medium from references known from the media profile.
    DOClipData addClipList(const QString& umid, const QString& smi, const QString& mp4, const QString& xml,
                           const QString& bim, const QString& ppn, const QString& workFolder);

    // ---- filling records from metadata ----
    // Reads the take info at a path (already resolved) into the take: its UMID,
    // clip UMIDs and take-info entries from the plain group. False when the
    // file cannot be read.
    bool getTakeInfo(DOTakeData& take, const QString& smiPath);
    // Gives the take its clips from the list, in the order of its clip UMIDs,
    // and decides the statuses that follow: an unusable clip makes the take
    // unusable, a clip not on this medium makes it media spanning.
    void searchClip(DOTakeData& take, QList<DOClipData>& clips);
    // The clip of that UMID in the list (marked as existing), or null.
    static DOClipData* isClipData(const QString& umid, QList<DOClipData>& clips);
    // Fills the take and its clips from their non-real-time metadata.
    bool getNonRealData(DOTakeData& take, const QString& workFolder);
    bool getTakeNonRealMeta(DOTakeData& take, const QString& workFolder);
    bool getClipNonRealMeta(DOClipData& clip, const QString& workFolder);
    bool getTakeNonMetaData(DOTakeData& take, const QString& workFolder);
};
