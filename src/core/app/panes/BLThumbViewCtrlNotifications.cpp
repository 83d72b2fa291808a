// BLThumbViewCtrl's answers to notifications: folders changed, takes added,
// updated or deleted, pictures arrived, properties and formats changed.
#include "core/app/panes/BLThumbViewCtrl.h"

#include "core/app/panes/BLMediaInfoCtrl.h"
#include "core/card/BLDiskCtrl.h"
#include "core/card/BLTreeViewCtrl.h"
#include "core/card/DOTakeData.h"
#include "core/formats/metadata/BLNonMetaAcss.h"
#include "core/operations/BLClipboardCtrl.h"
#include "core/services/BLCommon.h"
#include "core/services/BLLogCtrl.h"
#include "core/services/BLPlistCtrl.h"
#include "core/services/SCNotificationCenter.h"
#include "core/services/SCNotificationNames.h"

#include <QDir>
#include <QFileInfo>
#include <QItemSelectionModel>
#include <QMimeData>
#include <QTimer>
#include <QUrl>

#include <algorithm>
#include <exception>

namespace {

// A UMID list given as a list or as one text.
QStringList umidsOf(const QVariant& value)
{
    if (value.typeId() == QMetaType::QString)
        return {value.toString()};
    return value.toStringList();
}

// The key frame to write into a take's own metadata: a take that has lost
// part of its clips counts its frames from where its clips now start.
qint64 checkKeyFrame(qint64 keyFrame, qint64 takeDuration, qint64 clipsDuration)
{
    if (keyFrame > takeDuration)
        return 0;
    if (takeDuration > clipsDuration)
        return takeDuration - clipsDuration + keyFrame;
    return keyFrame;
}

bool writeKeyFrameFile(const QString& path, qint64 keyFrame)
{
    BLNonMetaAcss meta;
    return meta.loadForFilePath(path) && meta.setKeyFrame(QString::number(keyFrame)) && meta.save();
}

} // namespace

// ---- notifications ----

void BLThumbViewCtrl::selectFolderDidChangeNotification(const SCNotification& notification)
{
    const QString& own = m_mediaInfoCtrl.getMediaInfoType() == BLMediaInfoCtrl::kTypeMain
                             ? SC::SCMainSelectFolderDidChangeNotification
                             : SC::SCSub1SelectFolderDidChangeNotification;
    if (notification.name == own && notification.sender == static_cast<const void*>(&m_mediaInfoCtrl)) {
        changeFolder();
        m_mediaInfoCtrl.updateToolButtons();
    }
    m_mediaInfoCtrl.updateToolAllCopyButton();
}

void BLThumbViewCtrl::selectFolderDataDidUpdateNotification(const SCNotification& notification)
{
    if (!isSelectFolder(notification.userInfo.value(SC::SCDUpdateSelectFolderKey).toString()))
        return;
    changeFolder();
    m_mediaInfoCtrl.updateToolButtons();
    m_mediaInfoCtrl.updateToolAllCopyButton();
}

void BLThumbViewCtrl::takeDidAddNotification(const SCNotification& notification)
{
    const QString folder = notification.userInfo.value(SC::SCAddSelectFolderKey).toString();
    if (!isSelectFolder(folder))
        return;
    // A change while the folder loads is picked up by the reload that follows.
    if (m_loading) {
        changeFolder();
        return;
    }
    const QString pane = m_mediaInfoCtrl.getMediaInfoTypeString();
    BLLogCtrl::debug(kProcessId,
                     QStringLiteral("[BLThumbViewCtrl takeDidAddNotification](%1) Start").arg(pane));
    const auto takes = notification.userInfo.value(SC::SCAddTakeDatasKey).value<QList<DOTakeData>>();
    for (const DOTakeData& take : takes) {
        const DOTakeData copy = take.copyTake();
        m_mediaInfoCtrl.setTakeData(copy);
        const int row = int(m_thumbArray.size());
        beginInsertRows({}, row, row);
        addThumbDataObject(copy, int(m_mediaInfoCtrl.getTakeData().size()) - 1);
        endInsertRows();
    }
    refreshAfterInPlaceChange(folder, !takes.isEmpty());
    BLLogCtrl::debug(kProcessId,
                     QStringLiteral("[BLThumbViewCtrl takeDidAddNotification](%1) End").arg(pane));
}

void BLThumbViewCtrl::takeDidUpdateNotification(const SCNotification& notification)
{
    const QString folder = notification.userInfo.value(SC::SCUpdateSelectFolderKey).toString();
    if (!isSelectFolder(folder))
        return;
    // A change while the folder loads is picked up by the reload that follows.
    if (m_loading) {
        changeFolder();
        return;
    }
    const QString pane = m_mediaInfoCtrl.getMediaInfoTypeString();
    BLLogCtrl::debug(kProcessId,
                     QStringLiteral("[BLThumbViewCtrl takeDidUpdateNotification](%1) Start").arg(pane));
    const QStringList umids = umidsOf(notification.userInfo.value(SC::SCUpdateTakeUmidsKey));
    const auto takes = notification.userInfo.value(SC::SCUpdateTakeDatasKey).value<QList<DOTakeData>>();
    bool changed = false;
    for (qsizetype i = 0; i < std::min(umids.size(), takes.size()); ++i) {
        const int index = m_mediaInfoCtrl.deleteTakeDataByUmid(umids[i]);
        if (index < 0)
            continue;
        const DOTakeData copy = takes[i].copyTake();
        m_mediaInfoCtrl.setTakeData(copy, index);
        const int row = rowOfTakeIndex(index);
        if (row >= 0) {
            m_thumbArray[row].setTakeData(copy);
            // The picture is asked for again when the view next shows the item.
            m_thumbArray[row].setImageRequested(false);
            emitRowChanged(row);
        }
        changed = true;
        BLLogCtrl::debug(
            kProcessId,
            QStringLiteral("[BLThumbViewCtrl takeDidUpdateNotification](%1)    update from UMID:%2")
                .arg(pane, umids[i]));
    }
    m_mediaInfoCtrl.updateSize(folder);
    if (changed)
        sortRecords();
    BLLogCtrl::debug(kProcessId,
                     QStringLiteral("[BLThumbViewCtrl takeDidUpdateNotification](%1) End").arg(pane));
}

void BLThumbViewCtrl::takeDidDeleteNotification(const SCNotification& notification)
{
    const QString folder = notification.userInfo.value(SC::SCDeleteSelectFolderKey).toString();
    if (!isSelectFolder(folder))
        return;
    // A change while the folder loads is picked up by the reload that follows.
    if (m_loading) {
        changeFolder();
        return;
    }
    const QString pane = m_mediaInfoCtrl.getMediaInfoTypeString();
    BLLogCtrl::debug(kProcessId,
                     QStringLiteral("[BLThumbViewCtrl takeDidDeleteNotification](%1) Start").arg(pane));
    bool changed = false;
    for (const QString& umid : umidsOf(notification.userInfo.value(SC::SCDeleteTakeUmidsKey))) {
        const int index = m_mediaInfoCtrl.deleteTakeDataByUmid(umid);
        if (index < 0)
            continue;
        const int row = rowOfTakeIndex(index);
        if (row >= 0) {
            beginRemoveRows({}, row, row);
            m_thumbArray.removeAt(row);
            endRemoveRows();
        }
        for (DOThumbData& thumb : m_thumbArray)
            if (thumb.getIndexTakeData() > index)
                thumb.setIndexTakeData(thumb.getIndexTakeData() - 1);
        changed = true;
        BLLogCtrl::debug(kProcessId,
                         QStringLiteral("[BLThumbViewCtrl takeDidDeleteNotification](%1)    delete UMID:%2")
                             .arg(pane, umid));
    }
    refreshAfterInPlaceChange(folder, changed);
    BLLogCtrl::debug(kProcessId,
                     QStringLiteral("[BLThumbViewCtrl takeDidDeleteNotification](%1) End").arg(pane));
}

void BLThumbViewCtrl::cacheImageDidGetNotification(const SCNotification& notification)
{
    const QVariantMap& info = notification.userInfo;
    if (!isSelectFolder(info.value(SC::SCCacheGSelectFolderKey).toString()))
        return;
    // Every take of that UMID: a clip folder duplicated by hand shows twice.
    const QString umid = info.value(SC::SCCacheGUmidKey).toString();
    for (int row = 0; row < m_thumbArray.size(); ++row) {
        if (m_thumbArray[row].getUmid().compare(umid, Qt::CaseInsensitive) != 0)
            continue;
        const DOTakeData take = m_mediaInfoCtrl.getTakeData(m_thumbArray[row].getIndexTakeData());
        // A picture of an older key frame or status is stale.
        if (take.getKeyFrame() != info.value(SC::SCCacheGFrameNoKey).toLongLong() ||
            take.getTakeStatus() != info.value(SC::SCCacheGTakeStatusKey).toInt())
            continue;
        m_thumbArray[row].setImage(info.value(SC::SCCacheGImageKey).value<QImage>());
        emitRowChanged(row);
    }
}

void BLThumbViewCtrl::movieThumbDidChangeNotification(const SCNotification& notification)
{
    const QVariantMap& info = notification.userInfo;
    const QString folder = info.value(SC::SCMThumbSelectFolderKey).toString();
    if (!isSelectFolder(folder))
        return;
    const QString pane = m_mediaInfoCtrl.getMediaInfoTypeString();
    BLLogCtrl::debug(kProcessId,
                     QStringLiteral("[BLThumbViewCtrl movieThumbDidChangeNotification](%1) Start").arg(pane));
    const qint64 frame = info.value(SC::SCMThumbFrameNoKey).toLongLong();
    for (const QString& umid : umidsOf(info.value(SC::SCMThumbUmidsKey))) {
        const int index = m_mediaInfoCtrl.getTakeDataByUmid(umid);
        if (index < 0)
            continue;
        DOTakeData take = m_mediaInfoCtrl.getTakeData(index);
        // Writing the present key frame back first shows that every file can
        // be written before any of them changes.
        if (!writeKeyFrame(take, take.getKeyFrame()) || !writeKeyFrame(take, frame)) {
            const bool unusable =
                BLDiskCtrl::sharedCtrl()->isUsableDrive(m_mediaInfoCtrl.getSelectFolder()) == 2;
            BLCommon::sharedCtrl()->messageBox(
                unusable ? QStringLiteral("MSG_6510_3214") : QStringLiteral("MSG_631_3166"), QString(), 0, 0);
            break;
        }
        take.setKeyFrame(frame);
        m_mediaInfoCtrl.replaceTakeData(take, index);
        const int row = rowOfTakeIndex(index);
        if (row >= 0) {
            m_thumbArray[row].setTakeData(take);
            m_thumbArray[row].setImageRequested(true);
            sendCacheImageRequestNotification(row);
            emitRowChanged(row);
        }
    }
    BLLogCtrl::debug(kProcessId,
                     QStringLiteral("[BLThumbViewCtrl movieThumbDidChangeNotification](%1) End").arg(pane));
}

bool BLThumbViewCtrl::writeKeyFrame(const DOTakeData& take, qint64 keyFrame) const
{
    const QString bpav = BLCommon::getPathOfBPAV(m_mediaInfoCtrl.getSelectFolder());
    if (take.getXMLUri().isEmpty() ||
        !writeKeyFrameFile(BLCommon::makeFilePath(bpav, {take.getXMLUri()}),
                           checkKeyFrame(keyFrame, take.getCurrentDuration(), take.getTakeDuration())))
        return false;
    for (const DOClipData& clip : take.getClipData())
        if (!writeKeyFrameFile(BLCommon::makeFilePath(bpav, {clip.getXMLUri()}), keyFrame))
            return false;
    return true;
}

void BLThumbViewCtrl::thumbViewSelectItemNotification(const SCNotification& notification)
{
    const QVariantMap& info = notification.userInfo;
    if (info.contains(SC::SCSelectFolderKey) && !isSelectFolder(info.value(SC::SCSelectFolderKey).toString()))
        return;
    const int row = rowOfUmid(info.value(SC::SCItemUmidKey).toString());
    if (row < 0)
        return;
    m_selectionModel->select(index(row), QItemSelectionModel::ClearAndSelect);
    m_selectionModel->setCurrentIndex(index(row), QItemSelectionModel::NoUpdate);
    emit scrollToItem(row);
    if (info.value(SC::SCItemDoPlayKey).toBool())
        doubleClickThumbItemCtrl(row);
}

void BLThumbViewCtrl::clipPropertyDidChangeNotification(const SCNotification& notification)
{
    const QVariantMap& info = notification.userInfo;
    if (!isSelectFolder(info.value(SC::SCSelectFolderKey).toString()))
        return;
    const QVariant value = info.value(SC::SCDidChangeTakeDataKey);
    if (!value.canConvert<DOTakeData>())
        return;
    const int index = info.value(SC::SCIndexTakeDataKey).toInt();
    const DOTakeData take = value.value<DOTakeData>();
    m_mediaInfoCtrl.replaceTakeData(take, index);
    const int row = rowOfTakeIndex(index);
    if (row < 0)
        return;
    m_thumbArray[row].setTakeData(take);
    emitRowChanged(row);
    sortRecords();
}

void BLThumbViewCtrl::dateFormatDidChangeNotification()
{
    for (DOThumbData& thumb : m_thumbArray)
        thumb.updateDateText();
    if (!m_thumbArray.isEmpty())
        emit dataChanged(index(0), index(int(m_thumbArray.size()) - 1), {DateRole});
}
