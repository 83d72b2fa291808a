#include "core/card/BLDiskCtrl.h"
#include "core/services/BLCommon.h"
#include "core/services/BLLocalizedStrings.h"
#include "core/services/BLPlistCtrl.h"
#include "support/TestEnvironment.h"

#include <QRegularExpression>
#include <QTimeZone>

#include <gtest/gtest.h>

namespace {

bool isUpperHex(const QString& text)
{
    static const QRegularExpression hex(QStringLiteral("^[0-9A-F]*$"));
    return hex.match(text).hasMatch();
}

} // namespace

using UmidTest = cwtest::HomeTest;

TEST_F(UmidTest, UmidAndMediaIdLayout)
{
    const QString node = BLDiskCtrl::sharedCtrl()->getMacAddress(true);
    ASSERT_EQ(node.size(), 16);
    EXPECT_EQ(node.mid(6, 4), "FFFE");
    EXPECT_EQ(node.left(6) + node.mid(10), BLDiskCtrl::sharedCtrl()->getMacAddress(false));
    EXPECT_TRUE(isUpperHex(node));

    const QString umid = BLCommon::sharedCtrl()->createUmid();
    ASSERT_EQ(umid.size(), 64);
    EXPECT_TRUE(isUpperHex(umid));
    EXPECT_EQ(umid.left(32), "060A2B340101010501010D4313000000");
    EXPECT_EQ(umid.mid(48), node);

    const QString mediaId = BLCommon::createMediaID(5);
    ASSERT_EQ(mediaId.size(), 32);
    EXPECT_TRUE(isUpperHex(mediaId));
    EXPECT_EQ(mediaId.mid(14, 2), "C5");
    EXPECT_EQ(mediaId.mid(16), node);
}

TEST_F(UmidTest, CounterByteRunsC1ToFFAndWraps)
{
    BLCommon* common = BLCommon::sharedCtrl();
    for (int n = 1; n <= 63; ++n)
        ASSERT_EQ(common->createUmid().mid(46, 2), QString::asprintf("%02X", 0xC0 | n));
    EXPECT_EQ(common->createUmid().mid(46, 2), "C1");
    EXPECT_EQ(common->createUmid().mid(46, 2), "C2");
}

TEST_F(UmidTest, TimeStampFieldsOfAKnownMoment)
{
    // 2009-03-05 is MJD 54895; the field stores the digit pairs reversed.
    EXPECT_EQ(BLCommon::modifiedJulianDate(2009, 3, 5), 54895);
    EXPECT_EQ(BLCommon::modifiedJulianDate(2024, 2, 29), 60369);

    const QDateTime moment(QDate(2009, 3, 5), QTime(5, 7, 59, 123), QTimeZone::utc());
    const qint64 ms = moment.toMSecsSinceEpoch();
    EXPECT_EQ(BLCommon::GetSMPTE309(1, moment), QString::asprintf("%08lld", ms % 100000000) + "954805C1");
    // The UTC date counts, not the local one.
    const QDateTime tokyo = moment.toTimeZone(QTimeZone(9 * 3600));
    EXPECT_EQ(BLCommon::GetSMPTE309(1, tokyo).mid(8, 6), "954805");
    // Counters above 63 shift the time by 100 ms per 64 and keep their low six bits.
    EXPECT_EQ(BLCommon::GetSMPTE309(130, moment),
              QString::asprintf("%08lld", (ms + 200) % 100000000) + "954805C2");
}

TEST_F(UmidTest, MediaIdAfterSequentialNo9998UsesZero)
{
    BLPlistCtrl* plist = BLPlistCtrl::sharedCtrl();
    EXPECT_EQ(BLCommon::nextSequentialNo(), 1); // missing key reads as 0
    plist->setSequentialNo(41);
    EXPECT_EQ(BLCommon::nextSequentialNo(), 42);
    plist->setSequentialNo(9998);
    const int n = BLCommon::nextSequentialNo();
    EXPECT_EQ(n, 0);
    EXPECT_EQ(BLCommon::createMediaID(n).mid(14, 2), "C0");
}

TEST(DateTest, XmlDatesParseInBothFormsAndWriteBack)
{
    const QDateTime withOffset = BLCommon::makeCalendarDateFromString("2009-03-05T14:07:59+09:00");
    const QDateTime utc = BLCommon::makeCalendarDateFromString("2009-03-05T05:07:59Z");
    ASSERT_TRUE(withOffset.isValid());
    ASSERT_TRUE(utc.isValid());
    EXPECT_EQ(withOffset, utc);
    EXPECT_EQ(BLCommon::makeCalendarDateFromString("2009-03-05T05:07:59z"), utc);
    EXPECT_EQ(BLCommon::getXmlFormatDateString(utc), "2009-03-05T05:07:59+00:00");
    EXPECT_EQ(
        BLCommon::getXmlFormatDateString(BLCommon::makeCalendarDateFromString("2009-03-05T00:37:59-04:30")),
        "2009-03-05T00:37:59-04:30");

    for (const char* bad :
         {"2009-03-05", "2009-03-05T14:07:59", "2009-13-05T14:07:59Z", "2009-03-05T14:07:59+0900x"})
        EXPECT_FALSE(BLCommon::makeCalendarDateFromString(bad).isValid()) << bad;
}

using DateSettingsTest = cwtest::HomeTest;

// The orders of the screen form are left to the preferences dialog test.
TEST_F(DateSettingsTest, DateOrdersAndTheScreenForm)
{
    const QDateTime date(QDate(2009, 3, 5), QTime(14, 7, 59), QTimeZone(9 * 3600));
    EXPECT_EQ(BLCommon::makeDateStringFromCalendarData(date, 7, ""), "20090305");

    EXPECT_EQ(BLCommon::makeDateTimeStringFromCalendarData(date), "2009/03/05 14:07");
    BLPlistCtrl::sharedCtrl()->setDateFormat(2);
    BLPlistCtrl::sharedCtrl()->setDatePauseChar("-");
    EXPECT_EQ(BLCommon::makeDateTimeStringFromCalendarData(date), "05-03-2009 14:07");
    EXPECT_EQ(BLCommon::makeDateTimeStringFromCalendarData(QDateTime()), "");
}

// Sets the default locale for one test.
class ScopedLocale
{
public:
    explicit ScopedLocale(const QLocale& locale) { QLocale::setDefault(locale); }
    ~ScopedLocale() { QLocale::setDefault(m_previous); }

private:
    QLocale m_previous;
};

TEST(SizeTest, SizesRoundDownInTheirUnit)
{
    ScopedLocale english(QLocale(QLocale::English, QLocale::UnitedStates));
    const QString mb = " " + BLLocalizedString("LOCALIZED_TYPE_MB");
    const QString kb = " " + BLLocalizedString("LOCALIZED_TYPE_KB");
    const QString gb = " " + BLLocalizedString("LOCALIZED_TYPE_GB");
    EXPECT_EQ(BLCommon::convertSizeStr(1572864, "#,##0.0", 2), "1.5" + mb);
    EXPECT_EQ(BLCommon::convertSizeStr(1048575, "#,##0.0", 2), "0.9" + mb); // rounded down, not up
    EXPECT_EQ(BLCommon::convertSizeStr(1234567890, "#,##0", 1), "1,205,632" + kb);
    EXPECT_EQ(BLCommon::convertSizeStr(1234567, "#,##0", 0), "1,234,567");
    // Earlier steps are whole units: 1.5 GiB + 1023 KiB.
    EXPECT_EQ(BLCommon::convertSizeStr((qint64(3) << 29) + 1023 * 1024, "#,##0.0", 3), "1.5" + gb);
    EXPECT_EQ(BLCommon::convertSizeStr(qint64(3) << 40, "#,##0.0", 4),
              "3.0 " + BLLocalizedString("LOCALIZED_TYPE_TB"));
}
