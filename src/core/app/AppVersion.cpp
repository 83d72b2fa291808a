#include "core/app/AppVersion.h"

QString appVersion()
{
    return QStringLiteral(CLIPWRIGHT_VERSION);
}
