#include "core/operations/BLClipDeleteCtrl.h"

#include "core/card/BLClipCtrl.h"
#include "core/card/BLDiskCtrl.h"
#include "core/card/IOperationPane.h"
#include "core/services/BLCommon.h"
#include "core/services/BLLogCtrl.h"
#include "core/services/BLProgressCtrl.h"
#include "core/services/IMessagePresenter.h"
#include "core/services/SCNotificationNames.h"

namespace {
constexpr int kProcessId = 645;
constexpr int kCheckProcessId = 640;
constexpr int kFolderCheckType = 2;
constexpr int kYesNoButtons = 2;

void log(const QString& message)
{
    BLLogCtrl::debug(kProcessId, message);
}
} // namespace

BLClipDeleteCtrl::BLClipDeleteCtrl(const DOClipCtrl& clipCtrl, IOperationPane* mediaInfo)
    : m_doClipCtrl(clipCtrl), m_mediaInfoCtrl(mediaInfo)
{
}

bool BLClipDeleteCtrl::clipDelete(bool ask)
{
    log(QStringLiteral("[BLClipDeleteCtrl clipDelete] Start"));
    BLCommon* common = BLCommon::sharedCtrl();
    if (ask && common->messageBox(QStringLiteral("MSG_645_3123"), QString(), 0, kYesNoButtons) ==
                   IMessagePresenter::kSecondButton)
        return false;
    if (!checkRequest())
        return false;

    m_worker = std::make_shared<BLClipDeleteThread>(m_doClipCtrl);
    BLProgressCtrl::sharedCtrl()->showProgress(m_worker, true);
    m_doClipCtrl = m_worker->clipCtrl();
    // A cancelled run has deleted takes too: the folder is read again anyway.
    common->sendNotificationNotCoalesce(this, SC::SCSelectFolderDataDidUpdateNotification,
                                        {{SC::SCDUpdateSelectFolderKey, m_doClipCtrl.sourceWorkFolder()}});
    log(QStringLiteral("[BLClipDeleteCtrl clipDelete] End"));
    return m_worker->isSucceeded();
}

bool BLClipDeleteCtrl::checkRequest()
{
    BLClipCtrl clipCtrl;
    const QString workFolder = m_doClipCtrl.sourceWorkFolder();
    if (m_mediaInfoCtrl) {
        if (!clipCtrl.checkFolderExist(*m_mediaInfoCtrl, kFolderCheckType))
            return false;
    } else if (!clipCtrl.checkFolderExistOfWorkFolder(workFolder)) {
        BLCommon::sharedCtrl()->messageBox(QStringLiteral("MSG_632_3169"), QString(), 0, 0);
        return false;
    }
    if (BLDiskCtrl::sharedCtrl()->isUsableDrive(workFolder) == 3) {
        BLCommon::sharedCtrl()->messageBox(QStringLiteral("MSG_651_3232"), QString(), 0, 0);
        BLLogCtrl::debug(kCheckProcessId, QStringLiteral("[BLClipDeleteCtrl clipDelete] End "));
        return false;
    }
    return clipCtrl.checkDeletePath(m_doClipCtrl) &&
           clipCtrl.checkWritableMoveOrigin(m_doClipCtrl, BLClipCtrl::kTypeDelete);
}
