#pragma once

#include "core/services/BLProgressThread.h"

class BLMP4ImportCtrl;

// Runs the steps of an import (BLMP4ImportCtrl::doImportWithThread) under the
// progress dialog, with Cancel enabled until the files are in place.
class BLMP4ImportThread : public BLProgressThread
{
public:
    explicit BLMP4ImportThread(BLMP4ImportCtrl* ctrl);

    QString getInitMessage() override;
    void getInitProgress(double* value, double* min, double* max) override;
    void loopProcess() override;
    // The pause after each chunk and file: only yields, so that the work
    // beyond the copy stays within a few milliseconds a file.
    void waitThread() override;

    bool isSucceeded() const { return m_succeeded; }

private:
    BLMP4ImportCtrl* m_ctrl;
    bool m_succeeded = false;
};
