#include "core/card/DOTakeData.h"

#include "core/services/BLCommon.h"
#include "core/services/BLLocalizedStrings.h"
#include "core/services/BLLogCtrl.h"

#include <algorithm>
#include <limits>

namespace {

constexpr int kHouseKeepingProcessId = 700;

const QLatin1String kOnOtherMedium("file:///");

bool isOnThisMedium(const DOComponent& component)
{
    return BLCommon::isClipReference(component.getUri());
}

bool isOnOtherMedium(const DOComponent& component)
{
    return component.getUri().contains(kOnOtherMedium);
}

// Sums of durations and sizes stop at the largest value instead of wrapping.
qint64 saturatingAdd(qint64 a, qint64 b)
{
    qint64 sum = 0;
    if (!__builtin_add_overflow(a, b, &sum))
        return sum;
    return b > 0 ? std::numeric_limits<qint64>::max() : std::numeric_limits<qint64>::min();
}

bool sameUmid(const QString& a, const QString& b)
{
    return QString::compare(a, b, Qt::CaseInsensitive) == 0;
}

// Index of the first entry from `from` on that satisfies the test, or the size.
template <typename Test> qsizetype indexOf(const QList<DOComponent>& list, qsizetype from, Test test)
{
    const auto it = std::find_if(list.begin() + from, list.end(), test);
    return it - list.begin();
}

template <typename T> void insertAt(QList<T>& list, int no, const T& value)
{
    list.insert(std::clamp<qsizetype>(no, 0, list.size()), value);
}

template <typename T> void removeAt(QList<T>& list, int index)
{
    if (index >= 0 && index < list.size())
        list.removeAt(index);
}

QString flagText(bool value)
{
    return value ? QStringLiteral("true") : QStringLiteral("false");
}

} // namespace

void DOTakeData::setUmid(const QString& value)
{
    if (!value.isNull())
        m_sUmid = DOTakeInfo::toStoredUmid(value);
}

void DOTakeData::setClipUmid(const QString& umid)
{
    if (!umid.isNull())
        m_arrClipUmid.append(DOTakeInfo::toStoredUmid(umid));
}

void DOTakeData::setClipUmid(const QString& umid, int no)
{
    if (!umid.isNull())
        insertAt(m_arrClipUmid, no, DOTakeInfo::toStoredUmid(umid));
}

void DOTakeData::removeClipUmid(int index)
{
    removeAt(m_arrClipUmid, index);
}

void DOTakeData::setArrClipUmid(const QStringList& umids)
{
    m_arrClipUmid.clear();
    for (const QString& umid : umids)
        setClipUmid(umid);
}

void DOTakeData::setOldUmid(const QString& umid)
{
    if (!umid.isNull())
        m_arrOldUmid.append(umid);
}

void DOTakeData::setOldUmid(const QString& umid, int no)
{
    if (!umid.isNull())
        insertAt(m_arrOldUmid, no, umid);
}

void DOTakeData::removeOldUmid(int index)
{
    removeAt(m_arrOldUmid, index);
}

void DOTakeData::setArrOldUmid(const QStringList& umids)
{
    m_arrOldUmid = umids;
}

void DOTakeData::setNextTakeUmid(const QString& umid)
{
    if (!umid.isNull())
        m_arrNextTakeUmid.append(umid);
}

void DOTakeData::setNextTakeUmid(const QString& umid, int no)
{
    if (!umid.isNull())
        insertAt(m_arrNextTakeUmid, no, umid);
}

void DOTakeData::removeNextTakeUmid(int index)
{
    removeAt(m_arrNextTakeUmid, index);
}

void DOTakeData::setArrNextTakeUmid(const QStringList& umids)
{
    m_arrNextTakeUmid = umids;
}

void DOTakeData::setClipData(const DOClipData& clip)
{
    m_arrClipData.append(clip);
}

void DOTakeData::setClipData(const DOClipData& clip, int no)
{
    insertAt(m_arrClipData, no, clip);
}

void DOTakeData::removeClipData(int index)
{
    removeAt(m_arrClipData, index);
}

void DOTakeData::setTakeInfo(const DOTakeInfo& info, int index)
{
    insertAt(m_arrTakeInfo, index, info);
}

void DOTakeData::delTakeInfo(int index)
{
    removeAt(m_arrTakeInfo, index);
}

quint32 DOTakeData::getOffset() const
{
    return m_arrClipData.isEmpty() ? m_uiOffset : m_arrClipData.first().getOffset();
}

qint64 DOTakeData::getKeyFrame() const
{
    return std::max<qint64>(m_llKeyFrame, getOffset());
}

qint64 DOTakeData::getTakeDuration() const
{
    if (m_TakeStatus == 5 || m_TakeStatus == 6)
        return 0;
    if (m_arrClipData.isEmpty())
        return m_llCurrentDuration;
    qint64 total = 0;
    for (const DOClipData& clip : m_arrClipData)
        total = saturatingAdd(total, clip.getCurrentDuration());
    return total;
}

qint64 DOTakeData::getTakeSize() const
{
    qint64 total = m_Size;
    for (const DOClipData& clip : m_arrClipData)
        total = saturatingAdd(total, clip.getSize());
    return total;
}

QString DOTakeData::getSearchTakeSize() const
{
    return BLCommon::convertSizeStr(getTakeSize(), QStringLiteral("#,##0"), 1);
}

QString DOTakeData::getTakeID() const
{
    if (m_TakeStatus == 4) {
        const QString fileName = m_MP4Uri.section(QLatin1Char('/'), -1);
        const qsizetype dot = fileName.lastIndexOf(QLatin1Char('.'));
        return dot < 0 ? fileName : fileName.left(dot);
    }
    if (m_TakeStatus >= 0 && m_TakeStatus <= 3)
        return m_XMLUri.section(QLatin1Char('/'), -2, -2);
    return QString();
}

QString DOTakeData::getShownTakeID() const
{
    const QString id = getTakeID();
    return id.isEmpty() ? BLCommon::getFolderName(*this).section(QLatin1Char('/'), -1) : id;
}

QString DOTakeData::getSingleLineAlias() const
{
    QString line = m_sAlias;
    line.replace(QLatin1Char('\r'), QLatin1Char(' '));
    line.replace(QLatin1Char('\n'), QLatin1Char(' '));
    return line;
}

QString DOTakeData::getResolution() const
{
    if (m_sPixel.isEmpty() || m_sNumOfVerticalLine.isEmpty())
        return QString();
    return m_sPixel + QLatin1String(" X ") + m_sNumOfVerticalLine;
}

QString DOTakeData::getVideoFormat() const
{
    return m_sVideoCodec.section(QLatin1Char('_'), 0, 0);
}

QString DOTakeData::getToolTip() const
{
    const std::pair<const char*, QString> rows[] = {
        {"LOCALIZED_TAKEDATA_TOOLTIP_FORMAT", getVideoFormat()},
        {"LOCALIZED_TAKEDATA_TOOLTIP_RESOLUTION", getResolution()},
        {"LOCALIZED_TAKEDATA_TOOLTIP_RATE", m_sFormatFps},
        {"LOCALIZED_TAKEDATA_TOOLTIP_ASPECT", m_sAspectRatio},
        {"LOCALIZED_TAKEDATA_TOOLTIP_SIZE", getSearchTakeSize()},
        {"LOCALIZED_TAKEDATA_TOOLTIP_DURATION", BLCommon::convertOfDurationByTakeData(*this)},
    };
    QStringList lines;
    for (const auto& [label, value] : rows)
        lines.append(QLatin1Char(' ') + BLLocalizedString(QString::fromLatin1(label)) + value +
                     QLatin1Char(' '));
    return lines.join(QLatin1Char('\r'));
}

QString DOTakeData::getClipCreationDate() const
{
    return m_arrClipData.isEmpty() ? m_sCreationDate : m_arrClipData.last().getCreationDate();
}

int DOTakeData::compareByCreationDate(const DOTakeData& other) const
{
    return QString::compare(getClipCreationDate(), other.getClipCreationDate(), Qt::CaseInsensitive);
}

bool DOTakeData::Is720SP() const
{
    return m_sVideoCodec.startsWith(QLatin1String("MPEG2HD18.3CBR_1280_720_MP"));
}

bool DOTakeData::IsHQMode() const
{
    return m_sVideoCodec.startsWith(QLatin1String("MPEG2HD35")) || m_sVideoCodec == QLatin1String("VBR");
}

bool DOTakeData::isAllFileExist(const QString& workFolder) const
{
    const QString bpav = BLCommon::getPathOfBPAV(workFolder);
    QList<const QString*> references{&m_XMLUri, &m_MP4Uri};
    if (m_TakeStatus != 3)
        references << &m_SMIUri << &m_BIMUri << &m_PPNUri;
    for (const QString* reference : references) {
        if (!DOClipData::isFileOrNone(bpav, *reference))
            return false;
    }
    for (const DOClipData& clip : m_arrClipData) {
        if (!clip.isAllFileExist(workFolder))
            return false;
    }
    return true;
}

DOTakeData DOTakeData::copyTake() const
{
    DOTakeData copy = *this;
    copy.m_arrClipData.clear();
    for (const DOClipData& clip : m_arrClipData)
        copy.m_arrClipData.append(clip.copyClip());
    copy.m_arrTakeInfo.clear();
    for (const DOTakeInfo& info : m_arrTakeInfo)
        copy.m_arrTakeInfo.append(info.copyTakeInfo());
    copy.m_tcFps = QString();
    copy.m_halfStep = QString();
    return copy;
}

void DOTakeData::addFrontComponent(const DOComponent& component)
{
    if (!m_TakeComponents.isEmpty() && isOnOtherMedium(m_TakeComponents.first()))
        m_TakeComponents.removeFirst();
    m_TakeComponents.prepend(component);
}

void DOTakeData::addRearComponent(const DOComponent& component)
{
    if (!m_TakeComponents.isEmpty() && isOnOtherMedium(m_TakeComponents.last()))
        m_TakeComponents.removeLast();
    m_TakeComponents.append(component);
}

void DOTakeData::rebuildTakeComponent(const QString& umid, const QList<DOComponent>& components)
{
    QStringList taken;
    // Whether an entry may go into the new list; marks its UMID as taken.
    auto admit = [&](const DOComponent& component) {
        const QString& entryUmid = component.getUmid();
        if (sameUmid(entryUmid, m_sUmid) || sameUmid(entryUmid, umid) ||
            taken.contains(entryUmid, Qt::CaseInsensitive))
            return false;
        taken.append(entryUmid);
        return true;
    };

    const QList<DOComponent>& own = m_TakeComponents;
    const qsizetype givenClips = indexOf(components, 0, isOnThisMedium);
    const qsizetype givenEnd = indexOf(components, givenClips, isOnOtherMedium);
    const qsizetype ownClips = indexOf(own, 0, isOnThisMedium);
    const qsizetype ownEnd = indexOf(own, ownClips, isOnOtherMedium);

    QList<DOComponent> front;
    for (qsizetype i = 0; i < givenClips; ++i) {
        if (admit(components[i]))
            front.append(components[i]);
    }
    QList<DOComponent> clips;
    for (qsizetype i = givenClips; i < givenEnd; ++i) {
        if (admit(components[i]))
            clips.append(components[i]);
    }
    for (qsizetype i = ownClips; i < ownEnd; ++i) {
        if (admit(own[i]))
            clips.append(own[i]);
    }
    std::stable_sort(clips.begin(), clips.end(),
                     [](const DOComponent& a, const DOComponent& b) { return a.compareByUri(b) < 0; });

    QList<DOComponent> rebuilt = front + clips;
    if (ownEnd < own.size() && admit(own[ownEnd]))
        rebuilt.append(own[ownEnd]);
    m_TakeComponents = rebuilt;
}

void DOTakeData::removeTakeComponent(const QList<DOTakeData>& takes)
{
    auto belongsToTakes = [&takes](const QString& umid) {
        for (const DOTakeData& take : takes) {
            if (sameUmid(take.getUmid(), umid) || take.getClipUmid().contains(umid, Qt::CaseInsensitive))
                return true;
            for (const DOClipData& clip : take.getClipData()) {
                if (sameUmid(clip.getUmid(), umid))
                    return true;
            }
        }
        return false;
    };

    for (qsizetype i = m_TakeComponents.size() - 1; i >= 0; --i) {
        const DOComponent& component = m_TakeComponents[i];
        if (isOnThisMedium(component))
            continue;
        if (sameUmid(component.getUmid(), m_sUmid) || belongsToTakes(component.getUmid()))
            m_TakeComponents.removeAt(i);
    }
}

void DOTakeData::debugLog(int index) const
{
    BLLogCtrl* log = BLLogCtrl::sharedCtrl();
    auto line = [log](const QString& name, const QString& value) {
        log->debugLogForProcessId(kHouseKeepingProcessId, name + QLatin1String(" : ") + value);
    };
    auto list = [&line](const QString& name, const QStringList& values) {
        line(name + QLatin1String(" count"), QString::number(values.size()));
        for (qsizetype i = 0; i < values.size(); ++i)
            line(name + QString::number(i), values[i]);
    };
    auto listOf = [&list](const QString& name, const auto& records, auto value) {
        QStringList values;
        for (const auto& record : records)
            values.append(value(record));
        list(name, values);
    };

    const QString stars(38, QLatin1Char('*'));
    log->debugLogForProcessId(kHouseKeepingProcessId,
                              stars + QStringLiteral(" %1 start").arg(index) + stars + QLatin1Char(' '));
    line(QStringLiteral("m_bCompleteFlag"), flagText(m_bCompleteFlag));
    line(QStringLiteral("m_bClipEndFlag"), flagText(m_bClipEndFlag));
    line(QStringLiteral("m_bSingleClipFlag"), flagText(m_bSingleClipFlag));
    line(QStringLiteral("m_bInvalidTakeFlag"), flagText(m_bInvalidTakeFlag));
    line(QStringLiteral("m_sUmid"), m_sUmid);
    list(QStringLiteral("m_arrClipUmid"), m_arrClipUmid);
    list(QStringLiteral("m_arrOldUmid"), m_arrOldUmid);
    list(QStringLiteral("m_arrNextTakeUmid"), m_arrNextTakeUmid);
    line(QStringLiteral("m_llCurrentDuration"), QString::number(m_llCurrentDuration));
    line(QStringLiteral("m_sOldFileName"), m_sOldFileName);
    listOf(QStringLiteral("m_arrClipData"), m_arrClipData, [](const DOClipData& c) { return c.getUmid(); });
    line(QStringLiteral("m_bRealFlag"), flagText(m_bRealFlag));
    line(QStringLiteral("m_XMLUri"), m_XMLUri);
    line(QStringLiteral("m_SMIUri"), m_SMIUri);
    line(QStringLiteral("m_BIMUri"), m_BIMUri);
    line(QStringLiteral("m_PPNUri"), m_PPNUri);
    line(QStringLiteral("m_MP4Uri"), m_MP4Uri);
    line(QStringLiteral("m_sUsAscii"), m_sUsAscii);
    line(QStringLiteral("m_sAlias"), getSingleLineAlias()); // one log line per field
    line(QStringLiteral("m_sDescription"), m_sDescription);
    line(QStringLiteral("m_sCreator"), m_sCreator);
    line(QStringLiteral("m_sStatus"), m_sStatus);
    line(QStringLiteral("m_sCreationDate"), m_sCreationDate);
    line(QStringLiteral("m_sLastUpDate"), m_sLastUpDate);
    line(QStringLiteral("m_sRecodingMode"), m_sRecodingMode);
    line(QStringLiteral("m_sVideoCodec"), m_sVideoCodec);
    line(QStringLiteral("m_sFormatFps"), m_sFormatFps);
    line(QStringLiteral("m_sPixel"), m_sPixel);
    line(QStringLiteral("m_sNumOfVerticalLine"), m_sNumOfVerticalLine);
    line(QStringLiteral("m_sAspectRatio"), m_sAspectRatio);
    line(QStringLiteral("m_sNumOfChannel"), m_sNumOfChannel);
    line(QStringLiteral("m_sAudioCodec"), m_sAudioCodec);
    line(QStringLiteral("m_sMediaSpanning"), flagText(m_bMediaSpanning));
    line(QStringLiteral("m_sManufacturer"), m_sManufacturer);
    line(QStringLiteral("m_sModelName"), m_sModelName);
    line(QStringLiteral("m_Size"), QString::number(m_Size));
    listOf(QStringLiteral("m_arrTakeInfo"), m_arrTakeInfo, [](const DOTakeInfo& t) { return t.getSrc(); });
    line(QStringLiteral("m_sm_TakeStatus"), QString::number(m_TakeStatus));
    line(QStringLiteral("m_llKeyFrame"), QString::number(m_llKeyFrame));
    listOf(QStringLiteral("m_TakeComponents"), m_TakeComponents,
           [](const DOComponent& c) { return c.getUri() + QLatin1Char(' ') + c.getUmid(); });
    line(QStringLiteral("m_MPStatus"), m_MPStatus);
    line(QStringLiteral("m_bMateUpFlg"), flagText(m_bMateUpFlg));
    line(QStringLiteral("m_TakeNumber"), QString::number(m_TakeNumber));
    line(QStringLiteral("m_TotalTakeCount"), QString::number(m_TotalTakeCount));
    listOf(QStringLiteral("m_arrLtcChanges"), m_arrLtcChanges,
           [](const DOLtcChange& c) { return c.getValue(); });
    line(QStringLiteral("m_halfStep"), m_halfStep);
    line(QStringLiteral("m_tcFps"), m_tcFps);
    line(QStringLiteral("m_uiOffset"), QString::number(m_uiOffset));
    log->debugLogForProcessId(kHouseKeepingProcessId,
                              stars + QStringLiteral(" %1 end").arg(index) + stars + QLatin1Char(' '));
}

void DOTakeData::debugDOTakeDataLog(const QList<DOTakeData>& takes)
{
    for (qsizetype i = 0; i < takes.size(); ++i)
        takes[i].debugLog(int(i));
}
