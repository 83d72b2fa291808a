#include "XmlTree.h"

#include <QFile>
#include <QXmlStreamReader>

const XmlElement* XmlElement::child(const QString& n) const
{
    for (const XmlElement& c : children) {
        if (c.name == n)
            return &c;
    }
    return nullptr;
}

std::vector<const XmlElement*> XmlElement::all(const QString& n) const
{
    std::vector<const XmlElement*> list;
    for (const XmlElement& c : children) {
        if (c.name == n)
            list.push_back(&c);
    }
    return list;
}

namespace {

void readElement(QXmlStreamReader& r, XmlElement& e)
{
    e.name = r.qualifiedName().toString();
    for (const QXmlStreamAttribute& a : r.attributes())
        e.attributes.insert(a.qualifiedName().toString(), a.value().toString());
    for (const QXmlStreamNamespaceDeclaration& ns : r.namespaceDeclarations()) {
        e.attributes.insert(ns.prefix().isEmpty() ? QStringLiteral("xmlns")
                                                  : QStringLiteral("xmlns:") + ns.prefix().toString(),
                            ns.namespaceUri().toString());
    }
    while (r.readNext() != QXmlStreamReader::Invalid) {
        if (r.isStartElement()) {
            e.children.emplace_back();
            readElement(r, e.children.back());
        } else if (r.isCharacters() && !r.isWhitespace()) {
            e.text += r.text().toString();
        } else if (r.isEndElement()) {
            return;
        }
    }
}

} // namespace

XmlDocument XmlDocument::load(const QString& path)
{
    XmlDocument doc;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        doc.error = file.errorString();
        return doc;
    }
    QXmlStreamReader r(&file);
    while (!r.atEnd() && !r.isStartElement())
        r.readNext();
    if (r.isStartElement())
        readElement(r, doc.root);
    while (!r.atEnd())
        r.readNext();
    doc.wellFormed = !r.hasError() && !doc.root.name.isEmpty();
    doc.error = r.errorString();
    return doc;
}
