#pragma once

#include <QMap>
#include <QString>

#include <vector>

// A parsed XML document (QXmlStreamReader), enough to check cardgen's files.
struct XmlElement
{
    QString name;                      // qualified name as written ("lib:Alias")
    QMap<QString, QString> attributes; // by qualified name
    QString text;
    std::vector<XmlElement> children;

    const XmlElement* child(const QString& n) const;
    std::vector<const XmlElement*> all(const QString& n) const;
    QString attr(const QString& n) const { return attributes.value(n); }
};

struct XmlDocument
{
    bool wellFormed = false;
    QString error;
    XmlElement root;

    static XmlDocument load(const QString& path);
};
