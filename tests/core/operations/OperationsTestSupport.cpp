#include "OperationsTestSupport.h"

#include "core/card/BLClipCtrl.h"
#include "core/services/BLCommon.h"

#include <QCryptographicHash>
#include <QDirIterator>

namespace optest {

namespace {

// The clips of a work folder's CLPR folder, each given its UMID from its
// metadata (through a take carrying the clip's metadata reference).
QList<DOClipData> scanClips(const QString& workFolder)
{
    BLClipCtrl ctrl;
    QList<DOClipData> clips;
    const QString clpr = BLCommon::getPathOfBPAV(workFolder) + "/CLPR";
    for (const QString& name : QDir(clpr).entryList(QDir::AllEntries | QDir::NoDotAndDotDot, QDir::Name)) {
        DOClipData clip = ctrl.checkCLPRFiles(workFolder, name);
        DOTakeData probe;
        probe.setXMLUri(clip.getXMLUri());
        if (clip.getClipStatus() < 4 && ctrl.getNonRealData(probe, workFolder))
            clip.setUmid(probe.getUmid());
        clips << clip;
    }
    return clips;
}

} // namespace

QList<DOTakeData> loadTakes(const QString& workFolder)
{
    BLClipCtrl ctrl;
    QList<DOClipData> clips = scanClips(workFolder);
    QList<DOTakeData> takes;
    const QString takr = BLCommon::getPathOfBPAV(workFolder) + "/TAKR";
    for (const QString& name : QDir(takr).entryList(QDir::AllEntries | QDir::NoDotAndDotDot, QDir::Name)) {
        DOTakeData take = ctrl.checkTAKRFiles(workFolder, name);
        ctrl.searchClip(take, clips);
        takes << take;
    }
    for (const DOClipData& clip : std::as_const(clips)) {
        if (clip.getExistFlag())
            continue;
        DOTakeData take;
        take.setSingleClipFlag(true);
        take.setUmid(clip.getUmid());
        take.setXMLUri(clip.getXMLUri());
        take.setSMIUri(clip.getSMIUri());
        take.setBIMUri(clip.getBIMUri());
        take.setPPNUri(clip.getPPNUri());
        take.setMP4Uri(clip.getMP4Uri());
        take.setSize(clip.getSize());
        take.setTakeStatus(clip.getClipStatus());
        take.setRealFlag(true);
        takes << take;
    }
    for (DOTakeData& take : takes)
        if (take.getTakeStatus() < 4 && !ctrl.getNonRealData(take, workFolder))
            take.setTakeStatus(5);
    std::sort(takes.begin(), takes.end(),
              [](const DOTakeData& a, const DOTakeData& b) { return a.getTakeID() < b.getTakeID(); });
    return takes;
}

void openTree(const QString& root)
{
    const QFile::Permissions folder = QFile::Permissions(0x7777);
    const QFile::Permissions file = QFile::Permissions(0x6666);
    QDirIterator it(root, QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        if (!QFileInfo(path).isSymLink())
            QFile::setPermissions(path, QFileInfo(path).isDir() ? folder : file);
    }
    for (QString path = QDir::cleanPath(root); path.startsWith(QDir::tempPath() + "/");
         path = QFileInfo(path).path())
        QFile::setPermissions(path, folder);
}

QMap<QString, QByteArray> snapshot(const QString& root)
{
    QMap<QString, QByteArray> entries;
    QDirIterator it(root, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        const QFileInfo info(path);
        QByteArray mark;
        if (info.isSymLink()) {
            mark = "link:" + info.symLinkTarget().toUtf8();
        } else if (info.isDir()) {
            mark = "folder";
        } else {
            QFile file(path);
            if (file.open(QIODevice::ReadOnly))
                mark = QCryptographicHash::hash(file.readAll(), QCryptographicHash::Sha1).toHex();
        }
        entries.insert(QDir(root).relativeFilePath(path), mark);
    }
    return entries;
}

void replaceInFile(const QString& path, const QString& from, const QString& to)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
    QString text = QString::fromUtf8(file.readAll());
    file.close();
    ASSERT_TRUE(text.contains(from)) << from.toStdString() << " not in " << path.toStdString();
    text.replace(from, to);
    ASSERT_TRUE(cwtest::writeFile(path, text.toUtf8()));
}

} // namespace optest
