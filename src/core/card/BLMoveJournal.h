#pragma once

#include "core/card/BLTakeMover.h"

#include <QList>
#include <QString>

// The journal of a move of takes between two work folders, kept while the
// move runs so that a process stopped at any moment leaves a move that the
// next load of either folder ends: a take whose every folder arrived stays at
// the destination (what is left of it at the source goes), a take caught
// halfway goes back to the source, and copies under way are thrown away.
//
// The journal lies in the source's BPAV folder; the destination's BPAV folder
// holds a marker naming the source, so that loading either finds it. While a
// move runs, its process holds a lock on the source's BPAV folder, and a load
// leaves the journal alone.
class BLMoveJournal
{
public:
    static const QString kFileName;   // in the source's BPAV folder
    static const QString kMarkerName; // in the destination's BPAV folder

    BLMoveJournal() = default;
    BLMoveJournal(const BLMoveJournal&) = delete;
    BLMoveJournal& operator=(const BLMoveJournal&) = delete;
    // Releases the lock; a journal not finished stays for the next load.
    ~BLMoveJournal();

    // Takes the lock and writes the journal of the takes about to move (and
    // the marker). False when another move from the source runs or a file
    // cannot be written (failure() says which and why).
    bool begin(const QString& sourceWork, const QString& destinationWork,
               const QList<BLTakeMover::Take>& takes);
    // Every file is in place; only index files are left to write.
    bool setMoved();
    // The move is over: the marker and the journal go, the lock is released.
    void finish();
    QString failure() const { return m_failure; }

    // What a load found and did.
    struct Recovery
    {
        enum State
        {
            None,    // no interrupted move
            Busy,    // a move is running
            Ended,   // an interrupted move was ended
            NotEnded // one was found but could not be ended (detail says why)
        };
        State state = None;
        QString source;
        QString destination;
        int kept = 0;        // takes left at the destination
        int broughtBack = 0; // takes moved back to the source
        QString detail;
    };
    // Ends an interrupted move that the work folder was the source or the
    // destination of.
    static Recovery recover(const QString& workFolder);

private:
    int m_lock = -1;
    bool m_begun = false;
    QString m_journalPath;
    QString m_markerPath;
    QString m_failure;
};
