#pragma once

#include <QString>

// Where a file reference read from a card's index files (media profile, take
// info, clip metadata) may lead. References are relative to the BPAV folder
// ("./CLPR/ABC0001/ABC0001.MP4"). One that leaves that folder - through "..",
// as an absolute path, or through a symbolic link whose target lies outside -
// resolves to nothing and counts as a missing file, so a damaged or hostile
// card can never make the program open, copy, move or delete anything outside
// its BPAV folder. Every file operation on a reference goes through here.
class BLCardPath
{
public:
    // The absolute path of a reference strictly inside the BPAV folder; ""
    // when the reference is empty or absolute, or when it (or a symbolic link
    // on its way) leads outside. The path need not exist; a dangling link on
    // the way counts as leading outside.
    static QString resolveReference(const QString& bpavFolder, const QString& reference);

    // The folder that holds a record's files, from one of its references: the
    // reference's folder, or the reference itself when it has no extension (a
    // clip of status 3 names its folder that way). Only a folder at least two
    // levels below the BPAV folder (CLPR/<clip>, TAKR/<take>) is answered, so
    // removing a record's folder can never take the BPAV, CLPR or TAKR folder.
    static QString resolveRecordFolder(const QString& bpavFolder, const QString& reference);

    // Bytes of the folder holding the reference (resolveRecordFolder) in the
    // work folder's BPAV folder; 0 when there is none.
    static qint64 getFolderSize(const QString& reference, const QString& workFolder);

    // The reference resolves to an existing file (not a folder).
    static bool isFileOfReference(const QString& bpavFolder, const QString& reference);
};
