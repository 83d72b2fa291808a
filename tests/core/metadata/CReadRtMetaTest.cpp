#include "CReadRtMetaFile.h"

#include "core/formats/metadata/CReadRtMeta.h"
#include "support/TestEnvironment.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using cwtest::BimFile;

class CReadRtMetaTest : public ::testing::Test
{
protected:
    QByteArray write(const QByteArray& data, const QString& name = "C0001R01.BIM")
    {
        EXPECT_TRUE(cwtest::writeFile(m_dir.filePath(name), data));
        return QFile::encodeName(m_dir.filePath(name));
    }

    QTemporaryDir m_dir;
};

namespace {

quint32 packed(const FTCSTRUCT& tc)
{
    return quint32(tc.frames) << 24 | quint32(tc.seconds) << 16 | quint32(tc.minutes) << 8 | tc.hours;
}

BimFile fourFrames()
{
    BimFile f;
    // Frames, seconds, minutes, hours in BCD; flag bits above the tens digits are kept.
    f.timeCodes = {0x00000010, 0x01000010, 0x02000010, 0xC3D9D963};
    return f;
}

} // namespace

TEST_F(CReadRtMetaTest, ShortFrameUnitsLeaveTheReaderClosed)
{
    // A cut frame unit, a unit count far beyond the file (refused without
    // reading or allocating for it), a skipped part running past the end.
    const QByteArray whole = fourFrames().bytes();
    BimFile huge = fourFrames();
    huge.unitCount = qint64(1) << 34;
    BimFile skip;
    skip.unitCount = 1;
    skip.skipBits = 0xFFFFF;
    for (const QByteArray& data : {whole.chopped(1), huge.bytes(), skip.bytes().chopped(10)}) {
        CReadRtMeta reader;
        EXPECT_TRUE(reader.blReadBIM(write(data).constData(), 0)) << data.size();
        EXPECT_STREQ(reader.getLastError(), "BIM FRAMEFUU Read Error\n");
        FTCSTRUCT tc;
        EXPECT_FALSE(reader.GetTimeCode(0, &tc));
        // A closed reader reads again without CloseFTC.
        EXPECT_TRUE(reader.blReadBIM(write(whole, "whole.BIM").constData(), 0));
        EXPECT_TRUE(reader.GetTimeCode(3, &tc));
    }
}

TEST_F(CReadRtMetaTest, HeaderFaultsAreRefusedWithTheirTexts)
{
    const BimFile f = fourFrames();
    const QByteArray good = f.bytes();
    const int hintEnd = 4 + int(f.schemaUri.size()) + 1 + int(f.locationHint.size());
    QByteArray zeroUriLength = good;
    zeroUriLength[3] = char(0x80);
    QByteArray wrongHint = good;
    wrongHint[hintEnd - 1] = 'X';
    struct Case
    {
        QByteArray data;
        const char* error;
    };
    const Case cases[] = {
        {good.left(3), "BIM DecoderInt1 Read Error\n"},
        {zeroUriLength, "BIM DecoderInt1 SchemaURI_Length0 Error\n"},
        {good.left(hintEnd - 1), "BIM LocationHint Read Error\n"},
        {wrongHint, "BIM LocationHint Data Error\n"},
        {good.left(hintEnd + 1 + 3 + 1 + 43), "BIM HeaderFFU Read Error\n"},
    };
    for (const Case& c : cases) {
        CReadRtMeta reader;
        EXPECT_FALSE(reader.blReadBIM(write(c.data).constData(), 0)) << c.error;
        EXPECT_STREQ(reader.getLastError(), c.error);
    }
    CReadRtMeta reader;
    EXPECT_FALSE(reader.blReadBIM(QFile::encodeName(m_dir.filePath("none.BIM")).constData(), 0));
    EXPECT_STREQ(reader.getLastError(), "BIM File Open Error\n");
}

TEST_F(CReadRtMetaTest, UnitCountsAndTheInitialDescriptionLengthCheckWhichIsNotFatal)
{
    // 1,985 units make the expected length need four bytes of its own; the
    // first ones carry flag bits above the tens digits, which are kept, and
    // the skipped part ends within a byte.
    BimFile f = fourFrames();
    f.skipBits = 8 * 100 + 7;
    for (quint32 i = 4; i < 1985; ++i)
        f.timeCodes.append(i);
    for (qint64 delta : {0, 1, -1}) {
        f.lengthDelta = delta;
        CReadRtMeta reader;
        ASSERT_TRUE(reader.blReadBIM(write(f.bytes()).constData(), 0));
        if (delta == 0)
            EXPECT_EQ(reader.getLastError(), nullptr);
        else
            EXPECT_STREQ(reader.getLastError(), "InitialDescription_Length Error\n");
        FTCSTRUCT tc;
        for (unsigned long i : {0ul, 3ul, 1984ul}) {
            ASSERT_TRUE(reader.GetTimeCode(i, &tc)) << i;
            EXPECT_EQ(packed(tc), f.timeCodes[int(i)]) << i;
        }
        // Frame N - 2 is the last one answered.
        EXPECT_FALSE(reader.GetTimeCode(1985, &tc) || reader.GetTimeCode(~0ul, &tc) ||
                     reader.GetTimeCode(0, nullptr));
    }
    // No frame units at all, and unit counts on both sides of the step from
    // three to four length bytes (1,984 and 1,985 units).
    for (qint64 n : {0, 1, 2, 1985, 1986}) {
        BimFile g;
        g.unitCount = n;
        g.timeCodes = QList<quint32>(qMax<qint64>(n - 1, 0), 0);
        CReadRtMeta reader;
        ASSERT_TRUE(reader.blReadBIM(write(g.bytes()).constData(), 0));
        EXPECT_EQ(reader.getLastError(), nullptr) << n;
        EXPECT_EQ(reader.getUnitCount(), quint64(n));
        FTCSTRUCT tc;
        EXPECT_EQ(reader.GetTimeCode(0, &tc), n >= 2) << n;
    }
}
