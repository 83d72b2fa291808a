#include "core/services/BLLocalizedStrings.h"

#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>
#include <QSet>

#include <gtest/gtest.h>

#include <utility>

namespace {
QString tableText()
{
    QFile file(":/Localizable.txt");
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}
} // namespace

TEST(LocalizableTableTest, EveryKeyTheSourcesNameHasAText)
{
    static const QRegularExpression key(
        QStringLiteral("\"(MSG_[0-9]+_[0-9]+|BTN_STYLE_[A-Z]+|LOCALIZED_[A-Z0-9_]+)\""));
    QSet<QString> keys;
    for (const char* folder : {"/src", "/tools"}) {
        QDirIterator it(QString::fromUtf8(CLIPWRIGHT_SOURCE_DIR) + folder, {"*.cpp", "*.h"}, QDir::Files,
                        QDirIterator::Subdirectories);
        while (it.hasNext()) {
            QFile file(it.next());
            ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << file.fileName().toStdString();
            for (const QRegularExpressionMatch& match : key.globalMatch(QString::fromUtf8(file.readAll())))
                keys.insert(match.captured(1));
        }
    }
    ASSERT_GT(keys.size(), 100); // the scan found the program's keys
    QStringList missing;
    for (const QString& k : std::as_const(keys)) {
        if (!BLLocalizedStrings::contains(k) || BLLocalizedStrings::text(k).trimmed().isEmpty())
            missing << k;
    }
    EXPECT_TRUE(missing.isEmpty()) << missing.join(' ').toStdString();
}

TEST(LocalizableTableTest, EachKeyIsDefinedOnceAndFormatsCarryTheirPlaceholders)
{
    // A second line for a key would silently replace the first. A message
    // that takes values says which in a comment line above it ("# %1 ...").
    QStringList seen;
    QStringList duplicates;
    QStringList withValues;
    bool documented = false;
    for (const QString& line : tableText().split('\n')) {
        const qsizetype eq = line.indexOf('=');
        if (line.trimmed().startsWith('#')) {
            documented = line.contains("%1");
            continue;
        }
        if (eq <= 0)
            continue;
        const QString key = line.left(eq).trimmed();
        if (seen.contains(key))
            duplicates << key;
        seen << key;
        if (std::exchange(documented, false))
            withValues << key;
    }
    EXPECT_TRUE(duplicates.isEmpty()) << duplicates.join(' ').toStdString();

    // Only those show markers; the others may not show a stray one.
    for (const QString& key : std::as_const(seen)) {
        const bool markers = BLLocalizedStrings::text(key).contains(QRegularExpression("%[0-9@]"));
        EXPECT_EQ(markers, withValues.contains(key)) << key.toStdString();
    }
}

TEST(LocalizableTableTest, QuotedTextsKeepTheirBlanksAndEscapesWork)
{
    const QHash<QString, QString> parsed =
        BLLocalizedStrings::parse("# comment\r\nUNIT = \" KB\"\r\nPLAIN =   two words  \nLINES = "
                                  "a\\nb\nQUOTE = say \"hi\"\n\nbroken line\n= no key\n");
    EXPECT_EQ(parsed.value("UNIT"), " KB");
    EXPECT_EQ(parsed.value("PLAIN"), "two words");
    EXPECT_EQ(parsed.value("LINES"), "a\nb");
    EXPECT_EQ(parsed.value("QUOTE"), "say \"hi\"");
    EXPECT_EQ(parsed.size(), 4);
}
