#pragma once

#include "media/viewer/vv.h"

class BLPreviewCtrl;

// The viewer's end-of-job callback: tells the preview controller that a
// transport job has finished (engine thread).
class BLClipViewerCallback : public IVVDemuxCallBacker
{
public:
    explicit BLClipViewerCallback(BLPreviewCtrl& ctrl) : m_ctrl(ctrl) {}
    void EndOfJob() override;

private:
    BLPreviewCtrl& m_ctrl;
};
