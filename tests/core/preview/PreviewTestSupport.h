#pragma once

// Helpers shared by the preview tests of core and ui: takes of generated
// cards as the program's records, the preview controller's fixture.

#include "cardgen/FrameCounter.h"
#include "core/app/preview/BLPreviewCtrl.h"
#include "core/app/preview/BLTimeSliderCtrl.h"
#include "core/card/DOTakeData.h"
#include "core/formats/metadata/BLNonMetaAcss.h"
#include "core/formats/metadata/DONonRealTimeMeta.h"
#include "core/services/BLCommon.h"
#include "core/services/SCNotificationNames.h"
#include "support/CardFolder.h"
#include "support/MessageRecorder.h"
#include "support/TestEnvironment.h"

#include <functional>
#include <memory>

namespace pvtest {

using cwtest::settle;
using cwtest::waitFor;

// A reference relative to the card's BPAV folder ("./CLPR/...") of a file the
// manifest names relative to the work folder.
inline QString reference(const cwtest::CardFolder& card, const QString& relative)
{
    const QString bpav = card.manifest().cards.front().bpav;
    return QStringLiteral(".") + relative.mid(bpav.size());
}

inline QString fileOf(const std::vector<cardgen::ManifestFile>& files, const QString& kind)
{
    for (const cardgen::ManifestFile& file : files) {
        if (file.kind == kind)
            return file.path;
    }
    return QString();
}

// The take record the folder scan makes of a generated take: its UMID,
// status, frame rate, title and LTC changes (read from its metadata file) and
// its file references; a multi-clip take lists its clips.
inline DOTakeData takeOf(const cwtest::CardFolder& card, const cardgen::ManifestTake& take)
{
    DOTakeData data;
    data.setUmid(take.umid);
    data.setTakeStatus(take.expectedStatus);
    data.setFormatFps(take.frameRate);
    const bool multi = take.kind == QLatin1String("multi");
    const std::vector<cardgen::ManifestFile>& own = multi ? take.files : take.clips.front().files;
    data.setXMLUri(reference(card, fileOf(own, QStringLiteral("XML"))));
    if (multi) {
        data.setSMIUri(reference(card, fileOf(own, QStringLiteral("SMI"))));
        for (const cardgen::ManifestClip& clip : take.clips) {
            DOClipData clipData;
            clipData.setUmid(clip.umid);
            clipData.setXMLUri(reference(card, fileOf(clip.files, QStringLiteral("XML"))));
            clipData.setMP4Uri(reference(card, fileOf(clip.files, QStringLiteral("MP4"))));
            clipData.setBIMUri(reference(card, fileOf(clip.files, QStringLiteral("BIM"))));
            clipData.setCurrentDuration(clip.frames);
            data.setClipData(clipData);
        }
    } else {
        data.setMP4Uri(reference(card, fileOf(own, QStringLiteral("MP4"))));
        data.setBIMUri(reference(card, fileOf(own, QStringLiteral("BIM"))));
        data.setCurrentDuration(take.frames);
    }
    BLNonMetaAcss acss;
    DONonRealTimeMeta meta;
    if (acss.loadForFilePath(card.path(fileOf(own, QStringLiteral("XML")))) &&
        acss.getNonMetaData(meta, "en")) {
        data.setArrLtcChanges(meta.getLtcChangeTable().getLtcChangeArray());
        data.setUsAscii(meta.getTitle().getUsAscii());
        data.setAlias(meta.getTitle().getAlias().getValue());
    }
    return data;
}

// The take frame of a generated take that shows the counter (clip, frame).
inline cardgen::FrameCounterValue counterOf(const cardgen::ManifestTake& take, qint64 frame)
{
    for (const cardgen::ManifestClip& clip : take.clips) {
        if (frame < clip.frames)
            return {clip.counterClip, int(frame)};
        frame -= clip.frames;
    }
    return {};
}

// A card of tiny 29.97p pictures (GOP 15): single clips, or one take of several clips.
inline cardgen::Options tinyCard(int singleClips, int frames, std::vector<int> multiClipTakes = {})
{
    cardgen::Options options = cwtest::CardFolder::quick();
    options.clips = singleClips;
    options.frames = frames;
    options.gop = 15;
    options.multiClipTakes = std::move(multiClipTakes);
    return options;
}

// Posts the request a pane sends to play a take of the card.
inline void play(const cwtest::CardFolder& card, const DOTakeData& take)
{
    BLCommon::sharedCtrl()->sendNotificationNow(
        nullptr, SC::SCMoviePlayNotification,
        {{SC::SCPlaySelectFolderKey, card.workFolder()}, {SC::SCPlayTakeDataKey, QVariant::fromValue(take)}});
}

// A fresh home with the log on, and the preview controller under test (made
// by the fixture on its view) with the waits the tests need.
class PreviewTest : public cwtest::HomeTest
{
protected:
    void SetUp() override
    {
        HomeTest::SetUp();
        cwtest::writeSettings(home().configHome(), {{"LOG_FLAG", "ALL"}});
    }
    void TearDown() override
    {
        ctrl.reset();
        HomeTest::TearDown();
    }
    bool waitForState(int state)
    {
        return waitFor([&] { return ctrl->getViewerState() == state; });
    }
    bool waitForFrame(qint64 frame)
    {
        return waitFor([&] { return ctrl->getTimeSliderCtrl().getFrameNo() == frame; });
    }
    bool logged(const QString& message) { return cwtest::logMessages().contains(message); }

    cwtest::MessageRecorder messages;
    std::unique_ptr<BLPreviewCtrl> ctrl;
};

} // namespace pvtest
