#pragma once

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

// Every file under a folder by its relative path, with its contents' hash.
QMap<QString, QByteArray> files(const QString& root);

} // namespace clitest
