// Missing, damaged and unusual input gives return codes, never a crash.
#include "ViewerSession.h"

#include <QDir>
#include <QTemporaryDir>
#include <QtEndian>

#include <gtest/gtest.h>

#include <random>

extern "C" {
#include <libavutil/log.h>
}

using namespace vvtest;

namespace {

// The top-level box of the given type: its offset and size, or -1.
std::pair<qsizetype, qsizetype> box(const QByteArray& data, const char* type)
{
    for (qsizetype at = 0; at + 8 <= data.size();) {
        const qsizetype size = qFromBigEndian<uint32_t>(data.constData() + at);
        if (data.mid(at + 4, 4) == type)
            return {at, size};
        if (size < 8)
            break;
        at += size;
    }
    return {-1, 0};
}

// Damaged copies of the first clip of the shared take.
class DamagedInput : public TwoClipTake
{
protected:
    // The decoder's complaints about the damage are expected.
    static void SetUpTestSuite()
    {
        s_logLevel = av_log_get_level();
        av_log_set_level(AV_LOG_FATAL);
    }
    static void TearDownTestSuite() { av_log_set_level(s_logLevel); }
    QString goodMp4() const { return paths().front(); }
    // A copy of the good file, changed by edit, in the test's folder.
    QString damaged(const QString& name, const std::function<void(QByteArray&)>& edit)
    {
        QByteArray data = cwtest::readFile(goodMp4());
        edit(data);
        const QString path = m_dir.filePath(name);
        EXPECT_TRUE(cwtest::writeFile(path, data));
        return path;
    }

    static inline int s_logLevel = 0;
    QTemporaryDir m_dir;
};

} // namespace

TEST_F(DamagedInput, UnreadableFilesAreRefusedAndTheTakeShownStays)
{
    const QString missing = m_dir.filePath(QStringLiteral("missing.MP4"));
    const QString text = damaged(QStringLiteral("text.MP4"), [](QByteArray& d) { d = "not a movie\n"; });
    // The camera writes moov last: a file cut anywhere loses its index.
    const QString half = damaged(QStringLiteral("half.MP4"), [](QByteArray& d) { d.truncate(d.size() / 2); });
    QDir(m_dir.path()).mkdir(QStringLiteral("folder.MP4"));
    EXPECT_EQ(Thumbnail({m_dir.filePath(QStringLiteral("folder.MP4"))}, 0).rc, VV_ERR_FILE);
    EXPECT_EQ(Thumbnail({goodMp4(), missing}, 3).rc, VV_ERR_FILE);
    EXPECT_EQ(Thumbnail({half}, 0).rc, VV_ERR_FORMAT);

    ViewerSession viewer;
    ASSERT_EQ(viewer.setTake({goodMp4()}), VV_OK);
    vv_av_info_t info{};
    info.total_frames = 1234;
    EXPECT_EQ(viewer.setTake({goodMp4(), missing}, &info), VV_ERR_FILE);
    EXPECT_EQ(viewer.setTake({half}, &info), VV_ERR_FORMAT);
    EXPECT_EQ(viewer.setTake({text}, &info), VV_ERR_FORMAT);
    EXPECT_EQ(info.total_frames, 1234) << "a refused take filled the block";
    ASSERT_TRUE(viewer.job([] { return vv_show_frame(11, 0); }));
    ASSERT_EQ(viewer.pictures().size(), 1u);
    EXPECT_EQ(viewer.pictures()[0].counter, counterOf(take(), 11));
}

TEST_F(DamagedInput, DamagedPicturesDecodeAsWellAsTheyCan)
{
    // Garbage over the middle of the pictures, the index intact.
    const QString garbage = damaged(QStringLiteral("garbage.MP4"), [](QByteArray& d) {
        const auto [at, size] = box(d, "mdat");
        ASSERT_GT(at, 0);
        std::mt19937 random(7);
        for (qsizetype i = at + size / 3; i < at + size / 3 + 4000 && i < at + size; ++i)
            d[i] = char(random());
    });
    // The pictures cut short, the index kept after them: the last samples
    // point into the index or past the end of the file.
    const QString cut = damaged(QStringLiteral("cut.MP4"), [](QByteArray& d) {
        const auto [at, size] = box(d, "mdat");
        const auto [moovAt, moovSize] = box(d, "moov");
        ASSERT_GT(at, 0);
        ASSERT_GT(moovAt, at);
        const QByteArray moov = d.mid(moovAt, moovSize);
        const qsizetype kept = size * 2 / 3;
        d.truncate(at + kept);
        for (int i = 0; i < 4; ++i)
            d[at + i] = char(uint32_t(kept) >> (24 - 8 * i));
        d.append(moov);
    });

    for (const QString& path : {garbage, cut}) {
        for (int64_t frame = 0; frame < 30; frame += 3) {
            const int rc = Thumbnail({path}, frame).rc;
            EXPECT_TRUE(rc == VV_OK || rc == VV_ERR_DECODE)
                << path.toStdString() << " frame " << frame << ": " << rc;
        }
        ViewerSession viewer(InitParam().set(InitParam::kPlayInfoInterval, "0"));
        const int rc = viewer.setTake({path, goodMp4()});
        if (rc != VV_OK) {
            EXPECT_TRUE(rc == VV_ERR_FORMAT || rc == VV_ERR_DECODE) << rc;
            continue;
        }
        // Playback goes through the damage to the next clip and to the end.
        ASSERT_TRUE(viewer.runUntil([] { return vv_show_frame(24, 1); })) << path.toStdString();
        const std::vector<Picture> pictures = viewer.pictures();
        ASSERT_FALSE(pictures.empty());
        for (size_t i = 1; i < pictures.size(); ++i)
            EXPECT_GT(pictures[i].frame, pictures[i - 1].frame);
        EXPECT_EQ(pictures.back().frame, 59);
        EXPECT_EQ(pictures.back().counter, counterOf(take(), 29));
    }
}
