#include "core/operations/BLClipCopyCtrl.h"

#include "core/card/BLClipCtrl.h"
#include "core/card/BLDiskCtrl.h"
#include "core/services/BLCommon.h"
#include "core/services/BLLogCtrl.h"
#include "core/services/BLPlistCtrl.h"
#include "core/services/BLProgressCtrl.h"

namespace {

const BLClipTransferCtrl::Kind kCopy{642,
                                     "[BLClipCopyCtrl execClipCopy]",
                                     "File Copy",
                                     "RET_COPY_REAL",
                                     BLClipCtrl::kNameTypeCopy,
                                     BLClipCtrl::kTypeCopy,
                                     "MSG_642_3114"};

} // namespace

BLClipCopyCtrl::BLClipCopyCtrl(IClipTransferView* view, const DOClipCtrl& clipCtrl, IOperationPane* toPane,
                               IOperationPane* fromPane)
    : BLClipTransferCtrl(kCopy, view, clipCtrl, toPane, fromPane),
      m_verify(BLPlistCtrl::sharedCtrl()->getVerifyCopy())
{
}

bool BLClipCopyCtrl::showModal(int mode)
{
    const bool all = mode == kModeAll;
    if (!runDialog(all ? QStringLiteral("LOCALIZED_ALL_COPY_TITLE") : QStringLiteral("LOCALIZED_COPY_TITLE"),
                   all ? QStringLiteral("MSG_643_3115") : QStringLiteral("MSG_642_3110")))
        return false;
    return execClipCopy();
}

bool BLClipCopyCtrl::checkSourceLast(BLClipCtrl&)
{
    if (BLDiskCtrl::sharedCtrl()->checkReadableFromFolder(m_clipCtrl.getFromTakes(),
                                                          m_clipCtrl.sourceWorkFolder()))
        return true;
    BLCommon::sharedCtrl()->messageBox(QStringLiteral("MSG_6510_3231"), QString(), 0, 0);
    return false;
}

bool BLClipCopyCtrl::execClipCopy()
{
    log(QStringLiteral("[BLClipCopyCtrl execClipCopy] Start"));
    if (m_clipCtrl.getChangeFolderFlag())
        log((m_clipCtrl.getNewFolderFlag() ? QStringLiteral("Name of created folder : ")
                                           : QStringLiteral("Name of changed folder : ")) +
            m_clipCtrl.getCopyToFolderName());
    if (!BLCommon::checkTakeDuration(m_clipCtrl.getFromTakes()))
        BLCommon::sharedCtrl()->messageBox(QStringLiteral("MSG_111_3225"), QString(), 0, 0);

    m_worker = std::make_shared<BLClipCopyThread>(m_clipCtrl, m_verify);
    const bool cancelled = BLProgressCtrl::sharedCtrl()->showProgress(m_worker, true);
    m_clipCtrl = m_worker->clipCtrl();
    if (!cancelled)
        notifyUpdate(m_clipCtrl.destinationWorkFolder());
    log(QStringLiteral("[BLClipCopyCtrl execClipCopy] End"));
    return !cancelled && m_worker->isSucceeded();
}
