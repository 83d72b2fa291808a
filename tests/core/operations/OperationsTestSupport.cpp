#include "OperationsTestSupport.h"

#include "support/CardFolder.h"

#include <QCryptographicHash>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

#include <gtest/gtest.h>

namespace optest {

cardgen::Options smallCard(int clips)
{
    cardgen::Options options = cwtest::CardFolder::quick();
    options.clips = clips;
    options.fast = true;
    return options;
}

void enableDebugLog(const cwtest::ScopedHome& home)
{
    cwtest::releaseSingletons();
    cwtest::writeSettings(home.configHome(), {{"LOG_FLAG", "ALL"}});
}

namespace {

// "yyyy/MM/dd HH:mm:ss PPPP:message"
constexpr int kProcessIdAt = 20;
constexpr int kMessageAt = 25;

QStringList rawLogLines(const cwtest::ScopedHome& home)
{
    QFile log(home.stateHome() + "/Clipwright/Clipwright.log");
    if (!log.open(QIODevice::ReadOnly))
        return {};
    return QString::fromUtf8(log.readAll()).split("\r\n", Qt::SkipEmptyParts);
}

} // namespace

QStringList logLines(const cwtest::ScopedHome& home)
{
    QStringList lines;
    for (const QString& line : rawLogLines(home))
        lines << line.mid(kMessageAt);
    return lines;
}

QStringList logLinesOf(const cwtest::ScopedHome& home, int processId)
{
    const QString id = QString::asprintf("%04d", processId);
    QStringList lines;
    for (const QString& line : rawLogLines(home))
        if (line.mid(kProcessIdAt, 4) == id)
            lines << line.mid(kMessageAt);
    return lines;
}

QMap<QString, QByteArray> snapshot(const QString& root)
{
    QMap<QString, QByteArray> entries;
    QDirIterator it(root, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        const QFileInfo info(path);
        QByteArray mark;
        if (info.isSymLink()) {
            mark = "link:" + info.symLinkTarget().toUtf8();
        } else if (info.isDir()) {
            mark = "folder";
        } else {
            QFile file(path);
            if (file.open(QIODevice::ReadOnly))
                mark = QCryptographicHash::hash(file.readAll(), QCryptographicHash::Sha1).toHex();
        }
        entries.insert(QDir(root).relativeFilePath(path), mark);
    }
    return entries;
}

void writeFile(const QString& path, const QByteArray& contents)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << path.toStdString();
    file.write(contents);
}

void replaceInFile(const QString& path, const QString& from, const QString& to)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
    QString text = QString::fromUtf8(file.readAll());
    file.close();
    ASSERT_TRUE(text.contains(from)) << from.toStdString() << " not in " << path.toStdString();
    text.replace(from, to);
    writeFile(path, text.toUtf8());
}

} // namespace optest
