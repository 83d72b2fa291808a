#pragma once

#include <QList>
#include <QString>

#include <libxml/tree.h>

// One XML document with a cursor: a path query selects a list of nodes, one
// of them is the current node, and every read or write acts on it. The card's
// metadata accessors reach XML only through this class.
//
// Query names follow the card files' conventions: an unprefixed step matches
// an element of that local name in no namespace or in the document's default
// namespace (so does a name that starts a predicate, as in "hash[xxh64]"); a
// prefixed step ("lib:Alias") matches an element written with that prefix;
// "@xml:lang" is the standard language attribute.
//
// Trailing NUL bytes (a power loss leaves them on FAT cards) are ignored.
// Parsing never loads a DTD, substitutes entities or touches the network;
// documents with a DOCTYPE, nested deeper than 256 levels (the parser's limit)
// or larger than kMaxFileSize are refused.
class BLDomXmlParse
{
public:
    static constexpr qint64 kMaxFileSize = 32 * 1024 * 1024;

    BLDomXmlParse();
    ~BLDomXmlParse();
    BLDomXmlParse(const BLDomXmlParse&) = delete;
    BLDomXmlParse& operator=(const BLDomXmlParse&) = delete;

    bool createDocument(const QString& rootName);
    bool loadXml(const QString& path);
    // Parses a document held in memory (as loadXml does for a file).
    bool loadXmlData(const QByteArray& data);
    bool saveXml(const QString& path) const;
    // The document serialised as saveXml writes it.
    QByteArray xmlData() const;

    int selectNodeArray(const QString& query);
    int selectNode(int index);
    QString getElementValue(int index) const;
    QString getAttributeValue(const QString& name) const;
    QString getNameSpaceValue(const QString& prefix) const;
    int getIndexByParent() const;

    int addElement(const QString& name, const QString& value);
    int insertElement(const QString& name, const QString& value, int atIndex);
    // Moves the current element to that index among its parent's children
    // (counted before the move, as insertElement counts; past the end or
    // negative: last). It stays the current node.
    int moveElement(int atIndex);
    int setElement(const QString& text);
    int setAttribute(const QString& name, const QString& value);
    int setNameSpaceWithName(const QString& prefix, const QString& uri);
    int setMediaProfileHeader();
    int setNonRealTimeMetaHeader();
    int setTakeInfoHeader(const QString& umid);
    int removeElement();
    int removeChildNode();
    int removeAttribute(const QString& name);

    // A query literal for a value: single-quoted, double-quoted when the value
    // holds a single quote, concat() of both kinds when it holds both.
    static QString quoteLiteral(const QString& value);

    bool hasDocument() const { return m_document != nullptr; }
    // The last file or data loaded ended in NUL bytes, which were left out.
    bool wasPadded() const { return m_bPadded; }
    QString fileLocation() const { return m_fileLocation; }
    // The name of the current node ("" without one); for tests and diagnostics.
    QString currentNodeName() const;

private:
    void reset();
    QString rewriteQuery(const QString& query) const;
    bool selectSimplePath(const QByteArray& query);
    // Records a change of the element's children or of their attributes, so
    // that remembered path steps that scanned it are evaluated again.
    void touch(xmlNodePtr parent);

    // The step results of the last plain path: the next query that starts
    // with the same steps reuses them while the elements scanned for them are
    // unchanged (a node's _private holds the generation of its last change).
    struct PathMemo
    {
        qsizetype end; // the step's end in m_memoQuery
        quint64 generation;
        QList<xmlNodePtr> nodes;
    };
    QByteArray m_memoQuery;
    QList<PathMemo> m_memo;
    quint64 m_generation = 0;
    xmlNodePtr newElement(const QString& name, const QString& value);
    xmlAttrPtr findAttribute(const QString& name) const;
    bool isPrefixBound(const QString& name) const;
    void forgetSubtree(xmlNodePtr node);
    int setRootAttribute(const char* name, const QString& value);

    xmlDocPtr m_document = nullptr;
    xmlNodePtr m_currentNode = nullptr;
    QList<xmlNodePtr> m_selection;
    QString m_fileLocation;
    bool m_bPadded = false;
};
