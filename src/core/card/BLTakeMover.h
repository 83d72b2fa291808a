#pragma once

#include <QList>
#include <QString>
#include <QStringList>

class BLProgressThread;

// Moves the files of takes between the BPAV folders of two work folders so
// that, whatever moment the process stops at, each clip or take folder is
// whole at its place on one side or the other (or on both):
// - on one file system a folder moves by a single rename;
// - across file systems it is copied, flushed and verified into a staging
//   folder of the destination's BPAV folder and renamed into place only then;
//   the take's sources go once all of its folders are in place;
// - a folder is removed by renaming it into the staging folder first.
// Anything partial thus lies only in a staging folder, which can be thrown
// away. Nothing outside the two BPAV folders is touched.
class BLTakeMover
{
public:
    // One thing a take moves, by its path below the BPAV folder on each side
    // ("CLPR/ABC0001"): a clip or take folder, a loose MP4 file, or (copy) a
    // file of the take's own that stays at the source too. A clip folder keeps
    // the names of its files.
    struct Item
    {
        QString from;
        QString to;
        bool copy = false;
        qint64 files = 0; // the regular files it holds
        qint64 bytes = 0;
    };
    struct Take
    {
        QString umid;
        QStringList clipUmids;
        QList<Item> items;
    };
    // Results of moveTake.
    static constexpr int kMoved = 0;
    static constexpr int kFailed = 2;
    static constexpr int kCancelled = 3;

    // The hidden folder inside a BPAV folder that holds copies under way and
    // folders being removed.
    static const QString kStagingName;

    BLTakeMover(const QString& fromBpav, const QString& toBpav);
    QString fromBpav() const { return m_fromBpav; }
    QString toBpav() const { return m_toBpav; }

    // Whether the two BPAV folders lie on different file systems, found by a
    // trial rename between their staging folders: 0 same, 1 different, -1 the
    // trial failed (failureReason says why).
    int probe();
    void setCrossVolume(bool cross) { m_cross = cross; }
    bool isCrossVolume() const { return m_cross; }
    // The worker told of progress and asked about cancel, the amount done and
    // its maximum: files on one file system, MiB across two.
    void setProgress(BLProgressThread* thread, qint64* done, qint64 maxCount);

    // Moves a take's items to the destination. A cancel ends it after the
    // item under way (kCancelled); the take is then partly moved and
    // bringBack puts it back.
    int moveTake(const Take& take);
    // Puts the take back at the source as it was: items there twice lose
    // their destination copy, items only at the destination go back. An item
    // at the destination unlike its source (not of this move) stays.
    bool bringBack(const Take& take);
    // A take whose every item has arrived loses what is left at the source
    // (where it is like what arrived).
    bool completeTake(const Take& take);

    enum class Place
    {
        Source,      // nothing of it at the destination
        Destination, // every item at the destination (where it is also at the
                     // source, alike there)
        Split        // some items at the destination
    };
    Place placeOf(const Take& take) const;
    // Throws away the staging folders of both sides.
    void clearStaging();

    // The path and the reason of the last failure.
    QString failedPath() const { return m_failedPath; }
    QString failureReason() const { return m_failureReason; }

    // The regular files and bytes under a path (the path itself when a file).
    static void measure(const QString& path, qint64* files, qint64* bytes);

private:
    // Puts one item in place on the other side (from the source, or back
    // from the destination): a rename, or a verified copy through staging.
    int transfer(const QString& from, const QString& to, const QString& toBpav, const Item& item);
    int copyThroughStaging(const QString& source, const QString& destination, const QString& toBpav);
    int copyTree(const QString& source, const QString& destination);
    // Removes an item of one side by renaming it into that side's staging folder first.
    bool removeItem(const QString& bpav, const QString& relative);
    // The item is on both sides, alike: the same entries, files of the same
    // sizes. Only a copy this move made is; a folder of the same name
    // someone else put there is not.
    bool isDuplicate(const Item& item) const;
    static bool sameTree(const QString& path, const QString& path2);
    QString stagingOf(const QString& bpav) const;
    QString fromPath(const Item& item) const;
    QString toPath(const Item& item) const;
    bool fail(const QString& path, const QString& reason);
    // Counts a file or item done; kCancelled when a cancel is pending.
    int advance(qint64 files);

    QString m_fromBpav;
    QString m_toBpav;
    bool m_cross = false;
    BLProgressThread* m_thread = nullptr;
    qint64* m_done = nullptr;
    qint64 m_max = 0;
    QString m_failedPath;
    QString m_failureReason;
};
