#include "cardgen/Mp4Writer.h"

#include "cardgen/BoxBuilder.h"

#include <QFile>

namespace cardgen {

namespace {

constexpr uint32_t kVideoTrack = 1;
constexpr uint8_t kMpeg2MainProfile = 0x61;

// Seconds from 1904-01-01 (the MP4 epoch).
uint32_t mp4Time(const QDateTime& when)
{
    constexpr int64_t kEpochDelta = 2082844800; // 1904-01-01 .. 1970-01-01
    return uint32_t(when.toSecsSinceEpoch() + kEpochDelta);
}

void matrix(BoxBuilder& b)
{
    const uint32_t m[9] = {0x00010000, 0, 0, 0, 0x00010000, 0, 0, 0, 0x40000000};
    for (uint32_t v : m)
        b.u32(v);
}

// The sequence header and its extensions: everything of the first picture
// before its GOP header.
QByteArray sequenceHeaders(const QByteArray& firstPicture)
{
    const int gop = firstPicture.indexOf(QByteArray("\x00\x00\x01\xB8", 4));
    return gop > 0 ? firstPicture.left(gop) : QByteArray();
}

struct Run
{
    uint32_t firstChunk;
    uint32_t samples;
};

std::vector<Run> chunkRuns(const std::vector<int>& perChunk)
{
    std::vector<Run> runs;
    for (size_t i = 0; i < perChunk.size(); ++i) {
        if (runs.empty() || runs.back().samples != uint32_t(perChunk[i]))
            runs.push_back({uint32_t(i + 1), uint32_t(perChunk[i])});
    }
    return runs;
}

void writeStsc(BoxBuilder& b, const std::vector<int>& perChunk)
{
    const std::vector<Run> runs = chunkRuns(perChunk);
    b.beginFull("stsc", 0, 0);
    b.u32(uint32_t(runs.size()));
    for (const Run& r : runs) {
        b.u32(r.firstChunk);
        b.u32(r.samples);
        b.u32(1);
    }
    b.end();
}

void writeChunkOffsets(BoxBuilder& b, const std::vector<uint64_t>& offsets, bool co64)
{
    b.beginFull(co64 ? "co64" : "stco", 0, 0);
    b.u32(uint32_t(offsets.size()));
    for (uint64_t o : offsets) {
        if (co64)
            b.u64(o);
        else
            b.u32(uint32_t(o));
    }
    b.end();
}

void writeTkhd(BoxBuilder& b, uint32_t trackId, uint32_t created, uint32_t duration, bool audio, int width,
               int height)
{
    b.beginFull("tkhd", 0, 7);
    b.u32(created);
    b.u32(created);
    b.u32(trackId);
    b.u32(0);
    b.u32(duration);
    b.zeros(8);
    b.u16(0);             // layer
    b.u16(audio ? 1 : 0); // alternate group
    b.u16(audio ? 0x0100 : 0);
    b.u16(0);
    matrix(b);
    b.u32(uint32_t(width) << 16);
    b.u32(uint32_t(height) << 16);
    b.end();
}

void writeMdhdHdlr(BoxBuilder& b, uint32_t created, uint32_t timescale, uint32_t duration,
                   const char* handler, const char* name)
{
    b.beginFull("mdhd", 0, 0);
    b.u32(created);
    b.u32(created);
    b.u32(timescale);
    b.u32(duration);
    b.u16(0x55C4); // "und"
    b.u16(0);
    b.end();
    b.beginFull("hdlr", 0, 0);
    b.u32(0);
    b.fourcc(handler);
    b.zeros(12);
    b.bytes(QByteArray(name));
    b.u8(0);
    b.end();
}

void writeDinf(BoxBuilder& b)
{
    b.begin("dinf");
    b.beginFull("dref", 0, 0);
    b.u32(1);
    b.beginFull("url ", 0, 1); // the data is in this file
    b.end();
    b.end();
    b.end();
}

struct VideoTables
{
    std::vector<uint32_t> sizes;
    std::vector<int> ctts;      // presentation minus storage position, in frames
    std::vector<uint32_t> sync; // 1-based numbers of intra pictures
    std::vector<uint8_t> dependency;
};

VideoTables videoTables(const CodedVideo& video)
{
    VideoTables t;
    for (size_t s = 0; s < video.pictures.size(); ++s) {
        const CodedPicture& p = video.pictures[s];
        t.sizes.push_back(uint32_t(p.data.size()));
        t.ctts.push_back(p.display - int(s));
        if (p.type == 'I')
            t.sync.push_back(uint32_t(s + 1));
        // sample_depends_on / sample_is_depended_on: I 0x24 (depends on none),
        // P 0x14 (depends, referenced), B 0x19 (depends, not referenced).
        t.dependency.push_back(p.type == 'I' ? 0x24 : p.type == 'P' ? 0x14 : 0x19);
    }
    return t;
}

void writeVideoTrack(BoxBuilder& b, const CodedVideo& video, const Mp4Layout& layout,
                     const Mp4Options& options, uint32_t created)
{
    const VideoParams& params = video.params;
    const VideoTables t = videoTables(video);
    const uint32_t duration = uint32_t(video.pictures.size()) * uint32_t(params.rate.sampleDelta());
    const int displayWidth = params.width == 1440 ? 1920 : params.width;

    b.begin("trak");
    writeTkhd(b, kVideoTrack, created, duration, false, displayWidth, params.height);
    b.begin("mdia");
    writeMdhdHdlr(b, created, uint32_t(params.rate.timescale()), duration, "vide", "Video Media Handler");
    b.begin("minf");
    b.beginFull("vmhd", 0, 1);
    b.zeros(8);
    b.end();
    writeDinf(b);
    b.begin("stbl");

    b.beginFull("stsd", 0, 0);
    b.u32(1);
    b.begin("mp4v");
    b.zeros(6);
    b.u16(1); // data reference index
    b.zeros(16);
    b.u16(uint32_t(params.width));
    b.u16(uint32_t(params.height));
    b.u32(0x00480000);
    b.u32(0x00480000);
    b.u32(0);
    b.u16(1);    // frames per sample
    b.zeros(32); // compressor name
    b.u16(0x0018);
    b.u16(0xFFFF);
    const QByteArray headers = sequenceHeaders(video.pictures.front().data);
    b.beginFull("esds", 0, 0);
    b.u8(0x03); // ES descriptor
    b.u8(uint32_t(3 + 2 + 13 + 2 + headers.size() + 3));
    b.u16(kVideoTrack);
    b.u8(0);
    b.u8(0x04); // decoder configuration
    b.u8(uint32_t(13 + 2 + headers.size()));
    b.u8(kMpeg2MainProfile);
    b.u8(0x11); // visual stream
    b.u24(0);   // buffer size
    b.u32(options.maxBitrate);
    b.u32(options.maxBitrate);
    b.u8(0x05); // decoder specific information
    b.u8(uint32_t(headers.size()));
    b.bytes(headers);
    b.u8(0x06); // SL configuration
    b.u8(1);
    b.u8(2);
    b.end(); // esds
    b.end(); // mp4v
    b.end(); // stsd

    b.beginFull("stts", 0, 0);
    b.u32(1);
    b.u32(uint32_t(video.pictures.size()));
    b.u32(uint32_t(params.rate.sampleDelta()));
    b.end();

    b.beginFull("ctts", 1, 0); // version 1: signed offsets, one entry per sample
    b.u32(uint32_t(t.ctts.size()));
    for (int offset : t.ctts) {
        b.u32(1);
        b.u32(uint32_t(offset * params.rate.sampleDelta()));
    }
    b.end();

    b.beginFull("stss", 0, 0);
    b.u32(uint32_t(t.sync.size()));
    for (uint32_t n : t.sync)
        b.u32(n);
    b.end();

    b.beginFull("sdtp", 0, 0);
    for (uint8_t d : t.dependency)
        b.u8(d);
    b.end();

    writeStsc(b, video.chunkFrames);
    b.beginFull("stsz", 0, 0);
    b.u32(0);
    b.u32(uint32_t(t.sizes.size()));
    for (uint32_t s : t.sizes)
        b.u32(s);
    b.end();
    writeChunkOffsets(b, layout.videoChunkOffsets, options.co64);

    b.end(); // stbl
    b.end(); // minf
    b.end(); // mdia
    b.end(); // trak
}

void writeAudioTrack(BoxBuilder& b, const PcmAudio& audio, const std::vector<uint64_t>& offsets,
                     uint32_t trackId, uint32_t movieDuration, const Mp4Options& options, uint32_t created)
{
    uint32_t samples = 0;
    for (int n : audio.chunkSamples)
        samples += uint32_t(n);

    b.begin("trak");
    writeTkhd(b, trackId, created, movieDuration, true, 0, 0);
    b.begin("mdia");
    writeMdhdHdlr(b, created, PcmAudio::kSampleRate, samples, "soun", "Sound Media Handler");
    b.begin("minf");
    b.beginFull("smhd", 0, 0);
    b.u32(0);
    b.end();
    writeDinf(b);
    b.begin("stbl");

    b.beginFull("stsd", 0, 0);
    b.u32(1);
    b.begin("twos");
    b.zeros(6);
    b.u16(1);
    b.u16(0); // sound description version 0
    b.u16(0);
    b.u32(0);
    b.u16(uint32_t(audio.channelsPerTrack));
    b.u16(16);
    b.u16(0);
    b.u16(0);
    b.u32(uint32_t(PcmAudio::kSampleRate) << 16);
    b.end();
    b.end();

    b.beginFull("stts", 0, 0);
    b.u32(1);
    b.u32(samples);
    b.u32(1);
    b.end();
    writeStsc(b, audio.chunkSamples);
    b.beginFull("stsz", 0, 0);
    b.u32(1); // every sample (one PCM frame) has the same size
    b.u32(samples);
    b.end();
    writeChunkOffsets(b, offsets, options.co64);

    b.end();
    b.end();
    b.end();
    b.end();
}

void writeEmbeddedXml(BoxBuilder& b, const QByteArray& xml)
{
    b.begin("udta");
    b.begin("meta"); // the camera's meta box: children follow its header directly
    b.beginFull("hdlr", 0, 0);
    b.u32(0);
    b.fourcc("meta");
    b.zeros(12);
    b.u8(0);
    b.end();
    b.beginFull("xml ", 0, 0);
    b.bytes(xml);
    b.u8(0); // the document is a zero-terminated string, as in the camera's files
    b.end();
    b.end();
    b.end();
}

} // namespace

std::optional<Mp4Layout> Mp4Writer::write(const QString& path, const CodedVideo& video, const PcmAudio& audio,
                                          const Mp4Options& options, QString* error)
{
    const VideoParams& params = video.params;
    Mp4Layout layout;
    layout.width = params.width;
    layout.height = params.height;
    layout.timescale = params.rate.timescale();
    layout.sampleDelta = params.rate.sampleDelta();
    layout.chunkFrames = video.chunkFrames;
    layout.audioChunkSamples = audio.tracks > 0 ? audio.chunkSamples : std::vector<int>();

    BoxBuilder head;
    if (options.leadingFree) {
        head.begin("free");
        head.end();
    }
    head.begin("ftyp");
    head.fourcc("mp42");
    head.u32(1);
    head.fourcc("mp42");
    head.fourcc("isom");
    head.end();

    // mdat: per GOP the video chunk, then that GOP's chunk of every audio track.
    QByteArray media;
    std::vector<std::vector<uint64_t>> audioOffsets(size_t(audio.tracks));
    const uint64_t mediaStart = uint64_t(head.size()) + 8;
    size_t picture = 0;
    for (size_t c = 0; c < video.chunkFrames.size(); ++c) {
        layout.videoChunkOffsets.push_back(mediaStart + uint64_t(media.size()));
        for (int i = 0; i < video.chunkFrames[c]; ++i, ++picture) {
            const CodedPicture& p = video.pictures[picture];
            layout.sampleSizes.push_back(uint32_t(p.data.size()));
            layout.sampleTypes.push_back(p.type);
            media.append(p.data);
        }
        for (int t = 0; t < audio.tracks; ++t) {
            audioOffsets[size_t(t)].push_back(mediaStart + uint64_t(media.size()));
            media.append(audio.chunks[size_t(t)][c]);
        }
    }
    if (audio.tracks > 0)
        layout.audioChunkOffsets = audioOffsets.front();

    const uint32_t created = mp4Time(options.created);
    const uint32_t duration = uint32_t(video.pictures.size()) * uint32_t(params.rate.sampleDelta());
    BoxBuilder moov;
    moov.begin("moov");
    moov.beginFull("mvhd", 0, 0);
    moov.u32(created);
    moov.u32(created);
    moov.u32(uint32_t(params.rate.timescale()));
    moov.u32(duration);
    moov.u32(0x00010000);
    moov.u16(0x0100);
    moov.zeros(10);
    matrix(moov);
    moov.zeros(24);
    moov.u32(uint32_t(audio.tracks) + 2); // next track id
    moov.end();
    writeVideoTrack(moov, video, layout, options, created);
    for (int t = 0; t < audio.tracks; ++t)
        writeAudioTrack(moov, audio, audioOffsets[size_t(t)], uint32_t(t) + 2, duration, options, created);
    if (!options.embeddedXml.isEmpty())
        writeEmbeddedXml(moov, options.embeddedXml);
    moov.end();

    BoxBuilder mdatHeader;
    mdatHeader.u32(uint32_t(8 + media.size()));
    mdatHeader.fourcc("mdat");

    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(head.data()) != head.size() ||
        file.write(mdatHeader.data()) != 8 || file.write(media) != media.size() ||
        file.write(moov.data()) != moov.size() || !file.flush()) {
        if (error)
            *error = QStringLiteral("cannot write %1: %2").arg(path, file.errorString());
        return std::nullopt;
    }
    layout.fileSize = file.size();
    return layout;
}

} // namespace cardgen
