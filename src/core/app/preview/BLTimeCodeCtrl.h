#pragma once

#include "core/formats/metadata/DOLtcChange.h"
#include "media/viewer/vv.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <memory>
#include <vector>

class CReadRtMeta;
class DOTakeData;
class ITimeCodeView;

// The time code display: the time code recorded with the frame shown, read
// from the clips' real-time metadata files (one reader per clip), shown as
// "hh:mm:ss:ff" or, for drop-frame time code, "hh:mm.ss:ff". A take without
// them shows its frame position as a duration.
class BLTimeCodeCtrl
{
public:
    static inline const QString kZeroTimeCode = QStringLiteral("00:00:00:00");

    explicit BLTimeCodeCtrl(ITimeCodeView& view);
    ~BLTimeCodeCtrl();

    void setAVInfo(const vv_av_info_t& avInfo, const DOTakeData& takeData);
    void updateByViewerState(int state);
    // Opens one reader per path, in clip order.
    void createReadRtMeta(const QStringList& paths, int fileCount);
    void delereReadRtMeta();
    void updateTimeCode(const vv_frame_info_t& frameInfo);

private:
    ITimeCodeView& m_view;
    qint64 m_llLastClipFrameNo = -1;
    QString m_sFormatFps;
    QList<DOLtcChange> m_arrLtcChanges;
    std::vector<std::unique_ptr<CReadRtMeta>> m_readRtMeta;
};
