#include "core/operations/BLMediaNameChangeCtrl.h"

#include "core/card/BLClipCtrl.h"
#include "core/card/BLDiskCtrl.h"
#include "core/card/IOperationPane.h"
#include "core/formats/metadata/BLMediaProfileAcss.h"
#include "core/formats/metadata/DOAttached.h"
#include "core/operations/IMediaNameChangeView.h"
#include "core/services/BLCommon.h"
#include "core/services/BLLocalizedStrings.h"
#include "core/services/SCNotificationNames.h"

namespace {

void showMessage(const QString& key, int style = 0)
{
    BLCommon::sharedCtrl()->messageBox(key, QString(), style, 0);
}

} // namespace

BLMediaNameChangeCtrl::BLMediaNameChangeCtrl(IMediaNameChangeView* view, IOperationPane* mediaInfo)
    : m_view(view), m_mediaInfoCtrl(mediaInfo)
{
}

bool BLMediaNameChangeCtrl::showModal(const QString& path)
{
    Q_ASSERT(m_view);
    preShowModal(path);
    m_view->setTitle(BLLocalizedString(QStringLiteral("LOCALIZED_MEDIA_NAME_TITLE")));
    m_view->setMediaName(m_defaultName);
    if (m_view->runModal(this) != kStopCodeOK)
        return false;
    return execMediaNameChange(path);
}

bool BLMediaNameChangeCtrl::preShowModal(const QString& path)
{
    m_path = path;
    m_defaultName.clear();
    BLMediaProfileAcss mediaPro;
    DOAttached attached;
    if (!mediaPro.loadForFolderPath(BLCommon::getPathOfBPAV(path)) || !mediaPro.getAttachedData(attached))
        return false;
    m_defaultName = attached.getMediaName();
    return true;
}

QString BLMediaNameChangeCtrl::typedName() const
{
    return m_view ? m_view->mediaName() : m_name;
}

bool BLMediaNameChangeCtrl::checkInputTextField(bool* closeDialog)
{
    if (closeDialog)
        *closeDialog = false;
    BLClipCtrl clipCtrl;
    const bool exists = m_mediaInfoCtrl ? clipCtrl.checkFolderExist(*m_mediaInfoCtrl, 6)
                                        : clipCtrl.checkFolderExistOfWorkFolder(m_path);
    if (!exists) {
        if (!m_mediaInfoCtrl)
            showMessage(QStringLiteral("MSG_632_3169"));
        if (closeDialog)
            *closeDialog = true;
        return false;
    }
    const QString name = typedName();
    if (!m_defaultName.isEmpty() && !BLCommon::checkNotInput(name)) {
        showMessage(QStringLiteral("MSG_6512_3196"));
        return false;
    }
    if (!name.isEmpty() && !BLCommon::checkHyphenationCharacter(name)) {
        showMessage(QStringLiteral("MSG_648_3160"), 1);
        return false;
    }
    if (name.toUtf8().size() > kMaxNameBytes) {
        showMessage(QStringLiteral("MSG_6512_3227"));
        return false;
    }
    return true;
}

void BLMediaNameChangeCtrl::onOK()
{
    bool close = false;
    if (!checkInputTextField(&close)) {
        if (close)
            m_view->endModal(kStopCodeCancel);
        return;
    }
    if (typedName() != m_defaultName && !BLDiskCtrl::sharedCtrl()->isWritablePath(m_path)) {
        showMessage(QStringLiteral("MSG_6510_3210"));
        m_view->endModal(kStopCodeCancel);
        return;
    }
    m_view->endModal(kStopCodeOK);
}

void BLMediaNameChangeCtrl::onCancel()
{
    m_view->endModal(kStopCodeCancel);
}

bool BLMediaNameChangeCtrl::changeMediaName(const QString& path, const QString& name)
{
    preShowModal(path);
    m_name = name;
    if (!checkInputTextField())
        return false;
    if (name != m_defaultName && !isWritable(path)) {
        showMessage(QStringLiteral("MSG_6510_3210"));
        return false;
    }
    return execMediaNameChange(path);
}

bool BLMediaNameChangeCtrl::execMediaNameChange(const QString& path)
{
    if (typedName() != m_defaultName && !updateMediaPro(path))
        return false;
    BLCommon::sharedCtrl()->sendNotificationNotCoalesce(
        this, SC::SCMediaNameDidChangeNotification,
        {{SC::SCSelectFolderKey, path}, {SC::SCMediaNameKey, typedName()}});
    return true;
}

bool BLMediaNameChangeCtrl::updateMediaPro(const QString& path)
{
    BLMediaProfileAcss mediaPro;
    DOAttached attached;
    if (!mediaPro.loadForFolderPath(BLCommon::getPathOfBPAV(path)) || !mediaPro.getAttachedData(attached))
        return false;
    attached.setMediaName(typedName());
    if (mediaPro.setAttachedData(attached) != 0)
        return false;
    return mediaPro.save(attached.getMediaId());
}

bool BLMediaNameChangeCtrl::isWritable(const QString& path)
{
    const BLDiskCtrl* disk = BLDiskCtrl::sharedCtrl();
    const QString bpav = BLCommon::getPathOfBPAV(path);
    return disk->isWritableThisPath(path) && disk->isWritableThisPath(bpav) &&
           disk->isWritableThisPath(bpav + QStringLiteral("/MEDIAPRO.XML"));
}
