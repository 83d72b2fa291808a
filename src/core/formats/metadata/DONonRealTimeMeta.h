#pragma once

#include "core/formats/metadata/DOAudioFormat.h"
#include "core/formats/metadata/DOBodyUmidBasicChange.h"
#include "core/formats/metadata/DOBodyUmidWhenChange.h"
#include "core/formats/metadata/DOBodyUmidWhereChange.h"
#include "core/formats/metadata/DOBodyUmidWhoChange.h"
#include "core/formats/metadata/DODevice.h"
#include "core/formats/metadata/DOKeyFrame.h"
#include "core/formats/metadata/DOKlvPacket.h"
#include "core/formats/metadata/DOLtcChangeTable.h"
#include "core/formats/metadata/DONonMetaHeader.h"
#include "core/formats/metadata/DORecordingMode.h"
#include "core/formats/metadata/DOSubStream.h"
#include "core/formats/metadata/DOTargetMaterial.h"
#include "core/formats/metadata/DOTitle.h"
#include "core/formats/metadata/DOVideoFormat.h"

#include <QList>
#include <QString>

// The whole non-real-time metadata of a clip ("...M01.XML"), one field per
// element of the document.
class DONonRealTimeMeta
{
public:
    const DONonMetaHeader& getNonMetaHeader() const { return m_NonMetaHeader; }
    void setNonMetaHeader(const DONonMetaHeader& value) { m_NonMetaHeader = value; }
    const DOTargetMaterial& getTargetMaterial() const { return m_TargetMaterial; }
    void setTargetMaterial(const DOTargetMaterial& value) { m_TargetMaterial = value; }
    const QString& getDuration() const { return m_sDuration; }
    void setDuration(const QString& value) { m_sDuration = value; }
    const DOLtcChangeTable& getLtcChangeTable() const { return m_LtcChangeTable; }
    void setLtcChangeTable(const DOLtcChangeTable& value) { m_LtcChangeTable = value; }
    const QString& getCreationDate() const { return m_sCreationDate; }
    void setCreationDate(const QString& value) { m_sCreationDate = value; }
    const QString& getLastUpdate() const { return m_sLastUpdate; }
    void setLastUpdate(const QString& value) { m_sLastUpdate = value; }
    const QString& getTypicalUbit() const { return m_sTypicalUbit; }
    void setTypicalUbit(const QString& value) { m_sTypicalUbit = value; }
    const DOKeyFrame& getKeyFrame() const { return m_KeyFrame; }
    void setKeyFrame(const DOKeyFrame& value) { m_KeyFrame = value; }
    const QList<DOBodyUmidBasicChange>& getBasicChangeArray() const { return m_arrBasicChangeArray; }
    void setBasicChangeArray(const QList<DOBodyUmidBasicChange>& value) { m_arrBasicChangeArray = value; }
    const QList<DOBodyUmidWhenChange>& getWhenChangeArray() const { return m_arrWhenChangeArray; }
    void setWhenChangeArray(const QList<DOBodyUmidWhenChange>& value) { m_arrWhenChangeArray = value; }
    const QList<DOBodyUmidWhereChange>& getWhereChangeArray() const { return m_arrWhereChangeArray; }
    void setWhereChangeArray(const QList<DOBodyUmidWhereChange>& value) { m_arrWhereChangeArray = value; }
    const QList<DOBodyUmidWhoChange>& getWhoChangeArray() const { return m_arrWhoChangeArray; }
    void setWhoChangeArray(const QList<DOBodyUmidWhoChange>& value) { m_arrWhoChangeArray = value; }
    const QList<DOKlvPacket>& getKlvPacketArray() const { return m_arrKlvPacketArray; }
    void setKlvPacketArray(const QList<DOKlvPacket>& value) { m_arrKlvPacketArray = value; }
    const DOVideoFormat& getVideoFormat() const { return m_VideoFormat; }
    void setVideoFormat(const DOVideoFormat& value) { m_VideoFormat = value; }
    const DOAudioFormat& getAudioFormat() const { return m_AudioFormat; }
    void setAudioFormat(const DOAudioFormat& value) { m_AudioFormat = value; }
    const DOSubStream& getSubStream() const { return m_SubStream; }
    void setSubStream(const DOSubStream& value) { m_SubStream = value; }
    const DODevice& getDevice() const { return m_Device; }
    void setDevice(const DODevice& value) { m_Device = value; }
    const QString& getLens() const { return m_sLens; }
    void setLens(const QString& value) { m_sLens = value; }
    const QString& getCreator() const { return m_sCreator; }
    void setCreator(const QString& value) { m_sCreator = value; }
    const DOTitle& getTitle() const { return m_Title; }
    void setTitle(const DOTitle& value) { m_Title = value; }
    const QString& getDescription() const { return m_sDescription; }
    void setDescription(const QString& value) { m_sDescription = value; }
    const DORecordingMode& getRecordingMode() const { return m_RecordingMode; }
    void setRecordingMode(const DORecordingMode& value) { m_RecordingMode = value; }

private:
    DONonMetaHeader m_NonMetaHeader;
    DOTargetMaterial m_TargetMaterial;
    QString m_sDuration;
    DOLtcChangeTable m_LtcChangeTable;
    QString m_sCreationDate;
    QString m_sLastUpdate;
    QString m_sTypicalUbit;
    DOKeyFrame m_KeyFrame;
    QList<DOBodyUmidBasicChange> m_arrBasicChangeArray;
    QList<DOBodyUmidWhenChange> m_arrWhenChangeArray;
    QList<DOBodyUmidWhereChange> m_arrWhereChangeArray;
    QList<DOBodyUmidWhoChange> m_arrWhoChangeArray;
    QList<DOKlvPacket> m_arrKlvPacketArray;
    DOVideoFormat m_VideoFormat;
    DOAudioFormat m_AudioFormat;
    DOSubStream m_SubStream;
    DODevice m_Device;
    QString m_sLens;
    QString m_sCreator;
    DOTitle m_Title;
    QString m_sDescription;
    DORecordingMode m_RecordingMode;
};
