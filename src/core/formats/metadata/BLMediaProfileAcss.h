#pragma once

#include "core/formats/metadata/BLDomXmlParse.h"
#include "core/formats/metadata/DOAttached.h"
#include "core/formats/metadata/DOComponent.h"
#include "core/formats/metadata/DOMaterial.h"
#include "core/formats/metadata/DOMediaProfileData.h"
#include "core/formats/metadata/DOMetadata.h"
#include "core/formats/metadata/DOProxy.h"
#include "core/formats/metadata/DORelevantInfo.h"
#include "core/formats/metadata/DOSystem.h"

#include <QList>
#include <QString>
#include <QStringList>

// Reads and writes a folder's media profile, "MEDIAPRO.XML": the index of
// every clip and multi-clip take of a BPAV folder. Elements and attributes are
// written in the card format's order; anything else the file holds (foreign
// namespaces, unknown elements and attributes) is kept as it is.
//
// One accessor serves one operation: load or create, read or change, save.
// Reads need a loaded file; a created document can be written and saved.
// Writes answer 0 on success and -1 when refused.
class BLMediaProfileAcss
{
public:
    // The default namespace of a media profile this program creates (the one
    // cameras write, so that a rebuilt index still reads in the camera). A
    // loaded file keeps its own.
    static inline const QString kNameSpace =
        QStringLiteral("urn:schemas-professionalDisc:mediaProfile:ver.1.00");
    static inline const QString kFileName = QStringLiteral("MEDIAPRO.XML");
    static inline const QString kSystemKind = QStringLiteral("ORX Clipwright ver.1.000");

    bool loadForFolderPath(const QString& folderPath);
    bool createForFolderPath(const QString& folderPath);
    bool initMediaPro();
    // Stamps "createdAt" and writes the file. A loaded file saved with an
    // empty media id gets a new one first (nothing is written if that fails).
    bool save(const QString& mediaId);
    bool updateAttachedData();

    bool isLoaded() const { return m_bLoaded; }
    // The file loaded ended in NUL bytes (read as if they were not there).
    bool wasPadded() const { return m_xml.wasPadded(); }
    QString filePath() const { return m_sFilePath; }

    // ---- reads ----
    // Search modes: 1 clips ("/CLPR/" + take id in the uri), 2 takes
    // ("/TAKR/" + take id), anything else the take id alone; an empty search
    // text keeps every material.
    bool getMediaPro(DOMediaProfileData& data, const QString& takeID, int searchMode);
    bool getSystemData(DOSystem& system);
    bool getAttachedData(DOAttached& attached);
    bool getMetadataData(DOMetadata& metadata);
    QList<DOMaterial> getMaterialData(const QString& takeID, int searchMode);
    // The children of the material with that uri (every material for an empty
    // uri) whose own uri contains the take id (all for an empty id).
    QList<DOComponent> getComponentData(const QString& materialUri, const QString& takeID);
    QList<DOProxy> getProxyData(const QString& materialUri, const QString& takeID);
    QList<DORelevantInfo> getRelevantInfoData(const QString& materialUri, const QString& takeID);

    // ---- writes ----
    int setSystemData(const DOSystem& system);
    int setAttachedData(const DOAttached& attached);
    int setMetadataData(const DOMetadata& metadata);
    // Adds each material, or updates the one with the same uri in place; empty
    // fields leave stored values. Refused for an empty list or a record
    // without uri (nothing is changed then).
    int setMaterialData(const QList<DOMaterial>& materials);
    // Adds or updates the children of the material with that uri; refused for
    // an empty list, a record without uri or a missing material.
    int setComponentData(const QList<DOComponent>& components, const QString& materialUri);
    int setProxyData(const QList<DOProxy>& proxies, const QString& materialUri);
    int setRelevantInfoDaata(const QList<DORelevantInfo>& infos, const QString& materialUri);

    // Makes the materials those of the list, in its order, each with the
    // components and relevant-info entries it carries (its proxies are not
    // written). A material already listed with the same uri and UMID keeps
    // its element: what the record does not write stays (a title, attributes
    // of other namespaces, proxies, unknown children), and so does what a
    // component or relevant-info entry of the same uri holds beyond the
    // record; an attribute the record writes but leaves empty goes. Anything
    // under Contents that is not a Material stays. -1 when refused.
    int replaceMaterialData(const QList<DOMaterial>& materials);

    bool delContentsData();
    int delMaterialData(const QString& materialUri);
    int delComponentData(const QString& materialUri);
    int delProxyData(const QString& materialUri);
    int delRelevantInfoData(const QString& materialUri);
    bool updateVersion(const QString& version);

private:
    // The query's count, or -1 when no file is loaded.
    int selectForRead(const QString& query);
    void getSystemTag(DOSystem& system) const;
    void getAtacchedTag(DOAttached& attached) const;
    void getMetadataTag(DOMetadata& metadata) const;
    void getMaterialTag(DOMaterial& material, int index);
    // The attributes of a child naming one file: its medium and the common ones.
    void getMediaFileTag(DOMediaFile& file, int index);
    void getComponentTag(DOComponent& component, int index);
    void getProxyTag(DOProxy& proxy, int index);
    void getRelevantInfoTag(DORelevantInfo& info, int index);

    template <class Record>
    QList<Record> getChildData(const QString& parentPath, const QString& kind, const QString& takeID,
                               void (BLMediaProfileAcss::*readRow)(Record&, int));
    template <class Record>
    int setChildData(const QList<Record>& records, const QString& materialUri, int kind);
    void writeLeadingAttributes(const DOComponent& component);
    void writeLeadingAttributes(const DOProxy& proxy);
    void writeLeadingAttributes(const DORelevantInfo& info);
    // The children of that kind of the material at the path, as the records
    // say (see replaceMaterialData).
    template <class Record>
    bool replaceChildData(const QList<Record>& records, const QString& materialPath, int kind);
    // Makes the element of kinds[kind] at 0-based place `placed` under the
    // parent the one of that key: moves a later one there, or inserts a new
    // one (created). `current` holds the keys of that kind in document order
    // and is kept in step. Selects the element.
    bool placeElement(const QString& parentPath, const QStringList& kinds, int kind, QStringList& current,
                      qsizetype placed, const QString& key, bool& created);
    // Removes the elements of the path after the first `keep`.
    bool removeFrom(const QString& path, int keep);
    // Removes every element the query selects; answers how many (-1 on a query error).
    int removeAll(const QString& query);
    // Adds an empty child of kinds[kind] to the element at parentPath where the
    // format wants it: after the last child of that kind or of a kind listed
    // before it, else first, so known children keep their order around
    // foreign ones. Selects the new child.
    bool addOrderedChild(const QString& parentPath, const QStringList& kinds, int kind);
    // Selects the Properties child of that kind (System, Attached, Metadata),
    // making it (and Properties) when missing: -1 on failure, 0 when it
    // existed, 1 when it was made.
    int selectProperty(int kind);

    QString m_sFilePath;
    BLDomXmlParse m_xml;
    bool m_bLoaded = false;
};
