#include "core/services/BLVolumeWatcher.h"

#include "core/services/BLCommon.h"
#include "core/services/BLVolumeProvider.h"
#include "core/services/SCNotificationNames.h"

#include <QCoreApplication>
#include <QFile>
#include <QPointer>

#include <utility>

namespace {
constexpr int kPollInterval = 1000; // ms

QByteArray readMountTable()
{
    QFile file(QStringLiteral("/proc/self/mounts"));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}
} // namespace

BLVolumeWatcher::BLVolumeWatcher(QObject* parent)
    : QObject(parent), m_mountTable(readMountTable()), m_volumes(mountedRoots())
{
    connect(&m_timer, &QTimer::timeout, this, &BLVolumeWatcher::pollMountTable);
    m_timer.start(kPollInterval);
}

BLVolumeWatcher* BLVolumeWatcher::sharedWatcher()
{
    static QPointer<BLVolumeWatcher> shared;
    if (!shared)
        shared = new BLVolumeWatcher(QCoreApplication::instance());
    return shared;
}

void BLVolumeWatcher::checkVolumes()
{
    const QStringList now = mountedRoots();
    const QStringList before = std::exchange(m_volumes, now);
    BLCommon* common = BLCommon::sharedCtrl();
    for (const QString& root : before)
        if (!now.contains(root))
            common->sendNotificationNow(this, SC::SCWorkspaceDidUnmountNotification,
                                        {{SC::NSDevicePath, root}});
    for (const QString& root : now)
        if (!before.contains(root))
            common->sendNotificationNow(this, SC::SCWorkspaceDidMountNotification,
                                        {{SC::NSDevicePath, root}});
}

void BLVolumeWatcher::pollMountTable()
{
    QByteArray table = readMountTable();
    if (table.isEmpty() || table != m_mountTable) { // no readable mount table: ask the volumes each time
        m_mountTable = std::move(table);
        checkVolumes();
    }
}

QStringList BLVolumeWatcher::mountedRoots()
{
    QStringList roots;
    const QList<BLVolume> volumes = BLVolumeProvider::current()->mountedVolumes();
    for (const BLVolume& volume : volumes)
        roots << volume.rootPath;
    return roots;
}
