#pragma once

#include "core/card/DOTakeData.h"

#include <QString>

// One request for a take's thumbnail: which pane asked (its media info type),
// the folder the take belongs to and the take itself (copies of both).
class DOCacheRequestData
{
public:
    DOCacheRequestData() = default;
    DOCacheRequestData(qint32 mediaInfoType, const QString& selectFolder, const DOTakeData& takeData);

    qint32 getMediaInfoType() const { return m_nMediaInfoType; }
    void setMediaInfoType(qint32 value) { m_nMediaInfoType = value; }
    const QString& getSelectFolder() const { return m_sSelectFolder; }
    void setSelectFolder(const QString& value) { m_sSelectFolder = value; }
    const DOTakeData& getTakeData() const { return m_takeData; }
    void setTakeData(const DOTakeData& value) { m_takeData = value.copyTake(); }

    // Whether this request asks for the same picture as a take of a folder:
    // same folder, UMID, key frame and take status.
    bool isSamePicture(const QString& selectFolder, const DOTakeData& takeData) const;

private:
    qint32 m_nMediaInfoType = 0;
    QString m_sSelectFolder;
    DOTakeData m_takeData;
};
