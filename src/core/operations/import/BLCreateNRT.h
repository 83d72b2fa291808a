#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>

class BLNonMetaAcss;
class DOTakeData;

// Makes the non-real-time metadata file ("<name>M01.XML") of a clip folder
// made by the MP4 import, from the facts BLBIMCtrl holds about the clip's MP4
// file and from the clip's take record. A document the camera embedded in the
// MP4 file is kept, with a new UMID, title and last-update time; without one a
// document is built from scratch.
//
// Every operation answers true on success; the first failure ends the
// creation and leaves what was written so far on disk.
class BLCreateNRT
{
public:
    // For the clip folder nowFile (name N): writes nowFile/NM01.XML for the
    // essence nowFile/N.MP4. BLBIMCtrl must hold the facts of that file. The
    // take receives a new UMID when the embedded document is used.
    static bool createNonMetaFile(const QString& nowFile, DOTakeData& take);

    // Writes the bytes to path, replacing any file there.
    static bool createNonRealTimeMetaFile(const QByteArray& data, const QString& path);
    // A new UMID for the take, written as the document's target material.
    static bool restructNonMeta(BLNonMetaAcss& acss, DOTakeData& take);
    // Fills a new document, element by element in the schema order.
    static bool createNonRealTimeMetaData(BLNonMetaAcss& acss, const DOTakeData& take,
                                          const QString& nowFile);
    // The title: empty "usAscii" and one alias in the system language holding
    // the name of the clip's MP4 file without its extension. Replaces any title.
    static bool createTitle(BLNonMetaAcss& acss, const QString& nowFile);
    static bool createLastUpdate(BLNonMetaAcss& acss);

    // One operation per element.
    static bool createTargetMaterial(BLNonMetaAcss& acss, const DOTakeData& take);
    static bool createDuration(BLNonMetaAcss& acss);
    static bool createLtcChangeTable(BLNonMetaAcss& acss, const DOTakeData& take);
    static bool createCreationDate(BLNonMetaAcss& acss, const DOTakeData& take, const QString& nowFile);
    static bool createTypicalUbit(BLNonMetaAcss& acss);
    static bool createKeyFrame(BLNonMetaAcss& acss);
    static bool createBodyUmidBasicChangeTable(BLNonMetaAcss& acss, const DOTakeData& take);
    static bool createBodyUmidWhenChangeTable(BLNonMetaAcss& acss);
    static bool createBodyUmidWhereChangeTable(BLNonMetaAcss& acss);
    static bool createBodyUmidWhoChangeTable(BLNonMetaAcss& acss);
    static bool createKlvPacketTable(BLNonMetaAcss& acss);
    static bool createVideoFormat(BLNonMetaAcss& acss, const DOTakeData& take);
    static bool createAudioFormat(BLNonMetaAcss& acss, const DOTakeData& take);

    // The creation-date value for an MP4 file created at fileDate: the take's
    // own creation date when the file has no date or the file system's zero
    // date (1 January 1904), else the date in the metadata form.
    static QString creationDateValue(const QDateTime& fileDate, const DOTakeData& take);

    // The metadata and essence paths of a clip folder.
    static QString nonMetaPath(const QString& nowFile);
    static QString mp4Path(const QString& nowFile);
};
