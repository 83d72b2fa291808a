#pragma once

#include "core/card/DOClipCtrl.h"

#include <QList>
#include <QString>

// One folder the combine dialog offers: the name shown and the name on disk.
class DOFolderCombine
{
public:
    DOFolderCombine(const QString& displayName, const QString& realName)
        : m_displayName(displayName), m_realName(realName)
    {
    }
    const QString& getDisplayName() const { return m_displayName; }
    const QString& getRealName() const { return m_realName; }
    // Orders by display name: negative, 0 or positive.
    int compare(const DOFolderCombine& other) const;
    // The takes the records add to the destination, one list after the other.
    static QList<DOTakeData> getAddTakes(const QList<DOClipCtrl>& records);

private:
    QString m_displayName;
    QString m_realName;
};
