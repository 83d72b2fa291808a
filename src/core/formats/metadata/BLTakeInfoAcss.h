#pragma once

#include "core/formats/metadata/BLDomXmlParse.h"
#include "core/formats/metadata/DOTSmil.h"

#include <QList>
#include <QString>

// Reads a take-info (SMIL) file into a DOTSmil and writes such records back
// into the loaded document, keeping every element and attribute it does not
// know. A position selects a group of the body: 0 the "par" under "switch",
// any other value the plain "par" directly under "body".
class BLTakeInfoAcss
{
public:
    static const QString kNameSpace;

    bool loadForFilePath(const QString& path);
    // A new document (root "smil" with the namespace and the UMID); written by save().
    bool createForFilePath(const QString& path, const QString& umid);
    bool save();
    bool isLoaded() const { return m_bLoaded; }

    // ---- reading (needs a loaded file) ----
    // The src text keeps only the body's clip elements whose "src" contains it
    // (all of them for empty text).
    bool getSmilData(DOTSmil& smil, const QString& src);
    bool getHeadData(DOTHead& head);
    bool getBodyData(DOTBody& body, const QString& src);
    bool getParData(DOTPar& par, const QString& src, int position);
    QList<DOTRef> getRefData(const QString& src, int position);
    QList<DOTVideo> getVideoData(const QString& src, int position);
    QList<DOTAudio> getAudioData(const QString& src, int position);
    QList<DOTMetastream> getMetastreamData(const QString& src, int position);

    // ---- writing ----
    bool setSmilData(const DOTSmil& smil);
    bool setHeadData(const DOTHead& head);
    bool setMetadataData(const DOTMetadata& metadata);
    // Writes only the groups that hold at least one ref.
    bool setBodyData(const DOTBody& body);
    bool setParData(const DOTPar& par, int position);
    // A list is validated as a whole before anything is written: every element
    // needs "src", "clipBegin" and "begin" (video, audio and metastream also
    // "clipEnd"). An element whose "src" is already in the group is updated
    // (the n-th of the list with one "src" updates the n-th of the group).
    bool setRefData(const QList<DOTRef>& refs, int position);
    bool setVideoData(const QList<DOTVideo>& videos, int position);
    bool setAudioData(const QList<DOTAudio>& audios, int position);
    bool setMetastreamData(const QList<DOTMetastream>& metastreams, int position);

    // Removes a clip (every clip element whose "src" equals the text, all of
    // them for empty text) from a group, then drops what became empty: the
    // whole body, the switch, or the plain par. 1 when something was removed.
    int delParData(const QString& src, int position);
    // Remove the elements of one kind whose "src" equals the text (all for
    // empty text); answer how many.
    int delRefData(const QString& src, int position);
    int delVideoData(const QString& src, int position);
    int delAudioData(const QString& src, int position);
    int delMetastreamData(const QString& src, int position);

    // Makes sure the body and the group's "par" exist.
    bool checkParTag(int position);

private:
    template <class T> QList<T> getClipElements(const QString& kind, const QString& src, int position);
    template <class T>
    bool setClipElements(const QList<T>& elements, const QString& kind, bool clipEndRequired, int position);
    int delClipElements(const QString& kind, const QString& src, int position);
    bool isGroupEmpty(int position);
    bool ensureHead();
    bool ensureChild(const QString& parentPath, const QString& name);
    int removeFirst(const QString& path);

    QString m_sFilePath;
    BLDomXmlParse m_xml;
    bool m_bLoaded = false;
};
