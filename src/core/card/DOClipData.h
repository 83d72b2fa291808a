#pragma once

#include "core/formats/metadata/DOLtcChange.h"

#include <QList>
#include <QString>

// A clip: one entry of a BPAV folder's "CLPR" folder, with its file references
// (relative to the BPAV folder, "./CLPR/<clip>/<file>") and essence properties.
// A value type; copyClip() is the copy that operations make.
//
// Clip status: 0 complete (MP4, SMI, XML, BIM and PPN); 3 MP4 and XML but not
// all of the rest (the SMI reference then names the clip folder); 4 a loose MP4
// file directly in "CLPR", not yet imported; 5 unusable.
class DOClipData
{
public:
    bool getExistFlag() const { return m_bExistFlag; }
    void setExistFlag(bool value) { m_bExistFlag = value; }
    bool getValidFlag() const { return m_bValidFlag; }
    void setValidFlag(bool value) { m_bValidFlag = value; }
    const QString& getUmid() const { return m_sClipUmid; }
    void setUmid(const QString& value) { m_sClipUmid = value; }
    const QString& getXMLUri() const { return m_XMLUri; }
    void setXMLUri(const QString& value) { m_XMLUri = value; }
    const QString& getSMIUri() const { return m_SMIUri; }
    void setSMIUri(const QString& value) { m_SMIUri = value; }
    const QString& getBIMUri() const { return m_BIMUri; }
    void setBIMUri(const QString& value) { m_BIMUri = value; }
    const QString& getPPNUri() const { return m_PPNUri; }
    void setPPNUri(const QString& value) { m_PPNUri = value; }
    const QString& getMP4Uri() const { return m_MP4Uri; }
    void setMP4Uri(const QString& value) { m_MP4Uri = value; }
    const QString& getFolderName() const { return m_sFolderName; }
    void setFolderName(const QString& value) { m_sFolderName = value; }
    bool getRealFlag() const { return m_bRealFlag; }
    void setRealFlag(bool value) { m_bRealFlag = value; }
    qint64 getCurrentDuration() const { return m_llCurrentDuration; }
    void setCurrentDuration(qint64 value) { m_llCurrentDuration = value; }
    const QString& getVideoCodec() const { return m_sVideoCodec; }
    void setVideoCodec(const QString& value) { m_sVideoCodec = value; }
    const QString& getAudioCodec() const { return m_sAudioCodec; }
    void setAudioCodec(const QString& value) { m_sAudioCodec = value; }
    const QString& getFormatFps() const { return m_sFormatFps; }
    void setFormatFps(const QString& value) { m_sFormatFps = value; }
    const QString& getNumOfChannel() const { return m_sNumOfChannel; }
    void setNumOfChannel(const QString& value) { m_sNumOfChannel = value; }
    const QString& getARatio() const { return m_sAspectRatio; }
    void setARatio(const QString& value) { m_sAspectRatio = value; }
    qint64 getSize() const { return m_Size; }
    void setSize(qint64 value) { m_Size = value; }
    qint32 getClipStatus() const { return m_ClipStatus; }
    void setClipStatus(qint32 value) { m_ClipStatus = value; }
    const QString& getMPStatus() const { return m_MPStatus; }
    void setMPStatus(const QString& value) { m_MPStatus = value; }
    bool getMateUpFlg() const { return m_bMateUpFlg; }
    void setMateUpFlg(bool value) { m_bMateUpFlg = value; }
    const QString& getCreationDate() const { return m_sCreationDate; }
    void setCreationDate(const QString& value) { m_sCreationDate = value; }
    quint32 getOffset() const { return m_uiOffset; }
    void setOffset(quint32 value) { m_uiOffset = value; }

    // LTC change entries.
    const QList<DOLtcChange>& getLtcChanges() const { return m_arrLtcChanges; }
    void setArrLtcChanges(const QList<DOLtcChange>& changes) { m_arrLtcChanges = changes; }
    void setLtcChange(const DOLtcChange& change) { m_arrLtcChanges.append(change); }
    // The entry at an index; an empty entry when there is none.
    DOLtcChange getLtcChange(int index) const { return m_arrLtcChanges.value(index); }

    // A copy of every field except the creation date, the LTC changes and the
    // mate-up flag, which keep their starting values.
    DOClipData copyClip() const;

    // Orders two clips by their creation-date texts, ignoring case (the XML
    // date form sorts chronologically): negative, 0 or positive.
    int compareByClipCreationDate(const DOClipData& other) const;

    // Whether every non-empty reference (XML, SMI, BIM, PPN, MP4, in that
    // order) is an existing file under the BPAV folder of a work folder.
    bool isAllFileExist(const QString& workFolder) const;

    // Whether a reference is empty or names an existing file under a BPAV folder.
    static bool isFileOrNone(const QString& bpavFolder, const QString& reference);

private:
    bool m_bExistFlag = false;
    bool m_bValidFlag = false;
    QString m_sClipUmid;
    QString m_XMLUri;
    QString m_SMIUri;
    QString m_BIMUri;
    QString m_PPNUri;
    QString m_MP4Uri;
    QString m_sFolderName;
    bool m_bRealFlag = false;
    qint64 m_llCurrentDuration = 0;
    QString m_sVideoCodec;
    QString m_sAudioCodec;
    QString m_sFormatFps;
    QString m_sNumOfChannel;
    QString m_sAspectRatio;
    qint64 m_Size = 0;
    qint32 m_ClipStatus = 0;
    QString m_MPStatus;
    bool m_bMateUpFlg = true;
    QString m_sCreationDate;
    QList<DOLtcChange> m_arrLtcChanges;
    quint32 m_uiOffset = 0;
};
