#pragma once

#include <QString>

// The program's version, the project version the build was configured with
// ("0.1.0"), as clipwright-cli --version and the About box show it.
QString appVersion();
