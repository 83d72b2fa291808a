#include "core/operations/export/BLMPEG2TSConvertCallback.h"

#include "core/operations/export/BLMPEG2TSConvertCtrl.h"

void BLMPEG2TSConvertCallback::OnProgress(int percent)
{
    if (m_ctrl)
        m_ctrl->setStateCount(percent);
}
