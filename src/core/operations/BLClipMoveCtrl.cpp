#include "core/operations/BLClipMoveCtrl.h"

#include "core/services/BLLogCtrl.h"

#include "core/card/BLClipCtrl.h"
#include "core/services/BLCommon.h"
#include "core/services/BLProgressCtrl.h"

namespace {

const BLClipTransferCtrl::Kind kMove{644,
                                     "[BLClipMoveCtrl execClipMove]",
                                     "File Move",
                                     "RET_MOVE_REAL",
                                     BLClipCtrl::kNameTypeMove,
                                     BLClipCtrl::kTypeMove,
                                     "MSG_644_3173"};

} // namespace

BLClipMoveCtrl::BLClipMoveCtrl(IClipTransferView* view, const DOClipCtrl& clipCtrl, IOperationPane* toPane,
                               IOperationPane* fromPane)
    : BLClipTransferCtrl(kMove, view, clipCtrl, toPane, fromPane)
{
}

bool BLClipMoveCtrl::showModal()
{
    if (!runDialog(QStringLiteral("LOCALIZED_MOVE_TITLE"), QStringLiteral("MSG_644_3110")))
        return false;
    return execClipMove();
}

bool BLClipMoveCtrl::checkSourceFirst(BLClipCtrl& clipCtrl)
{
    return clipCtrl.checkWritableMoveOrigin(m_clipCtrl, BLClipCtrl::kTypeMove) &&
           clipCtrl.checkDeletePath(m_clipCtrl);
}

bool BLClipMoveCtrl::execClipMove()
{
    log(QStringLiteral("[BLClipMoveCtrl execClipMove] Start"));
    if (m_clipCtrl.getChangeFolderFlag())
        BLLogCtrl::debug(642, (m_clipCtrl.getNewFolderFlag() ? QStringLiteral("Name of created folder : ")
                                                             : QStringLiteral("Name of changed folder : ")) +
                                  m_clipCtrl.getCopyToFolderName());
    if (!BLCommon::checkTakeDuration(m_clipCtrl.getFromTakes()))
        BLCommon::sharedCtrl()->messageBox(QStringLiteral("MSG_111_3225"), QString(), 0, 0);

    m_worker = std::make_shared<BLClipMoveThread>(m_clipCtrl);
    BLProgressCtrl::sharedCtrl()->showProgress(m_worker, true);
    m_clipCtrl = m_worker->clipCtrl();
    // Both folders changed unless every take went back where it was.
    if (!m_worker->isRestored()) {
        notifyUpdate(m_clipCtrl.sourceWorkFolder());
        notifyUpdate(m_clipCtrl.destinationWorkFolder());
    }
    log(QStringLiteral("[BLClipMoveCtrl execClipMove] End"));
    return m_worker->isSucceeded();
}
