#pragma once

#include "core/services/BLLogCtrl.h"

#include <QString>

// The banners that open and close a run in the log (process id 0).
namespace AppBanners {

inline QString asteriskLine()
{
    return QString(99, QLatin1Char('*'));
}

inline void logStart()
{
    BLLogCtrl::debug(0, asteriskLine());
    BLLogCtrl::debug(0, QStringLiteral("**************************************** Application start "
                                       "****************************************"));
}

inline void logEnd()
{
    BLLogCtrl::debug(0, QStringLiteral("**************************************** Application end   "
                                       "****************************************"));
    BLLogCtrl::debug(0, asteriskLine());
}

} // namespace AppBanners
