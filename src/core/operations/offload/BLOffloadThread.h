#pragma once

#include "core/formats/mhl/BLMhlHistory.h"
#include "core/services/BLProgressThread.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <atomic>
#include <memory>

// Copies a whole card folder bit for bit into one to four new folders. Each
// source file is read once in large chunks, hashed once with XXH64 and
// written to every destination at once (one writer thread per destination,
// a bounded pool of buffers). After each file a destination is flushed, its
// cached pages dropped and the file read back and hashed. A destination that
// fails is reported with the file and the reason and removed; the others go
// on. Each destination that verified gets the next generation of the folder's
// ASC MHL history. A cancel removes every destination.
class BLOffloadThread : public BLProgressThread
{
public:
    static constexpr int kMaxDestinations = 4;
    static constexpr qint64 kChunkSize = 8 * 1024 * 1024;
    static constexpr int kChunkCount = 12; // the buffers held at most: 96 MiB

    struct Destination
    {
        QString path;
        bool verified = false;
        QString failedFile; // relative path; empty when the failure concerns no file
        QString reason;     // why it failed; empty while it has not
        QString manifest;   // the generation written
        // Bytes written so far, -1 once failed (read by the progress while the writer works).
        std::shared_ptr<std::atomic<qint64>> written = std::make_shared<std::atomic<qint64>>(0);
    };

    // destinations: the folders to make (each must not exist; its parent must).
    BLOffloadThread(const QString& source, const QStringList& destinations);

    void loopProcess() override;
    // The whole run on the calling thread (the source is read on it); true
    // when every destination verified.
    bool run();

    const QString& source() const { return m_source; }
    const QList<Destination>& destinations() const { return m_destinations; }
    // Every file copied with its hash and action, in the manifests' order.
    const QList<BLMhlHistory::Entry>& files() const { return m_files; }
    qint64 totalBytes() const { return m_totalBytes; }
    bool wasCancelled() const { return m_cancelled; }
    // Why nothing was copied (an unreadable source, a source that does not
    // match its own history); "" otherwise.
    QString sourceError() const { return m_sourceError; }
    const BLMhlHistory::Check& sourceCheck() const { return m_sourceCheck; }

private:
    class Writer;
    void copyAll(const QStringList& items);
    void showProgress(const QString& file, qint64 read);

    QString m_source;
    QList<Destination> m_destinations;
    QList<BLMhlHistory::Entry> m_files;
    qint64 m_totalBytes = 0;
    bool m_cancelled = false;
    QString m_sourceError;
    BLMhlHistory::Check m_sourceCheck;
    qint64 m_startTime = 0;
    qint64 m_lastShown = 0;
};
