#pragma once

#include "core/formats/metadata/BLDomXmlParse.h"
#include "core/formats/metadata/DOClip.h"

#include <QString>

// Reads and writes a folder's cue-up info, "CUEUP.XML": the history of clip
// entries where playback resumes. Anything else the file holds is kept.
class BLCueupInfoAcss
{
public:
    static inline const QString kFileName = QStringLiteral("CUEUP.XML");
    static inline const QString kNameSpace = QStringLiteral("urn:schemas-professionalDisc:cueupinfo");

    bool loadForFolderPath(const QString& folderPath);
    // A new document with the root and an empty history; written by save().
    bool createForFolderPath(const QString& folderPath);
    bool save();

    bool isLoaded() const { return m_bLoaded; }
    QString filePath() const { return m_sFilePath; }

    // Fills the record from the first entry, or from the first entry with the
    // record's uri when it has one. False when not loaded or on a query error;
    // true with the record unchanged when nothing matches.
    bool getClipData(DOClip& clip);
    // Adds the entry, or updates "umid" and "ftc" of the entry with that uri.
    bool setClipData(const DOClip& clip);
    // Removes the first entry with that uri; false when there is none.
    bool delClipData(const QString& uri);

private:
    QString m_sFilePath;
    BLDomXmlParse m_xml;
    bool m_bLoaded = false;
};
