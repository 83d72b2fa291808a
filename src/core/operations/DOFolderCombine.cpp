#include "core/operations/DOFolderCombine.h"

int DOFolderCombine::compare(const DOFolderCombine& other) const
{
    return m_displayName.compare(other.m_displayName);
}

QList<DOTakeData> DOFolderCombine::getAddTakes(const QList<DOClipCtrl>& records)
{
    QList<DOTakeData> takes;
    for (const DOClipCtrl& record : records)
        takes << record.getAddTakes();
    return takes;
}
