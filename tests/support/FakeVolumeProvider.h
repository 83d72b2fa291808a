#pragma once

#include "core/services/BLVolumeProvider.h"

#include <QDir>

namespace cwtest {

// Presents the start-up disk "/" and chosen volumes of chosen kinds and sizes
// in place of the mount table. A path belongs to the volume whose root is its
// longest prefix; anything else lies on "/". Installed for its lifetime.
class FakeVolumeProvider : public BLVolumeProvider
{
public:
    explicit FakeVolumeProvider(const BLVolume& startupDisk = {"/", "ext4", "System", 500'000'000'000,
                                                               250'000'000'000})
        : m_volumes{startupDisk}
    {
        BLVolumeProvider::install(this);
    }
    ~FakeVolumeProvider() override { BLVolumeProvider::install(nullptr); }

    void addVolume(const BLVolume& volume) { m_volumes.append(volume); }
    void removeVolume(const QString& rootPath)
    {
        m_volumes.removeIf([&](const BLVolume& v) { return v.rootPath == rootPath; });
    }
    // Leaves statistics of every path unreadable.
    void setUnreadable(bool unreadable) { m_unreadable = unreadable; }

    QList<BLVolume> mountedVolumes() const override { return m_volumes; }
    std::optional<BLVolume> volumeForPath(const QString& path) const override
    {
        if (m_unreadable || path.isEmpty())
            return std::nullopt;
        const QString clean = QDir::cleanPath(path);
        BLVolume best = m_volumes.first();
        for (const BLVolume& v : m_volumes)
            if ((clean == v.rootPath || clean.startsWith(v.rootPath + '/')) &&
                v.rootPath.size() > best.rootPath.size())
                best = v;
        return best;
    }

private:
    QList<BLVolume> m_volumes;
    bool m_unreadable = false;
};

} // namespace cwtest
