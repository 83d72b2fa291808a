// The picture pointer table the program writes for cardgen's MP4 files is,
// byte for byte, the one cardgen wrote with its own writer.
#include "CrossCheckSupport.h"

#include "core/formats/mp4/CCreatePPT.h"

#include <QTemporaryDir>

using crosscheck::clipFile;
using crosscheck::local;
using cwtest::readFile;

TEST(PpnCross, StartConvertWritesCardgensTable)
{
    struct Case
    {
        const char *size, *rate;
        int frames, gop, audioTracks, clips;
    };
    const Case cases[] = {
        {"1920x1080", "59.94i", 6, 3, 1, 1}, // byte 8 0x77, aspect 16:9, NTSC rate
        {"1440x1080", "50i", 6, 3, 1, 1},    // byte 8 0x47, aspect 4:3 by the stored size
        {"1280x720", "59.94p", 6, 3, 2, 1},  // only the first audio track is described
        {"tiny", "23.98p", 30, 15, 1, 2},    // chunks of 15 in presentation order, several clips
        {"tiny", "25p", 24, 12, 4, 1},       {"tiny", "50p", 30, 6, 1, 1},
        {"tiny", "29.97p", 45, 9, 0, 1}, // no sound: every entry has the no-audio form
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.size) + " " + c.rate + " gop " + std::to_string(c.gop));
        cardgen::Options o = crosscheck::oneClipCard(c.size, c.rate, c.frames);
        o.gop = c.gop;
        o.audioTracks = c.audioTracks;
        o.clips = c.clips;
        const cwtest::CardFolder card(o);
        ASSERT_TRUE(card.ok()) << card.error().toStdString();
        QTemporaryDir out;
        for (const cardgen::ManifestTake& take : card.manifest().takes) {
            const cardgen::ManifestClip& clip = take.clips.front();
            const QByteArray expected = readFile(clipFile(card, clip, "PPN"));
            ASSERT_EQ(expected.size(), 32 + 16 * clip.frames);

            const QString ppn = out.filePath(clip.name + "I01.PPN");
            ASSERT_TRUE(cwtest::writeFile(ppn, {}));
            CCreatePPT ppt;
            ASSERT_EQ(
                ppt.StartConvert(local(clipFile(card, clip, "MP4")).constData(), local(ppn).constData()), 1)
                << ppt.getErrorText();
            const QByteArray written = readFile(ppn);
            ASSERT_EQ(written.size(), expected.size());
            // The header, then one entry per frame.
            for (qsizetype at = 0; at < written.size(); at += at == 0 ? 32 : 16)
                EXPECT_EQ(written.mid(at, at == 0 ? 32 : 16).toHex(' ').toStdString(),
                          expected.mid(at, at == 0 ? 32 : 16).toHex(' ').toStdString())
                    << "at byte " << at;
        }
    }
}
