#include "core/operations/BLClipTransferCtrl.h"

#include "core/card/BLClipCtrl.h"
#include "core/card/BLDiskCtrl.h"
#include "core/card/BLHouseKeepingCtrl.h"
#include "core/card/IOperationPane.h"
#include "core/services/BLCommon.h"
#include "core/services/BLLocalizedStrings.h"
#include "core/services/BLLogCtrl.h"
#include "core/services/SCNotificationNames.h"

#include <QDir>

namespace {

constexpr int kStopCodeOK = 1;
constexpr int kStopCodeCancel = 0;

void showMessage(const char* key, int style = 0)
{
    BLCommon::sharedCtrl()->messageBox(QString::fromLatin1(key), QString(), style, 0);
}

bool samePath(const QString& path, const QString& path2)
{
    return QDir::cleanPath(path).compare(QDir::cleanPath(path2), Qt::CaseInsensitive) == 0;
}

} // namespace

BLClipTransferCtrl::BLClipTransferCtrl(const Kind& kind, IClipTransferView* view, const DOClipCtrl& clipCtrl,
                                       IOperationPane* toPane, IOperationPane* fromPane)
    : m_view(view), m_clipCtrl(clipCtrl), m_toMediaInfo(toPane), m_fromMediaInfo(fromPane), m_kind(kind)
{
}

void BLClipTransferCtrl::log(const QString& message) const
{
    BLLogCtrl::debug(m_kind.processId, message);
}

bool BLClipTransferCtrl::runDialog(const QString& titleKey, const QString& messageKey)
{
    Q_ASSERT(m_view);
    m_view->setTitle(BLLocalizedString(titleKey));
    m_view->setMessage(BLLocalizedString(messageKey));
    m_view->setSource(m_clipCtrl.getCopyFromFolderName());
    m_view->setDestination(m_clipCtrl.getCopyToFolderName());
    return m_view->runModal(this) == kStopCodeOK;
}

void BLClipTransferCtrl::onOK()
{
    switch (checkRequest(m_view->destination().trimmed())) {
    case kCheckReady:
        m_view->endModal(kStopCodeOK);
        break;
    case kCheckRefused:
        m_view->endModal(kStopCodeCancel);
        break;
    default:
        break; // another name may do
    }
}

void BLClipTransferCtrl::onCancel()
{
    m_view->endModal(kStopCodeCancel);
}

int BLClipTransferCtrl::checkRequest(const QString& name)
{
    const QString logName = QLatin1String(m_kind.logName);
    // A volume shown as the destination: the name is a folder on it.
    if (BLCommon::isVolume(m_clipCtrl.destinationWorkFolder()) && m_clipCtrl.getCopyToFolderName() != name) {
        m_clipCtrl.setCopyToFolder(m_clipCtrl.destinationWorkFolder());
        m_clipCtrl.setCopyToFolderName(name);
    }
    if (name.compare(QLatin1String("BPAV"), Qt::CaseInsensitive) == 0) {
        showMessage("MSG_651_3132", 1);
        return kCheckKeepOpen;
    }
    const QString source = m_clipCtrl.sourceWorkFolder();
    if (!BLCommon::isVolume(BLCommon::getVolumeName(source)) ||
        !BLCommon::isVolume(BLCommon::getVolumeName(m_clipCtrl.getCopyToPath()))) {
        showMessage("MSG_632_3169");
        log(logName + QStringLiteral(" isVolume fail"));
        return kCheckRefused;
    }
    BLClipCtrl clipCtrl;
    if (!clipCtrl.checkFolderExistToMediaInfo(m_toMediaInfo, m_fromMediaInfo) || !checkSourceFirst(clipCtrl))
        return kCheckRefused;

    switch (clipCtrl.checkCopyToFolderName(name, m_clipCtrl, m_kind.nameType)) {
    case BLClipCtrl::kNameReady:
        break;
    case BLClipCtrl::kNameRefusedKeepOpen:
        return kCheckKeepOpen;
    case BLClipCtrl::kNameNotCreated:
        if (BLDiskCtrl::sharedCtrl()->isUsableDrive(m_clipCtrl.getCopyToPath()) == 2)
            showMessage("MSG_6510_3213");
        return kCheckRefused;
    default:
        return kCheckRefused;
    }

    const auto refuse = [&] {
        if (m_clipCtrl.getNewFolderFlag() && QDir().rmdir(m_clipCtrl.destinationWorkFolder()))
            m_clipCtrl.setNewFolderFlag(false);
        return kCheckRefused;
    };
    const QString failed = QStringLiteral("%1    %2 fail (%3)").arg(logName, QLatin1String(m_kind.operation));
    if (!clipCtrl.checkFolderLimit(m_clipCtrl)) {
        showMessage("MSG_632_3236");
        log(failed.arg(QStringLiteral("ExceedFolderLimit")));
        return refuse();
    }
    const QString destination = m_clipCtrl.destinationWorkFolder();
    if (m_toMediaInfo && samePath(destination, m_toMediaInfo->getSelectFolder()))
        m_clipCtrl.setToTakes(m_toMediaInfo->getTakeData());
    else
        m_clipCtrl.setToTakes(BLHouseKeepingCtrl().doHouseKeeping(destination));
    if (!clipCtrl.checkCopyPath(m_clipCtrl, m_kind.pathType) || !checkSourceLast(clipCtrl))
        return refuse();
    if (!clipCtrl.checkRepeatClip(m_clipCtrl)) {
        showMessage(m_kind.collisionKey);
        log(failed.arg(QLatin1String(m_kind.realResult)));
        return refuse();
    }
    return kCheckReady;
}

void BLClipTransferCtrl::notifyUpdate(const QString& workFolder)
{
    BLCommon::sharedCtrl()->sendNotificationNotCoalesce(this, SC::SCSelectFolderDataDidUpdateNotification,
                                                        {{SC::SCDUpdateSelectFolderKey, workFolder}});
}
