#include "core/app/preview/BLClipViewerCallback.h"

#include "core/app/preview/BLPreviewCtrl.h"

void BLClipViewerCallback::EndOfJob()
{
    m_ctrl.endOfViewerJob();
}
