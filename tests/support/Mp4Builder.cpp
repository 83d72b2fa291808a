#include "support/Mp4Builder.h"

#include <QFile>

namespace cwtest {

QByteArray be16(quint32 v)
{
    QByteArray b(2, 0);
    b[0] = char(v >> 8);
    b[1] = char(v);
    return b;
}

QByteArray be32(quint32 v)
{
    QByteArray b(4, 0);
    for (int i = 0; i < 4; ++i)
        b[i] = char(v >> (24 - 8 * i));
    return b;
}

QByteArray be64(quint64 v)
{
    return be32(quint32(v >> 32)) + be32(quint32(v));
}

// ---- boxes ----

Mp4Box::Mp4Box(const QByteArray& type, const QByteArray& body, const QList<Mp4Box>& children)
    : type(type), body(body), children(children)
{
}

quint64 Mp4Box::size() const
{
    quint64 n = (largeSize ? 16 : 8) + quint64(body.size()) + padding;
    for (const Mp4Box& c : children)
        n += c.size();
    return n;
}

static QByteArray header(const Mp4Box& box)
{
    const quint64 size = box.size();
    if (box.largeSize)
        return be32(1) + box.type + be32(box.sizeHigh ? box.sizeHigh : quint32(size >> 32)) +
               be32(quint32(size));
    return be32(quint32(size)) + box.type;
}

QByteArray Mp4Box::bytes() const
{
    QByteArray out = header(*this) + body;
    for (const Mp4Box& c : children)
        out += c.bytes();
    out += QByteArray(qsizetype(padding), '\0');
    return out;
}

Mp4Box* Mp4Box::find(const QString& path)
{
    Mp4Box* box = this;
    for (const QString& part : path.split('/')) {
        const QStringList typeAndIndex = part.split(':');
        const QByteArray wanted = typeAndIndex[0].toLatin1();
        int nth = typeAndIndex.size() > 1 ? typeAndIndex[1].toInt() : 0;
        Mp4Box* next = nullptr;
        for (Mp4Box& c : box->children) {
            if (c.type == wanted && nth-- == 0) {
                next = &c;
                break;
            }
        }
        if (!next)
            return nullptr;
        box = next;
    }
    return box;
}

int Mp4Box::indexOf(const QByteArray& t) const
{
    for (int i = 0; i < children.size(); ++i) {
        if (children[i].type == t)
            return i;
    }
    return -1;
}

// ---- tracks ----

quint32 Mp4Track::sampleCount() const
{
    quint32 n = 0;
    for (quint32 s : samplesPerChunk)
        n += s;
    return n;
}

QList<quint64> Mp4Track::chunkSizes() const
{
    QList<quint64> sizes;
    qsizetype sample = 0;
    for (quint32 n : samplesPerChunk) {
        quint64 size = 0;
        if (sampleSizes.isEmpty()) {
            size = quint64(n) * bytesPerSample;
        } else {
            for (quint32 i = 0; i < n; ++i)
                size += sampleSizes.value(sample++);
        }
        sizes.append(size);
    }
    return sizes;
}

void Mp4Track::addVideoChunk(const QList<QByteArray>& pictures, const QByteArray& deps)
{
    QList<quint32> sizes;
    QByteArray data;
    for (const QByteArray& p : pictures) {
        sizes.append(quint32(p.size()));
        data += p;
    }
    addVideoChunk(sizes, deps, data);
}

void Mp4Track::addVideoChunk(const QList<quint32>& sizes, const QByteArray& deps, const QByteArray& data)
{
    samplesPerChunk.append(quint32(sizes.size()));
    sampleSizes += sizes;
    dependencies += deps;
    chunkData.append(data);
}

void Mp4Track::addAudioChunk(quint32 samples)
{
    samplesPerChunk.append(samples);
    chunkData.append(QByteArray());
}

QByteArray mpeg2SequenceStart(int width, int height, int aspect, int frameRateCode, bool progressive)
{
    QByteArray s("\x00\x00\x01\xB3", 4);
    s += char(width >> 4);
    s += char((width & 0x0F) << 4 | (height >> 8));
    s += char(height);
    s += char(aspect << 4 | frameRateCode);
    s += QByteArray("\xFF\xFF\xE0\x18", 4); // bit rate, marker, VBV size, no matrices
    // Sequence extension: Main profile at High level, 4:2:0.
    s += QByteArray("\x00\x00\x01\xB5", 4);
    s += char(0x14);
    s += char(0x40 | (progressive ? 0x08 : 0x00) | 0x02);
    s += QByteArray("\x00\x01\x00\x00", 4);
    s += QByteArray("\x00\x00\x01\xB8\x00\x08\x00\x00", 8); // GOP header
    s += QByteArray("\x00\x00\x01\x00\x00\x0F\xFF\xF8", 8); // picture header
    return s;
}

QByteArray mpeg2Picture(const QByteArray& prefix, int size)
{
    QByteArray p = prefix.left(size);
    p += QByteArray(size - p.size(), char(0x55));
    return p;
}

// ---- files ----

Mp4Track Mp4Builder::videoTrack(const QList<QByteArray>& chunkTypes, int pictureSize,
                                const QByteArray& sequenceStart)
{
    Mp4Track t;
    const QByteArray start =
        sequenceStart.isEmpty() ? mpeg2SequenceStart(1920, 1080, 3, 4, false) : sequenceStart;
    t.width = quint16(quint8(start[4]) << 4 | quint8(start[5]) >> 4);
    t.height = quint16((quint8(start[5]) & 0x0F) << 8 | quint8(start[6]));
    bool first = true;
    for (const QByteArray& types : chunkTypes) {
        QList<QByteArray> pictures;
        QByteArray deps;
        for (char type : types) {
            pictures.append(mpeg2Picture(first ? start : QByteArray("\x00\x00\x01\x00", 4), pictureSize));
            deps += type == 'I' ? kDepI : type == 'P' ? kDepP : kDepB;
            first = false;
        }
        t.addVideoChunk(pictures, deps);
    }
    return t;
}

Mp4Track Mp4Builder::audioTrack(const QByteArray& format, quint16 channels,
                                const QList<quint32>& samplesPerChunk)
{
    Mp4Track t;
    t.format = format;
    t.timescale = 48000;
    t.channels = channels;
    const int bits = format == "twos" ? 16 : format == "in24" ? 24 : 32;
    t.bytesPerSample = quint32(bits / 8 * channels);
    for (quint32 n : samplesPerChunk)
        t.addAudioChunk(n);
    t.timeToSample = {{t.sampleCount(), 1}};
    return t;
}

namespace {
Mp4Box ftypBox()
{
    return Mp4Box("ftyp", QByteArray("mp42") + be32(1) + QByteArray("mp42isom"));
}
} // namespace

Mp4Builder::Layout Mp4Builder::layout() const
{
    // Chunk c of every track, then chunk c + 1 of every track, ...
    Layout l;
    QList<QList<quint64>> sizes;
    int maxChunks = 0;
    for (const Mp4Track& t : tracks) {
        sizes.append(t.chunkSizes());
        maxChunks = qMax(maxChunks, int(t.samplesPerChunk.size()));
    }
    l.offsets.resize(tracks.size());
    const quint64 dataStart = ftypBox().size() + (mdatLargeSize ? 16 : 8);
    quint64 pos = dataStart;
    quint64 materialised = dataStart;
    for (int c = 0; c < maxChunks; ++c) {
        for (int t = 0; t < tracks.size(); ++t) {
            if (c >= sizes[t].size())
                continue;
            l.offsets[t].append(pos);
            const QByteArray& data = tracks[t].chunkData.value(c);
            if (!data.isEmpty())
                materialised = qMax(materialised, pos + quint64(data.size()));
            pos += sizes[t][c];
        }
    }
    l.body = QByteArray(qsizetype(materialised - dataStart), '\0');
    for (int t = 0; t < tracks.size(); ++t) {
        for (int c = 0; c < l.offsets[t].size(); ++c) {
            const QByteArray& data = tracks[t].chunkData.value(c);
            if (!data.isEmpty())
                l.body.replace(qsizetype(l.offsets[t][c] - dataStart), data.size(), data);
        }
    }
    l.padding = pos - materialised;
    return l;
}

quint64 Mp4Builder::chunkOffset(int track, int chunk) const
{
    return layout().offsets[track][chunk];
}

namespace {

QByteArray matrix()
{
    return be32(0x00010000) + be32(0) + be32(0) + be32(0) + be32(0x00010000) + be32(0) + be32(0) + be32(0) +
           be32(0x40000000);
}

Mp4Box fullBox(const QByteArray& type, const QByteArray& body, quint32 versionFlags = 0)
{
    return Mp4Box(type, be32(versionFlags) + body);
}

QByteArray visualSampleEntry(const Mp4Track& t)
{
    QByteArray e = QByteArray(6, '\0') + be16(1); // reserved, data reference index
    e += QByteArray(16, '\0');                    // pre-defined and reserved
    e += be16(t.width) + be16(t.height);
    e += be32(0x00480000) + be32(0x00480000) + be32(0); // resolution, reserved
    e += be16(1);                                       // frames per sample
    e += QByteArray(32, '\0');                          // compressor name
    e += be16(0x18) + be16(0xFFFF);                     // depth, pre-defined
    // esds with one-byte descriptor lengths: ES, decoder config, SL config.
    QByteArray decoderConfig = QByteArray(1, char(t.objectType)) + char(0x11) +
                               QByteArray("\x00\x10\x00", 3) + be32(t.maxBitrate) + be32(t.maxBitrate);
    QByteArray es = be16(1) + char(0) + char(0x04) + char(decoderConfig.size()) + decoderConfig +
                    QByteArray("\x06\x01\x02", 3);
    QByteArray esds = be32(0) + char(0x03) + char(es.size()) + es;
    e += Mp4Box("esds", esds).bytes();
    return Mp4Box(t.format, e).bytes();
}

QByteArray soundSampleEntry(const Mp4Track& t)
{
    QByteArray e = QByteArray(6, '\0') + be16(1);
    e += be16(0) + be16(0) + be32(0); // version, revision, vendor
    e += be16(t.channels) + be16(t.bytesPerSample * 8 / qMax<quint32>(1, t.channels));
    e += be16(0) + be16(0) + be32(t.timescale << 16);
    return Mp4Box(t.format, e).bytes();
}

} // namespace

Mp4Box Mp4Builder::trak(int index, const QList<quint64>& chunkOffsets) const
{
    const Mp4Track& t = tracks[index];
    const bool video = t.isVideo();
    const bool audio = t.format == "twos" || t.format == "in24" || t.format == "in32";
    const quint32 samples = t.sampleCount();

    QList<QPair<quint32, quint32>> stts = t.timeToSample;
    if (stts.isEmpty())
        stts = {{samples, 1001}};
    quint64 duration = 0;
    QByteArray sttsBody = be32(quint32(stts.size()));
    for (const auto& e : stts) {
        sttsBody += be32(e.first) + be32(e.second);
        duration += quint64(e.first) * e.second;
    }

    QByteArray stscBody;
    quint32 runs = 0;
    for (int c = 0; c < t.samplesPerChunk.size(); ++c) {
        if (c == 0 || t.samplesPerChunk[c] != t.samplesPerChunk[c - 1]) {
            stscBody += be32(quint32(c + 1)) + be32(t.samplesPerChunk[c]) + be32(1);
            ++runs;
        }
    }
    QByteArray stszBody;
    if (t.sampleSizes.isEmpty()) {
        stszBody = be32(t.constantSampleSize) + be32(samples);
    } else {
        stszBody = be32(0) + be32(quint32(t.sampleSizes.size()));
        for (quint32 s : t.sampleSizes)
            stszBody += be32(s);
    }
    QByteArray offsetsBody;
    for (int c = 0; c < t.samplesPerChunk.size(); ++c)
        offsetsBody += be32(quint32(chunkOffsets[c]));

    Mp4Box stbl("stbl");
    stbl.children << fullBox("stsd", be32(1) + (video ? visualSampleEntry(t) : soundSampleEntry(t)));
    stbl.children << fullBox("stts", sttsBody);
    if (video)
        stbl.children << fullBox("sdtp", t.dependencies);
    stbl.children << fullBox("stsc", be32(runs) + stscBody);
    stbl.children << fullBox("stsz", stszBody);
    stbl.children << fullBox("stco", be32(quint32(t.samplesPerChunk.size())) + offsetsBody);

    const QByteArray handler = video ? "vide" : audio ? "soun" : "tmcd";
    Mp4Box mediaHeader = video   ? fullBox("vmhd", QByteArray(8, '\0'), 1)
                         : audio ? fullBox("smhd", QByteArray(4, '\0'))
                                 : fullBox("nmhd", QByteArray());
    Mp4Box dinf("dinf", {}, {fullBox("dref", be32(1) + fullBox("url ", {}, 1).bytes())});
    Mp4Box minf("minf", {}, {mediaHeader, dinf, stbl});
    Mp4Box mdia("mdia", {},
                {fullBox("mdhd", be32(0) + be32(0) + be32(t.timescale) + be32(quint32(duration)) +
                                     be16(0x55C4) + be16(0)),
                 fullBox("hdlr", be32(0) + handler + QByteArray(12, '\0') + QByteArray("Handler", 8)), minf});
    Mp4Box tkhd =
        fullBox("tkhd",
                be32(0) + be32(0) + be32(quint32(index + 1)) + be32(0) + be32(quint32(duration)) +
                    QByteArray(8, '\0') + be16(0) + be16(0) + be16(audio ? 0x0100 : 0) + be16(0) + matrix() +
                    be32(video ? quint32(t.width) << 16 : 0) + be32(video ? quint32(t.height) << 16 : 0),
                7);
    return Mp4Box("trak", {}, {tkhd, mdia});
}

QList<Mp4Box> Mp4Builder::boxes() const
{
    const Layout l = layout();
    Mp4Box mdat("mdat", l.body);
    mdat.padding = l.padding;
    mdat.largeSize = mdatLargeSize;

    Mp4Box moov("moov");
    quint32 timescale = tracks.isEmpty() ? 30000 : tracks.first().timescale;
    moov.children << fullBox("mvhd", be32(0) + be32(0) + be32(timescale) + be32(0) + be32(0x00010000) +
                                         be16(0x0100) + QByteArray(10, '\0') + matrix() +
                                         QByteArray(24, '\0') + be32(quint32(tracks.size() + 1)));
    for (int i = 0; i < tracks.size(); ++i)
        moov.children << trak(i, l.offsets[i]);
    if (!xmlBody.isEmpty()) {
        Mp4Box hdlr =
            fullBox("hdlr", be32(0) + QByteArray("meta") + QByteArray(12, '\0') + QByteArray(1, '\0'));
        Mp4Box meta("meta", {}, {hdlr, Mp4Box("xml ", xmlBody)});
        moov.children << Mp4Box("udta", {}, {meta});
    }
    return {ftypBox(), mdat, moov};
}

QByteArray Mp4Builder::serialize(const QList<Mp4Box>& boxes)
{
    QByteArray out;
    for (const Mp4Box& b : boxes)
        out += b.bytes();
    return out;
}

namespace {
bool writeBox(QFile& file, const Mp4Box& box)
{
    if (file.write(header(box)) < 0 || file.write(box.body) != box.body.size())
        return false;
    for (const Mp4Box& c : box.children) {
        if (!writeBox(file, c))
            return false;
    }
    return box.padding == 0 || file.seek(file.pos() + qint64(box.padding));
}
} // namespace

bool Mp4Builder::write(const QString& path, const QList<Mp4Box>& boxes)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return false;
    quint64 total = 0;
    for (const Mp4Box& b : boxes) {
        if (!writeBox(file, b))
            return false;
        total += b.size();
    }
    return file.resize(qint64(total));
}

bool Mp4Builder::write(const QString& path, const QByteArray& data)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write(data) == data.size();
}

} // namespace cwtest
