#include "core/operations/BLClipPropertyCtrl.h"

#include "core/card/BLClipCtrl.h"
#include "core/card/BLDiskCtrl.h"
#include "core/card/IOperationPane.h"
#include "core/formats/metadata/BLNonMetaAcss.h"
#include "core/operations/IClipPropertyView.h"
#include "core/services/BLCommon.h"
#include "core/services/BLLocalizedStrings.h"
#include "core/services/BLLogCtrl.h"
#include "core/services/SCNotificationNames.h"

#include <QDir>

#include <algorithm>

namespace {
constexpr int kProcessId = 641;
constexpr int kCheckProcessId = 640;
const QString kLibNameSpace = QStringLiteral("urn:schemas-professionalDisc:lib:ver.1.20");

void log(const QString& message)
{
    BLLogCtrl::debug(kProcessId, message);
}

void showMessage(const char* key)
{
    BLCommon::sharedCtrl()->messageBox(QString::fromLatin1(key), QString(), 0, 0);
}

QString dateText(const QString& xmlDate)
{
    return xmlDate.isEmpty()
               ? QString()
               : BLCommon::makeDateTimeStringFromCalendarData(BLCommon::makeCalendarDateFromString(xmlDate));
}

// Blanks (the space character only) removed from both ends.
QString trimBlanks(const QString& text)
{
    qsizetype first = 0;
    qsizetype last = text.size();
    while (first < last && text.at(first) == QLatin1Char(' '))
        ++first;
    while (last > first && text.at(last - 1) == QLatin1Char(' '))
        --last;
    return text.mid(first, last - first);
}

bool isAscii(const QString& text)
{
    return std::all_of(text.begin(), text.end(), [](QChar c) { return c.unicode() < 0x80; });
}
} // namespace

BLClipPropertyCtrl::BLClipPropertyCtrl(IClipPropertyView* view, const DOTakeData& take, int index,
                                       const QString& path, IOperationPane* mediaInfo)
    : m_view(view), m_takeData(take.copyTake()), m_index(index), m_path(path), m_mediaInfoCtrl(mediaInfo)
{
}

bool BLClipPropertyCtrl::showModal()
{
    log(QStringLiteral("[BLClipPropertyCtrl showModal] Start"));
    setOfLoadedData();
    bool changed = false;
    if (m_view->runModal(this) == kStopCodeOK) {
        BLCommon* common = BLCommon::sharedCtrl();
        common->sendNotificationNow(this, SC::SCMovieStopNotification);
        changed = upDateOfFieldData();
    }
    if (changed) {
        log(QStringLiteral("[BLClipPropertyCtrl showModal]    ClipProperty Update TRUE"));
        DOTakeData take = m_takeData.copyTake();
        take.setUsAscii(m_view->field(IClipPropertyView::UsAscii));
        take.setAlias(m_view->field(IClipPropertyView::ValueAlias));
        take.setDescription(m_view->field(IClipPropertyView::Description));
        take.setCreator(m_view->field(IClipPropertyView::Creator));
        take.setLastUpDate(m_strUpDate);
        BLCommon::sharedCtrl()->sendNotificationNow(
            this, SC::SCClipPropertyDidChangeNotification,
            {{SC::SCSelectFolderKey, QString(m_path)},
             {SC::SCIndexTakeDataKey, m_index},
             {SC::SCDidChangeTakeDataKey, QVariant::fromValue(take)}});
        const auto change = [](const char* name, const QString& from, const QString& to) {
            log(QStringLiteral("[BLClipPropertyCtrl showModal]    %1:%2 -> %3")
                    .arg(QLatin1String(name), from, to));
        };
        change("usAscii", m_takeData.getUsAscii(), take.getUsAscii());
        change("Alias", m_takeData.getAlias(), take.getAlias());
        change("description", m_takeData.getDescription(), take.getDescription());
        change("creator", m_takeData.getCreator(), take.getCreator());
        m_takeData = take;
    } else {
        log(QStringLiteral("[BLClipPropertyCtrl showModal]    ClipProperty Update FALSE"));
    }
    log(QStringLiteral("[BLClipPropertyCtrl showModal] End"));
    return changed;
}

void BLClipPropertyCtrl::OnOK()
{
    const bool unchanged = m_view->field(IClipPropertyView::UsAscii) == m_takeData.getUsAscii() &&
                           m_view->field(IClipPropertyView::ValueAlias) == m_takeData.getAlias() &&
                           m_view->field(IClipPropertyView::Description) == m_takeData.getDescription() &&
                           m_view->field(IClipPropertyView::Creator) == m_takeData.getCreator();
    if (unchanged) {
        m_view->endModal(kStopCodeOK);
        return;
    }
    if (limitOfBytes()) {
        log(QStringLiteral("[BLClipPropertyCtrl OnOK] OK"));
        m_view->endModal(kStopCodeOK);
    } else {
        log(QStringLiteral("[BLClipPropertyCtrl OnOK] limitOfBytes is FALSE"));
    }
}

void BLClipPropertyCtrl::OnCancel()
{
    log(QStringLiteral("[BLClipPropertyCtrl OnCancel] Cancel"));
    m_view->endModal(kStopCodeCancel);
}

void BLClipPropertyCtrl::setOfLoadedData()
{
    const DOTakeData& take = m_takeData;
    const auto set = [this](IClipPropertyView::Field field, const QString& text) {
        m_view->setField(field, text);
    };
    m_view->setTitle(take.getTakeID());
    m_view->setPicture(m_picture);
    set(IClipPropertyView::TakeId, take.getTakeID());
    set(IClipPropertyView::UsAscii, take.getUsAscii());
    set(IClipPropertyView::ValueAlias, take.getAlias());
    set(IClipPropertyView::Description, take.getDescription());
    set(IClipPropertyView::Creator, take.getCreator());
    set(IClipPropertyView::Status, take.getStatus());
    set(IClipPropertyView::RecodingMode, take.getRecodingMode());
    set(IClipPropertyView::CreationDate, dateText(take.getCreationDate()));
    set(IClipPropertyView::LastUpDate, dateText(take.getLastUpDate()));
    set(IClipPropertyView::Duration, BLCommon::convertOfDurationByTakeData(take));
    set(IClipPropertyView::Size, BLCommon::sizeText(take.getTakeSize()));
    if (!take.getPixel().isEmpty() && !take.getNumOfVerticalLine().isEmpty())
        set(IClipPropertyView::VideoFormat,
            QStringLiteral("%1\r\n%2 X %3 %4\r\n%5")
                .arg(take.getVideoCodec(), take.getPixel(), take.getNumOfVerticalLine(), take.getARatio(),
                     take.getFormatFps()));
    else
        set(IClipPropertyView::VideoFormat,
            QStringLiteral("%1\r\n%2\r\n%3")
                .arg(take.getVideoCodec(), take.getARatio(), take.getFormatFps()));
    if (!take.getNumOfChannel().isEmpty())
        set(IClipPropertyView::AudioFormat,
            QStringLiteral("%1\r\n%2%3")
                .arg(take.getAudioCodec(), take.getNumOfChannel(),
                     BLLocalizedString(QStringLiteral("LOCALIZED_PROPERTY_CHANNEL"))));
    else
        set(IClipPropertyView::AudioFormat, take.getAudioCodec());
    set(IClipPropertyView::MediaSpanning,
        BLLocalizedString(take.getMediaSpanning() ? QStringLiteral("LOCALIZED_PROPERTY_SPANNING_YES")
                                                  : QStringLiteral("LOCALIZED_PROPERTY_SPANNING_NO")));
    set(IClipPropertyView::Device,
        QStringLiteral("%1\r\n%2").arg(take.getManufacturer(), take.getModelName()));
}

bool BLClipPropertyCtrl::limitOfBytes()
{
    for (const IClipPropertyView::Field field : {IClipPropertyView::UsAscii, IClipPropertyView::ValueAlias,
                                                 IClipPropertyView::Description, IClipPropertyView::Creator})
        m_view->setField(field, trimBlanks(m_view->field(field)));
    const QString title = m_view->field(IClipPropertyView::UsAscii);
    const QString alias = m_view->field(IClipPropertyView::ValueAlias);
    const QString description = m_view->field(IClipPropertyView::Description);
    const QString creator = m_view->field(IClipPropertyView::Creator);

    if (!BLCommon::isVolume(BLCommon::getVolumeName(m_path))) {
        showMessage("MSG_632_3169");
        BLLogCtrl::debug(kCheckProcessId, QStringLiteral("[BLClipPropertyCtrl limitOfBytes] isVolume fail"));
        m_view->endModal(kStopCodeCancel);
        return false;
    }
    if (m_mediaInfoCtrl) {
        if (!BLClipCtrl().checkFolderExist(*m_mediaInfoCtrl, 3))
            return false;
    } else if (!BLCommon::isFolder(m_path)) {
        showMessage("MSG_632_3169");
        return false;
    }
    if (!BLCommon::checkHyphenationCharacter(title) || !isAscii(title)) {
        showMessage("MSG_641_3105");
        return false;
    }
    if (!BLCommon::checkReturnCode(alias)) {
        showMessage("MSG_641_3116");
        return false;
    }
    if (!BLCommon::checkReturnCode(creator)) {
        showMessage("MSG_641_3117");
        return false;
    }
    const struct
    {
        qsizetype bytes;
        int limit;
        const char* key;
    } limits[] = {{title.toLatin1().size(), kMaxTitleBytes, "MSG_641_3106"},
                  {alias.toUtf8().size(), kMaxAliasBytes, "MSG_641_3107"},
                  {description.toUtf8().size(), kMaxDescriptionBytes, "MSG_641_3108"},
                  {creator.toUtf8().size(), kMaxCreatorBytes, "MSG_641_3109"}};
    for (const auto& limit : limits) {
        if (limit.bytes > limit.limit) {
            showMessage(limit.key);
            return false;
        }
    }
    if (BLDiskCtrl::sharedCtrl()->isUsableDrive(m_path) == 3) {
        showMessage("MSG_651_3232");
        BLLogCtrl::debug(kCheckProcessId, QStringLiteral("[BLClipCtrl checkCopyPath] isUsableDrive fail"));
        return false;
    }
    if (!isReadable(m_path) || !isWritable(m_path)) {
        showMessage("MSG_6510_3210");
        return false;
    }
    return true;
}

bool BLClipPropertyCtrl::isReadable(const QString& folder) const
{
    const QString bpav = BLCommon::getPathOfBPAV(folder);
    const BLDiskCtrl* disk = BLDiskCtrl::sharedCtrl();
    for (const QString& path :
         {folder, bpav, QDir(bpav).filePath(QStringLiteral("CLPR")), metadataPath(m_takeData.getXMLUri())})
        if (!disk->isReadableThisPath(path))
            return false;
    return true;
}

bool BLClipPropertyCtrl::isWritable(const QString& folder) const
{
    const QString bpav = BLCommon::getPathOfBPAV(folder);
    const BLDiskCtrl* disk = BLDiskCtrl::sharedCtrl();
    for (const QString& path :
         {folder, bpav, QDir(bpav).filePath(QStringLiteral("CLPR")), metadataPath(m_takeData.getXMLUri())})
        if (!disk->isWritableThisPath(path))
            return false;
    return true;
}

QString BLClipPropertyCtrl::metadataPath(const QString& reference) const
{
    return BLCommon::makeFilePath(BLCommon::getPathOfBPAV(m_path), {reference});
}

bool BLClipPropertyCtrl::writeFields(BLNonMetaAcss& meta) const
{
    DOAlias alias;
    alias.setLang(BLCommon::getSystemLanguage());
    alias.setValue(m_view->field(IClipPropertyView::ValueAlias));
    DOTitle title;
    title.setUsAscii(m_view->field(IClipPropertyView::UsAscii));
    title.setAlias(alias);
    // An empty text removes the item; one that is not there is no failure.
    const QString description = m_view->field(IClipPropertyView::Description);
    const QString creator = m_view->field(IClipPropertyView::Creator);
    if (description.isEmpty())
        meta.delDescriptionData();
    if (creator.isEmpty())
        meta.delCreatorData();
    return meta.setTitle(title) && (description.isEmpty() || meta.setDescription(description)) &&
           (creator.isEmpty() || meta.setCreator(creator));
}

bool BLClipPropertyCtrl::upDateOfFieldData()
{
    const auto end = [](bool answer) {
        log(QStringLiteral("[BLClipPropertyCtrl upDateOfFieldData] End"));
        return answer;
    };
    const auto failed = [this, &end] {
        showMessage(BLDiskCtrl::sharedCtrl()->isUsableDrive(m_path) == 2 ? "MSG_6510_3210" : "MSG_631_3166");
        log(QStringLiteral("[BLClipPropertyCtrl upDateOfFieldData] Update False"));
        return end(false);
    };

    // Every clip's own file first.
    for (const DOClipData& clip : m_takeData.getClipData()) {
        const QString path = metadataPath(clip.getXMLUri());
        BLNonMetaAcss meta;
        if (!meta.loadForFilePath(path) || !writeFields(meta) || !meta.setLastUpdate() || !meta.save() ||
            !UpdateNonMetaVersion(path))
            return failed();
    }

    // Then the take's: written only when a text changed.
    const QString takePath = metadataPath(m_takeData.getXMLUri());
    BLNonMetaAcss meta;
    DONonMetaHeader header;
    header.setXmlns_lib(kLibNameSpace);
    DONonRealTimeMeta record;
    const QString lang = BLCommon::getSystemLanguage();
    if (!meta.loadForFilePath(takePath) || !meta.setNonMetaHeader(header) || !writeFields(meta) ||
        !meta.getNonMetaData(record, lang))
        return failed();
    record.setLastUpdate(BLCommon::getGmtTm());
    meta.setLastUpdate();
    m_strUpDate = record.getLastUpdate();

    const bool unchanged = m_view->field(IClipPropertyView::UsAscii) == m_takeData.getUsAscii() &&
                           m_view->field(IClipPropertyView::ValueAlias) == m_takeData.getAlias() &&
                           m_view->field(IClipPropertyView::Description) == m_takeData.getDescription() &&
                           m_view->field(IClipPropertyView::Creator) == m_takeData.getCreator();
    if (unchanged) {
        log(QStringLiteral("[BLClipPropertyCtrl upDateOfFieldData] Update False"));
        return end(false);
    }
    log(QStringLiteral("[BLClipPropertyCtrl upDateOfFieldData] Update True"));
    // A take file that could not be saved fails the edit: the grid must not
    // show a title that is not on disk.
    if (meta.save() && UpdateNonMetaVersion(takePath))
        return end(true);
    return failed();
}

bool BLClipPropertyCtrl::UpdateNonMetaVersion(const QString& path)
{
    BLNonMetaAcss meta;
    return meta.loadForFilePath(path) && meta.updateVersion() && meta.save();
}
