#include "cardgen/CardXml.h"

#include "cardgen/Umid.h"

#include <QBuffer>
#include <QXmlStreamWriter>

#include <functional>

namespace cardgen {

namespace {

constexpr const char* kNrtNamespace = "urn:schemas-professionalDisc:nonRealTimeMeta:ver.1.30";
constexpr const char* kLibNamespace = "urn:schemas-professionalDisc:lib:ver.1.30";
constexpr const char* kXsiNamespace = "http://www.w3.org/2001/XMLSchema-instance";
constexpr const char* kTakeInfoNamespace = "urn:schemas-professionalDisc:edl:ver.1.30:takeInfo";
constexpr const char* kCueUpNamespace = "urn:schemas-professionalDisc:cueupinfo";

QByteArray document(const std::function<void(QXmlStreamWriter&)>& body)
{
    QByteArray out;
    QBuffer buffer(&out);
    buffer.open(QIODevice::WriteOnly);
    QXmlStreamWriter w(&buffer);
    w.setAutoFormatting(true);
    w.setAutoFormattingIndent(-1); // one tab per level
    w.writeStartDocument();
    body(w);
    w.writeEndDocument();
    return out;
}

QString number(qint64 v)
{
    return QString::number(v);
}

// A position on a timeline as a SMIL SMPTE time ("smpte-30-drop=00:00:01:02").
QString smilTime(const FrameRate& rate, bool dropFrame, int frames)
{
    const TimeCodeClock clock(rate, TimeCode{0, 0, 0, 0, dropFrame});
    const TimeCode tc = clock.at(frames);
    return QStringLiteral("smpte-%1%2=%3")
        .arg(rate.tcBase)
        .arg(dropFrame ? QStringLiteral("-drop") : QString())
        .arg(QString::asprintf("%02d:%02d:%02d:%02d", tc.hours, tc.minutes, tc.seconds, tc.frames));
}

QString clprUri(const ClipPlan& clip, const QString& file)
{
    return QStringLiteral("./CLPR/%1/%2").arg(clip.name, file);
}

QString takrUri(const TakePlan& take, const QString& file)
{
    return QStringLiteral("./TAKR/%1/%2").arg(take.folder, file);
}

} // namespace

QString CardXml::dateTime(const QDateTime& when)
{
    const int offset = when.offsetFromUtc();
    const int minutes = std::abs(offset) / 60;
    return when.toString(QStringLiteral("yyyy-MM-ddTHH:mm:ss")) +
           QString::asprintf("%c%02d:%02d", offset < 0 ? '-' : '+', minutes / 60, minutes % 60);
}

QByteArray CardXml::nonRealTimeMeta(const QString& umid, int frames, const TimeCode& start,
                                    const TimeCode& last, const QDateTime& created, const QString& status,
                                    const QString& title, const EssenceFormat& format)
{
    return document([&](QXmlStreamWriter& w) {
        w.writeStartElement(QStringLiteral("NonRealTimeMeta"));
        w.writeAttribute(QStringLiteral("xmlns"), QString::fromLatin1(kNrtNamespace));
        w.writeAttribute(QStringLiteral("xmlns:lib"), QString::fromLatin1(kLibNamespace));
        w.writeAttribute(QStringLiteral("xmlns:xsi"), QString::fromLatin1(kXsiNamespace));
        w.writeAttribute(QStringLiteral("xsi:schemaLocation"),
                         QStringLiteral("%1 NonRealTimeMeta.xsd").arg(QString::fromLatin1(kNrtNamespace)));
        w.writeAttribute(QStringLiteral("lastUpdate"), dateTime(created));

        w.writeEmptyElement(QStringLiteral("TargetMaterial"));
        w.writeAttribute(QStringLiteral("umidRef"), umid);
        w.writeAttribute(QStringLiteral("status"), status);
        w.writeEmptyElement(QStringLiteral("Duration"));
        w.writeAttribute(QStringLiteral("value"), number(frames));

        w.writeStartElement(QStringLiteral("LtcChangeTable"));
        w.writeAttribute(QStringLiteral("tcFps"), number(format.rate.tcBase));
        w.writeAttribute(QStringLiteral("halfStep"), QStringLiteral("false"));
        w.writeEmptyElement(QStringLiteral("LtcChange"));
        w.writeAttribute(QStringLiteral("frameCount"), QStringLiteral("0"));
        w.writeAttribute(QStringLiteral("value"), start.ltcValue());
        w.writeAttribute(QStringLiteral("status"), QStringLiteral("increment"));
        w.writeEmptyElement(QStringLiteral("LtcChange"));
        w.writeAttribute(QStringLiteral("frameCount"), number(frames - 1));
        w.writeAttribute(QStringLiteral("value"), last.ltcValue());
        w.writeAttribute(QStringLiteral("status"), QStringLiteral("end"));
        w.writeEndElement();

        w.writeEmptyElement(QStringLiteral("CreationDate"));
        w.writeAttribute(QStringLiteral("value"), dateTime(created));
        w.writeEmptyElement(QStringLiteral("LastUpdate"));
        w.writeAttribute(QStringLiteral("value"), dateTime(created));
        w.writeEmptyElement(QStringLiteral("TypicalUbit"));
        w.writeAttribute(QStringLiteral("value"), QStringLiteral("00000000"));
        w.writeEmptyElement(QStringLiteral("KeyFrame"));
        w.writeAttribute(QStringLiteral("frameCount"), QStringLiteral("0"));

        w.writeStartElement(QStringLiteral("BodyUmidBasicChangeTable"));
        w.writeEmptyElement(QStringLiteral("BodyUmidBasicChange"));
        w.writeAttribute(QStringLiteral("frameCount"), QStringLiteral("0"));
        w.writeAttribute(QStringLiteral("value"), umid);
        w.writeAttribute(QStringLiteral("status"), QStringLiteral("start"));
        w.writeEndElement();

        w.writeStartElement(QStringLiteral("VideoFormat"));
        w.writeEmptyElement(QStringLiteral("VideoRecPort"));
        w.writeAttribute(QStringLiteral("port"), QStringLiteral("DIRECT"));
        w.writeEmptyElement(QStringLiteral("VideoFrame"));
        w.writeAttribute(QStringLiteral("videoCodec"), format.videoCodec);
        w.writeAttribute(QStringLiteral("captureFps"), format.rate.name);
        w.writeAttribute(QStringLiteral("formatFps"), format.rate.name);
        w.writeEmptyElement(QStringLiteral("VideoLayout"));
        w.writeAttribute(QStringLiteral("pixel"), number(format.width));
        w.writeAttribute(QStringLiteral("numOfVerticalLine"), number(format.height));
        w.writeAttribute(QStringLiteral("aspectRatio"), format.aspectRatio);
        w.writeEndElement();

        w.writeStartElement(QStringLiteral("AudioFormat"));
        w.writeAttribute(QStringLiteral("numOfChannel"), number(format.audioChannels()));
        for (int ch = 1; ch <= format.audioChannels(); ++ch) {
            w.writeEmptyElement(QStringLiteral("AudioRecPort"));
            w.writeAttribute(QStringLiteral("audioCodec"), format.audioCodec);
            w.writeAttribute(QStringLiteral("port"), QStringLiteral("DIRECT"));
            w.writeAttribute(QStringLiteral("trackDst"), QStringLiteral("CH%1").arg(ch));
        }
        w.writeEndElement();

        w.writeEmptyElement(QStringLiteral("Device"));
        w.writeAttribute(QStringLiteral("manufacturer"), QStringLiteral("ORX"));
        w.writeAttribute(QStringLiteral("modelName"), QStringLiteral("CG-1"));
        w.writeAttribute(QStringLiteral("serialNo"), QStringLiteral("0000001"));

        w.writeStartElement(QStringLiteral("Title"));
        w.writeAttribute(QStringLiteral("usAscii"), title);
        w.writeStartElement(QStringLiteral("lib:Alias"));
        w.writeAttribute(QStringLiteral("xml:lang"), QStringLiteral("en"));
        w.writeCharacters(title);
        w.writeEndElement();
        w.writeEndElement();

        w.writeEmptyElement(QStringLiteral("RecordingMode"));
        w.writeAttribute(QStringLiteral("type"), QStringLiteral("normal"));
        w.writeAttribute(QStringLiteral("cacheRec"), QStringLiteral("false"));
        w.writeEndElement();
    });
}

QByteArray CardXml::clipTakeInfo(const ClipPlan& clip, const EssenceFormat& format)
{
    const bool df = clip.start.dropFrame;
    const QString begin = smilTime(format.rate, df, 0);
    const QString end = smilTime(format.rate, df, clip.frames);
    return document([&](QXmlStreamWriter& w) {
        w.writeStartElement(QStringLiteral("smil"));
        w.writeAttribute(QStringLiteral("xmlns"), QString::fromLatin1(kTakeInfoNamespace));
        w.writeAttribute(QStringLiteral("umid"), clip.umid);
        w.writeStartElement(QStringLiteral("head"));
        w.writeStartElement(QStringLiteral("metadata"));
        w.writeAttribute(QStringLiteral("type"), QStringLiteral("Meta"));
        w.writeEmptyElement(QStringLiteral("ref"));
        w.writeAttribute(QStringLiteral("src"), clip.xml());
        w.writeAttribute(QStringLiteral("type"), QStringLiteral("NRMeta"));
        w.writeEndElement();
        w.writeEndElement();
        w.writeStartElement(QStringLiteral("body"));
        w.writeStartElement(QStringLiteral("switch"));
        w.writeStartElement(QStringLiteral("par"));
        w.writeAttribute(QStringLiteral("systemComponent"), QStringLiteral("MP4"));
        auto timed = [&](const QString& element, const QString& src, const QString& type) {
            w.writeEmptyElement(element);
            w.writeAttribute(QStringLiteral("src"), src);
            w.writeAttribute(QStringLiteral("clipBegin"), begin);
            w.writeAttribute(QStringLiteral("clipEnd"), end);
            w.writeAttribute(QStringLiteral("begin"), begin);
            w.writeAttribute(QStringLiteral("end"), end);
            w.writeAttribute(QStringLiteral("type"), type);
        };
        timed(QStringLiteral("video"), clip.mp4(), QStringLiteral("MP4"));
        w.writeAttribute(QStringLiteral("aspectRatio"), format.aspectRatio);
        for (int ch = 1; ch <= format.audioChannels(); ++ch) {
            timed(QStringLiteral("audio"), clip.mp4(), QStringLiteral("MP4"));
            w.writeAttribute(QStringLiteral("trackSrc"), QStringLiteral("CH%1").arg(ch));
            w.writeAttribute(QStringLiteral("trackDst"), QStringLiteral("CH%1").arg(ch));
        }
        timed(QStringLiteral("metastream"), clip.bim(), QStringLiteral("BiM"));
        w.writeEndElement(); // par
        w.writeEndElement(); // switch
        w.writeEndElement(); // body
        w.writeEndElement(); // smil
    });
}

QByteArray CardXml::takeTakeInfo(const TakePlan& take, const std::vector<const ClipPlan*>& clips,
                                 const EssenceFormat& format)
{
    return document([&](QXmlStreamWriter& w) {
        w.writeStartElement(QStringLiteral("smil"));
        w.writeAttribute(QStringLiteral("xmlns"), QString::fromLatin1(kTakeInfoNamespace));
        w.writeAttribute(QStringLiteral("umid"), take.umid);
        w.writeStartElement(QStringLiteral("head"));
        w.writeStartElement(QStringLiteral("metadata"));
        w.writeAttribute(QStringLiteral("type"), QStringLiteral("Meta"));
        w.writeEmptyElement(QStringLiteral("ref"));
        w.writeAttribute(QStringLiteral("src"), take.xml());
        w.writeAttribute(QStringLiteral("type"), QStringLiteral("NRMeta"));
        w.writeEndElement();
        w.writeEndElement();
        w.writeStartElement(QStringLiteral("body"));
        w.writeStartElement(QStringLiteral("par"));
        w.writeAttribute(QStringLiteral("systemComponent"), QStringLiteral("MP4"));
        for (const ClipPlan* c : clips) {
            const ClipPlan& clip = *c;
            const bool df = clip.start.dropFrame;
            w.writeEmptyElement(QStringLiteral("ref"));
            w.writeAttribute(QStringLiteral("src"), QStringLiteral("urn:smpte:umid:") + clip.umid);
            w.writeAttribute(QStringLiteral("clipBegin"), smilTime(format.rate, df, 0));
            w.writeAttribute(QStringLiteral("clipEnd"), smilTime(format.rate, df, clip.frames));
            w.writeAttribute(QStringLiteral("begin"), smilTime(format.rate, df, clip.takeOffset));
            w.writeAttribute(QStringLiteral("end"), smilTime(format.rate, df, clip.takeOffset + clip.frames));
            w.writeAttribute(QStringLiteral("type"), QStringLiteral("edlDoc"));
        }
        if (!take.nextPartUmid.isEmpty()) {
            // The take goes on on another card: an open reference to its next part.
            const QString begin = smilTime(format.rate, take.start.dropFrame, take.nextPartBegin);
            w.writeEmptyElement(QStringLiteral("ref"));
            w.writeAttribute(QStringLiteral("src"), QStringLiteral("urn:smpte:umid:") + take.nextPartUmid);
            w.writeAttribute(QStringLiteral("clipBegin"), begin);
            w.writeAttribute(QStringLiteral("begin"), begin);
            w.writeAttribute(QStringLiteral("type"), QStringLiteral("edlDoc"));
        }
        w.writeEndElement(); // par
        w.writeEndElement(); // body
        w.writeEndElement(); // smil
    });
}

QByteArray CardXml::mediaProfile(const MediaProfile& profile, const EssenceFormat& format)
{
    const QString fps = format.rate.name;
    const QString ch = number(format.audioChannels());
    const bool sp720 = format.videoCodec.startsWith(QStringLiteral("MPEG2HD18.3CBR_1280_720_MP"));
    return document([&](QXmlStreamWriter& w) {
        w.writeStartElement(QStringLiteral("MediaProfile"));
        w.writeAttribute(QStringLiteral("xmlns"), QString::fromLatin1(kMediaProfileNamespace));
        w.writeAttribute(QStringLiteral("createdAt"), dateTime(profile.createdAt));
        w.writeAttribute(QStringLiteral("version"), sp720 ? QStringLiteral("1.20") : QStringLiteral("1.10"));
        w.writeStartElement(QStringLiteral("Properties"));
        w.writeEmptyElement(QStringLiteral("System"));
        w.writeAttribute(QStringLiteral("systemId"), Umid::systemId());
        w.writeAttribute(QStringLiteral("systemKind"), QStringLiteral("ORX cardgen ver.1.000"));
        w.writeEmptyElement(QStringLiteral("Attached"));
        w.writeAttribute(QStringLiteral("mediaId"), profile.mediaId);
        w.writeAttribute(QStringLiteral("mediaKind"), QStringLiteral("ProfessionalMemoryCard"));
        w.writeAttribute(QStringLiteral("mediaName"), profile.mediaName);
        w.writeEndElement();

        w.writeStartElement(QStringLiteral("Contents"));
        auto material = [&](const QString& uri, const QString& dur, const QString& umid) {
            w.writeStartElement(QStringLiteral("Material"));
            w.writeAttribute(QStringLiteral("uri"), uri);
            w.writeAttribute(QStringLiteral("type"), QStringLiteral("PD-EDL"));
            w.writeAttribute(QStringLiteral("fps"), fps);
            w.writeAttribute(QStringLiteral("dur"), dur);
            w.writeAttribute(QStringLiteral("ch"), ch);
            w.writeAttribute(QStringLiteral("aspectRatio"), format.aspectRatio);
            w.writeAttribute(QStringLiteral("offset"), QStringLiteral("0"));
            w.writeAttribute(QStringLiteral("umid"), umid);
            w.writeAttribute(QStringLiteral("status"), QStringLiteral("none"));
        };
        auto relevant = [&](const QString& uri, const QString& type) {
            w.writeEmptyElement(QStringLiteral("RelevantInfo"));
            w.writeAttribute(QStringLiteral("uri"), uri);
            w.writeAttribute(QStringLiteral("type"), type);
        };
        for (const ClipPlan* clip : profile.clips) {
            const QString dur = number(clip->frames);
            material(clprUri(*clip, clip->smi()), dur, clip->umid);
            w.writeEmptyElement(QStringLiteral("Component"));
            w.writeAttribute(QStringLiteral("uri"), clprUri(*clip, clip->mp4()));
            w.writeAttribute(QStringLiteral("type"), QStringLiteral("MP4"));
            w.writeAttribute(QStringLiteral("videoType"), format.videoCodec);
            w.writeAttribute(QStringLiteral("audioType"), format.audioCodec);
            w.writeAttribute(QStringLiteral("fps"), fps);
            w.writeAttribute(QStringLiteral("dur"), dur);
            w.writeAttribute(QStringLiteral("ch"), ch);
            w.writeAttribute(QStringLiteral("aspectRatio"), format.aspectRatio);
            w.writeAttribute(QStringLiteral("offset"), QStringLiteral("0"));
            relevant(clprUri(*clip, clip->xml()), QStringLiteral("XML"));
            relevant(clprUri(*clip, clip->bim()), QStringLiteral("BiM"));
            relevant(clprUri(*clip, clip->ppn()), QStringLiteral("PPN"));
            w.writeEndElement();
        }
        for (const ListedTake& listed : profile.takes) {
            const TakePlan* take = listed.take;
            material(takrUri(*take, take->smi()), number(take->frames), take->umid);
            auto otherPart = [&]() {
                w.writeEmptyElement(QStringLiteral("Component"));
                w.writeAttribute(QStringLiteral("mediaId"), take->otherMediaId);
                w.writeAttribute(QStringLiteral("mediaKind"), QStringLiteral("ProfessionalMemoryCard"));
                if (!take->otherMediaName.isEmpty())
                    w.writeAttribute(QStringLiteral("mediaName"), take->otherMediaName);
                w.writeAttribute(QStringLiteral("uri"), take->otherPartUri);
                w.writeAttribute(QStringLiteral("type"), QStringLiteral("PD-EDL"));
                w.writeAttribute(QStringLiteral("umid"), take->otherPartUmid);
            };
            if (!take->otherPartUri.isEmpty() && take->otherPartFirst)
                otherPart();
            for (const ClipPlan* clip : listed.clips) {
                w.writeEmptyElement(QStringLiteral("Component"));
                w.writeAttribute(QStringLiteral("uri"), clprUri(*clip, clip->smi()));
                w.writeAttribute(QStringLiteral("type"), QStringLiteral("PD-EDL"));
                w.writeAttribute(QStringLiteral("umid"), clip->umid);
            }
            if (!take->otherPartUri.isEmpty() && !take->otherPartFirst)
                otherPart();
            relevant(takrUri(*take, take->xml()), QStringLiteral("XML"));
            w.writeEndElement();
        }
        w.writeEndElement(); // Contents
        w.writeEndElement(); // MediaProfile
    });
}

QByteArray CardXml::cueUp(const ClipPlan* last)
{
    return document([&](QXmlStreamWriter& w) {
        w.writeStartElement(QStringLiteral("cueupinfo"));
        w.writeAttribute(QStringLiteral("xmlns"), QString::fromLatin1(kCueUpNamespace));
        w.writeAttribute(QStringLiteral("xmlns:xsi"), QString::fromLatin1(kXsiNamespace));
        w.writeAttribute(QStringLiteral("xsi:schemaLocation"),
                         QStringLiteral("urn:schemas-professionalDisc:cueupinfo cueupinfo.xsd"));
        w.writeStartElement(QStringLiteral("history"));
        if (last) {
            w.writeEmptyElement(QStringLiteral("clip"));
            w.writeAttribute(QStringLiteral("uri"), clprUri(*last, last->smi()));
            w.writeAttribute(QStringLiteral("umid"), last->umid);
            w.writeAttribute(QStringLiteral("ftc"), last->start.display());
        }
        w.writeEndElement();
        w.writeEndElement();
    });
}

} // namespace cardgen
