#include "core/app/BLPreferencesCtrl.h"

#include "core/app/IPreferencesView.h"
#include "core/services/BLCommon.h"
#include "core/services/BLLogCtrl.h"
#include "core/services/BLPlistCtrl.h"
#include "core/services/SCNotificationNames.h"

#include <QDateTime>

namespace {
constexpr int kProcessId = 657;

// Date order setting (0 year-month-day, 1 month-day-year, 2 day-month-year)
// to dialog row (0 year-month-day, 1 day-month-year, 2 month-day-year). The
// mapping swaps 1 and 2, so it also turns a row back into the setting.
int dateOrderRowOrFormat(int value)
{
    return value == 1 ? 2 : value == 2 ? 1 : 0;
}

QString orderName(int format)
{
    switch (format) {
    case 1:
        return QStringLiteral("MDY");
    case 2:
        return QStringLiteral("DMY");
    default:
        return QStringLiteral("YMD");
    }
}

void log(const QString& message)
{
    BLLogCtrl::debug(kProcessId, message);
}
} // namespace

BLPreferencesCtrl::BLPreferencesCtrl(IPreferencesView& view) : m_view(view) {}

void BLPreferencesCtrl::showModal()
{
    readData();
    showSample();
    if (m_view.runModal() == kStopCodeOK)
        writeData();
}

void BLPreferencesCtrl::onOK()
{
    log(QStringLiteral("[BLPreferencesCtrl onOK] onOK"));
    m_view.endModal(kStopCodeOK);
}

void BLPreferencesCtrl::onCancel()
{
    log(QStringLiteral("[BLPreferencesCtrl onCancel] onCancel"));
    m_view.endModal(kStopCodeCancel);
}

void BLPreferencesCtrl::onChanged()
{
    showSample();
}

void BLPreferencesCtrl::readData()
{
    log(QStringLiteral("[BLPreferencesCtrl readData] Start"));
    const BLPlistCtrl* plist = BLPlistCtrl::sharedCtrl();
    const int format = plist->getDateFormat();
    const QString pause = plist->getDatePauseChar();
    m_view.setDateOrderRow(dateOrderRowOrFormat(format));
    m_view.selectSeparator(pause);
    m_view.setResolutionRow(plist->getLowResolution());
    m_view.setVerifyCopy(plist->getVerifyCopy());
    log(QStringLiteral("[BLPreferencesCtrl readData]    orderDate:") + orderName(format));
    log(QStringLiteral("[BLPreferencesCtrl readData]    pauseChar:") + pause);
    log(QStringLiteral("[BLPreferencesCtrl readData] End"));
}

void BLPreferencesCtrl::writeData()
{
    log(QStringLiteral("[BLPreferencesCtrl writeData] Start"));
    const int format = dateOrderRowOrFormat(m_view.dateOrderRow());
    const QString pause = m_view.selectedSeparator();
    BLPlistCtrl* plist = BLPlistCtrl::sharedCtrl();
    plist->setDateFormat(format);
    plist->setDatePauseChar(pause);
    plist->setLowResolution(m_view.resolutionRow());
    plist->setVerifyCopy(m_view.verifyCopy());
    log(QStringLiteral("[BLPreferencesCtrl writeData]    orderDate:") + orderName(format));
    log(QStringLiteral("[BLPreferencesCtrl writeData]    pauseChar:") + pause);
    BLCommon* common = BLCommon::sharedCtrl();
    common->sendNotification(this, SC::SCDateFormatDidChangeNotification);
    common->sendNotification(this, SC::SCResolutionDidChangeNotification);
    log(QStringLiteral("[BLPreferencesCtrl writeData] End"));
}

void BLPreferencesCtrl::showSample()
{
    m_view.setSampleText(BLCommon::makeDateStringFromCalendarData(QDateTime::currentDateTime(),
                                                                  dateOrderRowOrFormat(m_view.dateOrderRow()),
                                                                  m_view.selectedSeparator()));
}
