#pragma once

#include <QList>
#include <QString>

#include <functional>

#include <ostream>
#include <string>
#include <utility>
#include <vector>

// Helpers for the metadata accessor tests: fixture files and an outline of an
// XML file read with Qt's own reader, independent of the XML layer under test.
namespace cwmeta {

// Element names as standard strings, which test failures print readably.
using Names = std::vector<std::string>;

struct XmlNode
{
    QString name;                                  // qualified name as written
    QString namespaceUri;                          // the element's namespace
    QList<std::pair<QString, QString>> attributes; // qualified name and value, in document order
    QList<std::pair<QString, QString>> namespaces; // declared prefix and URI
    QString text;                                  // text directly inside, trimmed
    QList<XmlNode> children;

    Names childNames() const;
    // The n-th child with that qualified name; nullptr when there is none.
    const XmlNode* child(const QString& childName, int n = 0) const;
    XmlNode* child(const QString& childName, int n = 0);
    // "" when absent.
    QString attribute(const QString& attributeName) const;
    // Replaces the value of an attribute the node has.
    void setAttribute(const QString& attributeName, const QString& value);
    bool operator==(const XmlNode&) const = default;
};

// An indented outline for failure messages.
QString describe(const XmlNode& node, int depth = 0);
inline void PrintTo(const XmlNode& node, std::ostream* os)
{
    *os << "\n" << describe(node).toStdString();
}

// The root element of a file; a node with an empty name when it is not well formed.
XmlNode readXmlOutline(const QString& path);

// A date and time as the card files write it: "2026-01-16T09:30:15+09:00".
bool isDateTime(const QString& text);

// Path of a committed fixture ("smi/C0001.SMI").
QString fixturePath(const QString& relative);
// Copies a fixture into a folder; answers the copy's path.
QString copyFixture(const QString& relative, const QString& folder);

// Documents a metadata reader must refuse, each with the given root element:
// an external entity, an entity-expansion bomb, invalid UTF-8, a broken tag.
QList<QByteArray> hostileDocuments(const QByteArray& root);
// Writes each of those documents as folder/file, then one whose attribute is
// 50 MB, then none at all: anythingDone (a load, read or save of a reader
// that succeeded) must answer false every time, the file must stay as it
// was written, and the whole must take little time and memory.
void expectHostileFilesRefused(const QByteArray& root, const QString& file,
                               const std::function<bool(const QString& folder)>& anythingDone);

} // namespace cwmeta
