// clipwright-cli mp4info: the checker's verdict, properties and display texts of MP4 files.
#include "CliCommand.h"

#include "core/formats/mp4/CCreatePPT.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

QString errorText(const char* text)
{
    return QString::fromUtf8(text ? text : "").trimmed();
}

QJsonObject describe(const QString& path)
{
    QJsonObject info{{"file", path}};
    CCreatePPT ppt;
    const char* xml = nullptr;
    int xmlLength = 0;
    if (!ppt.blCheckMP4(QFile::encodeName(path).constData(), xml, xmlLength)) {
        info["ok"] = false;
        info["error"] = errorText(ppt.getErrorText());
        return info;
    }
    info["ok"] = true;
    info["xmlLength"] = xml ? xmlLength : 0;
    if (!xml)
        info["xmlError"] = errorText(ppt.getErrorText());
    QString text;
    info["frames"] = qint64(ppt.ulGetNumOfFrame());
    ppt.getVideoFPSStr(text);
    info["frameRate"] = text;
    info["frameRateCode"] = ppt.getFPS();
    info["timeCodeFps"] = ppt.nGetFps();
    info["ntscRate"] = ppt.getDrop();
    ppt.getVideoSizeStr(text);
    info["pictureSize"] = text;
    ppt.getWidth(text);
    info["width"] = text;
    ppt.getHeight(text);
    info["height"] = text;
    info["widthCode"] = ppt.getWidth();
    info["heightCode"] = ppt.getHeight();
    info["aspectCode"] = ppt.getAspect();
    ppt.getVideoFormatStr(text);
    info["videoFormat"] = text;
    ppt.getVideoFormatXMLParam(text);
    info["videoCodec"] = text;
    info["objectType"] = qint64(ppt.getVideoESObjectID());
    info["maxBitrate"] = qint64(ppt.getMaxBitrate());
    info["audioStreams"] = ppt.getNumAudioStream();
    info["audioChannels"] = ppt.getAudioChannel();
    ppt.getAudioChannelStr(text);
    info["audioChannelText"] = text;
    info["stereo"] = ppt.isAudioStereo();
    QJsonArray formats;
    for (int i = 0; i < ppt.getNumAudioStream(); ++i) {
        ppt.getAudioFormatStr(i, text);
        formats.append(text);
    }
    info["audioFormats"] = formats;
    return info;
}

void printText(const QJsonObject& info)
{
    QTextStream& out = cliOut();
    out << info["file"].toString() << ": ";
    if (!info["ok"].toBool()) {
        out << "FAILED: " << info["error"].toString() << "\n";
        return;
    }
    auto line = [&out](const char* label, const QString& value) {
        out << "  " << QString::fromLatin1(label).leftJustified(14) << value << "\n";
    };
    auto num = [&info](const char* key) { return QString::number(info[key].toInteger()); };
    out << "OK\n";
    line("frames:", num("frames"));
    line("frame rate:", info["frameRate"].toString() + " (code " + num("frameRateCode") +
                            ", time code base " + num("timeCodeFps") + ", NTSC rate " + num("ntscRate") +
                            ")");
    line("picture size:", info["pictureSize"].toString() + " (width code " + num("widthCode") +
                              ", height code " + num("heightCode") + ", aspect code " + num("aspectCode") +
                              ")");
    line("video format:", info["videoFormat"].toString() + " (object type " + num("objectType") +
                              ", max bit rate " + num("maxBitrate") + ")");
    line("video codec:", info["videoCodec"].toString());
    QStringList formats;
    for (const QJsonValue& f : info["audioFormats"].toArray())
        formats << f.toString();
    line("audio:", info["audioChannelText"].toString() + " in " + num("audioStreams") + " stream(s)" +
                       (formats.isEmpty() ? QString() : ": " + formats.join(", ")) +
                       (info["stereo"].toBool() ? ", stereo" : ""));
    line("embedded XML:", info.contains("xmlError") ? "none (" + info["xmlError"].toString() + ")"
                                                    : num("xmlLength") + " bytes");
}

} // namespace

int runMp4Info(const QStringList& args)
{
    QStringList files = args;
    const bool json = files.removeAll("--json") > 0;
    if (files.isEmpty() || files.first().startsWith('-'))
        return cliUsage("mp4info");
    QJsonArray all;
    bool failed = false;
    for (const QString& file : files) {
        const QJsonObject info = describe(file);
        failed |= !info["ok"].toBool();
        if (json)
            all.append(info);
        else
            printText(info);
    }
    if (json)
        cliOut() << QJsonDocument(all).toJson(QJsonDocument::Indented);
    return failed ? kExitFailed : kExitOk;
}
