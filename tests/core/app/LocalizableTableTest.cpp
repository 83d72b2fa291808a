#include "core/services/BLLocalizedStrings.h"

#include <QFile>
#include <QRegularExpression>

#include <gtest/gtest.h>

#include <utility>

namespace {
// Every message, label and button key the program's operations use.
const QStringList kKeys =
    QStringLiteral(
        "BTN_STYLE_CANCEL BTN_STYLE_NO BTN_STYLE_OK BTN_STYLE_YES LOCALIZED_ALL_COPY_TITLE "
        "LOCALIZED_COPY_TITLE LOCALIZED_FOLDER_CHANGE_TITLE LOCALIZED_FOLDER_CREATE_TITLE "
        "LOCALIZED_FOLDER_MESSAGE LOCALIZED_MPEG2TSCONVERT_EXPORT LOCALIZED_MPEG2TSCONVERT_TO_FILE "
        "LOCALIZED_MPEG2TSCONVERT_TO_PATH LOCALIZED_PREVIEW_MONAURAL LOCALIZED_PREVIEW_STEREO "
        "LOCALIZED_PROPERTY_CHANNEL LOCALIZED_PROPERTY_SPANNING_NO LOCALIZED_PROPERTY_SPANNING_YES "
        "LOCALIZED_TAKEDATA_TOOLTIP_ASPECT LOCALIZED_TAKEDATA_TOOLTIP_DURATION "
        "LOCALIZED_TAKEDATA_TOOLTIP_FORMAT LOCALIZED_TAKEDATA_TOOLTIP_RATE "
        "LOCALIZED_TAKEDATA_TOOLTIP_RESOLUTION LOCALIZED_TAKEDATA_TOOLTIP_SIZE LOCALIZED_TYPE_GB "
        "LOCALIZED_TYPE_KB LOCALIZED_TYPE_MB LOCALIZED_TYPE_TB MSG_111_3225 MSG_631_3166 MSG_632_3100 "
        "MSG_632_3101 MSG_632_3169 MSG_632_3199 MSG_632_3236 MSG_633_3183 MSG_633_3191 MSG_637_3104 "
        "MSG_641_3105 MSG_641_3106 MSG_641_3107 MSG_641_3108 MSG_641_3109 MSG_641_3116 MSG_641_3117 "
        "MSG_642_3110 MSG_642_3111 MSG_642_3112 MSG_642_3114 MSG_642_3158 MSG_642_3168 MSG_643_3115 "
        "MSG_644_3173 MSG_644_3186 MSG_644_3187 MSG_644_3197 MSG_645_3123 MSG_648_3124 MSG_648_3126 "
        "MSG_648_3127 MSG_648_3159 MSG_648_3160 MSG_648_3161 MSG_648_3162 MSG_648_3163 MSG_648_3188 "
        "MSG_6510_3193 MSG_6510_3200 MSG_6510_3203 MSG_6510_3204 MSG_6510_3205 MSG_6510_3206 "
        "MSG_6510_3207 MSG_6510_3208 MSG_6510_3209 MSG_6510_3210 MSG_6510_3211 MSG_6510_3212 "
        "MSG_6510_3213 MSG_6510_3214 MSG_6510_3219 MSG_6510_3220 MSG_6510_3221 MSG_6510_3223 "
        "MSG_6510_3225 MSG_6510_3226 MSG_6510_3227 MSG_6510_3228 MSG_6510_3229 MSG_6510_3231 "
        "MSG_6512_3196 MSG_6512_3227 MSG_651_3129 MSG_651_3130 MSG_651_3131 MSG_651_3132 MSG_651_3146 "
        "MSG_651_3147 MSG_651_3232 MSG_652_3132 MSG_652_3133 MSG_652_3134 MSG_652_3148 MSG_652_3149 "
        "MSG_653_3135 MSG_653_3177 MSG_653_3178 MSG_654_3175 MSG_654_3179 MSG_655_3142 MSG_655_3143 "
        "MSG_655_3164 MSG_655_3200 MSG_655_3202 MSG_673_3150 MSG_673_3151 MSG_673_3152 MSG_673_3153 "
        "MSG_673_3154 MSG_673_3155 MSG_673_3232 MSG_732_3176 MSG_732_3230")
        .split(' ');

QString tableText()
{
    QFile file(":/Localizable.txt");
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}
} // namespace

TEST(LocalizableTableTest, EveryKeyHasAText)
{
    ASSERT_EQ(kKeys.size(), 122);
    QStringList missing;
    for (const QString& k : kKeys) {
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

    // Formats filled by the program: the disk-use limit (limit, needed, free,
    // use) and the folder that already fits (name, capacity, size).
    const QString limit = BLLocalizedStrings::text("MSG_6510_3193");
    EXPECT_EQ(limit.arg(90).arg("6.0 GB").arg("15.0 GB").arg(91).count(QRegularExpression("%[0-9]")), 0);
    for (const char* marker : {"%1", "%2", "%3", "%4"})
        EXPECT_TRUE(limit.contains(marker)) << marker;
    const QString fits = BLLocalizedStrings::text("MSG_653_3178");
    for (const char* marker : {"%1", "%2", "%3"})
        EXPECT_TRUE(fits.contains(marker)) << marker;
    EXPECT_FALSE(fits.contains("%4"));

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
    EXPECT_EQ(BLLocalizedStrings::text("LOCALIZED_PROPERTY_CHANNEL"), " ch");
}
