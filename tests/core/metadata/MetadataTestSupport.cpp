#include "MetadataTestSupport.h"

#include "support/TestEnvironment.h"

#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QXmlStreamReader>

#include <gtest/gtest.h>

#include <utility>

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

XmlNode* XmlNode::child(const QString& childName, int n)
{
    return const_cast<XmlNode*>(std::as_const(*this).child(childName, n));
}

QString XmlNode::attribute(const QString& attributeName) const
{
    for (const auto& [key, value] : attributes)
        if (key == attributeName)
            return value;
    return {};
}

void XmlNode::setAttribute(const QString& attributeName, const QString& value)
{
    for (auto& attr : attributes)
        if (attr.first == attributeName)
            attr.second = value;
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

bool isDateTime(const QString& text)
{
    static const QRegularExpression form(QStringLiteral(R"(^\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d[+-]\d\d:\d\d$)"));
    return form.match(text).hasMatch();
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

namespace {
bool writeHugeAttributeDocument(const QString& path, const QByteArray& root)
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

qint64 peakMemoryKiB()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    static const QRegularExpression peak(QStringLiteral(R"(VmHWM:\s+(\d+))"));
    const QRegularExpressionMatch match = peak.match(QString::fromLatin1(status.readAll()));
    return match.hasMatch() ? match.captured(1).toLongLong() : 0;
}
} // namespace

QList<QByteArray> hostileDocuments(const QByteArray& root)
{
    return {
        "<?xml version=\"1.0\"?><!DOCTYPE " + root + " [<!ENTITY x SYSTEM \"file:///etc/passwd\">]><" + root +
            " a=\"&x;\">&x;</" + root + ">",
        "<?xml version=\"1.0\"?><!DOCTYPE " + root +
            " [<!ENTITY a \"aaaaaaaaaa\"><!ENTITY b \"&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;\">"
            "<!ENTITY c \"&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;\"><!ENTITY d \"&c;&c;&c;&c;&c;&c;&c;&c;&c;&c;\">"
            "<!ENTITY e \"&d;&d;&d;&d;&d;&d;&d;&d;&d;&d;\"><!ENTITY f \"&e;&e;&e;&e;&e;&e;&e;&e;&e;&e;\">"
            "<!ENTITY g \"&f;&f;&f;&f;&f;&f;&f;&f;&f;&f;\">]><" +
            root + " uri=\"&g;&g;&g;&g;&g;&g;&g;&g;\">&g;</" + root + ">",
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?><" + root + " uri=\"\xc3\x28\xfe\"/>",
        "<" + root + "><a></" + root + ">",
    };
}

void expectHostileFilesRefused(const QByteArray& root, const QString& file,
                               const std::function<bool(const QString& folder)>& anythingDone)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(file);
    QElapsedTimer timer;
    timer.start();
    const qint64 memoryBefore = peakMemoryKiB();
    for (const QByteArray& doc : hostileDocuments(root)) {
        ASSERT_TRUE(cwtest::writeFile(path, doc));
        EXPECT_FALSE(anythingDone(dir.path())) << doc.left(60).constData();
        EXPECT_EQ(cwtest::readFile(path), doc);
    }
    ASSERT_TRUE(writeHugeAttributeDocument(path, root));
    EXPECT_FALSE(anythingDone(dir.path())) << "a 50 MB attribute";
    QFile::remove(path);
    EXPECT_FALSE(anythingDone(dir.path())) << "a missing file";
    EXPECT_LT(timer.elapsed(), 5000);
    EXPECT_LT(peakMemoryKiB() - memoryBefore, 64 * 1024);
}

} // namespace cwmeta
