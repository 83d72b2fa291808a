#pragma once

// Cards written by cardgen, read back with the program's own readers: each
// side is an independent implementation of the card format, so each checks
// the other.
#include "support/CardFolder.h"
#include "support/QtPrinters.h"
#include "support/TestEnvironment.h"

#include <QFile>

#include <gtest/gtest.h>

namespace crosscheck {

// A card of single clips (no sound unless asked) in the given format.
inline cardgen::Options oneClipCard(const QString& size, const QString& rate, int frames = 6)
{
    cardgen::Options o = cwtest::CardFolder::quick();
    o.size = size;
    o.frameRate = rate;
    o.frames = frames;
    o.gop = 3;
    return o;
}

// The path of a clip's file of one kind ("MP4", "XML", ...); "" when it has none.
inline QString clipFile(const cwtest::CardFolder& card, const cardgen::ManifestClip& clip,
                        const QString& kind, int cardIndex = 0)
{
    for (const cardgen::ManifestFile& f : clip.files)
        if (f.kind == kind)
            return card.path(f.path, cardIndex);
    return {};
}

inline QByteArray local(const QString& path)
{
    return QFile::encodeName(path);
}

} // namespace crosscheck
