#include "support/TestEnvironment.h"

#include "core/formats/metadata/BLBIMCtrl.h"
#include "core/operations/BLClipboardCtrl.h"
#include "core/services/BLCommon.h"
#include "core/services/BLLogCtrl.h"
#include "core/services/BLPlistCtrl.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QThread>

#include <cstdlib>

namespace cwtest {

namespace {
void setXdg(const QString& home)
{
    qputenv("HOME", home.toUtf8());
    qputenv("XDG_CONFIG_HOME", (home + "/.config").toUtf8());
    qputenv("XDG_STATE_HOME", (home + "/.local/state").toUtf8());
    qputenv("XDG_CACHE_HOME", (home + "/.cache").toUtf8());
    qputenv("XDG_DATA_HOME", (home + "/.local/share").toUtf8());
    qputenv("XDG_RUNTIME_DIR", (home + "/.runtime").toUtf8());
    QDir().mkpath(home + "/.runtime");
    QFile::setPermissions(home + "/.runtime",
                          QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
}
} // namespace

void releaseSingletons()
{
    BLBIMCtrl::releaseCtrl();
    BLClipboardCtrl::releaseCtrl();
    BLLogCtrl::releaseCtrl();
    BLPlistCtrl::releaseCtrl();
    BLCommon::releaseCtrl();
}

ScopedHome::ScopedHome() : m_previousHome(qgetenv("HOME"))
{
    releaseSingletons();
    setXdg(m_dir.path());
}

ScopedHome::~ScopedHome()
{
    releaseSingletons();
    setXdg(QString::fromUtf8(m_previousHome));
}

QString ScopedHome::configHome() const
{
    return m_dir.path() + "/.config";
}
QString ScopedHome::stateHome() const
{
    return m_dir.path() + "/.local/state";
}
QString ScopedHome::cacheHome() const
{
    return m_dir.path() + "/.cache";
}
QString ScopedHome::path(const QString& relative) const
{
    return m_dir.filePath(relative);
}

void writeSettings(const QString& configHome, const QVariantMap& values)
{
    QDir().mkpath(configHome + "/Clipwright");
    BLPlistCtrl::writePlistFile(configHome + "/Clipwright/Clipwright.plist", values);
}

QStringList logMessages()
{
    QFile log(QString::fromUtf8(qgetenv("XDG_STATE_HOME")) + "/Clipwright/Clipwright.log");
    QStringList messages;
    if (log.open(QIODevice::ReadOnly)) {
        for (const QString& line : QString::fromUtf8(log.readAll()).split("\r\n", Qt::SkipEmptyParts))
            messages << line.mid(20); // after "YYYY/MM/DD hh:mm:ss "
    }
    return messages;
}

bool waitFor(const std::function<bool()>& condition, int milliseconds)
{
    QElapsedTimer timer;
    timer.start();
    while (!condition()) {
        if (timer.elapsed() > milliseconds)
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
        QThread::msleep(2); // leaves the cores to the threads being waited for
    }
    return true;
}

void settle(int milliseconds)
{
    QElapsedTimer timer;
    timer.start();
    do
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    while (timer.elapsed() < milliseconds);
}

QByteArray readFile(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool writeFile(const QString& path, const QByteArray& data)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    return file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write(data) == data.size() &&
           file.flush();
}

void isolateProcessHome()
{
    // One temporary home for the whole process; never removed before exit so
    // static objects that still write into it at exit cannot reach the real one.
    static QTemporaryDir processHome(QDir::tempPath() + "/clipwright-test-XXXXXX");
    setXdg(processHome.path());
}

} // namespace cwtest
