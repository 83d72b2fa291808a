#include "core/common/BLCommon.h"

#include "core/common/BLLocalizedStrings.h"
#include "core/common/IMessagePresenter.h"
#include "core/common/SCNotificationCenter.h"

#include <QDir>
#include <QStandardPaths>

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

void BLCommon::sendNotificationNotCoalesce(const void* sender, const QString& name, const QVariantMap& userInfo)
{
    SCNotificationCenter::defaultCenter()->enqueue(SCNotification{name, sender, userInfo}, false);
}

void BLCommon::sendNotificationNow(const void* sender, const QString& name, const QVariantMap& userInfo)
{
    SCNotificationCenter::defaultCenter()->postNow(SCNotification{name, sender, userInfo});
}

void BLCommon::setMessagePresenter(IMessagePresenter* presenter)
{
    g_presenter = presenter;
}

IMessagePresenter* BLCommon::messagePresenter()
{
    return g_presenter;
}

int BLCommon::messageBox(const QString& message, const QString& infoMesse, int /*style: always informational*/,
                         int btnPattern)
{
    SCAlert alert{message, infoMesse, BLLocalizedString(message),
                  infoMesse.isEmpty() ? QString() : BLLocalizedString(infoMesse), {}};
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
    return presenter->showAlert(alert);
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
