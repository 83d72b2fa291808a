#include "core/card/DOClipData.h"

#include "core/services/BLCommon.h"

DOClipData DOClipData::copyClip() const
{
    DOClipData copy = *this;
    copy.m_sCreationDate = QString();
    copy.m_arrLtcChanges.clear();
    copy.m_bMateUpFlg = true;
    return copy;
}

int DOClipData::compareByClipCreationDate(const DOClipData& other) const
{
    return QString::compare(m_sCreationDate, other.m_sCreationDate, Qt::CaseInsensitive);
}

bool DOClipData::isFileOrNone(const QString& bpavFolder, const QString& reference)
{
    return reference.isEmpty() || BLCommon::isFiles(BLCommon::makeFilePath(bpavFolder, {reference}));
}

bool DOClipData::isAllFileExist(const QString& workFolder) const
{
    const QString bpav = BLCommon::getPathOfBPAV(workFolder);
    for (const QString* reference : {&m_XMLUri, &m_SMIUri, &m_BIMUri, &m_PPNUri, &m_MP4Uri}) {
        if (!isFileOrNone(bpav, *reference))
            return false;
    }
    return true;
}
