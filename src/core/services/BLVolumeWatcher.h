#pragma once

#include <QObject>
#include <QStringList>
#include <QTimer>

// Follows the mounted volumes and posts SC::SCWorkspaceDidMountNotification or
// SC::SCWorkspaceDidUnmountNotification (user info SC::NSDevicePath: the
// volume's mount point) for each volume that appears or goes. The mount table
// is read once a second; the volumes themselves are asked for only when it
// changed, so a hanging network share never stalls the poll.
class BLVolumeWatcher : public QObject
{
    Q_OBJECT
public:
    // Starts from the volumes mounted now.
    explicit BLVolumeWatcher(QObject* parent = nullptr);

    // The program's watcher, created on first use and owned by the
    // application object (call on the main thread).
    static BLVolumeWatcher* sharedWatcher();

    // Compares the mounted volumes with those seen last and posts one
    // notification per change: unmounts first, then mounts.
    void checkVolumes();

private:
    void pollMountTable();
    static QStringList mountedRoots();

    QTimer m_timer;
    QByteArray m_mountTable;
    QStringList m_volumes;
};
