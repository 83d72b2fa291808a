#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>
#include <QStringList>
#include <QRegularExpression>
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

// Documents a metadata reader must refuse, each with the given root element:
// an external entity, an entity-expansion bomb, invalid UTF-8, a broken tag.
inline QList<QByteArray> hostileDocuments(const QByteArray& root)
{
    return {
        "<?xml version=\"1.0\"?><!DOCTYPE " + root + " [<!ENTITY x SYSTEM \"file:///etc/passwd\">]><" + root +
            " a=\"&x;\">&x;</" + root + ">",
        "<?xml version=\"1.0\"?><!DOCTYPE " + root +
            " [<!ENTITY a \"aaaaaaaaaa\"><!ENTITY b \"&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;\">"
            "<!ENTITY c \"&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;\"><!ENTITY d \"&c;&c;&c;&c;&c;&c;&c;&c;&c;&c;\">"
            "<!ENTITY e \"&d;&d;&d;&d;&d;&d;&d;&d;&d;&d;\"><!ENTITY f \"&e;&e;&e;&e;&e;&e;&e;&e;&e;&e;\">"
            "<!ENTITY g \"&f;&f;&f;&f;&f;&f;&f;&f;&f;&f;\">]><" + root + " uri=\"&g;&g;&g;&g;&g;&g;&g;&g;\">&g;</" +
            root + ">",
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?><" + root + " uri=\"\xc3\x28\xfe\"/>",
        "<" + root + "><a></" + root + ">",
    };
}

// Writes a document whose one attribute value is 50 MB, in pieces.
inline bool writeHugeAttributeDocument(const QString& path, const QByteArray& root)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write("<" + root + " uri=\"") < 0)
        return false;
    const QByteArray piece(1024 * 1024, 'x');
    for (int i = 0; i < 50; ++i)
        if (file.write(piece) != piece.size())
            return false;
    return file.write("\"/>") == 3;
}

// The process's peak resident memory in KiB (0 when unknown).
inline qint64 peakMemoryKiB()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    static const QRegularExpression peak(QStringLiteral(R"(VmHWM:\s+(\d+))"));
    const QRegularExpressionMatch match = peak.match(QString::fromLatin1(status.readAll()));
    return match.hasMatch() ? match.captured(1).toLongLong() : 0;
}

} // namespace cwtest
