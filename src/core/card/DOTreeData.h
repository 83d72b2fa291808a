#pragma once

#include <QString>

// One row of a pane's folder list: the folder (or volume), the name shown for
// it and its icon.
class DOTreeData
{
public:
    // Icon names of the desktop's icon theme.
    static constexpr const char* kFolderImage = "folder";
    static constexpr const char* kStartupDiskImage = "drive-harddisk";
    static constexpr const char* kVolumeImage = "drive-removable-media";

    DOTreeData() = default;
    DOTreeData(const QString& relativePath, const QString& displayName, const QString& image)
        : m_relativePath(relativePath), m_displayName(displayName), m_image(image)
    {
    }

    // The name relative to the work folder; "/" for the work folder itself;
    // a volume's full path in the volume list.
    const QString& getRelativePath() const { return m_relativePath; }
    void setRelativePath(const QString& value) { m_relativePath = value; }
    const QString& getDisplayName() const { return m_displayName; }
    void setDisplayName(const QString& value) { m_displayName = value; }
    const QString& getImage() const { return m_image; }
    void setImage(const QString& value) { m_image = value; }

    // Orders two rows by display name: negative, 0 or positive.
    int compare(const DOTreeData& other) const { return m_displayName.compare(other.m_displayName); }

private:
    QString m_relativePath;
    QString m_displayName;
    QString m_image;
};
