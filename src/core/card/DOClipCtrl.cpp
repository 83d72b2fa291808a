#include "core/card/DOClipCtrl.h"

#include "core/services/BLCommon.h"

#include <QDir>
#include <QFileInfo>

namespace {

// Index edits outside the list change nothing.
template <class T> void insertAt(QList<T>& list, int index, const T& value)
{
    if (index >= 0 && index <= list.size())
        list.insert(index, value);
}

template <class T> void removeAt(QList<T>& list, int index)
{
    if (index >= 0 && index < list.size())
        list.removeAt(index);
}

} // namespace

QString DOClipCtrl::sourceWorkFolder() const
{
    return BLCommon::makeFilePath(m_CopyFromPath, {m_CopyFromFolderName});
}

QString DOClipCtrl::destinationWorkFolder() const
{
    return BLCommon::makeFilePath(m_CopyToPath, {m_CopyToFolderName});
}

void DOClipCtrl::setSourceWorkFolder(const QString& workFolder)
{
    const QFileInfo folder(QDir::cleanPath(workFolder));
    m_CopyFromPath = folder.path();
    m_CopyFromFolderName = folder.fileName();
}

void DOClipCtrl::setDestinationWorkFolder(const QString& workFolder)
{
    const QFileInfo folder(QDir::cleanPath(workFolder));
    m_CopyToPath = folder.path();
    m_CopyToFolderName = folder.fileName();
}

void DOClipCtrl::setToTake(const DOTakeData& take, int index)
{
    insertAt(m_ToTakes, index, take);
}

void DOClipCtrl::delToTake(int index)
{
    removeAt(m_ToTakes, index);
}

void DOClipCtrl::delDelUmid(int index)
{
    removeAt(m_arrDelUmid, index);
}

void DOClipCtrl::setAddTake(const DOTakeData& take, int index)
{
    insertAt(m_AddTake, index, take);
}

void DOClipCtrl::delAddTake(int index)
{
    removeAt(m_AddTake, index);
}

void DOClipCtrl::setNewTake(const DOTakeData& take, int index)
{
    insertAt(m_newTakes, index, take);
}

void DOClipCtrl::delNewTake(int index)
{
    removeAt(m_newTakes, index);
}

QString DOClipCtrl::getCreationDate() const
{
    return m_FromTakes.isEmpty() ? QString() : m_FromTakes.first().getClipCreationDate();
}

int DOClipCtrl::compareByTakeCreationDate(const DOClipCtrl& other) const
{
    return getCreationDate().compare(other.getCreationDate(), Qt::CaseInsensitive);
}
