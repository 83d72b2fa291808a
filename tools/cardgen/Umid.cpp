#include "cardgen/Umid.h"

namespace cardgen {

namespace {

constexpr const char* kLabel = "060A2B340101010501010D43";

int64_t modifiedJulianDate(const QDate& date)
{
    int64_t y = date.year();
    int64_t m = date.month();
    if (m <= 2) {
        y -= 1;
        m += 12;
    }
    return (1461 * y) / 4 + y / 400 - y / 100 + (3059 * m - 6118) / 100 + date.day() - 678912;
}

} // namespace

QString Umid::next(const QDateTime& when)
{
    const QString umid = QString::fromLatin1(kLabel) + QStringLiteral("13") + QStringLiteral("000000") +
                         smpte309(when, m_serial) + machineNode();
    m_serial = m_serial >= 63 ? 1 : m_serial + 1;
    return umid;
}

QString Umid::mediaId(const QDateTime& when, int serial)
{
    return smpte309(when, serial) + machineNode();
}

QString Umid::systemId()
{
    return QString::fromLatin1(kHardwareAddress).toLower();
}

QString Umid::smpte309(const QDateTime& when, int serial)
{
    const QDateTime utc = when.toUTC();
    int64_t ms = utc.toMSecsSinceEpoch();
    if (serial > 63)
        ms += int64_t(serial / 64) * 100;
    const QString mjd = QString::asprintf("%06lld", static_cast<long long>(modifiedJulianDate(utc.date())));
    // The date's digit pairs are stored last pair first.
    const QString reversed = mjd.mid(4, 2) + mjd.mid(2, 2) + mjd.mid(0, 2);
    return QString::asprintf("%08lld", static_cast<long long>(ms % 100000000)) + reversed +
           QString::asprintf("%02X", (serial % 64) | 0xC0);
}

QString Umid::machineNode()
{
    const QString address = QString::fromLatin1(kHardwareAddress);
    return address.left(6) + QStringLiteral("FFFE") + address.mid(6);
}

} // namespace cardgen
