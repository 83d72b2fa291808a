// The byte layout of cardgen's MP4 files, read with an independent box walker
// that follows the camera's layout rules.
#include "support/CardFolder.h"

#include <QFile>

#include <gtest/gtest.h>

namespace {

QByteArray readFile(const QString& path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

uint32_t be(const QByteArray& d, qsizetype at, int bytes)
{
    uint32_t v = 0;
    for (int i = 0; i < bytes; ++i)
        v = v << 8 | uint8_t(d[at + i]);
    return v;
}

struct Box
{
    QByteArray type;
    qsizetype offset = 0;
    qsizetype size = 0;
    std::vector<Box> children;
    qsizetype body() const { return offset + 8; }
    const Box* child(const char* t) const
    {
        for (const Box& c : children) {
            if (c.type == t)
                return &c;
        }
        return nullptr;
    }
    QList<QByteArray> childTypes() const
    {
        QList<QByteArray> types;
        for (const Box& c : children)
            types << c.type;
        return types;
    }
};

// Walks boxes with 32-bit sizes; a size field of 0 or 1 (64-bit) is refused.
bool parseBoxes(const QByteArray& d, qsizetype from, qsizetype to, std::vector<Box>& out)
{
    static const QList<QByteArray> containers = {"moov", "trak", "mdia", "minf", "dinf",
                                                 "stbl", "udta", "meta", "edts"};
    for (qsizetype at = from; at < to;) {
        if (to - at < 8)
            return false;
        Box box{d.mid(at + 4, 4), at, qsizetype(be(d, at, 4)), {}};
        if (box.size < 8 || at + box.size > to)
            return false;
        if (containers.contains(box.type) && !parseBoxes(d, box.body(), at + box.size, box.children))
            return false;
        out.push_back(box);
        at += box.size;
    }
    return true;
}

const Box* path(const Box& from, std::initializer_list<const char*> types)
{
    const Box* b = &from;
    for (const char* t : types) {
        if (!(b = b->child(t)))
            return nullptr;
    }
    return b;
}

std::vector<const Box*> tracks(const Box& moov)
{
    std::vector<const Box*> list;
    for (const Box& c : moov.children) {
        if (c.type == "trak")
            list.push_back(&c);
    }
    return list;
}

std::vector<uint32_t> table(const QByteArray& d, const Box& box, qsizetype headerBytes, int width)
{
    std::vector<uint32_t> values;
    const uint32_t count = be(d, box.body() + headerBytes - 4, 4);
    for (uint32_t i = 0; i < count; ++i)
        values.push_back(be(d, box.body() + headerBytes + qsizetype(i) * width, width));
    return values;
}

struct Mp4
{
    QByteArray data;
    std::vector<Box> top;
    const Box* moov = nullptr;
};

Mp4 openMp4(const QString& file)
{
    Mp4 m;
    m.data = readFile(file);
    if (!parseBoxes(m.data, 0, m.data.size(), m.top))
        return m;
    for (const Box& b : m.top) {
        if (b.type == "moov")
            m.moov = &b;
    }
    return m;
}

TEST(CardgenLayout, Mp4BoxesFollowTheCameraLayout)
{
    cardgen::Options o;
    o.frames = 30;
    o.frameRate = QStringLiteral("59.94i");
    o.audioTracks = 2;
    o.embedXml = true;
    o.startTimecode = QStringLiteral("00:00:59;28");
    const cwtest::CardFolder card(o);
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    const cardgen::ManifestClip& clip = card.manifest().takes.front().clips.front();
    const Mp4 mp4 = openMp4(card.path(clip.files.front().path));
    ASSERT_NE(mp4.moov, nullptr) << "the boxes do not nest with 32-bit sizes";
    const QByteArray& d = mp4.data;

    QList<QByteArray> topTypes;
    for (const Box& b : mp4.top)
        topTypes << b.type;
    EXPECT_EQ(topTypes, (QList<QByteArray>{"ftyp", "mdat", "moov"}));
    EXPECT_EQ(mp4.moov->childTypes(), (QList<QByteArray>{"mvhd", "trak", "trak", "trak", "udta"}));

    const std::vector<const Box*> traks = tracks(*mp4.moov);
    const Box* video = path(*traks[0], {"mdia", "minf", "stbl"});
    ASSERT_NE(video, nullptr);
    EXPECT_EQ(video->childTypes(),
              (QList<QByteArray>{"stsd", "stts", "ctts", "stss", "sdtp", "stsc", "stsz", "stco"}));
    // Visual sample entry and its esds at the fixed places of the stsd body.
    const qsizetype stsd = video->child("stsd")->body();
    EXPECT_EQ(d.mid(stsd + 12, 4), "mp4v");
    EXPECT_EQ(be(d, stsd + 40, 2), 1920u);
    EXPECT_EQ(be(d, stsd + 42, 2), 1080u);
    EXPECT_EQ(d.mid(stsd + 98, 4), "esds");
    EXPECT_EQ(uint8_t(d[stsd + 113]), 0x61); // MPEG-2 Main profile
    EXPECT_EQ(be(d, stsd + 118, 4), 35000000u);
    // One sample dependency byte per frame; 30000/1001 time scale.
    EXPECT_EQ(video->child("sdtp")->size - 12, 30);
    const Box* mdhd = path(*traks[0], {"mdia", "mdhd"});
    EXPECT_EQ(be(d, mdhd->body() + 12, 4), 30000u);
    const qsizetype stts = video->child("stts")->body();
    EXPECT_EQ(be(d, stts + 4, 4), 1u);     // one entry:
    EXPECT_EQ(be(d, stts + 8, 4), 30u);    // 30 samples
    EXPECT_EQ(be(d, stts + 12, 4), 1001u); // of 1001 units
    EXPECT_EQ(table(d, *video->child("stss"), 8, 4), (std::vector<uint32_t>{1, 16}));

    // The first chunk starts with a sequence header and its extension.
    const std::vector<uint32_t> chunks = table(d, *video->child("stco"), 8, 4);
    ASSERT_EQ(chunks.size(), 2u);
    const QByteArray head = d.mid(chunks[0], 2048);
    const qsizetype seq = head.indexOf(QByteArray("\x00\x00\x01\xB3", 4));
    ASSERT_GE(seq, 0);
    EXPECT_GT(head.indexOf(QByteArray("\x00\x00\x01\xB5", 4), seq), seq);
    EXPECT_EQ(uint8_t(head[seq + 7]) & 0x0F, 4); // 29.97 frames per second
    EXPECT_EQ(uint8_t(head[seq + 7]) >> 4, 3);   // 16:9

    for (size_t t = 1; t < traks.size(); ++t) {
        const Box* audio = path(*traks[t], {"mdia", "minf", "stbl"});
        ASSERT_NE(audio, nullptr);
        EXPECT_EQ(audio->childTypes(), (QList<QByteArray>{"stsd", "stts", "stsc", "stsz", "stco"}));
        const qsizetype body = audio->child("stsd")->body();
        EXPECT_EQ(d.mid(body + 12, 4), "twos");
        EXPECT_EQ(uint8_t(d[body + 33]), 2);
        EXPECT_EQ(be(d, audio->child("stsz")->body() + 4, 4), 1u); // constant sample size
    }

    // The embedded metadata: meta's children follow its header directly, and
    // the "xml " body holds the clip's M01.XML after four version bytes,
    // ended by a zero byte.
    const Box* meta = path(*mp4.moov, {"udta", "meta"});
    ASSERT_NE(meta, nullptr);
    EXPECT_EQ(meta->childTypes(), (QList<QByteArray>{"hdlr", "xml "}));
    const Box* xml = meta->child("xml ");
    const QByteArray embedded = d.mid(xml->body() + 4, xml->size - 13);
    EXPECT_EQ(d.at(xml->offset + xml->size - 1), '\0');
    QString xmlPath;
    for (const cardgen::ManifestFile& f : clip.files) {
        if (f.kind == "XML")
            xmlPath = f.path;
    }
    EXPECT_EQ(embedded, readFile(card.path(xmlPath)));

    // The GOP headers carry the clip's time code; the first GOP is closed.
    const qsizetype gop1 = d.indexOf(QByteArray("\x00\x00\x01\xB8", 4), chunks[0]) + 4;
    const qsizetype gop2 = d.indexOf(QByteArray("\x00\x00\x01\xB8", 4), chunks[1]) + 4;
    EXPECT_EQ(be(d, gop1, 4), 0x80000000u | 0u << 26 | 0u << 20 | 1u << 19 | 59u << 13 | 28u << 7 | 0x40u);
    // Frame 15 of a clip starting at 00:00:59;28 is 00:01:00;15 (02..15 after the drop).
    EXPECT_EQ(be(d, gop2, 4) & 0xFFFFFFC0u,
              0x80000000u | 0u << 26 | 1u << 20 | 1u << 19 | 0u << 13 | 15u << 7);
}

} // namespace
