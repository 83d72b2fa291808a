#include "cardgen/CardGenerator.h"

#include "cardgen/BimWriter.h"
#include "cardgen/CardXml.h"
#include "cardgen/Mp4Writer.h"
#include "cardgen/Mpeg2Encoder.h"
#include "cardgen/PcmAudio.h"
#include "cardgen/PpnWriter.h"
#include "cardgen/Umid.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QRegularExpression>

#include <map>

namespace cardgen {

namespace {

struct FrameSize
{
    int width;
    int height;
    int mbps;
};

const std::map<QString, FrameSize> kSizes = {
    {QStringLiteral("1920x1080"), {1920, 1080, 35}},
    {QStringLiteral("1440x1080"), {1440, 1080, 25}},
    {QStringLiteral("1280x720"), {1280, 720, 35}},
    {QStringLiteral("tiny"), {320, 180, 35}},
};

const QStringList kFileKinds = {QStringLiteral("MP4"), QStringLiteral("XML"), QStringLiteral("SMI"),
                                QStringLiteral("BIM"), QStringLiteral("PPN")};

constexpr int kSecondsBetweenTakes = 10;

struct Clip
{
    ClipPlan plan;
    int card = 0;
    std::optional<Damage> damage;
    bool has(const QString& kind) const
    {
        return !(damage && damage->kind == Damage::Kind::Missing && damage->files.contains(kind));
    }
};

struct Take
{
    TakePlan plan; // multi-clip takes only
    bool multi = false;
    int card = 0;
    std::vector<int> clips; // indices into the run's clip list
    int spanPart = 0;
    QString spanOtherUmid;
};

struct Card
{
    QString workFolder;
    QString bpav;       // absolute
    QString createdTop; // the folder this run created at the top of the work folder
    bool createdWorkFolder = false;
    QString mediaId;
};

// Whether the camera's media profile lists the clip.
bool listed(const Clip& clip)
{
    return !clip.damage ||
           (clip.damage->kind != Damage::Kind::Unlisted && clip.damage->kind != Damage::Kind::Loose &&
            clip.damage->kind != Damage::Kind::Hidden);
}

// The folder scan's status for a single clip with this damage (-1: not seen).
int clipStatus(const Clip& clip)
{
    if (!clip.damage)
        return 0;
    switch (clip.damage->kind) {
    case Damage::Kind::Missing:
        if (clip.has(QStringLiteral("SMI")))
            return clip.has(QStringLiteral("MP4")) && clip.has(QStringLiteral("XML")) &&
                           clip.has(QStringLiteral("BIM")) && clip.has(QStringLiteral("PPN"))
                       ? 0
                       : 5;
        return clip.has(QStringLiteral("MP4")) && clip.has(QStringLiteral("XML")) &&
                       !clip.has(QStringLiteral("BIM")) && !clip.has(QStringLiteral("PPN"))
                   ? 3
                   : 5;
    case Damage::Kind::Unlisted:
    case Damage::Kind::NotOk:
        return 0;
    case Damage::Kind::Loose:
        return 4;
    case Damage::Kind::NoFtyp:
    case Damage::Kind::Co64:
        return 5;
    case Damage::Kind::Hidden:
        return -1;
    }
    return 5;
}

class CardWriter
{
public:
    explicit CardWriter(const Options& options) : m_options(options) {}
    std::optional<Manifest> run(QString* error);

private:
    bool fail(const QString& message)
    {
        m_error = message;
        return false;
    }
    bool validate();
    bool prepareCard(const QString& workFolder);
    void plan();
    bool assignDamages();
    bool writeClip(Clip& clip, const CodedVideo& video, ManifestClip& out);
    bool writeTake(const Take& take, ManifestTake& out);
    bool writeIndexes(int card);
    bool writeFile(const QString& absolute, const QByteArray& data, const QString& kind, int card,
                   std::vector<ManifestFile>& files);
    QString relativeToCard(int card, const QString& absolute) const;
    std::vector<const ClipPlan*> clipsOf(const Take& take) const;
    ManifestTake manifestTake(const Take& take) const;
    void removeCards();

    Options m_options;
    QString m_error;
    EssenceFormat m_format;
    FrameSize m_size{};
    std::vector<Card> m_cards;
    std::vector<Clip> m_clips;
    std::vector<Take> m_takes;
    Umid m_umids;
    QDateTime m_end;
    Manifest m_manifest;
    std::optional<PcmAudio> m_audio;
    TimeCode m_start;
};

bool CardWriter::validate()
{
    const Options& o = m_options;
    if (o.outputFolder.isEmpty())
        return fail(QStringLiteral("no output folder given"));
    if (o.layout != QStringLiteral("BPAV") && o.layout != QStringLiteral("PRIVATE/ORX/BPAV"))
        return fail(QStringLiteral("layout must be BPAV or PRIVATE/ORX/BPAV, not %1").arg(o.layout));
    const auto size = kSizes.find(o.size);
    if (size == kSizes.end())
        return fail(QStringLiteral("unknown frame size %1 (use %2)")
                        .arg(o.size, CardGenerator::sizeNames().join(QStringLiteral(", "))));
    m_size = size->second;
    const std::optional<FrameRate> rate = FrameRate::byName(o.frameRate);
    if (!rate)
        return fail(QStringLiteral("unknown frame rate %1 (use %2)")
                        .arg(o.frameRate, FrameRate::names().join(QStringLiteral(", "))));
    if (o.frames < 3 || o.frames % 3 != 0)
        return fail(QStringLiteral("the frame count must be a positive multiple of 3 "
                                   "(a GOP is stored as groups of an anchor and two B pictures)"));
    const int gop = o.gop == 0 ? rate->defaultGop : o.gop;
    if (gop < 3 || gop > 15 || gop % 3 != 0)
        return fail(QStringLiteral("the GOP length must be 3, 6, 9, 12 or 15"));
    if (o.audioTracks < 0 || o.audioTracks > 4)
        return fail(QStringLiteral("the number of audio tracks must be 0 to 4"));
    if (o.audioChannelsPerTrack < 1 || o.audioChannelsPerTrack > 2)
        return fail(QStringLiteral("an audio track has 1 or 2 channels"));
    if (o.quantizer < 2 || o.quantizer > 31)
        return fail(QStringLiteral("the quantiser scale must be 2 to 31"));
    static const QRegularExpression prefixPattern(QStringLiteral("^[A-Za-z0-9_-]{1,20}$"));
    if (!prefixPattern.match(o.prefix).hasMatch())
        return fail(QStringLiteral("the clip name prefix must be 1 to 20 letters, digits, '_' or '-'"));
    if (o.clips < 0)
        return fail(QStringLiteral("the number of clips cannot be negative"));
    for (int n : o.multiClipTakes) {
        if (n < 2)
            return fail(QStringLiteral("a multi-clip take joins at least 2 clips"));
    }
    if (o.spanningClips == 1 || o.spanningClips < 0)
        return fail(QStringLiteral("a spanning take joins at least 2 clips"));
    if (o.spanningClips > 0 && o.secondCardFolder.isEmpty())
        return fail(QStringLiteral("a spanning take needs a second card folder"));
    int total = o.clips + o.spanningClips;
    for (int n : o.multiClipTakes)
        total += n;
    if (total > 9999)
        return fail(QStringLiteral("at most 9999 clips"));
    const std::optional<TimeCode> start =
        TimeCode::parse(o.startTimecode, rate->tcBase, rate->dropCapable && !o.nonDropFrame);
    if (!start)
        return fail(QStringLiteral("bad start time code %1").arg(o.startTimecode));
    m_start = *start;

    m_format.rate = *rate;
    m_format.width = m_size.width;
    m_format.height = m_size.height;
    m_format.videoCodec = CardGenerator::videoCodecFor(m_size.width, m_size.height, m_size.mbps);
    m_format.audioTracks = o.audioTracks;
    m_format.audioChannelsPerTrack = o.audioChannelsPerTrack;
    m_options.gop = gop;
    return true;
}

bool CardWriter::prepareCard(const QString& workFolder)
{
    Card card;
    card.workFolder = QDir(workFolder).absolutePath();
    if (QFileInfo::exists(card.workFolder) && !QFileInfo(card.workFolder).isDir())
        return fail(QStringLiteral("%1 is not a folder").arg(card.workFolder));
    if (QFileInfo::exists(card.workFolder + QStringLiteral("/BPAV")) ||
        QFileInfo::exists(card.workFolder + QStringLiteral("/PRIVATE")))
        return fail(QStringLiteral("%1 already holds a card").arg(card.workFolder));
    card.createdWorkFolder = !QFileInfo::exists(card.workFolder);
    card.createdTop = card.workFolder + QLatin1Char('/') + m_options.layout.section(QLatin1Char('/'), 0, 0);
    card.bpav = card.workFolder + QLatin1Char('/') + m_options.layout;
    card.mediaId = Umid::mediaId(m_options.recorded, int(m_cards.size()) + 1);
    m_cards.push_back(card);
    QDir dir;
    if (!dir.mkpath(card.bpav + QStringLiteral("/CLPR")) || !dir.mkpath(card.bpav + QStringLiteral("/TAKR")))
        return fail(QStringLiteral("cannot create %1").arg(card.bpav));
    return true;
}

// Lays out the clips and takes: single clips first, then the multi-clip takes,
// then the spanning take. Clips are recorded one after another, with time
// codes running on from clip to clip.
void CardWriter::plan()
{
    const FrameRate& rate = m_format.rate;
    const TimeCodeClock clock(rate, m_start);
    const int clipSeconds = int((int64_t(m_options.frames) * rate.den + rate.num - 1) / rate.num);
    QDateTime when = m_options.recorded;
    int64_t frame = 0;

    auto addClip = [&](int card, int takeOffset) {
        Clip clip;
        clip.card = card;
        ClipPlan& p = clip.plan;
        p.number = int(m_clips.size()) + 1;
        p.name = m_options.prefix + QString::asprintf("%04d", p.number);
        p.folderName = p.name;
        p.umid = m_umids.next(when);
        p.frames = m_options.frames;
        p.takeOffset = takeOffset;
        p.created = when;
        p.start = clock.at(frame);
        p.last = clock.at(frame + p.frames - 1);
        frame += p.frames;
        when = when.addSecs(clipSeconds);
        m_clips.push_back(clip);
        return int(m_clips.size()) - 1;
    };
    auto addTake = [&](int card, int clipCount, int part) {
        Take take;
        take.multi = true;
        take.card = card;
        take.spanPart = part;
        // The take's UMID comes before its clips' so that it never shares their
        // time stamp and serial, however many clips it has.
        take.plan.umid = m_umids.next(when);
        for (int i = 0; i < clipCount; ++i)
            take.clips.push_back(addClip(card, i * m_options.frames));
        const ClipPlan& first = m_clips[size_t(take.clips.front())].plan;
        const ClipPlan& last = m_clips[size_t(take.clips.back())].plan;
        TakePlan& t = take.plan;
        t.folder = (part == 2 ? m_clips[size_t(m_takes.back().clips.front())].plan.name : first.name) +
                   QString::asprintf("U%02d", part == 2 ? 2 : 1);
        t.frames = clipCount * m_options.frames;
        t.created = first.created;
        t.start = first.start;
        t.last = last.last;
        m_takes.push_back(take);
    };

    for (int i = 0; i < m_options.clips; ++i) {
        Take take;
        take.clips.push_back(addClip(0, 0));
        m_takes.push_back(take);
        when = when.addSecs(kSecondsBetweenTakes);
    }
    for (int n : m_options.multiClipTakes) {
        addTake(0, n, 0);
        when = when.addSecs(kSecondsBetweenTakes);
    }
    if (m_options.spanningClips > 0) {
        const int firstPart = (m_options.spanningClips + 1) / 2;
        addTake(0, firstPart, 1);
        addTake(1, m_options.spanningClips - firstPart, 2);
        Take& a = m_takes[m_takes.size() - 2];
        Take& b = m_takes.back();
        a.plan.nextPartUmid = b.plan.umid;
        a.plan.nextPartBegin = a.plan.frames;
        a.plan.otherPartUri = QStringLiteral("file:///TAKR/%1/%2").arg(b.plan.folder, b.plan.smi());
        a.plan.otherPartUmid = b.plan.umid;
        a.plan.otherMediaId = m_cards[1].mediaId;
        a.plan.otherMediaName = m_options.mediaName;
        b.plan.otherPartUri = QStringLiteral("file:///TAKR/%1/%2").arg(a.plan.folder, a.plan.smi());
        b.plan.otherPartUmid = a.plan.umid;
        b.plan.otherMediaId = m_cards[0].mediaId;
        b.plan.otherMediaName = m_options.mediaName;
        b.plan.otherPartFirst = true;
        a.spanOtherUmid = b.plan.umid;
        b.spanOtherUmid = a.plan.umid;
    }
    m_end = when;
}

bool CardWriter::assignDamages()
{
    std::vector<int> singles;
    for (size_t i = 0; i < m_takes.size(); ++i) {
        if (!m_takes[i].multi)
            singles.push_back(int(i));
    }
    std::vector<bool> used(singles.size(), false);
    std::vector<Damage> automatic;
    for (const Damage& d : m_options.damages) {
        if (d.take == 0) {
            automatic.push_back(d);
            continue;
        }
        if (d.take > int(singles.size()))
            return fail(QStringLiteral("damage %1 names take %2, but there are only %3 single-clip takes")
                            .arg(d.name())
                            .arg(d.take)
                            .arg(singles.size()));
        if (used[size_t(d.take - 1)])
            return fail(QStringLiteral("take %1 is given two damages").arg(d.take));
        used[size_t(d.take - 1)] = true;
        m_clips[size_t(m_takes[size_t(singles[size_t(d.take - 1)])].clips.front())].damage = d;
    }
    int next = int(singles.size()) - 1;
    for (const Damage& d : automatic) {
        while (next >= 0 && used[size_t(next)])
            --next;
        if (next < 0)
            return fail(QStringLiteral("more damages than single-clip takes"));
        used[size_t(next)] = true;
        m_clips[size_t(m_takes[size_t(singles[size_t(next)])].clips.front())].damage = d;
    }
    for (Clip& clip : m_clips) {
        if (!clip.damage)
            continue;
        if (clip.damage->kind == Damage::Kind::Hidden)
            clip.plan.folderName = QLatin1Char('.') + clip.plan.name;
        if (clip.damage->kind == Damage::Kind::NotOk)
            clip.plan.status = QStringLiteral("NG");
    }
    return true;
}

QString CardWriter::relativeToCard(int card, const QString& absolute) const
{
    return QDir(m_cards[size_t(card)].workFolder).relativeFilePath(absolute);
}

std::vector<const ClipPlan*> CardWriter::clipsOf(const Take& take) const
{
    std::vector<const ClipPlan*> plans;
    for (int index : take.clips)
        plans.push_back(&m_clips[size_t(index)].plan);
    return plans;
}

bool CardWriter::writeFile(const QString& absolute, const QByteArray& data, const QString& kind, int card,
                           std::vector<ManifestFile>& files)
{
    QFile file(absolute);
    if (!file.open(QIODevice::WriteOnly) || file.write(data) != data.size() || !file.flush())
        return fail(QStringLiteral("cannot write %1: %2").arg(absolute, file.errorString()));
    files.push_back({kind, relativeToCard(card, absolute), data.size()});
    return true;
}

bool CardWriter::writeClip(Clip& clip, const CodedVideo& essence, ManifestClip& out)
{
    const ClipPlan& p = clip.plan;
    const Card& card = m_cards[size_t(clip.card)];
    const bool loose = clip.damage && clip.damage->kind == Damage::Kind::Loose;
    const QString clpr = card.bpav + QStringLiteral("/CLPR");
    const QString folder = loose ? clpr : clpr + QLatin1Char('/') + p.folderName;
    if (!loose && !QDir().mkpath(folder))
        return fail(QStringLiteral("cannot create %1").arg(folder));
    out.name = p.name;
    out.folder = relativeToCard(clip.card, loose ? folder + QLatin1Char('/') + p.mp4() : folder);
    out.umid = p.umid;
    out.frames = p.frames;
    out.counterClip = essence.params.counterClip;
    out.startTimecode = p.start.display();
    out.lastTimecode = p.last.display();
    out.expectedStatus = clipStatus(clip);

    const QByteArray xml =
        CardXml::nonRealTimeMeta(p.umid, p.frames, p.start, p.last, p.created, p.status, p.name, m_format);
    if (clip.has(QStringLiteral("MP4"))) {
        CodedVideo video = essence;
        const TimeCodeClock clock(m_format.rate, p.start);
        int first = 0;
        size_t index = 0;
        for (int n : video.chunkFrames) {
            Mpeg2Encoder::setGopTimeCode(video.pictures[index].data, clock.at(first));
            index += size_t(n);
            first += n;
        }
        Mp4Options mp4;
        mp4.created = p.created;
        mp4.maxBitrate = uint32_t(m_size.mbps) * 1000000;
        mp4.embeddedXml = m_options.embedXml ? xml : QByteArray();
        mp4.co64 = clip.damage && clip.damage->kind == Damage::Kind::Co64;
        mp4.leadingFree = clip.damage && clip.damage->kind == Damage::Kind::NoFtyp;
        // Every clip has the same length and so the same sound.
        if (!m_audio)
            m_audio = PcmAudio::make(m_format.rate, video.chunkFrames, m_format.audioTracks,
                                     m_format.audioChannelsPerTrack);
        const QString path = folder + QLatin1Char('/') + p.mp4();
        const std::optional<Mp4Layout> layout = Mp4Writer::write(path, video, *m_audio, mp4, &m_error);
        if (!layout)
            return false;
        out.files.push_back({QStringLiteral("MP4"), relativeToCard(clip.card, path), layout->fileSize});
        if (loose)
            return true;
        if (clip.has(QStringLiteral("PPN")) &&
            !writeFile(folder + QLatin1Char('/') + p.ppn(), PpnWriter::build(*layout), QStringLiteral("PPN"),
                       clip.card, out.files))
            return false;
    } else if (clip.has(QStringLiteral("PPN"))) {
        return fail(QStringLiteral("a picture pointer table needs its MP4 file; leave out PPN too"));
    }
    if (clip.has(QStringLiteral("XML")) &&
        !writeFile(folder + QLatin1Char('/') + p.xml(), xml, QStringLiteral("XML"), clip.card, out.files))
        return false;
    if (clip.has(QStringLiteral("SMI")) &&
        !writeFile(folder + QLatin1Char('/') + p.smi(), CardXml::clipTakeInfo(p, m_format),
                   QStringLiteral("SMI"), clip.card, out.files))
        return false;
    if (clip.has(QStringLiteral("BIM")) &&
        !writeFile(folder + QLatin1Char('/') + p.bim(),
                   BimWriter::build(TimeCodeClock(m_format.rate, p.start), p.frames), QStringLiteral("BIM"),
                   clip.card, out.files))
        return false;
    return true;
}

bool CardWriter::writeTake(const Take& take, ManifestTake& out)
{
    const TakePlan& t = take.plan;
    const QString folder = m_cards[size_t(take.card)].bpav + QStringLiteral("/TAKR/") + t.folder;
    if (!QDir().mkpath(folder))
        return fail(QStringLiteral("cannot create %1").arg(folder));
    return writeFile(folder + QLatin1Char('/') + t.smi(), CardXml::takeTakeInfo(t, clipsOf(take), m_format),
                     QStringLiteral("SMI"), take.card, out.files) &&
           writeFile(folder + QLatin1Char('/') + t.xml(),
                     CardXml::nonRealTimeMeta(t.umid, t.frames, t.start, t.last, t.created,
                                              QStringLiteral("OK"), t.folder, m_format),
                     QStringLiteral("XML"), take.card, out.files);
}

bool CardWriter::writeIndexes(int card)
{
    CardXml::MediaProfile profile;
    profile.createdAt = m_end;
    profile.mediaId = m_cards[size_t(card)].mediaId;
    profile.mediaName = m_options.mediaName;
    const ClipPlan* lastListed = nullptr;
    for (const Clip& clip : m_clips) {
        if (clip.card == card && listed(clip)) {
            profile.clips.push_back(&clip.plan);
            lastListed = &clip.plan;
        }
    }
    for (const Take& take : m_takes) {
        if (take.multi && take.card == card)
            profile.takes.push_back({&take.plan, clipsOf(take)});
    }
    const QString bpav = m_cards[size_t(card)].bpav;
    std::vector<ManifestFile>& files = m_manifest.cards[size_t(card)].files;
    return writeFile(bpav + QStringLiteral("/MEDIAPRO.XML"), CardXml::mediaProfile(profile, m_format),
                     QStringLiteral("MEDIAPRO"), card, files) &&
           writeFile(bpav + QStringLiteral("/CUEUP.XML"), CardXml::cueUp(lastListed), QStringLiteral("CUEUP"),
                     card, files);
}

ManifestTake CardWriter::manifestTake(const Take& take) const
{
    ManifestTake t;
    const Clip& first = m_clips[size_t(take.clips.front())];
    t.card = take.card;
    t.frameRate = m_format.rate.name;
    t.frameRateNum = m_format.rate.num;
    t.frameRateDen = m_format.rate.den;
    t.width = m_format.width;
    t.height = m_format.height;
    t.videoFormat = m_format.videoCodec;
    t.audioTracks = m_format.audioTracks;
    t.audioChannels = m_format.audioChannels();
    t.spanPart = take.spanPart;
    t.spanOtherUmid = take.spanOtherUmid;
    if (take.multi) {
        t.kind = QStringLiteral("multi");
        t.takeId = take.plan.folder;
        t.umid = take.plan.umid;
        t.frames = take.plan.frames;
        t.expectedStatus = take.spanPart > 0 ? 2 : 0;
        return t;
    }
    const bool loose = first.damage && first.damage->kind == Damage::Kind::Loose;
    t.kind = loose ? QStringLiteral("loose") : QStringLiteral("single");
    t.takeId = first.plan.folderName;
    t.umid = first.plan.umid;
    t.frames = first.plan.frames;
    t.expectedStatus = clipStatus(first);
    if (first.damage) {
        t.damage = first.damage->name();
        t.missingFiles = first.damage->kind == Damage::Kind::Missing ? first.damage->files : QStringList();
        t.listed = listed(first);
        if (first.damage->kind == Damage::Kind::NotOk)
            t.expectedStatus = 1;
    }
    return t;
}

void CardWriter::removeCards()
{
    for (const Card& card : m_cards) {
        QDir(card.createdTop).removeRecursively();
        if (card.createdWorkFolder)
            QDir(card.workFolder).removeRecursively();
    }
}

std::optional<Manifest> CardWriter::run(QString* error)
{
    QElapsedTimer timer;
    timer.start();
    auto failed = [&]() -> std::optional<Manifest> {
        removeCards();
        if (error)
            *error = m_error;
        return std::nullopt;
    };
    if (!m_options.recorded.isValid())
        m_options.recorded = QDateTime::currentDateTime();
    m_options.recorded.setTime(QTime(m_options.recorded.time().hour(), m_options.recorded.time().minute(),
                                     m_options.recorded.time().second()));
    if (!validate() || !prepareCard(m_options.outputFolder))
        return failed();
    if (m_options.spanningClips > 0 && !prepareCard(m_options.secondCardFolder))
        return failed();
    plan();
    if (!assignDamages())
        return failed();

    for (const Card& card : m_cards) {
        ManifestCard c;
        c.folder = card.workFolder;
        c.bpav = m_options.layout;
        c.mediaId = card.mediaId;
        c.mediaName = m_options.mediaName;
        m_manifest.cards.push_back(c);
    }

    VideoParams params;
    params.width = m_format.width;
    params.height = m_format.height;
    params.rate = m_format.rate;
    params.gop = m_options.gop;
    params.frames = m_options.frames;
    params.quantizer = m_options.quantizer;
    std::optional<CodedVideo> shared;
    if (m_options.fast && !(shared = Mpeg2Encoder::encode(params, &m_error)))
        return failed();

    for (Take& take : m_takes) {
        ManifestTake t = manifestTake(take);
        for (int index : take.clips) {
            Clip& clip = m_clips[size_t(index)];
            std::optional<CodedVideo> own;
            if (!shared) {
                params.counterClip = clip.plan.number;
                if (!(own = Mpeg2Encoder::encode(params, &m_error)))
                    return failed();
            }
            ManifestClip c;
            if (!writeClip(clip, shared ? *shared : *own, c))
                return failed();
            t.clips.push_back(c);
        }
        if (take.multi && !writeTake(take, t))
            return failed();
        for (const ManifestFile& f : t.files)
            t.size += f.size;
        for (const ManifestClip& c : t.clips) {
            for (const ManifestFile& f : c.files)
                t.size += f.size;
        }
        m_manifest.takes.push_back(t);
    }
    for (int card = 0; card < int(m_cards.size()); ++card) {
        if (!writeIndexes(card))
            return failed();
    }
    m_manifest.seconds = double(timer.nsecsElapsed()) / 1e9;

    const QString manifestPath = m_options.manifestPath.isEmpty()
                                     ? m_cards.front().workFolder + QStringLiteral("/cardgen-manifest.json")
                                     : m_options.manifestPath;
    QFile file(manifestPath);
    const QByteArray json = QJsonDocument(m_manifest.toJson()).toJson();
    if (!file.open(QIODevice::WriteOnly) || file.write(json) != json.size() || !file.flush()) {
        m_error = QStringLiteral("cannot write %1: %2").arg(manifestPath, file.errorString());
        file.close();
        file.remove();
        return failed();
    }
    return m_manifest;
}

} // namespace

std::optional<Damage> Damage::parse(const QString& text, QString* error)
{
    static const QRegularExpression pattern(QStringLiteral(
        "^(missing|unlisted|loose|noftyp|co64|hidden|notok)(?:=([A-Za-z0-9+]+))?(?:@(\\d+))?$"));
    const QRegularExpressionMatch m = pattern.match(text.trimmed().toLower());
    auto bad = [&](const QString& why) -> std::optional<Damage> {
        if (error)
            *error = QStringLiteral("bad damage \"%1\": %2").arg(text, why);
        return std::nullopt;
    };
    if (!m.hasMatch())
        return bad(QStringLiteral("use missing=KINDS, unlisted, loose, noftyp, co64, hidden or notok, "
                                  "optionally followed by @TAKE"));
    static const std::map<QString, Kind> kinds = {
        {QStringLiteral("missing"), Kind::Missing}, {QStringLiteral("unlisted"), Kind::Unlisted},
        {QStringLiteral("loose"), Kind::Loose},     {QStringLiteral("noftyp"), Kind::NoFtyp},
        {QStringLiteral("co64"), Kind::Co64},       {QStringLiteral("hidden"), Kind::Hidden},
        {QStringLiteral("notok"), Kind::NotOk}};
    Damage d;
    d.kind = kinds.at(m.captured(1));
    if (d.kind == Kind::Missing) {
        if (m.captured(2).isEmpty())
            return bad(QStringLiteral("name the missing files, e.g. missing=BIM+PPN"));
        for (const QString& kind : m.captured(2).toUpper().split(QLatin1Char('+'))) {
            if (!kFileKinds.contains(kind))
                return bad(QStringLiteral("%1 is not one of MP4, XML, SMI, BIM, PPN").arg(kind));
            if (!d.files.contains(kind))
                d.files << kind;
        }
        if (d.files.contains(QStringLiteral("MP4")) && !d.files.contains(QStringLiteral("PPN")))
            return bad(QStringLiteral("the picture pointer table is made from the MP4 file; "
                                      "missing=MP4 needs PPN as well"));
    } else if (!m.captured(2).isEmpty()) {
        return bad(QStringLiteral("only missing takes a list of files"));
    }
    d.take = m.captured(3).isEmpty() ? 0 : m.captured(3).toInt();
    if (!m.captured(3).isEmpty() && d.take < 1)
        return bad(QStringLiteral("takes are counted from 1"));
    return d;
}

QString Damage::name() const
{
    switch (kind) {
    case Kind::Missing:
        return QStringLiteral("missing");
    case Kind::Unlisted:
        return QStringLiteral("unlisted");
    case Kind::Loose:
        return QStringLiteral("loose");
    case Kind::NoFtyp:
        return QStringLiteral("noftyp");
    case Kind::Co64:
        return QStringLiteral("co64");
    case Kind::Hidden:
        return QStringLiteral("hidden");
    case Kind::NotOk:
        return QStringLiteral("notok");
    }
    return QString();
}

QStringList CardGenerator::sizeNames()
{
    QStringList names;
    for (const auto& entry : kSizes)
        names << entry.first;
    return names;
}

QString CardGenerator::videoCodecFor(int width, int height, int mbps)
{
    const bool cbr = mbps == 25;
    QString name = QString::asprintf(cbr ? "MPEG2HD%02dCBR_" : "MPEG2HD%02d_", mbps);
    switch (width) {
    case 720:
        name += QStringLiteral("720_");
        break;
    case 1280:
        name += QStringLiteral("1280_");
        break;
    case 1440:
        name += QStringLiteral("1440_");
        break;
    case 1920:
        name += QStringLiteral("1920_");
        break;
    default:
        name += QStringLiteral("-_");
        break;
    }
    switch (height) {
    case 480:
        name += QStringLiteral("480");
        break;
    case 720:
        name += QStringLiteral("720");
        break;
    case 1080:
        name += QStringLiteral("1080");
        break;
    default:
        name += QStringLiteral("-");
        break;
    }
    return name + (cbr ? QStringLiteral("_MP@H-14") : QStringLiteral("_MP@HL"));
}

std::optional<Manifest> CardGenerator::generate(const Options& options, QString* error)
{
    return CardWriter(options).run(error);
}

} // namespace cardgen
