#pragma once

#include <QByteArray>
#include <QString>
#include <QVariant>
#include <QVariantMap>

#include <mutex>
#include <optional>

// The settings store: a dictionary mirrored to an XML property list
// ($XDG_CONFIG_HOME/Clipwright/Clipwright.plist). Every setter writes the whole
// file at once, atomically. Getters answer a default when a key is missing or
// holds a value of the wrong kind.
class BLPlistCtrl
{
public:
    static BLPlistCtrl* sharedCtrl();
    static void releaseCtrl();

    QString filePath() const { return m_filePath; }
    // Whether a dictionary is held (false after an unreadable or malformed file).
    bool isLoaded() const { return m_mtDicPlist.has_value(); }

    QString getLogFlag() const;

    double getMainWindowWidth() const;
    void setMainWindowWidth(double value);
    double getMainWindowHeight() const;
    void setMainWindowHeight(double value);
    bool getMainWindowX(double* x) const;
    void setMainWindowX(double value);
    bool getMainWindowY(double* y) const;
    void setMainWindowY(double value);
    static double getDefaultMainWindowWidth() { return 1024.0; }
    static double getDefaultMainWindowHeight() { return 768.0; }

    QString getWorkFolderPathByMain() const;
    void setWorkFolderPathByMain(const QString& path);
    QString getWorkFolderPathBySub1() const;
    void setWorkFolderPathBySub1(const QString& path);
    QString getSelectFolderPathByMain() const;
    void setSelectFolderPathByMain(const QString& path);
    QString getSelectFolderPathBySub1() const;
    void setSelectFolderPathBySub1(const QString& path);
    QString getCopyFolder() const;
    void setCopyFolderPath(const QString& path);
    QString getExportFolder() const;
    void setExportFolderPath(const QString& path);

    int getDateFormat() const;
    void setDateFormat(int value);
    QString getDatePauseChar() const;
    void setDatePauseChar(const QString& value);
    int getLowResolution() const;
    void setLowResolution(int value);
    // Whether copied files are read back and compared with the source (on
    // when the key is missing).
    bool getVerifyCopy() const;
    void setVerifyCopy(bool verify);

    // The window's layout: each pane's sort order (pane 0 Main, 1 Sub1), a
    // splitter's saved state by name (empty when none is kept), and whether
    // the preview is shown.
    int getSortMode(int pane) const;
    void setSortMode(int pane, int mode);
    QByteArray getLayoutState(const QString& name) const;
    void setLayoutState(const QString& name, const QByteArray& state);
    bool getShowPreview() const;
    void setShowPreview(bool show);

    int getSystemDiskMax() const;
    int getLocalDiskMax() const;
    double getFolderCapacity() const;
    int getCacheLifeTime() const;
    int getSequentialNo() const;
    void setSequentialNo(int value);

    QString getViewerLogLevel() const;
    QString getViewerLogFileSize() const;
    QString getViewerLogFilePath() const;
    QString getViewerStartingDelay() const;
    QString getViewerFrameTimeout() const;
    QString getViewerAudioQueueSize() const;
    QString getViewerVideoQueueSize() const;
    QString getViewerVideoRingNum() const;
    QString getViewerAudioQueueSleep() const;
    QString getViewerVideoQueueSleep() const;
    QString getViewerVideoRingSleep() const;
    QString getViewerDemuxSleep() const;
    QString getViewerAudioDecodeSleep() const;
    QString getViewerAudioOutSleep() const;
    QString getViewerVideoDecodeSleep() const;
    QString getViewerVideoOutSleep() const;
    QString getViewerVideoPlayInfoInterval() const;
    QString getViewerVideoFrameDropFlag() const;
    QString getViewerJudgeTime() const;
    QString getViewerJudgeMin() const;
    QString getViewerJudgeDenominator() const;
    QString getViewerJudgeDecodeFrameMin() const;
    QString getViewerMaxCacheSizeOfVideoDecodeFrame() const;
    QString getViewerMaxQueueSizeOfVideoDecodeFrame() const;
    QString getMpeg2tsLogLevel() const;
    QString getMpeg2tsLogFileSize() const;
    QString getMpeg2tsLogFilePath() const;

    // The three primitives every setter goes through: store, then save.
    void setFloatObject(double value, const QString& key);
    void setIntegerObject(qint64 value, const QString& key);
    void setStringObject(const QString& value, const QString& key);

    // Property-list file access (XML form: dict, key, string, integer, real).
    static std::optional<QVariantMap> readPlistFile(const QString& path);
    static bool writePlistFile(const QString& path, const QVariantMap& dictionary);

private:
    BLPlistCtrl();
    void initPlist();
    QVariantMap newFileDictionary() const;
    void save();

    std::optional<double> number(const QString& key) const;
    std::optional<QString> string(const QString& key) const;
    double floatValue(const QString& key, double missing) const;
    int intValue(const QString& key, int missing) const;
    QString stringValue(const QString& key, const QString& missing) const;

    mutable std::mutex m_mutex; // workers read and write a few keys too
    std::optional<QVariantMap> m_mtDicPlist;
    QString m_filePath;
};
