#pragma once

#include "media/mpeg2ts/mpeg2ts.h"

class BLMPEG2TSConvertCtrl;

// Receives the conversion library's progress and hands it to the export
// controller (on the library's thread).
class BLMPEG2TSConvertCallback : public IMpeg2TSCallback
{
public:
    explicit BLMPEG2TSConvertCallback(BLMPEG2TSConvertCtrl* ctrl) : m_ctrl(ctrl) {}
    void OnProgress(int percent) override;

private:
    BLMPEG2TSConvertCtrl* m_ctrl;
};
