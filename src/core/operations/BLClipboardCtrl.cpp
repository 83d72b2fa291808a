#include "core/operations/BLClipboardCtrl.h"

#include <QDir>

namespace {

BLClipboardCtrl* g_shared = nullptr;

} // namespace

BLClipboardCtrl* BLClipboardCtrl::sharedCtrl()
{
    if (!g_shared)
        g_shared = new BLClipboardCtrl();
    return g_shared;
}

void BLClipboardCtrl::releaseCtrl()
{
    delete g_shared;
    g_shared = nullptr;
}

void BLClipboardCtrl::setClipData(const QList<DOTakeData>& takes, const QString& path, int mode)
{
    m_takeDatas.clear();
    m_path.clear();
    m_mode = kModeEmpty;
    if (mode == kModeEmpty || takes.isEmpty() || path.isEmpty())
        return;
    for (const DOTakeData& take : takes)
        m_takeDatas << take.copyTake();
    m_path = path;
    m_mode = mode;
}

bool BLClipboardCtrl::checkPaste(const QString& folder) const
{
    if (m_mode == kModeEmpty || folder.isEmpty() ||
        QDir::cleanPath(folder).compare(QDir::cleanPath(m_path), Qt::CaseInsensitive) == 0)
        return false;
    for (const DOTakeData& take : m_takeDatas)
        if (take.getTakeStatus() >= 4 || !take.isAllFileExist(m_path))
            return false;
    return true;
}
