#include "MetadataTestSupport.h"

#include <QFile>
#include <QFileInfo>
#include <QXmlStreamReader>

namespace cwmeta {

Names XmlNode::childNames() const
{
    Names names;
    for (const XmlNode& c : children)
        names.push_back(c.name.toStdString());
    return names;
}

const XmlNode* XmlNode::child(const QString& childName, int n) const
{
    for (const XmlNode& c : children)
        if (c.name == childName && n-- == 0)
            return &c;
    return nullptr;
}

QString XmlNode::attribute(const QString& attributeName) const
{
    for (const auto& [key, value] : attributes)
        if (key == attributeName)
            return value;
    return {};
}

bool XmlNode::hasAttribute(const QString& attributeName) const
{
    for (const auto& attr : attributes)
        if (attr.first == attributeName)
            return true;
    return false;
}

QString describe(const XmlNode& node, int depth)
{
    QString line = QString(depth * 2, QLatin1Char(' ')) + QLatin1Char('<') + node.name;
    for (const auto& [prefix, uri] : node.namespaces)
        line += QStringLiteral(" xmlns%1=\"%2\"").arg(prefix.isEmpty() ? QString() : ':' + prefix, uri);
    for (const auto& [key, value] : node.attributes)
        line += QStringLiteral(" %1=\"%2\"").arg(key, value);
    line += QLatin1Char('>') + node.text + QLatin1Char('\n');
    for (const XmlNode& c : node.children)
        line += describe(c, depth + 1);
    return line;
}

namespace {
XmlNode readElement(QXmlStreamReader& reader)
{
    XmlNode node;
    node.name = reader.qualifiedName().toString();
    node.namespaceUri = reader.namespaceUri().toString();
    for (const QXmlStreamAttribute& a : reader.attributes())
        node.attributes.append({a.qualifiedName().toString(), a.value().toString()});
    for (const QXmlStreamNamespaceDeclaration& d : reader.namespaceDeclarations())
        node.namespaces.append({d.prefix().toString(), d.namespaceUri().toString()});
    while (!reader.atEnd()) {
        reader.readNext();
        if (reader.isStartElement())
            node.children.append(readElement(reader));
        else if (reader.isCharacters())
            node.text += reader.text();
        else if (reader.isEndElement())
            break;
    }
    node.text = node.text.trimmed();
    return node;
}
} // namespace

XmlNode readXmlOutline(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QXmlStreamReader reader(&file);
    while (!reader.atEnd() && !reader.isStartElement())
        reader.readNext();
    if (!reader.isStartElement())
        return {};
    XmlNode root = readElement(reader);
    while (!reader.atEnd())
        reader.readNext();
    return reader.hasError() ? XmlNode() : root;
}

QString fixturePath(const QString& relative)
{
    return QStringLiteral(CLIPWRIGHT_TESTS_DIR "/core/metadata/fixtures/") + relative;
}

QString copyFixture(const QString& relative, const QString& folder)
{
    const QString target = folder + QLatin1Char('/') + QFileInfo(relative).fileName();
    QFile::remove(target);
    if (!QFile::copy(fixturePath(relative), target))
        return {};
    QFile::setPermissions(target, QFileDevice::ReadOwner | QFileDevice::WriteOwner);
    return target;
}

QByteArray readBytes(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool writeBytes(const QString& path, const QByteArray& data)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(data) == data.size();
}

} // namespace cwmeta
