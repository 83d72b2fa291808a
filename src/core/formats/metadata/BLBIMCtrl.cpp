#include "core/formats/metadata/BLBIMCtrl.h"

#include "core/formats/mp4/CCreatePPT.h"

#include <QFile>

#include <mutex>

namespace {

std::mutex g_sharedMutex;
BLBIMCtrl* g_shared = nullptr;

// The checker's aspect codes 2 and 4; any other is unknown.
QString aspectRatioText(int aspectCode)
{
    switch (aspectCode) {
    case 2:
        return QStringLiteral("4:3");
    case 4:
        return QStringLiteral("16:9");
    default:
        return QStringLiteral("...");
    }
}

} // namespace

BLBIMCtrl* BLBIMCtrl::sharedCtrl()
{
    std::lock_guard lock(g_sharedMutex);
    if (!g_shared)
        g_shared = new BLBIMCtrl();
    return g_shared;
}

void BLBIMCtrl::releaseCtrl()
{
    std::lock_guard lock(g_sharedMutex);
    delete g_shared;
    g_shared = nullptr;
}

bool BLBIMCtrl::preImportMP4(const QString& path)
{
    CCreatePPT checker;
    const QByteArray local = QFile::encodeName(path);
    if (!checker.blCheckMP4(local.constData()))
        return false;

    const quint32 frames = checker.ulGetNumOfFrame();
    setDuration(frames);
    setFrameCount(frames > 0 ? frames - 1 : 0);
    settcFps(QString::number(checker.nGetFps()));
    QString text;
    checker.getVideoFormatXMLParam(text);
    setVideoCodec(text);
    checker.getVideoFPSStr(text);
    setFormatFps(text);
    checker.getWidth(text);
    setPixel(text);
    checker.getHeight(text);
    setNumOfVertical(text);
    setARatio(aspectRatioText(checker.getAspect()));
    setPort(checker.isAudioStereo());
    setAudioChannel(checker.getAudioChannel());
    checker.getAudioFormatStr(0, text);
    setAudioCodec(text);
    checker.CloseCheckMP4();
    return true;
}

bool BLBIMCtrl::checkNonMetaExist(const QString& path)
{
    CCreatePPT checker;
    const QByteArray local = QFile::encodeName(path);
    const char* xml = nullptr;
    int length = 0;
    const bool found = checker.blCheckMP4(local.constData(), xml, length) && xml && length >= 1;
    setNonMetaData(found ? QByteArray(xml, length) : QByteArray());
    checker.CloseCheckMP4();
    return found;
}
