#include "core/model/DOTakeInfo.h"

#include <gtest/gtest.h>

namespace {
const QString kDigits = QStringLiteral("060A2B340101010501010D4313000000"
                                       "3F2B1C0D954805C00800460202BA1FFE");
}

TEST(TakeInfoTest, SourceKeepsTheLast64CharactersAndUmidAddsThePrefix)
{
    ASSERT_EQ(kDigits.size(), 64);
    DOTakeInfo info;
    info.setSrc("urn:smpte:umid:" + kDigits);
    EXPECT_EQ(info.getSrc(), kDigits);
    EXPECT_EQ(info.getUmid(), "urn:smpte:umid:" + kDigits);

    info.setSrc("short");
    EXPECT_EQ(info.getSrc(), "short");
    EXPECT_EQ(DOTakeInfo().getUmid(), "urn:smpte:umid:");
}

TEST(TakeInfoTest, CopyTakeInfoCopiesTheFiveTexts)
{
    DOTakeInfo info;
    info.setSrc(kDigits);
    info.setClipBegin("smpte-30=00:00:00:00");
    info.setClipEnd("smpte-30=00:00:10:00");
    info.setBegin("smpte-30=00:00:00:00");
    info.setEnd("smpte-30=00:00:10:00");

    const DOTakeInfo copy = info.copyTakeInfo();
    EXPECT_EQ(copy.getSrc(), kDigits);
    EXPECT_EQ(copy.getClipBegin(), "smpte-30=00:00:00:00");
    EXPECT_EQ(copy.getClipEnd(), "smpte-30=00:00:10:00");
    EXPECT_EQ(copy.getBegin(), "smpte-30=00:00:00:00");
    EXPECT_EQ(copy.getEnd(), "smpte-30=00:00:10:00");
}
