#include "CliTestSupport.h"

#include <QCryptographicHash>
#include <QDirIterator>
#include <QFile>

#include <csignal>
#include <sys/resource.h>

namespace clitest {

CliRun finish(QProcess& p)
{
    CliRun r;
    if (!p.waitForFinished(60000))
        return r;
    r.status = p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1;
    r.out = p.readAllStandardOutput();
    r.err = p.readAllStandardError();
    return r;
}

CliRun cli(const QStringList& args)
{
    QProcess p;
    p.start(kCli, args);
    return finish(p);
}

CliRun cliWithFileSizeLimit(const QStringList& args, qint64 limit)
{
    QProcess p;
    p.setChildProcessModifier([limit] {
        ::signal(SIGXFSZ, SIG_IGN);
        const rlimit fileSize{rlim_t(limit), rlim_t(limit)};
        ::setrlimit(RLIMIT_FSIZE, &fileSize);
    });
    p.start(kCli, args);
    return finish(p);
}

QStringList scannedUmids(const QString& workFolder)
{
    QStringList umids;
    const QJsonArray takes =
        QJsonDocument::fromJson(cli({"scan", "--json", workFolder}).out)["takes"].toArray();
    for (const QJsonValue& take : takes)
        umids << take["umid"].toString();
    umids.sort();
    return umids;
}

QMap<QString, QByteArray> files(const QString& root)
{
    QMap<QString, QByteArray> entries;
    QDirIterator it(root, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        QFile file(it.next());
        if (file.open(QIODevice::ReadOnly))
            entries.insert(QDir(root).relativeFilePath(file.fileName()),
                           QCryptographicHash::hash(file.readAll(), QCryptographicHash::Sha1));
    }
    return entries;
}

void CliTest::SetUp()
{
    HomeTest::SetUp();
    if (!QFileInfo::exists(kCli))
        GTEST_SKIP() << "clipwright-cli is not built";
    ASSERT_TRUE(QDir().mkpath(home().path("media")));
}

} // namespace clitest
