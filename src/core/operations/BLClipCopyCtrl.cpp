#include "core/operations/BLClipCopyCtrl.h"

#include "core/app/BLLogCtrl.h"
#include "core/app/BLPlistCtrl.h"
#include "core/common/BLCommon.h"
#include "core/common/BLLocalizedStrings.h"
#include "core/common/BLProgressCtrl.h"
#include "core/common/SCNotificationNames.h"
#include "core/metadata/BLHouseKeepingCtrl.h"
#include "core/model/BLDiskCtrl.h"
#include "core/operations/BLClipCtrl.h"
#include "core/operations/IClipCopyView.h"
#include "core/operations/IOperationPane.h"

#include <QDir>

namespace {
constexpr int kProcessId = 642;
constexpr int kStopCodeOK = 1;
constexpr int kStopCodeCancel = 0;

void log(const QString& message)
{
    BLLogCtrl::debug(kProcessId, message);
}

void showMessage(const char* key, int style = 0)
{
    BLCommon::sharedCtrl()->messageBox(QString::fromLatin1(key), QString(), style, 0);
}

bool samePath(const QString& path, const QString& path2)
{
    return QDir::cleanPath(path).compare(QDir::cleanPath(path2), Qt::CaseInsensitive) == 0;
}
} // namespace

BLClipCopyCtrl::BLClipCopyCtrl(IClipCopyView* view, const DOClipCtrl& clipCtrl, IOperationPane* toPane,
                               IOperationPane* fromPane)
    : m_view(view), m_clipCtrl(clipCtrl), m_toMediaInfo(toPane), m_fromMediaInfo(fromPane),
      m_verify(BLPlistCtrl::sharedCtrl()->getVerifyCopy())
{
}

bool BLClipCopyCtrl::showModal(int mode)
{
    Q_ASSERT(m_view);
    const bool all = mode == kModeAll;
    m_view->setTitle(BLLocalizedString(all ? QStringLiteral("LOCALIZED_ALL_COPY_TITLE")
                                           : QStringLiteral("LOCALIZED_COPY_TITLE")));
    m_view->setMessage(
        BLLocalizedString(all ? QStringLiteral("MSG_643_3115") : QStringLiteral("MSG_642_3110")));
    m_view->setSource(m_clipCtrl.getCopyFromFolderName());
    m_view->setDestination(m_clipCtrl.getCopyToFolderName());
    if (m_view->runModal(this) != kStopCodeOK)
        return false;
    return execClipCopy();
}

void BLClipCopyCtrl::onOK()
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

void BLClipCopyCtrl::onCancel()
{
    m_view->endModal(kStopCodeCancel);
}

int BLClipCopyCtrl::checkRequest(const QString& name)
{
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
        log(QStringLiteral("[BLClipCopyCtrl execClipCopy] isVolume fail"));
        return kCheckRefused;
    }
    BLClipCtrl clipCtrl;
    if (!clipCtrl.checkFolderExistToMediaInfo(m_toMediaInfo, m_fromMediaInfo))
        return kCheckRefused;

    switch (clipCtrl.checkCopyToFolderName(name, m_clipCtrl, BLClipCtrl::kNameTypeCopy)) {
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

    // From here a refusal leaves no folder of this copy behind.
    const auto refuse = [&] {
        if (m_clipCtrl.getNewFolderFlag() && QDir().rmdir(m_clipCtrl.destinationWorkFolder()))
            m_clipCtrl.setNewFolderFlag(false);
        return kCheckRefused;
    };
    if (!clipCtrl.checkFolderLimit(m_clipCtrl)) {
        showMessage("MSG_632_3236");
        log(QStringLiteral("[BLClipCopyCtrl execClipCopy]    File Copy fail (ExceedFolderLimit)"));
        return refuse();
    }
    const QString destination = m_clipCtrl.destinationWorkFolder();
    if (m_toMediaInfo && samePath(destination, m_toMediaInfo->getSelectFolder()))
        m_clipCtrl.setToTakes(m_toMediaInfo->getTakeData());
    else
        m_clipCtrl.setToTakes(BLHouseKeepingCtrl().doHouseKeeping(destination));
    if (!clipCtrl.checkCopyPath(m_clipCtrl, BLClipCtrl::kTypeCopy))
        return refuse();
    if (!BLDiskCtrl::sharedCtrl()->checkReadableFromFolder(m_clipCtrl.getFromTakes(), source)) {
        showMessage("MSG_6510_3231");
        return refuse();
    }
    if (!clipCtrl.checkRepeatClip(m_clipCtrl)) {
        showMessage("MSG_642_3114");
        log(QStringLiteral("[BLClipCopyCtrl execClipCopy]    File Copy fail (RET_COPY_REAL)"));
        return refuse();
    }
    return kCheckReady;
}

bool BLClipCopyCtrl::execClipCopy()
{
    log(QStringLiteral("[BLClipCopyCtrl execClipCopy] Start"));
    if (m_clipCtrl.getChangeFolderFlag())
        log((m_clipCtrl.getNewFolderFlag() ? QStringLiteral("Name of created folder : ")
                                           : QStringLiteral("Name of changed folder : ")) +
            m_clipCtrl.getCopyToFolderName());
    if (!BLCommon::checkTakeDuration(m_clipCtrl.getFromTakes()))
        showMessage("MSG_111_3225");

    m_worker = std::make_shared<BLClipCopyThread>(m_clipCtrl, m_verify);
    const bool cancelled = BLProgressCtrl::sharedCtrl()->showProgress(m_worker, true);
    m_clipCtrl = m_worker->clipCtrl();
    if (!cancelled)
        BLCommon::sharedCtrl()->sendNotificationNotCoalesce(
            this, SC::SCSelectFolderDataDidUpdateNotification,
            {{SC::SCDUpdateSelectFolderKey, m_clipCtrl.destinationWorkFolder()}});
    log(QStringLiteral("[BLClipCopyCtrl execClipCopy] End"));
    return !cancelled && m_worker->isSucceeded();
}
