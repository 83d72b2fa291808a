#include "core/app/panes/DOThumbData.h"

#include "core/card/DOTakeData.h"
#include "core/services/BLCommon.h"

namespace {
template <class T> int compareValues(const T& a, const T& b)
{
    return a < b ? -1 : (b < a ? 1 : 0);
}
} // namespace

DOThumbData::DOThumbData(const DOTakeData& take, int indexTakeData) : m_indexTakeData(indexTakeData)
{
    setTakeData(take);
}

void DOThumbData::setTakeData(const DOTakeData& take)
{
    const QString alias = take.getSingleLineAlias();
    m_title = alias.isEmpty() ? take.getUsAscii() : alias;
    m_size = take.getTakeSize();
    m_duration = BLCommon::convertOfDurationByTakeData(take);
    m_durationFrames = take.getTakeDuration();
    m_date = BLCommon::makeCalendarDateFromString(take.getClipCreationDate());
    m_takeID = take.getShownTakeID();
    m_umid = take.getUmid();
    m_takeStatus = take.getTakeStatus();
    updateDateText();
}

void DOThumbData::updateDateText()
{
    m_dateText = BLCommon::makeDateTimeStringFromCalendarData(m_date);
}

int DOThumbData::compareByTitle(const DOThumbData& other) const
{
    return m_title.compare(other.m_title, Qt::CaseInsensitive);
}

int DOThumbData::compareBySize(const DOThumbData& other) const
{
    return compareValues(m_size, other.m_size);
}

int DOThumbData::compareByDuration(const DOThumbData& other) const
{
    return compareValues(m_durationFrames, other.m_durationFrames);
}

int DOThumbData::compareByDate(const DOThumbData& other) const
{
    // A take without a date comes first.
    if (m_date.isValid() != other.m_date.isValid())
        return m_date.isValid() ? 1 : -1;
    return compareValues(m_date, other.m_date);
}
