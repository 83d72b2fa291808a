#include "core/services/BLLogCtrl.h"

#include "core/services/BLCommon.h"
#include "core/services/BLPlistCtrl.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace {
std::mutex g_sharedMutex;
BLLogCtrl* g_shared = nullptr;
} // namespace

BLLogCtrl* BLLogCtrl::sharedCtrl()
{
    std::lock_guard lock(g_sharedMutex);
    if (!g_shared)
        g_shared = new BLLogCtrl();
    return g_shared;
}

void BLLogCtrl::releaseCtrl()
{
    std::lock_guard lock(g_sharedMutex);
    delete g_shared;
    g_shared = nullptr;
}

BLLogCtrl::BLLogCtrl()
{
    initLogCtrl();
}

void BLLogCtrl::initLogCtrl()
{
    // Creating the log creates the shared utilities and the settings store
    // first, so the settings file is always read before the first line.
    const QString logs = BLCommon::sharedCtrl()->searchFolderPath(0);
    m_logFolderPath = QDir(logs).filePath(QStringLiteral("Clipwright"));
    m_logFilePath = QDir(m_logFolderPath).filePath(QStringLiteral("Clipwright.log"));
    m_logHFilePath = QDir(m_logFolderPath).filePath(QStringLiteral("Clipwright.log.1"));
    m_logFlag = BLPlistCtrl::sharedCtrl()->getLogFlag();
}

int BLLogCtrl::debugLogForProcessId(int processId, const QString& message)
{
    if (m_logFlag == QLatin1String("ALL") || m_logFlag == QLatin1String("DEBUG"))
        logMainForProcessId(processId, message);
    return 0;
}

int BLLogCtrl::infoLogForProcessId(int processId, const QString& message)
{
    if (m_logFlag == QLatin1String("ALL") || m_logFlag == QLatin1String("INFO"))
        logMainForProcessId(processId, message);
    return 0;
}

QString BLLogCtrl::formatLine(int processId, const QString& message)
{
    const QString stamp = QDateTime::currentDateTime().toString(QStringLiteral("yyyy/MM/dd HH:mm:ss "));
    return stamp + QString::asprintf("%04d:", processId) + message + QLatin1String("\r\n");
}

void BLLogCtrl::logMainForProcessId(int processId, const QString& message)
{
    const QByteArray line = formatLine(processId, message).toUtf8();
    std::lock_guard lock(m_writeMutex);
    writingPreparation();
    fileWriting(line);
}

void BLLogCtrl::writingPreparation()
{
    const QFileInfo info(m_logFilePath);
    if (info.exists()) {
        if (info.size() > kRotateSize)
            rotating();
        return;
    }
    if (!QFileInfo(m_logFolderPath).isDir())
        QDir().mkpath(m_logFolderPath);
    createNewLogFile();
}

void BLLogCtrl::rotating()
{
    if (QFileInfo::exists(m_logHFilePath))
        QFile::remove(m_logHFilePath);
    // A rename keeps the older generation without copying 100 MiB.
    if (!QFile::rename(m_logFilePath, m_logHFilePath)) {
        QFile::copy(m_logFilePath, m_logHFilePath);
        QFile::remove(m_logFilePath);
    }
    createNewLogFile();
}

void BLLogCtrl::createNewLogFile()
{
    QFile file(m_logFilePath);
    if (file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        file.close();
}

void BLLogCtrl::fileWriting(const QByteArray& line)
{
    QFile file(m_logFilePath);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Append))
        return; // the line is lost silently, as the callers expect
    file.write(line);
    file.close();
}
