#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>
#include <QStringList>
#include <QXmlStreamReader>

#include <string>

namespace cwtest {

// The structure of an XML text, one line per element, text and comment,
// indented by depth: the qualified name, then namespace declarations and
// attributes in file order. Whitespace between elements is left out, so two
// texts with the same outline differ only in formatting. Empty on a parse error.
inline QStringList xmlOutline(const QByteArray& xml)
{
    QStringList lines;
    QXmlStreamReader reader(xml);
    int depth = 0;
    while (!reader.atEnd()) {
        switch (reader.readNext()) {
        case QXmlStreamReader::StartElement: {
            QString line = QString(depth * 2, QLatin1Char(' ')) + reader.qualifiedName().toString();
            for (const QXmlStreamNamespaceDeclaration& ns : reader.namespaceDeclarations())
                line += ns.prefix().isEmpty()
                            ? QStringLiteral(" xmlns=\"%1\"").arg(ns.namespaceUri())
                            : QStringLiteral(" xmlns:%1=\"%2\"").arg(ns.prefix(), ns.namespaceUri());
            for (const QXmlStreamAttribute& attribute : reader.attributes())
                line += QStringLiteral(" %1=\"%2\"").arg(attribute.qualifiedName(), attribute.value());
            lines << line;
            ++depth;
            break;
        }
        case QXmlStreamReader::EndElement:
            --depth;
            break;
        case QXmlStreamReader::Characters:
            if (!reader.isWhitespace())
                lines << QString(depth * 2, QLatin1Char(' ')) + QLatin1Char('"') + reader.text().toString() + QLatin1Char('"');
            break;
        case QXmlStreamReader::Comment:
            lines << QString(depth * 2, QLatin1Char(' ')) + QStringLiteral("<!--%1-->").arg(reader.text());
            break;
        default:
            break;
        }
    }
    return reader.hasError() ? QStringList() : lines;
}

// Lines as one text, for comparisons that print readably when they fail.
inline std::string joined(const QStringList& lines)
{
    return lines.join(QLatin1Char('\n')).toStdString();
}

inline QByteArray readFileBytes(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

inline QStringList fileOutline(const QString& path)
{
    return xmlOutline(readFileBytes(path));
}

} // namespace cwtest
