#include "core/card/BLCardPath.h"

#include "core/card/BLDiskCtrl.h"
#include "core/services/BLCommon.h"

#include <QDir>
#include <QFileInfo>

namespace {

bool isInside(const QString& path, const QString& base)
{
    return path.startsWith(base + QLatin1Char('/'));
}

// The item exists as an entry, even as a dangling link.
bool entryExists(const QString& path)
{
    const QFileInfo info(path);
    return info.exists() || info.isSymLink();
}

} // namespace

QString BLCardPath::resolveReference(const QString& bpavFolder, const QString& reference)
{
    if (bpavFolder.isEmpty() || reference.isEmpty())
        return {};
    QString relative = reference;
    if (relative.startsWith(QLatin1String("./")))
        relative = relative.mid(2);
    if (relative.isEmpty() || QDir::isAbsolutePath(relative))
        return {};

    const QString base = QDir::cleanPath(QDir(bpavFolder).absolutePath());
    const QString path = QDir::cleanPath(base + QLatin1Char('/') + relative);
    if (!isInside(path, base))
        return {};

    // The deepest entry of the path that exists decides where it really leads;
    // the parts below it do not exist, so they hold no link.
    const QString canonicalBase = QFileInfo(base).canonicalFilePath();
    if (canonicalBase.isEmpty())
        return {};
    QString existing = path;
    while (!entryExists(existing)) {
        existing = QFileInfo(existing).path();
        if (existing == base)
            return path;
    }
    const QString canonical = QFileInfo(existing).canonicalFilePath();
    if (canonical != canonicalBase && !isInside(canonical, canonicalBase))
        return {};
    return path;
}

QString BLCardPath::resolveRecordFolder(const QString& bpavFolder, const QString& reference)
{
    const QString path = resolveReference(bpavFolder, reference);
    if (path.isEmpty())
        return {};
    const QString folder = QFileInfo(reference).suffix().isEmpty() ? path : QFileInfo(path).path();
    const QString base = QDir::cleanPath(QDir(bpavFolder).absolutePath());
    if (QDir(base).relativeFilePath(folder).count(QLatin1Char('/')) < 1)
        return {};
    return folder;
}

qint64 BLCardPath::getFolderSize(const QString& reference, const QString& workFolder)
{
    const QString folder = resolveRecordFolder(BLCommon::getPathOfBPAV(workFolder), reference);
    return folder.isEmpty() ? 0 : BLDiskCtrl::sharedCtrl()->getFolderSize(folder);
}

bool BLCardPath::isFileOfReference(const QString& bpavFolder, const QString& reference)
{
    return BLCommon::isFiles(resolveReference(bpavFolder, reference));
}
