// The conversion library: a take's MP4 files read back from the transport
// stream it wrote, with libavformat and libavcodec.
#include "cardgen/FrameRate.h"
#include "media/mpeg2ts/mpeg2ts.h"
#include "media/viewer/FFmpegUtil.h"
#include "support/CardFolder.h"
#include "support/TestEnvironment.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtEndian>

#include <gtest/gtest.h>
#include <xxhash.h>

namespace {

struct Decoded
{
    std::vector<uint64_t> pictureHashes;
    std::vector<int64_t> pictureTimes;  // presentation times, decoding order of the output
    std::vector<uint32_t> gopTimeCodes; // the 25 time code bits of each GOP header, top-aligned
    int height = 0;
    AVRational rate{0, 1};
    std::vector<int> audioChannels;    // per audio stream
    std::vector<int64_t> audioSamples; // per audio stream, at 48 kHz
    bool ok = false;
};

uint64_t pictureHash(const AVFrame* f)
{
    XXH64_state_t* s = XXH64_createState();
    XXH64_reset(s, 0);
    for (int p = 0; p < 3; ++p) {
        const int w = p == 0 ? f->width : AV_CEIL_RSHIFT(f->width, 1);
        const int h =
            p == 0 ? f->height : (f->format == AV_PIX_FMT_YUV420P ? AV_CEIL_RSHIFT(f->height, 1) : f->height);
        for (int y = 0; y < h; ++y)
            XXH64_update(s, f->data[p] + size_t(y) * size_t(f->linesize[p]), size_t(w));
    }
    const uint64_t h = XXH64_digest(s);
    XXH64_freeState(s);
    return h;
}

// Decodes every picture of the files in turn as one stream (one video decoder
// throughout), with the sound and the GOP headers.
Decoded readBack(const std::vector<QString>& files)
{
    Decoded d;
    vv::CodecPtr videoDecoder;
    for (const QString& file : files) {
        AVFormatContext* raw = nullptr;
        if (avformat_open_input(&raw, file.toUtf8().constData(), nullptr, nullptr) < 0)
            return d;
        vv::FormatPtr format(raw);
        if (avformat_find_stream_info(raw, nullptr) < 0)
            return d;
        std::vector<vv::CodecPtr> decoders(raw->nb_streams);
        int video = -1;
        for (unsigned i = 0; i < raw->nb_streams; ++i) {
            const AVCodecParameters* par = raw->streams[i]->codecpar;
            if (par->codec_type == AVMEDIA_TYPE_VIDEO && video < 0) {
                video = int(i);
                d.height = par->height;
                d.rate = raw->streams[i]->avg_frame_rate;
            } else if (par->codec_type == AVMEDIA_TYPE_AUDIO) {
                d.audioChannels.push_back(par->ch_layout.nb_channels);
                d.audioSamples.push_back(0);
            } else {
                continue;
            }
            const AVCodec* codec = avcodec_find_decoder(par->codec_id);
            if (int(i) == video && videoDecoder) {
                decoders[i] = std::move(videoDecoder);
                continue;
            }
            decoders[i].reset(avcodec_alloc_context3(codec));
            avcodec_parameters_to_context(decoders[i].get(), par);
            decoders[i]->pkt_timebase = raw->streams[i]->time_base;
            if (avcodec_open2(decoders[i].get(), codec, nullptr) < 0)
                return d;
        }
        vv::PacketPtr packet = vv::makePacket();
        vv::FramePtr frame = vv::makeFrame();
        const auto drain = [&](unsigned i) {
            while (avcodec_receive_frame(decoders[i].get(), frame.get()) == 0) {
                if (int(i) == video) {
                    d.pictureHashes.push_back(pictureHash(frame.get()));
                    d.pictureTimes.push_back(frame->pts);
                } else {
                    const size_t a =
                        size_t(std::count_if(decoders.begin(), decoders.begin() + i, [&](auto& c) {
                            return c && c->codec_type == AVMEDIA_TYPE_AUDIO;
                        }));
                    d.audioSamples[a] += frame->nb_samples;
                }
                av_frame_unref(frame.get());
            }
        };
        while (av_read_frame(raw, packet.get()) >= 0) {
            const unsigned i = unsigned(packet->stream_index);
            if (i < decoders.size() && decoders[i]) {
                if (int(i) == video) {
                    const QByteArray data =
                        QByteArray::fromRawData(reinterpret_cast<const char*>(packet->data), packet->size);
                    const qsizetype gop = data.indexOf(QByteArray("\x00\x00\x01\xB8", 4));
                    if (gop >= 0 && gop + 8 <= data.size())
                        d.gopTimeCodes.push_back(qFromBigEndian<uint32_t>(data.constData() + gop + 4));
                }
                avcodec_send_packet(decoders[i].get(), packet.get());
                drain(i);
            }
            av_packet_unref(packet.get());
        }
        for (unsigned i = 0; i < decoders.size(); ++i)
            if (decoders[i] && (int(i) != video || &file == &files.back())) {
                avcodec_send_packet(decoders[i].get(), nullptr);
                drain(i);
            }
        videoDecoder = std::move(decoders[video]);
    }
    d.ok = true;
    return d;
}

// The payload of the first packet of a PID in a transport stream file.
QByteArray firstPayload(const QString& file, int pid)
{
    const QByteArray data = cwtest::readFile(file);
    for (qsizetype i = 0; i + 188 <= data.size(); i += 188) {
        const auto* p = reinterpret_cast<const uint8_t*>(data.constData() + i);
        if (p[0] == 0x47 && ((p[1] & 0x1F) << 8 | p[2]) == pid)
            return data.mid(i + 4, 184);
    }
    return {};
}

QString timeCodeText(uint32_t bits)
{
    return QString::asprintf("%02u:%02u:%02u%c%02u", bits >> 26 & 0x1F, bits >> 20 & 0x3F, bits >> 13 & 0x3F,
                             (bits >> 31) ? ';' : ':', bits >> 7 & 0x3F);
}

class Cancelling : public IMpeg2TSCallback
{
public:
    int cancelAt = 101;
    std::vector<int> seen;
    void OnProgress(int percent) override
    {
        seen.push_back(percent);
        if (percent >= cancelAt)
            MPEG2TSCancel();
    }
};

unsigned convert(const std::vector<QString>& inputs, const QString& output,
                 const mpeg2ts_convert_params_t& params)
{
    std::vector<std::wstring> wide;
    for (const QString& in : inputs)
        wide.push_back(in.toStdWString());
    std::vector<const wchar_t*> pointers;
    for (const std::wstring& w : wide)
        pointers.push_back(w.c_str());
    return ConvertMPEG2TS(pointers.data(), int(pointers.size()), output.toStdWString().c_str(), &params);
}

class ConvertTest : public ::testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        cardgen::Options options = cwtest::CardFolder::quick();
        options.clips = 1;
        options.multiClipTakes = {3};
        options.frames = 45;
        options.frameRate = QStringLiteral("29.97p");
        options.startTimecode = QStringLiteral("00:00:59:20"); // the minute turns within the first clip
        options.audioTracks = 3;
        options.audioChannelsPerTrack = 1;
        s_card = new cwtest::CardFolder(options);
    }
    static void TearDownTestSuite() { delete s_card; }

    void SetUp() override
    {
        ASSERT_TRUE(s_card->ok()) << s_card->error().toStdString();
        mpeg2ts_init_param_t init{};
        init.log_level = 3;
        init.log_file_size = 1 << 20;
        qstrncpy(init.log_file_path, m_dir.filePath("Export.log").toUtf8().constData(),
                 sizeof init.log_file_path);
        init.callback = &m_callback;
        MPEG2TSInit(&init);
    }

    std::vector<QString> mp4s(const cardgen::ManifestTake& take) const
    {
        std::vector<QString> paths;
        for (const cardgen::ManifestClip& clip : take.clips)
            for (const cardgen::ManifestFile& file : clip.files)
                if (file.kind == "MP4")
                    paths.push_back(s_card->path(file.path));
        return paths;
    }

    static inline cwtest::CardFolder* s_card = nullptr;
    QTemporaryDir m_dir;
    Cancelling m_callback;
};

TEST_F(ConvertTest, TakesReadBackAsTheirSource)
{
    for (const cardgen::ManifestTake& take : s_card->manifest().takes) {
        SCOPED_TRACE(take.takeId.toStdString());
        const std::vector<QString> inputs = mp4s(take);
        const QString output = m_dir.filePath(take.takeId + ".M2T");
        // Zone, day, weekday, month, year, hour, minute, second, user bits, drop
        // frame, and the start 00:09:59;20 (not the card's own time code).
        const mpeg2ts_convert_params_t params{19, 7,  5,    3, 8, 21, 5, 9, 0, {0x00, 0x11, 0xAA, 0xBB},
                                              1,  {}, 17972};
        m_callback.seen.clear();
        ASSERT_EQ(convert(inputs, output, params), MPEG2TS_RESULT_DONE) << MPEG2TSGetLastError();
        EXPECT_EQ(m_callback.seen.back(), 100);
        EXPECT_TRUE(std::is_sorted(m_callback.seen.begin(), m_callback.seen.end()));
        EXPECT_FALSE(QFile::exists(output + ".part"));

        const Decoded source = readBack(inputs);
        const Decoded out = readBack({output});
        ASSERT_TRUE(source.ok && out.ok);
        EXPECT_EQ(out.height, take.height);
        EXPECT_EQ(av_cmp_q(out.rate, AVRational{take.frameRateNum, take.frameRateDen}), 0);
        ASSERT_EQ(int(out.pictureHashes.size()), take.frames);
        EXPECT_EQ(out.pictureHashes, source.pictureHashes);
        const std::vector<int64_t>& shown = out.pictureTimes;
        EXPECT_TRUE(std::adjacent_find(shown.begin(), shown.end(), std::greater_equal<>()) == shown.end());

        // GOP time codes: the start time code counted on to each GOP's first
        // shown picture (the take's GOPs are 15 pictures long).
        const cardgen::FrameRate rate = *cardgen::FrameRate::byName(take.frameRate);
        const cardgen::TimeCodeClock clock(rate, *cardgen::TimeCode::parse("00:09:59;20", rate.tcBase, true));
        ASSERT_EQ(out.gopTimeCodes.size(), size_t(take.frames / 15));
        for (size_t g = 0; g < out.gopTimeCodes.size(); ++g)
            EXPECT_EQ(timeCodeText(out.gopTimeCodes[g]), clock.at(int64_t(15 * g)).display()) << g;

        // Sound: every channel, as long as the video within a frame.
        EXPECT_EQ(out.audioChannels, (std::vector<int>{2, 1}));
        const double videoSeconds = take.frames * double(take.frameRateDen) / take.frameRateNum;
        for (const int64_t samples : out.audioSamples)
            EXPECT_NEAR(double(samples) / 48000, videoSeconds, double(take.frameRateDen) / take.frameRateNum);

        // Date and user bits in the private section.
        const QByteArray info = firstPayload(output, MPEG2TS_INFO_PID);
        ASSERT_GE(info.size(), 1 + 12 + 18);
        const auto* s = reinterpret_cast<const uint8_t*>(info.constData()) + 1; // after the pointer field
        EXPECT_EQ(s[0], MPEG2TS_INFO_TABLE_ID);
        EXPECT_EQ(QByteArray(reinterpret_cast<const char*>(s) + 8, 4), "CWMD");
        EXPECT_EQ(QByteArray(reinterpret_cast<const char*>(s) + 12, 14).toHex(),
                  "1307050308150509000011aabb01");
        EXPECT_EQ(QByteArray(reinterpret_cast<const char*>(s) + 26, 4).toHex(), "00004634"); // 17972
    }
}

TEST_F(ConvertTest, CancelAndFailuresLeaveNoFile)
{
    const cardgen::ManifestTake& take = s_card->manifest().takes.back();
    const mpeg2ts_convert_params_t params{};
    m_callback.cancelAt = 30;
    EXPECT_EQ(convert(mp4s(take), m_dir.filePath("T.M2T"), params), MPEG2TS_RESULT_CANCELLED);
    EXPECT_EQ(MPEG2TSGetLastError(), MPEG2TS_ERR_NONE);
    EXPECT_LT(m_callback.seen.back(), 100);
    m_callback.cancelAt = 101;

    // A truncated input, and an output folder that does not exist.
    QByteArray cut = cwtest::readFile(mp4s(take).front());
    ASSERT_TRUE(cwtest::writeFile(m_dir.filePath("cut.MP4"), cut.left(cut.size() / 2)));
    EXPECT_EQ(convert({m_dir.filePath("cut.MP4")}, m_dir.filePath("T.M2T"), params), MPEG2TS_RESULT_FAILED);
    EXPECT_EQ(MPEG2TSGetLastError(), MPEG2TS_ERR_READ);
    EXPECT_EQ(convert(mp4s(take), m_dir.filePath("no/such/folder/T.M2T"), params), MPEG2TS_RESULT_FAILED);
    EXPECT_EQ(MPEG2TSGetLastError(), MPEG2TS_ERR_CREATE);
    EXPECT_EQ(QDir(m_dir.path()).entryList({"*.M2T*"}, QDir::Files), QStringList());
}

} // namespace
