#pragma once

#include "core/card/DOTakeData.h"
#include "media/mpeg2ts/mpeg2ts.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <memory>

class BLMPEG2TSConvertCallback;
class BLMPEG2TSConvertCtrl;

// The conversion library as the export sees it: initialised with the log
// settings and a progress callback for one controller, one take converted at
// a time, the output files named after the takes. Owned by the main window.
class DOMPEG2TSConvert
{
public:
    static constexpr int kPathCapacity = 1024; // wide characters of every path

    DOMPEG2TSConvert();
    ~DOMPEG2TSConvert();
    DOMPEG2TSConvert(const DOMPEG2TSConvert&) = delete;
    DOMPEG2TSConvert& operator=(const DOMPEG2TSConvert&) = delete;

    // Makes the progress callback for the controller (replacing a previous
    // one) and starts the library with the log settings; its answer.
    int initMPEG2TS(BLMPEG2TSConvertCtrl* ctrl);
    void freeMPEG2TS();
    // At shut-down.
    void finalizeDO() { freeMPEG2TS(); }

    // Converts the MP4 files (UTF-8 paths) of one take; true when done.
    bool doTranscodeTake(const mpeg2ts_convert_params_t& params, const QStringList& inputs, int count,
                         const QString& output);
    void cancelTranscode();
    int getLastError() const;

    // "<take ID>.M2T" of the take at index; <folder>/<that>.
    static QString getMPEG2TSFileName(const QList<DOTakeData>& takes, int index);
    static QString getMPEG2TSFullFileName(const QString& folder, const QList<DOTakeData>& takes, int index);

    // UTF-8 -> wide characters, one byte at a time through the C library's
    // converter under a UTF-8 locale; stops at the NUL (written), at the first
    // invalid sequence or at capacity. The wide characters written before the NUL.
    static int toWChar(const QByteArray& text, wchar_t* buffer, int capacity);

private:
    std::unique_ptr<BLMPEG2TSConvertCallback> m_callback;
};
