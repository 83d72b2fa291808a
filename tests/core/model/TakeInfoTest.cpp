#include "core/card/DOTakeInfo.h"

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
