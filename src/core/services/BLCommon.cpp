// BLCommon's shared services: dates, sizes, paths, names, special folders,
// notifications and messages. Files, and the helpers on takes, are in
// BLCommonFiles.cpp and card/BLCommonTakes.cpp.
#include "core/services/BLCommon.h"

#include "core/services/BLLocalizedStrings.h"
#include "core/services/BLLogCtrl.h"
#include "core/services/BLPlistCtrl.h"
#include "core/services/BLProgressThread.h"
#include "core/services/BLVolumeProvider.h"
#include "core/services/IMessagePresenter.h"
#include "core/services/SCNotificationCenter.h"
#include "core/services/SCNotificationNames.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QLocale>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QThread>
#include <QTimeZone>

#include <cerrno>
#include <fcntl.h>
#include <memory>
#include <optional>
#include <stdio.h>
#include <sys/stat.h>
#include <unistd.h>
#include <xxhash.h>

#include <algorithm>
#include <atomic>
#include <mutex>

namespace {
std::mutex g_sharedMutex;
BLCommon* g_shared = nullptr;
std::atomic<IMessagePresenter*> g_presenter{nullptr};

// XDG base folder from the environment, else HOME joined with the fallback.
QString xdgFolder(const char* variable, const QString& fallback)
{
    const QString value = qEnvironmentVariable(variable);
    if (!value.isEmpty() && QDir::isAbsolutePath(value))
        return QDir::cleanPath(value);
    return QDir::cleanPath(QDir::homePath() + QLatin1Char('/') + fallback);
}

QString ensureFolder(const QString& path)
{
    if (path.isEmpty())
        return {};
    if (QDir(path).exists() || QDir().mkpath(path))
        return path;
    return {};
}

// The folder names of a path without their extensions ("ABC.d" -> "ABC").
QString withoutExtension(const QString& name)
{
    const qsizetype dot = name.lastIndexOf(QLatin1Char('.'));
    return dot > 0 ? name.left(dot) : name;
}

// "+09:00" style offset of a date in its own time zone.
QString utcOffsetText(const QDateTime& date)
{
    const int offset = date.offsetFromUtc();
    const int minutes = qAbs(offset) / 60;
    return QString::asprintf("%c%02d:%02d", offset < 0 ? '-' : '+', minutes / 60, minutes % 60);
}
} // namespace

BLCommon* BLCommon::sharedCtrl()
{
    std::lock_guard lock(g_sharedMutex);
    if (!g_shared)
        g_shared = new BLCommon();
    return g_shared;
}

void BLCommon::releaseCtrl()
{
    std::lock_guard lock(g_sharedMutex);
    delete g_shared;
    g_shared = nullptr;
}

// ---- dates ----

QDateTime BLCommon::makeCalendarDateFromString(const QString& text)
{
    static const QRegularExpression kPattern(QStringLiteral(
        "^(\\d{4})-(\\d{2})-(\\d{2})T(\\d{2})(\\d{2})(\\d{2})(?:([+-])(\\d{2})(\\d{2})|[Zz])$"));
    QString compact = text;
    compact.remove(QLatin1Char(':'));
    const QRegularExpressionMatch m = kPattern.match(compact);
    if (!m.hasMatch())
        return {};
    const QDate date(m.captured(1).toInt(), m.captured(2).toInt(), m.captured(3).toInt());
    const QTime time(m.captured(4).toInt(), m.captured(5).toInt(), m.captured(6).toInt());
    if (!date.isValid() || !time.isValid())
        return {};
    if (m.captured(7).isEmpty())
        return QDateTime(date, time, QTimeZone::utc());
    const int offset = (m.captured(8).toInt() * 60 + m.captured(9).toInt()) * 60;
    return QDateTime(date, time, QTimeZone(m.captured(7) == u"-" ? -offset : offset));
}

QString BLCommon::getGmtTm()
{
    return getXmlFormatDateString(QDateTime::currentDateTime());
}

QString BLCommon::getXmlFormatDateString(const QDateTime& date)
{
    if (!date.isValid())
        return {};
    return date.toString(QStringLiteral("yyyy-MM-dd'T'HH:mm:ss")) + utcOffsetText(date);
}

QString BLCommon::makeDateStringFromCalendarData(const QDateTime& date, int order, const QString& pause)
{
    const QString y = date.toString(QStringLiteral("yyyy"));
    const QString m = date.toString(QStringLiteral("MM"));
    const QString d = date.toString(QStringLiteral("dd"));
    switch (order) {
    case 2:
        return d + pause + m + pause + y;
    case 1:
        return m + pause + d + pause + y;
    default:
        return y + pause + m + pause + d;
    }
}

QString BLCommon::makeDateTimeStringFromCalendarData(const QDateTime& date)
{
    if (!date.isValid())
        return QString();
    const BLPlistCtrl* plist = BLPlistCtrl::sharedCtrl();
    return makeDateStringFromCalendarData(date, plist->getDateFormat(), plist->getDatePauseChar()) +
           date.toString(QStringLiteral(" HH:mm"));
}

QString BLCommon::getSystemLanguage()
{
    const QLocale locale = QLocale::system();
    if (locale.language() == QLocale::C)
        return QStringLiteral("en");
    return locale.name().section(QLatin1Char('_'), 0, 0);
}

// ---- sizes ----

QString BLCommon::sizeText(qint64 size)
{
    return convertSizeStr(size, QStringLiteral("#,##0.0"), size < (qint64(1) << 30) ? 2 : 3);
}

QString BLCommon::convertSizeStr(qint64 size, const QString& format, int mode)
{
    static const char* const kUnits[] = {nullptr, "LOCALIZED_TYPE_KB", "LOCALIZED_TYPE_MB",
                                         "LOCALIZED_TYPE_GB", "LOCALIZED_TYPE_TB"};
    mode = qBound(0, mode, 4);
    const qsizetype dot = format.indexOf(QLatin1Char('.'));
    const int decimals = dot < 0 ? 0 : int(format.size() - dot - 1);
    qint64 scale = 1;
    for (int i = 0; i < decimals; ++i)
        scale *= 10;

    // Whole-unit steps first; the last step keeps the decimals, rounded down.
    qint64 value = size;
    for (int i = 1; i < mode; ++i)
        value /= 1024;
    __int128 scaled = __int128(value) * scale;
    if (mode > 0)
        scaled /= 1024;
    const qint64 whole = qint64(scaled / scale);
    const qint64 fraction = qint64(scaled % scale);

    QLocale locale;
    locale.setNumberOptions(format.contains(QLatin1Char(','))
                                ? locale.numberOptions() & ~QLocale::OmitGroupSeparator
                                : locale.numberOptions() | QLocale::OmitGroupSeparator);
    QString text = locale.toString(whole);
    if (decimals > 0)
        text += locale.decimalPoint() +
                QString::number(qAbs(fraction)).rightJustified(decimals, QLatin1Char('0'));
    if (kUnits[mode])
        text += QLatin1Char(' ') + BLLocalizedString(QString::fromLatin1(kUnits[mode]));
    return text;
}

// ---- folders and paths ----

QString BLCommon::makeFilePath(const QString& base, const QStringList& components)
{
    QString path = base;
    for (const QString& component : components) {
        const QString part = removalDot(component);
        if (part.isEmpty())
            continue;
        if (!path.endsWith(QLatin1Char('/')))
            path += QLatin1Char('/');
        path += part.startsWith(QLatin1Char('/')) ? part.mid(1) : part;
    }
    static const QRegularExpression kSlashes(QStringLiteral("/{2,}"));
    path.replace(kSlashes, QStringLiteral("/"));
    if (path.size() > 1 && path.endsWith(QLatin1Char('/')))
        path.chop(1);
    return path;
}

QString BLCommon::addDot(const QString& reference)
{
    if (reference.startsWith(QLatin1Char('.')))
        return reference;
    return reference.startsWith(QLatin1Char('/')) ? QLatin1Char('.') + reference
                                                  : QStringLiteral("./") + reference;
}

QString BLCommon::removalDot(const QString& reference)
{
    return reference.startsWith(QLatin1Char('.')) ? reference.mid(1) : reference;
}

bool BLCommon::isClipReference(const QString& reference)
{
    const QString relative = reference.startsWith(QLatin1String("./")) ? reference.mid(2) : reference;
    return relative.section(QLatin1Char('/'), 0, 0, QString::SectionSkipEmpty)
               .compare(QLatin1String("CLPR"), Qt::CaseInsensitive) == 0;
}

QString BLCommon::standardizePath(const QString& path)
{
    if (path == QLatin1String("~") || path.startsWith(QLatin1String("~/")))
        return QDir::cleanPath(QDir::homePath() + path.mid(1));
    return QDir::cleanPath(path);
}

QString BLCommon::getPathOfBPAV(const QString& folder)
{
    const QString direct = makeFilePath(folder, {QStringLiteral("BPAV")});
    if (isFolder(direct))
        return direct;
    const QString card = makeFilePath(folder, {QStringLiteral("PRIVATE/ORX/BPAV")});
    return isFolder(card) ? card : direct;
}

QString BLCommon::visibleFolderNameOf(const QString& folder)
{
    const QString bpav = getPathOfBPAV(folder);
    return bpav.endsWith(QLatin1String("/PRIVATE/ORX/BPAV")) ? QStringLiteral("PRIVATE")
                                                             : QStringLiteral("BPAV");
}

bool BLCommon::isBPAVFolder(const QString& folder)
{
    return isFolder(getPathOfBPAV(folder));
}

QString BLCommon::getVolumeName(const QString& path)
{
    const QString clean = QDir::cleanPath(path);
    QString best = QStringLiteral("/");
    const QList<BLVolume> volumes = BLVolumeProvider::current()->mountedVolumes();
    for (const BLVolume& volume : volumes) {
        const QString root = QDir::cleanPath(volume.rootPath);
        if (root == QLatin1String("/") || root.size() < best.size())
            continue;
        if (clean == root || clean.startsWith(root + QLatin1Char('/')))
            best = root + QLatin1Char('/');
    }
    return best;
}

bool BLCommon::compareVolumes(const QString& path, const QString& path2)
{
    return getVolumeName(path) == getVolumeName(path2);
}

bool BLCommon::isCLPRFolder(const QString& folder)
{
    const QString clpr = QDir(getPathOfBPAV(folder)).filePath(QStringLiteral("CLPR"));
    return isFolder(clpr) || createNewFolderWithParent(clpr);
}

bool BLCommon::isTAKRFolder(const QString& folder)
{
    const QString takr = QDir(getPathOfBPAV(folder)).filePath(QStringLiteral("TAKR"));
    return isFolder(takr) || createNewFolderWithParent(takr);
}

bool BLCommon::createFixedFolders(const QString& folder)
{
    const QString bpav = getPathOfBPAV(folder);
    for (const QString& path :
         {bpav, QDir(bpav).filePath(QStringLiteral("CLPR")), QDir(bpav).filePath(QStringLiteral("TAKR"))})
        if (!isFolder(path) && !createNewFolder(path))
            return false;
    return true;
}

// ---- names ----

bool BLCommon::checkHyphenationCharacter(const QString& name)
{
    static const QString kForbidden = QStringLiteral(":/\\><?*\"|");
    if (name.startsWith(QLatin1Char('.')))
        return false;
    for (const QChar c : name)
        if (kForbidden.contains(c))
            return false;
    return checkReturnCode(name);
}

bool BLCommon::checkReturnCode(const QString& name)
{
    return !name.contains(QLatin1Char('\r')) && !name.contains(QLatin1Char('\n')) &&
           !name.contains(QChar(0x00A5));
}

bool BLCommon::checkHyphenationCharacterForPath(const QString& path)
{
    const QStringList names = path.split(QLatin1Char('/'), Qt::SkipEmptyParts);
    for (qsizetype i = names.size() - 1; i >= 0; --i)
        if (!checkHyphenationCharacter(withoutExtension(names.at(i))))
            return false;
    return true;
}

bool BLCommon::checkNotInput(const QString& text)
{
    return !text.isEmpty();
}

bool BLCommon::checkSameName(const QString& folder, const QString& name)
{
    const QStringList names = getFileList(folder);
    for (const QString& entry : names)
        if (entry.compare(name, Qt::CaseInsensitive) == 0)
            return false;
    return true;
}

QString BLCommon::updateTakeUri(const QString& reference, int number)
{
    QStringList parts = reference.split(QLatin1Char('/'));
    if (parts.size() < 2)
        return reference;
    for (QString& part : parts)
        if (part == QLatin1String("CLPR"))
            part = QStringLiteral("TAKR");
    QString& folder = parts[parts.size() - 2];
    folder += QString::asprintf("U%02d", number);
    if (QFileInfo(parts.last()).suffix().compare(QLatin1String("XML"), Qt::CaseInsensitive) == 0)
        parts.last() = folder + QStringLiteral("M01.XML");
    return parts.join(QLatin1Char('/'));
}

QString BLCommon::updateSMIUri(const QString& reference, int number)
{
    const qsizetype slash = reference.lastIndexOf(QLatin1Char('/'));
    const QString folder = reference.left(slash + 1);
    return folder + withoutExtension(reference.mid(slash + 1)) + QString::asprintf("U%02d.SMI", number);
}

// ---- special folders ----

QString BLCommon::createSpFolderPath(const QString& folderType) const
{
    if (folderType == QLatin1String("pref"))
        return ensureFolder(xdgFolder("XDG_CONFIG_HOME", QStringLiteral(".config")));
    if (folderType == QLatin1String("logs"))
        return ensureFolder(xdgFolder("XDG_STATE_HOME", QStringLiteral(".local/state")));
    if (folderType == QLatin1String("mdoc"))
        return ensureFolder(QStandardPaths::writableLocation(QStandardPaths::MoviesLocation));
    return {};
}

QString BLCommon::searchFolderPath(int kind) const
{
    switch (kind) {
    case 0:
        return createSpFolderPath(QStringLiteral("logs"));
    case 1:
        return createSpFolderPath(QStringLiteral("pref"));
    case 2:
        return createSpFolderPath(QStringLiteral("mdoc"));
    case 3:
        return ensureFolder(QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation));
    default:
        return {};
    }
}

void BLCommon::sendNotification(const void* sender, const QString& name, const QVariantMap& userInfo)
{
    SCNotificationCenter::defaultCenter()->enqueue(SCNotification{name, sender, userInfo}, true);
}

void BLCommon::sendNotificationNotCoalesce(const void* sender, const QString& name,
                                           const QVariantMap& userInfo)
{
    SCNotificationCenter::defaultCenter()->enqueue(SCNotification{name, sender, userInfo}, false);
}

void BLCommon::sendNotificationNow(const void* sender, const QString& name, const QVariantMap& userInfo)
{
    SCNotificationCenter::defaultCenter()->postNow(SCNotification{name, sender, userInfo});
}

void BLCommon::sendDidDeleteNotification(const void* sender, const QStringList& delUmid,
                                         const QString& selectFolder)
{
    sendNotification(sender, SC::SCTakeDidDeleteNotification,
                     {{SC::SCDeleteTakeUmidsKey, delUmid}, {SC::SCDeleteSelectFolderKey, selectFolder}});
}

void BLCommon::sendDidDelNotificationNotCoalesce(const void* sender, const QStringList& delUmid,
                                                 const QString& selectFolder)
{
    sendNotificationNotCoalesce(
        sender, SC::SCTakeDidDeleteNotification,
        {{SC::SCDeleteTakeUmidsKey, delUmid}, {SC::SCDeleteSelectFolderKey, selectFolder}});
}

void BLCommon::setMessagePresenter(IMessagePresenter* presenter)
{
    g_presenter = presenter;
}

IMessagePresenter* BLCommon::messagePresenter()
{
    return g_presenter;
}

int BLCommon::messageBox(const QString& message, const QString& infoMesse,
                         int /*style: always informational*/, int btnPattern, const QStringList& messageArgs)
{
    QString text = BLLocalizedString(message);
    for (qsizetype i = messageArgs.size() - 1; i >= 0; --i)
        text.replace(QLatin1Char('%') + QString::number(i + 1), messageArgs.at(i));
    SCAlert alert{
        message, infoMesse, text, infoMesse.isEmpty() ? QString() : BLLocalizedString(infoMesse), {}};
    QStringList& buttons = alert.buttons;
    for (int no = 0; no < 2; ++no) {
        const QString label = getBtnLabel(btnPattern, no);
        if (!label.isEmpty())
            buttons << label;
    }
    if (buttons.isEmpty())
        buttons << getBtnLabel(0, 0);
    IMessagePresenter* presenter = g_presenter;
    if (!presenter)
        return IMessagePresenter::kFirstButton;
    // Alerts are windows: a worker's alert is shown by the main thread while
    // the worker waits for the answer.
    QCoreApplication* app = QCoreApplication::instance();
    if (!app || QThread::currentThread() == app->thread())
        return presenter->showAlert(alert);
    int answer = IMessagePresenter::kFirstButton;
    QMetaObject::invokeMethod(
        app, [&] { answer = presenter->showAlert(alert); }, Qt::BlockingQueuedConnection);
    return answer;
}

QString BLCommon::getBtnLabel(int pattern, int no) const
{
    static const char* const kKeys[3][2] = {
        {"BTN_STYLE_OK", nullptr},
        {"BTN_STYLE_OK", "BTN_STYLE_CANCEL"},
        {"BTN_STYLE_YES", "BTN_STYLE_NO"},
    };
    if (pattern < 0 || pattern > 2 || no < 0 || no > 1 || !kKeys[pattern][no])
        return QString();
    return BLLocalizedString(QString::fromLatin1(kKeys[pattern][no]));
}
