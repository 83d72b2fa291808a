#pragma once

#include <QHash>
#include <QString>

// The localisation table: "KEY = text" lines from a resource file, loaded once.
// Text escapes "\n" and "\t" are honoured, and a text in double quotes keeps
// its leading and trailing blanks ("Size: "); a key without an entry shows itself.
class BLLocalizedStrings
{
public:
    static QString text(const QString& key);
    // Whether the table holds an entry for the key.
    static bool contains(const QString& key);
    // Parses "KEY = text" lines; blank lines and lines starting with "#" are skipped.
    static QHash<QString, QString> parse(const QString& content);

private:
    static const QHash<QString, QString>& table();
};

// Shorthand used by controllers and views.
inline QString BLLocalizedString(const QString& key)
{
    return BLLocalizedStrings::text(key);
}
