#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

// Builds MP4 files in the box layout the camera writes, for tests and
// benchmarks: ftyp, mdat (the chunks of all tracks interleaved chunk by
// chunk), then moov (mvhd, one trak per track, udta/meta with the embedded
// XML). The result is a box tree that a test can edit before writing it.
// No dependency on a test framework, so benchmarks can use it too.
namespace cwtest {

QByteArray be16(quint32 v);
QByteArray be32(quint32 v);
QByteArray be64(quint64 v);

// One box. A container's children are written after its body bytes; a box
// may end in zero padding that is not held in memory (written sparse).
struct Mp4Box
{
    QByteArray type;
    QByteArray body;
    QList<Mp4Box> children;
    quint64 padding = 0;
    // Size field 1 followed by a 64-bit size whose upper half is sizeHigh
    // (0 for the true size).
    bool largeSize = false;
    quint32 sizeHigh = 0;

    Mp4Box() = default;
    Mp4Box(const QByteArray& type, const QByteArray& body = {}, const QList<Mp4Box>& children = {});

    quint64 size() const;
    // The whole box, padding included.
    QByteArray bytes() const;
    // A descendant by a path of types, "moov/trak:1/mdia/minf/stbl"; ":n"
    // picks the n-th child of that type. nullptr when there is none.
    Mp4Box* find(const QString& path);
    // Index of the first child of a type, -1 when none.
    int indexOf(const QByteArray& type) const;
};

// One track. Video samples are MPEG-2 pictures; audio samples PCM.
struct Mp4Track
{
    QByteArray format = "mp4v"; // "mp4v" video, "twos"/"in24"/"in32" audio, or any other
    quint32 timescale = 30000;
    QList<QPair<quint32, quint32>> timeToSample; // stts (count, delta); empty: every sample 1001
    quint16 width = 1920;
    quint16 height = 1080;
    quint8 objectType = 97;
    quint32 maxBitrate = 35000000;
    quint16 channels = 2;
    quint32 bytesPerSample = 4; // chunk size of the constant-size form: samples x this

    QList<quint32> samplesPerChunk;
    QList<quint32> sampleSizes; // one per sample; empty: stsz gives constantSampleSize
    quint32 constantSampleSize = 1;
    QList<QByteArray> chunkData; // leading bytes of each chunk; the rest is zero
    QByteArray dependencies;     // sdtp bytes (video)

    bool isVideo() const { return format == "mp4v"; }
    quint32 sampleCount() const;
    // Bytes of every chunk.
    QList<quint64> chunkSizes() const;

    // Appends a chunk of stored pictures with their dependency bytes.
    void addVideoChunk(const QList<QByteArray>& pictures, const QByteArray& deps);
    // Appends a chunk of pictures known only by size: the first dataSize
    // bytes of the chunk come from data (the rest is zero).
    void addVideoChunk(const QList<quint32>& sizes, const QByteArray& deps, const QByteArray& data = {});
    // Appends an audio chunk of samples x bytesPerSample bytes.
    void addAudioChunk(quint32 samples);
};

// Dependency bytes of intra, forward-predicted and bidirectional pictures.
constexpr char kDepI = 0x24;
constexpr char kDepP = 0x14;
constexpr char kDepB = 0x19;

// The start of an MPEG-2 picture: sequence header, sequence extension, GOP
// and picture start codes. frameRateCode and aspect as in the sequence header.
QByteArray mpeg2SequenceStart(int width, int height, int aspect, int frameRateCode, bool progressive);
// A picture of size bytes that begins with prefix.
QByteArray mpeg2Picture(const QByteArray& prefix, int size);

class Mp4Builder
{
public:
    QList<Mp4Track> tracks;
    QByteArray xmlBody;         // body of the "xml " box; empty: no udta/meta
    bool mdatLargeSize = false; // mdat written with a 64-bit size

    // A video track of chunks of the given stored picture types ("IBBPBB"),
    // every picture of pictureSize bytes, the first one beginning with
    // sequenceStart (default: 1920x1080 16:9 59.94i); width and height are
    // taken from it.
    static Mp4Track videoTrack(const QList<QByteArray>& chunkTypes, int pictureSize = 3000,
                               const QByteArray& sequenceStart = {});
    static Mp4Track audioTrack(const QByteArray& format, quint16 channels,
                               const QList<quint32>& samplesPerChunk);

    // File offset of chunk c of track t.
    quint64 chunkOffset(int track, int chunk) const;
    // ftyp, mdat and moov.
    QList<Mp4Box> boxes() const;
    QByteArray bytes() const { return serialize(boxes()); }

    static QByteArray serialize(const QList<Mp4Box>& boxes);
    // Writes the boxes; padding becomes a hole. False on an I/O error.
    static bool write(const QString& path, const QList<Mp4Box>& boxes);
    static bool write(const QString& path, const QByteArray& data);
    bool write(const QString& path) const { return write(path, boxes()); }

private:
    struct Layout
    {
        QList<QList<quint64>> offsets; // per track, per chunk
        QByteArray body;               // mdat body up to the last chunk data given
        quint64 padding = 0;           // zero bytes after it
    };
    Layout layout() const;
    Mp4Box trak(int index, const QList<quint64>& chunkOffsets) const;
};

} // namespace cwtest
