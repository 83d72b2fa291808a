#include "support/CardFolder.h"

namespace cwtest {

CardFolder::CardFolder(cardgen::Options options)
{
    options.outputFolder = m_dir.filePath(QStringLiteral("card"));
    if (options.spanningClips > 0)
        options.secondCardFolder = m_dir.filePath(QStringLiteral("card2"));
    m_manifest = cardgen::CardGenerator::generate(options, &m_error);
}

cardgen::Options CardFolder::quick()
{
    cardgen::Options options;
    options.clips = 1;
    options.frames = 6;
    options.size = QStringLiteral("tiny");
    options.frameRate = QStringLiteral("29.97p");
    return options;
}

cardgen::Options CardFolder::fast(int clips, std::vector<int> multiClipTakes)
{
    cardgen::Options options = quick();
    options.clips = clips;
    options.multiClipTakes = std::move(multiClipTakes);
    options.fast = true;
    return options;
}

cardgen::Damage damage(cardgen::Damage::Kind kind, int take, const QStringList& files)
{
    cardgen::Damage d;
    d.kind = kind;
    d.take = take;
    d.files = files;
    return d;
}

QString CardFolder::workFolder(int card) const
{
    return m_dir.filePath(card == 0 ? QStringLiteral("card") : QStringLiteral("card2"));
}

QString CardFolder::bpav(int card) const
{
    return workFolder(card) + QLatin1Char('/') +
           (ok() ? m_manifest->cards.front().bpav : QStringLiteral("BPAV"));
}

QString CardFolder::path(const QString& relative, int card) const
{
    return workFolder(card) + QLatin1Char('/') + relative;
}

} // namespace cwtest
