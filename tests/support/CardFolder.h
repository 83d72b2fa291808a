#pragma once

#include "cardgen/CardGenerator.h"

#include <QString>
#include <QTemporaryDir>

#include <optional>

namespace cwtest {

// A card made by cardgen in a temporary folder that goes away with the object.
// The work folder is <temp>/card (and <temp>/card2 for the second card of a
// spanning take); the options' folders are replaced by these.
class CardFolder
{
public:
    explicit CardFolder(cardgen::Options options = quick());

    // Small and fast: one 6-frame single clip at 320 x 180, 29.97p.
    static cardgen::Options quick();
    // quick() with these takes, their essence encoded once and shared.
    static cardgen::Options fast(int clips, std::vector<int> multiClipTakes = {});

    bool ok() const { return m_manifest.has_value(); }
    const QString& error() const { return m_error; }
    const cardgen::Manifest& manifest() const { return *m_manifest; }
    QString workFolder(int card = 0) const;
    QString bpav(int card = 0) const;
    // A path relative to a card's work folder, as the manifest gives them.
    QString path(const QString& relative, int card = 0) const;

private:
    QTemporaryDir m_dir;
    std::optional<cardgen::Manifest> m_manifest;
    QString m_error;
};

// A damage of a kind to a single-clip take (1-based), with the files it concerns.
cardgen::Damage damage(cardgen::Damage::Kind kind, int take, const QStringList& files = {});

} // namespace cwtest
