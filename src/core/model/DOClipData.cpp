#include "core/model/DOClipData.h"

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
