// clipwright-cli info: the properties the clip property dialog shows for a take.
#include "CliCommand.h"

#include "core/operations/BLClipPropertyCtrl.h"
#include "core/operations/IClipPropertyView.h"
#include "core/services/BLCommon.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace {

struct FieldName
{
    IClipPropertyView::Field field;
    const char* key;   // in the JSON result
    const char* label; // in the text output
};
constexpr FieldName kFields[] = {
    {IClipPropertyView::TakeId, "takeId", "Take"},
    {IClipPropertyView::UsAscii, "title", "Title"},
    {IClipPropertyView::ValueAlias, "alias", "Alias"},
    {IClipPropertyView::Description, "description", "Description"},
    {IClipPropertyView::Creator, "creator", "Creator"},
    {IClipPropertyView::Status, "status", "Status"},
    {IClipPropertyView::RecodingMode, "recordingMode", "Recording mode"},
    {IClipPropertyView::CreationDate, "creationDate", "Recorded"},
    {IClipPropertyView::LastUpDate, "lastUpdate", "Last update"},
    {IClipPropertyView::Duration, "duration", "Duration"},
    {IClipPropertyView::Size, "size", "Size"},
    {IClipPropertyView::VideoFormat, "video", "Video"},
    {IClipPropertyView::AudioFormat, "audio", "Audio"},
    {IClipPropertyView::MediaSpanning, "mediaSpanning", "Continues on another card"},
    {IClipPropertyView::Device, "device", "Device"},
};

// The dialog without a window: keeps the texts it is given, one line each.
class CliPropertyView : public IClipPropertyView
{
public:
    QString fields[FieldCount];
    void setTitle(const QString&) override {}
    void setPicture(const QImage&) override {}
    void setField(Field field, const QString& text) override
    {
        fields[field] = QString(text).replace(QStringLiteral("\r\n"), QStringLiteral(", "));
    }
    QString field(Field field) const override { return fields[field]; }
    int runModal(BLClipPropertyCtrl*) override { return BLClipPropertyCtrl::kStopCodeCancel; }
    void endModal(int) override {}
};

} // namespace

int runInfo(const QStringList& args)
{
    QStringList rest = args;
    const bool json = rest.removeAll("--json") > 0;
    if (rest.size() != 2 || rest.first().startsWith('-'))
        return cliUsage("info");
    const QString workFolder = cliWorkFolder(rest[0]);
    if (!BLCommon::isBPAVFolder(workFolder)) {
        cliErr() << "clipwright-cli info: " << workFolder << ": no BPAV folder" << Qt::endl;
        return kExitFailed;
    }
    StderrPresenter presenter("info");
    QList<DOTakeData> takes, chosen;
    if (!chooseTakes("info", workFolder, {rest[1]}, nullptr, &takes, &chosen))
        return kExitFailed;
    const DOTakeData& take = chosen.first();
    if (take.getTakeStatus() >= 4) {
        cliErr() << "clipwright-cli info: " << rest[1]
                 << (take.getTakeStatus() == 4 ? ": an MP4 file not imported yet" : ": an unusable take")
                 << " has no properties to show" << Qt::endl;
        return kExitFailed;
    }

    CliPropertyView view;
    const auto index = std::find_if(takes.begin(), takes.end(),
                                    [&](const DOTakeData& t) { return t.getUmid() == take.getUmid(); }) -
                       takes.begin();
    BLClipPropertyCtrl(&view, take, int(index), workFolder, nullptr).setOfLoadedData();
    if (json) {
        QJsonObject result{{"workFolder", workFolder}, {"umid", take.getUmid()}};
        for (const FieldName& f : kFields)
            result[QLatin1String(f.key)] = view.fields[f.field];
        cliOut() << QJsonDocument(result).toJson(QJsonDocument::Indented);
    } else {
        for (const FieldName& f : kFields)
            cliOut() << (QLatin1String(f.label) + QLatin1Char(':')).leftJustified(27) << view.fields[f.field]
                     << "\n";
        cliOut() << QStringLiteral("UMID:").leftJustified(27) << take.getUmid() << "\n";
    }
    return kExitOk;
}
