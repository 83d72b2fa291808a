#include "core/services/BLPlistCtrl.h"

#include <algorithm>

#include "core/services/BLCommon.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

namespace {
std::mutex g_sharedMutex;
BLPlistCtrl* g_shared = nullptr;

// Text-valued tuning keys of the viewer and export libraries: key, value in a
// new file and value when missing are the same.
struct TextDefault
{
    const char* key;
    const char* value;
};
constexpr TextDefault kTuningDefaults[] = {
    {"VIEWER_LOG_LEVEL", "0"},
    {"VIEWER_LOG_FILE_SIZE", "1024"},
    {"STARTING_DELAY", "500000"},
    {"FRAME_TIMEOUT", "5"},
    {"AUDIO_QUEUE_SIZE", "1"},
    {"VIDEO_QUEUE_SIZE", "20"},
    {"VIDEO_RING_NUM", "10"},
    {"AUDIO_QUEUE_SLEEP", "5"},
    {"VIDEO_QUEUE_SLEEP", "5"},
    {"VIDEO_RING_SLEEP", "5"},
    {"DEMUX_SLEEP", "1"},
    {"AUDIO_DECODE_SLEEP", "1"},
    {"AUDIO_OUT_SLEEP", "1"},
    {"VIDEO_DECODE_SLEEP", "1"},
    {"VIDEO_OUT_SLEEP", "1"},
    {"VIDEO_PLAY_INFO_INTERVAL", "100000"},
    {"VIDEO_FRAME_DROP_FLAG", "1"},
    {"JUDGE_TIME", "1000000"},
    {"JUDGE_MIN", "2500000"},
    {"JUDGE_DENOMINAOTR", "400000"},
    {"JUDGE_DECODE_FRAME_MIN", "1"},
    {"MAX_CACHE_SIZE_OF_VIDEO_DECODE_FRAME", "0"},
    {"MAX_QUEUE_SIZE_OF_VIDEO_DECODE_FRAME", "10"},
    {"MPEG2TS_LOG_LEVEL", "3"},
    {"MPEG2TS_LOG_FILE_SIZE", "1024000"},
};

QString tuningDefault(const char* key)
{
    for (const TextDefault& d : kTuningDefaults)
        if (qstrcmp(d.key, key) == 0)
            return QString::fromLatin1(d.value);
    return {};
}

QString moviesFolder()
{
    return BLCommon::sharedCtrl()->searchFolderPath(2);
}

QString logsAppFolder()
{
    return QDir(BLCommon::sharedCtrl()->searchFolderPath(0)).filePath(QStringLiteral("Clipwright"));
}

QString cachesFolder()
{
    return BLCommon::sharedCtrl()->searchFolderPath(3);
}

// ---- property-list XML ----

std::optional<QVariant> readValue(QXmlStreamReader& xml);

std::optional<QVariantMap> readDict(QXmlStreamReader& xml)
{
    QVariantMap dict;
    while (xml.readNextStartElement()) {
        if (xml.name() != QLatin1String("key"))
            return std::nullopt;
        const QString key = xml.readElementText();
        if (xml.hasError() || !xml.readNextStartElement())
            return std::nullopt;
        const std::optional<QVariant> value = readValue(xml);
        if (!value)
            return std::nullopt;
        dict.insert(key, *value);
    }
    if (xml.hasError())
        return std::nullopt;
    return dict;
}

// Reads the element the reader stands on; answers nothing for a malformed value.
std::optional<QVariant> readValue(QXmlStreamReader& xml)
{
    const QStringView name = xml.name();
    if (name == QLatin1String("string"))
        return QVariant(xml.readElementText());
    if (name == QLatin1String("integer")) {
        bool ok = false;
        const qint64 v = xml.readElementText().trimmed().toLongLong(&ok);
        return ok ? std::optional<QVariant>(QVariant(v)) : std::nullopt;
    }
    if (name == QLatin1String("real")) {
        bool ok = false;
        const double v = xml.readElementText().trimmed().toDouble(&ok);
        return ok ? std::optional<QVariant>(QVariant(v)) : std::nullopt;
    }
    if (name == QLatin1String("true") || name == QLatin1String("false")) {
        const bool v = name == QLatin1String("true");
        xml.skipCurrentElement();
        return QVariant(v);
    }
    if (name == QLatin1String("dict")) {
        auto d = readDict(xml);
        return d ? std::optional<QVariant>(QVariant(*d)) : std::nullopt;
    }
    // Arrays, dates and data are not used by the settings; keep them out.
    xml.skipCurrentElement();
    return QVariant();
}

void writeValue(QXmlStreamWriter& xml, const QVariant& value)
{
    switch (value.typeId()) {
    case QMetaType::Double:
    case QMetaType::Float:
        xml.writeTextElement(QStringLiteral("real"), QString::number(value.toDouble(), 'g', 17));
        break;
    case QMetaType::Int:
    case QMetaType::LongLong:
    case QMetaType::UInt:
    case QMetaType::ULongLong:
        xml.writeTextElement(QStringLiteral("integer"), QString::number(value.toLongLong()));
        break;
    case QMetaType::Bool:
        xml.writeEmptyElement(value.toBool() ? QStringLiteral("true") : QStringLiteral("false"));
        break;
    case QMetaType::QVariantMap: {
        xml.writeStartElement(QStringLiteral("dict"));
        const QVariantMap map = value.toMap();
        for (auto it = map.constBegin(); it != map.constEnd(); ++it) {
            xml.writeTextElement(QStringLiteral("key"), it.key());
            writeValue(xml, it.value());
        }
        xml.writeEndElement();
        break;
    }
    default:
        xml.writeTextElement(QStringLiteral("string"), value.toString());
        break;
    }
}

bool isNumber(const QVariant& v)
{
    switch (v.typeId()) {
    case QMetaType::Double:
    case QMetaType::Float:
    case QMetaType::Int:
    case QMetaType::LongLong:
    case QMetaType::UInt:
    case QMetaType::ULongLong:
        return true;
    default:
        return false;
    }
}
} // namespace

std::optional<QVariantMap> BLPlistCtrl::readPlistFile(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    // A settings file is small; refuse anything absurd instead of parsing it.
    if (file.size() > 16 * 1024 * 1024)
        return std::nullopt;
    QXmlStreamReader xml(&file);
    if (!xml.readNextStartElement() || xml.name() != QLatin1String("plist"))
        return std::nullopt;
    if (!xml.readNextStartElement() || xml.name() != QLatin1String("dict"))
        return std::nullopt;
    std::optional<QVariantMap> dict = readDict(xml);
    if (!dict)
        return std::nullopt;
    // The rest of the document must still be well formed.
    while (!xml.atEnd())
        xml.readNext();
    if (xml.hasError())
        return std::nullopt;
    return dict;
}

bool BLPlistCtrl::writePlistFile(const QString& path, const QVariantMap& dictionary)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    QXmlStreamWriter xml(&file);
    xml.setAutoFormatting(true);
    xml.setAutoFormattingIndent(1);
    xml.writeStartDocument();
    xml.writeDTD(QStringLiteral("<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
                                "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">"));
    xml.writeStartElement(QStringLiteral("plist"));
    xml.writeAttribute(QStringLiteral("version"), QStringLiteral("1.0"));
    writeValue(xml, dictionary);
    xml.writeEndElement();
    xml.writeEndDocument();
    if (xml.hasError())
        return false;
    return file.commit();
}

BLPlistCtrl* BLPlistCtrl::sharedCtrl()
{
    std::lock_guard lock(g_sharedMutex);
    if (!g_shared)
        g_shared = new BLPlistCtrl();
    return g_shared;
}

void BLPlistCtrl::releaseCtrl()
{
    std::lock_guard lock(g_sharedMutex);
    delete g_shared;
    g_shared = nullptr;
}

BLPlistCtrl::BLPlistCtrl()
{
    initPlist();
}

void BLPlistCtrl::initPlist()
{
    const QString pref = BLCommon::sharedCtrl()->createSpFolderPath(QStringLiteral("pref"));
    const QString folder = QDir(pref).filePath(QStringLiteral("Clipwright"));
    m_filePath = QDir(folder).filePath(QStringLiteral("Clipwright.plist"));
    if (QFileInfo::exists(m_filePath)) {
        m_mtDicPlist = readPlistFile(m_filePath);
        return;
    }
    if (!QFileInfo(folder).isDir())
        QDir().mkpath(folder);
    m_mtDicPlist = newFileDictionary();
    writePlistFile(m_filePath, *m_mtDicPlist);
}

QVariantMap BLPlistCtrl::newFileDictionary() const
{
    QVariantMap d;
    const QString movies = moviesFolder();
    d.insert(QStringLiteral("LOG_FLAG"), QStringLiteral("OFF"));
    d.insert(QStringLiteral("MAIN_WIN_WIDTH"), 1024.0);
    d.insert(QStringLiteral("MAIN_WIN_HEIGHT"), 768.0);
    d.insert(QStringLiteral("WORK_FOLDER"), movies);
    d.insert(QStringLiteral("WORK_FOLDER_SUB1"), movies);
    d.insert(QStringLiteral("SELECT_FOLDER"), QStringLiteral("."));
    d.insert(QStringLiteral("SELECT_FOLDER_SUB1"), QStringLiteral("."));
    d.insert(QStringLiteral("EXPORT_FOLDER"), movies);
    d.insert(QStringLiteral("DATE_FORMAT"), qint64(0));
    d.insert(QStringLiteral("LOW_RESOLUTION"), qint64(0));
    d.insert(QStringLiteral("SYSTEM_DISK_MAX"), qint64(0));
    d.insert(QStringLiteral("LOCAL_DISK_MAX"), qint64(0));
    d.insert(QStringLiteral("FOLDER_CAPACITY"), 4200.0);
    d.insert(QStringLiteral("CACHE_LIFE_TIME"), qint64(30));
    for (const TextDefault& t : kTuningDefaults)
        d.insert(QString::fromLatin1(t.key), QString::fromLatin1(t.value));
    d.insert(QStringLiteral("VIEWER_LOG_FILE_PATH"),
             QDir(logsAppFolder()).filePath(QStringLiteral("Viewer.log")));
    d.insert(QStringLiteral("MPEG2TS_LOG_FILE_PATH"),
             QDir(logsAppFolder()).filePath(QStringLiteral("Export.log")));
    return d;
}

void BLPlistCtrl::save()
{
    // Called with m_mutex held.
    if (m_mtDicPlist)
        writePlistFile(m_filePath, *m_mtDicPlist);
}

void BLPlistCtrl::setFloatObject(double value, const QString& key)
{
    std::lock_guard lock(m_mutex);
    if (!m_mtDicPlist)
        return; // an unreadable file holds no dictionary; the write is lost
    m_mtDicPlist->insert(key, value);
    save();
}

void BLPlistCtrl::setIntegerObject(qint64 value, const QString& key)
{
    std::lock_guard lock(m_mutex);
    if (!m_mtDicPlist)
        return;
    m_mtDicPlist->insert(key, value);
    save();
}

void BLPlistCtrl::setStringObject(const QString& value, const QString& key)
{
    std::lock_guard lock(m_mutex);
    if (!m_mtDicPlist)
        return;
    m_mtDicPlist->insert(key, value);
    save();
}

std::optional<double> BLPlistCtrl::number(const QString& key) const
{
    std::lock_guard lock(m_mutex);
    if (!m_mtDicPlist)
        return std::nullopt;
    const auto it = m_mtDicPlist->constFind(key);
    if (it == m_mtDicPlist->constEnd() || !isNumber(*it))
        return std::nullopt;
    return it->toDouble();
}

std::optional<QString> BLPlistCtrl::string(const QString& key) const
{
    std::lock_guard lock(m_mutex);
    if (!m_mtDicPlist)
        return std::nullopt;
    const auto it = m_mtDicPlist->constFind(key);
    if (it == m_mtDicPlist->constEnd() || it->typeId() != QMetaType::QString)
        return std::nullopt;
    return it->toString();
}

double BLPlistCtrl::floatValue(const QString& key, double missing) const
{
    return number(key).value_or(missing);
}

int BLPlistCtrl::intValue(const QString& key, int missing) const
{
    const std::optional<double> v = number(key);
    return v ? int(*v) : missing;
}

QString BLPlistCtrl::stringValue(const QString& key, const QString& missing) const
{
    return string(key).value_or(missing);
}

QString BLPlistCtrl::getLogFlag() const
{
    return stringValue(QStringLiteral("LOG_FLAG"), QStringLiteral("OFF"));
}

double BLPlistCtrl::getMainWindowWidth() const
{
    return floatValue(QStringLiteral("MAIN_WIN_WIDTH"), 1024.0);
}
void BLPlistCtrl::setMainWindowWidth(double value)
{
    setFloatObject(value, QStringLiteral("MAIN_WIN_WIDTH"));
}
double BLPlistCtrl::getMainWindowHeight() const
{
    return floatValue(QStringLiteral("MAIN_WIN_HEIGHT"), 768.0);
}
void BLPlistCtrl::setMainWindowHeight(double value)
{
    setFloatObject(value, QStringLiteral("MAIN_WIN_HEIGHT"));
}

bool BLPlistCtrl::getMainWindowX(double* x) const
{
    const std::optional<double> v = number(QStringLiteral("MAIN_WIN_X"));
    if (v && x)
        *x = *v;
    return v.has_value();
}
void BLPlistCtrl::setMainWindowX(double value)
{
    setFloatObject(value, QStringLiteral("MAIN_WIN_X"));
}

bool BLPlistCtrl::getMainWindowY(double* y) const
{
    const std::optional<double> v = number(QStringLiteral("MAIN_WIN_Y"));
    if (v && y)
        *y = *v;
    return v.has_value();
}
void BLPlistCtrl::setMainWindowY(double value)
{
    setFloatObject(value, QStringLiteral("MAIN_WIN_Y"));
}

QString BLPlistCtrl::getWorkFolderPathByMain() const
{
    const std::optional<QString> v = string(QStringLiteral("WORK_FOLDER"));
    return v ? *v : moviesFolder();
}
void BLPlistCtrl::setWorkFolderPathByMain(const QString& path)
{
    setStringObject(path, QStringLiteral("WORK_FOLDER"));
}
QString BLPlistCtrl::getWorkFolderPathBySub1() const
{
    const std::optional<QString> v = string(QStringLiteral("WORK_FOLDER_SUB1"));
    return v ? *v : moviesFolder();
}
void BLPlistCtrl::setWorkFolderPathBySub1(const QString& path)
{
    setStringObject(path, QStringLiteral("WORK_FOLDER_SUB1"));
}
QString BLPlistCtrl::getSelectFolderPathByMain() const
{
    return stringValue(QStringLiteral("SELECT_FOLDER"), QStringLiteral("."));
}
void BLPlistCtrl::setSelectFolderPathByMain(const QString& path)
{
    setStringObject(path, QStringLiteral("SELECT_FOLDER"));
}
QString BLPlistCtrl::getSelectFolderPathBySub1() const
{
    return stringValue(QStringLiteral("SELECT_FOLDER_SUB1"), QStringLiteral("."));
}
void BLPlistCtrl::setSelectFolderPathBySub1(const QString& path)
{
    setStringObject(path, QStringLiteral("SELECT_FOLDER_SUB1"));
}
QString BLPlistCtrl::getCopyFolder() const
{
    return stringValue(QStringLiteral("COPY_FOLDER"), QString());
}
void BLPlistCtrl::setCopyFolderPath(const QString& path)
{
    setStringObject(path, QStringLiteral("COPY_FOLDER"));
}
QString BLPlistCtrl::getExportFolder() const
{
    const std::optional<QString> v = string(QStringLiteral("EXPORT_FOLDER"));
    return v ? *v : moviesFolder();
}
void BLPlistCtrl::setExportFolderPath(const QString& path)
{
    setStringObject(path, QStringLiteral("EXPORT_FOLDER"));
}

int BLPlistCtrl::getDateFormat() const
{
    return intValue(QStringLiteral("DATE_FORMAT"), 0);
}
void BLPlistCtrl::setDateFormat(int value)
{
    setIntegerObject(value, QStringLiteral("DATE_FORMAT"));
}
QString BLPlistCtrl::getDatePauseChar() const
{
    return stringValue(QStringLiteral("DATE_PAUSE_CHAR"), QStringLiteral("/"));
}
void BLPlistCtrl::setDatePauseChar(const QString& value)
{
    setStringObject(value, QStringLiteral("DATE_PAUSE_CHAR"));
}
int BLPlistCtrl::getLowResolution() const
{
    return intValue(QStringLiteral("LOW_RESOLUTION"), 0);
}
void BLPlistCtrl::setLowResolution(int value)
{
    setIntegerObject(value, QStringLiteral("LOW_RESOLUTION"));
}
bool BLPlistCtrl::getVerifyCopy() const
{
    return intValue(QStringLiteral("VERIFY_COPY"), 1) != 0;
}
void BLPlistCtrl::setVerifyCopy(bool verify)
{
    setIntegerObject(verify ? 1 : 0, QStringLiteral("VERIFY_COPY"));
}

int BLPlistCtrl::getSortMode(int pane) const
{
    return std::clamp(intValue(pane == 0 ? QStringLiteral("SORT_MODE") : QStringLiteral("SORT_MODE_SUB1"), 0),
                      0, 3);
}
void BLPlistCtrl::setSortMode(int pane, int mode)
{
    setIntegerObject(mode, pane == 0 ? QStringLiteral("SORT_MODE") : QStringLiteral("SORT_MODE_SUB1"));
}
QByteArray BLPlistCtrl::getLayoutState(const QString& name) const
{
    return QByteArray::fromBase64(stringValue(QStringLiteral("LAYOUT_") + name, QString()).toLatin1());
}
void BLPlistCtrl::setLayoutState(const QString& name, const QByteArray& state)
{
    setStringObject(QString::fromLatin1(state.toBase64()), QStringLiteral("LAYOUT_") + name);
}
bool BLPlistCtrl::getShowPreview() const
{
    return intValue(QStringLiteral("SHOW_PREVIEW"), 1) != 0;
}
void BLPlistCtrl::setShowPreview(bool show)
{
    setIntegerObject(show ? 1 : 0, QStringLiteral("SHOW_PREVIEW"));
}

int BLPlistCtrl::getSystemDiskMax() const
{
    return intValue(QStringLiteral("SYSTEM_DISK_MAX"), 0);
}
int BLPlistCtrl::getLocalDiskMax() const
{
    return intValue(QStringLiteral("LOCAL_DISK_MAX"), 0);
}
double BLPlistCtrl::getFolderCapacity() const
{
    return floatValue(QStringLiteral("FOLDER_CAPACITY"), 4200.0);
}
int BLPlistCtrl::getCacheLifeTime() const
{
    return intValue(QStringLiteral("CACHE_LIFE_TIME"), 30);
}
int BLPlistCtrl::getSequentialNo() const
{
    return intValue(QStringLiteral("SEQUENTIAL_NO"), 0);
}
void BLPlistCtrl::setSequentialNo(int value)
{
    setIntegerObject(value == 9999 ? 0 : value, QStringLiteral("SEQUENTIAL_NO"));
}

#define CW_TUNING_GETTER(fn, key)                                                                            \
    QString BLPlistCtrl::fn() const                                                                          \
    {                                                                                                        \
        return stringValue(QStringLiteral(key), tuningDefault(key));                                         \
    }

CW_TUNING_GETTER(getViewerLogLevel, "VIEWER_LOG_LEVEL")
CW_TUNING_GETTER(getViewerLogFileSize, "VIEWER_LOG_FILE_SIZE")
CW_TUNING_GETTER(getViewerStartingDelay, "STARTING_DELAY")
CW_TUNING_GETTER(getViewerFrameTimeout, "FRAME_TIMEOUT")
CW_TUNING_GETTER(getViewerAudioQueueSize, "AUDIO_QUEUE_SIZE")
CW_TUNING_GETTER(getViewerVideoQueueSize, "VIDEO_QUEUE_SIZE")
CW_TUNING_GETTER(getViewerVideoRingNum, "VIDEO_RING_NUM")
CW_TUNING_GETTER(getViewerAudioQueueSleep, "AUDIO_QUEUE_SLEEP")
CW_TUNING_GETTER(getViewerVideoQueueSleep, "VIDEO_QUEUE_SLEEP")
CW_TUNING_GETTER(getViewerVideoRingSleep, "VIDEO_RING_SLEEP")
CW_TUNING_GETTER(getViewerDemuxSleep, "DEMUX_SLEEP")
CW_TUNING_GETTER(getViewerAudioDecodeSleep, "AUDIO_DECODE_SLEEP")
CW_TUNING_GETTER(getViewerAudioOutSleep, "AUDIO_OUT_SLEEP")
CW_TUNING_GETTER(getViewerVideoDecodeSleep, "VIDEO_DECODE_SLEEP")
CW_TUNING_GETTER(getViewerVideoOutSleep, "VIDEO_OUT_SLEEP")
CW_TUNING_GETTER(getViewerVideoPlayInfoInterval, "VIDEO_PLAY_INFO_INTERVAL")
CW_TUNING_GETTER(getViewerVideoFrameDropFlag, "VIDEO_FRAME_DROP_FLAG")
CW_TUNING_GETTER(getViewerJudgeTime, "JUDGE_TIME")
CW_TUNING_GETTER(getViewerJudgeMin, "JUDGE_MIN")
CW_TUNING_GETTER(getViewerJudgeDenominator, "JUDGE_DENOMINAOTR")
CW_TUNING_GETTER(getViewerJudgeDecodeFrameMin, "JUDGE_DECODE_FRAME_MIN")
CW_TUNING_GETTER(getViewerMaxCacheSizeOfVideoDecodeFrame, "MAX_CACHE_SIZE_OF_VIDEO_DECODE_FRAME")
CW_TUNING_GETTER(getViewerMaxQueueSizeOfVideoDecodeFrame, "MAX_QUEUE_SIZE_OF_VIDEO_DECODE_FRAME")
CW_TUNING_GETTER(getMpeg2tsLogLevel, "MPEG2TS_LOG_LEVEL")
CW_TUNING_GETTER(getMpeg2tsLogFileSize, "MPEG2TS_LOG_FILE_SIZE")

#undef CW_TUNING_GETTER

QString BLPlistCtrl::getViewerLogFilePath() const
{
    const std::optional<QString> v = string(QStringLiteral("VIEWER_LOG_FILE_PATH"));
    return v ? *v : QDir(cachesFolder()).filePath(QStringLiteral("Viewer.log"));
}

QString BLPlistCtrl::getMpeg2tsLogFilePath() const
{
    const std::optional<QString> v = string(QStringLiteral("MPEG2TS_LOG_FILE_PATH"));
    return v ? *v : QDir(cachesFolder()).filePath(QStringLiteral("Export.log"));
}
