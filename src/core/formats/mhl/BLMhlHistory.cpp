#include "core/formats/mhl/BLMhlHistory.h"

#include "core/formats/metadata/BLDomXmlParse.h"
#include "core/services/AppVersion.h"
#include "core/services/BLAtomicFile.h"
#include "core/services/BLCommon.h"
#include "core/services/BLLocalizedStrings.h"
#include "core/services/BLProgressThread.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QHostInfo>
#include <QRegularExpression>
#include <QTimeZone>
#include <QXmlStreamWriter>

namespace {

const QString kNamespace = QStringLiteral("urn:ASC:MHL:v2.0");
const QString kDirectoryNamespace = QStringLiteral("urn:ASC:MHL:DIRECTORY:v2.0");

QString xmlDate(const QDateTime& date)
{
    return date.toUTC().toString(Qt::ISODate);
}

// Manifests of the history folder by generation number.
QMap<int, QString> manifests(const QString& folder)
{
    static const QRegularExpression name(QStringLiteral("^(\\d{4,})_.*\\.mhl$"));
    QMap<int, QString> found;
    for (const QString& file : QDir(folder).entryList({QStringLiteral("*.mhl")}, QDir::Files, QDir::Name)) {
        const QRegularExpressionMatch m = name.match(file);
        if (m.hasMatch())
            found.insert(m.captured(1).toInt(), file);
    }
    return found;
}

} // namespace

BLMhlHistory::BLMhlHistory(const QString& root) : m_root(root) {}

bool BLMhlHistory::load()
{
    m_files.clear();
    m_lastGeneration = 0;
    const QString folder = m_root + '/' + kFolderName;
    const QMap<int, QString> generations = manifests(folder);
    for (auto g = generations.cbegin(); g != generations.cend(); ++g) {
        BLDomXmlParse xml;
        if (!xml.loadXml(folder + '/' + g.value())) {
            m_error = BLLocalizedString(QStringLiteral("MSG_MHL_UNREADABLE")).arg(g.value());
            return false;
        }
        // Only hashes with an xxh64 count; the paths and hashes then pair by position.
        const int count = xml.selectNodeArray(QStringLiteral("/hashlist/hashes/hash[xxh64]/path"));
        QList<Entry> entries;
        for (int i = 0; i < count; ++i) {
            xml.selectNode(i);
            entries.append(
                {xml.getElementValue(i), xml.getAttributeValue(QStringLiteral("size")).toLongLong(),
                 QDateTime::fromString(xml.getAttributeValue(QStringLiteral("lastmodificationdate")),
                                       Qt::ISODate),
                 0, QString()});
        }
        if (xml.selectNodeArray(QStringLiteral("/hashlist/hashes/hash/xxh64")) != count) {
            m_error = BLLocalizedString(QStringLiteral("MSG_MHL_UNREADABLE")).arg(g.value());
            return false;
        }
        for (int i = 0; i < count; ++i) {
            xml.selectNode(i);
            entries[i].hash = xml.getElementValue(i).trimmed().toULongLong(nullptr, 16);
            entries[i].action = xml.getAttributeValue(QStringLiteral("action"));
            m_files.insert(entries[i].path, entries[i]);
        }
        m_lastGeneration = g.key();
    }
    return true;
}

BLMhlHistory::Check BLMhlHistory::check(BLProgressThread* thread) const
{
    Check result;
    QMap<QString, Entry> listed = m_files;
    for (const QString& path : contents(m_root)) {
        if (path.endsWith('/'))
            continue;
        const QFileInfo info(m_root + '/' + path);
        if (info.isSymLink())
            continue; // a link has no contents of its own to hash
        Entry entry{path, info.size(), info.lastModified(), 0, QStringLiteral("original")};
        bool cancelled = false;
        const bool read = BLCommon::hashFile(info.filePath(), &entry.hash, thread, &cancelled);
        if (cancelled || (thread && thread->isCancel())) {
            result.cancelled = true;
            return result;
        }
        const auto known = listed.constFind(path);
        if (!read) {
            result.unreadable = true;
            result.altered << path;
        } else if (known == listed.cend()) {
            result.added << path;
        } else if (known->hash != entry.hash) {
            result.altered << path;
        } else {
            entry.action = QStringLiteral("verified");
        }
        listed.remove(path);
        result.entries << entry;
    }
    result.missing = listed.keys();
    return result;
}

QString BLMhlHistory::writeGeneration(const QList<Entry>& entries, const QString& process)
{
    const QString folder = m_root + '/' + kFolderName;
    if (!QFileInfo(folder).isDir() && !QDir().mkdir(folder)) {
        m_error = BLLocalizedString(QStringLiteral("MSG_MHL_NOT_CREATED")).arg(folder);
        return {};
    }
    const QDateTime now = QDateTime::currentDateTimeUtc();
    const int generation =
        qMax(m_lastGeneration, manifests(folder).isEmpty() ? 0 : manifests(folder).lastKey()) + 1;
    const QString name =
        QStringLiteral("%1_%2_%3Z.mhl")
            .arg(generation, 4, 10, QLatin1Char('0'))
            .arg(QFileInfo(m_root).fileName(), now.toString(QStringLiteral("yyyy-MM-dd_HHmmss")));

    QByteArray manifest;
    QXmlStreamWriter xml(&manifest);
    xml.setAutoFormatting(true);
    xml.writeStartDocument();
    xml.writeDefaultNamespace(kNamespace);
    xml.writeStartElement(kNamespace, QStringLiteral("hashlist"));
    xml.writeAttribute(QStringLiteral("version"), QStringLiteral("2.0"));
    xml.writeStartElement(QStringLiteral("creatorinfo"));
    xml.writeTextElement(QStringLiteral("creationdate"), xmlDate(now));
    xml.writeTextElement(QStringLiteral("hostname"), QHostInfo::localHostName());
    xml.writeStartElement(QStringLiteral("tool"));
    xml.writeAttribute(QStringLiteral("version"), appVersion());
    xml.writeCharacters(QStringLiteral("Clipwright"));
    xml.writeEndElement();
    xml.writeEndElement();
    xml.writeStartElement(QStringLiteral("processinfo"));
    xml.writeTextElement(QStringLiteral("process"), process);
    xml.writeEndElement();
    if (!entries.isEmpty()) { // the schema wants at least one hash in "hashes"
        xml.writeStartElement(QStringLiteral("hashes"));
        for (const Entry& e : entries) {
            xml.writeStartElement(QStringLiteral("hash"));
            xml.writeStartElement(QStringLiteral("path"));
            xml.writeAttribute(QStringLiteral("size"), QString::number(e.size));
            xml.writeAttribute(QStringLiteral("lastmodificationdate"), xmlDate(e.modified));
            xml.writeCharacters(e.path);
            xml.writeEndElement();
            xml.writeStartElement(QStringLiteral("xxh64"));
            xml.writeAttribute(QStringLiteral("action"), e.action);
            xml.writeAttribute(QStringLiteral("hashdate"), xmlDate(now));
            xml.writeCharacters(hashText(e.hash));
            xml.writeEndElement();
            xml.writeEndElement();
        }
        xml.writeEndElement();
    }
    xml.writeEndElement();
    xml.writeEndDocument();

    // The chain: the generations it lists, then this one.
    const QString chainPath = folder + '/' + kChainName;
    QList<std::pair<QString, QString>> chain;
    BLDomXmlParse old;
    if (QFileInfo::exists(chainPath) && old.loadXml(chainPath)) {
        const int n = old.selectNodeArray(QStringLiteral("/ascmhldirectory/hashlist/path"));
        for (int i = 0; i < n; ++i)
            chain.append({old.getElementValue(i), QString()});
        if (old.selectNodeArray(QStringLiteral("/ascmhldirectory/hashlist/c4")) == n)
            for (int i = 0; i < n; ++i)
                chain[i].second = old.getElementValue(i);
    }
    chain.append({name, c4Id(manifest)});
    QByteArray chainXml;
    QXmlStreamWriter c(&chainXml);
    c.setAutoFormatting(true);
    c.writeStartDocument();
    c.writeDefaultNamespace(kDirectoryNamespace);
    c.writeStartElement(kDirectoryNamespace, QStringLiteral("ascmhldirectory"));
    for (qsizetype i = 0; i < chain.size(); ++i) {
        c.writeStartElement(QStringLiteral("hashlist"));
        c.writeAttribute(QStringLiteral("sequencenr"), QString::number(i + 1));
        c.writeTextElement(QStringLiteral("path"), chain[i].first);
        c.writeTextElement(QStringLiteral("c4"), chain[i].second);
        c.writeEndElement();
    }
    c.writeEndElement();
    c.writeEndDocument();

    const QString path = folder + '/' + name;
    if (!BLAtomicFile::writeFile(path, manifest) || !BLAtomicFile::writeFile(chainPath, chainXml)) {
        QFile::remove(path);
        m_error = BLLocalizedString(QStringLiteral("MSG_MHL_NOT_WRITTEN")).arg(path);
        return {};
    }
    m_lastGeneration = generation;
    for (const Entry& e : entries)
        m_files.insert(e.path, e);
    return path;
}

QStringList BLMhlHistory::contents(const QString& root, bool withHistory)
{
    QStringList paths;
    const QDir base(root);
    QDirIterator it(root, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QFileInfo info = it.nextFileInfo();
        const QString path = base.relativeFilePath(info.filePath());
        if (!withHistory && (path == kFolderName || path.startsWith(kFolderName + '/')))
            continue;
        paths << (info.isDir() && !info.isSymLink() ? path + '/' : path);
    }
    paths.sort();
    return paths;
}

QString BLMhlHistory::c4Id(const QByteArray& data)
{
    static const char kAlphabet[] = "123456789ABCDEFGHJKLMNPQRSTUVWXYZabcdefghijkmnopqrstuvwxyz";
    QByteArray number = QCryptographicHash::hash(data, QCryptographicHash::Sha512);
    // Repeated division of the big-endian number by 58, least significant digit first.
    QByteArray digits;
    while (std::any_of(number.cbegin(), number.cend(), [](char b) { return b != 0; })) {
        int remainder = 0;
        for (char& byte : number) {
            const int value = remainder * 256 + quint8(byte);
            byte = char(value / 58);
            remainder = value % 58;
        }
        digits.prepend(kAlphabet[remainder]);
    }
    return QStringLiteral("c4") + QString::fromLatin1(digits).rightJustified(88, QLatin1Char('1'));
}

QString BLMhlHistory::hashText(quint64 hash)
{
    return QStringLiteral("%1").arg(hash, 16, 16, QLatin1Char('0'));
}
