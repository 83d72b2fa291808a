#pragma once

#include <QString>

#include <mutex>

// The diagnostic log: one line per call appended to
// $XDG_STATE_HOME/Clipwright/Clipwright.log, as
// "YYYY/MM/DD hh:mm:ss PPPP:message\r\n". The level comes from the setting
// "LOG_FLAG" read once at creation. The file is rotated once it exceeds
// 100 MiB, keeping one older generation ("Clipwright.log.1").
class BLLogCtrl
{
public:
    static constexpr qint64 kRotateSize = 104857600; // 100 MiB

    static BLLogCtrl* sharedCtrl();
    static void releaseCtrl();

    // Written at level "ALL" or "DEBUG". Always answers 0.
    int debugLogForProcessId(int processId, const QString& message);
    // Written at level "ALL" or "INFO". Always answers 0.
    int infoLogForProcessId(int processId, const QString& message);

    // Shorthand for sharedCtrl()->debugLogForProcessId(...).
    static void debug(int processId, const QString& message)
    {
        sharedCtrl()->debugLogForProcessId(processId, message);
    }

    // The full text of one line (without writing it).
    static QString formatLine(int processId, const QString& message);

    QString logFilePath() const { return m_logFilePath; }
    QString logFolderPath() const { return m_logFolderPath; }
    QString logFlag() const { return m_logFlag; }

private:
    BLLogCtrl();
    void initLogCtrl();
    void logMainForProcessId(int processId, const QString& message);
    void writingPreparation();
    void fileWriting(const QByteArray& line);
    void rotating();
    void createNewLogFile();

    QString m_logFolderPath;
    QString m_logFilePath;
    QString m_logHFilePath;
    QString m_logFlag;
    std::mutex m_writeMutex; // keeps rotation and appends of several threads apart
};
