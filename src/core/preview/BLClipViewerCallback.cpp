#include "core/preview/BLClipViewerCallback.h"

#include "core/preview/BLPreviewCtrl.h"

void BLClipViewerCallback::EndOfJob()
{
    m_ctrl.endOfViewerJob();
}
