#include "core/services/BLLocalizedStrings.h"

#include <QFile>

QHash<QString, QString> BLLocalizedStrings::parse(const QString& content)
{
    QHash<QString, QString> result;
    const QStringList lines = content.split(QLatin1Char('\n'));
    for (QString line : lines) {
        if (line.endsWith(QLatin1Char('\r')))
            line.chop(1);
        const QString trimmed = line.trimmed();
        if (trimmed.isEmpty() || trimmed.startsWith(QLatin1Char('#')))
            continue;
        const qsizetype eq = line.indexOf(QLatin1Char('='));
        if (eq <= 0)
            continue;
        const QString key = line.left(eq).trimmed();
        QString value = line.mid(eq + 1).trimmed();
        // A text in double quotes keeps its leading and trailing blanks.
        if (value.size() >= 2 && value.startsWith(QLatin1Char('"')) && value.endsWith(QLatin1Char('"')))
            value = value.mid(1, value.size() - 2);
        value.replace(QLatin1String("\\n"), QLatin1String("\n"));
        value.replace(QLatin1String("\\t"), QLatin1String("\t"));
        if (!key.isEmpty())
            result.insert(key, value);
    }
    return result;
}

const QHash<QString, QString>& BLLocalizedStrings::table()
{
    static const QHash<QString, QString> loaded = [] {
        QFile file(QStringLiteral(":/Localizable.txt"));
        if (!file.open(QIODevice::ReadOnly))
            return QHash<QString, QString>();
        return parse(QString::fromUtf8(file.readAll()));
    }();
    return loaded;
}

QString BLLocalizedStrings::text(const QString& key)
{
    const auto& t = table();
    const auto it = t.constFind(key);
    return it == t.constEnd() ? key : it.value();
}

bool BLLocalizedStrings::contains(const QString& key)
{
    return table().contains(key);
}
