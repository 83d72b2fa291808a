#include "core/app/preview/BLTimeCodeCtrl.h"

#include "core/app/preview/ITimeCodeView.h"
#include "core/card/DOTakeData.h"
#include "core/formats/metadata/CReadRtMeta.h"
#include "core/services/BLCommon.h"
#include "core/services/BLLogCtrl.h"

namespace {

constexpr int kProcessId = 0;

// The two digits of a packed-decimal byte whose tens use only tensBits bits.
QString digits(quint8 value, int tensBits)
{
    return QString::asprintf("%d%d", (value >> 4) & ((1 << tensBits) - 1), value & 0x0F);
}

} // namespace

BLTimeCodeCtrl::BLTimeCodeCtrl(ITimeCodeView& view) : m_view(view) {}

BLTimeCodeCtrl::~BLTimeCodeCtrl() = default;

void BLTimeCodeCtrl::setAVInfo(const vv_av_info_t& /*avInfo*/, const DOTakeData& takeData)
{
    m_sFormatFps = takeData.getFormatFps();
    m_arrLtcChanges = takeData.getLtcChanges();
    m_llLastClipFrameNo = -1;
    m_view.setTimeCode(kZeroTimeCode);
}

void BLTimeCodeCtrl::updateByViewerState(int state)
{
    if (state != VM_STOPPED)
        return;
    m_llLastClipFrameNo = -1;
    m_view.setTimeCode(kZeroTimeCode);
}

void BLTimeCodeCtrl::createReadRtMeta(const QStringList& paths, int fileCount)
{
    delereReadRtMeta();
    unsigned long start = 0;
    for (int i = 0; i < fileCount && i < paths.size(); ++i) {
        auto reader = std::make_unique<CReadRtMeta>();
        if (!reader->blReadBIM(paths.at(i).toUtf8().constData(), start))
            BLLogCtrl::debug(kProcessId,
                             QStringLiteral("[BLTimeCodeCtrl createReadRtMeta]    %1 : %2")
                                 .arg(paths.at(i), QString::fromLatin1(reader->getLastError()).trimmed()));
        start += static_cast<unsigned long>(reader->getUnitCount());
        m_readRtMeta.push_back(std::move(reader));
    }
}

void BLTimeCodeCtrl::delereReadRtMeta()
{
    m_readRtMeta.clear();
}

void BLTimeCodeCtrl::updateTimeCode(const vv_frame_info_t& frameInfo)
{
    if (frameInfo.clip_frame_no == m_llLastClipFrameNo)
        return;
    m_llLastClipFrameNo = frameInfo.clip_frame_no;

    QString text = kZeroTimeCode;
    if (frameInfo.num_frames >= 0) {
        FTCSTRUCT tc;
        const bool recorded = frameInfo.clip_no >= 0 && size_t(frameInfo.clip_no) < m_readRtMeta.size() &&
                              frameInfo.clip_frame_no >= 0 &&
                              m_readRtMeta[size_t(frameInfo.clip_no)]->GetTimeCode(
                                  static_cast<unsigned long>(frameInfo.clip_frame_no), &tc);
        if (recorded) {
            const bool drop = BLCommon::isDropFrameByLtcChanges(m_arrLtcChanges, m_sFormatFps, nullptr);
            text = digits(tc.hours, 2) + QLatin1Char(':') + digits(tc.minutes, 3) +
                   QLatin1Char(drop ? '.' : ':') + digits(tc.seconds, 3) + QLatin1Char(':') +
                   digits(tc.frames, 2);
        } else if (frameInfo.take_frame_no > 0) {
            text = BLCommon::convertOfDurationByFrameCount(frameInfo.take_frame_no, m_sFormatFps,
                                                           m_arrLtcChanges, false);
        }
    }
    m_view.setTimeCode(text);
}
