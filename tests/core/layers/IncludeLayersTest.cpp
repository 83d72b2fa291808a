// Reads every #include under src/ and holds the layers to their order:
// core's folders from services up to app, each including only its own layer
// and those below; core never reaching the windows, FFmpeg or QtWidgets;
// media never reaching core or the windows.
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QLibraryInfo>
#include <QRegularExpression>
#include <QSet>
#include <QStringList>
#include <gtest/gtest.h>

namespace {

// Lowest first.
const QStringList kCoreLayers = {QStringLiteral("services"), QStringLiteral("formats"),
                                 QStringLiteral("card"), QStringLiteral("operations"), QStringLiteral("app")};

QString sourceRoot()
{
    return QStringLiteral(CLIPWRIGHT_SOURCE_DIR "/src");
}

struct Include
{
    QString file; // relative to src/
    QString target;
    bool quoted;
};

QList<Include> includesUnder(const QString& root)
{
    static const QRegularExpression pattern(QStringLiteral(R"(^\s*#\s*include\s*([<"])([^>"]+)[>"])"),
                                            QRegularExpression::MultilineOption);
    QList<Include> result;
    QDirIterator it(root, {QStringLiteral("*.h"), QStringLiteral("*.cpp")}, QDir::Files,
                    QDirIterator::Subdirectories);
    const QDir base(root);
    while (it.hasNext()) {
        const QString path = it.next();
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly))
            continue;
        const QString text = QString::fromUtf8(file.readAll());
        for (auto m = pattern.globalMatch(text); m.hasNext();) {
            const auto match = m.next();
            result.append(
                {base.relativeFilePath(path), match.captured(2), match.captured(1) == QLatin1String("\"")});
        }
    }
    return result;
}

// The QtWidgets headers by name (<QDialog>, <QtWidgets/qdialog.h>, ...).
QSet<QString> widgetHeaders()
{
    QSet<QString> names;
    const QDir dir(QLibraryInfo::path(QLibraryInfo::HeadersPath) + QStringLiteral("/QtWidgets"));
    for (const QString& name : dir.entryList(QDir::Files))
        names.insert(name);
    return names;
}

int coreLayerOf(const QString& path) // "core/<layer>/..." or -1
{
    const QStringList parts = path.split(QLatin1Char('/'));
    return parts.size() > 2 && parts[0] == QLatin1String("core") ? int(kCoreLayers.indexOf(parts[1])) : -1;
}

// The rule an include breaks, or "" when it keeps to the layers.
QString brokenRule(const Include& inc, const QSet<QString>& widgets)
{
    const QString top = inc.file.section(QLatin1Char('/'), 0, 0);
    const QString targetTop = inc.target.section(QLatin1Char('/'), 0, 0);
    if (top == QLatin1String("core")) {
        const int own = coreLayerOf(inc.file);
        if (own < 0)
            return QStringLiteral("every file of core lies in one of the layers %1")
                .arg(kCoreLayers.join(u", "));
        if (inc.quoted && targetTop == QLatin1String("ui"))
            return QStringLiteral("core never includes the windows (ui/)");
        if (inc.quoted && targetTop == QLatin1String("core")) {
            const int target = coreLayerOf(inc.target);
            if (target > own)
                return QStringLiteral("core/%1 may include only %2")
                    .arg(kCoreLayers[own], kCoreLayers.mid(0, own + 1).join(u", "));
        }
        if (!inc.quoted &&
            (inc.target.startsWith(QLatin1String("libav")) || inc.target.startsWith(QLatin1String("libsw"))))
            return QStringLiteral("core reaches FFmpeg only through media's own interfaces");
        if (!inc.quoted &&
            (inc.target.startsWith(QLatin1String("QtWidgets/")) || widgets.contains(inc.target)))
            return QStringLiteral("core never includes QtWidgets; windows belong in ui/");
    }
    if (top == QLatin1String("media") && inc.quoted &&
        (targetTop == QLatin1String("core") || targetTop == QLatin1String("ui")))
        return QStringLiteral("media is below core and ui and includes neither");
    return {};
}

TEST(IncludeLayers, EveryIncludeRunsDownward)
{
    const QList<Include> includes = includesUnder(sourceRoot());
    ASSERT_GT(includes.size(), 1000) << "the sources were not found under " << sourceRoot().toStdString();
    const QSet<QString> widgets = widgetHeaders();
    ASSERT_TRUE(widgets.contains(QStringLiteral("QDialog"))) << "the QtWidgets headers were not found";

    QStringList broken;
    for (const Include& inc : includes) {
        const QString rule = brokenRule(inc, widgets);
        if (!rule.isEmpty())
            broken << QStringLiteral("src/%1 includes %2: %3").arg(inc.file, inc.target, rule);
    }
    EXPECT_TRUE(broken.isEmpty()) << broken.join(QLatin1Char('\n')).toStdString();
}

} // namespace
