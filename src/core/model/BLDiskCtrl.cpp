#include "core/model/BLDiskCtrl.h"

#include <QNetworkInterface>

#include <mutex>

namespace {
std::mutex g_sharedMutex;
BLDiskCtrl* g_shared = nullptr;

constexpr int kMacDigits = 12;
} // namespace

BLDiskCtrl* BLDiskCtrl::sharedCtrl()
{
    std::lock_guard lock(g_sharedMutex);
    if (!g_shared)
        g_shared = new BLDiskCtrl();
    return g_shared;
}

void BLDiskCtrl::releaseCtrl()
{
    std::lock_guard lock(g_sharedMutex);
    delete g_shared;
    g_shared = nullptr;
}

QString BLDiskCtrl::getMacAddress(bool converted) const
{
    QString address;
    const QList<QNetworkInterface> interfaces = QNetworkInterface::allInterfaces();
    for (const QNetworkInterface& nic : interfaces) {
        const auto flags = nic.flags();
        if (!flags.testFlag(QNetworkInterface::IsUp) || flags.testFlag(QNetworkInterface::IsLoopBack))
            continue;
        QString hex = nic.hardwareAddress().remove(QLatin1Char(':')).toUpper();
        if (hex.isEmpty() || hex.count(QLatin1Char('0')) == hex.size())
            continue;
        address = hex;
        break;
    }
    address = address.left(kMacDigits).leftJustified(kMacDigits, QLatin1Char('0'));
    return converted ? convertMacAddress(address) : address;
}

QString BLDiskCtrl::convertMacAddress(const QString& address)
{
    const QString digits = address.left(kMacDigits).leftJustified(kMacDigits, QLatin1Char('0'));
    return digits.left(6) + QStringLiteral("FFFE") + digits.mid(6);
}
