#include "core/services/AppVersion.h"

QString appVersion()
{
    return QStringLiteral(CLIPWRIGHT_VERSION);
}
