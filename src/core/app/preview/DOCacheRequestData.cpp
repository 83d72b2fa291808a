#include "core/app/preview/DOCacheRequestData.h"

DOCacheRequestData::DOCacheRequestData(qint32 mediaInfoType, const QString& selectFolder,
                                       const DOTakeData& takeData)
    : m_nMediaInfoType(mediaInfoType), m_sSelectFolder(selectFolder), m_takeData(takeData.copyTake())
{
}

bool DOCacheRequestData::isSamePicture(const QString& selectFolder, const DOTakeData& takeData) const
{
    return m_sSelectFolder == selectFolder && m_takeData.getUmid() == takeData.getUmid() &&
           m_takeData.getKeyFrame() == takeData.getKeyFrame() &&
           m_takeData.getTakeStatus() == takeData.getTakeStatus();
}
