#include "cardgen/CardGenerator.h"
#include "cardgen/FrameRate.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QTextStream>

#include <cstdio>

using cardgen::CardGenerator;
using cardgen::Damage;
using cardgen::Options;

namespace {

int fail(const QString& message)
{
    QTextStream(stderr) << "cardgen: " << message << '\n';
    return 1;
}

bool toInt(const QString& text, int* value)
{
    bool ok = false;
    *value = text.toInt(&ok);
    return ok;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("cardgen"));

    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Writes a synthetic camera card (BPAV folder with clips, takes and index files) into "
                       "OUTPUT, and a manifest describing it (OUTPUT/cardgen-manifest.json)."));
    parser.addHelpOption();
    parser.addPositionalArgument(QStringLiteral("OUTPUT"),
                                 QStringLiteral("work folder that receives the card"));
    const QCommandLineOption layout(QStringLiteral("layout"),
                                    QStringLiteral("BPAV (default) or PRIVATE/ORX/BPAV."),
                                    QStringLiteral("LAYOUT"), QStringLiteral("BPAV"));
    const QCommandLineOption clips(QStringLiteral("clips"),
                                   QStringLiteral("Number of single-clip takes (default 3)."),
                                   QStringLiteral("N"), QStringLiteral("3"));
    const QCommandLineOption multi(QStringLiteral("multi"),
                                   QStringLiteral("Add a take in TAKR joining N clips (repeatable)."),
                                   QStringLiteral("N"));
    const QCommandLineOption span(
        QStringLiteral("span"),
        QStringLiteral("Add a take of N clips spread over OUTPUT and the --second-card folder."),
        QStringLiteral("N"));
    const QCommandLineOption secondCard(QStringLiteral("second-card"),
                                        QStringLiteral("Work folder of the second card of a spanning take."),
                                        QStringLiteral("DIR"));
    const QCommandLineOption frames(QStringLiteral("frames"),
                                    QStringLiteral("Frames per clip, a multiple of 3 (default 30)."),
                                    QStringLiteral("N"), QStringLiteral("30"));
    const QCommandLineOption size(QStringLiteral("size"),
                                  QStringLiteral("Frame size: %1 (default 1920x1080; tiny is 320x180).")
                                      .arg(CardGenerator::sizeNames().join(QStringLiteral(", "))),
                                  QStringLiteral("SIZE"), QStringLiteral("1920x1080"));
    const QCommandLineOption rate(QStringLiteral("rate"),
                                  QStringLiteral("Frame rate: %1 (default 59.94i).")
                                      .arg(cardgen::FrameRate::names().join(QStringLiteral(", "))),
                                  QStringLiteral("NAME"), QStringLiteral("59.94i"));
    const QCommandLineOption gop(
        QStringLiteral("gop"),
        QStringLiteral("GOP length 3..15, a multiple of 3 (default 15, or 12 at 50 Hz)."),
        QStringLiteral("N"), QStringLiteral("0"));
    const QCommandLineOption audioTracks(QStringLiteral("audio-tracks"),
                                         QStringLiteral("PCM audio tracks, 0 to 4 (default 1)."),
                                         QStringLiteral("N"), QStringLiteral("1"));
    const QCommandLineOption audioChannels(QStringLiteral("audio-channels"),
                                           QStringLiteral("Channels per audio track, 1 or 2 (default 2)."),
                                           QStringLiteral("N"), QStringLiteral("2"));
    const QCommandLineOption embedXml(QStringLiteral("embed-xml"),
                                      QStringLiteral("Embed each clip's metadata document in its MP4 file."));
    const QCommandLineOption prefix(QStringLiteral("prefix"),
                                    QStringLiteral("Clip name prefix (default ABC: ABC0001, ABC0002, ...)."),
                                    QStringLiteral("TEXT"), QStringLiteral("ABC"));
    const QCommandLineOption damage(
        QStringLiteral("damage"),
        QStringLiteral("Damage a single-clip take (repeatable): missing=KIND[+KIND...] (MP4, XML, SMI, BIM, "
                       "PPN), unlisted, loose, noftyp, co64, hidden, notok; append @N to pick the N-th "
                       "single-clip take (default: from the last backwards)."),
        QStringLiteral("DAMAGE"));
    const QCommandLineOption fast(
        QStringLiteral("fast"),
        QStringLiteral("Encode the essence once and reuse it for every clip (only the metadata differs)."));
    const QCommandLineOption date(QStringLiteral("date"),
                                  QStringLiteral("Recording time of the first clip, ISO 8601 (default now)."),
                                  QStringLiteral("DATETIME"));
    const QCommandLineOption startTc(QStringLiteral("start-tc"),
                                     QStringLiteral("Time code of the first frame (default 00:00:00:00)."),
                                     QStringLiteral("TC"), QStringLiteral("00:00:00:00"));
    const QCommandLineOption ndf(QStringLiteral("ndf"),
                                 QStringLiteral("Non-drop-frame time code at 29.97 and 59.94 Hz."));
    const QCommandLineOption mediaName(QStringLiteral("media-name"), QStringLiteral("The card's media name."),
                                       QStringLiteral("TEXT"));
    const QCommandLineOption manifest(
        QStringLiteral("manifest"),
        QStringLiteral("Where to write the manifest (default OUTPUT/cardgen-manifest.json)."),
        QStringLiteral("PATH"));
    const QCommandLineOption quantizer(QStringLiteral("quantizer"),
                                       QStringLiteral("MPEG-2 quantiser scale 2..31 (default 4)."),
                                       QStringLiteral("Q"), QStringLiteral("4"));
    parser.addOptions({layout, clips, multi,       span,          secondCard, frames,   size,
                       rate,   gop,   audioTracks, audioChannels, embedXml,   prefix,   damage,
                       fast,   date,  startTc,     ndf,           mediaName,  manifest, quantizer});
    parser.process(app);

    if (parser.positionalArguments().size() != 1)
        return fail(QStringLiteral("give exactly one OUTPUT folder (see --help)"));
    Options o;
    o.outputFolder = parser.positionalArguments().front();
    o.layout = parser.value(layout);
    o.size = parser.value(size);
    o.frameRate = parser.value(rate);
    o.embedXml = parser.isSet(embedXml);
    o.prefix = parser.value(prefix);
    o.fast = parser.isSet(fast);
    o.startTimecode = parser.value(startTc);
    o.nonDropFrame = parser.isSet(ndf);
    o.mediaName = parser.value(mediaName);
    o.manifestPath = parser.value(manifest);
    o.secondCardFolder = parser.value(secondCard);
    const std::pair<const QCommandLineOption*, int*> numbers[] = {{&clips, &o.clips},
                                                                  {&frames, &o.frames},
                                                                  {&gop, &o.gop},
                                                                  {&audioTracks, &o.audioTracks},
                                                                  {&audioChannels, &o.audioChannelsPerTrack},
                                                                  {&quantizer, &o.quantizer}};
    for (const auto& [option, value] : numbers) {
        if (!toInt(parser.value(*option), value))
            return fail(QStringLiteral("--%1 needs a number").arg(option->names().front()));
    }
    if (parser.isSet(span) && !toInt(parser.value(span), &o.spanningClips))
        return fail(QStringLiteral("--span needs a number"));
    for (const QString& text : parser.values(multi)) {
        int n = 0;
        if (!toInt(text, &n))
            return fail(QStringLiteral("--multi needs a number"));
        o.multiClipTakes.push_back(n);
    }
    for (const QString& text : parser.values(damage)) {
        QString error;
        const std::optional<Damage> d = Damage::parse(text, &error);
        if (!d)
            return fail(error);
        o.damages.push_back(*d);
    }
    if (parser.isSet(date)) {
        o.recorded = QDateTime::fromString(parser.value(date), Qt::ISODate);
        if (!o.recorded.isValid())
            return fail(QStringLiteral("--date needs an ISO 8601 date and time"));
    }

    QString error;
    const std::optional<cardgen::Manifest> made = CardGenerator::generate(o, &error);
    if (!made)
        return fail(error);
    int clipCount = 0;
    for (const auto& take : made->takes)
        clipCount += int(take.clips.size());
    QTextStream(stdout) << QStringLiteral("cardgen: %1 takes, %2 clips in %3 (%4 s)\n")
                               .arg(made->takes.size())
                               .arg(clipCount)
                               .arg(made->cards.front().folder)
                               .arg(made->seconds, 0, 'f', 2);
    return 0;
}
