#pragma once

#include "core/card/DOClipData.h"
#include "core/card/DOTakeInfo.h"
#include "core/formats/metadata/DOComponent.h"
#include "core/formats/metadata/DOLtcChange.h"

#include <QList>
#include <QMetaType>
#include <QString>
#include <QStringList>

// A take: one thumbnail of a pane. Either a single clip (one CLPR folder), a
// multi-clip take (one TAKR folder whose take info lists several clips) or a
// loose MP4 file not yet imported. A value type: copies never share state, and
// copyTake() is the copy that the clipboard and the operations make.
//
// Take status: 0 complete; 1 complete but the metadata's status text is not
// "OK"; 2 multi-clip take with a clip on another medium (media spanning);
// 3 built from an MP4 file with its non-real-time metadata only; 4 loose MP4
// file not yet imported; 5 unusable (duration 0); 6 treated like 4 and 5.
//
// Text setters ignore a null QString (a value that is missing, as opposed to
// an empty text).
class DOTakeData
{
public:
    bool getCompleteFlag() const { return m_bCompleteFlag; }
    void setCompleteFlag(bool value) { m_bCompleteFlag = value; }
    bool getClipEndFlag() const { return m_bClipEndFlag; }
    void setClipEndFlag(bool value) { m_bClipEndFlag = value; }
    bool getSingleClipFlag() const { return m_bSingleClipFlag; }
    void setSingleClipFlag(bool value) { m_bSingleClipFlag = value; }
    bool getInvalidTakeFlag() const { return m_bInvalidTakeFlag; }
    void setInvalidTakeFlag(bool value) { m_bInvalidTakeFlag = value; }

    const QString& getUmid() const { return m_sUmid; }
    // Keeps the last 64 characters (a "urn:smpte:umid:" prefix is dropped).
    void setUmid(const QString& value);

    // UMIDs of the take's clips in order (stored as by setUmid()).
    const QStringList& getClipUmid() const { return m_arrClipUmid; }
    QString getClipUmid(int index) const { return m_arrClipUmid.value(index); }
    void setClipUmid(const QString& umid);
    void setClipUmid(const QString& umid, int no);
    void removeClipUmid(int index);
    void setArrClipUmid(const QStringList& umids);

    // UMIDs the take had before an operation gave it new ones.
    const QStringList& getOldUmid() const { return m_arrOldUmid; }
    QString getOldUmid(int index) const { return m_arrOldUmid.value(index); }
    void setOldUmid(const QString& umid);
    void setOldUmid(const QString& umid, int no);
    void removeOldUmid(int index);
    void setArrOldUmid(const QStringList& umids);

    // Next-take UMIDs, kept from the metadata.
    const QStringList& getNextTakeUmid() const { return m_arrNextTakeUmid; }
    QString getNextTakeUmid(int index) const { return m_arrNextTakeUmid.value(index); }
    void setNextTakeUmid(const QString& umid);
    void setNextTakeUmid(const QString& umid, int no);
    void removeNextTakeUmid(int index);
    void setArrNextTakeUmid(const QStringList& umids);

    qint64 getCurrentDuration() const { return m_llCurrentDuration; }
    void setCurrentDuration(qint64 value) { m_llCurrentDuration = value; }
    const QString& getOldFileName() const { return m_sOldFileName; }
    void setOldFileName(const QString& value) { setText(m_sOldFileName, value); }

    // The take's clips in order.
    const QList<DOClipData>& getClipData() const { return m_arrClipData; }
    // The clip at an index; an empty clip when there is none.
    DOClipData getClipData(int index) const { return m_arrClipData.value(index); }
    void setClipData(const DOClipData& clip);
    void setClipData(const DOClipData& clip, int no);
    void removeClipData(int index);
    void setArrClipData(const QList<DOClipData>& clips) { m_arrClipData = clips; }

    bool getRealFlag() const { return m_bRealFlag; }
    void setRealFlag(bool value) { m_bRealFlag = value; }

    const QString& getXMLUri() const { return m_XMLUri; }
    void setXMLUri(const QString& value) { setText(m_XMLUri, value); }
    const QString& getSMIUri() const { return m_SMIUri; }
    void setSMIUri(const QString& value) { setText(m_SMIUri, value); }
    const QString& getBIMUri() const { return m_BIMUri; }
    void setBIMUri(const QString& value) { setText(m_BIMUri, value); }
    const QString& getPPNUri() const { return m_PPNUri; }
    void setPPNUri(const QString& value) { setText(m_PPNUri, value); }
    const QString& getMP4Uri() const { return m_MP4Uri; }
    void setMP4Uri(const QString& value) { setText(m_MP4Uri, value); }

    const QString& getUsAscii() const { return m_sUsAscii; }
    void setUsAscii(const QString& value) { setText(m_sUsAscii, value); }
    const QString& getAlias() const { return m_sAlias; }
    void setAlias(const QString& value) { setText(m_sAlias, value); }
    const QString& getDescription() const { return m_sDescription; }
    void setDescription(const QString& value) { setText(m_sDescription, value); }
    const QString& getCreator() const { return m_sCreator; }
    void setCreator(const QString& value) { setText(m_sCreator, value); }
    const QString& getStatus() const { return m_sStatus; }
    void setStatus(const QString& value) { setText(m_sStatus, value); }
    const QString& getCreationDate() const { return m_sCreationDate; }
    void setCreationDate(const QString& value) { setText(m_sCreationDate, value); }
    const QString& getLastUpDate() const { return m_sLastUpDate; }
    void setLastUpDate(const QString& value) { setText(m_sLastUpDate, value); }
    const QString& getRecodingMode() const { return m_sRecodingMode; }
    void setRecodingMode(const QString& value) { setText(m_sRecodingMode, value); }
    const QString& getVideoCodec() const { return m_sVideoCodec; }
    void setVideoCodec(const QString& value) { setText(m_sVideoCodec, value); }
    const QString& getFormatFps() const { return m_sFormatFps; }
    void setFormatFps(const QString& value) { setText(m_sFormatFps, value); }
    const QString& getPixel() const { return m_sPixel; }
    void setPixel(const QString& value) { setText(m_sPixel, value); }
    const QString& getNumOfVerticalLine() const { return m_sNumOfVerticalLine; }
    void setNumOfVerticalLine(const QString& value) { setText(m_sNumOfVerticalLine, value); }
    const QString& getARatio() const { return m_sAspectRatio; }
    void setARatio(const QString& value) { setText(m_sAspectRatio, value); }
    const QString& getNumOfChannel() const { return m_sNumOfChannel; }
    void setNumOfChannel(const QString& value) { setText(m_sNumOfChannel, value); }
    const QString& getAudioCodec() const { return m_sAudioCodec; }
    void setAudioCodec(const QString& value) { setText(m_sAudioCodec, value); }

    bool getMediaSpanning() const { return m_bMediaSpanning; }
    void setMediaSpanning(bool value) { m_bMediaSpanning = value; }
    const QString& getManufacturer() const { return m_sManufacturer; }
    void setManufacturer(const QString& value) { setText(m_sManufacturer, value); }
    const QString& getModelName() const { return m_sModelName; }
    void setModelName(const QString& value) { setText(m_sModelName, value); }

    // Bytes of the take's own folder (TAKR folder, or the clip folder of a
    // single clip); getTakeSize() adds the clips.
    qint64 getSize() const { return m_Size; }
    void setSize(qint64 value) { m_Size = value; }

    // The take info entries (multi-clip takes).
    const QList<DOTakeInfo>& getTakeInfo() const { return m_arrTakeInfo; }
    // The entry at an index; an empty entry when there is none.
    DOTakeInfo getTakeInfo(int index) const { return m_arrTakeInfo.value(index); }
    void setTakeInfoData(const DOTakeInfo& info) { m_arrTakeInfo.append(info); }
    void setTakeInfo(const DOTakeInfo& info, int index);
    void delTakeInfo(int index);
    void setArrTakeInfo(const QList<DOTakeInfo>& infos) { m_arrTakeInfo = infos; }

    qint32 getTakeStatus() const { return m_TakeStatus; }
    void setTakeStatus(qint32 value) { m_TakeStatus = value; }

    // The stored key frame, but never less than getOffset().
    qint64 getKeyFrame() const;
    void setKeyFrame(qint64 value) { m_llKeyFrame = value; }

    // The media profile's component entries of the take, including entries of
    // clips on other media ("file:///" references).
    const QList<DOComponent>& getTakeComponents() const { return m_TakeComponents; }
    void setTakeComponents(const QList<DOComponent>& components) { m_TakeComponents = components; }
    void addTakeComponent(const DOComponent& component) { m_TakeComponents.append(component); }
    void cleanTakeComponent() { m_TakeComponents.clear(); }

    const QString& getMPStatus() const { return m_MPStatus; }
    void setMPStatus(const QString& value) { setText(m_MPStatus, value); }
    bool getMateUpFlg() const { return m_bMateUpFlg; }
    void setMateUpFlg(bool value) { m_bMateUpFlg = value; }
    qint32 getTakeNumber() const { return m_TakeNumber; }
    void setTakeNumber(qint32 value) { m_TakeNumber = value; }
    qint32 getTotalTakeCount() const { return m_TotalTakeCount; }
    void setTotalTakeCount(qint32 value) { m_TotalTakeCount = value; }

    // LTC change entries.
    const QList<DOLtcChange>& getLtcChanges() const { return m_arrLtcChanges; }
    void setArrLtcChanges(const QList<DOLtcChange>& changes) { m_arrLtcChanges = changes; }
    void setLtcChange(const DOLtcChange& change) { m_arrLtcChanges.append(change); }
    // The entry at an index; an empty entry when there is none.
    DOLtcChange getLtcChange(int index) const { return m_arrLtcChanges.value(index); }

    const QString& getHalfStep() const { return m_halfStep; }
    void setHalfStep(const QString& value) { setText(m_halfStep, value); }
    const QString& getTcFps() const { return m_tcFps; }
    void setTcFps(const QString& value) { setText(m_tcFps, value); }

    // The first clip's offset when the take has clips, else its own.
    quint32 getOffset() const;
    void setOffset(quint32 value) { m_uiOffset = value; }

    // ---- derived values ----
    // The sum of the clips' durations, or the take's own duration without
    // clips; 0 for an unusable take (5 or 6), whatever its metadata says.
    // Sums stop at the largest value instead of wrapping.
    qint64 getTakeDuration() const;
    // The take's own size plus the sizes of all its clips.
    qint64 getTakeSize() const;
    // getTakeSize() as text in kilobytes ("#,##0" and the KB unit).
    QString getSearchTakeSize() const;
    // The name under the thumbnail: for status 4 the MP4 file's name without
    // extension, for statuses 0-3 the name of the folder holding the
    // non-real-time metadata, otherwise "".
    QString getTakeID() const;
    // The title with every carriage return and line feed replaced by a blank.
    // The name shown for the take: its take ID, or for an unusable take
    // (which has none) the name of the folder that holds its files.
    QString getShownTakeID() const;
    QString getSingleLineAlias() const;
    // "<pixels> X <lines>", or "" when either is empty.
    QString getResolution() const;
    // The video format up to its first "_".
    QString getVideoFormat() const;
    // Six lines " <label><value> " joined by "\r": video format, resolution,
    // frame-rate name, aspect ratio, size in kilobytes and duration.
    QString getToolTip() const;
    // The creation date of the last clip, or the take's own without clips.
    QString getClipCreationDate() const;
    // Orders two takes by getClipCreationDate(), ignoring case: negative, 0 or
    // positive.
    int compareByCreationDate(const DOTakeData& other) const;
    bool Is720SP() const;
    bool IsHQMode() const;
    // Whether every non-empty reference is an existing file under the BPAV
    // folder of a work folder: XML, MP4, then (except for status 3, whose SMI
    // reference names a folder) SMI, BIM, PPN; then every clip's own files.
    bool isAllFileExist(const QString& workFolder) const;

    // ---- copies ----
    // A copy of every field, the clips by copyClip(), the take info entries by
    // copyTakeInfo(); the time code rate and half-step texts keep their
    // starting values.
    DOTakeData copyTake() const;

    // ---- component list (media spanning) ----
    // Inserts at the front, first removing a leading "file:///" entry.
    void addFrontComponent(const DOComponent& component);
    // Appends, first removing a trailing "file:///" entry.
    void addRearComponent(const DOComponent& component);
    // Rebuilds the list from the given components and the take's own as:
    // (1) the given entries before their first "CLPR" entry; (2) the given
    // entries from there up to their first "file:///" entry together with the
    // take's own entries from its first "CLPR" entry up to its next "file:///"
    // entry, sorted by DOComponent::compareByUri(); (3) the take's own
    // "file:///" entry that ends its "CLPR" run, if any. Entries carrying the
    // take's UMID or the given UMID (ignoring case) and repeated UMIDs are left
    // out.
    void rebuildTakeComponent(const QString& umid, const QList<DOComponent>& components);
    // Removes, from the last entry to the first, every entry not on this medium
    // (no "CLPR" in its reference) that carries the take's own UMID, or that
    // carries the UMID of one of the given takes or of one of their clips.
    void removeTakeComponent(const QList<DOTakeData>& takes);

    // ---- debug dump ----
    // Writes the take to the log, one line per field, between numbered start
    // and end lines.
    void debugLog(int index) const;
    // Writes every take of a list with its index.
    static void debugDOTakeDataLog(const QList<DOTakeData>& takes);

private:
    static void setText(QString& field, const QString& value)
    {
        if (!value.isNull())
            field = value;
    }

    bool m_bCompleteFlag = false;
    bool m_bClipEndFlag = false;
    bool m_bSingleClipFlag = false;
    bool m_bInvalidTakeFlag = false;
    QString m_sUmid;
    QStringList m_arrClipUmid;
    QStringList m_arrOldUmid;
    QStringList m_arrNextTakeUmid;
    qint64 m_llCurrentDuration = 0;
    QString m_sOldFileName;
    QList<DOClipData> m_arrClipData;
    bool m_bRealFlag = false;
    QString m_XMLUri;
    QString m_SMIUri;
    QString m_BIMUri;
    QString m_PPNUri;
    QString m_MP4Uri;
    QString m_sUsAscii;
    QString m_sAlias;
    QString m_sDescription;
    QString m_sCreator;
    QString m_sStatus;
    QString m_sCreationDate;
    QString m_sLastUpDate;
    QString m_sRecodingMode;
    QString m_sVideoCodec;
    QString m_sFormatFps;
    QString m_sPixel;
    QString m_sNumOfVerticalLine;
    QString m_sAspectRatio;
    QString m_sNumOfChannel;
    QString m_sAudioCodec;
    bool m_bMediaSpanning = false;
    QString m_sManufacturer;
    QString m_sModelName;
    qint64 m_Size = 0;
    QList<DOTakeInfo> m_arrTakeInfo;
    qint32 m_TakeStatus = 0;
    qint64 m_llKeyFrame = 0;
    QList<DOComponent> m_TakeComponents;
    QString m_MPStatus;
    bool m_bMateUpFlg = true;
    qint32 m_TakeNumber = 0;
    qint32 m_TotalTakeCount = 1;
    QList<DOLtcChange> m_arrLtcChanges;
    QString m_halfStep;
    QString m_tcFps;
    quint32 m_uiOffset = 0;
};

Q_DECLARE_METATYPE(DOTakeData)
