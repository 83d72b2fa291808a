#pragma once

#include <QDateTime>
#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>

class BLProgressThread;

// The ASC MHL v2 history of a folder: an "ascmhl" folder at its root with one
// manifest per generation ("NNNN_<folder>_<date>_<time>Z.mhl", a hashlist in
// urn:ASC:MHL:v2.0 with one xxh64 per file) and the chain file
// "ascmhl_chain.xml" listing each generation with the C4 id of its manifest.
class BLMhlHistory
{
public:
    static inline const QString kFolderName = QStringLiteral("ascmhl");
    static inline const QString kChainName = QStringLiteral("ascmhl_chain.xml");

    // One file of a manifest: path relative to the root ("/" separated).
    struct Entry
    {
        QString path;
        qint64 size = 0;
        QDateTime modified;
        quint64 hash = 0;
        QString action; // "original", "verified" or "failed"
    };

    // The folder checked against its history: files listed and found with
    // another hash, listed and not found, found and not listed. Every file
    // found is in entries with its hash and the action a new generation gives
    // it ("verified" when it matches, "original" when new).
    struct Check
    {
        QStringList altered, missing, added;
        QList<Entry> entries;
        bool unreadable = false; // a file could not be read (its path is in altered)
        bool cancelled = false;
        bool ok() const { return altered.isEmpty() && missing.isEmpty() && !cancelled; }
    };

    explicit BLMhlHistory(const QString& root);

    // Reads every generation of the folder's history; false (error()) when a
    // manifest cannot be read. A folder without history loads empty.
    bool load();
    int lastGeneration() const { return m_lastGeneration; }
    // Each file the history lists, with its latest entry.
    const QMap<QString, Entry>& files() const { return m_files; }
    QString error() const { return m_error; }

    // Hashes every file under the root (the history folder left out) and
    // compares it with the history. Cancel is tested between files and chunks.
    Check check(BLProgressThread* thread) const;

    // Writes the next generation with these entries ("transfer" or
    // "in-place") and adds it to the chain; the manifest's path, or "" on
    // failure (error()).
    QString writeGeneration(const QList<Entry>& entries, const QString& process);

    // Relative paths of everything under a folder (folders too, marked by a
    // trailing "/"), sorted, the history folder at the root left out unless asked for.
    static QStringList contents(const QString& root, bool withHistory = false);
    // "c4" and the base58 of the data's SHA-512, 90 characters.
    static QString c4Id(const QByteArray& data);
    static QString hashText(quint64 hash);

private:
    QString m_root;
    QString m_error;
    int m_lastGeneration = 0;
    QMap<QString, Entry> m_files;
};
