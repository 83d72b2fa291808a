// BLPreviewCtrl's side of the viewer library's messages: the callback that
// queues them from the library's thread and their handling on the main thread.
#include "core/app/preview/BLPreviewCtrl.h"

#include "core/app/preview/BLAudioChannelCtrl.h"
#include "core/app/preview/BLCacheImageCtrl.h"
#include "core/app/preview/BLClipViewerCallback.h"
#include "core/app/preview/BLPreviewButtonCtrl.h"
#include "core/app/preview/BLTimeCodeCtrl.h"
#include "core/app/preview/BLTimeSliderCtrl.h"
#include "core/app/preview/IPreviewView.h"
#include "core/card/BLDiskCtrl.h"
#include "core/services/BLCommon.h"
#include "core/services/BLLogCtrl.h"
#include "core/services/BLPlistCtrl.h"
#include "core/services/SCNotificationCenter.h"
#include "core/services/SCNotificationNames.h"

#include <QByteArrayList>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <chrono>
#include <cstring>

namespace {

void log(const QString& message)
{
    BLLogCtrl::debug(0, message);
}

const char* messageName(int id)
{
    switch (id) {
    case VM_EXITED:
        return "VM_EXITED";
    case VM_PLAYED:
        return "VM_PLAYED";
    case VM_FASTFORWARDED:
        return "VM_FASTFORWARDED";
    case VM_REWINDED:
        return "VM_REWINDED";
    case VM_PAUSING:
        return "VM_PAUSING";
    case VM_STOPPED:
        return "VM_STOPPED";
    case VM_TYPICAL_PICTURE:
        return "VM_TYPICAL_PICTURE";
    default:
        return nullptr;
    }
}

} // namespace

void GetViewerMessageFunc(vv_viewer_message_t* message, void* context)
{
    if (!message) {
        log(QStringLiteral("[GetViewerMessageFunc] message is nil"));
        return;
    }
    if (!context) {
        log(QStringLiteral("[GetViewerMessageFunc] arg1 is nil"));
        return;
    }
    auto* ctrl = static_cast<BLPreviewCtrl*>(context);
    BLPreviewCtrl::PendingMessage pending;
    pending.id = message->message_id;
    if (pending.id != VM_FRAME_INFO) {
        const char* name = messageName(pending.id);
        if (!name) {
            log(QString::asprintf("[GetViewerMessageFunc] message_id:?\?\?(%d)", pending.id));
            return;
        }
        log(QStringLiteral("[GetViewerMessageFunc] message_id:") + QLatin1String(name));
    }
    if (pending.id == VM_FRAME_INFO || pending.id == VM_TYPICAL_PICTURE) {
        if (!message->param)
            return;
        if (pending.id == VM_FRAME_INFO)
            pending.frameInfo = *static_cast<const vv_frame_info_t*>(message->param);
        else
            pending.typicalPicture = *static_cast<const vv_typical_picture_t*>(message->param);
    }
    ctrl->postMessage(pending);
}

void BLPreviewCtrl::recvPlayedMessage(int messageId)
{
    setViewerState(messageId);
}

void BLPreviewCtrl::recvFastForwardedMessage(int messageId)
{
    setViewerState(messageId);
}

void BLPreviewCtrl::recvRewindedMessage(int messageId)
{
    setViewerState(messageId);
}

void BLPreviewCtrl::recvPausingMessage(int messageId)
{
    setViewerState(messageId);
}

void BLPreviewCtrl::recvStoppedMessage(int /*messageId*/)
{
    setViewerState(VM_STOPPED);
    m_selectFolder.clear();
    m_umid.clear();
    m_view.setTitle(QString());
    m_view.redraw();
}

void BLPreviewCtrl::recvFrameInfoMessage(const vv_frame_info_t& param)
{
    if (getViewerState() == VM_STOPPED)
        return;
    log(QString::asprintf("[BLPreviewCtrl recvFrameInfoMessage] num_frames = %lld, take_frame_no = %lld, "
                          "clip_no = %d, clip_frame_no = %lld",
                          static_cast<long long>(param.num_frames),
                          static_cast<long long>(param.take_frame_no), param.clip_no,
                          static_cast<long long>(param.clip_frame_no)));
    if (m_timeSliderCtrl->checkSlipFrameInfo(param.take_frame_no)) {
        log(QStringLiteral("[BLPreviewCtrl recvFrameInfoMessage] skip"));
        return;
    }
    m_timeSliderCtrl->setFrameNo(param.take_frame_no);
    m_timeCodeCtrl->updateTimeCode(param);
}

void BLPreviewCtrl::recvTypicalPictureMessage(vv_typical_picture_t& param)
{
    vv_bitmap_free(&param.bitmap);
    log(QString::asprintf("[BLPreviewCtrl recvTypicalPictureMessage] frame_no = %lld",
                          static_cast<long long>(param.frame_no)));
    if (param.frame_no < 0)
        return;
    BLCommon::sharedCtrl()->sendNotificationNotCoalesce(this, SC::SCMovieThumbDidChangeNotification,
                                                        {{SC::SCMThumbSelectFolderKey, m_selectFolder},
                                                         {SC::SCMThumbUmidsKey, m_umid},
                                                         {SC::SCMThumbFrameNoKey, qint64(param.frame_no)}});
}

void BLPreviewCtrl::recvExitedMessage(int /*messageId*/) {}

void BLPreviewCtrl::postMessage(const PendingMessage& message)
{
    if (message.id >= VM_PLAYED && message.id <= VM_STOPPED) {
        std::lock_guard lock(m_jobLock);
        m_bStopped = message.id == VM_STOPPED;
    }
    bool first = false;
    {
        std::lock_guard lock(m_messageLock);
        first = m_messages.empty();
        m_messages.push_back(message);
    }
    if (first)
        QMetaObject::invokeMethod(
            &m_mainThread, [this] { deliverMessages(); }, Qt::QueuedConnection);
}

void BLPreviewCtrl::deliverMessages()
{
    std::vector<PendingMessage> messages;
    {
        std::lock_guard lock(m_messageLock);
        messages.swap(m_messages);
    }
    for (PendingMessage& message : messages)
        dispatchMessage(message);
}

void BLPreviewCtrl::dispatchMessage(PendingMessage& message)
{
    switch (message.id) {
    case VM_PLAYED:
        recvPlayedMessage(message.id);
        break;
    case VM_FASTFORWARDED:
        recvFastForwardedMessage(message.id);
        break;
    case VM_REWINDED:
        recvRewindedMessage(message.id);
        break;
    case VM_PAUSING:
        recvPausingMessage(message.id);
        break;
    case VM_STOPPED:
        recvStoppedMessage(message.id);
        break;
    case VM_TYPICAL_PICTURE:
        recvTypicalPictureMessage(message.typicalPicture);
        break;
    case VM_FRAME_INFO:
        recvFrameInfoMessage(message.frameInfo);
        break;
    case VM_EXITED:
        recvExitedMessage(message.id);
        break;
    }
}
