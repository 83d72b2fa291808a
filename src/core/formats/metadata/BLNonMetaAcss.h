#pragma once

#include "core/formats/metadata/BLDomXmlParse.h"
#include "core/formats/metadata/DONonRealTimeMeta.h"

#include <QList>
#include <QString>
#include <QStringList>

// Reads a clip's non-real-time metadata file ("...M01.XML") into a
// DONonRealTimeMeta and writes it back element by element into the loaded
// document. Elements and attributes it does not know are kept. A new element
// is placed at its place in the schema order (after the nearest element that
// precedes it there, else before the nearest one that follows), so editing a
// camera-written file keeps the order the card format prescribes.
//
// Every writing operation stamps the root's "lastUpdate" with the current
// time first. An empty text given to setCreator, setDescription or as the
// value of setAlias deletes that item.
class BLNonMetaAcss
{
public:
    static const QString kNameSpace;
    static const QString kLibNameSpace;

    bool loadForFilePath(const QString& path);
    // A new document (root with the namespaces and "lastUpdate"); written by save().
    bool createForFilePath(const QString& path);
    // Stamps "lastUpdate" and writes the file.
    bool save();
    bool isLoaded() const { return m_bLoaded; }

    // ---- reading (needs a loaded file; a missing element is no failure) ----
    bool getNonMetaData(DONonRealTimeMeta& meta, const QString& lang);
    bool getNonMetaHeader(DONonMetaHeader& header);
    bool getTargetMaterial(DOTargetMaterial& target);
    bool getLtcChangeTable(DOLtcChangeTable& table);
    bool getKeyFrame(DOKeyFrame& keyFrame);
    bool getVideoFormat(DOVideoFormat& format);
    bool getAudioFormat(DOAudioFormat& format);
    bool getSubStream(DOSubStream& subStream);
    bool getDevice(DODevice& device);
    // "usAscii" and the alias of that language (left empty when there is none).
    bool getTitle(DOTitle& title, const QString& lang);
    bool getAlias(DOAlias& alias, const QString& lang);
    bool getRecordingMode(DORecordingMode& mode);
    QList<DOBodyUmidBasicChange> getBasicChangeTable();
    QList<DOBodyUmidWhenChange> getWhenChangeTable();
    QList<DOBodyUmidWhereChange> getWhereChangeTable();
    QList<DOBodyUmidWhoChange> getWhoChangeTable();
    QList<DOKlvPacket> getKlvPacket();
    QList<DOAudioRecPort> getRecPortArray();
    QList<DOElement> getElementArray();

    // ---- writing ----
    // Stamps the root's "lastUpdate" with now; false only without a root.
    bool setNonMetaHeader();
    // Declares the record's namespaces (each only when non-empty), then sets
    // the schema location (when "xsi" is declared) and "lastUpdate".
    bool setNonMetaHeader(const DONonMetaHeader& header);
    // Brings the default and "lib" namespaces to ver.1.30.
    bool updateVersion();

    bool setTargetMaterial(const DOTargetMaterial& target);
    bool setDuration(const QString& frames);
    // Empty text writes the current time.
    bool setCreationDate(const QString& date);
    // "LastUpdate" "value" := now.
    bool setLastUpdate();
    bool setTypicalUbit(const QString& value);
    bool setKeyFrame(const QString& frameCount);

    // Append entries to the table (made when missing).
    bool setLtcChangeTable(const DOLtcChangeTable& table);
    bool setBasicChangeTable(const QList<DOBodyUmidBasicChange>& changes);
    bool setWhenChangeTable(const QList<DOBodyUmidWhenChange>& changes);
    bool setWhereChangeTable(const QList<DOBodyUmidWhereChange>& changes);
    bool setWhoChangeTable(const QList<DOBodyUmidWhoChange>& changes);
    bool setKlvPacket(const QList<DOKlvPacket>& packets);
    // Replace the whole table; an existing table keeps its place in the file.
    bool updateLtcChangeTable(const DOLtcChangeTable& table);
    bool updateBasicChangeTable(const QList<DOBodyUmidBasicChange>& changes);

    // Each part is written only when its key fields are set: the port; the
    // codec and the format rate; the pixels and the line count; the pull-down
    // kind and the A-frame phase.
    bool setVideoFormat(const DOVideoFormat& format);
    bool setVideoRecPort(const QString& port);
    bool setVideoFrame(const DOVideoFrame& frame);
    bool setVideoLayout(const DOVideoLayout& layout);
    bool setPullDownSetting(const DOPullDownSetting& setting);
    bool setAudioFormat(const DOAudioFormat& format);
    // Nothing (and success) without a codec.
    bool setSubStream(const DOSubStream& subStream);
    // Nothing (and success) without manufacturer and model name.
    bool setDevice(const DODevice& device);
    // Nothing (and success) for empty text.
    bool setLens(const QString& modelName);
    // Nothing (and success) without both type and cache-rec values.
    bool setRecordingMode(const DORecordingMode& mode);

    // A new "Creator" goes before "Title"; without a title an empty one is made first.
    bool setCreator(const QString& name);
    // Edits the title: the alias of the record's language and "usAscii".
    bool setTitle(const DOTitle& title);
    // Makes "Title" when missing and sets "usAscii" (even when empty).
    bool setTitleData(const DOTitle& title);
    bool setAlias(const DOAlias& alias);
    bool setDescription(const QString& text);
    // True when the title has exactly one alias, in the language of the given one.
    bool isDeletableTitle(const DOAlias& alias);
    // Remove the element; false when it is not there exactly once.
    bool delCreatorData();
    bool delTitleData();
    bool delDescriptionData();
    bool delAliasData(const QString& lang);

private:
    // Element paths and the schema's child order, shared by the reading and
    // writing halves.
    static inline const QString kRoot = QStringLiteral("/NonRealTimeMeta");
    static inline const QString kTitle = QStringLiteral("/NonRealTimeMeta/Title");
    static inline const QString kAlias = QStringLiteral("/NonRealTimeMeta/Title/lib:Alias");
    static inline const QString kVideoFormat = QStringLiteral("/NonRealTimeMeta/VideoFormat");
    static inline const QString kVideoLayout = QStringLiteral("/NonRealTimeMeta/VideoFormat/VideoLayout");
    static inline const QString kAudioFormat = QStringLiteral("/NonRealTimeMeta/AudioFormat");
    static inline const QString kDevice = QStringLiteral("/NonRealTimeMeta/Device");

    // The order of the root's children in the card format's schema.
    static inline const QStringList kRootOrder = {"TargetMaterial",
                                                  "Duration",
                                                  "LtcChangeTable",
                                                  "CreationDate",
                                                  "LastUpdate",
                                                  "TypicalUbit",
                                                  "KeyFrame",
                                                  "BodyUmidBasicChangeTable",
                                                  "BodyUmidWhenChangeTable",
                                                  "BodyUmidWhereChangeTable",
                                                  "BodyUmidWhoChangeTable",
                                                  "KlvPacketTable",
                                                  "VideoFormat",
                                                  "AudioFormat",
                                                  "SubStream",
                                                  "Device",
                                                  "Lens",
                                                  "Creator",
                                                  "Title",
                                                  "Description",
                                                  "RecordingMode"};
    static inline const QStringList kVideoOrder = {"VideoRecPort", "VideoFrame", "VideoLayout"};
    static inline const QStringList kLayoutOrder = {"PullDownSetting"};
    static QString child(const QString& parentPath, const QString& name);
    static QString aliasPath(const QString& lang);

    int select(const QString& path) { return m_xml.selectNodeArray(path); }
    QString attribute(const QString& path, const QString& name);
    bool createElement(const QString& parentPath, const QStringList& order, const QString& name,
                       const QString& value = {});
    bool ensureElement(const QString& parentPath, const QStringList& order, const QString& name);
    bool appendEntry(const QString& tablePath, const QString& entryName);
    bool replaceTable(const QString& name);
    bool removeSingle(const QString& path);
    template <class T> QList<T> getChangeEntries(const QString& path);
    template <class T>
    bool setChangeEntries(const QString& tableName, const QString& entryName, const QList<T>& entries);

    QString m_sFilePath;
    BLDomXmlParse m_xml;
    bool m_bLoaded = false;
};
