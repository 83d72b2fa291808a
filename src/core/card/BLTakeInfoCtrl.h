#pragma once

#include "core/card/DOTakeData.h"
#include "core/card/DOTakeInfo.h"
#include "core/formats/metadata/DOTRef.h"

#include <QList>
#include <QString>

// Rewrites the clip list (the refs of the plain group) in a take's take-info
// file when clip operations split, join or rebuild multi-clip takes.
// Stateless; every answer is whether the file was read and written.
class BLTakeInfoCtrl
{
public:
    // Replaces the plain group's refs by one ref per entry (src is the
    // entry's UMID reference) and saves. The file on disk is unchanged unless
    // the whole new list could be written.
    static bool restructuringTakeInfo(const QString& path, const QList<DOTakeInfo>& takeInfo);

    // Writes the first part of a spanning take: the take's entries up to the
    // first one that names none of its own clips (found after the entry of its
    // first clip), followed by a ref to the spanning take that continues it.
    // The root's UMID becomes the take's. Yes without writing when every
    // entry names the take's own clips.
    static bool createTakeInfo(const QString& path, const DOTakeData& changeTake, const DOTakeData& spanTake);

private:
    static QList<DOTRef> getNewTakeInfo(const QString& src, const DOTakeData& take, const QString& addUmid);
};
