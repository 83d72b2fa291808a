#pragma once

#include "support/TestEnvironment.h"

#include <QByteArray>
#include <QMap>
#include <QProcess>
#include <QString>
#include <QStringList>

namespace clitest {

inline const QString kCli = QStringLiteral(CLIPWRIGHT_BINARY_DIR "/tools/cli/clipwright-cli");

struct CliRun
{
    int status = -1; // -1 when it did not end normally
    QByteArray out, err;
};

// Waits (up to a minute) for a started run and collects what it printed.
CliRun finish(QProcess& p);
CliRun cli(const QStringList& args);

// The UMIDs of the takes a scan of the folder lists, sorted.
QStringList scannedUmids(const QString& workFolder);

// Every file under a folder by its relative path, with its contents' hash.
QMap<QString, QByteArray> files(const QString& root);

// A test of clipwright-cli in a home of its own with an empty "media"
// folder; skipped when the tool is not built.
class CliTest : public cwtest::HomeTest
{
protected:
    void SetUp() override;
};

} // namespace clitest
