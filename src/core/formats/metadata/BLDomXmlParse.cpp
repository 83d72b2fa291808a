#include "core/formats/metadata/BLDomXmlParse.h"

#include "core/services/BLAtomicFile.h"
#include "core/services/BLCommon.h"

#include <QFile>
#include <QStringList>
#include <QVarLengthArray>

#include <libxml/parser.h>
#include <libxml/xpath.h>
#include <libxml/xpathInternals.h>

namespace {
const xmlChar* X(const QByteArray& utf8)
{
    return reinterpret_cast<const xmlChar*>(utf8.constData());
}

QString fromXml(const xmlChar* text)
{
    return text ? QString::fromUtf8(reinterpret_cast<const char*>(text)) : QString();
}

QString takeXml(xmlChar* text)
{
    const QString result = fromXml(text);
    xmlFree(text);
    return result;
}

// Silences libxml2's default error printing; errors are reported by results.
void ignoreError(void*, xmlErrorPtr) {}

bool isNameChar(QChar c)
{
    return c.isLetterOrNumber() || c == QLatin1Char('_') || c == QLatin1Char('-') || c == QLatin1Char('.') ||
           c == QLatin1Char(':');
}

// One step of a plain location path: a name with attribute-equality and
// position predicates, as in "Material[@uri='./CLPR/A0001.SMI'][1]". The
// views point into the query text.
struct PathPredicate
{
    QByteArrayView attribute; // empty for a position predicate
    QByteArrayView value;
    int position = 0;
};

struct PathStep
{
    QByteArrayView prefix; // empty for an unprefixed name
    QByteArrayView local;
    QVarLengthArray<PathPredicate, 2> predicates;
    qsizetype end = 0; // where the step ends in the query
};

using PathSteps = QVarLengthArray<PathStep, 6>;

bool isNameStart(char c)
{
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_' || (c & 0x80);
}

bool isNameByte(char c)
{
    return isNameStart(c) || (c >= '0' && c <= '9') || c == '-' || c == '.';
}

// Reads a name (with at most one prefix) at pos; false when there is none.
bool parseQName(QByteArrayView q, qsizetype& pos, QByteArrayView& prefix, QByteArrayView& local)
{
    auto part = [&](QByteArrayView& out) {
        const qsizetype start = pos;
        if (pos >= q.size() || !isNameStart(q[pos]))
            return false;
        while (pos < q.size() && isNameByte(q[pos]))
            ++pos;
        out = q.sliced(start, pos - start);
        return true;
    };
    prefix = {};
    if (!part(local))
        return false;
    if (pos < q.size() && q[pos] == ':') {
        ++pos;
        prefix = local;
        return part(local);
    }
    return true;
}

// Parses the absolute paths of child steps that the accessors build; false
// for anything else (axes, wildcards, functions, blanks, other predicates),
// which then goes to the full XPath engine.
bool parseSimplePath(QByteArrayView q, PathSteps& steps)
{
    qsizetype pos = 0;
    while (pos < q.size()) {
        if (q[pos] != '/')
            return false;
        ++pos;
        PathStep step;
        if (!parseQName(q, pos, step.prefix, step.local))
            return false;
        while (pos < q.size() && q[pos] == '[') {
            ++pos;
            PathPredicate predicate;
            if (pos < q.size() && q[pos] == '@') {
                ++pos;
                QByteArrayView prefix;
                if (!parseQName(q, pos, prefix, predicate.attribute) || !prefix.isEmpty())
                    return false;
                if (pos + 1 >= q.size() || q[pos] != '=' || (q[pos + 1] != '\'' && q[pos + 1] != '"'))
                    return false;
                const qsizetype end = q.indexOf(q[pos + 1], pos + 2);
                if (end < 0)
                    return false;
                predicate.value = q.sliced(pos + 2, end - pos - 2);
                pos = end + 1;
            } else {
                const qsizetype start = pos;
                while (pos < q.size() && q[pos] >= '0' && q[pos] <= '9' && pos - start < 9)
                    ++pos;
                if (pos == start)
                    return false;
                predicate.position = q.sliced(start, pos - start).toInt();
            }
            if (pos >= q.size() || q[pos] != ']')
                return false;
            ++pos;
            step.predicates.append(predicate);
        }
        step.end = pos;
        steps.append(step);
    }
    return !steps.isEmpty();
}

bool equals(const xmlChar* text, QByteArrayView view)
{
    const char* s = reinterpret_cast<const char*>(text ? text : BAD_CAST "");
    return qstrncmp(s, view.data(), view.size()) == 0 && s[view.size()] == '\0';
}

// A name as the document's dictionary holds it, so that names read or made
// for this document compare by pointer; null when the dictionary lacks it.
const xmlChar* internedName(xmlDocPtr document, QByteArrayView name)
{
    return document->dict ? xmlDictExists(document->dict, reinterpret_cast<const xmlChar*>(name.data()),
                                          int(name.size()))
                          : nullptr;
}

bool nameEquals(const xmlChar* name, const xmlChar* interned, QByteArrayView view)
{
    return (interned && name == interned) || equals(name, view);
}

bool attributeEquals(xmlNodePtr node, const xmlChar* interned, const PathPredicate& predicate)
{
    for (xmlAttrPtr attr = node->properties; attr; attr = attr->next) {
        if (attr->ns || !nameEquals(attr->name, interned, predicate.attribute))
            continue;
        xmlNodePtr text = attr->children;
        if (!text)
            return predicate.value.isEmpty();
        if (!text->next && text->type == XML_TEXT_NODE)
            return equals(text->content, predicate.value);
        xmlChar* content = xmlNodeGetContent(reinterpret_cast<xmlNodePtr>(attr));
        const bool equal = equals(content, predicate.value);
        xmlFree(content);
        return equal;
    }
    return false;
}
} // namespace

BLDomXmlParse::BLDomXmlParse() = default;

BLDomXmlParse::~BLDomXmlParse()
{
    reset();
}

void BLDomXmlParse::reset()
{
    if (m_document)
        xmlFreeDoc(m_document);
    m_document = nullptr;
    m_currentNode = nullptr;
    m_selection.clear();
    m_memo.clear();
}

bool BLDomXmlParse::createDocument(const QString& rootName)
{
    if (rootName.isEmpty())
        return false;
    xmlDocPtr doc = xmlNewDoc(BAD_CAST "1.0");
    if (!doc)
        return false;
    doc->encoding = xmlStrdup(BAD_CAST "UTF-8");
    xmlNodePtr root = xmlNewDocNode(doc, nullptr, X(rootName.toUtf8()), nullptr);
    if (!root) {
        xmlFreeDoc(doc);
        return false;
    }
    xmlDocSetRootElement(doc, root);
    reset();
    m_document = doc;
    return true;
}

bool BLDomXmlParse::loadXml(const QString& path)
{
    m_fileLocation = path;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || file.size() > kMaxFileSize) {
        reset();
        return false;
    }
    return loadXmlData(file.read(kMaxFileSize + 1));
}

bool BLDomXmlParse::loadXmlData(const QByteArray& bytes)
{
    reset();
    // A power loss on a FAT card often leaves a file padded with NUL bytes
    // after its last write: they are read as if they were not there.
    QByteArrayView data(bytes);
    while (!data.isEmpty() && data.back() == '\0')
        data.chop(1);
    m_bPadded = data.size() < bytes.size();
    // Card metadata is UTF-8 without a document type; refusing a DOCTYPE keeps
    // entity definitions (and their expansion) out altogether, and refusing NUL
    // bytes keeps out other encodings that could hide one.
    if (data.size() > kMaxFileSize || data.contains("<!DOCTYPE") || data.contains('\0'))
        return false;
    xmlParserCtxtPtr ctxt = xmlNewParserCtxt();
    if (!ctxt)
        return false;
    xmlSetStructuredErrorFunc(nullptr, ignoreError);
    const int options = XML_PARSE_NONET | XML_PARSE_NOBLANKS | XML_PARSE_NOERROR | XML_PARSE_NOWARNING;
    xmlDocPtr doc = xmlCtxtReadMemory(ctxt, data.constData(), int(data.size()), nullptr, nullptr, options);
    const bool wellFormed = doc && ctxt->wellFormed && ctxt->errNo == 0;
    xmlFreeParserCtxt(ctxt);
    xmlSetStructuredErrorFunc(nullptr, nullptr);
    if (!wellFormed || !xmlDocGetRootElement(doc) || doc->intSubset) {
        if (doc)
            xmlFreeDoc(doc);
        return false;
    }
    m_document = doc;
    return true;
}

QByteArray BLDomXmlParse::xmlData() const
{
    if (!m_document)
        return {};
    xmlChar* buffer = nullptr;
    int size = 0;
    xmlDocDumpFormatMemoryEnc(m_document, &buffer, &size, "UTF-8", 1);
    QByteArray result(reinterpret_cast<const char*>(buffer), size);
    xmlFree(buffer);
    return result;
}

bool BLDomXmlParse::saveXml(const QString& path) const
{
    if (!m_document)
        return false;
    const QByteArray data = xmlData();
    return !data.isEmpty() && BLAtomicFile::writeFile(path, data);
}

QString BLDomXmlParse::quoteLiteral(const QString& value)
{
    const QChar apostrophe = QLatin1Char('\'');
    if (!value.contains(apostrophe))
        return apostrophe + value + apostrophe;
    if (!value.contains(QLatin1Char('"')))
        return QLatin1Char('"') + value + QLatin1Char('"');
    QStringList parts;
    for (const QString& piece : value.split(apostrophe))
        parts << apostrophe + piece + apostrophe;
    return QStringLiteral("concat(%1)").arg(parts.join(QStringLiteral(", \"'\", ")));
}

QString BLDomXmlParse::rewriteQuery(const QString& query) const
{
    // Each element step becomes a predicate on its name so that unprefixed
    // names match the default namespace as well as no namespace, and prefixed
    // names match the prefix as written.
    QString defaultUri;
    if (xmlNodePtr root = xmlDocGetRootElement(m_document))
        if (xmlNsPtr ns = xmlSearchNs(m_document, root, nullptr))
            defaultUri = fromXml(ns->href);

    QString out;
    out.reserve(query.size() * 2);
    QChar quote;
    for (qsizetype i = 0; i < query.size();) {
        const QChar c = query[i];
        if (!quote.isNull()) {
            out += c;
            if (c == quote)
                quote = QChar();
            ++i;
            continue;
        }
        if (c == QLatin1Char('\'') || c == QLatin1Char('"')) {
            quote = c;
            out += c;
            ++i;
            continue;
        }
        // A name starts a step after "/" and at the start of a predicate
        // ("hash[xxh64]" tests for a child element, which needs the same name rule).
        if (c != QLatin1Char('/') && c != QLatin1Char('[')) {
            out += c;
            ++i;
            continue;
        }
        out += c;
        ++i;
        qsizetype end = i;
        while (end < query.size() && isNameChar(query[end]))
            ++end;
        if (end == i || (end < query.size() && query[end] == QLatin1Char('('))) {
            continue; // "*", "@attr", "..", "//" or a node test such as text()
        }
        if (c == QLatin1Char('[') && !query[i].isLetter() && query[i] != QLatin1Char('_')) {
            continue; // a position such as [2], or "." for the context node
        }
        const QString name = query.mid(i, end - i);
        if (name == QLatin1String(".") || name == QLatin1String("..")) {
            out += name;
        } else if (name.contains(QLatin1Char(':'))) {
            out += QStringLiteral("*[name()='%1']").arg(name);
        } else if (defaultUri.isEmpty()) {
            out += QStringLiteral("*[local-name()='%1' and namespace-uri()='']").arg(name);
        } else {
            out += QStringLiteral("*[local-name()='%1' and (namespace-uri()='' or namespace-uri()='%2')]")
                       .arg(name, defaultUri);
        }
        i = end;
    }
    return out;
}

// Walks the tree for a plain path with the name rules of rewriteQuery: an
// unprefixed step matches no namespace or the root's default namespace, a
// prefixed step the prefix as written. Far cheaper than compiling and running
// an XPath expression for each of the many lookups a profile rewrite makes.
bool BLDomXmlParse::selectSimplePath(const QByteArray& query)
{
    PathSteps steps;
    if (!parseSimplePath(query, steps))
        return false;
    const xmlChar* defaultUri = nullptr;
    if (xmlNodePtr root = xmlDocGetRootElement(m_document))
        if (xmlNsPtr ns = xmlSearchNs(m_document, root, nullptr))
            defaultUri = ns->href;
    auto unchangedSince = [](const QList<xmlNodePtr>& nodes, quint64 generation) {
        return std::all_of(nodes.begin(), nodes.end(), [generation](xmlNodePtr node) {
            return reinterpret_cast<quintptr>(node->_private) <= generation;
        });
    };

    // Reuse the leading steps this query shares with the last one. Checking
    // from the top is safe: a removed element marks its parent, which is
    // checked (and found changed) before anything below it is looked at.
    QList<xmlNodePtr> context{reinterpret_cast<xmlNodePtr>(m_document)};
    qsizetype reused = 0;
    while (reused < m_memo.size() && reused < steps.size()) {
        const PathMemo& memo = m_memo.at(reused);
        if (memo.end != steps[reused].end || !query.startsWith(QByteArrayView(m_memoQuery).first(memo.end)) ||
            !unchangedSince(context, memo.generation))
            break;
        context = memo.nodes;
        ++reused;
    }
    m_memo.resize(reused);
    m_memoQuery = query;

    QList<xmlNodePtr> next;
    QVarLengthArray<int, 4> reached;
    QVarLengthArray<const xmlChar*, 4> attributeNames;
    for (qsizetype s = reused; s < steps.size(); ++s) {
        const PathStep& step = steps[s];
        const xmlChar* stepName = internedName(m_document, step.local);
        const qsizetype predicates = step.predicates.size();
        attributeNames.resize(predicates);
        for (qsizetype i = 0; i < predicates; ++i)
            attributeNames[i] = internedName(m_document, step.predicates[i].attribute);
        next.clear();
        for (xmlNodePtr parent : std::as_const(context)) {
            // reached[i]: how many children of this parent got to predicate i.
            reached.resize(predicates);
            std::fill(reached.begin(), reached.end(), 0);
            bool exhausted = false;
            for (xmlNodePtr child = parent->children; child && !exhausted; child = child->next) {
                if (child->type != XML_ELEMENT_NODE || !nameEquals(child->name, stepName, step.local))
                    continue;
                if (step.prefix.isEmpty()) {
                    const xmlChar* href = child->ns ? child->ns->href : nullptr;
                    if (href && *href && !(defaultUri && xmlStrEqual(href, defaultUri)))
                        continue;
                } else if (!child->ns || !child->ns->prefix || !equals(child->ns->prefix, step.prefix)) {
                    continue;
                }
                bool passed = true;
                for (qsizetype i = 0; i < predicates && passed; ++i) {
                    const PathPredicate& predicate = step.predicates[i];
                    if (predicate.attribute.isEmpty()) {
                        const int position = ++reached[i];
                        passed = position == predicate.position;
                        // Later children cannot reach this position again.
                        exhausted = position >= predicate.position;
                    } else {
                        passed = attributeEquals(child, attributeNames[i], predicate);
                    }
                }
                if (passed)
                    next.append(child);
            }
        }
        context.swap(next);
        m_memo.append({step.end, m_generation, context});
    }
    m_selection = context;
    return true;
}

void BLDomXmlParse::touch(xmlNodePtr parent)
{
    if (parent)
        parent->_private = reinterpret_cast<void*>(quintptr(++m_generation));
}

int BLDomXmlParse::selectNodeArray(const QString& query)
{
    if (!m_document) {
        m_selection.clear();
        return -1;
    }
    if (selectSimplePath(query.toUtf8())) {
        if (!m_selection.isEmpty())
            m_currentNode = m_selection.first();
        return int(m_selection.size());
    }
    xmlXPathContextPtr ctx = xmlXPathNewContext(m_document);
    if (!ctx) {
        m_selection.clear();
        return -1;
    }
    xmlSetStructuredErrorFunc(nullptr, ignoreError);
    const QByteArray compiled = rewriteQuery(query).toUtf8();
    xmlXPathObjectPtr result = xmlXPathEvalExpression(X(compiled), ctx);
    xmlSetStructuredErrorFunc(nullptr, nullptr);
    xmlXPathFreeContext(ctx);
    if (!result || result->type != XPATH_NODESET) {
        if (result)
            xmlXPathFreeObject(result);
        m_selection.clear();
        return -1;
    }
    m_selection.clear();
    if (xmlNodeSetPtr set = result->nodesetval)
        for (int i = 0; i < set->nodeNr; ++i)
            m_selection.append(set->nodeTab[i]);
    xmlXPathFreeObject(result);
    if (!m_selection.isEmpty())
        m_currentNode = m_selection.first();
    return int(m_selection.size());
}

int BLDomXmlParse::selectNode(int index)
{
    if (index < 0 || index >= m_selection.size())
        return 0;
    m_currentNode = m_selection.at(index);
    return 1;
}

QString BLDomXmlParse::getElementValue(int index) const
{
    if (index < 0 || index >= m_selection.size())
        return {};
    return takeXml(xmlNodeGetContent(m_selection.at(index)));
}

QString BLDomXmlParse::getAttributeValue(const QString& name) const
{
    if (!m_currentNode || m_currentNode->type != XML_ELEMENT_NODE || name.isEmpty())
        return {};
    xmlAttrPtr attr = findAttribute(name);
    return attr ? takeXml(xmlNodeGetContent(reinterpret_cast<xmlNodePtr>(attr))) : QString();
}

xmlAttrPtr BLDomXmlParse::findAttribute(const QString& name) const
{
    // A prefixed name ("xml:lang", "xsi:schemaLocation") names the attribute
    // in the namespace bound to that prefix at the current node.
    const QByteArray n = name.toUtf8();
    const qsizetype colon = n.indexOf(':');
    if (colon <= 0)
        return xmlHasNsProp(m_currentNode, X(n), nullptr);
    xmlNsPtr ns = xmlSearchNs(m_document, m_currentNode, X(n.left(colon)));
    return ns ? xmlHasNsProp(m_currentNode, X(n.mid(colon + 1)), ns->href) : nullptr;
}

bool BLDomXmlParse::isPrefixBound(const QString& name) const
{
    const QByteArray n = name.toUtf8();
    const qsizetype colon = n.indexOf(':');
    return colon <= 0 || xmlSearchNs(m_document, m_currentNode, X(n.left(colon))) != nullptr;
}

QString BLDomXmlParse::getNameSpaceValue(const QString& prefix) const
{
    if (!m_currentNode || !m_document)
        return {};
    const QByteArray p = prefix.toUtf8();
    xmlNsPtr ns = xmlSearchNs(m_document, m_currentNode, prefix.isEmpty() ? nullptr : X(p));
    return ns ? fromXml(ns->href) : QString();
}

int BLDomXmlParse::getIndexByParent() const
{
    if (!m_currentNode || !m_currentNode->parent)
        return 0;
    int index = 0;
    for (xmlNodePtr n = m_currentNode->parent->children; n && n != m_currentNode; n = n->next)
        ++index;
    return index;
}

xmlNodePtr BLDomXmlParse::newElement(const QString& name, const QString& value)
{
    const QByteArray qname = name.toUtf8();
    xmlNsPtr ns = nullptr;
    QByteArray local = qname;
    const qsizetype colon = qname.indexOf(':');
    if (colon > 0) {
        // An unbound prefix would make the written file unreadable.
        ns = xmlSearchNs(m_document, m_currentNode, X(qname.left(colon)));
        if (!ns)
            return nullptr;
        local = qname.mid(colon + 1);
    } else {
        // A new child of an element in the default namespace joins it.
        ns = xmlSearchNs(m_document, m_currentNode, nullptr);
    }
    xmlNodePtr node = xmlNewDocNode(m_document, ns, X(local), nullptr);
    if (node && !value.isEmpty())
        xmlAddChild(node, xmlNewDocText(m_document, X(value.toUtf8())));
    return node;
}

int BLDomXmlParse::addElement(const QString& name, const QString& value)
{
    if (!m_document || !m_currentNode || name.isEmpty())
        return 0;
    xmlNodePtr node = newElement(name, value);
    if (!node)
        return 0;
    touch(m_currentNode);
    xmlAddChild(m_currentNode, node);
    return 1;
}

int BLDomXmlParse::insertElement(const QString& name, const QString& value, int atIndex)
{
    if (!m_document || !m_currentNode || name.isEmpty())
        return 0;
    xmlNodePtr node = newElement(name, value);
    if (!node)
        return 0;
    touch(m_currentNode);
    xmlNodePtr before = m_currentNode->children;
    for (int i = 0; before && i < atIndex; ++i)
        before = before->next;
    if (before && atIndex >= 0)
        xmlAddPrevSibling(before, node);
    else
        xmlAddChild(m_currentNode, node);
    return 1;
}

int BLDomXmlParse::moveElement(int atIndex)
{
    if (!m_document || !m_currentNode || !m_currentNode->parent)
        return 0;
    xmlNodePtr parent = m_currentNode->parent;
    xmlNodePtr before = parent->children;
    for (int i = 0; before && i < atIndex; ++i)
        before = before->next;
    if (before == m_currentNode)
        return 1;
    touch(parent);
    xmlUnlinkNode(m_currentNode);
    if (before && atIndex >= 0)
        xmlAddPrevSibling(before, m_currentNode);
    else
        xmlAddChild(parent, m_currentNode);
    return 1;
}

int BLDomXmlParse::setElement(const QString& text)
{
    if (!m_document || !m_currentNode || text.isEmpty())
        return 0;
    // Drop the old content; selected descendants go with it.
    for (xmlNodePtr c = m_currentNode->children; c; c = c->next)
        forgetSubtree(c);
    touch(m_currentNode);
    xmlNodeSetContent(m_currentNode, nullptr);
    xmlAddChild(m_currentNode, xmlNewDocText(m_document, X(text.toUtf8())));
    return 1;
}

int BLDomXmlParse::setAttribute(const QString& name, const QString& value)
{
    if (!m_document || !m_currentNode || m_currentNode->type != XML_ELEMENT_NODE || name.isEmpty())
        return 0;
    const bool emptyAllowed = name == QLatin1String("mediaId") || name == QLatin1String("mediaName") ||
                              name == QLatin1String("usAscii");
    if (value.isEmpty() && !emptyAllowed)
        return 0;
    // An unbound prefix would make the written file unreadable.
    if (!isPrefixBound(name))
        return 0;
    const QByteArray n = name.toUtf8();
    const QByteArray v = value.toUtf8();
    touch(m_currentNode->parent);
    // xmlSetProp keeps an existing attribute in its place and resolves a
    // prefixed name ("xml:lang") against the namespaces in scope.
    return xmlSetProp(m_currentNode, X(n), X(v)) ? 1 : 0;
}

int BLDomXmlParse::setNameSpaceWithName(const QString& prefix, const QString& uri)
{
    if (!m_document || !m_currentNode || m_currentNode->type != XML_ELEMENT_NODE || uri.isEmpty())
        return 0;
    const QByteArray p = prefix.toUtf8();
    const QByteArray u = uri.toUtf8();
    m_memo.clear(); // names may match differently from now on
    for (xmlNsPtr ns = m_currentNode->nsDef; ns; ns = ns->next) {
        const bool same =
            prefix.isEmpty() ? ns->prefix == nullptr : (ns->prefix && xmlStrEqual(ns->prefix, X(p)));
        if (same) {
            xmlFree(const_cast<xmlChar*>(ns->href));
            ns->href = xmlStrdup(X(u));
            return 1;
        }
    }
    xmlNsPtr ns = xmlNewNs(m_currentNode, X(u), prefix.isEmpty() ? nullptr : X(p));
    if (!ns)
        return 0;
    // The default namespace declared on an element applies to it as well.
    if (prefix.isEmpty() && !m_currentNode->ns)
        xmlSetNs(m_currentNode, ns);
    return 1;
}

int BLDomXmlParse::setRootAttribute(const char* name, const QString& value)
{
    if (!m_document)
        return 0;
    xmlNodePtr root = xmlDocGetRootElement(m_document);
    if (!root)
        return 0;
    touch(root->parent);
    xmlSetProp(root, BAD_CAST name, X(value.toUtf8()));
    return 1;
}

int BLDomXmlParse::setMediaProfileHeader()
{
    return setRootAttribute("createdAt", BLCommon::getGmtTm());
}

int BLDomXmlParse::setNonRealTimeMetaHeader()
{
    return setRootAttribute("lastUpdate", BLCommon::getGmtTm());
}

int BLDomXmlParse::setTakeInfoHeader(const QString& umid)
{
    return setRootAttribute("umid", umid);
}

void BLDomXmlParse::forgetSubtree(xmlNodePtr node)
{
    m_selection.removeIf([node](xmlNodePtr selected) {
        for (xmlNodePtr n = selected; n; n = n->parent)
            if (n == node)
                return true;
        return false;
    });
    for (xmlNodePtr n = m_currentNode; n; n = n->parent)
        if (n == node) {
            m_currentNode = nullptr;
            break;
        }
}

int BLDomXmlParse::removeElement()
{
    if (!m_currentNode)
        return -1;
    xmlNodePtr node = m_currentNode;
    forgetSubtree(node);
    touch(node->parent);
    xmlUnlinkNode(node);
    xmlFreeNode(node);
    return 1;
}

int BLDomXmlParse::removeChildNode()
{
    if (!m_currentNode)
        return -1;
    int count = 0;
    touch(m_currentNode);
    while (xmlNodePtr last = m_currentNode->last) {
        forgetSubtree(last);
        xmlUnlinkNode(last);
        xmlFreeNode(last);
        ++count;
    }
    return count;
}

int BLDomXmlParse::removeAttribute(const QString& name)
{
    if (!m_currentNode)
        return -1;
    if (m_currentNode->type == XML_ELEMENT_NODE && !name.isEmpty()) {
        if (xmlAttrPtr attr = findAttribute(name)) {
            touch(m_currentNode->parent);
            xmlRemoveProp(attr);
        }
    }
    return 1;
}

QString BLDomXmlParse::currentNodeName() const
{
    if (!m_currentNode)
        return {};
    if (m_currentNode->ns && m_currentNode->ns->prefix)
        return fromXml(m_currentNode->ns->prefix) + QLatin1Char(':') + fromXml(m_currentNode->name);
    return fromXml(m_currentNode->name);
}
