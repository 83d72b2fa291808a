#pragma once

#include "support/CardFolder.h"
#include "support/QtPrinters.h"
#include "support/TestEnvironment.h"

#include <QByteArray>
#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMap>
#include <QProcess>
#include <QString>
#include <QStringList>

#include <gtest/gtest.h>

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
// A run in which no file may grow past the limit: a write beyond it fails with EFBIG.
CliRun cliWithFileSizeLimit(const QStringList& args, qint64 limit);

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
